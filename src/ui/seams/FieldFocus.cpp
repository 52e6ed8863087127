#include "ui/seams/FieldFocus.h"

#include <chrono>

#include <FL/Fl.H>
#include <FL/Fl_Input_.H>
#include <FL/Fl_Window.H>

namespace {

using Clock = std::chrono::steady_clock;

struct CExpected {
  const Fl_Window* m_pWindow = nullptr;  ///< never looked into: it may be gone
  Clock::time_point m_Until;
  int m_iX = 0;  ///< of the mouse on the screen when it was opened
  int m_iY = 0;
};

CExpected& Expected() {
  static CExpected expected;
  return expected;
}

bool IsShown(const Fl_Window* window) {
  const Fl_Window* shown = Fl::first_window();
  while (shown != nullptr && shown != window) shown = Fl::next_window(shown);
  return shown != nullptr;
}

// Once the window has the keyboard, the toolkit tells the view of a mouse that moves without having moved.
bool IsFocusExpectedElsewhere() {
  CExpected& expected = Expected();
  if (expected.m_pWindow == nullptr) return false;
  const Fl_Widget* focus = Fl::focus();
  const bool arrived = focus != nullptr && focus->top_window() == expected.m_pWindow;
  const bool moved = Fl::event_x_root() != expected.m_iX || Fl::event_y_root() != expected.m_iY;
  const bool settled = moved && (arrived || Clock::now() >= expected.m_Until);
  if (settled || !IsShown(expected.m_pWindow)) expected.m_pWindow = nullptr;
  return expected.m_pWindow != nullptr;
}

}  // namespace

void ExpectFocus(const Fl_Window& window) {
  Expected() = {&window, Clock::now() + std::chrono::seconds(1), Fl::event_x_root(), Fl::event_y_root()};
}

bool HasFieldFocusElsewhere(const Fl_Widget& view) {
  if (IsFocusExpectedElsewhere()) return true;
  auto* field = dynamic_cast<Fl_Input_*>(Fl::focus());
  if (field == nullptr || field->readonly() != 0 || field->active_r() == 0) return false;
  Fl_Window* window = field->top_window();
  return window != nullptr && window->shown() != 0 && window != view.top_window();
}
