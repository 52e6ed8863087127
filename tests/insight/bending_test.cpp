// Where the energy of the surface sits.

#include <algorithm>
#include <cstddef>
#include <numeric>
#include <vector>

#include <gtest/gtest.h>

#include "report/SurfaceHeights.h"
#include "support/CStaging.h"
#include "support/CurveBuilders.h"
#include "support/UpdateBuilders.h"

namespace {

double Sum(const std::vector<double>& values) { return std::accumulate(values.begin(), values.end(), 0.0); }

double FairnessEnergy(const CGrid& grid) {
  const CEnergyTerms& terms = grid.Solver().CurveTerms();
  const std::vector<double> heights = HeightsByScan(grid);
  double energy = 0;
  for (std::size_t t = 0; t < terms.Count(); ++t) {
    double form = 0;
    for (std::size_t e = 0; e < terms.Coefs(t).size(); ++e) form += terms.Coefs(t)[e] * heights[terms.Unknowns(t)[e]];
    energy += terms.Weight(t) * form * form / 2;
  }
  return energy;
}

// Leaves of several sizes, a tear, a crease and a fairness curve, under random heights.
TEST(Bending, SumsToTheEnergyWithoutThatOfFairnessCurves) {
  CTestGrid test(5, 3);
  test.m_Grid.AddCurve(PointsAt({{0, 21}, {6, 24}}), kTear, false);
  test.m_Grid.AddCurve(PointsAt({{7, 21}, {11, 22}}), kCrease, false);
  test.m_Grid.AddCurve(PointsAt({{-2, 24}, {9, 25}}), kFair, false);
  CurveAt(CStaging::Constraints(test.m_Grid).Curves(), 2).SetAllWeights(3, 3, 3, 3);
  test.m_Grid.PerformPendingWork();
  SetRandomSurface(test.m_Grid, 5);
  const std::vector<double> bending = BendingByScan(test.m_Grid);
  const double fairness = FairnessEnergy(test.m_Grid);
  ASSERT_GT(fairness, 0.0);
  EXPECT_NEAR(Sum(bending) + fairness, EnergyOf(test.m_Grid), 1e-10 * EnergyOf(test.m_Grid));
  EXPECT_GE(std::ranges::min(bending), 0.0);
}

TEST(Bending, IsNoneOnAPlaneAndSitsWhereAHillIs) {
  CTestGrid test(4, 4);
  test.m_Grid.PerformPendingWork();
  SetSurface(test.m_Grid, CRamp{});
  EXPECT_LT(Sum(BendingByScan(test.m_Grid)), 1e-20);
  SetSurface(test.m_Grid, CBump{});
  const std::vector<double> bending = BendingDensity(test.m_Grid);
  const auto most = static_cast<std::size_t>(std::ranges::max_element(bending) - bending.begin());
  const std::uint32_t point = test.m_Grid.Surface().Order().PointAtScan(most);
  // About (4, 23), in steps of 1 and 0.375.
  const std::uint32_t row = point / 17;
  EXPECT_NEAR(test.m_Grid.Surface().Lattice().XOf(point % 17), 4, 3);
  EXPECT_NEAR(test.m_Grid.Surface().Lattice().YOf(row), 23, 3);
}

}  // namespace
