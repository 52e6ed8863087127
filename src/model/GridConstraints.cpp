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

}  // namespace

void CGrid::ConstraintsChanged(Operation operation) {
  Post(operation);
  ShowConstraintCount();
  m_Run.Host().RequestRedraw();
}

void CGrid::ShowConstraintCount() const { m_Run.Host().ShowConstraints(m_Constraints.ActiveCount()); }

void CGrid::AddPtCstr(const CPtCstr& record) {
  m_Constraints.UpdateActivity(m_Constraints.Points().Add(record));
  ConstraintsChanged(Operation::kRebuild);
}

bool CGrid::HighlightPtCstrs(double x, double y, std::uint32_t mask) {
  return m_Constraints.Points().Highlight(x, y, mask, PickReach());
}

void CGrid::UnselectAll() {
  m_Constraints.Points().UnselectAll();
  UnselectCurves(CurveType::kAll);
}

void CGrid::SelectPtCstr(double x, double y, std::uint32_t mask) {
  m_Constraints.Points().Select(x, y, mask, PickReach());
}

void CGrid::MoveSelectedPtCstr(double dx, double dy) {
  CPtCstr* selected = m_Constraints.Points().FirstSelected();
  if (selected == nullptr) return;
  selected->m_fX += dx;
  selected->m_fY += dy;
  if (selected->HasKind(PtCstrKind::kNormal) && !selected->HasKind(PtCstrKind::kPosition))
    selected->m_fZ = m_Constraints.HeightUnder(*selected);
  m_Constraints.UpdateActivity(*selected);
  ConstraintsChanged(Operation::kRestart);
}

double CGrid::GetSelectedHeight() {
  const CPtCstr* selected = m_Constraints.Points().FirstSelected(PtCstrKind::kPosition);
  return selected == nullptr ? 0.0 : selected->m_fZ;
}

void CGrid::SetSelectedHeight(double z) {
  CPtCstr* selected = m_Constraints.Points().FirstSelected(PtCstrKind::kPosition);
  if (selected == nullptr) return;
  selected->m_fZ = z;
  Post(Operation::kRestart);
}

void CGrid::ChangeSelectedNormal(double dp, double dq) {
  CPtCstr* selected = m_Constraints.Points().FirstSelected(PtCstrKind::kNormal);
  if (selected != nullptr) {
    selected->m_fP += dp;
    selected->m_fQ += dq;
    if (!selected->HasKind(PtCstrKind::kPosition)) selected->m_fZ = m_Constraints.HeightUnder(*selected);
  }
  Post(Operation::kRestart);
}

void CGrid::DeleteSelectedPtCstr() {
  if (m_Constraints.Points().DeleteSelected()) ConstraintsChanged(Operation::kRebuild);
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
