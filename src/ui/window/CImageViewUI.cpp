#include "ui/window/CImageViewUI.h"

#include <cmath>
#include <cstdlib>

#include <FL/Fl.H>
#include <FL/Fl_Button.H>
#include <FL/Fl_Value_Output.H>

#include "base/Console.h"
#include "editing/DebugTools.h"
#include "io/ModelFormats.h"
#include "model/CGrid.h"
#include "model/Globals.h"
#include "ui/imageview/CImageView.h"
#include "ui/modelview/CGridView.h"
#include "ui/seams/UiScale.h"
#include "ui/window/CCoordinateLine.h"
#include "ui/window/CHelpLine.h"
#include "ui/window/ControlWidgets.h"
#include "ui/window/WindowLayout.h"

namespace {

// The toolkit remembers the last key typed, so a click on the title bar may find Escape as the key: the event must be
// one of the keyboard, too.
bool IsEscapeTyped() {
  const int event = Fl::event();
  return (event == FL_KEYBOARD || event == FL_SHORTCUT) && Fl::event_key() == FL_Escape;
}

// Not what the toolkit takes to be below the mouse: that is nothing for a while after a window manager has looked at a
// click.
bool IsMouseOver(const Fl_Window& view) {
  int x = 0;
  int y = 0;
  Fl::get_mouse(x, y);
  x -= view.x_root();
  y -= view.y_root();
  return x >= 0 && x < view.w() && y >= 0 && y < view.h();
}

}  // namespace

CImageViewUI::CImageViewUI(CSolverControl::StartTimer startTimer, UserDialogs* dialogs)
    : m_Settings([this](const std::string& text) { Tell(text); }),
      m_Dialogs(dialogs != nullptr ? *dialogs : m_ToolkitDialogs),
      m_Solver(*this, startTimer),
      m_Commands(*this, m_Solver),
      m_History(*this, m_Solver, CRedrawPacer::SteadySeconds),
      m_GridHost(*this, m_Solver, m_Commands),
      m_Tools(Controls()),
      m_RedrawPacer(
          [this] {
            RedrawImageView();
            RedrawModelView();
          },
          [this] { return m_Solver.IsRunning(); }, CRedrawPacer::SteadySeconds),
      m_Overlays([this](std::shared_ptr<const COverlay> overlay) { ShowOverlay(std::move(overlay)); },
                 CRedrawPacer::SteadySeconds) {
  // There they choose the lights that a drag turns.
  Menu().LeaveDigitsWhile([this] { return Fl::pushed() != nullptr || IsMouseOver(GridView()); });
  Menu().BeforeOpening([this] {
    RefreshSteps();
    RefreshRecent();
  });
  Menu().BeforeKeys([this] { RefreshSteps(); });
  callback(cb_Window);
  m_pbtnSwitchHR_LR = &Controls().Button(Control::SwitchResolution);
  m_pbtnSwitchHR_LR->callback(cb_m_pbtnSwitchHR_LR, this);
  ConnectCallbacks();
  RefreshEnabled();
  Relayout();
  Fl::add_check(cb_PendingWork, this);
  Fl::add_handler(cb_UnusedEvent);
}

CImageViewUI::~CImageViewUI() {
  // Hiding sends events to the views, which still need their host then.
  hide();
  Fl::remove_check(cb_PendingWork, this);
  Fl::remove_handler(cb_UnusedEvent);
  m_History.Detach();
  m_GridHost.Detach();
}

void CImageViewUI::AttachGrid(CGrid& grid) {
  m_pGrid = &grid;
  ImageView().AttachTextures(m_Textures);
  GridView().AttachTextures(m_Textures);
  ImageView().AttachGrid(grid, *this);
  GridView().AttachGrid(grid);
  GridView().AttachHost(*this);
  m_GridHost.AttachGrid(grid);
  m_GridHost.AttachHistory(m_History);
  m_History.AttachGrid(grid);
  m_Solver.AttachGrid(grid);
  m_Commands.AttachGrid(grid);
  GridView().SelectWaveletMode(WaveletMode::New);
  ShowCounts(*m_pGrid);
  GridView().EnableEvents();
  m_OverlayEntries.emplace(grid, Menu(), m_Overlays,
                           CInfluenceOverlay::CWindow{[this] { return ImageView().Mode() == EditingMode::Normal; },
                                                      [this](const std::string& text) { Tell(text); }});
}

void CImageViewUI::RestoreSwitches() {
  m_Remembered.Look();
  SwitchOver(m_Remembered.ToBeSwitched());
}

void CImageViewUI::SwitchOver(const std::vector<MenuEntry>& entries) {
  for (const MenuEntry entry : entries) {
    if (!Menu().IsActive(entry)) continue;
    Menu().SetChecked(entry, !Menu().IsChecked(entry));
    Chosen(entry);
  }
  m_Remembered.Look();
}

void CImageViewUI::ShowFirstStep() {
  m_bFirstStep = true;
  HelpLine().SetCurrentHelp(CurrentHelp());
}

void CImageViewUI::SetServices(CWindowServices services) {
  m_Services = std::move(services);
  m_Commands.SetServices(m_Services.m_Model);
  RefreshEnabled();
}

void CImageViewUI::SetRecovery(CRecoveryServices recovery) {
  m_Commands.SetRecovery(std::move(recovery));
  RefreshEnabled();
}

void CImageViewUI::SetTool(Tool tool, std::unique_ptr<ToolWindow> window) {
  m_Tools.Set(tool, std::move(window), [this, tool] {
    // The recorder and the scissors leave the solver stopped.
    if ((tool == Tool::Recorder || tool == Tool::Scissors) && m_Solver.IsStoppedByUser()) TellSolverStopped();
  });
  RefreshEnabled();
}

