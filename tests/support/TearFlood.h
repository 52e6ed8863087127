#pragma once

#include <array>
#include <set>
#include <vector>

#include "lattice/CLattice.h"
#include "quadtree/CQuadTree.h"

/// Columns and rows.
using CLatticePoints = std::set<std::array<int, 2>>;

/// The lattice points that uncut leaf edges, of whatever length, join to the one given: who gets from one side of a
/// tear to the other has found a way round it.
inline CLatticePoints ReachableFrom(const CQuadTree& tree, int x, int y) {
  const int side = tree.Lattice().PointsPerSide() - 1;
  CLatticePoints reached{{x, y}};
  std::vector<std::array<int, 2>> open{{x, y}};
  const auto tryEdge = [&](int xa, int ya, int xb, int yb, int toX, int toY) {
    const CEdge* edge = tree.FindEdge(xa, ya, xb, yb);
    if (edge == nullptr || !edge->IsLeaf() || edge->HasBothMarks()) return;
    if (reached.insert({toX, toY}).second) open.push_back({toX, toY});
  };
  while (!open.empty()) {
    const auto [px, py] = open.back();
    open.pop_back();
    for (int length = 1; length <= side; length *= 2) {
      tryEdge(px, py, px + length, py, px + length, py);
      tryEdge(px - length, py, px, py, px - length, py);
      tryEdge(px, py, px, py + length, px, py + length);
      tryEdge(px, py - length, px, py, px, py - length);
    }
  }
  return reached;
}
