#pragma once

#include <cstddef>
#include <vector>

#include "constraints/CCntrCtrlList.h"
#include "constraints/CPendingCurve.h"
#include "constraints/CPtCstrList.h"
#include "constraints/Inactivity.h"
#include "model/CSketch.h"

class CConstraintRows;
class CSurface;

/// The constraints of a model and what its surface makes of them: the user's point constraints and curves, the curve in
/// progress, and the point constraints that curves generate.
///
/// Nothing here posts work or asks for a redraw.
class CConstraints {
 public:
  /// `surface` must outlive the constraints.
  explicit CConstraints(const CSurface& surface) : m_Surface(surface) {}

  /// What the user has placed and drawn, the curve in progress, what the curves generate, and the first lines of
  /// their sections in a file.
  CPtCstrList& Points() { return m_Points; }
  const CPtCstrList& Points() const { return m_Points; }
  CCntrCtrlList& Curves() { return m_Curves; }
  const CCntrCtrlList& Curves() const { return m_Curves; }
  CPendingCurve& PendingCurve() { return m_PendingCurve; }
  const CPendingCurve& PendingCurve() const { return m_PendingCurve; }
  CPtCstrList& Generated() { return m_Generated; }
  const CPtCstrList& Generated() const { return m_Generated; }
  /// The number, in the list as it was then, of the curve that has generated number `j` of them.
  std::size_t CurveOfGenerated(std::size_t j) const;
  CListHeaders& Headers() { return m_Headers; }
  const CListHeaders& Headers() const { return m_Headers; }
  /// Copies everything that a sketch holds of constraints into one.
  void AddTo(CSketch& sketch) const;
  /// Moves it out of one, in place of what there is. Curves generate nothing until `Generate`.
  void TakeFrom(CSketch& sketch);
  /// The same for a sketch of the present grid, by copying: what the curves generate stays until `Generate`. Selected
  /// is what was selected in the sketch, and nothing highlighted.
  void Restore(const CSketch& sketch);
  void Clear();
  /// The name of the first curve that has a node within `reach` of (x, y) (see CPtCstr::IsWithinReach); kNone if there
  /// is none.
  CurveId FindCurve(double x, double y, double reach) const;
  /// Point constraints of the user, curves and their nodes.
  void UnselectAll();

  // Points on the surface as it is.

  /// Height of the surface at the place of the constraint, model units.
  double HeightUnder(const CPtCstr& constraint) const;
  /// z of every normal constraint that is no position constraint as well becomes the surface's height under it.
  void RefreshHeights();
  /// The disabled bits of all.
  void UpdateDisabledBits();
  /// The disabled bit and the idle kinds of one that has been added or moved.
  void UpdateActivity(CPtCstr& constraint) const;
  /// The same for all that the user has placed.
  void UpdateActivities();
  /// Notes for each of the user's and the generated constraints what the rows just built leave out of it.
  void MarkIdle(const CConstraintRows& rows);
  /// Why the system has no row for a constraint, or for one of its two kinds (see CPtCstr::m_uIdle); None where nothing
  /// is missing. The rows are those last built, or, for one added or moved since, those that it would get.
  Inactivity WhyInactive(const CPtCstr& constraint) const;
  /// Number of the user's constraints that the system has a row for.
  int ActiveCount() const;

  // Curves on the lattice as it is.

  /// The parallels of a curve that has just been drawn, and those in the rebuilt map, which run further out.
  void PlaceParallels(CCntrCtrl& curve) const;
  void RefreshParallels(CCntrCtrl& curve) const;
  /// Deletes curves of fewer than two nodes, and refreshes the parallels of the others.
  void RefreshCurves();
  /// Has every curve generate its constraints again, in the order of the list; one that would bring them to more than
  /// CCntrCtrl::kMostGenerated is refused.
  void Generate();
  /// Whether a curve is, where there are `generated` constraints already.
  static bool IsRefused(const CCntrCtrl& curve, std::size_t generated);
  /// Number of curves refused the last time; logged. 0 if there were none or the number has been taken before.
  int TakeRefusedCurves();

 private:
  bool IsInMarkedTriangle(double x, double y) const;
  void UpdateDisabledBit(CPtCstr& constraint) const;
  double ParallelDistance() const;

  const CSurface& m_Surface;
  CPtCstrList m_Points;
  CPtCstrList m_Generated;
  std::vector<std::size_t> m_auGeneratedEnd;  ///< by curve: how many there are up to its last one
  CCntrCtrlList m_Curves;
  int m_iRefusedCurves = 0;  ///< whose constraints would have been too many
  int m_iToldCurves = 0;     ///< and how many of them the user knows of
  CPendingCurve m_PendingCurve;
  CListHeaders m_Headers;
};
