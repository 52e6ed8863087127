#pragma once

#include <cstddef>
#include <span>

#include "quadtree/CQuadTree.h"

/// What `WalkInvW` does for one split cell and those within it.
inline void WalkInvWFrom(const CQuadT& cell, CLattice& lattice, WaveletMode mode, std::span<double> values) {
  if (cell.IsActive() || !cell.HasChildren()) return;
  double sum = 0.0;
  int count = 0;
  for (int side = 0; side < 4; ++side) {
    const CEdge& edge = cell.Edge(side);
    edge.ComputeEdgeIfNeeded(values, lattice, mode);
    if (!cell.InnerEdges()[static_cast<std::size_t>(side)]->IsContinuous(mode)) continue;
    sum += values[lattice.Index(edge.XMid(), edge.YMid())];
    ++count;
  }
  values[lattice.Index(cell.XMid(), cell.YMid())] += count > 0 ? sum / count : 0.0;
  for (int k = 0; k < 4; ++k) WalkInvWFrom(cell.Child(k), lattice, mode, values);
}

/// The inverse of `WalkW`, in place: coefficients to heights.
inline void WalkInvW(CQuadTree& tree, WaveletMode mode, std::span<double> values) {
  if (mode == WaveletMode::None) return;
  tree.Lattice().ClearAll(PointFlag::kComputed);
  WalkInvWFrom(tree.Root(), tree.Lattice(), mode, values);
}
