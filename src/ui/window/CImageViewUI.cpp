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

// Whether the surface would follow once the solver runs.
bool ChangesSurface(int operation) { return operation != Operation::kSaveGrid && operation != Operation::kLoadImage; }

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
  resizable(nullptr);
  size_range(Scaled(kMinDesignWidth, m_fScale), Scaled(kMinDesignHeight, m_fScale));
  callback(cb_Window);
  ConnectCallbacks();
  RefreshEnabled();
  Relayout();
  Fl::add_check(cb_PendingWork, this);
}

CImageViewUI::~CImageViewUI() {
  // Hiding sends events to the views, which still need their host then.
  hide();
  Fl::remove_check(cb_PendingWork, this);
  if (m_pGrid != nullptr) m_pGrid->AttachHost(nullptr);
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
    Fl_Widget*& widget = m_apWidgets[Index(row.m_Control)];
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
    m_abVisible[Index(row.m_Control)] = widget->visible() != 0;
    Fl_Widget* parent = row.m_Parent == Control::Window ? this : m_apWidgets[Index(row.m_Parent)];
    if (widget->parent() == nullptr) static_cast<Fl_Group*>(parent)->add(widget);
  }
  static_cast<Fl_Output&>(Widget(Control::CentreName)).value("Center");
  m_pbtnSwitchHR_LR = &Button(Control::SwitchResolution);
}

