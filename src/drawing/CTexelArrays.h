#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "lattice/CLattice.h"

class CGrid;

/// The texels of the picture as vertex arrays, remade only where the model has changed. Without a picture all are
/// empty. Linear in the number of texels.
class CTexelArrays {
 public:
  /// The rectangles of the texels in a discontinuity.
  void RefreshMasked(const CGrid& grid);
  /// Segments `length` model units long, of texels that have been located since the subdivision changed.
  void RefreshNormals(const CGrid& grid, double length);

  /// Two floats per vertex, in texels from the lower left corner of the picture, four vertices per rectangle: the
  /// texels in a discontinuity, those side by side in a row in one.
  std::span<const float> Masked() const { return m_afMasked; }
  /// Six floats per segment, in model units: from the texel's centre on the surface along its normal. None for a texel
  /// without a place or a normal.
  std::span<const float> Normals() const { return m_afNormals; }

 private:
  /// What the arrays show; no two pictures, subdivisions or surfaces have the same.
  struct CStamp {
    unsigned m_uPicture = 0;
    unsigned m_uTexels = 0;
    std::uint64_t m_uTree = 0;
    std::uint64_t m_uSurface = 0;
    double m_fLength = 0.0;
    CExtent m_Extent;
    bool operator==(const CStamp&) const = default;
  };

  void RaiseCentres(const CGrid& grid);

  CStamp m_MaskStamp;
  CStamp m_NormalStamp;
  std::vector<float> m_afMasked;
  std::vector<float> m_afNormals;
  std::vector<double> m_afCentres;  ///< height at the centre of a leaf, by unit-cell index of its lower left point
};
