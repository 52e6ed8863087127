#include "ui/window/ControlWidgets.h"

#include <algorithm>
#include <cmath>

#include <FL/Fl_Box.H>
#include <FL/Fl_Group.H>
#include <FL/Fl_Menu_Bar.H>
#include <FL/Fl_Toggle_Button.H>
#include <FL/Fl_Value_Output.H>
#include <FL/fl_draw.H>
#include <FL/x.H>

#include "ui/window/CHelpLine.h"
#include "ui/window/CNumberOutput.h"
#include "ui/window/HelpButtons.h"

namespace {

constexpr int kLeastLabelSize = 7;

Fl_Widget* MakeGroup(const char* label, bool framed) {
  auto* group = new Fl_Group(0, 0, 0, 0, label);
  group->end();
  // The window's layout places what is inside.
  group->resizable(nullptr);
  if (framed) group->box(FL_ENGRAVED_FRAME);
  if (framed) group->align(FL_ALIGN_TOP_LEFT);
  return group;
}

template <class Button>
Fl_Widget* MakeHelpAware(const CControlRow& row, CHelpLine& helpLine, uchar type) {
  auto* button = new Button(0, 0, 0, 0, row.m_iHelp, row.m_pLabel, helpLine);
  button->type(type);
  return button;
}

template <class Button>
Fl_Widget* MakeButton(const char* label) {
  auto* button = new Button(0, 0, 0, 0, label);
  button->clear_visible_focus();
  return button;
}

Fl_Widget* MakeLamp(const char* label) {
  auto* lamp = new Fl_Button(0, 0, 0, 0, label);
  lamp->selection_color(FL_GREEN);
  lamp->clear_visible_focus();
  return lamp;
}

Fl_Widget* MakeNumberOutput(const CControlRow& row, Fl_Align align) {
  auto* output = new CNumberOutput(0, 0, 0, 0, row.m_pLabel);
  output->value(row.m_fValue);
  output->align(align);
  return output;
}

Fl_Widget* Make(const CControlRow& row, CHelpLine& helpLine) {
  switch (row.m_Kind) {
    case ControlKind::Group:
      return MakeGroup(row.m_pLabel, true);
    case ControlKind::HelpButton:
      return MakeHelpAware<CHelpButton>(row, helpLine, FL_NORMAL_BUTTON);
    case ControlKind::HelpToggle:
      return MakeHelpAware<CHelpButton>(row, helpLine, FL_TOGGLE_BUTTON);
    case ControlKind::HelpLight:
      return MakeHelpAware<CHelpLightButton>(row, helpLine, FL_TOGGLE_BUTTON);
    case ControlKind::HelpRadio:
      return MakeHelpAware<CHelpLightButton>(row, helpLine, FL_RADIO_BUTTON);
    case ControlKind::RoundRadio:
      return MakeHelpAware<CHelpRoundButton>(row, helpLine, FL_RADIO_BUTTON);
    case ControlKind::Button:
      return MakeButton<Fl_Button>(row.m_pLabel);
    case ControlKind::Toggle:
      return MakeButton<Fl_Toggle_Button>(row.m_pLabel);
    case ControlKind::Lamp:
      return MakeLamp(row.m_pLabel);
    case ControlKind::Text:
      return new Fl_Box(0, 0, 0, 0, row.m_pLabel);
    case ControlKind::NumberOutput:
      return MakeNumberOutput(row, FL_ALIGN_LEFT);
    case ControlKind::CaptionedNumber:
      return MakeNumberOutput(row, FL_ALIGN_BOTTOM);
    case ControlKind::TextOutput:
      return new CPassiveOutput(0, 0, 0, 0, row.m_pLabel);
    default:
      return MakeGroup(row.m_pLabel, false);
  }
}

struct CRoom {
  int m_iWidth;
  int m_iHeight;
};

// The room for a label of a given size. A lamp in front of it is as wide as the label is high.
CRoom LabelRoom(const Fl_Widget& widget, const CControlRow& row, int size) {
  constexpr int kFrame = 3;
  constexpr int kBesideLamp = 9;
  switch (row.m_Kind) {
    case ControlKind::HelpLight:
    case ControlKind::HelpRadio:
    case ControlKind::RoundRadio:
      return {widget.w() - size - kBesideLamp, widget.h()};
    case ControlKind::NumberOutput:
    case ControlKind::TextOutput:
      return {row.m_iLabelRoom * widget.w() / row.m_Design.w, 1000};
    case ControlKind::CaptionedNumber:
      return {row.m_iLabelRoom * widget.w() / row.m_Design.w, widget.h() + kFrame};
    case ControlKind::Group:
      return {widget.w(), 1000};
    case ControlKind::Text:
      return {widget.w(), widget.h()};
    default:
      return {widget.w() - 2 * kFrame, widget.h()};
  }
}

bool LabelFits(const Fl_Widget& widget, const CControlRow& row, int size) {
  fl_open_display();  // the window is laid out before it is shown
  fl_font(widget.labelfont(), size);
  int width = 0;
  int height = 0;
  fl_measure(widget.label(), width, height, 0);
  const CRoom room = LabelRoom(widget, row, size);
  return width <= room.m_iWidth && height <= room.m_iHeight;
}

int Scaled(int size, double scale) { return static_cast<int>(std::lround(size * scale)); }

int FittingLabelSize(const Fl_Widget& widget, const CControlRow& row, double scale) {
  int size = Scaled(row.m_iLabelSize, scale);
  if (widget.label() == nullptr || *widget.label() == '\0') return size;
  while (size > kLeastLabelSize && !LabelFits(widget, row, size)) --size;
  return size;
}

void SetOutputTextSize(Fl_Widget& widget, int size) {
  if (auto* output = dynamic_cast<Fl_Value_Output*>(&widget)) output->textsize(size);
  if (auto* line = dynamic_cast<Fl_Output*>(&widget)) line->textsize(size);
  if (auto* bar = dynamic_cast<Fl_Menu_Bar*>(&widget)) bar->textsize(size);
}

}  // namespace

Fl_Widget* MakeControl(const CControlRow& row, CHelpLine& helpLine) {
  Fl_Group::current(nullptr);
  Fl_Widget* widget = Make(row, helpLine);
  if ((row.m_uStart & StartState::kHidden) != 0) widget->hide();
  if ((row.m_uStart & StartState::kInactive) != 0) widget->deactivate();
  if ((row.m_uStart & StartState::kOn) != 0) static_cast<Fl_Button*>(widget)->value(1);
  return widget;
}

void SetTextSizes(const CControlWidgets& widgets, double scale) {
  std::array<int, kControlCount> sizes{};
  for (const CControlRow& row : kControls) {
    Fl_Widget& widget = *widgets[Index(row.m_Control)];
    SetOutputTextSize(widget, Scaled(row.m_iTextSize, scale));
    int& size = sizes[Index(row.m_Control)];
    size = FittingLabelSize(widget, row, scale);
    if (row.m_Parent == Control::Window || RowOf(row.m_Parent).m_Kind != ControlKind::Group) continue;
    for (const CControlRow& other : kControls) {
      if (other.m_Parent == row.m_Parent)
        size = std::min(size, FittingLabelSize(*widgets[Index(other.m_Control)], other, scale));
    }
  }
  for (const CControlRow& row : kControls) widgets[Index(row.m_Control)]->labelsize(sizes[Index(row.m_Control)]);
}
