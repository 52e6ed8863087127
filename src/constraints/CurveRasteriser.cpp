#include "constraints/CurveRasteriser.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>
#include <optional>

#include "base/Console.h"
#include "constraints/CCntrCtrl.h"
#include "constraints/FinestCells.h"
#include "constraints/GridSegment.h"
#include "constraints/TearEnds.h"
#include "constraints/TearScan.h"
#include "lattice/CLattice.h"
#include "quadtree/CQuadTree.h"

namespace {

bool IsLongerInX(const CGridSegment& s) { return std::abs(s.x1 - s.x0) > std::abs(s.y1 - s.y0); }

}  // namespace

void CCurveRasteriser::Rasterise(const CCntrCtrl& curve) {
  if (curve.HasType(CurveType::kPosition)) {
    RasterisePosition(curve);
  } else if (curve.HasType(CurveType::kNormal)) {
    RasteriseNormal(curve);
  }
}

void CCurveRasteriser::RasterisePosition(const CCntrCtrl& curve) {
  if (curve.Nodes().size() == 1) Console() << "Error : there shouldn't be a one point curve\t\t'BIG' PROBLEM\n";
  if (curve.Nodes().size() < 2) return;
  curve.ForEachSegment([this](const CPtCstr& a, const CPtCstr& b) { Tear(a, b); });
  if (curve.IsClosed()) return;
  TearToBorder(curve.Nodes().front());
  TearToBorder(curve.Nodes().back());
}

void CCurveRasteriser::RasteriseNormal(const CCntrCtrl& curve) {
  if (curve.Nodes().size() == 1) Console() << "Error : There shouldn't be a one point curve (Normal discontinuity)\n";
  curve.ForEachSegment([this](const CPtCstr& a, const CPtCstr& b) { Crease(a, b); });
}

CGridSegment CCurveRasteriser::SegmentBetween(const CPtCstr& a, const CPtCstr& b) const {
  const CLattice& lattice = m_pTree->Lattice();
  return {lattice.ColumnOf(a.m_fX), lattice.RowOf(a.m_fY), lattice.ColumnOf(b.m_fX), lattice.RowOf(b.m_fY)};
}

void CCurveRasteriser::Tear(const CPtCstr& a, const CPtCstr& b) {
  const CGridSegment s = SegmentBetween(a, b);
  IsLongerInX(s) ? scan_conv_line0_x(s) : scan_conv_line0_y(s);
}

void CCurveRasteriser::Crease(const CPtCstr& a, const CPtCstr& b) {
  const CGridSegment s = SegmentBetween(a, b);
  IsLongerInX(s) ? scan_conv_line_x(s) : scan_conv_line_y(s);
}

// The shortest way from an open end next to the border, unless it lies there already.
void CCurveRasteriser::TearToBorder(const CPtCstr& end) {
  const std::optional<CPlanePoint> beyond = BorderBeyond(m_pTree->Lattice(), {end.m_fX, end.m_fY});
  if (!beyond) return;
  CPtCstr border;
  border.m_fX = beyond->x;
  border.m_fY = beyond->y;
  Tear(end, border);
}

void CCurveRasteriser::scan_conv_line0_x(const CGridSegment& s) {
  if (s.x0 == s.x1) {
    Console() << "Error scan_conv_line0_x : x0==x1\n";
  } else {
    ScanTear(*m_pTree, MajorAxis::X, s);
  }
}

void CCurveRasteriser::scan_conv_line0_y(const CGridSegment& s) {
  if (s.y0 == s.y1) {
    Console() << "Error scan_conv_line0_y : y0==y1\n";
  } else {
    ScanTear(*m_pTree, MajorAxis::Y, s);
  }
}

void CCurveRasteriser::scan_conv_line_x(const CGridSegment& s) {
  if (s.x0 == s.x1) {
    Console() << "x0==x1 in scan_conv_line_x\n";
  } else {
    ScanCrease(s);
  }
}

void CCurveRasteriser::scan_conv_line_y(const CGridSegment& s) {
  if (s.y0 == s.y1) {
    Console() << "y0==y1 in scan_conv_line_y\n";
  } else {
    ScanCrease(s);
  }
}

// The lattice points nearest to the line between the rounded ends, one per step of the longer direction
// [Bresenham1965].
void CCurveRasteriser::ScanCrease(CGridSegment s) {
  if (!s.IsFinite()) {
    Console() << "Error ScanCrease : a node is not at a finite place\n";
    return;
  }
  if (!s.Clip(m_pTree->Lattice().PointsPerSide() - 1)) return;
  RefineToPoint(*m_pTree, s.x0, s.y0);
  RefineToPoint(*m_pTree, s.x1, s.y1);
  const auto rounded = [](double g) { return static_cast<int>(std::lround(g)); };
  const int dx = rounded(s.x1) - rounded(s.x0);
  const int dy = rounded(s.y1) - rounded(s.y0);
  const int steps = std::max(std::abs(dx), std::abs(dy));
  // start + k delta / steps, rounded to the nearest lattice point, halves upwards.
  const auto nearest = [steps](int start, int delta, int k) {
    return steps == 0 ? start : start + static_cast<int>(std::floor((2.0 * k * delta + steps) / (2.0 * steps)));
  };
  for (int k = 0; k <= steps; ++k) {
    MarkCreasePoint(nearest(rounded(s.x0), dx, k), nearest(rounded(s.y0), dy, k));
  }
}

// The cells around the point on both sides of the line must be fine, or the crease would fold coarse cells.
void CCurveRasteriser::MarkCreasePoint(int column, int row) {
  CLattice& lattice = m_pTree->Lattice();
  const std::size_t point = lattice.Index(column, row);
  if (lattice.Has(point, PointFlag::kCrease)) return;
  lattice.Set(point, PointFlag::kCrease);
  m_auCreasePoints.push_back(static_cast<std::uint32_t>(point));
  const int last = lattice.PointsPerSide() - 2;
  for (int j = std::max(row - 1, 0); j <= std::min(row, last); ++j) {
    for (int i = std::max(column - 1, 0); i <= std::min(column, last); ++i) RefineToCell(*m_pTree, i, j);
  }
}

void CCurveRasteriser::MarkCreaseDiagonals() {
  const CLattice& lattice = m_pTree->Lattice();
  const int side = lattice.PointsPerSide();
  for (const std::uint32_t point : m_auCreasePoints) {
    const int column = static_cast<int>(point) % side;
    const int row = static_cast<int>(point) / side;
    if (row + 1 == side) continue;
    if (column + 1 < side && lattice.Has(lattice.Index(column + 1, row + 1), PointFlag::kCrease))
      SetGridCellMask2(*m_pTree, column, row, CellFlag::kRisingCrease, 1);
    if (column > 0 && lattice.Has(lattice.Index(column - 1, row + 1), PointFlag::kCrease))
      SetGridCellMask2(*m_pTree, column - 1, row, CellFlag::kFallingCrease, 1);
  }
}
