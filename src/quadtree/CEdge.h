#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "lattice/WaveletMode.h"

class CEdgeArena;
class CLattice;

/// Marks that the cells on the two sides of an edge leave on it. With both, the edge lies inside a position
/// discontinuity.
namespace EdgeMark {
inline constexpr std::uint32_t kAboveOrLeft = 2;   ///< by the cell whose bottom or right side the edge is
inline constexpr std::uint32_t kBelowOrRight = 4;  ///< by the cell whose top or left side the edge is
inline constexpr std::uint32_t kBoth = kAboveOrLeft | kBelowOrRight;
}  // namespace EdgeMark

/// One side of a quad-tree cell, shared by the two cells that meet along it and halved in step with them.
///
/// Coordinates are lattice indices; an edge is horizontal (ya == yb) or vertical (xa == xb) and its first end has the
/// smaller coordinate. The leaf flag says that the edge is a side of the current subdivision and not split; a split or
/// dormant edge does not carry it.
class CEdge {
 public:
  /// From (xa, ya) to (xb, yb), lattice points; without halves, no leaf, no mark.
  CEdge(int xa, int ya, int xb, int yb)
      : m_iXa(static_cast<std::int16_t>(xa)),
        m_iYa(static_cast<std::int16_t>(ya)),
        m_iXb(static_cast<std::int16_t>(xb)),
        m_iYb(static_cast<std::int16_t>(yb)) {}

  /// Ends and midpoint, lattice columns and rows.
  int Xa() const { return m_iXa; }
  int Ya() const { return m_iYa; }
  int Xb() const { return m_iXb; }
  int Yb() const { return m_iYb; }
  bool IsHorizontal() const { return m_iYa == m_iYb; }
  int XMid() const { return (m_iXa + m_iXb) / 2; }
  int YMid() const { return (m_iYa + m_iYb) / 2; }

  /// Whether `subdiv` has been called.
  bool HasHalves() const { return m_pHalves != nullptr; }
  /// Half 0 runs from the first end to the midpoint, half 1 from there to the second end. Precondition: `HasHalves()`.
  CEdge& Half(int k) { return m_pHalves[k]; }
  const CEdge& Half(int k) const { return m_pHalves[k]; }

  /// Whether it is a side of the present subdivision and not split.
  bool IsLeaf() const { return m_bLeaf; }
  void SetLeaf(bool leaf) { m_bLeaf = leaf; }

  /// Creates the two halves in `arena` and takes the leaf flag off. An edge one step long is refused with a console
  /// line; an edge that has halves stays as it is.
  void subdiv(CEdgeArena& arena);
  /// A split of a neighbouring cell: a leaf edge hands its leaf flag to its halves. An edge already open stays as it
  /// is; one without halves is refused with a console line.
  void Open();
  /// The opposite: the edge is a leaf again and its midpoint is no longer in use.
  void Close(CLattice& lattice);
  /// Leaf flag 1 at exactly `depth` halvings below this edge, 0 elsewhere.
  void SetLeafByDepth(int depth);

  /// Sets or clears `mark` on this edge; on its halves, at every depth, the mark is set whatever `on` says.
  /// Clearing a whole edge therefore means clearing the parents before the halves.
  void Mark(std::uint32_t mark, bool on);
  bool HasMark(std::uint32_t mark) const { return (m_uMarks & mark) != 0; }
  bool HasBothMarks() const { return HasMark(EdgeMark::kAboveOrLeft) && HasMark(EdgeMark::kBelowOrRight); }
  /// Whether the basis may predict across the edge. Always in the modes that ignore discontinuities; otherwise a leaf
  /// must not carry both marks and a split edge must have two continuous halves. Linear in the number of sub-edges.
  bool IsContinuous(WaveletMode mode) const;

  /// In lattice steps.
  double Length() const;
  /// Distance of (x, y) from the edge's line, in lattice steps, never negative.
  double DistanceTo(double x, double y) const;
  /// The leaf sub-edge at coordinate `t` along the edge (x of a horizontal edge, y of a vertical one); at a midpoint
  /// the second half. Null outside the closed range of the edge or where no sub-edge is a leaf.
  const CEdge* FindLeaf(double t) const;
  /// Adds to both ends of every leaf sub-edge half the area of its triangle with the point (x, y): length x distance x
  /// 0.25.
  void AddAreaTerm(double x, double y, CLattice& lattice) const;

  /// Inverse step of the hierarchical transform on a split edge, once per pass (point flag kComputed): `values` (one
  /// per lattice point) holds the coefficient of the midpoint and receives its height, the coefficient plus the mean of
  /// the ends that continuous halves join. A leaf is refused with a console line.
  void ComputeEdgeIfNeeded(std::span<double> values, CLattice& lattice, WaveletMode mode) const;
  /// Forward step: the same with the mean subtracted, read from `heights` and stored in `coefs` (one value per lattice
  /// point each).
  void ComputeEdgeIfNeeded_W(std::span<const double> heights, std::span<double> coefs, CLattice& lattice,
                             WaveletMode mode) const;

 private:
  bool IsOneStepLong() const { return m_iXb - m_iXa == 1 || m_iYb - m_iYa == 1; }
  void LogOneStepError() const;
  std::size_t MidpointIndex(const CLattice& lattice) const;
  double MeanOfJoinedEnds(std::span<const double> values, const CLattice& lattice, WaveletMode mode) const;

  // Small on purpose: there are eight edges for every three lattice points, and walks of the tree read them all.
  CEdge* m_pHalves = nullptr;  ///< the first of the two, which are neighbours in the arena
  std::int16_t m_iXa;
  std::int16_t m_iYa;
  std::int16_t m_iXb;
  std::int16_t m_iYb;
  bool m_bLeaf = false;
  std::uint8_t m_uMarks = 0;
};

/// Storage of all edges of one tree, sized once: addresses stay valid and the halves of an edge lie side by side.
class CEdgeArena {
 public:
  /// For `capacity` edges, all of the memory at once.
  explicit CEdgeArena(std::size_t capacity) { m_aEdges.reserve(capacity); }

  /// Appends one edge. Precondition: `Size() < capacity`.
  CEdge* Add(const CEdge& edge);
  std::size_t Size() const { return m_aEdges.size(); }

 private:
  std::vector<CEdge> m_aEdges;
};
