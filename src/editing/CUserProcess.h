#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <sys/types.h>

/// A program of the user's own, run beside this one without a shell.
///
/// It and all that it starts end with the object, with the call of `Kill`, with the program itself, and with this
/// process, however that ends. They are a process group; processes that have left it end with the others. Only where
/// the first process of the group is ended by force do these live on. It gets no input; output and errors are read
/// together. All functions belong to one thread, which must live as long as the program runs.
class CUserProcess {
 public:
  CUserProcess() = default;
  ~CUserProcess() { Kill(); }
  CUserProcess(const CUserProcess&) = delete;
  CUserProcess& operator=(const CUserProcess&) = delete;

  /// Starts a program (looked up in PATH) with its arguments; nothing may be running. False where the system has no
  /// process left. A program that cannot be started ends with status 127 and a line that says why.
  bool Start(const std::vector<std::string>& words);
  bool IsRunning() const { return m_iPid > 0; }
  /// Reads what has been written, without waiting. When the program has ended: its status as a shell counts it, 128
  /// plus the signal for one that was killed; what it has left running has ended by then, too.
  std::optional<int> Attend();
  /// The last line that is not blank, complete or not, at most some hundred bytes of it.
  const std::string& LastLine() const { return m_LastLine; }
  /// Ends all of it at once. Nothing if nothing runs.
  void Kill();

 private:
  void ReadOutput(std::size_t most);
  void TakeOutput(std::string_view text);
  void End();

  pid_t m_iPid = -1;
  int m_iOutput = -1;
  std::string m_Line;  ///< that is being written
  std::string m_LastLine;
};
