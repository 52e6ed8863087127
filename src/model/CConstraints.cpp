#include "model/CConstraints.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "base/Console.h"
#include "model/CSurface.h"
#include "solver/CConstraintRows.h"

namespace {

// The parallels of a new curve run this share of a cell's diagonal beside it.
constexpr double kOffsetInDiagonals = 5.0 / 7.0;
// In the rebuilt map they run this much further out.
constexpr double kRefreshFactor = 1.1;

// Bit of the triangle of `cell` that holds the point, given relative to the cell's centre in units of its size: the
// triangles are divided by the diagonals.
std::uint32_t TriangleBit(double u, double v) {
  if (v < u) return 1U << (v < -u ? kBottom : kRight);
  return 1U << (v < -u ? kLeft : kTop);
}

std::uint32_t KindsOf(const CPtCstr& constraint) {
  return constraint.m_uKind & (PtCstrKind::kPosition | PtCstrKind::kNormal);
}

}  // namespace

void CConstraints::AddTo(CSketch& sketch) const {
  sketch.m_ListHeaders = m_Headers;
  sketch.m_Points = m_Points;
  sketch.m_Curves = m_Curves;
  sketch.m_PendingCurve = m_PendingCurve;
}

void CConstraints::TakeFrom(CSketch& sketch) {
  Clear();
  m_Headers = sketch.m_ListHeaders;
  m_Points = std::move(sketch.m_Points);
  m_Curves = std::move(sketch.m_Curves);
  m_PendingCurve = std::move(sketch.m_PendingCurve);
}

void CConstraints::Restore(const CSketch& sketch) {
  m_Headers = sketch.m_ListHeaders;
  m_Points = sketch.m_Points;
  m_Curves = sketch.m_Curves;
  m_PendingCurve = sketch.m_PendingCurve;
  m_PendingCurve.SetClosedOnValidate(false);
  for (CPtCstr& constraint : m_Points) constraint.SetState(PtCstrState::kHighlighted, false);
  for (CCntrCtrl& curve : m_Curves) {
    curve.SetState(PtCstrState::kHighlighted, false);
    for (CCntrNode& node : curve.Nodes()) node.SetState(PtCstrState::kHighlighted, false);
  }
}

void CConstraints::Clear() {
  m_Points.clear();
  m_Generated.clear();
  m_Curves.clear();
  m_iRefusedCurves = 0;
  m_iToldCurves = 0;
  m_PendingCurve.Drop();
  m_Headers = {};
}

CurveId CConstraints::FindCurve(double x, double y, double reach) const {
  const CCntrCtrl* curve = m_Curves.Find(x, y, reach).m_pCurve;
  return curve == nullptr ? CurveId::kNone : curve->Id();
}

void CConstraints::UnselectAll() {
  m_Points.UnselectAll();
  m_Curves.Unselect(CurveType::kAll);
}

double CConstraints::HeightUnder(const CPtCstr& constraint) const {
  const CLattice& lattice = m_Surface.Lattice();
  return m_Surface.HeightAt(lattice.ColumnOf(constraint.m_fX), lattice.RowOf(constraint.m_fY));
}

void CConstraints::RefreshHeights() {
  for (CPtCstrList* list : {&m_Points, &m_Generated}) {
    for (CPtCstr& constraint : *list) {
      // The height of a record that is a position constraint as well is the user's.
      if (constraint.HasKind(PtCstrKind::kNormal) && !constraint.HasKind(PtCstrKind::kPosition)) {
        constraint.m_fZ = HeightUnder(constraint);
      }
    }
  }
}

bool CConstraints::IsInMarkedTriangle(double x, double y) const {
  const CQuadT* cell = m_Surface.Tree().PointInCell(x, y);
  if (cell == nullptr) return false;
  const CLattice& lattice = m_Surface.Lattice();
  const double u = (lattice.ColumnOf(x) - cell->X0()) / cell->Size() - 0.5;
  const double v = (lattice.RowOf(y) - cell->Y0()) / cell->Size() - 0.5;
  return cell->HasFlag(TriangleBit(u, v));
}

