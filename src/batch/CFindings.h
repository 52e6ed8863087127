#pragma once

#include <iosfwd>
#include <string>
#include <vector>

#include <nlohmann/json_fwd.hpp>

#include "report/ConstraintReport.h"
#include "report/FloatingRegions.h"

class CGrid;

/// What is wrong with the constraints of a model as it is: those that contradict each other, and regions whose heights
/// nothing settles.
struct CFindings {
  /// As the system was built last, on the surface as it is.
  explicit CFindings(const CGrid& grid);

  /// Whether nothing is wrong, as far as all of it has been looked at.
  bool IsEmpty() const {
    return m_Constraints.m_aContradictions.empty() && m_Constraints.m_bSearchedAll && m_aFloating.empty();
  }

  CConstraintReport m_Constraints;
  std::vector<CFloatingRegion> m_aFloating;
};

/// The contradictions and the floating regions as the report has them.
nlohmann::ordered_json ContradictionsOf(const CFindings& findings);
nlohmann::ordered_json FloatingRegionsOf(const CFindings& findings);

/// The same as lines of text, from what the two above have made.
void PrintContradictions(std::ostream& out, const nlohmann::ordered_json& contradictions);
void PrintFloatingRegions(std::ostream& out, const nlohmann::ordered_json& regions);

/// A sentence for each of the two, where there are any, and one where not all contradictions may be known.
std::vector<std::string> SummariesOf(const CFindings& findings);
