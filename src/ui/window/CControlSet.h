#pragma once

#include <array>

#include "ui/window/ControlWidgets.h"

class Fl_Button;
class Fl_Group;
class Fl_Value_Output;

/// The widgets of the main window by their control. The window owns them.
class CControlSet {
 public:
  /// Takes up a control, in the group that is its parent or, if it has none in the table, in `window`. A widget that
  /// lies in a group already stays there.
  void Add(const CControlRow& row, Fl_Widget& widget, Fl_Group& window);

  /// The widget of a control, which must be one of that kind.
  Fl_Widget& Widget(Control control) const { return *m_apWidgets[Index(control)]; }
  Fl_Button& Button(Control control) const;
  Fl_Value_Output& ReadOut(Control control) const;
  const CControlWidgets& Widgets() const { return m_apWidgets; }

  /// Makes a control active or grey.
  void Enable(Control control, bool enable) const;
  /// Shows or hides a control; one of the debug zone is on the screen only together with it.
  void Show(Control control, bool visible);
  /// Shows or hides the debug zone, whose controls come back as they are meant to be.
  void ShowDebugZone(bool show);
  bool ShowsDebugZone() const { return m_bDebugZone; }

 private:
  CControlWidgets m_apWidgets{};
  std::array<bool, kControlCount> m_abVisible{};  ///< as they are while the debug zone is shown
  bool m_bDebugZone = true;
};
