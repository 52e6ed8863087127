#include "ui/values/CValueField.h"

#include <FL/Fl.H>

#include "editing/TypedNumber.h"

namespace {

constexpr double kShiftSteps = 10.0;

double StepsOfEvent() { return Fl::event_state(FL_SHIFT) != 0 ? kShiftSteps : 1.0; }

}  // namespace

CValueField::CValueField(int x, int y, int w, int h, const char* label) : Fl_Input(x, y, w, h, label) {
  align(FL_ALIGN_LEFT);
  labelsize(12);
  textsize(12);
  when(FL_WHEN_ENTER_KEY | FL_WHEN_RELEASE);
  callback(cb_Field);
}

void CValueField::Show(const std::string& text) {
  if (text == m_Shown) return;
  m_Shown = text;
  value(text.c_str());
  clear_changed();
}

// A text that nobody has changed is the rounded number, and no other one.
void CValueField::Commit() {
  const std::optional<std::string> text = TakeTyped();
  if (text.has_value()) m_Actions.m_Tell(m_Actions.m_Typed(TypedNumber(*text)));
}

std::optional<std::string> CValueField::TakeTyped() {
  std::string text = value();
  if (text == m_Shown) return std::nullopt;
  value(m_Shown.c_str());
  clear_changed();
  return text;
}

bool CValueField::StepBy(double steps) {
  if (m_Shown.empty() || active_r() == 0) return false;
  Commit();
  m_Actions.m_Tell(m_Actions.m_Stepped(steps));
  position(size(), 0);
  return true;
}

bool CValueField::HandleKey() {
  switch (Fl::event_key()) {
    case FL_Up:
      return StepBy(StepsOfEvent());
    case FL_Down:
      return StepBy(-StepsOfEvent());
    case FL_Escape:
      if (value() == m_Shown) return false;
      value(m_Shown.c_str());
      clear_changed();
      return true;
    default:
      return false;
  }
}

int CValueField::handle(int event) {
  if (event == FL_KEYBOARD && HandleKey()) return 1;
  if (event == FL_MOUSEWHEEL && Fl::event_dy() != 0 && Fl::event_inside(this) != 0 &&
      StepBy(-Fl::event_dy() * StepsOfEvent()))
    return 1;
  return Fl_Input::handle(event);
}

void CValueField::cb_Field(Fl_Widget* widget, void* /*data*/) { static_cast<CValueField*>(widget)->Commit(); }
