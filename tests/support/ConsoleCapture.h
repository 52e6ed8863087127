#pragma once

#include <sstream>
#include <string>
#include <utility>

#include "base/Console.h"

/// Collects what the model writes to `Console()` for as long as the object lives.
class ConsoleCapture {
 public:
  ConsoleCapture() : m_Redirect(m_Stream) {}

  /// Everything written since construction or the last `Take`.
  std::string Text() const { return m_Stream.str(); }
  /// The same, and forgets it.
  std::string Take() {
    std::string text = m_Stream.str();
    m_Stream.str({});
    return text;
  }

 private:
  std::ostringstream m_Stream;
  CConsoleRedirect m_Redirect;
};

/// What `action()` writes to `Console()`.
template <typename Action>
std::string ConsoleTextOf(Action&& action) {
  const ConsoleCapture capture;
  std::forward<Action>(action)();
  return capture.Text();
}
