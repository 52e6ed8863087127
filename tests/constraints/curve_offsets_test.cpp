// Parallels of curves, and the constraints generated along them.

#include <cmath>
#include <numbers>
#include <string>

#include <gtest/gtest.h>

#include "support/ConsoleCapture.h"
#include "support/CurveBuilders.h"

namespace {

constexpr double kLength = 2.0;
const std::string kSinglePoint = "CCntrCtrl::UpdateNormals() Error : dealing with a single-point curve\n";
const std::string kLeftLine = "CCntrCtrl::AddAutoBumpConstraintsLeft\n";

testing::AssertionResult IsVector(const COffset& v, double x, double y) {
  if (std::abs(v.m_fX - x) < 1e-12 && std::abs(v.m_fY - y) < 1e-12) return testing::AssertionSuccess();
  return testing::AssertionFailure() << '(' << v.m_fX << ", " << v.m_fY << ')';
}
testing::AssertionResult HasOnlyA(const CNodeOffsets& offsets) {
  if (offsets.m_B.IsZero() && offsets.m_C.IsZero()) return testing::AssertionSuccess();
  return testing::AssertionFailure() << "has B or C";
}
double LengthOf(const COffset& v) { return std::hypot(v.m_fX, v.m_fY); }

struct COffsetCurve : CTestCurve {
  explicit COffsetCurve(const CPlaces& places, bool closed = false) : CTestCurve(places, closed) {
    m_Curve.UpdateNormals(kLength);
  }
  const CNodeOffsets& Left(int k) { return Node(k).Offsets(CurveSide::Left); }
  const CNodeOffsets& Right(int k) { return Node(k).Offsets(CurveSide::Right); }
};

TEST(CurveOffsetsTest, EmptyCurveIsLeftAlone) {
  EXPECT_EQ(ConsoleTextOf([] { COffsetCurve({}); }), "CCntrCtrl creation\n");
}

TEST(CurveOffsetsTest, SinglePointIsRefusedAndLosesItsSlopes) {
  CTestCurve test({{1, 1}});
  test.Node(0).m_fP = test.Node(0).m_fQ = 3;
  EXPECT_EQ(ConsoleTextOf([&] { test.m_Curve.UpdateNormals(kLength); }), kSinglePoint);
  EXPECT_EQ(test.Node(0).m_fP, 0);
  EXPECT_EQ(test.Node(0).m_fQ, 0);
}

TEST(CurveOffsetsTest, TwoNodesMakeAnOpenCurveWithTheSegmentsNormals) {
  COffsetCurve test({{0, 0}, {0, 5}});
  test.m_Curve.SetClosed(true);
  test.m_Curve.UpdateNormals(kLength);
  EXPECT_FALSE(test.m_Curve.IsClosed());
  for (const int k : {0, 1}) {
    EXPECT_TRUE(IsVector(test.Right(k).m_A, kLength, 0)) << "going up, the right is east";
    EXPECT_TRUE(IsVector(test.Left(k).m_A, -kLength, 0));
    EXPECT_TRUE(HasOnlyA(test.Right(k)));
    EXPECT_TRUE(HasOnlyA(test.Left(k)));
  }
}

TEST(CurveOffsetsTest, StraightCurveHasNeitherBNorC) {
  for (const CPlaces& places : {CPlaces{{0, 0}, {1, 0}, {3, 0}}, CPlaces{{0.1, 0.1}, {0.4, 0.2}, {0.7, 0.3}}}) {
    COffsetCurve test(places);
    EXPECT_TRUE(HasOnlyA(test.Left(1)));
    EXPECT_TRUE(HasOnlyA(test.Right(1)));
    EXPECT_NEAR(LengthOf(test.Right(1).m_A), kLength, 1e-12);
    EXPECT_TRUE(IsVector(test.Left(1).m_A, -test.Right(1).m_A.m_fX, -test.Right(1).m_A.m_fY));
  }
}

TEST(CurveOffsetsTest, RoundingMakesNoBend) {
  for (int k = 1; k < 200; ++k) {
    const double x = std::cos(0.1 * k);
    const double y = std::sin(0.1 * k);
    COffsetCurve test({{7, 3}, {7 + x / 3, 3 + y / 3}, {7 + 11 * x, 3 + 11 * y}});
    EXPECT_TRUE(HasOnlyA(test.Left(1))) << k;
    EXPECT_TRUE(HasOnlyA(test.Right(1))) << k;
  }
}

TEST(CurveOffsetsTest, RightAngleToTheLeft) {
  COffsetCurve test({{0, 0}, {4, 0}, {4, 4}});
  const double half = kLength / std::numbers::sqrt2;
  EXPECT_TRUE(IsVector(test.Left(1).m_A, -kLength, kLength)) << "the miter is as long as the diagonal";
  EXPECT_TRUE(HasOnlyA(test.Left(1)));
  EXPECT_TRUE(IsVector(test.Right(1).m_A, half, -half));
  EXPECT_TRUE(IsVector(test.Right(1).m_B, 0, -kLength));
  EXPECT_TRUE(IsVector(test.Right(1).m_C, kLength, 0));
}

TEST(CurveOffsetsTest, RightAngleToTheRight) {
  COffsetCurve test({{0, 0}, {4, 0}, {4, -4}});
  const double half = kLength / std::numbers::sqrt2;
  EXPECT_TRUE(IsVector(test.Right(1).m_A, -kLength, -kLength));
  EXPECT_TRUE(HasOnlyA(test.Right(1)));
  EXPECT_TRUE(IsVector(test.Left(1).m_A, half, half));
  EXPECT_TRUE(IsVector(test.Left(1).m_B, 0, kLength));
  EXPECT_TRUE(IsVector(test.Left(1).m_C, kLength, 0));
}

TEST(CurveOffsetsTest, EndsOfAnOpenCurveHaveTheirSegmentsNormal) {
  COffsetCurve test({{0, 0}, {4, 0}, {4, 4}});
  EXPECT_TRUE(IsVector(test.Right(0).m_A, 0, -kLength));
  EXPECT_TRUE(IsVector(test.Left(0).m_A, 0, kLength));
  EXPECT_TRUE(IsVector(test.Right(2).m_A, kLength, 0));
  EXPECT_TRUE(HasOnlyA(test.Right(0)));
  EXPECT_TRUE(HasOnlyA(test.Left(2)));
}

TEST(CurveOffsetsTest, ClosedCurveBendsAtEveryNode) {
  COffsetCurve test({{0, 0}, {4, 0}, {4, 4}, {0, 4}}, true);
  for (int k = 0; k < 4; ++k) {
    EXPECT_NEAR(LengthOf(test.Left(k).m_A), kLength * std::numbers::sqrt2, 1e-12) << k;
    EXPECT_FALSE(test.Right(k).m_B.IsZero()) << k;
  }
  EXPECT_TRUE(IsVector(test.Left(0).m_A, kLength, kLength));
}

TEST(CurveOffsetsTest, RepeatedNodeCountsAsAnEnd) {
  COffsetCurve test({{0, 0}, {4, 0}, {4, 0}, {4, 4}});
  EXPECT_TRUE(IsVector(test.Right(1).m_A, 0, -kLength));
  EXPECT_TRUE(IsVector(test.Right(2).m_A, kLength, 0));
  EXPECT_TRUE(HasOnlyA(test.Right(1)));
}

TEST(CurveOffsetsTest, HairpinStaysFinite) {
  for (const double back : {0.0, 1e-12, 1e-6, 0.001}) {
    COffsetCurve test({{0, 0}, {4, 0}, {0, back}});
    for (const CurveSide side : {CurveSide::Left, CurveSide::Right}) {
      const double length = LengthOf(test.Node(1).Offsets(side).m_A);
      EXPECT_TRUE(std::isfinite(length));
      EXPECT_LE(length, 1001 * kLength);
    }
  }
}

TEST(CurveOffsetsTest, NewOffsetsReplaceTheOldOnes) {
  COffsetCurve test({{0, 0}, {4, 0}, {4, 4}});
  test.Node(2).m_fX = 8;
  test.Node(2).m_fY = 0;
  test.m_Curve.UpdateNormals(1.0);
  EXPECT_TRUE(IsVector(test.Right(1).m_A, 0, -1));
  EXPECT_TRUE(HasOnlyA(test.Right(1)));
}

// Generated constraints.

struct CBumpCurve : COffsetCurve {
  CBumpCurve(const CPlaces& places, std::uint32_t options, double distance, double orientation, bool closed = false)
      : COffsetCurve(places, closed) {
    m_Curve.SetOption(options, true);
    for (const CurveSide side : {CurveSide::Left, CurveSide::Right}) {
      m_Curve.SetDistance(side, distance);
      m_Curve.SetOrientation(side, orientation);
    }
  }
  std::string Generate() {
    return ConsoleTextOf([this] { m_Curve.AddAutoBumpConstraints(m_Generated); });
  }
  CPtCstrList m_Generated;
};

void ExpectPlaces(const CPtCstrList& list, const CPlaces& expected) {
  const CPlaces places = PlacesOf(list);
  ASSERT_EQ(places.size(), expected.size());
  for (std::size_t k = 0; k < places.size(); ++k) {
    EXPECT_NEAR(places[k][0], expected[k][0], 1e-9) << k;
    EXPECT_NEAR(places[k][1], expected[k][1], 1e-9) << k;
  }
}

TEST(AutoBumpTest, NothingWithoutAnOption) {
  CBumpCurve test({{0, 0}, {12, 0}}, 0, 5, 45);
  EXPECT_EQ(test.Generate(), "");
  EXPECT_TRUE(test.m_Generated.empty());
}

TEST(AutoBumpTest, SpacingRunsOnAcrossSegments) {
  CBumpCurve test({{0, 0}, {12, 0}, {24, 0}}, CurveOption::kLeftAutoBump, 5, 45);
  EXPECT_EQ(test.Generate(), kLeftLine + "DistanceLeft() : 5\n");
  ExpectPlaces(test.m_Generated, {{0, 2}, {5, 2}, {10, 2}, {15, 2}, {20, 2}});
}

TEST(AutoBumpTest, RightSideHasItsOwnDistanceAndTheSameLines) {
  CBumpCurve test({{0, 0}, {12, 0}}, CurveOption::kRightAutoBump, 5, 45);
  test.m_Curve.SetDistance(CurveSide::Left, 1);
  test.m_Curve.SetDistance(CurveSide::Right, 8);
  EXPECT_EQ(test.Generate(), kLeftLine + "DistanceLeft() : 8\n");
  ExpectPlaces(test.m_Generated, {{0, -2}, {8, -2}});
}

TEST(AutoBumpTest, LeftComesBeforeRight) {
  CBumpCurve test({{0, 0}, {4, 0}}, 3, 5, 45);
  EXPECT_EQ(test.Generate(), kLeftLine + "DistanceLeft() : 5\n" + kLeftLine + "DistanceLeft() : 5\n");
  ExpectPlaces(test.m_Generated, {{0, 2}, {0, -2}});
}

TEST(AutoBumpTest, RecordsAreNormalConstraintsOnly) {
  CBumpCurve test({{0, 0}, {4, 0}}, CurveOption::kLeftAutoBump, 5, 30);
  test.Generate();
  const CPtCstr& record = *test.m_Generated.begin();
  EXPECT_EQ(record.m_uKind, PtCstrKind::kNormal);
  EXPECT_EQ(record.m_fZ, 0);
  EXPECT_EQ(record.m_uState, 0U);
}

struct CTiltCase {
  double m_fDegrees;
  double m_fSlope;  ///< towards the right of the way
};
class TiltTest : public testing::TestWithParam<CTiltCase> {};
INSTANTIATE_TEST_SUITE_P(Degrees, TiltTest,
                         testing::Values(CTiltCase{45, 1}, CTiltCase{0, 0}, CTiltCase{-22.5, -0.5},
                                         CTiltCase{80, 80.0 / 45}));

TEST_P(TiltTest, IsLinearInTheAngleOnBothSides) {
  CBumpCurve test({{0, 0}, {0, 4}}, 3, 5, GetParam().m_fDegrees);
  test.Generate();
  ASSERT_EQ(test.m_Generated.size(), 2U);
  for (const CPtCstr& record : test.m_Generated) {
    EXPECT_NEAR(record.m_fP, GetParam().m_fSlope, 1e-12);
    EXPECT_NEAR(record.m_fQ, 0, 1e-12);
  }
}

TEST(AutoBumpTest, PathGoesRoundTheOutsideOfABend) {
  CBumpCurve test({{0, 0}, {4, 0}, {4, 4}}, CurveOption::kRightAutoBump, 1, 0);
  test.Generate();
  // Straight to B, across to A, across to C, straight on: two legs of 4 and two chords.
  const double chord = 2 * kLength * std::sin(std::numbers::pi / 8);
  EXPECT_EQ(test.m_Generated.size(), static_cast<std::size_t>(std::floor(8 + 2 * chord)) + 1);
  for (const CPtCstr& record : test.m_Generated) {
    const bool beside = record.m_fX <= 4 ? record.m_fY == -2 : record.m_fY >= 0 ? record.m_fX == 6 : true;
    EXPECT_TRUE(beside || (record.m_fX > 4 && record.m_fY < 0)) << record.m_fX << ", " << record.m_fY;
  }
}

TEST(AutoBumpTest, PathCutsTheInsideOfABendAtTheMiter) {
  CBumpCurve test({{0, 0}, {6, 0}, {6, 6}}, CurveOption::kLeftAutoBump, 2, 0);
  test.Generate();
  ExpectPlaces(test.m_Generated, {{0, 2}, {2, 2}, {4, 2}, {4, 4}});
}

TEST(AutoBumpTest, DirectionTurnsFromNodeToNode) {
  CBumpCurve test({{0, 0}, {10, 0}, {10, 10}}, CurveOption::kRightAutoBump, 5, 45);
  test.Generate();
  const CPtCstr& first = *test.m_Generated.begin();
  EXPECT_NEAR(first.m_fP, 0, 1e-12);
  EXPECT_NEAR(first.m_fQ, -1, 1e-12);
  // Between the right offsets of the two nodes, (0, -2) and (1.41, -1.41), in the share of the way.
  const CPtCstr& second = *std::next(test.m_Generated.begin());
  const double share = 5 / (10 + 2 * kLength * std::sin(std::numbers::pi / 8));
  const double x = share * std::numbers::sqrt2;
  const double y = -(1 - share) * 2 - share * std::numbers::sqrt2;
  EXPECT_NEAR(second.m_fP, x / std::hypot(x, y), 1e-12);
  EXPECT_NEAR(second.m_fQ, y / std::hypot(x, y), 1e-12);
}

TEST(AutoBumpTest, DirectionOfTheNextSegmentCountsFromItsStart) {
  CBumpCurve test({{0, 0}, {6, 0}, {6, 6}}, CurveOption::kLeftAutoBump, 3, 45);
  test.Generate();
  // The side runs from (0, 2) by way of (4, 2) to (4, 6): the third of the row lies half way along its second part,
  // between the right offsets (1.41, -1.41) and (2, 0).
  const CPtCstr& third = *std::next(test.m_Generated.begin(), 2);
  EXPECT_NEAR(third.m_fY, 4, 1e-12);
  const double x = std::numbers::sqrt2 / 2 + 1;
  const double y = -std::numbers::sqrt2 / 2;
  EXPECT_NEAR(third.m_fP, x / std::hypot(x, y), 1e-12);
  EXPECT_NEAR(third.m_fQ, y / std::hypot(x, y), 1e-12);
}

TEST(AutoBumpTest, ClosedCurveHasTheLastSegmentToo) {
  CBumpCurve open({{0, 0}, {20, 0}, {20, 20}, {0, 20}}, CurveOption::kLeftAutoBump, 4, 0);
  CBumpCurve closed({{0, 0}, {20, 0}, {20, 20}, {0, 20}}, CurveOption::kLeftAutoBump, 4, 0, true);
  open.Generate();
  closed.Generate();
  EXPECT_EQ(closed.m_Generated.size(), 16U);
  EXPECT_LT(open.m_Generated.size(), 16U);
}

TEST(AutoBumpTest, EachPlaceIsGivenToTheRefinement) {
  CBumpCurve test({{0, 0}, {12, 0}}, 3, 5, 45);
  CPlaces refined;
  test.m_Curve.AddAutoBumpConstraints(test.m_Generated, [&](double x, double y) { refined.push_back({x, y}); });
  EXPECT_EQ(refined, PlacesOf(test.m_Generated));
  EXPECT_EQ(refined.size(), 6U);
}

TEST(AutoBumpTest, NoNodesNoConstraints) {
  CBumpCurve test({}, CurveOption::kLeftAutoBump, 5, 45);
  EXPECT_EQ(test.Generate(), kLeftLine);
}

TEST(AutoBumpTest, SinglePointIsRefused) {
  CBumpCurve test({{1, 1}}, CurveOption::kLeftAutoBump, 5, 45);
  EXPECT_EQ(test.Generate(), kLeftLine + kSinglePoint);
  EXPECT_TRUE(test.m_Generated.empty());
}

class UselessDistanceTest : public testing::TestWithParam<double> {};
INSTANTIATE_TEST_SUITE_P(Distances, UselessDistanceTest,
                         testing::Values(0.0, -3.0, HUGE_VAL, -HUGE_VAL, NAN, 1e-300, 1e-6));

TEST_P(UselessDistanceTest, GeneratesNothingAndSaysSo) {
  CBumpCurve test({{0, 0}, {12, 0}}, CurveOption::kLeftAutoBump, GetParam(), 45);
  const std::string text = test.Generate();
  EXPECT_NE(text.find("CCntrCtrl::AddAutoBumpConstraints : no constraints along a path of length 12 at distance"),
            std::string::npos)
      << text;
  EXPECT_TRUE(test.m_Generated.empty());
}

TEST(AutoBumpTest, StretchWithoutLengthIsPassedOver) {
  CBumpCurve test({{0, 0}, {12, 0}, {12, 0}, {24, 0}}, CurveOption::kLeftAutoBump, 5, 45);
  EXPECT_NE(test.Generate().find("no constraints along a path of length 0 at distance 5\n"), std::string::npos);
  ExpectPlaces(test.m_Generated, {{0, 2}, {5, 2}, {10, 2}, {15, 2}, {20, 2}});
}

TEST(AutoBumpTest, NodeAtNoPlaceGeneratesNothing) {
  CBumpCurve test({{0, 0}, {NAN, 3}}, CurveOption::kLeftAutoBump, 5, 45);
  EXPECT_NE(test.Generate().find("no constraints along"), std::string::npos);
  EXPECT_TRUE(test.m_Generated.empty());
}

}  // namespace
