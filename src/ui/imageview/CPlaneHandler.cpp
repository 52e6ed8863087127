#include "ui/imageview/CPlaneHandler.h"

#include <FL/Fl.H>

#include "ui/window/ViewHost.h"

CPlanePoint CPlaneHandler::Cursor() const { return m_Mapping.ToModel(Fl::event_x(), Fl::event_y()); }

CPlanePoint CPlaneHandler::AllowedStep(const CPlanePoint& from, const CPlanePoint& last, const CPlanePoint& now) const {
  const CPlanePoint allowed = m_Mapping.Clamped({from.x + (now.x - last.x), from.y + (now.y - last.y)});
  return {allowed.x - from.x, allowed.y - from.y};
}

void CPlaneHandler::RedrawBoth() {
  m_Host.RedrawImageView();
  m_Host.RedrawModelView();
}
