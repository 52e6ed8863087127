#pragma once

#include <optional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "model/Globals.h"
#include "support/FormatBuilders.h"
#include "support/WindowBuilders.h"

/// The commands on a grid with a scripted user, and services that note what they were asked.
class GridCommandsTest : public ::testing::Test {
 protected:
  using Done = std::vector<std::string>;
  /// Each segment of a line (LineOf) generates about 8,000 constraints at this distance.
  static constexpr double kSmallDistance = 0.25 / 8000;

  GridCommandsTest() {
    m_Commands.AttachGrid(Grid());
    m_Commands.SetServices(Services());
  }
  ~GridCommandsTest() override { g_nSolverTimers = 0; }
  void SetUp() override { g_fPickTolerance = 1.0; }
  void TearDown() override { g_fPickTolerance = 1.0; }

  CGrid& Grid() { return m_Test.Grid(); }
  CSolverControl& Solver() { return m_Test.m_Solver; }
  std::string Console() { return m_Test.m_Grid.m_Console.Take(); }

  static std::vector<CPtCstr> LineOf(int segments) {
    std::vector<CPtCstr> places;
    for (int k = 0; k <= segments; ++k) places.push_back({-3 + 0.25 * k, 22.2});
    return places;
  }

  // Services that note what they were asked, and whether the solver ran meanwhile.
  CModelServices Services() {
    return {[this](const CGrid&) { return Note("ask"), m_NewGrid; },
            [this](CGrid&, const std::string& file) {
              Note("load " + file);
              return m_Loaded;
            },
            [this](const CModelFormat& format, const CGrid&, const std::string& file, const CWriteSettings& settings) {
              Note((&format == &VrmlFormat() ? "vrml " : "save ") + file);
              if (m_bAsksForLights) Note(settings.m_WithLights() ? "with lights" : "without lights");
              return m_Saved;
            },
            [this](const std::function<void(int, int)>&) { Note("height field"); },
            [this](const CContourAttributes& present, bool fairness) {
              Note(fairness ? "fairness" : "curve");
              m_Attributes = present;
              return m_CurveAnswer;
            },
            [this](const std::string& file) {
              Note("read " + file);
              return m_Project;
            },
            [this](const CProject& /*project*/, const std::string& file) {
              Note("project " + file);
              return m_Saved;
            }};
  }
  void Note(const std::string& what) {
    m_asDone.push_back(what);
    m_bRanMeanwhile = m_bRanMeanwhile || Grid().Run().IsRunning();
  }

  CReadProject m_Project;  ///< what is in a project file
  CTestSolver m_Test;
  ScriptedHost m_Host;
  CGridCommands m_Commands{m_Host, m_Test.m_Solver};
  GridFileState m_Loaded = GridFileState::Whole;
  CSaveOutcome m_Saved;
  bool m_bAsksForLights = false;
  std::optional<CGridParameters> m_NewGrid;
  std::optional<CContourAnswer> m_CurveAnswer;
  CContourAttributes m_Attributes;  // that were shown last
  std::vector<std::string> m_asDone;
  bool m_bRanMeanwhile = false;
};
