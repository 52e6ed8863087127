#pragma once

#include <concepts>

#include <FL/Fl.H>
#include <gtest/gtest.h>

#include "support/GridBuilders.h"
#include "support/gui/CScreen.h"
#include "support/gui/WaitUntil.h"

/// Lets the toolkit work until `condition` holds; false if it never did.
template <std::predicate Condition>
bool RunToolkitUntil(Condition condition) {
  return WaitUntil([&condition] {
    Fl::check();
    return condition();
  });
}

/// Base of tests that use the program's windows within their own process: a small grid, and a display or else a failure
/// that says so. The display's own pointer is out of the way of the events that they send.
class ToolkitTest : public ::testing::Test {
 protected:
  ToolkitTest() { m_Screen.ParkPointer(); }

  CGrid& Grid() { return m_Grid.m_Grid; }
  /// Leaves the next tick something to do.
  void GiveWork() { m_Grid.Initialize(2, true); }

  CScreen m_Screen;
  CTestGrid m_Grid;
};
