#pragma once

#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <ostream>
#include <random>
#include <span>
#include <vector>

#include "lattice/CLattice.h"
#include "quadtree/CPointOrder.h"
#include "quadtree/CQuadTree.h"
#include "quadtree/Interpolation.h"

/// A model rectangle that is neither square nor at the origin, so that x taken for y, or a forgotten offset, shows.
inline constexpr CExtent kOblong{-3.5, 12.5, 20.0, 26.0};

/// A lattice with its tree, numbering and interpolation, outside of any grid.
struct CTestTree {
  /// As constructed: the unit cells active, no point in use, heights 0.
  explicit CTestTree(int level, const CExtent& extent = kOblong) : m_Lattice(level), m_Tree(m_Lattice) {
    m_Lattice.SetExtent(extent);
    m_Order.Reset(level);
  }
  /// With the cells `startLevel` generations below the root active, and numbered.
  CTestTree(int level, int startLevel, const CExtent& extent = kOblong) : CTestTree(level, extent) {
    m_Tree.SetStartLevel(startLevel);
    Settle();
  }

  CQuadT& Root() { return m_Tree.Root(); }
  /// Brings edge marks and numbering up to the present flags and subdivision.
  void Settle() {
    m_Tree.RefreshEdgeMarks();
    m_Order.Build(m_Tree);
  }

  CLattice m_Lattice;
  CQuadTree m_Tree;
  CPointOrder m_Order;
  CInterpolation m_Surface{m_Tree, m_Order};
};

/// The height of the lattice at a column and a row.
inline double& Z(CTestTree& test, int column, int row) {
  return test.m_Lattice.Heights()[test.m_Lattice.Index(column, row)];
}

// Height fields, functions of x and y in model units.

struct CFlat {
  double m_fZ = 0.0;
  double operator()(double /*x*/, double /*y*/) const { return m_fZ; }
};

/// The plane c + a x + b y.
struct CRamp {
  double m_fA = 0.25;
  double m_fB = -1.5;
  double m_fC = 4.0;
  double operator()(double x, double y) const { return m_fC + m_fA * x + m_fB * y; }
  /// Its upward unit normal.
  Vector3 Normal() const { return Normalised({-m_fA, -m_fB, 1.0}); }
};

/// A round hill of height 3 about (x, y).
struct CBump {
  double m_fX = 4.0;
  double m_fY = 23.0;
  double m_fRadius = 2.5;
  double operator()(double x, double y) const {
    const double r = std::hypot(x - m_fX, y - m_fY) / m_fRadius;
    return 3.0 * std::exp(-r * r);
  }
};

/// A cliff: `m_fLow` left of x, `m_fHigh` from x on.
struct CStep {
  double m_fX = 4.0;
  double m_fLow = -1.0;
  double m_fHigh = 2.0;
  double operator()(double x, double /*y*/) const { return x < m_fX ? m_fLow : m_fHigh; }
};

/// `heights` (row * n + column) of the field at every lattice point, in use or not.
template <typename Field>
void FillHeights(const CLattice& lattice, std::span<double> heights, const Field& field) {
  for (int row = 0; row < lattice.PointsPerSide(); ++row) {
    for (int column = 0; column < lattice.PointsPerSide(); ++column)
      heights[lattice.Index(column, row)] = field(lattice.XOf(column), lattice.YOf(row));
  }
}
template <typename Field>
void SetHeights(CLattice& lattice, const Field& field) {
  FillHeights(lattice, lattice.Heights(), field);
}
/// Independent uniform heights in -1..1 at every lattice point.
inline void SetRandomHeights(CLattice& lattice, std::uint32_t seed) {
  std::mt19937 random(seed);
  std::uniform_real_distribution<double> height(-1.0, 1.0);
  for (double& z : lattice.Heights()) z = height(random);
}

/// `subdiv` by rectangle on the root, for the cell of `level` in cell column `i` and cell row `j`.
inline CQuadT* MakeLeaf(CQuadTree& tree, int level, int i, int j, std::uint32_t flags = 0) {
  const CQuadT& cell = tree.CellAt(level, i, j);
  return tree.Root().subdiv(cell.X0(), cell.Y0(), cell.X1(), cell.Y1(), flags);
}

/// One random change of a tree, meaningful for a tree of any level: the cell is the one of level `m_uLevel` modulo the
/// number of levels, its column and row modulo their number there.
struct CTreeOp {
  enum class Kind { kMakeLeaf, kMark, kSplit };
  Kind m_Kind = Kind::kMakeLeaf;
  std::uint32_t m_uLevel = 0;
  std::uint32_t m_uColumn = 0;
  std::uint32_t m_uRow = 0;
  std::uint32_t m_uFlags = 0;  ///< of kMark: some bits of CellFlag::kMarkable
};

inline std::ostream& operator<<(std::ostream& out, const CTreeOp& op) {
  static constexpr std::array kNames{"leaf", "mark", "split"};
  return out << kNames[static_cast<std::size_t>(op.m_Kind)] << " level " << op.m_uLevel << " cell " << op.m_uColumn
             << ", " << op.m_uRow << " flags " << op.m_uFlags;
}

/// kMakeLeaf refines or coarsens to the cell, kMark makes it exist and adds flags to it, kSplit splits (with
/// interpolation) the active leaf that holds the cell's lower left point.
inline void Apply(CQuadTree& tree, const CTreeOp& op) {
  const int level = static_cast<int>(op.m_uLevel % static_cast<std::uint32_t>(tree.Level() + 1));
  const std::uint32_t cells = 1U << (tree.Level() - level);
  const int i = static_cast<int>(op.m_uColumn % cells);
  const int j = static_cast<int>(op.m_uRow % cells);
  if (op.m_Kind != CTreeOp::Kind::kSplit) {
    MakeLeaf(tree, level, i, j, op.m_Kind == CTreeOp::Kind::kMark ? op.m_uFlags & CellFlag::kMarkable : 0);
    return;
  }
  CQuadT* leaf = tree.PointInCell_g(i << level, j << level);
  if (leaf->HasChildren()) leaf->subdiv(true);
}

/// `count` random changes, the same for the same seed.
inline std::vector<CTreeOp> RandomOps(std::uint32_t seed, std::size_t count) {
  std::mt19937 random(seed);
  std::vector<CTreeOp> ops(count);
  for (CTreeOp& op : ops) {
    op.m_Kind = static_cast<CTreeOp::Kind>(random() % 3);
    op.m_uLevel = static_cast<std::uint32_t>(random());
    op.m_uColumn = static_cast<std::uint32_t>(random());
    op.m_uRow = static_cast<std::uint32_t>(random());
    op.m_uFlags = 1 + static_cast<std::uint32_t>(random() % CellFlag::kMarkable);
  }
  return ops;
}

inline void ApplyAll(CQuadTree& tree, const std::vector<CTreeOp>& ops) {
  for (const CTreeOp& op : ops) Apply(tree, op);
}

/// Refines, coarsens and marks at random; edge marks up to date afterwards. The same tree for the same seed.
inline void Randomise(CQuadTree& tree, std::uint32_t seed, std::size_t count = 12) {
  ApplyAll(tree, RandomOps(seed, count));
  tree.RefreshEdgeMarks();
}
