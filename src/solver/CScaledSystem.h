#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <utility>
#include <vector>

#include "solver/CConstraintSystem.h"
#include "solver/CRowFactor.h"
#include "solver/ConsistentTargets.h"

class CPointOrder;

/// How far a state is from solving the system, as lengths in scaled units; H, B, C and g as in CConstraintSystem, D, R
/// and L as in CScaledSystem, z the heights.
struct CImbalance {
  double m_fForces = 0.0;     ///< D B^T (H z - g + C^T l): what is left of the forces, 0 in a solution
  double m_fPulls = 0.0;      ///< D B^T C^T l: those of the constraints alone
  double m_fLoad = 0.0;       ///< D B^T g: the load; 0 without one
  double m_fMagnitude = 0.0;  ///< D B^T (|H| |z| + |g|): those of the smoothness, had nothing in them cancelled
  double m_fMisses = 0.0;     ///< L^-1 R (d - C z): what the constraints miss, 0 in a solution
  double m_fTargets = 0.0;    ///< L^-1 R d
};

/// The system as the iteration sees it: in the unknowns y = f D^-1 x and m = f L^T R^-1 l, its equations multiplied by
/// f D and by f L^-1 R, which leaves the matrix symmetric.
///
/// D holds the energies of the basis functions to the power -1/2 [Yserentant1986]: in y they all weigh the same,
/// whatever their level. L is a factor of S = R C B D^2 B^T C^T R, which is what the constraints make of that
/// [RustenWinther1992]: in m they no longer pull against each other. R takes slopes over a hundredth of the model's
/// longer side, so that they are of one kind with heights. The common factor f gives the right-hand side the length 1,
/// so that lengths mean the same in all units. Until they are set all of them are 1.
class CScaledSystem {
 public:
  /// The system must outlive this view of it.
  explicit CScaledSystem(CConstraintSystem& system) : m_pSystem(&system) {}
  /// The scale of another view, for a system with the same basis, smoothness and rows.
  CScaledSystem(CScaledSystem other, CConstraintSystem& system) : CScaledSystem(std::move(other)) {
    m_pSystem = &system;
  }

  /// N, M and N + M, as of the system.
  std::size_t UnknownCount() const { return m_pSystem->UnknownCount(); }
  std::size_t ConstraintCount() const { return m_pSystem->ConstraintCount(); }
  std::size_t Size() const { return m_pSystem->Size(); }

  /// Replaces H.
  void SetSmoothness(CCompressedRows matrix);
  /// D, from the smoothness and the basis as they are. The functions of the corners, which have next to no energy, get
  /// the largest entry of all others, so that the planes that the constraints leave free are chosen by the heights of
  /// the corners alone; so does a function without energy. Without prediction the corners have their own. `order` is
  /// that of the unknowns. Nothing, not even memory, where neither the basis nor H is another than before.
  void ScaleBasis(const CPointOrder& order);
  /// R, S and L, from D and the constraint rows as they are; `order` is that of their columns. Nothing, not even
  /// memory, where neither is another than before.
  void ScaleRows(const CPointOrder& order, double slopeUnit);
  /// D by unknown, and f.
  std::span<const double> BasisScale() const { return m_afBasisScale; }
  void SetFactor(double factor) { m_fFactor = factor; }
  double Factor() const { return m_fFactor; }

  /// Makes right-hand sides that the rows contradict the nearest that they do not: L^-1 magnifies what no surface can
  /// satisfy until nothing else counts, and in two blocks of L the two sides of a contradiction would know nothing of
  /// each other.
  void MakeConsistent(std::span<double> targets);

  /// Sizes the work space; must be called after any part has changed size and before what follows.
  void Prepare();
  /// out = (scaled system) v; see CConstraintSystem::ApplySystem.
  void ApplySystem(std::span<const double> v, std::span<double> out);
  /// r = the scaled residual of x (N coefficients) and l (M multipliers) towards the right-hand sides d.
  void TakeResidual(std::span<const double> x, std::span<const double> multipliers, std::span<const double> targets,
                    std::span<double> r);
  /// Length of the right-hand side, scaled but for f: of the targets alone, and with the load.
  double TargetNorm(std::span<const double> targets);
  double RightSideNorm(std::span<const double> targets);
  /// Adds to l what a step of the scaled multipliers means to it; the step is used up.
  void AddStep(std::span<double> step, std::span<double> multipliers);
  /// What multiplier `j` is where the scaled one is 1 and no other counts.
  double MultiplierUnit(std::size_t j) const;
  /// Measures a state.
  CImbalance Measure(std::span<const double> x, std::span<const double> multipliers, std::span<const double> targets);
  /// Length of the residual of x and l, of which new multipliers may still be missing.
  double ResidualNorm(std::span<const double> x, std::span<const double> multipliers, std::span<const double> targets);

 private:
  double LoadNorm();
  void ScaleForces(std::span<double> forces) const;
  void ScaleRowValues(std::span<double> values);
  void UnscaleMultipliers(std::span<double> multipliers);
  bool HasRowsAsScaled(double slopeUnit) const;
  void CollectRow(std::size_t j, CPlainRows& scaled);
  std::vector<CRowPlace> RowPlaces(const CPointOrder& order) const;
  bool IsScaled() const { return m_Factor.Count() == ConstraintCount() && ConstraintCount() > 0; }

  CConstraintSystem* m_pSystem;
  std::vector<double> m_afBasisScale;  ///< D, by unknown
  std::vector<double> m_afRowScale;    ///< R, by row
  CRowFactor m_Factor;
  CConsistentTargets m_Consistent;
  CCompressedRows m_ScaledRows;  ///< the constraint rows that L belongs to
  double m_fSlopeUnit = 1.0;
  std::uint64_t m_uBasisRevision = 0;  ///< of the basis that D belongs to
  bool m_bRowsStale = true;
  double m_fFactor = 1.0;
  std::vector<double> m_afMultipliers;  ///< work space for M values
  std::vector<double> m_afWork;         ///< work space for Size() values
};
