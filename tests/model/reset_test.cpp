// "Reset the grid".

#include <algorithm>
#include <cmath>
#include <vector>

#include <gtest/gtest.h>

#include "model/CGrid.h"
#include "support/CStaging.h"
#include "support/UpdateBuilders.h"

namespace {

// 10 over the number of lattice points, however few of them are in use.
constexpr double kLimit = 10.0 / (17 * 17);

class ResetTest : public testing::Test {
 protected:
  CGrid& Grid() { return m_Test.m_Grid; }

  CTestGrid m_Test{4, 2};
};

// Coefficients after a reset of a grid made with `seed`.
std::vector<double> ResetCoefs(std::uint32_t seed, int resets = 1) {
  const CResolutionScope scope(4, 2);
  const ConsoleCapture console;
  CGrid grid(seed);
  for (int k = 0; k < resets; ++k) grid.Reset();
  return Copied(grid.Surface().Coefficients());
}

void ExpectRandomUpToTheLimit(const std::vector<double>& values) {
  EXPECT_TRUE(std::ranges::all_of(values, [](double v) { return v >= 0 && v <= kLimit; }));
  EXPECT_GT(std::ranges::max(values), 0.5 * kLimit);
  EXPECT_LT(std::ranges::min(values), 0.5 * kLimit);
}

TEST_F(ResetTest, CoefficientsAreSmallAndRandom) {
  SetRandomSurface(Grid(), 3);
  Grid().Reset();
  ExpectRandomUpToTheLimit(Copied(Grid().Surface().Coefficients()));
}

TEST_F(ResetTest, CoefficientsAreRandomInEveryMode) {
  for (const WaveletMode mode : kAllModes) {
    Grid().Builder().SetWaveletMode(mode);
    Grid().Reset();
    ExpectRandomUpToTheLimit(Copied(Grid().Surface().Coefficients()));
  }
}

TEST_F(ResetTest, SameSeedGivesTheSameValues) {
  EXPECT_EQ(ResetCoefs(7), ResetCoefs(7));
  EXPECT_EQ(ResetCoefs(7, 2), ResetCoefs(7, 2));
}

TEST_F(ResetTest, OtherSeedsAndFurtherResetsGiveOtherValues) {
  EXPECT_NE(ResetCoefs(7), ResetCoefs(8));
  EXPECT_NE(ResetCoefs(7), ResetCoefs(7, 2));
}

TEST_F(ResetTest, MultipliersAreDrawnLikewise) {
  AddAll(Grid(), SomeConstraints());
  Grid().UpdateGrid();
  Grid().Reset();
  const std::vector<double> multipliers = Copied(Grid().Solver().Multipliers());
  ASSERT_EQ(multipliers.size(), 5U);
  EXPECT_TRUE(std::ranges::all_of(multipliers, [](double v) { return v > 0 && v <= kLimit; }));
  EXPECT_NE(multipliers[0], multipliers[1]);
}

// They are drawn in scaled units, in which the model's own do not count.
TEST_F(ResetTest, MultipliersOfATallModelAreAsSmallBesideItsOwn) {
  const auto drawn = [](double scale) {
    CTestGrid test(4, 2);
    for (CPtCstr c : SomeConstraints()) {
      c.m_fZ *= scale;
      c.m_fP *= scale;
      c.m_fQ *= scale;
      test.m_Grid.AddPtCstr(c);
    }
    test.m_Grid.UpdateGrid();
    test.m_Grid.Reset();
    return Copied(test.m_Grid.Solver().Multipliers());
  };
  const std::vector<double> low = drawn(1.0 / 1024);
  const std::vector<double> lower = drawn(1.0 / 4096);
  for (std::size_t j = 0; j < low.size(); ++j) EXPECT_DOUBLE_EQ(lower[j], low[j] / 4);
}

TEST_F(ResetTest, HeightsNormalsAndRangeFollow) {
  SetRandomSurface(Grid(), 3);
  Grid().Reset();
  std::vector<double> heights(25);
  Grid().Surface().Basis().invW(Grid().Surface().Coefficients(), heights);
  EXPECT_EQ(NodalHeights(Grid()), ByUnknown(Grid().Surface().Order(), heights));
  EXPECT_TRUE(std::ranges::all_of(SurfaceOnLattice(Grid()), [](double z) { return std::isfinite(z); }));
  EXPECT_EQ(Grid().Surface().MinHeight(), std::ranges::min(heights));
  EXPECT_EQ(Grid().Surface().MaxHeight(), std::ranges::max(heights));
  EXPECT_GT(Grid().Surface().Lattice().PointNormals()[0].z, 0.9);
}

TEST_F(ResetTest, RebuildOfTheMapsIsPosted) {
  Grid().Reset();
  EXPECT_EQ(Grid().Run().NextOperation(), Operation::kRebuildMaps);
  Grid().UpdateGrid();
  EXPECT_NE(m_Test.m_Console.Take().find("\nCGrid::SetDiscMap()\n"), std::string::npos);
}

TEST_F(ResetTest, WhatWasPostedBeforeIsNotLost) {
  CActingHost host(Grid());
  Grid().Run().Post(Operation::kSaveGrid);
  Grid().Reset();
  Grid().UpdateGrid();
  EXPECT_EQ(host.m_aiCommands, (std::vector{8192}));
}

TEST_F(ResetTest, HostRedrawsAndShowsTheCounter) {
  AddAll(Grid(), SomeConstraints());
  Grid().UpdateGrid();
  CActingHost host(Grid());
  Grid().Reset();
  EXPECT_EQ(host.m_iRedraws, 1);
  EXPECT_EQ(host.m_iIterations, 10);
}

TEST_F(ResetTest, SurfaceOfTheResetIsTheStartOfTheNextTick) {
  AddAll(Grid(), SomeConstraints());
  Grid().UpdateGrid();
  Grid().Reset();
  const std::vector<double> before = SurfaceOnLattice(Grid());
  Grid().PerformPendingWork();
  Grid().Surface().Reconstruct();
  EXPECT_LT(LargestDifference(SurfaceOnLattice(Grid()), before), 1e-9);
}

TEST_F(ResetTest, ConstraintsAndSubdivisionStay) {
  AddAll(Grid(), SomeConstraints());
  CStaging::Subdivision(Grid()).Root().Child(1).Child(2).subdiv();
  Grid().Reset();
  Grid().UpdateGrid();
  EXPECT_EQ(Grid().Constraints().Points().size(), 4U);
  EXPECT_EQ(Grid().Surface().ActivePointCount(), 30);
}

TEST_F(ResetTest, WorksAtTheHighResolutionToo) {
  Grid().Run().Post(Operation::kTransferToHigh);
  Grid().PerformPendingWork();
  Grid().Reset();
  EXPECT_EQ(Grid().Surface().Coefficients().size(), 289U);
  ExpectRandomUpToTheLimit(Copied(Grid().Surface().Coefficients()));
}

}  // namespace
