#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "insight/RowRelations.h"

/// Rows that cannot all be kept.
struct CRowContradiction {
  CRowRelation m_Relation;
  double m_fGap = 0.0;  ///< what it makes of their targets, model units
};

/// What relations between rows come to with the targets that these have.
struct CJudgedRelations {
  std::vector<CRowContradiction> m_aContradictions;
  std::vector<std::size_t> m_auAgreeing;  ///< the others, by number: their last rows repeat what those before say
};

/// Which relations contradict: those whose targets disagree by more than `least`, and those that agree but share a
/// named row with one that does not. Of such, what both make when that row is taken out of them contradicts: of heights
/// a, b and a at one place, the third repeats the first and contradicts the second. So every row with a say in any
/// combination that contradicts is in one of those returned, as far as that says more than rounding.
///
/// Those that disagree by themselves come first, the largest gaps before the others; the rest follow in the order in
/// which they are reached from these.
CJudgedRelations JudgeRelations(std::span<const CRowRelation> relations, const CConstraintRows& rows, double least);
