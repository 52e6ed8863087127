// The two ways to change between the normal and the high resolution: with the surface on screen, or each with its own.

#include <array>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "model/CGrid.h"
#include "support/CStaging.h"
#include "support/UpdateBuilders.h"

namespace {

constexpr double kTolerance = 1e-9;  // the weights of an interpolation are rounded to multiples of 1e-10

class ResolutionSwitchTest : public testing::TestWithParam<WaveletMode> {
 protected:
  ResolutionSwitchTest() { Grid().Builder().SetWaveletMode(GetParam()); }

  CGrid& Grid() { return m_Test.m_Grid; }
  // Switches without iterating; the console text of it.
  std::string Switch(int code) {
    m_Test.m_Console.Take();
    Grid().Run().Post(OperationOf(code));
    Grid().PerformPendingWork();
    return m_Test.m_Console.Take();
  }
  // Gives the present resolution a surface of its own; its heights at all lattice points.
  std::vector<double> NewSurface(std::uint32_t seed) {
    SetRandomSurface(Grid(), seed);
    return SurfaceOnLattice(Grid());
  }
  // How far the points in use lie from heights given at all lattice points.
  double DistanceFrom(const std::vector<double>& surface) {
    return LargestDifference(NodalHeights(Grid()), Gathered(Grid().Surface().Order(), surface));
  }
  // Leaves of different size, so that there are hanging points.
  void MakeUneven() {
    CStaging::Subdivision(Grid()).Root().Child(1).Child(2).subdiv();
    CStaging::Subdivision(Grid()).Root().Child(1).Child(2).Child(0).subdiv();
    MakeSavedLeaf(CStaging::Subdivision(Grid()).Root().Child(3));
    Grid().SetDiscMap();
  }

