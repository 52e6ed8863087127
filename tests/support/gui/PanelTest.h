#pragma once

#include <concepts>

#include <FL/Fl.H>
#include <FL/Fl_Window.H>
#include <gtest/gtest.h>
#include <unistd.h>

#include "support/gui/CScreen.h"
#include "support/gui/RecordingViews.h"
#include "support/gui/WaitUntil.h"
#include "support/gui/Widgets.h"

/// Lets the toolkit work until `condition` holds; false if it never did.
template <std::predicate Condition>
bool WorkUntil(Condition condition) {
  return WaitUntil([&condition] {
    Fl::check();
    return condition();
  });
}

/// Base of tests of one panel: a display, or else a failure that says so, and a window the panel opens beside.
class PanelTest : public ::testing::Test {
 protected:
  // Else the toolkit would put the next test's widgets into the window that has gone with this one.
  PanelTest() { m_MainWindow.end(); }

  static CArea AreaOf(const Fl_Widget& widget) { return {widget.x(), widget.y(), widget.w(), widget.h()}; }
  static void ExpectInsideGroups(Fl_Window& panel) {
    for (Fl_Widget* widget : WidgetsIn(panel)) {
      Fl_Group* parent = widget->parent();
      const CArea room = parent == &panel ? CArea{0, 0, panel.w(), panel.h()} : AreaOf(*parent);
      const char* name = widget->label() == nullptr ? "a widget" : widget->label();
      EXPECT_GE(widget->x(), room.m_iX) << name;
      EXPECT_GE(widget->y(), room.m_iY) << name;
      EXPECT_LE(widget->x() + widget->w(), room.m_iX + room.m_iWidth) << name;
      EXPECT_LE(widget->y() + widget->h(), room.m_iY + room.m_iHeight) << name;
    }
  }
  /// Waits until a window with this title lies on the screen.
  bool Appears(const char* title) {
    return WorkUntil([&] { return m_Screen.FindWindow(getpid(), title).has_value(); });
  }

  CScreen m_Screen;
  RecordingViews m_Views;
  Fl_Window m_MainWindow{40, 60, 400, 300};
};
