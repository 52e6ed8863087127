#include "ui/scissors/CScissorsView.h"

#include <algorithm>
#include <chrono>
#include <new>
#include <utility>

#include <FL/Fl.H>
#include <FL/Fl_Box.H>

#include "base/Console.h"
#include "model/CGrid.h"
#include "ui/drawing/ScaleWidgets.h"
#include "ui/scissors/CScissorsCanvas.h"
#include "ui/scissors/ScissorsHost.h"

namespace {

constexpr int kWidth = 445;
constexpr int kHeight = 439;
constexpr int kStatusHeight = 22;
constexpr int kMinSize = 160;

// A slice ends soon enough for the mouse to feel no delay; the clock is looked at every so many pixels.
constexpr std::chrono::milliseconds kSliceTime{10};
constexpr std::size_t kSlicePixels = 4096;

}  // namespace

CScissorsView::CScissorsView(CGrid& grid, ScissorsHost& host)
    : Fl_Window(kWidth, kHeight, "Click to set key points - Press Enter set the last point and finish"),
      m_Grid(grid),
      m_Host(host) {
  m_pCanvas = new CScissorsCanvas(0, 0, kWidth, kHeight - kStatusHeight, [this](int event) { return OnEvent(event); });
  m_pCanvas->end();
  m_pStatusBox = new Fl_Box(FL_DOWN_BOX, 0, kHeight - kStatusHeight, kWidth, kStatusHeight, "");
  m_pStatusBox->align(FL_ALIGN_LEFT | FL_ALIGN_INSIDE | FL_ALIGN_CLIP);
  m_pStatusBox->labelsize(12);
  end();
  ScaleWidgets(*this);
  resizable(m_pCanvas);
  size_range(kMinSize, kMinSize);
  callback(cb_Window);
}

// The canvas goes first, because it sends its last events here.
CScissorsView::~CScissorsView() {
  Fl::remove_idle(cb_Idle, this);
  Fl::remove_check(cb_Check, this);
  m_pTool.reset();
  hide();
  clear();
}

void CScissorsView::Open() {
  const CTextureImages& textures = m_Grid.Relighting().Textures();
  if (IsOpen() || !textures.HasPicture()) return;
  if (std::max(textures.PictureWidth(), textures.PictureHeight()) > CScissorsTool::kMostSide) return;
  try {
    m_pTool = std::make_unique<CScissorsTool>(CopyPhotograph(textures));
  } catch (const std::bad_alloc&) {
    return;
  }
  m_Viewport.emplace(m_pTool->Image().m_iWidth, m_pTool->Image().m_iHeight);
  m_bMouseInside = false;
  m_bPanning = false;
  FitViewport();
  m_pCanvas->Show(m_pTool.get(), &*m_Viewport);
  ShowStatus();
  show();
  m_pCanvas->take_focus();
}

void CScissorsView::Close() {
  if (!IsOpen()) return;
  hide();
  ShowCurves(false);
  m_pCanvas->Show(nullptr, nullptr);
  m_pTool.reset();
  ScheduleSlices();
  ReportClosed();
}

void CScissorsView::cb_Window(Fl_Widget* widget, void* /*data*/) { static_cast<CScissorsView*>(widget)->Close(); }

void CScissorsView::resize(int x, int y, int w, int h) {
  Fl_Window::resize(x, y, w, h);
  FitViewport();
}

void CScissorsView::FitViewport() {
  if (m_Viewport.has_value()) m_Viewport->Resize(m_pCanvas->w(), m_pCanvas->h());
}

bool CScissorsView::OnEvent(int event) {
  if (!IsOpen()) return false;
  switch (event) {
    case FL_FOCUS:
    case FL_UNFOCUS:
      return true;
    case FL_RELEASE:
      OnMove();  // the last motion may have been left out
      m_bPanning = false;
      return true;
    case FL_ENTER:
    case FL_MOVE:
    case FL_DRAG:
      OnMove();
      return true;
    case FL_LEAVE:
      m_bMouseInside = false;
      ShowCursor();
      return true;
    case FL_PUSH:
      m_pCanvas->take_focus();
      OnMove();
      OnPush();
      return true;
    case FL_KEYBOARD:
      return OnKey();
    case FL_MOUSEWHEEL:
      return OnWheel();
    default:
      return false;
  }
}

void CScissorsView::OnPush() {
  if (Fl::event_button() == FL_RIGHT_MOUSE) {
    m_Viewport->BeginPan(m_Mouse.m_iColumn, m_Mouse.m_iRow);
    m_bPanning = true;
  }
  if (Fl::event_button() != FL_LEFT_MOUSE) return;
  const std::optional<CPixelPosition> pixel = PixelUnderMouse();
  if (!pixel.has_value()) return;
  m_pTool->Press(*pixel, Fl::event_ctrl() != 0, *m_Viewport);
  ScheduleSlices();
  ShowStatus();
  m_pCanvas->redraw();
}

void CScissorsView::OnMove() {
  m_Mouse = {Fl::event_x(), Fl::event_y()};
  m_bMouseInside = true;
  if (m_bPanning) {
    m_Viewport->PanTo(m_Mouse.m_iColumn, m_Mouse.m_iRow);
    m_pCanvas->redraw();
  }
  SelectUnderMouse();
  ShowCursor();
  ShowStatus();
}

// The toolkit delivers motion late, so the key may be the first to know where the mouse is.
void CScissorsView::FindMouse() {
  int x = 0;
  int y = 0;
  Fl::get_mouse(x, y);
  m_Mouse = {x - m_pCanvas->x_root(), y - m_pCanvas->y_root()};
  m_bMouseInside = m_Viewport->Covers(m_Mouse.m_iColumn, m_Mouse.m_iRow);
}

