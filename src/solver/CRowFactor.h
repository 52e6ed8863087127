#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

/// Lower triangles L_b with L_b L_b^T = the diagonal blocks of a symmetric positive semidefinite matrix, shifted a
/// little towards the identity, so that rows which depend on each other do no harm.
class CRowFactor {
 public:
  /// An entry of the matrix G whose product G G^T is factorised, by column of G.
  struct CEntry {
    std::uint32_t m_uColumn;
    std::uint32_t m_uRow;
    double m_fValue;
  };

  /// Factorises the blocks of G G^T. The rows are taken in the order given, `blockSize` of them to a block; `entries`
  /// name them by their position in that order and are ordered by it. All of them are shifted by the same amount.
  void Factorise(std::span<const std::uint32_t> order, std::size_t blockSize, std::span<const CEntry> entries);
  void Clear();

  std::size_t Count() const { return m_auOrder.size(); }
  /// Whether all rows are in one block.
  bool IsWhole() const { return m_aBlocks.size() <= 1; }
  /// v = L^-1 v and v = L^-T v. Allocate nothing.
  void Solve(std::span<double> v);
  void SolveTransposed(std::span<double> v);
  /// The diagonal entry of L that belongs to row `j` of G.
  double Diagonal(std::size_t j) const { return m_afDiagonal[j]; }

 private:
  struct CBlock {
    std::size_t m_uFirst;   ///< position of its first row
    std::size_t m_uCount;   ///< rows
    std::size_t m_uValues;  ///< position of its triangle in m_afValues
  };

  void AddProducts(const CBlock& block, std::span<CEntry> entries);
  void FactoriseBlock(const CBlock& block, double shift);

  std::vector<CBlock> m_aBlocks;
  std::vector<std::uint32_t> m_auOrder;  ///< row of G at each position
  std::vector<double> m_afValues;        ///< triangles by rows
  std::vector<double> m_afDiagonal;      ///< by row of G
  std::vector<double> m_afWork;
};
