// What the controls and the menu of the main window do.

#include <array>
#include <cstddef>
#include <string>

#include <FL/Fl.H>
#include <FL/Fl_Button.H>
#include <FL/Fl_Value_Output.H>

#include "base/Console.h"
#include "drawing/DrawingSettings.h"
#include "editing/DebugTools.h"
#include "formats/ModelFormats.h"
#include "model/CGrid.h"
#include "model/Globals.h"
#include "ui/imageview/CImageView.h"
#include "ui/modelview/CGridView.h"
#include "ui/seams/TimerInterval.h"
#include "ui/window/CHelpLine.h"
#include "ui/window/CImageViewUI.h"
#include "ui/window/FlagEntries.h"

namespace {

/// What a button does; `on` is its value after the click.
struct CActionRow {
  Control m_Control;
  void (*m_Action)(CImageViewUI& window, bool on);
};

// The toolkit reports a press that was released beside the button, too.
void StopPressed(CImageViewUI& window) {
  if (Fl::event() == FL_RELEASE && Fl::event_inside(&window.Widget(Control::StopSolver)) == 0) return;
  window.Solver().StopSolver();
}

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

}  // namespace

void CImageViewUI::ConnectCallbacks() {
  // clang-format off
  static constexpr auto kRows = std::to_array<CActionRow>({
    {Control::PositionConstraint, [](CImageViewUI& ui, bool) { ui.SetEditingMode(EditingMode::Position); }},
    {Control::NormalConstraint, [](CImageViewUI& ui, bool) { ui.SetEditingMode(EditingMode::Normal); }},
    {Control::CurveConstraint, [](CImageViewUI& ui, bool) { ui.SetEditingMode(EditingMode::Curve); }},
    {Control::PositionDiscontinuity, [](CImageViewUI& ui, bool) { ui.SetCurveType(CurveType::kPosition); }},
    {Control::NormalDiscontinuity, [](CImageViewUI& ui, bool) { ui.SetCurveType(CurveType::kNormal); }},
    {Control::FairnessConstraint, [](CImageViewUI& ui, bool) { ui.SetCurveType(CurveType::kFairness); }},
    {Control::Popup, [](CImageViewUI& ui, bool) { ui.Notice("Bonjour a tous !!!"); }},
    {Control::NormalTest, [](CImageViewUI& ui, bool on) { ui.SetDebugFlag(DebugFlag::kNormalTest, on); }},
    {Control::Select, [](CImageViewUI& ui, bool) { ui.ToggleSelect(); }},
    {Control::Freeze, [](CImageViewUI& ui, bool) { ui.ToggleFreeze(); }},
    {Control::ResetImageView, [](CImageViewUI& ui, bool) { ui.m_pImageView->ResetView(); }},
    {Control::HorizontalCoefs, [](CImageViewUI& ui, bool on) { ui.SetDebugFlag(DebugFlag::kHorizontalCoefs, on); }},
    {Control::VerticalCoefs, [](CImageViewUI& ui, bool on) { ui.SetDebugFlag(DebugFlag::kVerticalCoefs, on); }},
    {Control::TorsionCells, [](CImageViewUI& ui, bool on) { ui.SetDebugFlag(DebugFlag::kTorsionCells, on); }},
    {Control::ShowLevel, [](CImageViewUI& ui, bool) { ui.CycleLevelTool(); }},
    {Control::TestInterpolation, [](CImageViewUI& ui, bool on) { ui.SetDebugFlag(DebugFlag::kInterpolation, on); }},
    {Control::ResetModelView, [](CImageViewUI& ui, bool) { ui.m_pGridView->ResetCamera(); }},
    {Control::ResetSolver, [](CImageViewUI& ui, bool) { ui.m_pGrid->Reset(); ui.RedrawModelView(); }},
    {Control::TestWavelets, [](CImageViewUI& ui, bool) { ui.m_pGrid->Surface().TestWavelets(); ui.RedrawModelView(); }},
    {Control::LightSources, [](CImageViewUI& ui, bool) { ui.ToggleTool(Tool::LightSources); }},
    {Control::Recorder, [](CImageViewUI& ui, bool) { ui.ToggleTool(Tool::Recorder); }},
    {Control::Scissors, [](CImageViewUI& ui, bool) { ui.ToggleTool(Tool::Scissors); }},
    {Control::StopSolver, [](CImageViewUI& ui, bool) { StopPressed(ui); }},
    {Control::ResumeSolver, [](CImageViewUI& ui, bool) { ui.m_Solver.Run(); }},
    {Control::Slower, [](CImageViewUI&, bool) { g_fTimerInterval *= 1.5; }},
    {Control::Faster, [](CImageViewUI&, bool) { g_fTimerInterval *= 2.0 / 3.0; }},
  });
  // clang-format on
  const auto perform = [](Fl_Widget* widget, long row) {
    auto& window = static_cast<CImageViewUI&>(*widget->window());
    if (window.m_pGrid == nullptr) return;
    kRows[static_cast<std::size_t>(row)].m_Action(window, static_cast<Fl_Button*>(widget)->value() != 0);
  };
  for (std::size_t k = 0; k < kRows.size(); ++k) Widget(kRows[k].m_Control).callback(perform, static_cast<long>(k));
  // The lamp is on as well while the solver only waits for an edit, and a click then has to stop it for good.
  m_Controls.Button(Control::StopSolver).when(FL_WHEN_RELEASE | FL_WHEN_NOT_CHANGED);
}

