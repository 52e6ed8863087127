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
    : m_Window(window), m_Grid(grid), m_Panel(window, window, [this](bool visible) {
        if (!visible) ReportClosed();
      }) {
  m_Panel.AttachGrid(*this);
}

void CLightTool::PictureLoaded() {
  // The computed images of the former picture have gone.
  ShowTexture(CTextureImages::kPhotograph);
  m_Panel.Refresh();
}

CLightTool::~CLightTool() { Fl::remove_check(cb_Check, this); }

void CLightTool::LightsMoved() {
  m_Panel.Refresh();
  m_Window.RequestRedraw();
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

void CLightTool::SetLight(int index, int type, const CLight& light) { m_Grid.SetLight(index, type, light); }

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

CTextureImages::Which CLightTool::ShownTexture() const {
  return DrawnTexture::ImageOf(m_Window.GridView().DrawTexture()).value_or(CTextureImages::kPhotograph);
}

void CLightTool::ShowTexture(CTextureImages::Which image) {
  m_Window.GridView().SetDrawTexture(DrawnTexture::NumberOf(image));
  m_Window.RequestRedraw();
}
