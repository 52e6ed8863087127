#include "solver/CGridSolver.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numeric>
#include <utility>

#include "base/Console.h"
#include "constraints/CPtCstrList.h"
#include "lattice/CLattice.h"
#include "quadtree/CPointOrder.h"
#include "quadtree/Interpolation.h"
#include "solver/CurveTerms.h"
#include "solver/GridTerms.h"

namespace {

// A stop with more than this share of the starting residual left may be an accident of the recurrence, and is tried
// again. Larger, and contradictory constraints would be met less well than they can be; smaller, and rounding would
// count.
constexpr double kSmallResidual = 1e-9;

// A residual computed afresh at a breakdown is worth iterating on if it has shrunk to this share since the last one.
// Each time it does, the surface gains digits; when it no longer does, what is left is rounding.
constexpr double kRefinement = 0.1;
// Below this share of what the constraints ask for there is nothing but rounding. The residual at the restart is no
// measure of that, as the iteration may have come from far away; only where nothing is asked for it must do, or a
// singular system would be iterated on for ever.
constexpr double kRoundingFloor = 1e-14;

// A restart with |r . A r| below this share of |r| |A r| has next to nothing to iterate on. Random starts are well
// above.
constexpr double kBadStart = 1e-8;

// Beyond this, and below its inverse, the right-hand side counts as not finite or 0: the square of a residual that
// comes from such heights would leave the finite numbers once the heights are reasonable again.
constexpr double kLargestNorm = 1e150;

// A slope is taken over this share of the model's longer side, as a difference of heights.
constexpr double kSlopeUnit = 0.01;

// A surface is the solution when the forces left on it are this share of those that the constraints exert, or that
// share of what cancels in those of the smoothness and of the targets, which is rounding; and when its constraints miss
// this share of their targets. Of rightly converged surfaces the shares are smaller by four orders and more, of wrong
// ones near 1. In scaled units forces and targets are of one kind.
constexpr double kSolvedShare = 1e-6;
constexpr double kRoundedShare = 1e-12;

// How often an edit may start the iteration again after such a stop. Constraints that contradict each other always
// leave a residual, so this must end.
constexpr int kRetriesPerEdit = 2;

// When a residual that is left will stay: after `m_fSides` iterations without progress, in units of the side of the
// grid, with the residual's image down to `m_fImage` of its largest. Without the basis an iteration may make no
// progress for as long on the way, but then its image is still larger; with it, rounding in the multipliers of rows
// that are almost the same keeps the image of what they contradict above a tenth of the share here.
struct CStall {
  double m_fSides;
  double m_fImage;
  double m_fHopelessSides;  ///< after so many the iteration will make no more progress at all
};
constexpr CStall kStallOfHeights{40.0, 1e-9, 400.0};
constexpr CStall kStallOfCoefficients{10.0, 1e-6, 100.0};

const CStall& StallIn(WaveletMode mode) { return mode == WaveletMode::None ? kStallOfHeights : kStallOfCoefficients; }

bool AllFinite(std::span<const double> values) {
  return std::ranges::all_of(values, [](double value) { return std::isfinite(value); });
}

}  // namespace

CGridSolver::CGridSolver(const CGridSolver& other, const CHierarchicalBasis& basis, CRandom& random,
                         std::span<const double> targets)
    : m_System(basis), m_Scaled(other.m_Scaled, m_System), m_pRandom(&random), m_iCounter(0) {
  m_System.Smoothness() = other.m_System.Smoothness();
  m_System.Constraints() = other.m_System.Constraints();
  m_System.Constraints().SetTargets(targets);
  m_iRetriesLeft = kRetriesPerEdit;
}

void CGridSolver::RequestRebuild() {
  m_iCounter = -1;
  m_bVectorsValid = false;
}

void CGridSolver::RequestRestart() {
  m_iCounter = std::min(m_iCounter, 0);
  m_bVectorsValid = false;
}

