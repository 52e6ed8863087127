// The iteration in all units and with many constraints: the same surface, in about as many iterations.

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <random>
#include <string>
#include <vector>

#include <Eigen/Cholesky>
#include <Eigen/QR>
#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include "solver/CScaledSystem.h"
#include "support/CStaging.h"
#include "support/ConstraintBuilders.h"
#include "support/DirectSolution.h"

namespace {

constexpr double kSmallShare = 1e-7;

// Iterations to the pause that no model of at most 33 x 33 points needs; without scale they need a multiple of it.
int IterationBound(WaveletMode mode) { return mode == WaveletMode::None ? 4000 : 800; }

// Heights and slopes far enough apart to be independent, over an extent of any size.
class CModelInUnits : public CSolverGrid {
 public:
  CModelInUnits(int baseLevel, double size, WaveletMode mode, std::uint32_t seed)
      : CSolverGrid(5, baseLevel, CExtent{-0.25 * size, 0.75 * size, 0.5 * size, 1.5 * size}, mode),
        m_fSize(size),
        m_Random(seed) {}

  void Refine() {
    for (int split = 0; split < 20; ++split) {
      CSaveQuadT* node = &CStaging::Subdivision(m_Grid).Root();
      while (!node->IsLeaf()) node = &node->Child(static_cast<int>(m_Random() % 4));
      if (node->HasChildren()) node->subdiv();
    }
    m_Grid.SetDiscMap();
  }
  // One in each of the first of sixteen cells, the slopes in every sixth.
  void AddConstraints(int count = 16) {
    for (int place = 0; place < count; ++place) {
      const int row = place / 4;
      const double x = (place % 4 + Uniform(0.25, 0.75)) / 4;
      const double y = (row + Uniform(0.25, 0.75)) / 4;
      const CExtent& e = m_Grid.Surface().Lattice().Extent();
      if (place % 6 == 5) {
        m_Grid.AddPtCstr(SlopeCstr(e.x0 + x * m_fSize, e.y0 + y * m_fSize, Uniform(-1, 1), Uniform(-1, 1)));
      } else {
        m_Grid.AddPtCstr(HeightCstr(e.x0 + x * m_fSize, e.y0 + y * m_fSize, m_fSize * Uniform(-0.3, 0.3)));
      }
    }
  }
  // Across the model, as heavy beside the rest of the surface in all units.
  void AddFairness(double weight) {
    const CExtent& e = m_Grid.Surface().Lattice().Extent();
    std::vector<CPtCstr> nodes;
    for (const double share : {0.1, 0.45, 0.8})
      nodes.push_back(HeightCstr(e.x0 + share * m_fSize, e.y0 + Uniform(0.1, 0.9) * m_fSize, 0));
    m_Grid.AddCurve(nodes, CurveType::kFairness, false);
    weight /= m_fSize;
    CStaging::Constraints(m_Grid).Curves().begin()->SetAllWeights(weight, weight, weight, weight);
    m_Grid.SetDiscMap();
  }
  void StartAtRandom() {
    m_Grid.PerformPendingWork();
    std::vector<double> start = RandomValues(static_cast<std::uint32_t>(m_Random()), m_Grid.Surface().Order().Count());
    for (double& z : start) z *= m_fSize;
    m_Grid.Builder().SetHeights(start);
    m_Grid.Run().SetRunning(true);
  }
  // A column of finest cells inside a discontinuity, where no constraint is.
  void Tear() {
    for (int j = 0; j < 32; ++j) MakeLeaf(m_Grid.Surface().Tree(), 0, 16, j, CellFlag::kTriangles);
    m_Grid.Surface().Tree().RefreshEdgeMarks();
  }

 private:
  double Uniform(double low, double high) { return std::uniform_real_distribution(low, high)(m_Random); }

