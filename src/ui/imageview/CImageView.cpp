#include "ui/imageview/CImageView.h"

#include <algorithm>
#include <optional>
#include <utility>

#include <FL/Fl.H>
#include <GL/gl.h>
#include <GL/glu.h>

#include "base/Console.h"
#include "drawing/COverlay.h"
#include "drawing/CSampledBuffer.h"
#include "drawing/CTextures.h"
#include "drawing/CurvePainter.h"
#include "drawing/DrawingSettings.h"
#include "drawing/FrameBuffer.h"
#include "drawing/ProposalPainter.h"
#include "drawing/Quadrics.h"
#include "model/CGrid.h"
#include "model/Globals.h"
#include "ui/drawing/PrepareContext.h"
#include "ui/seams/CBusyCursor.h"
#include "ui/seams/FieldFocus.h"
#include "ui/seams/UiScale.h"
#include "ui/seams/ViewHost.h"

namespace {

// The events that say where the mouse is or what it and the keys do; the others come and go with the window.
bool IsInput(int event) {
  switch (event) {
    case FL_ENTER:
    case FL_LEAVE:
    case FL_MOVE:
    case FL_PUSH:
    case FL_DRAG:
    case FL_RELEASE:
    case FL_MOUSEWHEEL:
    case FL_KEYBOARD:
      return true;
    default:
      return false;
  }
}

// With these keys the toolkit would move the focus to another widget.
bool IsNavigationKey() {
  switch (Fl::event_key()) {
    case FL_Tab:
    case FL_Left:
    case FL_Right:
    case FL_Up:
    case FL_Down:
      return true;
    default:
      return false;
  }
}

}  // namespace

CImageView::CImageView(int x, int y, int w, int h) : Fl_Gl_Window(x, y, w, h), m_Legend(UiScale()) {}

void CImageView::AttachGrid(CGrid& grid, ViewHost& host) {
  m_pGrid = &grid;
  m_pHost = &host;
  m_PositionHandler.emplace(grid, m_Mapping, host, m_bHeightsAtLast);
  m_NormalHandler.emplace(grid, m_Mapping, host, static_cast<HandlerView&>(*this));
  m_CurveHandler.emplace(grid, m_Mapping, host, static_cast<HandlerView&>(*this));
  m_Selector.emplace(grid, m_Mapping, host);
  m_Group.emplace(grid, m_Mapping, host);
  UpdateMapping();
  redraw();
}

void CImageView::SetDisplayFlags(std::uint32_t flags) {
  m_uDisplayFlags = flags;
  redraw();
}

void CImageView::SetDebugFlags(std::uint32_t flags) {
  const bool toggled = ((m_uDebugFlags ^ flags) & DebugFlag::kSelectCells) != 0;
  const std::uint32_t cleared = m_uDebugFlags & ~flags;
  m_uDebugFlags = flags;
  if ((cleared & (DebugFlag::kReadOuts | DebugFlag::kInterpolation)) != 0 && m_pGrid != nullptr)
    m_Debug.SwitchOff(*m_pGrid, flags, *m_pHost);
  if (toggled && m_Selector) {
    if ((flags & DebugFlag::kSelectCells) != 0) {
      EndDrag();
      m_Selector->Begin();
    } else {
      m_Selector->End();
    }
  }
  redraw();
}

void CImageView::SetMode(EditingMode mode) {
  EndDrag();
  m_Mode = mode;
  Unselect();
}

void CImageView::SetCurveType(::CurveType type) {
  m_CurveType = type;
  Unselect();
}

void CImageView::SetChoosing(bool on) {
  m_bChoosing = on;
  if (m_pGrid == nullptr) return;
  EndDrag();
  m_Group->Clear();
  redraw();
}

bool CImageView::ShowGrid() {
  const bool hidden = (m_uDisplayFlags & ImageFlag::kGrid) == 0;
  m_uDisplayFlags |= ImageFlag::kGrid;
  return hidden;
}

void CImageView::Unselect() {
  if (m_pGrid != nullptr) m_pGrid->UnselectAll();
  redraw();
}

bool CImageView::LoadImage(const std::string& filename) {
  std::optional<CBusyCursor> busy(std::in_place);
  const CReadPicture read = ReadPicture(filename);
  busy.reset();
  return TakePicture(read, filename);
}

bool CImageView::TakePicture(const CReadPicture& read, const std::string& filename) {
  if (!read) {
    m_pHost->Notice(("The picture " + filename + " cannot be read: " + read.m_Reason + ".").c_str());
    return false;
  }
  if (!ShowPicture(read.m_Picture)) {
    m_pHost->Notice(("The picture " + filename + " is empty, or too large for the memory.").c_str());
    return false;
  }
  m_TextureFileName = filename;
  redraw();
  if (!read.m_Notice.empty()) m_pHost->Notice(("The picture " + filename + ' ' + read.m_Notice + '.').c_str());
  return true;
}

