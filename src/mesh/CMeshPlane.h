#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

/// A point of the plane in whole steps of the written coordinates, from the middle of the rectangle.
struct CMeshPlace {
  std::int32_t x = 0;
  std::int32_t y = 0;
  bool operator==(const CMeshPlace&) const = default;
};

/// The plane under a mesh as the numbers of a file see it.
///
/// Written coordinates count from the middle of the rectangle and are whole multiples of a power of two, at most 2^24
/// of them to either side: each is a float exactly, and on which side of a line a point lies is found without
/// rounding. What holds of triangles here therefore holds of those that a reader of the file sees. Distances are in
/// cells one lattice step wide, whatever their proportions.
class CMeshPlane {
 public:
  /// For a square of `cells` by `cells` lattice steps (at most 1024), which is `width` by `height` (both positive) in
  /// the unit of the file.
  CMeshPlane(int cells, double width, double height);

  /// Lattice steps of a side.
  int Cells() const { return static_cast<int>(2.0 * m_X.m_fHalf); }
  /// The place nearest to a point in lattice coordinates.
  CMeshPlace At(double column, double row) const { return {m_X.PlaceOf(column), m_Y.PlaceOf(row)}; }
  /// The way back. Places of lattice points and of the middles between two give their exact coordinates.
  double ColumnOf(const CMeshPlace& place) const { return m_X.LatticeOf(place.x); }
  double RowOf(const CMeshPlace& place) const { return m_Y.LatticeOf(place.y); }
  /// Coordinates as written.
  float WrittenX(const CMeshPlace& place) const { return static_cast<float>(place.x * m_X.m_fStep); }
  float WrittenY(const CMeshPlace& place) const { return static_cast<float>(place.y * m_Y.m_fStep); }
  /// The place that is written so.
  CMeshPlace PlaceWrittenAs(float x, float y) const {
    return {static_cast<std::int32_t>(x / m_X.m_fStep), static_cast<std::int32_t>(y / m_Y.m_fStep)};
  }
  /// Coordinates, as written, of all lattice points of a row or column and of the middles between them, in that order.
  std::vector<float> WrittenColumns() const { return m_X.WrittenHalves(); }
  std::vector<float> WrittenRows() const { return m_Y.WrittenHalves(); }

  /// Whether both lie on the same side of the rectangle.
  bool AreOnOneBorder(const CMeshPlace& a, const CMeshPlace& b) const;
  /// The point of the border that lies on the same side as `a` and `b` and is nearest to the place.
  CMeshPlace OntoBorder(const CMeshPlace& place, const CMeshPlace& a, const CMeshPlace& b) const;
  double Distance(const CMeshPlace& a, const CMeshPlace& b) const;
  /// From a place to the nearest point of the line between `a` and `b`; `Nearest` is where between 0 (a) and 1 (b) that
  /// lies.
  double Distance(const CMeshPlace& place, const CMeshPlace& a, const CMeshPlace& b) const;
  double Nearest(const CMeshPlace& place, const CMeshPlace& a, const CMeshPlace& b) const;
  /// The place nearest to the point `share` of the way from `a` to `b`.
  static CMeshPlace Between(const CMeshPlace& a, const CMeshPlace& b, double share);

 private:
  struct CAxis {
    CAxis(int cells, double length);
    std::int32_t PlaceOf(double lattice) const {
      // Turned round, so that what is no number is outside, too.
      if (!(lattice >= 0.0 && lattice <= 2.0 * m_fHalf)) return Rounded(lattice);
      const auto half = static_cast<std::size_t>(2.0 * lattice);
      return static_cast<double>(half) == 2.0 * lattice ? m_aiHalves[half] : Rounded(lattice);
    }
    double LatticeOf(std::int32_t place) const {
      const double nearest = std::max(2.0 * (m_fHalf + place * m_fCells) + 0.5, 0.0);
      const auto half = std::min(static_cast<std::size_t>(nearest), m_aiHalves.size() - 1);
      return m_aiHalves[half] == place ? static_cast<double>(half) / 2.0 : m_fHalf + place / m_fUnits;
    }
    std::int32_t Rounded(double lattice) const;
    std::vector<float> WrittenHalves() const;

    double m_fHalf;         ///< of the cells
    double m_fStep = 1.0;   ///< a power of two, in the unit of the file
    double m_fUnits = 1.0;  ///< steps in a cell
    double m_fCells = 1.0;  ///< cells in a step
    // Of lattice points and of the middles between two, in halves of a cell from the first: nearly all that is asked
    // for.
    std::vector<std::int32_t> m_aiHalves;
  };

  CAxis m_X;
  CAxis m_Y;
};

/// Twice the area of the triangle in steps of both axes: positive where a, b, c turn to the left, 0 where they lie on
/// one line. Exact.
inline std::int64_t Turn(const CMeshPlace& a, const CMeshPlace& b, const CMeshPlace& c) {
  const auto along = [](std::int32_t from, std::int32_t to) { return static_cast<std::int64_t>(to) - from; };
  return along(a.x, b.x) * along(a.y, c.y) - along(a.y, b.y) * along(a.x, c.x);
}
