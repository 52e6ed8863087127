#include "ui/modelview/CGridView.h"

#include <algorithm>
#include <memory>

#include <FL/Fl.H>

#include "base/CPlanePoint.h"
#include "base/Console.h"
#include "drawing/CSampledBuffer.h"
#include "drawing/CTextures.h"
#include "drawing/FrameBuffer.h"
#include "drawing/SurfaceFit.h"
#include "model/CGrid.h"
#include "ui/drawing/PrepareContext.h"
#include "ui/seams/CBusyCursor.h"
#include "ui/seams/FieldFocus.h"
#include "ui/seams/ViewHost.h"

namespace {

constexpr int kDigitLights = 4;

constexpr std::uint32_t Bit(WaveletMode mode) { return static_cast<std::uint32_t>(mode); }

constexpr std::uint32_t kModeBits = Bit(WaveletMode::None) | Bit(WaveletMode::Simple) | Bit(WaveletMode::New);

// The digit may be typed on either part of the keyboard.
bool IsDigitHeld(int digit) { return Fl::event_key('0' + digit) != 0 || Fl::event_key(FL_KP + '0' + digit) != 0; }

}  // namespace

CGridView::CGridView(int x, int y, int w, int h)
    : Fl_Gl_Window(x, y, w, h), m_View{ModelFlag::kGrid | Bit(WaveletMode::None), DrawnTexture::kPhotograph, nullptr} {
  mode(FL_RGB8 | FL_DOUBLE | FL_DEPTH);
}

void CGridView::AttachGrid(CGrid& grid) {
  m_pGrid = &grid;
  ConnectMessages();
  ResetCamera();
}

void CGridView::AttachHost(ViewHost& host) {
  m_pHost = &host;
  ConnectMessages();
}

void CGridView::ConnectMessages() {
  if (m_pGrid != nullptr && m_pHost != nullptr) m_Values.emplace(*m_pGrid, *m_pHost, PtCstrKind::kPosition);
}

void CGridView::SetFlag(std::uint32_t flag, bool on) {
  m_View.m_uFlags = on ? m_View.m_uFlags | flag : m_View.m_uFlags & ~flag;
  redraw();
}

void CGridView::ShowWaveletMode(WaveletMode mode) { m_View.m_uFlags = (m_View.m_uFlags & ~kModeBits) | Bit(mode); }

void CGridView::SelectWaveletMode(WaveletMode mode) {
  ShowWaveletMode(mode);
  if (m_pGrid != nullptr) m_pGrid->Builder().SetWaveletMode(mode);
}

void CGridView::SetDrawTexture(int which) {
  m_View.m_iDrawTexture = which;
  redraw();
}

void CGridView::ResetCamera() {
  if (m_pGrid == nullptr) return;
  const CExtent& extent = m_pGrid->Surface().Lattice().Extent();
  m_Camera.Reset({extent.x0, extent.y0, m_pGrid->Surface().MinHeight()},
                 {extent.x1, extent.y1, m_pGrid->Surface().MaxHeight()});
  redraw();
}

void CGridView::draw() {
  PrepareContext(*this);
  if (m_pGrid == nullptr) return;
  if (m_BeforeDrawing) m_BeforeDrawing();
  DrawScene(m_Camera, Shown());
}

CHalfSizes CGridView::Shown() const { return m_Camera.HalfSizes(w(), h(), IsProportional()); }

void CGridView::DrawScene(const CCamera& camera, const CHalfSizes& sizes) {
  // This many texels take a moment to be located and given their normals.
  constexpr double kManyTexels = 1e6;
  const bool texels = (m_View.m_uFlags & ModelFlag::kTexelNormals) != 0;
  const CTexelMap& map = m_pGrid->Relighting().Texels();
  const CBusyCursor busy(texels && 1.0 * map.Width() * map.Height() > kManyTexels);
  if (texels) m_pGrid->Relighting().LocateTexels();
  m_Painter.DrawScene(*m_pGrid, m_View, camera, sizes);
}

