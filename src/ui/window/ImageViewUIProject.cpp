// What a project keeps of the main window: both views, and the photograph.

#include <array>
#include <filesystem>
#include <optional>
#include <system_error>
#include <utility>

#include <FL/Fl_Button.H>

#include "editing/ProjectCamera.h"
#include "model/CGrid.h"
#include "projects/CProject.h"
#include "projects/ProjectPicture.h"
#include "ui/imageview/CImageView.h"
#include "ui/modelview/CGridView.h"
#include "ui/seams/CBusyCursor.h"
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

CurveType CurveTypeOf(std::uint32_t bits) {
  for (const CurveType type : {CurveType::kPosition, CurveType::kNormal, CurveType::kFairness}) {
    if (static_cast<std::uint32_t>(type) == bits) return type;
  }
  return CurveType::kNone;
}

}  // namespace

void CImageViewUI::AddTo(CProject& project) const {
  CProjectViews& views = project.m_Views;
  views.m_iEditingMode = static_cast<int>(ImageView().Mode());
  views.m_uCurveType = static_cast<std::uint32_t>(ImageView().CurveType());
  const CViewMarks marks = Marks();
  views.m_uImageFlags = marks.m_uImageFlags;
  views.m_uModelFlags = marks.m_uModelFlags;
  views.m_iTexture = GridView().DrawTexture();
  views.m_fZoom = g_fZoom;
  views.m_Pan = ImageView().Mapping().PanNow();
  KeepCamera(GridView().Camera(), views);
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
  std::optional<CBusyCursor> busy(std::in_place);
  const CReadPicture pixels = PixelsOf(picture);
  busy.reset();
  if (ImageView().TakePicture(pixels, picture.m_File)) PictureTaken(picture);
}

CViewMarks CImageViewUI::Marks() const {
  CViewMarks marks;
  for (const CFlagEntry& row : kFlagEntries) {
    if (Menu().IsChecked(row.m_Entry)) (row.m_bModelView ? marks.m_uModelFlags : marks.m_uImageFlags) |= row.m_uFlag;
  }
  return marks;
}

void CImageViewUI::ShowProjectMarks(const CViewMarks& marks, bool all) {
  m_Remembered.LendToProject();
  for (const CFlagEntry& row : kFlagEntries) {
    if (!all && !CRemembered::IsOfProjects(row.m_Entry)) continue;
    const bool on = ((row.m_bModelView ? marks.m_uModelFlags : marks.m_uImageFlags) & row.m_uFlag) != 0;
    if (Menu().IsChecked(row.m_Entry) != on) SwitchOver({row.m_Entry});
  }
}

void CImageViewUI::ShowProjectViews(const CProjectViews& views) {
  ShowProjectMarks({views.m_uImageFlags, views.m_uModelFlags}, true);
  ImageView().SetZoomAndPan(views.m_fZoom, views.m_Pan);
  GridView().SetCamera(CameraOf(views, GridView().Camera()));
  for (const auto& [control, mode] : kModes) {
    const bool chosen = views.m_iEditingMode == static_cast<int>(mode);
    Controls().Button(control).value(chosen ? 1 : 0);
    if (chosen) ImageView().SetMode(mode);
  }
  const CurveType type = CurveTypeOf(views.m_uCurveType);
  ImageView().SetCurveType(type);
  ShowCurveType(type);
  HelpLine().SetCurrentHelp(CurrentHelp());
  RefreshEnabled();
  const bool computed =
      DrawnTexture::ImageOf(views.m_iTexture).value_or(CTextureImages::kPhotograph) != CTextureImages::kPhotograph;
  if (!computed || !m_pGrid->Relighting().HasTexels()) return;
  if (!m_pGrid->GetKd()) return TellNoTexelMemory();
  GridView().SetDrawTexture(views.m_iTexture);
}
