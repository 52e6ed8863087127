#include "ui/window/CCoordinateLine.h"

#include "model/Globals.h"
#include "report/PlaceText.h"

CCoordinateLine::CCoordinateLine() : Fl_Box(0, 0, 0, 0) {
  box(FL_FLAT_BOX);
  align(FL_ALIGN_LEFT | FL_ALIGN_INSIDE | FL_ALIGN_CLIP);
  hide();
}

void CCoordinateLine::Show(const CGrid& grid, const CPlanePoint* place) {
  m_Next.clear();
  if (place != nullptr) DescribePlace(grid, *place, PickReach(), m_Next);
  if (m_Next == m_Text) return;
  m_Text.swap(m_Next);
  label(m_Text.c_str());
}
