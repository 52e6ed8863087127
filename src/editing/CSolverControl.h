#pragma once

class CGrid;

/// Why the solver does not run.
enum class PauseReason { User = 0, Command = 1, Converged = 2, Freeze = 3, Recorder = 4 };

/// What the run control of the solver moves in the window.
class SolverPanel {
 public:
  virtual ~SolverPanel() = default;

  /// Turns on "Stop the solver" or "Resume the solver".
  virtual void ShowSolverRunning(bool running) = 0;
  /// Activates "Stop the solver", "Resume the solver" and the switch of resolution, or deactivates them.
  virtual void EnableSolverControls(bool enable) = 0;
  /// The same for the panel of the constraints.
  virtual void EnableEditing(bool enable) = 0;
};

/// Starts and stops the solver of a grid and remembers why it is stopped, so that what paused it and nothing else lets
/// it go on.
///
/// Without a grid only the panel is moved.
class CSolverControl {
 public:
  /// Has the toolkit call the solver tick of a grid, unless it does so already.
  using StartTimer = void (*)(CGrid& grid);

  /// The panel must outlive the object.
  CSolverControl(SolverPanel& panel, StartTimer startTimer) : m_Panel(panel), m_pStartTimer(startTimer) {}

  /// The grid whose run is controlled; it must outlive the object.
  void AttachGrid(CGrid& grid) { m_pGrid = &grid; }

  /// Why the solver was last stopped, and whether it runs now.
  PauseReason Reason() const { return m_Reason; }
  bool IsRunning() const;
  /// By the user, or by a tool that has left it so: until the user resumes it, edits wait.
  bool IsStoppedByUser() const { return m_Reason == PauseReason::User && m_pGrid != nullptr && !IsRunning(); }
  /// Whether an edit that is made now is the first one to wait for the user; true once for each stop.
  bool TakeFirstWait();

  /// Stops the solver as the user does: only the user has it go on.
  void StopSolver();
  /// Stops the solver but keeps the reason for which it may go on again.
  void HaltSolver();
  /// Nothing happens unless the solver runs.
  void PauseSolverForCommand();
  void PauseSolverConverged();
  /// Resumes if the solver was paused for a command.
  void ResumeAfterCommand();
  /// Resumes if the solver had converged.
  void ResumeAfterChange();
  /// The model is another one, for which the solver is `done` or not: it stops or goes on accordingly, unless something
  /// else than itself has stopped it.
  void ModelRestored(bool done);
  /// Resumes unless the freeze tool or the recorder holds the solver.
  void ResumeSolver();
  /// Has the grid run and tick, whatever it was stopped for.
  void Run();

  /// Stops the solver for a freeze or for the recorder, until `EndFreeze` or `EndRecorder`.
  void PauseForFreeze();
  void PauseForRecorder();
  /// The solver stays stopped.
  void EndFreeze();
  void EndRecorder();

 private:
  void Stop(PauseReason reason);
  void Resume();

  SolverPanel& m_Panel;
  StartTimer m_pStartTimer;
  CGrid* m_pGrid = nullptr;
  PauseReason m_Reason = PauseReason::User;
  bool m_bNothingWaits = true;  ///< no edit has been made since the user stopped the solver
};
