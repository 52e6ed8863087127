#include "solver/CPointSites.h"

#include "quadtree/CPointOrder.h"

CPointSites::CPointSites(const CPointOrder& order)
    : m_uSide(static_cast<std::uint32_t>(order.PointsPerSide())),
      m_uShift(static_cast<std::uint32_t>(order.Level()) + 2) {
  m_auAtPlace.reserve(order.Count());
  std::uint32_t row = 0;
  for (std::size_t place = 0; place < order.Count(); ++place) {
    const std::uint32_t point = order.PointAtScan(place);
    while (point >= (row + 1) * m_uSide) ++row;
    m_auAtPlace.push_back((row << m_uShift) + (point - row * m_uSide));
  }
  m_auOfUnknown.reserve(order.Count());
  for (std::size_t k = 0; k < order.Count(); ++k) m_auOfUnknown.push_back(m_auAtPlace[order.ScanOf(k)]);
}
