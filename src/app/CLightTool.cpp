#include "app/CLightTool.h"

#include <algorithm>

#include <FL/Fl.H>

#include "drawing/DisplayFlags.h"
#include "model/CGrid.h"
#include "quadtree/TreeNormals.h"
#include "ui/modelview/CGridView.h"
#include "ui/seams/CBusyCursor.h"
#include "ui/window/CImageViewUI.h"
#include "ui/window/CRedrawPacer.h"

namespace {

// Seconds: between two relightings of a drag, and what one may take during a drag without holding up the mouse.
constexpr double kInterval = 1.0 / 60;
constexpr double kLongest = 0.1;

}  // namespace

CLightTool::CLightTool(CImageViewUI& window, CGrid& grid)
    : m_Window(window),
      m_Grid(grid),
      m_Panel(window, window,
              [this](bool visible) {
                if (!visible) ReportClosed();
              }),
      m_Live(window, grid, [this](bool computed) { LiveEnded(computed); }) {
  m_Panel.AttachGrid(*this);
}

void CLightTool::PictureLoaded() {
  m_Live.Stop();
  // The computed images of the former picture have gone.
  ShowTexture(CTextureImages::kPhotograph);
  m_Panel.Refresh();
}

CLightTool::~CLightTool() { Fl::remove_check(cb_Check, this); }

void CLightTool::LightsMoved() {
  m_Panel.Refresh();
  m_Window.RequestRedraw();
  FollowLights();
}

void CLightTool::FollowLights() {
  if (m_bLive) return m_Live.Request();
  if (!HasKd() || m_bOwed) return;
  m_bOwed = true;
  Fl::add_check(cb_Check, this);
}

void CLightTool::cb_Check(void* tool) { static_cast<CLightTool*>(tool)->RelightWhenDue(); }

// Looked at each time the toolkit goes round, and so after every event of the drag and after its end.
void CLightTool::RelightWhenDue() {
  const bool mayWait = m_Window.GridView().IsDragging();
  if (mayWait && (m_fSeconds > kLongest || CRedrawPacer::SteadySeconds() < m_fNext)) return;
  m_bOwed = false;
  Fl::remove_check(cb_Check, this);
  if (HasKd()) Relight();
}

void CLightTool::Relight() {
  m_Live.Stop();
  const CBusyCursor busy(m_fSeconds > kLongest);
  const double begin = CRedrawPacer::SteadySeconds();
  const bool done = m_Grid.GetKd();
  const double end = CRedrawPacer::SteadySeconds();
  m_fSeconds = end - begin;
  m_fNext = end + std::max(m_fSeconds, kInterval);
  m_Window.RequestRedraw();
  if (!done) m_Window.TellNoTexelMemory();
}

const CLight* CLightTool::GetLightSource(int index, int type) const { return m_Grid.GetLightSource(index, type); }

void CLightTool::SetLight(int index, int type, const CLight& light) {
  const CLight* present = m_Grid.GetLightSource(index, type);
  const bool changed = present != nullptr && !(*present == light);
  m_Grid.SetLight(index, type, light);
  if (m_bLive && changed) m_Live.Request();
}

void CLightTool::UpdateTexelNormals() {
  ComputeNormals(m_Grid.Surface().Tree());
  const bool done = m_Grid.ComputeNormalsOnly();
  m_Window.RequestRedraw();
  if (!done) m_Window.TellNoTexelMemory();
}

void CLightTool::UpdateTexelInterpolation() {
  ComputeNormals(m_Grid.Surface().Tree());
  const bool done = m_Grid.ComputeCoefsTexels();
  m_Window.RequestRedraw();
  if (!done) m_Window.TellNoTexelMemory();
}

void CLightTool::UpdateKd() { Relight(); }

bool CLightTool::HasKd() const { return m_Grid.Relighting().Albedo().IsComputed(); }

// Switched on, it catches up with what has changed before. What is under way is finished in any case, as half of it
// would be no image of any lights.
void CLightTool::SetLive(bool live) {
  m_bLive = live;
  if (live) m_Live.Request();
}

// Without memory it is told once, and not with every change of a light.
void CLightTool::LiveEnded(bool computed) {
  if (computed) return m_Panel.RefreshTextures();
  m_bLive = false;
  m_Panel.Refresh();
  m_Window.TellNoTexelMemory();
}

Tone CLightTool::RelitTone() const { return m_Grid.Relighting().RelitTone(); }

void CLightTool::SetTone(Tone tone) {
  m_Grid.SetTone(tone);
  FollowLights();
}

CTextureImages::Which CLightTool::ShownTexture() const {
  return DrawnTexture::ImageOf(m_Window.GridView().DrawTexture()).value_or(CTextureImages::kPhotograph);
}

void CLightTool::ShowTexture(CTextureImages::Which image) {
  m_Window.GridView().SetDrawTexture(DrawnTexture::NumberOf(image));
  m_Window.RequestRedraw();
}
