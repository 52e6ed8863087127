#pragma once

#include <cstddef>
#include <cstdint>

#include "base/Vector3.h"

class CInterpolation;

/// How one texel of the picture hangs on the surface, kept so that relighting need not look it up again.
class CInterpCoefs {
 public:
  CInterpCoefs() = default;
  /// Column and row of the texel, row 0 at the bottom.
  CInterpCoefs(std::int32_t column, std::int32_t row) : m_iColumn(column), m_iRow(row) {}

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
  const Vector3& Normal() const { return m_Normal; }

  /// Finds the texel's place on `surface`, for a picture of `width` x `height` texels stretched over the model: the
  /// texel's centre lies at lattice coordinates (column + 0.5) / width * (n - 1) and likewise for the row. Fills the
  /// coefficients and the unit normal there and returns the normal. Null without a surface; null, with two console
  /// lines and a cleared normal, where no leaf is found.
  const Vector3* GetNormalTexPoint(const CInterpolation* surface, int width, int height);

 private:
  std::int32_t m_iColumn = 0;
  std::int32_t m_iRow = 0;
  double m_fCa = 0.0;
  double m_fCb = 0.0;
  double m_fCCenter = 0.0;
  std::size_t m_uA = 0;
  std::size_t m_uB = 0;
  std::size_t m_uCell = 0;
  Vector3 m_Normal;
};
