// What the menu Inspect costs at level 7, all cells one step wide, with 1000 constraints: a move of the mouse with the
// line of coordinates, in units of one descent of the tree, and the steps of an influence, in units of ten iterations.

#include <cstdio>
#include <random>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>

#include "insight/CInfluence.h"
#include "quadtree/SightLine.h"
#include "report/PlaceText.h"
#include "report/TargetChanges.h"
#include "support/BenchGrid.h"
#include "support/Timing.h"

namespace {

constexpr int kMoves = 10000;

void CompareMoves(const CGrid& grid) {
  std::mt19937 engine(5);
  std::uniform_real_distribution<double> place(1.0, 99.0);
  const CSurface& surface = grid.Surface();
  const CInterpolation interpolation = surface.Interpolation();
  const double descent = SecondsPerCall(kMoves, [&] {
    const CLattice& lattice = surface.Lattice();
    benchmark::DoNotOptimize(interpolation.ShortStencil(lattice.ColumnOf(place(engine)), lattice.RowOf(place(engine))));
  });
  std::string text;
  const double line = SecondsPerCall(kMoves, [&] {
    DescribePlace(grid, {place(engine), place(engine)}, 1.0, text);
    benchmark::DoNotOptimize(text.data());
  });
  const double sight = SecondsPerCall(kMoves, [&] {
    const CSightLine from{{place(engine), place(engine), 10.0}, {0.7, 0.2, -0.4}};
    benchmark::DoNotOptimize(FirstSeen(interpolation, from, surface.MinHeight(), surface.MaxHeight()));
  });
  std::printf("a descent %.2f us; the line of coordinates %.1f of it, the point in the model view %.1f\n",
              1e6 * descent, line / descent, sight / descent);
}

void CompareSteps(CGrid& grid) {
  const double tick = SecondsPerCall(10, [&] { grid.UpdateGrid(); });
  const CPtCstr& constraint = *grid.Constraints().Points().begin();
  const auto change = [&] { return ChangeOfTargets(grid, constraint, ConstraintPart::Height); };
  const double targets = SecondsPerCall(10, [&] { benchmark::DoNotOptimize(change().data()); });
  const std::vector<double> changed = change();
  const double system = SecondsPerCall(10, [&] {
    const CInfluence influence(grid.Solver(), grid.Surface().Basis(), changed);
    benchmark::DoNotOptimize(influence.IsDone());
  });
  const double first = SecondsPerCall(10, [&] {
    CInfluence influence(grid.Solver(), grid.Surface().Basis(), changed);
    benchmark::DoNotOptimize(influence.Continue(1));
  });
  std::printf("a tick %.2f ms; of an influence the targets %.2f of it, the system %.2f, the first iteration %.2f\n",
              1e3 * tick, targets / tick, system / tick, (first - system) / tick);
}

}  // namespace

int main() {
  constexpr int kLevel = 7;
  CBenchGrid bench(kLevel);
  bench.AddHeights(900, 3);
  bench.AddSlopes(100, 4);
  for (int k = 0; k < 30; ++k) bench.Grid().UpdateGrid();
  CompareMoves(bench.Grid());
  CompareSteps(bench.Grid());
}
