#include "ui/window/CImageViewUI.h"

#include <cmath>
#include <cstdlib>

#include <FL/Fl.H>
#include <FL/Fl_Button.H>
#include <FL/Fl_Value_Output.H>

#include "base/Console.h"
#include "editing/DebugTools.h"
#include "formats/ModelFormats.h"
#include "model/CGrid.h"
#include "model/Globals.h"
#include "ui/imageview/CImageView.h"
#include "ui/modelview/CGridView.h"
#include "ui/seams/UiScale.h"
#include "ui/window/CHelpLine.h"
#include "ui/window/ControlWidgets.h"
#include "ui/window/WindowLayout.h"

namespace {

int Scaled(int length, double scale) { return static_cast<int>(std::lround(length * scale)); }

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
    : Fl_Window(Scaled(kDesignWidth, UiScale()), Scaled(kDesignHeight, UiScale()), "Image View"),
      m_fScale(UiScale()),
      m_Dialogs(dialogs != nullptr ? *dialogs : m_ToolkitDialogs),
      m_Solver(*this, startTimer),
      m_Commands(*this, m_Solver),
      m_History(*this, m_Solver, CRedrawPacer::SteadySeconds),
      m_GridHost(*this, m_Solver, m_Commands),
      m_Tools(m_Controls),
      m_RedrawPacer(
          [this] {
            RedrawImageView();
            RedrawModelView();
          },
          [this] { return m_Solver.IsRunning(); }, CRedrawPacer::SteadySeconds) {
  BuildWidgets();
  end();
  // There they choose the lights that a drag turns.
  m_pMenu->LeaveDigitsWhile([this] { return Fl::pushed() != nullptr || IsMouseOver(*m_pGridView); });
  m_pMenu->BeforeOpening([this] {
    RefreshSteps();
    RefreshRecent();
  });
  m_pMenu->BeforeKeys([this] { RefreshSteps(); });
  resizable(nullptr);
  size_range(Scaled(kMinDesignWidth, m_fScale), Scaled(kMinDesignHeight, m_fScale));
  callback(cb_Window);
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

void CImageViewUI::BuildWidgets() {
  const auto rect = [](Control control) { return RowOf(control).m_Design; };
  const auto [x, y, w, h] = rect(Control::MenuBar);
  m_pMenu = new CMainMenu(x, y, w, h, [this](MenuEntry entry) { Chosen(entry); });
  const CRect left = rect(Control::ImageView);
  m_pImageView = new CImageView(left.x, left.y, left.w, left.h);
  const CRect right = rect(Control::ModelView);
  m_pGridView = new CGridView(right.x, right.y, right.w, right.h);
  const CRect line = rect(Control::HelpLine);
  m_pHelpLine = new CHelpLine(line.x, line.y, line.w, line.h);
  for (const CControlRow& row : kControls) {
    Fl_Widget* widget = nullptr;
    switch (row.m_Kind) {
      case ControlKind::MenuBar:
        widget = m_pMenu;
        break;
      case ControlKind::ImageView:
        widget = m_pImageView;
        break;
      case ControlKind::ModelView:
        widget = m_pGridView;
        break;
      case ControlKind::HelpLine:
        widget = m_pHelpLine;
        break;
      default:
        widget = MakeControl(row, *m_pHelpLine);
    }
    m_Controls.Add(row, *widget, *this);
  }
  static_cast<Fl_Output&>(Widget(Control::CentreName)).value("Center");
  m_pbtnSwitchHR_LR = &m_Controls.Button(Control::SwitchResolution);
  m_pbtnSwitchHR_LR->callback(cb_m_pbtnSwitchHR_LR, this);
}

void CImageViewUI::Relayout() {
  const CWindowLayout layout = ComputeLayout({w(), h(), m_fScale, ShowsDebugZone(), m_bHelpLine, m_bPictureLoaded});
  Widget(Control::ResetImageView).label(layout.m_bRoomyReset ? "Reset\nthe 2D view" : "Reset\nthe\n2D view");
  for (const CControlRow& row : kControls) {
    const CRect& rect = layout.Of(row.m_Control);
    Widget(row.m_Control).resize(rect.x, rect.y, rect.w, rect.h);
  }
  SetTextSizes(m_Controls.Widgets(), m_fScale);
  redraw();
}

void CImageViewUI::resize(int x, int y, int width, int height) {
  Fl_Window::resize(x, y, width, height);
  Relayout();
}

void CImageViewUI::AttachGrid(CGrid& grid) {
  m_pGrid = &grid;
  m_pImageView->AttachTextures(m_Textures);
  m_pGridView->AttachTextures(m_Textures);
  m_pImageView->AttachGrid(grid, *this);
  m_pGridView->AttachGrid(grid);
  m_pGridView->AttachHost(*this);
  m_GridHost.AttachGrid(grid);
  m_GridHost.AttachHistory(m_History);
  m_History.AttachGrid(grid);
  m_Solver.AttachGrid(grid);
  m_Commands.AttachGrid(grid);
  m_pGridView->SelectWaveletMode(WaveletMode::New);
  RefreshReadOuts();
  m_pGridView->EnableEvents();
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
    if (tool != Tool::LightSources && m_Solver.IsStoppedByUser()) TellSolverStopped();
  });
  RefreshEnabled();
}

