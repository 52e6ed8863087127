#include "ui/imageview/CProposalPicker.h"

#include <utility>

#include <FL/Fl.H>

#include "drawing/CViewMapping.h"
#include "model/Globals.h"
#include "reference/CTearProposals.h"

void CProposalPicker::Show(CTearProposals* proposals) {
  m_pProposals = proposals;
  m_bHeld = false;
}

bool CProposalPicker::Handle(int event, const CViewMapping& mapping) {
  switch (event) {
    case FL_PUSH:
      return m_bHeld = Press(mapping);
    case FL_DRAG:
      return m_bHeld;
    case FL_RELEASE:
      return std::exchange(m_bHeld, false);
    default:
      return false;
  }
}

// Not in the middle of what another button does.
bool CProposalPicker::Press(const CViewMapping& mapping) {
  constexpr int kOthers = FL_BUTTON2 | FL_BUTTON3 | FL_SHIFT;
  if (m_pProposals == nullptr || Fl::event_button() != FL_LEFT_MOUSE || Fl::event_state(kOthers) != 0) return false;
  const CPlanePoint place = mapping.ToModel(Fl::event_x(), Fl::event_y());
  return m_pProposals->SwitchAt(place.x, place.y, PickReach());
}
