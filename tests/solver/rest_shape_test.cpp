// The energy counted from a shape: forces, energy, and the surfaces that come of it.

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <numeric>
#include <vector>

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include "solver/CEnergyTerms.h"
#include "solver/CRestForces.h"
#include "support/AllocationCount.h"
#include "support/CShapeSolver.h"
#include "support/CStaging.h"
#include "support/ConstraintBuilders.h"
#include "support/UpdateBuilders.h"

namespace {

using Heights = std::vector<double>;

constexpr double kSurfaceTolerance = 1e-7;  // of the height range
constexpr double kNoValue = std::numeric_limits<double>::quiet_NaN();

Heights Scaled(Heights values, double factor) {
  for (double& value : values) value *= factor;
  return values;
}

// Heights at random places, not all in a row, and a slope.
void AddRandomConstraints(CGrid& grid, std::uint32_t seed) {
  const std::vector<double> at = RandomValues(seed, 18);
  const auto place = [](double share) { return 50 + 45 * share; };
  for (std::size_t k = 0; k < 15; k += 3) grid.AddPtCstr(HeightCstr(place(at[k]), place(at[k + 1]), 20 * at[k + 2]));
  grid.AddPtCstr(HeightCstr(4, 3, 1));
  grid.AddPtCstr(HeightCstr(96, 5, -2));
  grid.AddPtCstr(SlopeCstr(50 + 30 * at[15], 50 + 30 * at[16], 0.3, at[17]));
}

// A small tree with constraints, both at random.
struct CRandomShapeGrid : CSolverGrid {
  explicit CRandomShapeGrid(std::uint32_t seed) : CSolverGrid(4, 2, CExtent{}, kAllModes[seed % kAllModes.size()]) {
    RandomiseRecord(CStaging::Subdivision(m_Grid), seed, 20);
    m_Grid.SetDiscMap();
    AddRandomConstraints(m_Grid, seed);
    m_Console.Take();
  }
};

Heights PlaneOf(const CGrid& grid, double a, double b, double c) {
  Heights heights(grid.Surface().Order().Count());
  const CLattice& lattice = grid.Surface().Lattice();
  for (std::size_t i = 0; i < heights.size(); ++i) {
    const std::uint32_t point = grid.Surface().Order().PointAtScan(i);
    const auto side = static_cast<std::uint32_t>(lattice.PointsPerSide());
    const std::uint32_t column = point % side;
    const std::uint32_t row = point / side;
    heights[i] = a * lattice.XOf(column) + b * lattice.YOf(row) + c;
  }
  return heights;
}

Heights Solved(CShapeSolver& solver, const Heights& values, const CRestShape& shape) {
  solver.SetShape(values, shape);
  RC_ASSERT(solver.Converge());
  return solver.Heights();
}

RC_GTEST_PROP(RestShapeProperty, APlaneAddedToItChangesNothing, ()) {
  CRandomShapeGrid test(*rc::gen::inRange<std::uint32_t>(1, 1000));
  CShapeSolver bare(test.m_Grid);
  CShapeSolver tilted(test.m_Grid);
  const Heights values = Scaled(RandomValues(*rc::gen::inRange<std::uint32_t>(1, 1000), bare.PointCount()), 10);
  Heights sum = PlaneOf(test.m_Grid, 0.5, -2, 30);
  for (std::size_t i = 0; i < sum.size(); ++i) sum[i] += values[i];
  const Heights wanted = Solved(bare, values, {1.0, 0.0});
  RC_ASSERT(ErrorOf(Solved(tilted, sum, {1.0, 0.0}), wanted) < kSurfaceTolerance);
}

RC_GTEST_PROP(RestShapeProperty, ALargerOneWithLessStrengthIsTheSame, ()) {
  CRandomShapeGrid test(*rc::gen::inRange<std::uint32_t>(1, 1000));
  CShapeSolver small(test.m_Grid);
  CShapeSolver large(test.m_Grid);
  const Heights values = RandomValues(*rc::gen::inRange<std::uint32_t>(1, 1000), small.PointCount());
  const Heights wanted = Solved(small, values, {8.0, 0.0});
  RC_ASSERT(ErrorOf(Solved(large, Scaled(values, 37.0), {8.0 / 37, 0.0}), wanted) < kSurfaceTolerance);
}

RC_GTEST_PROP(RestShapeProperty, AConvergedSurfaceComesBack, ()) {
  CRandomShapeGrid test(*rc::gen::inRange<std::uint32_t>(1, 1000));
  CShapeSolver first(test.m_Grid);
  CShapeSolver second(test.m_Grid);
  const Heights shape = Scaled(RandomValues(*rc::gen::inRange<std::uint32_t>(1, 1000), first.PointCount()), 10);
  const Heights wanted = Solved(first, shape, {0.7, 0.0});
  RC_ASSERT(ErrorOf(Solved(second, wanted, {1.0, 0.0}), wanted) < kSurfaceTolerance);
}

// Half of the points in one corner have no value.
RC_GTEST_PROP(RestShapeProperty, ConvergesToTheDirectSolution, ()) {
  const auto seed = *rc::gen::inRange<std::uint32_t>(1, 1000);
  CRandomShapeGrid test(seed);
  CShapeSolver solver(test.m_Grid);
  Heights values = RandomValues(seed, solver.PointCount());
  for (std::size_t i = 0; i < values.size() / 4; i += 2) values[i] = kNoValue;
  Heights heights = values;
  for (double& height : heights) height = 0.8 * (5 * height + 3 * height * height);
  RC_PRE(solver.HasIndependentRows());
  const Heights wanted = solver.DirectHeights(heights);
  RC_ASSERT(ErrorOf(Solved(solver, values, {0.8 * 5, 0.8 * 3}), wanted) < kSurfaceTolerance);
}

TEST(RestForcesTest, TermsWithoutAValueCountFromThePlane) {
  CEnergyTerms terms;
  terms.Add(2.0, {{0, 1.0}, {1, -2.0}, {2, 1.0}});
  terms.Add(1.0, {{2, 1.0}, {3, -2.0}, {4, 1.0}});
  CRestForces forces;
  forces.Collect(terms, Heights{1, 2, 5, kNoValue, 0});
  Heights load;
  forces.MakeLoad({0.5, 0.0}, load);
  EXPECT_EQ(load, (Heights{2, -4, 2, 0, 0}));
  EXPECT_DOUBLE_EQ(forces.Energy({0.5, 0.0}), 2.0 * 1.0);
  forces.MakeLoad({0.0, 1.0}, load);
  EXPECT_EQ(load, (Heights{36, -72, 36, 0, 0}));
  EXPECT_DOUBLE_EQ(forces.Energy({1.0, 1.0}), 2.0 * 20 * 20);
  forces.MakeLoad({}, load);
  EXPECT_EQ(load.capacity(), 0U);
}

TEST(RestForcesTest, OfAPlaneAreNothingAndNotRounding) {
  CEnergyTerms terms;
  for (std::uint32_t k = 0; k < 100; ++k) terms.Add(1.0, {{k, 0.3}, {k + 1, -0.6}, {k + 2, 0.3}});
  Heights plane(102);
  for (std::size_t k = 0; k < plane.size(); ++k) plane[k] = 0.1 + static_cast<double>(k) / 3;
  CRestForces forces;
  forces.Collect(terms, plane);
  Heights load;
  forces.MakeLoad({1.0, 0.0}, load);
  EXPECT_EQ(load, Heights(102, 0.0));
}

// A reference alone, over no constraint: the surface has its bends, and the energy is spent.
TEST(RestShapeTest, EnergyIsCountedFromTheShape) {
  CSolverGrid test(4, 4);
  CShapeSolver solver(test.m_Grid);
  const Heights values = RandomValues(3, solver.PointCount());
  solver.SetShape(values, {2.0, 0.0});
  ASSERT_TRUE(solver.Converge());
  EXPECT_NEAR(solver.Solver().RestEnergy(Scaled(values, 2.0)), 0.0, 1e-12);
  const double flat = solver.Solver().RestEnergy(Heights(values.size(), 0.0));
  EXPECT_LT(solver.Solver().RestEnergy(solver.Heights()), 1e-9 * flat);
  solver.Solver().SetRestShape({});
  EXPECT_EQ(solver.Solver().RestEnergy(Heights(values.size(), 0.0)), 0.0);
}

TEST(RestShapeTest, AChangeOfStrengthRestartsFromWhereTheSurfaceIs) {
  CRandomShapeGrid test(5);
  CShapeSolver solver(test.m_Grid);
  const Heights values = RandomValues(3, solver.PointCount());
  solver.SetShape(values, {2.0, 0.0});
  ASSERT_TRUE(solver.Converge());
  const Heights x = solver.Coefficients();
  const Heights multipliers = Copied(solver.Solver().Multipliers());
  solver.Solver().SetRestShape({1.0, 0.0});
  EXPECT_EQ(solver.Solver().Counter(), 0);
  const ConsoleCapture console;
  solver.Solver().Tick(solver.Coefficients(), 0, nullptr);
  EXPECT_EQ(solver.Coefficients(), x);
  EXPECT_EQ(Copied(solver.Solver().Multipliers()), multipliers);
}

TEST(RestShapeTest, TicksAllocateNothing) {
  CSolverGrid test(5, 5);
  AddRandomConstraints(test.m_Grid, 1);
  CShapeSolver solver(test.m_Grid);
  solver.SetShape(RandomValues(3, solver.PointCount()), {2.0, 0.0});
  solver.Coefficients().resize(solver.PointCount());
  solver.Solver().Tick(solver.Coefficients(), 10, nullptr);
  const std::size_t allocations = AllocationCount();
  for (int tick = 0; tick < 3; ++tick) solver.Solver().Tick(solver.Coefficients(), 10, nullptr);
  EXPECT_EQ(AllocationCount(), allocations);
}

}  // namespace