bool CImageView::ShowPicture(const CPicture& picture) {
  const CBusyCursor busy;
  if (!m_pGrid->Relighting().SetPicture(picture)) return false;
  const int width = CTextureImages::PaddedSide(picture.m_iWidth);
  const int height = CTextureImages::PaddedSide(picture.m_iHeight);
  Console() << "CImageView::LoadImage\tNew texture generated. new_width : " << width << ", new_height : " << height
            << '\n';
  if (m_pTextures != nullptr && shown() != 0) {
    make_current();
    m_pTextures->Load(m_pGrid->Relighting().Textures());
  }
  m_pGrid->TestTexelsInDiscontinuity();
  return true;
}

void CImageView::ResetView() {
  m_Mapping.Reset();
  redraw();
}

void CImageView::SetZoomAndPan(double zoom, const CPlanePoint& pan) {
  m_Mapping.Set(zoom, pan);
  redraw();
}

void CImageView::DocumentChanged() {
  if (m_Mode == EditingMode::Curve) m_CurveHandler->DocumentChanged();
  redraw();
}

void CImageView::ShowPreview(CPlacePreview preview) {
  m_Preview = std::move(preview);
  redraw();
}

void CImageView::ShowInterpolation(const CInterpolationTrace& trace) {
  m_Debug.ShowInterpolation(*m_pGrid, trace);
  redraw();
}

void CImageView::ShowOverlay(std::shared_ptr<const COverlay> made) {
  if (made == nullptr && Overlay() == nullptr) return;
  m_Legend.Set(made);
  m_Overlay.Set(std::move(made), std::as_const(*m_pGrid).Surface().Tree(), m_pGrid->Surface().Order());
  redraw();
}

std::optional<CPicture> CImageView::DrawnPicture() {
  if (shown() == 0 || m_pGrid == nullptr) return std::nullopt;
  make_current();
  PrepareToDraw();
  CSampledBuffer buffer(w(), h());
  if (!buffer.IsComplete()) {
    DrawScene();
    return Global::ReadFrameBuffer();
  }
  buffer.Begin();
  DrawScene();
  return buffer.End();
}

void CImageView::ShowProposals(CTearProposals* proposals) {
  m_Proposals.Show(proposals);
  redraw();
}

bool CImageView::HasProposals() const {
  return m_Proposals.Shown() != nullptr && (m_uDebugFlags & DebugFlag::kSelectCells) == 0 && !m_bChoosing &&
         m_pGrid->Constraints().PendingCurve().IsIdle();
}

bool CImageView::SaveFrame(const std::string& filename) {
  if (shown() == 0) return false;
  make_current();
  draw();
  return Global::SaveFrameBuffer(filename);
}

void CImageView::UpdateMapping() {
  m_Mapping.SetExtent(m_pGrid->Surface().Lattice().Extent());
  m_Mapping.SetSize(w(), h());
  m_Mapping.KeepProportions((m_uDisplayFlags & ImageFlag::kProportions) != 0);
}

// A context that is new has none of what the last one was given.
void CImageView::PrepareToDraw() {
  if (context_valid() == 0) m_Overlay.ForgetContext();
  PrepareContext(*this);
}

void CImageView::draw() {
  PrepareToDraw();
  if (m_pGrid != nullptr) DrawScene();
}

void CImageView::DrawScene() {
  const auto& [red, green, blue, alpha] = g_DrawingSettings.m_afBackground;
  glEnable(GL_DEPTH_TEST);
  glDepthFunc(GL_LEQUAL);
  glClearColor(red, green, blue, alpha);
  glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);

  UpdateMapping();
  const CExtent shownNow = m_Mapping.Visible();
  glMatrixMode(GL_PROJECTION);
  glLoadIdentity();
  glOrtho(shownNow.x0, shownNow.x1, shownNow.y0, shownNow.y1, -100, 100);
  glMatrixMode(GL_MODELVIEW);
  glLoadIdentity();
  gluLookAt(0, 0, 1, 0, 0, 0, 0, 1, 0);

  const bool selecting = (m_uDebugFlags & DebugFlag::kSelectCells) != 0;
  m_Painter.Draw(*m_pGrid, {m_uDisplayFlags, selecting, m_pTextures, &m_Overlay});
  m_Debug.Draw(*m_pGrid, m_uDebugFlags);
  DrawTools();
  m_Legend.Draw(*this);
}

