#pragma once

#include "model/CPendingWork.h"

struct CInterpolationTrace;

/// What the model asks of the program around it. The window implements it; a grid without a host works on its own.
///
/// A host overrides what it can show or do. Where nothing is said otherwise, not doing it leaves the model whole.
class GridHost {
 public:
  virtual ~GridHost() = default;

  /// The surface or what is drawn on it has changed: both views are out of date.
  virtual void RequestRedraw() {}
  /// Show what an interpolation was made of over the picture.
  virtual void ShowInterpolation(const CInterpolationTrace& /*trace*/) {}
  /// Show the number of iterations done since the last restart.
  virtual void ShowIterations(int /*iterations*/) {}
  /// Show the number of active leaves and of active points.
  virtual void ShowResolution(int /*leaves*/, int /*points*/) {}
  /// Show how many of the user's point constraints are active.
  virtual void ShowConstraints(int /*count*/) {}

  /// Let the toolkit process the events that wait; they may post work to the grid.
  virtual void ProcessEvents() {}
  /// Curves generate no constraints any more, because all together would be too many: tell the user.
  virtual void CurvesRefused(int /*count*/) {}
  /// Perform a command that is the program's and not the model's (such as Operation::kLoadGrid).
  virtual void PerformCommand(Operation /*operation*/) {}
  /// Take the user's document a step back or forward (see CGrid::RestoreDocument and RestoreState), or begin a new one
  /// in the picture's proportions. What waited when the step was asked for has been performed, but for edits, whose
  /// code is posted.
  virtual void TakeStep(UserStep /*step*/) {}
  /// The solver has converged and cleared the grid's running flag.
  virtual void PauseSolverConverged() {}
  /// The solver has cleared the flag without having converged, as it gets no nearer to the constraints: tell the user,
  /// who would otherwise take the surface for what the constraints ask for. The next change lets it go on all the same.
  virtual void PauseSolverGaveUp() { PauseSolverConverged(); }
  /// The model has changed after the solver had stopped itself: set the grid's running flag and have it tick again. A
  /// host that does not leaves the surface behind the constraints.
  virtual void ResumeAfterChange() = 0;
};
