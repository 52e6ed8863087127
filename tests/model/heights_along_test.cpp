// Heights along a curve: what is planned, what is left out and why, and the edit.

#include <algorithm>
#include <cmath>

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include "model/HeightsAlong.h"
#include "support/ConstraintBuilders.h"
#include "support/CurveGrid.h"

namespace {

CHeightsAlong Wanted(std::size_t count, double first, double last, double beside = 0) {
  CHeightsAlong wanted;
  wanted.m_Steps.m_uCount = count;
  wanted.m_fFirst = first;
  wanted.m_fLast = last;
  wanted.m_fBeside = beside;
  return wanted;
}

CPlannedHeights Plan(CCurveGrid& grid, const CHeightsAlong& wanted) {
  return PlanHeightsAlong(grid.Curve(), wanted, grid.m_Grid.Surface(), grid.m_Grid.Constraints());
}

// Whether two segments have a point in common, by which side of each the ends of the other lie on.
bool Meet(const CPlanePoint& a, const CPlanePoint& b, const CPlanePoint& c, const CPlanePoint& d) {
  const auto side = [](const CPlanePoint& p, const CPlanePoint& q, const CPlanePoint& r) {
    return (q.x - p.x) * (r.y - p.y) - (q.y - p.y) * (r.x - p.x);
  };
  return side(a, b, c) * side(a, b, d) <= 0 && side(c, d, a) * side(c, d, b) <= 0;
}

// A path over the picture, some of it on the border or outside.
CPlaces AnyPath() {
  CPlaces path;
  for (int k = *rc::gen::inRange(2, 7); k > 0; --k)
    path.push_back({*rc::gen::inRange(-40, 130) / 10.0, *rc::gen::inRange(199, 262) / 10.0});
  return path;
}

}  // namespace

TEST(HeightsAlongTest, AreLinearInTheLengthOfTheCurve) {
  CCurveGrid grid;
  grid.Add({{1, 21}, {5, 21}, {5, 25}}, kFair);
  const CPlannedHeights plan = Plan(grid, Wanted(5, 10, 30));
  ASSERT_EQ(plan.m_aHeights.size(), 5U);
  EXPECT_TRUE(plan.m_aLeftOut.empty());
  for (int k = 0; k < 5; ++k) EXPECT_DOUBLE_EQ(plan.m_aHeights[static_cast<std::size_t>(k)].m_fZ, 10 + 5 * k);
  EXPECT_EQ(plan.m_aHeights[1].m_fX, 3);
  EXPECT_EQ(plan.m_aHeights[3].m_fY, 23);
  for (const CPtCstr& height : plan.m_aHeights) EXPECT_EQ(height.m_uKind, PtCstrKind::kPosition);
}

TEST(HeightsAlongTest, FollowTheSurfaceWhereThatIsWanted) {
  CCurveGrid grid;
  SetSurface(grid.m_Grid, CRamp{0.5, -0.25, 3});
  grid.Add({{1, 21}, {9, 25}}, kFair);
  CHeightsAlong wanted = Wanted(6, 10, 30, 0.5);
  wanted.m_bFollow = true;
  for (const CPtCstr& height : Plan(grid, wanted).m_aHeights)
    EXPECT_NEAR(height.m_fZ, 3 + 0.5 * height.m_fX - 0.25 * height.m_fY, 1e-9);
  EXPECT_NEAR(MeanHeight(grid.m_Grid.Surface()), 3 + 0.5 * 4.5 - 0.25 * 23, 1e-9);
}

TEST(HeightsAlongTest, SidesAreThoseOfTheWay) {
  CCurveGrid grid;
  grid.Add({{1, 22}, {9, 22}}, kFair);
  CHeightsAlong wanted = Wanted(3, 1, 1, 0.5);
  wanted.m_bRight = true;
  const CPlannedHeights both = Plan(grid, wanted);
  ASSERT_EQ(both.m_aHeights.size(), 6U);
  for (std::size_t k = 0; k < 6; ++k) EXPECT_EQ(both.m_aHeights[k].m_fY, k < 3 ? 22.5 : 21.5);
  wanted.m_bLeft = false;
  EXPECT_EQ(Plan(grid, wanted).m_aHeights.size(), 3U);
  wanted.m_fBeside = 0;
  EXPECT_EQ(Plan(grid, wanted).m_aHeights.size(), 3U) << "on the curve there is one row";
  wanted.m_bLeft = true;
  EXPECT_EQ(Plan(grid, wanted).m_aHeights.size(), 3U);
}

