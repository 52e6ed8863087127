#pragma once

#include <cmath>
#include <type_traits>

/// Whether two channels of a pixel hold the same, be it only that neither is a number.
template <typename Sample>
bool IsSameSample(Sample a, Sample b) {
  if constexpr (std::is_floating_point_v<Sample>) {
    if (std::isnan(a) && std::isnan(b)) return true;
  }
  return a == b;
}
