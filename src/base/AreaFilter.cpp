#include "base/AreaFilter.h"

#include <algorithm>
#include <array>
#include <vector>

namespace {

constexpr std::size_t kChannels = 3;

// So many rows of bytes add up to what 16 bits hold.
constexpr std::size_t kRowsOfShortSums = 257;

// Sums of columns over some rows. In pieces of a fixed length, each copied first so that nothing can be taken for
// written over by the sums: compilers make vectors of them.
template <typename Sum>
void AddRow(const std::uint8_t* row, std::vector<Sum>& sums) {
  constexpr std::size_t kPiece = 64;
  std::array<std::uint8_t, kPiece> piece{};
  std::size_t k = 0;
  for (; k + kPiece <= sums.size(); k += kPiece) {
    std::copy_n(row + k, kPiece, piece.data());
    Sum* const sum = sums.data() + k;
    for (std::size_t j = 0; j < kPiece; ++j) sum[j] = static_cast<Sum>(sum[j] + piece[j]);
  }
  for (; k < sums.size(); ++k) sums[k] = static_cast<Sum>(sums[k] + row[k]);
}

// How many bytes make up a mean.
struct CCount {
  explicit CCount(std::size_t bytes)
      : m_iHalf(static_cast<std::int64_t>(bytes / 2)), m_fInverse(1.0 / static_cast<double>(bytes)) {}
  std::int64_t m_iHalf;
  double m_fInverse;
};

// The quarter keeps a quotient that is whole from falling below itself, and moves no other one to the next integer, as
// sums are whole.
std::uint8_t Mean(std::int64_t sum, const CCount& count) {
  constexpr double kQuarter = 0.25;
  return static_cast<std::uint8_t>((static_cast<double>(sum + count.m_iHalf) + kQuarter) * count.m_fInverse);
}

// The pixel that stands for `columns` columns.
template <typename Sum>
void WritePixel(const Sum* sums, std::size_t columns, const CCount& count, std::uint8_t* pixel) {
  std::int64_t red = 0;
  std::int64_t green = 0;
  std::int64_t blue = 0;
  for (std::size_t k = 0; k < columns; ++k, sums += kChannels) {
    red += sums[0];
    green += sums[1];
    blue += sums[2];
  }
  pixel[0] = Mean(red, count);
  pixel[1] = Mean(green, count);
  pixel[2] = Mean(blue, count);
}

template <typename Sum>
void Filter(const CPixelRows& source, std::size_t stepX, std::size_t stepY, std::uint8_t* pixel) {
  const auto width = static_cast<std::size_t>(source.m_iWidth);
  const auto height = static_cast<std::size_t>(source.m_iHeight);
  std::vector<Sum> sums(kChannels * width);
  for (std::size_t y = 0; y < height; y += stepY) {
    const std::size_t end = std::min(y + stepY, height);
    std::ranges::fill(sums, Sum{0});
    for (std::size_t row = y; row < end; ++row) AddRow(source.m_auBytes.data() + row * source.m_uStride, sums);
    const CCount count(stepX * (end - y));
    std::size_t x = 0;
    for (; x + stepX <= width; x += stepX, pixel += kChannels)
      WritePixel(sums.data() + kChannels * x, stepX, count, pixel);
    if (x == width) continue;
    WritePixel(sums.data() + kChannels * x, width - x, CCount((width - x) * (end - y)), pixel);
    pixel += kChannels;
  }
}

}  // namespace

CPicture AreaFiltered(const CPixelRows& source, int factorX, int factorY) {
  if (source.m_iWidth < 1 || source.m_iHeight < 1) return {};
  const int stepX = std::clamp(factorX, 1, source.m_iWidth);
  const int stepY = std::clamp(factorY, 1, source.m_iHeight);
  CPicture result{(source.m_iWidth - 1) / stepX + 1, (source.m_iHeight - 1) / stepY + 1, {}};
  result.m_aPixels.resize(kChannels * static_cast<std::size_t>(result.m_iWidth) *
                          static_cast<std::size_t>(result.m_iHeight));
  const auto rows = static_cast<std::size_t>(stepY);
  const auto filter = rows <= kRowsOfShortSums ? Filter<std::uint16_t> : Filter<std::uint32_t>;
  filter(source, static_cast<std::size_t>(stepX), rows, result.m_aPixels.data());
  return result;
}
