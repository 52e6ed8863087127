#include <algorithm>
#include <array>
#include <cstdint>
#include <string>
#include <tuple>
#include <vector>

#include <gtest/gtest.h>

#include "support/CShapeSolver.h"
#include "support/CStaging.h"
#include "support/ConstraintBuilders.h"
#include "support/DirectSolution.h"

namespace {

// Of the height range.
constexpr double kTolerance = 1e-7;

std::string NameOf(WaveletMode mode) {
  return mode == WaveletMode::None ? "None" : mode == WaveletMode::Simple ? "Simple" : "New";
}

// A place given as shares of the extent.
CPtCstr HeightAt(const CExtent& e, double u, double v, double z) {
  return HeightCstr(e.x0 + u * (e.x1 - e.x0), e.y0 + v * (e.y1 - e.y0), z);
}
CPtCstr SlopeAt(const CExtent& e, double u, double v, double p, double q) {
  return SlopeCstr(e.x0 + u * (e.x1 - e.x0), e.y0 + v * (e.y1 - e.y0), p, q);
}

// Slopes that go with the heights whatever the size of the model.
std::vector<CPtCstr> Scattered(const CExtent& e) {
  const double sx = 20 / (e.x1 - e.x0);
  const double sy = 20 / (e.y1 - e.y0);
  return {HeightAt(e, 0.113, 0.171, 10),     HeightAt(e, 0.841, 0.223, -25),       HeightAt(e, 0.317, 0.809, 40),
          HeightAt(e, 0.689, 0.733, 5),      HeightAt(e, 0.459, 0.511, 15),        HeightAt(e, 0.913, 0.937, 0),
          SlopeAt(e, 0.234, 0.456, sx, -sy), SlopeAt(e, 0.771, 0.543, -sx / 2, sy)};
}

std::vector<CPtCstr> OnLatticePoints(const CExtent& e) {
  return {HeightAt(e, 0.125, 0.25, 30), HeightAt(e, 0.75, 0.125, -10), HeightAt(e, 0.5, 0.875, 20),
          HeightAt(e, 0.0, 1.0, 5),     HeightAt(e, 1.0, 0.5, 0),      SlopeAt(e, 0.5, 0.5, 0.1, -0.2)};
}

// Halfway along the sides of the cells of level 4, at their centres and at quarters.
std::vector<CPtCstr> OnCellBorders(const CExtent& e) {
  constexpr double kCell = 1.0 / 16;
  return {HeightAt(e, 2.5 * kCell, 3 * kCell, 30),  HeightAt(e, 12 * kCell, 2.25 * kCell, -10),
          HeightAt(e, 5.5 * kCell, 13 * kCell, 20), HeightAt(e, 11.5 * kCell, 11.5 * kCell, 8),
          SlopeAt(e, 8 * kCell, 6.5 * kCell, 1, 2), SlopeAt(e, 3.5 * kCell, 8 * kCell, -1, 0.5)};
}

std::vector<CPtCstr> NextToTheBorder(const CExtent& e) {
  return {HeightAt(e, 1e-4, 0.3, 30),  HeightAt(e, 0.9999, 0.8, -10), HeightAt(e, 0.4, 1e-6, 20),
          HeightAt(e, 0.6, 1.0, 8),    HeightAt(e, 0.0, 0.0, 3),      SlopeAt(e, 1.0 / 32, 0.6, 0.3, -0.1),
          SlopeAt(e, 0.999, 0.5, 5, 5)};
}

std::vector<CPtCstr> ThreeHeights(const CExtent& e) {
  return {HeightAt(e, 0.2, 0.3, 30), HeightAt(e, 0.9, 0.5, -10), HeightAt(e, 0.4, 0.7, 20)};
}

struct CCase {
  const char* m_Name;
  int m_iMaxLevel;
  int m_iBaseLevel;
  CExtent m_Extent;
  std::uint32_t m_uRefinement;  ///< seed of the random subdivision; 0 for none
  std::vector<CPtCstr> (*m_Constraints)(const CExtent&);
};

const auto kCases = std::to_array<CCase>({
    {"OneCell", 4, 0, {0, 100, 0, 100}, 0, ThreeHeights},
    {"UniformLevel3", 3, 3, {0, 100, 0, 100}, 0, Scattered},
    {"UniformLevel4", 4, 4, {0, 100, 0, 100}, 0, Scattered},
    {"UniformLevel5", 5, 5, {0, 100, 0, 100}, 0, Scattered},
    {"UniformBelowTheFinest", 6, 4, {0, 100, 0, 100}, 0, Scattered},
    {"ThreeHeights", 4, 4, {0, 100, 0, 100}, 0, ThreeHeights},
    {"Oblong", 4, 4, kOblong, 0, Scattered},
    {"Shifted", 4, 4, {-260, -180, 400, 460}, 0, Scattered},
    {"Narrow", 4, 4, {0, 100, -5, 20}, 0, Scattered},
    {"RandomTree", 5, 3, {0, 100, 0, 100}, 11, Scattered},
    {"RandomTreeOblong", 5, 3, {-30, 70, 10, 70}, 12, Scattered},
    {"RandomTreeDeep", 6, 2, {0, 100, 0, 100}, 13, Scattered},
    {"RandomTreeOnLatticePoints", 5, 3, {0, 100, 0, 100}, 14, OnLatticePoints},
    {"OnLatticePoints", 4, 4, {0, 100, 0, 100}, 0, OnLatticePoints},
    {"OnCellBorders", 4, 4, {0, 100, 0, 100}, 0, OnCellBorders},
    {"NextToTheBorder", 4, 4, {0, 100, 0, 100}, 0, NextToTheBorder},
});

class DirectSolutionTest : public testing::TestWithParam<std::tuple<CCase, WaveletMode>> {
 protected:
  DirectSolutionTest()
      : m_Solver(Case().m_iMaxLevel, Case().m_iBaseLevel, Case().m_Extent, std::get<WaveletMode>(GetParam())) {
    if (Case().m_uRefinement == 0) return;
    RandomiseRecord(CStaging::Subdivision(m_Solver.m_Grid), Case().m_uRefinement, 40);
    m_Solver.m_Grid.SetDiscMap();
  }
  static const CCase& Case() { return std::get<CCase>(GetParam()); }

