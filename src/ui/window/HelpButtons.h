#pragma once

#include <FL/Fl.H>
#include <FL/Fl_Button.H>
#include <FL/Fl_Light_Button.H>
#include <FL/Fl_Round_Button.H>

#include "ui/window/CHelpLine.h"

/// A button of the toolkit that explains itself in the help line while the mouse is over it and never takes the
/// keyboard focus.
template <class Button>
class CHelpAware : public Button {
 public:
  /// `help` is an index of `kHelpTexts`. The line must outlive the button.
  CHelpAware(int x, int y, int w, int h, int help, const char* label, CHelpLine& line)
      : Button(x, y, w, h, label), m_iHelp(help), m_pHelpLine(&line) {}

  int handle(int event) override {
    switch (event) {
      case FL_ENTER:
      case FL_MOVE:
        m_pHelpLine->ShowHelp(m_iHelp);
        return 1;
      case FL_LEAVE:
        m_pHelpLine->RestoreHelp();
        return 1;
      case FL_FOCUS:
        return 0;
      default:
        return Button::handle(event);
    }
  }

 private:
  int m_iHelp;
  CHelpLine* m_pHelpLine;
};

/// The toolkit's buttons that show their help under the mouse.
class CHelpButton : public CHelpAware<Fl_Button> {
 public:
  using CHelpAware::CHelpAware;
};

/// With a lamp.
class CHelpLightButton : public CHelpAware<Fl_Light_Button> {
 public:
  using CHelpAware::CHelpAware;
};

/// Round.
class CHelpRoundButton : public CHelpAware<Fl_Round_Button> {
 public:
  using CHelpAware::CHelpAware;
};
