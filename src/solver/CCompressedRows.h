#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

/// A sparse matrix in compressed rows: for each row its entries (32-bit column, value), all rows in two flat arrays.
class CCompressedRows {
 public:
  /// Sizes, and one row: its columns and the values beside them.
  std::size_t RowCount() const { return m_auRowStart.size() - 1; }
  std::size_t EntryCount() const { return m_auColumns.size(); }
  std::span<const std::uint32_t> Columns(std::size_t row) const;
  std::span<const double> Values(std::size_t row) const;

  /// Forgets all rows, keeps the memory.
  void Clear();
  /// Adds an entry to the row being written. A column may occur more than once; its values add up in every product.
  void Append(std::uint32_t column, double value);
  /// Ends the row being written; an empty one counts as well.
  void EndRow() { m_auRowStart.push_back(m_auColumns.size()); }

  /// Finds the runs of consecutive rows that are the same but for a shift along the diagonal. `Times` then reads the
  /// entries of the first row of each run only. Optional; any later `Append` makes it necessary again.
  void FindRuns();
  /// out[i] = (row i) . v for every row. `out` has RowCount() entries, `v` one per column; they must not overlap.
  void Times(std::span<const double> v, std::span<double> out) const;
  /// The same with the magnitudes of all entries and of all components of `v`: what rounding in `Times` is measured by.
  void TimesMagnitudes(std::span<const double> v, std::span<double> out) const;
  /// out += (transpose of the matrix) times `v`: `v` has RowCount() entries, `out` one per column.
  void AddTransposeTimes(std::span<const double> v, std::span<double> out) const;

 private:
  /// Rows m_uFirst to m_uEnd - 1, each the one before with all columns one further.
  struct CRun {
    std::size_t m_uFirst;
    std::size_t m_uEnd;
  };

  bool IsShiftOfPrevious(std::size_t row) const;
  double RowTimes(std::size_t row, const double* v) const;

  std::vector<std::size_t> m_auRowStart{0};  ///< RowCount() + 1 positions
  std::vector<std::uint32_t> m_auColumns;
  std::vector<double> m_afValues;
  std::vector<CRun> m_aRuns;  ///< covers the rows in order; empty until found
};
