#include "drawing/CCurveArrays.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "model/CGrid.h"

namespace {

// The rim of a tear is looked for this many diagonals of a cell beside the curve: just outside the cells that it
// opens.
constexpr double kRimInDiagonals = 1.05;

// A segment may leave the model, but not make the arrays grow without end.
int StepsOf(const CPlanePoint& way, int pointsPerSide) {
  const double steps = std::ceil(std::max(std::abs(way.x), std::abs(way.y)));
  return steps < 2.0 * pointsPerSide ? std::max(static_cast<int>(steps), 1) : 2 * pointsPerSide;
}

}  // namespace

void CCurveArrays::Refresh(const CGrid& grid) {
  const bool moved = HaveNodesChanged(grid) || m_uTree != grid.Surface().Tree().Revision() ||
                     m_Extent != grid.Surface().Lattice().Extent();
  if (!moved && m_uSurface == grid.Surface().Revision()) return;
  m_uTree = grid.Surface().Tree().Revision();
  m_Extent = grid.Surface().Lattice().Extent();
  m_uSurface = grid.Surface().Revision();
  if (moved) Place(grid);
  Raise(grid);
}

bool CCurveArrays::HaveNodesChanged(const CGrid& grid) {
  m_aNodesNow.clear();
  for (const CCntrCtrl& curve : grid.Constraints().Curves()) {
    for (const CCntrNode& node : curve.Nodes()) {
      const bool last = &node == &curve.Nodes().back();
      m_aNodesNow.push_back({node.m_fX, node.m_fY, curve.HasType(CurveType::kPosition), last, curve.IsClosed()});
    }
  }
  const bool changed = m_uCurves != grid.Constraints().Curves().size() || m_aNodesNow != m_aNodes;
  m_uCurves = grid.Constraints().Curves().size();
  std::swap(m_aNodes, m_aNodesNow);
  return changed;
}

void CCurveArrays::Place(const CGrid& grid) {
  m_aLines.clear();
  m_aSamples.clear();
  m_afVertices.clear();
  m_auNodes.clear();
  for (const CCntrCtrl& curve : grid.Constraints().Curves()) {
    const std::size_t first = m_aSamples.size();
    PlaceCurve(grid, curve);
    m_aLines.push_back({first, m_aSamples.size() - first});
  }
}

void CCurveArrays::PlaceCurve(const CGrid& grid, const CCntrCtrl& curve) {
  const bool tear = curve.HasType(CurveType::kPosition);
  curve.ForEachSegment([&](const CCntrNode& a, const CCntrNode& b) {
    m_auNodes.push_back(static_cast<std::uint32_t>(m_aSamples.size()));
    PlaceSegment(grid, a, b, tear);
  });
  if (curve.Nodes().empty()) return;
  const CCntrNode& end = curve.Nodes().back();
  if (curve.Nodes().size() == 1)
    AddVertex(grid, {grid.Surface().Lattice().ColumnOf(end.m_fX), grid.Surface().Lattice().RowOf(end.m_fY)}, {});
  if (!curve.IsClosed()) m_auNodes.push_back(static_cast<std::uint32_t>(m_aSamples.size() - 1));
}

void CCurveArrays::PlaceSegment(const CGrid& grid, const CCntrNode& a, const CCntrNode& b, bool tear) {
  const CLattice& lattice = grid.Surface().Lattice();
  const CPlanePoint from{lattice.ColumnOf(a.m_fX), lattice.RowOf(a.m_fY)};
  const CPlanePoint way{lattice.ColumnOf(b.m_fX) - from.x, lattice.RowOf(b.m_fY) - from.y};
  const double length = std::hypot(b.m_fX - a.m_fX, b.m_fY - a.m_fY);
  CPlanePoint toRight;
  if (tear && length > 0) {
    const double offset = kRimInDiagonals * std::hypot(lattice.StepX(), lattice.StepY()) / length;
    toRight = {offset * (b.m_fY - a.m_fY) / lattice.StepX(), offset * (a.m_fX - b.m_fX) / lattice.StepY()};
  }
  const int steps = StepsOf(way, lattice.PointsPerSide());
  for (int k = 0; k <= steps; ++k) {
    const double t = static_cast<double>(k) / steps;
    AddVertex(grid, {from.x + t * way.x, from.y + t * way.y}, toRight);
  }
}

void CCurveArrays::AddVertex(const CGrid& grid, const CPlanePoint& place, const CPlanePoint& toRight) {
  const CLattice& lattice = grid.Surface().Lattice();
  const double last = lattice.PointsPerSide() - 1;
  const CInterpolation surface = grid.Surface().Interpolation();
  // Without a place on the surface a vertex lies at height 0, where empty coefficients put it.
  const auto locate = [&](double side) {
    return surface
        .ShortStencil(std::clamp(place.x + side * toRight.x, 0.0, last),
                      std::clamp(place.y + side * toRight.y, 0.0, last))
        .value_or(CTriangleStencil{});
  };
  m_aSamples.push_back({locate(-1), locate(1)});
  for (const double c : {lattice.XOf(place.x), lattice.YOf(place.y), 0.0})
    m_afVertices.push_back(static_cast<float>(c));
}

void CCurveArrays::Raise(const CGrid& grid) {
  const CInterpolation surface = grid.Surface().Interpolation();
  for (std::size_t k = 0; k < m_aSamples.size(); ++k) {
    const double z = std::max(surface.HeightOf(m_aSamples[k].m_Left), surface.HeightOf(m_aSamples[k].m_Right));
    m_afVertices[3 * k + 2] = static_cast<float>(z);
  }
}
