#include "batch/BatchReport.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <ostream>
#include <string>
#include <utility>
#include <vector>

#include <nlohmann/json.hpp>

#include "batch/CFindings.h"
#include "model/CGrid.h"
#include "reference/StraightFit.h"
#include "report/SurfaceHeights.h"

namespace {

constexpr const char* kInactive = "inactive_constraints";
constexpr const char* kContradictions = "contradictions";
constexpr const char* kFloating = "floating_regions";

// What the surface minimises where it follows a depth map.
double ReferenceEnergy(const CGrid& grid) { return grid.Solver().RestEnergy(HeightsByScan(grid)); }

nlohmann::ordered_json ReferenceOf(const CGrid& grid) {
  const CGridReference& reference = grid.Reference();
  const CReferenceFit& fit = reference.Fitted();
  const CDepthReading& reading = reference.Reading();
  nlohmann::ordered_json json;
  json["strength"] = reference.Value().m_Settings.m_fStrength;
  json["response"] = fit.m_bBent ? "bent" : "straight";
  json["fitted"] = fit.m_bFitted;
  json["near_is_bright"] = fit.m_bNearIsBright;
  const CReferenceFit straight = StraightFit(grid.Constraints().Points(), grid.Surface().Lattice().Extent(), reading,
                                             reference.Value().m_Settings);
  json["scale"] = straight.Scale(reading);
  json["offset"] = straight.OffsetAtZero(reading);
  json["heights"] = fit.m_iHeights;
  json["misfit_rms"] = fit.m_fRms;
  json["misfit_worst"] = fit.m_fWorst;
  if (fit.m_iWorst >= 0) json["worst_constraint"] = fit.m_iWorst;
  return json;
}

// In the constraints' own units: heights and slopes.
double LargestResidual(const CGrid& grid) {
  const CConstraintRows& constraints = grid.Solver().System().Constraints();
  std::vector<double> reached(constraints.Count());
  constraints.Rows().Times(HeightsByScan(grid), reached);
  double largest = 0.0;
  for (std::size_t k = 0; k < reached.size(); ++k)
    largest = std::max(largest, std::abs(reached[k] - constraints.Targets()[k]) / CConstraintRows::kWeight);
  return largest;
}

nlohmann::ordered_json InactiveConstraints(const CGrid& grid) {
  nlohmann::ordered_json inactive = nlohmann::ordered_json::array();
  int index = 0;
  for (const CPtCstr& constraint : grid.Constraints().Points()) {
    for (const auto& [kind, name] : {std::pair(PtCstrKind::kPosition, "position"), {PtCstrKind::kNormal, "normal"}}) {
      if ((constraint.m_uIdle & kind) == 0) continue;
      inactive.push_back(
          {{"index", index}, {"kind", name}, {"reason", InactivityText(grid.Constraints().WhyInactive(constraint))}});
    }
    ++index;
  }
  return inactive;
}

const char* NameOf(StopReason reason) {
  switch (reason) {
    case StopReason::Converged:
      return "converged";
    case StopReason::GaveUp:
      return "gave up";
    case StopReason::Bound:
      return "bound";
    case StopReason::Time:
      return "time";
  }
  return "";
}

nlohmann::ordered_json ReportOf(const CGrid& grid, const CBatchResult& result, const CFindings& findings) {
  nlohmann::ordered_json report;
  report["points"] = grid.Surface().ActivePointCount();
  report["cells"] = grid.Surface().Tree().LeafCount();
  report["constraints"] = grid.Constraints().Points().size();
  report["curves"] = grid.Constraints().Curves().size();
  report["iterations"] = result.m_iIterations;
  report["seconds"] = {
      {"load", result.m_Seconds.m_fLoad}, {"solve", result.m_Seconds.m_fSolve}, {"write", result.m_Seconds.m_fWrite}};
  report["energy"] = EnergyOf(grid);
  const bool follows = grid.Reference().Value().IsActive();
  if (follows) report["reference_energy"] = ReferenceEnergy(grid);
  report["largest_constraint_residual"] = LargestResidual(grid);
  const CHeightRange heights = DrawnRange(grid);
  report["z_range"] = {heights.m_fLow, heights.m_fHigh};
  report["converged"] = result.m_Stopped == StopReason::Converged;
  report["stopped"] = NameOf(result.m_Stopped);
  report["damaged"] = result.m_bDamaged;
  if (follows) report["reference"] = ReferenceOf(grid);
  if (result.m_iSuggestedTears > 0) report["suggested_tears"] = result.m_iSuggestedTears;
  report[kInactive] = InactiveConstraints(grid);
  report[kContradictions] = ContradictionsOf(findings);
  if (!findings.m_Constraints.m_bSearchedAll) report["contradictions_complete"] = false;
  report[kFloating] = FloatingRegionsOf(findings);
  return report;
}

void PrintInactive(std::ostream& out, const nlohmann::ordered_json& inactive) {
  out << "inactive constraints: " << inactive.size() << '\n';
  for (const auto& entry : inactive)
    out << "inactive constraint " << entry["index"] << ": " << entry["kind"].get<std::string>() << ' '
        << entry["reason"].get<std::string>() << '\n';
}

bool IsNonFinite(const nlohmann::ordered_json& value) {
  if (value.is_number_float()) return !std::isfinite(value.get<double>());
  return value.is_structured() && std::ranges::any_of(value, IsNonFinite);
}

// JSON has no word for numbers beyond the finite ones: such a field is named instead.
nlohmann::ordered_json WithoutNonFinite(const nlohmann::ordered_json& report) {
  nlohmann::ordered_json finite;
  nlohmann::ordered_json named = nlohmann::ordered_json::array();
  for (const auto& [name, value] : report.items()) {
    if (IsNonFinite(value)) {
      named.push_back(name);
    } else {
      finite[name] = value;
    }
  }
  if (!named.empty()) finite["non_finite"] = named;
  return finite;
}

// "z range: 1.5 to 3", or for words "non finite: energy, z range".
void PrintArray(std::ostream& out, const nlohmann::ordered_json& values) {
  if (values.front().is_number()) {
    out << values.front().dump() << " to " << values.back().dump() << '\n';
    return;
  }
  const char* separator = "";
  for (const auto& value : values) out << std::exchange(separator, ", ") << value.get<std::string>();
  out << '\n';
}

// "name: value" lines; the names of parts follow that of the whole, and the words of a name stand apart.
void PrintText(std::ostream& out, const std::string& name, const nlohmann::ordered_json& value) {
  if (value.is_object()) {
    const std::string whole = name.empty() ? name : name + ' ';
    for (const auto& [part, partValue] : value.items()) PrintText(out, std::string(whole).append(part), partValue);
    return;
  }
  if (name == kInactive) return PrintInactive(out, value);
  if (name == kContradictions) return PrintContradictions(out, value);
  if (name == kFloating) return PrintFloatingRegions(out, value);
  std::string words = name;
  std::ranges::replace(words, '_', ' ');
  out << words << ": ";
  if (value.is_array()) {
    PrintArray(out, value);
  } else {
    out << (value.is_string() ? value.get<std::string>() : value.dump()) << '\n';
  }
}

}  // namespace