TEST(HeightsAlongTest, OnATearNoneHasAnEffectAndBesideItAllHave) {
  CCurveGrid grid;
  grid.Add({{0, 22.1}, {4, 22.7}, {8, 24.2}});
  grid.m_Grid.PerformPendingWork();
  CPlannedHeights plan = Plan(grid, Wanted(9, 1, 1));
  EXPECT_TRUE(plan.m_aHeights.empty());
  EXPECT_EQ(plan.m_aLeftOut.size(), 9U);
  const double beside = DefaultBeside(grid.Curve(), grid.m_Grid.Surface());
  EXPECT_DOUBLE_EQ(beside, 1.5 * 5 / 7 * std::hypot(1, 0.375));
  CHeightsAlong wanted = Wanted(9, 1, 1, beside);
  wanted.m_bRight = true;
  plan = Plan(grid, wanted);
  EXPECT_EQ(plan.m_aHeights.size(), 18U);
  EXPECT_TRUE(plan.m_aLeftOut.empty());
}

TEST(HeightsAlongTest, OtherCurvesHaveTheirHeightsOnThem) {
  CCurveGrid grid;
  grid.Add({{0, 21}, {8, 24}}, kCrease);
  EXPECT_EQ(DefaultBeside(grid.Curve(), grid.m_Grid.Surface()), 0);
}

TEST(HeightsAlongTest, WhatLiesBehindAnotherTearIsLeftOut) {
  CCurveGrid grid;
  grid.Add({{1, 22}, {9, 22}}, kFair);
  grid.Add({{4, 23.1}, {12, 23.1}});
  grid.m_Grid.PerformPendingWork();
  const CPlannedHeights plan = Plan(grid, Wanted(5, 1, 1, 2.5));
  ASSERT_EQ(plan.m_aHeights.size(), 2U);
  EXPECT_EQ(plan.m_aHeights[1].m_fX, 3);
  EXPECT_EQ(plan.m_aLeftOut.size(), 3U);
}

TEST(HeightsAlongTest, TheMarginOfTheBorderIsLeftOut) {
  CCurveGrid grid;
  grid.Add({{-3.45, 23}, {12.5, 23}}, kFair);
  const CPlannedHeights plan = Plan(grid, Wanted(3, 1, 1));
  EXPECT_EQ(plan.m_aHeights.size(), 1U);
  EXPECT_EQ(plan.m_aLeftOut.size(), 2U);
  EXPECT_EQ(Plan(grid, Wanted(3, 1, 1, 3.5)).m_aLeftOut.size(), 3U) << "outside";
}

TEST(HeightsAlongTest, AreOneEditAndTheHeightAskedForLast) {
  CCurveGrid grid;
  grid.Add({{1, 21}, {9, 25}}, kFair);
  EXPECT_FALSE(grid.m_Grid.LastHeight().has_value());
  const CPlannedHeights plan = Plan(grid, Wanted(4, 5, 8));
  const std::uint64_t edits = grid.m_Grid.Gate().Edits();
  grid.m_Grid.AddHeightsAlongCurve(plan.m_aHeights, 8);
  EXPECT_EQ(grid.m_Grid.Gate().Edits(), edits + 1);
  EXPECT_EQ(grid.m_Grid.Constraints().Points().size(), 4U);
  EXPECT_EQ(grid.m_Grid.LastHeight(), 8);
  grid.m_Grid.AddHeightsAlongCurve(plan.m_aHeights, std::nullopt);
  EXPECT_EQ(grid.m_Grid.LastHeight(), 8) << "those of the surface nobody has asked for";
  grid.m_Grid.AddHeightsAlongCurve({}, 3);
  EXPECT_EQ(grid.m_Grid.LastHeight(), 8);
  grid.m_Grid.SelectNextPtCstr(PtCstrKind::kPosition);
  grid.m_Grid.SetSelectedHeight(2.5);
  EXPECT_EQ(grid.m_Grid.LastHeight(), 2.5);
}

