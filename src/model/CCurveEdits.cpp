#include "model/CCurveEdits.h"

#include <iterator>

#include "base/Console.h"
#include "model/CConstraints.h"
#include "model/CGridRun.h"
#include "model/CSurface.h"
#include "model/CWantedSubdivisions.h"

void CCurveEdits::Changed(Operation operation) {
  m_Run.Post(operation);
  m_Run.Host().RequestRedraw();
}

void CCurveEdits::Add(std::span<const CPtCstr> points, CurveType type, bool closed) {
  if (points.empty()) return;
  CCntrCtrl& curve = m_Constraints.Curves().Add(points, type, closed);
  m_Constraints.PlaceParallels(curve);
  Console() << "contour with " << curve.Nodes().size() << " nodes added \n";
  Changed(Operation::kNewCurve);
}

void CCurveEdits::AddTraced(std::span<const CPtCstr> points, CurveType type, bool closed) {
  if (points.empty()) return;
  Add(points, type, closed);
  CCntrCtrl& curve = m_Constraints.Curves().back();
  curve.Simplify(m_Surface.Lattice());
  if (curve.Nodes().size() > 1) m_Constraints.PlaceParallels(curve);
}

CCurveEdits::Validation CCurveEdits::ValidatePending(double x, double y, bool close, CurveType type) {
  CPendingCurve& pending = m_Constraints.PendingCurve();
  if (!pending.IsIdle() && type == CurveType::kNone) return Validation::NeedsType;
  if (!pending.IsIdle() && !pending.ClosesOnValidate()) pending.Append(x, y);
  const bool enough = pending.Points().size() > 1;
  if (enough) Add(pending.Points(), type, close || pending.ClosesOnValidate());
  CancelPending();
  return enough ? Validation::Added : Validation::Dropped;
}

void CCurveEdits::CancelPending() {
  m_Constraints.PendingCurve().Drop();
  m_Constraints.UnselectAll();
}

CurveType CCurveEdits::Pick(double x, double y, CurveType mask, double reach) {
  const CCntrCtrl* picked = m_Constraints.Curves().Pick(x, y, mask, reach);
  return picked == nullptr ? CurveType::kNone : picked->Type();
}

bool CCurveEdits::Highlight(double x, double y, CurveType mask, double reach) {
  return m_Constraints.Curves().Highlight(x, y, mask, reach);
}

void CCurveEdits::SetSelectedType(CurveType type) {
  CCntrCtrl* selected = m_Constraints.Curves().FirstSelected();
  if (selected != nullptr && type != CurveType::kNone) selected->SetType(type);
}

void CCurveEdits::MoveSelected(double dx, double dy, CurveType mask) {
  m_Constraints.Curves().MoveSelected(dx, dy, mask);
}

void CCurveEdits::Unselect(CurveType mask) { m_Constraints.Curves().Unselect(mask); }

void CCurveEdits::DeleteSelectedNode() {
  m_Constraints.Curves().DeleteSelectedNodes();
  Changed(Operation::kRebuildMaps);
}

void CCurveEdits::DeleteSelected() {
  m_Constraints.Curves().DeleteSelected();
  Changed(Operation::kRebuildMaps);
}

void CCurveEdits::SetAttributes(CurveId id, std::size_t node, const CContourAttributes& attributes, CurveType type,
                                bool weightsToAllNodes) {
  CCntrCtrl* curve = m_Constraints.Curves().Find(id);
  if (curve == nullptr || node >= curve->Nodes().size()) return;
  attributes.ApplyTo(*curve, *std::next(curve->Nodes().begin(), static_cast<std::ptrdiff_t>(node)));
  if (type != CurveType::kNone) curve->SetType(type);
  const CNodeWeights& w = attributes.m_Weights;
  if (weightsToAllNodes)
    curve->SetAllWeights(w.m_fLeftCurvature, w.m_fLeftTorsion, w.m_fRightCurvature, w.m_fRightTorsion);
  Changed(Operation::kRebuildMaps);
}

bool CCurveEdits::ExportConstraints(CurveId id) {
  CCntrCtrl* curve = m_Constraints.Curves().Find(id);
  if (curve == nullptr) return true;
  m_Constraints.RefreshParallels(*curve);
  if (curve->GeneratedCount() > CCntrCtrl::kMostGenerated) return false;
  curve->AddAutoBumpConstraints(m_Constraints.Points(), [this](double px, double py) {
    m_Wanted.Current().RefineAt(m_Surface.Tree(), m_Surface.Lattice().ColumnOf(px), m_Surface.Lattice().RowOf(py));
  });
  curve->SetOption(CurveOption::kLeftAutoBump | CurveOption::kRightAutoBump, false);
  Changed(Operation::kRebuildMaps);
  m_Run.Host().ShowConstraints(m_Constraints.ActiveCount());
  return true;
}
