#include <gtest/gtest.h>

#include "model/CGrid.h"
#include "support/GridBuilders.h"

namespace {

TEST(GridSurfaceTest, ReconstructionFindsTheHeightRange) {
  CTestGrid test;
  SetSurface(test.m_Grid, CRamp{0.25, -1.5, 4.0});
  EXPECT_DOUBLE_EQ(test.m_Grid.Surface().MinHeight(), 4 + 0.25 * -3.5 - 1.5 * 26);
  EXPECT_DOUBLE_EQ(test.m_Grid.Surface().MaxHeight(), 4 + 0.25 * 12.5 - 1.5 * 20);
}

TEST(GridSurfaceTest, ReconstructionFillsHeightsAndNormals) {
  CTestGrid test;
  const CRamp ramp;
  SetSurface(test.m_Grid, ramp);
  const CLattice& lattice = test.m_Grid.Surface().Lattice();
  const Vector3 normal = ramp.Normal();
  for (std::size_t k = 0; k < test.m_Grid.Surface().Order().Count(); ++k) {
    const std::size_t point = test.m_Grid.Surface().Order().PointOf(k);
    const double wanted = ramp(lattice.XOf(test.m_Grid.Surface().Order().ColumnOf(k)),
                               lattice.YOf(test.m_Grid.Surface().Order().RowOf(k)));
    EXPECT_NEAR(lattice.Heights()[point], wanted, 1e-12);
    EXPECT_NEAR(Length(lattice.PointNormals()[point] - normal), 0, 1e-12);
  }
}

TEST(GridSurfaceTest, WaveletTestReportsTheLargestDifference) {
  CTestGrid test;
  EXPECT_EQ(test.m_Grid.Surface().TestWavelets(), 0);
  EXPECT_EQ(test.m_Console.Take(), "CGrid::TestWavelets\t\tlargest difference : 0\n");
  for (const WaveletMode mode : kAllModes) {
    test.m_Grid.Builder().SetWaveletMode(mode);
    SetRandomSurface(test.m_Grid, 6);
    EXPECT_LT(test.m_Grid.Surface().TestWavelets(), 1e-12);
  }
}

// Marks that the basis was not compiled for are what the test is there to find.
TEST(GridSurfaceTest, WaveletTestFindsABasisThatDoesNotFitTheTree) {
  CTestGrid test(2, 2);
  SetRandomSurface(test.m_Grid, 6);
  for (int i = 0; i < 4; ++i) test.m_Grid.Surface().Tree().CellAt(0, i, 1).SetFlags(CellFlag::kTriangles);
  test.m_Grid.Surface().Tree().RefreshEdgeMarks();
  EXPECT_GT(test.m_Grid.Surface().TestWavelets(), 1e-3);
}

TEST(GridHostTest, TickAsksForARedraw) {
  CTestGrid test;
  RecordingHost host;
  test.m_Grid.Run().AttachHost(&host);
  test.m_Grid.UpdateGrid();
  EXPECT_GE(host.m_iRedraws, 1);
}

TEST(GridHostTest, DetachedHostIsNotAsked) {
  CTestGrid test;
  RecordingHost host;
  test.m_Grid.Run().AttachHost(&host);
  test.m_Grid.Run().AttachHost(nullptr);
  test.m_Grid.UpdateGrid();
  EXPECT_TRUE(test.m_Grid.Marks().TraceInterpolation(1, 21));
  EXPECT_EQ(host.m_iRedraws, 0);
  EXPECT_TRUE(host.m_aTraces.empty());
}

TEST(GridHostTest, TracedInterpolationIsShownAndItsEndsAreMarked) {
  CTestGrid test(2, 1);
  RecordingHost host;
  test.m_Grid.Run().AttachHost(&host);
  // A quarter across and just above the bottom: the lower triangle of the south-west leaf.
  EXPECT_TRUE(test.m_Grid.Marks().TraceInterpolation(0.5, 20.25));
  ASSERT_EQ(host.m_aTraces.size(), 1U);
  EXPECT_EQ(host.m_aTraces[0].m_Triangle.m_pCell, &test.m_Grid.Surface().Tree().CellAt(1, 0, 0));
  EXPECT_EQ(test.m_Grid.Surface().Lattice().Count(PointFlag::kTraced), 2U);
  EXPECT_TRUE(test.m_Grid.Surface().Lattice().Has(0, PointFlag::kTraced));
  EXPECT_TRUE(test.m_Grid.Surface().Lattice().Has(2, PointFlag::kTraced));
}

TEST(GridHostTest, OnlyTheLastTraceStaysMarked) {
  CTestGrid test(2, 1);
  test.m_Grid.Marks().TraceInterpolation(0.5, 20.25);
  EXPECT_TRUE(test.m_Grid.Marks().TraceInterpolation(8.5, 25.75));
  EXPECT_EQ(test.m_Grid.Surface().Lattice().Count(PointFlag::kTraced), 2U);
  EXPECT_TRUE(test.m_Grid.Surface().Lattice().Has(22, PointFlag::kTraced));
  EXPECT_TRUE(test.m_Grid.Surface().Lattice().Has(24, PointFlag::kTraced));
}

// There the value is the centre's alone, and no side takes part.
TEST(GridHostTest, NothingIsMarkedAtTheCentreOfALeaf) {
  CTestGrid test(2, 1);
  RecordingHost host;
  test.m_Grid.Run().AttachHost(&host);
  test.m_Grid.Marks().TraceInterpolation(0.5, 20.25);
  const CCellRect leaf = test.m_Grid.Surface().Tree().CellAt(1, 0, 0).ModelRect();
  EXPECT_TRUE(test.m_Grid.Marks().TraceInterpolation(leaf.x + leaf.width / 2, leaf.y + leaf.height / 2));
  EXPECT_EQ(test.m_Grid.Surface().Lattice().Count(PointFlag::kTraced), 0U);
  ASSERT_EQ(host.m_aTraces.size(), 2U);
  EXPECT_EQ(host.m_aTraces[1].m_Triangle.m_fCCenter, 1);
}

TEST(GridHostTest, NothingIsTracedOutsideTheModel) {
  CTestGrid test;
  RecordingHost host;
  test.m_Grid.Run().AttachHost(&host);
  EXPECT_FALSE(test.m_Grid.Marks().TraceInterpolation(13, 21));
  EXPECT_TRUE(host.m_aTraces.empty());
  EXPECT_EQ(test.m_Grid.Surface().Lattice().Count(PointFlag::kTraced), 0U);
}

}  // namespace
