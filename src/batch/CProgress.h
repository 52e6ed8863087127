#pragma once

#include <chrono>
#include <string>

/// The line on a terminal that says how far the solver or an export is. Elsewhere nothing is shown.
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
  /// Shows the share of a file that is done, as often.
  void Update(const std::string& filename, double share);
  /// Makes room for another line.
  void Erase();

 private:
  bool IsDue();
  void Show(const std::string& text);

  bool m_bShown;
  bool m_bOnScreen = false;
  std::chrono::steady_clock::time_point m_Next;
};