  CTestGrid m_Test{4, 2};
  CActingHost m_Host{m_Test.m_Grid};
};

INSTANTIATE_TEST_SUITE_P(Modes, ResolutionSwitchTest, testing::ValuesIn(kAllModes));

TEST_P(ResolutionSwitchTest, CodesSetTheFlagOfTheResolution) {
  for (const int code : {8, 16, 32, 64, 8, 64, 32, 16}) {
    Switch(code);
    EXPECT_EQ(g_bHighRes, code == 8 || code == 32 ? 1 : 0) << code;
  }
}

TEST_P(ResolutionSwitchTest, TransferReportsThePointsThatItLeaves) {
  EXPECT_EQ(Switch(8),
            "Transmit : m_iNbAPoints : 25\n"
            "\nCGrid::SetDiscMap()\n"
            "289 points\n"
            "CGrid::UpdateConstraintsFormCurves\n"
            "*** SetSparseH ***\n"
            "289 points\n");
  EXPECT_TRUE(Switch(16).starts_with("Transmit : m_iNbAPoints : 289\n"));
}

TEST_P(ResolutionSwitchTest, RestoringReportsTheRebuildAlone) {
  for (const int code : {32, 64}) {
    const std::string text = Switch(code);
    EXPECT_TRUE(text.starts_with("\nCGrid::SetDiscMap()\n"));
    EXPECT_EQ(Occurrences(text, "Transmit"), 0);
  }
}

TEST_P(ResolutionSwitchTest, HighResolutionUsesEveryLatticePoint) {
  Switch(32);
  EXPECT_EQ(Grid().Surface().ActivePointCount(), 289);
  EXPECT_EQ(Grid().Surface().Tree().LeafCount(), 256);
  EXPECT_EQ(m_Host.m_iPoints, 289);
  Switch(64);
  EXPECT_EQ(Grid().Surface().ActivePointCount(), 25);
}

TEST_P(ResolutionSwitchTest, RecordsAreSwapped) {
  CSaveQuadT* normal = &CStaging::Subdivision(Grid()).Root();
  for (const int code : {8, 16, 32, 64}) {
    Switch(code);
    EXPECT_EQ(&Grid().Wanted().Current().Root() == normal, code == 16 || code == 64) << code;
  }
}

TEST_P(ResolutionSwitchTest, SystemIsReadyToStart) {
  AddAll(Grid(), SomeConstraints());
  for (const int code : {8, 64, 32, 16}) {
    Switch(code);
    EXPECT_EQ(Grid().Solver().Counter(), 0);
    EXPECT_EQ(Grid().Solver().System().Smoothness().RowCount(),
              static_cast<std::size_t>(Grid().Surface().ActivePointCount()));
    EXPECT_EQ(Grid().Solver().System().ConstraintCount(), 5U);
  }
}

TEST_P(ResolutionSwitchTest, HeightsRangeAndViewsAreUpToDate) {
  NewSurface(3);
  for (const int code : {8, 16, 32, 64}) {
    const int redraws = m_Host.m_iRedraws;
    Switch(code);
    EXPECT_GT(m_Host.m_iRedraws, redraws);
    const std::vector<double> heights = NodalHeights(Grid());
    EXPECT_EQ(Grid().Surface().MinHeight(), std::ranges::min(heights));
    EXPECT_EQ(Grid().Surface().MaxHeight(), std::ranges::max(heights));
    std::vector<double> reconstructed(heights.size());
    Grid().Surface().Basis().invW(Grid().Surface().Coefficients(), reconstructed);
    EXPECT_EQ(heights, ByUnknown(Grid().Surface().Order(), reconstructed));
  }
}

TEST_P(ResolutionSwitchTest, NormalsAreThoseOfTheNewSurface) {
  const CRamp ramp;
  SetSurface(Grid(), ramp);
  Switch(8);
  for (const Vector3& normal : Grid().Surface().Lattice().PointNormals())
    EXPECT_NEAR(Length(normal - ramp.Normal()), 0, 1e-6);
}

TEST_P(ResolutionSwitchTest, TransferToHighShowsTheSameSurfaceEverywhere) {
  const std::vector<double> before = NewSurface(3);
  Switch(8);
  EXPECT_LT(LargestDifference(SurfaceOnLattice(Grid()), before), kTolerance);
}

TEST_P(ResolutionSwitchTest, TransferInterpolatesOverUnevenLeaves) {
  MakeUneven();
  const std::vector<double> before = NewSurface(5);
  Switch(8);
  EXPECT_LT(LargestDifference(SurfaceOnLattice(Grid()), before), kTolerance);
}

TEST_P(ResolutionSwitchTest, TransferToNormalKeepsThePointsThatRemain) {
  Switch(32);
  const std::vector<double> before = NewSurface(7);
  Switch(16);
  EXPECT_EQ(Grid().Surface().ActivePointCount(), 25);
  EXPECT_LT(DistanceFrom(before), kTolerance);
}

TEST_P(ResolutionSwitchTest, TransferThereAndBackShowsTheSameSurface) {
  MakeUneven();
  const std::vector<double> before = NewSurface(9);
  Switch(8);
  Switch(16);
  EXPECT_LT(LargestDifference(SurfaceOnLattice(Grid()), before), kTolerance);
}

TEST_P(ResolutionSwitchTest, TransferForgetsWhatTheResolutionHadBefore) {
  Switch(32);
  NewSurface(11);
  Switch(64);
  const std::vector<double> shown = NewSurface(13);
  Switch(8);
  EXPECT_LT(LargestDifference(SurfaceOnLattice(Grid()), shown), kTolerance);
}

TEST_P(ResolutionSwitchTest, ResolutionThatWasNeverSeenIsFlat) {
  NewSurface(3);
  Switch(32);
  EXPECT_EQ(NodalHeights(Grid()), std::vector<double>(289, 0.0));
}

TEST_P(ResolutionSwitchTest, RestoringTakesUpEachResolutionsOwnSurface) {
  MakeUneven();
  const std::vector<double> normal = NewSurface(15);
  Switch(32);
  const std::vector<double> high = NewSurface(17);
  for (int k = 0; k < 3; ++k) {
    Switch(64);
    EXPECT_LT(LargestDifference(SurfaceOnLattice(Grid()), normal), kTolerance);
    Switch(32);
    EXPECT_LT(LargestDifference(SurfaceOnLattice(Grid()), high), kTolerance);
  }
}

TEST_P(ResolutionSwitchTest, RestoringAfterATransferFindsTheSurfaceThatWasLeft) {
  const std::vector<double> normal = NewSurface(19);
  Switch(8);
  NewSurface(21);
  Switch(64);
  EXPECT_LT(LargestDifference(SurfaceOnLattice(Grid()), normal), kTolerance);
}

TEST_P(ResolutionSwitchTest, LastSurfaceBeforeTheSwitchIsTheOneThatIsKept) {
  NewSurface(23);
  Switch(32);
  Switch(64);
  const std::vector<double> changed = NewSurface(25);
  Switch(32);
  Switch(64);
  EXPECT_LT(LargestDifference(SurfaceOnLattice(Grid()), changed), kTolerance);
}

// The surface belongs to places and not to numbers: the wanted subdivision changes while the other one is in force.
TEST_P(ResolutionSwitchTest, RestoringGoesByPlaceWhenThePointsHaveChanged) {
  CSaveQuadT& normalRoot = CStaging::Subdivision(Grid()).Root();
  const std::vector<double> normal = NewSurface(27);
  Switch(32);
  NewSurface(29);
  normalRoot.Child(0).subdiv();
  normalRoot.Child(0).Child(1).subdiv();
  normalRoot.Child(2).Child(0).subdiv();
  MakeSavedLeaf(normalRoot.Child(3));
  Switch(64);
  EXPECT_EQ(Grid().Surface().Tree().LeafCount(), 19);
  EXPECT_LT(DistanceFrom(normal), kTolerance);
}

TEST_P(ResolutionSwitchTest, RestoringGoesByPlaceInAnyChange) {
  for (std::uint32_t seed = 1; seed <= 8; ++seed) {
    CTestGrid test(4, 2);
    CGrid& grid = test.m_Grid;
    RandomiseRecord(CStaging::Subdivision(grid), seed);
    grid.SetDiscMap();
    SetRandomSurface(grid, seed);
    const std::vector<double> before = SurfaceOnLattice(grid);
    grid.Run().Post(Operation::kRestoreHigh);
    grid.PerformPendingWork();
    grid.Run().Post(Operation::kRebuildMaps);
    grid.PerformPendingWork();
    grid.Run().Post(Operation::kRestoreNormal);
    grid.PerformPendingWork();
    EXPECT_LT(LargestDifference(SurfaceOnLattice(grid), before), kTolerance) << seed;
  }
}

TEST_P(ResolutionSwitchTest, RefiningAfterTheRebuildFindsTheRestoredSurface) {
  const std::vector<double> normal = NewSurface(31);
  Switch(32);
  NewSurface(33);
  Switch(64);
  CStaging::Subdivision(Grid()).Root().Child(1).Child(0).subdiv();
  Grid().SetDiscMap();
  Grid().Surface().Reconstruct();
  EXPECT_LT(DistanceFrom(normal), kTolerance);
}

TEST_P(ResolutionSwitchTest, SwitchesInOneTickAreAllMade) {
  const std::vector<double> normal = NewSurface(35);
  Grid().Run().Post(Operation::kRestoreHigh);
  Grid().Run().Post(Operation::kRestoreNormal);
  Grid().PerformPendingWork();
  EXPECT_EQ(g_bHighRes, 0);
  EXPECT_LT(LargestDifference(SurfaceOnLattice(Grid()), normal), kTolerance);
}

TEST_P(ResolutionSwitchTest, SubdividedAndSwitchedInOneTickNothingIsLost) {
  const std::vector<double> normal = NewSurface(37);
  CStaging::Subdivision(Grid()).Root().Child(1).Child(0).subdiv();
  Grid().Run().Post(Operation::kRebuildMaps);
  Grid().Run().Post(Operation::kTransferToHigh);
  Grid().PerformPendingWork();
  EXPECT_LT(LargestDifference(SurfaceOnLattice(Grid()), normal), kTolerance);
}

// A plane satisfies the smoothness already, so that the iterations of the tick leave it.
TEST_P(ResolutionSwitchTest, TickSwitchesAndThenIterates) {
  const CRamp ramp;
  SetSurface(Grid(), ramp);
  Grid().Run().Post(Operation::kTransferToHigh);
  Grid().UpdateGrid();
  EXPECT_EQ(g_bHighRes, 1);
  EXPECT_GT(Grid().Solver().Counter(), 0);
  EXPECT_NEAR(SurfaceHeight(Grid(), 1.5, 23.25), ramp(1.5, 23.25), 1e-6);
}

TEST_P(ResolutionSwitchTest, ConstraintsHoldAtBothResolutions) {
  AddAll(Grid(), SomeConstraints());
  for (const int code : {8, 64}) {
    ASSERT_TRUE(RunUntilPaused(Grid()));
    EXPECT_NEAR(SurfaceHeight(Grid(), 10, 22), -2, 1e-6);
    EXPECT_NEAR(SurfaceHeight(Grid(), 3, 25), 3, 1e-6);
    Grid().Run().Post(OperationOf(code));
  }
}

TEST_P(ResolutionSwitchTest, GivenHeightsForgetTheOtherSurface) {
  Switch(32);
  NewSurface(41);
  Switch(64);
  Grid().Builder().SetHeights(std::vector<double>(25, 1.5));
  EXPECT_EQ(Grid().Surface().MaxHeight(), 1.5);
  Switch(32);
  EXPECT_EQ(NodalHeights(Grid()), std::vector<double>(289, 0.0));
}

TEST_P(ResolutionSwitchTest, NewGridForgetsTheOtherSurface) {
  Switch(32);
  NewSurface(39);
  Switch(64);
  m_Test.Initialize(2);
  Switch(32);
  EXPECT_EQ(NodalHeights(Grid()), std::vector<double>(289, 0.0));
}

}  // namespace
