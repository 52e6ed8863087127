#include "ui/imageview/CGroupSelector.h"

#include <algorithm>

#include <FL/Fl.H>
#include <GL/gl.h>

#include "model/CGrid.h"
#include "ui/seams/ViewHost.h"

bool CGroupSelector::Takes(int event) const {
  switch (event) {
    case FL_PUSH:
      return Fl::event_button() == FL_LEFT_MOUSE;
    case FL_DRAG:
    case FL_RELEASE:
      return m_Band.IsHeld();
    case FL_KEYBOARD:
      return Fl::event_key() == FL_Escape;
    default:
      return false;
  }
}

void CGroupSelector::Clear() {
  EndDrag();
  m_Grid.PointEdits().ClearChosen();
}

void CGroupSelector::Press() { m_Band.Begin(Cursor()); }

void CGroupSelector::Drag() {
  if (m_Band.Drag(Cursor())) m_Host.RedrawImageView();
}

void CGroupSelector::Release() {
  const std::optional<CRubberBand::CResult> result = m_Band.End(Cursor());
  if (!result) return;
  const auto& [click, from, to] = *result;
  if (click) {
    m_Grid.PointEdits().ToggleChosen(from.x, from.y, PickReach());
  } else {
    m_Grid.PointEdits().ChooseIn(
        {std::min(from.x, to.x), std::max(from.x, to.x), std::min(from.y, to.y), std::max(from.y, to.y)});
  }
  m_Host.RedrawImageView();
}

int CGroupSelector::Key() {
  m_Host.EndChoosing();
  return 1;
}

// White on black, which can be told from any picture.
void CGroupSelector::DrawMarks(const CPlanePoint& pixel) const {
  constexpr double kHalfPixels = 8.0;
  constexpr float kThickness = 2.0F;
  const double w = kHalfPixels * pixel.x;
  const double h = kHalfPixels * pixel.y;
  for (const bool white : {false, true}) {
    glColor3d(white ? 1 : 0, white ? 1 : 0, white ? 1 : 0);
    glLineWidth(white ? kThickness : 2 * kThickness);
    for (const CPtCstr& c : m_Grid.Constraints().Points()) {
      if (!c.HasState(PtCstrState::kChosen)) continue;
      glBegin(GL_LINE_LOOP);
      glVertex2d(c.m_fX - w, c.m_fY - h), glVertex2d(c.m_fX + w, c.m_fY - h);
      glVertex2d(c.m_fX + w, c.m_fY + h), glVertex2d(c.m_fX - w, c.m_fY + h);
      glEnd();
    }
  }
}
