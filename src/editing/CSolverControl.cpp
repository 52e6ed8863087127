#include "editing/CSolverControl.h"

#include <utility>

#include "model/CGrid.h"

bool CSolverControl::IsRunning() const { return m_pGrid != nullptr && m_pGrid->Run().IsRunning(); }

void CSolverControl::HaltSolver() {
  if (m_pGrid != nullptr) m_pGrid->Run().SetRunning(false);
  m_Panel.ShowSolverRunning(false);
}

bool CSolverControl::TakeFirstWait() { return IsStoppedByUser() && std::exchange(m_bNothingWaits, false); }

void CSolverControl::Stop(PauseReason reason) {
  if (!IsStoppedByUser()) m_bNothingWaits = true;
  m_Reason = reason;
  HaltSolver();
}

void CSolverControl::StopSolver() { Stop(PauseReason::User); }

void CSolverControl::PauseSolverForCommand() {
  if (IsRunning()) Stop(PauseReason::Command);
}

void CSolverControl::PauseSolverConverged() { Stop(PauseReason::Converged); }

void CSolverControl::ResumeAfterCommand() {
  if (m_Reason == PauseReason::Command) Resume();
}

void CSolverControl::ResumeAfterChange() {
  if (m_Reason == PauseReason::Converged) Resume();
}

void CSolverControl::ModelRestored(bool done) {
  if (!IsRunning() && m_Reason != PauseReason::Converged) return;
  if (done) {
    PauseSolverConverged();
  } else if (!IsRunning()) {
    Resume();
  }
}

void CSolverControl::ResumeSolver() {
  if (m_Reason != PauseReason::Freeze && m_Reason != PauseReason::Recorder) Resume();
}

void CSolverControl::Resume() {
  Run();
  m_Panel.ShowSolverRunning(true);
  m_Reason = PauseReason::Command;
}

void CSolverControl::Run() {
  if (m_pGrid == nullptr) return;
  m_bNothingWaits = true;
  m_pGrid->Run().SetRunning(true);
  m_pStartTimer(*m_pGrid);
}

void CSolverControl::PauseForFreeze() {
  Stop(PauseReason::Freeze);
  m_Panel.EnableSolverControls(false);
}

void CSolverControl::EndFreeze() {
  StopSolver();
  m_Panel.EnableSolverControls(true);
}

void CSolverControl::PauseForRecorder() {
  Stop(PauseReason::Recorder);
  m_Panel.EnableSolverControls(false);
  m_Panel.EnableEditing(false);
}

void CSolverControl::EndRecorder() {
  StopSolver();
  m_Panel.EnableSolverControls(true);
  m_Panel.EnableEditing(true);
}
