#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "support/CTemporaryDirectory.h"
#include "support/gui/CChildProcess.h"
#include "support/gui/CScreen.h"

/// The built program, running on the display as a user has it: a window to look at, a console to read. It ends with the
/// object at the latest.
class CRelievo {
 public:
  static constexpr const char* kTitle = "Image View";

  /// Starts the program with these arguments in an empty directory and waits until its main window has been drawn and
  /// has the keyboard, or a question that is asked at once has it. What it remembers from run to run goes to `state`,
  /// or else no further than the object. Throws std::runtime_error, with what the program wrote, if the window never
  /// comes.
  explicit CRelievo(const std::vector<std::string>& arguments = {}, const std::filesystem::path& state = {});

  CScreen& Screen() { return m_Screen; }
  const CScreen& Screen() const { return m_Screen; }
  WindowId MainWindow() const { return m_uMainWindow; }
  CArea MainArea() const { return m_Screen.AreaOf(m_uMainWindow); }
  /// The two views, the image view first; nothing until both are on the screen.
  std::vector<WindowId> Views() const;
  /// Areas of the views within the main window, in the same order.
  std::vector<CArea> ViewAreas() const;
  /// Waits until the program has handled all events sent to it so far; false if it has ended instead. The main window
  /// is given another size and its old one again: the program answers by laying out its views, and in order.
  bool HandlesEvents();
  /// Waits until the program has nothing left to do but wait for the user; false if it never rests. While the solver
  /// runs, that is when it has converged.
  bool Rests() const;
  /// Waits for a window of the program with this title; nothing if none comes.
  std::optional<WindowId> WaitForWindow(const std::string& title);

  /// The directory that the program was started in.
  const std::filesystem::path& Directory() const { return m_Directory.Path(); }
  /// What the program has written so far, the last line only if it is complete.
  std::vector<std::string> ConsoleLines() const;

  pid_t Pid() const { return m_Process.Pid(); }
  bool IsRunning() { return m_Process.IsRunning(); }
  /// The program's exit status; nothing if it goes on running.
  std::optional<int> WaitForExit() { return m_Process.WaitForExit(); }

 private:
  bool IsReady() const;
  bool HasKeyboard() const;
  std::optional<long> TimesRun() const;

  CScreen m_Screen;
  CTemporaryDirectory m_Directory;
  CTemporaryDirectory m_OutputDirectory;  ///< also of what it remembers
  std::filesystem::path m_Output;
  CChildProcess m_Process;
  WindowId m_uMainWindow = 0;
};