void CImageViewUI::Relayout() {
  const CWindowLayout layout = ComputeLayout({w(), h(), m_fScale, m_bDebugZone, m_bHelpLine, m_bPictureLoaded});
  Widget(Control::ResetImageView).label(layout.m_bRoomyReset ? "Reset\nthe 2D view" : "Reset\nthe\n2D view");
  for (const CControlRow& row : kControls) {
    const CRect& rect = layout.Of(row.m_Control);
    Widget(row.m_Control).resize(rect.x, rect.y, rect.w, rect.h);
  }
  SetTextSizes(m_apWidgets, m_fScale);
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
  grid.AttachHost(this);
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

void CImageViewUI::SetTool(Tool tool, std::unique_ptr<ToolWindow> window) {
  if (window != nullptr) window->OnClosed([this, tool] { ToolClosed(tool); });
  m_apTools[static_cast<std::size_t>(tool)] = std::move(window);
  RefreshEnabled();
}

Fl_Button& CImageViewUI::Button(Control control) { return static_cast<Fl_Button&>(Widget(control)); }

Fl_Value_Output& CImageViewUI::ReadOut(Control control) { return static_cast<Fl_Value_Output&>(Widget(control)); }

void CImageViewUI::SetVisible(Control control, bool visible) {
  m_abVisible[Index(control)] = visible;
  if (visible && (m_bDebugZone || !IsInDebugZone(control))) {
    Widget(control).show();
  } else {
    Widget(control).hide();
  }
}

void CImageViewUI::Enable(Control control, bool enable) {
  if (enable) {
    Widget(control).activate();
  } else {
    Widget(control).deactivate();
  }
}

void CImageViewUI::RefreshEnabled() {
  const CModelServices& model = m_Services.m_Model;
  m_pMenu->Enable(MenuEntry::NewGrid, static_cast<bool>(model.m_AskNewGrid));
  m_pMenu->Enable(MenuEntry::LoadGrid, static_cast<bool>(model.m_LoadGrid));
  for (std::size_t k = 0; k < ModelFormats().size(); ++k)
    m_pMenu->Enable(WriteEntry(k), m_Commands.CanWrite(ModelFormats()[k]));
  m_pMenu->Enable(MenuEntry::DrawingParameters, static_cast<bool>(m_Services.m_ShowDrawingOptions));
  m_pMenu->Enable(MenuEntry::ImagePicture, m_bPictureLoaded);
  m_pMenu->Enable(MenuEntry::ModelTexture, m_bPictureLoaded);
  m_pMenu->Enable(MenuEntry::FreezeMap, !m_bFreezing);

  const EditingMode mode = m_pImageView->Mode();
  Enable(Control::CurveType, mode != EditingMode::Position && mode != EditingMode::Normal);
  const auto hasTool = [this](Tool tool) { return m_apTools[static_cast<std::size_t>(tool)] != nullptr; };
  Enable(Control::LightSources, hasTool(Tool::LightSources));
  Enable(Control::Recorder, hasTool(Tool::Recorder) && !m_bFreezing);
  Enable(Control::Scissors, hasTool(Tool::Scissors) && m_bPictureLoaded);
}

void CImageViewUI::RefreshReadOuts() {
  ShowResolution(m_pGrid->Tree().LeafCount(), m_pGrid->ActivePointCount());
  SetNumberOfConstraints(m_pGrid->ActiveConstraintCount());
}

void CImageViewUI::SetNumberIter(int n) {
  ReadOut(Control::Iterations).value(n);
  Console() << "CImageViewUI::SetNumberIter(" << n << ")\n";
}

void CImageViewUI::SetNumberOfConstraints(int n) { ReadOut(Control::ConstraintCount).value(n); }

void CImageViewUI::SetNumberOfCells(int n) { ReadOut(Control::CellCount).value(n); }

void CImageViewUI::SetNumberOfPoints(int n) { ReadOut(Control::PointCount).value(n); }

void CImageViewUI::ShowInterpolation(const CInterpolationTrace& trace) {
  m_pImageView->ShowInterpolation(trace);
  const CTriangleStencil& triangle = trace.m_Triangle;
  constexpr int kNone = -1;
  const bool centre = triangle.IsCentre();
  ReadOut(Control::FirstNumber).value(centre ? kNone : m_pGrid->Order().NumberOf(triangle.m_uA));
  ReadOut(Control::SecondNumber).value(centre ? kNone : m_pGrid->Order().NumberOf(triangle.m_uB));
  ReadOut(Control::CentreCoef).value(triangle.m_fCCenter);
  ReadOut(Control::FirstCoef).value(triangle.m_fCa);
  ReadOut(Control::SecondCoef).value(triangle.m_fCb);
}

void CImageViewUI::ShowResolution(int leaves, int points) {
  SetNumberOfCells(leaves);
  SetNumberOfPoints(points);
}

void CImageViewUI::ProcessEvents() { Fl::check(); }

void CImageViewUI::ShowHelp(int index) { m_pHelpLine->ShowHelp(index); }

void CImageViewUI::RestoreHelp() { m_pHelpLine->RestoreHelp(); }

void CImageViewUI::SetCurrentHelp(int index) { m_pHelpLine->SetCurrentHelp(index); }

void CImageViewUI::ShowMessage(const std::string& text) { m_pHelpLine->ShowMessage(text); }

void CImageViewUI::Tell(const std::string& text) {
  ShowMessage(text);
  Console() << text << '\n';
}

void CImageViewUI::PauseSolverGaveUp() {
  m_Solver.PauseSolverConverged();
  Tell(FormatHelp(HelpText::kSolverGaveUp));
}

void CImageViewUI::ShowCurveType(int type) {
  Button(Control::PositionDiscontinuity).value(type == CurveType::kPosition ? 1 : 0);
  Button(Control::NormalDiscontinuity).value(type == CurveType::kNormal ? 1 : 0);
  Button(Control::FairnessConstraint).value(type == CurveType::kFairness ? 1 : 0);
}

void CImageViewUI::EditCurveAttributes(const CPlanePoint& place) {
  m_Commands.EditCurveAttributes(place.x, place.y, static_cast<std::uint32_t>(m_pImageView->CurveType()));
}

void CImageViewUI::RedrawImageView() { m_pImageView->redraw(); }

void CImageViewUI::RedrawModelView() { m_pGridView->redraw(); }

void CImageViewUI::FocusImageView() { m_pImageView->take_focus(); }

void CImageViewUI::LightsMoved() {
  if (m_Services.m_LightsMoved) m_Services.m_LightsMoved();
}

void CImageViewUI::ShowPointerInside(bool inside) { Button(Control::PointerInside).value(inside ? 1 : 0); }

void CImageViewUI::ShowInfluence(double value) {
  ReadOut(Control::Influence).value(value);
  // It lies on top, and is to be drawn after what has changed below it.
  ReadOut(Control::Level).redraw();
}

void CImageViewUI::ShowNumber(int number, int levelCode) {
  ReadOut(Control::PointNumber).value(number);
  ReadOut(Control::Level).value(levelCode);
}

void CImageViewUI::ShowSolverRunning(bool running) {
  Button(running ? Control::ResumeSolver : Control::StopSolver).setonly();
}

void CImageViewUI::EnableSolverControls(bool enable) {
  Enable(Control::SwitchResolution, enable);
  Enable(Control::SolverRun, enable);
}

void CImageViewUI::EnableEditing(bool enable) { Enable(Control::LeftPanel, enable); }

void CImageViewUI::cb_Window(Fl_Widget* widget, void* /*data*/) {
  if (IsEscapeTyped()) {
    widget->take_focus();
    return;
  }
  std::exit(EXIT_SUCCESS);
}

// What is posted while no tick is registered is performed here, once per round of the toolkit and so never inside the
// command or the event that posted it.
void CImageViewUI::cb_PendingWork(void* data) {
  auto& window = *static_cast<CImageViewUI*>(data);
  if (window.m_pGrid == nullptr || window.m_bPerforming || g_nSolverTimers != 0) return;
  if (window.m_pGrid->NextOperation() != Operation::kNone) window.PerformPendingWork();
  window.TellOfWaitingEdit();
}

void CImageViewUI::PerformPendingWork() {
  if (ChangesSurface(m_pGrid->NextOperation()) && m_Solver.TakeFirstWait()) m_bEditWaits = true;
  m_bPerforming = true;
  m_pGrid->PerformPendingWork();
  m_bPerforming = false;
  RequestRedraw();
}

// Not while a button is held: the drag shows its own value.
void CImageViewUI::TellOfWaitingEdit() {
  if (!m_bEditWaits || Fl::pushed() != nullptr) return;
  m_bEditWaits = false;
  if (m_Solver.IsStoppedByUser()) Tell(FormatHelp(HelpText::kSolverStopped));
}
