// What holds of every clean mesh, over random subdivisions and random tears.

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <map>
#include <set>
#include <utility>
#include <vector>

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include "constraints/TearLines.h"
#include "support/CleanMeshBuilders.h"

namespace {

constexpr double kOnePoint = 1.0 / 4096;

// Levels 3 to 5, with cells up to four steps wide, split and merged at random; random heights.
struct CRandomGrid : CTornGrid {
  explicit CRandomGrid(std::uint32_t seed)
      : CTornGrid(RandomTears(seed, 1 << LevelOf(seed)), LevelOf(seed), LevelOf(seed) - static_cast<int>(seed / 3 % 3),
                  seed) {
    SetRandomHeights(Lattice(), seed);
  }
  static int LevelOf(std::uint32_t seed) { return 3 + static_cast<int>(seed % 3); }
};

// In cells. The ends of a line that lies within a triangle or two join, and it opens nothing.
double FarthestFromCuts(CTornGrid& grid, const CMeshJudge& judge) {
  double farthest = 0.0;
  for (const CGridSegment& s : TearLines(grid.m_Grid.Constraints().Curves(), grid.Lattice())) {
    if (std::hypot(s.x1 - s.x0, s.y1 - s.y0) < 1.5) continue;
    for (int k = 0; k <= 20; ++k) {
      const double share = k / 20.0;
      farthest = std::max(farthest, judge.FromCuts({s.x0 + share * (s.x1 - s.x0), s.y0 + share * (s.y1 - s.y0)}));
    }
  }
  return farthest;
}

// In cells, between vertices at different places.
double LeastDistance(const CCleanMesh& mesh, const CMeshJudge& judge) {
  std::set<CMeshJudge::CPlaceKey> seen;
  std::vector<CMeshJudge::CPoint> points;
  for (std::uint32_t v = 0; v < mesh.Vertices().size(); ++v) {
    if (seen.insert(judge.KeyOf(v)).second) points.push_back(judge.At(v));
  }
  std::ranges::sort(points);
  double least = 1.0;
  for (std::size_t a = 0; a < points.size(); ++a) {
    for (std::size_t b = a + 1; b < points.size() && points[b][0] - points[a][0] < least; ++b)
      least = std::min(least, std::hypot(points[b][0] - points[a][0], points[b][1] - points[a][1]));
  }
  return least;
}

using CWrittenPoint = std::array<float, 3>;

// How often more the written side from one point to another is there than the way back, for those off the border.
int UnbalancedSides(const CCleanMesh& mesh, const CMeshJudge& judge) {
  std::map<std::pair<CWrittenPoint, CWrittenPoint>, int> balance;
  const auto add = [&](std::span<const std::uint32_t> triangles) {
    for (std::size_t t = 0; t < triangles.size(); t += 3) {
      for (std::size_t k = 0; k < 3; ++k) {
        const CMeshJudge::CSide side{triangles[t + k], triangles[t + (k + 1) % 3]};
        const CWrittenPoint from = mesh.Written(side.m_uFrom);
        const CWrittenPoint to = mesh.Written(side.m_uTo);
        if (judge.IsBorder(side)) continue;
        from < to ? ++balance[{from, to}] : --balance[{to, from}];
      }
    }
  };
  add(mesh.Triangles());
  add(mesh.Walls());
  return static_cast<int>(std::ranges::count_if(balance, [](const auto& side) { return side.second != 0; }));
}

}  // namespace

RC_GTEST_PROP(CleanMeshProperty, SurfaceCoversTheRectangleOnceAndIsCutAlongTheCurves, (std::uint32_t seed)) {
  CRandomGrid grid(seed);
  const CCleanMesh mesh = grid.Mesh();
  const CMeshJudge judge(grid, mesh);
  RC_ASSERT(std::abs(judge.Covered() - 1.0) < 1e-9);
  RC_ASSERT(judge.BadAsWritten() == 0);
  RC_ASSERT(judge.SharedTwice() == 0);
  RC_ASSERT(judge.Cracks() == 0);
  RC_ASSERT(FarthestFromCuts(grid, judge) < 8 * kOnePoint);
  RC_ASSERT(LeastDistance(mesh, judge) >= kOnePoint);
}

RC_GTEST_PROP(CleanMeshProperty, WallsCloseTheTears, (std::uint32_t seed)) {
  CRandomGrid grid(seed);
  const CCleanMesh mesh = grid.Mesh({.m_Gap = TearGap::Wall, .m_fScale = 3.7, .m_fHeightScale = 0.3});
  const CMeshJudge judge(grid, mesh);
  RC_ASSERT(std::abs(judge.Covered() - 1.0) < 1e-9);
  RC_ASSERT(judge.BadAsWritten() == 0);
  RC_ASSERT(judge.SharedTwice() == 0);
  RC_ASSERT(UnbalancedSides(mesh, judge) == 0);
}
