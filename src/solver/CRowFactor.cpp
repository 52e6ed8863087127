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

// Rows of G that are held at a time. At the finest level each takes about a kilobyte.
constexpr std::size_t kHeldRows = 8192;

// Rows of G as they are needed: held until there are too many, and then collected again.
class CHeldRows {
 public:
  CHeldRows(std::size_t count, const CRowSource& source) : m_pSource(&source), m_auPlace(count, kNone) {}

  // What was held before may be gone if there is no room for so many more.
  void MakeRoom(std::size_t count) {
    if (m_auHeld.size() + count <= kHeldRows) return;
    for (const std::uint32_t j : m_auHeld) m_auPlace[j] = kNone;
    m_auHeld.clear();
    m_Rows.Clear();
  }
  void Hold(std::uint32_t j) {
    if (m_auPlace[j] != kNone) return;
    m_auPlace[j] = static_cast<std::uint32_t>(m_auHeld.size());
    m_auHeld.push_back(j);
    (*m_pSource)(j, m_Rows);
  }
  std::span<const std::uint32_t> Columns(std::uint32_t j) const { return OfRow(m_Rows.m_auColumns, j); }
  std::span<const double> Values(std::uint32_t j) const { return OfRow(m_Rows.m_afValues, j); }

 private:
  static constexpr std::uint32_t kNone = ~0U;

  template <typename T>
  std::span<const T> OfRow(const std::vector<T>& entries, std::uint32_t j) const {
    const std::size_t first = m_Rows.m_auStart[m_auPlace[j]];
    return std::span(entries).subspan(first, m_Rows.m_auStart[m_auPlace[j] + 1] - first);
  }

  const CRowSource* m_pSource;
  CPlainRows m_Rows;
  std::vector<std::uint32_t> m_auPlace;  ///< in m_Rows, by row of G
  std::vector<std::uint32_t> m_auHeld;   ///< the other way round
};

// Products of the rows of G, some with each other at a time.
class CProducts {
 public:
  CProducts(std::size_t rows, const CRowSource& g, std::size_t columns) : m_Rows(rows, g), m_afRow(columns, 0.0) {}

  // Of the rows before `count`.
  double LargestSquare(std::size_t count) {
    double largest = 0.0;
    for (std::uint32_t j = 0; j < count; ++j) {
      m_Rows.MakeRoom(1);
      m_Rows.Hold(j);
      const std::span<const double> values = m_Rows.Values(j);
      largest = std::max(largest, Dot(values.data(), values.data(), values.size()));
    }
    return largest;
  }
  // The lower triangle for those rows, by rows.
  void Write(std::span<const std::uint32_t> rows, std::span<double> triangle) {
    m_Rows.MakeRoom(rows.size());
    for (const std::uint32_t j : rows) m_Rows.Hold(j);
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
    const std::span<const std::uint32_t> columns = m_Rows.Columns(row);
    const std::span<const double> values = m_Rows.Values(row);
    for (std::size_t e = 0; e < columns.size(); ++e) visit(columns[e], values[e]);
  }

  CHeldRows m_Rows;
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

void CPlainRows::Clear() {
  m_auStart.assign(1, 0);
  m_auColumns.clear();
  m_afValues.clear();
}

// Returns the rows of the largest block.
std::size_t CRowFactor::LayOut(std::span<const CRowBlock> blocks) {
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
  m_afOfBlock.assign(widest, 0.0);
  return widest;
}

void CRowFactor::Factorise(std::span<const CRowBlock> blocks, std::size_t rows, const CRowSource& g,
                           std::size_t columns, double shift) {
  std::vector<double> triangle(RowStart(LayOut(blocks)));
  m_afDiagonal.assign(rows, 1.0);
  m_afShiftShare.assign(rows, 0.0);
  m_afResult.assign(rows, 0.0);
  CProducts products(rows, g, columns);
  const double added = shift * products.LargestSquare(rows);
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
