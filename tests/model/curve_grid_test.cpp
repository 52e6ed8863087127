// The grid's operations on its curves: what they change, say and post.

#include <cmath>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "support/CStaging.h"
#include "support/CurveGrid.h"

namespace {

TEST(GridCurvesTest, NewCurveIsAnnouncedAndPosted) {
  CCurveGrid test;
  test.Add(kPath, kCrease, true);
  EXPECT_EQ(test.m_Console.Take(), "CCntrCtrl creation\ncontour with 3 nodes added \n");
  EXPECT_EQ(test.m_Grid.Run().NextOperation(), Operation::kNewCurve);
  EXPECT_EQ(PlacesOf(test.Curve()), kPath);
  EXPECT_TRUE(test.Curve().IsClosed());
  EXPECT_EQ(test.Curve().Type(), kCrease);
}

TEST(GridCurvesTest, CurveWithoutPointsIsNone) {
  CCurveGrid test;
  test.Add({});
  test.m_Grid.AddTracedCurve({}, kTear, false);
  EXPECT_TRUE(test.m_Grid.Constraints().Curves().empty());
  EXPECT_EQ(test.m_Grid.Run().NextOperation(), Operation::kNone);
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
  const CPlaces before = PlacesOf(test.m_Grid.Constraints().Generated());
  EXPECT_GE(before.size(), 4U);
  for (int k = 0; k < 3; ++k) {
    test.m_Grid.SetDiscMap();
    EXPECT_EQ(PlacesOf(test.m_Grid.Constraints().Generated()), before);
  }
}

TEST(GridCurvesTest, TracedCurveKeepsTheNodesThatMatter) {
  CCurveGrid test;
  test.m_Grid.AddTracedCurve(PointsAt({{0, 21}, {4, 21}, {8, 21}, {8, 21.3}, {8, 23}, {8, 25}}), kTear, false);
  EXPECT_EQ(PlacesOf(test.Curve()), (CPlaces{{0, 21}, {8, 21}, {8, 25}}));
  EXPECT_FALSE(test.Node(1).Offsets(CurveSide::Right).m_B.IsZero()) << "the normals are those of what is kept";
  EXPECT_EQ(test.m_Grid.Run().NextOperation(), Operation::kNewCurve);
}

TEST(GridCurvesTest, TracedCurveHasTheOffsetsOfTheNodesThatAreKept) {
  CCurveGrid traced;
  traced.m_Grid.AddTracedCurve(PointsAt({{0, 21}, {0.2, 21.05}, {4, 21}, {7.8, 21.05}, {8, 21.3}, {8, 25}}), kTear,
                               false);
  CCurveGrid drawn;
  drawn.Add(PlacesOf(traced.Curve()));
  ASSERT_LT(traced.Curve().Nodes().size(), 6U);
  for (int k = 0; k < static_cast<int>(traced.Curve().Nodes().size()); ++k) {
    EXPECT_EQ(traced.Node(k).Offsets(CurveSide::Right).m_A.m_fX, drawn.Node(k).Offsets(CurveSide::Right).m_A.m_fX) << k;
    EXPECT_EQ(traced.Node(k).Offsets(CurveSide::Left).m_A.m_fY, drawn.Node(k).Offsets(CurveSide::Left).m_A.m_fY) << k;
  }
}

TEST(GridCurvesTest, TracedPointIsRefusedOnceAndGoesWithTheRebuild) {
  CCurveGrid test;
  test.m_Grid.AddTracedCurve(PointsAt({{0, 21}}), kTear, false);
  EXPECT_EQ(Occurrences(test.m_Console.Take(), "dealing with a single-point curve\n"), 1);
  EXPECT_EQ(test.m_Grid.Constraints().Curves().size(), 1U);
  test.m_Grid.SetDiscMap();
  EXPECT_TRUE(test.m_Grid.Constraints().Curves().empty());
}

TEST(GridCurvesTest, CurvesWithoutNodesGoWithTheRebuild) {
  CCurveGrid test;
  test.Add(kPath);
  CStaging::Constraints(test.m_Grid).Curves().Add();
  test.m_Grid.SetDiscMap();
  EXPECT_EQ(test.m_Grid.Constraints().Curves().size(), 1U);
  EXPECT_EQ(Occurrences(test.m_Console.Take(), "Error"), 0);
}

// The curve in progress.

TEST(PendingGridCurveTest, EnterAfterTwoClicksMakesThreeNodes) {
  CCurveGrid test;
  test.Click({{0, 21}, {4, 22}});
  EXPECT_EQ(test.m_Grid.CurveEdits().ValidatePending(8, 24, false, kTear), CCurveEdits::Validation::Added);
  EXPECT_EQ(PlacesOf(test.Curve()), kPath);
  EXPECT_FALSE(test.Curve().IsClosed());
  EXPECT_TRUE(test.m_Grid.Constraints().PendingCurve().IsIdle());
  EXPECT_TRUE(test.m_Grid.Constraints().PendingCurve().Points().empty());
}

TEST(PendingGridCurveTest, ShiftClosesIt) {
  CCurveGrid test;
  test.Click({{0, 21}, {4, 22}});
  test.m_Grid.CurveEdits().ValidatePending(8, 24, true, kTear);
  EXPECT_TRUE(test.Curve().IsClosed());
  EXPECT_EQ(PlacesOf(test.Curve()), kPath);
}

TEST(PendingGridCurveTest, ShiftAfterOneClickMakesAnOpenPair) {
  CCurveGrid test;
  test.Click({{0, 21}});
  test.m_Grid.CurveEdits().ValidatePending(8, 24, true, kTear);
  EXPECT_FALSE(test.Curve().IsClosed());
  EXPECT_EQ(test.Curve().Nodes().size(), 2U);
}

TEST(PendingGridCurveTest, CursorOnTheFirstPointClosesTheClickedPoints) {
  CCurveGrid test;
  test.Click(kPath);
  test.m_Grid.CurveEdits().HoverPending(0.2, 21.2, PickReach());
  test.m_Grid.CurveEdits().ValidatePending(0.2, 21.2, false, kTear);
  EXPECT_TRUE(test.Curve().IsClosed());
  EXPECT_EQ(PlacesOf(test.Curve()), kPath);
  EXPECT_FALSE(test.m_Grid.Constraints().PendingCurve().ClosesOnValidate()) << "the view is idle again";
}

TEST(PendingGridCurveTest, SinglePointMakesNoCurve) {
  CCurveGrid test;
  test.Click({{0, 21}});
  test.m_Grid.CurveEdits().HoverPending(0, 21, PickReach());
  ASSERT_TRUE(test.m_Grid.Constraints().PendingCurve().ClosesOnValidate());
  EXPECT_EQ(test.m_Grid.CurveEdits().ValidatePending(0, 21, false, kTear), CCurveEdits::Validation::Dropped);
  EXPECT_TRUE(test.m_Grid.Constraints().Curves().empty());
  EXPECT_TRUE(test.m_Grid.Constraints().PendingCurve().IsIdle());
  EXPECT_EQ(test.m_Grid.Run().NextOperation(), Operation::kNone);
}

TEST(PendingGridCurveTest, EnterWithNothingInProgressDoesNothing) {
  CCurveGrid test;
  for (const CurveType type : {CurveType::kNone, kTear})
    EXPECT_EQ(test.m_Grid.CurveEdits().ValidatePending(0, 21, true, type), CCurveEdits::Validation::Dropped);
  EXPECT_TRUE(test.m_Grid.Constraints().Curves().empty());
}

TEST(PendingGridCurveTest, WithoutATypeThePointsStay) {
  CCurveGrid test;
  test.Click({{0, 21}, {4, 22}});
  EXPECT_EQ(test.m_Grid.CurveEdits().ValidatePending(8, 24, false, CurveType::kNone),
            CCurveEdits::Validation::NeedsType);
  EXPECT_EQ(test.m_Grid.Constraints().PendingCurve().Points().size(), 2U);
  EXPECT_FALSE(test.m_Grid.Constraints().PendingCurve().IsIdle());
  EXPECT_EQ(test.m_Grid.CurveEdits().ValidatePending(8, 24, false, kTear), CCurveEdits::Validation::Added);
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
      test.m_Grid.CurveEdits().CancelPending();
    } else {
      test.m_Grid.CurveEdits().ValidatePending(2, 25, false, kTear);
    }
    EXPECT_EQ(Selection(test.m_Grid.Constraints().Curves()), cancel ? "0:000" : "0:000 0:000");
    EXPECT_EQ(Selection(test.m_Grid.Constraints().Points()), "0");
    EXPECT_TRUE(test.m_Grid.Constraints().PendingCurve().IsIdle());
  }
}

