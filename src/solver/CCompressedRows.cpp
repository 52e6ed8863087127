#include "solver/CCompressedRows.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>

namespace {

// Entries of the rows of a uniform grid away from its border: five along each axis and four across.
constexpr std::size_t kInnerStencil = 13;

// Consecutive rows of a class that are multiplied together.
constexpr std::size_t kBlock = 4;

constexpr std::size_t kFirstTable = 64;

// One row's entries by value, for the rows of its class that follow each other.
template <std::size_t kCount>
class CStencilRow {
 public:
  CStencilRow(const std::int32_t* offsets, const double* values) {
    std::copy_n(offsets, kCount, m_aiOffsets.begin());
    std::copy_n(values, kCount, m_afValues.begin());
  }

  // Multiplies kBlock consecutive rows, of which `v` is the component of the first.
  void TimesBlock(const double* v, double* out) const {
    std::array<double, kBlock> sum{};
    for (std::size_t e = 0; e < kCount; ++e) {
      const double* x = v + m_aiOffsets[e];
      for (std::size_t i = 0; i < kBlock; ++i) sum[i] += m_afValues[e] * x[i];
    }
    std::ranges::copy(sum, out);
  }

 private:
  std::array<std::int32_t, kCount> m_aiOffsets;
  std::array<double, kCount> m_afValues;
};

std::uint64_t Mixed(std::uint64_t hash, std::uint64_t value) {
  hash = (hash ^ value) * 0x9E3779B97F4A7C15U;
  return hash ^ (hash >> 32);
}

}  // namespace

CCompressedRows::CColumns CCompressedRows::Columns(std::size_t row) const {
  const std::uint32_t index = m_auClass[row];
  return {std::span(m_aiOffsets).subspan(m_auClassStart[index], EntriesOfClass(index)),
          static_cast<std::uint32_t>(row)};
}

std::span<const double> CCompressedRows::Values(std::size_t row) const {
  const std::uint32_t index = m_auClass[row];
  return std::span(m_afValues).subspan(m_auClassStart[index], EntriesOfClass(index));
}

void CCompressedRows::Clear() {
  m_auClass.clear();
  m_auClassStart.assign(1, 0);
  m_aiOffsets.clear();
  m_afValues.clear();
  m_auClassHash.clear();
  m_auTable.clear();
  m_uEntries = 0;
}

// Classes are numbered as they first occur, so that equal rows make equal arrays.
bool CCompressedRows::operator==(const CCompressedRows& other) const {
  return m_auClass == other.m_auClass && m_auClassStart == other.m_auClassStart && m_aiOffsets == other.m_aiOffsets &&
         m_afValues == other.m_afValues;
}

void CCompressedRows::Append(std::uint32_t column, double value) {
  m_aiOffsets.push_back(static_cast<std::int32_t>(column - static_cast<std::uint32_t>(RowCount())));
  m_afValues.push_back(value);
}

void CCompressedRows::EndRow() {
  const std::size_t entries = m_afValues.size() - m_auClassStart.back();
  m_uEntries += entries;
  const bool same = !m_auClass.empty() && IsNewRow(m_auClass.back());
  m_auClass.push_back(same ? m_auClass.back() : FindOrAddClass());
  m_aiOffsets.resize(m_auClassStart.back());
  m_afValues.resize(m_auClassStart.back());
}

// Bit for bit: 0.0 and -0.0 are two values, and a value that is no number is like itself.
bool CCompressedRows::IsNewRow(std::uint32_t index) const {
  const std::size_t fresh = m_auClassStart.back();
  const std::size_t first = m_auClassStart[index];
  const std::size_t count = EntriesOfClass(index);
  if (count != m_afValues.size() - fresh) return false;
  for (std::size_t e = 0; e < count; ++e) {
    if (m_aiOffsets[first + e] != m_aiOffsets[fresh + e]) return false;
    if (std::bit_cast<std::uint64_t>(m_afValues[first + e]) != std::bit_cast<std::uint64_t>(m_afValues[fresh + e]))
      return false;
  }
  return true;
}

std::uint64_t CCompressedRows::HashNewRow() const {
  std::uint64_t hash = 0;
  for (std::size_t e = m_auClassStart.back(); e < m_afValues.size(); ++e) {
    hash = Mixed(hash, static_cast<std::uint32_t>(m_aiOffsets[e]));
    hash = Mixed(hash, std::bit_cast<std::uint64_t>(m_afValues[e]));
  }
  return hash;
}

void CCompressedRows::GrowTable() {
  m_auTable.assign(std::max(kFirstTable, 2 * m_auTable.size()), 0);
  for (std::uint32_t index = 0; index < ClassCount(); ++index) {
    std::size_t slot = m_auClassHash[index] & (m_auTable.size() - 1);
    while (m_auTable[slot] != 0) slot = (slot + 1) & (m_auTable.size() - 1);
    m_auTable[slot] = index + 1;
  }
}

std::uint32_t CCompressedRows::FindOrAddClass() {
  if (2 * (std::size_t{ClassCount()} + 1) > m_auTable.size()) GrowTable();
  const std::uint64_t hash = HashNewRow();
  std::size_t slot = hash & (m_auTable.size() - 1);
  for (; m_auTable[slot] != 0; slot = (slot + 1) & (m_auTable.size() - 1)) {
    const std::uint32_t known = m_auTable[slot] - 1;
    if (m_auClassHash[known] == hash && IsNewRow(known)) return known;
  }
  const std::uint32_t index = ClassCount();
  m_auTable[slot] = index + 1;
  m_auClassHash.push_back(hash);
  m_auClassStart.push_back(static_cast<std::uint32_t>(m_afValues.size()));
  return index;
}

double CCompressedRows::RowTimes(std::size_t row, const double* v) const {
  const std::uint32_t index = m_auClass[row];
  const double* x = v + row;
  double sum = 0.0;
  for (std::size_t e = m_auClassStart[index]; e < m_auClassStart[index + 1]; ++e)
    sum += m_afValues[e] * x[m_aiOffsets[e]];
  return sum;
}

void CCompressedRows::Times(std::span<const double> v, std::span<double> out) const {
  for (std::size_t row = 0, end = 0; row < RowCount(); row = end) {
    const std::uint32_t index = m_auClass[row];
    for (end = row + 1; end < RowCount() && m_auClass[end] == index;) ++end;
    if (EntriesOfClass(index) == kInnerStencil) {
      const std::size_t first = m_auClassStart[index];
      const CStencilRow<kInnerStencil> stencil(&m_aiOffsets[first], &m_afValues[first]);
      for (; row + kBlock <= end; row += kBlock) stencil.TimesBlock(v.data() + row, &out[row]);
    }
    for (; row < end; ++row) out[row] = RowTimes(row, v.data());
  }
}

void CCompressedRows::TimesMagnitudes(std::span<const double> v, std::span<double> out) const {
  for (std::size_t row = 0; row < RowCount(); ++row) {
    const CColumns columns = Columns(row);
    const std::span<const double> values = Values(row);
    double sum = 0.0;
    for (std::size_t e = 0; e < values.size(); ++e) sum += std::abs(values[e] * v[columns[e]]);
    out[row] = sum;
  }
}

void CCompressedRows::AddTransposeTimes(std::span<const double> v, std::span<double> out) const {
  for (std::size_t row = 0; row < RowCount(); ++row) {
    const CColumns columns = Columns(row);
    const std::span<const double> values = Values(row);
    for (std::size_t e = 0; e < values.size(); ++e) out[columns[e]] += values[e] * v[row];
  }
}
