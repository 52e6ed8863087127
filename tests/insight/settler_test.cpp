// Where regions that nothing settles are placed, and what stays as it is.

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <tuple>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "insight/CFreedom.h"
#include "insight/CSettler.h"
#include "support/AllocationCount.h"
#include "support/CStaging.h"
#include "support/CurveBuilders.h"
#include "support/TornGrids.h"
#include "support/UpdateBuilders.h"

namespace {

TEST(Settler, LetsTheOtherSideOfAStraightTearFollowAlongItAndBeLevelAcross) {
  CHalves test;
  test.m_Grid.SetSettling(true);
  test.Solve();
  ASSERT_NEAR(test.At(20, 50), 19, kSettled);
  // The tear lies between the columns at 50 and at 53.125.
  EXPECT_NEAR(test.At(80, 50) - test.At(60, 50), 0, 1e-3);
  EXPECT_NEAR(test.At(80, 80) - test.At(80, 20), 0.3 * 60, 0.05);
  EXPECT_NEAR(test.At(60, 50), 2 + 0.1 * 50 + 0.3 * 50, 0.01);
}

TEST(Settler, DoesNothingWhileSwitchedOff) {
  CHalves off;
  CHalves on;
  on.m_Grid.SetSettling(true);
  on.m_Grid.SetSettling(false);
  off.Solve();
  on.Solve();
  EXPECT_EQ(off.Heights(), on.Heights());
}

TEST(Settler, TakesTheSamePlaceWhereverTheSurfaceBegan) {
  CHalves first;
  CHalves second;
  first.m_Grid.SetSettling(true);
  second.m_Grid.SetSettling(true);
  first.Solve();
  second.m_Grid.PerformPendingWork();
  SetRandomSurface(second.m_Grid, 99);
  RunUntilPaused(second.m_Grid);
  EXPECT_LT(LargestDifference(first.Heights(), second.Heights()), 1e-5);
}

TEST(Settler, MovesAtOnceWhenSwitchedOnAfterTheSolverHasStopped) {
  CHalves test;
  test.Solve();
  ASSERT_FALSE(test.m_Grid.Run().IsRunning());
  const double before = test.At(80, 50);
  test.m_Grid.SetSettling(true);
  EXPECT_GT(std::abs(test.At(80, 50) - before), 1.0);
  EXPECT_NEAR(test.At(60, 50), 22, 0.01);
}

// Settled points by number.
std::vector<std::size_t> SettledPoints(const CTornGrid& test) {
  const CFreedom freedom = test.Freedom();
  std::vector<std::size_t> settled;
  for (std::size_t k = 0; k < test.m_Grid.Surface().Order().Count(); ++k) {
    const std::uint32_t piece = freedom.Pieces().PieceAt(test.m_Grid.Surface().Order().ScanOf(k));
    for (const CRegion& region : freedom.Regions()) {
      if (region.m_uPiece == piece && region.m_aFree.empty()) settled.push_back(k);
    }
  }
  return settled;
}

// What is torn, in a surface that three heights settle: a straight tear, a closed one, regions in regions, and a corner
// that the border cuts off.
enum class Torn { Straight, Closed, Nested, Corner };

void TearAs(CTornGrid& test, Torn torn) {
  switch (torn) {
    case Torn::Straight:
      return test.Tear({{51, 1}, {51, 99}});
    case Torn::Nested:
      test.Tear({{40, 40}, {60, 40}, {60, 60}, {40, 60}}, true);
      [[fallthrough]];
    case Torn::Closed:
      return test.Tear({{30, 30}, {70, 30}, {70, 70}, {30, 70}}, true);
    case Torn::Corner:
      return test.Tear({{60, 1}, {60, 40}, {99, 40}});
  }
}

class SettlerModes : public testing::TestWithParam<std::tuple<WaveletMode, Torn>> {};
INSTANTIATE_TEST_SUITE_P(All, SettlerModes,
                         testing::Combine(testing::ValuesIn(kAllModes),
                                          testing::Values(Torn::Straight, Torn::Closed, Torn::Nested, Torn::Corner)));

TEST_P(SettlerModes, KeepsSettledRegions) {
  const auto [mode, torn] = GetParam();
  CTornGrid test(mode);
  TearAs(test, torn);
  AddAll(test.m_Grid, {HeightCstr(10, 10, 6), HeightCstr(40, 10, 9), HeightCstr(10, 90, 30)});
  test.Solve();
  const std::vector<double> before = test.Heights();
  test.m_Grid.SetSettling(true);
  const std::vector<double> after = test.Heights();
  const std::vector<std::size_t> settled = SettledPoints(test);
  ASSERT_GT(settled.size(), 300U);
  ASSERT_LT(settled.size(), before.size());
  double low = HUGE_VAL;
  double high = -HUGE_VAL;
  for (const std::size_t k : settled) {
    low = std::min(low, before[k]);
    high = std::max(high, before[k]);
  }
  for (const std::size_t k : settled) {
    if (mode == WaveletMode::Simple) {
      ASSERT_NEAR(after[k], before[k], 1e-12 * (high - low)) << k;
    } else {
      ASSERT_EQ(after[k], before[k]) << k;
    }
  }
  EXPECT_GT(LargestDifference(before, after), 1.0);
}

// A cup: a closed tear in a settled surface.
TEST(Settler, PutsTheInsideOfAClosedTearOnThePlaneAroundIt) {
  CTornGrid test;
  test.Tear({{30, 30}, {70, 30}, {70, 70}, {30, 70}}, true);
  AddAll(test.m_Grid, {HeightCstr(10, 10, 6), HeightCstr(90, 10, 14), HeightCstr(10, 90, 30)});
  test.m_Grid.SetSettling(true);
  test.Solve();
  ASSERT_EQ(test.Freedom().Regions().size(), 2U);
  // The heights around lie on the plane 2 + 0.1 x + 0.3 y. Those across the tear are a cell further out, which makes
  // the plane within a little steeper.
  EXPECT_NEAR(test.At(50, 50), 22, 0.05);
  EXPECT_NEAR(test.At(60, 50) - test.At(40, 50), 2.2, 0.1);
  EXPECT_NEAR(test.At(50, 60) - test.At(50, 40), 6.6, 0.3);
}

TEST(Settler, TakesThePlaneThatMakesGapsAndSlopesLeast) {
  CTornGrid test;
  test.Tear({{30, 30}, {70, 30}, {70, 70}, {30, 70}}, true);
  AddAll(test.m_Grid, {HeightCstr(10, 10, 6), HeightCstr(90, 10, 14), HeightCstr(10, 90, 30), HeightCstr(75, 75, 40)});
  test.m_Grid.SetSettling(true);
  test.Solve();
  const double least = Misplacement(test, {0, 0, 0});
  for (const CRamp& move : {CRamp{0.01, 0, -0.5}, CRamp{0, 0.01, -0.5}, CRamp{0, 0, 0.1}}) {
    const CRamp back{-move.m_fA, -move.m_fB, -move.m_fC};
    const double forth = Misplacement(test, move) - least;
    EXPECT_GT(forth, 0);
    // A parabola about its lowest point.
    EXPECT_NEAR(forth, Misplacement(test, back) - least, 1e-6 * forth);
  }
}

TEST(Settler, LevelsTheInsideOfAClosedTearAboutItsOnlyHeight) {
  CTornGrid test;
  test.Tear({{30, 30}, {70, 30}, {70, 70}, {30, 70}}, true);
  AddAll(test.m_Grid, {HeightCstr(10, 10, 6), HeightCstr(90, 10, 14), HeightCstr(10, 90, 30), HeightCstr(45, 52, -7)});
  test.m_Grid.SetSettling(true);
  test.Solve();
  for (const double x : {40.0, 50.0, 60.0}) EXPECT_NEAR(test.At(x, 50), -7, kSettled) << x;
  EXPECT_NEAR(test.At(50, 60), -7, kSettled);
}

TEST(Settler, TiltsAboutTheLineOfTwoHeightsUntilNothingIsSteeperThanTheyAre) {
  CTornGrid test;
  test.Tear({{30, 30}, {70, 30}, {70, 70}, {30, 70}}, true);
  AddAll(test.m_Grid, {HeightCstr(10, 10, 6), HeightCstr(90, 10, 14), HeightCstr(10, 90, 30), HeightCstr(40, 50, 1),
                       HeightCstr(60, 50, 3)});
  test.m_Grid.SetSettling(true);
  test.Solve();
  EXPECT_NEAR(test.At(50, 60), 2, 1e-6);
  EXPECT_NEAR(test.At(50, 40), 2, 1e-6);
}

// A slope settles the tilt and leaves the offset, which slopes cannot choose.
TEST(Settler, BringsARegionOfSettledTiltToTheHeightOfItsSurroundings) {
  CTornGrid test;
  test.Tear({{30, 30}, {70, 30}, {70, 70}, {30, 70}}, true);
  AddAll(test.m_Grid,
         {HeightCstr(10, 10, 8), HeightCstr(90, 10, 8), HeightCstr(10, 90, 8), SlopeCstr(50, 50, 0.25, 0)});
  test.m_Grid.SetSettling(true);
  test.Solve();
  EXPECT_NEAR(test.At(60, 50) - test.At(40, 50), 5, 1e-6);
  EXPECT_NEAR((test.At(40, 50) + test.At(60, 50)) / 2, 8, 0.05);
}

// Regions in regions: the outer ring is settled, the ring within and the disc in the middle follow.
TEST(Settler, PlacesRegionsInRegionsFromTheSettledOneInwards) {
  CTornGrid test;
  test.Tear({{20, 20}, {80, 20}, {80, 80}, {20, 80}}, true);
  test.Tear({{40, 40}, {60, 40}, {60, 60}, {40, 60}}, true);
  AddAll(test.m_Grid, {HeightCstr(10, 10, 6), HeightCstr(90, 10, 14), HeightCstr(10, 90, 30)});
  test.m_Grid.SetSettling(true);
  test.Solve();
  ASSERT_EQ(test.Freedom().Regions().size(), 3U);
  EXPECT_NEAR(test.At(30, 50), 20, 0.2);
  EXPECT_NEAR(test.At(70, 50), 24, 0.2);
  EXPECT_NEAR(test.At(50, 50), 22, 0.1);
  EXPECT_GT(test.At(56, 50) - test.At(44, 50), 1.0);
}

// Cut off by the border: a corner of the model.
TEST(Settler, PlacesARegionThatTheBorderCutsOff) {
  CTornGrid test;
  test.Tear({{60, 1}, {60, 40}, {99, 40}});
  AddAll(test.m_Grid, {HeightCstr(10, 10, 6), HeightCstr(40, 10, 9), HeightCstr(10, 90, 30)});
  test.m_Grid.SetSettling(true);
  test.Solve();
  ASSERT_EQ(test.Freedom().Regions().size(), 2U);
  EXPECT_NEAR(test.At(80, 20), 2 + 8 + 6, 0.4);
  EXPECT_NEAR(test.At(90, 20) - test.At(70, 20), 2.4, 0.2);
  EXPECT_NEAR(test.At(80, 30) - test.At(80, 10), 6.4, 0.2);
}

TEST(Settler, LevelsTheWholeSurfaceAboutItsOnlyHeight) {
  CTornGrid test;
  AddAll(test.m_Grid, {HeightCstr(30, 40, 5)});
  test.m_Grid.SetSettling(true);
  test.Solve();
  for (const double height : test.Heights()) ASSERT_NEAR(height, 5, 1e-5);
}

TEST(Settler, LeavesAWholeSurfaceWithoutConstraintsWhereItIs) {
  CTornGrid off;
  CTornGrid on;
  on.m_Grid.SetSettling(true);
  off.Solve();
  on.Solve();
  EXPECT_EQ(off.Heights(), on.Heights());
}

// Nothing is settled: the larger side stays, the smaller one follows it.
TEST(Settler, TakesTheLargestRegionForPlacedWhereNoneIsSettled) {
  CTornGrid off;
  CTornGrid on;
  for (CTornGrid* test : {&off, &on}) test->Tear({{71, 1}, {71, 99}});
  on.m_Grid.SetSettling(true);
  off.Solve();
  on.Solve();
  EXPECT_EQ(on.At(30, 50), off.At(30, 50));
  EXPECT_EQ(on.At(10, 80), off.At(10, 80));
  const double edge = on.At(68.75, 50);
  EXPECT_NEAR(on.At(90, 50), edge, 0.1 * std::abs(edge - on.At(30, 50)) + 0.01);
}

// A fairness curve from one side of the tear to the other joins them: what is left is a tilt about the curve.
TEST(Settler, TakesWhatAFairnessCurveJoinsForOneProblem) {
  CHalves test;
  test.Fair({{20, 50}, {90, 50}});
  test.m_Grid.SetSettling(true);
  test.Solve();
  const CFreedom freedom = test.Freedom();
  ASSERT_EQ(freedom.Regions().size(), 2U);
  EXPECT_EQ(freedom.Regions()[0].m_aFree.size() + freedom.Regions()[1].m_aFree.size(), 1U);
  EXPECT_NEAR(test.At(80, 50), 2 + 8 + 15, 0.01);
  EXPECT_NEAR(test.At(80, 70) - test.At(80, 30), 0, 0.01);
}

// Neither energy nor rows notice: the solver comes to the end that it comes to without.
TEST(Settler, LetsTheSolverConverge) {
  CHalves off;
  CHalves on;
  on.m_Grid.SetSettling(true);
  off.Solve();
  on.Solve();
  EXPECT_TRUE(off.m_Grid.Solver().HasConverged());
  EXPECT_TRUE(on.m_Grid.Solver().HasConverged());
}

TEST(Settler, AllocatesNothingInATick) {
  CHalves test;
  test.m_Grid.SetSettling(true);
  test.m_Grid.UpdateGrid();
  test.m_Grid.UpdateGrid();
  test.m_Console.Take();
  const std::size_t before = AllocationCount();
  for (int tick = 0; tick < 3; ++tick) test.m_Grid.UpdateGrid();
  EXPECT_EQ(AllocationCount(), before);
}

}  // namespace
