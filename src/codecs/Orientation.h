#pragma once

#include <algorithm>
#include <cstddef>
#include <string_view>
#include <utility>
#include <vector>

// Photographs as the camera was held: the numbers of Exif, 1 to 8. Those above 4 exchange rows and columns.

/// The orientation in a block of Exif, with or without its name in front; 1 where there is none or the block is
/// damaged.
int ExifOrientation(std::string_view exif);

/// Whether rows become columns.
constexpr bool IsTransposed(int orientation) { return orientation > 4; }

namespace Turning {

/// Stored rows become columns; by square blocks, so that neither side of the copy leaves the cache.
/// The first row comes to the left or to the right, the first column to the top or to the bottom.
template <std::size_t kChannels, typename Sample>
std::vector<Sample> Transposed(const std::vector<Sample>& samples, std::size_t width, std::size_t height,
                               bool firstRowRight, bool firstColumnBottom) {
  constexpr std::size_t kBlock = 32;
  std::vector<Sample> turned(samples.size());
  for (std::size_t top = 0; top < height; top += kBlock) {
    for (std::size_t left = 0; left < width; left += kBlock) {
      for (std::size_t row = top; row < std::min(top + kBlock, height); ++row) {
        const std::size_t x = firstRowRight ? height - 1 - row : row;
        for (std::size_t column = left; column < std::min(left + kBlock, width); ++column) {
          const std::size_t y = firstColumnBottom ? column : width - 1 - column;
          std::copy_n(&samples[(row * width + column) * kChannels], kChannels, &turned[(y * height + x) * kChannels]);
        }
      }
    }
  }
  return turned;
}

/// Exchanges left and right.
template <std::size_t kChannels, typename Sample>
void MirrorRow(Sample* row, std::size_t width) {
  for (std::size_t left = 0, right = width; left + 1 < right; ++left)
    --right, std::swap_ranges(row + left * kChannels, row + (left + 1) * kChannels, row + right * kChannels);
}

}  // namespace Turning

/// Turns rows that came from the top of a stored picture, `kChannels` samples a pixel, into an upright one with its
/// bottom row first. `width` and `height` are those of the stored picture and become those of the upright one.
template <std::size_t kChannels, typename Sample>
void MakeUpright(std::vector<Sample>& samples, int& width, int& height, int orientation) {
  const auto columns = static_cast<std::size_t>(width);
  const auto rows = static_cast<std::size_t>(height);
  if (samples.empty()) return;
  if (IsTransposed(orientation)) {
    const bool right = orientation == 6 || orientation == 7;
    const bool bottom = orientation == 7 || orientation == 8;
    samples = Turning::Transposed<kChannels>(samples, columns, rows, right, bottom);
    std::swap(width, height);
    return;
  }
  const bool topFirst = orientation == 1 || orientation == 2;
  const auto rowAt = [&](std::size_t row) { return samples.data() + row * columns * kChannels; };
  for (std::size_t row = 0; topFirst && row < rows / 2; ++row)
    std::swap_ranges(rowAt(row), rowAt(row + 1), rowAt(rows - 1 - row));
  if (orientation != 2 && orientation != 3) return;
  for (std::size_t row = 0; row < rows; ++row) Turning::MirrorRow<kChannels>(rowAt(row), columns);
}
