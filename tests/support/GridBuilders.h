#pragma once

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <random>
#include <span>
#include <vector>

#include "model/CGrid.h"
#include "model/Globals.h"
#include "support/ConsoleCapture.h"
#include "support/TreeBuilders.h"

inline constexpr std::array kAllModes{WaveletMode::None, WaveletMode::Simple, WaveletMode::New};

/// Sets the process-wide resolution for one test and puts it back.
class CResolutionScope {
 public:
  CResolutionScope(int maxLevel, int baseLevel)
      : m_iMaxLevel(g_iMaxLevel), m_iBaseLevel(g_iBaseLevel), m_bHighRes(g_bHighRes) {
    g_iMaxLevel = maxLevel;
    g_iBaseLevel = baseLevel;
  }
  ~CResolutionScope() {
    g_iMaxLevel = m_iMaxLevel;
    g_iBaseLevel = m_iBaseLevel;
    g_bHighRes = m_bHighRes;
  }
  CResolutionScope(const CResolutionScope&) = delete;
  CResolutionScope& operator=(const CResolutionScope&) = delete;

 private:
  int m_iMaxLevel;
  int m_iBaseLevel;
  int m_bHighRes;
};

/// A grid over `kOblong` with its own resolution, whose console lines are collected.
struct CTestGrid {
  explicit CTestGrid(int maxLevel = 4, int baseLevel = 2) : m_Scope(maxLevel, baseLevel) {
    Initialize(baseLevel);
    m_Console.Take();
  }
  void Initialize(int level, bool keep = false) {
    m_Grid.Initialize(level, keep, kOblong.x0, kOblong.y0, kOblong.x1, kOblong.y1);
  }

  CResolutionScope m_Scope;
  ConsoleCapture m_Console;
  CGrid m_Grid;
};

/// The number of a pending operation, and the operation of a number.
constexpr int CodeOf(Operation operation) { return static_cast<int>(operation); }
constexpr Operation OperationOf(int code) { return static_cast<Operation>(code); }

/// A host that remembers what it was asked. Counts that were never shown are -1.
class RecordingHost : public GridHost {
 public:
  void RequestRedraw() override { ++m_iRedraws; }
  void ShowInterpolation(const CInterpolationTrace& trace) override { m_aTraces.push_back(trace); }
  void ShowIterations(int iterations) override { m_iIterations = iterations; }
  void ShowResolution(int leaves, int points) override {
    m_iLeaves = leaves;
    m_iPoints = points;
  }
  void ShowConstraints(int count) override { m_iConstraints = count; }
  void ProcessEvents() override { ++m_iEventRounds; }
  void PerformCommand(Operation operation) override { m_aiCommands.push_back(CodeOf(operation)); }
  void PauseSolverConverged() override { ++m_iPauses; }
  void ResumeAfterChange() override { ++m_iResumptions; }

  int m_iRedraws = 0;
  std::vector<CInterpolationTrace> m_aTraces;
  int m_iIterations = -1;
  int m_iLeaves = -1;
  int m_iPoints = -1;
  int m_iConstraints = -1;
  int m_iEventRounds = 0;
  std::vector<int> m_aiCommands;
  int m_iPauses = 0;
  int m_iResumptions = 0;
};

/// `count` independent uniform values in -1..1, the same for the same seed.
inline std::vector<double> RandomValues(std::uint32_t seed, std::size_t count) {
  std::mt19937 random(seed);
  std::uniform_real_distribution<double> value(-1.0, 1.0);
  std::vector<double> values(count);
  for (double& v : values) v = value(random);
  return values;
}

inline double LargestDifference(std::span<const double> a, std::span<const double> b) {
  if (a.size() != b.size()) return HUGE_VAL;
  double largest = 0.0;
  for (std::size_t k = 0; k < a.size(); ++k) largest = std::fmax(largest, std::abs(a[k] - b[k]));
  return largest;
}

/// The values at the numbered points of an array with one entry per lattice point, in the point order.
inline std::vector<double> Gathered(const CPointOrder& order, std::span<const double> byPoint) {
  std::vector<double> byUnknown(order.Count());
  for (std::size_t k = 0; k < order.Count(); ++k) byUnknown[k] = byPoint[order.PointOf(k)];
  return byUnknown;
}

/// A vector over the unknowns, laid out by scan position instead of by number, and back.
inline std::vector<double> ByScan(const CPointOrder& order, std::span<const double> byUnknown) {
  std::vector<double> byScan(byUnknown.begin(), byUnknown.end());
  for (std::size_t k = 0; k < order.Count(); ++k) byScan[order.ScanOf(k)] = byUnknown[k];
  return byScan;
}
inline std::vector<double> ByUnknown(const CPointOrder& order, std::span<const double> byScan) {
  std::vector<double> byUnknown(byScan.begin(), byScan.end());
  for (std::size_t k = 0; k < order.Count(); ++k) byUnknown[k] = byScan[order.ScanOf(k)];
  return byUnknown;
}

