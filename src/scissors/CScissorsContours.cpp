#include "scissors/CScissorsContours.h"

#include <algorithm>
#include <optional>
#include <utility>

#include "scissors/MinimumPathTree.h"

namespace {

CPathPixel PathPixel(CPixelPosition p, bool isKeyPoint) {
  return {static_cast<std::int16_t>(p.m_iColumn), static_cast<std::int16_t>(p.m_iRow), isKeyPoint};
}

}  // namespace

void CScissorsContours::Begin(CPixelPosition first) {
  m_InProgress = {};
  m_InProgress.m_aPixels.push_back(PathPixel(first, true));
}

void CScissorsContours::Commit(const CMinimumPathTree& tree, CPixelPosition p) {
  std::vector<CPathPixel>& pixels = m_InProgress.m_aPixels;
  const auto known = static_cast<std::ptrdiff_t>(pixels.size());
  // The path is found from its end; the seed, which has no previous pixel, is there already.
  bool isKeyPoint = true;
  for (std::optional<CPixelPosition> previous; (previous = tree.Previous(p)).has_value(); p = *previous) {
    pixels.push_back(PathPixel(p, isKeyPoint));
    isKeyPoint = false;
  }
  std::reverse(pixels.begin() + known, pixels.end());
}

bool CScissorsContours::TakeBack() {
  if (!IsInProgress()) return false;
  std::vector<CPathPixel>& pixels = m_InProgress.m_aPixels;
  pixels.pop_back();
  while (!pixels.empty() && !pixels.back().m_bKeyPoint) pixels.pop_back();
  return true;
}

void CScissorsContours::Finish(bool closed) {
  m_InProgress.m_bClosed = closed;
  m_aTraced.push_back(std::exchange(m_InProgress, {}));
}

bool CScissorsContours::SelectAt(CPixelPosition p) {
  const auto passes = [p](const CTracedContour& contour) {
    return std::any_of(contour.m_aPixels.begin(), contour.m_aPixels.end(),
                       [p](const CPathPixel& pixel) { return pixel.Position() == p; });
  };
  const auto found = std::find_if(m_aTraced.begin(), m_aTraced.end(), passes);
  if (found == m_aTraced.end()) return false;
  return std::exchange(m_iSelected, static_cast<int>(found - m_aTraced.begin())) != m_iSelected;
}

bool CScissorsContours::RemoveSelected() {
  if (m_iSelected == kNone) return false;
  std::swap(m_aTraced[static_cast<std::size_t>(m_iSelected)], m_aTraced.back());
  m_aTraced.pop_back();
  m_iSelected = kNone;
  return true;
}
