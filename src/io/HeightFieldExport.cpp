#include "io/HeightFieldExport.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <ostream>

#include "model/CGrid.h"

namespace {

// Lattice coordinate of sample `k` of `count` between low and high; not a number for a single sample.
double SamplePlace(int k, int count, double low, double high, int steps) {
  if (count == 1) return std::numeric_limits<double>::quiet_NaN();
  const double t = static_cast<double>(k) / (count - 1);
  const double place = ((high - low) * t + low - low) / (high - low) * steps;
  // Rounding must not carry the last sample over the border, where there is no surface.
  return std::clamp(place, 0.0, static_cast<double>(steps));
}

}  // namespace

void WriteHeightField(std::ostream& out, const CGrid& grid, int width, int height) {
  const CExtent& e = grid.Surface().Lattice().Extent();
  const int steps = grid.Surface().Lattice().PointsPerSide() - 1;
  for (int i = 0; i < height; ++i) {
    const double row = SamplePlace(i, height, e.y0, e.y1, steps);
    for (int j = 0; j < width; ++j) {
      const double column = SamplePlace(j, width, e.x0, e.x1, steps);
      const bool placed = !std::isnan(column) && !std::isnan(row);
      out << (placed ? grid.GetHeightAt(column, row) : std::numeric_limits<double>::quiet_NaN()) << ' ';
    }
    out << '\n';
  }
}
