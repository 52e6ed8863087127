// The grid's operations on its point constraints: the list's rules, the surface under them, and what each edit posts.

#include <array>

#include "model/CGrid.h"
#include "model/Globals.h"

namespace {

// Bit of the triangle of `cell` that holds the point, given relative to the cell's centre in units of its size: the
// triangles are divided by the diagonals.
std::uint32_t TriangleBit(double u, double v) {
  if (v < u) return 1U << (v < -u ? kBottom : kRight);
  return 1U << (v < -u ? kLeft : kTop);
}

}  // namespace

void CGrid::ConstraintsChanged(int operation) {
  Post(operation);
  if (m_pHost == nullptr) return;
  m_pHost->ShowConstraints(static_cast<int>(m_PointConstraints.size()));
  m_pHost->RequestRedraw();
}

void CGrid::AddPtCstr(const CPtCstr& record) {
  UpdateDisabledBit(m_PointConstraints.Add(record));
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
  UpdateDisabledBit(*selected);
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
  return GetHeightAt(m_Lattice.ColumnOf(constraint.m_fX), m_Lattice.RowOf(constraint.m_fY));
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
  const CQuadT* cell = m_pTree->PointInCell(x, y);
  if (cell == nullptr) return false;
  const double u = (m_Lattice.ColumnOf(x) - cell->X0()) / cell->Size() - 0.5;
  const double v = (m_Lattice.RowOf(y) - cell->Y0()) / cell->Size() - 0.5;
  return cell->HasFlag(TriangleBit(u, v));
}

void CGrid::UpdateDisabledBit(CPtCstr& constraint) const {
  const double x = constraint.m_fX;
  const double y = constraint.m_fY;
  bool disabled = constraint.HasKind(PtCstrKind::kPosition) && IsInMarkedTriangle(x, y);
  if (constraint.HasKind(PtCstrKind::kNormal)) {
    const CQuadT* cell = m_pTree->PointInCell(x, y);
    const double w = cell == nullptr ? 0.0 : cell->Size() * m_Lattice.StepX();
    const double h = cell == nullptr ? 0.0 : cell->Size() * m_Lattice.StepY();
    disabled = disabled || cell == nullptr || IsInMarkedTriangle(x, y + h / 2) || IsInMarkedTriangle(x, y - h / 2) ||
               IsInMarkedTriangle(x - w / 2, y) || IsInMarkedTriangle(x + w / 2, y);
  }
  constraint.SetKind(PtCstrKind::kDisabled, disabled);
}
