#include "reference/Isolines.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <span>
#include <unordered_map>

#include "reference/CDepthMap.h"

namespace {

constexpr std::uint32_t kNone = 0xFFFFFFFF;

/// Replaces each value of a line by the largest within `radius` of it, in two passes over blocks of the window's
/// length.
class CLineMaximum {
 public:
  explicit CLineMaximum(int radius) : m_uRadius(static_cast<std::size_t>(radius)) {}

  void Apply(std::span<float> line) {
    const std::size_t window = 2 * m_uRadius + 1;
    m_afPadded.assign(line.size() + 2 * m_uRadius, -HUGE_VALF);
    std::ranges::copy(line, m_afPadded.begin() + static_cast<std::ptrdiff_t>(m_uRadius));
    m_afBefore = m_afPadded;
    for (std::size_t k = 1; k < m_afBefore.size(); ++k)
      if (k % window != 0) m_afBefore[k] = std::max(m_afBefore[k], m_afBefore[k - 1]);
    m_afAfter = m_afPadded;
    for (std::size_t k = m_afAfter.size() - 1; k > 0; --k)
      if (k % window != 0) m_afAfter[k - 1] = std::max(m_afAfter[k - 1], m_afAfter[k]);
    for (std::size_t k = 0; k < line.size(); ++k) line[k] = std::max(m_afAfter[k], m_afBefore[k + window - 1]);
  }

 private:
  std::size_t m_uRadius;
  std::vector<float> m_afPadded;
  std::vector<float> m_afBefore;  ///< the largest from the start of the block on
  std::vector<float> m_afAfter;   ///< the largest up to its end
};

// The largest of the values times `sign` in the square around each pixel; below all where there is none.
std::vector<float> LargestAround(const CDepthReading& reading, int radius, double sign) {
  const auto width = static_cast<std::size_t>(reading.Width());
  const auto height = static_cast<std::size_t>(reading.Height());
  std::vector<float> largest(width * height);
  CLineMaximum maximum(radius);
  for (std::size_t r = 0; r < height; ++r) {
    for (std::size_t c = 0; c < width; ++c) {
      const double value = sign * reading.At(static_cast<int>(c), static_cast<int>(r));
      largest[r * width + c] = std::isnan(value) ? -HUGE_VALF : static_cast<float>(value);
    }
    maximum.Apply(std::span(largest).subspan(r * width, width));
  }
  // As many columns at once as lie together in the memory's smallest pieces.
  constexpr std::size_t kTogether = 16;
  std::vector<std::vector<float>> columns(kTogether, std::vector<float>(height));
  for (std::size_t c = 0; c < width; c += kTogether) {
    const std::size_t count = std::min(kTogether, width - c);
    for (std::size_t r = 0; r < height; ++r)
      for (std::size_t k = 0; k < count; ++k) columns[k][r] = largest[r * width + c + k];
    for (std::size_t k = 0; k < count; ++k) maximum.Apply(columns[k]);
    for (std::size_t r = 0; r < height; ++r)
      for (std::size_t k = 0; k < count; ++k) largest[r * width + c + k] = columns[k][r];
  }
  return largest;
}

/// The crossings of one level with the lines between neighbouring pixels, and the pieces that join them.
class CLevelTracer {
 public:
  CLevelTracer(const CDepthReading& reading, double level, const std::vector<std::uint8_t>& steep)
      : m_Reading(reading), m_fLevel(level), m_auSteep(steep), m_uWidth(static_cast<std::uint64_t>(reading.Width())) {}

  std::vector<CIsoline> Trace();

 private:
  /// Names the line from a pixel to its right (0) or upper (1) neighbour.
  using CCrossing = std::uint64_t;
  using CPiece = std::array<CCrossing, 2>;

  void AddCell(int column, int row);
  void Join(CCrossing a, CCrossing b);
  std::uint64_t PixelAt(int column, int row) const {
    return static_cast<std::uint64_t>(row) * m_uWidth + static_cast<std::uint64_t>(column);
  }
  bool IsSteep(CCrossing crossing) const;
  CPlanePoint PlaceOf(CCrossing crossing) const;
  std::uint32_t NextPiece(CCrossing crossing) const;
  std::vector<CCrossing> Follow(CCrossing from);

