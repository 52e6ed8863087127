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
#include "support/CStripJudge.h"
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
  for (std::uint32_t v = 0; v < mesh.VertexCount(); ++v) {
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

// Of `kCells` of a cell, at random.
double WidthOf(std::uint32_t seed, CTornGrid& grid) {
  constexpr std::array kCells{0.3, 1.0, 2.5, 6.0};
  return kCells[seed / 7 % kCells.size()] * (grid.Lattice().XOf(1) - grid.Lattice().XOf(0));
}

// A point in a triangle: its middle, or one next to a corner.
struct CInside {
  CMeshJudge::CPoint m_At{};
  double m_fZ = 0.0;
};
CInside PointIn(const CTriangleFinder& finder, std::span<const std::uint32_t> corners, std::size_t nextTo) {
  CInside inside;
  for (std::size_t k = 0; k < 3; ++k) {
    const double share = nextTo == 3 ? 1.0 / 3 : nextTo == k ? 0.98 : 0.01;
    for (std::size_t axis = 0; axis < 2; ++axis) inside.m_At[axis] += share * finder.At(corners[k])[axis];
    inside.m_fZ += share * finder.ZAt(corners[k]);
  }
  return inside;
}

// Strip triangles that rise above the surface somewhere, or lie outside of it. What rounding moves a vertex by shows in
// the heights of the steepest triangles, between points of two cuts next to each other.
int RisingAbove(const CCleanMesh& mesh, const CTriangleFinder& surface, const CTriangleFinder& strips) {
  constexpr double kRounding = 5e-3;
  int rising = 0;
  for (std::size_t t = 0; t < mesh.Strips().size(); t += 3) {
    for (std::size_t nextTo = 0; nextTo <= 3; ++nextTo) {
      const CInside inside = PointIn(strips, mesh.Strips().subspan(t, 3), nextTo);
      const auto above = surface.Over(inside.m_At);
      if (!above || inside.m_fZ > above->m_fHigh + kRounding) ++rising;
    }
  }
  return rising;
}

// Points behind a tear and within the width from it that nothing lies below. Round a bend, an end inside the surface
// stops a strip from twice as far.
int Uncovered(const CCutSides& cuts, const CTriangleFinder& strips, double width) {
  int uncovered = 0;
  for (const auto& cut : cuts.Cuts()) {
    for (const double share : {0.1, 0.5, 0.9}) {
      const auto there = [share](const std::array<double, 2>& ends) { return ends[0] + share * (ends[1] - ends[0]); };
      if (there(cut.m_afStep) < 1e-3 || std::min(cut.m_afToEnd[0], cut.m_afToEnd[1]) < 2 * width) continue;
      for (const double part : {0.02, 0.4, 0.8, 0.99, 0.9999}) {
        const auto p = cuts.Behind(cut, share, part * width);
        if (p && !strips.Over(*p)) ++uncovered;
      }
    }
  }
  return uncovered;
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

// Where cuts once had points nearer to each other: with two triangles without room between them, or more.
TEST(CleanMeshProperty, PointsOfCutsKeepTheirDistanceThroughTrianglesWithoutRoom) {
  for (const std::uint32_t seed : {3308U, 5308U, 7653U, 7897U, 7953U, 10350U, 10905U, 13771U, 17140U, 18710U}) {
    CRandomGrid grid(seed);
    const CCleanMesh mesh = grid.Mesh();
    const CMeshJudge judge(grid, mesh);
    EXPECT_GE(LeastDistance(mesh, judge), kOnePoint) << seed;
    EXPECT_LT(FarthestFromCuts(grid, judge), 8 * kOnePoint) << seed;
  }
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

RC_GTEST_PROP(CleanMeshProperty, LowerSideRunsOnBeneathTheHigherOne, (std::uint32_t seed)) {
  CRandomGrid grid(seed);
  const double width = WidthOf(seed, grid);
  const CCleanMesh mesh = grid.Mesh({.m_Gap = TearGap::Under, .m_fUnderWidth = width});
  const CMeshJudge judge(grid, mesh);
  const CTriangleFinder surface(grid, mesh, mesh.Triangles());
  const CTriangleFinder strips(grid, mesh, mesh.Strips());
  for (std::size_t at = 0; at < mesh.VertexCount(); ++at) {
    const CCleanMesh::CVertex v = mesh.Vertex(at);
    RC_ASSERT(std::isfinite(v.m_fZ));
    RC_ASSERT(v.m_Picture.u >= 0 && v.m_Picture.u <= 1 && v.m_Picture.v >= 0 && v.m_Picture.v <= 1);
  }
  RC_ASSERT(RisingAbove(mesh, surface, strips) == 0);
  RC_ASSERT(Uncovered(CCutSides(grid, judge), strips, width) == 0);
}

// Where strips once fell short: their outer edge is straight within each triangle, and one that narrows may be nearer.
TEST(CleanMeshProperty, StripsReachTheirWholeWidthRoundBendsToo) {
  for (const std::uint32_t seed : {142U, 421U, 746U, 25496U, 101414U, 102308U, 103085U, 2881732U}) {
    CRandomGrid grid(seed);
    const double width = WidthOf(seed, grid);
    const CCleanMesh mesh = grid.Mesh({.m_Gap = TearGap::Under, .m_fUnderWidth = width});
    const CMeshJudge judge(grid, mesh);
    EXPECT_EQ(Uncovered(CCutSides(grid, judge), CTriangleFinder(grid, mesh, mesh.Strips()), width), 0) << seed;
  }
}

RC_GTEST_PROP(CleanMeshProperty, StripsLeaveTheSurfaceAsItIs, (std::uint32_t seed)) {
  CRandomGrid grid(seed);
  const CCleanMesh open = grid.Mesh();
  const CCleanMesh under = grid.Mesh({.m_Gap = TearGap::Under});
  RC_ASSERT(open.Triangles().size() == under.Triangles().size());
  const CMeshJudge judge(grid, under);
  RC_ASSERT(std::abs(judge.Covered() - 1.0) < 1e-9);
  RC_ASSERT(judge.BadAsWritten() == 0);
  RC_ASSERT(judge.SharedTwice() == 0);
  RC_ASSERT(judge.Cracks() == 0);
}