void CGridSolver::Assemble(CQuadTree& tree, const CInterpolation& surface, const CCntrCtrlList& curves,
                           std::span<const double> restValues) {
  CCompressedRows matrix;
  {
    CEnergyTerms terms;
    AddGridTerms(tree, surface.Order(), terms);
    m_Rest.Clear();
    if (!restValues.empty()) m_Rest.Collect(terms, restValues);
    SetRestShape({});
    const std::size_t ofGrid = terms.Count();
    AddCurveTerms(curves, tree, surface, terms);
    m_CurveTerms = terms.From(ofGrid);
    terms.Assemble(surface.Order().Count(), matrix);
  }
  m_Scaled.SetSmoothness(std::move(matrix));
  m_iCounter = 0;
}

void CGridSolver::SetRestShape(const CRestShape& shape) {
  m_RestShape = shape;
  m_Rest.MakeLoad(shape, m_System.Load());
  RequestRestart();
}

// With H = G + F, where F is along fairness curves: (z - p)^T G (z - p) + z^T F z = z^T H z - 2 z^T G p + p^T G p.
double CGridSolver::RestEnergy(std::span<const double> heights) const {
  std::vector<double> forces(heights.size());
  m_System.Smoothness().Times(heights, forces);
  for (std::size_t i = 0; i < m_System.Load().size(); ++i) forces[i] -= 2 * m_System.Load()[i];
  const double energy = std::inner_product(heights.begin(), heights.end(), forces.begin(), m_Rest.Energy(m_RestShape));
  // What is left of a surface that is the shape is rounding, of either sign.
  return std::max(energy, 0.0) / 2;
}

void CGridSolver::SetConstraints(std::span<const CPtCstrList* const> lists, const CQuadTree& tree,
                                 const CInterpolation& surface) {
  m_System.Constraints().Clear();
  m_System.Constraints().Add(lists, tree, surface);
  m_Scaled.ScaleBasis(surface.Order());
  const CExtent& e = surface.Lattice().Extent();
  m_Scaled.ScaleRows(surface.Order(), kSlopeUnit * std::max(e.x1 - e.x0, e.y1 - e.y0));
  RequestRestart();
}

// The right-hand side is to have the length 1 once it is scaled; where nothing is asked for, the residual is.
void CGridSolver::SetFactor(std::span<const double> x) {
  m_Scaled.SetFactor(1.0);
  const auto usable = [](double norm) { return norm > 1.0 / kLargestNorm && norm < kLargestNorm; };
  double norm = m_Scaled.RightSideNorm(m_afTargets);
  if (!usable(norm)) norm = m_Scaled.ResidualNorm(x, m_afMultipliers, m_afTargets);
  m_Scaled.SetFactor(usable(norm) ? 1.0 / norm : 1.0);
}

void CGridSolver::ResizeMultipliers() {
  const std::size_t old = m_afMultipliers.size();
  m_afMultipliers.resize(m_System.ConstraintCount());
  const double limit = 1.0 / static_cast<double>(m_System.UnknownCount());
  for (std::size_t j = old; j < m_afMultipliers.size(); ++j) DrawMultiplier(j, limit);
}

void CGridSolver::RandomiseMultipliers(double limit) {
  for (std::size_t j = 0; j < m_afMultipliers.size(); ++j) DrawMultiplier(j, limit);
}

// In the scaled unknowns, or the start would depend on the units.
void CGridSolver::DrawMultiplier(std::size_t j, double limit) {
  m_afMultipliers[j] = m_pRandom->UpTo(limit) * std::min(1.0, m_Scaled.MultiplierUnit(j));
}

// After convergence the residual of a changed target is (0, change), on which r . A r vanishes by symmetry: the
// iteration would stop at once on a wrong surface. A little chance in the multipliers gives the residual a part in the
// heights.
void CGridSolver::Shake() {
  const double limit = 1.0 / static_cast<double>(m_System.UnknownCount());
  for (double& value : m_afWay) value = m_pRandom->UpTo(limit);
  TakeWay();
}

void CGridSolver::TakeWay() {
  m_Scaled.AddStep(m_afWay, m_afMultipliers);
  std::ranges::fill(m_afWay, 0.0);
}

bool CGridSolver::ModelChanged() {
  m_iRetriesLeft = kRetriesPerEdit;
  if (!HasStopped()) return false;
  m_EndBefore = m_End;
  m_End = Outcome::TickDone;
  m_bShakeDue = true;
  return true;
}

