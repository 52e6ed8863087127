#include "solver/CScaledSystem.h"

#include <algorithm>
#include <cmath>
#include <queue>
#include <utility>

#include "quadtree/CPointOrder.h"
#include "solver/BasisEnergies.h"

namespace {

constexpr std::size_t kCornerUnknowns = 4;

// One block may hold this many rows, whose factor is then as good as the constraints allow...
constexpr std::size_t kLargestBlock = 256;
// ...with more, the factor takes at most so many products for each unknown in either direction: the rest of an
// iteration takes about thirty...
constexpr std::size_t kProductsPerUnknown = 11;
// ...but for as many rows as there may be never fewer for a row than the first figure, and no more than the second.
constexpr std::size_t kFewestPerRow = 12;
constexpr std::size_t kMostPerRow = 48;

CRowBlockSizes BlockSizes(std::size_t rows, std::size_t unknowns) {
  const std::size_t products =
      std::clamp(kProductsPerUnknown * unknowns / std::max<std::size_t>(rows, 1), kFewestPerRow, kMostPerRow);
  const std::size_t own = products / 4;
  return {kLargestBlock, own, products - own / 2};
}

// Of the largest diagonal entry of S. Larger, and constraints close to each other would be scaled as if they were one;
// much smaller, and rounding would turn the pivots of dependent rows negative.
constexpr double kShift = 1e-8;

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

// Most rebuilds are for a constraint that came or went, and make the same matrix again.
void CScaledSystem::SetSmoothness(CCompressedRows matrix) {
  if (!(matrix == m_pSystem->Smoothness())) m_afBasisScale.clear();
  m_pSystem->Smoothness() = std::move(matrix);
}

void CScaledSystem::ScaleBasis(const CPointOrder& order) {
  const std::uint64_t revision = m_pSystem->Basis().Revision();
  if (m_uBasisRevision == revision && m_afBasisScale.size() == UnknownCount()) return;
  m_uBasisRevision = revision;
  m_afBasisScale = BasisEnergies(m_pSystem->Smoothness(), m_pSystem->Basis(), order);
  for (double& value : m_afBasisScale) value = value > 0 && std::isfinite(value) ? 1.0 / std::sqrt(value) : 0.0;
  const bool predicts = m_pSystem->Basis().Mode() != WaveletMode::None;
  const std::span<double> corners = std::span(m_afBasisScale).first(std::min(kCornerUnknowns, m_afBasisScale.size()));
  if (predicts) std::ranges::fill(corners, 0.0);
  const double largest = m_afBasisScale.empty() ? 0.0 : std::ranges::max(m_afBasisScale);
  for (double& value : m_afBasisScale) {
    if (value == 0.0) value = largest > 0 ? largest : 1.0;
  }
  m_bRowsStale = true;
}

bool CScaledSystem::HasRowsAsScaled(double slopeUnit) const {
  return !m_bRowsStale && slopeUnit == m_fSlopeUnit && m_pSystem->Constraints().Rows() == m_ScaledRows;
}

// In the middle of the points that a row is about.
std::vector<CRowPlace> CScaledSystem::RowPlaces(const CPointOrder& order) const {
  const CConstraintRows& constraints = m_pSystem->Constraints();
  const auto side = static_cast<std::uint32_t>(order.PointsPerSide());
  std::vector<CRowPlace> places(ConstraintCount());
  for (std::size_t j = 0; j < places.size(); ++j) {
    const CCompressedRows::CColumns columns = constraints.Rows().Columns(j);
    for (const std::uint32_t column : columns) {
      const std::uint32_t point = order.PointAtScan(column);
      places[j].m_fX += point % side;
      const std::uint32_t row = point / side;
      places[j].m_fY += row;
    }
    const double unit = 1.0 / (static_cast<double>(std::max<std::size_t>(columns.size(), 1)) * side);
    places[j].m_fX *= unit;
    places[j].m_fY *= unit;
    places[j].m_bSlope = constraints.IsSlope(j);
  }
  return places;
}

void CScaledSystem::ScaleRows(const CPointOrder& order, double slopeUnit) {
  if (HasRowsAsScaled(slopeUnit)) return;
  const CConstraintRows& constraints = m_pSystem->Constraints();
  m_afRowScale.resize(ConstraintCount());
  for (std::size_t j = 0; j < m_afRowScale.size(); ++j) m_afRowScale[j] = constraints.IsSlope(j) ? slopeUnit : 1.0;
  m_afWork.assign(Size(), 0.0);
  const CRowBlockSizes sizes = BlockSizes(ConstraintCount(), UnknownCount());
  const std::vector<CRowBlock> blocks = ChooseRowBlocks(RowPlaces(order), sizes);
  const auto collect = [this](std::uint32_t j, CPlainRows& rows) { CollectRow(j, rows); };
  m_Factor.Factorise(blocks, ConstraintCount(), collect, UnknownCount(), kShift);
  m_Consistent.SetRows(constraints.Rows(), m_afRowScale, blocks);
  m_ScaledRows = constraints.Rows();
  m_fSlopeUnit = slopeUnit;
  m_bRowsStale = false;
}

// Row j of R C B D: from the points of the row to their parents, finest first.
void CScaledSystem::CollectRow(std::size_t j, CPlainRows& scaled) {
  const CHierarchicalBasis& basis = m_pSystem->Basis();
  const CCompressedRows& rows = m_pSystem->Constraints().Rows();
  std::priority_queue<std::uint32_t> open;
  const auto add = [&](std::uint32_t place, double value) {
    const std::uint32_t unknown = basis.UnknownAt(place);
    if (value != 0.0 && m_afWork[unknown] == 0.0) open.push(unknown);
    m_afWork[unknown] += value;
  };
  for (std::size_t e = 0; e < rows.Columns(j).size(); ++e) add(rows.Columns(j)[e], m_afRowScale[j] * rows.Values(j)[e]);
  while (!open.empty()) {
    const std::uint32_t unknown = open.top();
    open.pop();
    const double value = m_afWork[unknown];
    m_afWork[unknown] = 0.0;
    // One that has cancelled and come back is in the queue twice.
    if (value == 0.0) continue;
    scaled.Append(unknown, value * m_afBasisScale[unknown]);
    const std::span<const std::uint32_t> parents = basis.ParentsOf(unknown);
    for (const std::uint32_t parent : parents) add(parent, value / static_cast<double>(parents.size()));
  }
  scaled.EndRow();
}

void CScaledSystem::MakeConsistent(std::span<double> targets) {
  if (IsScaled()) m_Consistent.Apply(targets);
}

void CScaledSystem::Prepare() {
  m_pSystem->Prepare();
  if (m_afBasisScale.size() != UnknownCount()) m_afBasisScale.assign(UnknownCount(), 1.0);
  m_afMultipliers.resize(ConstraintCount());
  m_afWork.resize(Size());
}

void CScaledSystem::ApplySystem(std::span<const double> v, std::span<double> out) {
  const std::size_t n = UnknownCount();
  std::ranges::copy(v.subspan(n), m_afMultipliers.begin());
  UnscaleMultipliers(m_afMultipliers);
  m_pSystem->ApplyScaled(v.first(n), m_afBasisScale, m_afMultipliers, out);
  ScaleRowValues(out.subspan(n));
}

void CScaledSystem::ScaleForces(std::span<double> forces) const {
  for (std::size_t i = 0; i < forces.size(); ++i) forces[i] *= m_fFactor * m_afBasisScale[i];
}

void CScaledSystem::ScaleRowValues(std::span<double> values) {
  if (!IsScaled()) return;
  for (std::size_t j = 0; j < values.size(); ++j) values[j] *= m_afRowScale[j];
  m_Factor.Solve(values);
}

void CScaledSystem::UnscaleMultipliers(std::span<double> multipliers) {
  if (!IsScaled()) return;
  m_Factor.SolveTransposed(multipliers);
  for (std::size_t j = 0; j < multipliers.size(); ++j) multipliers[j] *= m_afRowScale[j];
}

void CScaledSystem::TakeResidual(std::span<const double> x, std::span<const double> multipliers,
                                 std::span<const double> targets, std::span<double> r) {
  const std::size_t n = UnknownCount();
  m_pSystem->ApplyLoaded(x.first(n), multipliers, r);
  for (std::size_t i = 0; i < n; ++i) r[i] = -r[i];
  ScaleForces(r.first(n));
  for (std::size_t j = 0; j < targets.size(); ++j) r[n + j] = m_fFactor * (targets[j] - r[n + j]);
  ScaleRowValues(r.subspan(n));
}

double CScaledSystem::TargetNorm(std::span<const double> targets) {
  for (std::size_t j = 0; j < targets.size(); ++j) m_afMultipliers[j] = m_fFactor * targets[j];
  ScaleRowValues(m_afMultipliers);
  return SafeNorm(m_afMultipliers);
}

double CScaledSystem::LoadNorm() {
  if (m_pSystem->Load().empty()) return 0.0;
  const std::span<double> forces = std::span(m_afWork).first(UnknownCount());
  m_pSystem->ApplyLoad(forces);
  ScaleForces(forces);
  return SafeNorm(forces);
}

double CScaledSystem::RightSideNorm(std::span<const double> targets) {
  const double norm = TargetNorm(targets);
  return m_pSystem->Load().empty() ? norm : std::hypot(norm, LoadNorm());
}

CImbalance CScaledSystem::Measure(std::span<const double> x, std::span<const double> multipliers,
                                  std::span<const double> targets) {
  const std::size_t n = UnknownCount();
  const std::span<double> forces = std::span(m_afWork).first(n);
  CImbalance found;
  found.m_fTargets = TargetNorm(targets);
  found.m_fLoad = LoadNorm();
  TakeResidual(x, multipliers, targets, m_afWork);
  found.m_fForces = SafeNorm(forces);
  found.m_fMisses = SafeNorm(std::span(m_afWork).subspan(n));
  m_pSystem->ApplyMagnitudes(x.first(n), forces);
  ScaleForces(forces);
  found.m_fMagnitude = SafeNorm(forces);
  m_pSystem->ApplyTransposedRows(multipliers, forces);
  ScaleForces(forces);
  found.m_fPulls = SafeNorm(forces);
  return found;
}

double CScaledSystem::ResidualNorm(std::span<const double> x, std::span<const double> multipliers,
                                   std::span<const double> targets) {
  std::ranges::fill(m_afMultipliers, 0.0);
  std::ranges::copy(multipliers.first(std::min(multipliers.size(), m_afMultipliers.size())), m_afMultipliers.begin());
  TakeResidual(x, m_afMultipliers, targets, m_afWork);
  return SafeNorm(m_afWork);
}

void CScaledSystem::AddStep(std::span<double> step, std::span<double> multipliers) {
  UnscaleMultipliers(step);
  for (std::size_t j = 0; j < step.size(); ++j) multipliers[j] += step[j] / m_fFactor;
}

double CScaledSystem::MultiplierUnit(std::size_t j) const {
  // A multiplier may be left of a row that has gone since.
  const bool scaled = IsScaled() && j < ConstraintCount();
  return scaled ? m_afRowScale[j] / (m_fFactor * m_Factor.Diagonal(j)) : 1.0 / m_fFactor;
}
