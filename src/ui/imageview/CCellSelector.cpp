#include "ui/imageview/CCellSelector.h"

#include <algorithm>
#include <cstdlib>

#include <FL/Fl.H>

#include "model/CGrid.h"
#include "ui/seams/ViewHost.h"

namespace {

// A hand that clicks moves the mouse a little.
constexpr int kClickPixels = 3;

}  // namespace

bool CCellSelector::IsFarFrom(const CPress& press) {
  return std::max(std::abs(Fl::event_x() - press.m_iX), std::abs(Fl::event_y() - press.m_iY)) > kClickPixels;
}

void CCellSelector::Press() {
  EndDrag();
  if (Fl::event_button() == FL_LEFT_MOUSE) m_Press = {Cursor(), Fl::event_x(), Fl::event_y()};
}

void CCellSelector::Drag() {
  if (!m_Press) return;
  m_Opposite = IsFarFrom(*m_Press) ? std::optional(Cursor()) : std::nullopt;
  m_Host.RedrawImageView();
}

void CCellSelector::Release() {
  if (!m_Press) return;
  const CPress press = *m_Press;
  const bool click = !IsFarFrom(press);
  EndDrag();
  if (click) {
    RefineAt(press.m_Place);
  } else {
    m_Grid.CellEdits().Select(press.m_Place.x, press.m_Place.y, Cursor().x, Cursor().y);
  }
  RedrawBoth();
}

void CCellSelector::EndDrag() {
  m_Press.reset();
  m_Opposite.reset();
}

std::optional<CExtent> CCellSelector::Rectangle() const {
  if (!m_Press || !m_Opposite) return std::nullopt;
  const CPlanePoint& a = m_Press->m_Place;
  const CPlanePoint& b = *m_Opposite;
  return CExtent{std::min(a.x, b.x), std::max(a.x, b.x), std::min(a.y, b.y), std::max(a.y, b.y)};
}

void CCellSelector::RefineAt(const CPlanePoint& place) {
  if (m_Mapping.IsInside(place)) m_Grid.CellEdits().RefineAt(place.x, place.y);
}

// Menu shortcuts have these characters' keys, too. On a keyboard "+" may be anywhere.
int CCellSelector::Key() {
  if (Fl::event_state(FL_CTRL | FL_ALT | FL_META) != 0) return 0;
  const char* text = Fl::event_text();
  const int typed = text != nullptr && *text != '\0' ? *text : Fl::event_key();
  if (typed == '+' || typed == '=') {
    m_Grid.CellEdits().SplitSelected();
  } else if (typed == '-') {
    m_Grid.CellEdits().MergeSelected();
  } else if (Fl::event_key() == FL_Escape) {
    EndDrag();
    ClearSelection();
  } else {
    return 0;
  }
  RedrawBoth();
  return 1;
}

void CCellSelector::Begin() { m_Grid.CellEdits().ShowSelection(); }

void CCellSelector::End() {
  EndDrag();
  m_Grid.CellEdits().ShowSelection();
  m_Grid.CellEdits().ClearSelection();
}

void CCellSelector::ClearSelection() {
  m_Grid.CellEdits().ClearSelection();
  m_Grid.CellEdits().ShowSelection();
}
