#include <array>
#include <string>

#include <gtest/gtest.h>

#include "constraints/CPendingCurve.h"
#include "support/ConsoleCapture.h"
#include "support/CurveBuilders.h"

namespace {

// A tear from (0, 0) to (10, 0) and a crease from (10, 0) to (20, 0).
struct CTwoCurves {
  CTwoCurves() {
    m_List.Add(PointsAt({{0, 0}, {10, 0}}), kTear, false);
    m_List.Add(PointsAt({{10, 0}, {20, 0}}), kCrease, false);
  }
  std::string Picked(double x, double y, CurveType mask = CurveType::kAll) {
    m_pPicked = m_List.Pick(x, y, mask, 1);
    return Selection(m_List);
  }
  ConsoleCapture m_Console;
  CCntrCtrlList m_List;
  CCntrCtrl* m_pPicked = nullptr;
};

TEST(CntrCtrlListTest, AddedCurveCopiesThePoints) {
  CPtCstr point{1, 2, PtCstrKind::kNormal, 3, 4, 5, PtCstrState::kSelected};
  CCntrCtrlList list;
  const CCntrCtrl& curve = list.Add(std::array{point, point, point}, kCrease, true);
  EXPECT_TRUE(curve.IsClosed());
  EXPECT_EQ(curve.Type(), kCrease);
  ASSERT_EQ(curve.Nodes().size(), 3U);
  const CCntrNode& node = curve.Nodes().back();
  EXPECT_EQ((std::array{node.m_fX, node.m_fY, node.m_fZ, node.m_fP, node.m_fQ}), (std::array{1.0, 2.0, 3.0, 4.0, 5.0}));
  EXPECT_EQ(node.m_uKind, PtCstrKind::kNormal);
  EXPECT_EQ(node.m_uState, 0U);
  EXPECT_EQ(node.m_Weights, CNodeWeights{});
}

TEST(CntrCtrlListTest, FewerThanThreePointsMakeAnOpenCurve) {
  CCntrCtrlList list;
  EXPECT_FALSE(list.Add(PointsAt({{0, 0}, {1, 1}}), kTear, true).IsClosed());
  EXPECT_TRUE(list.Add(PointsAt({{0, 0}, {1, 1}, {2, 0}}), kTear, true).IsClosed());
  EXPECT_FALSE(list.Add(PointsAt({{0, 0}, {1, 1}, {2, 0}}), kTear, false).IsClosed());
  EXPECT_EQ(list.size(), 3U);
}

TEST(CntrCtrlListTest, CurvesWithoutASegmentAreRemoved) {
  CTwoCurves test;
  test.m_List.Add(PointsAt({{5, 5}}), kTear, false);
  test.m_List.Add();
  test.m_List.RemoveDegenerate();
  EXPECT_EQ(Selection(test.m_List), "0:00 0:00");
}

TEST(CntrCtrlListTest, HighlightMarksNodesWithinReachAndTheirCurves) {
  CTwoCurves test;
  EXPECT_TRUE(test.m_List.Highlight(10.5, 0.5, CurveType::kAll, 1));
  EXPECT_EQ(Highlights(test.m_List), "1:01 1:10");
  EXPECT_TRUE(test.m_List.Highlight(10.5, 0.5, kCrease, 1));
  EXPECT_EQ(Highlights(test.m_List), "0:00 1:10");
  EXPECT_FALSE(test.m_List.Highlight(5, 0, CurveType::kAll, 1)) << "a segment is not a node";
  EXPECT_EQ(Highlights(test.m_List), "0:00 0:00");
}

TEST(CntrCtrlListTest, ReachGrowsWithItsArgument) {
  CTwoCurves test;
  EXPECT_FALSE(test.m_List.Highlight(0, 1.5, CurveType::kAll, 1));
  EXPECT_TRUE(test.m_List.Highlight(0, 1.5, CurveType::kAll, 2));
}

TEST(CntrCtrlListTest, PickSelectsOneNodeAndItsCurve) {
  CTwoCurves test;
  EXPECT_EQ(test.Picked(0.2, 0.1), "1:10 0:00");
  EXPECT_EQ(test.m_pPicked, &CurveAt(test.m_List, 0));
  EXPECT_EQ(test.Picked(20, 0), "0:00 1:01");
  EXPECT_EQ(test.m_pPicked, &CurveAt(test.m_List, 1));
}

TEST(CntrCtrlListTest, PickStepsThroughAPile) {
  CTwoCurves test;
  EXPECT_EQ(test.Picked(10, 0), "0:00 1:10") << "the last one first";
  EXPECT_EQ(test.Picked(10, 0), "1:01 0:00");
  EXPECT_EQ(test.Picked(10, 0), "0:00 1:10");
}

TEST(CntrCtrlListTest, PickStepsThroughTheNodesOfOneCurve) {
  CCntrCtrlList list;
  list.Add(PointsAt({{0, 0}, {0.1, 0}, {9, 9}}), kTear, false);
  for (const char* expected : {"1:010", "1:100", "1:010"}) {
    EXPECT_NE(list.Pick(0, 0, CurveType::kAll, 1), nullptr);
    EXPECT_EQ(Selection(list), expected);
  }
}

TEST(CntrCtrlListTest, PickInEmptySpaceSelectsNothing) {
  CTwoCurves test;
  test.Picked(0, 0);
  EXPECT_EQ(test.Picked(50, 50), "0:00 0:00");
  EXPECT_EQ(test.m_pPicked, nullptr);
}

TEST(CntrCtrlListTest, PickSeesOnlyCurvesOfTheMask) {
  CTwoCurves test;
  EXPECT_EQ(test.Picked(10, 0, kTear), "1:01 0:00");
  EXPECT_EQ(test.Picked(0, 0, kCrease), "0:00 0:00");
}

TEST(CntrCtrlListTest, FindGivesTheFirstCurveAndItsFirstNodeWithinReach) {
  CTwoCurves test;
  const CCntrCtrlList::CHit hit = test.m_List.Find(10, 0.5, 1);
  EXPECT_EQ(hit.m_pCurve, &CurveAt(test.m_List, 0));
  EXPECT_EQ(hit.m_pNode, &CurveAt(test.m_List, 0).Nodes().back());
  EXPECT_EQ(test.m_List.Find(50, 50, 1).m_pCurve, nullptr);
  EXPECT_EQ(test.m_List.Find(50, 50, 1).m_pNode, nullptr);
}

TEST(CntrCtrlListTest, ACurveIsFoundByItsNameUntilItIsDeleted) {
  CTwoCurves test;
  const CCntrCtrlList& list = test.m_List;
  const CurveId first = CurveAt(test.m_List, 0).Id();
  const CurveId second = CurveAt(test.m_List, 1).Id();
  EXPECT_NE(first, second);
  EXPECT_EQ(list.Find(second), &CurveAt(test.m_List, 1));
  EXPECT_EQ(list.Find(CurveId::kNone), nullptr);
  CurveAt(test.m_List, 0).SetState(PtCstrState::kSelected, true);
  test.m_List.DeleteSelected();
  EXPECT_EQ(list.Find(first), nullptr);
  EXPECT_EQ(list.Find(second), &CurveAt(test.m_List, 0)) << "though it is another in the order now";
}

TEST(CntrCtrlListTest, DragMovesTheSelectedNodesOfTheMask) {
  CTwoCurves test;
  test.Picked(0, 0);
  test.m_List.MoveSelected(1, 2, kCrease);
  EXPECT_EQ(PlacesOf(CurveAt(test.m_List, 0)), (CPlaces{{0, 0}, {10, 0}}));
  test.m_List.MoveSelected(1, 2, kTear);
  EXPECT_EQ(PlacesOf(CurveAt(test.m_List, 0)), (CPlaces{{1, 2}, {10, 0}})) << "not the whole curve";
  EXPECT_EQ(PlacesOf(CurveAt(test.m_List, 1)), (CPlaces{{10, 0}, {20, 0}}));
}

TEST(CntrCtrlListTest, FirstSelectedNodeOfEveryCurveIsDeleted) {
  CTwoCurves test;
  for (CCntrCtrl& curve : test.m_List) {
    for (CCntrNode& node : curve.Nodes()) node.SetState(PtCstrState::kSelected, true);
  }
  test.m_List.DeleteSelectedNodes();
  EXPECT_EQ(PlacesOf(CurveAt(test.m_List, 0)), (CPlaces{{10, 0}}));
  EXPECT_EQ(PlacesOf(CurveAt(test.m_List, 1)), (CPlaces{{20, 0}}));
}

TEST(CntrCtrlListTest, FirstSelectedCurveIsDeleted) {
  CTwoCurves test;
  test.m_List.DeleteSelected();
  EXPECT_EQ(test.m_List.size(), 2U);
  EXPECT_EQ(test.m_List.FirstSelected(), nullptr);
  for (CCntrCtrl& curve : test.m_List) curve.SetState(PtCstrState::kSelected, true);
  EXPECT_EQ(test.m_List.FirstSelected(), &CurveAt(test.m_List, 0));
  test.m_List.DeleteSelected();
  EXPECT_EQ(test.m_List.size(), 1U);
  EXPECT_EQ(test.m_List.back().Type(), kCrease);
}

TEST(CntrCtrlListTest, UnselectSparesNodesOfOtherTypesButNoCurve) {
  CTwoCurves test;
  for (CCntrCtrl& curve : test.m_List) {
    curve.SetState(PtCstrState::kSelected, true);
    for (CCntrNode& node : curve.Nodes()) node.SetState(PtCstrState::kSelected, true);
  }
  test.m_List.Unselect(kTear);
  EXPECT_EQ(Selection(test.m_List), "0:00 0:11");
  test.m_List.Unselect(CurveType::kAll);
  EXPECT_EQ(Selection(test.m_List), "0:00 0:00");
}

// The curve in progress.

TEST(PendingCurveTest, IsIdleAtFirst) {
  const CPendingCurve pending;
  EXPECT_TRUE(pending.IsIdle());
  EXPECT_FALSE(pending.ClosesOnValidate());
  EXPECT_TRUE(pending.Points().empty());
}

TEST(PendingCurveTest, CollectsPointsWithoutAKind) {
  CPendingCurve pending;
  pending.Append(1, 2);
  pending.Append(3, 4);
  EXPECT_FALSE(pending.IsIdle());
  ASSERT_EQ(pending.Points().size(), 2U);
  EXPECT_EQ(pending.Points()[1].m_fX, 3);
  EXPECT_EQ(pending.Points()[1].m_fY, 4);
  EXPECT_EQ(pending.Points()[1].m_uKind, 0U);
}

TEST(PendingCurveTest, ClosesWhileTheCursorRestsOnTheFirstPoint) {
  CPendingCurve pending;
  pending.Hover(1, 2, 1);
  EXPECT_FALSE(pending.ClosesOnValidate()) << "nothing is in progress";
  pending.Append(1, 2);
  pending.Append(9, 9);
  pending.Hover(1.5, 2.5, 1);
  EXPECT_TRUE(pending.ClosesOnValidate());
  pending.Hover(9, 9, 1);
  EXPECT_FALSE(pending.ClosesOnValidate());
}

TEST(PendingCurveTest, DroppedCurveLeavesNothing) {
  CPendingCurve pending;
  pending.Append(1, 2);
  pending.Hover(1, 2, 1);
  pending.Drop();
  EXPECT_TRUE(pending.IsIdle());
  EXPECT_FALSE(pending.ClosesOnValidate());
  EXPECT_TRUE(pending.Points().empty());
}

}  // namespace
