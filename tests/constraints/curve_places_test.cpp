// Places at equal lengths along a curve, and beside it.

#include <algorithm>
#include <cmath>
#include <iterator>
#include <numeric>

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include "constraints/CurvePlaces.h"
#include "support/CurveBuilders.h"

namespace {

using Lengths = std::vector<double>;

CCurveSteps By(double distance) { return {distance, 1}; }
CCurveSteps Of(std::size_t count) { return {std::nullopt, count}; }

double Distance(const CPlanePoint& a, const CPlanePoint& b) { return std::hypot(b.x - a.x, b.y - a.y); }

// Of whole numbers, so that lines cross, run back and repeat a node often.
CPlaces AnyPath() {
  CPlaces path;
  for (int k = *rc::gen::inRange(2, 9); k > 0; --k)
    path.push_back({1.0 * *rc::gen::inRange(-6, 7), 1.0 * *rc::gen::inRange(-6, 7)});
  return path;
}

/// A path as one walks it.
class CWalk {
 public:
  explicit CWalk(CPlaces path, bool closed) : m_aPath(std::move(path)) {
    if (closed) m_aPath.push_back(m_aPath.front());
    for (std::size_t k = 0; k + 1 < m_aPath.size(); ++k)
      m_fLength += Distance({m_aPath[k][0], m_aPath[k][1]}, {m_aPath[k + 1][0], m_aPath[k + 1][1]});
  }
  double Length() const { return m_fLength; }
  CPlanePoint At(double length) const {
    for (std::size_t k = 0; k + 1 < m_aPath.size(); ++k) {
      const auto& [x, y] = m_aPath[k];
      const double dx = m_aPath[k + 1][0] - x;
      const double dy = m_aPath[k + 1][1] - y;
      const double piece = std::sqrt(dx * dx + dy * dy);
      if (length <= piece && piece > 0) return {x + length / piece * dx, y + length / piece * dy};
      length -= piece;
    }
    return {m_aPath.back()[0], m_aPath.back()[1]};
  }

 private:
  CPlaces m_aPath;
  double m_fLength = 0.0;
};

}  // namespace

TEST(CurvePlacesTest, AnOpenCurveHasAHeightAtEitherEnd) {
  EXPECT_EQ(StepsAlong(12, false, Of(4)), (Lengths{0, 4, 8, 12}));
  EXPECT_EQ(StepsAlong(12, false, Of(1)), (Lengths{6}));
}

TEST(CurvePlacesTest, AClosedCurveHasNoDoubleAtItsStart) {
  EXPECT_EQ(StepsAlong(12, true, Of(4)), (Lengths{0, 3, 6, 9}));
  EXPECT_EQ(StepsAlong(12, true, Of(1)), (Lengths{0}));
  EXPECT_EQ(StepsAlong(12, true, By(4)), (Lengths{0, 4, 8}));
  EXPECT_EQ(StepsAlong(13, true, By(4)), (Lengths{0, 4, 8})) << "not just before it either";
  EXPECT_EQ(StepsAlong(14, true, By(4)), (Lengths{0, 4, 8, 12}));
}

TEST(CurvePlacesTest, DistancesEndWhereTheCurveDoes) {
  EXPECT_EQ(StepsAlong(12, false, By(5)), (Lengths{0, 5, 10}));
  EXPECT_EQ(StepsAlong(12, false, By(4)), (Lengths{0, 4, 8, 12}));
  EXPECT_EQ(StepsAlong(12, false, By(13)), (Lengths{0}));
  EXPECT_EQ(StepsAlong(0.3, false, By(0.1)).size(), 4U) << "rounding takes none";
}

TEST(CurvePlacesTest, WhatCannotBeDividedHasNoPlaces) {
  for (const double length : {0.0, -1.0, std::nan("")}) EXPECT_TRUE(StepsAlong(length, false, Of(4)).empty());
  for (const double distance : {0.0, -1.0, std::nan(""), 1e-9})
    EXPECT_TRUE(StepsAlong(12, true, By(distance)).empty()) << distance;
  EXPECT_TRUE(StepsAlong(12, false, Of(0)).empty());
  EXPECT_TRUE(StepsAlong(12, false, Of(kMostCurvePlaces + 1)).empty());
  EXPECT_EQ(StepsAlong(12, false, Of(kMostCurvePlaces)).size(), kMostCurvePlaces);
}

