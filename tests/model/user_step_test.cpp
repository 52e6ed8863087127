// When a tick hands steps back and forward to the host, and what it has performed by then.

#include <functional>
#include <vector>

#include <gtest/gtest.h>

#include "support/CurveGrid.h"

namespace {

/// Does as told when a step is to be taken.
class CSteppingHost : public CActingHost {
 public:
  using CActingHost::CActingHost;

  void TakeStep(UserStep step) override {
    m_aSteps.push_back(step);
    if (m_OnStep) m_OnStep();
  }
  void PauseSolverGaveUp() override { ++m_iGaveUp; }

  std::vector<UserStep> m_aSteps;
  std::function<void()> m_OnStep;
  int m_iGaveUp = 0;
};

struct CStepGrid : CTestGrid {
  CStepGrid() {
    AddAll(m_Grid, SomeConstraints());
    m_Grid.PerformPendingWork();
  }
  CSteppingHost m_Host{m_Grid};
};

TEST(UserStepTest, CodesPostedBeforeAStepArePerformedFirst) {
  CStepGrid test;
  test.m_Grid.CellEdits().Select(0, 20.5, 4, 22);
  const int leaves = test.m_Grid.Surface().Tree().LeafCount();
  std::vector<int> seen;
  test.m_Host.m_OnStep = [&] { seen.push_back(test.m_Grid.Surface().Tree().LeafCount()); };
  test.m_Grid.CellEdits().SplitSelected();
  test.m_Grid.Run().RequestStep(UserStep::Undo);
  test.m_Grid.CellEdits().MergeSelected();
  test.m_Grid.Run().RequestStep(UserStep::Redo);
  test.m_Grid.UpdateGrid();
  EXPECT_EQ(test.m_Host.m_aSteps, (std::vector{UserStep::Undo, UserStep::Redo}));
  ASSERT_EQ(seen.size(), 2U);
  EXPECT_GT(seen[0], leaves);
  EXPECT_EQ(seen[1], leaves);
  EXPECT_FALSE(test.m_Grid.Run().HasPending());
}

TEST(UserStepTest, AnEditIsRebuiltOnceTogetherWithTheStep) {
  CStepGrid test;
  test.m_Grid.AddCurve(PointsAt(kPath), kTear, false);
  test.m_Grid.PerformPendingWork();
  test.m_Grid.PickCurve(4, 22, CurveType::kAll);
  test.m_Grid.DeleteSelectedCurve();
  Operation posted = Operation::kNone;
  test.m_Host.m_OnStep = [&] { posted = test.m_Grid.Run().NextOperation(); };
  test.m_Grid.Run().RequestStep(UserStep::Undo);
  test.m_Console.Take();
  test.m_Grid.UpdateGrid();
  EXPECT_EQ(posted, Operation::kRebuildMaps);
  EXPECT_EQ(Occurrences(test.m_Console.Take(), "CGrid::SetDiscMap"), 1);
}

TEST(UserStepTest, WhatAStepPostsIsPerformedInTheSameTick) {
  CStepGrid test;
  const CDocument before = DocumentOf(test.m_Grid);
  test.m_Grid.AddPtCstr(HeightCstr(7, 21.5, 2));
  test.m_Grid.PerformPendingWork();
  test.m_Host.m_OnStep = [&] { CRestoration::RestoreDocument(test.m_Grid, before); };
  test.m_Grid.Run().RequestStep(UserStep::Undo);
  test.m_Grid.UpdateGrid();
  EXPECT_FALSE(test.m_Grid.Run().HasPending());
  EXPECT_EQ(test.m_Grid.Solver().System().ConstraintCount(), 5U);
  ASSERT_TRUE(RunUntilPaused(test.m_Grid));
}

TEST(UserStepTest, WhereTheSolverHadDoneItsWorkItRests) {
  CStepGrid test;
  ASSERT_TRUE(RunUntilPaused(test.m_Grid));
  const CModelState state = StateOf(test.m_Grid);
  const int pauses = test.m_Host.m_iPauses;
  test.m_Grid.Reset();
  test.m_Grid.Run().SetRunning(true);
  test.m_Grid.UpdateGrid();
  test.m_Host.m_OnStep = [&] {
    CRestoration::RestoreState(test.m_Grid, state);
    test.m_Grid.Run().SetRunning(false);
  };
  test.m_Grid.Run().RequestStep(UserStep::Undo);
  test.m_Grid.UpdateGrid();
  EXPECT_EQ(test.m_Host.m_iPauses, pauses);
  EXPECT_FALSE(test.m_Grid.Run().IsRunning());
}

TEST(UserStepTest, AStepEndsTheIterationsOfATick) {
  CStepGrid test;
  const CPollingScope polling;
  test.m_Grid.UpdateGrid();
  const int before = test.m_Grid.Solver().Counter();
  test.m_Host.m_iEventRounds = 0;
  test.m_Host.m_OnEvents = [&](int round) {
    if (round == 4) test.m_Grid.Run().RequestStep(UserStep::Undo);
  };
  test.m_Grid.UpdateGrid();
  EXPECT_LT(test.m_Grid.Solver().Counter(), before + 10);
}

}  // namespace