bool CScissorsView::OnKey() {
  FindMouse();
  const int key = Fl::event_key();
  const bool control = Fl::event_ctrl() != 0;
  const bool bare = Fl::event_state(FL_CTRL | FL_ALT | FL_META) == 0;
  if (key == 'c' && bare) {
    ShowCurves(!m_bCurves);
  } else if (!(control && OnZoomKey(key)) && !OnContourKey(key, control)) {
    return false;
  }
  ShowCursor();
  ShowStatus();
  m_pCanvas->redraw();
  return true;
}

bool CScissorsView::OnZoomKey(int key) {
  // The signs may be typed on either part of the keyboard.
  const bool closer = key == '=' || key == '+' || key == FL_KP + '=' || key == FL_KP + '+';
  const bool farther = key == '-' || key == FL_KP + '-';
  if (closer || farther) {
    m_Viewport->ZoomBy(closer ? 1 : -1, m_Mouse.m_iColumn, m_Mouse.m_iRow);
  } else if (key == '0' || key == FL_KP + '0') {
    m_Viewport->ToggleWhole(m_Mouse.m_iColumn, m_Mouse.m_iRow);
  } else {
    return false;
  }
  return true;
}

bool CScissorsView::OnContourKey(int key, bool control) {
  if (key == FL_Enter || key == FL_KP_Enter) {
    if (m_pTool->Enter(PixelUnderMouse(), control)) ExportContour();
    ScheduleSlices();
  } else if (control && key == 'z' && Fl::event_state(FL_SHIFT | FL_ALT | FL_META) == 0) {
    // Without a contour in progress, what is to be undone is the document's.
    if (!m_pTool->TakeBack()) return false;
    ScheduleSlices();
  } else if (key == FL_BackSpace) {
    if (!m_pTool->Contours().IsInProgress()) m_pTool->Contours().RemoveSelected();
  } else {
    return false;
  }
  return true;
}

bool CScissorsView::OnWheel() {
  if (Fl::event_ctrl() == 0 || Fl::event_dy() == 0) return false;
  OnMove();
  m_Viewport->ZoomBy(-Fl::event_dy(), m_Mouse.m_iColumn, m_Mouse.m_iRow);
  OnMove();
  m_pCanvas->redraw();
  return true;
}

// They may change by an undo in the main window or by what a contour becomes.
void CScissorsView::ShowCurves(bool shown) {
  if (shown == m_bCurves) return;
  m_bCurves = shown;
  m_uEdits = m_Grid.Gate().Edits();
  m_pCanvas->ShowCurvesOf(shown ? &m_Grid : nullptr);
  if (shown) {
    Fl::add_check(cb_Check, this);
  } else {
    Fl::remove_check(cb_Check, this);
  }
}

void CScissorsView::cb_Check(void* view) {
  auto& self = *static_cast<CScissorsView*>(view);
  const std::uint64_t edits = self.m_Grid.Gate().Edits();
  if (edits == std::exchange(self.m_uEdits, edits)) return;
  self.m_pCanvas->redraw();
}

void CScissorsView::ExportContour() {
  Console() << "CScissorsView::ExportContour()\n";
  const CTextureImages& images = m_Grid.Relighting().Textures();
  m_pTool->Contours().HandOver([&](const CTracedContour& contour) {
    return m_Host.AddTracedCurve(
        PlanePointsOf(contour, m_Grid.Surface().Lattice().Extent(), images.PictureWidth(), images.PictureHeight()));
  });
  m_Host.RefreshDisplays();
}

void CScissorsView::ScheduleSlices() {
  const bool wanted = IsOpen() && m_pTool->IsBuilding();
  if (wanted == m_bScheduled) return;
  m_bScheduled = wanted;
  if (wanted) {
    Fl::add_idle(cb_Idle, this);
  } else {
    Fl::remove_idle(cb_Idle, this);
  }
}

void CScissorsView::cb_Idle(void* view) { static_cast<CScissorsView*>(view)->BuildSlice(); }

void CScissorsView::BuildSlice() {
  const auto end = std::chrono::steady_clock::now() + kSliceTime;
  const std::optional<CPixelPosition> cursor = PixelUnderMouse();
  const bool hadPath = cursor.has_value() && m_pTool->HasPath(*cursor);
  do {
    m_pTool->Advance(kSlicePixels);
  } while (m_pTool->IsBuilding() && std::chrono::steady_clock::now() < end);
  // The live wire comes as soon as its pixel is reached.
  if (cursor.has_value() && hadPath != m_pTool->HasPath(*cursor)) m_pCanvas->redraw();
  ScheduleSlices();
  ShowStatus();
}

void CScissorsView::SelectUnderMouse() {
  const std::optional<CPixelPosition> pixel = PixelUnderMouse();
  if (!pixel.has_value() || m_pTool->Contours().IsInProgress()) return;
  if (m_pTool->Contours().SelectAt(*pixel)) m_pCanvas->redraw();
}

std::optional<CPixelPosition> CScissorsView::PixelUnderMouse() const {
  if (!m_bMouseInside) return std::nullopt;
  return m_Viewport->PixelAt(m_Mouse.m_iColumn, m_Mouse.m_iRow);
}

void CScissorsView::ShowCursor() { m_pCanvas->SetCursor(PixelUnderMouse()); }

void CScissorsView::ShowStatus() {
  m_Status = m_pTool->StatusText(m_Mouse.m_iColumn, m_Mouse.m_iRow, PixelUnderMouse());
  if (m_pTool->IsBuilding()) m_Status += "    paths: " + std::to_string(m_pTool->PercentBuilt()) + " %";
  m_pStatusBox->label(m_Status.c_str());
  m_pStatusBox->redraw();
}