  double m_fSize;
  std::mt19937 m_Random;
};

RC_GTEST_PROP(SolverScalingProperty, SurfaceIsExactInAllUnitsWithinABound, ()) {
  const WaveletMode mode = *rc::gen::elementOf(std::vector(kAllModes.begin(), kAllModes.end()));
  const double size = std::pow(10.0, *rc::gen::inRange(-30, 51) / 10.0);
  CModelInUnits model(*rc::gen::inRange(3, 6), size, mode, *rc::gen::arbitrary<std::uint32_t>());
  if (*rc::gen::arbitrary<bool>()) model.Refine();
  if (*rc::gen::arbitrary<bool>()) model.Tear();
  model.AddConstraints();
  if (*rc::gen::arbitrary<bool>()) FollowRandomMap(model.m_Grid, *rc::gen::arbitrary<std::uint32_t>());
  RC_ASSERT(model.Converge());
  RC_ASSERT(model.m_Grid.Solver().HasConverged());
  RC_ASSERT(model.ErrorAgainst(model.DirectHeights()) < kSmallShare);
  RC_ASSERT(model.m_Grid.Solver().Counter() < IterationBound(mode));
}

// What a solved surface lacks of the one that a factorisation of the system gives, but for what the constraints leave
// free, as a share of the largest height of either.
double MissedButForWhatIsFree(const CGrid& grid) {
  const std::size_t points = grid.Surface().Order().Count();
  const Eigen::MatrixXd smoothness = Dense(grid.Solver().System().Smoothness(), points);
  const double unitOfH = smoothness.cwiseAbs().maxCoeff();
  const Eigen::MatrixXd h = smoothness / unitOfH;
  const CConstraintRows& constraints = grid.Solver().System().Constraints();
  const Eigen::Index n = h.rows();
  const auto m = static_cast<Eigen::Index>(constraints.Count());
  Eigen::MatrixXd c = Dense(constraints.Rows(), points);
  Eigen::VectorXd targets = Eigen::Map<const Eigen::VectorXd>(constraints.Targets().data(), m);
  for (Eigen::Index j = 0; j < m; ++j) {
    const double unit = c.row(j).cwiseAbs().maxCoeff();
    c.row(j) /= unit;
    targets[j] /= unit;
  }
  Eigen::MatrixXd bordered = Eigen::MatrixXd::Zero(n + m, n + m);
  bordered << h, c.transpose(), c, Eigen::MatrixXd::Zero(m, m);
  Eigen::VectorXd right = Eigen::VectorXd::Zero(n + m);
  right.tail(m) = targets;
  const std::vector<double>& load = grid.Solver().System().Load();
  if (!load.empty()) right.head(n) = Eigen::Map<const Eigen::VectorXd>(load.data(), n) / unitOfH;
  Eigen::CompleteOrthogonalDecomposition<Eigen::MatrixXd> factors;
  factors.setThreshold(1e-11);
  const Eigen::VectorXd exact = factors.compute(bordered).solve(right).head(n);
  const std::vector<double> byScan = ByScan(grid.Surface().Order(), NodalHeights(grid));
  const Eigen::VectorXd found = Eigen::Map<const Eigen::VectorXd>(byScan.data(), n);
  // What is left of the difference in the space of what the matrices see.
  const Eigen::MatrixXd seen = bordered.leftCols(n);
  const Eigen::VectorXd missed = factors.compute(seen).solve(seen * (found - exact));
  return missed.cwiseAbs().maxCoeff() / std::max(exact.cwiseAbs().maxCoeff(), found.cwiseAbs().maxCoeff());
}

RC_GTEST_PROP(SolverScalingProperty, WhatConstraintsAndCurvesLeaveFreeIsAllThatDiffers, ()) {
  const WaveletMode mode = *rc::gen::elementOf(std::vector(kAllModes.begin(), kAllModes.end()));
  const double size = std::pow(10.0, *rc::gen::inRange(-30, 51) / 10.0);
  CModelInUnits model(*rc::gen::inRange(2, 4), size, mode, *rc::gen::arbitrary<std::uint32_t>());
  model.AddConstraints(*rc::gen::inRange(0, 7));
  if (*rc::gen::arbitrary<bool>()) model.AddFairness(std::pow(10.0, *rc::gen::inRange(-1, 3)));
  if (*rc::gen::arbitrary<bool>()) FollowRandomMap(model.m_Grid, *rc::gen::arbitrary<std::uint32_t>());
  model.StartAtRandom();
  RC_ASSERT(model.Converge());
  RC_ASSERT(model.m_Grid.Solver().HasConverged());
  RC_ASSERT(MissedButForWhatIsFree(model.m_Grid) < kSmallShare);
  RC_ASSERT(model.m_Grid.Solver().Counter() < IterationBound(mode));
}

// The way of the same model from the same start without scale.
class CUnscaledIteration {
 public:
  explicit CUnscaledIteration(CSolverGrid& model) : m_System(model.m_Grid.Surface().Basis()) {
    m_System.Smoothness() = model.m_Grid.Solver().System().Smoothness();
    m_System.Constraints() = model.m_Grid.Solver().System().Constraints();
    m_Scaled.Prepare();
    const auto x = model.m_Grid.Surface().Coefficients();
    m_afX.assign(x.begin(), x.end());
    const auto multipliers = model.m_Grid.Solver().Multipliers();
    m_afMultipliers.assign(multipliers.begin(), multipliers.end());
    m_afMultipliers.resize(m_System.ConstraintCount(), 1e-3);
    m_Residual.Restart(m_Scaled, m_afX, m_afMultipliers, m_System.Constraints().Targets());
  }
  // The heights after at most so many iterations, by scan position.
  std::vector<double> Run(int limit) {
    std::vector<double> way(m_afMultipliers.size(), 0.0);
    for (int k = 0; k < limit; ++k) {
      if (m_Residual.Step(m_Scaled, m_afX, way) != CConjugateResidual::Outcome::Stepped) break;
    }
    m_Scaled.AddStep(way, m_afMultipliers);
    std::vector<double> heights(m_afX.size());
    m_System.Basis().invW(m_afX, heights);
    return heights;
  }

