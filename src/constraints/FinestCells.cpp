#include "constraints/FinestCells.h"

#include <algorithm>
#include <cstdint>

#include "base/Console.h"
#include "quadtree/CQuadTree.h"

namespace {

bool IsSubdividedDownTo(const CQuadTree& tree, int column, int row) {
  const int cells = 1 << tree.Level();
  return column >= 0 && row >= 0 && column < cells && row < cells && tree.CellAt(0, column, row).IsActive();
}

}  // namespace

void RefineToCell(CQuadTree& tree, int column, int row) {
  if (!IsSubdividedDownTo(tree, column, row)) tree.Root().subdiv(column, row, column + 1, row + 1, 0);
}

void RefineToPoint(CQuadTree& tree, double gx, double gy) {
  const int cells = 1 << tree.Level();
  const bool inside = gx >= 0 && gy >= 0 && gx <= cells && gy <= cells;
  if (!inside) return;
  RefineToCell(tree, std::min(static_cast<int>(gx), cells - 1), std::min(static_cast<int>(gy), cells - 1));
}

void SetGridCellMask2(CQuadTree& tree, int column, int row, int mask, int set) {
  if (!IsSubdividedDownTo(tree, column, row)) {
    Console() << "Error SetGridCellMask2 : trying to mark a cell that is not currently subdivided\n";
    return;
  }
  CQuadT& cell = tree.CellAt(0, column, row);
  const auto bits = static_cast<std::uint32_t>(mask);
  if (set != 0) {
    cell.SetFlags(bits);
  } else {
    cell.ClearFlags(bits);
  }
}
