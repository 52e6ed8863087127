// Surfaces over made scenes whose depth is known, with a reference and without.

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <iostream>
#include <memory>
#include <numbers>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "constraints/TearLines.h"
#include "reference/CTearSight.h"
#include "reference/StraightFit.h"
#include "reference/SuggestTears.h"
#include "support/ConstraintBuilders.h"
#include "support/CurveBuilders.h"
#include "support/DepthBuilders.h"
#include "support/UpdateBuilders.h"

namespace {

// A still life in front of a slanting wall: discs, boards and a ball; shares of the sides, depths from 0 to about 100.
double WallAt(double u, double v) { return 4 + 14 * u + 12 * (1 - v); }

// Folds of all of it, too many for the heights.
double FoldsAt(double u, double v) { return 7 * std::sin(20 * u + 5 * v) * std::sin(17 * v - 4 * u); }

double SmoothStillLifeAt(double u, double v) {
  const auto disc = [&](double x, double y) { return std::hypot(u - x, v - y); };
  if (disc(0.3, 0.3) < 0.17) return 72 + 60 * std::sqrt(0.04 - disc(0.3, 0.3) * disc(0.3, 0.3));
  if (std::abs(u - 0.72) < 0.13 && v - 0.25 * u > 0.02 && v - 0.25 * u < 0.42) return 66 - 20 * (u - 0.6) + 8 * v;
  if (disc(0.5, 0.68) < 0.14) return 48 + 25 * (v - 0.6);
  if (u < 0.2 && v > 0.55 && v < 0.9) return 36 + 30 * u;
  return WallAt(u, v);
}

double StillLifeAt(double u, double v) { return SmoothStillLifeAt(u, v) + FoldsAt(u, v); }

// As an estimator sees it: blurred by 5 pixels, with a curve of its own, and bent as a whole.
std::shared_ptr<const CDepthMap> EstimateOf(int size) {
  const CDepthMap bent = DepthMapOf(size, size, [](double u, double v) {
    return 100 * std::pow((StillLifeAt(u, v) + 8) / 100, 1.5) + 10 * (u - 0.5) * (u - 0.5) * 4;
  });
  return std::make_shared<const CDepthMap>(Blurred(bent, 5));
}

// Its gaps as a careful user draws them: fifteen tears.
std::vector<CTearProposal> DrawnTears() {
  std::vector<CTearProposal> tears;
  const auto arcs = [&](double x, double y, double radius) {
    for (int arc = 0; arc < 4; ++arc) {
      CTearProposal& tear = tears.emplace_back();
      for (int k = 0; k <= 8; ++k) {
        const double angle = (arc + k / 8.0) * std::numbers::pi / 2;
        tear.m_aPoints.push_back({100 * (x + radius * std::cos(angle)), 100 * (y + radius * std::sin(angle))});
      }
    }
  };
  const auto line = [&](double u0, double v0, double u1, double v1) {
    tears.push_back({{{100 * u0, 100 * v0}, {100 * u1, 100 * v1}}, false});
  };
  arcs(0.3, 0.3, 0.17);
  arcs(0.5, 0.68, 0.14);
  // The board, whose lower edge lies on 0.02 + u / 4; then the box at the left border.
  const auto board = [](double u, double up) { return 0.02 + 0.25 * u + up; };
  line(0.59, board(0.59, 0), 0.85, board(0.85, 0));
  line(0.85, board(0.85, 0), 0.85, board(0.85, 0.4));
  line(0.85, board(0.85, 0.4), 0.59, board(0.59, 0.4));
  line(0.59, board(0.59, 0.4), 0.59, board(0.59, 0));
  line(0, 0.55, 0.2, 0.55);
  line(0.2, 0.55, 0.2, 0.9);
  line(0.2, 0.9, 0, 0.9);
  return tears;
}

struct CSceneGrid {
  explicit CSceneGrid(int baseLevel) : m_Scope(7, baseLevel) {}

