#include "ui/report/CReportTable.h"

#include <algorithm>
#include <array>
#include <functional>
#include <numeric>
#include <string>
#include <utility>

#include <FL/Fl.H>
#include <FL/fl_draw.H>

#include "ui/seams/UiScale.h"

namespace {

struct CColumn {
  const char* m_pTitle;
  int m_iWidth;
  std::string CReportTexts::*m_pText;
};

// The last one has the rest.
constexpr std::array<CColumn, 7> kColumns{{{"constraint", 120, &CReportTexts::m_Name},
                                           {"place", 150, &CReportTexts::m_Place},
                                           {"wanted", 130, &CReportTexts::m_Wanted},
                                           {"kept", 130, &CReportTexts::m_Kept},
                                           {"missed by", 90, &CReportTexts::m_Missed},
                                           {"of range", 80, &CReportTexts::m_Share},
                                           {"state", 180, &CReportTexts::m_State}}};
constexpr int kRowHeight = 20;
constexpr int kTextSize = 12;

int Scaled(int length) { return static_cast<int>(length * UiScale()); }

Fl_Color ColourOf(ConstraintState state) {
  switch (state) {
    case ConstraintState::Contradicts:
    case ConstraintState::Missed:
      return FL_RED;
    case ConstraintState::Inactive:
      return fl_inactive(FL_FOREGROUND_COLOR);
    default:
      return FL_FOREGROUND_COLOR;
  }
}

}  // namespace

CReportTable::CReportTable(int x, int y, int w, int h, std::function<void(const CConstraintLine& line)> chosen)
    : Fl_Table_Row(x, y, w, h), m_Chosen(std::move(chosen)) {
  type(SELECT_NONE);
  cols(static_cast<int>(kColumns.size()));
  col_header(1);
  col_resize(1);
  col_header_height(Scaled(kRowHeight + 2));
  end();
  FitColumns();
}

void CReportTable::FitColumns() {
  int left = tiw;
  for (std::size_t k = 0; k + 1 < kColumns.size(); ++k) {
    col_width(static_cast<int>(k), Scaled(kColumns[k].m_iWidth));
    left -= Scaled(kColumns[k].m_iWidth);
  }
  col_width(cols() - 1, std::max(left, Scaled(kColumns.back().m_iWidth)));
}

void CReportTable::resize(int x, int y, int w, int h) {
  Fl_Table_Row::resize(x, y, w, h);
  FitColumns();
}

void CReportTable::Show(CConstraintReport report) {
  m_Report = std::move(report);
  Sort();
  m_iDrawnRow = -1;
  if (rows() != static_cast<int>(m_auOrder.size())) {
    const int top = row_position();
    rows(static_cast<int>(m_auOrder.size()));
    row_height_all(Scaled(kRowHeight));
    row_position(std::min(top, rows()));
    FitColumns();
  }
  redraw();
}

// What rounding leaves of a miss is none: rows that are kept stay in their order while the solver runs.
void CReportTable::Sort() {
  constexpr double kNoise = 1e-9;
  const auto missed = [this](std::size_t line) {
    const double share = m_Report.m_aLines[line].m_fShare;
    return share < kNoise ? 0.0 : share;
  };
  m_auOrder.resize(m_Report.m_aLines.size());
  std::iota(m_auOrder.begin(), m_auOrder.end(), std::size_t{0});
  std::ranges::stable_sort(m_auOrder, std::greater<>(), missed);
}

bool CReportTable::IsChosen(const CConstraintLine& line) const {
  return m_LastChosen.has_value() && m_LastChosen->m_Curve == line.m_Curve && m_LastChosen->m_uKind == line.m_uKind &&
         m_LastChosen->m_uNumber == line.m_uNumber;
}

int CReportTable::ChosenRow() const {
  const auto found = std::ranges::find_if(m_auOrder, [this](std::size_t k) { return IsChosen(m_Report.m_aLines[k]); });
  return found == m_auOrder.end() ? -1 : static_cast<int>(found - m_auOrder.begin());
}

void CReportTable::Choose(int row) {
  if (row < 0 || row >= rows()) return;
  m_LastChosen = m_Report.m_aLines[m_auOrder[static_cast<std::size_t>(row)]];
  redraw();
  m_Chosen(*m_LastChosen);
}

int CReportTable::handle(int event) {
  if (event == FL_FOCUS || event == FL_UNFOCUS) return 1;
  if (event == FL_KEYBOARD && (Fl::event_key() == FL_Up || Fl::event_key() == FL_Down)) {
    const int row = std::clamp(ChosenRow() + (Fl::event_key() == FL_Up ? -1 : 1), 0, std::max(rows() - 1, 0));
    Choose(row);
    int top = 0;
    int left = 0;
    int bottom = 0;
    int right = 0;
    visible_cells(top, bottom, left, right);
    if (row <= top || row >= bottom) row_position(std::max(row - (bottom - top) / 2, 0));
    return 1;
  }
  const int used = Fl_Table_Row::handle(event);
  if (event != FL_PUSH || Fl::event_button() != FL_LEFT_MOUSE) return used;
  int row = -1;
  int column = -1;
  ResizeFlag edge = RESIZE_NONE;
  if (cursor2rowcol(row, column, edge) == CONTEXT_CELL) {
    take_focus();
    Choose(row);
  }
  return 1;
}

void CReportTable::DrawText(const char* text, Fl_Color colour, bool heading, int x, int y, int w, int h) const {
  constexpr int kGap = 4;
  fl_push_clip(x, y, w, h);
  fl_font(heading ? FL_HELVETICA_BOLD : FL_HELVETICA, Scaled(kTextSize));
  fl_color(colour);
  fl_draw(text, x + kGap, y, w - 2 * kGap, h, FL_ALIGN_LEFT, nullptr, 0);
  fl_pop_clip();
}

void CReportTable::draw_cell(TableContext context, int row, int column, int x, int y, int w, int h) {
  const CColumn& of = kColumns[static_cast<std::size_t>(std::clamp(column, 0, static_cast<int>(kColumns.size()) - 1))];
  if (context == CONTEXT_COL_HEADER) {
    fl_draw_box(FL_THIN_UP_BOX, x, y, w, h, FL_BACKGROUND_COLOR);
    return DrawText(of.m_pTitle, FL_FOREGROUND_COLOR, true, x, y, w, h);
  }
  if (context != CONTEXT_CELL || row >= static_cast<int>(m_auOrder.size())) return;
  if (row != m_iDrawnRow) {
    m_Drawn = RowTexts(row);
    m_iDrawnRow = row;
  }
  const CConstraintLine& line = m_Report.m_aLines[m_auOrder[static_cast<std::size_t>(row)]];
  const bool chosen = IsChosen(line);
  const Fl_Color paper = chosen ? FL_SELECTION_COLOR : FL_BACKGROUND2_COLOR;
  fl_rectf(x, y, w, h, paper);
  fl_color(FL_LIGHT2);
  fl_line(x, y + h - 1, x + w - 1, y + h - 1);
  DrawText((m_Drawn.*of.m_pText).c_str(), chosen ? fl_contrast(FL_FOREGROUND_COLOR, paper) : ColourOf(line.m_State),
           false, x, y, w, h);
}
