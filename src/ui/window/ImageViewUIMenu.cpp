// What the menu of the main window does.

#include <cstddef>
#include <optional>

#include <FL/Fl.H>

#include "drawing/DrawingSettings.h"
#include "io/ModelFormats.h"
#include "model/CGrid.h"
#include "ui/imageview/CImageView.h"
#include "ui/modelview/CGridView.h"
#include "ui/window/CImageViewUI.h"
#include "ui/window/FlagEntries.h"

namespace {

// Asks for a file and saves what is drawn in `view`.
template <class View>
void Shoot(CImageViewUI& window, View& view, Fl_Gl_Window& other) {
  window.PauseSolverForCommand();
  const CFileQuestion question{
      .m_pTitle = "give a name for current frame buffer:", .m_pPattern = "*.bmp", .m_Kind = "frame", .m_bSaves = false};
  if (const auto file = window.ChooseFile(question)) {
    // The other view keeps out of what is read back.
    other.hide();
    view.redraw();
    constexpr double kSeconds = 0.1;
    Fl::wait(kSeconds);
    const bool saved = window.Files().Write(*file, [&] { return view.SaveFrame(*file); });
    other.show();
    if (!saved) window.Notice(("Unable to save the frame in " + *file).c_str());
  }
  window.ResumeAfterCommand();
}

// Of the menu File, what a command does by itself.
bool FileChosen(CGridCommands& commands, MenuEntry entry) {
  switch (entry) {
    case MenuEntry::NewGrid:
      commands.Request(Operation::kNewGrid);
      return true;
    case MenuEntry::LoadGrid:
      commands.Request(Operation::kLoadGrid);
      return true;
    case MenuEntry::LoadImage:
      commands.Request(Operation::kLoadImage);
      return true;
    case MenuEntry::SaveAgain:
      commands.SaveAgain();
      return true;
    case MenuEntry::OpenProject:
      commands.OpenProject();
      return true;
    case MenuEntry::SaveProject:
      commands.SaveProject();
      return true;
    case MenuEntry::RecoverWork:
      commands.RecoverWork();
      return true;
    case MenuEntry::ExportModel:
      commands.ExportModel();
      return true;
    case MenuEntry::ExportFilm:
      commands.ExportFilm();
      return true;
    default:
      return false;
  }
}

std::optional<CToolButtons::Tool> ToolOf(MenuEntry entry) {
  switch (entry) {
    case MenuEntry::ReferenceDepth:
      return CToolButtons::Tool::ReferenceDepth;
    case MenuEntry::ConstraintValues:
      return CToolButtons::Tool::ConstraintValues;
    case MenuEntry::ConstraintReport:
      return CToolButtons::Tool::ConstraintReport;
    case MenuEntry::KeysAndMouse:
      return CToolButtons::Tool::Keys;
    case MenuEntry::HeightsAlongCurve:
      return CToolButtons::Tool::HeightsAlongCurve;
    default:
      return std::nullopt;
  }
}

}  // namespace

bool CImageViewUI::FlagChosen(MenuEntry entry) {
  bool found = false;
  for (const CFlagEntry& row : kFlagEntries) {
    if (row.m_Entry != entry) continue;
    const bool on = Menu().IsChecked(entry);
    if (row.m_bModelView) {
      GridView().SetFlag(row.m_uFlag, on);
    } else {
      const std::uint32_t flags = ImageView().DisplayFlags();
      ImageView().SetDisplayFlags(on ? flags | row.m_uFlag : flags & ~row.m_uFlag);
    }
    if (row.m_bModelView || row.m_bRedrawsBoth) RedrawModelView();
    if (!row.m_bModelView || row.m_bRedrawsBoth) RedrawImageView();
    found = true;
  }
  return found;
}

// Normals of texels that there is no memory for are not shown. Asked for here, because a view that is being drawn can
// open no notice.
void CImageViewUI::RequireTexels() {
  if (m_pGrid == nullptr || !Menu().IsChecked(MenuEntry::TexelNormals)) return;
  if (m_pGrid->Relighting().ReserveTexels()) return;
  Menu().SetChecked(MenuEntry::TexelNormals, false);
  GridView().SetFlag(ModelFlag::kTexelNormals, false);
  TellNoTexelMemory();
}

void CImageViewUI::TellNoTexelMemory() {
  Notice("There is not enough memory for the texels of this picture, which relighting and their normals need.");
}

void CImageViewUI::Chosen(MenuEntry entry) {
  if (FlagChosen(entry)) {
    if (entry == MenuEntry::FreezeMap) Controls().Show(Control::Freeze, Menu().IsChecked(entry));
    if (entry == MenuEntry::TexelNormals) RequireTexels();
    return;
  }
  if (m_OverlayEntries && m_OverlayEntries->Chosen(entry)) return;
  if (FileChosen(m_Commands, entry)) return;
  if (const auto tool = ToolOf(entry)) return OpenTool(*tool);
  if (entry >= MenuEntry::Recent && entry < MenuEntry::ClearRecent)
    return OpenRecent(static_cast<std::size_t>(entry) - static_cast<std::size_t>(MenuEntry::Recent));
  if (entry >= MenuEntry::Write) {
    const auto format = static_cast<std::size_t>(entry) - static_cast<std::size_t>(MenuEntry::Write);
    return m_Commands.Write(ModelFormats()[format]);
  }
  switch (entry) {
    case MenuEntry::ClearRecent:
      return Files().Recent().Clear();
    case MenuEntry::Quit:
      return do_callback();
    case MenuEntry::FitPicture:
      return RequestFit();
    case MenuEntry::ShootImage:
      return Shoot(*this, ImageView(), GridView());
    case MenuEntry::ShootModel:
      return Shoot(*this, GridView(), ImageView());
    case MenuEntry::DebugInterface:
      return ShowDebugZone(Menu().IsChecked(entry));
    case MenuEntry::StatusBar:
      return ShowHelpLine(Menu().IsChecked(entry));
    case MenuEntry::SubdivisionColours:
      g_DrawingSettings.m_bSpecificSubdivisionColours = Menu().IsChecked(entry);
      RedrawImageView();
      return RedrawModelView();
    case MenuEntry::DrawingParameters:
      EndDrags();
      return m_Services.m_ShowDrawingOptions();
    case MenuEntry::NewWavelets:
      return GridView().SelectWaveletMode(WaveletMode::New);
    case MenuEntry::Undo:
      return RequestStep(UserStep::Undo);
    case MenuEntry::Redo:
      return RequestStep(UserStep::Redo);
    case MenuEntry::Tutorial:
      return m_Services.m_OpenTutorial();
    case MenuEntry::About:
      return Notice(m_Services.m_About().c_str());
    case MenuEntry::SelectSeveral:
      return ChooseSeveral(Menu().IsChecked(entry));
    case MenuEntry::NewHeightsAtLast:
      return ImageView().StartHeightsAtLast(Menu().IsChecked(entry));
    case MenuEntry::Coordinates:
      ShowCoordinates(nullptr);
      return ShowCoordinateLine(Menu().IsChecked(entry));
    case MenuEntry::SettleFloating:
      if (m_pGrid != nullptr) m_pGrid->SetSettling(Menu().IsChecked(entry));
      return;
    case MenuEntry::SaveOverlay:
      return SaveOverlay();
    case MenuEntry::Remember:
      return;
    case MenuEntry::SimpleWavelets:
      return GridView().SelectWaveletMode(WaveletMode::Simple);
    default:
      return GridView().SelectWaveletMode(WaveletMode::None);
  }
}
