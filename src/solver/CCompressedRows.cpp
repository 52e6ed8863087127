#include "solver/CCompressedRows.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace {

// Entries of the rows of a uniform grid away from its border: five along each axis and four across.
constexpr std::size_t kInnerStencil = 13;

// Rows of a run that are multiplied together.
constexpr std::size_t kBlock = 4;

// One row's entries by value, for the rows of a run that start with it.
template <std::size_t kCount>
class CStencilRow {
 public:
  CStencilRow(std::span<const std::uint32_t> columns, std::span<const double> values) {
    std::ranges::copy(columns, m_auColumns.begin());
    std::ranges::copy(values, m_afValues.begin());
  }

  // Multiplies kBlock consecutive rows; `v` is shifted along with them.
  void TimesBlock(const double* v, double* out) const {
    std::array<double, kBlock> sum{};
    for (std::size_t e = 0; e < kCount; ++e) {
      const double* x = v + m_auColumns[e];
      for (std::size_t i = 0; i < kBlock; ++i) sum[i] += m_afValues[e] * x[i];
    }
    std::ranges::copy(sum, out);
  }

 private:
  std::array<std::uint32_t, kCount> m_auColumns;
  std::array<double, kCount> m_afValues;
};

}  // namespace

std::span<const std::uint32_t> CCompressedRows::Columns(std::size_t row) const {
  return std::span(m_auColumns).subspan(m_auRowStart[row], m_auRowStart[row + 1] - m_auRowStart[row]);
}

std::span<const double> CCompressedRows::Values(std::size_t row) const {
  return std::span(m_afValues).subspan(m_auRowStart[row], m_auRowStart[row + 1] - m_auRowStart[row]);
}

void CCompressedRows::Clear() {
  m_auRowStart.assign(1, 0);
  m_auColumns.clear();
  m_afValues.clear();
  m_aRuns.clear();
}

void CCompressedRows::Append(std::uint32_t column, double value) {
  m_auColumns.push_back(column);
  m_afValues.push_back(value);
}

bool CCompressedRows::IsShiftOfPrevious(std::size_t row) const {
  const auto shifted = [](std::uint32_t before, std::uint32_t now) { return now == before + 1; };
  return std::ranges::equal(Values(row - 1), Values(row)) &&
         std::ranges::equal(Columns(row - 1), Columns(row), shifted);
}

void CCompressedRows::FindRuns() {
  m_aRuns.clear();
  for (std::size_t row = 0; row < RowCount(); ++row) {
    if (row == 0 || !IsShiftOfPrevious(row)) m_aRuns.push_back({row, row});
    m_aRuns.back().m_uEnd = row + 1;
  }
}

double CCompressedRows::RowTimes(std::size_t row, const double* v) const {
  double sum = 0.0;
  for (std::size_t e = m_auRowStart[row]; e < m_auRowStart[row + 1]; ++e) sum += m_afValues[e] * v[m_auColumns[e]];
  return sum;
}

void CCompressedRows::Times(std::span<const double> v, std::span<double> out) const {
  if (m_aRuns.empty()) {
    for (std::size_t row = 0; row < RowCount(); ++row) out[row] = RowTimes(row, v.data());
    return;
  }
  for (const CRun& run : m_aRuns) {
    std::size_t row = run.m_uFirst;
    if (Columns(row).size() == kInnerStencil) {
      const CStencilRow<kInnerStencil> stencil(Columns(row), Values(row));
      const double* shifted = v.data();
      for (; row + kBlock <= run.m_uEnd; row += kBlock, shifted += kBlock) stencil.TimesBlock(shifted, &out[row]);
    }
    for (; row < run.m_uEnd; ++row) out[row] = RowTimes(row, v.data());
  }
}

void CCompressedRows::TimesMagnitudes(std::span<const double> v, std::span<double> out) const {
  for (std::size_t row = 0; row < RowCount(); ++row) {
    double sum = 0.0;
    for (std::size_t e = m_auRowStart[row]; e < m_auRowStart[row + 1]; ++e)
      sum += std::abs(m_afValues[e] * v[m_auColumns[e]]);
    out[row] = sum;
  }
}

void CCompressedRows::AddTransposeTimes(std::span<const double> v, std::span<double> out) const {
  std::size_t entry = 0;
  for (std::size_t row = 0; row < RowCount(); ++row) {
    for (const std::size_t end = m_auRowStart[row + 1]; entry < end; ++entry) {
      out[m_auColumns[entry]] += m_afValues[entry] * v[row];
    }
  }
}