  CSolverGrid m_Solver;
};

INSTANTIATE_TEST_SUITE_P(Cases, DirectSolutionTest,
                         testing::Combine(testing::ValuesIn(kCases), testing::ValuesIn(kAllModes)),
                         [](const auto& test) {
                           return std::get<CCase>(test.param).m_Name + NameOf(std::get<WaveletMode>(test.param));
                         });

TEST_P(DirectSolutionTest, ConvergedSurfaceIsTheExactOne) {
  for (const CPtCstr& c : Case().m_Constraints(Case().m_Extent)) m_Solver.m_Grid.AddPtCstr(c);
  ASSERT_TRUE(m_Solver.Converge());
  EXPECT_LT(m_Solver.ErrorAgainst(m_Solver.DirectHeights()), kTolerance);
}

TEST_P(DirectSolutionTest, ConvergedSurfaceOverAShapeIsTheExactOne) {
  for (const CPtCstr& c : Case().m_Constraints(Case().m_Extent)) m_Solver.m_Grid.AddPtCstr(c);
  CShapeSolver solver(m_Solver.m_Grid);
  for (const std::uint32_t seed : {1U, 2U}) {
    std::vector<double> shape = RandomValues(seed, solver.PointCount());
    for (double& height : shape) height *= 20;
    solver.SetShape(shape, {1.0, 0.0});
    solver.Solver().ModelChanged();
    ASSERT_TRUE(solver.Converge());
    EXPECT_LT(ErrorOf(solver.Heights(), solver.DirectHeights(shape)), kTolerance) << seed;
  }
}

class SolvedSurfaceTest : public testing::TestWithParam<WaveletMode> {
 protected:
  CGrid& Grid() { return m_Solver.m_Grid; }
  void Add(const std::vector<CPtCstr>& constraints) {
    for (const CPtCstr& c : constraints) Grid().AddPtCstr(c);
  }
  // Marks a cell of the finest level, as curves do.
  void Mark(int i, int j, std::uint32_t flags) { MakeLeaf(Grid().Surface().Tree(), 0, i, j, flags); }
  double HeightAtPoint(int column, int row) {
    return Grid().Surface().Lattice().Heights()[Grid().Surface().Lattice().Index(column, row)];
  }

