#include "mesh/CSideHeights.h"

#include <algorithm>

#include "mesh/CSideRaiser.h"
#include "mesh/CSideSearch.h"

CSideHeights::CSideHeights(const CTearPatch& patch, const CTearSides& sides, bool planes, const CExportSteps& steps) {
  CSideSearch(patch, sides, *this).FindAll(planes, steps);
}

std::vector<double> CSideHeights::RaisedOnce(const CTearPatch& patch, const CTearSides& sides,
                                             const std::function<double(std::uint32_t)>& meshHeights,
                                             const CExportSteps& steps) {
  return CSideRaiser(patch, sides).Raise(meshHeights, steps);
}

std::span<const CSideHeights::CTerm> CSideHeights::Terms(std::size_t row) const {
  const std::size_t first = row == 0 ? 0 : m_aRows[row - 1].m_uEnd;
  return std::span(m_aTerms).subspan(first, m_aRows[row].m_uEnd - first);
}

CSideHeights::CRange CSideHeights::RangeOf(std::span<const CTerm> terms, std::span<const double> known) {
  CRange range;
  for (const CTerm& term : terms) range.Add(known[term.m_uKnown]);
  return range.Widened();
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
    heights[copy] = RangeOf(terms, known).Within(z);
  }
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
    const CRange range = RangeOf(terms, known);
    plane.m_fLow = std::min(range.m_fLow, plane.m_fZ);
    plane.m_fHigh = std::max(range.m_fHigh, plane.m_fZ);
    planes[row] = plane;
  }
}
