#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <sys/types.h>

#include "support/gui/CScreenshot.h"

/// A window as the display knows it.
using WindowId = unsigned long;

/// What a window tells the window manager about the sizes it can take.
struct CSizeLimits {
  int m_iMinWidth = 0;
  int m_iMinHeight = 0;
  bool m_bHasMaximum = false;
};

/// The display that DISPLAY names, as a user sees it and a window manager runs it: windows of other programs, their
/// places and pixels.
///
/// A connection of its own, so that nothing it does passes through the program under test or through the toolkit.
/// Queries about a window that has gone answer with nothing, an empty text or an empty area.
class CScreen {
 public:
  /// Throws std::runtime_error, saying what is missing, without a display or without a window manager on it.
  CScreen();
  ~CScreen();
  CScreen(const CScreen&) = delete;
  CScreen& operator=(const CScreen&) = delete;

  /// The mapped main windows and dialogs of a process, the oldest first.
  std::vector<WindowId> WindowsOf(pid_t pid) const;
  std::optional<WindowId> FindWindow(pid_t pid, std::string_view title) const;
  /// Nothing, which is not an empty title, once the window has gone.
  std::optional<std::string> TitleOf(WindowId window) const;
  /// Where a window lies on the screen, without the window manager's frame.
  CArea AreaOf(WindowId window) const;
  /// The mapped windows directly inside a window, the lowest first: a view is one, a button is not.
  std::vector<WindowId> WindowsIn(WindowId window) const;
  CSizeLimits SizeLimitsOf(WindowId window) const;
  bool HasFocus(WindowId window) const;
  /// The name by which the desktop takes the window for one of a program.
  std::string ClassOf(WindowId window) const;
  bool HasIcon(WindowId window) const;
  /// The window that answers for what is on the clipboard; 0 while there is nothing on it.
  WindowId ClipboardOwner() const;

  /// What a user does with a window's frame: the window manager gets the request and may refuse or change it.
  void AskForSize(WindowId window, int width, int height);
  void AskToClose(WindowId window);
  /// Moves the pointer to the lower right corner, where it is over no view of a window that opens.
  void ParkPointer();

  /// The pixels on the screen now. Throws std::runtime_error unless the area lies on the screen.
  CScreenshot Capture(const CArea& area) const;

 private:
  class CConnection;
  std::unique_ptr<CConnection> m_pConnection;
};