// What follows the mouse.
void CImageView::DrawTools() const {
  if (HasProposals()) DrawProposals(*m_Proposals.Shown());
  if (m_Mode == EditingMode::Curve) DrawPendingCurve(*m_pGrid, m_CurveHandler->LooseEnd());
  const CExtent shown = m_Mapping.Visible();
  if (m_bChoosing) m_Group->DrawMarks({(shown.x1 - shown.x0) / w(), (shown.y1 - shown.y0) / h()});
  const bool selecting = (m_uDebugFlags & DebugFlag::kSelectCells) != 0;
  if (const std::optional<CExtent> rect = selecting ? m_Selector->Rectangle() : m_Group->Rectangle()) {
    glColor3d(1, 1, 1);
    glLineWidth(1);
    glBegin(GL_LINE_LOOP);
    glVertex2d(rect->x0, rect->y0), glVertex2d(rect->x1, rect->y0);
    glVertex2d(rect->x1, rect->y1), glVertex2d(rect->x0, rect->y1);
    glEnd();
  }
  if ((m_uDebugFlags & DebugFlag::kFreeze) != 0 && m_Brush.IsPlaced()) DrawBrush();
  DrawPlaces(m_Preview);
}

void CImageView::DrawBrush() const {
  constexpr double kThickness = 0.4;
  const CPlanePoint place = m_Brush.Place(m_Mapping);
  glColor3d(1, 1, 1);
  draw_disc(place.x, place.y, 0, 0, 0, 1, CPointMarks::kFreezeRadius * g_fZoom, kThickness * g_fZoom);
}

int CImageView::handle(int event) {
  if (m_pGrid == nullptr) return Fl_Gl_Window::handle(event);
  if (event == FL_FOCUS || event == FL_UNFOCUS) return 1;
  if (!IsInput(event)) return Fl_Gl_Window::handle(event);
  UpdateMapping();
  if (event == FL_PUSH || (event == FL_ENTER && !HasFieldFocusElsewhere(*this))) take_focus();
  ShowPointer();
  const bool used = HandleWheelZoom(event) || HandleUsed(event) || HandleViewMove(event);
  // A press that the handler does not come to see counts as one beside everything.
  m_DoubleClick.Look(event, Handler().HoldsExisting());
  if (m_DoubleClick.Ends(event)) m_pHost->OpenConstraintValues();
  if (m_pHost->ShowsCoordinates()) ShowCoordinates(event);
  if (used) return 1;
  const bool kept =
      event == FL_ENTER || event == FL_LEAVE || event == FL_MOVE || (event == FL_KEYBOARD && IsNavigationKey());
  return kept ? 1 : Fl_Gl_Window::handle(event);
}

// What the debug zone says of the place under the mouse.
void CImageView::ShowPointer() {
  if (m_pHost->ShowsDebugZone())
    m_pHost->ShowPointerInside(m_Mapping.IsInside(m_Mapping.ToModel(Fl::event_x(), Fl::event_y())));
  constexpr std::uint32_t kTools = DebugFlag::kReadOuts | DebugFlag::kNormalTest | DebugFlag::kInterpolation;
  if ((m_uDebugFlags & kTools) == 0) return;
  const int x = std::clamp(Fl::event_x(), 0, std::max(w() - 1, 0));
  const int y = std::clamp(Fl::event_y(), 0, std::max(h() - 1, 0));
  m_Debug.Look(*m_pGrid, m_uDebugFlags, m_Mapping.ToModel(x, y), *m_pHost);
  redraw();
  m_pHost->RedrawModelView();
}

// Keys come from anywhere, and with places of other windows.
void CImageView::ShowCoordinates(int event) const {
  if (event == FL_KEYBOARD) return;
  const CPlanePoint place = m_Mapping.ToModel(Fl::event_x(), Fl::event_y());
  m_pHost->ShowCoordinates(event == FL_LEAVE ? nullptr : &place);
}

bool CImageView::HandleUsed(int event) {
  if (m_PressTaker.Handle(event, m_Mapping)) return true;
  if ((m_uDebugFlags & DebugFlag::kSelectCells) != 0) return m_Selector->Handle(event) != 0;
  if (m_bChoosing && m_Group->Takes(event)) return HandleViewDrag(event) || m_Group->Handle(event) != 0;
  if (HasProposals() && m_Proposals.Handle(event, m_Mapping)) {
    redraw();
    return true;
  }
  const bool freezing = (m_uDebugFlags & DebugFlag::kFreeze) != 0;
  const bool painted = freezing && m_Brush.Handle(event, *m_pGrid, m_Mapping);
  if (freezing) redraw();
  return HandleViewDrag(event) || painted || Handler().Handle(event) != 0;
}

CPlaneHandler& CImageView::Handler() {
  switch (m_Mode) {
    case EditingMode::Curve:
      return *m_CurveHandler;
    case EditingMode::Position:
      return *m_PositionHandler;
    default:
      return *m_NormalHandler;
  }
}

void CImageView::EndDrag() {
  if (m_pGrid == nullptr) return;
  EndViewDrag();
  m_Brush.EndDrag();
  m_Proposals.EndDrag();
  m_PositionHandler->EndDrag();
  m_NormalHandler->EndDrag();
  m_CurveHandler->EndDrag();
  m_Selector->EndDrag();
  m_Group->EndDrag();
}
