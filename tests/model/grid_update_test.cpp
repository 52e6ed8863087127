// One tick of the grid: what it sets up, how far it iterates, what it shows and what it must not do.

#include <algorithm>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "model/CGrid.h"
#include "support/AllocationCount.h"
#include "support/CStaging.h"
#include "support/UpdateBuilders.h"

namespace {

class GridUpdateTest : public testing::Test {
 protected:
  CGrid& Grid() { return m_Test.m_Grid; }
  CGridSolver const& Solver() { return Grid().Solver(); }
  std::string Console() { return m_Test.m_Console.Take(); }
  std::string Tick() {
    Grid().UpdateGrid();
    return Console();
  }
  void AddSome() { AddAll(Grid(), SomeConstraints()); }
  // The operation is posted when the grid has events processed for the given time.
  void PostInRound(int round, Operation operation) {
    m_Host.m_OnEvents = [this, round, operation](int now) {
      if (now == round) Grid().Run().Post(operation);
    };
  }

  CTestGrid m_Test{4, 2};
  CActingHost m_Host{m_Test.m_Grid};
};

TEST_F(GridUpdateTest, FirstTickRebuildsAndIteratesTenTimes) {
  AddSome();
  EXPECT_EQ(Tick(), "*** SetSparseH ***\n25 points\n");
  EXPECT_EQ(Grid().Solver().Counter(), 10);
  EXPECT_EQ(Grid().Run().NextOperation(), Operation::kNone);
  EXPECT_TRUE(Grid().Run().IsRunning());
}

TEST_F(GridUpdateTest, LaterTicksContinueTheIteration) {
  AddSome();
  Grid().UpdateGrid();
  Console();
  for (int tick = 2; tick <= 4; ++tick) {
    EXPECT_EQ(Tick(), "");
    EXPECT_EQ(Grid().Solver().Counter(), 10 * tick);
  }
}

// A restart in between would take a different course.
TEST_F(GridUpdateTest, TicksDoNotRestart) {
  AddSome();
  Grid().UpdateGrid();
  Grid().UpdateGrid();
  const std::vector<double> twice = Copied(Grid().Surface().Coefficients());
  CTestGrid other(4, 2);
  AddAll(other.m_Grid, SomeConstraints());
  other.m_Grid.UpdateGrid();
  other.m_Grid.Run().Post(Operation::kRestart);
  other.m_Grid.UpdateGrid();
  EXPECT_GT(LargestDifference(twice, Copied(other.m_Grid.Surface().Coefficients())), 1e-9);
}

TEST_F(GridUpdateTest, SameSeedGivesTheSameTicks) {
  AddSome();
  CTestGrid other(4, 2);
  AddAll(other.m_Grid, SomeConstraints());
  for (int tick = 0; tick < 3; ++tick) {
    Grid().UpdateGrid();
    other.m_Grid.UpdateGrid();
  }
  EXPECT_EQ(Copied(Grid().Surface().Coefficients()), Copied(other.m_Grid.Surface().Coefficients()));
}

TEST_F(GridUpdateTest, RestartKeepsTheMatrixAndRebuildsTheRows) {
  AddSome();
  Grid().UpdateGrid();
  const std::size_t entries = Solver().System().Smoothness().EntryCount();
  Grid().Surface().Lattice().Set(Grid().Surface().Lattice().Index(8, 8), PointFlag::kCrease);
  CStaging::Constraints(Grid()).Points().Add(HeightCstr(7, 21.5, 2));
  Console();
  Grid().Run().Post(Operation::kRestart);
  EXPECT_EQ(Tick(), "");
  EXPECT_EQ(Grid().Solver().Counter(), 10);
  EXPECT_EQ(Solver().System().Smoothness().EntryCount(), entries);
  EXPECT_EQ(Solver().System().ConstraintCount(), 6U);
}

TEST_F(GridUpdateTest, RebuildMakesTheMatrixAnew) {
  AddSome();
  Grid().UpdateGrid();
  const std::size_t entries = Solver().System().Smoothness().EntryCount();
  Grid().Surface().Lattice().Set(Grid().Surface().Lattice().Index(8, 8), PointFlag::kCrease);
  Console();
  Grid().Run().Post(Operation::kRebuild);
  EXPECT_EQ(Tick(), "*** SetSparseH ***\n25 points\n");
  EXPECT_EQ(Grid().Solver().Counter(), 10);
  EXPECT_LT(Solver().System().Smoothness().EntryCount(), entries);
}

TEST_F(GridUpdateTest, InitializeInTheMiddleOfTheIterationSetsTheSystemUp) {
  AddSome();
  Grid().UpdateGrid();
  Console();
  m_Test.Initialize(3, true);
  EXPECT_TRUE(Console().ends_with("*** SetSparseH ***\n81 points\n"));
  EXPECT_EQ(Grid().Solver().Counter(), -1);
  EXPECT_EQ(Solver().System().ConstraintCount(), 5U);
  EXPECT_EQ(Tick(), "*** SetSparseH ***\n81 points\n");
  EXPECT_EQ(Grid().Solver().Counter(), 10);
}

TEST_F(GridUpdateTest, ChangedTargetCountsFromTheRestartOn) {
  AddSome();
  Grid().UpdateGrid();
  Grid().SelectNextPtCstr(PtCstrKind::kPosition);
  Grid().SetSelectedHeight(20);
  EXPECT_EQ(Solver().System().Constraints().Targets()[0], 10);
  Grid().UpdateGrid();
  EXPECT_EQ(Solver().System().Constraints().Targets()[0], 200);
}

TEST_F(GridUpdateTest, HostSeesSurfaceAndCounter) {
  AddSome();
  const int redraws = m_Host.m_iRedraws;
  Grid().UpdateGrid();
  EXPECT_EQ(m_Host.m_iRedraws, redraws + 1);
  EXPECT_EQ(m_Host.m_iIterations, 10);
  Grid().UpdateGrid();
  EXPECT_EQ(m_Host.m_iIterations, 20);
  EXPECT_EQ(m_Host.m_iPauses, 0);
}

TEST_F(GridUpdateTest, SurfaceFollowsTheCoefficients) {
  AddSome();
  Grid().UpdateGrid();
  std::vector<double> heights(Grid().Surface().Coefficients().size());
  Grid().Surface().Basis().invW(Grid().Surface().Coefficients(), heights);
  EXPECT_EQ(NodalHeights(Grid()), ByUnknown(Grid().Surface().Order(), heights));
  EXPECT_EQ(Grid().Surface().MinHeight(), std::ranges::min(heights));
  EXPECT_EQ(Grid().Surface().MaxHeight(), std::ranges::max(heights));
  EXPECT_GT(Grid().Surface().MaxHeight(), Grid().Surface().MinHeight());
  EXPECT_LT(Grid().Surface().Lattice().PointNormals()[0].z, 1);
}

TEST_F(GridUpdateTest, WithoutConstraintsTheSystemHasTheUnknownsAlone) {
  SetRandomSurface(Grid(), 3);
  Grid().UpdateGrid();
  EXPECT_TRUE(Solver().Multipliers().empty());
  EXPECT_EQ(Solver().System().ConstraintCount(), 0U);
  EXPECT_EQ(Solver().System().Size(), 25U);
  EXPECT_GT(Grid().Solver().Counter(), 0);
}

TEST_F(GridUpdateTest, WithoutConstraintsTheSurfaceBecomesAPlane) {
  SetRandomSurface(Grid(), 3);
  EXPECT_TRUE(RunUntilPaused(Grid()));
  const CLattice& lattice = Grid().Surface().Lattice();
  const auto height = [&](int column, int row) { return lattice.Heights()[lattice.Index(column, row)]; };
  EXPECT_NEAR(height(8, 8), (height(0, 0) + height(16, 16)) / 2, 1e-9);
  EXPECT_NEAR(height(4, 12), (height(0, 16) + height(8, 8)) / 2, 1e-9);
}

TEST_F(GridUpdateTest, DeletingTheLastConstraintEmptiesTheMultipliers) {
  Grid().AddPtCstr(HeightCstr(1, 21, 5));
  Grid().UpdateGrid();
  EXPECT_EQ(Solver().Multipliers().size(), 1U);
  Grid().SelectNextPtCstr(PtCstrKind::kPosition);
  Grid().DeleteSelectedPtCstr();
  Grid().UpdateGrid();
  EXPECT_TRUE(Solver().Multipliers().empty());
}

TEST_F(GridUpdateTest, NewMultipliersAreSmallAndRandom) {
  AddSome();
  StartIteration(Grid());
  const std::vector<double> multipliers = Copied(Solver().Multipliers());
  ASSERT_EQ(multipliers.size(), 5U);
  for (const double multiplier : multipliers) {
    EXPECT_GT(multiplier, 0);
    EXPECT_LE(multiplier, 1.0 / 25);
  }
  EXPECT_GT(std::ranges::max(multipliers), 1.5 * std::ranges::min(multipliers));
}

TEST_F(GridUpdateTest, ExistingMultipliersAreKept) {
  AddSome();
  for (int tick = 0; tick < 3; ++tick) Grid().UpdateGrid();
  const std::vector<double> before = Copied(Solver().Multipliers());
  Grid().AddPtCstr(SlopeCstr(1, 22, 0.5, 0.5));
  StartIteration(Grid());
  const std::vector<double> after = Copied(Solver().Multipliers());
  ASSERT_EQ(after.size(), 7U);
  EXPECT_EQ(std::vector(after.begin(), after.begin() + 5), before);
  for (const std::size_t k : {5U, 6U}) EXPECT_TRUE(after[k] > 0 && after[k] <= 1.0 / 25) << after[k];
}

TEST_F(GridUpdateTest, FewerConstraintsKeepTheFirstMultipliers) {
  AddSome();
  for (int tick = 0; tick < 3; ++tick) Grid().UpdateGrid();
  const std::vector<double> before = Copied(Solver().Multipliers());
  SetSelection(CStaging::Constraints(Grid()).Points(), "0001");
  Grid().DeleteSelectedPtCstr();
  StartIteration(Grid());
  EXPECT_EQ(Copied(Solver().Multipliers()), std::vector(before.begin(), before.begin() + 3));
}

TEST_F(GridUpdateTest, TickInSteadyStateAllocatesNothing) {
  AddSome();
  Grid().UpdateGrid();
  for (const int noPolling : {1, 0}) {
    const CGlobalScope scope(g_bNoEventPolling, noPolling);
    Grid().UpdateGrid();
    const std::size_t before = AllocationCount();
    Grid().UpdateGrid();
    EXPECT_EQ(AllocationCount(), before);
    EXPECT_TRUE(Grid().Run().IsRunning());
  }
}

TEST_F(GridUpdateTest, AllocationsAreCounted) {
  const std::size_t before = AllocationCount();
  const std::vector<double> values(100);
  EXPECT_EQ(AllocationCount(), before + 1);
}

TEST_F(GridUpdateTest, EventsWaitWhilePollingIsOff) {
  AddSome();
  Grid().UpdateGrid();
  EXPECT_EQ(m_Host.m_iEventRounds, 0);
}

TEST_F(GridUpdateTest, EventsAreProcessedBetweenTheSteps) {
  const CPollingScope polling;
  AddSome();
  std::vector<int> counters;
  m_Host.m_OnEvents = [&](int) { counters.push_back(Grid().Solver().Counter()); };
  Grid().UpdateGrid();
  EXPECT_EQ(Grid().Solver().Counter(), 10);
  EXPECT_EQ(counters.front(), -1) << "before anything else";
  for (int iterations = 0; iterations <= 10; ++iterations)
    EXPECT_TRUE(std::ranges::count(counters, iterations) > 0) << iterations;
}

TEST_F(GridUpdateTest, PollingNeedsNoHost) {
  const CPollingScope polling;
  Grid().Run().AttachHost(nullptr);
  AddSome();
  Grid().UpdateGrid();
  EXPECT_EQ(Grid().Solver().Counter(), 10);
}

TEST_F(GridUpdateTest, WorkPostedBeforeTheDispatchIsDoneInTheSameTick) {
  const CPollingScope polling;
  AddSome();
  Grid().UpdateGrid();
  Console();
  PostInRound(m_Host.m_iEventRounds + 1, Operation::kRebuild);
  EXPECT_EQ(Tick(), "*** SetSparseH ***\n25 points\n");
  EXPECT_EQ(Grid().Solver().Counter(), 10);
}

TEST_F(GridUpdateTest, PostingBetweenTheStepsEndsTheIterationsAtOnce) {
  const CPollingScope polling;
  for (int round = 2; round <= 11; ++round) {
    CTestGrid test(4, 2);
    CActingHost host(test.m_Grid);
    AddAll(test.m_Grid, SomeConstraints());
    int iterations = -1;
    host.m_OnEvents = [&](int now) {
      if (now != round) return;
      iterations = test.m_Grid.Solver().Counter();
      test.m_Grid.Run().Post(Operation::kRestart);
    };
    test.m_Grid.UpdateGrid();
    EXPECT_EQ(test.m_Grid.Solver().Counter(), iterations) << round;
    EXPECT_LT(iterations, 10);
    EXPECT_EQ(test.m_Grid.Run().NextOperation(), Operation::kRestart);
    EXPECT_EQ(host.m_iIterations, iterations);
  }
}

TEST_F(GridUpdateTest, EveryCodeEndsTheIterations) {
  const CPollingScope polling;
  for (const int code : {1, 2, 4, 8, 16, 32, 64, 128, 256, 512, 1024, 2048, 4096, 8192, 16384}) {
    CTestGrid test(4, 2);
    CActingHost host(test.m_Grid);
    AddAll(test.m_Grid, SomeConstraints());
    host.m_OnEvents = [&](int round) {
      if (round == 5) test.m_Grid.Run().Post(OperationOf(code));
    };
    test.m_Grid.UpdateGrid();
    EXPECT_LT(test.m_Grid.Solver().Counter(), 10) << code;
    EXPECT_EQ(test.m_Grid.Run().NextOperation(), OperationOf(code));
  }
}

TEST_F(GridUpdateTest, InterruptedTickStillShowsTheSurface) {
  const CPollingScope polling;
  AddSome();
  const int redraws = m_Host.m_iRedraws;
  PostInRound(6, Operation::kSaveGrid);
  Grid().UpdateGrid();
  EXPECT_GT(m_Host.m_iRedraws, redraws);
  EXPECT_GT(Grid().Surface().MaxHeight(), Grid().Surface().MinHeight());
}

TEST_F(GridUpdateTest, NextTickPerformsWhatInterruptedTheLast) {
  const CPollingScope polling;
  AddSome();
  PostInRound(6, Operation::kSaveGrid);
  Grid().UpdateGrid();
  const int iterations = Grid().Solver().Counter();
  EXPECT_TRUE(m_Host.m_aiCommands.empty());
  Grid().UpdateGrid();
  EXPECT_EQ(m_Host.m_aiCommands, (std::vector{8192}));
  EXPECT_EQ(Grid().Solver().Counter(), iterations + 10);
}

TEST_F(GridUpdateTest, InterruptionsDoNotChangeTheCourse) {
  AddSome();
  Grid().UpdateGrid();
  const CPollingScope polling;
  CTestGrid other(4, 2);
  CActingHost host(other.m_Grid);
  AddAll(other.m_Grid, SomeConstraints());
  host.m_OnEvents = [&](int round) {
    if (round == 7) other.m_Grid.Run().Post(Operation::kSaveGrid);
    if (round > 8 && other.m_Grid.Solver().Counter() == 10 && other.m_Grid.Run().NextOperation() == Operation::kNone)
      other.m_Grid.Run().Post(Operation::kLoadImage);
  };
  other.m_Grid.UpdateGrid();
  other.m_Grid.UpdateGrid();
  ASSERT_EQ(other.m_Grid.Solver().Counter(), 10);
  EXPECT_EQ(Copied(other.m_Grid.Surface().Coefficients()), Copied(Grid().Surface().Coefficients()));
}

// The mode is switched by a menu and not by a posted code.
TEST_F(GridUpdateTest, ChangeOfModeBetweenTheStepsStartsTheIterationAnew) {
  AddSome();
  ASSERT_TRUE(RunUntilPaused(Grid()));
  const CPollingScope polling;
  for (const int round : {2, 5, 11}) {
    CTestGrid test(4, 2);
    CActingHost host(test.m_Grid);
    AddAll(test.m_Grid, SomeConstraints());
    host.m_OnEvents = [&](int now) {
      if (now == round) test.m_Grid.Builder().SetWaveletMode(WaveletMode::None);
    };
    ASSERT_TRUE(RunUntilPaused(test.m_Grid)) << round;
    EXPECT_LT(LargestDifference(NodalHeights(test.m_Grid), NodalHeights(Grid())), 1e-6) << round;
  }
}

// What has changed the points or the rows has made the vectors of the iteration too short or too long.
TEST_F(GridUpdateTest, RenumberingAsksForARebuild) {
  AddSome();
  Grid().UpdateGrid();
  CStaging::Subdivision(Grid()).Root().Child(1).Child(2).subdiv();
  Grid().Builder().ReplaySubdivision();
  EXPECT_EQ(Grid().Solver().Counter(), -1);
}

TEST_F(GridUpdateTest, NewRowsAskForARestart) {
  AddSome();
  Grid().UpdateGrid();
  CStaging::Constraints(Grid()).Points().Add(HeightCstr(7, 21.5, 2));
  Grid().SetSparseH();
  EXPECT_EQ(Grid().Solver().Counter(), 0);
}

}  // namespace
