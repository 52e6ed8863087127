#pragma once

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <map>
#include <sstream>
#include <string>
#include <vector>

#include "support/TreeBuilders.h"

/// What a tree must look like, by rules much simpler than the tree's own: the level of the active leaf over every unit
/// cell, and the flags that marking gave to each cell.
class CReferenceTree {
 public:
  CReferenceTree(int level, int startLevel)
      : m_iLevel(level), m_aiLeafLevels(std::size_t{1} << (2 * level), level - startLevel) {}

  /// The counterpart of `Apply` on a tree.
  void Apply(const CTreeOp& op) {
    const int level = static_cast<int>(op.m_uLevel % static_cast<std::uint32_t>(m_iLevel + 1));
    const std::uint32_t cells = 1U << (m_iLevel - level);
    const int i = static_cast<int>(op.m_uColumn % cells);
    const int j = static_cast<int>(op.m_uRow % cells);
    if (op.m_Kind == CTreeOp::Kind::kSplit) {
      SplitLeafAt(i << level, j << level);
    } else {
      MakeLeaf(level, i, j, op.m_Kind == CTreeOp::Kind::kMark ? op.m_uFlags & 63 : 0);
    }
  }

  int Level() const { return m_iLevel; }
  int Side() const { return 1 << m_iLevel; }
  /// Level of the leaf over the unit cell.
  int LeafLevel(int column, int row) const { return m_aiLeafLevels[UnitCell(column, row)]; }
  bool IsActive(int level, int i, int j) const { return LeafLevel(i << level, j << level) == level; }
  std::uint32_t Flags(int level, int i, int j) const {
    const auto found = m_auFlags.find({level, i, j});
    return found == m_auFlags.end() ? 0 : found->second;
  }
  int LeafCount() const {
    int count = 0;
    for (int level = 0; level <= m_iLevel; ++level) {
      for (int j = 0; j < Side() >> level; ++j) {
        for (int i = 0; i < Side() >> level; ++i) count += IsActive(level, i, j) ? 1 : 0;
      }
    }
    return count;
  }

  /// Whether the horizontal (vertical) edge of `level` from (x, y) is a side of a leaf that no smaller leaf splits.
  bool IsLeafEdge(bool horizontal, int level, int x, int y) const {
    const int dx = horizontal ? 0 : 1;
    const int dy = horizontal ? 1 : 0;
    const bool hasUpper = x < Side() && y < Side();
    const bool hasLower = x - dx >= 0 && y - dy >= 0;
    const int upper = hasUpper ? LeafLevel(x, y) : m_iLevel;
    const int lower = hasLower ? LeafLevel(x - dx, y - dy) : m_iLevel;
    const int across = horizontal ? y : x;
    const bool inside = hasUpper && hasLower && upper == lower && across % (1 << upper) != 0;
    return !inside && std::min(upper, lower) == level;
  }

  /// Per lattice point (row * n + column): whether it is a corner of a leaf.
  std::vector<bool> PointsInUse() const {
    const auto n = static_cast<std::size_t>(Side()) + 1;
    std::vector<bool> used(n * n, false);
    for (int row = 0; row < Side(); ++row) {
      for (int column = 0; column < Side(); ++column) {
        const int size = 1 << LeafLevel(column, row);
        const int x0 = column / size * size;
        const int y0 = row / size * size;
        for (const int y : {y0, y0 + size}) {
          for (const int x : {x0, x0 + size})
            used[static_cast<std::size_t>(y) * n + static_cast<std::size_t>(x)] = true;
        }
      }
    }
    return used;
  }

 private:
  std::size_t UnitCell(int column, int row) const {
    return static_cast<std::size_t>(row) * static_cast<std::size_t>(Side()) + static_cast<std::size_t>(column);
  }
  void SetLevel(int level, int i, int j, int leafLevel) {
    for (int row = j << level; row < (j + 1) << level; ++row) {
      for (int column = i << level; column < (i + 1) << level; ++column)
        m_aiLeafLevels[UnitCell(column, row)] = leafLevel;
    }
  }
  void SplitLeafAt(int column, int row) {
    const int level = LeafLevel(column, row);
    if (level > 0) SetLevel(level, column >> level, row >> level, level - 1);
  }
  void MakeLeaf(int level, int i, int j, std::uint32_t flags) {
    const bool existed = LeafLevel(i << level, j << level) <= level;
    while (LeafLevel(i << level, j << level) > level) SplitLeafAt(i << level, j << level);
    if (flags == 0) {
      SetLevel(level, i, j, level);
      return;
    }
    std::uint32_t& word = m_auFlags[{level, i, j}];
    word |= flags;
    if (existed && std::popcount(word & 15) == 3) word |= 15;
  }

