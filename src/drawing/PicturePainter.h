#pragma once

#include <cstdint>

#include "drawing/CPlaneArrays.h"
#include "drawing/CTexelArrays.h"

class CGrid;
class COverlayPainter;
class CTextures;

/// Draws the picture, and what lies on it, into the current context under the projection and the view that are set: the
/// plane of the model at height 0.
class CPicturePainter {
 public:
  /// What to draw.
  struct CView {
    std::uint32_t m_uFlags = 0;        ///< ImageFlag bits
    bool m_bSelectedCells = false;     ///< the cells selected for subdivision
    CTextures* m_pTextures = nullptr;  ///< none: no picture
    COverlayPainter* m_pOverlay = nullptr;
  };

  /// Leaves the context without texturing, the current colour white.
  void Draw(const CGrid& grid, const CView& view);

 private:
  void DrawSubdivision(const CGrid& grid, const CView& view);
  void DrawFrozen(const CGrid& grid);
  void DrawMaskedTexels(const CGrid& grid);

  CPlaneArrays m_Arrays;
  CTexelArrays m_Texels;
};
