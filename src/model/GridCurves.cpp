// The grid's operations on its curves.

#include <cstddef>
#include <iterator>

#include "base/Console.h"
#include "model/CGrid.h"
#include "model/Globals.h"

void CGrid::CurvesChanged(Operation operation) {
  Post(operation);
  m_Run.Host().RequestRedraw();
}

void CGrid::AddCurve(std::span<const CPtCstr> points, CurveType type, bool closed) {
  if (points.empty()) return;
  CCntrCtrl& curve = m_Constraints.Curves().Add(points, type, closed);
  m_Constraints.PlaceParallels(curve);
  Console() << "contour with " << curve.Nodes().size() << " nodes added \n";
  CurvesChanged(Operation::kNewCurve);
}

void CGrid::AddTracedCurve(std::span<const CPtCstr> points, CurveType type, bool closed) {
  if (points.empty()) return;
  AddCurve(points, type, closed);
  CCntrCtrl& curve = m_Constraints.Curves().back();
  curve.Simplify(Lattice());
  if (curve.Nodes().size() > 1) m_Constraints.PlaceParallels(curve);
}

CGrid::Validation CGrid::ValidatePendingCurve(double x, double y, bool close, CurveType type) {
  if (!m_Constraints.PendingCurve().IsIdle() && type == CurveType::kNone) return Validation::NeedsType;
  if (!m_Constraints.PendingCurve().IsIdle() && !m_Constraints.PendingCurve().ClosesOnValidate())
    m_Constraints.PendingCurve().Append(x, y);
  const bool enough = m_Constraints.PendingCurve().Points().size() > 1;
  if (enough)
    AddCurve(m_Constraints.PendingCurve().Points(), type, close || m_Constraints.PendingCurve().ClosesOnValidate());
  CancelPendingCurve();
  return enough ? Validation::Added : Validation::Dropped;
}

void CGrid::CancelPendingCurve() {
  m_Constraints.PendingCurve().Drop();
  UnselectAll();
}

CurveType CGrid::PickCurve(double x, double y, CurveType mask) {
  const CCntrCtrl* picked = m_Constraints.Curves().Pick(x, y, mask, PickReach());
  return picked == nullptr ? CurveType::kNone : picked->Type();
}

bool CGrid::HighlightCurves(double x, double y, CurveType mask) {
  return m_Constraints.Curves().Highlight(x, y, mask, PickReach());
}

void CGrid::SetSelectedCurveType(CurveType type) {
  CCntrCtrl* selected = m_Constraints.Curves().FirstSelected();
  if (selected != nullptr && type != CurveType::kNone) selected->SetType(type);
}

void CGrid::DeleteSelectedCurveNode() {
  m_Constraints.Curves().DeleteSelectedNodes();
  CurvesChanged(Operation::kRebuildMaps);
}

void CGrid::DeleteSelectedCurve() {
  m_Constraints.Curves().DeleteSelected();
  CurvesChanged(Operation::kRebuildMaps);
}

CurveId CGrid::FindCurve(double x, double y, double reach) const {
  const CCntrCtrl* curve = m_Constraints.Curves().Find(x, y, reach).m_pCurve;
  return curve == nullptr ? CurveId::kNone : curve->Id();
}

void CGrid::SetCurveAttributes(CurveId id, std::size_t node, const CContourAttributes& attributes, CurveType type,
                               bool weightsToAllNodes) {
  CCntrCtrl* curve = m_Constraints.Curves().Find(id);
  if (curve == nullptr || node >= curve->Nodes().size()) return;
  attributes.ApplyTo(*curve, *std::next(curve->Nodes().begin(), static_cast<std::ptrdiff_t>(node)));
  if (type != CurveType::kNone) curve->SetType(type);
  const CNodeWeights& w = attributes.m_Weights;
  if (weightsToAllNodes)
    curve->SetAllWeights(w.m_fLeftCurvature, w.m_fLeftTorsion, w.m_fRightCurvature, w.m_fRightTorsion);
  CurvesChanged(Operation::kRebuildMaps);
}

bool CGrid::ExportCurveConstraints(CurveId id) {
  CCntrCtrl* curve = m_Constraints.Curves().Find(id);
  if (curve == nullptr) return true;
  m_Constraints.RefreshParallels(*curve);
  if (curve->GeneratedCount() > CCntrCtrl::kMostGenerated) return false;
  curve->AddAutoBumpConstraints(m_Constraints.Points(), [this](double px, double py) {
    m_Wanted.Current().RefineAt(Tree(), Lattice().ColumnOf(px), Lattice().RowOf(py));
  });
  curve->SetOption(CurveOption::kLeftAutoBump | CurveOption::kRightAutoBump, false);
  ConstraintsChanged(Operation::kRebuildMaps);
  return true;
}
