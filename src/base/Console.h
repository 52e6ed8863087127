#pragma once

#include <ostream>

/// The one sink of all progress and error lines of the model.
///
/// Standard output until a `ConsoleRedirect` is alive. Numbers are written in the stream's default format (six
/// significant digits).
std::ostream& Console();

/// Sends `Console()` to another stream for as long as the object lives; redirects nest.
class ConsoleRedirect {
 public:
  /// `target` must outlive the redirect.
  explicit ConsoleRedirect(std::ostream& target);
  ~ConsoleRedirect();
  ConsoleRedirect(const ConsoleRedirect&) = delete;
  ConsoleRedirect& operator=(const ConsoleRedirect&) = delete;

 private:
  std::ostream* m_pPrevious;
};