 private:
  CConstraintSystem m_System;
  CScaledSystem m_Scaled{m_System};
  CConjugateResidual m_Residual;
  std::vector<double> m_afX;
  std::vector<double> m_afMultipliers;
};

class UnscaledIterationTest : public testing::TestWithParam<WaveletMode> {};

INSTANTIATE_TEST_SUITE_P(Modes, UnscaledIterationTest, testing::ValuesIn(kAllModes));

// Or the bound above would not notice that the scale is lost.
TEST_P(UnscaledIterationTest, IsNotThereAtTheBound) {
  for (const double size : {1.0, 1e4}) {
    CModelInUnits model(5, size, GetParam(), 3);
    model.AddConstraints();
    const std::vector<double> exact = model.DirectHeights();
    model.m_Grid.UpdateGrid();
    const auto [lowest, highest] = std::ranges::minmax(exact);
    const std::vector<double> heights = CUnscaledIteration(model).Run(IterationBound(GetParam()));
    EXPECT_GT(LargestDifference(heights, exact), 1e-3 * (highest - lowest)) << size;
  }
}

// Of the planes that the constraints leave free the one nearest to the start, by the heights of its corners: that is
// what the iteration comes to without scale, too, as far as rounding lets it.
class FreePlaneTest : public testing::TestWithParam<int> {};

INSTANTIATE_TEST_SUITE_P(Heights, FreePlaneTest, testing::Values(0, 1, 2));

TEST_P(FreePlaneTest, IsTheNearestByItsCorners) {
  constexpr double kHigh = 1000.0;
  const int count = GetParam();
  const std::vector<CPtCstr> all{HeightCstr(23, 41, 800), HeightCstr(71, 64, -500)};
  for (const WaveletMode mode : {WaveletMode::Simple, WaveletMode::New}) {
    CSolverGrid model(4, 4, CExtent{}, mode);
    for (int k = 0; k < count; ++k) model.m_Grid.AddPtCstr(all[static_cast<std::size_t>(k)]);
    model.m_Grid.PerformPendingWork();
    std::vector<double> start = RandomValues(3, model.m_Grid.Surface().Order().Count());
    for (double& z : start) z *= kHigh;
    model.m_Grid.Builder().SetHeights(start);
    // The corners z of a plane: no twist, and the heights that are asked for.
    Eigen::MatrixXd conditions(1 + count, 4);
    Eigen::VectorXd wanted = Eigen::VectorXd::Zero(1 + count);
    conditions.row(0) << 1, -1, 1, -1;
    for (int k = 0; k < count; ++k) {
      const CPtCstr& c = all[static_cast<std::size_t>(k)];
      const double u = c.m_fX / 100;
      const double v = c.m_fY / 100;
      conditions.row(1 + k) << (1 - u) * (1 - v), u * (1 - v), u * v, (1 - u) * v;
      wanted[1 + k] = c.m_fZ;
    }
    const Eigen::Vector4d corners = Eigen::Map<const Eigen::Vector4d>(start.data());
    const Eigen::Vector4d nearest =
        corners +
        conditions.transpose() * (conditions * conditions.transpose()).ldlt().solve(wanted - conditions * corners);
    model.m_Grid.Run().SetRunning(true);
    ASSERT_TRUE(model.Converge());
    for (Eigen::Index k = 0; k < 4; ++k)
      EXPECT_NEAR(model.m_Grid.Surface().Coefficients()[static_cast<std::size_t>(k)], nearest[k], 1e-6 * kHigh);
    EXPECT_LT(std::abs(*std::ranges::max_element(model.m_Grid.Surface().Coefficients().subspan(4), {},
                                                 [](double value) { return std::abs(value); })),
              1e-6 * kHigh);
  }
}

// More rows than one block of the factor holds.
class ManyConstraintsTest : public testing::TestWithParam<WaveletMode> {
 protected:
  // Heights of a hilly surface all over the grid, each in a cell of its own, in no order.
  void AddHeights(int step) {
    std::vector<std::array<int, 2>> cells;
    for (int j = 0; j < 32; j += step) {
      for (int i = j % 2; i < 32; i += step) cells.push_back({i, j});
    }
    std::ranges::shuffle(cells, m_Random);
    for (const auto& [i, j] : cells) {
      const double x = (i + Uniform(0.2, 0.8)) * 100 / 32;
      const double y = (j + Uniform(0.2, 0.8)) * 100 / 32;
      m_Solver.m_Grid.AddPtCstr(HeightCstr(x, y, 10 * std::sin(x / 15) * std::cos(y / 12)));
    }
  }
  CPtCstr& Record(int place) { return RecordAt(CStaging::Constraints(m_Solver.m_Grid).Points(), place); }
  double Uniform(double low, double high) { return std::uniform_real_distribution(low, high)(m_Random); }