bool CImageViewUI::FlagChosen(MenuEntry entry) {
  for (const CFlagEntry& row : kFlagEntries) {
    if (row.m_Entry != entry) continue;
    const bool on = m_pMenu->IsChecked(entry);
    if (row.m_bModelView) {
      m_pGridView->SetFlag(row.m_uFlag, on);
    } else {
      const std::uint32_t flags = m_pImageView->DisplayFlags();
      m_pImageView->SetDisplayFlags(on ? flags | row.m_uFlag : flags & ~row.m_uFlag);
    }
    if (row.m_bModelView || row.m_bRedrawsBoth) RedrawModelView();
    if (!row.m_bModelView || row.m_bRedrawsBoth) RedrawImageView();
    return true;
  }
  return false;
}

void CImageViewUI::Chosen(MenuEntry entry) {
  if (FlagChosen(entry)) {
    if (entry == MenuEntry::FreezeMap) m_Controls.Show(Control::Freeze, m_pMenu->IsChecked(entry));
    return;
  }
  if (entry >= MenuEntry::Recent && entry < MenuEntry::ClearRecent)
    return OpenRecent(static_cast<std::size_t>(entry) - static_cast<std::size_t>(MenuEntry::Recent));
  if (entry >= MenuEntry::Write) {
    const auto format = static_cast<std::size_t>(entry) - static_cast<std::size_t>(MenuEntry::Write);
    return m_Commands.Write(ModelFormats()[format]);
  }
  switch (entry) {
    case MenuEntry::NewGrid:
      return m_Commands.Request(Operation::kNewGrid);
    case MenuEntry::LoadGrid:
      return m_Commands.Request(Operation::kLoadGrid);
    case MenuEntry::LoadImage:
      return m_Commands.Request(Operation::kLoadImage);
    case MenuEntry::SaveAgain:
      return m_Commands.SaveAgain();
    case MenuEntry::ClearRecent:
      return Files().Recent().Clear();
    case MenuEntry::Quit:
      return do_callback();
    case MenuEntry::OpenProject:
      return m_Commands.OpenProject();
    case MenuEntry::SaveProject:
      return m_Commands.SaveProject();
    case MenuEntry::RecoverWork:
      return m_Commands.RecoverWork();
    case MenuEntry::ShootImage:
      return Shoot(*this, *m_pImageView, *m_pGridView);
    case MenuEntry::ShootModel:
      return Shoot(*this, *m_pGridView, *m_pImageView);
    case MenuEntry::DebugInterface:
      m_Controls.ShowDebugZone(m_pMenu->IsChecked(entry));
      return Relayout();
    case MenuEntry::StatusBar:
      return ShowHelpLine(m_pMenu->IsChecked(entry));
    case MenuEntry::SubdivisionColours:
      g_DrawingSettings.m_bSpecificSubdivisionColours = m_pMenu->IsChecked(entry);
      RedrawImageView();
      return RedrawModelView();
    case MenuEntry::DrawingParameters:
      EndDrags();
      return m_Services.m_ShowDrawingOptions();
    case MenuEntry::NewWavelets:
      return m_pGridView->SelectWaveletMode(WaveletMode::New);
    case MenuEntry::Undo:
      return RequestStep(UserStep::Undo);
    case MenuEntry::Redo:
      return RequestStep(UserStep::Redo);
    case MenuEntry::SimpleWavelets:
      return m_pGridView->SelectWaveletMode(WaveletMode::Simple);
    default:
      return m_pGridView->SelectWaveletMode(WaveletMode::None);
  }
}

