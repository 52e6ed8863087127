#pragma once

#include <functional>
#include <span>
#include <vector>

#include "base/CRandom.h"
#include "solver/CConjugateResidual.h"
#include "solver/CConstraintSystem.h"
#include "solver/CEnergyTerms.h"
#include "solver/CHierarchicalBasis.h"
#include "solver/CRestForces.h"
#include "solver/CScaledSystem.h"
#include "solver/CSolverState.h"

class CCntrCtrlList;
class CPointOrder;
class CPtCstrList;
class CQuadTree;
class CInterpolation;

/// The iteration as it goes on across ticks: the system, the multipliers, the counter, and when to stop.
///
/// The counter is -1 while numbering and matrix must be rebuilt, 0 when the iteration starts afresh, and the number of
/// iterations done after that.
class CGridSolver {
 public:
  /// How a tick has ended.
  enum class Outcome {
    TickDone,     ///< the tick's iterations are done
    Interrupted,  ///< `poll` asked to stop
    Converged,    ///< the surface is the one that the constraints ask for: the solver may be paused
    GaveUp,       ///< it is not, and the iteration gets no nearer: the solver may be paused all the same
  };

  /// Both must outlive the solver.
  CGridSolver(const CHierarchicalBasis& basis, CRandom& random) : m_System(basis), m_pRandom(&random) {}
  /// For the system of another solver, which must have been built, with other right-hand sides, one per row. `basis` is
  /// equal to that of the other; the iteration starts afresh.
  CGridSolver(const CGridSolver& other, const CHierarchicalBasis& basis, CRandom& random,
              std::span<const double> targets);
  CGridSolver(const CGridSolver&) = delete;
  CGridSolver& operator=(const CGridSolver&) = delete;
  ~CGridSolver() = default;

  /// Iterations since the last restart; 0 where one is due, below 0 where a rebuild is.
  int Counter() const { return m_iCounter; }
  void RequestRebuild();
  /// A rebuild that is already due stays due.
  void RequestRestart();

  /// The matrix of the smoothness energy, that along fairness curves included, for a numbering just made; the iteration
  /// then starts afresh. `restValues` (by scan position, not a number for none; empty for none at all) are those that
  /// `SetRestShape` makes heights of; none are taken for such until then.
  void Assemble(CQuadTree& tree, const CInterpolation& surface, const CCntrCtrlList& curves,
                std::span<const double> restValues = {});
  /// The smoothness of the grid, without that along curves, counts from this shape on. The iteration then starts
  /// afresh.
  void SetRestShape(const CRestShape& shape);
  /// What a surface minimises, for its heights by scan position: half of the energy counted from the shape. Takes
  /// memory.
  double RestEnergy(std::span<const double> heights) const;
  /// The constraint rows of all records in the lists.
  void SetConstraints(std::span<const CPtCstrList* const> lists, const CQuadTree& tree, const CInterpolation& surface);

  /// Up to `limit` iterations on the coefficients `x` (in place). With the counter at 0 the iteration starts afresh
  /// first; multipliers of new rows start by chance in [0, 1 / N]. `poll`, where given, is called between the steps and
  /// ends the tick by answering true. A step that would leave the finite numbers is undone.
  Outcome Tick(std::span<double> x, int limit, const std::function<bool()>& poll);

  /// The model has been edited. Returns whether the solver had stopped itself, and arms the restart that follows: see
  /// Shake.
  bool ModelChanged();
  /// Whether it has, with the surface that was asked for or with another one; and whether with the former.
  bool HasStopped() const { return m_End != Outcome::TickDone; }
  bool HasConverged() const { return m_End == Outcome::Converged; }
  /// All multipliers by chance in [0, limit].
  void RandomiseMultipliers(double limit);

  /// How far the iteration has come.
  CSolverState State() const;
  /// Goes on from the coefficients `x` where an iteration on the same constraints had come to: one that had stopped
  /// itself stays so until the next edit. The system must have been built. Where it has another number of rows than the
  /// state, the iteration starts afresh.
  void Resume(const CSolverState& state, std::span<const double> x);

  /// The system as it was built last, and its multipliers, one per row of the constraints.
  const CConstraintSystem& System() const { return m_System; }
  std::span<const double> Multipliers() const { return m_afMultipliers; }
  /// Those terms of its smoothness that fairness curves bring, over scan positions.
  const CEnergyTerms& CurveTerms() const { return m_CurveTerms; }

 private:
  void Start(std::span<const double> x, const CSolverState* resumed = nullptr);
  void SetFactor(std::span<const double> x);
  void ResizeMultipliers();
  void DrawMultiplier(std::size_t j, double limit);
  void Shake();
  void TakeWay();
  Outcome Iterate(std::span<double> x, int limit, const std::function<bool()>& poll);
  static bool IsFreeOfForces(const CImbalance& left);
  bool Refine(std::span<const double> x);
  void Reconcile(std::span<const double> x);
  bool HasStalled(double sides) const;
  bool IsContradictory() const;
  bool IsResidualSmall() const;
  Outcome Stop(const char* message, double value, std::span<const double> x);
  bool IsSolved(std::span<const double> x);

  CConstraintSystem m_System;
  CRestForces m_Rest;
  CRestShape m_RestShape;
  CEnergyTerms m_CurveTerms;
  CScaledSystem m_Scaled{m_System};
  CConjugateResidual m_Residual;
  std::vector<double> m_afMultipliers;  ///< one per constraint row
  std::vector<double> m_afTargets;      ///< right-hand sides, free of contradictions once those are known
  std::vector<double> m_afWay;          ///< of the scaled multipliers, what the others do not hold yet
  std::vector<double> m_afLastX;        ///< the coefficients before the tick
  std::vector<double> m_afLastMultipliers;
  CRandom* m_pRandom;
  int m_iCounter = -1;
  bool m_bVectorsValid = false;             ///< the iteration's vectors belong to the system as it is
  Outcome m_End = Outcome::TickDone;        ///< of the last stop; TickDone while the iteration is to go on
  Outcome m_EndBefore = Outcome::TickDone;  ///< the same before the edit for which the iteration goes on
  bool m_bShakeDue = false;
  int m_iRetriesLeft = 0;
  const char* m_pStopMessage = "";  ///< of the last stop
  double m_fStopValue = 0.0;
  double m_fTrueNorm = 0.0;  ///< length of the residual when it was last computed afresh at a breakdown
};
