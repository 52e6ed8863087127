#include "model/CPtCstrEdits.h"

#include "model/CConstraints.h"
#include "model/CEditGate.h"

void CPtCstrEdits::Add(const CPtCstr& record) {
  m_Gate.Do(Edit::AddPoint, [&] { m_Constraints.UpdateActivity(m_Constraints.Points().Add(record)); });
}

void CPtCstrEdits::AddAlongCurve(std::span<const CPtCstr> heights, std::optional<double> asked) {
  if (heights.empty()) return;
  m_Gate.Do(Edit::AddAlongCurve, [&] {
    for (const CPtCstr& height : heights) m_Constraints.UpdateActivity(m_Constraints.Points().Add(height));
  });
  if (asked.has_value()) m_LastHeight = asked;
}

bool CPtCstrEdits::Highlight(double x, double y, std::uint32_t mask, double reach) {
  return m_Constraints.Points().Highlight(x, y, mask, reach);
}

void CPtCstrEdits::Select(double x, double y, std::uint32_t mask, double reach) {
  m_Constraints.Points().Select(x, y, mask, reach);
}

void CPtCstrEdits::SelectNext(std::uint32_t mask) { m_Constraints.Points().SelectNext(mask); }

void CPtCstrEdits::SelectPrev(std::uint32_t mask) { m_Constraints.Points().SelectPrev(mask); }

void CPtCstrEdits::MoveSelected(double dx, double dy) {
  const CPtCstr* selected = m_Constraints.Points().FirstSelected();
  if (selected != nullptr) PlaceSelected(selected->m_fX + dx, selected->m_fY + dy);
}

void CPtCstrEdits::SelectNumber(std::size_t number) {
  m_Constraints.UnselectAll();
  m_Constraints.Points().SelectNumber(number);
}

void CPtCstrEdits::PlaceSelected(double x, double y) {
  CPtCstr* selected = m_Constraints.Points().FirstSelected();
  if (selected == nullptr) return;
  m_Gate.Do(Edit::MovePoint, [&] {
    selected->m_fX = x;
    selected->m_fY = y;
    if (selected->HasKind(PtCstrKind::kNormal) && !selected->HasKind(PtCstrKind::kPosition))
      selected->m_fZ = m_Constraints.HeightUnder(*selected);
    m_Constraints.UpdateActivity(*selected);
  });
}

double CPtCstrEdits::SelectedHeight() const {
  const CPtCstr* selected = m_Constraints.Points().FirstSelected(PtCstrKind::kPosition);
  return selected == nullptr ? 0.0 : selected->m_fZ;
}

void CPtCstrEdits::SetSelectedHeight(double z) {
  CPtCstr* selected = m_Constraints.Points().FirstSelected(PtCstrKind::kPosition);
  if (selected == nullptr) return;
  m_Gate.Do(Edit::MoveHeight, [&] { selected->m_fZ = z; });
  m_LastHeight = z;
}

void CPtCstrEdits::ChangeSelectedNormal(double dp, double dq) {
  CPtCstr* selected = m_Constraints.Points().FirstSelected(PtCstrKind::kNormal);
  m_Gate.Do(Edit::TurnSlope, [&] {
    if (selected == nullptr) return;
    selected->m_fP += dp;
    selected->m_fQ += dq;
    if (!selected->HasKind(PtCstrKind::kPosition)) selected->m_fZ = m_Constraints.HeightUnder(*selected);
  });
}

void CPtCstrEdits::SetSelectedNormal(double p, double q) {
  CPtCstr* selected = m_Constraints.Points().FirstSelected(PtCstrKind::kNormal);
  if (selected == nullptr) return;
  m_Gate.Do(Edit::TurnSlope, [&] {
    selected->m_fP = p;
    selected->m_fQ = q;
    if (!selected->HasKind(PtCstrKind::kPosition)) selected->m_fZ = m_Constraints.HeightUnder(*selected);
  });
}

void CPtCstrEdits::DeleteSelected() {
  if (m_Constraints.Points().FirstSelected() == nullptr) return;
  m_Gate.Do(Edit::DeletePoint, [&] { m_Constraints.Points().DeleteSelected(); });
}

void CPtCstrEdits::ChooseIn(const CExtent& box) { m_Constraints.Points().ChooseIn(box); }

bool CPtCstrEdits::ToggleChosen(double x, double y, double reach) {
  return m_Constraints.Points().ToggleChosen(x, y, reach);
}

void CPtCstrEdits::ClearChosen() { m_Constraints.Points().ClearChosen(); }

void CPtCstrEdits::ChangeChosenHeights(const std::function<double(double z)>& height) {
  if (m_Constraints.Points().ChosenCount() == 0) return;
  m_Gate.Do(Edit::MoveHeights, [&] {
    for (CPtCstr& c : m_Constraints.Points()) {
      if (c.HasState(PtCstrState::kChosen)) m_LastHeight = c.m_fZ = height(c.m_fZ);
    }
  });
}

void CPtCstrEdits::DeleteChosen() {
  if (m_Constraints.Points().ChosenCount() == 0) return;
  m_Gate.Do(Edit::DeletePoints, [&] { m_Constraints.Points().DeleteChosen(); });
}
