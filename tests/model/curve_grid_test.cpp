// The grid's operations on its curves: what they change, say and post.

#include <cmath>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "model/CGrid.h"
#include "support/CurveBuilders.h"
#include "support/UpdateBuilders.h"

namespace {

constexpr std::uint32_t kTear = CurveType::kPosition;
constexpr std::uint32_t kCrease = CurveType::kNormal;
const CPlaces kPath{{0, 21}, {4, 22}, {8, 24}};

// Over -3.5..12.5 by 20..26 in steps of 1 by 0.375.
struct CCurveGrid : CTestGrid {
  CCurveGrid() : CTestGrid(4, 2) {}

  void Add(const CPlaces& places, std::uint32_t type = kTear, bool closed = false) {
    m_Grid.AddCurve(PointsAt(places), type, closed);
  }
  void Click(const CPlaces& places) {
    for (const auto& [x, y] : places) m_Grid.PendingCurve().Append(x, y);
  }
  CCntrCtrl& Curve(int place = 0) { return CurveAt(m_Grid.Curves(), place); }
  CCntrNode& Node(int k) { return *std::next(Curve().Nodes().begin(), k); }

  CActingHost m_Host{m_Grid};
};

TEST(GridCurvesTest, NewCurveIsAnnouncedAndPosted) {
  CCurveGrid test;
  test.Add(kPath, kCrease, true);
  EXPECT_EQ(test.m_Console.Take(), "CCntrCtrl creation\ncontour with 3 nodes added \n");
  EXPECT_EQ(test.m_Grid.NextOperation(), 1024);
  EXPECT_EQ(PlacesOf(test.Curve()), kPath);
  EXPECT_TRUE(test.Curve().IsClosed());
  EXPECT_EQ(test.Curve().Type(), kCrease);
}

TEST(GridCurvesTest, CurveWithoutPointsIsNone) {
  CCurveGrid test;
  test.Add({});
  test.m_Grid.AddTracedCurve({}, kTear, false);
  EXPECT_TRUE(test.m_Grid.Curves().empty());
  EXPECT_EQ(test.m_Grid.NextOperation(), 0);
  EXPECT_EQ(test.m_Console.Take(), "");
}

double OffsetLength(const CCntrNode& node) {
  const COffset& a = node.Offsets(CurveSide::Right).m_A;
  return std::hypot(a.m_fX, a.m_fY);
}

TEST(GridCurvesTest, OffsetsGrowOnceWithTheFirstRebuildAndStay) {
  CCurveGrid test;
  test.Add({{0, 21}, {8, 21}});
  const double diagonal = std::hypot(1.0, 0.375);
  EXPECT_NEAR(OffsetLength(test.Node(0)), diagonal * 5 / 7, 1e-12);
  for (int k = 0; k < 3; ++k) {
    test.m_Grid.SetDiscMap();
    EXPECT_NEAR(OffsetLength(test.Node(0)), 1.1 * diagonal * 5 / 7, 1e-12);
  }
}

TEST(GridCurvesTest, RebuildThatChangesNothingLeavesGeneratedConstraintsWhereTheyWere) {
  CCurveGrid test;
  test.Add(kPath);
  test.Curve().SetOption(CurveOption::kLeftAutoBump | CurveOption::kRightAutoBump, true);
  test.m_Grid.SetDiscMap();
  const CPlaces before = PlacesOf(test.m_Grid.GeneratedConstraints());
  EXPECT_GE(before.size(), 4U);
  for (int k = 0; k < 3; ++k) {
    test.m_Grid.SetDiscMap();
    EXPECT_EQ(PlacesOf(test.m_Grid.GeneratedConstraints()), before);
  }
}

TEST(GridCurvesTest, TracedCurveKeepsTheNodesThatMatter) {
  CCurveGrid test;
  test.m_Grid.AddTracedCurve(PointsAt({{0, 21}, {4, 21}, {8, 21}, {8, 21.3}, {8, 23}, {8, 25}}), kTear, false);
  EXPECT_EQ(PlacesOf(test.Curve()), (CPlaces{{0, 21}, {8, 21}, {8, 25}}));
  EXPECT_FALSE(test.Node(1).Offsets(CurveSide::Right).m_B.IsZero()) << "the normals are those of what is kept";
  EXPECT_EQ(test.m_Grid.NextOperation(), 1024);
}

TEST(GridCurvesTest, TracedPointIsRefusedOnceAndGoesWithTheRebuild) {
  CCurveGrid test;
  test.m_Grid.AddTracedCurve(PointsAt({{0, 21}}), kTear, false);
  EXPECT_EQ(Occurrences(test.m_Console.Take(), "dealing with a single-point curve\n"), 1);
  EXPECT_EQ(test.m_Grid.Curves().size(), 1U);
  test.m_Grid.SetDiscMap();
  EXPECT_TRUE(test.m_Grid.Curves().empty());
}

TEST(GridCurvesTest, CurvesWithoutNodesGoWithTheRebuild) {
  CCurveGrid test;
  test.Add(kPath);
  test.m_Grid.Curves().Add();
  test.m_Grid.SetDiscMap();
  EXPECT_EQ(test.m_Grid.Curves().size(), 1U);
  EXPECT_EQ(Occurrences(test.m_Console.Take(), "Error"), 0);
}

// The half-made curve.

TEST(PendingGridCurveTest, EnterAfterTwoClicksMakesThreeNodes) {
  CCurveGrid test;
  test.Click({{0, 21}, {4, 22}});
  EXPECT_EQ(test.m_Grid.ValidatePendingCurve(8, 24, false, kTear), CGrid::Validation::Added);
  EXPECT_EQ(PlacesOf(test.Curve()), kPath);
  EXPECT_FALSE(test.Curve().IsClosed());
  EXPECT_TRUE(test.m_Grid.PendingCurve().IsIdle());
  EXPECT_TRUE(test.m_Grid.PendingCurve().Points().empty());
}

TEST(PendingGridCurveTest, ShiftClosesIt) {
  CCurveGrid test;
  test.Click({{0, 21}, {4, 22}});
  test.m_Grid.ValidatePendingCurve(8, 24, true, kTear);
  EXPECT_TRUE(test.Curve().IsClosed());
  EXPECT_EQ(PlacesOf(test.Curve()), kPath);
}

TEST(PendingGridCurveTest, ShiftAfterOneClickMakesAnOpenPair) {
  CCurveGrid test;
  test.Click({{0, 21}});
  test.m_Grid.ValidatePendingCurve(8, 24, true, kTear);
  EXPECT_FALSE(test.Curve().IsClosed());
  EXPECT_EQ(test.Curve().Nodes().size(), 2U);
}

TEST(PendingGridCurveTest, CursorOnTheFirstPointClosesTheClickedPoints) {
  CCurveGrid test;
  test.Click(kPath);
  test.m_Grid.PendingCurve().Hover(0.2, 21.2, PickReach());
  test.m_Grid.ValidatePendingCurve(0.2, 21.2, false, kTear);
  EXPECT_TRUE(test.Curve().IsClosed());
  EXPECT_EQ(PlacesOf(test.Curve()), kPath);
  EXPECT_FALSE(test.m_Grid.PendingCurve().ClosesOnValidate()) << "the view is idle again";
}

TEST(PendingGridCurveTest, SinglePointMakesNoCurve) {
  CCurveGrid test;
  test.Click({{0, 21}});
  test.m_Grid.PendingCurve().SetClosedOnValidate(true);
  EXPECT_EQ(test.m_Grid.ValidatePendingCurve(0, 21, false, kTear), CGrid::Validation::Dropped);
  EXPECT_TRUE(test.m_Grid.Curves().empty());
  EXPECT_TRUE(test.m_Grid.PendingCurve().IsIdle());
  EXPECT_EQ(test.m_Grid.NextOperation(), 0);
}

TEST(PendingGridCurveTest, EnterWithNothingInProgressDoesNothing) {
  CCurveGrid test;
  for (const std::uint32_t type : {0U, kTear})
    EXPECT_EQ(test.m_Grid.ValidatePendingCurve(0, 21, true, type), CGrid::Validation::Dropped);
  EXPECT_TRUE(test.m_Grid.Curves().empty());
}

TEST(PendingGridCurveTest, WithoutATypeThePointsStay) {
  CCurveGrid test;
  test.Click({{0, 21}, {4, 22}});
  EXPECT_EQ(test.m_Grid.ValidatePendingCurve(8, 24, false, 0), CGrid::Validation::NeedsType);
  EXPECT_EQ(test.m_Grid.PendingCurve().Points().size(), 2U);
  EXPECT_FALSE(test.m_Grid.PendingCurve().IsIdle());
  EXPECT_EQ(test.m_Grid.ValidatePendingCurve(8, 24, false, kTear), CGrid::Validation::Added);
  EXPECT_EQ(test.Curve().Nodes().size(), 3U);
}

TEST(PendingGridCurveTest, ValidatingAndCancellingUnselectEverything) {
  for (const bool cancel : {false, true}) {
    CCurveGrid test;
    test.Add(kPath);
    test.m_Grid.AddPtCstr(HeightCstr(1, 25, 1));
    test.m_Grid.PickCurve(0, 21, CurveType::kAll);
    test.m_Grid.SelectPtCstr(1, 25, PtCstrKind::kPosition);
    test.Click({{0, 25}, {1, 25}});
    if (cancel) {
      test.m_Grid.CancelPendingCurve();
    } else {
      test.m_Grid.ValidatePendingCurve(2, 25, false, kTear);
    }
    EXPECT_EQ(Selection(test.m_Grid.Curves()), cancel ? "0:000" : "0:000 0:000");
    EXPECT_EQ(Selection(test.m_Grid.PointConstraints()), "0");
    EXPECT_TRUE(test.m_Grid.PendingCurve().IsIdle());
  }
}

TEST(PendingGridCurveTest, PointsClickedSinceTheCurveStay) {
  CCurveGrid test;
  test.Click({{0, 21}, {4, 22}});
  test.m_Grid.ValidatePendingCurve(8, 24, false, kTear);
  test.Click({{1, 25}});
  test.m_Grid.UpdateGrid();
  EXPECT_EQ(test.m_Grid.PendingCurve().Points().size(), 1U);
}

TEST(PendingGridCurveTest, GoesWithTheOldModel) {
  CCurveGrid test;
  test.Add(kPath);
  test.Click({{0, 21}});
  test.Initialize(2, true);
  EXPECT_EQ(test.m_Grid.Curves().size(), 1U);
  EXPECT_FALSE(test.m_Grid.PendingCurve().IsIdle());
  test.Initialize(2, false);
  EXPECT_TRUE(test.m_Grid.Curves().empty());
  EXPECT_TRUE(test.m_Grid.PendingCurve().IsIdle());
}

// Selection and its edits.

TEST(GridCurvesTest, PickAnswersTheTypeOfTheCurve) {
  CCurveGrid test;
  test.Add(kPath, kCrease);
  EXPECT_EQ(test.m_Grid.PickCurve(4.5, 22.4, CurveType::kAll), kCrease);
  EXPECT_EQ(Selection(test.m_Grid.Curves()), "1:010");
  EXPECT_EQ(test.m_Grid.PickCurve(4.5, 22.4, kTear), 0U);
  EXPECT_EQ(test.m_Grid.PickCurve(2, 21.5, CurveType::kAll), 0U) << "a segment is not a node";
}

TEST(GridCurvesTest, ReachFollowsTheZoom) {
  CCurveGrid test;
  test.Add(kPath);
  EXPECT_FALSE(test.m_Grid.HighlightCurves(0, 19.5, CurveType::kAll));
  const CGlobalScope zoom(g_fZoom, 2.0);
  EXPECT_TRUE(test.m_Grid.HighlightCurves(0, 19.5, CurveType::kAll));
  EXPECT_EQ(Highlights(test.m_Grid.Curves()), "1:100");
  EXPECT_NE(test.m_Grid.FindCurve(0, 19.5).m_pNode, nullptr);
}

TEST(GridCurvesTest, UnselectAllIncludesCurves) {
  CCurveGrid test;
  test.Add(kPath);
  test.m_Grid.PickCurve(0, 21, CurveType::kAll);
  test.m_Grid.UnselectAll();
  EXPECT_EQ(Selection(test.m_Grid.Curves()), "0:000");
}

TEST(GridCurvesTest, SelectedCurveTakesAnotherType) {
  CCurveGrid test;
  test.Add(kPath);
  test.m_Grid.SetSelectedCurveType(kCrease);
  EXPECT_EQ(test.Curve().Type(), kTear) << "none is selected";
  test.m_Grid.PickCurve(0, 21, CurveType::kAll);
  test.m_Grid.SetSelectedCurveType(0);
  EXPECT_EQ(test.Curve().Type(), kTear);
  test.m_Grid.SetSelectedCurveType(kCrease);
  EXPECT_EQ(test.Curve().Type(), kCrease);
}

TEST(GridCurvesTest, DragMovesThePickedNodeAndPostsNothing) {
  CCurveGrid test;
  test.Add(kPath);
  test.m_Grid.UpdateGrid();
  test.m_Grid.PickCurve(4, 22, CurveType::kAll);
  test.m_Grid.MoveSelectedCurve(0.5, -0.5, CurveType::kAll);
  EXPECT_EQ(PlacesOf(test.Curve()), (CPlaces{{0, 21}, {4.5, 21.5}, {8, 24}}));
  EXPECT_EQ(test.m_Grid.NextOperation(), 0);
}

TEST(GridCurvesTest, DeletionsPostARebuildOfTheMaps) {
  CCurveGrid test;
  test.Add(kPath);
  test.m_Grid.UpdateGrid();
  test.m_Grid.PickCurve(4, 22, CurveType::kAll);
  test.m_Grid.DeleteSelectedCurveNode();
  EXPECT_EQ(PlacesOf(test.Curve()), (CPlaces{{0, 21}, {8, 24}}));
  EXPECT_EQ(test.m_Grid.NextOperation(), 4);
  test.m_Grid.UpdateGrid();
  test.m_Grid.PickCurve(0, 21, CurveType::kAll);
  test.m_Grid.DeleteSelectedCurve();
  EXPECT_TRUE(test.m_Grid.Curves().empty());
  EXPECT_EQ(test.m_Grid.NextOperation(), 4);
}

TEST(GridCurvesTest, ClosedCurveOfTwoNodesLeftBecomesOpen) {
  CCurveGrid test;
  test.Add(kPath, kTear, true);
  test.m_Grid.PickCurve(4, 22, CurveType::kAll);
  test.m_Grid.DeleteSelectedCurveNode();
  test.m_Grid.UpdateGrid();
  EXPECT_FALSE(test.Curve().IsClosed());
}

// Codes.

TEST(GridCurvesTest, NewCurveCodeUnselectsCurvesAndRebuildsTheMaps) {
  CCurveGrid test;
  test.Add(kPath);
  test.m_Grid.PickCurve(4, 22, CurveType::kAll);
  test.m_Console.Take();
  test.m_Grid.UpdateGrid();
  EXPECT_EQ(Selection(test.m_Grid.Curves()), "0:000");
  EXPECT_NE(test.m_Console.Take().find("\nCGrid::SetDiscMap()\n"), std::string::npos);
  EXPECT_GT(test.m_Grid.Tree().LeafCount(), 16);
}

TEST(GridCurvesTest, NewCurveIsInTheModelBeforeASavingPostedEarlier) {
  CCurveGrid test;
  test.m_Grid.UpdateGrid();
  int leaves = 0;
  test.m_Host.m_OnCommand = [&](int) { leaves = test.m_Grid.Tree().LeafCount(); };
  test.m_Grid.Post(Operation::kSaveGrid);
  test.Add(kPath);
  test.m_Grid.PerformPendingWork();
  EXPECT_EQ(test.m_Host.m_aiCommands, std::vector{Operation::kSaveGrid});
  EXPECT_GT(leaves, 16);
}

TEST(GridCurvesTest, StoppedGridRasterisesACurveAtOnce) {
  CCurveGrid test;
  test.m_Grid.SetRunning(false);
  test.Add(kPath);
  test.m_Grid.PerformPendingWork();
  EXPECT_GT(test.m_Grid.Tree().LeafCount(), 16);
  EXPECT_EQ(test.m_Grid.IterationCounter(), 0);
}

TEST(GridCurvesTest, AttributesCodeAsksTheHostForTheDialog) {
  CCurveGrid test;
  test.m_Grid.Post(Operation::kContourAttributes);
  test.m_Grid.UpdateGrid();
  EXPECT_EQ(test.m_Host.m_aiCommands, std::vector{Operation::kContourAttributes});
}

TEST(GridCurvesTest, SubdivideCodeSplitsTheSelectionAndShowsIt) {
  CCurveGrid test;
  test.Add({{-2, 25}, {-1, 25.5}});
  CSaveQuadT& wanted = test.m_Grid.Subdivision().Root().Child(1).Child(0);
  wanted.SetSelected(true);
  test.m_Grid.Post(Operation::kSubdivide);
  test.m_Grid.UpdateGrid();
  EXPECT_TRUE(wanted.Child(2).IsSelected());
  EXPECT_TRUE(test.m_Grid.Tree().CellAt(1, 4, 0).IsActive());
  EXPECT_TRUE(test.m_Grid.Tree().CellAt(1, 4, 0).HasFlag(CellFlag::kSelected));
  EXPECT_FALSE(test.m_Grid.Tree().CellAt(2, 2, 0).HasFlag(CellFlag::kSelected));
  int marked = 0;
  test.m_Grid.Tree().ForEachLeaf([&](const CQuadT& cell) { marked += cell.HasFlag(CellFlag::kTriangles) ? 1 : 0; });
  EXPECT_GT(marked, 0) << "the marks of the curve stay";
  EXPECT_EQ(test.m_Host.m_iLeaves, test.m_Grid.Tree().LeafCount());
}

TEST(GridCurvesTest, MergeCodeUndoesIt) {
  CCurveGrid test;
  CSaveQuadT& wanted = test.m_Grid.Subdivision().Root().Child(1).Child(0);
  wanted.SetSelected(true);
  for (const int code : {Operation::kSubdivide, Operation::kMerge}) {
    test.m_Grid.Post(code);
    test.m_Grid.UpdateGrid();
  }
  EXPECT_TRUE(wanted.IsSelected());
  EXPECT_TRUE(wanted.IsLeaf());
  EXPECT_EQ(test.m_Grid.Tree().LeafCount(), 16);
  EXPECT_TRUE(test.m_Grid.Tree().CellAt(2, 2, 0).HasFlag(CellFlag::kSelected));
  EXPECT_FALSE(test.m_Grid.Tree().CellAt(1, 4, 0).HasFlag(CellFlag::kSelected));
}

// Rebuild.

TEST(CurveRebuildTest, StepsAreReportedInOrder) {
  CCurveGrid test;
  test.Add({{-2, 21}, {-1, 21}});
  test.Curve().SetOption(CurveOption::kLeftAutoBump, true);
  test.m_Console.Take();
  test.m_Grid.SetDiscMap();
  const std::string points = std::to_string(test.m_Grid.ActivePointCount()) + " points\n";
  EXPECT_EQ(test.m_Console.Take(),
            "\nCGrid::SetDiscMap()\n25 points\nCGrid::UpdateConstraintsFormCurves\n"
            "CCntrCtrl::AddAutoBumpConstraintsLeft\nDistanceLeft() : 5\n*** SetSparseH ***\n" +
                points);
}

TEST(CurveRebuildTest, ConstraintsInTheTearAreDisabledAndFreedWithIt) {
  CCurveGrid test;
  test.m_Grid.AddPtCstr(HeightCstr(4, 23, 1));
  test.m_Grid.AddPtCstr(HeightCstr(4, 20.5, 1));
  test.Add({{0, 23.1}, {8, 23.1}});
  test.m_Grid.SetDiscMap();
  EXPECT_TRUE(RecordAt(test.m_Grid.PointConstraints(), 0).HasKind(PtCstrKind::kDisabled));
  EXPECT_FALSE(RecordAt(test.m_Grid.PointConstraints(), 1).HasKind(PtCstrKind::kDisabled));
  test.m_Grid.Curves().clear();
  test.m_Grid.SetDiscMap();
  EXPECT_FALSE(RecordAt(test.m_Grid.PointConstraints(), 0).HasKind(PtCstrKind::kDisabled));
}

TEST(CurveRebuildTest, GeneratedConstraintsStandInFineCellsAndMakeRows) {
  CCurveGrid test;
  test.Add({{0, 23}, {8, 23}}, CurveType::kFairness);
  test.Curve().SetOption(CurveOption::kLeftAutoBump | CurveOption::kRightAutoBump, true);
  test.Curve().SetDistance(CurveSide::Left, 2);
  test.m_Grid.SetDiscMap();
  EXPECT_EQ(test.m_Grid.GeneratedConstraints().size(), 4U + 2U);
  for (const CPtCstr& c : test.m_Grid.GeneratedConstraints())
    EXPECT_EQ(test.m_Grid.Tree().PointInCell(c.m_fX, c.m_fY)->Size(), 1);
  EXPECT_EQ(test.m_Grid.Solver().System().ConstraintCount(), 12U);
}

TEST(CurveRebuildTest, SurfaceStaysUnderNewCurves) {
  CCurveGrid test;
  SetRandomSurface(test.m_Grid, 3);
  const std::vector<double> before = SurfaceOnLattice(test.m_Grid);
  test.Add(kPath);
  test.Add({{0, 25}, {9, 21}}, kCrease);
  test.m_Grid.PerformPendingWork();
  EXPECT_LT(LargestDifference(NodalHeights(test.m_Grid), Gathered(test.m_Grid.Order(), before)), 1e-9);
  EXPECT_LT(test.m_Grid.TestWavelets(), 1e-12);
}

TEST(CurveRebuildTest, DeletedCurveLeavesTheTreeAsItWas) {
  CCurveGrid test;
  test.Add(kPath);
  test.Add({{0, 25}, {9, 21}}, kCrease);
  test.m_Grid.SetDiscMap();
  test.m_Grid.Curves().clear();
  test.m_Grid.SetDiscMap();
  EXPECT_EQ(test.m_Grid.Tree().LeafCount(), 16);
  EXPECT_EQ(test.m_Grid.Lattice().Count(PointFlag::kCrease), 0U);
  test.m_Grid.Tree().ForEachLeaf([](const CQuadT& cell) { EXPECT_EQ(cell.Flags(), 0U); });
}

TEST(CurveRebuildTest, BothResolutionsHaveTheCurves) {
  CCurveGrid test;
  test.Add(kPath);
  test.m_Grid.UpdateGrid();
  for (const int code : {8, 16}) {
    test.m_Grid.Post(code);
    test.m_Grid.UpdateGrid();
    int marked = 0;
    test.m_Grid.Tree().ForEachLeaf([&](const CQuadT& cell) { marked += cell.HasFlag(CellFlag::kTriangles) ? 1 : 0; });
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
  test.m_Grid.SetCurveAttributes(4.2, 22.1, wanted, kCrease, false);
  EXPECT_TRUE(test.Curve().IsClosed());
  EXPECT_EQ(test.Curve().Options(), CurveOption::kRightAutoBump);
  EXPECT_EQ(test.Curve().AutoBump(CurveSide::Right).m_fOrientation, 80);
  EXPECT_EQ(test.Curve().AutoBump(CurveSide::Right).m_fDistance, 2.5);
  EXPECT_EQ(test.Curve().Type(), kCrease) << "the type is the view's";
  EXPECT_EQ(test.Node(1).m_Weights, wanted.m_Weights);
  EXPECT_EQ(test.Node(0).m_Weights, CNodeWeights{});
  EXPECT_EQ(test.m_Grid.NextOperation(), 4);
}

TEST(CurveAttributesTest, WithoutACurrentTypeTheCurveKeepsItsOwn) {
  CAttributesGrid test;
  test.m_Grid.SetCurveAttributes(4, 22, test.Shown(), 0, false);
  EXPECT_EQ(test.Curve().Type(), kTear);
}

TEST(CurveAttributesTest, WeightsMayGoToAllNodes) {
  CAttributesGrid test;
  CContourAttributes wanted = test.Shown();
  wanted.m_Weights = {1, 2, 3, 4};
  test.m_Grid.SetCurveAttributes(4, 22, wanted, 0, true);
  for (const CCntrNode& node : test.Curve().Nodes()) EXPECT_EQ(node.m_Weights, wanted.m_Weights);
}

TEST(CurveAttributesTest, NothingHappensAwayFromEveryCurve) {
  CAttributesGrid test;
  CContourAttributes wanted = test.Shown();
  wanted.m_bClosed = true;
  test.m_Grid.SetCurveAttributes(10, 20.5, wanted, kCrease, true);
  test.m_Grid.ExportCurveConstraints(10, 20.5);
  EXPECT_FALSE(test.Curve().IsClosed());
  EXPECT_EQ(test.m_Grid.NextOperation(), 0);
  EXPECT_TRUE(test.m_Grid.PointConstraints().empty());
}

TEST(CurveAttributesTest, ExportMakesGeneratedConstraintsTheUsersOwn) {
  CAttributesGrid test;
  test.Curve().SetOption(CurveOption::kLeftAutoBump | CurveOption::kRightAutoBump, true);
  test.m_Grid.SetDiscMap();
  const CPlaces generated = PlacesOf(test.m_Grid.GeneratedConstraints());
  test.m_Grid.ExportCurveConstraints(4, 22);
  EXPECT_EQ(PlacesOf(test.m_Grid.PointConstraints()), generated);
  EXPECT_EQ(test.Curve().Options(), 0U);
  EXPECT_EQ(test.m_Host.m_iConstraints, static_cast<int>(generated.size()));
  test.m_Console.Take();
  test.m_Grid.UpdateGrid();
  EXPECT_EQ(Occurrences(test.m_Console.Take(), "SetDiscMap"), 1) << "one rebuild for all points";
  EXPECT_TRUE(test.m_Grid.GeneratedConstraints().empty());
  EXPECT_EQ(test.m_Grid.PointConstraints().size(), generated.size());
}

TEST(CurveAttributesTest, ExportedConstraintsKeepTheirFineCellsWithoutTheCurve) {
  CAttributesGrid test;
  test.Curve().SetOption(CurveOption::kLeftAutoBump, true);
  test.m_Grid.ExportCurveConstraints(4, 22);
  test.m_Grid.Curves().clear();
  test.m_Grid.SetDiscMap();
  ASSERT_FALSE(test.m_Grid.PointConstraints().empty());
  for (const CPtCstr& c : test.m_Grid.PointConstraints())
    EXPECT_EQ(test.m_Grid.Tree().PointInCell(c.m_fX, c.m_fY)->Size(), 1);
}

}  // namespace
