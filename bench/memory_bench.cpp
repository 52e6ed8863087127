// The memory of a whole process with a solved grid, from level 7 to level 10.

#include <cstdio>
#include <cstdlib>

#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include "support/BenchGrid.h"

namespace {

// One tick, so that the grid has its system, its solver and its surface.
void Solve(int level) {
  CBenchGrid bench(level);
  bench.AddHeights(10, 3);
  bench.Grid().UpdateGrid();
}

// A process of its own for each level, so that its peak is its own, too. In bytes.
double PeakOf(int level) {
  const pid_t child = fork();
  if (child == 0) {
    Solve(level);
    std::_Exit(EXIT_SUCCESS);
  }
  int status = 0;
  rusage usage{};
  if (child < 0 || wait4(child, &status, 0, &usage) != child || status != 0) return 0.0;
  return 1024.0 * static_cast<double>(usage.ru_maxrss);
}

}  // namespace

int main() {
  std::printf("peak of a process that refines a grid fully and solves for one tick\n\n");
  std::printf("%-6s %10s %10s %16s\n", "level", "points", "MB", "bytes per point");
  for (const int level : {7, 8, 9, 10}) {
    const double side = (1 << level) + 1;
    const double peak = PeakOf(level);
    std::printf("%-6d %10.0f %10.0f %16.0f\n", level, side * side, peak / 1e6, peak / (side * side));
  }
}
