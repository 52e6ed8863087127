#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdlib>

#include "base/CPicture.h"
#include "support/gui/CScreenshot.h"

/// The colour of a pixel, (0, 0) at the bottom left. Throws std::out_of_range above the picture.
inline CRgb PixelOf(const CPicture& picture, int x, int y) {
  const std::size_t at =
      3 * (static_cast<std::size_t>(y) * static_cast<std::size_t>(picture.m_iWidth) + static_cast<std::size_t>(x));
  return {picture.m_aPixels.at(at), picture.m_aPixels.at(at + 1), picture.m_aPixels.at(at + 2)};
}

/// Largest difference of a channel.
inline int Distance(CRgb a, CRgb b) {
  return std::max({std::abs(a.m_uRed - b.m_uRed), std::abs(a.m_uGreen - b.m_uGreen), std::abs(a.m_uBlue - b.m_uBlue)});
}

/// Number of pixels that satisfy `holds(x, y)`.
template <class Condition>
std::size_t CountPixels(const CPicture& picture, Condition holds) {
  std::size_t count = 0;
  for (int y = 0; y < picture.m_iHeight; ++y) {
    for (int x = 0; x < picture.m_iWidth; ++x) count += holds(x, y) ? 1 : 0;
  }
  return count;
}

/// Number of pixels that are not the background's.
inline std::size_t Covered(const CPicture& picture) {
  return CountPixels(picture, [&](int x, int y) { return !(PixelOf(picture, x, y) == kBlack); });
}

/// Number of pixels that differ in two pictures of one size.
inline std::size_t Differing(const CPicture& a, const CPicture& b) {
  return CountPixels(a, [&](int x, int y) { return !(PixelOf(a, x, y) == PixelOf(b, x, y)); });
}
