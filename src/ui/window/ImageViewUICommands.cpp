// What the controls of the main window do.

#include <array>
#include <cstddef>
#include <string>

#include <FL/Fl.H>
#include <FL/Fl_Button.H>
#include <FL/Fl_Value_Output.H>

#include "base/Console.h"
#include "editing/DebugTools.h"
#include "model/CGrid.h"
#include "model/Globals.h"
#include "ui/imageview/CImageView.h"
#include "ui/modelview/CGridView.h"
#include "ui/seams/TimerInterval.h"
#include "ui/window/CHelpLine.h"
#include "ui/window/CImageViewUI.h"

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
    {Control::ResetImageView, [](CImageViewUI& ui, bool) { ui.ImageView().ResetView(); }},
    {Control::HorizontalCoefs, [](CImageViewUI& ui, bool on) { ui.SetDebugFlag(DebugFlag::kHorizontalCoefs, on); }},
    {Control::VerticalCoefs, [](CImageViewUI& ui, bool on) { ui.SetDebugFlag(DebugFlag::kVerticalCoefs, on); }},
    {Control::TorsionCells, [](CImageViewUI& ui, bool on) { ui.SetDebugFlag(DebugFlag::kTorsionCells, on); }},
    {Control::ShowLevel, [](CImageViewUI& ui, bool) { ui.CycleLevelTool(); }},
    {Control::TestInterpolation, [](CImageViewUI& ui, bool on) { ui.SetDebugFlag(DebugFlag::kInterpolation, on); }},
    {Control::ResetModelView, [](CImageViewUI& ui, bool) { ui.GridView().ResetCamera(); }},
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
  Controls().Button(Control::StopSolver).when(FL_WHEN_RELEASE | FL_WHEN_NOT_CHANGED);
}

void CImageViewUI::SetEditingMode(EditingMode mode) {
  ImageView().SetMode(mode);
  m_pGrid->CurveEdits().CancelPending();
  HelpLine().SetCurrentHelp(CurrentHelp());
  redraw();
  RefreshEnabled();
}

HelpText::Index CImageViewUI::CurrentHelp() const {
  if ((ImageView().DebugFlags() & DebugFlag::kSelectCells) != 0) return HelpText::kSelectCells;
  switch (ImageView().Mode()) {
    case EditingMode::Position:
      return HelpText::kPositions;
    case EditingMode::Normal:
      return HelpText::kNormals;
    case EditingMode::Curve:
      return m_pGrid->Constraints().PendingCurve().IsIdle() ? HelpText::kCurves : HelpText::kCurveInProgress;
    default:
      if (m_bDepthOffered) return HelpText::kDepthOffered;
      if (m_Commands.OffersFit()) return HelpText::kFitOffered;
      return m_bFirstStep && !IsBegun() ? HelpText::kFirstStep : HelpText::kNone;
  }
}

void CImageViewUI::SetCurveType(CurveType type) {
  ImageView().SetCurveType(type);
  RequestRedraw();
}

void CImageViewUI::SetDebugFlag(std::uint32_t flag, bool on) {
  const std::uint32_t flags = ImageView().DebugFlags();
  ImageView().SetDebugFlags(on ? flags | flag : flags & ~flag);
  UpdateDebugReadOuts();
}

void CImageViewUI::UpdateDebugReadOuts() {
  const CDebugReadOuts shown = ReadOutsOf(ImageView().DebugFlags());
  if (!shown.m_bInfluence) ShowInfluence(-1);
  Controls().Show(Control::Influence, shown.m_bInfluence);
  Controls().Show(Control::Level, shown.m_bLevel);
  Controls().Show(Control::PointNumber, shown.m_bPointNumber);
  Controls().Show(Control::PointCount, shown.m_bPointCount);
  Controls().Show(Control::Interpolation, shown.m_bInterpolation);
  redraw();
  RedrawImageView();
}

void CImageViewUI::CycleLevelTool() {
  Fl_Button& button = Controls().Button(Control::ShowLevel);
  const CLevelTool tool = NextLevelTool(ImageView().DebugFlags(), button.value() != 0);
  ImageView().SetDebugFlags(tool.m_uDebugFlags);
  button.label(tool.m_pLabel);
  button.value(tool.m_bButtonDown ? 1 : 0);
  UpdateDebugReadOuts();
}

void CImageViewUI::ToggleSelect() {
  const bool on = Controls().Button(Control::Select).value() != 0;
  if (on) EndChoosing();
  SetDebugFlag(DebugFlag::kSelectCells, on);
  HelpLine().SetCurrentHelp(CurrentHelp());
  RequestRedraw();
}

