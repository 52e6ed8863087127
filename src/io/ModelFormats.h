#pragma once

#include <functional>
#include <span>
#include <string>

#include "model/CPendingWork.h"
#include "model/CSaveOutcome.h"

class CGrid;

/// What the user may say about a file before it is written; each format looks at its own part of it.
struct CWriteSettings {
  std::function<bool()> m_WithLights;  ///< asked when all but the lights is written; without it there are none
  int m_iWidth = 200;                  ///< samples of a height field
  int m_iHeight = 200;
};

/// Which of the settings a format looks at: the window asks for it, the program without a window has an option for it.
enum class WriteSetting { None, Lights, Size };

/// One format in which the model is written: all that menu, commands and the program without a window know of it.
///
/// Texts are never null where nothing else is said.
struct CModelFormat {
  using Write = CSaveOutcome(const CGrid& grid, const std::string& filename, const CWriteSettings& settings);

  const char* m_pSuffix = "";  ///< of the names of its files, with the dot
  /// Writes the file, whose old contents stay until the new ones are complete. Nothing may be pending in the grid.
  Write* m_pWrite = nullptr;
  WriteSetting m_Setting = WriteSetting::None;
  /// Where the JPEG of the photograph that goes with such a file belongs; null for a format without one.
  std::string (*m_pPictureOf)(const std::string& filename) = nullptr;

  // In the window.
  const char* m_pMenuText = "";  ///< of its entry in the menu "File", with the mark of its key
  char m_cKey = '\0';            ///< that chooses the entry together with Alt; 0 for none
  Operation m_Operation =
      Operation::kNone;         ///< code under which it waits for the end of the solver's step; none: it does not
  bool m_bStopsSolver = false;  ///< and leaves it stopped; otherwise the solver goes on afterwards
  const char* m_pTitle = "";    ///< of the file chooser
  bool m_bListsSuffix = false;  ///< the chooser lists the files of that suffix only
  const char* m_pNoPicture = nullptr;  ///< line on the console where no picture is on show; null for none
  const char* m_pDone = nullptr;       ///< notice after it; null for none

  // Without a window.
  const char* m_pOption = "";
  const char* m_pDescription = "";
};

/// The formats, in the order of the menu and of the help of the program without a window. The first one is the
/// program's own.
std::span<const CModelFormat> ModelFormats();

/// `CModelFormat::m_pWrite` as a function of the format, too.
CSaveOutcome WriteModel(const CModelFormat& format, const CGrid& grid, const std::string& filename,
                        const CWriteSettings& settings);