void CGridView::SetCamera(const CCamera& camera) {
  m_Camera = camera;
  redraw();
}

bool CGridView::SaveFrame(const std::string& filename) {
  if (shown() == 0) return false;
  make_current();
  draw();
  return Global::SaveFrameBuffer(filename);
}

std::function<std::optional<CPicture>(const CCamera& camera)> CGridView::DrawPictures(int width, int height) {
  make_current();
  // The buffer belongs to the context of the view.
  const auto remove = [this](const CSampledBuffer* buffer) {
    make_current();
    delete buffer;
  };
  const std::shared_ptr<CSampledBuffer> buffer(new CSampledBuffer(width, height), remove);
  return [this, buffer, width, height](const CCamera& camera) -> std::optional<CPicture> {
    if (shown() == 0 || m_pGrid == nullptr || !buffer->IsComplete()) return {};
    make_current();
    PrepareContext(*this);
    buffer->Begin();
    DrawScene(camera, camera.HalfSizes(width, height, true));
    return buffer->End();
  };
}

int CGridView::handle(int event) {
  if (!m_bEventsEnabled || m_pHost == nullptr) {
    Console() << "Default:\n";
    return Fl_Gl_Window::handle(event);
  }
  const int handled = HandleInput(event);
  if (m_pGrid != nullptr && m_pHost->ShowsCoordinates()) ShowCoordinates(event);
  return handled;
}

int CGridView::HandleInput(int event) {
  switch (event) {
    case FL_ENTER:
      m_pHost->ShowHelp(HelpText::kModelView);
      return 1;
    case FL_MOVE:
      m_pHost->ShowHelp(HelpText::kModelView);
      if (!HasFieldFocusElsewhere(*this)) m_pHost->FocusImageView();
      return 1;
    case FL_LEAVE:
      m_pHost->RestoreHelp();
      return 1;
    case FL_PUSH:
      m_pHost->FocusImageView();
      BeginDrag();
      return 1;
    case FL_DRAG:
      Drag();
      return 1;
    case FL_RELEASE:
      EndDrag();
      return 1;
    case FL_MOUSEWHEEL:
      return HandleWheelZoom() ? 1 : Fl_Gl_Window::handle(event);
    default:
      return Fl_Gl_Window::handle(event);
  }
}

bool CGridView::HandleWheelZoom() {
  if (!IsWheelZoom() || !IsPointerIn(w(), h())) return false;
  const std::optional<double> factor = WheelZoomFactor();
  if (m_pGrid == nullptr || !factor) return true;
  m_Camera.ZoomAbout(*factor, PointUnderMouse());
  redraw();
  return true;
}

void CGridView::ShowCoordinates(int event) const {
  switch (event) {
    case FL_ENTER:
    case FL_MOVE:
    case FL_PUSH:
    case FL_DRAG:
    case FL_RELEASE:
    case FL_MOUSEWHEEL:
      if (const std::optional<Vector3> point = SurfaceUnderMouse()) {
        const CPlanePoint place{point->x, point->y};
        return m_pHost->ShowCoordinates(&place);
      }
      return m_pHost->ShowCoordinates(nullptr);
    case FL_LEAVE:
      return m_pHost->ShowCoordinates(nullptr);
    default:
      return;
  }
}

CSightLine CGridView::LineUnderMouse() const {
  return m_Camera.SightLine(Fl::event_x(), Fl::event_y(), w(), h(), Shown());
}

// From above or from below; nothing beside it.
std::optional<Vector3> CGridView::SurfaceUnderMouse() const {
  const CSurface& surface = m_pGrid->Surface();
  return FirstSeen(surface.Interpolation(), LineUnderMouse(), surface.MinHeight(), surface.MaxHeight());
}

// Beside the surface it is one as deep as the centre.
Vector3 CGridView::PointUnderMouse() const { return SurfaceUnderMouse().value_or(LineUnderMouse().m_Point); }

