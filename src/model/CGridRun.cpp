#include "model/CGridRun.h"

namespace {

// Loading brings its own state of the solver; saving and a new picture leave the model as it is.
bool ChangesModel(Operation operation) {
  return operation != Operation::kLoadGrid && operation != Operation::kSaveGrid && operation != Operation::kLoadImage;
}

}  // namespace

void CGridRun::Post(Operation operation) {
  m_Pending.Post(operation);
  if (ChangesModel(operation) && m_Solver.ModelChanged()) Host().ResumeAfterChange();
}

void CGridRun::PauseAfter(CGridSolver::Outcome outcome) {
  m_bRunning = false;
  if (outcome == CGridSolver::Outcome::Converged) return Host().PauseSolverConverged();
  Host().PauseSolverGaveUp();
}
