#include "solver/CConjugateResidual.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numeric>

#include "solver/CConstraintSystem.h"

namespace {

double Dot(std::span<const double> a, std::span<const double> b) {
  return std::transform_reduce(a.begin(), a.end(), b.begin(), 0.0);
}

double Square(double value) { return value * value; }

// Of values whose squares may lie beyond the finite numbers, or below the smallest.
double SafeNorm(std::span<const double> values) {
  double largest = 0.0;
  for (const double value : values) {
    if (!std::isfinite(value)) return HUGE_VAL;
    largest = std::max(largest, std::abs(value));
  }
  if (largest == 0.0) return 0.0;
  double sum = 0.0;
  for (const double value : values) sum += (value / largest) * (value / largest);
  return largest * std::sqrt(sum);
}

}  // namespace

void CConjugateResidual::Restart(CConstraintSystem& system, std::span<const double> x,
                                 std::span<const double> multipliers, std::span<const double> targets) {
  system.Prepare();
  if (m_afR.size() != system.Size()) m_fLargestGain = 0.0;
  for (auto* vector : {&m_afP, &m_afQ, &m_afR, &m_afS}) vector->assign(system.Size(), 0.0);
  TakeUpResidual(system, x, multipliers, targets);
  m_fStartNorm = ResidualNorm();
  m_fMagnification = 1.0;
  m_fForceRounding = m_fMissRounding = -1.0;
  m_fBestImage = m_fPi;
  m_fGain = std::sqrt(m_fPi) / m_fStartNorm;
  m_fLargestGain = std::max(m_fLargestGain, m_fGain);
  m_iSinceProgress = 0;
}

void CConjugateResidual::Refresh(CConstraintSystem& system, std::span<const double> x,
                                 std::span<const double> multipliers, std::span<const double> targets) {
  TakeUpResidual(system, x, multipliers, targets);
  const double magnification = m_fStartNorm / ResidualNorm();
  m_fMagnification = magnification * magnification;
  m_fBestImage = m_fPi;
  m_iSinceProgress = 0;
}

void CConjugateResidual::TakeUpResidual(CConstraintSystem& system, std::span<const double> x,
                                        std::span<const double> multipliers, std::span<const double> targets) {
  const std::size_t n = system.UnknownCount();
  std::ranges::copy(x.first(n), m_afP.begin());
  std::ranges::copy(multipliers, m_afP.begin() + static_cast<std::ptrdiff_t>(n));
  system.ApplySystem(m_afP, m_afR);
  for (std::size_t i = 0; i < n; ++i) m_afR[i] = -m_afR[i];
  for (std::size_t j = 0; j < targets.size(); ++j) m_afR[n + j] = targets[j] - m_afR[n + j];
  system.ApplySystem(m_afR, m_afS);
  std::ranges::copy(m_afR, m_afP.begin());
  std::ranges::copy(m_afS, m_afQ.begin());
  m_fRho = Dot(m_afR, m_afS);
  m_fPi = Dot(m_afQ, m_afQ);
  m_fForces = Dot(std::span(m_afR).first(n), std::span(m_afR).first(n));
  m_fMisses = Dot(std::span(m_afR).subspan(n), std::span(m_afR).subspan(n));
}

CImbalance CConjugateResidual::Measure(CConstraintSystem& system, std::span<const double> x,
                                       std::span<const double> multipliers, std::span<const double> targets) {
  Refresh(system, x, multipliers, targets);
  const std::size_t n = system.UnknownCount();
  const std::span<double> image = std::span(m_afQ);
  CImbalance found;
  found.m_fForces = SafeNorm(std::span(m_afR).first(n));
  found.m_fMisses = SafeNorm(std::span(m_afR).subspan(n));
  found.m_fTargets = SafeNorm(targets);
  system.ApplyMagnitudes(x.first(n), image);
  found.m_fMagnitude = SafeNorm(image.first(n));
  found.m_fReach = SafeNorm(image.subspan(n));
  // Direction and image lend their room and get back what they held.
  std::fill_n(m_afP.begin(), n, 0.0);
  std::ranges::copy(multipliers, m_afP.begin() + static_cast<std::ptrdiff_t>(n));
  system.ApplySystem(m_afP, m_afQ);
  found.m_fPulls = SafeNorm(image.first(n));
  std::ranges::copy(m_afR, m_afP.begin());
  std::ranges::copy(m_afS, m_afQ.begin());
  constexpr double kEpsilon = std::numeric_limits<double>::epsilon();
  m_fForceRounding = Square(kEpsilon * found.m_fMagnitude);
  m_fMissRounding = Square(kEpsilon * (found.m_fReach + found.m_fTargets));
  return found;
}

// Written so that 0 times infinity, a residual that vanishes altogether, counts as small.
bool CConjugateResidual::IsTooSmall(double product) const {
  return !(std::abs(product) * m_fMagnification >= kBreakdown);
}

bool CConjugateResidual::HasBrokenDown() const { return IsRounding() || IsTooSmall(m_fRho) || IsTooSmall(m_fPi); }

double CConjugateResidual::ResidualNorm() const { return std::sqrt(Dot(m_afR, m_afR)); }

// Squared lengths of A r and r.
void CConjugateResidual::NoteProgress(double image, double residual) {
  m_fGain = std::sqrt(image / residual);
  m_fLargestGain = std::max(m_fLargestGain, m_fGain);
  ++m_iSinceProgress;
  if (image > 0.25 * m_fBestImage) return;
  m_fBestImage = image;
  m_iSinceProgress = 0;
}

// p = beta p + r, q = beta q + s; returns q . q.
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

CConjugateResidual::Outcome CConjugateResidual::Step(CConstraintSystem& system, std::span<double> x,
                                                     std::span<double> multipliers) {
  if (HasBrokenDown()) return IsRounding() || IsTooSmall(m_fRho) ? Outcome::SmallRho : Outcome::SmallPi;
  const std::size_t n = system.UnknownCount();
  const double alpha = m_fRho / m_fPi;
  const double* p = m_afP.data();
  const double* q = m_afQ.data();
  double* r = m_afR.data();
  for (std::size_t i = 0; i < n; ++i) {
    x[i] += alpha * p[i];
    r[i] -= alpha * q[i];
  }
  for (std::size_t j = 0; j < multipliers.size(); ++j) {
    multipliers[j] += alpha * p[n + j];
    r[n + j] -= alpha * q[n + j];
  }
  system.ApplySystem(m_afR, m_afS);
  double rho = 0.0;
  double image = 0.0;
  const auto squaresOf = [&](std::size_t from, std::size_t to) {
    double residual = 0.0;
    for (std::size_t i = from; i < to; ++i) {
      rho += m_afS[i] * m_afR[i];
      image += m_afS[i] * m_afS[i];
      residual += m_afR[i] * m_afR[i];
    }
    return residual;
  };
  m_fForces = squaresOf(0, n);
  m_fMisses = squaresOf(n, m_afR.size());
  NoteProgress(image, m_fForces + m_fMisses);
  const double beta = rho / m_fRho;
  m_fRho = rho;
  m_fPi = Advance(beta);
  return Outcome::Stepped;
}