void CImageViewUI::ShowHelpLine(bool show) {
  m_bHelpLine = show;
  m_Controls.Show(Control::HelpLine, show);
  Relayout();
}

void CImageViewUI::SetEditingMode(EditingMode mode) {
  m_pImageView->SetMode(mode);
  m_pGrid->CurveEdits().CancelPending();
  m_pHelpLine->SetCurrentHelp(CurrentHelp());
  redraw();
  RefreshEnabled();
}

HelpText::Index CImageViewUI::CurrentHelp() const {
  if ((m_pImageView->DebugFlags() & DebugFlag::kSelectCells) != 0) return HelpText::kSelectCells;
  switch (m_pImageView->Mode()) {
    case EditingMode::Position:
      return HelpText::kPositions;
    case EditingMode::Normal:
      return HelpText::kNormals;
    case EditingMode::Curve:
      return m_pGrid->Constraints().PendingCurve().IsIdle() ? HelpText::kCurves : HelpText::kCurveInProgress;
    default:
      return HelpText::kNone;
  }
}

void CImageViewUI::SetCurveType(CurveType type) {
  m_pImageView->SetCurveType(type);
  RequestRedraw();
}

void CImageViewUI::SetDebugFlag(std::uint32_t flag, bool on) {
  const std::uint32_t flags = m_pImageView->DebugFlags();
  m_pImageView->SetDebugFlags(on ? flags | flag : flags & ~flag);
  UpdateDebugReadOuts();
}

void CImageViewUI::UpdateDebugReadOuts() {
  const CDebugReadOuts shown = ReadOutsOf(m_pImageView->DebugFlags());
  if (!shown.m_bInfluence) ShowInfluence(-1);
  m_Controls.Show(Control::Influence, shown.m_bInfluence);
  m_Controls.Show(Control::Level, shown.m_bLevel);
  m_Controls.Show(Control::PointNumber, shown.m_bPointNumber);
  m_Controls.Show(Control::PointCount, shown.m_bPointCount);
  m_Controls.Show(Control::Interpolation, shown.m_bInterpolation);
  redraw();
  RedrawImageView();
}

void CImageViewUI::CycleLevelTool() {
  Fl_Button& button = m_Controls.Button(Control::ShowLevel);
  const CLevelTool tool = NextLevelTool(m_pImageView->DebugFlags(), button.value() != 0);
  m_pImageView->SetDebugFlags(tool.m_uDebugFlags);
  button.label(tool.m_pLabel);
  button.value(tool.m_bButtonDown ? 1 : 0);
  UpdateDebugReadOuts();
}

void CImageViewUI::ToggleSelect() {
  const bool on = m_Controls.Button(Control::Select).value() != 0;
  SetDebugFlag(DebugFlag::kSelectCells, on);
  m_pHelpLine->SetCurrentHelp(CurrentHelp());
  RequestRedraw();
}

