#include "mesh/CSideHeights.h"

#include <algorithm>
#include <cmath>

#include "mesh/CSideSearch.h"

CSideHeights::CSideHeights(const CTearPatch& patch, const CTearSides& sides, bool planes) {
  CSideSearch(patch, sides, *this).FindAll(planes);
}

std::span<const CSideHeights::CTerm> CSideHeights::Terms(std::size_t row) const {
  const std::size_t first = row == 0 ? 0 : m_aRows[row - 1].m_uEnd;
  return std::span(m_aTerms).subspan(first, m_aRows[row].m_uEnd - first);
}

// Widened at both ends by half its length; 0 where nothing is known.
CSideHeights::CRange CSideHeights::RangeOf(std::span<const CTerm> terms, std::span<const double> known) {
  if (terms.empty()) return {};
  double low = HUGE_VAL;
  double high = -HUGE_VAL;
  for (const CTerm& term : terms) {
    low = std::min(low, known[term.m_uKnown]);
    high = std::max(high, known[term.m_uKnown]);
  }
  const double more = (high - low) / 2.0;
  return {low - more, high + more};
}

void CSideHeights::Raise(std::span<const double> known, std::span<double> heights) const {
  for (std::size_t copy = 0; copy < m_auKnownAt.size(); ++copy) {
    if (m_auKnownAt[copy] != kNone) heights[copy] = known[m_auKnownAt[copy]];
  }
  for (std::size_t row = 0; row < m_aRows.size(); ++row) {
    const std::uint32_t copy = m_aRows[row].m_uCopy;
    if (m_auKnownAt[copy] != kNone) continue;
    const std::span<const CTerm> terms = Terms(row);
    double z = 0.0;
    for (const CTerm& term : terms) z += term.m_fWeight * known[term.m_uKnown];
    const auto [low, high] = RangeOf(terms, known);
    // In this order, so that what is no number stays none.
    heights[copy] = z < low ? low : z > high ? high : z;
  }
}

std::vector<double> CSideHeights::KnownOf(std::span<const double> meshHeights) const {
  std::vector<double> known;
  known.reserve(m_auKnown.size());
  for (const std::uint32_t vertex : m_auKnown) known.push_back(meshHeights[vertex]);
  return known;
}

std::vector<double> CSideHeights::Raised(std::span<const double> known) const {
  std::vector<double> heights(m_auKnownAt.size());
  Raise(known, heights);
  return heights;
}

std::vector<CSideHeights::CPlane> CSideHeights::RaisedPlanes(std::span<const double> known,
                                                             std::span<const double> heights) const {
  std::vector<CPlane> planes(PlaneCount());
  RaisePlanes(known, heights, planes);
  return planes;
}

void CSideHeights::RaisePlanes(std::span<const double> known, std::span<const double> heights,
                               std::span<CPlane> planes) const {
  for (std::size_t row = 0; row < m_aRows.size(); ++row) {
    if (m_aRows[row].m_uSlopes == kNone) continue;
    const std::span<const CTerm> terms = Terms(row);
    const CSlope* slope = &m_aSlopes[m_aRows[row].m_uSlopes];
    CPlane plane{.m_fZ = heights[m_aRows[row].m_uCopy]};
    for (const CTerm& term : terms) {
      plane.m_fSlopeX += slope->m_fX * known[term.m_uKnown];
      plane.m_fSlopeY += slope->m_fY * known[term.m_uKnown];
      ++slope;
    }
    const auto [low, high] = RangeOf(terms, known);
    plane.m_fLow = std::min(low, plane.m_fZ);
    plane.m_fHigh = std::max(high, plane.m_fZ);
    planes[row] = plane;
  }
}
