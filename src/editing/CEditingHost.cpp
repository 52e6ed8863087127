#include "editing/CEditingHost.h"

#include "editing/CEditHistory.h"
#include "editing/CSolverControl.h"
#include "editing/GridCommands.h"
#include "editing/ModelDisplay.h"
#include "model/CGrid.h"
#include "model/Globals.h"

namespace {

// Whether the surface would follow once the solver runs.
bool ChangesSurface(Operation operation) {
  return operation != Operation::kSaveGrid && operation != Operation::kLoadImage;
}

}  // namespace

void CEditingHost::AttachGrid(CGrid& grid) {
  m_pGrid = &grid;
  grid.Run().AttachHost(this);
}

void CEditingHost::Detach() {
  if (m_pGrid != nullptr) m_pGrid->Run().AttachHost(nullptr);
  m_pGrid = nullptr;
}

void CEditingHost::PerformPendingWork(bool held) {
  if (m_pGrid == nullptr || m_bPerforming || g_nSolverTimers != 0) return;
  if (m_pGrid->Run().HasPending()) Perform();
  if (!m_bEditWaits || held) return;
  m_bEditWaits = false;
  if (m_Solver.IsStoppedByUser()) m_Display.TellSolverStopped();
}

void CEditingHost::Perform() {
  // Of a step the user is told in other words.
  const Operation next = m_pGrid->Run().NextOperation();
  if (next != Operation::kNone && ChangesSurface(next) && m_Solver.TakeFirstWait()) m_bEditWaits = true;
  m_bPerforming = true;
  m_pGrid->PerformPendingWork();
  m_bPerforming = false;
  RequestRedraw();
}

void CEditingHost::RequestRedraw() { m_Display.RequestRedraw(); }

void CEditingHost::ShowInterpolation(const CInterpolationTrace& trace) { m_Display.ShowInterpolation(trace); }

void CEditingHost::ShowIterations(int iterations) { m_Display.SetNumberIter(iterations); }

void CEditingHost::ShowResolution(int leaves, int points) {
  m_Display.SetNumberOfCells(leaves);
  m_Display.SetNumberOfPoints(points);
}

void CEditingHost::ShowConstraints(int count) { m_Display.SetNumberOfConstraints(count); }

void CEditingHost::ProcessEvents() { m_Display.ProcessEvents(); }

void CEditingHost::CurvesRefused(int count) { m_Commands.TellRefusedCurves(count); }

void CEditingHost::PerformCommand(Operation operation) { m_Commands.Perform(operation); }

void CEditingHost::TakeStep(UserStep step) {
  if (step == UserStep::FitPicture) return m_Commands.FitPicture();
  if (m_pHistory != nullptr) m_pHistory->Take(step);
}

void CEditingHost::PauseSolverConverged() { m_Solver.PauseSolverConverged(); }

void CEditingHost::PauseSolverGaveUp() {
  m_Solver.PauseSolverConverged();
  m_Display.TellSolverGaveUp();
}

void CEditingHost::ResumeAfterChange() { m_Solver.ResumeAfterChange(); }
