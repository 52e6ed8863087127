#include "support/gui/CMonkey.h"

#include <algorithm>
#include <array>
#include <iterator>

#include <FL/Fl.H>
#include <FL/Fl_Group.H>
#include <FL/Fl_Input_.H>
#include <FL/Fl_Window.H>

namespace {

// Between two answers; above 0, or the toolkit would do nothing else.
constexpr double kSeconds = 0.002;

constexpr std::array kModifiers{
    0, 0, 0, FL_SHIFT, FL_CTRL, FL_ALT, FL_META, FL_CTRL | FL_ALT, FL_ALT | FL_SHIFT, FL_CTRL | FL_ALT | FL_SHIFT};
constexpr std::array kKeys{static_cast<int>(FL_Tab),    static_cast<int>(FL_BackSpace), static_cast<int>(FL_Delete),
                           static_cast<int>(FL_Enter),  static_cast<int>(FL_KP_Enter),  static_cast<int>(FL_Escape),
                           static_cast<int>(FL_Left),   static_cast<int>(FL_Right),     static_cast<int>(FL_Up),
                           static_cast<int>(FL_Down),   static_cast<int>(FL_Home),      static_cast<int>(FL_F + 1),
                           static_cast<int>(FL_Page_Up)};
constexpr std::array kLetters{'g', 'i', 'p', 'c', 'n', 'o', 's', 'e', 'f', 'x', '=', '-', '1', '4', ' '};
// Small enough that no answer makes the program busy for long.
constexpr std::array kTexts{"0", "1", "-5", "40", "99.5", "1e2", "x", "", "frame"};

void Collect(Fl_Group& group, std::vector<Fl_Widget*>& widgets) {
  for (int k = 0; k < group.children(); ++k) {
    Fl_Widget* child = group.child(k);
    if (child->visible_r() == 0) continue;
    widgets.push_back(child);
    if (child->as_group() != nullptr && child->as_window() == nullptr) Collect(*child->as_group(), widgets);
  }
}

}  // namespace

CMonkey::CMonkey(std::uint32_t seed) : m_Random(seed) { Fl::add_timeout(kSeconds, cb_Answer, this); }

CMonkey::~CMonkey() { Fl::remove_timeout(cb_Answer, this); }

// Straight from the generator, whose numbers are the same everywhere.
int CMonkey::Below(int count) { return static_cast<int>(m_Random() % static_cast<unsigned>(std::max(1, count))); }

void CMonkey::Act() {
  std::vector<Fl_Window*> windows;
  for (Fl_Window* w = Fl::first_window(); w != nullptr; w = Fl::next_window(w)) windows.push_back(w);
  if (windows.empty()) return;
  ActOn(*OneOf(windows));
}

void CMonkey::EndDialogs() {
  while (Fl::modal() != nullptr || Fl::grab() != nullptr) Answer();
}

// The next answer is asked for first, as this one may lead to a loop of its own.
void CMonkey::cb_Answer(void* monkey) {
  Fl::add_timeout(kSeconds, cb_Answer, monkey);
  if (Fl::modal() != nullptr || Fl::grab() != nullptr)
    static_cast<CMonkey*>(monkey)->Answer();
  else
    static_cast<CMonkey*>(monkey)->m_iAnswers = 0;
}

void CMonkey::Answer() {
  constexpr int kMostAnswers = 10;
  const bool last = ++m_iAnswers % kMostAnswers == 0;
  if (Fl::grab() != nullptr) return ChooseFromMenu(*Fl::grab(), last);
  if (!last && (m_bObedient || OneIn(6))) return TypeKey(*Fl::modal(), FL_Enter, 0, "\r");
  if (last) return TypeKey(*Fl::modal(), FL_Escape, 0, "\033");
  ActOn(*Fl::modal());
}

// One key at a time: the toolkit cannot bear another one between the end of a menu and that of its loop.
void CMonkey::ChooseFromMenu(Fl_Window& menu, bool last) {
  constexpr std::array kSteps{FL_Down, FL_Down, FL_Down, FL_Right, FL_Left, FL_Up, FL_Enter};
  Fl::e_keysym = last ? FL_Escape : static_cast<int>(OneOf(kSteps));
  Fl::e_state = 0;
  Send(FL_KEYBOARD, menu);
}

void CMonkey::ActOn(Fl_Window& window) {
  ++m_iActions;
  switch (Below(8)) {
    case 0:
    case 1:
      return ClickOnWidget(window);
    case 2:
    case 3:
      return DragAround(window);
    case 4:
      return TypeSomething(window);
    case 5:
      return TypeNumber(window);
    case 6:
      Fl::e_dy = OneIn(2) ? 1 : -1;
      return Send(FL_MOUSEWHEEL, window);
    default:
      return MoveTo(window, Below(window.w()), Below(window.h()));
  }
}

