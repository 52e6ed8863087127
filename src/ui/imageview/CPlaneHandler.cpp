#include "ui/imageview/CPlaneHandler.h"

#include <FL/Fl.H>

#include "ui/seams/ViewHost.h"

int CPlaneHandler::Handle(int event) {
  switch (event) {
    case FL_ENTER:
    case FL_MOVE:
      return Hover();
    case FL_LEAVE:
      return Leave();
    case FL_PUSH:
      Press();
      return 1;
    case FL_DRAG:
      Drag();
      return 1;
    case FL_RELEASE:
      Release();
      return 1;
    case FL_KEYBOARD:
      return Key();
    case FL_MOUSEWHEEL:
      return Wheel();
    default:
      return 0;
  }
}

CPlanePoint CPlaneHandler::Cursor() const { return m_Mapping.ToModel(Fl::event_x(), Fl::event_y()); }

CPlanePoint CPlaneHandler::AllowedStep(const CPlanePoint& from, const CPlanePoint& last, const CPlanePoint& now) const {
  const CPlanePoint allowed = m_Mapping.Clamped({from.x + (now.x - last.x), from.y + (now.y - last.y)});
  return {allowed.x - from.x, allowed.y - from.y};
}

void CPlaneHandler::RedrawBoth() {
  m_Host.RedrawImageView();
  m_Host.RedrawModelView();
}
