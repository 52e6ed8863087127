#pragma once

#include <algorithm>
#include <chrono>
#include <limits>

/// Seconds of one call of `timed`.
template <typename Timed>
double Seconds(Timed&& timed) {
  const auto start = std::chrono::steady_clock::now();
  timed();
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

/// Seconds per call, the best of five rounds of `calls` calls each.
template <typename Timed>
double SecondsPerCall(int calls, Timed&& timed) {
  double best = std::numeric_limits<double>::infinity();
  for (int round = 0; round < 5; ++round) {
    best = std::min(best, Seconds([&] {
                            for (int i = 0; i < calls; ++i) timed();
                          }) / calls);
  }
  return best;
}
