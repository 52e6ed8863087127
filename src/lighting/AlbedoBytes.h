#pragma once

#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>

/// The bytes of a photograph as intensities from 0 to 1.
inline std::array<double, 256> PhotographIntensities() {
  std::array<double, 256> intensities{};
  for (std::size_t k = 0; k < intensities.size(); ++k) intensities[k] = static_cast<double>(k) / 255;
  return intensities;
}

/// What a surface of that shading must reflect to have that intensity; 0 where the shading is not positive.
inline double AlbedoOf(double intensity, double shading) { return shading > 0 ? intensity / shading : 0.0; }

/// A value truncated and held to 0..255; what is not finite gives 0.
inline std::uint8_t ClampedByte(double value) {
  // Not-a-number and what is negative fail the first test.
  if (value > 0 && value < 256) return static_cast<std::uint8_t>(static_cast<std::int32_t>(value));
  return value > 0 && std::isfinite(value) ? 255 : 0;
}

/// A new illumination, 1 being white, under a shoulder that lets bright places near white run into it instead of
/// cutting them off: up to 0.8 as it is, above that 0.8 + 0.2 (1 - e^(-(x - 0.8) / 0.2)), which goes on with the same
/// slope and stays below 1. What is not finite stays as it is.
inline double Shouldered(double x) {
  constexpr double kBegin = 0.8;
  constexpr double kRest = 1 - kBegin;
  if (!(x > kBegin) || !std::isfinite(x)) return x;
  return kBegin + kRest * -std::expm1(-(x - kBegin) / kRest);
}
