#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>

/// Measures how the cost per point of an operation grows with the level of the lattice, beside a plain triad
/// a[i] = b[i] + s c[i] over a working set of the same size, so that what the memory costs is not held against the
/// code.
///
/// Every operation is timed at levels 7 to 10; `RunAndReport` prints the time per point, the growth from the first
/// level to the last, the triad's growth, and the ratio of the two.
struct COperation {
  std::string m_Name;
  /// Prepares level `level` and returns what is timed.
  std::function<std::function<void()>(int level)> m_Prepare;
  /// Bytes that one call touches at that level.
  std::function<double(int level)> m_WorkingSet;
};

/// Number of points of the fully refined lattice of a level.
std::size_t PointCount(int level);

/// Registers `operations`, runs all registered benchmarks (command line as for any Google Benchmark program) and prints
/// the table. Returns the exit status of the program.
int RunAndReport(int argc, char** argv, const std::vector<COperation>& operations);
