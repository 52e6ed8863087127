// Steps that replace the surface: what comes back with them, and what the solver does then.

#include <algorithm>
#include <vector>

#include <gtest/gtest.h>

#include "model/Globals.h"
#include "support/HistoryBuilders.h"

namespace {

double RangeOf(const std::vector<double>& heights) {
  const auto [low, high] = std::ranges::minmax(heights);
  return high - low;
}

class SurfaceStepsTest : public ::testing::Test {
 protected:
  SurfaceStepsTest() {
    AddAll(Grid(), SomeConstraints());
    m_Test.m_Test.m_Solver.Run();
    m_Test.Round();
    Solve();
    m_Heights = NodalHeights(Grid());
    m_Test.m_History.Clear();
  }
  ~SurfaceStepsTest() override { g_fPickTolerance = 1.0; }
  CGrid& Grid() { return m_Test.Grid(); }
  CSolverControl& Solver() { return m_Test.m_Test.m_Solver; }
  void Solve() { ASSERT_TRUE(RunUntilPaused(Grid())); }
  void ExpectSurface(double tolerance) {
    EXPECT_LT(LargestDifference(NodalHeights(Grid()), m_Heights), tolerance * RangeOf(m_Heights));
  }
  // At once, and still after the solver has had its chance.
  void ExpectBackForGood() {
    ExpectSurface(1e-12);
    EXPECT_FALSE(Grid().Run().IsRunning());
    EXPECT_EQ(Solver().Reason(), PauseReason::Converged);
    Solver().Run();
    for (int tick = 0; tick < 10; ++tick) Grid().UpdateGrid();
    ExpectSurface(1e-9);
  }

  CTestHistory m_Test;
  std::vector<double> m_Heights;
};

}  // namespace

TEST_F(SurfaceStepsTest, AConvergedSurfaceIsBackAfterANewGrid) {
  m_Test.NewGrid(3, {0, 7, 0, 9});
  Solver().Run();
  for (int tick = 0; tick < 3; ++tick) Grid().UpdateGrid();
  EXPECT_NE(g_fPickTolerance, 1.0);
  m_Test.Undo();
  EXPECT_EQ(g_fPickTolerance, 1.0);
  EXPECT_TRUE(m_Test.m_Host.m_bRectangle);
  ExpectBackForGood();
}

TEST_F(SurfaceStepsTest, AConvergedSurfaceIsBackAfterAReset) {
  Grid().Reset();
  m_Test.Round();
  m_Test.Undo();
  EXPECT_FALSE(m_Test.m_Host.m_bRectangle);
  ExpectBackForGood();
}

TEST_F(SurfaceStepsTest, AConvergedSurfaceIsBackAfterTheOtherResolution) {
  Grid().Run().Post(Operation::kTransferToHigh);
  m_Test.Round();
  Solve();
  EXPECT_EQ(g_bHighRes, 1);
  const std::vector<double> high = NodalHeights(Grid());
  m_Test.Undo();
  EXPECT_EQ(g_bHighRes, 0);
  ExpectBackForGood();
  m_Test.Redo();
  EXPECT_EQ(g_bHighRes, 1);
  EXPECT_LT(LargestDifference(NodalHeights(Grid()), high), 1e-9 * RangeOf(high));
}

TEST_F(SurfaceStepsTest, WhatIsAroundTheModelComesBack) {
  m_Test.m_Host.m_Surroundings.m_Name.m_File = "old.grid";
  m_Test.m_Host.m_Surroundings.m_Camera.m_fTheta = 33;
  m_Test.NewGrid(3, {0, 7, 0, 9});
  m_Test.m_Host.m_Surroundings = {};
  m_Test.Undo();
  EXPECT_EQ(m_Test.m_Host.m_Surroundings.m_Name.m_File, "old.grid");
  EXPECT_EQ(m_Test.m_Host.m_Surroundings.m_Camera.m_fTheta, 33);
  m_Test.Redo();
  EXPECT_EQ(m_Test.m_Host.m_Surroundings.m_Name.m_File, "");
}