TEST(PendingGridCurveTest, PointsClickedSinceTheCurveStay) {
  CCurveGrid test;
  test.Click({{0, 21}, {4, 22}});
  test.m_Grid.CurveEdits().ValidatePending(8, 24, false, kTear);
  test.Click({{1, 25}});
  test.m_Grid.UpdateGrid();
  EXPECT_EQ(test.m_Grid.Constraints().PendingCurve().Points().size(), 1U);
}

TEST(PendingGridCurveTest, GoesWithTheOldModel) {
  CCurveGrid test;
  test.Add(kPath);
  test.Click({{0, 21}});
  test.Initialize(2, true);
  EXPECT_EQ(test.m_Grid.Constraints().Curves().size(), 1U);
  EXPECT_FALSE(test.m_Grid.Constraints().PendingCurve().IsIdle());
  test.Initialize(2, false);
  EXPECT_TRUE(test.m_Grid.Constraints().Curves().empty());
  EXPECT_TRUE(test.m_Grid.Constraints().PendingCurve().IsIdle());
}

// Selection and its edits.

TEST(GridCurvesTest, PickAnswersTheTypeOfTheCurve) {
  CCurveGrid test;
  test.Add(kPath, kCrease);
  EXPECT_EQ(test.m_Grid.PickCurve(4.5, 22.4, CurveType::kAll), kCrease);
  EXPECT_EQ(Selection(test.m_Grid.Constraints().Curves()), "1:010");
  EXPECT_EQ(test.m_Grid.PickCurve(4.5, 22.4, kTear), CurveType::kNone);
  EXPECT_EQ(test.m_Grid.PickCurve(2, 21.5, CurveType::kAll), CurveType::kNone) << "a segment is not a node";
}

