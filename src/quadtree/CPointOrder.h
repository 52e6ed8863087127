#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

class CQuadTree;

/// The order of the unknowns: the points in use, corners first, then level by level from coarse to fine.
///
/// Unknowns 0 to 3 are the corners (x0, y0), (x1, y0), (x1, y1), (x0, y1) with level code 1. For k = 1, 2, ... the
/// cells of level L + 1 - k that are split give first the midpoints of their sides (code 2k on a horizontal edge, -2k
/// on a vertical one), then their centres (code 2k + 1); cells depth-first, sides bottom, right, top, left, each point
/// once. A point's parents have smaller numbers.
class CPointOrder {
 public:
  /// Numbers the points of the present subdivision. Linear in the number of cells of the subdivision plus that of
  /// lattice points.
  void Build(const CQuadTree& tree);
  /// Forgets all numbers and prepares for a lattice of 2^level + 1 points per side.
  void Reset(int level);
  /// Gives a point the next number, unless it has one. After the last one, `EndNumbering` makes the scan order.
  void Append(int column, int row, int code);
  void EndNumbering();
  /// Gives the memory back. `Reset` or `Build` must follow before a number is asked for.
  void Free();

  /// Number of unknowns.
  std::size_t Count() const { return m_auPoints.size(); }
  /// Unknown at a lattice point (index row * n + column), -1 where there is none.
  std::int32_t NumberOf(std::size_t point) const { return m_aiNumbers[point]; }
  /// Where unknown `k` comes in scan order: the unknowns by ascending lattice index, row by row. Vectors over the
  /// surface itself are kept in this order, because neighbours on the lattice are neighbours in it.
  std::uint32_t ScanOf(std::size_t k) const { return m_auScan[k]; }
  /// Lattice index of the point at a scan position.
  std::uint32_t PointAtScan(std::size_t position) const { return m_auScanPoints[position]; }
  /// Lattice index of unknown `k`.
  std::uint32_t PointOf(std::size_t k) const { return m_auPoints[k]; }
  int ColumnOf(std::size_t k) const { return static_cast<int>(m_auPoints[k]) % m_iSide; }
  int RowOf(std::size_t k) const { return static_cast<int>(m_auPoints[k]) / m_iSide; }
  int LevelCode(std::size_t k) const { return m_aiCodes[k]; }
  /// Points per side and level of the lattice that is numbered.
  int PointsPerSide() const { return m_iSide; }
  int Level() const { return m_iLevel; }

 private:
  int m_iSide = 0;
  int m_iLevel = 0;
  std::vector<std::int32_t> m_aiNumbers;      ///< by lattice point
  std::vector<std::uint32_t> m_auPoints;      ///< by unknown
  std::vector<std::int32_t> m_aiCodes;        ///< by unknown
  std::vector<std::uint32_t> m_auScan;        ///< by unknown
  std::vector<std::uint32_t> m_auScanPoints;  ///< by scan position
};
