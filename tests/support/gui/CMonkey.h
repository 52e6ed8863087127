#pragma once

#include <cstdint>
#include <optional>
#include <random>
#include <string>
#include <vector>

#include "support/gui/CHeldKey.h"

class Fl_Group;
class Fl_Widget;
class Fl_Window;

/// Sends random mouse and keyboard events to the windows of this process, through the toolkit's own path, and goes
/// on inside every loop in which a dialog or a menu waits for its answer. The same seed draws the same numbers, though
/// what the program makes of them depends on its timers, too.
class CMonkey {
 public:
  explicit CMonkey(std::uint32_t seed);
  ~CMonkey();
  CMonkey(const CMonkey&) = delete;
  CMonkey& operator=(const CMonkey&) = delete;

  /// One random action, which takes one or several events, at one of the open windows.
  void Act();
  /// A click of the left button, with no key held, in the middle of a widget; nothing where it is hidden or inactive.
  void Press(Fl_Widget& widget);
  /// A click or a short drag of a button, with no key held, from a place in the window.
  void Stroke(Fl_Window& window, int x, int y, int button);
  void TypeKey(Fl_Window& window, int key, int modifiers, const std::string& text);
  /// Whether dialogs are answered with Return, and no longer at random.
  void SetObedient(bool obedient) { m_bObedient = obedient; }
  /// Answers dialogs until none is open.
  void EndDialogs();
  /// Actions so far, at dialogs too.
  int Actions() const { return m_iActions; }
  /// Counts an action that went another way.
  void Count() { ++m_iActions; }

  /// Number from 0 to `count` - 1; 0 for a count below 1, as a small window leaves its views no room.
  int Below(int count);
  bool OneIn(int count) { return Below(count) == 0; }
  template <class Choices>
  const auto& OneOf(const Choices& choices) {
    return choices[static_cast<std::size_t>(Below(static_cast<int>(std::size(choices))))];
  }

 private:
  static void cb_Answer(void* monkey);

  void Answer();
  void ChooseFromMenu(Fl_Window& menu, bool last);
  void ActOn(Fl_Window& window);
  void Send(int event, Fl_Window& window) const;
  void MoveTo(Fl_Window& window, int x, int y);
  void Click(Fl_Window& window, int x, int y);
  void ClickOnWidget(Fl_Window& window);
  void DragAround(Fl_Window& window);
  void PushButton(Fl_Window& window, int button, int held, bool again);
  void ReleaseButton(Fl_Window& window, int button, int held);
  void TypeSomething(Fl_Window& window);
  void TypeNumber(Fl_Window& window);

  std::mt19937 m_Random;
  int m_iActions = 0;
  bool m_bObedient = false;
  int m_iAnswers = 0;  ///< to what is open now
  int m_iX = 0;
  int m_iY = 0;
  std::optional<CHeldKey> m_HeldKey;
};
