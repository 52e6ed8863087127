#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "support/gui/WindowTest.h"

/// The main window with services and without tools.
class WindowCommandsTest : public WindowTest {
 protected:
  using Tool = CImageViewUI::Tool;
  using Texts = std::vector<std::string>;

  WindowCommandsTest() { m_Window.SetServices(Services()); }

  std::string Console() { return m_Grid.m_Console.Take(); }
  std::uint32_t DebugFlags() { return m_Window.ImageView().DebugFlags(); }
  std::uint32_t ImageFlags() { return m_Window.ImageView().DisplayFlags(); }
  // As the user has it: running, with its tick registered.
  void StartSolver() {
    Grid().Run().SetRunning(true);
    RegisterSolverTimer(Grid());
  }
  void ExpectRunControl(bool active) {
    EXPECT_EQ(IsActive(Control::StopSolver), active);
    EXPECT_EQ(IsActive(Control::ResumeSolver), active);
    EXPECT_EQ(IsActive(Control::SwitchResolution), active);
  }
};
