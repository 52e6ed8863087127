#pragma once

#include <cstdint>
#include <vector>

/// A picture of 8-bit RGB pixels, bottom row first, rows one after the other without gaps.
struct CPicture {
  int m_iWidth = 0;
  int m_iHeight = 0;
  std::vector<std::uint8_t> m_aPixels;  ///< red, green, blue; 3 * width * height bytes
};
