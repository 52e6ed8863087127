// Made scenes with known gaps, and what is proposed for them.

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <numbers>
#include <tuple>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "constraints/CCntrCtrlList.h"
#include "lattice/CLattice.h"
#include "reference/CDepthMap.h"
#include "reference/SuggestTears.h"
#include "scissors/CLinkCosts.h"
#include "scissors/CTopDownImage.h"
#include "support/DepthBuilders.h"
#include "support/GridBuilders.h"

namespace {

using Places = std::vector<CPlanePoint>;

constexpr int kSize = 300;
constexpr double kPixel = 100.0 / kSize;

// A floor that rises, a disc and an oblique board in front of it; shares of the sides.
constexpr CPlanePoint kDisc{0.35, 0.6};
constexpr double kRadius = 0.2;
bool IsInDisc(double u, double v) { return std::hypot(u - kDisc.x, v - kDisc.y) < kRadius; }
bool IsOnBoard(double u, double v) { return u > 0.62 && u < 0.88 && v - 0.3 * u > 0.05 && v - 0.3 * u < 0.6; }
double SceneAt(double u, double v) {
  if (IsInDisc(u, v)) return 6 + u;
  return IsOnBoard(u, v) ? 8 - v : 1.5 * v;
}

// Calls `add` with the share of the way at its beginning and after each tenth of a pixel.
template <typename Add>
void ForTenths(double lengthInPixels, const Add& add) {
  const int count = std::max(1, static_cast<int>(std::ceil(10 * lengthInPixels)));
  for (int k = 0; k < count; ++k) add(static_cast<double>(k) / count);
}

// The places where the scene has its gaps, every tenth of a pixel, model units.
Places TrueGaps() {
  Places gaps;
  ForTenths(2 * std::numbers::pi * kRadius * kSize, [&](double share) {
    const double angle = 2 * std::numbers::pi * share;
    gaps.push_back({100 * (kDisc.x + kRadius * std::cos(angle)), 100 * (kDisc.y + kRadius * std::sin(angle))});
  });
  ForTenths((0.88 - 0.62) * kSize, [&](double share) {
    const double u = 0.62 + share * (0.88 - 0.62);
    for (const double low : {0.05, 0.6}) gaps.push_back({100 * u, 100 * (low + 0.3 * u)});
  });
  ForTenths((0.6 - 0.05) * kSize, [&](double share) {
    const double v = 0.05 + share * (0.6 - 0.05);
    for (const double u : {0.62, 0.88}) gaps.push_back({100 * u, 100 * (v + 0.3 * u)});
  });
  return gaps;
}

// The same for what is proposed.
Places Traced(const std::vector<CTearProposal>& proposals) {
  Places places;
  for (const CTearProposal& proposal : proposals) {
    const Places& points = proposal.m_aPoints;
    for (std::size_t k = proposal.m_bClosed ? 0 : 1; k < points.size(); ++k) {
      const CPlanePoint& a = k == 0 ? points.back() : points[k - 1];
      const CPlanePoint& b = points[k];
      ForTenths(std::hypot(b.x - a.x, b.y - a.y) / kPixel, [&](double share) {
        places.push_back({a.x + share * (b.x - a.x), a.y + share * (b.y - a.y)});
      });
    }
  }
  return places;
}

// The share of `places` that lies within two pixels of one of `others`.
double ShareNear(const Places& places, const Places& others) {
  std::size_t near = 0;
  for (const CPlanePoint& p : places) {
    const auto isNear = [&](const CPlanePoint& o) { return std::hypot(o.x - p.x, o.y - p.y) <= 2 * kPixel; };
    near += std::ranges::any_of(others, isNear) ? 1 : 0;
  }
  return places.empty() ? 0.0 : static_cast<double>(near) / static_cast<double>(places.size());
}

std::vector<CTearProposal> Suggest(const CDepthMap& map, int count, const CLinkCosts* photograph = nullptr) {
  return SuggestTears(CDepthReading(map, false), {.m_iCount = count}, CExtent{}, photograph);
}

// As the curves that are made of them in a grid with so many levels.
std::vector<CTearProposal> AsCurves(const std::vector<CTearProposal>& proposals, int level) {
  const CResolutionScope scope(level, 3);
  const ConsoleCapture console;
  CGrid grid;
  for (const CTearProposal& proposal : proposals)
    grid.AddTracedCurve(NodesOf(proposal), CurveType::kPosition, proposal.m_bClosed);
  std::vector<CTearProposal> made;
  for (const CCntrCtrl& curve : grid.Constraints().Curves()) {
    CTearProposal& tear = made.emplace_back();
    tear.m_bClosed = curve.IsClosed();
    for (const CCntrNode& node : curve.Nodes()) tear.m_aPoints.push_back({node.m_fX, node.m_fY});
  }
  return made;
}

std::size_t PointCount(const std::vector<CTearProposal>& tears) {
  std::size_t count = 0;
  for (const CTearProposal& tear : tears) count += tear.m_aPoints.size();
  return count;
}

TEST(SuggestTearsTest, CoversTheGapsOfAMadeScene) {
  for (const double blur : {0.5, 1.5}) {
    const std::vector<CTearProposal> proposals = Suggest(Blurred(DepthMapOf(kSize, kSize, SceneAt), blur), 15);
    EXPECT_GE(ShareNear(TrueGaps(), Traced(proposals)), 0.8) << blur;
    EXPECT_GE(ShareNear(Traced(proposals), TrueGaps()), 0.8) << blur;
    // With fewer nodes, too.
    const std::vector<CTearProposal> curves = AsCurves(proposals, 7);
    ASSERT_EQ(curves.size(), proposals.size()) << blur;
    EXPECT_LT(PointCount(curves), PointCount(proposals) / 3) << blur;
    EXPECT_GE(ShareNear(TrueGaps(), Traced(curves)), 0.8) << blur;
    EXPECT_GE(ShareNear(Traced(curves), TrueGaps()), 0.8) << blur;
  }
}

// Two steps that part at the lower border; the slanted one is a bit longer, and goes before the upright one at 50.
double ForkAt(double u, double v) { return (u > 0.5 ? 1.0 : 0.0) + (u > 0.5 + 0.05 * v ? 1.0 : 0.0); }

double LowestEnd(const CTearProposal& tear) { return std::ranges::min(tear.m_aPoints, {}, &CPlanePoint::y).y; }

// Where the upright step is nearer than 1.2 to the slanted one, it is cut off: below 24. Within the step between two
// pixels, lines lie anywhere, so that the fine map knows this to one pixel's worth of the fork.
constexpr int kFine = 900;
constexpr double kForkPixel = 100.0 / kFine / 0.05;
TEST(SuggestTearsTest, WhatIsNearAPathThatIsTakenIsCutOff) {
  const std::vector<CTearProposal> tears = Suggest(DepthMapOf(kFine, kFine, ForkAt), 10);
  ASSERT_EQ(tears.size(), 2U);
  EXPECT_DOUBLE_EQ(LowestEnd(tears[0]), 0);
  EXPECT_NEAR(tears[0].m_aPoints.front().x + tears[0].m_aPoints.back().x, 105, 1);
  EXPECT_NEAR(LowestEnd(tears[1]), 24, 1.5 * kForkPixel);
  EXPECT_DOUBLE_EQ(std::ranges::max(tears[1].m_aPoints, {}, &CPlanePoint::y).y, 100);
  for (const CPlanePoint& p : tears[1].m_aPoints) EXPECT_NEAR(p.x, 50, 2 * kPixel);
}

// Around a disc that is shorter than the upright step and longer than the 76 that are left of it.
TEST(SuggestTearsTest, WhatIsLeftCompetesByItsLength) {
  const auto forkAndDisc = [](double u, double v) {
    return ForkAt(u, v) + (std::hypot(u - 0.25, v - 0.5) < 0.14 ? 1.0 : 0.0);
  };
  const CDepthMap map = DepthMapOf(kFine, kFine, forkAndDisc);
  const std::vector<CTearProposal> tears = Suggest(map, 10);
  ASSERT_EQ(tears.size(), 3U);
  EXPECT_FALSE(tears[0].m_bClosed);
  EXPECT_TRUE(tears[1].m_bClosed);
  EXPECT_NEAR(LowestEnd(tears[2]), 24, 1.5 * kForkPixel);
  const std::vector<CTearProposal> two = Suggest(map, 2);
  ASSERT_EQ(two.size(), 2U);
  EXPECT_TRUE(two[1].m_bClosed);
}

TEST(SuggestTearsTest, ASmoothMapHasNone) {
  const CDepthMap map =
      DepthMapOf(kSize, kSize, [](double u, double v) { return std::sin(3 * u) * std::cos(4 * v) + u * u; });
  EXPECT_TRUE(Suggest(map, 100).empty());
  EXPECT_TRUE(Suggest(DepthMapOf(kSize, kSize, [](double, double) { return 3; }), 100).empty());
}

TEST(SuggestTearsTest, TheLongestComesFirstAndTheCountIsKept) {
  const CDepthMap map = DepthMapOf(kSize, kSize, SceneAt);
  const std::vector<CTearProposal> two = Suggest(map, 2);
  ASSERT_EQ(two.size(), 2U);
  EXPECT_GE(Traced({two[0]}).size(), Traced({two[1]}).size());
  EXPECT_TRUE(Suggest(map, 0).empty());
  EXPECT_LE(Suggest(map, 100).size(), 100U);
}

// A step from border to border, and a loop.
TEST(SuggestTearsTest, StepsReachTheBorderAndLoopsClose) {
  const std::vector<CTearProposal> step =
      Suggest(DepthMapOf(60, 60, [](double u, double) { return u < 0.42 ? 0 : 1; }), 1);
  ASSERT_EQ(step.size(), 1U);
  EXPECT_FALSE(step[0].m_bClosed);
  const auto [low, high] = std::ranges::minmax(step[0].m_aPoints, {}, &CPlanePoint::y);
  EXPECT_DOUBLE_EQ(low.y, 0);
  EXPECT_DOUBLE_EQ(high.y, 100);
  for (const CPlanePoint& p : step[0].m_aPoints) EXPECT_NEAR(p.x, 42, 100.0 / 60);
  const auto disc = [](double u, double v) { return IsInDisc(u, v) ? 1 : 0; };
  const std::vector<CTearProposal> loop = Suggest(Blurred(DepthMapOf(kSize, kSize, disc), 1), 1);
  ASSERT_EQ(loop.size(), 1U);
  EXPECT_TRUE(loop[0].m_bClosed);
}

// The map's step lies a pixel beside that of the photograph, which has four times its pixels a side.
TEST(SuggestTearsTest, APhotographSaysWhereTheEdgeIs) {
  const auto at = [](double edge) { return [edge](double u, double) { return u < edge ? 0 : 1; }; };
  const CDepthMap map = Blurred(DepthMapOf(kSize, kSize, at(0.5)), 1);
  CTopDownImage photograph{4 * kSize, 4 * kSize, {}};
  constexpr double kEdge = 0.5033;
  for (int row = 0; row < photograph.m_iHeight; ++row)
    for (int column = 0; column < photograph.m_iWidth; ++column)
      photograph.m_aPixels.insert(photograph.m_aPixels.end(), 3,
                                  (column + 0.5) / photograph.m_iWidth < kEdge ? 40 : 90);
  const CLinkCosts costs = ComputeLinkCosts(photograph);
  const std::vector<CTearProposal> proposals = Suggest(map, 1, &costs);
  ASSERT_EQ(proposals.size(), 1U);
  // To the border, where a photograph has no links of its own.
  for (const CPlanePoint& p : proposals[0].m_aPoints) EXPECT_NEAR(p.x, 100 * kEdge, 0.12) << p.y;
  const std::vector<CTearProposal> bare = Suggest(map, 1);
  for (const CPlanePoint& p : bare[0].m_aPoints) EXPECT_NEAR(p.x, 50, 0.12);
}

// A map whose values along its width are those of a profile over the columns. Its range is 0 to 1 whatever that says:
// in a corner, which nothing borders on, are these two.
template <typename Profile>
CDepthMap ProfileMap(int width, int height, const Profile& profile) {
  constexpr int kCorner = 3;
  constexpr double kNone = std::numeric_limits<double>::quiet_NaN();
  return DepthMapOf(width, height, [&](double u, double v) -> double {
    const double column = u * width - 0.5;
    const double row = v * height - 0.5;
    if (row >= height - kCorner && column < 2 * kCorner) return column < kCorner ? 0 : row > height - 2 ? 1 : kNone;
    return row >= height - 2 * kCorner ? kNone : profile(column);
  });
}

std::vector<CTearProposal> SuggestFrom(const CDepthMap& map, double share) {
  return SuggestTears(CDepthReading(map, false), {.m_iCount = 100, .m_fShare = share}, CExtent{}, nullptr);
}

// Small steps over and between the levels.
TEST(SuggestTearsTest, LevelsAreSixteenthsOfTheRange) {
  for (int level = 0; level < 16; ++level) {
    for (const auto& [low, high, count] : {std::tuple(-0.008, 0.008, level == 0 ? 0U : 1U), {0.003, 0.0595, 0U}}) {
      const double below = std::max(level / 16.0 + low, 0.0);
      const double above = level / 16.0 + high;
      const CDepthMap map = ProfileMap(200, 60, [&](double column) { return column < 100 ? below : above; });
      EXPECT_EQ(SuggestFrom(map, 0.005).size(), count) << level << ' ' << below << ' ' << above;
    }
  }
}

// A slope as wide as that many pixels, of which 20 are within a hundredth of the larger side, to either side.
TEST(SuggestTearsTest, TheRangeIsThatWithinAHundredthOfTheLargerSide) {
  for (const auto& [width, found] : {std::pair(278, true), {292, false}}) {
    const auto slope = [width = width](double place) { return std::clamp((place - 300) / width, 0.0, 1.0); };
    const auto alongX = [&](double u, double) { return slope(1000 * u - 0.5); };
    const auto alongY = [&](double, double v) { return slope(1000 * v - 0.5); };
    EXPECT_EQ(!Suggest(DepthMapOf(1000, 60, alongX), 10).empty(), found) << width;
    EXPECT_EQ(!Suggest(DepthMapOf(60, 1000, alongY), 10).empty(), found) << width;
  }
}

// A gentle slope crosses the level, and a step that crosses none is beside it: of 1000 columns 5 are within reach.
TEST(SuggestTearsTest, PointsMoveByHalfAPercentOfTheLargerSide) {
  for (const auto& [step, away, moved] :
       {std::tuple(505.5, 4.5, 4.5), {494.5, -4.5, -4.5}, {505.5, 5.75, 5.0}, {494.5, -5.75, -5.0}}) {
    const double crossing = step - away;
    const double height = std::copysign(0.035, away);
    const auto profile = [&, step = step, away = away](double column) {
      const bool beyond = away > 0 ? column > step : column < step;
      return 0.5 + 0.002 * std::clamp(column - crossing, -10.0, 10.0) + (beyond ? height : 0.0);
    };
    const std::vector<CTearProposal> tears = SuggestFrom(ProfileMap(1000, 60, profile), 0.03);
    ASSERT_EQ(tears.size(), 1U) << away;
    for (const CPlanePoint& p : tears[0].m_aPoints) {
      // Beside pixels without a value there is no gradient.
      if (p.y > 88) continue;
      EXPECT_NEAR(10 * p.x - 0.5, crossing + moved, 0.2) << away;
    }
  }
}

TEST(SuggestTearsTest, HolesHaveNoGapsAroundThem) {
  const auto hole = [](double u, double v) { return IsInDisc(u, v) ? std::numeric_limits<double>::quiet_NaN() : u; };
  EXPECT_TRUE(Suggest(DepthMapOf(kSize, kSize, hole), 10).empty());
}

}  // namespace
