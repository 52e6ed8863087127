#pragma once

#include <cstdint>

#include "drawing/CClosedArrays.h"
#include "drawing/CCurveArrays.h"
#include "drawing/CSurfaceArrays.h"
#include "drawing/CTexelArrays.h"
#include "drawing/DisplayFlags.h"
#include "drawing/DrawingSettings.h"

class CGrid;
class CTextures;
struct CCamera;
struct CHalfSizes;

/// Colour of the grid lines 2^level lattice steps long while levels have colours of their own.
CColour SubdivisionColour(int level);

/// Draws the model in three dimensions into the current context, under the projection and the view that are set.
class CModelPainter {
 public:
  /// What of the model to draw and how.
  struct CView {
    std::uint32_t m_uFlags = 0;  ///< ModelFlag bits
    int m_iDrawTexture = DrawnTexture::kPhotograph;
    CTextures* m_pTextures = nullptr;  ///< none: the model is drawn without
  };

  /// Draws the model as a camera sees it on the cleared viewport, and nothing where the camera is zoomed in to nothing.
  void DrawScene(const CGrid& grid, const CView& view, const CCamera& camera, const CHalfSizes& sizes);
  /// Leaves the context without lighting and texturing, the current colour white.
  void Draw(const CGrid& grid, const CView& view);

 private:
  void DrawTexturedModel(const CGrid& grid, const CView& view);
  void DrawSurface(const CGrid& grid, const CView& view, bool lit);
  void DrawGridLines(const CGrid& grid);
  void DrawNormals(const CGrid& grid, std::uint32_t flags);
  void DrawNormalsTexels(const CGrid& grid, double length);
  void Draw3DCntr(const CGrid& grid);

  CSurfaceArrays m_Arrays;
  CClosedArrays m_Closed;
  CCurveArrays m_Curves;
  CTexelArrays m_Texels;
};
