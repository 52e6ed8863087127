#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdlib>

#include "base/CPicture.h"
#include "support/EncodedRows.h"

/// The pixel in a column and a row from the top.
inline CRgb PixelAt(const CPicture& picture, int x, int y) {
  const auto row = static_cast<std::size_t>(picture.m_iHeight - 1 - y);
  const std::size_t at = 3 * (row * static_cast<std::size_t>(picture.m_iWidth) + static_cast<std::size_t>(x));
  return {picture.m_aPixels[at], picture.m_aPixels[at + 1], picture.m_aPixels[at + 2]};
}

/// A picture with the colour that `colour(x, y)` gives, y from the top.
template <typename Colour>
CPicture PictureOf(int width, int height, Colour colour) {
  CPicture picture{width, height, {}};
  for (int y = height - 1; y >= 0; --y) {
    for (int x = 0; x < width; ++x) {
      const CRgb pixel = colour(x, y);
      picture.m_aPixels.insert(picture.m_aPixels.end(), pixel.begin(), pixel.end());
    }
  }
  return picture;
}

/// Squares of 8 pixels, each of another colour, so that no format that thinks in such squares loses much.
inline CPicture Squares(int width = 48, int height = 40) {
  return PictureOf(width, height, [](int x, int y) {
    const int column = x / 8;
    const int row = y / 8;
    return CRgb{static_cast<std::uint8_t>(32 * column), static_cast<std::uint8_t>(48 * row),
                static_cast<std::uint8_t>(40 * column + 13 * row)};
  });
}

/// Light grey with a red square in the top left corner and a blue one in the top right one.
inline CPicture MarkedCorners() {
  return PictureOf(48, 32, [](int x, int y) -> CRgb {
    if (y < 16 && x < 16) return {255, 0, 0};
    if (y < 16 && x >= 32) return {0, 0, 255};
    return {200, 200, 200};
  });
}

/// The mean difference of two pictures of one size, in steps of a channel; 255 where the sizes differ.
inline double MeanDifference(const CPicture& a, const CPicture& b) {
  if (a.m_iWidth != b.m_iWidth || a.m_aPixels.size() != b.m_aPixels.size() || a.m_aPixels.empty()) return 255;
  double sum = 0;
  for (std::size_t k = 0; k < a.m_aPixels.size(); ++k) sum += std::abs(a.m_aPixels[k] - b.m_aPixels[k]);
  return sum / static_cast<double>(a.m_aPixels.size());
}
