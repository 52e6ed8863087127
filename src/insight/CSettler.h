#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "insight/CFreedom.h"
#include "insight/SmallMatrix.h"
#include "solver/CCompressedRows.h"

class CGridSolver;
class CHierarchicalBasis;

/// Gives regions whose heights nothing settles a definite place, by moving the coefficients along their free
/// directions, which neither the energy nor a constraint notices.
///
/// A region that no row acts on takes the plane for which the mean of (z_u - z_v)^2 over the cut leaf edges between it
/// (u) and what is placed before it (v), plus 1e-4 d^2 times the mean of |grad z|^2 over it, is least, d being the
/// diagonal of its box; it stays where there is no such edge. Placed are the regions that are settled, or, where none
/// is, the one with most points; the others follow in the order of the number of tears between, the larger first. A
/// region that something holds in part takes the plane with the least mean of |grad z|^2; where that leaves its offset
/// open, the edges choose it, too. With a reference all of them take the plane nearest to that; where its values leave
/// directions open, as along a single line of them, what else it would do without decides about these. What curves join
/// is placed as one.
class CSettler {
 public:
  /// Finds out what can move in the system that the solver has built last, unless it knows already. Its numbering is
  /// `order`, in the subdivision of `tree`, whose leaves must have been listed.
  void Prepare(const CQuadTree& tree, const CPointOrder& order, const CGridSolver& solver);
  /// Gives all free planes a reference to be near to, in the sum of squares: the height over a value v of `values` (by
  /// point, not a number for none) is offset + linear * v + square * v * v. None where the values are empty or all
  /// heights are 0. To be called after `Prepare`; allocates only where other points have values than before.
  void Follow(std::span<const double> values, double offset, double linear, double square);
  /// From now on what it moves is the difference of two surfaces that follow the same reference. `values` as for
  /// `Follow`; empty where they follow none.
  void FollowInChanges(std::span<const double> values);
  /// Moves the coefficients `x`, which belong to `basis`. Allocates nothing. Those of regions that are settled keep
  /// every bit unless the basis predicts across tears.
  void Settle(const CHierarchicalBasis& basis, std::span<double> x);
  /// Whether there is anything to be moved.
  bool IsNeeded() const { return !m_aSteps.empty(); }
  /// What was found out.
  const CFreedom& Freedom() const { return m_Freedom; }

 private:
  /// Something that is made least within the directions that the stages before it leave open.
  struct CStage {
    double m_fSlopes = 0.0;  ///< how much of each of three forms there is in it
    double m_fEdges = 0.0;   ///< see CStep
    double m_fReference = 0.0;
    CSmallMatrix m_Form{};    ///< what a step makes of it
    CSmallMatrix m_Choose{};  ///< from half its gradient to the step that is taken against it
  };
  /// One group of pieces that is placed, after those it refers to. Matrices are over its directions.
  struct CStep {
    std::size_t m_uGroup = 0;
    std::vector<CPieces::CJoint> m_aEdges;  ///< from the group to what is placed before it
    std::vector<CPieces::CSlope> m_aSlopes;
    double m_fArea = 0.0;
    std::vector<CStage> m_aOwn;        ///< how its place is chosen...
    std::vector<CStage> m_aFollowing;  ///< ...and how with a reference
    // Work space of a tick: half the gradients of the mean squared slope, of the mean squared difference across the
    // edges and of the squared distance from the reference, where the step begins, and the step to be taken against
    // them.
    std::vector<double> m_afOfSlopes;
    std::vector<double> m_afOfEdges;
    std::vector<double> m_afOfReference;
    std::vector<double> m_afGradient;
    std::vector<double> m_afStep;
  };

  bool IsPrepared(const CQuadTree& tree, const CGridSolver& solver) const;
  void AddSteps(std::span<const std::uint32_t> ranks);
  void AddSlopes(const CQuadTree& tree, const CPointOrder& order);
  CSmallMatrix FormOfSlopes(const CStep& step) const;
  CSmallMatrix FormOfEdges(const CStep& step) const;
  CSmallMatrix FormOfReference(const CStep& step, std::size_t& points) const;
  double SquaredDiagonal(const CStep& step) const;
  void AddOwnStages(const CStep& step, CSmallMatrix& open, bool anyPlane, std::vector<CStage>& stages) const;
  void FormOwn(CStep& step) const;
  void FormFollowing(CStep& step) const;
  const CPlane& PlaneOf(const CStep& step, std::size_t direction, std::uint32_t point) const;
  double SlopeOf(const CStep& step, std::size_t direction, const CPieces::CSlope& slope) const;
  void FindGradients(CStep& step) const;
  void FindReferenceGradient(CStep& step) const;
  static void FindStep(CStep& step, std::span<const CStage> stages);
  void Take(const CStep& step);

  CFreedom m_Freedom;
  std::vector<CStep> m_aSteps;
  std::vector<std::size_t> m_auPlaceInGroup;  ///< by piece; of a region in its group
  std::vector<double> m_afReference;          ///< heights by point, not a number for none; empty without a reference
  bool m_bFollowingStale = true;              ///< the steps know nothing of the reference
  // What it was prepared for.
  std::uint64_t m_uTreeRevision = 0;
  CCompressedRows m_Rows;
  // Work space, by point.
  std::vector<double> m_afHeights;
  std::vector<double> m_afMoves;
  std::vector<double> m_afCoefs;
};
