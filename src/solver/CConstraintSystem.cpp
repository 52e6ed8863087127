#include "solver/CConstraintSystem.h"

void CConstraintSystem::ApplySystem(std::span<const double> v, std::span<double> out) {
  const std::size_t n = UnknownCount();
  m_pBasis->invW(v.first(n), m_afHeights);
  m_Smoothness.Times(m_afHeights, m_afForces);
  m_Constraints.Rows().AddTransposeTimes(v.subspan(n), m_afForces);
  m_pBasis->invWTransposeTimes(m_afForces, out.first(n));
  m_Constraints.Rows().Times(m_afHeights, out.subspan(n));
}

void CConstraintSystem::ApplyMagnitudes(std::span<const double> x, std::span<double> out) {
  m_pBasis->invW(x, m_afHeights);
  m_Smoothness.TimesMagnitudes(m_afHeights, m_afForces);
  m_pBasis->invWTransposeTimes(m_afForces, out.first(UnknownCount()));
  m_Constraints.Rows().TimesMagnitudes(m_afHeights, out.subspan(UnknownCount()));
}
