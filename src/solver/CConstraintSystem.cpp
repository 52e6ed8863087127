#include "solver/CConstraintSystem.h"

#include <algorithm>
#include <cmath>

void CConstraintSystem::ApplySystem(std::span<const double> x, std::span<const double> multipliers,
                                    std::span<double> out) {
  const std::size_t n = UnknownCount();
  m_pBasis->invW(x, m_afHeights);
  m_Smoothness.Times(m_afHeights, m_afForces);
  m_Constraints.Rows().AddTransposeTimes(multipliers, m_afForces);
  m_pBasis->invWTransposeTimes(m_afForces, out.first(n));
  m_Constraints.Rows().Times(m_afHeights, out.subspan(n));
}

// The load cancels most of the smoothness, so it goes before anything is added up.
void CConstraintSystem::ApplyLoaded(std::span<const double> x, std::span<const double> multipliers,
                                    std::span<double> out) {
  if (m_afLoad.empty()) return ApplySystem(x, multipliers, out);
  const std::size_t n = UnknownCount();
  m_pBasis->invW(x, m_afHeights);
  m_Smoothness.Times(m_afHeights, m_afForces);
  for (std::size_t i = 0; i < n; ++i) m_afForces[i] -= m_afLoad[i];
  m_Constraints.Rows().AddTransposeTimes(multipliers, m_afForces);
  m_pBasis->invWTransposeTimes(m_afForces, out.first(n));
  m_Constraints.Rows().Times(m_afHeights, out.subspan(n));
}

void CConstraintSystem::ApplyLoad(std::span<double> out) {
  std::ranges::copy(m_afLoad, m_afForces.begin());
  m_pBasis->invWTransposeTimes(m_afForces, out);
}

void CConstraintSystem::ApplyMagnitudes(std::span<const double> x, std::span<double> out) {
  m_pBasis->invW(x, m_afHeights);
  m_Smoothness.TimesMagnitudes(m_afHeights, m_afForces);
  for (std::size_t i = 0; i < m_afLoad.size(); ++i) m_afForces[i] += std::abs(m_afLoad[i]);
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