  // One on each thing and four on the wall.
  void AddEightHeights() {
    for (const auto& [u, v] : {std::array{0.06, 0.06},
                               {0.94, 0.08},
                               {0.92, 0.93},
                               {0.08, 0.47},
                               {0.3, 0.3},
                               {0.72, 0.4},
                               {0.5, 0.7},
                               {0.1, 0.72}})
      m_Grid.AddPtCstr(HeightCstr(100 * u, 100 * v, StillLifeAt(u, v)));
  }
  void AddHeights(int count) {
    if (count == 8) return AddEightHeights();
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
  // Of the range of the scene's depths: the median distance of heights, by shares of the sides, from it.
  template <typename Height>
  static double MedianErrorOf(const Height& height) {
    std::vector<double> errors;
    double lowest = HUGE_VAL;
    double highest = -HUGE_VAL;
    for (int row = 0; row < 129; ++row) {
      for (int column = 0; column < 129; ++column) {
        const double depth = StillLifeAt(column / 128.0, row / 128.0);
        errors.push_back(std::abs(height(column / 128.0, row / 128.0) - depth));
        lowest = std::min(lowest, depth);
        highest = std::max(highest, depth);
      }
    }
    std::ranges::nth_element(errors, errors.begin() + static_cast<std::ptrdiff_t>(errors.size() / 2));
    return errors[errors.size() / 2] / (highest - lowest);
  }
  double MedianError() {
    EXPECT_TRUE(RunUntilPaused(m_Grid, 20000));
    return MedianErrorOf([&](double u, double v) { return m_Grid.GetHeightAt(128 * u, 128 * v); });
  }

  CResolutionScope m_Scope;
  ConsoleCapture m_Console;
  CGrid m_Grid;
};

enum class Tears { None, Suggested, Drawn };

class ReferenceSceneTest : public testing::Test {
 protected:
  // The median error with so many heights, with fifteen tears or none, at a strength. Regions that tears cut loose are
  // settled.
  double Error(int heights, Tears tears, double strength) const {
    CSceneGrid scene(7);
    scene.AddHeights(heights);
    if (tears == Tears::Drawn) scene.AddTears(DrawnTears());
    if (tears == Tears::Suggested)
      scene.AddTears(SuggestTears(CDepthReading(*m_pMap, false), {.m_iCount = 15}, CExtent{}, nullptr));
    scene.m_Grid.ReferenceEdits().Load(m_pMap, "/estimate.pfm");
    scene.m_Grid.ReferenceEdits().SetStrength(strength);
    scene.m_Grid.SetSettling(true);
    const char* const words = tears == Tears::None    ? "no tears"
                              : tears == Tears::Drawn ? "drawn tears"
                                                      : "suggested tears";
    return Told(std::to_string(heights) + " heights, " + words + ", strength " + std::to_string(strength).substr(0, 3),
                scene.MedianError());
  }
  // That of the map itself, once it is brought to so many heights.
  double ErrorOfMap(int heights) const {
    CSceneGrid scene(7);
    scene.AddHeights(heights);
    const CDepthReading reading(*m_pMap, false);
    const CReferenceFit fit = StraightFit(scene.m_Grid.Constraints().Points(), CExtent{}, reading, {});
    EXPECT_TRUE(fit.m_bFitted);
    const auto height = [&](double u, double v) {
      return fit.HeightOver(reading.Bilinear(reading.ColumnOf(u), reading.RowOf(v)));
    };
    return Told("the map alone, brought to " + std::to_string(heights) + " heights", CSceneGrid::MedianErrorOf(height));
  }
  static double Told(const std::string& what, double error) {
    RecordProperty(what, std::to_string(error));
    std::cout << what << ": " << 100 * error << " % of the range\n";
    return error;
  }

  std::shared_ptr<const CDepthMap> m_pMap = EstimateOf(450);
};

TEST_F(ReferenceSceneTest, ConstraintsAndMapTogetherAreBetterThanEither) {
  const double alone = Error(60, Tears::None, 0);
  const double together = Error(60, Tears::None, 0.8);
  const double map = ErrorOfMap(60);
  EXPECT_LT(together, 0.5 * alone);
  EXPECT_LT(together, map);
  const double torn = Error(60, Tears::Suggested, 0.8);
  EXPECT_LT(torn, 0.5 * together);
  EXPECT_LT(torn, 0.5 * map);
  EXPECT_LT(Error(60, Tears::Suggested, 1), 0.5 * alone);
  const double drawn = Error(60, Tears::Drawn, 0.8);
  EXPECT_LT(drawn, 0.6 * Error(60, Tears::Drawn, 0));
  EXPECT_LT(torn, 1.2 * drawn);
}

TEST_F(ReferenceSceneTest, EightHeightsWithAMapDoWhatSixtyAndDrawnTearsDoWithoutOne) {
  const double few = Error(8, Tears::Suggested, 0.8);
  EXPECT_LT(few, 1.3 * Error(60, Tears::Drawn, 0));
  EXPECT_LT(few, 0.5 * Error(60, Tears::None, 0));
  EXPECT_LT(few, 0.9 * ErrorOfMap(8));
  EXPECT_LT(few, 0.9 * Error(8, Tears::None, 0.8));
  EXPECT_LT(Error(30, Tears::Suggested, 0.8), few);
}

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
