#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <vector>

#include <FL/Fl_Table_Row.H>

#include "report/ConstraintReport.h"
#include "report/ReportText.h"

/// The constraints of a model in a table, those that miss most first. Only the rows in sight are written.
class CReportTable : public Fl_Table_Row {
 public:
  /// `chosen` is called with the line that was clicked, or come to with the up and down keys.
  CReportTable(int x, int y, int w, int h, std::function<void(const CConstraintLine& line)> chosen);

  /// The line that was chosen last stays marked where it goes.
  void Show(CConstraintReport report);
  const CConstraintReport& Report() const { return m_Report; }
  /// The texts of a row, from 0, as they are shown.
  CReportTexts RowTexts(int row) const { return TextsOf(m_Report, m_auOrder[static_cast<std::size_t>(row)]); }

  int handle(int event) override;
  void resize(int x, int y, int w, int h) override;

 protected:
  void draw_cell(TableContext context, int row, int column, int x, int y, int w, int h) override;

 private:
  void Sort();
  void Choose(int row);
  bool IsChosen(const CConstraintLine& line) const;
  int ChosenRow() const;
  void FitColumns();
  void DrawText(const char* text, Fl_Color colour, bool heading, int x, int y, int w, int h) const;

  std::function<void(const CConstraintLine&)> m_Chosen;
  CConstraintReport m_Report;
  std::vector<std::size_t> m_auOrder;  ///< lines by row
  std::optional<CConstraintLine> m_LastChosen;
  int m_iDrawnRow = -1;  ///< whose texts these are
  CReportTexts m_Drawn;
};
