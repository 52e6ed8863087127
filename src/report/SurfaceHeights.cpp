#include "report/SurfaceHeights.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <numeric>
#include <span>

#include "model/CGrid.h"
#include "solver/GridTerms.h"

namespace {

// The ends of the leaf edges along an edge, those between two of them twice.
template <typename Visit>
void VisitPoints(const CEdge& edge, const CLattice& lattice, const Visit& visit) {
  if (!edge.IsLeaf()) {
    for (int half = 0; half < 2; ++half) VisitPoints(edge.Half(half), lattice, visit);
    return;
  }
  visit(lattice.Index(edge.Xa(), edge.Ya()));
  visit(lattice.Index(edge.Xb(), edge.Yb()));
}

}  // namespace

std::vector<double> HeightsByScan(const CGrid& grid) {
  std::vector<double> heights(grid.Surface().Order().Count());
  for (std::size_t i = 0; i < heights.size(); ++i)
    heights[i] = grid.Surface().Lattice().Heights()[grid.Surface().Order().PointAtScan(i)];
  return heights;
}

CHeightRange DrawnRange(const CGrid& grid) {
  const CSurface& surface = grid.Surface();
  const std::span<const CLeaf> leaves = surface.Tree().Leaves();
  const CHeightRange all{surface.MinHeight(), surface.MaxHeight()};
  if (std::ranges::all_of(leaves, [](const CLeaf& leaf) { return leaf.m_uMarked == 0; })) return all;
  const CLattice& lattice = surface.Lattice();
  CHeightRange drawn{HUGE_VAL, -HUGE_VAL};
  for (const CLeaf& leaf : leaves) {
    for (int side = 0; side < 4; ++side) {
      if ((leaf.m_uMarked >> static_cast<unsigned>(side) & 1U) != 0) continue;
      VisitPoints(leaf.m_pCell->Edge(side), lattice, [&](std::size_t point) {
        drawn.m_fLow = std::min(drawn.m_fLow, lattice.Heights()[point]);
        drawn.m_fHigh = std::max(drawn.m_fHigh, lattice.Heights()[point]);
      });
    }
  }
  return drawn.m_fLow <= drawn.m_fHigh ? drawn : all;
}

double EnergyOf(const CGrid& grid) {
  const std::vector<double> heights = HeightsByScan(grid);
  std::vector<double> forces(heights.size());
  grid.Solver().System().Smoothness().Times(heights, forces);
  return std::inner_product(heights.begin(), heights.end(), forces.begin(), 0.0) / 2;
}

std::vector<double> BendingByScan(const CGrid& grid) {
  return GridEnergyShares(grid.Surface().Tree(), grid.Surface().Order(), HeightsByScan(grid));
}

std::vector<double> BendingDensity(const CGrid& grid) {
  std::vector<double> density = BendingByScan(grid);
  const CLattice& lattice = grid.Surface().Lattice();
  for (std::size_t i = 0; i < density.size(); ++i) {
    // Points carry half the area of each triangle that they are on the outer side of, in lattice steps squared.
    const double area = lattice.Smoothness()[grid.Surface().Order().PointAtScan(i)];
    if (area > 0.0) density[i] /= area * lattice.StepX() * lattice.StepY();
  }
  return density;
}
