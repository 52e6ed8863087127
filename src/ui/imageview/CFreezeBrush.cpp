#include "ui/imageview/CFreezeBrush.h"

#include <FL/Fl.H>

#include "model/CGrid.h"

bool CFreezeBrush::Handle(int event, CGrid& grid, const CViewMapping& mapping) {
  switch (event) {
    case FL_PUSH:
      m_iButton = Fl::event_button();
      m_bViewDrag = Fl::event_state(FL_SHIFT) != 0;
      break;
    case FL_RELEASE:
      m_iButton = 0;
      return false;
    case FL_DRAG:
    case FL_MOVE:
      break;
    default:
      return false;
  }
  m_bPlaced = true;
  m_iPixelX = Fl::event_x();
  m_iPixelY = Fl::event_y();
  return event != FL_MOVE && Paint(grid, mapping);
}

bool CFreezeBrush::Paint(CGrid& grid, const CViewMapping& mapping) const {
  if (m_bViewDrag || (m_iButton != FL_LEFT_MOUSE && m_iButton != FL_RIGHT_MOUSE)) return false;
  const CPlanePoint centre = Place(mapping);
  grid.PaintFreezeMap(centre.x, centre.y, m_iButton == FL_LEFT_MOUSE);
  return true;
}
