#pragma once

#include <cmath>
#include <cstddef>
#include <memory>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include <FL/Fl_Input.H>
#include <FL/Fl_Output.H>

#include "app/CReferenceTool.h"
#include "support/DepthBuilders.h"
#include "support/FileBuilders.h"
#include "support/gui/Widgets.h"
#include "support/gui/WindowTest.h"

/// Base of tests of the panel "Reference depth" beside the main window, with estimators that are shell scripts.
class ReferencePanelTest : public WindowTest {
 protected:
  void SetUp() override {
    ASSERT_NO_FATAL_FAILURE(ShowWindow());
    m_Window.Settings().KeepIn(SettingsFile());
    m_Window.SetTool(CImageViewUI::Tool::ReferenceDepth, std::make_unique<CReferenceTool>(m_Window, Grid()));
  }
  void TearDown() override {
    for (Fl_Window* window = Fl::first_window(); window != nullptr; window = Fl::next_window(window)) {
      if (window != &m_Window) return window->hide();
    }
  }
  std::string SettingsFile() const { return (m_Directory.Path() / "config/settings.json").string(); }
  Fl_Window& Panel() {
    for (Fl_Window* window = Fl::first_window(); window != nullptr; window = Fl::next_window(window)) {
      if (window->label() != nullptr && std::string(window->label()) == "Reference depth") return *window;
    }
    throw std::runtime_error("no panel");
  }
  void Open() { Menu().Choose(MenuEntry::ReferenceDepth); }
  bool IsActive(const char* button) { return Find<Fl_Button>(Panel(), button).active() != 0; }
  void Push(const char* button) { Press(Find<Fl_Button>(Panel(), button)); }
  std::string Says() { return Find<Fl_Output>(Panel(), "It says").value(); }

  /// Starts a script that gets the two files.
  void Estimate(const std::string& script) {
    WriteText(m_Directory.Path() / "an estimator.sh", script + "\n");
    Open();
    LoadPicture();
    Find<Fl_Input>(Panel(), "Estimator").value(CommandLine().c_str());
    ASSERT_TRUE(RunToolkitUntil([this] { return IsActive("Estimate..."); }));
    Push("Estimate...");
  }
  std::string CommandLine() const {
    return "sh '" + (m_Directory.Path() / "an estimator.sh").string() + "' {image} {depth}";
  }
  bool HasEnded() {
    return RunToolkitUntil([this] { return IsActive("Estimate...") && !IsActive("Cancel"); });
  }

  /// A step along the middle, with a rounded edge.
  void LoadStep() {
    const auto step = [](double x, double y) { return x + 0.03 * std::sin(6 * y) > 0.5 ? 1.0 : 0.0; };
    Grid().ReferenceEdits().Load(SharedDepthMap(64, 64, step), "/maps/step.pfm");
    Grid().PerformPendingWork();
  }
  std::vector<std::pair<double, double>> CurveNodes() {
    std::vector<std::pair<double, double>> places;
    for (const CCntrCtrl& curve : Grid().Constraints().Curves()) {
      for (const CCntrNode& node : curve.Nodes()) places.emplace_back(node.m_fX, node.m_fY);
    }
    return places;
  }
  std::size_t Curves() { return Grid().Constraints().Curves().size(); }
};
