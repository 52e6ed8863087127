#include "report/TargetChanges.h"

#include <array>
#include <cstddef>

#include "constraints/CPtCstrList.h"
#include "model/CGrid.h"
#include "solver/CConstraintRows.h"

namespace {

// The targets of the rows that two lists make, but for those of the solver's; nothing where the rows are other ones.
std::vector<double> DifferenceOfTargets(const CGrid& grid, const CPtCstrList& points, const CPtCstrList& generated) {
  const CConstraintRows& present = grid.Solver().System().Constraints();
  CConstraintRows changed;
  changed.Add(std::array<const CPtCstrList*, 2>{&points, &generated}, grid.Surface().Tree(),
              grid.Surface().Interpolation());
  if (!(changed.Rows() == present.Rows())) return {};
  std::vector<double> change(changed.Count());
  for (std::size_t j = 0; j < change.size(); ++j) change[j] = changed.Targets()[j] - present.Targets()[j];
  return change;
}

// The generated constraints with other orientations of one curve: of the sides that are not at the upper limit, a
// degree more, or else of those that are, a degree less.
CPtCstrList Regenerated(const CGrid& grid, CurveId curve, bool atLimit) {
  CPtCstrList turned;
  for (const CCntrCtrl& present : grid.Constraints().Curves()) {
    if (CConstraints::IsRefused(present, turned.size())) continue;
    CCntrCtrl copy = present;
    for (const CurveSide side : {CurveSide::Left, CurveSide::Right}) {
      const double orientation = present.AutoBump(side).m_fOrientation;
      if (present.Id() != curve || (orientation + 1.0 > CCntrCtrl::kMaxOrientation) != atLimit) continue;
      copy.SetOrientation(side, atLimit ? orientation - 1.0 : orientation + 1.0);
    }
    copy.AddAutoBumpConstraints(turned);
  }
  // Which of them are disabled stays as it is.
  CPtCstrList generated = grid.Constraints().Generated();
  if (turned.size() != generated.size()) return turned;
  auto to = generated.begin();
  for (const CPtCstr& from : turned) {
    to->m_fP = from.m_fP;
    to->m_fQ = from.m_fQ;
    ++to;
  }
  return generated;
}

}  // namespace

std::vector<double> ChangeOfTargets(const CGrid& grid, const CPtCstr& constraint, ConstraintPart part) {
  CPtCstrList changed = grid.Constraints().Points();
  auto copy = changed.begin();
  for (const CPtCstr& record : grid.Constraints().Points()) {
    if (&record == &constraint) break;
    ++copy;
  }
  if (copy == changed.end()) return {};
  switch (part) {
    case ConstraintPart::Height:
      copy->m_fZ += 1.0;
      break;
    case ConstraintPart::SlopeX:
      copy->m_fP += 1.0;
      break;
    case ConstraintPart::SlopeY:
      copy->m_fQ += 1.0;
      break;
  }
  return DifferenceOfTargets(grid, changed, grid.Constraints().Generated());
}

std::vector<double> ChangeOfTargets(const CGrid& grid, CurveId curve) {
  const CPtCstrList& points = grid.Constraints().Points();
  std::vector<double> change = DifferenceOfTargets(grid, points, Regenerated(grid, curve, false));
  const std::vector<double> atLimit = DifferenceOfTargets(grid, points, Regenerated(grid, curve, true));
  if (atLimit.size() != change.size()) return {};
  for (std::size_t j = 0; j < change.size(); ++j) change[j] -= atLimit[j];
  return change;
}
