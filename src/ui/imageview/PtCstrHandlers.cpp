#include "ui/imageview/PtCstrHandlers.h"

#include <optional>
#include <utility>

#include <FL/Fl.H>

#include "base/Console.h"
#include "model/CGrid.h"
#include "ui/seams/ViewHost.h"

namespace {

constexpr double kModelUnitsPerHeight = 1.0;
constexpr double kModelUnitsPerSlope = 2.5;

}  // namespace

double CPtCstrHandler::SurfaceHeightAt(const CPlanePoint& place) const {
  const CLattice& lattice = m_Grid.Surface().Lattice();
  return m_Grid.GetHeightAt(lattice.ColumnOf(place.x), lattice.RowOf(place.y));
}

void CPtCstrHandler::EndDrag() {
  if (std::exchange(m_iButton, 0) != 0) m_Grid.Gate().EndGesture(CEditGate::GestureEnd::Released);
  m_bJustCreated = false;
  m_Values.EndDrag();
}

int CPtCstrHandler::Hover() {
  m_Last = ClampedCursor();
  m_Grid.HighlightPtCstrs(m_Last.x, m_Last.y, m_uKind);
  m_Host.RedrawImageView();
  Hovered();
  return 1;
}

void CPtCstrHandler::Press() {
  EndDrag();
  const int button = Fl::event_button();
  const CPlanePoint press = ClampedCursor();
  if (m_Grid.HighlightPtCstrs(m_Last.x, m_Last.y, m_uKind)) {
    m_Grid.SelectPtCstr(m_Last.x, m_Last.y, m_uKind);
    Hold(button);
    Grab(button, press);
    m_Values.SelectionChanged();
  } else if (button == FL_LEFT_MOUSE) {
    Hold(button);
    Create(press);
    m_bJustCreated = true;
    m_Values.SelectionChanged();
  }
  if (IsEditing()) m_Values.BeginDrag();
  RedrawBoth();
}

void CPtCstrHandler::Hold(int button) {
  m_iButton = button;
  m_Grid.Gate().BeginGesture(CEditGate::Hold::Other);
}

// The button is the one of the press: in a drag the toolkit forgets it as soon as a key goes down.
bool CPtCstrHandler::IsEditing() const { return m_iButton == FL_RIGHT_MOUSE || m_bJustCreated; }

void CPtCstrHandler::Drag() {
  if (IsEditing()) {
    Edit(Cursor());
    m_Values.Dragged();
  } else if (m_iButton == FL_LEFT_MOUSE) {
    Move(ClampedCursor());
    m_Values.SelectionChanged();
  } else {
    return;
  }
  RedrawBoth();
}

// The constraint keeps its distance from the last position, also after the border has held it back.
void CPtCstrHandler::Move(const CPlanePoint& cursor) {
  const CPtCstr* selected = m_Grid.Constraints().Points().FirstSelected();
  if (selected == nullptr) return;
  const CPlanePoint step = AllowedStep({selected->m_fX, selected->m_fY}, m_Last, cursor);
  m_Grid.MoveSelectedPtCstr(step.x, step.y);
  m_Last = {m_Last.x + step.x, m_Last.y + step.y};
}

bool CPtCstrHandler::HoldsExisting() const { return m_iButton == FL_LEFT_MOUSE && !m_bJustCreated; }

// A drag does not go on with another constraint than the one it began with.
int CPtCstrHandler::Key() {
  KeyTyped();
  switch (Fl::event_key()) {
    case FL_BackSpace:
    case FL_Delete:
      EndDrag();
      m_Grid.DeleteSelectedPtCstr();
      m_Values.SelectionChanged();
      break;
    case FL_Tab:
      SelectNeighbour(!Fl::event_state(FL_SHIFT));
      return 1;
    case FL_Escape:
      EndDrag();
      m_Grid.UnselectAll();
      m_Values.SelectionChanged();
      break;
    default:
      return 0;
  }
  RedrawBoth();
  return 1;
}

int CPtCstrHandler::Wheel() {
  SelectNeighbour(Fl::event_dy() > 0);
  return 1;
}

void CPtCstrHandler::SelectNeighbour(bool next) {
  EndDrag();
  if (next) {
    m_Grid.SelectNextPtCstr(m_uKind);
  } else {
    m_Grid.SelectPrevPtCstr(m_uKind);
  }
  m_Values.SelectionChanged();
  RedrawBoth();
}

CPtPosCstrHandler::CPtPosCstrHandler(CGrid& grid, const CViewMapping& mapping, ViewHost& host, const bool& startAtLast)
    : CPtCstrHandler(grid, mapping, host, PtCstrKind::kPosition), m_bStartAtLast(startAtLast) {}

double CPtPosCstrHandler::HeightOfNew(const CPlanePoint& place) const {
  const std::optional<double> last = m_bStartAtLast ? m_Grid.LastHeight() : std::nullopt;
  return last.has_value() ? *last : SurfaceHeightAt(place);
}

void CPtPosCstrHandler::Hovered() {}

void CPtPosCstrHandler::Grab(int button, const CPlanePoint& press) {
  if (button != FL_LEFT_MOUSE && button != FL_RIGHT_MOUSE) return;
  m_Last = press;
  m_fHeightAtPress = m_Grid.GetSelectedHeight();
}

void CPtPosCstrHandler::Create(const CPlanePoint& press) {
  CPtCstr constraint{press.x, press.y, PtCstrKind::kPosition, HeightOfNew(press)};
  m_Grid.AddPtCstr(constraint);
  m_Last = press;
  m_Grid.SelectPtCstr(press.x, press.y, PtCstrKind::kPosition);
  m_fHeightAtPress = constraint.m_fZ;
}

void CPtPosCstrHandler::Edit(const CPlanePoint& cursor) {
  const double raise = (cursor.x - m_Last.x) + (cursor.y - m_Last.y);
  m_Grid.SetSelectedHeight(m_fHeightAtPress + raise / kModelUnitsPerHeight);
}

void CPtPosCstrHandler::KeyTyped() const { Console() << "CImageView::HandlePtPosCstr : FL_KEYBOARD\n"; }

CPtNormCstrHandler::CPtNormCstrHandler(CGrid& grid, const CViewMapping& mapping, ViewHost& host, HandlerView& view)
    : CPtCstrHandler(grid, mapping, host, PtCstrKind::kNormal), m_View(view) {}

void CPtNormCstrHandler::Hovered() {
  if (m_View.ShowGrid()) m_Host.ImageGridShown();
  m_Host.RedrawModelView();
}

void CPtNormCstrHandler::Grab(int button, const CPlanePoint& press) {
  if (button != FL_LEFT_MOUSE && button != FL_RIGHT_MOUSE) return;
  m_Last = press;
  if (button == FL_RIGHT_MOUSE) m_Anchor = press;
}

void CPtNormCstrHandler::Create(const CPlanePoint& press) {
  Console() << "Creation d'une nouvelle contrainte : " << press.x << ", " << press.y << '\n';
  m_Grid.AddPtCstr({press.x, press.y, PtCstrKind::kNormal, SurfaceHeightAt(press)});
  m_Grid.SelectPtCstr(m_Last.x, m_Last.y, PtCstrKind::kNormal);
  m_Anchor = m_Last;
}

void CPtNormCstrHandler::Edit(const CPlanePoint& cursor) {
  m_Grid.ChangeSelectedNormal((m_Anchor.x - cursor.x) / kModelUnitsPerSlope,
                              (m_Anchor.y - cursor.y) / kModelUnitsPerSlope);
  m_Anchor = cursor;
}
