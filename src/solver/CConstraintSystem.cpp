#include "solver/CConstraintSystem.h"

#include <algorithm>

void CConstraintSystem::ApplySystem(std::span<const double> x, std::span<const double> multipliers,
                                    std::span<double> out) {
  const std::size_t n = UnknownCount();
  m_pBasis->invW(x, m_afHeights);
  m_Smoothness.Times(m_afHeights, m_afForces);
  m_Constraints.Rows().AddTransposeTimes(multipliers, m_afForces);
  m_pBasis->invWTransposeTimes(m_afForces, out.first(n));
  m_Constraints.Rows().Times(m_afHeights, out.subspan(n));
}

void CConstraintSystem::ApplyMagnitudes(std::span<const double> x, std::span<double> out) {
  m_pBasis->invW(x, m_afHeights);
  m_Smoothness.TimesMagnitudes(m_afHeights, m_afForces);
  m_pBasis->invWTransposeTimes(m_afForces, out);
}

void CConstraintSystem::ApplyScaled(std::span<const double> y, std::span<const double> scale,
                                    std::span<const double> multipliers, std::span<double> out) {
  const std::size_t n = UnknownCount();
  m_pBasis->ScaledInvW(y, scale, m_afHeights);
  m_Smoothness.Times(m_afHeights, m_afForces);
  m_Constraints.Rows().AddTransposeTimes(multipliers, m_afForces);
  m_pBasis->ScaledInvWTransposeTimes(m_afForces, scale, out.first(n));
  m_Constraints.Rows().Times(m_afHeights, out.subspan(n));
}

void CConstraintSystem::ApplyTransposedRows(std::span<const double> multipliers, std::span<double> out) {
  std::ranges::fill(m_afForces, 0.0);
  m_Constraints.Rows().AddTransposeTimes(multipliers, m_afForces);
  m_pBasis->invWTransposeTimes(m_afForces, out);
}

void CConstraintSystem::ApplyRows(std::span<const double> x, std::span<double> values) {
  m_pBasis->invW(x, m_afHeights);
  m_Constraints.Rows().Times(m_afHeights, values);
}