TEST(CurvePlacesTest, CurvesWithoutALengthHaveNone) {
  const Lengths lengths{0};
  EXPECT_TRUE(PlacesAlong(CTestCurve({{1, 1}}).m_Curve, lengths, 0).empty());
  EXPECT_TRUE(PlacesAlong(CTestCurve({{1, 1}, {1, 1}}).m_Curve, lengths, 0).empty());
  EXPECT_TRUE(PlacesAlong(CTestCurve({{1, 1}, {std::nan(""), 1}}).m_Curve, lengths, 0).empty());
}

TEST(CurvePlacesTest, LeftIsLeftOfTheWay) {
  const CTestCurve curve({{0, 0}, {10, 0}, {10, 10}});
  const auto places = PlacesAlong(curve.m_Curve, Lengths{5, 10, 20}, 2);
  ASSERT_EQ(places.size(), 3U);
  EXPECT_EQ(places[0].m_Place, (CPlanePoint{5, 2}));
  EXPECT_EQ(places[1].m_Place, (CPlanePoint{8, 0})) << "the node belongs to the second segment";
  EXPECT_EQ(places[2].m_Place, (CPlanePoint{8, 10}));
  EXPECT_EQ(PlacesAlong(curve.m_Curve, Lengths{5}, -2)[0].m_Place, (CPlanePoint{5, -2}));
}

RC_GTEST_PROP(CurvePlacesProperty, LieAtEqualLengthsOfTheCurveAndPerpendicularToIt, ()) {
  const CPlaces path = AnyPath();
  const CTestCurve curve(path, *rc::gen::arbitrary<bool>());
  const bool closed = curve.m_Curve.IsClosed();
  const CWalk walk(path, closed);
  RC_ASSERT(std::abs(LengthOf(curve.m_Curve) - walk.Length()) < 1e-9);
  const std::size_t count = *rc::gen::inRange<std::size_t>(1, 40);
  const double beside = *rc::gen::inRange(-20, 21) / 8.0;
  const auto places = PlacesAlong(curve.m_Curve, StepsAlong(walk.Length(), closed, Of(count)), beside);
  RC_ASSERT(places.size() == (walk.Length() > 0 ? count : 0));
  const auto parts = static_cast<double>(closed || count == 1 ? count : count - 1);
  for (std::size_t k = 0; k < places.size(); ++k) {
    const double share = count == 1 && !closed ? 0.5 : static_cast<double>(k) / parts;
    RC_ASSERT(std::abs(places[k].m_fShare - share) < 1e-12);
    RC_ASSERT(Distance(places[k].m_Foot, walk.At(share * walk.Length())) < 1e-9);
    RC_ASSERT(std::abs(Distance(places[k].m_Foot, places[k].m_Place) - std::abs(beside)) < 1e-9);
    // A little further on the way, or where that turns a little back, the segment goes on at a right angle.
    const CPlanePoint& foot = places[k].m_Foot;
    const auto isPerpendicular = [&](double ahead) {
      const CPlanePoint next = walk.At(share * walk.Length() + ahead);
      const CPlanePoint along{(next.x - foot.x) / ahead, (next.y - foot.y) / ahead};
      const CPlanePoint off{places[k].m_Place.x - foot.x, places[k].m_Place.y - foot.y};
      const double cross = along.x * off.y - along.y * off.x;
      return std::abs(along.x * off.x + along.y * off.y) < 1e-4 && std::abs(cross - beside) < 1e-4;
    };
    RC_ASSERT(isPerpendicular(1e-6) || isPerpendicular(-1e-6));
  }
}

RC_GTEST_PROP(CurvePlacesProperty, DistancesAreEqualAlongTheCurve, ()) {
  const CPlaces path = AnyPath();
  const CTestCurve curve(path, *rc::gen::arbitrary<bool>());
  const bool closed = curve.m_Curve.IsClosed();
  const double length = CWalk(path, closed).Length();
  RC_PRE(length > 0);
  const double distance = *rc::gen::inRange(1, 80) / 8.0;
  const Lengths lengths = StepsAlong(length, closed, By(distance));
  RC_ASSERT(!lengths.empty() && lengths.front() == 0);
  for (std::size_t k = 1; k < lengths.size(); ++k)
    RC_ASSERT(std::abs(lengths[k] - lengths[k - 1] - distance) < 1e-8 * distance + 1e-12);
  const double rest = length - lengths.back();
  RC_ASSERT(rest >= 0 && (closed ? rest < 1.5 * distance + 1e-9 : rest < distance));
  if (closed && lengths.size() > 1) RC_ASSERT(rest >= 0.5 * distance - 1e-9);
}
