#pragma once

#include "constraints/CPtCstr.h"

/// The stepping rule of click selection, over records that are offered in list order.
///
/// At most one record ends selected, and repeated clicks step through a pile: the last candidate that is not selected
/// yet wins. Whatever is not a candidate is unselected.
template <typename Record>
class CSelectionStepper {
 public:
  /// Takes the next record of the list; `candidate` says whether it may be selected.
  void Offer(Record& record, bool candidate) {
    const bool selected = record.HasState(PtCstrState::kSelected);
    if (candidate && !selected) {
      record.SetState(PtCstrState::kSelected, true);
      if (m_pChosen != nullptr) m_pChosen->SetState(PtCstrState::kSelected, false);
      m_pChosen = &record;
    } else if (candidate && m_pChosen == nullptr) {
      m_pChosen = &record;
    } else {
      record.SetState(PtCstrState::kSelected, false);
    }
  }

  /// The record that is selected so far; null if there is none.
  Record* Chosen() const { return m_pChosen; }

 private:
  Record* m_pChosen = nullptr;
};