/// Gives the surface the heights of a field at the points in use.
template <typename Field>
void SetSurface(CGrid& grid, const Field& field) {
  std::vector<double> byPoint(grid.Surface().Lattice().PointCount());
  FillHeights(grid.Surface().Lattice(), byPoint, field);
  grid.Surface().Basis().W(ByScan(grid.Surface().Order(), Gathered(grid.Surface().Order(), byPoint)),
                           grid.Surface().Coefficients());
  grid.Surface().Reconstruct();
}
/// Random heights in -1..1 at the points in use.
inline void SetRandomSurface(CGrid& grid, std::uint32_t seed) {
  grid.Surface().Basis().W(RandomValues(seed, grid.Surface().Order().Count()), grid.Surface().Coefficients());
  grid.Surface().Reconstruct();
}

/// Heights in the point order.
inline std::vector<double> NodalHeights(const CGrid& grid) {
  return Gathered(grid.Surface().Order(), grid.Surface().Lattice().Heights());
}
/// Heights of the surface at all lattice points (row * n + column), interpolated between the points in use.
inline std::vector<double> SurfaceOnLattice(const CGrid& grid) {
  const CLattice& lattice = grid.Surface().Lattice();
  std::vector<double> heights(lattice.PointCount());
  for (int row = 0; row < lattice.PointsPerSide(); ++row) {
    for (int column = 0; column < lattice.PointsPerSide(); ++column)
      heights[lattice.Index(column, row)] = grid.Surface().Interpolation().HeightAt(column, row);
  }
  return heights;
}

/// Makes a node of the wanted subdivision a leaf, whatever was below it.
inline void MakeSavedLeaf(CSaveQuadT& node) {
  node.SetLeaf(true);
  if (!node.HasChildren()) return;
  for (int k = 0; k < 4; ++k) {
    MakeSavedLeaf(node.Child(k));
    node.Child(k).SetLeaf(false);
  }
}
/// The node reached from the record's root through the given children.
inline CSaveQuadT& SavedNode(CSubdivisionRecord& record, const std::vector<int>& path) {
  CSaveQuadT* node = &record.Root();
  for (const int child : path) node = &node->Child(child);
  return *node;
}
/// Splits and merges leaves of the wanted subdivision at random, the same for the same seed.
inline void RandomiseRecord(CSubdivisionRecord& record, std::uint32_t seed, int count = 12) {
  std::mt19937 random(seed);
  for (int change = 0; change < count; ++change) {
    CSaveQuadT* node = &record.Root();
    const bool merge = random() % 4 == 0;
    while (!node->IsLeaf() && !(merge && random() % 3 == 0)) node = &node->Child(static_cast<int>(random() % 4));
    if (merge) {
      MakeSavedLeaf(*node);
    } else if (node->HasChildren()) {
      node->subdiv();
    }
  }
}

/// Columns and rows of the parents of unknown `k` as its level code gives them; none for the corners.
inline std::vector<std::array<int, 2>> ParentsByCode(const CPointOrder& order, std::size_t k) {
  if (k < 4) return {};
  const int c = order.ColumnOf(k);
  const int r = order.RowOf(k);
  const int code = order.LevelCode(k);
  if (code % 2 != 0) {
    const int s = 1 << ((2 * order.Level() - code + 1) / 2);
    return {{c, r - s}, {c + s, r}, {c, r + s}, {c - s, r}};
  }
  const int s = 1 << ((2 * order.Level() - std::abs(code)) / 2);
  if (code >= 1) return {{c - s, r}, {c + s, r}};
  return {{c, r - s}, {c, r + s}};
}

/// Numbers of those parents that the mode counts, found through the tree's edge look-up.
inline std::vector<std::size_t> CountedParents(const CTestTree& tree, std::size_t k, WaveletMode mode) {
  const CPointOrder& order = tree.m_Order;
  const int c = order.ColumnOf(k);
  const int r = order.RowOf(k);
  std::vector<std::size_t> counted;
  for (const auto& [column, row] : ParentsByCode(order, k)) {
    const CEdge* edge =
        tree.m_Tree.FindEdge(std::min(c, column), std::min(r, row), std::max(c, column), std::max(r, row));
    if (mode == WaveletMode::Simple || (mode == WaveletMode::New && edge->IsContinuous(mode)))
      counted.push_back(static_cast<std::size_t>(order.NumberOf(tree.m_Lattice.Index(column, row))));
  }
  return counted;
}
