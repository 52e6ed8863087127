// What one unit more of a constraint does to every height, against the difference of two surfaces.

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <optional>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "insight/CInfluence.h"
#include "report/SurfaceHeights.h"
#include "report/TargetChanges.h"
#include "support/CStaging.h"
#include "support/CurveBuilders.h"
#include "support/DirectSolution.h"
#include "support/UpdateBuilders.h"

namespace {

constexpr double kTolerance = 1e-6;

// 100 by 100 units in 32 by 32 cells, with a crease that generates slopes on its left.
struct CInfluenceGrid {
  CInfluenceGrid() : m_Scope(5, 5) {
    m_Grid.Initialize(5, false, 0, 0, 100, 100);
    m_Grid.AddCurve(PointsAt({{15, 70}, {85, 74}}), kCrease, false);
    Curve().SetOption(CurveOption::kLeftAutoBump, true);
    Curve().SetDistance(CurveSide::Left, 20);
    Curve().SetOrientation(CurveSide::Left, 20);
    AddAll(m_Grid, {HeightCstr(10, 10, 3), HeightCstr(80, 22, 5), HeightCstr(30, 85, -4), SlopeCstr(55, 40, 0.2, 0.1)});
  }
  CCntrCtrl& Curve() { return CurveAt(CStaging::Constraints(m_Grid).Curves(), 0); }
  CPtCstr& Point(int place) { return RecordAt(CStaging::Constraints(m_Grid).Points(), place); }
  std::vector<double> Solved(Operation posted = Operation::kRestart) {
    m_Grid.Run().Post(posted);
    m_Grid.Run().SetRunning(true);
    EXPECT_TRUE(RunUntilPaused(m_Grid, 3000));
    EXPECT_TRUE(m_Grid.Solver().HasConverged());
    return HeightsByScan(m_Grid);
  }
  std::vector<double> Influence(const std::vector<double>& change) const {
    CInfluence influence(m_Grid.Solver(), m_Grid.Surface().Basis(), change);
    for (int slice = 0; slice < 3000 && !influence.Continue(10); ++slice) {
    }
    EXPECT_TRUE(influence.IsDone());
    return influence.Heights();
  }

