#include "solver/ConsistentTargets.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <numeric>
#include <utility>
#include <vector>

#include "solver/CCompressedRows.h"

namespace {

// What is missed is nothing but rounding below this share of the targets...
constexpr double kMet = 1e-11;
// ...and cannot be reduced when no surface changes it by more than this share. Larger, and heights close to each other
// would count as contradictory; smaller, and rounding would hide the end.
constexpr double kBest = 1e-12;

// As many steps as there are rows would do but for rounding.
constexpr std::size_t kStepsPerRow = 2;

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

// Whether `missed` could be told to be the part of the targets that the rows contradict, which it then is.
bool FindContradiction(const CCompressedRows& rows, std::size_t columns, std::vector<double>& missed) {
  const double asked = Norm(missed);
  std::vector<double> gradient(columns, 0.0);
  rows.AddTransposeTimes(missed, gradient);
  double slope = Norm(gradient);
  const double steepness = slope / asked;
  std::vector<double> direction = gradient;
  std::vector<double> image(missed.size());
  for (std::size_t left = kStepsPerRow * missed.size() + 1; left > 0; --left) {
    const double length = Norm(missed);
    if (!(length > kMet * asked)) return false;
    if (slope <= kBest * steepness * length) return true;
    rows.Times(direction, image);
    const double step = std::pow(slope / Norm(image), 2);
    for (std::size_t j = 0; j < missed.size(); ++j) missed[j] -= step * image[j];
    std::ranges::fill(gradient, 0.0);
    rows.AddTransposeTimes(missed, gradient);
    const double before = std::exchange(slope, Norm(gradient));
    const double turn = std::pow(slope / before, 2);
    for (std::size_t i = 0; i < columns; ++i) direction[i] = gradient[i] + turn * direction[i];
  }
  return false;
}

}  // namespace

void MakeConsistent(const CCompressedRows& rows, std::span<const double> scale, std::span<double> targets) {
  std::size_t columns = 0;
  const CCompressedRows condensed = Condensed(rows, scale, columns);
  std::vector<double> missed(targets.begin(), targets.end());
  for (std::size_t j = 0; j < missed.size(); ++j) missed[j] *= scale[j];
  if (!FindContradiction(condensed, columns, missed)) return;
  for (std::size_t j = 0; j < targets.size(); ++j) targets[j] -= missed[j] / scale[j];
}
