#pragma once

#include "model/GridHost.h"

class CEditHistory;
class CGrid;
class CGridCommands;
class CSolverControl;
class ModelDisplay;

/// The host of a grid that a person works on: what the grid reports reaches the display, the run control or the
/// commands. It also has the grid do what is posted while no tick of the solver is there to do it.
class CEditingHost : public GridHost {
 public:
  /// All three must outlive the object.
  CEditingHost(ModelDisplay& display, CSolverControl& solver, CGridCommands& commands)
      : m_Display(display), m_Solver(solver), m_Commands(commands) {}
  CEditingHost(const CEditingHost&) = delete;
  CEditingHost& operator=(const CEditingHost&) = delete;
  ~CEditingHost() override { Detach(); }

  /// Becomes the host of the grid, which must outlive the object or its attachment.
  void AttachGrid(CGrid& grid);
  void Detach();

  /// Who takes the steps back and forward that the user asks for. It must outlive the object.
  void AttachHistory(CEditHistory& history) { m_pHistory = &history; }

  /// Performs what is posted, unless a tick is registered, and tells the user that an edit waits for the solver. To be
  /// called once per round of the toolkit and so never inside the command or the event that posted it. While a button
  /// is `held` nothing is told: the drag shows its own value.
  void PerformPendingWork(bool held);

  void RequestRedraw() override;
  void ShowInterpolation(const CInterpolationTrace& trace) override;
  void ShowIterations(int iterations) override;
  void ShowResolution(int leaves, int points) override;
  void ShowConstraints(int count) override;
  void ProcessEvents() override;
  void CurvesRefused(int count) override;
  void PerformCommand(Operation operation) override;
  void TakeStep(UserStep step) override;
  void PauseSolverConverged() override;
  void PauseSolverGaveUp() override;
  void ResumeAfterChange() override;

 private:
  void Perform();

  ModelDisplay& m_Display;
  CSolverControl& m_Solver;
  CGridCommands& m_Commands;
  CEditHistory* m_pHistory = nullptr;
  CGrid* m_pGrid = nullptr;
  bool m_bEditWaits = false;   ///< for the solver, and the user is not told yet
  bool m_bPerforming = false;  ///< pending work is being done, perhaps with a dialog that lets events in
};
