#include "io/PlacedHeights.h"

#include <algorithm>

#include "model/CGrid.h"

namespace {

// Each round settles the unknowns whose parents are settled, so it takes one per level code at most.
void PutWhereParentsSay(const CGrid& grid, const std::vector<std::size_t>& missing, std::vector<double>& heights) {
  const CPointOrder& order = grid.Surface().Order();
  std::vector<double> coefs(order.Count());
  std::vector<double> rebuilt(order.Count());
  bool changed = !missing.empty();
  for (int round = 0; changed && round <= 2 * order.Level(); ++round) {
    grid.Surface().Basis().W(heights, coefs);
    for (const std::size_t k : missing) coefs[k] = 0.0;
    grid.Surface().Basis().invW(coefs, rebuilt);
    changed = false;
    for (const std::size_t k : missing) {
      const std::size_t at = order.ScanOf(k);
      changed = changed || heights[at] != rebuilt[at];
      heights[at] = rebuilt[at];
    }
  }
}

// Whether all nine points of every split cell are held; the cell's lower left point is (x, y).
bool HoldsSplits(const CLattice& lattice, const std::vector<bool>& held, const CSaveQuadT& node, int x, int y,
                 int size) {
  if (node.IsLeaf() || !node.HasChildren()) return true;
  const int half = size / 2;
  for (int row = 0; row <= 2; ++row) {
    for (int column = 0; column <= 2; ++column) {
      if (!held[lattice.Index(x + column * half, y + row * half)]) return false;
    }
  }
  const auto childHolds = [&](int k, int column, int row) {
    return HoldsSplits(lattice, held, node.Child(k), x + column * half, y + row * half, half);
  };
  return childHolds(0, 0, 0) && childHolds(1, 1, 0) && childHolds(2, 1, 1) && childHolds(3, 0, 1);
}

}  // namespace

std::optional<std::vector<double>> HeightsByPlace(const CGrid& grid, std::span<const std::size_t> places,
                                                  std::span<const double> heights) {
  const CPointOrder& order = grid.Surface().Order();
  std::vector<bool> given(grid.Surface().Lattice().PointCount());
  std::vector<double> byScan(order.Count());
  for (std::size_t k = 0; k < places.size(); ++k) {
    if (given[places[k]]) return {};
    given[places[k]] = true;
    const std::int32_t unknown = order.NumberOf(places[k]);
    if (unknown >= 0) byScan[order.ScanOf(static_cast<std::size_t>(unknown))] = heights[k];
  }
  std::vector<std::size_t> missing;
  for (std::size_t k = 0; k < order.Count(); ++k) {
    if (!given[order.PointOf(k)]) missing.push_back(k);
  }
  PutWhereParentsSay(grid, missing, byScan);
  std::vector<double> byUnknown(order.Count());
  for (std::size_t k = 0; k < order.Count(); ++k) byUnknown[k] = byScan[order.ScanOf(k)];
  return byUnknown;
}

bool HoldSubdivision(const CGrid& grid, std::span<const std::size_t> places) {
  const CLattice& lattice = grid.Surface().Lattice();
  std::vector<bool> held(lattice.PointCount());
  for (const std::size_t place : places) held[place] = true;
  const int last = lattice.PointsPerSide() - 1;
  const bool corners = held[lattice.Index(0, 0)] && held[lattice.Index(last, 0)] && held[lattice.Index(0, last)] &&
                       held[lattice.Index(last, last)];
  return corners && HoldsSplits(lattice, held, grid.Wanted().Current().Root(), 0, 0, last);
}
