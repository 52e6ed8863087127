#pragma once

#include <cstdlib>
#include <iterator>
#include <sstream>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include <FL/Fl_Value_Slider.H>

#include "app/CToolSet.h"
#include "drawing/DrawingSettings.h"
#include "support/CStaging.h"
#include "support/FileBuilders.h"
#include "support/gui/Widgets.h"
#include "support/gui/WindowTest.h"

/// Base of tests of the secondary windows over the main one, which is shown.
class ToolSetTest : public WindowTest {
 protected:
  void SetUp() override { ASSERT_NO_FATAL_FAILURE(ShowWindow()); }
  void TearDown() override {
    // The tools report to the window, which goes after them.
    for (const Control control : {Control::LightSources, Control::Recorder}) {
      if (IsOn(control)) ClickOn(control);
    }
  }

  // The window with this title that is on the screen.
  Fl_Window& Panel(const char* title) {
    for (Fl_Window* window = Fl::first_window(); window != nullptr; window = Fl::next_window(window)) {
      if (window->label() != nullptr && std::string(window->label()) == title) return *window;
    }
    throw std::runtime_error(title);
  }
  Fl_Window& OpenLights() {
    if (!IsOn(Control::LightSources)) ClickOn(Control::LightSources);
    return Panel("Light sources");
  }
  void Push(const char* label) { Press(Find<Fl_Button>(Panel("Light sources"), label)); }
  // Of the removed "Light 1", which is switched on.
  void SetRed(double red) {
    Find<Fl_Button>(Panel("Light sources"), "Set the light active").value(1);
    auto& slider = Find<Fl_Value_Slider>(Panel("Light sources"), "Red");
    slider.value(red);
    slider.do_callback();
  }
  double Value(const char* slider) { return Find<Fl_Value_Slider>(Panel("Light sources"), slider).value(); }
  // The command may wait for the solver's tick.
  void Choose(MenuEntry entry) {
    Menu().Choose(entry);
    ASSERT_TRUE(RunToolkitUntil([this] { return Grid().Run().NextOperation() == Operation::kNone; }));
  }
  void SaveAndLoad(const char* name, bool withLights, const CLightSet& meanwhile) {
    m_Dialogs.m_File = (m_Directory.Path() / name).string();
    m_Dialogs.m_bYes = withLights;
    Choose(kSaveGrid);
    CStaging::AddedLights(Grid()) = CStaging::RemovedLights(Grid()) = meanwhile;
    Choose(MenuEntry::LoadGrid);
  }
  std::string Path(const char* name) const { return (m_Directory.Path() / name).string(); }
  // From model.grid to batch.grid.
  bool RunBatch(const std::string& options) const {
    const std::string files = Path("model.grid") + "' --save '" + Path("batch.grid") + "' ";
    return std::system(("'" RELIEVO_BATCH "' --quiet '" + files + options).c_str()) == 0;
  }
  // The heights in a grid file, and all that is written after its constraints but them.
  static std::pair<std::vector<double>, std::string> HeightsAndRest(const std::string& file) {
    const std::string text = BytesOf(file);
    const std::size_t level = text.find("\n\nL\n");
    const std::size_t from = text.find("\n\nZ\n") + 5;
    const std::size_t to = text.find("\n\nN\n");
    std::istringstream in(text.substr(from, to - from));
    const std::vector<double> heights{std::istream_iterator<double>(in), {}};
    return {heights, text.substr(level, from - level) + text.substr(to)};
  }
  bool IsDrawn() {
    return RunToolkitUntil([this] { return m_Window.GridView().damage() == 0; });
  }
  void Redraw() {
    m_Window.GridView().redraw();
    ASSERT_TRUE(IsDrawn());
  }

  CGlobalScope<CDrawingSettings> m_Settings{g_DrawingSettings, CDrawingSettings{}};
  CToolSet m_Tools{m_Window, Grid()};
};
