#pragma once

#include <cstddef>
#include <span>
#include <vector>

/// A depth map as it was read: one number for each pixel, row by row, bottom row first, of no known unit.
///
/// Numbers that are not finite are no values; whether 0 is one, its user decides (CDepthReading).
class CDepthMap {
 public:
  /// `values` are width x height numbers, both sides at least 2; `bits` those of the stored numbers: 8, 16, or 32 for
  /// floats.
  CDepthMap(int width, int height, int bits, std::vector<float> values);

  /// As given to the constructor.
  int Width() const { return m_iWidth; }
  int Height() const { return m_iHeight; }
  int Bits() const { return m_iBits; }
  std::span<const float> Values() const { return m_afValues; }
  /// Bit by bit, so that values that are no numbers are like themselves.
  bool operator==(const CDepthMap& other) const;

 private:
  int m_iWidth;
  int m_iHeight;
  int m_iBits;
  std::vector<float> m_afValues;
};

/// A depth map with a meaning for 0, and its values brought to -1..1 from the lowest to the highest.
///
/// Places on it are pixels: the centre of pixel (column, row) is at (column, row), row 0 at the bottom. The map is
/// stretched over the model's rectangle like the photograph.
class CDepthReading {
 public:
  /// `zeroIsUnknown` counts for whole numbers alone. The map must outlive the reading. One pass over it.
  CDepthReading(const CDepthMap& map, bool zeroIsUnknown);

  /// The map and its sides.
  int Width() const { return m_Map.Width(); }
  int Height() const { return m_Map.Height(); }
  const CDepthMap& Map() const { return m_Map; }
  /// Pixels with a value, and the lowest and highest of these; 0 where there is none.
  std::size_t KnownCount() const { return m_uKnown; }
  double Low() const { return m_fLow; }
  double High() const { return m_fHigh; }
  /// Of all values, brought to -1..1.
  double Mean() const { return m_fMean; }

  /// The value of a pixel as it is stored, and brought to -1..1 (0 where all are the same); not a number for none.
  float Stored(int column, int row) const {
    const float value = m_Map.Values()[Index(column, row)];
    return IsValue(value) ? value : m_fNone;
  }
  double At(int column, int row) const { return Normalised(Stored(column, row)); }
  double Normalised(double stored) const { return (stored - m_fMiddle) * m_fPerUnit; }
  /// The same between pixels, and linear on from the outermost ones; not a number where a pixel without a value counts.
  double Bilinear(double column, double row) const;

  /// Place on the map of a share of the model's sides.
  double ColumnOf(double share) const { return share * Width() - 0.5; }
  double RowOf(double share) const { return share * Height() - 0.5; }

  /// The stored values with those that are missing filled in from their neighbours, for showing; without any value
  /// nothing but 0. Linear in the pixels.
  std::vector<float> Filled() const;

 private:
  std::size_t Index(int column, int row) const {
    return static_cast<std::size_t>(row) * static_cast<std::size_t>(Width()) + static_cast<std::size_t>(column);
  }
  bool IsValue(float value) const;

  const CDepthMap& m_Map;
  bool m_bZeroIsUnknown;
  float m_fNone;
  std::size_t m_uKnown = 0;
  double m_fLow = 0.0;
  double m_fHigh = 0.0;
  double m_fMiddle = 0.0;
  double m_fPerUnit = 0.0;
  double m_fMean = 0.0;
};
