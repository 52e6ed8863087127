#include "solver/ConsistentTargets.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <numeric>
#include <utility>
#include <vector>

namespace {

// What is missed is nothing but rounding below this share of the targets...
constexpr double kMet = 1e-11;
// ...and cannot be reduced when no surface changes it by more than this share. Larger, and heights close to each other
// would count as contradictory; smaller, and rounding would hide the end.
constexpr double kBest = 1e-12;

// As many steps as there are rows would do but for rounding. With very many the search must end before.
constexpr std::size_t kStepsPerRow = 40;
constexpr std::size_t kMostProducts = 100'000'000;

// A row counts as made up of those before it where a shift of this share of the largest square is more than half of
// what is left of it. Rounding is smaller by two orders.
constexpr double kDependentShift = 1e-13;
constexpr double kDependent = 0.5;
// The steps that tell what dependent rows contradict. They lie near each other, so that few will do.
constexpr int kDependentSteps = 200;

double Norm(std::span<const double> values) {
  return std::sqrt(std::transform_reduce(values.begin(), values.end(), values.begin(), 0.0));
}

// The scaled rows over those columns alone that occur in them.
CCompressedRows Condensed(const CCompressedRows& rows, std::span<const double> scale, std::size_t& columns) {
  std::vector<std::uint32_t> used;
  for (std::size_t j = 0; j < rows.RowCount(); ++j)
    used.insert(used.end(), rows.Columns(j).begin(), rows.Columns(j).end());
  std::ranges::sort(used);
  used.erase(std::ranges::unique(used).begin(), used.end());
  columns = used.size();
  CCompressedRows condensed;
  for (std::size_t j = 0; j < rows.RowCount(); ++j) {
    const std::span<const double> values = rows.Values(j);
    for (std::size_t e = 0; e < values.size(); ++e) {
      const auto place = std::ranges::lower_bound(used, rows.Columns(j)[e]) - used.begin();
      condensed.Append(static_cast<std::uint32_t>(place), scale[j] * values[e]);
    }
    condensed.EndRow();
  }
  return condensed;
}

std::size_t MostSteps(const CCompressedRows& rows) {
  return std::min(kStepsPerRow * rows.RowCount() + 1, kMostProducts / (2 * rows.EntryCount() + 1));
}

double Dot(std::span<const double> a, std::span<const double> b) {
  return std::transform_reduce(a.begin(), a.end(), b.begin(), 0.0);
}

}  // namespace

void CConsistentTargets::SetRows(const CCompressedRows& rows, std::span<const double> scale,
                                 std::span<const CRowBlock> blocks) {
  m_Rows = Condensed(rows, scale, m_uColumns);
  m_afScale.assign(scale.begin(), scale.end());
  m_afWork.resize(scale.size());
  FindDependentRows(blocks);
}

void CConsistentTargets::FindDependentRows(std::span<const CRowBlock> blocks) {
  CPlainRows plain;
  for (std::size_t j = 0; j < m_Rows.RowCount(); ++j) {
    const std::span<const double> values = m_Rows.Values(j);
    for (std::size_t e = 0; e < values.size(); ++e) plain.Append(m_Rows.Columns(j)[e], values[e]);
    plain.EndRow();
  }
  m_Factor.Factorise(blocks, plain, m_uColumns, kDependentShift);
  m_auDependent.clear();
  for (std::uint32_t j = 0; j < m_Rows.RowCount(); ++j) {
    if (m_Factor.ShareOfShift(j) > kDependent) m_auDependent.push_back(j);
  }
}

// The combination of rows that is 0 for each dependent one, in which its own share is 1: `values` plus the sum of those
// combinations.
void CConsistentTargets::AddNullVectors(std::span<const double> shares, double factor, std::span<double> values) {
  std::ranges::fill(m_afWork, 0.0);
  for (std::size_t k = 0; k < shares.size(); ++k)
    m_afWork[m_auDependent[k]] = factor * shares[k] * m_Factor.Diagonal(m_auDependent[k]);
  m_Factor.SolveTransposed(m_afWork);
  for (std::size_t j = 0; j < values.size(); ++j) values[j] += m_afWork[j];
}

// What each of them makes of values: 0 unless they contradict each other.
std::vector<double> CConsistentTargets::OfNullVectors(std::span<const double> values) {
  std::ranges::copy(values, m_afWork.begin());
  m_Factor.Solve(m_afWork);
  std::vector<double> shares;
  for (const std::uint32_t j : m_auDependent) shares.push_back(m_afWork[j] * m_Factor.Diagonal(j));
  return shares;
}

// Conjugate gradients for the shares of the combinations that are in the values. Whether there was anything.
bool CConsistentTargets::TakeOutDependent(std::vector<double>& values) {
  const double asked = Norm(values);
  std::vector<double> left = OfNullVectors(values);
  std::vector<double> direction = left;
  double square = Dot(left, left);
  if (!(std::sqrt(square) > kMet * asked)) return false;
  std::vector<double> combination(values.size());
  for (int step = 0; step < kDependentSteps && std::sqrt(square) > kBest * asked; ++step) {
    std::ranges::fill(combination, 0.0);
    AddNullVectors(direction, 1.0, combination);
    const double length = square / Dot(combination, combination);
    for (std::size_t j = 0; j < values.size(); ++j) values[j] -= length * combination[j];
    left = OfNullVectors(values);
    const double before = std::exchange(square, Dot(left, left));
    for (std::size_t k = 0; k < left.size(); ++k) direction[k] = left[k] + square / before * direction[k];
  }
  return true;
}

// Whether `missed` could be told to be the part of the targets that the rows contradict, which it then is.
bool CConsistentTargets::FindContradiction(std::vector<double>& missed) const {
  const double asked = Norm(missed);
  std::vector<double> gradient(m_uColumns, 0.0);
  m_Rows.AddTransposeTimes(missed, gradient);
  double slope = Norm(gradient);
  const double steepness = slope / asked;
  std::vector<double> direction = gradient;
  std::vector<double> image(missed.size());
  for (std::size_t left = MostSteps(m_Rows); left > 0; --left) {
    const double length = Norm(missed);
    if (!(length > kMet * asked)) return false;
    if (slope <= kBest * steepness * length) return true;
    m_Rows.Times(direction, image);
    const double step = std::pow(slope / Norm(image), 2);
    for (std::size_t j = 0; j < missed.size(); ++j) missed[j] -= step * image[j];
    std::ranges::fill(gradient, 0.0);
    m_Rows.AddTransposeTimes(missed, gradient);
    const double before = std::exchange(slope, Norm(gradient));
    const double turn = std::pow(slope / before, 2);
    for (std::size_t i = 0; i < direction.size(); ++i) direction[i] = gradient[i] + turn * direction[i];
  }
  return false;
}

void CConsistentTargets::Apply(std::span<double> targets) {
  std::vector<double> scaled(targets.begin(), targets.end());
  for (std::size_t j = 0; j < scaled.size(); ++j) scaled[j] *= m_afScale[j];
  if (TakeOutDependent(scaled)) {
    for (std::size_t j = 0; j < targets.size(); ++j) targets[j] = scaled[j] / m_afScale[j];
  }
  if (!FindContradiction(scaled)) return;
  for (std::size_t j = 0; j < targets.size(); ++j) targets[j] -= scaled[j] / m_afScale[j];
}
