#include "solver/CRestForces.h"

#include <cmath>
#include <limits>

#include "base/Memory.h"
#include "solver/CEnergyTerms.h"

namespace {

// A form that is this share of what cancels in it is rounding: on a plane the forces are to be 0, not next to 0, or
// where nothing else is asked for the iteration would go after them.
constexpr double kRounding = 16 * std::numeric_limits<double>::epsilon();

/// The forms of a term on v and on v * v.
struct CForms {
  double m_fLinear = 0.0;
  double m_fSquare = 0.0;
};

double WithoutRounding(double sum, double magnitude) { return std::abs(sum) <= kRounding * magnitude ? 0.0 : sum; }

// Not a number where one of the values is none.
CForms FormsOf(std::span<const std::uint32_t> unknowns, std::span<const double> coefs, std::span<const double> values) {
  CForms forms;
  CForms magnitudes;
  for (std::size_t e = 0; e < unknowns.size(); ++e) {
    const double value = values[unknowns[e]];
    const double linear = coefs[e] * value;
    const double square = linear * value;
    forms.m_fLinear += linear;
    forms.m_fSquare += square;
    magnitudes.m_fLinear += std::abs(linear);
    magnitudes.m_fSquare += std::abs(square);
  }
  return {WithoutRounding(forms.m_fLinear, magnitudes.m_fLinear),
          WithoutRounding(forms.m_fSquare, magnitudes.m_fSquare)};
}

}  // namespace

void CRestForces::Clear() {
  Release(m_afLinear);
  Release(m_afSquare);
  m_fLinearEnergy = m_fMixedEnergy = m_fSquareEnergy = 0.0;
}

void CRestForces::Collect(const CEnergyTerms& terms, std::span<const double> values) {
  m_afLinear.assign(values.size(), 0.0);
  m_afSquare.assign(values.size(), 0.0);
  m_fLinearEnergy = m_fMixedEnergy = m_fSquareEnergy = 0.0;
  for (std::size_t term = 0; term < terms.Count(); ++term) {
    const std::span<const std::uint32_t> unknowns = terms.Unknowns(term);
    const std::span<const double> coefs = terms.Coefs(term);
    const CForms forms = FormsOf(unknowns, coefs, values);
    if (std::isnan(forms.m_fLinear)) continue;
    const double weight = terms.Weight(term);
    for (std::size_t e = 0; e < unknowns.size(); ++e) {
      m_afLinear[unknowns[e]] += weight * (coefs[e] * forms.m_fLinear);
      m_afSquare[unknowns[e]] += weight * (coefs[e] * forms.m_fSquare);
    }
    m_fLinearEnergy += weight * forms.m_fLinear * forms.m_fLinear;
    m_fMixedEnergy += weight * forms.m_fLinear * forms.m_fSquare;
    m_fSquareEnergy += weight * forms.m_fSquare * forms.m_fSquare;
  }
}

void CRestForces::MakeLoad(const CRestShape& shape, std::vector<double>& load) const {
  if (IsEmpty() || shape.IsNone()) return Release(load);
  load.resize(m_afLinear.size());
  for (std::size_t i = 0; i < load.size(); ++i)
    load[i] = shape.m_fLinear * m_afLinear[i] + shape.m_fSquare * m_afSquare[i];
}

double CRestForces::Energy(const CRestShape& shape) const {
  return shape.m_fLinear * (shape.m_fLinear * m_fLinearEnergy + 2 * shape.m_fSquare * m_fMixedEnergy) +
         shape.m_fSquare * shape.m_fSquare * m_fSquareEnergy;
}
