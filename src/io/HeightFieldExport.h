#pragma once

#include <iosfwd>

class CGrid;

/// Samples of the largest height field that users may ask for: a slip of the keyboard must not fill a disk.
inline constexpr long long kMostHeightSamples = 100'000'000;

/// Whether a height field of that size, sensible or not, stays within the bound.
inline constexpr bool IsHeightFieldSize(int width, int height) {
  return width < 1 || height < 1 || static_cast<long long>(width) * height <= kMostHeightSamples;
}

/// The surface's heights on a regular grid over the whole model, its border included: one line of `width` numbers per
/// row, each followed by a blank, from the row at y0 up and in each row from x0 on.
///
/// A width or height of 1 leaves the places undetermined and every height not a number; below 1 nothing is written but
/// the ends of lines, if any. O(width * height * level).
void WriteHeightField(std::ostream& out, const CGrid& grid, int width, int height);
