#pragma once

#include <chrono>

/// The line on a terminal that says how far the solver is. Elsewhere nothing is shown.
class CProgress {
 public:
  /// Shown on standard error if that is a terminal and `wanted`.
  explicit CProgress(bool wanted);
  CProgress(const CProgress&) = delete;
  CProgress& operator=(const CProgress&) = delete;
  /// Takes the line away.
  ~CProgress() { Erase(); }

  /// Whether a line of progress stands on the terminal.
  bool IsShown() const { return m_bShown; }
  /// Shows the number of iterations, a few times per second at most.
  void Update(long iterations);
  /// Makes room for another line.
  void Erase();

 private:
  bool m_bShown;
  bool m_bOnScreen = false;
  std::chrono::steady_clock::time_point m_Next;
};
