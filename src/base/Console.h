#pragma once

#include <ostream>

/// The one sink of all progress and error lines of the model.
///
/// Standard output unless a `CConsoleRedirect` of the same thread is alive. Numbers are written in the stream's default
/// format (six significant digits).
std::ostream& Console();

/// Sends `Console()` to another stream for as long as the object lives; redirects nest.
class CConsoleRedirect {
 public:
  /// `target` must outlive the redirect.
  explicit CConsoleRedirect(std::ostream& target);
  ~CConsoleRedirect();
  CConsoleRedirect(const CConsoleRedirect&) = delete;
  CConsoleRedirect& operator=(const CConsoleRedirect&) = delete;

 private:
  std::ostream* m_pPrevious;
};