RC_GTEST_PROP(HeightsAlongProperty, NoneLandsWhereItHasNoEffectAndNoneIsLost, ()) {
  CCurveGrid grid;
  const CurveType type = *rc::gen::element(kTear, kTear, kCrease, kFair);
  grid.Add(AnyPath(), type, *rc::gen::arbitrary<bool>());
  const int others = *rc::gen::inRange(0, 3);
  for (int k = 0; k < others; ++k) grid.Add(AnyPath(), kTear, *rc::gen::arbitrary<bool>());
  grid.m_Grid.PerformPendingWork();
  CHeightsAlong wanted = Wanted(*rc::gen::inRange<std::size_t>(1, 30), 1, 2, *rc::gen::inRange(0, 30) / 10.0);
  wanted.m_bLeft = *rc::gen::arbitrary<bool>();
  wanted.m_bRight = !wanted.m_bLeft || *rc::gen::arbitrary<bool>();
  const CPlannedHeights plan = Plan(grid, wanted);
  const std::size_t rows = wanted.m_fBeside > 0 && wanted.m_bLeft && wanted.m_bRight ? 2 : 1;
  const std::size_t all = LengthOf(grid.Curve()) > 0 ? rows * wanted.m_Steps.m_uCount : 0;
  RC_ASSERT(plan.m_aHeights.size() + plan.m_aLeftOut.size() == all);

  grid.m_Grid.AddHeightsAlongCurve(plan.m_aHeights, 1);
  grid.m_Grid.Run().Post(Operation::kRebuildMaps);
  grid.m_Grid.PerformPendingWork();
  for (const CPtCstr& height : grid.m_Grid.Constraints().Points()) {
    RC_ASSERT(height.IsActive());
    RC_ASSERT(!height.HasKind(PtCstrKind::kDisabled));
    RC_ASSERT(height.m_fX > kOblong.x0 + 0.0999 && height.m_fX < kOblong.x1 - 0.0999);
    RC_ASSERT(height.m_fY > kOblong.y0 + 0.0999 && height.m_fY < kOblong.y1 - 0.0999);
  }
}

RC_GTEST_PROP(HeightsAlongProperty, NoWayCrossesATear, ()) {
  CCurveGrid grid;
  grid.Add(AnyPath(), *rc::gen::element(kTear, kFair), *rc::gen::arbitrary<bool>());
  grid.Add(AnyPath(), kTear, *rc::gen::arbitrary<bool>());
  grid.m_Grid.PerformPendingWork();
  RC_PRE(LengthOf(grid.Curve()) > 0);
  const double beside = *rc::gen::inRange(1, 30) / 10.0;
  const CHeightsAlong wanted = Wanted(*rc::gen::inRange<std::size_t>(1, 30), 1, 2, beside);
  const CPlannedHeights plan = Plan(grid, wanted);
  const CCntrCtrl& curve = grid.Curve();
  const auto lengths = StepsAlong(LengthOf(curve), curve.IsClosed(), wanted.m_Steps);
  for (const CCurvePlace& place : PlacesAlong(curve, lengths, beside)) {
    const bool planned = std::ranges::any_of(plan.m_aHeights, [&](const CPtCstr& height) {
      return height.m_fX == place.m_Place.x && height.m_fY == place.m_Place.y;
    });
    if (!planned) continue;
    // From a little beside the curve, which is a tear itself.
    const CPlanePoint from{std::lerp(place.m_Foot.x, place.m_Place.x, 1e-6),
                           std::lerp(place.m_Foot.y, place.m_Place.y, 1e-6)};
    for (const CCntrCtrl& tear : grid.m_Grid.Constraints().Curves()) {
      if (!tear.HasType(kTear)) continue;
      tear.ForEachSegment([&](const CPtCstr& a, const CPtCstr& b) {
        RC_ASSERT(!Meet(from, place.m_Place, {a.m_fX, a.m_fY}, {b.m_fX, b.m_fY}));
      });
    }
  }
}
