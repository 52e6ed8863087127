#include "report/ConstraintReport.h"

#include <algorithm>
#include <cmath>
#include <numeric>
#include <span>
#include <utility>

#include "insight/Contradictions.h"
#include "model/CGrid.h"
#include "report/SurfaceHeights.h"
#include "solver/CConstraintRows.h"

namespace {

// Of the height range: what counts as kept, and by how much targets that ought to agree may differ.
constexpr double kKept = 1e-4;
constexpr double kAgrees = 1e-6;

// A surface that is flat but for rounding still has heights, of which this share is the least range that counts.
constexpr double kLeastRange = 1e-6;

double RangeOf(const CGrid& grid) {
  const auto [low, high] = DrawnRange(grid);
  const double range = std::max(high - low, kLeastRange * std::max(std::abs(low), std::abs(high)));
  if (range > 0.0 && std::isfinite(range)) return range;
  // At the very beginning there is nothing but what is asked for.
  double wanted = 0.0;
  for (const CPtCstr& c : grid.Constraints().Points()) {
    if (c.HasKind(PtCstrKind::kPosition)) wanted = std::max(wanted, std::abs(c.m_fZ));
  }
  return wanted > 0.0 && std::isfinite(wanted) ? wanted : 1.0;
}

// Makes one report.
class CReportMaker {
 public:
  explicit CReportMaker(const CGrid& grid);

  const CConstraintRows& Rows() const { return m_Rows; }
  CConstraintReport Report(const CRowRelations& relations);

 private:
  void AddLine(const CPtCstr& constraint, std::uint32_t kind, std::size_t number, std::optional<std::size_t> curve);
  void AddLines();
  void AssignRows();
  void TakeRow(std::size_t line, std::size_t slot, std::size_t row);
  void Judge(CConstraintLine& line) const;
  void TakeRelations(const CRowRelations& relations);
  void TakeContradictions(std::span<const CRowContradiction> contradictions);
  std::vector<std::size_t> LinesOf(const CRowRelation& relation) const;
  void Contradict(const std::vector<std::size_t>& lines, double gap);

