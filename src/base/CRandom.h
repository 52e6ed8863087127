#pragma once

#include <cstdint>
#include <random>

/// The program's random numbers, seeded from outside so that a test can repeat it.
class CRandom {
 public:
  /// The same seed gives the same values.
  explicit CRandom(std::uint32_t seed) : m_Engine(seed) {}

  /// A uniform value in [0, limit].
  double UpTo(double limit) { return limit * std::generate_canonical<double, 53>(m_Engine); }

 private:
  std::mt19937 m_Engine;
};
