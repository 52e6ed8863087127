#pragma once

#include <bit>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "reference/CDepthMap.h"

/// A map of floats from a function of the shares of its sides at the middle of each pixel.
template <typename Field>
CDepthMap DepthMapOf(int width, int height, const Field& field) {
  std::vector<float> values;
  for (int row = 0; row < height; ++row)
    for (int column = 0; column < width; ++column)
      values.push_back(static_cast<float>(field((column + 0.5) / width, (row + 0.5) / height)));
  return {width, height, 32, std::move(values)};
}

/// The same, shared.
template <typename Field>
std::shared_ptr<const CDepthMap> SharedDepthMap(int width, int height, const Field& field) {
  return std::make_shared<const CDepthMap>(DepthMapOf(width, height, field));
}

/// The map as a PFM.
inline std::string PfmOf(const CDepthMap& map) {
  std::string bytes = "Pf\n" + std::to_string(map.Width()) + ' ' + std::to_string(map.Height()) + "\n-1\n";
  for (const float value : map.Values()) {
    const auto number = std::bit_cast<std::uint32_t>(value);
    for (int k = 0; k < 4; ++k) bytes += static_cast<char>(number >> (8 * k) & 0xFF);
  }
  return bytes;
}

/// Blurred by a Gaussian of so many pixels.
inline CDepthMap Blurred(const CDepthMap& map, double sigma) {
  const int radius = static_cast<int>(std::ceil(3 * sigma));
  std::vector<double> kernel;
  for (int k = -radius; k <= radius; ++k) kernel.push_back(std::exp(-k * k / (2 * sigma * sigma)));
  const auto along = [&](const std::vector<float>& from, int stepX, int stepY) {
    std::vector<float> to(from.size());
    for (int row = 0; row < map.Height(); ++row) {
      for (int column = 0; column < map.Width(); ++column) {
        double sum = 0.0;
        double weights = 0.0;
        for (int k = -radius; k <= radius; ++k) {
          const int c = column + k * stepX;
          const int r = row + k * stepY;
          if (c < 0 || r < 0 || c >= map.Width() || r >= map.Height()) continue;
          const double weight = kernel[static_cast<std::size_t>(k + radius)];
          sum += weight * from[static_cast<std::size_t>(r * map.Width() + c)];
          weights += weight;
        }
        to[static_cast<std::size_t>(row * map.Width() + column)] = static_cast<float>(sum / weights);
      }
    }
    return to;
  };
  const std::vector<float> values(map.Values().begin(), map.Values().end());
  return {map.Width(), map.Height(), map.Bits(), along(along(values, 1, 0), 0, 1)};
}
