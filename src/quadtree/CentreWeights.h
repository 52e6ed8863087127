#pragma once

#include <array>
#include <cstddef>
#include <span>

class CLattice;
class CQuadT;

/// The value at a leaf's centre as a combination of at most six points on its border; the weights sum to 1.
struct CCentreWeights {
  std::array<std::size_t, 6> m_auPoints{};  ///< lattice indices
  std::array<double, 6> m_afWeights{};
  std::size_t m_uCount = 0;

  /// The combination of `values`, one per lattice point.
  double Of(std::span<const double> values) const {
    double sum = 0.0;
    for (std::size_t k = 0; k < m_uCount; ++k) sum += values[m_auPoints[k]] * m_afWeights[k];
    return sum;
  }
};

/// Weights of the centre of an active leaf, in the counter-clockwise order of the border from the lower left corner.
///
/// The centre is the mean, over the sides whose triangle is in no discontinuity (over all four where every triangle
/// is), of the side's midpoint if the side is split, else of its two corners.
CCentreWeights CentreWeightsOf(const CQuadT& leaf, const CLattice& lattice);
