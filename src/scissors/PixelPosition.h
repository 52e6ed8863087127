#pragma once

#include <array>

/// A pixel of a picture whose rows run from the top: column counted from the left, row from the top.
struct CPixelPosition {
  int m_iColumn = 0;
  int m_iRow = 0;

  friend bool operator==(const CPixelPosition&, const CPixelPosition&) = default;
};

/// The eight neighbours of a pixel, counter-clockwise from the right one. Even links are straight, odd ones diagonal;
/// link k + 4 leads back where link k came from.
inline constexpr int kLinkCount = 8;
inline constexpr std::array<CPixelPosition, kLinkCount> kLinkSteps{
    {{1, 0}, {1, -1}, {0, -1}, {-1, -1}, {-1, 0}, {-1, 1}, {0, 1}, {1, 1}}};