void CImageViewUI::ToggleFreeze() {
  m_bFreezing = Controls().Button(Control::Freeze).value() != 0;
  if (m_bFreezing && !Menu().IsChecked(MenuEntry::FreezeMap)) Menu().Choose(MenuEntry::FreezeMap);
  SetDebugFlag(DebugFlag::kFreeze, m_bFreezing);
  if (m_bFreezing) {
    m_Solver.PauseForFreeze();
  } else {
    m_Solver.EndFreeze();
  }
  RefreshEnabled();
}

// One of the two has the left button.
void CImageViewUI::ChooseSeveral(bool on) {
  Fl_Button& select = Controls().Button(Control::Select);
  if (on && select.value() != 0) {
    select.value(0);
    ToggleSelect();
  }
  ImageView().SetChoosing(on);
}

void CImageViewUI::EndChoosing() {
  Menu().SetChecked(MenuEntry::SelectSeveral, false);
  if (ImageView().IsChoosing()) ImageView().SetChoosing(false);
}

void CImageViewUI::OpenTool(Tool tool) {
  EndDrags();
  if (m_Tools.Has(tool)) m_Tools.Open(tool);
}

void CImageViewUI::ToggleTool(Tool tool) {
  if (m_Tools.IsOpen(tool)) return m_Tools.Close(tool);
  EndDrags();
  m_Tools.Open(tool);
  if (tool != Tool::Scissors) return;
  if (m_Tools.IsOpen(tool)) return m_Solver.StopSolver();
  Notice(
      "The picture is too large for the scissors: its sides must not be longer than 32767 pixels, and the memory must "
      "hold it a second time.");
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
  ImageView().EndDrag();
  GridView().EndDrag();
  if (Fl::pushed() == &ImageView() || Fl::pushed() == &GridView()) Fl::pushed(nullptr);
}

bool CImageViewUI::LoadPicture(const std::string& file) {
  if (!ImageView().LoadImage(file)) return false;
  PictureTaken({file, {}, nullptr});
  if (m_bDepthOffered || m_Commands.OffersFit()) {
    HelpLine().SetCurrentHelp(CurrentHelp());
    ShowMessage(FormatHelp(m_bDepthOffered ? HelpText::kDepthOffered : HelpText::kFitOffered));
  }
  return true;
}

void CImageViewUI::OfferDepth(bool offered) {
  const bool withdrawn = m_bDepthOffered && !offered && HelpLine().CurrentHelp() == HelpText::kDepthOffered;
  m_bDepthOffered = offered;
  if (withdrawn) HelpLine().SetCurrentHelp(CurrentHelp());
}

void CImageViewUI::WithdrawOffer() {
  if (HelpLine().CurrentHelp() == HelpText::kFitOffered && !m_Commands.OffersFit())
    HelpLine().SetCurrentHelp(CurrentHelp());
  if (!m_bFirstStep || !IsBegun()) return;
  m_bFirstStep = false;
  if (HelpLine().CurrentHelp() == HelpText::kFirstStep) HelpLine().ReplaceCurrentHelp(CurrentHelp());
}

bool CImageViewUI::IsBegun() const {
  return HasPicture() || ImageView().Mode() != EditingMode::Unset || m_pGrid->Gate().Edits() != 0;
}

void CImageViewUI::PictureTaken(const CProjectPicture& picture) {
  m_Picture = picture;
  if (m_Tools.IsOpen(Tool::Scissors)) m_Tools.Close(Tool::Scissors);
  ShowPictureControls();
  RefreshEnabled();
  for (const MenuEntry entry : {MenuEntry::ImagePicture, MenuEntry::ModelTexture}) {
    if (!Menu().IsChecked(entry)) Menu().Choose(entry);
  }
  Relayout();
  RequestRedraw();
  m_Tools.PictureLoaded();
  RequireTexels();
}

std::string CImageViewUI::TextureFile() const { return ImageView().TextureFileName(); }

void CImageViewUI::ShowModel() {
  m_pbtnSwitchHR_LR->label(g_bHighRes == 1 ? "Switch to LR" : "Switch to HR");
  const WaveletMode mode = m_pGrid->Surface().Mode();
  Menu().SetChecked(mode == WaveletMode::New      ? MenuEntry::NewWavelets
                    : mode == WaveletMode::Simple ? MenuEntry::SimpleWavelets
                                                  : MenuEntry::NoWavelets,
                    true);
  GridView().ShowWaveletMode(mode);
  ShowCounts(*m_pGrid);
  HelpLine().SetCurrentHelp(CurrentHelp());
  Relayout();
}

void CImageViewUI::GridReplaced() {
  ShowModel();
  if (m_OverlayEntries) m_OverlayEntries->SurfaceReplaced();
  GridView().ResetCamera();
  RestoreOwnMarks();
  RequestRedraw();
  m_Tools.GridReplaced();
}
