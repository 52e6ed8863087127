#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "editing/CEditingHost.h"
#include "editing/ModelDisplay.h"
#include "model/Globals.h"
#include "support/ConstraintBuilders.h"
#include "support/WindowBuilders.h"

namespace {

using Shown = std::vector<std::string>;

/// Notes what it is to show.
class RecordingDisplay : public ModelDisplay {
 public:
  void RequestRedraw() override { ++m_iRedraws; }
  void ShowInterpolation(const CInterpolationTrace& /*trace*/) override { m_asShown.emplace_back("trace"); }
  void SetNumberIter(int n) override { m_asShown.push_back("iterations " + std::to_string(n)); }
  void SetNumberOfConstraints(int n) override { m_asShown.push_back("constraints " + std::to_string(n)); }
  void SetNumberOfCells(int n) override { m_asShown.push_back("cells " + std::to_string(n)); }
  void SetNumberOfPoints(int n) override { m_asShown.push_back("points " + std::to_string(n)); }
  void TellSolverGaveUp() override { m_asShown.emplace_back("gave up"); }
  void TellSolverStopped() override { m_asShown.emplace_back("stopped"); }
  void ProcessEvents() override { m_asShown.emplace_back("events"); }

  Shown m_asShown;
  int m_iRedraws = 0;
};

class EditingHostTest : public ::testing::Test {
 protected:
  EditingHostTest() {
    m_Commands.AttachGrid(Grid());
    m_GridHost.AttachGrid(Grid());
    m_Display.m_asShown.clear();
  }
  ~EditingHostTest() override { g_nSolverTimers = 0; }

  CGrid& Grid() { return m_Test.Grid(); }
  Shown Take() { return std::exchange(m_Display.m_asShown, {}); }
  // An edit of the model, which the user's display shows the count of at once.
  void Edit() {
    Grid().AddPtCstr(HeightCstr(4, 22, 1));
    Take();
  }
  // Whether the user is told that an edit waits; what else was shown is forgotten.
  bool TellsOfStop() {
    const Shown shown = Take();
    return std::ranges::find(shown, "stopped") != shown.end();
  }

  CTestSolver m_Test;
  ScriptedHost m_Host;
  RecordingDisplay m_Display;
  CGridCommands m_Commands{m_Host, m_Test.m_Solver};
  CEditingHost m_GridHost{m_Display, m_Test.m_Solver, m_Commands};
};

}  // namespace

TEST_F(EditingHostTest, ReportsReachTheDisplay) {
  m_GridHost.ShowIterations(120);
  m_GridHost.ShowResolution(40, 60);
  m_GridHost.ShowConstraints(3);
  m_GridHost.ProcessEvents();
  EXPECT_EQ(Take(), (Shown{"iterations 120", "cells 40", "points 60", "constraints 3", "events"}));
  m_GridHost.RequestRedraw();
  EXPECT_EQ(m_Display.m_iRedraws, 1);
}

TEST_F(EditingHostTest, TheGridsCommandsArePerformed) {
  m_Host.m_File = "name";
  Grid().Run().Post(Operation::kLoadImage);
  Grid().PerformPendingWork();
  EXPECT_EQ(m_Host.m_asPictures, Shown{"name"});
}

TEST_F(EditingHostTest, ASolverThatHasStoppedItselfResumesAfterAChange) {
  m_Test.m_Solver.Run();
  m_GridHost.PauseSolverConverged();
  EXPECT_TRUE(Take().empty());
  m_GridHost.ResumeAfterChange();
  EXPECT_TRUE(Grid().Run().IsRunning());
  m_GridHost.PauseSolverGaveUp();
  EXPECT_EQ(Take(), Shown{"gave up"});
  m_GridHost.ResumeAfterChange();
  EXPECT_TRUE(Grid().Run().IsRunning());
}

TEST_F(EditingHostTest, WithNoTickWhatIsPostedIsPerformed) {
  Edit();
  g_nSolverTimers = 1;
  m_GridHost.PerformPendingWork(false);
  EXPECT_NE(Grid().Run().NextOperation(), Operation::kNone);
  g_nSolverTimers = 0;
  m_GridHost.PerformPendingWork(false);
  EXPECT_EQ(Grid().Run().NextOperation(), Operation::kNone);
}

TEST_F(EditingHostTest, TheFirstEditThatWaitsForTheUserIsTold) {
  m_Test.m_Solver.StopSolver();
  for (const bool first : {true, false}) {
    Edit();
    m_GridHost.PerformPendingWork(false);
    EXPECT_EQ(TellsOfStop(), first);
  }
}

TEST_F(EditingHostTest, NothingIsToldWhileAButtonIsHeld) {
  m_Test.m_Solver.StopSolver();
  Edit();
  m_GridHost.PerformPendingWork(true);
  EXPECT_EQ(Grid().Run().NextOperation(), Operation::kNone);
  EXPECT_FALSE(TellsOfStop());
  m_GridHost.PerformPendingWork(false);
  EXPECT_TRUE(TellsOfStop());
}

TEST_F(EditingHostTest, AFileThatWaitsForNothingIsNotToldOf) {
  m_Test.m_Solver.StopSolver();
  for (const Operation operation : {Operation::kSaveGrid, Operation::kLoadImage}) {
    Grid().PerformPendingWork();
    Grid().Run().Post(operation);
    m_GridHost.PerformPendingWork(false);
    EXPECT_FALSE(TellsOfStop());
  }
}

TEST_F(EditingHostTest, ADetachedGridIsOnItsOwn) {
  m_GridHost.Detach();
  Grid().AddPtCstr(HeightCstr(4, 22, 1));
  m_GridHost.PerformPendingWork(false);
  EXPECT_NE(Grid().Run().NextOperation(), Operation::kNone);
  EXPECT_TRUE(Take().empty());
}