  int m_iLevel;
  std::vector<int> m_aiLeafLevels;
  std::map<std::array<int, 3>, std::uint32_t> m_auFlags;
};

// The comparisons name the first difference, or give "" where there is none.

/// Stop flags of all cells, leaf flags of all edges, in-use flags of all points.
inline std::string MismatchOfSubdivision(const CQuadTree& tree, const CReferenceTree& reference) {
  std::ostringstream out;
  const int side = reference.Side();
  for (int level = 0; level <= tree.Level(); ++level) {
    const int size = 1 << level;
    for (int y = 0; y <= side; y += size) {
      for (int x = 0; x <= side; x += size) {
        const int i = x >> level;
        const int j = y >> level;
        if (x < side && y < side && tree.CellAt(level, i, j).IsActive() != reference.IsActive(level, i, j))
          out << "stop flag of cell " << x << ", " << y << " of level " << level;
        if (x < side && tree.HorizontalEdge(level, x, y).IsLeaf() != reference.IsLeafEdge(true, level, x, y))
          out << "leaf flag of the horizontal edge at " << x << ", " << y << " of level " << level;
        if (y < side && tree.VerticalEdge(level, x, y).IsLeaf() != reference.IsLeafEdge(false, level, x, y))
          out << "leaf flag of the vertical edge at " << x << ", " << y << " of level " << level;
        if (!out.str().empty()) return out.str();
      }
    }
  }
  const std::vector<bool> used = reference.PointsInUse();
  for (std::size_t point = 0; point < used.size(); ++point) {
    if (tree.Lattice().Has(point, PointFlag::kInUse) != used[point])
      return "in-use flag of point " + std::to_string(point);
  }
  return {};
}

/// Flag words of all cells.
inline std::string MismatchOfFlags(const CQuadTree& tree, const CReferenceTree& reference) {
  for (int level = 0; level <= tree.Level(); ++level) {
    for (int j = 0; j < reference.Side() >> level; ++j) {
      for (int i = 0; i < reference.Side() >> level; ++i) {
        if (tree.CellAt(level, i, j).Flags() == reference.Flags(level, i, j)) continue;
        std::ostringstream out;
        out << "flags of cell " << i << ", " << j << " of level " << level;
        return out.str();
      }
    }
  }
  return {};
}

/// Marks of all edges: each from the flags of the two cells of its own size beside it; beyond the border all is marked.
inline std::string MismatchOfMarks(const CQuadTree& tree, const CReferenceTree& reference) {
  const auto flag = [&](int level, int i, int j, Side side) {
    const int cells = reference.Side() >> level;
    if (i < 0 || j < 0 || i >= cells || j >= cells) return true;
    return (reference.Flags(level, i, j) >> side & 1) != 0;
  };
  const auto differs = [](const CEdge& edge, bool aboveOrLeft, bool belowOrRight) {
    return edge.HasMark(2) != aboveOrLeft || edge.HasMark(4) != belowOrRight;
  };
  std::ostringstream out;
  for (int level = 0; level <= tree.Level(); ++level) {
    const int cells = reference.Side() >> level;
    for (int j = 0; j <= cells; ++j) {
      for (int i = 0; i <= cells; ++i) {
        if (i < cells && differs(tree.HorizontalEdge(level, i << level, j << level), flag(level, i, j, kBottom),
                                 flag(level, i, j - 1, kTop)))
          out << "marks of the horizontal edge ";
        else if (j < cells && differs(tree.VerticalEdge(level, i << level, j << level), flag(level, i - 1, j, kRight),
                                      flag(level, i, j, kLeft)))
          out << "marks of the vertical edge ";
        else
          continue;
        out << i << ", " << j << " of level " << level;
        return out.str();
      }
    }
  }
  return {};
}
