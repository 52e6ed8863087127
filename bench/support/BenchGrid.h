#pragma once

#include <cstdint>
#include <random>
#include <sstream>

#include "base/Console.h"
#include "model/CGrid.h"
#include "model/Globals.h"

/// A headless grid, fully refined unless its base level says otherwise, silent, over 0..100 by 0..100.
class CBenchGrid {
 public:
  explicit CBenchGrid(int level) : CBenchGrid(level, level) {}
  CBenchGrid(int maxLevel, int baseLevel) : m_Redirect(m_Swallowed), m_Grid(AtLevels(maxLevel, baseLevel)) {}

  CGrid& Grid() { return m_Grid; }

  /// Random heights in 0..20, and random slopes in -1..1, well inside the model. The seed fixes the places.
  void AddHeights(int count, std::uint32_t seed) { Add(count, seed, PtCstrKind::kPosition); }
  void AddSlopes(int count, std::uint32_t seed) { Add(count, seed, PtCstrKind::kNormal); }
  /// Ticks until the solver pauses itself; returns the iterations done.
  int Converge() {
    while (m_Grid.Run().IsRunning()) m_Grid.UpdateGrid();
    return m_Grid.Solver().Counter();
  }

 private:
  static std::uint32_t AtLevels(int maxLevel, int baseLevel) {
    g_iMaxLevel = maxLevel;
    g_iBaseLevel = baseLevel;
    return 1;
  }
  void Add(int count, std::uint32_t seed, std::uint32_t kind) {
    std::mt19937 engine(seed);
    std::uniform_real_distribution<double> place(2.0, 98.0);
    std::uniform_real_distribution<double> unit(-1.0, 1.0);
    for (int i = 0; i < count; ++i) {
      CPtCstr record;
      record.m_uKind = kind;
      record.m_fX = place(engine);
      record.m_fY = place(engine);
      record.m_fZ = 10.0 + 10.0 * unit(engine);
      record.m_fP = unit(engine);
      record.m_fQ = unit(engine);
      m_Grid.AddPtCstr(record);
    }
  }

  std::ostringstream m_Swallowed;
  CConsoleRedirect m_Redirect;
  CGrid m_Grid;
};
