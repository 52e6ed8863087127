// The rebuild of tree, maps and system, as it is without curves.

#include <vector>

#include <gtest/gtest.h>

#include "model/CGrid.h"
#include "support/CStaging.h"
#include "support/UpdateBuilders.h"

namespace {

class SetDiscMapTest : public testing::TestWithParam<WaveletMode> {
 protected:
  SetDiscMapTest() { Grid().Builder().SetWaveletMode(GetParam()); }

  CGrid& Grid() { return m_Test.m_Grid; }
  // Leaves of three sizes in the wanted subdivision.
  void Refine() {
    CStaging::Subdivision(Grid()).Root().Child(1).Child(2).subdiv();
    CStaging::Subdivision(Grid()).Root().Child(1).Child(2).Child(0).subdiv();
    MakeSavedLeaf(CStaging::Subdivision(Grid()).Root().Child(3));
  }

  CTestGrid m_Test{4, 2};
  CActingHost m_Host{m_Test.m_Grid};
};

INSTANTIATE_TEST_SUITE_P(Modes, SetDiscMapTest, testing::ValuesIn(kAllModes));

TEST_P(SetDiscMapTest, ReportsItsStepsInOrder) {
  Grid().SetDiscMap();
  EXPECT_EQ(m_Test.m_Console.Take(),
            "\nCGrid::SetDiscMap()\n"
            "25 points\n"
            "CGrid::UpdateConstraintsFormCurves\n"
            "*** SetSparseH ***\n"
            "25 points\n");
}

TEST_P(SetDiscMapTest, CounterIsAtTheStartOfTheIteration) {
  AddAll(Grid(), SomeConstraints());
  Grid().UpdateGrid();
  EXPECT_EQ(Grid().Solver().Counter(), 10);
  Grid().SetDiscMap();
  EXPECT_EQ(Grid().Solver().Counter(), 0);
}

TEST_P(SetDiscMapTest, PostedCodeRunsItInTheTick) {
  AddAll(Grid(), SomeConstraints());
  Grid().UpdateGrid();
  m_Test.m_Console.Take();
  Grid().Run().Post(Operation::kRebuildMaps);
  Grid().UpdateGrid();
  EXPECT_EQ(Occurrences(m_Test.m_Console.Take(), "*** SetSparseH ***"), 1);
  EXPECT_EQ(Grid().Solver().Counter(), 10);
}

TEST_P(SetDiscMapTest, SurfaceStays) {
  Refine();
  Grid().SetDiscMap();
  SetRandomSurface(Grid(), 11);
  const std::vector<double> before = SurfaceOnLattice(Grid());
  for (int k = 0; k < 3; ++k) Grid().SetDiscMap();
  Grid().Surface().Reconstruct();
  EXPECT_LT(LargestDifference(SurfaceOnLattice(Grid()), before), 1e-9);
}

TEST_P(SetDiscMapTest, SurfaceStaysAtEveryPointOfAnotherSubdivision) {
  SetRandomSurface(Grid(), 13);
  const std::vector<double> before = SurfaceOnLattice(Grid());
  Refine();
  Grid().SetDiscMap();
  Grid().Surface().Reconstruct();
  EXPECT_LT(LargestDifference(NodalHeights(Grid()), Gathered(Grid().Surface().Order(), before)), 1e-9);
}

TEST_P(SetDiscMapTest, TreeFollowsTheWantedSubdivision) {
  Refine();
  Grid().SetDiscMap();
  EXPECT_TRUE(Grid().Surface().Tree().CellAt(3, 0, 1).IsActive());
  EXPECT_FALSE(Grid().Surface().Tree().CellAt(2, 3, 1).IsActive());
  EXPECT_TRUE(Grid().Surface().Tree().CellAt(0, 13, 5).IsActive());
}

TEST_P(SetDiscMapTest, HostSeesTheCounts) {
  Refine();
  Grid().SetDiscMap();
  EXPECT_EQ(m_Host.m_iLeaves, Grid().Surface().Tree().LeafCount());
  EXPECT_EQ(m_Host.m_iLeaves, 19);
  EXPECT_EQ(m_Host.m_iPoints, Grid().Surface().ActivePointCount());
}

TEST_P(SetDiscMapTest, NeedsNoHost) {
  Grid().Run().AttachHost(nullptr);
  Refine();
  Grid().SetDiscMap();
  EXPECT_EQ(Grid().Surface().Tree().LeafCount(), 19);
}

TEST_P(SetDiscMapTest, MarksAndCreasesAreForgotten) {
  Grid().Surface().Tree().CellAt(2, 1, 1).SetFlags(CellFlag::kMarkable | CellFlag::kSelected);
  Grid().Surface().Lattice().Set(40, PointFlag::kCrease | PointFlag::kFrozen);
  Grid().SetDiscMap();
  EXPECT_EQ(Grid().Surface().Tree().CellAt(2, 1, 1).Flags(), CellFlag::kSelected);
  EXPECT_FALSE(Grid().Surface().Tree().CellAt(2, 1, 1).Edge(kRight).HasBothMarks());
  EXPECT_FALSE(Grid().Surface().Lattice().Has(40, PointFlag::kCrease));
  EXPECT_TRUE(Grid().Surface().Lattice().Has(40, PointFlag::kFrozen));
}

TEST_P(SetDiscMapTest, GeneratedConstraintsAreDroppedAndTheUsersKept) {
  AddAll(Grid(), SomeConstraints());
  CStaging::Constraints(Grid()).Generated().Add(HeightCstr(4, 23, 5));
  Grid().SetDiscMap();
  EXPECT_TRUE(Grid().Constraints().Generated().empty());
  EXPECT_EQ(Grid().Constraints().Points().size(), 4U);
  EXPECT_EQ(Grid().Solver().System().ConstraintCount(), 5U);
}

TEST_P(SetDiscMapTest, SystemIsThatOfTheNewPoints) {
  AddAll(Grid(), SomeConstraints());
  Grid().UpdateGrid();
  Refine();
  Grid().SetDiscMap();
  EXPECT_EQ(Grid().Solver().System().Smoothness().RowCount(),
            static_cast<std::size_t>(Grid().Surface().ActivePointCount()));
  EXPECT_EQ(Grid().Surface().Basis().Size(), static_cast<std::size_t>(Grid().Surface().ActivePointCount()));
  EXPECT_LT(Grid().Surface().TestWavelets(), 1e-12);
}

TEST_P(SetDiscMapTest, IterationGoesOnToTheSurfaceOfTheNewPoints) {
  AddAll(Grid(), SomeConstraints());
  ASSERT_TRUE(RunUntilPaused(Grid()));
  Refine();
  Grid().Run().Post(Operation::kRebuildMaps);
  ASSERT_TRUE(RunUntilPaused(Grid()));
  EXPECT_NEAR(SurfaceHeight(Grid(), 0.5, 21.25), 1, 1e-6);
  EXPECT_NEAR(SurfaceHeight(Grid(), 10, 22), -2, 1e-6);
  EXPECT_NEAR(SurfaceHeight(Grid(), 3, 25), 3, 1e-6);
}

TEST_P(SetDiscMapTest, MultipliersAreKept) {
  AddAll(Grid(), SomeConstraints());
  Grid().UpdateGrid();
  const std::vector<double> before = Copied(Grid().Solver().Multipliers());
  Grid().SetDiscMap();
  StartIteration(Grid());
  EXPECT_EQ(Copied(Grid().Solver().Multipliers()), before);
}

}  // namespace