// A command is told to the solver when it is posted, and what it is about to replace had stopped for good until then.
CSolverState CGridSolver::State() const {
  const Outcome end = m_bShakeDue && m_iCounter > 0 ? m_EndBefore : m_End;
  return {m_afMultipliers, m_afTargets, m_iCounter, end == Outcome::Converged, end == Outcome::GaveUp};
}

void CGridSolver::Resume(const CSolverState& state, std::span<const double> x) {
  m_End = Outcome::TickDone;
  m_bShakeDue = false;
  m_afMultipliers = state.m_afMultipliers;
  const std::size_t rows = m_System.ConstraintCount();
  const bool same = state.m_afMultipliers.size() == rows && state.m_afTargets.size() == rows;
  if (m_iCounter < 0 || state.m_iCounter < 1 || !same) return;
  Start(x, &state);
  m_iCounter = state.m_iCounter;
  // What the log is told of the stop once more; the run that has stopped may have been another.
  m_pStopMessage = state.m_bGaveUp ? "|r_rr| stays at " : "|r_rr| is too small ";
  m_fStopValue = m_Residual.Rho();
  if (state.m_bStopped) m_End = Outcome::Converged;
  if (state.m_bGaveUp) m_End = Outcome::GaveUp;
}

void CGridSolver::Start(std::span<const double> x, const CSolverState* resumed) {
  m_Scaled.Prepare();
  const std::span<const double> targets = m_System.Constraints().Targets();
  m_afTargets.assign(targets.begin(), targets.end());
  if (resumed != nullptr) m_afTargets = resumed->m_afTargets;
  m_Scaled.MakeConsistent(m_afTargets);
  SetFactor(x);
  ResizeMultipliers();
  m_afWay.assign(m_System.ConstraintCount(), 0.0);
  if (m_bShakeDue) Shake();
  m_Residual.Restart(m_Scaled, x, m_afMultipliers, m_afTargets);
  // An edit shortly before the pause leaves the same kind of residual as one after it.
  if (resumed == nullptr && !m_bShakeDue && !m_Residual.HasBrokenDown() && m_Residual.Symmetry() < kBadStart) {
    Shake();
    m_Residual.Restart(m_Scaled, x, m_afMultipliers, m_afTargets);
  }
  m_bShakeDue = false;
  m_bVectorsValid = true;
  m_fTrueNorm = std::numeric_limits<double>::infinity();
  m_afLastX.resize(x.size());
  m_afLastMultipliers.resize(m_afMultipliers.size());
}

CGridSolver::Outcome CGridSolver::Tick(std::span<double> x, int limit, const std::function<bool()>& poll) {
  if (m_iCounter == 0) Start(x);
  std::ranges::copy(x, m_afLastX.begin());
  std::ranges::copy(m_afMultipliers, m_afLastMultipliers.begin());
  const Outcome outcome = Iterate(x, limit, poll);
  TakeWay();
  if (m_Residual.IsFinite() && AllFinite(x)) return outcome;
  std::ranges::copy(m_afLastX, x.begin());
  std::ranges::fill(m_afWay, 0.0);
  std::ranges::copy(m_afLastMultipliers, m_afMultipliers.begin());
  return Stop("the iteration leaves the finite numbers, |r_rr| = ", m_Residual.Rho(), x);
}

CGridSolver::Outcome CGridSolver::Iterate(std::span<double> x, int limit, const std::function<bool()>& poll) {
  for (int done = 0; done < limit && m_Residual.IsFinite(); ++done) {
    // An event may change the basis at once, without posting work; the vectors are out of date then.
    if (poll) TakeWay();
    if (poll && (poll() || !m_bVectorsValid)) return Outcome::Interrupted;
    ++m_iCounter;
    if (HasStopped()) {
      Console() << m_pStopMessage << m_fStopValue << '\n';
      return m_End;
    }
    const CConjugateResidual::Outcome step = m_Residual.Step(m_Scaled, x, m_afWay);
    if (step == CConjugateResidual::Outcome::Stepped) continue;
    const bool smallRho = step == CConjugateResidual::Outcome::SmallRho;
    const double value = smallRho ? m_Residual.Rho() : m_Residual.Pi();
    if (IsContradictory()) {
      Reconcile(x);
    } else if (!Refine(x)) {
      return Stop(smallRho ? "|r_rr| is too small " : "|pp_pp| is too small ", value, x);
    }
  }
  const CStall& stall = StallIn(m_System.Basis().Mode());
  if (HasStalled(stall.m_fSides) && IsContradictory()) Reconcile(x);
  // Either what is left is rounding, or the recurrence has lost its way and needs another start.
  if (HasStalled(stall.m_fHopelessSides)) return Stop("|r_rr| stays at ", m_Residual.Rho(), x);
  return Outcome::TickDone;
}