// Any of the events may close the window.
void CMonkey::Send(int event, Fl_Window& window) const {
  // The window that a menu takes all events with is never on the screen itself.
  if (window.shown() == 0 && &window != Fl::grab()) return;
  Fl::e_x = m_iX;
  Fl::e_y = m_iY;
  Fl::e_x_root = window.x_root() + m_iX;
  Fl::e_y_root = window.y_root() + m_iY;
  Fl::handle(event, &window);
}

void CMonkey::MoveTo(Fl_Window& window, int x, int y) {
  m_iX = x;
  m_iY = y;
  Fl::e_is_click = 0;
  Send(FL_MOVE, window);
}

void CMonkey::Click(Fl_Window& window, int x, int y) {
  MoveTo(window, x, y);
  const int button = 1 + Below(3);
  const int held = OneOf(kModifiers);
  PushButton(window, button, held, OneIn(4));
  ReleaseButton(window, button, held);
}

void CMonkey::PushButton(Fl_Window& window, int button, int held, bool again) {
  Fl::e_keysym = FL_Button + button;
  Fl::e_is_click = 1;
  Fl::e_clicks = again ? 1 : 0;
  Fl::e_state = held | (FL_BUTTON1 << (button - 1));
  Send(FL_PUSH, window);
}

void CMonkey::ReleaseButton(Fl_Window& window, int button, int held) {
  Fl::e_keysym = FL_Button + button;
  Fl::e_state = held;
  Send(FL_RELEASE, window);
  Fl::e_state = 0;
}

void CMonkey::Press(Fl_Widget& widget) {
  Fl_Window* window = widget.window();
  if (window == nullptr || widget.visible_r() == 0 || widget.active_r() == 0) return;
  ++m_iActions;
  MoveTo(*window, widget.x() + widget.w() / 2, widget.y() + widget.h() / 2);
  PushButton(*window, FL_LEFT_MOUSE, 0, false);
  ReleaseButton(*window, FL_LEFT_MOUSE, 0);
}

void CMonkey::Stroke(Fl_Window& window, int x, int y, int button) {
  ++m_iActions;
  MoveTo(window, x, y);
  PushButton(window, button, 0, false);
  for (int step = Below(4); step > 0; --step) {
    Fl::e_state = FL_BUTTON1 << (button - 1);
    MoveTo(window, m_iX + Below(61) - 30, m_iY + Below(61) - 30);
  }
  ReleaseButton(window, button, 0);
}

void CMonkey::ClickOnWidget(Fl_Window& window) {
  std::vector<Fl_Widget*> widgets;
  Collect(window, widgets);
  if (widgets.empty()) return Click(window, Below(window.w()), Below(window.h()));
  const Fl_Widget& widget = *OneOf(widgets);
  Click(window, widget.x() + Below(widget.w()), widget.y() + Below(widget.h()));
}

// Sometimes a key is typed in between, and the mouse leaves the window.
void CMonkey::DragAround(Fl_Window& window) {
  constexpr int kOutside = 60;
  MoveTo(window, Below(window.w()), Below(window.h()));
  const int button = OneIn(2) ? FL_LEFT_MOUSE : 1 + Below(3);
  const int held = OneOf(kModifiers);
  if (OneIn(4)) m_HeldKey.emplace('1' + Below(5));
  PushButton(window, button, held, false);
  for (int step = 1 + Below(5); step > 0; --step) {
    Fl::e_state = held | (FL_BUTTON1 << (button - 1));
    const bool leaves = OneIn(6);
    MoveTo(window, leaves ? -kOutside : m_iX + Below(81) - 40, leaves ? -kOutside : m_iY + Below(81) - 40);
    if (OneIn(8)) TypeSomething(window);
  }
  ReleaseButton(window, button, held);
  m_HeldKey.reset();
}

void CMonkey::TypeKey(Fl_Window& window, int key, int modifiers, const std::string& text) {
  std::string copy = text;
  const int before = Fl::e_state;
  Fl::e_keysym = key;
  Fl::e_state = modifiers | (before & FL_BUTTONS);
  Fl::e_text = copy.data();
  Fl::e_length = static_cast<int>(copy.size());
  Send(FL_KEYBOARD, window);
  Send(FL_KEYUP, window);
  Fl::e_text = nullptr;
  Fl::e_length = 0;
  Fl::e_state = before;
}

void CMonkey::TypeSomething(Fl_Window& window) {
  if (OneIn(2)) return TypeKey(window, OneOf(kKeys), OneOf(kModifiers), "");
  const char letter = OneOf(kLetters);
  TypeKey(window, letter, OneOf(kModifiers), std::string(1, letter));
}

// Into the input that has the focus, in place of what is there.
void CMonkey::TypeNumber(Fl_Window& window) {
  auto* input = dynamic_cast<Fl_Input_*>(Fl::focus());
  if (input == nullptr) return TypeSomething(window);
  input->position(0, input->size());
  const std::string text = OneOf(kTexts);
  TypeKey(window, 'a', 0, text);
}
