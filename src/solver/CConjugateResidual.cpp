#include "solver/CConjugateResidual.h"

#include <algorithm>
#include <cmath>
#include <numeric>

#include "solver/CScaledSystem.h"

namespace {

double Dot(std::span<const double> a, std::span<const double> b) {
  return std::transform_reduce(a.begin(), a.end(), b.begin(), 0.0);
}

// Whatever is no number counts as small, too.
bool IsTooSmall(double product) { return !(std::abs(product) >= CConjugateResidual::kBreakdown); }

}  // namespace

void CConjugateResidual::Restart(CScaledSystem& system, std::span<const double> x, std::span<const double> multipliers,
                                 std::span<const double> targets) {
  system.Prepare();
  if (m_afR.size() != system.Size()) m_fLargestGain = 0.0;
  for (auto* vector : {&m_afP, &m_afQ, &m_afR, &m_afS}) vector->assign(system.Size(), 0.0);
  TakeUpResidual(system, x, multipliers, targets);
  m_fStartNorm = ResidualNorm();
  m_fBestImage = m_fPi;
  // |A r| / |r|: here q is A r.
  m_fGain = std::sqrt(m_fPi) / m_fStartNorm;
  m_fLargestGain = std::max(m_fLargestGain, m_fGain);
  m_iSinceProgress = 0;
}

void CConjugateResidual::Refresh(CScaledSystem& system, std::span<const double> x, std::span<const double> multipliers,
                                 std::span<const double> targets) {
  TakeUpResidual(system, x, multipliers, targets);
  m_fBestImage = m_fPi;
  m_iSinceProgress = 0;
}

void CConjugateResidual::TakeUpResidual(CScaledSystem& system, std::span<const double> x,
                                        std::span<const double> multipliers, std::span<const double> targets) {
  // r = (0, d) - A (x, l), s = A r, and the first direction is the residual: p = r, q = A p = s.
  system.TakeResidual(x, multipliers, targets, m_afR);
  system.ApplySystem(m_afR, m_afS);
  std::ranges::copy(m_afR, m_afP.begin());
  std::ranges::copy(m_afS, m_afQ.begin());
  m_fRho = Dot(m_afR, m_afS);
  m_fPi = Dot(m_afQ, m_afQ);
}

bool CConjugateResidual::HasBrokenDown() const { return IsTooSmall(m_fRho) || IsTooSmall(m_fPi); }

double CConjugateResidual::ResidualNorm() const { return std::sqrt(Dot(m_afR, m_afR)); }

// Of the squared lengths of A r and r. |A r| counts as halved when its square is down to a quarter.
void CConjugateResidual::NoteProgress(double image, double residual) {
  m_fGain = std::sqrt(image / residual);
  m_fLargestGain = std::max(m_fLargestGain, m_fGain);
  ++m_iSinceProgress;
  if (image > 0.25 * m_fBestImage) return;
  m_fBestImage = image;
  m_iSinceProgress = 0;
}

// The next direction and its image, p = beta p + r and q = A p = beta q + s. Returns q . q.
double CConjugateResidual::Advance(double beta) {
  double pi = 0.0;
  for (std::size_t i = 0; i < m_afP.size(); ++i) {
    m_afP[i] = beta * m_afP[i] + m_afR[i];
    const double q = beta * m_afQ[i] + m_afS[i];
    m_afQ[i] = q;
    pi += q * q;
  }
  return pi;
}

CConjugateResidual::Outcome CConjugateResidual::Step(CScaledSystem& system, std::span<double> x,
                                                     std::span<double> way) {
  if (HasBrokenDown()) return IsTooSmall(m_fRho) ? Outcome::SmallRho : Outcome::SmallPi;
  // How far to go along p for the shortest residual.
  const double alpha = m_fRho / m_fPi;
  const std::size_t n = system.UnknownCount();
  const double* p = m_afP.data();
  const double* q = m_afQ.data();
  double* r = m_afR.data();
  const double* scale = system.BasisScale().data();
  // The step along p, which is scaled, in the units of x.
  const double length = alpha / system.Factor();
  // x += alpha p, r -= alpha q, over the coefficients and then over the multipliers.
  for (std::size_t i = 0; i < n; ++i) {
    x[i] += length * (scale[i] * p[i]);
    r[i] -= alpha * q[i];
  }
  for (std::size_t j = 0; j < way.size(); ++j) {
    way[j] += alpha * p[n + j];
    r[n + j] -= alpha * q[n + j];
  }
  // s = A r, and in one pass r . s, s . s and r . r.
  system.ApplySystem(m_afR, m_afS);
  double rho = 0.0;
  double image = 0.0;
  double residual = 0.0;
  for (std::size_t i = 0; i < m_afR.size(); ++i) {
    rho += m_afS[i] * m_afR[i];
    image += m_afS[i] * m_afS[i];
    residual += m_afR[i] * m_afR[i];
  }
  NoteProgress(image, residual);
  // So much of the old direction makes the new one's image perpendicular to the old one's.
  const double beta = rho / m_fRho;
  m_fRho = rho;
  m_fPi = Advance(beta);
  return Outcome::Stepped;
}
