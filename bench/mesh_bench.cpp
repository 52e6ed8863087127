// The clean mesh of a surface with a closed tear, in units of the plain one: building CSurfaceMesh, and placing and
// raising its vertices. All cells one step wide, levels 7 and 10.

#include <cmath>
#include <cstdio>
#include <numbers>
#include <span>
#include <sstream>
#include <vector>

#include <benchmark/benchmark.h>

#include "base/Console.h"
#include "mesh/CCleanMesh.h"
#include "model/CGrid.h"
#include "model/Globals.h"
#include "support/Timing.h"

namespace {

constexpr double kSide = 100.0;

// A circle of 600 nodes, as the scissors would trace it.
std::vector<CPtCstr> Circle() {
  std::vector<CPtCstr> nodes(600);
  for (std::size_t k = 0; k < nodes.size(); ++k) {
    const double angle = 2 * std::numbers::pi * static_cast<double>(k) / static_cast<double>(nodes.size());
    nodes[k].m_fX = kSide * (0.5 + 0.3 * std::cos(angle));
    nodes[k].m_fY = kSide * (0.5 + 0.3 * std::sin(angle));
  }
  return nodes;
}

void Compare(int level) {
  g_iMaxLevel = level;
  CGrid grid;
  grid.Initialize(level, false, 0.0, 0.0, kSide, kSide);
  grid.AddCurve(Circle(), CurveType::kPosition, true);
  grid.PerformPendingWork();
  grid.Surface().Tree().ListLeaves();
  const CQuadTree& tree = grid.Surface().Tree();
  const int calls = level < 9 ? 10 : 1;
  CSurfaceMesh plain;
  const double before = SecondsPerCall(calls, [&] {
    plain.Build(tree);
    std::vector<double> positions;
    plain.Place(tree, positions);
    plain.Raise(tree, std::span(positions));
    benchmark::DoNotOptimize(positions.data());
  });
  const auto clean = [&](TearGap gap) {
    return SecondsPerCall(calls, [&] {
      const CCleanMesh mesh(tree, plain, grid.Constraints().Curves(), {.m_Gap = gap});
      benchmark::DoNotOptimize(mesh.Triangles().data());
    });
  };
  std::printf("level %2d: plain mesh %7.2f ms; clean mesh %5.2f of it, with walls %5.2f\n", level, 1e3 * before,
              clean(TearGap::Open) / before, clean(TearGap::Wall) / before);
}

}  // namespace

int main() {
  std::ostringstream nowhere;
  const CConsoleRedirect quiet(nowhere);
  Compare(7);
  Compare(10);
}
