#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "base/Vector3.h"

/// The model rectangle in model units; the picture is stretched over it.
struct CExtent {
  double x0 = 0.0;
  double x1 = 100.0;
  double y0 = 0.0;
  double y1 = 100.0;
  bool operator==(const CExtent&) const = default;
};

/// Whether the cells of a lattice of any level over the rectangle have a size that can be computed with.
bool IsUsable(const CExtent& extent);

/// How far inside the model its border holds the cursor while constraints are edited: 0.1, at most a tenth of the
/// extent from `low` to `high` (model units).
inline double BorderMargin(double low, double high) { return std::min(0.1, 0.1 * (high - low)); }

/// Bits of the flag word that every lattice point carries.
namespace PointFlag {
inline constexpr std::uint32_t kCrease = 1;     ///< lies on a normal-discontinuity curve
inline constexpr std::uint32_t kInUse = 8;      ///< corner of an active leaf or midpoint of a split edge
inline constexpr std::uint32_t kTraced = 16;    ///< end of the sub-edge of the interpolation traced last
inline constexpr std::uint32_t kComputed = 64;  ///< midpoint already computed in the current transform pass
inline constexpr std::uint32_t kFrozen = 128;   ///< painted with the freeze brush
}  // namespace PointFlag

/// The square lattice of n x n points, n = 2^level + 1, under the model rectangle, and what is stored per point and per
/// unit cell.
///
/// Point index = row * n + column; column grows with x, row with y; index 0 is the point (x0, y0). Unit-cell index =
/// row * (n - 1) + column of the cell's lower left point. "Lattice coordinates" are columns and rows as real numbers,
/// from 0 to n - 1.
class CLattice {
 public:
  static constexpr int kMinLevel = 1;
  static constexpr int kMaxLevel = 10;

  /// See `Allocate`.
  explicit CLattice(int level) { Allocate(level); }

  /// Sizes every array for `level` (kMinLevel..kMaxLevel) and clears it: heights, flags, weights and normals 0.
  void Allocate(int level);
  /// Gives the memory of the arrays back; the level and the extent stay. `Allocate` must follow before any other use.
  void Free();

  /// L, and the 2^L + 1 points of a row; indices run along rows, row 0 at y0.
  int Level() const { return m_iLevel; }
  int PointsPerSide() const { return m_iSide; }
  std::size_t PointCount() const { return static_cast<std::size_t>(m_iSide) * static_cast<std::size_t>(m_iSide); }
  std::size_t Index(int column, int row) const {
    return static_cast<std::size_t>(row) * static_cast<std::size_t>(m_iSide) + static_cast<std::size_t>(column);
  }
  /// Index of a unit cell by the column and row of its lower left corner: row * 2^L + column.
  std::size_t CellIndex(int column, int row) const {
    return static_cast<std::size_t>(row) * static_cast<std::size_t>(m_iSide - 1) + static_cast<std::size_t>(column);
  }

  /// The rectangle that the lattice covers, model units.
  const CExtent& Extent() const { return m_Extent; }
  void SetExtent(const CExtent& extent) { m_Extent = extent; }
  /// Sides of a unit cell, in model units.
  double StepX() const { return (m_Extent.x1 - m_Extent.x0) / (m_iSide - 1); }
  double StepY() const { return (m_Extent.y1 - m_Extent.y0) / (m_iSide - 1); }
  /// Model units to lattice coordinates: 0 at x0 (y0), n - 1 at x1 (y1), linear also outside.
  double ColumnOf(double x) const { return (x - m_Extent.x0) / (m_Extent.x1 - m_Extent.x0) * (m_iSide - 1); }
  double RowOf(double y) const { return (y - m_Extent.y0) / (m_Extent.y1 - m_Extent.y0) * (m_iSide - 1); }
  /// Lattice coordinates to model units.
  double XOf(double column) const { return m_Extent.x0 + column * (m_Extent.x1 - m_Extent.x0) / (m_iSide - 1); }
  double YOf(double row) const { return m_Extent.y0 + row * (m_Extent.y1 - m_Extent.y0) / (m_iSide - 1); }

  /// Bits of PointFlag at a point: whether any of them is set; setting and clearing them.
  bool Has(std::size_t point, std::uint32_t flags) const { return (m_auFlags[point] & flags) != 0; }
  void Set(std::size_t point, std::uint32_t flags) { m_auFlags[point] |= flags; }
  void Clear(std::size_t point, std::uint32_t flags) { m_auFlags[point] &= ~flags; }
  /// Clears the given bits on every point.
  void ClearAll(std::uint32_t flags);
  /// Number of points that carry `flags`.
  std::size_t Count(std::uint32_t flags) const;

  /// Heights in model units, one per point; meaningful at points in use.
  std::vector<double>& Heights() { return m_afHeights; }
  const std::vector<double>& Heights() const { return m_afHeights; }
  /// Per-point smoothness weight, in lattice steps squared.
  std::span<double> Smoothness() { return m_afSmoothness; }
  std::span<const double> Smoothness() const { return m_afSmoothness; }
  /// Point normals, unit length or (0, 0, 0) where no triangle contributes.
  std::span<Vector3> PointNormals() { return m_aPointNormals; }
  std::span<const Vector3> PointNormals() const { return m_aPointNormals; }
  /// Normals of the active cells, each at the unit-cell index of its lower left point.
  std::span<Vector3> CellNormals() { return m_aCellNormals; }
  std::span<const Vector3> CellNormals() const { return m_aCellNormals; }

 private:
  int m_iLevel = 0;
  int m_iSide = 0;
  CExtent m_Extent;
  std::vector<double> m_afHeights;
  std::vector<std::uint32_t> m_auFlags;
  std::vector<double> m_afSmoothness;
  std::vector<Vector3> m_aPointNormals;
  std::vector<Vector3> m_aCellNormals;
};
