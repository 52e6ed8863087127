#pragma once

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <utility>
#include <vector>

#include "insight/CFreedom.h"
#include "support/CStaging.h"
#include "support/CurveBuilders.h"
#include "support/TearFlood.h"
#include "support/UpdateBuilders.h"

inline constexpr double kSettled = 1e-7;  // of heights of some units

/// 100 by 100 units in steps of 100 / 32, with constraints and tears, solved as far as it goes.
struct CTornGrid {
  explicit CTornGrid(WaveletMode mode = WaveletMode::New) : m_Scope(5, 5) {
    m_Grid.Initialize(5, false, 0, 0, 100, 100);
    m_Grid.Builder().SetWaveletMode(mode);
  }
  void Tear(const CPlaces& places, bool closed = false) { m_Grid.AddCurve(PointsAt(places), kTear, closed); }
  void Fair(const CPlaces& places) {
    m_Grid.AddCurve(PointsAt(places), kFair, false);
    CurveAt(CStaging::Constraints(m_Grid).Curves(), static_cast<int>(m_Grid.Constraints().Curves().size()) - 1)
        .SetAllWeights(1, 1, 1, 1);
  }
  // A random surface first, as the program begins with, but of heights that show.
  void Solve() {
    m_Grid.PerformPendingWork();
    SetRandomSurface(m_Grid, 7);
    RunUntilPaused(m_Grid);
  }
  double At(double x, double y) const { return SurfaceHeight(m_Grid, x, y); }
  std::vector<double> Heights() const { return NodalHeights(m_Grid); }
  CFreedom Freedom() const {
    CFreedom freedom;
    freedom.Build(m_Grid.Surface().Tree(), m_Grid.Surface().Order(), m_Grid.Solver().System().Constraints(),
                  m_Grid.Solver().CurveTerms());
    return freedom;
  }

  CResolutionScope m_Scope;
  ConsoleCapture m_Console;
  CGrid m_Grid;
};

/// The plane 2 + 0.1 x + 0.3 y on the left of a tear from border to border, and nothing on the right.
struct CHalves : CTornGrid {
  explicit CHalves(WaveletMode mode = WaveletMode::New) : CTornGrid(mode) {
    Tear({{51, 1}, {51, 99}});
    AddAll(m_Grid, {HeightCstr(10, 10, 6), HeightCstr(40, 10, 9), HeightCstr(10, 90, 30)});
  }
};

/// What a closed tear about the middle of the model is placed by, formed a second time, with its inside moved by a
/// plane.
inline double Misplacement(const CTornGrid& test, const CRamp& move) {
  const CLattice& lattice = test.m_Grid.Surface().Lattice();
  const CLatticePoints inside = ReachableFrom(test.m_Grid.Surface().Tree(), 16, 16);
  const auto height = [&](int column, int row) {
    const bool moved = inside.contains({column, row});
    return lattice.Heights()[lattice.Index(column, row)] + (moved ? move(lattice.XOf(column), lattice.YOf(row)) : 0.0);
  };
  double gap = 0;
  double steepness = 0;
  int gaps = 0;
  int slopes = 0;
  double low = 100;
  double high = 0;
  for (const auto& [column, row] : inside) {
    low = std::min(low, lattice.XOf(column));
    high = std::max(high, lattice.XOf(column));
    for (const auto& [dx, dy] : {std::pair(1, 0), {-1, 0}, {0, 1}, {0, -1}}) {
      const CEdge* edge = test.m_Grid.Surface().Tree().FindEdge(std::min(column, column + dx), std::min(row, row + dy),
                                                                std::max(column, column + dx), std::max(row, row + dy));
      const double rise = height(column + dx, row + dy) - height(column, row);
      if (edge->HasBothMarks()) {
        if (inside.contains({column + dx, row + dy})) continue;
        gap += rise * rise;
        ++gaps;
      }
    }
  }
  // Each triangle stands for its outer side, of which there are as many along x as along y.
  for (const CLeaf& leaf : test.m_Grid.Surface().Tree().Leaves()) {
    for (int k = 0; k < 4; ++k) {
      const auto a = leaf.m_pCell->Corner(k);
      const auto b = leaf.m_pCell->Corner((k + 1) % 4);
      if ((leaf.m_uMarked >> k & 1) != 0 || !inside.contains(a)) continue;
      steepness += 2 * std::pow((height(b[0], b[1]) - height(a[0], a[1])) / 3.125, 2);
      ++slopes;
    }
  }
  const double squaredDiagonal = 2 * (high - low) * (high - low);
  return gap / gaps + 1e-4 * squaredDiagonal * steepness / slopes;
}
