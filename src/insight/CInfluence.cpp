#include "insight/CInfluence.h"

#include <algorithm>
#include <ostream>
#include <utility>

#include "base/Console.h"

CInfluence::CInfluence(const CGridSolver& solver, const CHierarchicalBasis& basis, std::span<const double> change,
                       std::optional<CSettler> settler)
    : m_Basis(basis),
      m_Solver(solver, m_Basis, m_Random, change),
      m_Settler(std::move(settler)),
      m_afX(basis.Size(), 0.0) {
  // Nothing is asked for that could differ from 0.
  m_bDone = m_bExact = std::ranges::all_of(change, [](double value) { return value == 0.0; });
}

bool CInfluence::Continue(int iterations) {
  if (m_bDone) return true;
  // The lines of this solver are nobody's.
  std::ostream nowhere(nullptr);
  const CConsoleRedirect redirect(nowhere);
  const CGridSolver::Outcome outcome = m_Solver.Tick(m_afX, iterations, nullptr);
  m_bExact = outcome == CGridSolver::Outcome::Converged;
  m_bDone = m_bExact || outcome == CGridSolver::Outcome::GaveUp;
  if (m_bDone && m_Settler.has_value()) m_Settler->Settle(m_Basis, m_afX);
  return m_bDone;
}

std::vector<double> CInfluence::Heights() const {
  std::vector<double> heights(m_afX.size());
  m_Basis.invW(m_afX, heights);
  return heights;
}
