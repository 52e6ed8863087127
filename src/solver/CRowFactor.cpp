#include "solver/CRowFactor.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace {

// Of the largest diagonal entry. Larger, and constraints close to each other would be scaled as if they were one; much
// smaller, and rounding would turn the pivots of dependent rows negative.
constexpr double kShift = 1e-8;

// Sums that are kept apart, so that one needs not wait for the other.
constexpr std::size_t kLanes = 4;

double Dot(const double* a, const double* b, std::size_t count) {
  std::array<double, kLanes> sums{};
  std::size_t i = 0;
  for (; i + kLanes <= count; i += kLanes) {
    for (std::size_t lane = 0; lane < kLanes; ++lane) sums[lane] += a[i + lane] * b[i + lane];
  }
  double sum = (sums[0] + sums[1]) + (sums[2] + sums[3]);
  for (; i < count; ++i) sum += a[i] * b[i];
  return sum;
}

// v -= factor a
void Subtract(double factor, const double* a, double* v, std::size_t count) {
  std::size_t i = 0;
  for (; i + kLanes <= count; i += kLanes) {
    for (std::size_t lane = 0; lane < kLanes; ++lane) v[i + lane] -= factor * a[i + lane];
  }
  for (; i < count; ++i) v[i] -= factor * a[i];
}

std::size_t RowStart(std::size_t row) { return row * (row + 1) / 2; }

}  // namespace

void CRowFactor::Clear() {
  m_aBlocks.clear();
  m_auOrder.clear();
  m_afValues.clear();
  m_afDiagonal.clear();
}

void CRowFactor::Factorise(std::span<const std::uint32_t> order, std::size_t blockSize,
                           std::span<const CEntry> entries) {
  Clear();
  m_auOrder.assign(order.begin(), order.end());
  m_afDiagonal.resize(order.size());
  m_afWork.resize(order.size());
  std::vector<CEntry> ofBlock;
  auto entry = entries.begin();
  double largest = 0.0;
  for (std::size_t first = 0; first < order.size(); first += blockSize) {
    const CBlock block{first, std::min(blockSize, order.size() - first), m_afValues.size()};
    m_aBlocks.push_back(block);
    m_afValues.resize(block.m_uValues + RowStart(block.m_uCount));
    ofBlock.clear();
    for (; entry != entries.end() && entry->m_uRow < first + block.m_uCount; ++entry) ofBlock.push_back(*entry);
    AddProducts(block, ofBlock);
    for (std::size_t i = 0; i < block.m_uCount; ++i)
      largest = std::max(largest, m_afValues[block.m_uValues + RowStart(i) + i]);
  }
  for (const CBlock& block : m_aBlocks) FactoriseBlock(block, kShift * largest);
}

// Column after column of G, of which each has few rows.
void CRowFactor::AddProducts(const CBlock& block, std::span<CEntry> entries) {
  std::ranges::stable_sort(entries, {}, &CEntry::m_uColumn);
  double* triangle = m_afValues.data() + block.m_uValues;
  for (std::size_t first = 0, end = 0; first < entries.size(); first = end) {
    while (end < entries.size() && entries[end].m_uColumn == entries[first].m_uColumn) ++end;
    for (std::size_t a = first; a < end; ++a) {
      double* row = triangle + RowStart(entries[a].m_uRow - block.m_uFirst);
      for (std::size_t b = first; b <= a; ++b)
        row[entries[b].m_uRow - block.m_uFirst] += entries[a].m_fValue * entries[b].m_fValue;
    }
  }
}

void CRowFactor::FactoriseBlock(const CBlock& block, double shift) {
  double* triangle = m_afValues.data() + block.m_uValues;
  for (std::size_t i = 0; i < block.m_uCount; ++i) {
    double* row = triangle + RowStart(i);
    for (std::size_t j = 0; j < i; ++j) {
      const double* other = triangle + RowStart(j);
      row[j] = (row[j] - Dot(row, other, j)) / other[j];
    }
    const double pivot = row[i] + shift - Dot(row, row, i);
    // Not so only where nothing is finite, or all rows are empty.
    row[i] = pivot > 0 && std::isfinite(pivot) ? std::sqrt(pivot) : 1.0;
    m_afDiagonal[m_auOrder[block.m_uFirst + i]] = row[i];
  }
}

void CRowFactor::Solve(std::span<double> v) {
  for (std::size_t i = 0; i < m_auOrder.size(); ++i) m_afWork[i] = v[m_auOrder[i]];
  for (const CBlock& block : m_aBlocks) {
    const double* row = m_afValues.data() + block.m_uValues;
    double* w = m_afWork.data() + block.m_uFirst;
    for (std::size_t i = 0; i < block.m_uCount; row += ++i) w[i] = (w[i] - Dot(row, w, i)) / row[i];
  }
  for (std::size_t i = 0; i < m_auOrder.size(); ++i) v[m_auOrder[i]] = m_afWork[i];
}

void CRowFactor::SolveTransposed(std::span<double> v) {
  for (std::size_t i = 0; i < m_auOrder.size(); ++i) m_afWork[i] = v[m_auOrder[i]];
  for (const CBlock& block : m_aBlocks) {
    const double* triangle = m_afValues.data() + block.m_uValues;
    double* w = m_afWork.data() + block.m_uFirst;
    for (std::size_t i = block.m_uCount; i-- > 0;) {
      const double* row = triangle + RowStart(i);
      w[i] /= row[i];
      Subtract(w[i], row, w, i);
    }
  }
  for (std::size_t i = 0; i < m_auOrder.size(); ++i) v[m_auOrder[i]] = m_afWork[i];
}
