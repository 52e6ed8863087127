#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

#include "base/CPicture.h"

/// 8-bit RGB pixels that lie in memory of someone else's, row after row, perhaps with something between the rows.
struct CPixelRows {
  std::span<const std::uint8_t> m_auBytes;  ///< from the first pixel on, red, green, blue
  int m_iWidth = 0;
  int m_iHeight = 0;
  std::size_t m_uStride = 0;  ///< bytes from the start of a row to that of the next, at least 3 * m_iWidth
};

/// A picture smaller by whole factors, of which each pixel is the mean of the `factorX` x `factorY` pixels that it
/// covers, to the nearest integer and up from the middle, per channel.
///
/// Blocks begin at the first pixel of the first row; the last ones of a row and a column may cover fewer pixels. So the
/// result has ceil(width / factorX) x ceil(height / factorY) pixels, and pixel x of it begins where pixel x * factorX
/// of the source does. Factors below 1 count as 1, those above the side as the side; without a pixel the result is
/// empty. One pass over the source. Throws std::bad_alloc.
CPicture AreaFiltered(const CPixelRows& source, int factorX, int factorY);