std::string InactiveSummary(const CGrid& grid) {
  std::array<int, 4> counts{};
  for (const CPtCstr& constraint : grid.Constraints().Points())
    ++counts[static_cast<std::size_t>(grid.Constraints().WhyInactive(constraint))];
  std::string reasons;
  int all = 0;
  for (const Inactivity reason : {Inactivity::InTear, Inactivity::OnBorder, Inactivity::Outside}) {
    const int count = counts[static_cast<std::size_t>(reason)];
    if (count == 0) continue;
    all += count;
    reasons += (reasons.empty() ? "" : ", ") + std::to_string(count) + ' ' + InactivityText(reason);
  }
  if (all == 0) return {};
  return "Inactive constraints: " + std::to_string(all) + " of " + std::to_string(grid.Constraints().Points().size()) +
         " (" + reasons + ").";
}

void PrintReport(std::ostream& out, CBatchOptions::Report form, const CGrid& grid, const CBatchResult& result,
                 const CFindings& findings) {
  if (form == CBatchOptions::Report::None) return;
  const nlohmann::ordered_json report = WithoutNonFinite(ReportOf(grid, result, findings));
  if (form == CBatchOptions::Report::Json) {
    out << report.dump(2) << '\n';
  } else {
    PrintText(out, "", report);
  }
}
