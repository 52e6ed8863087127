#include "lattice/CLattice.h"

#include <algorithm>
#include <cmath>

#include "base/Memory.h"

bool IsUsable(const CExtent& extent) {
  constexpr double kMostSteps = 1 << CLattice::kMaxLevel;
  const auto usable = [](double low, double high) {
    return low < high && std::isfinite(high - low) && std::isnormal((high - low) / kMostSteps);
  };
  return usable(extent.x0, extent.x1) && usable(extent.y0, extent.y1);
}

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
