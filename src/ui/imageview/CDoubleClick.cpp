#include "ui/imageview/CDoubleClick.h"

#include <utility>

#include <FL/Fl.H>

void CDoubleClick::Look(int event, bool hit) {
  if (event == FL_PUSH) {
    m_bSecond = hit && m_bHitBefore && Fl::event_clicks() > 0;
    m_bHitBefore = hit;
    m_iX = Fl::event_x();
    m_iY = Fl::event_y();
  } else if (event == FL_DRAG && (Fl::event_x() != m_iX || Fl::event_y() != m_iY)) {
    m_bSecond = m_bHitBefore = false;
  }
}

bool CDoubleClick::Ends(int event) { return event == FL_RELEASE && std::exchange(m_bSecond, false); }
