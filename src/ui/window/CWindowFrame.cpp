#include "ui/window/CWindowFrame.h"

#include <cmath>

#include <FL/Fl.H>
#include <FL/Fl_Button.H>
#include <FL/Fl_Value_Output.H>

#include "base/Console.h"
#include "model/CGrid.h"
#include "ui/imageview/CImageView.h"
#include "ui/modelview/CGridView.h"
#include "ui/seams/UiScale.h"
#include "ui/window/CCoordinateLine.h"
#include "ui/window/CHelpLine.h"
#include "ui/window/ControlWidgets.h"
#include "ui/window/WindowLayout.h"

namespace {

constexpr int kCoordinateSize = 11;  // of letters, pixels of the design

int Scaled(int length, double scale) { return static_cast<int>(std::lround(length * scale)); }

}  // namespace

CWindowFrame::CWindowFrame()
    : Fl_Window(Scaled(kDesignWidth, UiScale()), Scaled(kDesignHeight, UiScale()), "Image View"), m_fScale(UiScale()) {
  BuildWidgets();
  end();
  resizable(nullptr);
  size_range(Scaled(kMinDesignWidth, m_fScale), Scaled(kMinDesignHeight, m_fScale));
}

CWindowFrame::~CWindowFrame() = default;

void CWindowFrame::BuildWidgets() {
  const auto rect = [](Control control) { return RowOf(control).m_Design; };
  const auto [x, y, w, h] = rect(Control::MenuBar);
  m_pMenu = new CMainMenu(x, y, w, h, [this](MenuEntry entry) {
    Chosen(entry);
    ChosenByUser(entry);
  });
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
  m_pCoordinates = new CCoordinateLine;
  add(m_pCoordinates);
}

void CWindowFrame::Relayout() {
  const CWindowLayout layout =
      ComputeLayout({w(), h(), m_fScale, ShowsDebugZone(), m_bHelpLine, m_bPicture, m_bCoordinates});
  Widget(Control::ResetImageView).label(layout.m_bRoomyReset ? "Reset\nthe 2D view" : "Reset\nthe\n2D view");
  for (const CControlRow& row : kControls) {
    const CRect& rect = layout.Of(row.m_Control);
    Widget(row.m_Control).resize(rect.x, rect.y, rect.w, rect.h);
  }
  SetTextSizes(m_Controls.Widgets(), m_fScale);
  const CRect& line = layout.m_Coordinates;
  m_pCoordinates->resize(line.x, line.y, line.w, line.h);
  m_pCoordinates->labelsize(Scaled(kCoordinateSize, m_fScale));
  redraw();
}

void CWindowFrame::resize(int x, int y, int width, int height) {
  Fl_Window::resize(x, y, width, height);
  Relayout();
}

void CWindowFrame::ShowPictureControls() {
  m_bPicture = true;
  m_Controls.Show(Control::LightSources, true);
}

void CWindowFrame::ShowHelpLine(bool show) {
  m_bHelpLine = show;
  m_Controls.Show(Control::HelpLine, show);
  Relayout();
}

void CWindowFrame::ShowCoordinateLine(bool show) {
  m_bCoordinates = show;
  show ? m_pCoordinates->show() : m_pCoordinates->hide();
  Relayout();
}

void CWindowFrame::ShowDebugZone(bool show) {
  m_Controls.ShowDebugZone(show);
  Relayout();
}

void CWindowFrame::ShowCounts(const CGrid& grid) {
  SetNumberOfCells(grid.Surface().Tree().LeafCount());
  SetNumberOfPoints(grid.Surface().ActivePointCount());
  SetNumberOfConstraints(grid.Constraints().ActiveCount());
}

void CWindowFrame::SetNumberIter(int n) {
  m_Controls.ReadOut(Control::Iterations).value(n);
  Console() << "CImageViewUI::SetNumberIter(" << n << ")\n";
}

void CWindowFrame::SetNumberOfConstraints(int n) { m_Controls.ReadOut(Control::ConstraintCount).value(n); }

void CWindowFrame::SetNumberOfCells(int n) { m_Controls.ReadOut(Control::CellCount).value(n); }

void CWindowFrame::SetNumberOfPoints(int n) { m_Controls.ReadOut(Control::PointCount).value(n); }

void CWindowFrame::ProcessEvents() { Fl::check(); }

void CWindowFrame::ShowHelp(HelpText::Index index) { m_pHelpLine->ShowHelp(index); }

void CWindowFrame::RestoreHelp() { m_pHelpLine->RestoreHelp(); }

void CWindowFrame::SetCurrentHelp(HelpText::Index index) { m_pHelpLine->SetCurrentHelp(index); }

void CWindowFrame::ShowMessage(const std::string& text) { m_pHelpLine->ShowMessage(text); }

void CWindowFrame::Tell(const std::string& text) {
  ShowMessage(text);
  Console() << text << '\n';
}

void CWindowFrame::TellSolverGaveUp() { Tell(FormatHelp(HelpText::kSolverGaveUp)); }

void CWindowFrame::TellSolverStopped() { Tell(FormatHelp(HelpText::kSolverStopped)); }

void CWindowFrame::ShowCurveType(CurveType type) {
  m_Controls.Button(Control::PositionDiscontinuity).value(type == CurveType::kPosition ? 1 : 0);
  m_Controls.Button(Control::NormalDiscontinuity).value(type == CurveType::kNormal ? 1 : 0);
  m_Controls.Button(Control::FairnessConstraint).value(type == CurveType::kFairness ? 1 : 0);
}

void CWindowFrame::RedrawImageView() { m_pImageView->redraw(); }

void CWindowFrame::ImageGridShown() { m_pMenu->SetChecked(MenuEntry::ImageGrid, true); }

void CWindowFrame::RedrawModelView() { m_pGridView->redraw(); }

void CWindowFrame::FocusImageView() { m_pImageView->take_focus(); }

bool CWindowFrame::MoveModelView(ViewMove move) {
  if (Fl::belowmouse() != m_pGridView) return false;
  m_pGridView->MoveView(move);
  return true;
}

void CWindowFrame::ShowPointerInside(bool inside) { m_Controls.Button(Control::PointerInside).value(inside ? 1 : 0); }

void CWindowFrame::ShowInfluence(double value) {
  m_Controls.ReadOut(Control::Influence).value(value);
  // It lies on top, and is to be drawn after what has changed below it.
  m_Controls.ReadOut(Control::Level).redraw();
}

void CWindowFrame::ShowNumber(int number, int levelCode) {
  m_Controls.ReadOut(Control::PointNumber).value(number);
  m_Controls.ReadOut(Control::Level).value(levelCode);
}
