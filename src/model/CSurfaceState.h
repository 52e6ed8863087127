#pragma once

#include <cstddef>
#include <vector>

#include "lattice/WaveletMode.h"

/// The height field of both resolutions as a value, apart from the subdivision that it lies on.
struct CSurfaceState {
  /// Heights at all lattice points (row * n + column), model units: of the current resolution, between the points in
  /// use as the tree interpolates them, and of the other one as it was left.
  std::vector<double> m_afHeights;
  std::vector<double> m_afOtherHeights;
  WaveletMode m_Mode = WaveletMode::New;  ///< of the basis

  /// Memory that it takes.
  std::size_t Bytes() const { return (m_afHeights.size() + m_afOtherHeights.size()) * sizeof(double); }
};
