#pragma once

#include <string>

#include "report/ConstraintReport.h"
#include "report/FloatingRegions.h"

/// What users read in one line about a constraint.
struct CReportTexts {
  std::string m_Name;    ///< "height 3", "slope of curve 0"
  std::string m_Place;   ///< "(20, 30)"
  std::string m_Wanted;  ///< a height, or both slopes
  std::string m_Kept;    ///< empty where the constraint has no row
  std::string m_Missed;  ///< model units
  std::string m_Share;   ///< of the height range, per cent
  std::string m_State;   ///< with the others that it contradicts or repeats, the first few of them
};

/// Those of a line of the report, by its number there.
CReportTexts TextsOf(const CConstraintReport& report, std::size_t line);

/// "height 3": constraints are numbered as in a file, from 0.
std::string NameOf(const CConstraintLine& line);

/// "Region of 1240 points from (30, 20) to (70, 60): needs 1 height"
std::string TextOf(const CFloatingRegion& region);

/// "12 constraints: 9 kept, 2 contradicting, 1 inactive", with a word where not all contradictions may be known
std::string SummaryOf(const CConstraintReport& report);
