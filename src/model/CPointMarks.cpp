#include "model/CPointMarks.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

#include "model/CGridRun.h"
#include "model/CSurface.h"

namespace {

// The lattice indices from the first at or above `low` to the last at or below `high`.
struct CIndexRange {
  CIndexRange(double low, double high, int count)
      : m_iFirst(static_cast<int>(std::ceil(std::clamp(low, 0.0, static_cast<double>(count))))),
        m_iEnd(static_cast<int>(std::floor(std::clamp(high, -1.0, count - 1.0))) + 1) {}
  int m_iFirst;
  int m_iEnd;
};

}  // namespace

void CPointMarks::Paint(double x, double y, double radius, bool freeze) {
  CLattice& lattice = m_Surface.Lattice();
  const int n = lattice.PointsPerSide();
  // One more on either side, so that rounding takes no point away from the test below.
  const CIndexRange columns(lattice.ColumnOf(x - radius) - 1, lattice.ColumnOf(x + radius) + 1, n);
  const CIndexRange rows(lattice.RowOf(y - radius) - 1, lattice.RowOf(y + radius) + 1, n);
  for (int row = rows.m_iFirst; row < rows.m_iEnd; ++row) {
    for (int column = columns.m_iFirst; column < columns.m_iEnd; ++column) {
      const std::size_t point = lattice.Index(column, row);
      if (!lattice.Has(point, PointFlag::kInUse)) continue;
      if (std::hypot(lattice.XOf(column) - x, lattice.YOf(row) - y) > radius) continue;
      if (freeze) {
        lattice.Set(point, PointFlag::kFrozen);
      } else {
        lattice.Clear(point, PointFlag::kFrozen);
      }
    }
  }
  ++m_uFreezeRevision;
}

bool CPointMarks::TraceInterpolation(double x, double y) {
  CLattice& lattice = m_Surface.Lattice();
  CStencil stencil;
  CInterpolationTrace trace;
  lattice.ClearAll(PointFlag::kTraced);
  if (!m_Surface.Interpolation().GetBilinearInterpolation(x, y, stencil, &trace)) return false;
  if (!trace.m_Triangle.IsCentre()) {
    lattice.Set(trace.m_Triangle.m_uA, PointFlag::kTraced);
    lattice.Set(trace.m_Triangle.m_uB, PointFlag::kTraced);
  }
  m_Run.Host().ShowInterpolation(trace);
  return true;
}
