#include "ui/imageview/CPressTaker.h"

#include <FL/Fl.H>

#include "drawing/CViewMapping.h"

bool CPressTaker::Handle(int event, const CViewMapping& mapping) {
  if (event == FL_DRAG) return m_bHeld;
  if (event == FL_RELEASE) return std::exchange(m_bHeld, false);
  const bool press = event == FL_PUSH && Fl::event_button() == FL_LEFT_MOUSE && Fl::event_state(FL_SHIFT) == 0;
  const bool escape = event == FL_KEYBOARD && Fl::event_key() == FL_Escape;
  if (event == FL_PUSH) m_bHeld = false;
  if (!m_Taker || (!press && !escape)) return false;
  m_bHeld = press;
  // It may have somebody else wait.
  const Taker taker = std::exchange(m_Taker, nullptr);
  const bool done = taker(press ? std::optional(mapping.ToModel(Fl::event_x(), Fl::event_y())) : std::nullopt);
  if (!done && !m_Taker) m_Taker = taker;
  return true;
}
