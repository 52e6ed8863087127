// What a project keeps of the main window: both views, and the photograph.

#include <array>
#include <filesystem>
#include <system_error>
#include <utility>

#include <FL/Fl_Button.H>

#include "formats/CProject.h"
#include "formats/ProjectPicture.h"
#include "model/CGrid.h"
#include "ui/imageview/CImageView.h"
#include "ui/modelview/CGridView.h"
#include "ui/window/CHelpLine.h"
#include "ui/window/CImageViewUI.h"
#include "ui/window/FlagEntries.h"

namespace {

constexpr std::array kModes{std::pair(Control::PositionConstraint, EditingMode::Position),
                            std::pair(Control::NormalConstraint, EditingMode::Normal),
                            std::pair(Control::CurveConstraint, EditingMode::Curve)};

std::string Absolute(const std::string& file) {
  std::error_code error;
  const std::filesystem::path path = std::filesystem::absolute(file, error);
  return file.empty() || error ? file : path.string();
}

CCamera CameraOf(const CProjectViews& views, CCamera camera) {
  camera.m_Centre = views.m_Centre;
  camera.m_Eye = views.m_Eye;
  camera.m_Up = views.m_Up;
  camera.m_fR = views.m_fR;
  camera.m_fR0 = views.m_fR0;
  camera.m_fTheta = views.m_fTheta;
  camera.m_fPhi = views.m_fPhi;
  camera.m_fZeta = views.m_fZeta;
  return camera;
}

CurveType CurveTypeOf(std::uint32_t bits) {
  for (const CurveType type : {CurveType::kPosition, CurveType::kNormal, CurveType::kFairness}) {
    if (static_cast<std::uint32_t>(type) == bits) return type;
  }
  return CurveType::kNone;
}

}  // namespace

void CImageViewUI::AddTo(CProject& project) const {
  const CCamera& camera = m_pGridView->Camera();
  CProjectViews& views = project.m_Views;
  views.m_iEditingMode = static_cast<int>(m_pImageView->Mode());
  views.m_uCurveType = static_cast<std::uint32_t>(m_pImageView->CurveType());
  for (const CFlagEntry& row : kFlagEntries) {
    if (m_pMenu->IsChecked(row.m_Entry)) (row.m_bModelView ? views.m_uModelFlags : views.m_uImageFlags) |= row.m_uFlag;
  }
  views.m_iTexture = m_pGridView->DrawTexture();
  views.m_fZoom = g_fZoom;
  views.m_Pan = m_pImageView->Mapping().PanNow();
  views.m_Centre = camera.m_Centre;
  views.m_Eye = camera.m_Eye;
  views.m_Up = camera.m_Up;
  views.m_fR = camera.m_fR;
  views.m_fR0 = camera.m_fR0;
  views.m_fTheta = camera.m_fTheta;
  views.m_fPhi = camera.m_fPhi;
  views.m_fZeta = camera.m_fZeta;
  project.m_Picture = m_Picture;
  project.m_Picture.m_File = Absolute(m_Picture.m_File);
  m_Tools.AddTo(project);
}

void CImageViewUI::ShowProject(const CProject& project) {
  ShowProjectPicture(project.m_Picture);
  ShowProjectViews(project.m_Views);
  m_Tools.TakeFrom(project);
}

// One that is on show already stays, with all that has been computed from it.
void CImageViewUI::ShowProjectPicture(const CProjectPicture& picture) {
  const bool none = picture.m_File.empty() && picture.m_pBytes == nullptr;
  if (none || (picture.m_pBytes != nullptr && picture.m_pBytes == m_Picture.m_pBytes)) return;
  if (m_pImageView->TakePicture(PixelsOf(picture), picture.m_File)) PictureTaken(picture);
}

void CImageViewUI::ShowProjectViews(const CProjectViews& views) {
  for (const CFlagEntry& row : kFlagEntries) {
    const bool on = ((row.m_bModelView ? views.m_uModelFlags : views.m_uImageFlags) & row.m_uFlag) != 0;
    if (!m_pMenu->IsActive(row.m_Entry) || m_pMenu->IsChecked(row.m_Entry) == on) continue;
    m_pMenu->SetChecked(row.m_Entry, on);
    Chosen(row.m_Entry);
  }
  m_pImageView->SetZoomAndPan(views.m_fZoom, views.m_Pan);
  m_pGridView->SetCamera(CameraOf(views, m_pGridView->Camera()));
  for (const auto& [control, mode] : kModes) {
    const bool chosen = views.m_iEditingMode == static_cast<int>(mode);
    m_Controls.Button(control).value(chosen ? 1 : 0);
    if (chosen) m_pImageView->SetMode(mode);
  }
  const CurveType type = CurveTypeOf(views.m_uCurveType);
  m_pImageView->SetCurveType(type);
  ShowCurveType(type);
  m_pHelpLine->SetCurrentHelp(CurrentHelp());
  RefreshEnabled();
  const bool computed =
      DrawnTexture::ImageOf(views.m_iTexture).value_or(CTextureImages::kPhotograph) != CTextureImages::kPhotograph;
  if (!computed || !m_pGrid->Relighting().HasTexels()) return;
  m_pGrid->GetKd();
  m_pGridView->SetDrawTexture(views.m_iTexture);
}