  const CGrid& m_Grid;
  CConstraintRows m_Rows;
  std::vector<double> m_afValues;           ///< by row: what the surface has of it
  std::vector<std::size_t> m_auLineOfRow;   ///< by row
  std::vector<std::size_t> m_auRowsOfLine;  ///< by line: how many there are
  CConstraintReport m_Report;
};

void CReportMaker::AddLine(const CPtCstr& constraint, std::uint32_t kind, std::size_t number,
                           std::optional<std::size_t> curve) {
  if (!constraint.HasKind(kind)) return;
  CConstraintLine& line = m_Report.m_aLines.emplace_back();
  line.m_Curve = curve;
  line.m_uNumber = number;
  line.m_uKind = kind;
  line.m_fX = constraint.m_fX;
  line.m_fY = constraint.m_fY;
  if (kind == PtCstrKind::kPosition) {
    line.m_afWanted = {constraint.m_fZ, 0.0};
    line.m_afKept = {m_Grid.Constraints().HeightUnder(constraint), 0.0};
  } else {
    line.m_afWanted = {constraint.m_fP, constraint.m_fQ};
  }
  // Until a row turns up.
  line.m_State = ConstraintState::Inactive;
  line.m_Why = m_Grid.Constraints().WhyInactive(constraint);
}

void CReportMaker::AddLines() {
  const CConstraints& constraints = m_Grid.Constraints();
  for (const bool generated : {false, true}) {
    std::size_t number = 0;
    for (const CPtCstr& c : generated ? constraints.Generated() : constraints.Points()) {
      const std::optional<std::size_t> curve =
          generated ? std::optional(constraints.CurveOfGenerated(number)) : std::nullopt;
      AddLine(c, PtCstrKind::kPosition, number, curve);
      AddLine(c, PtCstrKind::kNormal, number, curve);
      ++number;
    }
  }
  m_auRowsOfLine.assign(m_Report.m_aLines.size(), 0);
}

void CReportMaker::TakeRow(std::size_t line, std::size_t slot, std::size_t row) {
  CConstraintLine& of = m_Report.m_aLines[line];
  m_auLineOfRow[row] = line;
  ++m_auRowsOfLine[line];
  of.m_afKept[slot] = m_afValues[row] / CConstraintRows::kWeight;
  of.m_fMissed = std::max(of.m_fMissed, std::abs(MissedHeight(m_Rows, row, m_afValues[row])));
  of.m_State = ConstraintState::Kept;
  of.m_Why = Inactivity::None;
}

// Rows are those of all heights, then two of each orientation, q before p.
void CReportMaker::AssignRows() {
  const CConstraints& constraints = m_Grid.Constraints();
  m_Rows.Add(std::array<const CPtCstrList*, 2>{&constraints.Points(), &constraints.Generated()},
             m_Grid.Surface().Tree(), m_Grid.Surface().Interpolation());
  m_afValues.resize(m_Rows.Count());
  m_auLineOfRow.resize(m_Rows.Count());
  m_Rows.Rows().Times(HeightsByScan(m_Grid), m_afValues);
  std::size_t row = 0;
  for (const std::uint32_t kind : {PtCstrKind::kPosition, PtCstrKind::kNormal}) {
    std::size_t line = 0;
    auto built = m_Rows.BuiltKinds().begin();
    for (const CPtCstrList* list : {&constraints.Points(), &constraints.Generated()}) {
      for (const CPtCstr& c : *list) {
        const std::uint32_t kinds = *built++;
        for (const std::uint32_t of : {PtCstrKind::kPosition, PtCstrKind::kNormal}) {
          if (of == kind && (kinds & kind) != 0) {
            if (kind == PtCstrKind::kNormal) TakeRow(line, 1, row++);
            TakeRow(line, 0, row++);
          }
          if (c.HasKind(of)) ++line;
        }
      }
    }
  }
}

void CReportMaker::Judge(CConstraintLine& line) const {
  line.m_fShare = line.m_fMissed / m_Report.m_fRange;
  if (line.m_State == ConstraintState::Inactive || line.m_fShare <= kKept) return;
  line.m_State = m_Grid.Run().IsRunning() ? ConstraintState::NotYet : ConstraintState::Missed;
}

std::vector<std::size_t> CReportMaker::LinesOf(const CRowRelation& relation) const {
  std::vector<std::size_t> lines;
  for (const std::uint32_t row : relation.NamedRows()) lines.push_back(m_auLineOfRow[row]);
  std::ranges::sort(lines);
  lines.erase(std::unique(lines.begin(), lines.end()), lines.end());
  return lines;
}

void AddOthers(CConstraintLine& line, const std::vector<std::size_t>& lines) {
  line.m_auOthers.insert(line.m_auOthers.end(), lines.begin(), lines.end());
}

// Each once, and without the line itself.
void SortOthers(std::vector<CConstraintLine>& lines) {
  for (std::size_t k = 0; k < lines.size(); ++k) {
    std::vector<std::size_t>& others = lines[k].m_auOthers;
    std::ranges::sort(others);
    others.erase(std::unique(others.begin(), others.end()), others.end());
    std::erase(others, k);
  }
}

// Both slopes of an orientation may contradict the same lines.
void CReportMaker::Contradict(const std::vector<std::size_t>& lines, double gap) {
  const auto known = std::ranges::find(m_Report.m_aContradictions, lines, &CContradiction::m_auLines);
  if (known != m_Report.m_aContradictions.end()) {
    known->m_fGap = std::max(known->m_fGap, gap);
    return;
  }
  m_Report.m_aContradictions.push_back({lines, gap});
}

void CReportMaker::TakeContradictions(std::span<const CRowContradiction> contradictions) {
  for (const CRowContradiction& of : contradictions) Contradict(LinesOf(of.m_Relation), std::abs(of.m_fGap));
  for (const CContradiction& contradiction : m_Report.m_aContradictions) {
    for (const std::size_t line : contradiction.m_auLines) {
      m_Report.m_aLines[line].m_State = ConstraintState::Contradicts;
      AddOthers(m_Report.m_aLines[line], contradiction.m_auLines);
    }
  }
}

// A line repeats others where each of its rows does, and none contradicts.
void CReportMaker::TakeRelations(const CRowRelations& relations) {
  m_Report.m_bSearchedAll = relations.m_bWhole;
  const CJudgedRelations judged = JudgeRelations(relations.m_aRelations, m_Rows, kAgrees * m_Report.m_fRange);
  TakeContradictions(judged.m_aContradictions);
  std::vector<std::size_t> repeated(m_Report.m_aLines.size(), 0);
  std::vector<std::pair<std::size_t, std::vector<std::size_t>>> repetitions;
  for (const std::size_t k : judged.m_auAgreeing) {
    const CRowRelation& relation = relations.m_aRelations[k];
    const std::size_t last = m_auLineOfRow[relation.m_aFactors.back().first];
    std::vector<std::size_t> lines = LinesOf(relation);
    // A row that has no say follows from the others only as far as rounding is believed.
    if (!std::ranges::binary_search(lines, last)) continue;
    ++repeated[last];
    repetitions.emplace_back(last, std::move(lines));
  }
  for (const auto& [line, lines] : repetitions) {
    CConstraintLine& of = m_Report.m_aLines[line];
    if (of.m_State == ConstraintState::Contradicts || repeated[line] < m_auRowsOfLine[line]) continue;
    of.m_State = ConstraintState::Repeats;
    AddOthers(of, lines);
  }
  SortOthers(m_Report.m_aLines);
}

CReportMaker::CReportMaker(const CGrid& grid) : m_Grid(grid) {
  m_Report.m_fRange = RangeOf(grid);
  AddLines();
  AssignRows();
  for (CConstraintLine& line : m_Report.m_aLines) Judge(line);
}

CConstraintReport CReportMaker::Report(const CRowRelations& relations) {
  TakeRelations(relations);
  return std::move(m_Report);
}

}  // namespace

