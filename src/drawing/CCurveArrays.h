#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "base/CPlanePoint.h"
#include "lattice/CLattice.h"
#include "quadtree/Interpolation.h"

class CCntrCtrl;
class CGrid;
struct CCntrNode;

/// The curves as lines on the surface: vertices of three floats in model units, at every node and at most one lattice
/// step apart in between.
///
/// A tear has the height of its upper rim, a cell beside the curve: on the curve itself there is no surface.
/// Places are looked up again only when a curve or the subdivision has changed, heights when the surface has; a redraw
/// in between compares the nodes and does no more.
class CCurveArrays {
 public:
  /// The vertices of one curve.
  struct CLine {
    std::size_t m_uFirst = 0;
    std::size_t m_uCount = 0;
  };

  /// Brings the arrays up to the grid; nothing is done where they are.
  void Refresh(const CGrid& grid);

  /// One line per curve, in the order of the grid; a closed one ends where it began. A curve of a single node has one
  /// vertex.
  std::span<const CLine> Lines() const { return m_aLines; }
  std::span<const float> Vertices() const { return m_afVertices; }
  /// The vertices at the nodes of all curves, curve by curve.
  std::span<const std::uint32_t> NodeVertices() const { return m_auNodes; }

 private:
  /// What the places of a node's vertices hang on.
  struct CNodeStamp {
    double m_fX;
    double m_fY;
    bool m_bTear;
    bool m_bLast;  ///< of its curve
    bool m_bClosed;
    bool operator==(const CNodeStamp&) const = default;
  };
  /// Where the height of a vertex comes from: the higher of two places.
  struct CSample {
    CTriangleStencil m_Left;
    CTriangleStencil m_Right;
  };

  /// Whether the nodes are those of the last call; they are afterwards.
  bool HaveNodesChanged(const CGrid& grid);
  void Place(const CGrid& grid);
  void PlaceCurve(const CGrid& grid, const CCntrCtrl& curve);
  void PlaceSegment(const CGrid& grid, const CCntrNode& a, const CCntrNode& b, bool tear);
  /// `place` in lattice coordinates; `toRight` leads from there to the right rim, its opposite to the left one.
  void AddVertex(const CGrid& grid, const CPlanePoint& place, const CPlanePoint& toRight);
  void Raise(const CGrid& grid);

  std::vector<CNodeStamp> m_aNodes;
  std::vector<CNodeStamp> m_aNodesNow;
  std::size_t m_uCurves = 0;
  CExtent m_Extent;
  std::uint64_t m_uTree = 0;
  std::uint64_t m_uSurface = 0;
  std::vector<CLine> m_aLines;
  std::vector<CSample> m_aSamples;
  std::vector<float> m_afVertices;
  std::vector<std::uint32_t> m_auNodes;
};
