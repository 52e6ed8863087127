// After the solver has converged, every change of the model makes it go on.

#include <functional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "model/CGrid.h"
#include "support/CStaging.h"
#include "support/UpdateBuilders.h"

namespace {

struct CEdit {
  std::string m_Name;
  std::function<void(CGrid&)> m_Apply;
};

// Every way to change the model. The first constraint of the list is a height, the last one a slope.
std::vector<CEdit> EveryEdit() {
  const auto onHeight = [](auto edit) {
    return [edit](CGrid& grid) {
      SetSelection(CStaging::Constraints(grid).Points(), "1000");
      edit(grid);
    };
  };
  std::vector<CEdit> edits{
      {"AddPtCstr", [](CGrid& grid) { grid.AddPtCstr(HeightCstr(7, 21.5, 2)); }},
      {"MoveSelectedPtCstr", onHeight([](CGrid& grid) { grid.MoveSelectedPtCstr(1, 0.5); })},
      {"SetSelectedHeight", onHeight([](CGrid& grid) { grid.SetSelectedHeight(8); })},
      {"ChangeSelectedNormal without one", onHeight([](CGrid& grid) { grid.ChangeSelectedNormal(1, 1); })},
      {"DeleteSelectedPtCstr", onHeight([](CGrid& grid) { grid.DeleteSelectedPtCstr(); })},
      {"ChangeSelectedNormal",
       [](CGrid& grid) {
         SetSelection(CStaging::Constraints(grid).Points(), "0001");
         grid.ChangeSelectedNormal(1, 1);
       }},
      {"Reset", [](CGrid& grid) { grid.Reset(); }},
  };
  for (const int code : {1, 2, 4, 8, 16, 32, 64, 128, 256, 512, 1024, 4096})
    edits.push_back({"code " + std::to_string(code), [code](CGrid& grid) { grid.Run().Post(OperationOf(code)); }});
  return edits;
}

TEST(SolverResumeTest, EveryEditResumesOnce) {
  for (const CEdit& edit : EveryEdit()) {
    SCOPED_TRACE(edit.m_Name);
    CConvergedGrid test;
    CActingHost host(test.m_Grid);
    edit.m_Apply(test.m_Grid);
    EXPECT_EQ(host.m_iResumptions, 1);
    EXPECT_TRUE(test.m_Grid.Run().IsRunning());
    EXPECT_FALSE(test.m_Grid.Solver().HasConverged());
    edit.m_Apply(test.m_Grid);
    EXPECT_EQ(host.m_iResumptions, 1);
  }
}

TEST(SolverResumeTest, EveryEditSetsTheRunningFlagWithoutAHost) {
  for (const CEdit& edit : EveryEdit()) {
    CConvergedGrid test;
    edit.m_Apply(test.m_Grid);
    EXPECT_TRUE(test.m_Grid.Run().IsRunning()) << edit.m_Name;
  }
}

// Whether to run again is the host's to decide: it knows why the solver was stopped.
TEST(SolverResumeTest, HostDecidesWhetherToRun) {
  CConvergedGrid test;
  RecordingHost host;
  test.m_Grid.Run().AttachHost(&host);
  test.m_Grid.Run().Post(Operation::kRestart);
  EXPECT_EQ(host.m_iResumptions, 1);
  EXPECT_FALSE(test.m_Grid.Run().IsRunning());
}

TEST(SolverResumeTest, ResumingHostFindsTheWorkPosted) {
  struct CLookingHost : RecordingHost {
    explicit CLookingHost(CGrid& grid) : m_Grid(grid) {}
    void ResumeAfterChange() override { m_iSeen = CodeOf(m_Grid.Run().NextOperation()); }
    CGrid& m_Grid;
    int m_iSeen = -1;
  };
  CConvergedGrid test;
  CLookingHost host(test.m_Grid);
  test.m_Grid.Run().AttachHost(&host);
  test.m_Grid.AddPtCstr(HeightCstr(7, 21.5, 2));
  EXPECT_EQ(host.m_iSeen, 2);
}

TEST(SolverResumeTest, FilesAndPicturesDoNotResume) {
  for (const Operation code : {Operation::kLoadGrid, Operation::kSaveGrid, Operation::kLoadImage}) {
    CConvergedGrid test;
    CActingHost host(test.m_Grid);
    test.m_Grid.Run().Post(code);
    EXPECT_EQ(host.m_iResumptions, 0) << CodeOf(code);
    EXPECT_FALSE(test.m_Grid.Run().IsRunning());
  }
}

TEST(SolverResumeTest, EditsOfNothingDoNotResume) {
  CConvergedGrid test;
  CActingHost host(test.m_Grid);
  test.m_Grid.UnselectAll();
  test.m_Grid.MoveSelectedPtCstr(1, 1);
  test.m_Grid.SetSelectedHeight(5);
  test.m_Grid.DeleteSelectedPtCstr();
  test.m_Grid.SelectNextPtCstr(PtCstrKind::kPosition);
  test.m_Grid.HighlightPtCstrs(1, 21, PtCstrKind::kPosition);
  EXPECT_EQ(host.m_iResumptions, 0);
}

TEST(SolverResumeTest, EditsBeforeConvergenceDoNotResume) {
  for (const CEdit& edit : EveryEdit()) {
    CTestGrid test;
    CActingHost host(test.m_Grid);
    AddAll(test.m_Grid, SomeConstraints());
    test.m_Grid.UpdateGrid();
    test.m_Grid.Run().SetRunning(false);
    edit.m_Apply(test.m_Grid);
    EXPECT_EQ(host.m_iResumptions, 0) << edit.m_Name;
    EXPECT_FALSE(test.m_Grid.Run().IsRunning());
  }
}

TEST(SolverResumeTest, GridStartedOverGoesOnAtItsFirstConstraint) {
  CConvergedGrid test;
  CActingHost host(test.m_Grid);
  test.Initialize(2);
  test.m_Grid.AddPtCstr(HeightCstr(7, 21.5, 2));
  EXPECT_GE(host.m_iResumptions, 1);
  EXPECT_TRUE(test.m_Grid.Run().IsRunning());
}

// As a window does for a new grid while no tick is registered.
TEST(SolverResumeTest, GridStartedOverAndResetGoesOn) {
  CConvergedGrid test;
  CActingHost host(test.m_Grid);
  test.Initialize(2, true);
  test.m_Grid.Reset();
  EXPECT_GE(host.m_iResumptions, 1);
  EXPECT_TRUE(test.m_Grid.Run().IsRunning());
}

TEST(SolverResumeTest, TickThatConvergesWithWorkPendingGoesOn) {
  CTestGrid test;
  CActingHost host(test.m_Grid);
  host.m_OnCommand = [&](int) { test.m_Grid.Run().Post(Operation::kRebuildMaps); };
  test.m_Grid.Run().Post(Operation::kNewGrid);
  test.m_Grid.UpdateGrid();
  ASSERT_EQ(test.m_Grid.Run().NextOperation(), Operation::kRebuildMaps);
  EXPECT_TRUE(test.m_Grid.Run().IsRunning());
  EXPECT_FALSE(test.m_Grid.Solver().HasConverged()) << "the next tick iterates";
  EXPECT_TRUE(RunUntilPaused(test.m_Grid, 3));
  EXPECT_EQ(test.m_Grid.Run().NextOperation(), Operation::kNone);
}

}  // namespace
