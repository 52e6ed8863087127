// How the solver stops itself, and what surface it stops at, also after edits.

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <string>
#include <tuple>
#include <vector>

#include <gtest/gtest.h>

#include "constraints/CCntrCtrlList.h"
#include "model/CGrid.h"
#include "support/CStaging.h"
#include "support/UpdateBuilders.h"

namespace {

const std::string kSmallRho = "|r_rr| is too small ";
const std::string kSmallPi = "|pp_pp| is too small ";

// The surface that a grid which has never seen other constraints comes to, by unknown.
std::vector<double> FreshSolution(CGrid& edited) {
  CTestGrid fresh(edited.Surface().Lattice().Level(), edited.Wanted().BaseLevel());
  fresh.m_Grid.Builder().SetWaveletMode(edited.Surface().Mode());
  for (const CPtCstr& c : edited.Constraints().Points()) fresh.m_Grid.AddPtCstr(c);
  EXPECT_TRUE(RunUntilPaused(fresh.m_Grid));
  return NodalHeights(fresh.m_Grid);
}

void ExpectSurfaceOfItsConstraints(CGrid& grid) {
  const double range = grid.Surface().MaxHeight() - grid.Surface().MinHeight();
  EXPECT_LT(LargestDifference(NodalHeights(grid), FreshSolution(grid)), 1e-7 * range);
}

TEST(SolverConvergenceTest, StartWithoutConstraintsPausesInTheFirstTick) {
  CTestGrid test;
  CActingHost host(test.m_Grid);
  test.m_Grid.UpdateGrid();
  EXPECT_EQ(test.m_Console.Take(), "*** SetSparseH ***\n25 points\n" + kSmallRho + "0\n");
  EXPECT_FALSE(test.m_Grid.Run().IsRunning());
  EXPECT_EQ(host.m_iPauses, 1);
  EXPECT_EQ(test.m_Grid.Solver().Counter(), 1);
}

TEST(SolverConvergenceTest, ConvergencePausesWithALine) {
  CTestGrid test;
  CActingHost host(test.m_Grid);
  AddAll(test.m_Grid, SomeConstraints());
  EXPECT_TRUE(RunUntilPaused(test.m_Grid));
  EXPECT_EQ(host.m_iPauses, 1);
  EXPECT_TRUE(test.m_Grid.Solver().HasConverged());
  const std::string text = test.m_Console.Take();
  EXPECT_EQ(Occurrences(text, kSmallRho) + Occurrences(text, kSmallPi), 1) << text;
  EXPECT_LT(std::abs(std::stod(text.substr(text.rfind(' ')))), 1e-30);
}

TEST(SolverConvergenceTest, PausingShowsTheSurfaceOnceMore) {
  CTestGrid test;
  CActingHost host(test.m_Grid);
  host.m_iIterations = -1;
  test.m_Grid.UpdateGrid();
  EXPECT_EQ(host.m_iRedraws, 1);
  EXPECT_EQ(host.m_iIterations, 1);
}

TEST(SolverConvergenceTest, PausesWithoutAHost) {
  CConvergedGrid test;
  EXPECT_FALSE(test.m_Grid.Run().IsRunning());
  EXPECT_EQ(test.m_Grid.Run().NextOperation(), Operation::kNone);
}

TEST(SolverConvergenceTest, ConvergedSystemStopsOnTheNextTick) {
  CConvergedGrid test;
  CActingHost host(test.m_Grid);
  const std::vector<double> before = SurfaceOnLattice(test.m_Grid);
  const int iterations = test.m_Grid.Solver().Counter();
  test.m_Grid.Run().SetRunning(true);
  test.m_Grid.UpdateGrid();
  EXPECT_EQ(test.m_Grid.Solver().Counter(), iterations + 1);
  EXPECT_FALSE(test.m_Grid.Run().IsRunning());
  EXPECT_EQ(host.m_iPauses, 1);
  EXPECT_TRUE(test.m_Console.Take().starts_with("|"));
  EXPECT_EQ(SurfaceOnLattice(test.m_Grid), before);
}

// Flat and without forces, only the targets are missed: r . A r vanishes at once.
TEST(SolverConvergenceTest, StopOnAWrongSurfaceIsTriedAgain) {
  CTestTree tree(3, 2);
  CHierarchicalBasis basis;
  basis.Compile(tree.m_Order, tree.m_Tree, WaveletMode::New);
  CRandom random(1);
  CGridSolver solver(basis, random);
  CPtCstrList list;
  for (const CPtCstr& c : SomeConstraints()) list.Add(c);
  solver.Assemble(tree.m_Tree, tree.m_Surface, CCntrCtrlList());
  solver.SetConstraints(std::array<const CPtCstrList*, 1>{&list}, tree.m_Tree, tree.m_Surface);
  std::vector<double> x(basis.Size());
  solver.Tick(x, 0, nullptr);
  solver.RandomiseMultipliers(0);
  solver.ModelChanged();
  solver.RequestRestart();
  EXPECT_EQ(ConsoleTextOf([&] { EXPECT_EQ(solver.Tick(x, 10, nullptr), CGridSolver::Outcome::TickDone); }),
            kSmallRho + "0\n");
  EXPECT_EQ(solver.Counter(), 0);
  const ConsoleCapture console;
  for (int tick = 0; tick < 100 && !solver.HasConverged(); ++tick) solver.Tick(x, 10, nullptr);
  EXPECT_TRUE(solver.HasConverged());
  EXPECT_GT(*std::ranges::max_element(x), 1);
}

TEST(SolverConvergenceTest, ConvergedSurfaceMeetsItsConstraints) {
  CConvergedGrid test;
  const double range = test.m_Grid.Surface().MaxHeight() - test.m_Grid.Surface().MinHeight();
  for (const CPtCstr& c : test.m_Grid.Constraints().Points())
    EXPECT_NEAR(SurfaceHeight(test.m_Grid, c.m_fX, c.m_fY), c.m_fZ, 1e-7 * range);
}

TEST(SolverConvergenceTest, EditAfterConvergenceShakesEveryMultiplier) {
  CConvergedGrid test;
  const std::vector<double> before = Copied(test.m_Grid.Solver().Multipliers());
  test.m_Grid.Run().Post(Operation::kRestart);
  StartIteration(test.m_Grid);
  const std::vector<double> after = Copied(test.m_Grid.Solver().Multipliers());
  ASSERT_EQ(after.size(), before.size());
  for (std::size_t k = 0; k < after.size(); ++k) EXPECT_NE(after[k], before[k]);
  // A shake is small in scaled units, in which what is asked for has the length 1.
  EXPECT_LT(LargestDifference(after, before),
            std::abs(*std::ranges::max_element(before, {}, [](double v) { return std::abs(v); })));
}

TEST(SolverConvergenceTest, EditBeforeConvergenceShakesNothing) {
  CTestGrid test;
  AddAll(test.m_Grid, SomeConstraints());
  test.m_Grid.UpdateGrid();
  const std::vector<double> before = Copied(test.m_Grid.Solver().Multipliers());
  test.m_Grid.Run().Post(Operation::kRestart);
  StartIteration(test.m_Grid);
  EXPECT_EQ(Copied(test.m_Grid.Solver().Multipliers()), before);
}

class EditAfterConvergenceTest : public testing::TestWithParam<WaveletMode> {
 protected:
  EditAfterConvergenceTest() {
    Grid().Builder().SetWaveletMode(GetParam());
    SetSelection(CStaging::Constraints(Grid()).Points(), "0100");
  }
  CGrid& Grid() { return m_Test.m_Grid; }
  void ExpectTheNewSurface() {
    ASSERT_TRUE(RunUntilPaused(Grid()));
    ExpectSurfaceOfItsConstraints(Grid());
  }

