// The solver beside the lean loop: one iteration, a tick, a rebuild; and how long it takes to converge, in all units.

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <limits>
#include <string>
#include <vector>

#include "solver/BasisEnergies.h"
#include "support/BenchGrid.h"
#include "support/LeanLoop.h"
#include "support/Timing.h"

namespace {

double TriadBytesPerSecond(std::size_t bytes) {
  const std::size_t count = bytes / (3 * sizeof(double));
  std::vector<double> a(count, 0.0);
  const std::vector<double> b(count, 1.0);
  const std::vector<double> c(count, 2.0);
  double factor = 0.5;
  const double seconds = SecondsPerCall(20, [&] {
    for (std::size_t i = 0; i < count; ++i) a[i] = b[i] + factor * c[i];
    factor = a[count / 2] > 0 ? 0.25 : 0.5;
  });
  return static_cast<double>(3 * sizeof(double) * count) / seconds;
}

// Of a tick in which the solver iterates: it begins again before it can have converged, and the first tick is left out.
double SecondsPerTick(CGrid& grid, int ticks) {
  constexpr int kTicksPerStart = 4;
  double best = std::numeric_limits<double>::infinity();
  for (int done = 0; done < ticks; done += kTicksPerStart) {
    grid.Reset();
    grid.UpdateGrid();
    best = std::min(best, Seconds([&] {
                            for (int tick = 0; tick < kTicksPerStart; ++tick) grid.UpdateGrid();
                          }) / kTicksPerStart);
  }
  return best;
}

void ReportCosts() {
  std::printf("%-6s %12s %10s %8s %8s %8s %8s %8s %14s\n", "grid", "lean us", "iteration", "tick", "surface", "rebuild",
              "scale", "maps", "GB/s (triad)");
  for (const int level : {5, 7, 8, 9, 10}) {
    const int calls = level <= 7 ? 100 : level == 8 ? 20 : 5;
    CLeanLoop lean(level);
    const double unit = SecondsPerCall(calls, [&] { lean.Iterate(); });
    CBenchGrid bench(level);
    CGrid& grid = bench.Grid();
    bench.AddHeights(25, 3);
    grid.UpdateGrid();
    const double tick = SecondsPerTick(grid, calls);
    const double surface = SecondsPerCall(calls / 5, [&] {
      grid.Surface().Reconstruct();
      grid.RefreshNormalCstrHeights();
    });
    const auto rebuild = [&](Operation operation) {
      return SecondsPerCall(2, [&] {
        grid.Run().Post(operation);
        grid.PerformPendingWork();
      });
    };
    const double scale = SecondsPerCall(
        1, [&] { BasisEnergies(grid.Solver().System().Smoothness(), grid.Surface().Basis(), grid.Surface().Order()); });
    const double iteration = (tick - surface) / (CGridRun::kIterationsPerTick + 1);
    std::printf("%-6d %12.1f %10.2f %8.1f %8.1f %8.1f %8.1f %8.1f %7.1f (%.1f)\n", (1 << level) + 1, unit * 1e6,
                iteration / unit, tick / unit, surface / unit, rebuild(Operation::kRebuild) / unit, scale / unit,
                rebuild(Operation::kRebuildMaps) / unit, lean.BytesPerIteration() / unit * 1e-9,
                TriadBytesPerSecond(static_cast<std::size_t>(lean.BytesPerIteration())) * 1e-9);
  }
  std::printf(
      "iteration, tick, surface, rebuild (for a constraint that comes or goes), scale (of the basis, where matrix or\n"
      "basis have changed) and maps in units of one lean iteration; 25 constraints\n\n");
}

// A circle of tears, a crease and a fairness curve, each of so many nodes.
void AddCurves(CGrid& grid) {
  constexpr int kNodes = 24;
  std::vector<CPtCstr> circle(kNodes);
  std::vector<CPtCstr> crease(kNodes);
  std::vector<CPtCstr> wave(kNodes);
  for (std::size_t k = 0; k < kNodes; ++k) {
    const double share = static_cast<double>(k) / kNodes;
    const double angle = share * 2.0 * std::acos(-1.0);
    circle[k].m_fX = 45.0 + 30.0 * std::cos(angle);
    circle[k].m_fY = 55.0 + 25.0 * std::sin(angle);
    crease[k].m_fX = 10.0 + 80.0 * share;
    crease[k].m_fY = 12.0 + 10.0 * share;
    wave[k].m_fX = 10.0 + 80.0 * share;
    wave[k].m_fY = 50.0 + 8.0 * std::sin(2.0 * angle);
  }
  grid.AddCurve(circle, CurveType::kPosition, true);
  grid.AddCurve(crease, CurveType::kNormal, false);
  grid.AddCurve(wave, CurveType::kFairness, false);
}

// The basis of a tree that is refined along curves, against the lean iteration for each of its points.
void ReportRefinedScale() {
  for (const int level : {7, 9, 10}) {
    CLeanLoop lean(level);
    const double unit = SecondsPerCall(5, [&] { lean.Iterate(); }) / static_cast<double>(lean.Size());
    CBenchGrid bench(level, 5);
    CGrid& grid = bench.Grid();
    AddCurves(grid);
    grid.SetDiscMap();
    const CSurface& surface = grid.Surface();
    const double scale = SecondsPerCall(
        1, [&] { BasisEnergies(grid.Solver().System().Smoothness(), surface.Basis(), surface.Order()); });
    const auto points = static_cast<double>(surface.Order().Count());
    std::printf("scale of a tree refined along curves from 33^2 to %d^2, %.0f points: %.1f\n", (1 << level) + 1, points,
                scale / (unit * points));
  }
  std::printf("in units of one lean iteration on as many points\n\n");
}

struct CCase {
  const char* m_Name;
  int m_iHeights;
  int m_iSlopes;
};

struct CReached {
  int m_iIterations = 0;
  double m_fSeconds = 0.0;
};

double LargestDifference(const std::vector<double>& a, const std::vector<double>& b) {
  double largest = 0.0;
  for (std::size_t i = 0; i < a.size(); ++i) largest = std::max(largest, std::abs(a[i] - b[i]));
  return largest;
}

void AddConstraints(CBenchGrid& bench, const CCase& what) {
  bench.AddHeights(what.m_iHeights, 11);
  bench.AddSlopes(what.m_iSlopes, 12);
}

// Iterations and seconds until the largest error falls below the share of the height range, from the random start.
CReached TimeTo(double share, const CCase& what, WaveletMode mode, int level, const std::vector<double>& exact,
                double range) {
  CBenchGrid bench(level);
  CGrid& grid = bench.Grid();
  grid.Builder().SetWaveletMode(mode);
  grid.Reset();
  AddConstraints(bench, what);
  CReached reached;
  do {
    reached.m_fSeconds += Seconds([&] { grid.UpdateGrid(); });
  } while (LargestDifference(grid.Surface().Lattice().Heights(), exact) > share * range && grid.Run().IsRunning());
  reached.m_iIterations = grid.Solver().Counter();
  return reached;
}

// Iterations to 1% and 0.1% of the range after a height has been moved by a tenth of it.
void ReportMovedHeight(int level) {
  const CCase what{"10 heights", 10, 0};
  std::array<int, 2> iterations{};
  for (std::size_t k = 0; k < iterations.size(); ++k) {
    CBenchGrid bench(level);
    AddConstraints(bench, what);
    bench.Converge();
    CGrid& grid = bench.Grid();
    const double range = grid.Surface().MaxHeight() - grid.Surface().MinHeight();
    const CPtCstr& first = *grid.Constraints().Points().begin();
    grid.UnselectAll();
    grid.SelectPtCstr(first.m_fX, first.m_fY, PtCstrKind::kPosition);
    const double height = first.m_fZ;
    grid.SetSelectedHeight(height + range / 10);
    bench.Converge();
    const std::vector<double> exact = grid.Surface().Lattice().Heights();
    grid.SetSelectedHeight(height);
    bench.Converge();
    grid.SetSelectedHeight(height + range / 10);
    do grid.UpdateGrid();
    while (LargestDifference(grid.Surface().Lattice().Heights(), exact) > (k == 0 ? 0.01 : 0.001) * range &&
           grid.Run().IsRunning());
    iterations[k] = grid.Solver().Counter();
  }
  std::printf("a height moved by a tenth of the range at %d^2: %d iterations to 1%%, %d to 0.1%%\n", (1 << level) + 1,
              iterations[0], iterations[1]);
}

// Ticks a sample from a flat surface until the error is below the share, or to the pause where `exact` is empty.
int FlatSample(const char* name, double share, double& range, std::vector<double>& exact) {
  CBenchGrid bench(7, 5);
  CGrid& grid = bench.Grid();
  grid.Load(std::string(RELIEVO_SAMPLES "/") + name);
  grid.PerformPendingWork();
  grid.Builder().SetHeights(std::vector<double>(static_cast<std::size_t>(grid.Surface().ActivePointCount()), 0.0));
  grid.Run().SetRunning(true);
  int ticks = 0;
  do {
    grid.UpdateGrid();
    ++ticks;
  } while (grid.Run().IsRunning() &&
           (exact.empty() || LargestDifference(grid.Surface().Lattice().Heights(), exact) > share * range));
  if (exact.empty()) exact = grid.Surface().Lattice().Heights();
  range = grid.Surface().MaxHeight() - grid.Surface().MinHeight();
  return ticks * (CGridRun::kIterationsPerTick + 1);
}

void ReportSamples() {
  for (const char* name : {"coffee.grid", "cat.grid"}) {
    std::vector<double> exact;
    double range = 0.0;
    const int pause = FlatSample(name, 0, range, exact);
    const double whole = range;
    double ignored = whole;
    const int percent = FlatSample(name, 0.01, ignored, exact);
    ignored = whole;
    const int permille = FlatSample(name, 0.001, ignored, exact);
    std::printf("samples/%s from a flat surface: %d iterations to 1%%, %d to 0.1%%, %d to the pause\n", name, percent,
                permille, pause);
  }
}

void ReportConvergence(int level) {
  std::printf("convergence at %d^2 from the random start: iterations and seconds until the largest error is below\n",
              (1 << level) + 1);
  std::printf("%-22s %-8s %18s %18s\n", "constraints", "mode", "1% of the range", "0.1%");
  for (const CCase& what : {CCase{"1 height", 1, 0}, CCase{"10 heights", 10, 0}, CCase{"50 heights", 50, 0},
                            CCase{"10 heights, 5 slopes", 10, 5}}) {
    CBenchGrid bench(level);
    AddConstraints(bench, what);
    bench.Converge();
    const std::vector<double> exact = bench.Grid().Surface().Lattice().Heights();
    const double range = std::max(bench.Grid().Surface().MaxHeight() - bench.Grid().Surface().MinHeight(), 1.0);
    for (const auto& [mode, name] : {std::pair{WaveletMode::New, "new"}, std::pair{WaveletMode::Simple, "simple"},
                                     std::pair{WaveletMode::None, "none"}}) {
      const CReached percent = TimeTo(0.01, what, mode, level, exact, range);
      const CReached permille = TimeTo(0.001, what, mode, level, exact, range);
      std::printf("%-22s %-8s %8d %9.3f %8d %9.3f\n", what.m_Name, name, percent.m_iIterations, percent.m_fSeconds,
                  permille.m_iIterations, permille.m_fSeconds);
    }
  }
}

void ReportSizes() {
  for (const int level : {8, 9}) {
    const CCase what{"10 heights", 10, 0};
    CBenchGrid bench(level);
    AddConstraints(bench, what);
    bench.Converge();
    const std::vector<double> exact = bench.Grid().Surface().Lattice().Heights();
    const double range = bench.Grid().Surface().MaxHeight() - bench.Grid().Surface().MinHeight();
    const CReached percent = TimeTo(0.01, what, WaveletMode::New, level, exact, range);
    std::printf("10 heights at %d^2: %d iterations to 1%%\n", (1 << level) + 1, percent.m_iIterations);
  }
}

}  // namespace

int main() {
  ReportCosts();
  ReportRefinedScale();
  ReportConvergence(7);
  ReportSizes();
  ReportMovedHeight(7);
  ReportSamples();
}