void CGridView::MoveView(ViewMove move) {
  if (m_pGrid == nullptr) return;
  if (move == ViewMove::All) {
    FitSurface(m_Camera, *m_pGrid, IsProportional() ? w() : 1, IsProportional() ? h() : 1);
  } else {
    const CHalfSizes sizes = Shown();
    const CViewStep step = StepOf(move, 2 * sizes.m_fWidth, 2 * sizes.m_fHeight);
    m_Camera.Pan(step.m_fAcross, step.m_fUpwards);
  }
  redraw();
}

void CGridView::BeginDrag() {
  m_iDragButton = Fl::event_button();
  m_iMouseX = Fl::event_x();
  m_iMouseY = h() - Fl::event_y();
  if (m_pGrid != nullptr) m_pGrid->Gate().BeginGesture(CEditGate::Hold::Other);
  m_pHost->PauseSolverForCommand();
}

void CGridView::EndDrag() {
  if (m_iDragButton == 0) return;
  m_iDragButton = 0;
  if (m_pGrid != nullptr) m_pGrid->Gate().EndGesture(CEditGate::GestureEnd::Released);
  if (m_Values) m_Values->EndDrag();
  m_pHost->ResumeAfterCommand();
}

void CGridView::Drag() {
  const int x = Fl::event_x();
  const int y = h() - Fl::event_y();
  const int dx = x - m_iMouseX;
  const int dy = y - m_iMouseY;
  m_iMouseX = x;
  m_iMouseY = y;
  switch (m_iDragButton) {
    case FL_LEFT_MOUSE:
      DragLeft(dx, dy);
      break;
    case FL_MIDDLE_MOUSE:
      m_Camera.Zoom(dx, dy);
      break;
    case FL_RIGHT_MOUSE:
      m_Camera.Roll(dx, dy);
      break;
    default:
      return;
  }
  redraw();
}

void CGridView::DragLeft(int dx, int dy) {
  // Window managers keep Alt with a drag to themselves; Meta serves as well.
  const bool removed = Fl::event_state(FL_ALT | FL_META) != 0;
  const bool added = Fl::event_state(FL_CTRL) != 0;
  if (removed || added) {
    TurnLights(dx, dy, removed, added);
  } else if (Fl::event_state(FL_SHIFT) != 0) {
    RaiseSelected(dy);
  } else {
    m_Camera.Rotate(dx, dy);
  }
}

void CGridView::TurnLights(int dx, int dy, bool removed, bool added) {
  if (m_pGrid == nullptr) return;
  bool digit = false;
  for (int k = 0; k < kDigitLights; ++k) digit = digit || IsDigitHeld(k + 1);
  bool any = false;
  for (int k = 0; k < kDigitLights; ++k) {
    if (digit ? !IsDigitHeld(k + 1) : k != m_pHost->CurrentLight()) continue;
    if (removed) TurnLight(k, kRemovedLights, dx, dy);
    if (added) TurnLight(k, kAddedLights, dx, dy);
    any = true;
  }
  if (any) m_pHost->LightsMoved();
}

void CGridView::TurnLight(int index, int type, int dx, int dy) {
  CLight light = *m_pGrid->GetLightSource(index, type);
  auto& [x, y, z, w] = light.m_afDirection;
  const Vector3 turned = m_Camera.RotateDirection({x, y, z}, dx, dy);
  light.m_afDirection = {turned.x, turned.y, turned.z, w};
  m_pGrid->SetLight(index, type, light);
}

void CGridView::RaiseSelected(int dy) {
  if (m_pGrid == nullptr || m_pGrid->Constraints().Points().FirstSelected(PtCstrKind::kPosition) == nullptr) return;
  const CExtent& extent = m_pGrid->Surface().Lattice().Extent();
  const double side = std::max(extent.x1 - extent.x0, extent.y1 - extent.y0);
  // As many pixels as 2 R are high.
  const int pixels = IsProportional() ? std::min(w(), h()) : h();
  m_pGrid->SetSelectedHeight(m_pGrid->GetSelectedHeight() + m_Camera.HeightOfDrag(dy, pixels, side));
  m_Values->Dragged();
  m_pHost->RedrawImageView();
}
