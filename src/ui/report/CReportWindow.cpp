#include "ui/report/CReportWindow.h"

#include <cstddef>
#include <utility>

#include <FL/Fl_Box.H>
#include <FL/Fl_Hold_Browser.H>

#include "report/ReportText.h"
#include "ui/drawing/DialogPlacement.h"
#include "ui/drawing/ScaleWidgets.h"
#include "ui/report/CReportTable.h"
#include "ui/report/ReportCommands.h"

namespace {

constexpr int kWidth = 920;
constexpr int kHeight = 320;
constexpr int kLineHeight = 24;
constexpr int kRegionsHeight = 70;

Fl_Box* AddText(int y, const char* text) {
  auto* box = new Fl_Box(8, y, kWidth - 16, kLineHeight, text);
  box->align(FL_ALIGN_LEFT | FL_ALIGN_INSIDE | FL_ALIGN_CLIP);
  box->labelfont(FL_HELVETICA_BOLD);
  box->labelsize(12);
  return box;
}

}  // namespace

CReportWindow::CReportWindow(ReportCommands& commands, const Fl_Window& mainWindow, std::function<void()> closed)
    : Fl_Double_Window(kWidth, kHeight, "Constraint report"),
      m_Commands(commands),
      m_MainWindow(mainWindow),
      m_Closed(std::move(closed)) {
  constexpr int kTableTop = 4 + kLineHeight;
  constexpr int kRegionsTop = kHeight - kRegionsHeight - 8;
  m_pSummary = AddText(4, "");
  m_pTable = new CReportTable(8, kTableTop, kWidth - 16, kRegionsTop - kLineHeight - kTableTop - 4,
                              [this](const CConstraintLine& line) { m_Commands.ShowConstraint(line); });
  AddText(kRegionsTop - kLineHeight, "Regions whose heights nothing settles");
  m_pRegions = new Fl_Hold_Browser(8, kRegionsTop, kWidth - 16, kRegionsHeight);
  m_pRegions->textsize(12);
  // Texts are plain.
  m_pRegions->format_char(0);
  m_pRegions->callback(cb_Region, this);
  end();
  resizable(m_pTable);
  ScaleWidgets(*this);
  size_range(w() / 2, h() * 3 / 4);
  set_non_modal();
}

void CReportWindow::Open() { OpenBeside(*this, m_MainWindow); }

void CReportWindow::hide() {
  const bool wasShown = shown() != 0;
  Fl_Double_Window::hide();
  if (wasShown) m_Closed();
}

void CReportWindow::ShowReport(CConstraintReport report) {
  const std::string summary = SummaryOf(report);
  m_pTable->Show(std::move(report));
  if (summary == m_Summary) return;
  m_Summary = summary;
  m_pSummary->label(m_Summary.c_str());
}

void CReportWindow::ShowRegions(std::vector<CFloatingRegion> regions) {
  m_aRegions = std::move(regions);
  m_pRegions->clear();
  for (const CFloatingRegion& region : m_aRegions) m_pRegions->add(TextOf(region).c_str());
  if (m_aRegions.empty()) m_pRegions->add("none");
}

void CReportWindow::cb_Region(Fl_Widget* /*widget*/, void* window) {
  const auto& self = *static_cast<CReportWindow*>(window);
  const auto number = static_cast<std::size_t>(self.m_pRegions->value());
  if (number >= 1 && number <= self.m_aRegions.size()) self.m_Commands.ShowRegion(self.m_aRegions[number - 1]);
}
