#include "model/CLattice.h"

#include <algorithm>

#include "base/Memory.h"

void CLattice::Allocate(int level) {
  m_iLevel = level;
  m_iSide = (1 << level) + 1;
  const std::size_t cells = static_cast<std::size_t>(m_iSide - 1) * static_cast<std::size_t>(m_iSide - 1);
  m_afHeights.assign(PointCount(), 0.0);
  m_auFlags.assign(PointCount(), 0);
  m_afSmoothness.assign(PointCount(), 0.0);
  m_aPointNormals.assign(PointCount(), Vector3{});
  m_aCellNormals.assign(cells, Vector3{});
}

void CLattice::Free() {
  Release(m_afHeights);
  Release(m_auFlags);
  Release(m_afSmoothness);
  Release(m_aPointNormals);
  Release(m_aCellNormals);
}

void CLattice::ClearAll(std::uint32_t flags) {
  for (std::uint32_t& word : m_auFlags) word &= ~flags;
}

std::size_t CLattice::Count(std::uint32_t flags) const {
  return static_cast<std::size_t>(
      std::count_if(m_auFlags.begin(), m_auFlags.end(), [flags](std::uint32_t word) { return (word & flags) != 0; }));
}
