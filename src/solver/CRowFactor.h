#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <span>
#include <vector>

#include "solver/RowBlocks.h"

/// Rows of a matrix, one after the other, whose entries are written once.
struct CPlainRows {
  std::vector<std::size_t> m_auStart{0};
  std::vector<std::uint32_t> m_auColumns;
  std::vector<double> m_afValues;

  /// Adds an entry to the row being written, and ends that row; an empty one counts as well.
  void Append(std::uint32_t column, double value) {
    m_auColumns.push_back(column);
    m_afValues.push_back(value);
  }
  void EndRow() { m_auStart.push_back(m_auColumns.size()); }
  /// Forgets all rows, keeps the memory.
  void Clear();
};

/// Where a matrix comes from that is too large to be held: writes its row `j` after the rows that there are.
using CRowSource = std::function<void(std::uint32_t j, CPlainRows& rows)>;

/// L^-1, where L L^T is close to a symmetric positive semidefinite matrix S = G G^T that has been shifted a little
/// towards the identity, so that rows which depend on each other do no harm.
///
/// L is lower triangular in the order of the blocks. With one block it is the Cholesky factor. Otherwise a row of L^-1
/// has entries for the rows of its block alone, and among those is the best [KolotilinaYeremin1993].
class CRowFactor {
 public:
  /// Factorises G G^T, shifted by a share of its largest diagonal entry. G has `rows` rows; its columns are numbers
  /// below `columns`. Some thousand of its rows are held at a time, so that with more of them some are asked for more
  /// often.
  void Factorise(std::span<const CRowBlock> blocks, std::size_t rows, const CRowSource& g, std::size_t columns,
                 double shift);

  /// Rows of G, and entries that a product with L^-1 takes.
  std::size_t Count() const { return m_afDiagonal.size(); }
  std::size_t EntryCount() const { return m_afValues.size(); }
  /// v = L^-1 v and v = L^-T v. Allocate nothing.
  void Solve(std::span<double> v);
  void SolveTransposed(std::span<double> v);
  /// The diagonal entry of L that belongs to row `j` of G.
  double Diagonal(std::size_t j) const { return m_afDiagonal[j]; }
  /// How much of its square is the shift: 1 where the rows before it in its block make it up.
  double ShareOfShift(std::size_t j) const { return m_afShiftShare[j]; }

 private:
  struct CBlock {
    std::size_t m_uFirst;    ///< position of its first row in m_auRows
    std::size_t m_uCount;    ///< rows, the earlier ones included
    std::size_t m_uEarlier;  ///< rows that belong to blocks before it
    std::size_t m_uValues;   ///< position of its rows of L^-1 in m_afValues, each up to its diagonal
  };

  std::size_t LayOut(std::span<const CRowBlock> blocks);
  void Invert(const CBlock& block, std::span<double> triangle, double shift);

  std::vector<CBlock> m_aBlocks;
  std::vector<std::uint32_t> m_auRows;  ///< of all blocks
  std::vector<double> m_afValues;
  std::vector<double> m_afDiagonal;  ///< by row of G
  std::vector<double> m_afShiftShare;
  std::vector<double> m_afResult;
  std::vector<double> m_afOfBlock;
};
