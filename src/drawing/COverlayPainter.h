#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <vector>

#include "drawing/COverlay.h"
#include "lattice/CLattice.h"
#include "model/CSurfaceMesh.h"

class CQuadTree;
class CPointOrder;

/// Draws an overlay, without its legend. What is drawn is made when the overlay is taken up: values at points are
/// interpolated over the triangles of the leaves, those in a tear left out, and a redraw neither walks the tree nor
/// makes anything. Other values over the same subdivision and tears cost no more than themselves.
class COverlayPainter {
 public:
  COverlayPainter() = default;
  /// The texture goes with the contexts that share it.
  ~COverlayPainter() = default;
  COverlayPainter(const COverlayPainter&) = delete;
  COverlayPainter& operator=(const COverlayPainter&) = delete;

  /// Takes up an overlay; null for none, which gives the memory back. One over the points of another subdivision than
  /// `tree` shows nothing; one over those of `tree` that has no values yet gets all ready for them. Leaves must be
  /// listed. Linear in the number of leaves, or of the raster's pixels.
  void Set(std::shared_ptr<const COverlay> overlay, const CQuadTree& tree, const CPointOrder& order);
  /// The overlay that is shown, or null.
  const COverlay* Shown() const { return m_pOverlay.get(); }
  /// The context is another one than before: what it was given is made anew. Names may mean other textures by now.
  void ForgetContext() { m_uTexture = 0; }
  /// Into the current context, in model units, over the rectangle `extent`.
  void Draw(const CExtent& extent);

  /// Three floats per vertex, of which the last means nothing; how far along the map each is, 0 to 1; and the
  /// triangles.
  std::span<const float> Positions() const { return m_afPositions; }
  std::span<const float> Places() const { return m_afPlaces; }
  std::span<const std::uint32_t> Triangles() const { return m_auTriangles; }

 private:
  void Clear();
  void MakeMesh(const CQuadTree& tree);
  void MakePlaces(const CQuadTree& tree, const CPointOrder& order);
  void ChooseTriangles();
  void MakeTexels();
  void DrawTriangles() const;
  void DrawRaster(const CExtent& extent);

  std::shared_ptr<const COverlay> m_pOverlay;
  /// What does not depend on the values, and the subdivision and the rectangle that it was made of.
  CSurfaceMesh m_Mesh;
  std::vector<float> m_afPositions;
  std::optional<std::uint64_t> m_uMeshOf;
  CExtent m_Extent;
  std::vector<float> m_afPlaces;                 ///< not a number where there is no value
  std::span<const std::uint32_t> m_auTriangles;  ///< all of the mesh, or these:
  std::vector<std::uint32_t> m_auWithValues;
  std::vector<std::uint8_t> m_auTexels;  ///< of the raster, red, green, blue and opacity
  int m_iTexelSide = 0;
  unsigned m_uTexture = 0;
  bool m_bTexelsDue = false;  ///< to be sent to the card
};
