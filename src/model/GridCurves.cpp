// The grid's operations on its curves.

#include <cmath>
#include <cstddef>
#include <iterator>

#include "base/Console.h"
#include "model/CGrid.h"
#include "model/Globals.h"

namespace {

// The parallels of a new curve run this share of a cell's diagonal beside it.
constexpr double kOffsetInDiagonals = 5.0 / 7.0;
// In the rebuilt map they run this much further out.
constexpr double kRefreshFactor = 1.1;

}  // namespace

double CGrid::CurveOffset() const { return std::hypot(Lattice().StepX(), Lattice().StepY()) * kOffsetInDiagonals; }

void CGrid::RefreshCurve(CCntrCtrl& curve) const { curve.UpdateNormals(CurveOffset() * kRefreshFactor); }

void CGrid::CurvesChanged(Operation operation) {
  Post(operation);
  if (m_pHost != nullptr) m_pHost->RequestRedraw();
}

void CGrid::AddCurve(std::span<const CPtCstr> points, CurveType type, bool closed) {
  if (points.empty()) return;
  CCntrCtrl& curve = m_Curves.Add(points, type, closed);
  curve.UpdateNormals(CurveOffset());
  Console() << "contour with " << curve.Nodes().size() << " nodes added \n";
  CurvesChanged(Operation::kNewCurve);
}

void CGrid::AddTracedCurve(std::span<const CPtCstr> points, CurveType type, bool closed) {
  if (points.empty()) return;
  AddCurve(points, type, closed);
  CCntrCtrl& curve = m_Curves.back();
  curve.Simplify(Lattice());
  if (curve.Nodes().size() > 1) curve.UpdateNormals(CurveOffset());
}

CGrid::Validation CGrid::ValidatePendingCurve(double x, double y, bool close, CurveType type) {
  if (!m_PendingCurve.IsIdle() && type == CurveType::kNone) return Validation::NeedsType;
  if (!m_PendingCurve.IsIdle() && !m_PendingCurve.ClosesOnValidate()) m_PendingCurve.Append(x, y);
  const bool enough = m_PendingCurve.Points().size() > 1;
  if (enough) AddCurve(m_PendingCurve.Points(), type, close || m_PendingCurve.ClosesOnValidate());
  CancelPendingCurve();
  return enough ? Validation::Added : Validation::Dropped;
}

void CGrid::CancelPendingCurve() {
  m_PendingCurve.Drop();
  UnselectAll();
}

CurveType CGrid::PickCurve(double x, double y, CurveType mask) {
  const CCntrCtrl* picked = m_Curves.Pick(x, y, mask, PickReach());
  return picked == nullptr ? CurveType::kNone : picked->Type();
}

bool CGrid::HighlightCurves(double x, double y, CurveType mask) { return m_Curves.Highlight(x, y, mask, PickReach()); }

void CGrid::SetSelectedCurveType(CurveType type) {
  CCntrCtrl* selected = m_Curves.FirstSelected();
  if (selected != nullptr && type != CurveType::kNone) selected->SetType(type);
}

void CGrid::DeleteSelectedCurveNode() {
  m_Curves.DeleteSelectedNodes();
  CurvesChanged(Operation::kRebuildMaps);
}

void CGrid::DeleteSelectedCurve() {
  m_Curves.DeleteSelected();
  CurvesChanged(Operation::kRebuildMaps);
}

CurveId CGrid::FindCurve(double x, double y, double reach) const {
  const CCntrCtrl* curve = m_Curves.Find(x, y, reach).m_pCurve;
  return curve == nullptr ? CurveId::kNone : curve->Id();
}

void CGrid::SetCurveAttributes(CurveId id, std::size_t node, const CContourAttributes& attributes, CurveType type,
                               bool weightsToAllNodes) {
  CCntrCtrl* curve = m_Curves.Find(id);
  if (curve == nullptr || node >= curve->Nodes().size()) return;
  attributes.ApplyTo(*curve, *std::next(curve->Nodes().begin(), static_cast<std::ptrdiff_t>(node)));
  if (type != CurveType::kNone) curve->SetType(type);
  const CNodeWeights& w = attributes.m_Weights;
  if (weightsToAllNodes)
    curve->SetAllWeights(w.m_fLeftCurvature, w.m_fLeftTorsion, w.m_fRightCurvature, w.m_fRightTorsion);
  CurvesChanged(Operation::kRebuildMaps);
}

bool CGrid::ExportCurveConstraints(CurveId id) {
  CCntrCtrl* curve = m_Curves.Find(id);
  if (curve == nullptr) return true;
  RefreshCurve(*curve);
  if (curve->GeneratedCount() > CCntrCtrl::kMostGenerated) return false;
  curve->AddAutoBumpConstraints(m_PointConstraints, [this](double px, double py) {
    m_Subdivision->RefineAt(Tree(), Lattice().ColumnOf(px), Lattice().RowOf(py));
  });
  curve->SetOption(CurveOption::kLeftAutoBump | CurveOption::kRightAutoBump, false);
  ConstraintsChanged(Operation::kRebuildMaps);
  return true;
}