  CConvergedGrid m_Test{4, 3};
};

INSTANTIATE_TEST_SUITE_P(Modes, EditAfterConvergenceTest, testing::ValuesIn(kAllModes));

TEST_P(EditAfterConvergenceTest, ChangedHeightIsReached) {
  for (const double z : {-2.25, 40.0, 3.0, 3.0 + 1e-6}) {
    Grid().SetSelectedHeight(z);
    ExpectTheNewSurface();
    EXPECT_NEAR(SurfaceHeight(Grid(), 10, 22), z, 1e-7 * (Grid().Surface().MaxHeight() - Grid().Surface().MinHeight()));
  }
}

// What rounding leaves of such heights is large beside the surface that follows them.
TEST_P(EditAfterConvergenceTest, HeightsFarAwayAreForgotten) {
  for (const double z : {1e9, 1e12, 1e16}) {
    Grid().SetSelectedHeight(z);
    ASSERT_TRUE(RunUntilPaused(Grid(), 10000));
    Grid().SetSelectedHeight(3);
    ASSERT_TRUE(RunUntilPaused(Grid(), 10000));
    ExpectSurfaceOfItsConstraints(Grid());
  }
}

TEST_P(EditAfterConvergenceTest, ChangedSlopeIsReached) {
  SetSelection(CStaging::Constraints(Grid()).Points(), "0001");
  for (const double slope : {0.125, -3.0, 1.0}) {
    Grid().ChangeSelectedNormal(slope, -slope / 2);
    ExpectTheNewSurface();
  }
}

TEST_P(EditAfterConvergenceTest, MovedConstraintIsReached) {
  for (const double dx : {0.25, -4.0, 1.5}) {
    Grid().MoveSelectedPtCstr(dx, dx / 4);
    ExpectTheNewSurface();
  }
}

TEST_P(EditAfterConvergenceTest, AddedAndDeletedConstraintsAreFollowed) {
  Grid().AddPtCstr(HeightCstr(7, 21.5, 6));
  ExpectTheNewSurface();
  Grid().DeleteSelectedPtCstr();
  ExpectTheNewSurface();
}

TEST_P(EditAfterConvergenceTest, SurfaceComesBackAfterAReset) {
  const std::vector<double> before = NodalHeights(Grid());
  Grid().Reset();
  ExpectTheNewSurface();
  EXPECT_LT(LargestDifference(NodalHeights(Grid()), before),
            1e-7 * (Grid().Surface().MaxHeight() - Grid().Surface().MinHeight()));
}

// How many of the constraints below there are, and how many ticks before the pause the first of them is changed.
class EditBeforeThePauseTest : public testing::TestWithParam<std::tuple<int, int>> {
 protected:
  // Has the grid tick until it pauses, at most `limit` times. Returns how often it did.
  static int Run(CGrid& grid, int limit) {
    const std::vector<CPtCstr> all{HeightCstr(4.1, 23.3, 2), HeightCstr(10, 22, -2), HeightCstr(3, 25, 3),
                                   HeightCstr(0.5, 21.25, 1)};
    AddAll(grid, {all.begin(), all.begin() + std::get<0>(GetParam())});
    int ticks = 0;
    for (; grid.Run().IsRunning() && ticks < limit; ++ticks) grid.UpdateGrid();
    return ticks;
  }
};

INSTANTIATE_TEST_SUITE_P(ConstraintsAndTicks, EditBeforeThePauseTest,
                         testing::Combine(testing::Values(1, 2, 4), testing::Values(1, 2, 3)));

// A residual that is almost nothing but the changed target is as bad a start as one that is nothing else.
TEST_P(EditBeforeThePauseTest, ChangedHeightIsReached) {
  CTestGrid straight(4, 3);
  const int ticks = Run(straight.m_Grid, 1000);
  CTestGrid test(4, 3);
  Run(test.m_Grid, ticks - std::get<1>(GetParam()));
  test.m_Grid.SelectNextPtCstr(PtCstrKind::kPosition);
  test.m_Grid.SetSelectedHeight(5);
  EXPECT_TRUE(RunUntilPaused(test.m_Grid, 10 * ticks));
  EXPECT_NEAR(SurfaceHeight(test.m_Grid, 4.1, 23.3), 5, 1e-6);
}

TEST(ContradictionTest, TwoHeightsAtOnePointEndAtTheirMeanAndPause) {
  CConvergedGrid test;
  test.m_Grid.AddPtCstr(HeightCstr(10, 22, 4));
  ASSERT_TRUE(RunUntilPaused(test.m_Grid));
  EXPECT_NEAR(SurfaceHeight(test.m_Grid, 10, 22), 1, 1e-6);
  EXPECT_NEAR(SurfaceHeight(test.m_Grid, 3, 25), 3, 1e-6);
}

TEST(ContradictionTest, StopsAreRetriedAtMostTwicePerEdit) {
  CConvergedGrid test;
  test.m_Grid.AddPtCstr(HeightCstr(10, 22, 4));
  for (const double z : {5.0, 6.0}) {
    ASSERT_TRUE(RunUntilPaused(test.m_Grid));
    EXPECT_LE(Occurrences(test.m_Console.Take(), "|r_rr|"), 3);
    SetSelection(CStaging::Constraints(test.m_Grid).Points(), "10000");
    test.m_Grid.SetSelectedHeight(z);
  }
}

TEST(ContradictionTest, TheSameConstraintTwiceChangesNothing) {
  CConvergedGrid test;
  const std::vector<double> before = NodalHeights(test.m_Grid);
  test.m_Grid.AddPtCstr(SomeConstraints()[1]);
  ASSERT_TRUE(RunUntilPaused(test.m_Grid));
  EXPECT_LT(LargestDifference(NodalHeights(test.m_Grid), before), 1e-6);
}

TEST(ContradictionTest, SurfaceStaysFiniteAndRecovers) {
  for (const double z : {1e152, 1e153, 1e154, 1e200, std::numeric_limits<double>::infinity(),
                         std::numeric_limits<double>::quiet_NaN()}) {
    SCOPED_TRACE(z);
    CConvergedGrid test;
    SetSelection(CStaging::Constraints(test.m_Grid).Points(), "0100");
    test.m_Grid.SetSelectedHeight(z);
    EXPECT_TRUE(RunUntilPaused(test.m_Grid));
    EXPECT_TRUE(std::isfinite(test.m_Grid.Surface().MinHeight()) && std::isfinite(test.m_Grid.Surface().MaxHeight()));
    test.m_Grid.SetSelectedHeight(1);
    ASSERT_TRUE(RunUntilPaused(test.m_Grid));
    EXPECT_NEAR(SurfaceHeight(test.m_Grid, 10, 22), 1, 1e-6);
  }
}

}  // namespace