void CImageViewUI::RefreshEnabled() {
  const CModelServices& model = m_Services.m_Model;
  m_pMenu->Enable(MenuEntry::NewGrid, static_cast<bool>(model.m_AskNewGrid));
  m_pMenu->Enable(MenuEntry::LoadGrid, static_cast<bool>(model.m_LoadGrid));
  for (std::size_t k = 0; k < ModelFormats().size(); ++k)
    m_pMenu->Enable(WriteEntry(k), m_Commands.CanWrite(ModelFormats()[k]));
  m_pMenu->Enable(MenuEntry::SaveAgain, m_Commands.CanWrite(ModelFormats().front()));
  m_pMenu->Enable(MenuEntry::OpenProject, static_cast<bool>(model.m_ReadProject));
  m_pMenu->Enable(MenuEntry::SaveProject, static_cast<bool>(model.m_SaveProject));
  m_pMenu->Enable(MenuEntry::RecoverWork, m_Commands.Recovery().m_HasWork && m_Commands.Recovery().m_HasWork());
  m_pMenu->Enable(MenuEntry::DrawingParameters, static_cast<bool>(m_Services.m_ShowDrawingOptions));
  m_pMenu->Enable(MenuEntry::ImagePicture, m_bPictureLoaded);
  m_pMenu->Enable(MenuEntry::ModelTexture, m_bPictureLoaded);
  m_pMenu->Enable(MenuEntry::FreezeMap, !m_bFreezing);

  const EditingMode mode = m_pImageView->Mode();
  m_Controls.Enable(Control::CurveType, mode != EditingMode::Position && mode != EditingMode::Normal);
  m_Controls.Enable(Control::LightSources, m_Tools.Has(Tool::LightSources));
  m_Controls.Enable(Control::Recorder, m_Tools.Has(Tool::Recorder) && !m_bFreezing);
  m_Controls.Enable(Control::Scissors, m_Tools.Has(Tool::Scissors) && m_bPictureLoaded);
}

void CImageViewUI::RefreshReadOuts() {
  SetNumberOfCells(m_pGrid->Surface().Tree().LeafCount());
  SetNumberOfPoints(m_pGrid->Surface().ActivePointCount());
  SetNumberOfConstraints(m_pGrid->Constraints().ActiveCount());
}

void CImageViewUI::SetNumberIter(int n) {
  m_Controls.ReadOut(Control::Iterations).value(n);
  Console() << "CImageViewUI::SetNumberIter(" << n << ")\n";
}

void CImageViewUI::SetNumberOfConstraints(int n) { m_Controls.ReadOut(Control::ConstraintCount).value(n); }

void CImageViewUI::SetNumberOfCells(int n) { m_Controls.ReadOut(Control::CellCount).value(n); }

void CImageViewUI::SetNumberOfPoints(int n) { m_Controls.ReadOut(Control::PointCount).value(n); }

