#pragma once

#include <string>

#include "support/CTemporaryDirectory.h"
#include "support/gui/CChildProcess.h"
#include "support/gui/CScreen.h"

/// A text on the display's clipboard, ready to be pasted for as long as the object lives.
class CClipboard {
 public:
  /// Throws std::runtime_error if the clipboard cannot be had.
  CClipboard(const CScreen& screen, const std::string& text);

 private:
  CTemporaryDirectory m_Directory;
  WindowId m_uOwnerBefore;
  CChildProcess m_Owner;
};
