#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "base/Vector3.h"

class CEdge;
class CLattice;
class CQuadTree;

/// Bits of a cell's flag word. Triangle k has bit 1 << k.
namespace CellFlag {
inline constexpr std::uint32_t kTriangles =
    15;  ///< the four triangles (bottom, right, top, left): set = in a discontinuity
inline constexpr std::uint32_t kRisingCrease =
    16;  ///< the diagonal from the lower left corner to the upper right one is a crease
inline constexpr std::uint32_t kFallingCrease =
    32;  ///< the diagonal from the lower right corner to the upper left one is a crease
inline constexpr std::uint32_t kMarkable = 63;    ///< what the marking operations accept
inline constexpr std::uint32_t kSelected = 1024;  ///< lies in a region selected for manual subdivision
}  // namespace CellFlag

/// Sides and triangles of a cell, in the order in which they are stored and visited. Side k joins corner k to corner (k
/// + 1) % 4.
enum Side { kBottom = 0, kRight = 1, kTop = 2, kLeft = 3 };

/// A cell's rectangle in model units: lower left corner and size.
struct CCellRect {
  double x;
  double y;
  double width;
  double height;
};

/// What the surface looks like over one active leaf.
struct CCellSurface {
  std::array<double, 4> m_afTriangleZ{};        ///< mean height of each triangle's three corners
  std::array<Vector3, 4> m_aTriangleNormals{};  ///< unit length
  /// The normalised sum of the normals of the triangles outside discontinuities: unit length, not a number where all
  /// four lie in one.
  Vector3 m_CellNormal;
};

/// One cell of the adaptive quad tree: the square of side 2^level lattice steps whose lower left point is (X0(), Y0()).
///
/// The tree is complete down to cells one step wide. The present subdivision is a barrier of active cells
/// (`IsActive()`); what lies below an active cell is dormant. Refining and coarsening only move the barrier and keep
/// the point flags and edge leaf flags in step with it: they allocate nothing. Children and corners: 0 south-west, 1
/// south-east, 2 north-east, 3 north-west. All coordinates are lattice indices unless model units are said. Operations
/// that meet an impossible state write one console line and leave the state reached.
class CQuadT {
 public:
  /// A cell of `tree` without children. One step wide (level 0) it is active and its edges (in side order) are leaves,
  /// else neither.
  CQuadT(CQuadTree& tree, int x0, int y0, int level, const std::array<CEdge*, 4>& edges);

  /// Whether the cell is a leaf of the present subdivision; whether cells lie below it, active or not.
  bool IsActive() const { return m_bStop; }
  bool HasChildren() const { return m_pChildren != nullptr; }
  /// Precondition: `HasChildren()`.
  CQuadT& Child(int k) { return m_pChildren[k]; }
  const CQuadT& Child(int k) const { return m_pChildren[k]; }
  CEdge& Edge(int side) { return *m_apEdges[static_cast<std::size_t>(side)]; }
  const CEdge& Edge(int side) const { return *m_apEdges[static_cast<std::size_t>(side)]; }
  /// The edges from the cell's centre to the midpoints of its sides, in side order. Precondition: `HasChildren()`.
  std::array<CEdge*, 4> InnerEdges() const;

  /// Size = 2^level steps; corners and centre in lattice columns and rows.
  int Level() const { return m_iLevel; }
  int Size() const { return 1 << m_iLevel; }
  int X0() const { return m_iX0; }
  int Y0() const { return m_iY0; }
  int X1() const { return m_iX0 + Size(); }
  int Y1() const { return m_iY0 + Size(); }
  int XMid() const { return (X0() + X1()) / 2; }
  int YMid() const { return (Y0() + Y1()) / 2; }
  /// Column and row of corner `k`.
  std::array<int, 2> Corner(int k) const { return {k == 1 || k == 2 ? X1() : X0(), k >= 2 ? Y1() : Y0()}; }
  bool HasRect(int x0, int y0, int x1, int y1) const { return x0 == X0() && y0 == Y0() && x1 == X1() && y1 == Y1(); }
  /// Closed bounds, lattice coordinates.
  bool Contains(double gx, double gy) const { return X0() <= gx && gx <= X1() && Y0() <= gy && gy <= Y1(); }
  CCellRect ModelRect() const;

  /// Bits of CellFlag; `HasFlag` asks for any of them.
  std::uint32_t Flags() const { return m_uFlags; }
  bool HasFlag(std::uint32_t mask) const { return (m_uFlags & mask) != 0; }
  void SetFlags(std::uint32_t mask);
  void ClearFlags(std::uint32_t mask);

  /// The surface over an active leaf, from the lattice's heights as they are now.
  CCellSurface Surface() const;
  /// Centroid of triangle `k` of an active leaf: x and y in model units, z the mean of the heights of its corners.
  Vector3 TriangleCentre(int k) const;

  /// Splits an active cell wider than one step into its four children. With `interpolate` the midpoints of the sides
  /// and the centre get the means of the corner heights, also where a finer neighbour had given a midpoint a height of
  /// its own.
  void subdiv(bool interpolate);
  /// Makes the rectangle x0..x1 by y0..y1 an active leaf, refining or coarsening as needed, and adds `flags` (only bits
  /// of CellFlag::kMarkable count as a mark). A cell that was there already and has three triangles marked then gets
  /// all four; one reached by refinement does not. Called on the root. Null where no cell has that rectangle.
  CQuadT* subdiv(int x0, int y0, int x1, int y1, std::uint32_t flags);
  /// Refines downward from this cell to the rectangle and adds `flags` to the cell there. Null where the rectangle
  /// straddles children.
  CQuadT* subdiv_t(int x0, int y0, int x1, int y1, std::uint32_t flags);
  /// Coarsens: makes this cell an active leaf again. A side stays split where the neighbour of the same size is
  /// refined.
  CQuadT* subdiv_t2();

  /// The deepest cell that contains the rectangle and is reached from this one through non-active cells. Null for a
  /// rectangle that does not overlap the tree (silently), that leaves this cell (with a console line), or that
  /// straddles the children of a cell.
  CQuadT* FindCell(int x0, int y0, int x1, int y1);
  /// Whether the active leaf below this cell that holds (gx, gy) (lattice coordinates) has a triangle in a
  /// discontinuity.
  bool IsPointInsideDiscontinuity(double gx, double gy) const;

 private:
  friend class CQuadTree;

  CLattice& Lattice() const;
  CQuadT* ChildHolding(int x0, int y0, int x1, int y1);
  void MarkCornersInUse();
  void InterpolateMidpoints();
  void CloseSide(int side);

  // One cache line: walks of the tree read all cells of the subdivision.
  CQuadTree* m_pTree;
  CQuadT* m_pChildren = nullptr;  ///< the first of four neighbours in the tree's storage
  std::array<CEdge*, 4> m_apEdges;
  std::uint32_t m_uFlags = 0;
  std::int16_t m_iX0;
  std::int16_t m_iY0;
  std::int8_t m_iLevel;
  bool m_bStop;
};
