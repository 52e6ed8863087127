#include "support/gui/Widgets.h"

#include <algorithm>
#include <stdexcept>
#include <string>
#include <utility>

#include <FL/Fl.H>
#include <gtest/gtest.h>

namespace {

constexpr double kLookPeriod = 0.005;

void SendMouse(Fl_Widget& widget, int event, int x, int y) {
  Fl::e_x = x;
  Fl::e_y = y;
  Fl::e_keysym = FL_Button + FL_LEFT_MOUSE;
  Fl::e_state = event == FL_RELEASE ? 0 : FL_BUTTON1;
  Fl::e_is_click = event == FL_PUSH ? 1 : 0;
  Fl::e_number = event;
  widget.handle(event);
}

}  // namespace

std::vector<Fl_Widget*> WidgetsIn(Fl_Group& group) {
  std::vector<Fl_Widget*> widgets;
  for (int k = 0; k < group.children(); ++k) {
    widgets.push_back(group.child(k));
    Fl_Group* inner = group.child(k)->as_group();
    if (inner == nullptr) continue;
    const std::vector<Fl_Widget*> inside = WidgetsIn(*inner);
    widgets.insert(widgets.end(), inside.begin(), inside.end());
  }
  return widgets;
}

Fl_Widget& FindWidget(Fl_Group& group, std::string_view label) {
  const std::vector<Fl_Widget*> widgets = WidgetsIn(group);
  const auto found = std::ranges::find_if(
      widgets, [label](const Fl_Widget* widget) { return widget->label() != nullptr && widget->label() == label; });
  if (found == widgets.end()) throw std::runtime_error("no widget is labelled \"" + std::string(label) + '"');
  return **found;
}

void Press(Fl_Button& button) {
  if (button.active_r() == 0) throw std::runtime_error("a button that is not active cannot be pressed");
  const int x = button.x() + button.w() / 2;
  const int y = button.y() + button.h() / 2;
  SendMouse(button, FL_PUSH, x, y);
  SendMouse(button, FL_RELEASE, x, y);
}

void DragAlong(Fl_Widget& widget, double from, double to) {
  const auto place = [&widget](double part) { return widget.x() + static_cast<int>(part * (widget.w() - 1)); };
  const int y = widget.y() + widget.h() / 2;
  SendMouse(widget, FL_PUSH, place(from), y);
  SendMouse(widget, FL_DRAG, place(to), y);
  SendMouse(widget, FL_RELEASE, place(to), y);
}

void Type(Fl_Value_Input& input, const char* text) {
  input.input.value(text);
  input.input.do_callback();
}

void TypeKey(Fl_Input& input, const char* character) {
  static std::string text;  // the toolkit may look at it until the next key
  text = character;
  Fl::e_keysym = static_cast<unsigned char>(text.front());
  Fl::e_state = 0;
  Fl::e_text = text.data();
  Fl::e_length = static_cast<int>(text.size());
  Fl::e_number = FL_KEYBOARD;
  input.handle(FL_KEYBOARD);
}

CModalAnswers::CModalAnswers(std::deque<Action> actions) : m_aActions(std::move(actions)) {
  Fl::add_timeout(kLookPeriod, cb_Timer, this);
}

CModalAnswers::~CModalAnswers() {
  Fl::remove_timeout(cb_Timer, this);
  EXPECT_TRUE(m_aActions.empty()) << "a window that was to be answered never opened";
}

void CModalAnswers::Look() {
  Fl_Window* window = Fl::modal();
  if (window == nullptr || window->shown() == 0 || window == m_pAnswered) return;
  if (m_aActions.empty()) {
    ADD_FAILURE() << "left open: " << (window->label() == nullptr ? "a window" : window->label());
    window->hide();
    return;
  }
  const Action action = std::move(m_aActions.front());
  m_aActions.pop_front();
  Fl_Window* outer = std::exchange(m_pAnswered, window);
  action(*window);
  m_pAnswered = outer;
}

// Armed again first, because an answer may open the next window and wait for it.
void CModalAnswers::cb_Timer(void* answers) {
  Fl::add_timeout(kLookPeriod, cb_Timer, answers);
  static_cast<CModalAnswers*>(answers)->Look();
}
