#include "quadtree/CSaveQuadT.h"

#include <algorithm>
#include <cstddef>

#include "base/Console.h"
#include "quadtree/CQuadTree.h"

void CSaveQuadT::subdiv() {
  if (!HasChildren()) {
    Console() << "Error: Attempt to subdivise a leaf in CSaveQuadT\n";
    return;
  }
  m_bLeaf = false;
  for (int k = 0; k < 4; ++k) Child(k).m_bLeaf = true;
}

void CSaveQuadT::SplitSelected() {
  if (m_bSelected && !HasChildren()) {
    Console() << "Error CSaveQuadT::subdivSelected()  Attempt to subdivise a highest level cell\n";
  } else if (m_bSelected) {
    subdiv();
    m_bSelected = false;
    for (int k = 0; k < 4; ++k) Child(k).m_bSelected = true;
  } else if (HasChildren()) {
    for (int k = 0; k < 4; ++k) Child(k).SplitSelected();
  }
}

bool CSaveQuadT::AreAllChildrenSelected() const {
  return HasChildren() && std::all_of(m_pChildren, m_pChildren + 4, [](const CSaveQuadT& c) { return c.m_bSelected; });
}

void CSaveQuadT::MergeSelected() {
  if (AreAllChildrenSelected()) {
    for (int k = 0; k < 4; ++k) {
      Child(k).m_bSelected = false;
      Child(k).m_bLeaf = false;
    }
    m_bSelected = true;
    m_bLeaf = true;
  } else if (HasChildren()) {
    for (int k = 0; k < 4; ++k) Child(k).MergeSelected();
  }
}

void CSaveQuadT::ClearSelection() {
  if (m_bSelected) {
    m_bSelected = false;
  } else if (HasChildren()) {
    for (int k = 0; k < 4; ++k) Child(k).ClearSelection();
  }
}

void CSaveQuadT::SelectWithin(const CQuadT& cell, const CLatticeRect& rect) {
  if (cell.X0() > rect.x1 || cell.X1() < rect.x0 || cell.Y0() > rect.y1 || cell.Y1() < rect.y0) return;
  m_bSelected = m_bLeaf;
  if (m_bLeaf || !HasChildren() || !cell.HasChildren() || cell.IsActive()) return;
  for (const int k : {0, 1, 3, 2}) Child(k).SelectWithin(cell.Child(k), rect);
}

void CSaveQuadT::ShowSelection(CQuadT& cell, bool below, std::vector<int>& corners) const {
  if (m_bSelected && !below) {
    cell.SetFlags(CellFlag::kSelected);
    corners.insert(corners.end(),
                   {cell.X0(), cell.Y0(), cell.X1(), cell.Y0(), cell.X1(), cell.Y1(), cell.X0(), cell.Y1()});
  } else {
    cell.ClearFlags(CellFlag::kSelected);
  }
  for (int k = 0; HasChildren() && k < 4; ++k) Child(k).ShowSelection(cell.Child(k), below || m_bSelected, corners);
}

CSubdivisionRecord::CSubdivisionRecord(int depth) : m_iDepth(depth) {
  std::size_t inner = 0;  // nodes above the finest level: 1 + 4 + 16 + ...
  for (int level = 0; level < depth; ++level) inner = 4 * inner + 1;
  m_aNodes.resize(4 * inner + 1);
  for (std::size_t k = 0; k < inner; ++k) m_aNodes[k].m_pChildren = &m_aNodes[4 * k + 1];
  for (std::size_t k = inner; k < m_aNodes.size(); ++k) m_aNodes[k].m_bLeaf = true;
}

void CSubdivisionRecord::SetStartLevel(int depth) {
  std::size_t k = 0;
  std::size_t count = 1;
  for (int level = 0; level <= m_iDepth; ++level, count *= 4) {
    for (const std::size_t end = k + count; k < end; ++k) {
      m_aNodes[k].m_bLeaf = level == depth;
      m_aNodes[k].m_bSelected = false;
    }
  }
}

void CSubdivisionRecord::RefineAt(CQuadTree& tree, double gx, double gy) {
  CSaveQuadT* saved = &Root();
  const CQuadT* cell = tree.getManualSetCell(gx, gy, saved);
  if (cell == nullptr) return;
  while (saved->HasChildren()) {
    saved->SetSelected(false);
    saved->subdiv();
    const bool right = gx >= cell->XMid();
    const bool upper = gy >= cell->YMid();
    const int k = right ? (upper ? 2 : 1) : (upper ? 3 : 0);
    saved = &saved->Child(k);
    cell = &cell->Child(k);
  }
}

void CSubdivisionRecord::SelectRectangle(const CQuadTree& tree, double gx0, double gy0, double gx1, double gy1) {
  Root().SelectWithin(tree.Root(), {std::min(gx0, gx1), std::min(gy0, gy1), std::max(gx0, gx1), std::max(gy0, gy1)});
}

std::vector<std::uint32_t> CSubdivisionRecord::SelectedNodes() const {
  std::vector<std::uint32_t> nodes;
  for (std::size_t k = 0; k < m_aNodes.size(); ++k) {
    if (m_aNodes[k].IsSelected()) nodes.push_back(static_cast<std::uint32_t>(k));
  }
  return nodes;
}

void CSubdivisionRecord::SelectNodes(std::span<const std::uint32_t> nodes) {
  for (CSaveQuadT& node : m_aNodes) node.SetSelected(false);
  for (const std::uint32_t k : nodes) m_aNodes[k].SetSelected(true);
}

void CSubdivisionRecord::ShowSelection(CQuadTree& tree) const {
  tree.m_aiSelectedCorners.clear();
  Root().ShowSelection(tree.Root(), false, tree.m_aiSelectedCorners);
}
