#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

#include "base/Vector3.h"
#include "quadtree/Interpolation.h"

/// How one texel of the picture hangs on the surface, kept so that relighting need not look it up again.
///
/// The texel's centre lies at lattice coordinates (column + 0.5) / width * (n - 1) and likewise for the row. The
/// indices are those of one subdivision: after the tree has changed the texel must be located again.
class CInterpCoefs {
 public:
  CInterpCoefs() = default;
  /// Column and row of the texel, row 0 at the bottom. Not located yet.
  CInterpCoefs(std::int32_t column, std::int32_t row) : m_iColumn(column), m_iRow(row) {}

  /// Of the texel; then the weights of A, of B and of the centre of the leaf, which sum to 1 once it is located.
  std::int32_t Column() const { return m_iColumn; }
  std::int32_t Row() const { return m_iRow; }
  double Ca() const { return m_fCa; }
  double Cb() const { return m_fCb; }
  double CCenter() const { return m_fCCenter; }
  /// Lattice indices of the two ends of the border sub-edge.
  std::size_t A() const { return m_uA; }
  std::size_t B() const { return m_uB; }
  /// Unit-cell index of the leaf's lower left point, where the lattice keeps the leaf's normal.
  std::size_t Cell() const { return m_uCell; }
  bool IsLocated() const { return m_uA != kNowhere; }

  /// Lattice coordinate of texel `texel` of `count` along a side of `pointsPerSide` points.
  static double Coordinate(std::int32_t texel, int count, int pointsPerSide) {
    return (texel + 0.5) / count * (pointsPerSide - 1);
  }

  /// Finds the texel's place on `surface`, for a picture of `width` x `height` texels stretched over the model. The
  /// search begins at `leaf` (an active leaf of the present subdivision, or null), which becomes the leaf found. False,
  /// with two console lines and the record and `leaf` as they were, where no leaf is found.
  bool Locate(const CInterpolation& surface, int width, int height, const CQuadT*& leaf);

  /// The unit normal at the texel, blended from the lattice's point normals and cell normals. Precondition:
  /// `IsLocated()`, in the present subdivision.
  Vector3 NormalOn(std::span<const Vector3> points, std::span<const Vector3> cells) const {
    return BlendedNormal(m_fCa, points[m_uA], m_fCb, points[m_uB], m_fCCenter, cells[m_uCell]);
  }

  /// Locates the texel, beginning at `leaf`, and puts its unit normal into `normal`, which is cleared first; returns
  /// it. Null without a surface, and null where no leaf is found.
  const Vector3* GetNormalTexPoint(const CInterpolation* surface, int width, int height, const CQuadT*& leaf,
                                   Vector3& normal);

 private:
  static constexpr std::uint32_t kNowhere = 0xFFFFFFFF;

  // There is one record per pixel of a photograph and passes read them all, so every byte counts.
  std::int32_t m_iColumn = 0;
  std::int32_t m_iRow = 0;
  double m_fCa = 0.0;
  double m_fCb = 0.0;
  double m_fCCenter = 0.0;
  std::uint32_t m_uA = kNowhere;
  std::uint32_t m_uB = kNowhere;
  std::uint32_t m_uCell = 0;
};
