#include "quadtree/CPointOrder.h"

#include "base/Memory.h"
#include "quadtree/CQuadTree.h"

namespace {

bool IsSplit(const CQuadT& cell) { return !cell.IsActive() && cell.HasChildren(); }

}  // namespace

void CPointOrder::Free() {
  Release(m_aiNumbers);
  Release(m_auPoints);
  Release(m_aiCodes);
  Release(m_auScan);
  Release(m_auScanPoints);
}

void CPointOrder::Reset(int level) {
  m_iLevel = level;
  m_iSide = (1 << level) + 1;
  m_aiNumbers.assign(static_cast<std::size_t>(m_iSide) * static_cast<std::size_t>(m_iSide), -1);
  m_auPoints.clear();
  m_aiCodes.clear();
  m_auScan.clear();
  m_auScanPoints.clear();
}

void CPointOrder::Build(const CQuadTree& tree) {
  Reset(tree.Level());
  const int last = m_iSide - 1;
  Append(0, 0, 1);
  Append(last, 0, 1);
  Append(last, last, 1);
  Append(0, last, 1);

  // The split cells of one level, depth-first; their split children are those of the next level in the same order.
  std::vector<const CQuadT*> split;
  std::vector<const CQuadT*> next;
  if (IsSplit(tree.Root())) split.push_back(&tree.Root());
  for (int k = 1; !split.empty(); ++k) {
    for (const CQuadT* cell : split) {
      for (const Side side : {kBottom, kRight, kTop, kLeft}) {
        const CEdge& edge = cell->Edge(side);
        Append(edge.XMid(), edge.YMid(), edge.IsHorizontal() ? 2 * k : -2 * k);
      }
    }
    next.clear();
    for (const CQuadT* cell : split) {
      Append(cell->XMid(), cell->YMid(), 2 * k + 1);
      for (int child = 0; child < 4; ++child) {
        if (IsSplit(cell->Child(child))) next.push_back(&cell->Child(child));
      }
    }
    split.swap(next);
  }
  EndNumbering();
}

void CPointOrder::EndNumbering() {
  m_auScan.resize(Count());
  m_auScanPoints.clear();
  for (std::size_t point = 0; point < m_aiNumbers.size(); ++point) {
    if (m_aiNumbers[point] < 0) continue;
    m_auScan[static_cast<std::size_t>(m_aiNumbers[point])] = static_cast<std::uint32_t>(m_auScanPoints.size());
    m_auScanPoints.push_back(static_cast<std::uint32_t>(point));
  }
}

void CPointOrder::Append(int column, int row, int code) {
  const std::size_t point =
      static_cast<std::size_t>(row) * static_cast<std::size_t>(m_iSide) + static_cast<std::size_t>(column);
  if (m_aiNumbers[point] >= 0) return;
  m_aiNumbers[point] = static_cast<std::int32_t>(m_auPoints.size());
  m_auPoints.push_back(static_cast<std::uint32_t>(point));
  m_aiCodes.push_back(code);
}
