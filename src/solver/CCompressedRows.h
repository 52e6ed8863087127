#pragma once

#include <cstddef>
#include <cstdint>
#include <iterator>
#include <span>
#include <vector>

/// A sparse matrix by rows: for each row its entries (column, value) in the order of writing.
///
/// Rows that are the same but for their place are stored once, as a class: the offsets of the columns from the row's
/// own number, and the values. On a uniform grid a few classes make all rows; a row like no other has a class of its
/// own.
class CCompressedRows {
 public:
  /// The columns of one row.
  class CColumns {
   public:
    /// Goes through them one by one.
    class CIterator {
     public:
      using iterator_category = std::input_iterator_tag;
      using value_type = std::uint32_t;
      using difference_type = std::ptrdiff_t;
      using pointer = const std::uint32_t*;
      using reference = std::uint32_t;

      CIterator() = default;
      /// At an offset of that row; offsets follow each other.
      CIterator(const std::int32_t* offset, std::uint32_t row) : m_pOffset(offset), m_uRow(row) {}
      std::uint32_t operator*() const { return m_uRow + static_cast<std::uint32_t>(*m_pOffset); }
      CIterator& operator++() { return ++m_pOffset, *this; }
      CIterator operator++(int) { return {m_pOffset++, m_uRow}; }
      bool operator==(const CIterator& other) const { return m_pOffset == other.m_pOffset; }

     private:
      const std::int32_t* m_pOffset = nullptr;
      std::uint32_t m_uRow = 0;
    };

    /// Of the row of that number, from their offsets.
    CColumns(std::span<const std::int32_t> offsets, std::uint32_t row) : m_aiOffsets(offsets), m_uRow(row) {}
    std::size_t size() const { return m_aiOffsets.size(); }
    bool empty() const { return m_aiOffsets.empty(); }
    /// That of entry `e`. Modulo 2^32, which takes an offset back as well as forth.
    std::uint32_t operator[](std::size_t e) const { return m_uRow + static_cast<std::uint32_t>(m_aiOffsets[e]); }
    std::uint32_t front() const { return (*this)[0]; }
    CIterator begin() const { return {m_aiOffsets.data(), m_uRow}; }
    CIterator end() const { return {m_aiOffsets.data() + m_aiOffsets.size(), m_uRow}; }

   private:
    std::span<const std::int32_t> m_aiOffsets;
    std::uint32_t m_uRow;
  };

  /// Rows; entries of all of them, however they are stored; and entries that are stored.
  std::size_t RowCount() const { return m_auClass.size(); }
  std::size_t EntryCount() const { return m_uEntries; }
  std::size_t StoredEntryCount() const { return m_afValues.size(); }
  /// The class of a row; they are numbered as they first occur.
  std::uint32_t ClassOf(std::size_t row) const { return m_auClass[row]; }
  /// The entries of one row.
  CColumns Columns(std::size_t row) const;
  std::span<const double> Values(std::size_t row) const;

  /// Forgets all rows, keeps the memory.
  void Clear();
  /// Whether both hold the same rows, entry for entry.
  bool operator==(const CCompressedRows& other) const;
  /// Adds an entry to the row being written. A column may occur more than once; its values add up in every product.
  void Append(std::uint32_t column, double value);
  /// Ends the row being written; an empty one counts as well.
  void EndRow();

  /// out[i] = (row i) . v for every row. `out` has RowCount() entries, `v` one per column; they must not overlap.
  void Times(std::span<const double> v, std::span<double> out) const;
  /// The same with the magnitudes of all entries and of all components of `v`: what rounding in `Times` is measured by.
  void TimesMagnitudes(std::span<const double> v, std::span<double> out) const;
  /// out += (transpose of the matrix) times `v`: `v` has RowCount() entries, `out` one per column.
  void AddTransposeTimes(std::span<const double> v, std::span<double> out) const;

 private:
  std::uint32_t ClassCount() const { return static_cast<std::uint32_t>(m_auClassStart.size() - 1); }
  std::size_t EntriesOfClass(std::uint32_t index) const { return m_auClassStart[index + 1] - m_auClassStart[index]; }
  bool IsNewRow(std::uint32_t index) const;
  std::uint64_t HashNewRow() const;
  std::uint32_t FindOrAddClass();
  void GrowTable();
  double RowTimes(std::size_t row, const double* v) const;

  std::vector<std::uint32_t> m_auClass;  ///< by row
  // The entries of class c are those from m_auClassStart[c] to m_auClassStart[c + 1]; those of the row being written
  // stand after the last class.
  std::vector<std::uint32_t> m_auClassStart{0};
  std::vector<std::int32_t> m_aiOffsets;  ///< column minus row
  std::vector<double> m_afValues;
  std::vector<std::uint64_t> m_auClassHash;
  std::vector<std::uint32_t> m_auTable;  ///< classes by hash, each one more than its index, with gaps of 0
  std::size_t m_uEntries = 0;
};
