// The energies of the basis functions, compared with the products that define them.

#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <numeric>
#include <vector>

#include <Eigen/Core>
#include <Eigen/SparseCore>
#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include "solver/BasisEnergies.h"
#include "support/CStaging.h"
#include "support/CurveBuilders.h"
#include "support/DirectSolution.h"

namespace {

struct CEnergyGrid : CSolverGrid {
  CEnergyGrid(int maxLevel, int baseLevel, WaveletMode mode) : CSolverGrid(maxLevel, baseLevel, kOblong, mode) {}

  void AddCurve(const CPlaces& places, CurveType type, bool closed = false) {
    m_Grid.AddCurve(PointsAt(places), type, closed);
  }
  void SetUp() { m_Grid.SetDiscMap(); }
  const CCompressedRows& Smoothness() const { return m_Grid.Solver().System().Smoothness(); }
  const CHierarchicalBasis& Basis() const { return m_Grid.Surface().Basis(); }
  std::size_t Size() const { return Basis().Size(); }
  std::vector<double> Energies() const { return BasisEnergies(Smoothness(), Basis(), m_Grid.Surface().Order()); }

  // The heights of one basis function.
  std::vector<double> Function(std::size_t k) const {
    std::vector<double> unit(Size(), 0.0);
    std::vector<double> heights(Size());
    unit[k] = 1.0;
    Basis().invW(unit, heights);
    return heights;
  }
};

// The diagonals of B^T H B and of B^T |H| B, from all functions in full.
struct CFullEnergies {
  explicit CFullEnergies(const CEnergyGrid& grid) {
    const Eigen::SparseMatrix<double> h = Dense(grid.Smoothness(), grid.Size()).sparseView();
    Eigen::MatrixXd basis(h.rows(), h.cols());
    for (Eigen::Index k = 0; k < basis.cols(); ++k) {
      const std::vector<double> function = grid.Function(static_cast<std::size_t>(k));
      basis.col(k) = Eigen::Map<const Eigen::VectorXd>(function.data(), basis.rows());
    }
    m_Energies = basis.cwiseProduct(h * basis).colwise().sum().transpose();
    m_Magnitudes = basis.cwiseProduct(h.cwiseAbs() * basis).colwise().sum().transpose();
  }

  Eigen::VectorXd m_Energies;
  Eigen::VectorXd m_Magnitudes;
};

struct CRandomEnergyGrid : CEnergyGrid {
  CRandomEnergyGrid()
      : CEnergyGrid(4, *rc::gen::inRange(1, 5),
                    *rc::gen::element(WaveletMode::None, WaveletMode::Simple, WaveletMode::New)) {
    RandomiseRecord(CStaging::Subdivision(m_Grid), *rc::gen::arbitrary<std::uint32_t>(), *rc::gen::inRange(0, 12));
    for (int curves = *rc::gen::inRange(0, 4); curves > 0; --curves) {
      CPlaces places;
      for (int nodes = *rc::gen::inRange(2, 5); nodes > 0; --nodes)
        places.push_back({-3.5 + *rc::gen::inRange(0, 161) / 10.0, 20 + *rc::gen::inRange(0, 61) / 10.0});
      AddCurve(places, *rc::gen::element(kTear, kCrease, kFair), *rc::gen::arbitrary<bool>());
    }
    SetUp();
  }
};

RC_GTEST_PROP(BasisEnergiesProperty, FollowTreesTearsCreasesAndFairnessCurves, ()) {
  const CRandomEnergyGrid grid;
  const CFullEnergies full(grid);
  const std::vector<double> energies = grid.Energies();
  RC_ASSERT(energies.size() == grid.Size());
  for (Eigen::Index k = 0; k < full.m_Energies.size(); ++k) {
    const double energy = energies[static_cast<std::size_t>(k)];
    RC_ASSERT(std::abs(energy - full.m_Energies[k]) <= 1e-11 * full.m_Magnitudes[k]);
    if (full.m_Energies[k] < 1e-13 * full.m_Magnitudes[k]) RC_ASSERT(energy == 0.0);
  }
}

// On grids large enough for rows of every kind to repeat, with and without what makes them differ.
class LargeEnergiesTest : public testing::TestWithParam<WaveletMode> {
 protected:
  static void ExpectThoseOfTheFunctions(const CEnergyGrid& grid) {
    const std::vector<double> energies = grid.Energies();
    std::vector<double> forces(grid.Size());
    for (std::size_t k = 4; k < grid.Size(); ++k) {
      const std::vector<double> function = grid.Function(k);
      grid.Smoothness().Times(function, forces);
      const double energy = std::inner_product(function.begin(), function.end(), forces.begin(), 0.0);
      ASSERT_NEAR(energies[k], energy, 1e-9 * energy) << k;
    }
  }
};
INSTANTIATE_TEST_SUITE_P(Modes, LargeEnergiesTest, testing::ValuesIn(kAllModes));

TEST_P(LargeEnergiesTest, OfAUniformGrid) {
  CEnergyGrid grid(6, 6, GetParam());
  grid.SetUp();
  ExpectThoseOfTheFunctions(grid);
}
TEST_P(LargeEnergiesTest, OfOneWithCurves) {
  CEnergyGrid grid(6, 6, GetParam());
  grid.AddCurve({{-1, 21.1}, {5.3, 24.9}, {9.2, 23}}, kTear);
  grid.AddCurve({{1.5, 21.1}, {11.3, 21.9}}, kCrease);
  grid.AddCurve({{-2, 25.1}, {8.3, 24.2}}, kFair);
  grid.SetUp();
  ExpectThoseOfTheFunctions(grid);
}
TEST_P(LargeEnergiesTest, OfATreeRefinedAlongCurves) {
  CEnergyGrid grid(7, 4, GetParam());
  grid.AddCurve({{-1, 21.1}, {5.3, 24.9}, {9.2, 23}}, kTear);
  grid.AddCurve({{1.5, 21.1}, {11.3, 21.9}}, kCrease);
  grid.SetUp();
  ASSERT_GT(grid.Size(), 2U * 17 * 17);
  ExpectThoseOfTheFunctions(grid);
}

// Within a closed tear a function without counted parents is constant, and those above it stop at the tear.
TEST(BasisEnergiesTest, OfAnIslandIsExactlyZero) {
  CEnergyGrid grid(5, 5, WaveletMode::New);
  grid.AddCurve({{2.2, 21.6}, {6.8, 21.6}, {6.8, 24.4}, {2.2, 24.4}}, kTear, true);
  grid.SetUp();
  const CFullEnergies full(grid);
  const std::vector<double> energies = grid.Energies();
  int without = 0;
  for (Eigen::Index k = 4; k < full.m_Energies.size(); ++k) {
    if (full.m_Energies[k] > 1e-12 * full.m_Magnitudes[k]) continue;
    EXPECT_EQ(energies[static_cast<std::size_t>(k)], 0.0) << k;
    ++without;
  }
  EXPECT_GT(without, 0);
}

}  // namespace
