#pragma once

#include <span>
#include <vector>

#include "base/CRandom.h"
#include "solver/CGridSolver.h"
#include "solver/CHierarchicalBasis.h"

/// What other targets of the constraint rows would do to every height: the solution of the same system with the change
/// of the targets as right-hand side, and nothing else. As the system is linear, this is the difference of two
/// surfaces.
///
/// It has a copy of all that it needs, so that the model may change meanwhile; the answer then is that of the model as
/// it was. What nothing settles stays where it is.
class CInfluence {
 public:
  /// Of the system that the solver has built last, with `basis`. `change` has an entry per row, as of the rows'
  /// targets.
  CInfluence(const CGridSolver& solver, const CHierarchicalBasis& basis, std::span<const double> change);
  CInfluence(const CInfluence&) = delete;
  CInfluence& operator=(const CInfluence&) = delete;
  ~CInfluence() = default;

  /// Goes on by so many iterations at most, of which each takes as long as one of the solver's. Whether all is done.
  bool Continue(int iterations);
  /// Whether nothing is left to be done.
  bool IsDone() const { return m_bDone; }
  /// The change of each height, by scan position (see CPointOrder); as far as it has come.
  std::vector<double> Heights() const;

 private:
  CHierarchicalBasis m_Basis;
  CRandom m_Random{1};
  CGridSolver m_Solver;
  std::vector<double> m_afX;
  bool m_bDone = false;
};
