#pragma once

#include <algorithm>
#include <array>
#include <cstdint>
#include <random>
#include <utility>
#include <vector>

#include "scissors/CTopDownImage.h"
#include "scissors/MinimumPathTree.h"

/// A picture whose colours are `colour(column, row)`.
template <typename Colour>
CTopDownImage TopDownImageOf(int width, int height, Colour&& colour) {
  CTopDownImage image{width, height, {}};
  for (int row = 0; row < height; ++row) {
    for (int column = 0; column < width; ++column) {
      const std::array<int, 3> rgb = colour(column, row);
      for (const int value : rgb) image.m_aPixels.push_back(static_cast<std::uint8_t>(value));
    }
  }
  return image;
}

inline CTopDownImage GreyPicture(int width, int height, int grey = 90) {
  return TopDownImageOf(width, height, [grey](int, int) { return std::array{grey, grey, grey}; });
}

/// Few levels make many paths of equal cost.
inline CTopDownImage RandomTopDownImage(int width, int height, unsigned seed, int levels = 256) {
  std::mt19937 engine(seed);
  const auto value = [&] { return static_cast<int>(engine() % static_cast<unsigned>(levels)) * (255 / (levels - 1)); };
  return TopDownImageOf(width, height, [&](int, int) { return std::array{value(), value(), value()}; });
}

/// Black left of `column`, white from there on.
inline CTopDownImage StepPicture(int width, int height, int column) {
  return TopDownImageOf(width, height, [column](int x, int) {
    const int grey = x < column ? 0 : 255;
    return std::array{grey, grey, grey};
  });
}

/// The complete tree of a seed.
inline CMinimumPathTree CompleteTree(const CLinkCosts& costs, CPixelPosition seed) {
  CMinimumPathTree tree(costs);
  const auto pixels = static_cast<std::size_t>(costs.m_iWidth) * static_cast<std::size_t>(costs.m_iHeight);
  tree.Start(seed, pixels);
  tree.Advance(pixels);
  return tree;
}

/// From the seed to `p`, both included.
inline std::vector<CPixelPosition> PathTo(const CMinimumPathTree& tree, CPixelPosition p) {
  std::vector<CPixelPosition> path{p};
  while (const auto previous = tree.Previous(path.back())) path.push_back(*previous);
  std::reverse(path.begin(), path.end());
  return path;
}
