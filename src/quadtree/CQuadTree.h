#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "quadtree/CEdge.h"
#include "quadtree/CQuadT.h"
#include "quadtree/CentreWeights.h"

class CSaveQuadT;
class CSubdivisionRecord;

/// One active leaf, as flat passes over the surface see it.
struct CLeaf {
  static constexpr std::uint32_t kMeanOfCorners = 0xFFFFFFFF;

  const CQuadT* m_pCell;
  std::uint32_t m_uPoint;   ///< lattice index of the lower left corner
  std::uint32_t m_uCell;    ///< unit-cell index of that corner
  std::uint32_t m_uCentre;  ///< kMeanOfCorners, or where the tree keeps the weights of the leaf's centre
  std::uint16_t m_uSize;    ///< side in lattice steps
  std::uint16_t m_uMarked;  ///< its CellFlag::kTriangles
};

/// The adaptive quad tree [Samet1984] over one lattice: storage of its cells and edges, the present subdivision, and
/// the look-ups on it.
///
/// Built complete for the lattice's level; the active leaves are then the cells one step wide until a start level is
/// set. Memory is linear in the number of lattice points and allocated once. Point flags (in use) are kept in the
/// lattice, which must outlive the tree and keep its level.
class CQuadTree {
 public:
  /// With all cells down to those one step wide, which are active.
  explicit CQuadTree(CLattice& lattice);
  /// For a lattice that is going to be allocated for `level` before the tree is used.
  CQuadTree(CLattice& lattice, int level);
  CQuadTree(const CQuadTree&) = delete;
  CQuadTree& operator=(const CQuadTree&) = delete;
  ~CQuadTree() = default;

  /// The points that it divides.
  CLattice& Lattice() { return *m_pLattice; }
  const CLattice& Lattice() const { return *m_pLattice; }
  /// The level of the root, which is the lattice's.
  int Level() const { return Root().Level(); }
  CQuadT& Root() { return m_aCells.front(); }
  const CQuadT& Root() const { return m_aCells.front(); }

  /// The cell of `level` in cell column `i` and cell row `j` (0 <= i, j < 2^(Level() - level)), active, split or
  /// dormant. O(1).
  CQuadT& CellAt(int level, int i, int j) { return m_aCells[CellNumber(level, i, j)]; }
  const CQuadT& CellAt(int level, int i, int j) const { return m_aCells[CellNumber(level, i, j)]; }
  /// The edge 2^level steps long that starts at lattice point (x, y) and runs right or up; (x, y) must be a multiple of
  /// its length. O(1).
  const CEdge& HorizontalEdge(int level, int x, int y) const;
  const CEdge& VerticalEdge(int level, int x, int y) const;

  /// The active leaves, depth-first with children in their fixed order, ready for passes that must not walk the tree.
  /// Listed again at the first call after the subdivision or a flag has changed.
  std::span<const CLeaf> Leaves() {
    ListLeaves();
    return m_aLeaves;
  }
  /// The same for those who only read: the leaves must have been listed since the last change.
  std::span<const CLeaf> Leaves() const { return m_aLeaves; }
  /// Lists the leaves, unless the list is of the present subdivision. Ends every change that others are to read.
  void ListLeaves();
  /// Changes whenever `Leaves()` may have changed; no two trees have the same.
  std::uint64_t Revision() const { return m_uRevision; }
  /// The weights of the centre of one of `Leaves()` whose centre is not the mean of its corners.
  const CCentreWeights& CentreOf(const CLeaf& leaf) const { return m_aCentres[leaf.m_uCentre]; }

  /// Forgets every flag and mark and sets the start level.
  void Reset(int depth);
  /// Makes exactly the cells `depth` generations below the root (0..Level()) active and rewrites the in-use flags to
  /// match.
  void SetStartLevel(int depth);
  /// Forgets marks and flags (selected cells stay selected), sets the start level and replays the wanted subdivision on
  /// it. Splits interpolate heights. The record must have the tree's depth.
  void Replay(const CSubdivisionRecord& wanted, int depth);

  /// The edge with exactly these ends among the edges of the present subdivision and their parents; null if there is
  /// none. O(level).
  const CEdge* FindEdge(int xa, int ya, int xb, int yb) const;
  /// The active leaf that holds (gx, gy) (lattice coordinates, closed bounds); on a dividing line the right or upper
  /// one. Null outside.
  const CQuadT* PointInCell_g(double gx, double gy) const;
  CQuadT* PointInCell_g(double gx, double gy);
  /// The same for a point in model units, which must lie strictly inside the model; null otherwise.
  const CQuadT* PointInCell(double x, double y) const;
  /// The cell that mirrors the wanted leaf at (x, y) (lattice coordinates). On entry `saved` is the record's root, on
  /// return that leaf. Null outside the tree, with a console line.
  CQuadT* getManualSetCell(double x, double y, CSaveQuadT*& saved);
  /// Whether the lattice rectangle lies within the deepest cell reached by a descent through split cells in which each
  /// step goes to a child that holds the whole rectangle.
  bool IsRectInOneCell(int x0, int y0, int x1, int y1) const;

  /// The corners of the cells with CellFlag::kSelected, for drawing: x and y (lattice coordinates) of the lower left,
  /// lower right, upper right and upper left one. Made when the selection is shown, so that no redraw looks for them.
  std::span<const int> SelectedCorners() const { return m_aiSelectedCorners; }

  /// Number of active leaves. Linear in the number of cells of the subdivision.
  int LeafCount() const;
  /// Rewrites the discontinuity marks of all edges from the triangle flags of the cells; the model's border counts as
  /// marked from outside.
  void RefreshEdgeMarks();

  /// Calls `visit(cell)` for every active leaf, depth-first, children in their fixed order.
  template <typename Visit>
  void ForEachLeaf(Visit&& visit) {
    VisitLeaves(Root(), visit);
  }
  template <typename Visit>
  void ForEachLeaf(Visit&& visit) const {
    VisitLeaves(Root(), visit);
  }

 private:
  template <typename Cell, typename Visit>
  static void VisitLeaves(Cell& cell, Visit& visit) {
    if (cell.IsActive() || !cell.HasChildren()) {
      visit(cell);
      return;
    }
    for (int k = 0; k < 4; ++k) VisitLeaves(cell.Child(k), visit);
  }

  friend class CQuadT;
  friend class CSubdivisionRecord;
  void ForgetLeaves();
  std::size_t CellNumber(int level, int i, int j) const;
  /// Whether the cell exists and no cell above it is active, so that it is part of the subdivision or was split by it.
  bool IsReached(int level, int i, int j) const;
  void CreateChildren(CQuadT& cell);
  void ReplayNode(CQuadT& cell, const CSaveQuadT& saved);

  CLattice* m_pLattice;
  CEdgeArena m_Edges;
  std::vector<std::size_t> m_aLevelStart;  ///< number of the first cell of each level
  std::vector<CQuadT> m_aCells;            ///< level by level from the root, depth-first within a level
  bool m_bLeavesKnown = false;
  std::uint64_t m_uRevision = 0;
  std::vector<CLeaf> m_aLeaves;
  std::vector<CCentreWeights> m_aCentres;  ///< of the leaves whose centre is not the mean of the corners
  std::vector<int> m_aiSelectedCorners;
};
