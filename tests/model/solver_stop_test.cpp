// Where the solver stops itself: as converged or not, after how many iterations, with which line.

#include <algorithm>
#include <cmath>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "solver/CConjugateResidual.h"
#include "support/CStaging.h"
#include "support/CurveGrid.h"
#include "support/DirectSolution.h"

namespace {

const std::string kSmallRho = "|r_rr| is too small ";
const std::string kSmallPi = "|pp_pp| is too small ";

double Dot(const std::vector<double>& a, const std::vector<double>& b) {
  double sum = 0.0;
  for (std::size_t i = 0; i < a.size(); ++i) sum += a[i] * b[i];
  return sum;
}

// Iterations of the method on the system of a grid, with nothing added to it, until |r . A r| or |A p . A p| is below
// 1e-30: from the flat surface, with random multipliers.
int PlainIterations(CGrid& grid) {
  CConstraintSystem system = grid.Solver().System();
  system.Prepare();
  const std::size_t n = system.UnknownCount();
  std::vector<double> start(system.Size());
  const std::vector<double> chance = RandomValues(1, system.ConstraintCount());
  for (std::size_t j = 0; j < chance.size(); ++j) start[n + j] = std::abs(chance[j]) / static_cast<double>(n);
  std::vector<double> r(start.size());
  std::vector<double> s(start.size());
  system.ApplySystem(start, r);
  for (std::size_t i = 0; i < r.size(); ++i) r[i] = (i < n ? 0.0 : system.Constraints().Targets()[i - n]) - r[i];
  system.ApplySystem(r, s);
  std::vector<double> q = s;
  double rho = Dot(r, s);
  int iterations = 1;
  for (; std::abs(rho) >= 1e-30; ++iterations) {
    const double pi = Dot(q, q);
    if (pi < 1e-30) break;
    const double alpha = rho / pi;
    for (std::size_t i = 0; i < r.size(); ++i) r[i] -= alpha * q[i];
    system.ApplySystem(r, s);
    const double next = Dot(r, s);
    for (std::size_t i = 0; i < q.size(); ++i) q[i] = next / rho * q[i] + s[i];
    rho = next;
  }
  return iterations;
}

struct CStopCase {
  const char* m_Name;
  std::vector<CPtCstr> m_aConstraints;
  double m_fLonger;  ///< how much longer than the plain iteration the program may take
};

class SolverStopTest : public testing::TestWithParam<CStopCase> {
 protected:
  CGrid& Grid() { return m_Solver.m_Grid; }
  CSolverGrid m_Solver{6, 6};
};

INSTANTIATE_TEST_SUITE_P(
    Cases, SolverStopTest,
    testing::Values(CStopCase{"None", {}, 1.1}, CStopCase{"OneHeight", {HeightCstr(30, 70, 12)}, 1.1},
                    CStopCase{"TwoHeights", {HeightCstr(30, 70, 12), HeightCstr(60, 20, -3)}, 1.1},
                    CStopCase{"OneNormal", {SlopeCstr(30, 70, 1, -0.5)}, 1.1},
                    CStopCase{"TwoNormals", {SlopeCstr(30, 70, 1, -0.5), SlopeCstr(60, 30, -1, 0.5)}, 2}),
    [](const auto& test) { return std::string(test.param.m_Name); });

// What is gained after the first breakdown takes about as long as the way to it; where there is nothing to be gained,
// it takes no time. Random multipliers make a difference of a few iterations.
TEST_P(SolverStopTest, SystemsThatLeavePlanesFreeStopSoonAfterThePlainIteration) {
  for (const CPtCstr& c : GetParam().m_aConstraints) Grid().AddPtCstr(c);
  Grid().PerformPendingWork();
  const int plain = PlainIterations(Grid());
  m_Solver.m_Console.Take();
  ASSERT_TRUE(m_Solver.Converge(5 * plain / 10 + 10));
  EXPECT_TRUE(Grid().Solver().HasConverged());
  EXPECT_LE(Grid().Solver().Counter(), GetParam().m_fLonger * plain + 20) << plain;
  const std::string lines = m_Solver.m_Console.Take();
  EXPECT_EQ(Occurrences(lines, kSmallRho) + Occurrences(lines, kSmallPi), 1) << lines;
}

TEST(SolverStopLimit, IsTheOneOfTheMethod) { EXPECT_EQ(CConjugateResidual::kBreakdown, 1e-30); }

class CPauseHost : public CActingHost {
 public:
  using CActingHost::CActingHost;
  void PauseSolverGaveUp() override { ++m_iGivenUp; }
  int m_iGivenUp = 0;
};

TEST(SolverGivesUp, AtHeightsWhoseSquaresAreNotFinite) {
  CTestGrid test;
  CPauseHost host(test.m_Grid);
  AddAll(test.m_Grid, SomeConstraints());
  test.m_Grid.AddPtCstr(HeightCstr(8, 22, 1e154));
  ASSERT_TRUE(RunUntilPaused(test.m_Grid, 20000));
  EXPECT_EQ(host.m_iGivenUp, 1);
  EXPECT_EQ(host.m_iPauses, 0);
  EXPECT_FALSE(test.m_Grid.Solver().HasConverged());
  EXPECT_NE(test.m_Console.Take().find("the iteration leaves the finite numbers, |r_rr| = "), std::string::npos);
  EXPECT_EQ(host.m_iResumptions, 0);
}

TEST(SolverGivesUp, AndGoesOnAtTheNextEdit) {
  CTestGrid test;
  CPauseHost host(test.m_Grid);
  AddAll(test.m_Grid, SomeConstraints());
  SetSelection(CStaging::Constraints(test.m_Grid).Points(), "0100");
  test.m_Grid.SetSelectedHeight(1e154);
  ASSERT_TRUE(RunUntilPaused(test.m_Grid, 20000));
  ASSERT_EQ(host.m_iGivenUp, 1);
  test.m_Grid.SetSelectedHeight(2);
  EXPECT_TRUE(test.m_Grid.Run().IsRunning());
  EXPECT_EQ(host.m_iResumptions, 1);
  ASSERT_TRUE(RunUntilPaused(test.m_Grid, 20000));
  EXPECT_TRUE(test.m_Grid.Solver().HasConverged());
  EXPECT_EQ(host.m_iPauses, 1);
}

TEST(SolverGivesUp, AtAFairnessWithoutMeasure) {
  CCurveGrid test;
  AddAll(test.m_Grid, SomeConstraints());
  test.Add({{0, 23}, {8, 23}}, CurveType::kFairness);
  test.Curve().SetAllWeights(1e300, 1e300, 1e300, 1e300);
  test.m_Grid.Run().Post(Operation::kRebuildMaps);
  ASSERT_TRUE(RunUntilPaused(test.m_Grid, 20000));
  EXPECT_FALSE(test.m_Grid.Solver().HasConverged());
}

// Forty-five heights on a small model, which the iteration may reach or not: that it has is not to be claimed where it
// has not.
TEST(SolverGivesUp, RatherThanToClaimHeightsThatItMisses) {
  for (const int level : {3, 4}) {
    CSolverGrid solver(level, level, CExtent{0, 1, 0, 1});
    std::mt19937 random(1);
    std::uniform_real_distribution<double> value(0.0, 1.0);
    for (int k = 0; k < 45; ++k) solver.m_Grid.AddPtCstr(HeightCstr(value(random), value(random), value(random)));
    ASSERT_TRUE(RunUntilPaused(solver.m_Grid, 30000)) << level;
    double largest = 0.0;
    for (const CPtCstr& c : solver.m_Grid.Constraints().Points())
      largest = std::max(largest, std::abs(SurfaceHeight(solver.m_Grid, c.m_fX, c.m_fY) - c.m_fZ));
    EXPECT_TRUE(largest < 1e-5 || !solver.m_Grid.Solver().HasConverged()) << level << ": " << largest;
  }
}

// Forces along the curve whose rounding is as large as all others.
TEST(SolverGivesUp, WithALineWhereTheResidualStays) {
  CCurveGrid test;
  AddAll(test.m_Grid, SomeConstraints());
  test.Add({{0, 23}, {8, 23}}, CurveType::kFairness);
  test.Curve().SetAllWeights(1e18, 1e18, 1e18, 1e18);
  test.m_Grid.Run().Post(Operation::kRebuildMaps);
  test.m_Console.Take();
  ASSERT_TRUE(RunUntilPaused(test.m_Grid, 20000));
  EXPECT_FALSE(test.m_Grid.Solver().HasConverged());
  const std::string lines = test.m_Console.Take();
  EXPECT_NE(lines.find("|r_rr| stays at "), std::string::npos) << lines;
}

TEST(SolverConverges, WhenAllHeightsAreSetToZero) {
  CTestGrid test;
  AddAll(test.m_Grid, {HeightCstr(0.5, 21.25, 1), HeightCstr(10, 22, -2), HeightCstr(3, 25, 3)});
  ASSERT_TRUE(RunUntilPaused(test.m_Grid));
  for (const char* selected : {"100", "010", "001"}) {
    SetSelection(CStaging::Constraints(test.m_Grid).Points(), selected);
    test.m_Grid.SetSelectedHeight(0);
  }
  ASSERT_TRUE(RunUntilPaused(test.m_Grid));
  EXPECT_TRUE(test.m_Grid.Solver().HasConverged());
  EXPECT_NEAR(test.m_Grid.Surface().MaxHeight(), 0, 1e-9);
}

}  // namespace
