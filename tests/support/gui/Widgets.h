#pragma once

#include <deque>
#include <functional>
#include <string_view>
#include <vector>

#include <FL/Fl_Button.H>
#include <FL/Fl_Group.H>
#include <FL/Fl_Value_Input.H>
#include <FL/Fl_Window.H>

// The widgets of a panel as a user finds them, by what is written on them, and what the mouse and the keyboard do to
// them through the toolkit's own events.

/// All widgets in `group` and in the groups inside it, in the order they were made.
std::vector<Fl_Widget*> WidgetsIn(Fl_Group& group);

/// The first widget labelled `label`, in `group` or in a group inside it. Throws std::runtime_error if there is none.
Fl_Widget& FindWidget(Fl_Group& group, std::string_view label);

/// The same; throws std::bad_cast if the widget is of another kind.
template <class Kind>
Kind& Find(Fl_Group& group, std::string_view label) {
  return dynamic_cast<Kind&>(FindWidget(group, label));
}

/// A click of the left button in the middle of `button`.
void Press(Fl_Button& button);
/// A drag of the left button along `widget` from one place to another, both 0 (left end) to 1 (right end), half way
/// down.
void DragAlong(Fl_Widget& widget, double from, double to);
/// As if the user had replaced the text of the input by `text`.
void Type(Fl_Value_Input& input, const char* text);

/// One typed character, which replaces what is marked.
void TypeKey(Fl_Input& input, const char* character);

/// Answers the modal windows that appear while the object lives: each action is given the next one, once it is open.
/// A test fails when an action finds no window or a window is left open.
class CModalAnswers {
 public:
  using Action = std::function<void(Fl_Window& window)>;

  explicit CModalAnswers(std::deque<Action> actions);
  ~CModalAnswers();
  CModalAnswers(const CModalAnswers&) = delete;
  CModalAnswers& operator=(const CModalAnswers&) = delete;

 private:
  void Look();
  static void cb_Timer(void* answers);

  std::deque<Action> m_aActions;
  Fl_Window* m_pAnswered = nullptr;  ///< while its action runs, which may let the toolkit work
};
