#pragma once

#include <memory>
#include <string>

#include "support/gui/CScreen.h"

/// Another program from which something is dragged onto a window and let go there, by the protocol that desktops share
/// (XDND, version 5). The pointer itself is not moved.
class CDragSource {
 public:
  /// `type` is the name of what is dragged, "text/uri-list" for files. Throws std::runtime_error without a display.
  CDragSource(std::string type, std::string contents);
  ~CDragSource();
  CDragSource(const CDragSource&) = delete;
  CDragSource& operator=(const CDragSource&) = delete;

  /// Whether the window, a main window, takes what is held over a place on the screen.
  bool IsWelcome(WindowId window, CPixel place);
  /// Holds it there and lets it go; whether the window has taken it and said so.
  bool Drop(WindowId window, CPixel place);

 private:
  class CProtocol;
  std::unique_ptr<CProtocol> m_pProtocol;
};
