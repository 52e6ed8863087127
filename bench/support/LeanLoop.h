#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "support/BenchModel.h"

/// The yardstick of the solver's benchmarks: one conjugate-residual iteration on the full uniform lattice, written as
/// plainly as it can be over flat arrays, without constraints, without modes, without checks. Compressed rows with
/// 32-bit columns, a schedule of two or four parents per point, vector updates fused.
class CLeanLoop {
 public:
  explicit CLeanLoop(int level);

  std::size_t Size() const { return m_afX.size(); }
  /// Bytes that one iteration has to move when nothing stays in a cache.
  double BytesPerIteration() const;
  void Iterate();

 private:
  void Apply(const std::vector<double>& v, std::vector<double>& out);

  std::vector<std::uint32_t> m_auRowStart;
  std::vector<std::uint32_t> m_auColumns;
  std::vector<double> m_afValues;
  /// Ranges of unknowns with two parents and with four, alternating, from unknown 4 on.
  std::vector<std::uint32_t> m_auPassEnd;
  std::vector<std::uint32_t> m_auParents;
  std::vector<double> m_afX, m_afP, m_afQ, m_afR, m_afS, m_afU;
  double m_fRho = 0.0;
  double m_fPi = 0.0;
};
