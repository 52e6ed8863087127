// A full rebuild of the map with long curves: tears, creases, fair lines and generated constraints across the picture.

#include <cstdio>
#include <random>
#include <vector>

#include "support/BenchGrid.h"
#include "support/LeanLoop.h"
#include "support/Timing.h"

namespace {

constexpr int kCurves = 10;
constexpr int kNodes = 20;

// Zigzags from the left border to the right one, one above the other; the seed fixes the nodes.
std::vector<CPtCstr> Zigzag(int which, std::mt19937& engine) {
  std::uniform_real_distribution<double> jitter(-4.0, 4.0);
  std::vector<CPtCstr> nodes(kNodes);
  for (int k = 0; k < kNodes; ++k) {
    nodes[static_cast<std::size_t>(k)].m_fX = 0.1 + 99.8 * k / (kNodes - 1);
    nodes[static_cast<std::size_t>(k)].m_fY = 5.0 + 90.0 * which / (kCurves - 1) + jitter(engine);
  }
  return nodes;
}

// At the base level of new grids under the given maximum, so that the curves alone ask for the fine cells.
void AddCurves(CGrid& grid) {
  std::mt19937 engine(7);
  for (int k = 0; k < kCurves; ++k) {
    const auto type = static_cast<CurveType>(1U << (k % 3));
    grid.AddCurve(Zigzag(k, engine), type, false);
    const CCntrCtrl& curve = grid.Constraints().Curves().back();
    CContourAttributes attributes = CContourAttributes::Of(curve, curve.Nodes().front());
    attributes.m_Weights = {.m_fLeftCurvature = 1, .m_fLeftTorsion = 1};
    attributes.m_bLeftAutoBump = k % 4 == 0;
    grid.CurveEdits().SetAttributes(curve.Id(), 0, attributes, type, true);
  }
}

double RebuildSeconds(CGrid& grid, int calls) {
  return SecondsPerCall(calls, [&grid] {
    grid.Run().Post(Operation::kRebuildMaps);
    grid.PerformPendingWork();
  });
}

struct CCost {
  double m_fSeconds;
  double m_fPlain;  ///< without curves
  double m_fCells;
};

enum class WithPicture { No, Yes };

CCost CostAt(int level, int baseLevel, WithPicture withPicture, int calls) {
  CBenchGrid bench(level, baseLevel);
  CGrid& grid = bench.Grid();
  if (withPicture == WithPicture::Yes) {
    constexpr int kWidth = 600;
    constexpr int kHeight = 400;
    grid.Relighting().SetPicture({kWidth, kHeight, std::vector<std::uint8_t>(3UL * kWidth * kHeight, 128)});
  }
  const double plain = RebuildSeconds(grid, calls);
  AddCurves(grid);
  const double seconds = RebuildSeconds(grid, calls);
  return {seconds, plain, static_cast<double>(grid.Surface().Tree().LeafCount())};
}

void Report(const char* name, int baseBelow, WithPicture withPicture = WithPicture::No) {
  std::printf("%s\n%-6s %10s %10s %10s %10s %12s %14s\n", name, "level", "leaves", "ms", "lean", "no curves", "ns/leaf",
              "ns/leaf growth");
  double first = 0.0;
  for (const int level : {7, 8, 9, 10}) {
    const int calls = level <= 8 ? 5 : 1;
    CLeanLoop lean(level);
    const double unit = SecondsPerCall(calls, [&] { lean.Iterate(); });
    const CCost cost = CostAt(level, level - baseBelow, withPicture, calls);
    const double perLeaf = cost.m_fSeconds / cost.m_fCells;
    if (first == 0.0) first = perLeaf;
    std::printf("%-6d %10.0f %10.2f %10.1f %10.1f %12.1f %14.2f\n", level, cost.m_fCells, cost.m_fSeconds * 1e3,
                cost.m_fSeconds / unit, cost.m_fPlain / unit, perLeaf * 1e9, perLeaf / first);
  }
  std::printf("lean, no curves: in units of one lean iteration on the full lattice\n\n");
}

}  // namespace

int main() {
  std::printf("rebuild of the map with %d curves of %d nodes\n\n", kCurves, kNodes);
  Report("base level two below the maximum", 2);
  Report("full resolution everywhere", 0);
  Report("base level two below the maximum, with a picture of 600 x 400", 2, WithPicture::Yes);
  Report("full resolution everywhere, with a picture of 600 x 400", 0, WithPicture::Yes);
}
