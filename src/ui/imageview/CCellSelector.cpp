#include "ui/imageview/CCellSelector.h"

#include <FL/Fl.H>

#include "model/CGrid.h"
#include "ui/seams/ViewHost.h"

void CCellSelector::Press() {
  EndDrag();
  if (Fl::event_button() == FL_LEFT_MOUSE) m_Band.Begin(Cursor());
}

void CCellSelector::Drag() {
  if (m_Band.Drag(Cursor())) m_Host.RedrawImageView();
}

void CCellSelector::Release() {
  const std::optional<CRubberBand::CResult> result = m_Band.End(Cursor());
  if (!result) return;
  if (result->m_bClick) {
    RefineAt(result->m_From);
  } else {
    m_Grid.CellEdits().Select(result->m_From.x, result->m_From.y, result->m_To.x, result->m_To.y);
  }
  RedrawBoth();
}

void CCellSelector::EndDrag() { m_Band.Forget(); }

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