void CImageViewUI::RefreshEnabled() {
  const CModelServices& model = m_Services.m_Model;
  Menu().Enable(MenuEntry::NewGrid, static_cast<bool>(model.m_AskNewGrid));
  Menu().Enable(MenuEntry::LoadGrid, static_cast<bool>(model.m_LoadGrid));
  for (std::size_t k = 0; k < ModelFormats().size(); ++k)
    Menu().Enable(WriteEntry(k), m_Commands.CanWrite(ModelFormats()[k]));
  Menu().Enable(MenuEntry::SaveAgain, m_Commands.CanWrite(ModelFormats().front()));
  Menu().Enable(MenuEntry::OpenProject, static_cast<bool>(model.m_ReadProject));
  Menu().Enable(MenuEntry::SaveProject, static_cast<bool>(model.m_SaveProject));
  Menu().Enable(MenuEntry::RecoverWork, m_Commands.Recovery().m_HasWork && m_Commands.Recovery().m_HasWork());
  Menu().Enable(MenuEntry::FitPicture, m_Commands.CanFitPicture());
  Menu().Enable(MenuEntry::ExportModel, m_Commands.CanExportModel());
  Menu().Enable(MenuEntry::ExportFilm, m_Commands.CanExportFilm());
  Menu().Enable(MenuEntry::ReferenceDepth, m_Tools.Has(Tool::ReferenceDepth));
  Menu().Enable(MenuEntry::SaveOverlay, ImageView().Overlay() != nullptr);
  Menu().Enable(MenuEntry::HeightsAlongCurve, m_Tools.Has(Tool::HeightsAlongCurve));
  Menu().Enable(MenuEntry::ConstraintValues, m_Tools.Has(Tool::ConstraintValues));
  Menu().Enable(MenuEntry::ConstraintReport, m_Tools.Has(Tool::ConstraintReport));
  Menu().Enable(MenuEntry::KeysAndMouse, m_Tools.Has(Tool::Keys));
  Menu().Enable(MenuEntry::Tutorial, static_cast<bool>(m_Services.m_OpenTutorial));
  Menu().Enable(MenuEntry::About, static_cast<bool>(m_Services.m_About));
  Menu().Enable(MenuEntry::DrawingParameters, static_cast<bool>(m_Services.m_ShowDrawingOptions));
  Menu().Enable(MenuEntry::ImagePicture, HasPicture());
  Menu().Enable(MenuEntry::ModelTexture, HasPicture());
  Menu().Enable(MenuEntry::FreezeMap, !m_bFreezing);

  const EditingMode mode = ImageView().Mode();
  Controls().Enable(Control::CurveType, mode != EditingMode::Position && mode != EditingMode::Normal);
  Controls().Enable(Control::LightSources, m_Tools.Has(Tool::LightSources));
  Controls().Enable(Control::Recorder, m_Tools.Has(Tool::Recorder) && !m_bFreezing);
  Controls().Enable(Control::Scissors, m_Tools.Has(Tool::Scissors) && HasPicture());
}

void CImageViewUI::ShowInterpolation(const CInterpolationTrace& trace) {
  ImageView().ShowInterpolation(trace);
  const CTriangleStencil& triangle = trace.m_Triangle;
  constexpr int kNone = -1;
  const bool centre = triangle.IsCentre();
  Controls().ReadOut(Control::FirstNumber).value(centre ? kNone : m_pGrid->Surface().Order().NumberOf(triangle.m_uA));
  Controls().ReadOut(Control::SecondNumber).value(centre ? kNone : m_pGrid->Surface().Order().NumberOf(triangle.m_uB));
  Controls().ReadOut(Control::CentreCoef).value(triangle.m_fCCenter);
  Controls().ReadOut(Control::FirstCoef).value(triangle.m_fCa);
  Controls().ReadOut(Control::SecondCoef).value(triangle.m_fCb);
}

void CImageViewUI::EditCurveAttributes(const CPlanePoint& place) {
  m_Commands.EditCurveAttributes(place.x, place.y, ImageView().CurveType());
}

void CImageViewUI::LightsMoved() {
  if (m_Services.m_LightsMoved) m_Services.m_LightsMoved();
}

void CImageViewUI::ShowCoordinates(const CPlanePoint* place) {
  if (m_pGrid != nullptr) CoordinateLine().Show(*m_pGrid, place);
}

void CImageViewUI::ShowSolverRunning(bool running) {
  Controls().Button(running ? Control::ResumeSolver : Control::StopSolver).setonly();
}

void CImageViewUI::EnableSolverControls(bool enable) {
  Controls().Enable(Control::SwitchResolution, enable);
  Controls().Enable(Control::SolverRun, enable);
}

void CImageViewUI::EnableEditing(bool enable) { Controls().Enable(Control::LeftPanel, enable); }

void CImageViewUI::cb_Window(Fl_Widget* widget, void* /*data*/) {
  if (IsEscapeTyped()) {
    widget->take_focus();
    return;
  }
  auto& window = static_cast<CImageViewUI&>(*widget);
  window.KeepPlace();
  if (window.m_Commands.Recovery().m_End) window.m_Commands.Recovery().m_End();
  std::exit(EXIT_SUCCESS);
}

void CImageViewUI::cb_PendingWork(void* data) {
  auto& window = *static_cast<CImageViewUI*>(data);
  window.OpenWaitingFiles();
  window.m_GridHost.PerformPendingWork(window.IsDragging());
  window.m_History.Settle(window.IsDragging());
  window.WithdrawOffer();
  if (window.m_OverlayEntries) window.m_OverlayEntries->Follow();
  window.m_Overlays.Follow();
}
