#include "batch/CFindings.h"

#include <cstddef>
#include <map>
#include <ostream>
#include <utility>

#include <nlohmann/json.hpp>

#include "constraints/CPtCstr.h"

namespace {

// A sentence names so many contradictions at most.
constexpr std::size_t kMostNamed = 5;

const char* KindOf(const CConstraintLine& line) {
  return line.m_uKind == PtCstrKind::kPosition ? "position" : "normal";
}

std::string NameOf(const CConstraintLine& line) {
  return line.m_Curve ? "one of curve " + std::to_string(*line.m_Curve) : std::to_string(line.m_uNumber);
}

std::string TextOf(const nlohmann::ordered_json& line) {
  const std::string name =
      line.contains("curve") ? "one of curve " + line["curve"].dump() : "constraint " + line["index"].dump();
  return name + ' ' + line["kind"].get<std::string>() + " misses " + line["missed"].dump();
}

// "3 and 4 and 5"
std::string NamesIn(const CFindings& findings, const CContradiction& contradiction) {
  std::string names;
  for (const std::size_t line : contradiction.m_auLines)
    names += (names.empty() ? "" : " and ") + NameOf(findings.m_Constraints.m_aLines[line]);
  return names;
}

}  // namespace

CFindings::CFindings(const CGrid& grid)
    : m_Constraints(ReportOnConstraints(grid)), m_aFloating(FloatingRegions(FreedomOf(grid))) {}

nlohmann::ordered_json ContradictionsOf(const CFindings& findings) {
  nlohmann::ordered_json contradictions = nlohmann::ordered_json::array();
  for (const CContradiction& contradiction : findings.m_Constraints.m_aContradictions) {
    nlohmann::ordered_json constraints = nlohmann::ordered_json::array();
    for (const std::size_t number : contradiction.m_auLines) {
      const CConstraintLine& line = findings.m_Constraints.m_aLines[number];
      nlohmann::ordered_json named;
      if (line.m_Curve) {
        named["curve"] = *line.m_Curve;
      } else {
        named["index"] = line.m_uNumber;
      }
      named["kind"] = KindOf(line);
      named["missed"] = line.m_fMissed;
      constraints.push_back(named);
    }
    contradictions.push_back({{"gap", contradiction.m_fGap}, {"constraints", constraints}});
  }
  return contradictions;
}

nlohmann::ordered_json FloatingRegionsOf(const CFindings& findings) {
  nlohmann::ordered_json regions = nlohmann::ordered_json::array();
  for (const CFloatingRegion& region : findings.m_aFloating) {
    nlohmann::ordered_json entry;
    entry["free"] = region.m_uFree;
    entry["points"] = region.m_uPoints;
    entry["box"] = {{"x", {region.m_Box.x0, region.m_Box.x1}}, {"y", {region.m_Box.y0, region.m_Box.y1}}};
    entry["missing"] = region.m_Missing;
    regions.push_back(entry);
  }
  return regions;
}

void PrintContradictions(std::ostream& out, const nlohmann::ordered_json& contradictions) {
  out << "contradictions: " << contradictions.size() << '\n';
  for (std::size_t k = 0; k < contradictions.size(); ++k) {
    out << "contradiction " << k << ": ";
    const char* separator = "";
    for (const auto& line : contradictions[k]["constraints"]) out << std::exchange(separator, ", ") << TextOf(line);
    out << '\n';
  }
}

void PrintFloatingRegions(std::ostream& out, const nlohmann::ordered_json& regions) {
  out << "floating regions: " << regions.size() << '\n';
  for (std::size_t k = 0; k < regions.size(); ++k) {
    const auto& region = regions[k];
    const auto& box = region["box"];
    out << "floating region " << k << ": " << region["points"] << " points from (" << box["x"][0] << ", " << box["y"][0]
        << ") to (" << box["x"][1] << ", " << box["y"][1] << "), " << region["missing"].get<std::string>() << '\n';
  }
}

std::vector<std::string> SummariesOf(const CFindings& findings) {
  std::vector<std::string> summaries;
  const std::vector<CContradiction>& contradictions = findings.m_Constraints.m_aContradictions;
  if (!contradictions.empty()) {
    std::string names;
    for (std::size_t k = 0; k < contradictions.size() && k < kMostNamed; ++k)
      names += (k == 0 ? "" : ", ") + NamesIn(findings, contradictions[k]);
    if (contradictions.size() > kMostNamed) names += ", ...";
    summaries.push_back("Constraints that contradict each other: " + names + ".");
  }
  if (!findings.m_Constraints.m_bSearchedAll)
    summaries.emplace_back("The search for contradictions was cut short: constraints lie too close together.");
  if (findings.m_aFloating.empty()) return summaries;
  std::map<std::string, int> missing;
  for (const CFloatingRegion& region : findings.m_aFloating) ++missing[region.m_Missing];
  std::string counts;
  for (const auto& [text, count] : missing) {
    counts += (counts.empty() ? "" : "; ") + text;
    if (count > 1) counts += " each of " + std::to_string(count);
  }
  summaries.push_back("Floating regions: " + std::to_string(findings.m_aFloating.size()) + " (" + counts + ").");
  return summaries;
}
