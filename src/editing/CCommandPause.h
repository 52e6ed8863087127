#pragma once

#include "editing/CSolverControl.h"

/// Holds the solver while a command works.
class CCommandPause {
 public:
  /// It must outlive the pause.
  explicit CCommandPause(CSolverControl& solver) : m_Solver(solver) { m_Solver.PauseSolverForCommand(); }
  ~CCommandPause() { m_Solver.ResumeAfterCommand(); }
  CCommandPause(const CCommandPause&) = delete;
  CCommandPause& operator=(const CCommandPause&) = delete;

 private:
  CSolverControl& m_Solver;
};