  CResolutionScope m_Scope;
  ConsoleCapture m_Console;
  CGrid m_Grid;
};

void ExpectDifference(const std::vector<double>& before, const std::vector<double>& after,
                      const std::vector<double>& influence) {
  ASSERT_EQ(before.size(), influence.size());
  double largest = 0;
  for (std::size_t k = 0; k < before.size(); ++k) {
    ASSERT_NEAR(influence[k], after[k] - before[k], kTolerance) << k;
    largest = std::max(largest, std::abs(influence[k]));
  }
  EXPECT_GT(largest, 0.01);
}

TEST(Influence, OfAHeightIsTheDifferenceOfTwoSurfaces) {
  CInfluenceGrid test;
  const std::vector<double> before = test.Solved();
  const std::vector<double> influence =
      test.Influence(ChangeOfTargets(test.m_Grid, test.Point(1), ConstraintPart::Height));
  test.Point(1).m_fZ += 1;
  ExpectDifference(before, test.Solved(), influence);
}

TEST(Influence, OfASlopeIsTheDifferenceOfTwoSurfaces) {
  CInfluenceGrid test;
  const std::vector<double> before = test.Solved();
  const std::vector<double> ofP = test.Influence(ChangeOfTargets(test.m_Grid, test.Point(3), ConstraintPart::SlopeX));
  const std::vector<double> ofQ = test.Influence(ChangeOfTargets(test.m_Grid, test.Point(3), ConstraintPart::SlopeY));
  test.Point(3).m_fP += 1;
  const std::vector<double> between = test.Solved();
  ExpectDifference(before, between, ofP);
  test.Point(3).m_fQ += 1;
  ExpectDifference(between, test.Solved(), ofQ);
}

TEST(Influence, OfACurveIsThatOfADegreeMore) {
  CInfluenceGrid test;
  const std::vector<double> before = test.Solved();
  const std::vector<double> influence = test.Influence(ChangeOfTargets(test.m_Grid, test.Curve().Id()));
  test.Curve().SetOrientation(CurveSide::Left, 21);
  ExpectDifference(before, test.Solved(Operation::kRebuildMaps), influence);
}

TEST(Influence, OfACurveAtItsLimitIsThatOfTheLastDegree) {
  CInfluenceGrid test;
  test.Curve().SetOrientation(CurveSide::Left, 80);
  const std::vector<double> after = test.Solved(Operation::kRebuildMaps);
  const std::vector<double> influence = test.Influence(ChangeOfTargets(test.m_Grid, test.Curve().Id()));
  test.Curve().SetOrientation(CurveSide::Left, 79);
  ExpectDifference(test.Solved(Operation::kRebuildMaps), after, influence);
}

TEST(Influence, IsNoneOfWhatHasNoRow) {
  CInfluenceGrid test;
  test.m_Grid.AddPtCstr(HeightCstr(150, 20, 1));
  test.Solved();
  const std::vector<double> change = ChangeOfTargets(test.m_Grid, test.Point(4), ConstraintPart::Height);
  EXPECT_EQ(std::ranges::count(change, 0.0), static_cast<long>(change.size()));
  EXPECT_EQ(std::ranges::max(test.Influence(change)), 0.0);
  test.Curve().SetOption(CurveOption::kLeftAutoBump, false);
  test.Solved(Operation::kRebuildMaps);
  const std::vector<double> ofCurve = ChangeOfTargets(test.m_Grid, test.Curve().Id());
  EXPECT_EQ(std::ranges::count(ofCurve, 0.0), static_cast<long>(ofCurve.size()));
}

// A tear parts the model, whose right half nothing holds: while regions are settled it follows the left one.
TEST(Influence, TakesRegionsThatAreSettledAlong) {
  CInfluenceGrid test;
  test.m_Grid.AddCurve(PointsAt({{51, 1}, {51, 99}}), kTear, false);
  RecordAt(CStaging::Constraints(test.m_Grid).Points(), 1).m_fX = 40;
  RecordAt(CStaging::Constraints(test.m_Grid).Points(), 3).m_fX = 45;
  test.m_Grid.SetSettling(true);
  const std::vector<double> before = test.Solved(Operation::kRebuildMaps);
  std::optional<CSettler> settler = test.m_Grid.SettlerOfChanges();
  ASSERT_TRUE(settler.has_value());
  const std::vector<double> change = ChangeOfTargets(test.m_Grid, test.Point(1), ConstraintPart::Height);
  CInfluence influence(test.m_Grid.Solver(), test.m_Grid.Surface().Basis(), change, std::move(settler));
  while (!influence.Continue(10)) {
  }
  EXPECT_TRUE(influence.IsExact());
  test.Point(1).m_fZ += 1;
  const std::vector<double> after = test.Solved();
  ExpectDifference(before, after, influence.Heights());
  // Without settling the right half would stay.
  const std::vector<double> alone = test.Influence(change);
  EXPECT_GT(LargestDifference(alone, influence.Heights()), 0.01);
  test.m_Grid.SetSettling(false);
  EXPECT_FALSE(test.m_Grid.SettlerOfChanges().has_value());
}

// The tilt of the right half is settled, and its offset what a reference depth makes it.
TEST(Influence, TakesRegionsThatFollowAReferenceAlong) {
  CInfluenceGrid test;
  test.m_Grid.AddCurve(PointsAt({{51, 1}, {51, 99}}), kTear, false);
  test.Curve().SetOption(CurveOption::kLeftAutoBump, false);
  test.Point(1).m_fX = 40;
  test.Point(3).m_fX = 70;
  FollowRandomMap(test.m_Grid, 5, 0.5);
  test.m_Grid.SetSettling(true);
  const std::vector<double> before = test.Solved(Operation::kRebuildMaps);
  const std::vector<double> change = ChangeOfTargets(test.m_Grid, test.Point(3), ConstraintPart::SlopeX);
  std::optional<CSettler> settler = test.m_Grid.SettlerOfChanges();
  ASSERT_TRUE(settler.has_value());
  CInfluence influence(test.m_Grid.Solver(), test.m_Grid.Surface().Basis(), change, std::move(settler));
  while (!influence.Continue(10)) {
  }
  EXPECT_TRUE(influence.IsExact());
  test.Point(3).m_fP += 1;
  ExpectDifference(before, test.Solved(), influence.Heights());
  // It turns about its middle, where the surface comes to lie on the average of the reference.
  const auto [least, most] = std::ranges::minmax(influence.Heights());
  EXPECT_GT(most, 20);
  EXPECT_LT(least, -20);
}

TEST(Influence, IsNoneOfASettlerWhereNothingFloats) {
  CInfluenceGrid test;
  test.m_Grid.SetSettling(true);
  test.Solved();
  EXPECT_FALSE(test.m_Grid.SettlerOfChanges().has_value());
}

// Weights so large that all else is rounding.
TEST(Influence, IsNotExactWhereTheIterationGetsNoNearer) {
  CInfluenceGrid test;
  test.m_Grid.AddCurve(PointsAt({{10, 30}, {90, 30}}), kFair, false);
  CurveAt(CStaging::Constraints(test.m_Grid).Curves(), 1).SetAllWeights(1e18, 1e18, 1e18, 1e18);
  test.m_Grid.Run().Post(Operation::kRebuildMaps);
  test.m_Grid.Run().SetRunning(true);
  ASSERT_TRUE(RunUntilPaused(test.m_Grid, 20000));
  ASSERT_FALSE(test.m_Grid.Solver().HasConverged());
  const std::vector<double> change = ChangeOfTargets(test.m_Grid, test.Point(1), ConstraintPart::Height);
  CInfluence influence(test.m_Grid.Solver(), test.m_Grid.Surface().Basis(), change);
  while (!influence.Continue(10)) {
  }
  EXPECT_FALSE(influence.IsExact());
}

// The grid is rebuilt between two slices.
TEST(Influence, IsThatOfTheModelAsItWas) {
  CInfluenceGrid test;
  test.Solved();
  const std::vector<double> change = ChangeOfTargets(test.m_Grid, test.Point(0), ConstraintPart::Height);
  const std::vector<double> undisturbed = test.Influence(change);
  CInfluence influence(test.m_Grid.Solver(), test.m_Grid.Surface().Basis(), change);
  influence.Continue(10);
  test.m_Grid.Initialize(3, false, 0, 0, 10, 10);
  test.m_Grid.UpdateGrid();
  while (!influence.Continue(10)) {
  }
  EXPECT_LT(LargestDifference(influence.Heights(), undisturbed), 1e-12);
}

}  // namespace
