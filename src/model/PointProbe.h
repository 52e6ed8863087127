#pragma once

#include <array>
#include <cstddef>

class CGrid;
class CQuadT;

/// One term of the smoothness energy: a weight times the square of a linear form of the heights.
struct CProbedTerm {
  double m_fWeight = 0.0;                   ///< 0, with an empty form, where the energy has no such term
  std::size_t m_uCount = 0;                 ///< length of the form
  std::array<std::size_t, 4> m_auPoints{};  ///< lattice indices
  std::array<double, 4> m_afCoefs{};
};

/// Looks up what the smoothness energy makes of the place under the mouse, over the present subdivision.
///
/// Places in model units; one outside the model counts as the nearest on its border. Every look-up is O(level).
class CPointProbe {
 public:
  /// The grid must outlive the probe.
  explicit CPointProbe(const CGrid& grid) : m_pGrid(&grid) {}

  /// Lattice index of the nearest point in use, as distances in lattice steps go.
  std::size_t NearestPoint(double x, double y) const;
  /// The active leaf under the place.
  const CQuadT& LeafAt(double x, double y) const;

  /// Second difference of the heights along x (`horizontal`) or y at a point in use.
  CProbedTerm SecondDifference(std::size_t point, bool horizontal) const;
  /// Mixed difference of a leaf.
  CProbedTerm MixedDifference(const CQuadT& leaf) const;
  /// Smoothness weight of a point, in lattice steps squared.
  double Area(std::size_t point) const;
  /// Number of the unknown at a point and its level code; -1 and 0 where the numbering does not know the point yet.
  int NumberOf(std::size_t point) const;
  int LevelCodeOf(std::size_t point) const;

 private:
  int NeighbourDistance(int column, int row, int dx, int dy) const;

  const CGrid* m_pGrid;
};
