#pragma once

#include <functional>
#include <string>
#include <vector>

#include <FL/Fl_Double_Window.H>

#include "report/ConstraintReport.h"
#include "report/FloatingRegions.h"

class CReportTable;
class Fl_Box;
class Fl_Hold_Browser;
class ReportCommands;

/// "Constraint report": what the surface makes of each constraint, and which regions float. It shows what it is given.
class CReportWindow : public Fl_Double_Window {
 public:
  /// Hidden. All must outlive the window; `closed` is called once it has closed, by whatever means.
  CReportWindow(ReportCommands& commands, const Fl_Window& mainWindow, std::function<void()> closed);

  /// Shows the window.
  void Open();
  void hide() override;

  /// What it is to show from now on.
  void ShowReport(CConstraintReport report);
  void ShowRegions(std::vector<CFloatingRegion> regions);
  /// Its table, as it is.
  const CReportTable& Table() const { return *m_pTable; }

 private:
  static void cb_Region(Fl_Widget* widget, void* window);

  ReportCommands& m_Commands;
  const Fl_Window& m_MainWindow;
  std::function<void()> m_Closed;
  std::string m_Summary;
  std::vector<CFloatingRegion> m_aRegions;

  Fl_Box* m_pSummary = nullptr;
  CReportTable* m_pTable = nullptr;
  Fl_Hold_Browser* m_pRegions = nullptr;
};
