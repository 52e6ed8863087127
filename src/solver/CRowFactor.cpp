#include "solver/CRowFactor.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace {

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

// v += factor a
void Add(double factor, const double* a, double* v, std::size_t count) {
  for (std::size_t i = 0; i < count; ++i) v[i] += factor * a[i];
}

std::size_t RowStart(std::size_t row) { return row * (row + 1) / 2; }

// Products of the rows of G, some with each other at a time.
class CProducts {
 public:
  CProducts(const CPlainRows& g, std::size_t columns) : m_pG(&g), m_afRow(columns, 0.0) {}

  double LargestSquare() const {
    double largest = 0.0;
    for (std::size_t j = 0; j < m_pG->RowCount(); ++j) {
      const double* values = m_pG->m_afValues.data() + m_pG->m_auStart[j];
      largest = std::max(largest, Dot(values, values, m_pG->m_auStart[j + 1] - m_pG->m_auStart[j]));
    }
    return largest;
  }
  // The lower triangle for those rows, by rows.
  void Write(std::span<const std::uint32_t> rows, std::span<double> triangle) {
    for (std::size_t i = 0; i < rows.size(); ++i) {
      ForEntries(rows[i], [&](std::uint32_t column, double value) { m_afRow[column] += value; });
      for (std::size_t k = 0; k <= i; ++k) {
        double sum = 0.0;
        ForEntries(rows[k], [&](std::uint32_t column, double value) { sum += value * m_afRow[column]; });
        triangle[RowStart(i) + k] = sum;
      }
      ForEntries(rows[i], [&](std::uint32_t column, double) { m_afRow[column] = 0.0; });
    }
  }

 private:
  template <typename Visit>
  void ForEntries(std::uint32_t row, const Visit& visit) const {
    for (std::size_t e = m_pG->m_auStart[row]; e < m_pG->m_auStart[row + 1]; ++e)
      visit(m_pG->m_auColumns[e], m_pG->m_afValues[e]);
  }

  const CPlainRows* m_pG;
  std::vector<double> m_afRow;  ///< one row of G in full
};

// The Cholesky factor in place.
void FactoriseTriangle(std::span<double> triangle, std::size_t count, double shift) {
  for (std::size_t i = 0; i < count; ++i) {
    double* row = triangle.data() + RowStart(i);
    for (std::size_t j = 0; j < i; ++j) {
      const double* other = triangle.data() + RowStart(j);
      row[j] = (row[j] - Dot(row, other, j)) / other[j];
    }
    const double pivot = row[i] + shift - Dot(row, row, i);
    // Not so only where nothing is finite, or all rows are empty.
    row[i] = pivot > 0 && std::isfinite(pivot) ? std::sqrt(pivot) : 1.0;
  }
}

}  // namespace

void CRowFactor::Factorise(std::span<const CRowBlock> blocks, const CPlainRows& g, std::size_t columns, double shift) {
  m_aBlocks.clear();
  m_auRows.clear();
  std::size_t values = 0;
  std::size_t widest = 0;
  for (const CRowBlock& block : blocks) {
    m_aBlocks.push_back({m_auRows.size(), block.m_auRows.size(), block.m_uEarlier, values});
    m_auRows.insert(m_auRows.end(), block.m_auRows.begin(), block.m_auRows.end());
    values += RowStart(block.m_auRows.size()) - RowStart(block.m_uEarlier);
    widest = std::max(widest, block.m_auRows.size());
  }
  m_afValues.assign(values, 0.0);
  m_afDiagonal.assign(g.RowCount(), 1.0);
  m_afShiftShare.assign(g.RowCount(), 0.0);
  m_afResult.assign(g.RowCount(), 0.0);
  m_afOfBlock.assign(widest, 0.0);
  CProducts products(g, columns);
  const double added = shift * products.LargestSquare();
  std::vector<double> triangle(RowStart(widest));
  for (const CBlock& block : m_aBlocks) {
    products.Write(std::span(m_auRows).subspan(block.m_uFirst, block.m_uCount), triangle);
    FactoriseTriangle(triangle, block.m_uCount, added);
    Invert(block, triangle, added);
  }
}

// The rows of the inverse one by one, from the diagonal back.
void CRowFactor::Invert(const CBlock& block, std::span<double> triangle, double shift) {
  double* inverse = m_afValues.data() + block.m_uValues;
  for (std::size_t i = block.m_uEarlier; i < block.m_uCount; inverse += ++i) {
    inverse[i] = 1.0;
    for (std::size_t k = i + 1; k-- > 0;) {
      const double* row = triangle.data() + RowStart(k);
      inverse[k] /= row[k];
      Add(-inverse[k], row, inverse, k);
    }
    const std::uint32_t own = m_auRows[block.m_uFirst + i];
    m_afDiagonal[own] = triangle[RowStart(i) + i];
    m_afShiftShare[own] = shift * Dot(inverse, inverse, i + 1);
  }
}

void CRowFactor::Solve(std::span<double> v) {
  for (const CBlock& block : m_aBlocks) {
    const std::uint32_t* rows = m_auRows.data() + block.m_uFirst;
    for (std::size_t i = 0; i < block.m_uCount; ++i) m_afOfBlock[i] = v[rows[i]];
    const double* inverse = m_afValues.data() + block.m_uValues;
    for (std::size_t i = block.m_uEarlier; i < block.m_uCount; inverse += ++i)
      m_afResult[rows[i]] = Dot(inverse, m_afOfBlock.data(), i + 1);
  }
  std::ranges::copy(m_afResult, v.begin());
}

void CRowFactor::SolveTransposed(std::span<double> v) {
  std::ranges::fill(m_afResult, 0.0);
  for (const CBlock& block : m_aBlocks) {
    const std::uint32_t* rows = m_auRows.data() + block.m_uFirst;
    std::fill_n(m_afOfBlock.begin(), block.m_uCount, 0.0);
    const double* inverse = m_afValues.data() + block.m_uValues;
    for (std::size_t i = block.m_uEarlier; i < block.m_uCount; inverse += ++i)
      Add(v[rows[i]], inverse, m_afOfBlock.data(), i + 1);
    for (std::size_t i = 0; i < block.m_uCount; ++i) m_afResult[rows[i]] += m_afOfBlock[i];
  }
  std::ranges::copy(m_afResult, v.begin());
}
