#include "ui/window/CControlSet.h"

#include <FL/Fl_Button.H>
#include <FL/Fl_Group.H>
#include <FL/Fl_Value_Output.H>

void CControlSet::Add(const CControlRow& row, Fl_Widget& widget, Fl_Group& window) {
  m_apWidgets[Index(row.m_Control)] = &widget;
  m_abVisible[Index(row.m_Control)] = widget.visible() != 0;
  if (widget.parent() != nullptr) return;
  Fl_Widget& parent = row.m_Parent == Control::Window ? window : Widget(row.m_Parent);
  static_cast<Fl_Group&>(parent).add(widget);
}

Fl_Button& CControlSet::Button(Control control) const { return static_cast<Fl_Button&>(Widget(control)); }

Fl_Value_Output& CControlSet::ReadOut(Control control) const { return static_cast<Fl_Value_Output&>(Widget(control)); }

void CControlSet::Enable(Control control, bool enable) const {
  if (enable) {
    Widget(control).activate();
  } else {
    Widget(control).deactivate();
  }
}

void CControlSet::Show(Control control, bool visible) {
  m_abVisible[Index(control)] = visible;
  if (visible && (m_bDebugZone || !IsInDebugZone(control))) {
    Widget(control).show();
  } else {
    Widget(control).hide();
  }
}

void CControlSet::ShowDebugZone(bool show) {
  m_bDebugZone = show;
  for (const CControlRow& row : kControls) {
    if (IsInDebugZone(row.m_Control)) Show(row.m_Control, m_abVisible[Index(row.m_Control)]);
  }
}
