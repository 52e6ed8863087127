#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "scissors/PixelPosition.h"

class CTextureImages;
struct CPicture;

/// RGB pixels with the top row first, as the scissors see the photograph; rows follow each other without gaps.
struct CTopDownImage {
  int m_iWidth = 0;
  int m_iHeight = 0;
  std::vector<std::uint8_t> m_aPixels;  ///< red, green, blue; 3 * width * height bytes

  /// Of a pixel of the image.
  std::array<std::uint8_t, 3> ColourAt(CPixelPosition p) const {
    const std::size_t first = 3 * (static_cast<std::size_t>(p.m_iRow) * static_cast<std::size_t>(m_iWidth) +
                                   static_cast<std::size_t>(p.m_iColumn));
    return {m_aPixels[first], m_aPixels[first + 1], m_aPixels[first + 2]};
  }
};

/// A copy of the photograph alone, without its padding, rows reversed. Empty where there is no picture.
CTopDownImage CopyPhotograph(const CTextureImages& images);
/// The same of a picture.
CTopDownImage TopDown(const CPicture& picture);
