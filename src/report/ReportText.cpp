#include "report/ReportText.h"

#include <array>
#include <utility>

#include "base/NumberText.h"
#include "constraints/CPtCstr.h"

namespace {

// Others are named up to so many.
constexpr std::size_t kMostNamed = 6;

std::string Number(double value, double unit) {
  constexpr int kShownDigits = 6;
  return RoundedText(value, kShownDigits, unit);
}

std::string Pair(double a, double b, double unit) { return '(' + Number(a, unit) + ", " + Number(b, unit) + ')'; }

bool IsHeight(const CConstraintLine& line) { return line.m_uKind == PtCstrKind::kPosition; }

std::string Target(const CConstraintLine& line, const std::array<double, 2>& values, double range) {
  return IsHeight(line) ? Number(values[0], range) : Pair(values[0], values[1], 1.0);
}

// Where both ask for a height it helps to know that they do so at one place.
std::string OtherText(const CConstraintReport& report, const CConstraintLine& line, std::size_t other) {
  const CConstraintLine& of = report.m_aLines[other];
  const bool same = IsHeight(line) && IsHeight(of) && line.m_fX == of.m_fX && line.m_fY == of.m_fY;
  return NameOf(of) + (same ? " at the same place" : "");
}

std::string StateOf(const CConstraintReport& report, const CConstraintLine& line) {
  std::string text = StateText(line);
  if (line.m_State == ConstraintState::Inactive) return "inactive: " + text;
  for (std::size_t k = 0; k < line.m_auOthers.size(); ++k) {
    text += k == 0 ? " " : ", ";
    if (k == kMostNamed) return text + "...";
    text += OtherText(report, line, line.m_auOthers[k]);
  }
  return text;
}

}  // namespace

std::string NameOf(const CConstraintLine& line) {
  const std::string kind = IsHeight(line) ? "height " : "slope ";
  return line.m_Curve.has_value() ? kind + "of curve " + std::to_string(*line.m_Curve)
                                  : kind + std::to_string(line.m_uNumber);
}

CReportTexts TextsOf(const CConstraintReport& report, std::size_t line) {
  const CConstraintLine& of = report.m_aLines[line];
  const bool active = of.m_State != ConstraintState::Inactive;
  constexpr double kPerCent = 100.0;
  return {.m_Name = NameOf(of),
          .m_Place = Pair(of.m_fX, of.m_fY, 0.0),
          .m_Wanted = Target(of, of.m_afWanted, report.m_fRange),
          .m_Kept = active || IsHeight(of) ? Target(of, of.m_afKept, report.m_fRange) : "",
          .m_Missed = active ? Number(of.m_fMissed, report.m_fRange) : "",
          .m_Share = active ? Number(kPerCent * of.m_fShare, 1.0) + " %" : "",
          .m_State = StateOf(report, of)};
}

std::string TextOf(const CFloatingRegion& region) {
  return "Region of " + std::to_string(region.m_uPoints) + (region.m_uPoints == 1 ? " point" : " points") + " from " +
         Pair(region.m_Box.x0, region.m_Box.y0, 0.0) + " to " + Pair(region.m_Box.x1, region.m_Box.y1, 0.0) + ": " +
         region.m_Missing;
}

std::string SummaryOf(const CConstraintReport& report) {
  constexpr std::array<std::pair<ConstraintState, const char*>, 6> kStates{
      {{ConstraintState::Kept, " kept"},
       {ConstraintState::NotYet, " not yet kept"},
       {ConstraintState::Missed, " not kept"},
       {ConstraintState::Contradicts, " contradicting"},
       {ConstraintState::Repeats, " repeating"},
       {ConstraintState::Inactive, " inactive"}}};
  const std::size_t count = report.m_aLines.size();
  std::string text = std::to_string(count) + (count == 1 ? " constraint" : " constraints");
  const char* separator = ": ";
  for (const auto& [state, name] : kStates) {
    std::size_t with = 0;
    for (const CConstraintLine& line : report.m_aLines) with += line.m_State == state ? 1 : 0;
    if (with > 0) text += std::exchange(separator, ", ") + std::to_string(with) + name;
  }
  if (!report.m_bSearchedAll) text += "; the search for contradictions was cut short";
  return text;
}
