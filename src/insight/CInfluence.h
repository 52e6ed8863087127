#pragma once

#include <optional>
#include <span>
#include <vector>

#include "base/CRandom.h"
#include "insight/CSettler.h"
#include "solver/CGridSolver.h"
#include "solver/CHierarchicalBasis.h"

/// What other targets of the constraint rows would do to every height: the solution of the same system with the change
/// of the targets as right-hand side, and nothing else. As the system is linear, this is the difference of two
/// surfaces.
///
/// It has a copy of all that it needs, so that the model may change meanwhile, also in another thread; the answer then
/// is that of the model as it was. What nothing settles stays where it is, or goes where a settler has it.
class CInfluence {
 public:
  /// Of the system that the solver has built last, with `basis`. `change` has an entry per row, as of the rows'
  /// targets; `settler` is one for changes, of the same system (see CGrid::SettlerOfChanges).
  CInfluence(const CGridSolver& solver, const CHierarchicalBasis& basis, std::span<const double> change,
             std::optional<CSettler> settler = std::nullopt);
  CInfluence(const CInfluence&) = delete;
  CInfluence& operator=(const CInfluence&) = delete;
  ~CInfluence() = default;

  /// Goes on by so many iterations at most, of which each takes as long as one of the solver's. Whether all is done.
  bool Continue(int iterations);
  /// Whether nothing is left to be done.
  bool IsDone() const { return m_bDone; }
  /// Whether that has come to the end that was asked for, and not merely to where the iteration gets no nearer.
  bool IsExact() const { return m_bExact; }
  /// The change of each height, by scan position (see CPointOrder); as far as it has come.
  std::vector<double> Heights() const;

 private:
  CHierarchicalBasis m_Basis;
  CRandom m_Random{1};
  CGridSolver m_Solver;
  std::optional<CSettler> m_Settler;
  std::vector<double> m_afX;
  bool m_bDone = false;
  bool m_bExact = false;
};