  CSolverGrid m_Solver{5, 5, CExtent{}, GetParam()};
  std::mt19937 m_Random{7};
};

INSTANTIATE_TEST_SUITE_P(Modes, ManyConstraintsTest, testing::Values(WaveletMode::Simple, WaveletMode::New));

TEST_P(ManyConstraintsTest, SurfaceIsExact) {
  AddHeights(2);
  ASSERT_EQ(m_Solver.m_Grid.Constraints().Points().size(), 256U);
  ASSERT_TRUE(m_Solver.Converge());
  EXPECT_TRUE(m_Solver.m_Grid.Solver().HasConverged());
  EXPECT_LT(m_Solver.ErrorAgainst(m_Solver.DirectHeights()), kSmallShare);
}

TEST_P(ManyConstraintsTest, SurfaceOverAMapIsExact) {
  AddHeights(2);
  FollowRandomMap(m_Solver.m_Grid, 4);
  ASSERT_TRUE(m_Solver.Converge());
  EXPECT_TRUE(m_Solver.m_Grid.Solver().HasConverged());
  EXPECT_LT(m_Solver.ErrorAgainst(m_Solver.DirectHeights()), kSmallShare);
}

// Each contradiction stands at a place of its own, and its two rows are far apart in the list.
TEST_P(ManyConstraintsTest, ContradictionsEndAtTheirMeansAndDisturbNobody) {
  AddHeights(2);
  const std::vector<double> wanted = m_Solver.DirectHeights();
  for (int place = 0; place < 256; place += 16) {
    CPtCstr twin = Record(place);
    twin.m_fZ += 7;
    Record(place).m_fZ -= 7;
    m_Solver.m_Grid.AddPtCstr(twin);
  }
  ASSERT_TRUE(m_Solver.Converge());
  EXPECT_TRUE(m_Solver.m_Grid.Solver().HasConverged());
  EXPECT_LT(m_Solver.ErrorAgainst(wanted), 1e-5);
}

TEST_P(ManyConstraintsTest, DraggedHeightIsReached) {
  AddHeights(2);
  ASSERT_TRUE(m_Solver.Converge());
  Record(100).SetState(PtCstrState::kSelected, true);
  for (const double z : {15.0, -4.0}) {
    m_Solver.m_Grid.UnselectAll();
    Record(100).SetState(PtCstrState::kSelected, true);
    m_Solver.m_Grid.SetSelectedHeight(z);
    ASSERT_TRUE(m_Solver.Converge());
    EXPECT_LT(m_Solver.ErrorAgainst(m_Solver.DirectHeights()), kSmallShare) << z;
  }
}

// Where they contradict each other, each third stands twice, above and below the surface that all others are on.
class CrowdTest : public testing::TestWithParam<bool> {};

INSTANTIATE_TEST_SUITE_P(FreeOfContradictions, CrowdTest, testing::Bool());

TEST_P(CrowdTest, FiveThousandHeightsAreSoonMet) {
  constexpr int kIterations = 1500;
  CSolverGrid solver(7, 7);
  std::mt19937 random(5);
  std::uniform_real_distribution<double> place(0, 100);
  for (int k = 0; k < 5000; ++k) {
    CPtCstr height = HeightCstr(place(random), place(random), 0);
    height.m_fZ = 10 * std::sin(height.m_fX / 8) * std::cos(height.m_fY / 11);
    const double apart = !GetParam() && k % 3 == 0 ? 1.0 : 0.0;
    height.m_fZ += apart;
    solver.m_Grid.AddPtCstr(height);
    if (apart == 0.0) continue;
    height.m_fZ -= 2 * apart;
    solver.m_Grid.AddPtCstr(height);
  }
  ASSERT_TRUE(solver.Converge());
  EXPECT_TRUE(solver.m_Grid.Solver().HasConverged());
  EXPECT_LT(solver.m_Grid.Solver().Counter(), kIterations);
  EXPECT_LT(solver.m_Grid.Surface().MaxHeight(), 20);
}

}  // namespace
