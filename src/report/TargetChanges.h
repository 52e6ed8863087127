#pragma once

#include <vector>

#include "constraints/CCntrCtrl.h"

class CGrid;
struct CPtCstr;

/// Which number of a point constraint is to be larger by 1.
enum class ConstraintPart {
  Height,  ///< z, in model units
  SlopeX,  ///< p
  SlopeY,  ///< q
};

/// By how much the targets of the rows, as the solver has them, would change with one unit more of that part of the
/// user's constraint; all 0 where it has no row for it, and nothing where an edit waits for the next tick. `constraint`
/// is a record of the grid's list.
std::vector<double> ChangeOfTargets(const CGrid& grid, const CPtCstr& constraint, ConstraintPart part);

/// The same with one degree more of the orientation of the constraints that a curve generates on its two sides, or one
/// degree less, taken the other way, where it has come to its limit. All 0 where it generates none.
std::vector<double> ChangeOfTargets(const CGrid& grid, CurveId curve);
