#include "quadtree/CSaveQuadT.h"

#include <cstddef>

#include "base/Console.h"

void CSaveQuadT::subdiv() {
  if (!HasChildren()) {
    Console() << "Error: Attempt to subdivise a leaf in CSaveQuadT\n";
    return;
  }
  m_bLeaf = false;
  for (int k = 0; k < 4; ++k) Child(k).m_bLeaf = true;
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
    for (const std::size_t end = k + count; k < end; ++k) m_aNodes[k].m_bLeaf = level == depth;
  }
}