  CSolverGrid m_Solver{4, 4, CExtent{0, 100, 0, 60}, GetParam()};
  CExtent m_Extent = m_Solver.m_Grid.Surface().Lattice().Extent();
};

INSTANTIATE_TEST_SUITE_P(Modes, SolvedSurfaceTest, testing::ValuesIn(kAllModes),
                         [](const auto& test) { return NameOf(test.param); });

TEST_P(SolvedSurfaceTest, DuplicatedConstraintsCountOnce) {
  Add(Scattered(m_Extent));
  const std::vector<double> wanted = m_Solver.DirectHeights();
  Add(Scattered(m_Extent));
  Grid().AddPtCstr(Scattered(m_Extent).front());
  ASSERT_TRUE(m_Solver.Converge());
  EXPECT_LT(m_Solver.ErrorAgainst(wanted), kTolerance);
}

// Five heights of one plane within one triangle of the surface.
TEST_P(SolvedSurfaceTest, RedundantConstraintsAreNoProblem) {
  const CRamp plane{0.5, -0.25, 3};
  for (const auto& [x, y] : {std::array{50.5, 31.0}, {51.0, 30.5}, {51.5, 31.0}, {52.0, 30.75}, {51.2, 30.8}})
    Add({HeightCstr(x, y, plane(x, y))});
  ASSERT_TRUE(m_Solver.Converge());
  const CLattice& lattice = Grid().Surface().Lattice();
  std::vector<double> wanted(lattice.PointCount());
  FillHeights(lattice, wanted, plane);
  EXPECT_LT(m_Solver.ErrorAgainst(InUse(lattice, wanted)), 1e-6);
}

TEST_P(SolvedSurfaceTest, PlaneIsReproduced) {
  const CRamp plane{0.5, -0.25, 3};
  Add({HeightCstr(10, 10, plane(10, 10)), HeightCstr(90, 20, plane(90, 20)), HeightCstr(40, 50, plane(40, 50)),
       SlopeCstr(60, 30, plane.m_fA, plane.m_fB)});
  ASSERT_TRUE(m_Solver.Converge());
  const CLattice& lattice = Grid().Surface().Lattice();
  std::vector<double> wanted(lattice.PointCount());
  FillHeights(lattice, wanted, plane);
  EXPECT_LT(m_Solver.ErrorAgainst(InUse(lattice, wanted)), kTolerance);
}

TEST_P(SolvedSurfaceTest, GeneratedConstraintsShapeTheSurfaceToo) {
  Add(ThreeHeights(m_Extent));
  CStaging::Constraints(Grid()).Generated().Add(HeightCstr(50, 20, 35));
  ASSERT_TRUE(m_Solver.Converge());
  EXPECT_LT(m_Solver.ErrorAgainst(m_Solver.DirectHeights()), kTolerance);
  EXPECT_NEAR(Grid().GetHeightAt(8, 16.0 / 3), 35, 1e-5);
}

TEST_P(SolvedSurfaceTest, DisabledConstraintHasNoEffect) {
  Add(ThreeHeights(m_Extent));
  const std::vector<double> wanted = m_Solver.DirectHeights();
  for (int i = 7; i <= 8; ++i) Mark(i, 8, CellFlag::kTriangles);
  Grid().AddPtCstr(HeightCstr(50, 31, 1000));
  for (int i = 7; i <= 8; ++i) Grid().Surface().Tree().CellAt(0, i, 8).ClearFlags(CellFlag::kTriangles);
  ASSERT_TRUE(m_Solver.Converge());
  EXPECT_LT(m_Solver.ErrorAgainst(wanted), kTolerance);
}

// Two planes that meet along the crease: no energy, so that they are reproduced.
TEST_P(SolvedSurfaceTest, SurfaceCreasesAlongMarkedPoints) {
  for (int row = 0; row <= 16; ++row)
    Grid().Surface().Lattice().Set(Grid().Surface().Lattice().Index(6, row), PointFlag::kCrease);
  const double x = 37.5;
  const auto roof = [x](double at, double y) { return 0.1 * y + (at < x ? 0.5 * (at - x) : -(at - x)); };
  for (const auto& [cx, cy] : {std::array{5.0, 7.0}, {20.0, 50.0}, {30.0, 20.0}, {50.0, 10.0}, {80.0, 50.0}})
    Add({HeightCstr(cx, cy, roof(cx, cy))});
  ASSERT_TRUE(m_Solver.Converge());
  std::vector<double> wanted(Grid().Surface().Lattice().PointCount());
  FillHeights(Grid().Surface().Lattice(), wanted, roof);
  EXPECT_LT(m_Solver.ErrorAgainst(InUse(Grid().Surface().Lattice(), wanted)), kTolerance);
}

// Along a diagonal the cells that it crosses must give up their mixed differences.
TEST_P(SolvedSurfaceTest, SurfaceCreasesAlongADiagonal) {
  for (int k = 0; k <= 16; ++k)
    Grid().Surface().Lattice().Set(Grid().Surface().Lattice().Index(k, k), PointFlag::kCrease);
  for (int k = 0; k < 16; ++k) Mark(k, k, CellFlag::kRisingCrease);
  const auto roof = [](double at, double y) { return 0.3 * at + std::max(0.0, at / 100 - y / 60) * 40; };
  for (const auto& [cx, cy] : {std::array{6.25, 37.5}, {31.25, 45.0}, {12.5, 56.25}, {50.0, 7.5}, {93.75, 30.0}})
    Add({HeightCstr(cx, cy, roof(cx, cy))});
  ASSERT_TRUE(m_Solver.Converge());
  std::vector<double> wanted(Grid().Surface().Lattice().PointCount());
  FillHeights(Grid().Surface().Lattice(), wanted, roof);
  EXPECT_LT(m_Solver.ErrorAgainst(InUse(Grid().Surface().Lattice(), wanted)), kTolerance);
}

// A column of cells inside a discontinuity parts the model; each part has three heights of its own.
TEST_P(SolvedSurfaceTest, SurfaceTearsAlongMarkedCells) {
  for (int j = 0; j < 16; ++j) Mark(7, j, CellFlag::kTriangles);
  Grid().Surface().Tree().RefreshEdgeMarks();
  Add({HeightCstr(10, 10, 0), HeightCstr(30, 20, 1), HeightCstr(12, 50, 2), HeightCstr(35, 45, -3)});
  Add({HeightCstr(60, 10, 50), HeightCstr(90, 20, 55), HeightCstr(70, 50, 49), HeightCstr(88, 44, 60)});
  ASSERT_TRUE(m_Solver.Converge());
  EXPECT_LT(m_Solver.ErrorAgainst(m_Solver.DirectHeights()), kTolerance);
  EXPECT_GT(HeightAtPoint(8, 8) - HeightAtPoint(7, 8), 30);
}

TEST_P(SolvedSurfaceTest, ChangeOfModeKeepsTheSurfaceExact) {
  Add(Scattered(m_Extent));
  ASSERT_TRUE(m_Solver.Converge());
  const std::vector<double> wanted = m_Solver.DirectHeights();
  for (const WaveletMode mode : kAllModes) {
    Grid().Builder().SetWaveletMode(mode);
    Grid().Run().SetRunning(true);
    ASSERT_TRUE(m_Solver.Converge());
    EXPECT_LT(m_Solver.ErrorAgainst(wanted), kTolerance) << NameOf(mode);
  }
}

TEST_P(SolvedSurfaceTest, SubdivisionAfterConvergenceComesToTheSurfaceOfTheFinerGrid) {
  CSolverGrid solver(5, 3, m_Extent, GetParam());
  for (const CPtCstr& c : Scattered(m_Extent)) solver.m_Grid.AddPtCstr(c);
  ASSERT_TRUE(solver.Converge());
  SavedNode(CStaging::Subdivision(solver.m_Grid), {1, 2}).Child(0).subdiv();
  SavedNode(CStaging::Subdivision(solver.m_Grid), {3, 0}).Child(1).subdiv();
  solver.m_Grid.Run().Post(Operation::kRebuildMaps);
  ASSERT_TRUE(solver.Converge());
  EXPECT_LT(solver.ErrorAgainst(solver.DirectHeights()), kTolerance);
}

// The height range of a model says nothing about its extent: from a few units to the largest that the program offers.
TEST_P(SolvedSurfaceTest, SurfaceIsExactWhateverTheUnitsOfTheModel) {
  for (const double size : {1.0, 2000.0}) {
    const CExtent extent{-size / 4, size * 3 / 4, 0, size};
    CSolverGrid solver(4, 4, extent, GetParam());
    for (const CPtCstr& c : Scattered(extent)) solver.m_Grid.AddPtCstr(c);
    ASSERT_TRUE(solver.Converge());
    EXPECT_LT(solver.ErrorAgainst(solver.DirectHeights()), kTolerance) << size;
  }
}

TEST_P(SolvedSurfaceTest, SurfaceIsExactWhateverTheUnitsOfTheHeights) {
  for (const double scale : {1e-3, 1e3}) {
    CSolverGrid solver(4, 4, m_Extent, GetParam());
    for (CPtCstr c : Scattered(m_Extent)) {
      c.m_fZ *= scale;
      c.m_fP *= scale;
      c.m_fQ *= scale;
      solver.m_Grid.AddPtCstr(c);
    }
    ASSERT_TRUE(solver.Converge());
    EXPECT_LT(solver.ErrorAgainst(solver.DirectHeights()), kTolerance) << scale;
  }
}

}  // namespace
