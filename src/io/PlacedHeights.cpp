#include "io/PlacedHeights.h"

#include <algorithm>

#include "model/CGrid.h"

namespace {

// Each round settles the unknowns whose parents are settled, so it takes one per level code at most.
void PutWhereParentsSay(const CGrid& grid, const std::vector<std::size_t>& missing, std::vector<double>& heights) {
  const CPointOrder& order = grid.Order();
  std::vector<double> coefs(order.Count());
  std::vector<double> rebuilt(order.Count());
  bool changed = !missing.empty();
  for (int round = 0; changed && round <= 2 * order.Level(); ++round) {
    grid.Basis().W(heights, coefs);
    for (const std::size_t k : missing) coefs[k] = 0.0;
    grid.Basis().invW(coefs, rebuilt);
    changed = false;
    for (const std::size_t k : missing) {
      const std::size_t at = order.ScanOf(k);
      changed = changed || heights[at] != rebuilt[at];
      heights[at] = rebuilt[at];
    }
  }
}

}  // namespace

std::optional<std::vector<double>> HeightsByPlace(const CGrid& grid, std::span<const std::size_t> places,
                                                  std::span<const double> heights) {
  const CPointOrder& order = grid.Order();
  std::vector<bool> given(grid.Lattice().PointCount());
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
