#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "base/CPicture.h"

using CRgb = std::array<std::uint8_t, 3>;

/// The pixels from the top, as nearly all formats have them.
inline std::vector<CRgb> TopFirst(const CPicture& picture) {
  std::vector<CRgb> pixels;
  for (int y = picture.m_iHeight - 1; y >= 0; --y) {
    for (int x = 0; x < picture.m_iWidth; ++x) {
      const std::uint8_t* const at = &picture.m_aPixels[3 * static_cast<std::size_t>(y * picture.m_iWidth + x)];
      pixels.push_back({at[0], at[1], at[2]});
    }
  }
  return pixels;
}

/// Cyan, magenta, yellow and black that make the colour, 255 for full ink: as much black as there can be.
inline std::array<std::uint8_t, 4> InksOf(const CRgb& pixel) {
  const int light = std::max({pixel[0], pixel[1], pixel[2]});
  const auto ink = [light](int channel) {
    return static_cast<std::uint8_t>(light == 0 ? 0 : (255 * (light - channel) + light / 2) / light);
  };
  return {ink(pixel[0]), ink(pixel[1]), ink(pixel[2]), static_cast<std::uint8_t>(255 - light)};
}
