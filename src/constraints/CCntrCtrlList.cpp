#include "constraints/CCntrCtrlList.h"

#include <algorithm>

#include "constraints/CSelectionStepper.h"

namespace {

constexpr auto kIsSelected = [](const auto& record) { return record.HasState(PtCstrState::kSelected); };

}  // namespace

CCntrCtrl& CCntrCtrlList::Add(std::span<const CPtCstr> points, CurveType type, bool closed) {
  CCntrCtrl& curve = Add();
  curve.SetClosed(closed && points.size() >= 3);
  curve.SetType(type);
  for (const CPtCstr& point : points) {
    CCntrNode& node = curve.Nodes().emplace_back();
    static_cast<CPtCstr&>(node) = point;
    node.m_uState = 0;
  }
  return curve;
}

void CCntrCtrlList::RemoveDegenerate() {
  m_aCurves.remove_if([](const CCntrCtrl& curve) { return curve.Nodes().size() < 2; });
}

bool CCntrCtrlList::Highlight(double x, double y, CurveType mask, double reach) {
  bool any = false;
  for (CCntrCtrl& curve : m_aCurves) {
    bool onCurve = false;
    for (CCntrNode& node : curve.Nodes()) {
      const bool hit = curve.HasType(mask) && node.IsWithinReach(x, y, reach);
      node.SetState(PtCstrState::kHighlighted, hit);
      onCurve = onCurve || hit;
    }
    curve.SetState(PtCstrState::kHighlighted, onCurve);
    any = any || onCurve;
  }
  return any;
}

CCntrCtrl* CCntrCtrlList::Pick(double x, double y, CurveType mask, double reach) {
  CSelectionStepper<CCntrNode> nodes;
  CSelectionStepper<CCntrCtrl> curves;
  for (CCntrCtrl& curve : m_aCurves) {
    bool onCurve = false;
    for (CCntrNode& node : curve.Nodes()) {
      const bool hit = curve.HasType(mask) && node.IsWithinReach(x, y, reach);
      nodes.Offer(node, hit);
      onCurve = onCurve || hit;
    }
    curves.Offer(curve, onCurve);
  }
  return curves.Chosen();
}

CCntrCtrlList::CHit CCntrCtrlList::Find(double x, double y, double reach) const {
  for (const CCntrCtrl& curve : m_aCurves) {
    if (const CCntrNode* node = curve.FindNode(x, y, reach); node != nullptr) return {&curve, node};
  }
  return {};
}

CCntrCtrl* CCntrCtrlList::Find(CurveId id) {
  const auto found = std::ranges::find(m_aCurves, id, &CCntrCtrl::Id);
  return found == m_aCurves.end() ? nullptr : &*found;
}

const CCntrCtrl* CCntrCtrlList::Find(CurveId id) const {
  const auto found = std::ranges::find(m_aCurves, id, &CCntrCtrl::Id);
  return found == m_aCurves.end() ? nullptr : &*found;
}

CCntrCtrlList::CHit CCntrCtrlList::SelectedNode() const {
  for (const CCntrCtrl& curve : m_aCurves) {
    const auto node = std::ranges::find_if(curve.Nodes(), kIsSelected);
    if (node != curve.Nodes().end()) return {&curve, &*node};
  }
  return {};
}

void CCntrCtrlList::SelectNumber(std::size_t curve, std::size_t node) {
  std::size_t k = 0;
  for (CCntrCtrl& c : m_aCurves) {
    const bool wanted = k++ == curve;
    c.SetState(PtCstrState::kSelected, wanted);
    std::size_t j = 0;
    for (CCntrNode& n : c.Nodes()) n.SetState(PtCstrState::kSelected, j++ == node && wanted);
  }
}

void CCntrCtrlList::PlaceSelectedNode(double x, double y) {
  for (CCntrCtrl& curve : m_aCurves) {
    const auto node = std::ranges::find_if(curve.Nodes(), kIsSelected);
    if (node == curve.Nodes().end()) continue;
    node->m_fX = x;
    node->m_fY = y;
    return;
  }
}

CCntrCtrl* CCntrCtrlList::FirstSelected() {
  const auto found = std::ranges::find_if(m_aCurves, kIsSelected);
  return found == m_aCurves.end() ? nullptr : &*found;
}

void CCntrCtrlList::MoveSelected(double dx, double dy, CurveType mask) {
  for (CCntrCtrl& curve : m_aCurves) {
    if (!curve.HasType(mask)) continue;
    for (CCntrNode& node : curve.Nodes()) {
      if (!node.HasState(PtCstrState::kSelected)) continue;
      node.m_fX += dx;
      node.m_fY += dy;
    }
  }
}

void CCntrCtrlList::DeleteSelectedNodes() {
  for (CCntrCtrl& curve : m_aCurves) {
    const auto selected = std::ranges::find_if(curve.Nodes(), kIsSelected);
    if (selected != curve.Nodes().end()) curve.Nodes().erase(selected);
  }
}

void CCntrCtrlList::DeleteSelected() {
  const auto selected = std::ranges::find_if(m_aCurves, kIsSelected);
  if (selected != m_aCurves.end()) m_aCurves.erase(selected);
}

void CCntrCtrlList::Unselect(CurveType mask) {
  for (CCntrCtrl& curve : m_aCurves) {
    curve.SetState(PtCstrState::kSelected, false);
    if (!curve.HasType(mask)) continue;
    for (CCntrNode& node : curve.Nodes()) node.SetState(PtCstrState::kSelected, false);
  }
}