void CConstraints::UpdateDisabledBit(CPtCstr& constraint) const {
  const double x = constraint.m_fX;
  const double y = constraint.m_fY;
  bool disabled = constraint.HasKind(PtCstrKind::kPosition) && IsInMarkedTriangle(x, y);
  if (constraint.HasKind(PtCstrKind::kNormal)) {
    const CQuadT* cell = m_Surface.Tree().PointInCell(x, y);
    const double w = cell == nullptr ? 0.0 : cell->Size() * m_Surface.Lattice().StepX();
    const double h = cell == nullptr ? 0.0 : cell->Size() * m_Surface.Lattice().StepY();
    disabled = disabled || cell == nullptr || IsInMarkedTriangle(x, y + h / 2) || IsInMarkedTriangle(x, y - h / 2) ||
               IsInMarkedTriangle(x - w / 2, y) || IsInMarkedTriangle(x + w / 2, y);
  }
  constraint.SetKind(PtCstrKind::kDisabled, disabled);
}

void CConstraints::UpdateDisabledBits() {
  for (CPtCstrList* list : {&m_Points, &m_Generated}) {
    for (CPtCstr& constraint : *list) UpdateDisabledBit(constraint);
  }
}

void CConstraints::UpdateActivity(CPtCstr& constraint) const {
  UpdateDisabledBit(constraint);
  constraint.m_uIdle =
      KindsOf(constraint) & ~CConstraintRows::KindsWithRows(constraint, m_Surface.Tree(), m_Surface.Interpolation());
}

void CConstraints::UpdateActivities() {
  for (CPtCstr& constraint : m_Points) UpdateActivity(constraint);
}

void CConstraints::MarkIdle(const CConstraintRows& rows) {
  auto built = rows.BuiltKinds().begin();
  for (CPtCstrList* list : {&m_Points, &m_Generated}) {
    for (CPtCstr& constraint : *list) constraint.m_uIdle = KindsOf(constraint) & ~*built++;
  }
}

Inactivity CConstraints::WhyInactive(const CPtCstr& constraint) const {
  if (constraint.m_uIdle == 0) return Inactivity::None;
  const CExtent& e = m_Surface.Lattice().Extent();
  const double x = constraint.m_fX;
  const double y = constraint.m_fY;
  if (!(e.x0 <= x && x <= e.x1 && e.y0 <= y && y <= e.y1)) return Inactivity::Outside;
  // A slope on the very border is disabled, too.
  const bool torn = constraint.HasKind(PtCstrKind::kDisabled) && m_Surface.Tree().PointInCell(x, y) != nullptr;
  return torn ? Inactivity::InTear : Inactivity::OnBorder;
}

int CConstraints::ActiveCount() const { return static_cast<int>(std::ranges::count_if(m_Points, &CPtCstr::IsActive)); }

double CConstraints::ParallelDistance() const {
  return std::hypot(m_Surface.Lattice().StepX(), m_Surface.Lattice().StepY()) * kOffsetInDiagonals;
}

void CConstraints::PlaceParallels(CCntrCtrl& curve) const { curve.UpdateNormals(ParallelDistance()); }

void CConstraints::RefreshParallels(CCntrCtrl& curve) const {
  curve.UpdateNormals(ParallelDistance() * kRefreshFactor);
}

void CConstraints::RefreshCurves() {
  m_Curves.RemoveDegenerate();
  for (CCntrCtrl& curve : m_Curves) RefreshParallels(curve);
}

bool CConstraints::IsRefused(const CCntrCtrl& curve, std::size_t generated) {
  return static_cast<double>(generated) + curve.GeneratedCount() > CCntrCtrl::kMostGenerated;
}

void CConstraints::Generate() {
  Console() << "CGrid::UpdateConstraintsFormCurves\n";
  m_Generated.clear();
  m_auGeneratedEnd.clear();
  m_iRefusedCurves = 0;
  for (const CCntrCtrl& curve : m_Curves) {
    if (IsRefused(curve, m_Generated.size())) {
      ++m_iRefusedCurves;
    } else {
      curve.AddAutoBumpConstraints(m_Generated);
    }
    m_auGeneratedEnd.push_back(m_Generated.size());
  }
  m_iToldCurves = std::min(m_iToldCurves, m_iRefusedCurves);
}

std::size_t CConstraints::CurveOfGenerated(std::size_t j) const {
  return static_cast<std::size_t>(std::ranges::upper_bound(m_auGeneratedEnd, j) - m_auGeneratedEnd.begin());
}

int CConstraints::TakeRefusedCurves() {
  if (m_iToldCurves == m_iRefusedCurves) return 0;
  m_iToldCurves = m_iRefusedCurves;
  Console() << "CGrid::UpdateConstraintsFormCurves\t\ttoo many constraints : " << m_iRefusedCurves << " curves\n";
  return m_iRefusedCurves;
}
