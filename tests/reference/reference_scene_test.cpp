// Surfaces over made scenes whose depth is known, with a reference and without.

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <memory>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "constraints/TearLines.h"
#include "reference/CTearSight.h"
#include "reference/SuggestTears.h"
#include "support/ConstraintBuilders.h"
#include "support/CurveBuilders.h"
#include "support/DepthBuilders.h"
#include "support/UpdateBuilders.h"

namespace {

// A still life in front of a curved wall: discs, boards and a ball; shares of the sides, depths from 0 to about 100.
double WallAt(double u, double v) { return 14 * std::sin(2.5 * u + 0.4) + 22 * (1 - v) * (1 - v); }

double StillLifeAt(double u, double v) {
  const auto disc = [&](double x, double y) { return std::hypot(u - x, v - y); };
  if (disc(0.3, 0.3) < 0.17) return 72 + 60 * std::sqrt(0.04 - disc(0.3, 0.3) * disc(0.3, 0.3));
  if (std::abs(u - 0.72) < 0.13 && v - 0.25 * u > 0.02 && v - 0.25 * u < 0.42) return 66 - 20 * (u - 0.6) + 8 * v;
  if (disc(0.5, 0.68) < 0.14) return 48 + 25 * (v - 0.6);
  if (u < 0.2 && v > 0.55 && v < 0.9) return 36 + 30 * u;
  return WallAt(u, v);
}

// As an estimator sees it: blurred by 5 pixels, with a curve of its own, and bent as a whole.
std::shared_ptr<const CDepthMap> EstimateOf(int size) {
  const CDepthMap bent = DepthMapOf(size, size, [](double u, double v) {
    return 100 * std::pow(StillLifeAt(u, v) / 100, 1.5) + 10 * (u - 0.5) * (u - 0.5) * 4;
  });
  return std::make_shared<const CDepthMap>(Blurred(bent, 5));
}

struct CSceneGrid {
  explicit CSceneGrid(int baseLevel) : m_Scope(7, baseLevel) {}

  void AddHeights(int count) {
    std::mt19937 random(11);
    std::uniform_real_distribution<double> place(0.02, 0.98);
    for (int k = 0; k < count; ++k) {
      const double u = place(random);
      const double v = place(random);
      m_Grid.AddPtCstr(HeightCstr(100 * u, 100 * v, StillLifeAt(u, v)));
    }
  }
  void AddTears(const std::vector<CTearProposal>& proposals) {
    for (const CTearProposal& proposal : proposals)
      m_Grid.AddTracedCurve(NodesOf(proposal), CurveType::kPosition, proposal.m_bClosed);
  }
  // Of the range of the scene's depths: the median distance of the surface from it.
  double MedianError() {
    RunUntilPaused(m_Grid, 20000);
    std::vector<double> errors;
    for (int row = 0; row < 129; ++row)
      for (int column = 0; column < 129; ++column)
        errors.push_back(std::abs(m_Grid.GetHeightAt(column, row) - StillLifeAt(column / 128.0, row / 128.0)));
    std::ranges::nth_element(errors, errors.begin() + static_cast<std::ptrdiff_t>(errors.size() / 2));
    constexpr double kRange = 90;
    return errors[errors.size() / 2] / kRange;
  }

  CResolutionScope m_Scope;
  ConsoleCapture m_Console;
  CGrid m_Grid;
};

class ReferenceSceneTest : public testing::Test {
 protected:
  // The median error with so many heights, with the tears that the map suggests or none, at a strength.
  double Error(int heights, int tears, double strength) {
    CSceneGrid scene(7);
    scene.AddHeights(heights);
    scene.AddTears(SuggestTears(CDepthReading(*m_pMap, false), {.m_iCount = tears}, CExtent{}, nullptr));
    scene.m_Grid.ReferenceEdits().Load(m_pMap, "/estimate.pfm");
    scene.m_Grid.ReferenceEdits().SetStrength(strength);
    const double error = scene.MedianError();
    RecordProperty("error of " + std::to_string(heights) + " heights, " + std::to_string(tears) + " tears, strength " +
                       std::to_string(strength),
                   std::to_string(error));
    return error;
  }

  std::shared_ptr<const CDepthMap> m_pMap = EstimateOf(450);
};

TEST_F(ReferenceSceneTest, ConstraintsAndMapTogetherAreBetterThanEither) {
  const double alone = Error(60, 0, 0);
  const double together = Error(60, 0, 0.8);
  const double torn = Error(60, 15, 0.8);
  EXPECT_LT(together, 0.5 * alone);
  EXPECT_LT(torn, together);
  EXPECT_LT(Error(60, 15, 1), 0.5 * alone);
}

TEST_F(ReferenceSceneTest, EightHeightsDoWithAMap) { EXPECT_LT(Error(8, 15, 0.8), Error(60, 0, 0)); }

/// Two planes that part along a line at a slant.
struct CSlantedScene {
  double At(double u, double v) const { return IsAbove(u, v) ? m_fGap + m_fSlope * u : -m_fSlope * v; }
  bool IsAbove(double u, double v) const { return v - 0.213 - 0.47 * u > 0; }
  double m_fGap = 20;
  double m_fSlope = 0;
};

class SlantedTearTest : public testing::TestWithParam<std::pair<double, int>> {};

INSTANTIATE_TEST_SUITE_P(Slopes, SlantedTearTest,
                         testing::Values(std::pair(0.0, 1000), std::pair(0.0, 417), std::pair(20.0, 1000),
                                         std::pair(20.0, 417)));

// Of a gap over an exact map, next to nothing comes over to the other side.
TEST_P(SlantedTearTest, MissesByNextToNothing) {
  const auto& [slope, size] = GetParam();
  CSlantedScene scene;
  scene.m_fSlope = slope;
  CSceneGrid test(5);
  CGrid& grid = test.m_Grid;
  for (const auto& [u, v] : {std::array{0.1, 0.1}, {0.9, 0.2}, {0.5, 0.3}, {0.1, 0.5}, {0.8, 0.9}, {0.3, 0.85}})
    grid.AddPtCstr(HeightCstr(100 * u, 100 * v, scene.At(u, v)));
  grid.AddCurve(PointsAt({{0, 21.3}, {100, 68.3}}), CurveType::kPosition, false);
  grid.ReferenceEdits().Load(SharedDepthMap(size, size, [&](double u, double v) { return scene.At(u, v); }), "/m.pfm");
  grid.ReferenceEdits().SetStrength(1);
  ASSERT_TRUE(RunUntilPaused(grid, 20000));
  double worst = 0.0;
  const CPointOrder& order = grid.Surface().Order();
  for (std::size_t i = 0; i < order.Count(); ++i) {
    const std::uint32_t point = order.PointAtScan(i);
    const std::uint32_t column = point % 129;
    const std::uint32_t row = point / 129;
    const double missed = grid.Surface().Lattice().Heights()[point] - scene.At(column / 128.0, row / 128.0);
    worst = std::max(worst, std::abs(missed));
  }
  RecordProperty("share of the gap", std::to_string(worst / scene.m_fGap));
  EXPECT_LT(worst, 0.002 * scene.m_fGap);
}

}  // namespace
