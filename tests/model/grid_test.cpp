#include <algorithm>
#include <array>
#include <iterator>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "model/CGrid.h"
#include "model/Globals.h"
#include "support/CStaging.h"
#include "support/GridBuilders.h"

namespace {

// Depth below the root of every leaf of a record, where all have the same; -1 otherwise.
int UniformDepth(const CSaveQuadT& node) {
  if (node.IsLeaf()) return 0;
  if (!node.HasChildren()) return -1;
  const int depth = UniformDepth(node.Child(0));
  for (int k = 1; k < 4; ++k) {
    if (UniformDepth(node.Child(k)) != depth) return -1;
  }
  return depth < 0 ? -1 : depth + 1;
}

// A constraint in each list, told apart by their heights.
void AddConstraints(CGrid& grid) {
  CStaging::Constraints(grid).Points().Add({1, 21, PtCstrKind::kPosition, 2.5, 0, 0});
  CStaging::Constraints(grid).Points().Add({2, 22, PtCstrKind::kNormal, 3.5, 0.25, -0.5});
  CStaging::Constraints(grid).Generated().Add({3, 23, PtCstrKind::kPosition, 4.5, 0, 0});
}

TEST(GridTest, DefaultsOfTheProcess) {
  EXPECT_EQ(g_iBaseLevel, 5);
  EXPECT_EQ(g_iMaxLevel, 7);
  EXPECT_EQ(g_bHighRes, 0);
  EXPECT_EQ(g_nSolverTimers, 0);
  EXPECT_EQ(g_bNoEventPolling, 1);
}

TEST(GridTest, StartsAtTheDefaultResolution) {
  const ConsoleCapture console;
  const CGrid grid;
  EXPECT_EQ(grid.Wanted().BaseLevel(), 5);
  EXPECT_EQ(grid.Surface().Lattice().Level(), 7);
  EXPECT_EQ(grid.Surface().Lattice().PointsPerSide(), 129);
  EXPECT_EQ(grid.Surface().ActivePointCount(), 1089);
  EXPECT_EQ(grid.Surface().Tree().LeafCount(), 1024);
  EXPECT_EQ(grid.Surface().Lattice().Count(PointFlag::kInUse), 1089U);
}

TEST(GridTest, StartsOnAHundredSquare) {
  const ConsoleCapture console;
  const CGrid grid;
  EXPECT_EQ(grid.Surface().Lattice().Extent().x0, 0);
  EXPECT_EQ(grid.Surface().Lattice().Extent().x1, 100);
  EXPECT_EQ(grid.Surface().Lattice().Extent().y0, 0);
  EXPECT_EQ(grid.Surface().Lattice().Extent().y1, 100);
  EXPECT_DOUBLE_EQ(grid.Surface().Lattice().StepX(), 100.0 / 128);
  EXPECT_DOUBLE_EQ(grid.Surface().Lattice().StepY(), 100.0 / 128);
}

TEST(GridTest, StartsRunningWithEverythingToDo) {
  const ConsoleCapture console;
  const CGrid grid;
  EXPECT_TRUE(grid.Run().IsRunning());
  EXPECT_EQ(grid.Run().NextOperation(), Operation::kNone);
  EXPECT_EQ(grid.Solver().Counter(), -1);
  EXPECT_EQ(CGridRun::kIterationsPerTick, 9);
  EXPECT_EQ(grid.Surface().Mode(), WaveletMode::New);
}

TEST(GridTest, StartsFlatWithoutConstraints) {
  CTestGrid test;
  EXPECT_TRUE(std::ranges::all_of(test.m_Grid.Surface().Coefficients(), [](double c) { return c == 0; }));
  EXPECT_EQ(test.m_Grid.Surface().MinHeight(), 0);
  EXPECT_EQ(test.m_Grid.Surface().MaxHeight(), 0);
  EXPECT_TRUE(test.m_Grid.Constraints().Points().empty());
  EXPECT_TRUE(test.m_Grid.Constraints().Generated().empty());
}

TEST(GridTest, ConstructionIsReportedLineByLine) {
  EXPECT_EQ(ConsoleTextOf([] { const CGrid grid; }),
            "0, 100, 0, 100\n"
            "CGrid::Initialize\t\t\tlevel : 5\n"
            "*** SetSparseH ***\n"
            "1089 points\n");
}

TEST(GridTest, ConstructionSelectsTheNormalResolution) {
  const CResolutionScope scope(3, 2);
  const ConsoleCapture console;
  g_bHighRes = 1;
  CGrid grid;
  EXPECT_EQ(g_bHighRes, 0);
  EXPECT_EQ(UniformDepth(grid.Wanted().Current().Root()), 2);
}

// The arguments are two corners, what is stored and printed is two ranges.
TEST(GridTest, InitializeTakesTwoCorners) {
  CTestGrid test;
  test.m_Grid.Initialize(3, false, 10, 20, 74, 36);
  EXPECT_EQ(test.m_Console.Take(),
            "10, 74, 20, 36\n"
            "CGrid::Initialize\t\t\tlevel : 3\n"
            "*** SetSparseH ***\n"
            "81 points\n");
  const CExtent& extent = test.m_Grid.Surface().Lattice().Extent();
  EXPECT_EQ(extent.x0, 10);
  EXPECT_EQ(extent.x1, 74);
  EXPECT_EQ(extent.y0, 20);
  EXPECT_EQ(extent.y1, 36);
}

TEST(GridTest, StepsFollowTheRectangle) {
  CTestGrid test;
  const CLattice& lattice = test.m_Grid.Surface().Lattice();
  test.m_Grid.Initialize(3, false, 10, 20, 74, 36);
  EXPECT_DOUBLE_EQ(lattice.StepX(), 4);
  EXPECT_DOUBLE_EQ(lattice.StepY(), 1);
  test.m_Grid.Initialize(3, false, 10, 20, 18, 100);
  EXPECT_DOUBLE_EQ(lattice.StepX(), 0.5);
  EXPECT_DOUBLE_EQ(lattice.StepY(), 5);
}

TEST(GridTest, RectangleSetterTakesTwoRanges) {
  CTestGrid test;
  test.m_Grid.Surface().SetExtent({-8, 24, 5, 9});
  EXPECT_EQ(test.m_Grid.Surface().Lattice().Extent().x1, 24);
  EXPECT_EQ(test.m_Grid.Surface().Lattice().Extent().y0, 5);
  EXPECT_DOUBLE_EQ(test.m_Grid.Surface().Lattice().StepX(), 2);
  EXPECT_DOUBLE_EQ(test.m_Grid.Surface().Lattice().StepY(), 0.25);
  const CCellRect root = test.m_Grid.Surface().Tree().Root().ModelRect();
  EXPECT_EQ(root.x, -8);
  EXPECT_EQ(root.y, 5);
  EXPECT_EQ(root.width, 32);
  EXPECT_EQ(root.height, 4);
}

TEST(GridTest, RectangleSetterRecomputesTheHeightRange) {
  CTestGrid test;
  SetSurface(test.m_Grid, CStep{4.0, -1.0, 2.0});
  test.m_Grid.Surface().SetExtent({0, 1, 0, 1});
  EXPECT_DOUBLE_EQ(test.m_Grid.Surface().MinHeight(), -1);
  EXPECT_DOUBLE_EQ(test.m_Grid.Surface().MaxHeight(), 2);
}

TEST(GridTest, InitializeSubdividesTreeAndRecordToTheLevel) {
  CTestGrid test(4, 2);
  for (const int level : {0, 1, 3, 4}) {
    test.Initialize(level);
    EXPECT_EQ(test.m_Grid.Wanted().BaseLevel(), level);
    EXPECT_EQ(test.m_Grid.Surface().Tree().LeafCount(), 1 << (2 * level));
    EXPECT_EQ(UniformDepth(test.m_Grid.Wanted().Current().Root()), level);
  }
}

TEST(GridTest, StartLevelIsHeldToTheMaximum) {
  CTestGrid test(3, 2);
  test.Initialize(6);
  EXPECT_EQ(test.m_Grid.Wanted().BaseLevel(), 3);
  EXPECT_EQ(test.m_Grid.Surface().Tree().LeafCount(), 64);
  EXPECT_EQ(UniformDepth(test.m_Grid.Wanted().Current().Root()), 3);
  EXPECT_NE(test.m_Console.Take().find("level : 3\n"), std::string::npos);
}

TEST(GridTest, StartLevelBelowNoneIsNone) {
  CTestGrid test(3, 2);
  test.Initialize(-2);
  EXPECT_EQ(test.m_Grid.Wanted().BaseLevel(), 0);
  EXPECT_EQ(test.m_Grid.Surface().ActivePointCount(), 4);
}

TEST(GridTest, ConstructionTakesTheDefaultBaseLevel) {
  const CResolutionScope scope(4, 3);
  const ConsoleCapture console;
  const CGrid grid;
  EXPECT_EQ(grid.Wanted().BaseLevel(), 3);
  EXPECT_EQ(grid.Surface().Lattice().Level(), 4);
}

TEST(GridTest, FirstTickRebuildsAfterInitialize) {
  CTestGrid test(4, 2);
  test.m_Grid.UpdateGrid();
  EXPECT_TRUE(test.m_Console.Take().starts_with("*** SetSparseH ***\n25 points\n"));
  EXPECT_GE(test.m_Grid.Solver().Counter(), 0);
  test.Initialize(3);
  EXPECT_EQ(test.m_Grid.Solver().Counter(), -1);
  EXPECT_EQ(CGridRun::kIterationsPerTick, 9);
  EXPECT_EQ(test.m_Grid.Run().NextOperation(), Operation::kNone);
}

TEST(GridTest, InitializeForgetsWhatWasPosted) {
  CTestGrid test(4, 2);
  test.m_Grid.Run().Post(Operation::kTransferToHigh);
  test.m_Grid.Run().Post(Operation::kRebuildMaps);
  test.Initialize(2, true);
  EXPECT_EQ(test.m_Grid.Run().NextOperation(), Operation::kNone);
  test.m_Console.Take();
  test.m_Grid.PerformPendingWork();
  EXPECT_EQ(test.m_Console.Take(), "*** SetSparseH ***\n25 points\n");
  EXPECT_EQ(g_bHighRes, 0);
}

// No tick may come before the surface is written to a file.
TEST(GridTest, PendingWorkOfANewGridLeavesItsNormals) {
  CTestGrid test(4, 2);
  test.m_Grid.PerformPendingWork();
  EXPECT_EQ(test.m_Grid.Surface().Lattice().PointNormals()[0], (Vector3{0, 0, 1}));
  EXPECT_EQ(test.m_Grid.Surface().Lattice().CellNormals()[0], (Vector3{0, 0, 1}));
}

TEST(GridTest, SystemIsSetUpOnce) {
  CTestGrid test(4, 2);
  test.m_Grid.SetSparseH();
  EXPECT_EQ(test.m_Grid.Solver().Counter(), 0);
  EXPECT_EQ(test.m_Console.Take(), "*** SetSparseH ***\n25 points\n");
  test.m_Grid.SetSparseH();
  EXPECT_EQ(test.m_Console.Take(), "");
}

TEST(GridTest, InitializeLeavesTheSolverRunningOrStopped) {
  CTestGrid test;
  test.m_Grid.Run().SetRunning(false);
  test.Initialize(2);
  EXPECT_FALSE(test.m_Grid.Run().IsRunning());
}

TEST(GridTest, InitializeFlattensTheSurface) {
  CTestGrid test;
  SetRandomSurface(test.m_Grid, 4);
  test.m_Grid.Surface().Lattice().Set(7, PointFlag::kFrozen | PointFlag::kCrease);
  test.Initialize(2, true);
  EXPECT_EQ(NodalHeights(test.m_Grid), std::vector<double>(25, 0.0));
  EXPECT_TRUE(std::ranges::all_of(test.m_Grid.Surface().Coefficients(), [](double c) { return c == 0; }));
  EXPECT_EQ(test.m_Grid.Surface().MaxHeight(), 0);
  EXPECT_EQ(test.m_Grid.Surface().Lattice().Count(PointFlag::kFrozen | PointFlag::kCrease), 0U);
}

TEST(GridTest, InitializeForgetsMarkedCells) {
  CTestGrid test(3, 2);
  CQuadTree& tree = test.m_Grid.Surface().Tree();
  tree.CellAt(1, 1, 1).SetFlags(CellFlag::kTriangles | CellFlag::kSelected);
  tree.CellAt(1, 2, 1).SetFlags(CellFlag::kTriangles);
  tree.RefreshEdgeMarks();
  test.Initialize(2);
  EXPECT_EQ(tree.CellAt(1, 1, 1).Flags(), 0U);
  EXPECT_FALSE(tree.CellAt(1, 1, 1).Edge(kRight).HasBothMarks());
}

TEST(GridTest, KeepingPreservesBothConstraintLists) {
  CTestGrid test;
  AddConstraints(test.m_Grid);
  test.Initialize(3, true);
  ASSERT_EQ(test.m_Grid.Constraints().Points().size(), 2U);
  EXPECT_EQ(test.m_Grid.Constraints().Points().begin()->m_fZ, 2.5);
  EXPECT_EQ(std::next(test.m_Grid.Constraints().Points().begin())->m_fQ, -0.5);
  ASSERT_EQ(test.m_Grid.Constraints().Generated().size(), 1U);
  EXPECT_EQ(test.m_Grid.Constraints().Generated().begin()->m_fZ, 4.5);
}

TEST(GridTest, NotKeepingEmptiesBothConstraintLists) {
  CTestGrid test;
  AddConstraints(test.m_Grid);
  test.Initialize(3, false);
  EXPECT_TRUE(test.m_Grid.Constraints().Points().empty());
  EXPECT_TRUE(test.m_Grid.Constraints().Generated().empty());
}

TEST(GridTest, LightsOutliveInitialize) {
  CTestGrid test;
  CStaging::RemovedLights(test.m_Grid).m_aLights[2].m_bActive = true;
  CStaging::AddedLights(test.m_Grid).m_aLights[CLightSet::kAmbient].m_afColour = {0.25, 0.5, 0.75};
  test.Initialize(3, false);
  EXPECT_TRUE(test.m_Grid.Relighting().RemovedLights().m_aLights[2].m_bActive);
  EXPECT_EQ(test.m_Grid.Relighting().AddedLights().m_aLights[4].m_afColour, (std::array{0.25, 0.5, 0.75}));
  EXPECT_FALSE(test.m_Grid.Relighting().AddedLights().m_aLights[2].m_bActive);
}

TEST(GridTest, EachLightSetHoldsFiveLights) {
  CTestGrid test;
  EXPECT_EQ(test.m_Grid.Relighting().RemovedLights().m_aLights.size(), 5U);
  EXPECT_EQ(test.m_Grid.Relighting().AddedLights().m_aLights.size(), 5U);
}

TEST(GridTest, HighResolutionMakesTheOtherRecordTheCurrentOne) {
  CTestGrid test(4, 2);
  g_bHighRes = 1;
  test.Initialize(2);
  EXPECT_EQ(UniformDepth(test.m_Grid.Wanted().Current().Root()), 4);
  EXPECT_EQ(test.m_Grid.Surface().Tree().LeafCount(), 16);
  g_bHighRes = 0;
  test.Initialize(2);
  EXPECT_EQ(UniformDepth(test.m_Grid.Wanted().Current().Root()), 2);
}

TEST(GridTest, FreeAllDropsConstraintsAndUnknowns) {
  CTestGrid test;
  AddConstraints(test.m_Grid);
  CStaging::Constraints(test.m_Grid).Headers() = {3, 4, 5};
  test.m_Grid.FreeAll();
  const CListHeaders& headers = test.m_Grid.Constraints().Headers();
  EXPECT_EQ((std::array{headers.m_iPoints, headers.m_iCurves, headers.m_iRegions}), (std::array{0, 0, 0}));
  EXPECT_TRUE(test.m_Grid.Constraints().Points().empty());
  EXPECT_TRUE(test.m_Grid.Constraints().Generated().empty());
  EXPECT_EQ(test.m_Grid.Surface().ActivePointCount(), 0);
  EXPECT_TRUE(test.m_Grid.Surface().Coefficients().empty());
  EXPECT_TRUE(test.m_Grid.Surface().Lattice().Heights().empty());
}

TEST(GridTest, InitializeAfterFreeAllStartsAfresh) {
  CTestGrid test(4, 2);
  SetRandomSurface(test.m_Grid, 9);
  test.m_Grid.FreeAll();
  test.Initialize(3, true);
  EXPECT_EQ(test.m_Grid.Surface().ActivePointCount(), 81);
  EXPECT_EQ(NodalHeights(test.m_Grid), std::vector<double>(81, 0.0));
  SetSurface(test.m_Grid, CFlat{2});
  EXPECT_DOUBLE_EQ(test.m_Grid.Surface().Interpolation().HeightAt(5.5, 7.25), 2);
}

TEST(GridTest, OtherMaximumLevelRebuildsTreeRecordsAndArrays) {
  CTestGrid test(4, 2);
  for (const int level : {5, 3}) {
    g_iMaxLevel = level;
    test.Initialize(2, true);
    EXPECT_EQ(test.m_Grid.Surface().Lattice().Level(), level);
    EXPECT_EQ(test.m_Grid.Surface().Tree().Level(), level);
    EXPECT_EQ(test.m_Grid.Wanted().Current().Depth(), level);
    EXPECT_EQ(test.m_Grid.Surface().Lattice().PointsPerSide(), (1 << level) + 1);
    EXPECT_EQ(test.m_Grid.Surface().Lattice().Heights().size(), test.m_Grid.Surface().Lattice().PointCount());
    EXPECT_EQ(test.m_Grid.Surface().Order().Level(), level);
  }
}

TEST(GridTest, SurfaceWorksAfterAChangeOfTheMaximumLevel) {
  CTestGrid test(4, 2);
  g_iMaxLevel = 6;
  test.Initialize(6);
  const CRamp ramp;
  SetSurface(test.m_Grid, ramp);
  EXPECT_NEAR(test.m_Grid.Surface().Interpolation().HeightAt(64, 64), ramp(kOblong.x1, kOblong.y1), 1e-12);
  EXPECT_NEAR(test.m_Grid.Surface().Interpolation().HeightAt(31.5, 7.25),
              ramp(test.m_Grid.Surface().Lattice().XOf(31.5), test.m_Grid.Surface().Lattice().YOf(7.25)), 1e-9);
}

TEST(GridTest, OtherRecordFollowsTheMaximumLevel) {
  CTestGrid test(4, 2);
  g_iMaxLevel = 3;
  g_bHighRes = 1;
  test.Initialize(2);
  EXPECT_EQ(test.m_Grid.Wanted().Current().Depth(), 3);
  EXPECT_EQ(UniformDepth(test.m_Grid.Wanted().Current().Root()), 3);
}

TEST(GridTest, MaximumLevelIsHeldToTheSupportedRange) {
  CTestGrid test(0, 2);
  EXPECT_EQ(test.m_Grid.Surface().Lattice().Level(), 1);
  EXPECT_EQ(test.m_Grid.Wanted().BaseLevel(), 1);
  EXPECT_EQ(test.m_Grid.Surface().ActivePointCount(), 9);
}

TEST(GridTest, EveryLevelOfTheLatticeCanBeNumbered) {
  for (int level = 1; level <= 7; ++level) {
    const CTestGrid test(level, level);
    EXPECT_EQ(test.m_Grid.Surface().ActivePointCount(),
              test.m_Grid.Surface().Lattice().PointsPerSide() * test.m_Grid.Surface().Lattice().PointsPerSide());
  }
}

}  // namespace
