#include "model/CCurveEdits.h"

#include <iterator>

#include "base/Console.h"
#include "model/CConstraints.h"
#include "model/CEditGate.h"
#include "model/CSurface.h"
#include "model/CWantedSubdivisions.h"

CCntrCtrl& CCurveEdits::Append(std::span<const CPtCstr> points, CurveType type, bool closed) {
  CCntrCtrl& curve = m_Constraints.Curves().Add(points, type, closed);
  m_Constraints.PlaceParallels(curve);
  Console() << "contour with " << curve.Nodes().size() << " nodes added \n";
  return curve;
}

void CCurveEdits::Add(std::span<const CPtCstr> points, CurveType type, bool closed) {
  if (points.empty()) return;
  m_Gate.Do(Edit::AddCurve, [&] { Append(points, type, closed); });
}

void CCurveEdits::AddTraced(std::span<const CPtCstr> points, CurveType type, bool closed) {
  if (points.empty()) return;
  m_Gate.Do(Edit::AddCurve, [&] {
    CCntrCtrl& curve = Append(points, type, closed);
    curve.Simplify(m_Surface.Lattice());
    if (curve.Nodes().size() > 1) m_Constraints.PlaceParallels(curve);
  });
}

void CCurveEdits::AppendPending(double x, double y) {
  m_Gate.Do(Edit::DrawCurve, [&] { m_Constraints.PendingCurve().Append(x, y); });
}

// Where the curve would end is no edit until it does.
void CCurveEdits::HoverPending(double x, double y, double reach) { m_Constraints.PendingCurve().Hover(x, y, reach); }

CCurveEdits::Validation CCurveEdits::ValidatePending(double x, double y, bool close, CurveType type) {
  CPendingCurve& pending = m_Constraints.PendingCurve();
  if (pending.IsIdle()) {
    ForgetPending();
    return Validation::Dropped;
  }
  if (type == CurveType::kNone) return Validation::NeedsType;
  bool enough = false;
  m_Gate.Do(Edit::EndCurve, [&] {
    if (!pending.ClosesOnValidate()) pending.Append(x, y);
    enough = pending.Points().size() > 1;
    if (enough) Add(pending.Points(), type, close || pending.ClosesOnValidate());
    ForgetPending();
  });
  return enough ? Validation::Added : Validation::Dropped;
}

void CCurveEdits::CancelPending() {
  if (m_Constraints.PendingCurve().IsIdle()) return ForgetPending();
  m_Gate.Do(Edit::GiveUpCurve, [&] { ForgetPending(); });
}

void CCurveEdits::ForgetPending() {
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
  if (selected != nullptr && type != CurveType::kNone) m_Gate.Do(Edit::SetCurveType, [&] { selected->SetType(type); });
}

void CCurveEdits::MoveSelected(double dx, double dy, CurveType mask) {
  m_Gate.Do(Edit::MoveNode, [&] { m_Constraints.Curves().MoveSelected(dx, dy, mask); });
}

void CCurveEdits::SelectNumber(std::size_t curve, std::size_t node) {
  m_Constraints.UnselectAll();
  m_Constraints.Curves().SelectNumber(curve, node);
}

void CCurveEdits::PlaceSelectedNode(double x, double y) {
  if (m_Constraints.Curves().SelectedNode().m_pNode == nullptr) return;
  m_Gate.Do(Edit::MoveNode, [&] { m_Constraints.Curves().PlaceSelectedNode(x, y); });
}

void CCurveEdits::Unselect(CurveType mask) { m_Constraints.Curves().Unselect(mask); }

void CCurveEdits::DeleteSelectedNode() {
  m_Gate.Do(Edit::DeleteNode, [&] { m_Constraints.Curves().DeleteSelectedNodes(); });
}

void CCurveEdits::DeleteSelected() {
  m_Gate.Do(Edit::DeleteCurve, [&] { m_Constraints.Curves().DeleteSelected(); });
}

void CCurveEdits::SetAttributes(CurveId id, std::size_t node, const CContourAttributes& attributes, CurveType type,
                                bool weightsToAllNodes) {
  CCntrCtrl* curve = m_Constraints.Curves().Find(id);
  if (curve == nullptr || node >= curve->Nodes().size()) return;
  m_Gate.Do(Edit::SetCurveAttributes, [&] {
    attributes.ApplyTo(*curve, *std::next(curve->Nodes().begin(), static_cast<std::ptrdiff_t>(node)));
    if (type != CurveType::kNone) curve->SetType(type);
    const CNodeWeights& w = attributes.m_Weights;
    if (weightsToAllNodes)
      curve->SetAllWeights(w.m_fLeftCurvature, w.m_fLeftTorsion, w.m_fRightCurvature, w.m_fRightTorsion);
  });
}

bool CCurveEdits::ExportConstraints(CurveId id) {
  CCntrCtrl* curve = m_Constraints.Curves().Find(id);
  if (curve == nullptr) return true;
  m_Constraints.RefreshParallels(*curve);
  if (curve->GeneratedCount() > CCntrCtrl::kMostGenerated) return false;
  m_Gate.Do(Edit::ExportConstraints, [&] {
    const CLattice& lattice = m_Surface.Lattice();
    curve->AddAutoBumpConstraints(m_Constraints.Points(), [&](double x, double y) {
      m_Wanted.Current().RefineAt(m_Surface.Tree(), lattice.ColumnOf(x), lattice.RowOf(y));
    });
    curve->SetOption(CurveOption::kLeftAutoBump | CurveOption::kRightAutoBump, false);
  });
  return true;
}

int CCurveEdits::TakeRefused() { return m_Constraints.TakeRefusedCurves(); }
