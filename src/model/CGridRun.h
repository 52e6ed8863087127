#pragma once

#include <vector>

#include "model/CPendingWork.h"
#include "model/GridHost.h"
#include "solver/CGridSolver.h"

/// The run of a grid: whether its solver goes on, what waits for the next tick, and the program around it all.
class CGridRun {
 public:
  /// A tick does one more.
  static constexpr int kIterationsPerTick = 9;

  /// The solver must outlive the run.
  explicit CGridRun(CGridSolver& solver) : m_Solver(solver), m_NoHost(*this) {}
  CGridRun(const CGridRun&) = delete;
  CGridRun& operator=(const CGridRun&) = delete;
  ~CGridRun() = default;

  /// The program around the model, or null. Must outlive the grid or be detached.
  void AttachHost(GridHost* host) { m_pHost = host == nullptr ? &m_NoHost : host; }
  bool HasHost() const { return m_pHost != &m_NoHost; }
  /// Where none is attached, one that shows nothing and only goes on after a change.
  GridHost& Host() const { return *m_pHost; }

  /// Whether ticks iterate.
  bool IsRunning() const { return m_bRunning; }
  void SetRunning(bool running) { m_bRunning = running; }
  /// The solver has stopped itself.
  void PauseAfter(CGridSolver::Outcome outcome);

  /// Leaves `operation` for the next tick. An edit of a model that had converged resumes the solver.
  void Post(Operation operation);
  /// See CPendingWork.
  Operation NextOperation() const { return m_Pending.Next(); }
  void RequestStep(UserStep step) { m_Pending.RequestStep(step); }
  /// Whether anything waits.
  bool HasPending() const { return NextOperation() != Operation::kNone || m_Pending.HasStep(); }
  std::vector<CPendingRound> Take() { return m_Pending.TakeRounds(); }
  void DropPending() { m_Pending.Clear(); }

 private:
  class CNoHost : public GridHost {
   public:
    explicit CNoHost(CGridRun& run) : m_Run(run) {}
    void ResumeAfterChange() override { m_Run.SetRunning(true); }

   private:
    CGridRun& m_Run;
  };

  CGridSolver& m_Solver;
  bool m_bRunning = true;
  CPendingWork m_Pending;
  CNoHost m_NoHost;
  GridHost* m_pHost = &m_NoHost;
};