  const CDepthReading& m_Reading;
  double m_fLevel;
  const std::vector<std::uint8_t>& m_auSteep;
  std::uint64_t m_uWidth;
  std::vector<CPiece> m_aPieces;
  std::vector<bool> m_abUsed;
  std::unordered_map<CCrossing, std::array<std::uint32_t, 2>> m_aPiecesAt;
};

bool CLevelTracer::IsSteep(CCrossing crossing) const {
  const std::uint64_t pixel = crossing / 2;
  return m_auSteep[pixel] != 0 || m_auSteep[crossing % 2 == 0 ? pixel + 1 : pixel + m_uWidth] != 0;
}

CPlanePoint CLevelTracer::PlaceOf(CCrossing crossing) const {
  const int column = static_cast<int>(crossing / 2 % m_uWidth);
  const int row = static_cast<int>(crossing / 2 / m_uWidth);
  const bool right = crossing % 2 == 0;
  const double a = m_Reading.At(column, row);
  const double b = right ? m_Reading.At(column + 1, row) : m_Reading.At(column, row + 1);
  const double share = (m_fLevel - a) / (b - a);
  return {column + (right ? share : 0.0), row + (right ? 0.0 : share)};
}

void CLevelTracer::Join(CCrossing a, CCrossing b) {
  if (!IsSteep(a) || !IsSteep(b)) return;
  const auto number = static_cast<std::uint32_t>(m_aPieces.size());
  m_aPieces.push_back({a, b});
  for (const CCrossing end : {a, b}) {
    const auto at = m_aPiecesAt.try_emplace(end, std::array{kNone, kNone}).first;
    (at->second[0] == kNone ? at->second[0] : at->second[1]) = number;
  }
}

// Where all four sides are crossed, the mean of the corners says which two of them belong together.
void CLevelTracer::AddCell(int column, int row) {
  const std::array<double, 4> corners{m_Reading.At(column, row), m_Reading.At(column + 1, row),
                                      m_Reading.At(column + 1, row + 1), m_Reading.At(column, row + 1)};
  if (std::isnan(corners[0] + corners[1] + corners[2] + corners[3])) return;
  std::array<bool, 4> above{};
  for (std::size_t k = 0; k < 4; ++k) above[k] = corners[k] >= m_fLevel;
  const std::array<CCrossing, 4> sides{2 * PixelAt(column, row), 2 * PixelAt(column + 1, row) + 1,
                                       2 * PixelAt(column, row + 1), 2 * PixelAt(column, row) + 1};
  std::array<CCrossing, 4> crossed{};
  std::size_t count = 0;
  for (std::size_t k = 0; k < 4; ++k)
    if (above[k] != above[(k + 1) % 4]) crossed[count++] = sides[k];
  if (count == 2) Join(crossed[0], crossed[1]);
  if (count != 4) return;
  const bool middle = (corners[0] + corners[1] + corners[2] + corners[3]) / 4 >= m_fLevel;
  const std::size_t first = middle == above[0] ? 0 : 3;
  for (std::size_t k = first; k < first + 4; k += 2) Join(sides[k % 4], sides[(k + 1) % 4]);
}

std::uint32_t CLevelTracer::NextPiece(CCrossing crossing) const {
  for (const std::uint32_t piece : m_aPiecesAt.at(crossing))
    if (piece != kNone && !m_abUsed[piece]) return piece;
  return kNone;
}

std::vector<CLevelTracer::CCrossing> CLevelTracer::Follow(CCrossing from) {
  std::vector<CCrossing> way;
  for (std::uint32_t piece = NextPiece(from); piece != kNone; piece = NextPiece(from)) {
    m_abUsed[piece] = true;
    from = m_aPieces[piece][0] == from ? m_aPieces[piece][1] : m_aPieces[piece][0];
    way.push_back(from);
  }
  return way;
}

std::vector<CIsoline> CLevelTracer::Trace() {
  for (int row = 0; row + 1 < m_Reading.Height(); ++row) {
    for (int column = 0; column + 1 < m_Reading.Width(); ++column) {
      const std::uint64_t low = PixelAt(column, row);
      const std::uint64_t high = low + m_uWidth;
      if ((m_auSteep[low] | m_auSteep[low + 1] | m_auSteep[high] | m_auSteep[high + 1]) != 0) AddCell(column, row);
    }
  }
  m_abUsed.assign(m_aPieces.size(), false);
  std::vector<CIsoline> lines;
  for (std::size_t piece = 0; piece < m_aPieces.size(); ++piece) {
    if (m_abUsed[piece]) continue;
    const CCrossing start = m_aPieces[piece][0];
    std::vector<CCrossing> way = Follow(start);
    const bool closed = way.back() == start;
    std::vector<CCrossing> back = closed ? std::vector<CCrossing>() : Follow(start);
    std::ranges::reverse(back);
    if (!closed) back.push_back(start);
    back.insert(back.end(), way.begin(), way.end());
    CIsoline& line = lines.emplace_back();
    line.m_bClosed = closed;
    for (const CCrossing crossing : back) line.m_aPlaces.push_back(PlaceOf(crossing));
  }
  return lines;
}

}  // namespace

double CIsoline::Length() const {
  double length = 0.0;
  for (std::size_t k = m_bClosed ? 0 : 1; k < m_aPlaces.size(); ++k) {
    const CPlanePoint& before = k == 0 ? m_aPlaces.back() : m_aPlaces[k - 1];
    length += std::hypot(m_aPlaces[k].x - before.x, m_aPlaces[k].y - before.y);
  }
  return length;
}

std::vector<std::uint8_t> SteepPixels(const CDepthReading& reading, int radius, double range) {
  const std::vector<float> high = LargestAround(reading, radius, 1.0);
  const std::vector<float> low = LargestAround(reading, radius, -1.0);
  std::vector<std::uint8_t> steep(high.size());
  for (std::size_t k = 0; k < steep.size(); ++k) steep[k] = high[k] + low[k] > static_cast<float>(range) ? 1 : 0;
  return steep;
}

std::vector<CIsoline> IsolinesAt(const CDepthReading& reading, double level, const std::vector<std::uint8_t>& steep) {
  return CLevelTracer(reading, level, steep).Trace();
}
