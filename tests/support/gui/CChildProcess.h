#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include <sys/types.h>

/// A program started by a test. It does not outlive the object, nor the test's process.
class CChildProcess {
 public:
  /// Starts `command` (program, then arguments; looked up in PATH) in `directory`, its standard output and error going
  /// to the file `output`. A program that cannot be started ends with status 127.
  CChildProcess(const std::vector<std::string>& command, const std::filesystem::path& directory,
                const std::filesystem::path& output);
  ~CChildProcess();
  CChildProcess(const CChildProcess&) = delete;
  CChildProcess& operator=(const CChildProcess&) = delete;

  pid_t Pid() const { return m_iPid; }
  bool IsRunning() { return !ExitStatus().has_value(); }
  /// As a shell counts it, 128 plus the signal for a program that was killed; nothing while it runs.
  std::optional<int> ExitStatus();
  /// The same once the program has ended; nothing if it never does.
  std::optional<int> WaitForExit();

 private:
  pid_t m_iPid = -1;
  std::optional<int> m_Status;
};
