#include "app/CLightTool.h"

#include "model/CGrid.h"
#include "quadtree/TreeNormals.h"
#include "ui/drawing/DisplayFlags.h"
#include "ui/modelview/CGridView.h"
#include "ui/window/CImageViewUI.h"

CLightTool::CLightTool(CImageViewUI& window, CGrid& grid)
    : m_Window(window), m_Grid(grid), m_Panel(window, window, [this](bool visible) {
        if (!visible) ReportClosed();
      }) {
  m_Panel.AttachGrid(*this);
}

void CLightTool::PictureLoaded() {
  // The computed images of the former picture have gone.
  ShowTexture(TextureMode::Original);
  m_Panel.Refresh();
}

void CLightTool::LightsMoved() {
  m_Panel.Refresh();
  m_Window.RequestRedraw();
}

CLight* CLightTool::GetLightSource(int index, int type) { return m_Grid.GetLightSource(index, type); }

void CLightTool::UpdateTexelNormals() {
  ComputeNormals(m_Grid.Tree());
  m_Grid.ComputeNormalsOnly();
  m_Window.RequestRedraw();
}

void CLightTool::UpdateTexelInterpolation() {
  ComputeNormals(m_Grid.Tree());
  m_Grid.ComputeCoefsTexels();
  m_Window.RequestRedraw();
}

void CLightTool::UpdateKd() {
  m_Grid.GetKd();
  m_Window.RequestRedraw();
}

bool CLightTool::HasKd() const { return m_Grid.Albedo().IsComputed(); }

// The model view numbers the textures in another order than the panel.
TextureMode CLightTool::ShownTexture() const {
  switch (m_Window.GridView().DrawTexture()) {
    case DrawnTexture::kKd:
      return TextureMode::Kd;
    case DrawnTexture::kIllumination:
      return TextureMode::NewIllumination;
    default:
      return TextureMode::Original;
  }
}

void CLightTool::ShowTexture(TextureMode mode) {
  m_Window.GridView().SetDrawTexture(mode == TextureMode::Kd                ? DrawnTexture::kKd
                                     : mode == TextureMode::NewIllumination ? DrawnTexture::kIllumination
                                                                            : DrawnTexture::kPhotograph);
  m_Window.RequestRedraw();
}
