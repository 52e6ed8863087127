#pragma once

#include <cstddef>
#include <vector>

/// How far the iteration has come, as a value that goes with a surface and the constraints on it.
struct CSolverState {
  std::vector<double> m_afMultipliers;  ///< one per constraint row
  /// What the rows are to have, free of contradictions where those are known; empty while the iteration has not begun.
  std::vector<double> m_afTargets;
  int m_iCounter = -1;      ///< iterations since the last restart, 0 or -1 where there were none
  bool m_bStopped = false;  ///< the iteration has stopped itself, with the surface that was asked for
  bool m_bGaveUp = false;   ///< or with another one

  /// Memory that it takes.
  std::size_t Bytes() const { return (m_afMultipliers.size() + m_afTargets.size()) * sizeof(double); }
};
