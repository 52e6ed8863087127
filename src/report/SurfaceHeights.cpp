#include "report/SurfaceHeights.h"

#include <cstddef>
#include <numeric>

#include "model/CGrid.h"
#include "solver/GridTerms.h"

std::vector<double> HeightsByScan(const CGrid& grid) {
  std::vector<double> heights(grid.Surface().Order().Count());
  for (std::size_t i = 0; i < heights.size(); ++i)
    heights[i] = grid.Surface().Lattice().Heights()[grid.Surface().Order().PointAtScan(i)];
  return heights;
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
