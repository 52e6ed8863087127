// Which part of the model the image view shows: its wheel, its keys, and the drags with Shift held.

#include <optional>

#include <FL/Fl.H>

#include "ui/imageview/CImageView.h"
#include "ui/seams/ViewHost.h"
#include "ui/seams/ViewMoves.h"

bool CImageView::HandleWheelZoom(int event) {
  if (event != FL_MOUSEWHEEL || !IsWheelZoom()) return false;
  const std::optional<double> factor = WheelZoomFactor();
  if (!factor || !IsPointerIn(w(), h())) return true;
  m_Mapping.ZoomAbout(*factor, Fl::event_x(), Fl::event_y());
  redraw();
  return true;
}

// Keys come to this view wherever the pointer is.
bool CImageView::HandleViewMove(int event) {
  if (event != FL_KEYBOARD) return false;
  const std::optional<ViewMove> move = TypedViewMove();
  if (!move) return false;
  if (!m_pHost->MoveModelView(*move)) MoveView(*move);
  return true;
}

void CImageView::MoveView(ViewMove move) {
  if (move == ViewMove::All) return ResetView();
  const CExtent shown = m_Mapping.Visible();
  const CViewStep step = StepOf(move, shown.x1 - shown.x0, shown.y1 - shown.y0);
  m_Mapping.Pan(step.m_fAcross, step.m_fUpwards);
  redraw();
}

bool CImageView::HandleViewDrag(int event) {
  switch (event) {
    case FL_PUSH:
      EndViewDrag();
      if (Fl::event_state(FL_SHIFT) == 0) return false;
      BeginViewDrag();
      return true;
    case FL_DRAG:
      if (m_iDragButton == 0) return false;
      ContinueViewDrag();
      return true;
    case FL_RELEASE:
      if (m_iDragButton == 0) return false;
      EndViewDrag();
      return true;
    default:
      return false;
  }
}

void CImageView::BeginViewDrag() {
  m_pHost->PauseSolverForCommand();
  m_iDragButton = Fl::event_button();
  m_iMouseX = Fl::event_x();
  m_iMouseY = Fl::event_y();
  m_DragPlace = m_Mapping.ToModelUnpanned(m_iMouseX, m_iMouseY);
}

void CImageView::ContinueViewDrag() {
  if (m_iDragButton == FL_MIDDLE_MOUSE) {
    CViewMapping::Zoom(Fl::event_x() - m_iMouseX, Fl::event_y() - m_iMouseY);
  } else if (m_iDragButton == FL_LEFT_MOUSE) {
    const CPlanePoint place = m_Mapping.ToModelUnpanned(Fl::event_x(), Fl::event_y());
    m_Mapping.Pan(m_DragPlace.x - place.x, m_DragPlace.y - place.y);
    m_DragPlace = place;
  }
  m_iMouseX = Fl::event_x();
  m_iMouseY = Fl::event_y();
  redraw();
}

void CImageView::EndViewDrag() {
  if (m_iDragButton == 0) return;
  m_iDragButton = 0;
  m_pHost->ResumeAfterCommand();
}
