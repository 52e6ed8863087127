// One tick of the grid: what commands and edits have posted, then the iteration, then the surface.

#include <algorithm>
#include <functional>
#include <optional>
#include <span>
#include <utility>
#include <vector>

#include "base/Console.h"
#include "model/CGrid.h"
#include "model/Globals.h"

namespace {

// A new curve is in the model as soon as it is posted, like an edit.
bool IsInModel(Operation operation) { return IsEdit(operation) || operation == Operation::kNewCurve; }

}  // namespace

void CGrid::PerformPendingWork() {
  if (PerformOperations() == Performed::Nothing) return;
  m_Surface.Reconstruct();
  RefreshNormalCstrHeights();
}

Performed CGrid::PerformOperations() {
  const std::vector<CPendingRound> rounds = m_Run.Take();
  for (const CPendingRound& round : rounds) Perform(round);
  // A mere restart leaves the surface as it is, to the last bit: what has been loaded is saved unchanged.
  const bool renumbers = m_Solver.Counter() == -1;
  if (m_Solver.Counter() < 1) SetSparseH();
  if (std::ranges::any_of(rounds, [](const CPendingRound& round) { return round.m_Step != UserStep::None; }))
    return Performed::Step;
  return renumbers || !rounds.empty() ? Performed::Operations : Performed::Nothing;
}

void CGrid::Perform(const CPendingRound& round) {
  std::vector<Operation> operations = round.m_aOperations;
  // A file must not hold constraints that its heights do not know yet, so edits go before the saving they were posted
  // over.
  std::stable_partition(std::ranges::find(operations, Operation::kSaveGrid), operations.end(), IsInModel);
  // What an edit has put out of date need not be rebuilt before a step that puts more out of date.
  if (round.m_Step != UserStep::None && !operations.empty() && IsEdit(operations.back())) {
    m_Run.Post(operations.back());
    operations.pop_back();
  }
  for (const Operation operation : operations) Dispatch(operation);
  if (round.m_Step == UserStep::None) return;
  m_Run.Host().TakeStep(round.m_Step);
  for (const CPendingRound& posted : m_Run.Take()) {
    for (const Operation operation : posted.m_aOperations) Dispatch(operation);
  }
}

void CGrid::Dispatch(Operation operation) {
  switch (operation) {
    case Operation::kRestart:
      return m_Solver.RequestRestart();
    case Operation::kRebuild:
      return m_Solver.RequestRebuild();
    case Operation::kRebuildMaps:
      return SetDiscMap();
    case Operation::kTransferToHigh:
    case Operation::kTransferToNormal:
      return m_Gate.Do(Edit::SwitchResolution, [&] { Transmit(operation == Operation::kTransferToHigh); });
    case Operation::kRestoreHigh:
    case Operation::kRestoreNormal:
      return m_Gate.Do(Edit::SwitchResolution, [&] { SwapResolution(operation == Operation::kRestoreHigh, false); });
    case Operation::kSubdivide:
      m_Gate.Do(Edit::SplitCells, [&] { m_Wanted.Current().subdivSelected(); });
      return SubdivisionChanged();
    case Operation::kMerge:
      m_Gate.Do(Edit::MergeCells, [&] { m_Wanted.Current().MergeSelected(); });
      return SubdivisionChanged();
    case Operation::kNewCurve:
      UnselectCurves(CurveType::kAll);
      return SetDiscMap();
    case Operation::kSaveGrid:
      if (m_Solver.Counter() < 1) SetSparseH();
      [[fallthrough]];
    case Operation::kLoadGrid:
    case Operation::kNewGrid:
    case Operation::kLoadImage:
    case Operation::kContourAttributes:
      return m_Run.Host().PerformCommand(operation);
    default:
      Console() << "Error : CGrid::UpdateGrid() unknown Next_Operation\n";
  }
}

void CGrid::SubdivisionChanged() {
  SetDiscMap();
  m_Wanted.Current().ShowSelection(m_Surface.Tree());
  m_Run.Host().RequestRedraw();
}

void CGrid::UpdateGrid() {
  const bool polling = g_bNoEventPolling == 0 && m_Run.HasHost();
  const auto poll = [this] {
    m_Run.Host().ProcessEvents();
    return m_Run.HasPending();
  };
  if (polling) m_Run.Host().ProcessEvents();
  // A step may have led to where the solver had done its work.
  const bool resting = PerformOperations() == Performed::Step && !m_Run.IsRunning();
  const CGridSolver::Outcome outcome = resting
                                           ? CGridSolver::Outcome::TickDone
                                           : m_Solver.Tick(m_Surface.Coefficients(), CGridRun::kIterationsPerTick + 1,
                                                           polling ? std::function<bool()>(poll) : nullptr);
  if (m_bSettling && !resting) Settle();
  m_Surface.Reconstruct();
  RefreshNormalCstrHeights();
  const bool stopped = outcome == CGridSolver::Outcome::Converged || outcome == CGridSolver::Outcome::GaveUp;
  if (stopped && m_Run.NextOperation() != Operation::kNone) {
    // What a command or an event has posted meanwhile is an edit after the stop.
    m_Solver.ModelChanged();
  } else if (stopped) {
    m_Run.PauseAfter(outcome);
  }
  if (!m_Run.HasHost()) return;
  if (polling) m_Run.Host().ProcessEvents();
  m_Run.Host().RequestRedraw();
  m_Run.Host().ShowIterations(m_Solver.Counter());
  // Not within the rebuild: the host may have the user read a notice.
  if (const int refused = m_Constraints.TakeRefusedCurves(); refused != 0) m_Run.Host().CurvesRefused(refused);
}

void CGrid::Settle() {
  // An event within the tick may have put the system out of date.
  if (m_Solver.Counter() < 0) return;
  m_Settler.Prepare(m_Surface.Tree(), m_Surface.Order(), m_Solver);
  const CReferenceFit& fit = m_Reference.Fitted();
  const double strength = m_Reference.HasMap() ? m_Reference.Value().m_Settings.m_fStrength : 0.0;
  m_Settler.Follow(m_Reference.Sample(), strength * fit.m_fOffset, strength * fit.m_fLinear, strength * fit.m_fSquare);
  m_Settler.Settle(m_Surface.Basis(), m_Surface.Coefficients());
}

std::optional<CSettler> CGrid::SettlerOfChanges() {
  if (!m_bSettling) return std::nullopt;
  m_Settler.Prepare(m_Surface.Tree(), m_Surface.Order(), m_Solver);
  if (!m_Settler.IsNeeded()) return std::nullopt;
  std::optional<CSettler> settler = m_Settler;
  settler->FollowInChanges(m_Reference.Value().IsActive() ? m_Reference.Sample() : std::span<const double>());
  return settler;
}

void CGrid::SetSettling(bool on) {
  m_bSettling = on;
  if (!on || m_Solver.Counter() < 0) return;
  Settle();
  m_Surface.Reconstruct();
  RefreshNormalCstrHeights();
  m_Run.Host().RequestRedraw();
}

void CGrid::Reset() {
  m_Gate.Do(Edit::ResetSolver, [&] {
    const double limit = 10.0 / static_cast<double>(m_Surface.Lattice().PointCount());
    m_Surface.Randomise(m_Random, limit);
    m_Solver.RandomiseMultipliers(limit);
    m_Surface.Reconstruct();
    m_Run.Post(Operation::kRebuildMaps);
  });
  m_Run.Host().ShowIterations(m_Solver.Counter());
}
