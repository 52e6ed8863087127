// What the menu Inspect costs with 1000 constraints, all cells one step wide, at levels 7 and 10: what a look at an
// edited model takes, and each step of an influence between two events; in processor time.

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <ctime>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>

#include "drawing/COverlay.h"
#include "drawing/COverlayPainter.h"
#include "drawing/OverlayValues.h"
#include "insight/CInfluence.h"
#include "quadtree/SightLine.h"
#include "report/ConstraintReport.h"
#include "report/FloatingRegions.h"
#include "report/PlaceText.h"
#include "report/ReportText.h"
#include "report/TargetChanges.h"
#include "support/BenchGrid.h"

namespace {

constexpr int kMoves = 10000;
constexpr int kRounds = 5;

double ProcessorTime() {
  timespec now{};
  clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &now);
  return static_cast<double>(now.tv_sec) + 1e-9 * static_cast<double>(now.tv_nsec);
}

template <typename Timed>
double MillisecondsOf(Timed&& timed) {
  const double start = ProcessorTime();
  timed();
  return 1e3 * (ProcessorTime() - start);
}

// The best of some rounds.
template <typename Timed>
double Milliseconds(Timed&& timed) {
  double best = MillisecondsOf(timed);
  for (int round = 1; round < kRounds; ++round) best = std::min(best, MillisecondsOf(timed));
  return best;
}

void PrintMoves(const CGrid& grid) {
  std::mt19937 engine(5);
  std::uniform_real_distribution<double> place(1.0, 99.0);
  const CSurface& surface = grid.Surface();
  const CInterpolation interpolation = surface.Interpolation();
  std::string text;
  const double line = Milliseconds([&] {
    for (int k = 0; k < kMoves; ++k) DescribePlace(grid, {place(engine), place(engine)}, 1.0, text);
    benchmark::DoNotOptimize(text.data());
  });
  const double sight = Milliseconds([&] {
    for (int k = 0; k < kMoves; ++k) {
      const CSightLine from{{place(engine), place(engine), 10.0}, {0.7, 0.2, -0.4}};
      benchmark::DoNotOptimize(FirstSeen(interpolation, from, surface.MinHeight(), surface.MaxHeight()));
    }
  });
  std::printf("a move: the line of coordinates %.4f, the point in the model view %.4f\n", line / kMoves,
              sight / kMoves);
}

void Shade(const CGrid& grid, COverlayPainter& painter) {
  painter.Set(std::make_shared<const COverlay>(FloatingOverlay(grid)), grid.Surface().Tree(), grid.Surface().Order());
}

void PrintLooks(const CGrid& grid) {
  const double report = Milliseconds([&] {
    const CConstraintReport made = ReportOnConstraints(grid);
    for (std::size_t k = 0; k < made.m_aLines.size(); ++k) benchmark::DoNotOptimize(TextsOf(made, k).m_State.data());
  });
  const double regions = Milliseconds([&] { benchmark::DoNotOptimize(FloatingRegions(FreedomOf(grid)).data()); });
  COverlayPainter painter;
  const double shading = Milliseconds([&] { Shade(grid, painter); });
  std::printf("after an edit: the table %.1f, the regions in the report %.1f, the shading %.1f\n", report, regions,
              shading);
}

// The window takes targets and system, a thread of its own the iterations and the heights, the window the triangles.
void PrintInfluence(CGrid& grid) {
  const CPtCstr& constraint = *grid.Constraints().Points().begin();
  std::vector<double> change;
  const double targets = Milliseconds([&] { change = ChangeOfTargets(grid, constraint, ConstraintPart::Height); });
  std::unique_ptr<CInfluence> influence;
  const double system = Milliseconds([&] {
    influence = std::make_unique<CInfluence>(grid.Solver(), grid.Surface().Basis(), change, grid.SettlerOfChanges());
  });
  int iterations = 0;
  const double solved = MillisecondsOf([&] {
    while (!influence->Continue(1)) ++iterations;
  });
  // The triangles with the title, when it begins, and the values over them at the end.
  COverlay overlay;
  overlay.m_uTree = grid.Surface().Tree().Revision();
  const auto titled = std::make_shared<const COverlay>(overlay);
  overlay.m_afAtPoints = influence->Heights();
  SetEvenRange(overlay, 0.0);
  const auto shown = std::make_shared<const COverlay>(std::move(overlay));
  COverlayPainter painter;
  const auto set = [&](const std::shared_ptr<const COverlay>& next) {
    painter.Set(next, grid.Surface().Tree(), grid.Surface().Order());
  };
  double triangles = HUGE_VAL;
  double values = HUGE_VAL;
  for (int round = 0; round < kRounds; ++round) {
    set(nullptr);
    triangles = std::min(triangles, MillisecondsOf([&] { set(titled); }));
    values = std::min(values, MillisecondsOf([&] { set(shown); }));
  }
  std::printf("an influence: targets %.2f, system %.2f, triangles %.2f, values %.2f; ", targets, system, triangles,
              values);
  std::printf("beside the window %d iterations in %.0f\n", iterations, solved);
}

// A tear around a part without a constraint: that floats, and is settled by what is around it.
void PrintTorn(CGrid& grid) {
  const auto at = [](double x, double y) { return CPtCstr{.m_fX = x, .m_fY = y}; };
  grid.AddCurve(std::vector{at(10, 0.2), at(10, 1.9), at(90, 1.9), at(90, 0.2)}, CurveType::kPosition, true);
  grid.Run().SetRunning(true);
  grid.UpdateGrid();
  // After a change of the tear, all of it; the triangles stay where another edit is made.
  double torn = HUGE_VAL;
  for (int round = 0; round < kRounds; ++round) {
    COverlayPainter painter;
    torn = std::min(torn, MillisecondsOf([&] { Shade(grid, painter); }));
  }
  COverlayPainter painter;
  const double shading = Milliseconds([&] { Shade(grid, painter); });
  grid.SetSettling(true);
  grid.UpdateGrid();
  std::vector<double> change = ChangeOfTargets(grid, *grid.Constraints().Points().begin(), ConstraintPart::Height);
  const double system = Milliseconds([&] {
    const CInfluence influence(grid.Solver(), grid.Surface().Basis(), change, grid.SettlerOfChanges());
    benchmark::DoNotOptimize(influence.IsDone());
  });
  std::printf("with a region that floats: the shading %.1f, after an edit of the tear %.1f\n", shading, torn);
  std::printf("with a region that is settled: system %.2f\n", system);
}

}  // namespace

int main() {
  std::printf("milliseconds of processor time\n");
  for (const int level : {7, 10}) {
    CBenchGrid bench(level);
    bench.AddHeights(900, 3);
    bench.AddSlopes(100, 4);
    for (int k = 0; k < 5; ++k) bench.Grid().UpdateGrid();
    std::printf("%d^2\n", (1 << level) + 1);
    PrintMoves(bench.Grid());
    PrintLooks(bench.Grid());
    PrintTorn(bench.Grid());
    bench.Grid().SetSettling(false);
    PrintInfluence(bench.Grid());
    std::fflush(stdout);
  }
}
