#include "ui/imageview/CurveHandler.h"

#include <algorithm>
#include <utility>

#include <FL/Fl.H>

#include "base/Console.h"
#include "model/CGrid.h"
#include "model/Globals.h"
#include "ui/seams/HelpTexts.h"
#include "ui/seams/ViewHost.h"

int CCurveHandler::Hover() {
  m_Cursor = ClampedCursor();
  m_LooseEnd = m_Cursor;
  Look();
  m_Host.RedrawImageView();
  return 1;
}

// What lies under the cursor, and how a curve in progress would end there.
void CCurveHandler::Look() {
  if (!m_Grid.HighlightCurves(m_Cursor.x, m_Cursor.y, CurveType::kAll)) LookForEnd();
}

void CCurveHandler::LookForEnd() { m_Grid.CurveEdits().HoverPending(m_Cursor.x, m_Cursor.y, PickReach()); }

// Nothing lies under a mouse that has left, though Enter would still end a curve where it was last.
void CCurveHandler::DocumentChanged() {
  if (m_LooseEnd.has_value()) {
    Look();
  } else {
    LookForEnd();
  }
}

int CCurveHandler::Leave() {
  m_LooseEnd.reset();
  m_Host.RedrawImageView();
  return 1;
}

// Points of a curve in progress may lie on other curves, so its presses take hold of none.
void CCurveHandler::Press() {
  Console() << "CImageView::HandleCurveCstr\t\t\tFL_PUSH\n";
  EndDrag();
  const int button = Fl::event_button();
  m_Cursor = ClampedCursor();
  if (button == FL_MIDDLE_MOUSE && m_View.CurveType() == CurveType::kNone) return;
  const bool drawing = button == FL_LEFT_MOUSE && !m_Grid.Constraints().PendingCurve().IsIdle();
  const CurveType type = drawing ? CurveType::kNone : m_Grid.PickCurve(m_Cursor.x, m_Cursor.y, CurveType::kAll);
  if (type != CurveType::kNone) {
    Grab(button, type);
  } else if (button == FL_LEFT_MOUSE) {
    Append();
  }
  RedrawBoth();
}

void CCurveHandler::Grab(int button, CurveType type) {
  m_iButton = button;
  m_Grid.Gate().BeginGesture(CEditGate::Hold::Curve);
  m_DragPlace = m_Cursor;
  if (button == FL_LEFT_MOUSE) {
    m_View.KeepCurveType(type);
    m_Host.ShowCurveType(type);
  } else if (button == FL_MIDDLE_MOUSE) {
    m_Grid.CurveEdits().SetSelectedType(m_View.CurveType());
  } else if (button == FL_RIGHT_MOUSE) {
    Console() << "Fl::event_button() == FL_RIGHT_MOUSE\n";
    m_Host.EditCurveAttributes(m_Cursor);
  }
}

void CCurveHandler::Append() {
  if (m_Grid.Constraints().PendingCurve().IsIdle()) m_Host.SetCurrentHelp(HelpText::kCurveInProgress);
  m_Grid.CurveEdits().AppendPending(m_Cursor.x, m_Cursor.y);
  m_LooseEnd = m_Cursor;
}

const CCntrNode* CCurveHandler::SelectedNode() const { return m_Grid.Constraints().Curves().SelectedNode().m_pNode; }

bool CCurveHandler::HoldsExisting() const { return m_iButton == FL_LEFT_MOUSE; }

// The node keeps its distance from the mouse, also after the border has held it back.
void CCurveHandler::Drag() {
  m_Cursor = ClampedCursor();
  if (m_iButton != FL_LEFT_MOUSE) return;
  const CCntrNode* node = SelectedNode();
  if (node == nullptr) return;
  const CPlanePoint step = AllowedStep({node->m_fX, node->m_fY}, m_DragPlace, m_Cursor);
  m_Grid.MoveSelectedCurve(step.x, step.y, CurveType::kAll);
  m_DragPlace = {m_DragPlace.x + step.x, m_DragPlace.y + step.y};
  RedrawBoth();
}

void CCurveHandler::Release() {
  if (std::exchange(m_iButton, 0) == 0) return;
  m_Grid.Gate().EndGesture(CEditGate::GestureEnd::Released);
  RedrawBoth();
}

void CCurveHandler::EndDrag() {
  if (std::exchange(m_iButton, 0) != 0) m_Grid.Gate().EndGesture(CEditGate::GestureEnd::Interrupted);
}

// Menu shortcuts have letters, too.
int CCurveHandler::Key() {
  const int key = Fl::event_key();
  switch (key) {
    case 'f':
    case 'n':
    case 'p':
      if (Fl::event_state(FL_CTRL | FL_ALT | FL_META) != 0) return 0;
      ChooseType(key == 'f' ? CurveType::kFairness : key == 'n' ? CurveType::kNormal : CurveType::kPosition);
      break;
    case FL_BackSpace:
      EndDrag();
      m_Grid.DeleteSelectedCurveNode();
      break;
    case FL_Delete:
      EndDrag();
      m_Grid.DeleteSelectedCurve();
      break;
    case FL_Enter:
    case FL_KP_Enter:
      Validate();
      break;
    case FL_Escape:
      Cancel();
      break;
    default:
      return 0;
  }
  RedrawBoth();
  return 1;
}

void CCurveHandler::ChooseType(CurveType type) {
  EndDrag();
  m_View.KeepCurveType(type);
  m_Grid.UnselectAll();
  m_Host.ShowCurveType(type);
  m_Host.RestoreHelp();
}

void CCurveHandler::Validate() {
  EndDrag();
  // The toolkit delivers motion late: the key may come before the mouse is known to be where it is.
  if (ClampedCursor() != m_Cursor) Hover();
  const bool close = Fl::event_state(FL_SHIFT) != 0;
  if (m_Grid.CurveEdits().ValidatePending(m_Cursor.x, m_Cursor.y, close, m_View.CurveType()) ==
      CCurveEdits::Validation::NeedsType) {
    m_Host.Tell(FormatHelp(HelpText::kCurveTypeWanted));
  } else {
    m_Host.SetCurrentHelp(HelpText::kCurves);
  }
}

void CCurveHandler::Cancel() {
  EndDrag();
  m_Grid.CurveEdits().CancelPending();
  m_Host.SetCurrentHelp(HelpText::kCurves);
}
