#include "solver/ConsistentTargets.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <numeric>
#include <utility>
#include <vector>

#include "base/CRandom.h"

namespace {

// What is missed is nothing but rounding below this share of the targets...
constexpr double kMet = 1e-11;
// ...and cannot be reduced when no surface changes it by more than this share. Larger, and heights close to each other
// would count as contradictory; smaller, and rounding would hide the end.
constexpr double kBest = 1e-12;

// As many steps as there are rows would do but for rounding. With very many rows each search must end before: after so
// many products, which take a tenth of a second.
constexpr std::size_t kStepsPerRow = 40;
constexpr std::size_t kMostProducts = 100'000'000;
std::size_t Within(std::size_t steps, std::size_t products) { return std::min(steps, kMostProducts / (products + 1)); }

// What chance asks for is missed by a larger share than this if rows depend on each other, or by great ill luck not.
// Seen through their factor the rows ask for some tens of steps; where these do not do, nothing is known.
constexpr double kReached = 1e-8;
constexpr std::size_t kReachSteps = 300;

// A row counts as made up of those before it where a shift of this share of the largest square is more than half of
// what is left of it. Rounding is smaller by two orders.
constexpr double kDependentShift = 1e-13;
constexpr double kDependent = 0.5;
// The steps that tell what dependent rows contradict. They lie near each other, so that few will do.
constexpr std::size_t kDependentSteps = 200;

double Norm(std::span<const double> values) {
  return std::sqrt(std::transform_reduce(values.begin(), values.end(), values.begin(), 0.0));
}

// The scaled rows over those columns alone that occur in them.
CCompressedRows Condensed(const CCompressedRows& rows, std::span<const double> scale, std::size_t& columns) {
  std::vector<std::uint32_t> used;
  for (std::size_t j = 0; j < rows.RowCount(); ++j)
    used.insert(used.end(), rows.Columns(j).begin(), rows.Columns(j).end());
  std::ranges::sort(used);
  used.erase(std::unique(used.begin(), used.end()), used.end());
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

double Dot(std::span<const double> a, std::span<const double> b) {
  return std::transform_reduce(a.begin(), a.end(), b.begin(), 0.0);
}

// How the search for the least squares has ended.
enum class LeastSquares {
  kAllMet,        ///< nothing is missed
  kContradicted,  ///< what is missed is what the rows contradict
  kOpen,          ///< the steps did not do
};

// Conjugate gradients on a matrix that times(v, out) and addTransposeTimes(v, out) stand for. From what is `missed` is
// taken what the matrix can give, to the share `met` of it.
template <typename Times, typename AddTransposeTimes>
LeastSquares Reduce(std::vector<double>& missed, std::size_t columns, double met, std::size_t steps, const Times& times,
                    const AddTransposeTimes& addTransposeTimes) {
  const double asked = Norm(missed);
  std::vector<double> gradient(columns, 0.0);
  addTransposeTimes(missed, gradient);
  double slope = Norm(gradient);
  const double steepness = slope / asked;
  std::vector<double> direction = gradient;
  std::vector<double> image(missed.size());
  for (;; --steps) {
    const double length = Norm(missed);
    if (!(length > met * asked)) return LeastSquares::kAllMet;
    if (slope <= kBest * steepness * length) return LeastSquares::kContradicted;
    if (steps == 0) return LeastSquares::kOpen;
    times(direction, image);
    const double step = std::pow(slope / Norm(image), 2);
    for (std::size_t j = 0; j < missed.size(); ++j) missed[j] -= step * image[j];
    std::ranges::fill(gradient, 0.0);
    addTransposeTimes(missed, gradient);
    const double before = std::exchange(slope, Norm(gradient));
    const double turn = std::pow(slope / before, 2);
    for (std::size_t i = 0; i < direction.size(); ++i) direction[i] = gradient[i] + turn * direction[i];
  }
}

}  // namespace

void CConsistentTargets::SetRows(const CCompressedRows& rows, std::span<const double> scale,
                                 std::span<const CRowBlock> blocks) {
  m_Rows = Condensed(rows, scale, m_uColumns);
  m_afScale.assign(scale.begin(), scale.end());
  m_afWork.resize(scale.size());
  FindDependentRows(blocks);
  // One block sees all rows.
  m_Others = blocks.size() > 1 ? Others::kUnknown : Others::kNone;
}

void CConsistentTargets::FindDependentRows(std::span<const CRowBlock> blocks) {
  const auto write = [this](std::uint32_t j, CPlainRows& rows) {
    const std::span<const double> values = m_Rows.Values(j);
    for (std::size_t e = 0; e < values.size(); ++e) rows.Append(m_Rows.Columns(j)[e], values[e]);
    rows.EndRow();
  };
  m_Factor.Factorise(blocks, m_Rows.RowCount(), write, m_uColumns, kDependentShift);
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
  std::size_t steps = Within(kDependentSteps, 2 * m_Factor.EntryCount());
  for (; steps > 0 && std::sqrt(square) > kBest * asked; --steps) {
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

// Whether other rows depend on each other: what chance asks of all others is then beyond them, too.
CConsistentTargets::Others CConsistentTargets::FindOthers() {
  if (m_Rows.RowCount() - m_auDependent.size() > m_uColumns) return Others::kSome;
  CRandom random(1);
  std::vector<double> values(m_Rows.RowCount());
  for (double& value : values) value = random.UpTo(2.0) - 1.0;
  return IsReached(std::move(values), kReached) ? Others::kNone : Others::kSome;
}

void CConsistentTargets::DropDependent(std::span<double> values) const {
  for (const std::uint32_t j : m_auDependent) values[j] = 0.0;
}

// Whether some surface gives the rows these values, those apart that depend on their neighbours. The search goes
// through the factor, which does not change the answer and makes it short.
bool CConsistentTargets::IsReached(std::vector<double> values, double share) {
  const auto solve = [this](std::span<double> v) {
    DropDependent(v);
    m_Factor.Solve(v);
    DropDependent(v);
  };
  const auto times = [&](std::span<const double> v, std::span<double> out) {
    m_Rows.Times(v, out);
    solve(out);
  };
  const auto addTransposeTimes = [this](std::span<const double> v, std::span<double> out) {
    std::ranges::copy(v, m_afWork.begin());
    DropDependent(m_afWork);
    m_Factor.SolveTransposed(m_afWork);
    DropDependent(m_afWork);
    m_Rows.AddTransposeTimes(m_afWork, out);
  };
  solve(values);
  const std::size_t steps = Within(kReachSteps, 2 * (m_Rows.EntryCount() + m_Factor.EntryCount()));
  return Reduce(values, m_uColumns, share, steps, times, addTransposeTimes) == LeastSquares::kAllMet;
}

// Whether there is nothing to be searched for, once what dependent rows contradict has been taken out.
bool CConsistentTargets::CanBeMet(std::span<const double> values) {
  if (Norm(OfNullVectors(values)) > kMet * Norm(values)) return false;
  if (m_Others == Others::kUnknown) m_Others = FindOthers();
  return m_Others == Others::kNone || IsReached({values.begin(), values.end()}, kMet);
}

// Whether `missed` could be told to be the part of the targets that the rows contradict, which it then is.
bool CConsistentTargets::FindContradiction(std::vector<double>& missed) const {
  const std::size_t steps = Within(kStepsPerRow * m_Rows.RowCount() + 1, 2 * m_Rows.EntryCount());
  const auto times = [this](std::span<const double> v, std::span<double> out) { m_Rows.Times(v, out); };
  const auto addTransposeTimes = [this](std::span<const double> v, std::span<double> out) {
    m_Rows.AddTransposeTimes(v, out);
  };
  return Reduce(missed, m_uColumns, kMet, steps, times, addTransposeTimes) == LeastSquares::kContradicted;
}

void CConsistentTargets::Apply(std::span<double> targets) {
  std::vector<double> scaled(targets.begin(), targets.end());
  for (std::size_t j = 0; j < scaled.size(); ++j) scaled[j] *= m_afScale[j];
  if (TakeOutDependent(scaled)) {
    for (std::size_t j = 0; j < targets.size(); ++j) targets[j] = scaled[j] / m_afScale[j];
  }
  if (CanBeMet(scaled) || !FindContradiction(scaled)) return;
  for (std::size_t j = 0; j < targets.size(); ++j) targets[j] -= scaled[j] / m_afScale[j];
}