TEST(GridCurvesTest, ReachFollowsTheZoom) {
  CCurveGrid test;
  test.Add(kPath);
  EXPECT_FALSE(test.m_Grid.HighlightCurves(0, 19.5, CurveType::kAll));
  const CGlobalScope zoom(g_fZoom, 2.0);
  EXPECT_TRUE(test.m_Grid.HighlightCurves(0, 19.5, CurveType::kAll));
  EXPECT_EQ(Highlights(test.m_Grid.Constraints().Curves()), "1:100");
  EXPECT_NE(test.m_Grid.Constraints().FindCurve(0, 19.5, PickReach()), CurveId::kNone);
}

TEST(GridCurvesTest, UnselectAllIncludesCurves) {
  CCurveGrid test;
  test.Add(kPath);
  test.m_Grid.PickCurve(0, 21, CurveType::kAll);
  test.m_Grid.UnselectAll();
  EXPECT_EQ(Selection(test.m_Grid.Constraints().Curves()), "0:000");
}

TEST(GridCurvesTest, SelectedCurveTakesAnotherType) {
  CCurveGrid test;
  test.Add(kPath);
  test.m_Grid.CurveEdits().SetSelectedType(kCrease);
  EXPECT_EQ(test.Curve().Type(), kTear) << "none is selected";
  test.m_Grid.PickCurve(0, 21, CurveType::kAll);
  test.m_Grid.CurveEdits().SetSelectedType(CurveType::kNone);
  EXPECT_EQ(test.Curve().Type(), kTear);
  test.m_Grid.CurveEdits().SetSelectedType(kCrease);
  EXPECT_EQ(test.Curve().Type(), kCrease);
}

TEST(GridCurvesTest, DragMovesThePickedNodeAndPostsNothing) {
  CCurveGrid test;
  test.Add(kPath);
  test.m_Grid.UpdateGrid();
  test.m_Grid.PickCurve(4, 22, CurveType::kAll);
  test.m_Grid.MoveSelectedCurve(0.5, -0.5, CurveType::kAll);
  EXPECT_EQ(PlacesOf(test.Curve()), (CPlaces{{0, 21}, {4.5, 21.5}, {8, 24}}));
  EXPECT_EQ(test.m_Grid.Run().NextOperation(), Operation::kNone);
}

TEST(GridCurvesTest, DeletionsPostARebuildOfTheMaps) {
  CCurveGrid test;
  test.Add(kPath);
  test.m_Grid.UpdateGrid();
  test.m_Grid.PickCurve(4, 22, CurveType::kAll);
  test.m_Grid.DeleteSelectedCurveNode();
  EXPECT_EQ(PlacesOf(test.Curve()), (CPlaces{{0, 21}, {8, 24}}));
  EXPECT_EQ(test.m_Grid.Run().NextOperation(), Operation::kRebuildMaps);
  test.m_Grid.UpdateGrid();
  test.m_Grid.PickCurve(0, 21, CurveType::kAll);
  test.m_Grid.DeleteSelectedCurve();
  EXPECT_TRUE(test.m_Grid.Constraints().Curves().empty());
  EXPECT_EQ(test.m_Grid.Run().NextOperation(), Operation::kRebuildMaps);
}

TEST(GridCurvesTest, ClosedCurveOfTwoNodesLeftBecomesOpen) {
  CCurveGrid test;
  test.Add(kPath, kTear, true);
  test.m_Grid.PickCurve(4, 22, CurveType::kAll);
  test.m_Grid.DeleteSelectedCurveNode();
  test.m_Grid.UpdateGrid();
  EXPECT_FALSE(test.Curve().IsClosed());
}

}  // namespace
