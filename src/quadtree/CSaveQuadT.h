#pragma once

#include <cstdint>
#include <span>
#include <vector>

class CQuadT;
class CQuadTree;

/// A rectangle in lattice coordinates; x0 <= x1 and y0 <= y1.
struct CLatticeRect {
  double x0;
  double y0;
  double x1;
  double y1;
};

/// One node of the wanted subdivision: a light mirror of the cell tree that says where the user wants leaves.
///
/// Children in the order south-west, south-east, north-east, north-west, as for the cells; a node of the finest level
/// has none.
class CSaveQuadT {
 public:
  /// Whether a leaf is wanted here.
  bool IsLeaf() const { return m_bLeaf; }
  void SetLeaf(bool leaf) { m_bLeaf = leaf; }
  /// Chosen with the manual resolution tool.
  bool IsSelected() const { return m_bSelected; }
  void SetSelected(bool selected) { m_bSelected = selected; }
  bool HasChildren() const { return m_pChildren != nullptr; }
  CSaveQuadT& Child(int k) { return m_pChildren[k]; }
  const CSaveQuadT& Child(int k) const { return m_pChildren[k]; }

  /// Splits the node one level: it stops being a leaf and its four children become leaves. A node of the finest level
  /// is refused with a console line.
  void subdiv();

 private:
  friend class CSubdivisionRecord;

  bool AreAllChildrenSelected() const;
  void SplitSelected();
  void MergeSelected();
  void ClearSelection();
  void SelectWithin(const CQuadT& cell, const CLatticeRect& rect);
  void ShowSelection(CQuadT& cell, bool below, std::vector<int>& corners) const;

  bool m_bLeaf = false;
  bool m_bSelected = false;
  CSaveQuadT* m_pChildren = nullptr;  ///< the first of four neighbours in the record's storage
};

/// The wanted subdivision of one resolution: a complete tree of nodes down to the finest level.
///
/// Movable, not copyable: the nodes point at each other.
class CSubdivisionRecord {
 public:
  /// A complete tree of `depth` levels below the root, in which the nodes of the finest level alone are leaves.
  explicit CSubdivisionRecord(int depth);
  CSubdivisionRecord(CSubdivisionRecord&&) = default;
  CSubdivisionRecord& operator=(CSubdivisionRecord&&) = default;
  CSubdivisionRecord(const CSubdivisionRecord&) = delete;
  CSubdivisionRecord& operator=(const CSubdivisionRecord&) = delete;
  ~CSubdivisionRecord() = default;

  /// Generations below the root, and the root, which is there always.
  int Depth() const { return m_iDepth; }
  CSaveQuadT& Root() { return m_aNodes.front(); }
  const CSaveQuadT& Root() const { return m_aNodes.front(); }

  /// Exactly the nodes `depth` generations below the root become leaves, all others not; nothing stays selected.
  /// `depth` must lie in 0..Depth().
  void SetStartLevel(int depth);
  /// Splits down to the finest level wherever the wanted leaf at (gx, gy) (lattice coordinates) is coarser; what is
  /// split is no longer selected. Nothing outside `tree`, whose cells the record mirrors, but a console line.
  void RefineAt(CQuadTree& tree, double gx, double gy);
  /// Splits every selected node one level; its children are selected in its place. One of the finest level is refused
  /// with a console line and stays selected.
  void subdivSelected() { Root().SplitSelected(); }
  /// Wherever all four children of a node are selected, they make way for the node, a selected leaf. One level only.
  void MergeSelected() { Root().MergeSelected(); }
  /// Selects the wanted leaves whose cells meet the rectangle between two opposite corners (lattice coordinates, bounds
  /// included), as far as `tree` is subdivided. Leaves elsewhere keep their state.
  void SelectRectangle(const CQuadTree& tree, double gx0, double gy0, double gx1, double gy1);
  /// On each way down from the root, unselects the first selected node.
  void ClearSelection() { Root().ClearSelection(); }
  /// The selected nodes, by their place in the order level by level from the root; and exactly these selected.
  std::vector<std::uint32_t> SelectedNodes() const;
  void SelectNodes(std::span<const std::uint32_t> nodes);
  /// Writes the selection into the cells: those of selected nodes get CellFlag::kSelected, unless a cell above has it;
  /// all others lose it. Linear in the number of nodes.
  void ShowSelection(CQuadTree& tree) const;

 private:
  int m_iDepth;
  std::vector<CSaveQuadT> m_aNodes;  ///< level by level from the root, the children of a node side by side
};
