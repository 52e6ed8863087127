#pragma once

#include <functional>
#include <string>

#include "editing/GridCommands.h"

/// What other rooms bring to the main window. Where something is empty, the entries and buttons that need it are
/// inactive.
struct CWindowServices {
  CModelServices m_Model;
  /// Shows the drawing options.
  std::function<void()> m_ShowDrawingOptions;
  /// The light that the light panel edits, 0 to 4, or -1; what follows when lights were turned in the model view.
  std::function<int()> m_CurrentLight;
  std::function<void()> m_LightsMoved;
  /// Opens the tutorial; what the program says of itself.
  std::function<void()> m_OpenTutorial;
  std::function<std::string()> m_About;
};
