// The codes that curves post, the rebuild that they ask for, and the attributes that lead to it.

#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "support/CStaging.h"
#include "support/CurveGrid.h"

namespace {

// Codes.

TEST(CurveCodesTest, NewCurveCodeUnselectsCurvesAndRebuildsTheMaps) {
  CCurveGrid test;
  test.Add(kPath);
  test.m_Grid.PickCurve(4, 22, CurveType::kAll);
  test.m_Console.Take();
  test.m_Grid.UpdateGrid();
  EXPECT_EQ(Selection(test.m_Grid.Constraints().Curves()), "0:000");
  EXPECT_NE(test.m_Console.Take().find("\nCGrid::SetDiscMap()\n"), std::string::npos);
  EXPECT_GT(test.m_Grid.Surface().Tree().LeafCount(), 16);
}

TEST(CurveCodesTest, NewCurveIsInTheModelBeforeASavingPostedEarlier) {
  CCurveGrid test;
  test.m_Grid.UpdateGrid();
  int leaves = 0;
  test.m_Host.m_OnCommand = [&](int) { leaves = test.m_Grid.Surface().Tree().LeafCount(); };
  test.m_Grid.Run().Post(Operation::kSaveGrid);
  test.Add(kPath);
  test.m_Grid.PerformPendingWork();
  EXPECT_EQ(test.m_Host.m_aiCommands, std::vector{CodeOf(Operation::kSaveGrid)});
  EXPECT_GT(leaves, 16);
}

TEST(CurveCodesTest, StoppedGridRasterisesACurveAtOnce) {
  CCurveGrid test;
  test.m_Grid.Run().SetRunning(false);
  test.Add(kPath);
  test.m_Grid.PerformPendingWork();
  EXPECT_GT(test.m_Grid.Surface().Tree().LeafCount(), 16);
  EXPECT_EQ(test.m_Grid.Solver().Counter(), 0);
}

TEST(CurveCodesTest, AttributesCodeAsksTheHostForTheDialog) {
  CCurveGrid test;
  test.m_Grid.Run().Post(Operation::kContourAttributes);
  test.m_Grid.UpdateGrid();
  EXPECT_EQ(test.m_Host.m_aiCommands, std::vector{CodeOf(Operation::kContourAttributes)});
}

TEST(CurveCodesTest, SubdivideCodeSplitsTheSelectionAndShowsIt) {
  CCurveGrid test;
  test.Add({{-2, 25}, {-1, 25.5}});
  CSaveQuadT& wanted = CStaging::Subdivision(test.m_Grid).Root().Child(1).Child(0);
  wanted.SetSelected(true);
  test.m_Grid.Run().Post(Operation::kSubdivide);
  test.m_Grid.UpdateGrid();
  EXPECT_TRUE(wanted.Child(2).IsSelected());
  EXPECT_TRUE(test.m_Grid.Surface().Tree().CellAt(1, 4, 0).IsActive());
  EXPECT_TRUE(test.m_Grid.Surface().Tree().CellAt(1, 4, 0).HasFlag(CellFlag::kSelected));
  EXPECT_FALSE(test.m_Grid.Surface().Tree().CellAt(2, 2, 0).HasFlag(CellFlag::kSelected));
  int marked = 0;
  test.m_Grid.Surface().Tree().ForEachLeaf(
      [&](const CQuadT& cell) { marked += cell.HasFlag(CellFlag::kTriangles) ? 1 : 0; });
  EXPECT_GT(marked, 0) << "the marks of the curve stay";
  EXPECT_EQ(test.m_Host.m_iLeaves, test.m_Grid.Surface().Tree().LeafCount());
}

TEST(CurveCodesTest, MergeCodeUndoesIt) {
  CCurveGrid test;
  CSaveQuadT& wanted = CStaging::Subdivision(test.m_Grid).Root().Child(1).Child(0);
  wanted.SetSelected(true);
  for (const Operation code : {Operation::kSubdivide, Operation::kMerge}) {
    test.m_Grid.Run().Post(code);
    test.m_Grid.UpdateGrid();
  }
  EXPECT_TRUE(wanted.IsSelected());
  EXPECT_TRUE(wanted.IsLeaf());
  EXPECT_EQ(test.m_Grid.Surface().Tree().LeafCount(), 16);
  EXPECT_TRUE(test.m_Grid.Surface().Tree().CellAt(2, 2, 0).HasFlag(CellFlag::kSelected));
  EXPECT_FALSE(test.m_Grid.Surface().Tree().CellAt(1, 4, 0).HasFlag(CellFlag::kSelected));
}

TEST(CurveCodesTest, OtherResolutionShowsItsOwnSelection) {
  CCurveGrid test;
  CStaging::Subdivision(test.m_Grid).Root().Child(1).Child(0).SetSelected(true);
  CStaging::Subdivision(test.m_Grid).ShowSelection(test.m_Grid.Surface().Tree());
  test.m_Grid.Run().Post(Operation::kRestoreHigh);
  test.m_Grid.UpdateGrid();
  EXPECT_FALSE(test.m_Grid.Surface().Tree().CellAt(2, 2, 0).HasFlag(CellFlag::kSelected));
  test.m_Grid.Run().Post(Operation::kRestoreNormal);
  test.m_Grid.UpdateGrid();
  EXPECT_TRUE(test.m_Grid.Surface().Tree().CellAt(2, 2, 0).HasFlag(CellFlag::kSelected));
}

// Rebuild.

TEST(CurveRebuildTest, StepsAreReportedInOrder) {
  CCurveGrid test;
  test.Add({{-2, 21}, {-1, 21}});
  test.Curve().SetOption(CurveOption::kLeftAutoBump, true);
  test.m_Console.Take();
  test.m_Grid.SetDiscMap();
  const std::string points = std::to_string(test.m_Grid.Surface().ActivePointCount()) + " points\n";
  EXPECT_EQ(test.m_Console.Take(),
            "\nCGrid::SetDiscMap()\n25 points\nCGrid::UpdateConstraintsFormCurves\n"
            "CCntrCtrl::AddAutoBumpConstraintsLeft\nDistanceLeft() : 5\n*** SetSparseH ***\n" +
                points);
}

TEST(CurveRebuildTest, RasterisedTearsAreDrawn) {
  CCurveGrid test;
  test.Add(kPath);
  test.m_Grid.PerformPendingWork();
  test.m_Host.m_iRedraws = 0;
  test.m_Grid.SetDiscMap();
  EXPECT_GT(test.m_Host.m_iRedraws, 0);
}

TEST(CurveRebuildTest, ConstraintsInTheTearAreDisabledAndFreedWithIt) {
  CCurveGrid test;
  test.m_Grid.AddPtCstr(HeightCstr(4, 23, 1));
  test.m_Grid.AddPtCstr(HeightCstr(4, 20.5, 1));
  test.Add({{0, 23.1}, {8, 23.1}});
  test.m_Grid.SetDiscMap();
  EXPECT_TRUE(RecordAt(test.m_Grid.Constraints().Points(), 0).HasKind(PtCstrKind::kDisabled));
  EXPECT_FALSE(RecordAt(test.m_Grid.Constraints().Points(), 1).HasKind(PtCstrKind::kDisabled));
  CStaging::Constraints(test.m_Grid).Curves().clear();
  test.m_Grid.SetDiscMap();
  EXPECT_FALSE(RecordAt(test.m_Grid.Constraints().Points(), 0).HasKind(PtCstrKind::kDisabled));
}

TEST(CurveRebuildTest, GeneratedConstraintsInATearAreDisabled) {
  CCurveGrid test;
  test.Add({{0, 23}, {8, 23}}, CurveType::kFairness);
  test.Curve().SetOption(CurveOption::kLeftAutoBump, true);
  test.Add({{4, 20.5}, {6, 25.5}});
  test.m_Grid.SetDiscMap();
  int disabled = 0;
  for (const CPtCstr& c : test.m_Grid.Constraints().Generated()) disabled += c.HasKind(PtCstrKind::kDisabled) ? 1 : 0;
  EXPECT_EQ(test.m_Grid.Constraints().Generated().size(), 2U);
  EXPECT_EQ(disabled, 1);
}

TEST(CurveRebuildTest, GeneratedConstraintsStandInFineCellsAndMakeRows) {
  CCurveGrid test;
  test.Add({{0, 23}, {8, 23}}, CurveType::kFairness);
  test.Curve().SetOption(CurveOption::kLeftAutoBump | CurveOption::kRightAutoBump, true);
  test.Curve().SetDistance(CurveSide::Left, 2);
  test.m_Grid.SetDiscMap();
  EXPECT_EQ(test.m_Grid.Constraints().Generated().size(), 4U + 2U);
  for (const CPtCstr& c : test.m_Grid.Constraints().Generated())
    EXPECT_EQ(test.m_Grid.Surface().Tree().PointInCell(c.m_fX, c.m_fY)->Size(), 1);
  EXPECT_EQ(test.m_Grid.Solver().System().ConstraintCount(), 12U);
}

TEST(CurveRebuildTest, SurfaceStaysUnderNewCurves) {
  CCurveGrid test;
  SetRandomSurface(test.m_Grid, 3);
  const std::vector<double> before = SurfaceOnLattice(test.m_Grid);
  test.Add(kPath);
  test.Add({{0, 25}, {9, 21}}, kCrease);
  test.m_Grid.PerformPendingWork();
  EXPECT_LT(LargestDifference(NodalHeights(test.m_Grid), Gathered(test.m_Grid.Surface().Order(), before)), 1e-9);
  EXPECT_LT(test.m_Grid.Surface().TestWavelets(), 1e-12);
}

TEST(CurveRebuildTest, DeletedCurveLeavesTheTreeAsItWas) {
  CCurveGrid test;
  test.Add(kPath);
  test.Add({{0, 25}, {9, 21}}, kCrease);
  test.m_Grid.SetDiscMap();
  CStaging::Constraints(test.m_Grid).Curves().clear();
  test.m_Grid.SetDiscMap();
  EXPECT_EQ(test.m_Grid.Surface().Tree().LeafCount(), 16);
  EXPECT_EQ(test.m_Grid.Surface().Lattice().Count(PointFlag::kCrease), 0U);
  test.m_Grid.Surface().Tree().ForEachLeaf([](const CQuadT& cell) { EXPECT_EQ(cell.Flags(), 0U); });
}

// From (0.1, 0.05) within its cell a segment to the right does not touch the triangle at the border by itself.
TEST(CurveRebuildTest, ClosedCurveOfTwoNodesIsTornLikeTheOpenOneItBecomes) {
  CCurveGrid open;
  CCurveGrid closed;
  for (CCurveGrid* test : {&open, &closed}) test->Add({{-3.4, 23.01875}, {8, 23.01875}});
  closed.Curve().SetClosed(true);
  for (CCurveGrid* test : {&open, &closed}) {
    test->m_Grid.SetDiscMap();
    EXPECT_FALSE(test->Curve().IsClosed());
    EXPECT_EQ(test->m_Grid.Surface().Tree().CellAt(0, 0, 8).Flags(), CellFlag::kTriangles);
  }
}

TEST(CurveRebuildTest, BothResolutionsHaveTheCurves) {
  CCurveGrid test;
  test.Add(kPath);
  test.m_Grid.UpdateGrid();
  for (const int code : {8, 16}) {
    test.m_Grid.Run().Post(OperationOf(code));
    test.m_Grid.UpdateGrid();
    int marked = 0;
    test.m_Grid.Surface().Tree().ForEachLeaf(
        [&](const CQuadT& cell) { marked += cell.HasFlag(CellFlag::kTriangles) ? 1 : 0; });
    EXPECT_GT(marked, 0) << code;
  }
}

// Attributes.

struct CAttributesGrid : CCurveGrid {
  CAttributesGrid() {
    Add(kPath);
    m_Grid.UpdateGrid();
    m_Console.Take();
  }
  CContourAttributes Shown() { return CContourAttributes::Of(Curve(), Node(1)); }
};

TEST(CurveAttributesTest, GoToTheCurveAndTheNodeUnderTheClick) {
  CAttributesGrid test;
  CContourAttributes wanted = test.Shown();
  wanted.m_bClosed = true;
  wanted.m_bRightAutoBump = true;
  wanted.m_aAutoBumps[1] = {2.5, 120};
  wanted.m_Weights = {1, 2, 3, 4};
  test.m_Grid.CurveEdits().SetAttributes(test.At(4.2, 22.1), 1, wanted, kCrease, false);
  EXPECT_TRUE(test.Curve().IsClosed());
  EXPECT_EQ(test.Curve().Options(), CurveOption::kRightAutoBump);
  EXPECT_EQ(test.Curve().AutoBump(CurveSide::Right).m_fOrientation, 80);
  EXPECT_EQ(test.Curve().AutoBump(CurveSide::Right).m_fDistance, 2.5);
  EXPECT_EQ(test.Curve().Type(), kCrease) << "the type is the view's";
  EXPECT_EQ(test.Node(1).m_Weights, wanted.m_Weights);
  EXPECT_EQ(test.Node(0).m_Weights, CNodeWeights{});
  EXPECT_EQ(test.m_Grid.Run().NextOperation(), Operation::kRebuildMaps);
}

TEST(CurveAttributesTest, WithoutACurrentTypeTheCurveKeepsItsOwn) {
  CAttributesGrid test;
  test.m_Grid.CurveEdits().SetAttributes(test.At(4, 22), 1, test.Shown(), CurveType::kNone, false);
  EXPECT_EQ(test.Curve().Type(), kTear);
}

TEST(CurveAttributesTest, WeightsMayGoToAllNodes) {
  CAttributesGrid test;
  CContourAttributes wanted = test.Shown();
  wanted.m_Weights = {1, 2, 3, 4};
  test.m_Grid.CurveEdits().SetAttributes(test.At(4, 22), 1, wanted, CurveType::kNone, true);
  for (const CCntrNode& node : test.Curve().Nodes()) EXPECT_EQ(node.m_Weights, wanted.m_Weights);
}

TEST(CurveAttributesTest, NothingHappensAwayFromEveryCurve) {
  CAttributesGrid test;
  CContourAttributes wanted = test.Shown();
  wanted.m_bClosed = true;
  test.m_Grid.CurveEdits().SetAttributes(test.At(10, 20.5), 0, wanted, kCrease, true);
  test.m_Grid.CurveEdits().ExportConstraints(test.At(10, 20.5));
  EXPECT_FALSE(test.Curve().IsClosed());
  EXPECT_EQ(test.m_Grid.Run().NextOperation(), Operation::kNone);
  EXPECT_TRUE(test.m_Grid.Constraints().Points().empty());
}

TEST(CurveAttributesTest, ExportMakesGeneratedConstraintsTheUsersOwn) {
  CAttributesGrid test;
  test.Curve().SetOption(CurveOption::kLeftAutoBump | CurveOption::kRightAutoBump, true);
  test.m_Grid.SetDiscMap();
  const CPlaces generated = PlacesOf(test.m_Grid.Constraints().Generated());
  test.m_Grid.CurveEdits().ExportConstraints(test.At(4, 22));
  EXPECT_EQ(PlacesOf(test.m_Grid.Constraints().Points()), generated);
  EXPECT_EQ(test.Curve().Options(), 0U);
  EXPECT_EQ(test.m_Host.m_iConstraints, static_cast<int>(generated.size()));
  test.m_Console.Take();
  test.m_Grid.UpdateGrid();
  EXPECT_EQ(Occurrences(test.m_Console.Take(), "SetDiscMap"), 1) << "one rebuild for all points";
  EXPECT_TRUE(test.m_Grid.Constraints().Generated().empty());
  EXPECT_EQ(test.m_Grid.Constraints().Points().size(), generated.size());
}

TEST(CurveAttributesTest, ExportFollowsANodeThatHasJustBeenMoved) {
  CAttributesGrid test;
  CCurveGrid rebuilt;
  rebuilt.Add({{0, 21}, {4, 25}, {8, 24}});
  for (CCurveGrid* grid : {static_cast<CCurveGrid*>(&test), &rebuilt})
    grid->Curve().SetOption(CurveOption::kRightAutoBump, true);
  rebuilt.m_Grid.SetDiscMap();
  test.Node(1).m_fY = 25;
  test.m_Grid.CurveEdits().ExportConstraints(test.At(4, 25));
  EXPECT_EQ(PlacesOf(test.m_Grid.Constraints().Points()), PlacesOf(rebuilt.m_Grid.Constraints().Generated()));
}

TEST(CurveAttributesTest, ExportedConstraintsTakeTheHeightUnderThemWithNoTick) {
  CAttributesGrid test;
  test.Curve().SetOption(CurveOption::kLeftAutoBump, true);
  SetRandomSurface(test.m_Grid, 5);
  test.m_Grid.CurveEdits().ExportConstraints(test.At(4, 22));
  test.m_Grid.PerformPendingWork();
  ASSERT_FALSE(test.m_Grid.Constraints().Points().empty());
  for (const CPtCstr& c : test.m_Grid.Constraints().Points()) {
    EXPECT_NE(c.m_fZ, 0);
    EXPECT_EQ(c.m_fZ, SurfaceHeight(test.m_Grid, c.m_fX, c.m_fY));
  }
}

TEST(CurveAttributesTest, ExportedConstraintsKeepTheirFineCellsWithoutTheCurve) {
  CAttributesGrid test;
  test.Curve().SetOption(CurveOption::kLeftAutoBump, true);
  test.m_Grid.CurveEdits().ExportConstraints(test.At(4, 22));
  CStaging::Constraints(test.m_Grid).Curves().clear();
  test.m_Grid.SetDiscMap();
  ASSERT_FALSE(test.m_Grid.Constraints().Points().empty());
  for (const CPtCstr& c : test.m_Grid.Constraints().Points())
    EXPECT_EQ(test.m_Grid.Surface().Tree().PointInCell(c.m_fX, c.m_fY)->Size(), 1);
}

}  // namespace
