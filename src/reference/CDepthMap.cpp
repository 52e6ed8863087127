#include "reference/CDepthMap.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <utility>

namespace {

constexpr int kFloatBits = 32;

/// The two pixels around a place and the share of the second one.
struct CBetween {
  CBetween(double place, int count) {
    m_iFirst = std::clamp(static_cast<int>(std::floor(place)), 0, count - 2);
    m_fShare = place - m_iFirst;
  }
  int m_iFirst;
  double m_fShare;
};

// Calls `visit` with the index of each pixel beside, above and below one.
template <typename Visit>
void ForNeighbours(std::size_t pixel, int width, int height, const Visit& visit) {
  const auto stride = static_cast<std::size_t>(width);
  const std::size_t column = pixel % stride;
  const std::size_t row = pixel / stride;
  if (column + 1 < stride) visit(pixel + 1);
  if (column > 0) visit(pixel - 1);
  if (row + 1 < static_cast<std::size_t>(height)) visit(pixel + stride);
  if (row > 0) visit(pixel - stride);
}

// Of those that have a value. A float would not hold the sum of the largest ones.
float MeanOfNeighbours(std::size_t pixel, int width, int height, const std::vector<float>& values) {
  double sum = 0.0;
  double count = 0.0;
  ForNeighbours(pixel, width, height, [&](std::size_t neighbour) {
    if (std::isnan(values[neighbour])) return;
    sum += values[neighbour];
    count += 1.0;
  });
  return static_cast<float>(sum / count);
}

}  // namespace

CDepthMap::CDepthMap(int width, int height, int bits, std::vector<float> values)
    : m_iWidth(width), m_iHeight(height), m_iBits(bits), m_afValues(std::move(values)) {}

bool CDepthMap::operator==(const CDepthMap& other) const {
  return m_iWidth == other.m_iWidth && m_iHeight == other.m_iHeight && m_iBits == other.m_iBits &&
         m_afValues.size() == other.m_afValues.size() &&
         std::memcmp(m_afValues.data(), other.m_afValues.data(), m_afValues.size() * sizeof(float)) == 0;
}

CDepthReading::CDepthReading(const CDepthMap& map, bool zeroIsUnknown)
    : m_Map(map),
      m_bZeroIsUnknown(zeroIsUnknown && map.Bits() != kFloatBits),
      m_fNone(std::numeric_limits<float>::quiet_NaN()) {
  double sum = 0.0;
  m_fLow = HUGE_VAL;
  m_fHigh = -HUGE_VAL;
  for (const float value : map.Values()) {
    if (!IsValue(value)) continue;
    ++m_uKnown;
    sum += value;
    m_fLow = std::min<double>(m_fLow, value);
    m_fHigh = std::max<double>(m_fHigh, value);
  }
  if (m_uKnown == 0) m_fLow = m_fHigh = 0.0;
  m_fMiddle = (m_fLow + m_fHigh) / 2;
  if (m_fHigh > m_fLow) m_fPerUnit = 2 / (m_fHigh - m_fLow);
  if (m_uKnown > 0) m_fMean = Normalised(sum / static_cast<double>(m_uKnown));
}

bool CDepthReading::IsValue(float value) const { return std::isfinite(value) && !(m_bZeroIsUnknown && value == 0.0F); }

double CDepthReading::Bilinear(double column, double row) const {
  const CBetween x(column, Width());
  const CBetween y(row, Height());
  double sum = 0.0;
  for (int dy = 0; dy < 2; ++dy) {
    for (int dx = 0; dx < 2; ++dx) {
      const double weight = (dx == 0 ? 1 - x.m_fShare : x.m_fShare) * (dy == 0 ? 1 - y.m_fShare : y.m_fShare);
      if (weight != 0.0) sum += weight * At(x.m_iFirst + dx, y.m_iFirst + dy);
    }
  }
  return sum;
}

// From the known pixels outwards, ring by ring: a pixel of the next ring is the mean of its neighbours in those before.
std::vector<float> CDepthReading::Filled() const {
  std::vector<float> filled(m_Map.Values().size(), 0.0F);
  if (m_uKnown == 0) return filled;
  std::vector<std::size_t> ring;
  for (std::size_t k = 0; k < filled.size(); ++k) {
    filled[k] = IsValue(m_Map.Values()[k]) ? m_Map.Values()[k] : m_fNone;
    if (!std::isnan(filled[k])) ring.push_back(k);
  }
  std::vector<std::size_t> next;
  std::vector<float> means;
  for (; !ring.empty(); ring.swap(next)) {
    next.clear();
    for (const std::size_t k : ring)
      ForNeighbours(k, Width(), Height(), [&](std::size_t n) {
        if (std::isnan(filled[n])) next.push_back(n);
      });
    std::ranges::sort(next);
    next.erase(std::unique(next.begin(), next.end()), next.end());
    means.clear();
    for (const std::size_t k : next) means.push_back(MeanOfNeighbours(k, Width(), Height(), filled));
    for (std::size_t k = 0; k < next.size(); ++k) filled[next[k]] = means[k];
  }
  return filled;
}
