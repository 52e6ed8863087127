#include "model/PointProbe.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "model/CGrid.h"
#include "solver/GridTerms.h"

namespace {

constexpr double kHalfStep = 0.5;

// Length of the leaf sub-edge of `edge` that reaches from `at` along the edge to one side; 0 where none does or where
// it is cut.
int JoinedLength(const CEdge& edge, int at, int direction) {
  const CEdge* part = edge.FindLeaf(at + kHalfStep * direction);
  if (part == nullptr || part->HasBothMarks()) return 0;
  const int first = part->IsHorizontal() ? part->Xa() : part->Ya();
  const int second = part->IsHorizontal() ? part->Xb() : part->Yb();
  return (direction > 0 ? first : second) == at ? second - first : 0;
}

}  // namespace

const CQuadT& CPointProbe::LeafAt(double x, double y) const {
  const CLattice& lattice = m_pGrid->Surface().Lattice();
  const double last = lattice.PointsPerSide() - 1;
  return *m_pGrid->Surface().Tree().PointInCell_g(std::clamp(lattice.ColumnOf(x), 0.0, last),
                                                  std::clamp(lattice.RowOf(y), 0.0, last));
}

// The nearest point lies on the border of the leaf: what lies beyond it is farther than the ends of the sub-edge that
// is crossed on the way there.
std::size_t CPointProbe::NearestPoint(double x, double y) const {
  const CLattice& lattice = m_pGrid->Surface().Lattice();
  const CQuadT& leaf = LeafAt(x, y);
  const double column = std::clamp<double>(lattice.ColumnOf(x), leaf.X0(), leaf.X1());
  const double row = std::clamp<double>(lattice.RowOf(y), leaf.Y0(), leaf.Y1());
  std::size_t nearest = 0;
  double shortest = std::numeric_limits<double>::infinity();
  const auto offer = [&](int c, int r) {
    const double distance = std::hypot(column - c, row - r);
    if (distance >= shortest) return;
    shortest = distance;
    nearest = lattice.Index(c, r);
  };
  for (int side = 0; side < 4; ++side) {
    const CEdge& edge = leaf.Edge(side);
    const CEdge* part = edge.FindLeaf(edge.IsHorizontal() ? column : row);
    offer(part->Xa(), part->Ya());
    offer(part->Xb(), part->Yb());
  }
  return nearest;
}

// Steps to the point that an uncut leaf edge joins to (column, row) in direction (dx, dy); 0 where there is none. The
// edge, if there is one, is a side of the leaves on both of its sides.
int CPointProbe::NeighbourDistance(int column, int row, int dx, int dy) const {
  for (const double side : {kHalfStep, -kHalfStep}) {
    const double gx = column + (dx != 0 ? kHalfStep * dx : side);
    const double gy = row + (dy != 0 ? kHalfStep * dy : side);
    const CQuadT* leaf = m_pGrid->Surface().Tree().PointInCell_g(gx, gy);
    if (leaf == nullptr) continue;
    if (dx != 0) {
      if (row != leaf->Y0() && row != leaf->Y1()) return 0;
      return JoinedLength(leaf->Edge(row == leaf->Y0() ? kBottom : kTop), column, dx);
    }
    if (column != leaf->X0() && column != leaf->X1()) return 0;
    return JoinedLength(leaf->Edge(column == leaf->X0() ? kLeft : kRight), row, dy);
  }
  return 0;
}

CProbedTerm CPointProbe::SecondDifference(std::size_t point, bool horizontal) const {
  const CLattice& lattice = m_pGrid->Surface().Lattice();
  const auto side = static_cast<std::size_t>(lattice.PointsPerSide());
  const auto column = static_cast<int>(point % side);
  const auto row = static_cast<int>(point / side);
  const int dx = horizontal ? 1 : 0;
  const int dy = 1 - dx;
  const int before = NeighbourDistance(column, row, -dx, -dy);
  const int after = NeighbourDistance(column, row, dx, dy);
  if (before == 0 || after == 0 || lattice.Has(point, PointFlag::kCrease)) return {};
  const double step = horizontal ? lattice.StepX() : lattice.StepY();
  const double h1 = before * step;
  const double h2 = after * step;
  return {SecondDifferenceWeight(h1, h2, Area(point)),
          3,
          {lattice.Index(column - dx * before, row - dy * before), point,
           lattice.Index(column + dx * after, row + dy * after)},
          {h2, -(h1 + h2), h1}};
}

CProbedTerm CPointProbe::MixedDifference(const CQuadT& leaf) const {
  if (leaf.HasFlag(CellFlag::kMarkable)) return {};
  const CLattice& lattice = m_pGrid->Surface().Lattice();
  return {MixedDifferenceWeight(leaf, lattice),
          4,
          {lattice.Index(leaf.X0(), leaf.Y0()), lattice.Index(leaf.X1(), leaf.Y0()),
           lattice.Index(leaf.X1(), leaf.Y1()), lattice.Index(leaf.X0(), leaf.Y1())},
          {1.0, -1.0, 1.0, -1.0}};
}

double CPointProbe::Area(std::size_t point) const { return m_pGrid->Surface().Lattice().Smoothness()[point]; }

int CPointProbe::NumberOf(std::size_t point) const { return m_pGrid->Surface().Order().NumberOf(point); }

int CPointProbe::LevelCodeOf(std::size_t point) const {
  const int number = NumberOf(point);
  return number < 0 ? 0 : m_pGrid->Surface().Order().LevelCode(static_cast<std::size_t>(number));
}
