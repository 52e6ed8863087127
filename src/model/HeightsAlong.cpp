#include "model/HeightsAlong.h"

#include <cmath>
#include <numeric>

#include "constraints/TearLines.h"
#include "model/CConstraints.h"
#include "model/CSurface.h"

namespace {

// Of the distance at which the parallels of a curve run: beside a tear, just off the triangles that it opens.
constexpr double kBesideInParallels = 1.5;
constexpr double kParallelInDiagonals = 5.0 / 7.0;

// A way begins on its own curve: crossings up to this share of it are that.
constexpr double kOnTheCurve = 1e-9;

double Cross(const CPlanePoint& a, const CPlanePoint& b) { return a.x * b.y - a.y * b.x; }

// Tears that go along the way do not cross it.
bool Crosses(const CGridSegment& tear, const CGridSegment& way) {
  const CPlanePoint along{way.x1 - way.x0, way.y1 - way.y0};
  const CPlanePoint torn{tear.x1 - tear.x0, tear.y1 - tear.y0};
  const CPlanePoint between{tear.x0 - way.x0, tear.y0 - way.y0};
  const double determinant = Cross(along, torn);
  if (determinant == 0) return false;
  const double onWay = Cross(between, torn) / determinant;
  const double onTear = Cross(between, along) / determinant;
  return onWay > kOnTheCurve && onWay <= 1 && onTear >= 0 && onTear <= 1;
}

class CPlanner {
 public:
  CPlanner(const CHeightsAlong& wanted, const CSurface& surface, const CConstraints& constraints)
      : m_Wanted(wanted),
        m_Surface(surface),
        m_Constraints(constraints),
        m_aTears(TearLines(constraints.Curves(), surface.Lattice())) {}

  void Add(const CCurvePlace& place) {
    CPtCstr height{place.m_Place.x, place.m_Place.y, PtCstrKind::kPosition};
    m_Constraints.UpdateActivity(height);
    if (!height.IsActive() || !IsOffTheBorder(place.m_Place) || IsTornOff(place))
      return m_Plan.m_aLeftOut.push_back(place.m_Place);
    height.m_fZ = m_Wanted.m_bFollow ? m_Constraints.HeightUnder(height)
                                     : std::lerp(m_Wanted.m_fFirst, m_Wanted.m_fLast, place.m_fShare);
    m_Plan.m_aHeights.push_back(height);
  }
  CPlannedHeights m_Plan;

 private:
  bool IsOffTheBorder(const CPlanePoint& place) const {
    const CExtent& e = m_Surface.Lattice().Extent();
    const double x = BorderMargin(e.x0, e.x1);
    const double y = BorderMargin(e.y0, e.y1);
    return place.x >= e.x0 + x && place.x <= e.x1 - x && place.y >= e.y0 + y && place.y <= e.y1 - y;
  }
  bool IsTornOff(const CCurvePlace& place) const {
    const CLattice& lattice = m_Surface.Lattice();
    const CGridSegment way{lattice.ColumnOf(place.m_Foot.x), lattice.RowOf(place.m_Foot.y),
                           lattice.ColumnOf(place.m_Place.x), lattice.RowOf(place.m_Place.y)};
    for (const CGridSegment& tear : m_aTears) {
      if (Crosses(tear, way)) return true;
    }
    return false;
  }

  const CHeightsAlong& m_Wanted;
  const CSurface& m_Surface;
  const CConstraints& m_Constraints;
  std::vector<CGridSegment> m_aTears;
};

}  // namespace

double DefaultBeside(const CCntrCtrl& curve, const CSurface& surface) {
  if (!curve.HasType(CurveType::kPosition)) return 0.0;
  const double diagonal = std::hypot(surface.Lattice().StepX(), surface.Lattice().StepY());
  return kBesideInParallels * kParallelInDiagonals * diagonal;
}

CPlannedHeights PlanHeightsAlong(const CCntrCtrl& curve, const CHeightsAlong& wanted, const CSurface& surface,
                                 const CConstraints& constraints) {
  CPlanner planner(wanted, surface, constraints);
  const std::vector<double> lengths = StepsAlong(LengthOf(curve), curve.IsClosed(), wanted.m_Steps);
  const bool one = wanted.m_fBeside == 0;
  if (wanted.m_bLeft || one) {
    for (const CCurvePlace& place : PlacesAlong(curve, lengths, wanted.m_fBeside)) planner.Add(place);
  }
  if (wanted.m_bRight && !one) {
    for (const CCurvePlace& place : PlacesAlong(curve, lengths, -wanted.m_fBeside)) planner.Add(place);
  }
  return std::move(planner.m_Plan);
}

double MeanHeight(const CSurface& surface) {
  std::vector<double> heights(surface.Lattice().PointCount());
  surface.Interpolation().SampleLattice(heights);
  return std::accumulate(heights.begin(), heights.end(), 0.0) / static_cast<double>(heights.size());
}