void CImageViewUI::ShowInterpolation(const CInterpolationTrace& trace) {
  m_pImageView->ShowInterpolation(trace);
  const CTriangleStencil& triangle = trace.m_Triangle;
  constexpr int kNone = -1;
  const bool centre = triangle.IsCentre();
  m_Controls.ReadOut(Control::FirstNumber).value(centre ? kNone : m_pGrid->Surface().Order().NumberOf(triangle.m_uA));
  m_Controls.ReadOut(Control::SecondNumber).value(centre ? kNone : m_pGrid->Surface().Order().NumberOf(triangle.m_uB));
  m_Controls.ReadOut(Control::CentreCoef).value(triangle.m_fCCenter);
  m_Controls.ReadOut(Control::FirstCoef).value(triangle.m_fCa);
  m_Controls.ReadOut(Control::SecondCoef).value(triangle.m_fCb);
}

void CImageViewUI::ProcessEvents() { Fl::check(); }

void CImageViewUI::ShowHelp(HelpText::Index index) { m_pHelpLine->ShowHelp(index); }

void CImageViewUI::RestoreHelp() { m_pHelpLine->RestoreHelp(); }

void CImageViewUI::SetCurrentHelp(HelpText::Index index) { m_pHelpLine->SetCurrentHelp(index); }

void CImageViewUI::ShowMessage(const std::string& text) { m_pHelpLine->ShowMessage(text); }

void CImageViewUI::Tell(const std::string& text) {
  ShowMessage(text);
  Console() << text << '\n';
}

void CImageViewUI::TellSolverGaveUp() { Tell(FormatHelp(HelpText::kSolverGaveUp)); }

void CImageViewUI::TellSolverStopped() { Tell(FormatHelp(HelpText::kSolverStopped)); }

void CImageViewUI::ShowCurveType(CurveType type) {
  m_Controls.Button(Control::PositionDiscontinuity).value(type == CurveType::kPosition ? 1 : 0);
  m_Controls.Button(Control::NormalDiscontinuity).value(type == CurveType::kNormal ? 1 : 0);
  m_Controls.Button(Control::FairnessConstraint).value(type == CurveType::kFairness ? 1 : 0);
}

void CImageViewUI::EditCurveAttributes(const CPlanePoint& place) {
  m_Commands.EditCurveAttributes(place.x, place.y, m_pImageView->CurveType());
}

void CImageViewUI::RedrawImageView() { m_pImageView->redraw(); }

void CImageViewUI::RedrawModelView() { m_pGridView->redraw(); }

void CImageViewUI::FocusImageView() { m_pImageView->take_focus(); }

void CImageViewUI::LightsMoved() {
  if (m_Services.m_LightsMoved) m_Services.m_LightsMoved();
}

void CImageViewUI::ShowPointerInside(bool inside) { m_Controls.Button(Control::PointerInside).value(inside ? 1 : 0); }

void CImageViewUI::ShowInfluence(double value) {
  m_Controls.ReadOut(Control::Influence).value(value);
  // It lies on top, and is to be drawn after what has changed below it.
  m_Controls.ReadOut(Control::Level).redraw();
}

void CImageViewUI::ShowNumber(int number, int levelCode) {
  m_Controls.ReadOut(Control::PointNumber).value(number);
  m_Controls.ReadOut(Control::Level).value(levelCode);
}

void CImageViewUI::ShowSolverRunning(bool running) {
  m_Controls.Button(running ? Control::ResumeSolver : Control::StopSolver).setonly();
}

void CImageViewUI::EnableSolverControls(bool enable) {
  m_Controls.Enable(Control::SwitchResolution, enable);
  m_Controls.Enable(Control::SolverRun, enable);
}

void CImageViewUI::EnableEditing(bool enable) { m_Controls.Enable(Control::LeftPanel, enable); }

void CImageViewUI::cb_Window(Fl_Widget* widget, void* /*data*/) {
  if (IsEscapeTyped()) {
    widget->take_focus();
    return;
  }
  const auto& window = static_cast<const CImageViewUI&>(*widget);
  if (window.m_Commands.Recovery().m_End) window.m_Commands.Recovery().m_End();
  std::exit(EXIT_SUCCESS);
}

void CImageViewUI::cb_PendingWork(void* data) {
  auto& window = *static_cast<CImageViewUI*>(data);
  window.OpenWaitingFiles();
  window.m_GridHost.PerformPendingWork(window.IsDragging());
  window.m_History.Settle(window.IsDragging());
}
