#pragma once

#include <optional>
#include <vector>

#include "lattice/CLattice.h"

class CGrid;

/// The surface as it was once, to compare later ones with, whatever their subdivision.
class CSavedSurface {
 public:
  /// Takes the surface as it is. Linear in the number of lattice points.
  void Take(const CGrid& grid);
  void Forget() { m_afHeights.clear(); }
  /// Whether there is a surface of a model of the same extent and lattice.
  bool IsComparable(const CGrid& grid) const;
  /// The present height of each point, by scan position, less that of then; model units. Precondition: `IsComparable`.
  std::vector<double> DifferenceOf(const CGrid& grid) const;

 private:
  CExtent m_Extent;
  std::vector<double> m_afHeights;  ///< by lattice point; empty for no surface
};

/// The same less the height that the depth map asks for, s P, where the model follows one; not a number where the map
/// has no value, and empty without a map.
std::vector<double> DifferenceFromReference(const CGrid& grid);
