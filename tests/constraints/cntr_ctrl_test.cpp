#include <array>
#include <cmath>
#include <sstream>
#include <string>

#include <gtest/gtest.h>

#include "constraints/CCntrCtrl.h"
#include "constraints/CContourAttributes.h"
#include "lattice/CLattice.h"
#include "support/ConsoleCapture.h"
#include "support/CurveBuilders.h"

namespace {

constexpr CurveSide kLeftSide = CurveSide::Left;
constexpr CurveSide kRightSide = CurveSide::Right;

TEST(CntrCtrlTest, TypeAndOptionBitsAreThoseOfTheFile) {
  std::vector<std::uint32_t> bits;
  for (const CurveType type : {CurveType::kPosition, CurveType::kNormal, CurveType::kFairness, CurveType::kAll})
    bits.push_back(static_cast<std::uint32_t>(type));
  EXPECT_EQ(bits, (std::vector<std::uint32_t>{1, 2, 4, 7}));
  EXPECT_EQ((std::array{CurveOption::kLeftAutoBump, CurveOption::kRightAutoBump}), (std::array{1U, 2U}));
}

TEST(CntrCtrlTest, StartsEmptyOpenAndWithoutTypeOrOptions) {
  EXPECT_EQ(ConsoleTextOf([] {
              const CCntrCtrl curve;
              EXPECT_FALSE(curve.IsClosed());
              EXPECT_TRUE(curve.Nodes().empty());
              EXPECT_EQ(curve.Type(), CurveType::kNone);
              EXPECT_FALSE(curve.HasState(~0U));
              EXPECT_EQ(curve.Options(), 0U);
              for (const CurveSide side : {kLeftSide, kRightSide}) {
                EXPECT_EQ(curve.AutoBump(side).m_fDistance, 5.0);
                EXPECT_EQ(curve.AutoBump(side).m_fOrientation, 0.0);
              }
            }),
            "CCntrCtrl creation\n");
}

TEST(CntrCtrlTest, NodesStartWithoutWeightsAndOffsets) {
  const CCntrNode node;
  EXPECT_EQ(node.m_Weights, (CNodeWeights{0, 0, 0, 0}));
  for (const CurveSide side : {kLeftSide, kRightSide}) {
    EXPECT_TRUE(node.Offsets(side).m_A.IsZero());
    EXPECT_TRUE(node.Offsets(side).m_B.IsZero());
    EXPECT_TRUE(node.Offsets(side).m_C.IsZero());
  }
}

TEST(CntrCtrlTest, BitsAreSetClearedAndTestedByMask) {
  CCntrCtrl curve;
  curve.SetOption(CurveOption::kLeftAutoBump | CurveOption::kRightAutoBump, true);
  curve.SetOption(CurveOption::kLeftAutoBump, false);
  EXPECT_EQ(curve.Options(), 2U);
  EXPECT_TRUE(curve.HasOption(3));
  EXPECT_FALSE(curve.HasOption(CurveOption::kLeftAutoBump));
  curve.SetType(CurveType::kFairness);
  EXPECT_TRUE(curve.HasType(CurveType::kAll));
  EXPECT_FALSE(curve.HasType(CurveType::kPosition | CurveType::kNormal));
  curve.SetState(PtCstrState::kHighlighted | PtCstrState::kSelected, true);
  curve.SetState(PtCstrState::kHighlighted, false);
  EXPECT_FALSE(curve.HasState(PtCstrState::kHighlighted));
  EXPECT_TRUE(curve.HasState(PtCstrState::kSelected));
}

struct CTilt {
  double m_fSet;
  double m_fKept;
};
class OrientationTest : public testing::TestWithParam<CTilt> {};
INSTANTIATE_TEST_SUITE_P(Degrees, OrientationTest,
                         testing::Values(CTilt{120, 80}, CTilt{-81, -80}, CTilt{80, 80}, CTilt{-80, -80},
                                         CTilt{33.5, 33.5}, CTilt{HUGE_VAL, 80}, CTilt{NAN, 0}));

TEST_P(OrientationTest, IsHeldToItsRangeOnTheSideGiven) {
  CCntrCtrl curve;
  curve.SetOrientation(kLeftSide, GetParam().m_fSet);
  EXPECT_EQ(curve.AutoBump(kLeftSide).m_fOrientation, GetParam().m_fKept);
  EXPECT_EQ(curve.AutoBump(kRightSide).m_fOrientation, 0.0);
}

TEST(CntrCtrlTest, AllWeightsReachEveryNodeInTheirOwnPlaces) {
  CTestCurve test({{0, 0}, {1, 0}, {2, 0}});
  test.m_Curve.SetAllWeights(1, 2, 3, 4);
  for (const CCntrNode& node : test.m_Curve.Nodes()) {
    EXPECT_EQ(node.m_Weights.m_fLeftCurvature, 1);
    EXPECT_EQ(node.m_Weights.m_fLeftTorsion, 2);
    EXPECT_EQ(node.m_Weights.m_fRightCurvature, 3);
    EXPECT_EQ(node.m_Weights.m_fRightTorsion, 4);
  }
}

TEST(CntrCtrlTest, FirstNodeWithinReachIsFound) {
  CTestCurve test({{0, 0}, {4, 4}, {4.5, 4}});
  EXPECT_EQ(test.m_Curve.FindNode(4.6, 4.2, 1), &test.Node(1));
  EXPECT_EQ(test.m_Curve.FindNode(5.5, 4, 1), &test.Node(2)) << "the reach belongs to it";
  EXPECT_EQ(test.m_Curve.FindNode(0.5, 0.6, 1), nullptr) << "the distance is measured along the axes";
}

TEST(CntrCtrlTest, SegmentsOfAClosedCurveReturnToTheFirstNode) {
  CTestCurve test({{0, 0}, {1, 0}, {1, 1}}, true);
  std::string segments;
  const auto list = [&segments](const CCntrNode& a, const CCntrNode& b) {
    for (const double value : {a.m_fX, a.m_fY, b.m_fX, b.m_fY}) segments += value == 0 ? '0' : '1';
    segments += ' ';
  };
  test.m_Curve.ForEachSegment(list);
  EXPECT_EQ(segments, "0010 1011 1100 ");
  segments.clear();
  test.m_Curve.SetClosed(false);
  test.m_Curve.ForEachSegment(list);
  EXPECT_EQ(segments, "0010 1011 ");
  CTestCurve({{3, 3}}, true).m_Curve.ForEachSegment([](const auto&, const auto&) { ADD_FAILURE(); });
}

// Removing nodes.

class RemoveBetweenTest : public testing::Test {
 protected:
  CTestCurve m_Test{{{0, 0}, {1, 0}, {2, 0}, {3, 0}, {4, 0}}, true};
  CCntrCtrl::CNodes::iterator At(int k) { return std::next(m_Test.m_Curve.Nodes().begin(), k); }
  std::string Remove(CCntrCtrl::CNodes::iterator a, CCntrCtrl::CNodes::iterator b) {
    return ConsoleTextOf([&] { m_Test.m_Curve.RemoveBetween(a, b); });
  }
};

TEST_F(RemoveBetweenTest, DeletesWhatLiesBetween) {
  EXPECT_EQ(Remove(At(1), At(4)), "");
  EXPECT_EQ(PlacesOf(m_Test.m_Curve), (CPlaces{{0, 0}, {1, 0}, {4, 0}}));
}
TEST_F(RemoveBetweenTest, NeighboursLoseNothing) {
  EXPECT_EQ(Remove(At(1), At(2)), "");
  EXPECT_EQ(m_Test.m_Curve.Nodes().size(), 5U);
}
TEST_F(RemoveBetweenTest, GoesOnPastTheEndOfAClosedCurve) {
  EXPECT_EQ(Remove(At(3), At(1)), "");
  EXPECT_EQ(PlacesOf(m_Test.m_Curve), (CPlaces{{1, 0}, {2, 0}, {3, 0}}));
}
TEST_F(RemoveBetweenTest, StopsAtTheEndOfAnOpenCurve) {
  m_Test.m_Curve.SetClosed(false);
  EXPECT_EQ(Remove(At(2), At(1)), "Error CCntrCtrl::RemoveBetween : The end of the curve has been reached\n");
  EXPECT_EQ(PlacesOf(m_Test.m_Curve), (CPlaces{{0, 0}, {1, 0}, {2, 0}}));
}
TEST_F(RemoveBetweenTest, StopsWhereItStarted) {
  CTestCurve other({{9, 9}});
  EXPECT_EQ(Remove(At(2), other.m_Curve.Nodes().begin()),
            "Error CCntrCtrl::RemoveBetween : the original node has been reached\n");
  EXPECT_EQ(PlacesOf(m_Test.m_Curve), (CPlaces{{2, 0}}));
}

// On a lattice with steps of 2 in x and 1 in y, half a step is 1 in x and 0.5 in y.
class SimplifyTest : public testing::Test {
 protected:
  SimplifyTest() { m_Lattice.SetExtent({0, 32, 0, 16}); }
  CPlaces Simplified(const CPlaces& places) {
    CTestCurve test(places);
    test.m_Curve.Simplify(m_Lattice);
    return PlacesOf(test.m_Curve);
  }
  CLattice m_Lattice{4};
};

TEST_F(SimplifyTest, CollinearNodesGo) {
  EXPECT_EQ(Simplified({{0, 0}, {2, 1}, {4, 2}, {6, 3}}), (CPlaces{{0, 0}, {6, 3}}));
}
TEST_F(SimplifyTest, NodeHalfAStepOffStays) {
  EXPECT_EQ(Simplified({{0, 0}, {8, 0.5}, {16, 0}}), (CPlaces{{0, 0}, {8, 0.5}, {16, 0}}));
  EXPECT_EQ(Simplified({{0, 0}, {8, 0.49}, {16, 0}}), (CPlaces{{0, 0}, {16, 0}}));
}
TEST_F(SimplifyTest, DistanceIsMeasuredInSteps) {
  EXPECT_EQ(Simplified({{0, 0}, {0.9, 4}, {0, 8}}), (CPlaces{{0, 0}, {0, 8}}));
  EXPECT_EQ(Simplified({{0, 0}, {1, 4}, {0, 8}}).size(), 3U);
}
TEST_F(SimplifyTest, CornerStays) {
  EXPECT_EQ(Simplified({{0, 0}, {2, 0}, {4, 0}, {4, 1}, {4, 2}, {4, 3}}), (CPlaces{{0, 0}, {4, 0}, {4, 3}}));
}
TEST_F(SimplifyTest, PathThatReturnsToItsStartKeepsItsFarSide) {
  const CPlaces left = Simplified({{0, 0}, {4, 0}, {8, 0}, {8, 4}, {0, 4}, {0, 2}, {0, 0}});
  EXPECT_EQ(left, (CPlaces{{0, 0}, {4, 0}, {8, 0}, {8, 4}, {0, 4}, {0, 0}}));
}
TEST_F(SimplifyTest, FewNodesStayAsTheyAre) {
  EXPECT_EQ(Simplified({}), CPlaces{});
  EXPECT_EQ(Simplified({{3, 3}}), (CPlaces{{3, 3}}));
  EXPECT_EQ(Simplified({{3, 3}, {3, 3}}).size(), 2U);
}

// Text.

struct CWrittenCurve : CTestCurve {
  CWrittenCurve() : CTestCurve({{1.5, 2}, {3, 4}, {5, 6}}, true, CurveType::kNormal) {
    Node(0).m_Weights = {1, 2, 3, 4};  // left and right curvature, left and right torsion
    Node(1).m_uKind = 3;
    Node(1).m_fZ = 7;
    Node(1).m_fP = 8;
    Node(1).m_fQ = -9;
    m_Curve.SetOption(CurveOption::kRightAutoBump, true);
    m_Curve.SetOrientation(kLeftSide, 11);
    m_Curve.SetOrientation(kRightSide, -12);
    m_Curve.SetDistance(kLeftSide, 13);
    m_Curve.SetDistance(kRightSide, 14);
  }
};
constexpr const char* kWritten =
    "1\t3\n"
    "1.5\t2\t0\t0\t0\t0\t1\t3\t2\t4\n"
    "3\t4\t7\t8\t-9\t3\t0\t0\t0\t0\n"
    "5\t6\t0\t0\t0\t0\t0\t0\t0\t0\n"
    "\n"
    "2\n2\n11\n-12\n13\n14";

std::string TextOf(const CCntrCtrl& curve) {
  std::ostringstream out;
  curve.Write(out, 1e-3);
  return out.str();
}

TEST(CntrCtrlTextTest, EveryValueHasItsPlace) { EXPECT_EQ(TextOf(CWrittenCurve().m_Curve), kWritten); }

TEST(CntrCtrlTextTest, WhatIsReadIsWhatWasWritten) {
  CCntrCtrl curve;
  std::istringstream in(std::string(kWritten) + "\nnext");
  curve.Read(in);
  EXPECT_EQ(TextOf(curve), kWritten);
  EXPECT_TRUE(curve.IsClosed());
  EXPECT_EQ(curve.Nodes().front().m_Weights, (CNodeWeights{1, 2, 3, 4}));
  EXPECT_EQ(curve.AutoBump(kRightSide).m_fOrientation, -12);
  EXPECT_EQ(curve.AutoBump(kRightSide).m_fDistance, 14);
  std::string rest;
  in >> rest;
  EXPECT_EQ(rest, "next");
}

TEST(CntrCtrlTextTest, StateIsNotStored) {
  CWrittenCurve test;
  test.m_Curve.SetState(PtCstrState::kSelected, true);
  test.Node(0).SetState(PtCstrState::kSelected, true);
  EXPECT_EQ(TextOf(test.m_Curve), kWritten);
}

TEST(CntrCtrlTextTest, ReadingReplacesTheNodes) {
  CTestCurve test({{1, 1}, {2, 2}, {3, 3}}, true);
  std::istringstream in("0\t1\n9\t8\t0\t0\t0\t0\t0\t0\t0\t0\n\n4\n0\n0\n0\n5\n5");
  test.m_Curve.Read(in);
  EXPECT_EQ(PlacesOf(test.m_Curve), (CPlaces{{9, 8}}));
  EXPECT_FALSE(test.m_Curve.IsClosed());
  EXPECT_EQ(test.m_Curve.Type(), CurveType::kFairness);
}

TEST(CntrCtrlTextTest, ShortTextGivesTheNodesThatAreWhole) {
  CCntrCtrl curve;
  std::istringstream in("0\t1000000000\n9\t8\t0\t0\t0\t0\t0\t0\t0\t0\n7\t7\t0");
  curve.Read(in);
  EXPECT_EQ(PlacesOf(curve), (CPlaces{{9, 8}}));
}

TEST(CntrCtrlTextTest, OrientationsAreHeldToTheirRange) {
  CCntrCtrl curve;
  std::istringstream in("0\t0\n\n1\n0\n120\n-90\n5\n5");
  curve.Read(in);
  EXPECT_EQ(curve.AutoBump(kLeftSide).m_fOrientation, 80);
  EXPECT_EQ(curve.AutoBump(kRightSide).m_fOrientation, -80);
}

// Attributes as the user edits them.

TEST(ContourAttributesTest, ShowTheCurveAndItsNode) {
  CWrittenCurve test;
  const CContourAttributes shown = CContourAttributes::Of(test.m_Curve, test.Node(0));
  EXPECT_TRUE(shown.m_bClosed);
  EXPECT_FALSE(shown.m_bLeftAutoBump);
  EXPECT_TRUE(shown.m_bRightAutoBump);
  EXPECT_EQ(shown.m_aAutoBumps[0].m_fOrientation, 11);
  EXPECT_EQ(shown.m_aAutoBumps[1].m_fDistance, 14);
  EXPECT_EQ(shown.m_Weights, (CNodeWeights{1, 2, 3, 4}));
}

TEST(ContourAttributesTest, AppliedToTheCurveAndTheOneNode) {
  CTestCurve test({{0, 0}, {1, 0}, {2, 1}}, true);
  const CContourAttributes wanted{false, true, false, {CAutoBump{2, 120}, CAutoBump{3, -15}}, {5, 6, 7, 8}};
  wanted.ApplyTo(test.m_Curve, test.Node(1));
  EXPECT_FALSE(test.m_Curve.IsClosed());
  EXPECT_EQ(test.m_Curve.Options(), CurveOption::kLeftAutoBump);
  EXPECT_EQ(test.m_Curve.AutoBump(kLeftSide).m_fOrientation, 80);
  EXPECT_EQ(test.m_Curve.AutoBump(kLeftSide).m_fDistance, 2);
  EXPECT_EQ(test.m_Curve.AutoBump(kRightSide).m_fOrientation, -15);
  EXPECT_EQ(test.m_Curve.AutoBump(kRightSide).m_fDistance, 3);
  EXPECT_EQ(test.Node(1).m_Weights, (CNodeWeights{5, 6, 7, 8}));
  EXPECT_EQ(test.Node(0).m_Weights, CNodeWeights{});
}

}  // namespace
