#pragma once

#include <functional>

#include "ui/GridCommands.h"

class CGrid;

/// What other rooms bring to the main window. Where something is empty or false, the entries and buttons that need it
/// are inactive.
struct CWindowServices {
  CModelServices m_Model;
  /// Shows the drawing options.
  std::function<void()> m_ShowDrawingOptions;
  /// Drops the curve that is being drawn; takes up the type chosen for it. Both or none.
  std::function<void(CGrid& grid)> m_DropCurve;
  std::function<void(CGrid& grid)> m_CurveTypeChanged;
  /// Ends the manual subdivision: applies what is selected.
  std::function<void(CGrid& grid)> m_ApplySelection;
  /// The light that the light panel edits, 0 to 4, or -1; what follows when lights were turned in the model view.
  std::function<int()> m_CurrentLight;
  std::function<void()> m_LightsMoved;
  /// Whether the views can show the texels of a picture.
  bool m_bTexels = false;
};
