#pragma once

struct CInterpolationTrace;

/// Where the user sees what becomes of the model.
class ModelDisplay {
 public:
  virtual ~ModelDisplay() = default;

  /// The surface or what is drawn on it has changed: both views are out of date.
  virtual void RequestRedraw() = 0;
  /// What an interpolation was made of.
  virtual void ShowInterpolation(const CInterpolationTrace& trace) = 0;

  // The read-outs.

  /// Iterations done since the last restart.
  virtual void SetNumberIter(int n) = 0;
  /// The user's point constraints that are active.
  virtual void SetNumberOfConstraints(int n) = 0;
  virtual void SetNumberOfCells(int n) = 0;
  virtual void SetNumberOfPoints(int n) = 0;

  /// The solver has stopped itself without having converged.
  virtual void TellSolverGaveUp() = 0;
  /// The user has stopped the solver, and something waits for it.
  virtual void TellSolverStopped() = 0;

  /// Lets the toolkit process the events that wait.
  virtual void ProcessEvents() = 0;
};
