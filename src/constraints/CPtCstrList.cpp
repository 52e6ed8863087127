#include "constraints/CPtCstrList.h"

#include <algorithm>
#include <cmath>
#include <iterator>

#include "constraints/CSelectionStepper.h"

namespace {

bool IsSelected(const CPtCstr& c) { return c.HasState(PtCstrState::kSelected); }

bool IsChosen(const CPtCstr& c) { return c.HasState(PtCstrState::kChosen); }

// Null if there is none.
template <typename Records, typename Predicate>
auto* FirstOf(Records& records, Predicate&& wanted) {
  const auto found = std::ranges::find_if(records, wanted);
  return found == records.end() ? nullptr : &*found;
}

// Moves the selection one on within [first, last), in the direction of the iterators, and wraps.
template <typename Iterator>
void MoveSelection(Iterator first, Iterator last, std::uint32_t mask) {
  bool pending = false;
  bool hadSelection = false;
  for (Iterator c = first; c != last; ++c) {
    if (!c->HasKind(mask)) continue;
    if (c->HasState(PtCstrState::kSelected)) {
      c->SetState(PtCstrState::kSelected, false);
      pending = true;
      hadSelection = true;
    } else if (pending) {
      c->SetState(PtCstrState::kSelected, true);
      pending = false;
    }
  }
  if (!pending && hadSelection) return;
  const Iterator wrapped = std::find_if(first, last, [mask](const CPtCstr& c) { return c.HasKind(mask); });
  if (wrapped != last) wrapped->SetState(PtCstrState::kSelected, true);
}

}  // namespace

CPtCstr& CPtCstrList::Add(const CPtCstr& record) {
  CPtCstr& added = m_aRecords.emplace_back(record);
  added.m_uState = 0;
  return added;
}

bool CPtCstrList::Highlight(double x, double y, std::uint32_t mask, double reach) {
  bool any = false;
  for (CPtCstr& c : m_aRecords) {
    const bool hit = c.IsWithinReach(x, y, reach) && c.HasKind(mask);
    c.SetState(PtCstrState::kHighlighted, hit);
    any = any || hit;
  }
  return any;
}

void CPtCstrList::Select(double x, double y, std::uint32_t mask, double reach) {
  CSelectionStepper<CPtCstr> stepper;
  for (CPtCstr& c : m_aRecords) stepper.Offer(c, c.IsWithinReach(x, y, reach) && c.HasKind(mask));
}

void CPtCstrList::SelectNext(std::uint32_t mask) { MoveSelection(m_aRecords.begin(), m_aRecords.end(), mask); }

void CPtCstrList::SelectPrev(std::uint32_t mask) { MoveSelection(m_aRecords.rbegin(), m_aRecords.rend(), mask); }

void CPtCstrList::UnselectAll() {
  for (CPtCstr& c : m_aRecords) c.SetState(PtCstrState::kSelected, false);
}

void CPtCstrList::SelectNumber(std::size_t number) {
  std::size_t k = 0;
  for (CPtCstr& c : m_aRecords) c.SetState(PtCstrState::kSelected, k++ == number);
}

void CPtCstrList::ChooseIn(const CExtent& box) {
  for (CPtCstr& c : m_aRecords) {
    const bool inside = c.m_fX >= box.x0 && c.m_fX <= box.x1 && c.m_fY >= box.y0 && c.m_fY <= box.y1;
    c.SetState(PtCstrState::kChosen, inside && c.HasKind(PtCstrKind::kPosition));
  }
}

bool CPtCstrList::ToggleChosen(double x, double y, double reach) {
  CPtCstr* nearest = nullptr;
  double least = reach;
  for (CPtCstr& c : m_aRecords) {
    const double distance = std::abs(x - c.m_fX) + std::abs(y - c.m_fY);
    if (distance > least || !c.HasKind(PtCstrKind::kPosition)) continue;
    nearest = &c;
    least = distance;
  }
  if (nearest != nullptr) nearest->SetState(PtCstrState::kChosen, !nearest->HasState(PtCstrState::kChosen));
  return nearest != nullptr;
}

void CPtCstrList::ClearChosen() {
  for (CPtCstr& c : m_aRecords) c.SetState(PtCstrState::kChosen, false);
}

std::size_t CPtCstrList::ChosenCount() const {
  return static_cast<std::size_t>(std::ranges::count_if(m_aRecords, IsChosen));
}

double CPtCstrList::MeanChosenHeight() const {
  double sum = 0.0;
  std::size_t count = 0;
  for (const CPtCstr& c : m_aRecords) {
    if (!IsChosen(c)) continue;
    sum += c.m_fZ;
    ++count;
  }
  return count == 0 ? 0.0 : sum / static_cast<double>(count);
}

void CPtCstrList::DeleteChosen() { std::erase_if(m_aRecords, IsChosen); }

CPtCstr* CPtCstrList::FirstSelected() { return FirstOf(m_aRecords, IsSelected); }

const CPtCstr* CPtCstrList::FirstSelected() const { return FirstOf(m_aRecords, IsSelected); }

CPtCstr* CPtCstrList::FirstSelected(std::uint32_t mask) {
  return FirstOf(m_aRecords, [mask](const CPtCstr& c) { return c.HasKind(mask) && IsSelected(c); });
}

const CPtCstr* CPtCstrList::FirstSelected(std::uint32_t mask) const {
  return FirstOf(m_aRecords, [mask](const CPtCstr& c) { return c.HasKind(mask) && IsSelected(c); });
}

bool CPtCstrList::DeleteSelected() {
  const auto selected = std::ranges::find_if(m_aRecords, IsSelected);
  if (selected == m_aRecords.end()) return false;
  const auto sameKind = [position = selected->HasKind(PtCstrKind::kPosition)](const CPtCstr& c) {
    return c.HasKind(PtCstrKind::kPosition) == position;
  };
  auto successor = std::find_if(std::next(selected), m_aRecords.end(), sameKind);
  if (successor == m_aRecords.end()) successor = std::find_if(m_aRecords.begin(), selected, sameKind);
  if (successor != selected) successor->SetState(PtCstrState::kSelected, true);
  m_aRecords.erase(selected);
  return true;
}