void CImageViewUI::ToggleFreeze() {
  m_bFreezing = m_Controls.Button(Control::Freeze).value() != 0;
  if (m_bFreezing && !m_pMenu->IsChecked(MenuEntry::FreezeMap)) m_pMenu->Choose(MenuEntry::FreezeMap);
  SetDebugFlag(DebugFlag::kFreeze, m_bFreezing);
  if (m_bFreezing) {
    m_Solver.PauseForFreeze();
  } else {
    m_Solver.EndFreeze();
  }
  RefreshEnabled();
}

void CImageViewUI::ToggleTool(Tool tool) {
  if (m_Tools.IsOpen(tool)) return m_Tools.Close(tool);
  EndDrags();
  m_Tools.Open(tool);
  if (tool == Tool::Scissors) m_Solver.StopSolver();
}

void CImageViewUI::cb_m_pbtnSwitchHR_LR(Fl_Widget* /*widget*/, void* data) {
  Console() << "CImageViewUI::cb_m_pbtnSwitchHR_LR\n";
  auto& window = *static_cast<CImageViewUI*>(data);
  const bool high = g_bHighRes == 0;
  window.m_Commands.SwitchResolution();
  window.m_pbtnSwitchHR_LR->label(high ? "Switch to LR" : "Switch to HR");
  window.m_pbtnSwitchHR_LR->redraw();
}

bool CImageViewUI::Ask(const char* question) {
  EndDrags();
  return m_Dialogs.Ask(question);
}

std::string CImageViewUI::AskText(const char* question) {
  EndDrags();
  return m_Dialogs.AskText(question);
}

void CImageViewUI::Notice(const char* text) {
  EndDrags();
  m_Dialogs.Notice(text);
}

// A dialog takes the release of the button from the view in which it was pressed.
void CImageViewUI::EndDrags() {
  m_pImageView->EndDrag();
  m_pGridView->EndDrag();
  if (Fl::pushed() == m_pImageView || Fl::pushed() == m_pGridView) Fl::pushed(nullptr);
}

bool CImageViewUI::LoadPicture(const std::string& file) {
  if (!m_pImageView->LoadImage(file)) return false;
  PictureTaken({file, {}, nullptr});
  return true;
}

void CImageViewUI::PictureTaken(const CProjectPicture& picture) {
  m_Picture = picture;
  m_bPictureLoaded = true;
  if (m_Tools.IsOpen(Tool::Scissors)) m_Tools.Close(Tool::Scissors);
  m_Controls.Show(Control::LightSources, true);
  RefreshEnabled();
  for (const MenuEntry entry : {MenuEntry::ImagePicture, MenuEntry::ModelTexture}) {
    if (!m_pMenu->IsChecked(entry)) m_pMenu->Choose(entry);
  }
  Relayout();
  RequestRedraw();
  m_Tools.PictureLoaded();
}

std::string CImageViewUI::TextureFile() const { return m_pImageView->TextureFileName(); }

void CImageViewUI::ShowModel() {
  m_pbtnSwitchHR_LR->label(g_bHighRes == 1 ? "Switch to LR" : "Switch to HR");
  const WaveletMode mode = m_pGrid->Surface().Mode();
  m_pMenu->SetChecked(mode == WaveletMode::New      ? MenuEntry::NewWavelets
                      : mode == WaveletMode::Simple ? MenuEntry::SimpleWavelets
                                                    : MenuEntry::NoWavelets,
                      true);
  m_pGridView->ShowWaveletMode(mode);
  RefreshReadOuts();
  m_pHelpLine->SetCurrentHelp(CurrentHelp());
  Relayout();
}

void CImageViewUI::GridReplaced() {
  ShowModel();
  m_pGridView->ResetCamera();
  RequestRedraw();
  m_Tools.GridReplaced();
}