std::vector<std::size_t> CConstraintReport::ByMissed() const {
  std::vector<std::size_t> order(m_aLines.size());
  std::iota(order.begin(), order.end(), std::size_t{0});
  std::ranges::stable_sort(
      order, [this](std::size_t a, std::size_t b) { return m_aLines[a].m_fMissed > m_aLines[b].m_fMissed; });
  return order;
}

void CConstraintReporter::SearchIn(const CConstraintRows& rows) {
  std::vector<double> spans(rows.Count());
  for (std::size_t j = 0; j < spans.size(); ++j) spans[j] = rows.Span(j);
  if (m_iSearches > 0 && spans == m_afSpans && rows.Rows() == m_Rows) return;
  m_Relations = FindRowRelations(rows, m_uMostProducts);
  m_Rows = rows.Rows();
  m_afSpans = std::move(spans);
  ++m_iSearches;
}

CConstraintReport CConstraintReporter::Report(const CGrid& grid) {
  CReportMaker maker(grid);
  SearchIn(maker.Rows());
  return maker.Report(m_Relations);
}

CConstraintReport ReportOnConstraints(const CGrid& grid) { return CConstraintReporter().Report(grid); }

std::string StateText(const CConstraintLine& line) {
  switch (line.m_State) {
    case ConstraintState::Kept:
      return "kept";
    case ConstraintState::NotYet:
      return "not yet";
    case ConstraintState::Missed:
      return "not kept";
    case ConstraintState::Contradicts:
      return "contradicts";
    case ConstraintState::Repeats:
      return "repeats";
    case ConstraintState::Inactive:
      return InactivityText(line.m_Why);
  }
  return {};
}