// Constraints that a plane meets pull at nothing, and what the forces are told to be is rounding, on either side.
bool CGridSolver::IsFreeOfForces(const CImbalance& left) {
  const double rounding = kRoundedShare * left.m_fMagnitude;
  return left.m_fForces <= rounding && left.m_fPulls + left.m_fLoad <= rounding &&
         left.m_fMisses <= kRoundedShare * left.m_fTargets;
}

// At a breakdown the residual of the recurrence has become small, the true one only as far as rounding let it. As long
// as that can still be reduced, the iteration goes on from it.
bool CGridSolver::Refine(std::span<const double> x) {
  TakeWay();
  m_Residual.Refresh(m_Scaled, x, m_afMultipliers, m_afTargets);
  const double before = std::exchange(m_fTrueNorm, m_Residual.ResidualNorm());
  if (IsFreeOfForces(m_Scaled.Measure(x, m_afMultipliers, m_afTargets))) return false;
  const bool worthwhile = m_fTrueNorm < kRefinement * before && m_fTrueNorm > kRoundingFloor;
  return worthwhile && !m_Residual.HasBrokenDown();
}

// Constraints that contradict each other are met as well as they can be together: what each still misses will stay.
// From now on they ask for what they have got, which is free of contradictions, so that the surface between them
// converges. Meanwhile the multipliers have run away against each other, so far that what is left of their sum would be
// rounding: they begin again.
void CGridSolver::Reconcile(std::span<const double> x) {
  TakeWay();
  m_System.ApplyRows(x, m_afTargets);
  std::ranges::fill(m_afMultipliers, 0.0);
  m_Residual.Refresh(m_Scaled, x, m_afMultipliers, m_afTargets);
}

bool CGridSolver::HasStalled(double sides) const {
  const double patience = sides * std::sqrt(static_cast<double>(m_System.Size()));
  return m_Residual.StepsSinceProgress() > patience;
}

bool CGridSolver::IsContradictory() const {
  return m_Residual.ImageShare() < StallIn(m_System.Basis().Mode()).m_fImage && !IsResidualSmall();
}

bool CGridSolver::IsResidualSmall() const {
  return m_Residual.ResidualNorm() <= kSmallResidual * m_Residual.StartNorm();
}

// Measured afresh, as the recurrence may believe in anything by now. The forces of the constraints and the load say how
// large forces are in this model; those that cancel in the smoothness, how small they can be told to be.
bool CGridSolver::IsSolved(std::span<const double> x) {
  const CImbalance left = m_Scaled.Measure(x, m_afMultipliers, m_afTargets);
  // Where nothing but 0 is asked for there is no measure but the way that the iteration has come.
  const double asked = left.m_fTargets + left.m_fLoad;
  if (asked == 0 && IsResidualSmall()) return true;
  const double rounding = kRoundedShare * (left.m_fMagnitude + asked);
  const bool balanced = left.m_fForces <= kSolvedShare * (left.m_fPulls + left.m_fLoad) + rounding;
  const bool met = left.m_fMisses <= kSolvedShare * asked;
  return balanced && met && std::isfinite(left.m_fPulls + left.m_fMagnitude + asked);
}

CGridSolver::Outcome CGridSolver::Stop(const char* message, double value, std::span<const double> x) {
  TakeWay();
  m_pStopMessage = message;
  m_fStopValue = value;
  Console() << message << value << '\n';
  m_Residual.Refresh(m_Scaled, x, m_afMultipliers, m_afTargets);
  const bool solved = IsSolved(x);
  if (!(solved && IsResidualSmall()) && m_iRetriesLeft > 0) {
    --m_iRetriesLeft;
    m_bShakeDue = true;
    m_iCounter = 0;
    return Outcome::TickDone;
  }
  m_End = solved ? Outcome::Converged : Outcome::GaveUp;
  return m_End;
}
