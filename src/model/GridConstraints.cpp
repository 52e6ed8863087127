// The grid's operations on its point constraints: the list's rules, the surface under them, and what each edit posts.

#include <algorithm>
#include <array>
#include <cmath>

#include "model/CGrid.h"
#include "model/Globals.h"

namespace {

// The lattice indices from the first at or above `low` to the last at or below `high`.
struct CIndexRange {
  CIndexRange(double low, double high, int count)
      : m_iFirst(static_cast<int>(std::ceil(std::clamp(low, 0.0, static_cast<double>(count))))),
        m_iEnd(static_cast<int>(std::floor(std::clamp(high, -1.0, count - 1.0))) + 1) {}
  int m_iFirst;
  int m_iEnd;
};

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

void CGrid::ConstraintsChanged(Operation operation) {
  Post(operation);
  if (m_pHost == nullptr) return;
  ShowConstraintCount();
  m_pHost->RequestRedraw();
}

void CGrid::ShowConstraintCount() const {
  if (m_pHost != nullptr) m_pHost->ShowConstraints(ActiveConstraintCount());
}

void CGrid::AddPtCstr(const CPtCstr& record) {
  UpdateActivity(m_PointConstraints.Add(record));
  ConstraintsChanged(Operation::kRebuild);
}

bool CGrid::HighlightPtCstrs(double x, double y, std::uint32_t mask) {
  return m_PointConstraints.Highlight(x, y, mask, PickReach());
}

void CGrid::UnselectAll() {
  m_PointConstraints.UnselectAll();
  UnselectCurves(CurveType::kAll);
}

void CGrid::SelectPtCstr(double x, double y, std::uint32_t mask) { m_PointConstraints.Select(x, y, mask, PickReach()); }

void CGrid::MoveSelectedPtCstr(double dx, double dy) {
  CPtCstr* selected = m_PointConstraints.FirstSelected();
  if (selected == nullptr) return;
  selected->m_fX += dx;
  selected->m_fY += dy;
  if (selected->HasKind(PtCstrKind::kNormal) && !selected->HasKind(PtCstrKind::kPosition))
    selected->m_fZ = HeightUnder(*selected);
  UpdateActivity(*selected);
  ConstraintsChanged(Operation::kRestart);
}

double CGrid::GetSelectedHeight() {
  const CPtCstr* selected = m_PointConstraints.FirstSelected(PtCstrKind::kPosition);
  return selected == nullptr ? 0.0 : selected->m_fZ;
}

void CGrid::SetSelectedHeight(double z) {
  CPtCstr* selected = m_PointConstraints.FirstSelected(PtCstrKind::kPosition);
  if (selected == nullptr) return;
  selected->m_fZ = z;
  Post(Operation::kRestart);
}

void CGrid::ChangeSelectedNormal(double dp, double dq) {
  CPtCstr* selected = m_PointConstraints.FirstSelected(PtCstrKind::kNormal);
  if (selected != nullptr) {
    selected->m_fP += dp;
    selected->m_fQ += dq;
    if (!selected->HasKind(PtCstrKind::kPosition)) selected->m_fZ = HeightUnder(*selected);
  }
  Post(Operation::kRestart);
}

void CGrid::DeleteSelectedPtCstr() {
  if (m_PointConstraints.DeleteSelected()) ConstraintsChanged(Operation::kRebuild);
}

double CGrid::HeightUnder(const CPtCstr& constraint) const {
  return GetHeightAt(Lattice().ColumnOf(constraint.m_fX), Lattice().RowOf(constraint.m_fY));
}

void CGrid::RefreshNormalCstrHeights() {
  for (CPtCstrList* list : {&m_PointConstraints, &m_GeneratedConstraints}) {
    for (CPtCstr& constraint : *list) {
      // The height of a record that is a position constraint as well is the user's.
      if (constraint.HasKind(PtCstrKind::kNormal) && !constraint.HasKind(PtCstrKind::kPosition)) {
        constraint.m_fZ = HeightUnder(constraint);
      }
    }
  }
}

bool CGrid::IsInMarkedTriangle(double x, double y) const {
  const CQuadT* cell = Tree().PointInCell(x, y);
  if (cell == nullptr) return false;
  const double u = (Lattice().ColumnOf(x) - cell->X0()) / cell->Size() - 0.5;
  const double v = (Lattice().RowOf(y) - cell->Y0()) / cell->Size() - 0.5;
  return cell->HasFlag(TriangleBit(u, v));
}

void CGrid::UpdateDisabledBit(CPtCstr& constraint) const {
  const double x = constraint.m_fX;
  const double y = constraint.m_fY;
  bool disabled = constraint.HasKind(PtCstrKind::kPosition) && IsInMarkedTriangle(x, y);
  if (constraint.HasKind(PtCstrKind::kNormal)) {
    const CQuadT* cell = Tree().PointInCell(x, y);
    const double w = cell == nullptr ? 0.0 : cell->Size() * Lattice().StepX();
    const double h = cell == nullptr ? 0.0 : cell->Size() * Lattice().StepY();
    disabled = disabled || cell == nullptr || IsInMarkedTriangle(x, y + h / 2) || IsInMarkedTriangle(x, y - h / 2) ||
               IsInMarkedTriangle(x - w / 2, y) || IsInMarkedTriangle(x + w / 2, y);
  }
  constraint.SetKind(PtCstrKind::kDisabled, disabled);
}

void CGrid::UpdateActivity(CPtCstr& constraint) const {
  UpdateDisabledBit(constraint);
  constraint.m_uIdle = KindsOf(constraint) & ~CConstraintRows::KindsWithRows(constraint, Tree(), Interpolation());
}

void CGrid::MarkIdleConstraints() {
  auto built = m_Solver.System().Constraints().BuiltKinds().begin();
  for (CPtCstrList* list : {&m_PointConstraints, &m_GeneratedConstraints}) {
    for (CPtCstr& constraint : *list) constraint.m_uIdle = KindsOf(constraint) & ~*built++;
  }
}

Inactivity CGrid::WhyInactive(const CPtCstr& constraint) const {
  if (constraint.m_uIdle == 0) return Inactivity::None;
  const CExtent& e = Lattice().Extent();
  const double x = constraint.m_fX;
  const double y = constraint.m_fY;
  if (!(e.x0 <= x && x <= e.x1 && e.y0 <= y && y <= e.y1)) return Inactivity::Outside;
  // A slope on the very border is disabled, too.
  const bool torn = constraint.HasKind(PtCstrKind::kDisabled) && Tree().PointInCell(x, y) != nullptr;
  return torn ? Inactivity::InTear : Inactivity::OnBorder;
}

int CGrid::ActiveConstraintCount() const {
  return static_cast<int>(std::ranges::count_if(m_PointConstraints, &CPtCstr::IsActive));
}

void CGrid::PaintFreezeMap(double x, double y, bool freeze) {
  const double radius = g_fZoom * kFreezeRadius;
  const int n = PointsPerSide();
  // One more on either side, so that rounding takes no point away from the test below.
  const CIndexRange columns(Lattice().ColumnOf(x - radius) - 1, Lattice().ColumnOf(x + radius) + 1, n);
  const CIndexRange rows(Lattice().RowOf(y - radius) - 1, Lattice().RowOf(y + radius) + 1, n);
  for (int row = rows.m_iFirst; row < rows.m_iEnd; ++row) {
    for (int column = columns.m_iFirst; column < columns.m_iEnd; ++column) {
      const std::size_t point = Lattice().Index(column, row);
      if (!Lattice().Has(point, PointFlag::kInUse)) continue;
      if (std::hypot(Lattice().XOf(column) - x, Lattice().YOf(row) - y) > radius) continue;
      if (freeze) {
        Lattice().Set(point, PointFlag::kFrozen);
      } else {
        Lattice().Clear(point, PointFlag::kFrozen);
      }
    }
  }
  ++m_uFreezeRevision;
}