TEST_F(SurfaceStepsTest, EditsBeforeAndAfterAreTakenBackInTheirOrder) {
  const CDocument first = DocumentOf(Grid());
  Grid().AddPtCstr(HeightCstr(7, 21.5, 2));
  m_Test.Round();
  const CDocument second = DocumentOf(Grid());
  m_Test.NewGrid(3, {0, 7, 0, 9}, true);
  m_Test.Round();
  const CDocument third = DocumentOf(Grid());
  Grid().AddPtCstr(HeightCstr(3, 3, 2));
  m_Test.Round();
  const CDocument fourth = DocumentOf(Grid());
  for (const CDocument* wanted : {&third, &second, &first}) {
    m_Test.Undo();
    EXPECT_TRUE(DocumentOf(Grid()) == *wanted);
  }
  for (const CDocument* wanted : {&second, &third, &fourth}) {
    m_Test.Redo();
    EXPECT_TRUE(DocumentOf(Grid()) == *wanted);
  }
}

TEST_F(SurfaceStepsTest, ASolverOnItsWayGoesOnAfterUndo) {
  Grid().AddPtCstr(HeightCstr(7, 21.5, 2));
  m_Test.Round();
  Grid().UpdateGrid();
  ASSERT_TRUE(Grid().Run().IsRunning());
  m_Test.NewGrid(3, {0, 7, 0, 9});
  m_Test.Undo();
  EXPECT_TRUE(Grid().Run().IsRunning());
  Solve();
  EXPECT_NEAR(SurfaceHeight(Grid(), 7, 21.5), 2, 1e-6);
}

TEST_F(SurfaceStepsTest, WhatElseHasStoppedTheSolverStands) {
  m_Test.NewGrid(3, {0, 7, 0, 9});
  for (const bool freeze : {true, false}) {
    if (freeze) {
      Solver().PauseForFreeze();
    } else {
      Solver().StopSolver();
    }
    const PauseReason reason = Solver().Reason();
    m_Test.Undo();
    EXPECT_EQ(Solver().Reason(), reason);
    EXPECT_FALSE(Grid().Run().IsRunning());
    m_Test.Redo();
    EXPECT_EQ(Solver().Reason(), reason);
    EXPECT_FALSE(Grid().Run().IsRunning());
  }
}

TEST_F(SurfaceStepsTest, ALoadThatLeavesTheModelIsNone) {
  m_Test.m_CommandHost.m_File = "none.grid";
  const GridFileState state = GridFileState::NotOpened;
  m_Test.m_Services.m_LoadGrid = [&](CGrid&, const std::string&) { return state; };
  m_Test.m_Commands.SetServices(m_Test.m_Services);
  m_Test.m_Commands.Request(Operation::kLoadGrid);
  EXPECT_EQ(m_Test.Count(), 0U);
  EXPECT_FALSE(m_Test.m_History.CanUndo());
}

TEST_F(SurfaceStepsTest, ALoadedModelIsTakenBack) {
  m_Test.m_CommandHost.m_File = "some.grid";
  m_Test.m_Services.m_LoadGrid = [](CGrid& grid, const std::string&) {
    grid.Initialize(1, false, 0, 0, 3, 3);
    return GridFileState::Whole;
  };
  m_Test.m_Commands.SetServices(m_Test.m_Services);
  m_Test.m_Commands.Request(Operation::kLoadGrid);
  EXPECT_EQ(m_Test.m_History.UndoName(), "Load Grid");
  m_Test.Undo();
  ExpectBackForGood();
}

// The same as what the default keeps at level 7: each way to a new grid is a step of two surfaces.
TEST(SurfaceStepsMemoryTest, TwentyAtLevelSevenAreKept) {
  const CResolutionScope scope(7, 5);
  CTestHistory test;
  test.Grid().Initialize(5, false, 0, 0, 100, 100);
  for (int k = 0; k < 25; ++k) {
    test.NewGrid(5, {0, 100.0 + k, 0, 100});
    test.Round();
  }
  EXPECT_EQ(test.Count(), 25U);
  EXPECT_LT(test.m_History.Steps().Bytes(), std::size_t{25} * 300'000);
}
