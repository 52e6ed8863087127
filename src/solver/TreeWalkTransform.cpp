#include "solver/TreeWalkTransform.h"

#include <algorithm>

#include "lattice/CLattice.h"
#include "quadtree/CQuadTree.h"

namespace {

double MeanOfJoinedSides(const CQuadT& cell, const CLattice& lattice, WaveletMode mode,
                         std::span<const double> values) {
  double sum = 0.0;
  int count = 0;
  const auto inner = cell.InnerEdges();
  for (int side = 0; side < 4; ++side) {
    if (!inner[static_cast<std::size_t>(side)]->IsContinuous(mode)) continue;
    sum += values[lattice.Index(cell.Edge(side).XMid(), cell.Edge(side).YMid())];
    ++count;
  }
  return count > 0 ? sum / count : 0.0;
}

// `edge` computes the midpoint of one side, `centre` the centre from the mean of its joined sides.
template <typename EdgeStep, typename CentreStep>
void Walk(const CQuadT& cell, EdgeStep& edge, CentreStep& centre) {
  if (cell.IsActive() || !cell.HasChildren()) return;
  for (int side = 0; side < 4; ++side) edge(cell.Edge(side));
  centre(cell);
  for (int k = 0; k < 4; ++k) Walk(cell.Child(k), edge, centre);
}

}  // namespace

void WalkW(CQuadTree& tree, WaveletMode mode, std::span<const double> heights, std::span<double> coefs) {
  CLattice& lattice = tree.Lattice();
  if (mode == WaveletMode::None) {
    std::ranges::copy(heights, coefs.begin());
    return;
  }
  lattice.ClearAll(PointFlag::kComputed);
  for (int k = 0; k < 4; ++k) {
    const auto [column, row] = tree.Root().Corner(k);
    coefs[lattice.Index(column, row)] = heights[lattice.Index(column, row)];
  }
  auto edge = [&](const CEdge& e) { e.ComputeEdgeIfNeeded_W(heights, coefs, lattice, mode); };
  auto centre = [&](const CQuadT& cell) {
    const std::size_t point = lattice.Index(cell.XMid(), cell.YMid());
    coefs[point] = heights[point] - MeanOfJoinedSides(cell, lattice, mode, heights);
  };
  Walk(tree.Root(), edge, centre);
}
