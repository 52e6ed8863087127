#include "quadtree/CentreWeights.h"

#include "lattice/CLattice.h"
#include "quadtree/CEdge.h"
#include "quadtree/CQuadT.h"

CCentreWeights CentreWeightsOf(const CQuadT& leaf, const CLattice& lattice) {
  // Border points in the order lower left corner, bottom midpoint, lower right corner, ... counter-clockwise.
  std::array<double, 8> weights{};
  const bool all = (leaf.Flags() & CellFlag::kTriangles) == CellFlag::kTriangles;
  double total = 0.0;
  for (std::size_t side = 0; side < 4; ++side) {
    if (!all && leaf.HasFlag(1U << side)) continue;
    if (leaf.Edge(static_cast<int>(side)).IsLeaf()) {
      weights[2 * side] += 0.125;
      weights[(2 * side + 2) % 8] += 0.125;
    } else {
      weights[2 * side + 1] += 0.25;
    }
    total += 0.25;
  }
  const std::array<int, 8> columns{leaf.X0(), leaf.XMid(), leaf.X1(), leaf.X1(),
                                   leaf.X1(), leaf.XMid(), leaf.X0(), leaf.X0()};
  const std::array<int, 8> rows{leaf.Y0(), leaf.Y0(), leaf.Y0(), leaf.YMid(),
                                leaf.Y1(), leaf.Y1(), leaf.Y1(), leaf.YMid()};
  CCentreWeights centre;
  for (std::size_t k = 0; k < 8; ++k) {
    if (weights[k] == 0.0) continue;
    centre.m_auPoints[centre.m_uCount] = lattice.Index(columns[k], rows[k]);
    centre.m_afWeights[centre.m_uCount++] = weights[k] / total;
  }
  return centre;
}
