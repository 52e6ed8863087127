#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

class CCutTriangulation;
class CTearPatch;
class CTearSides;

/// In lattice coordinates.
struct CSidePoint {
  double x = 0.0;
  double y = 0.0;
};

/// Through three heights of one side that the solver has: the copies that have them, the middle between them, and what
/// the plane grows by per cell and unit of each.
struct CSidePlane {
  std::array<std::uint32_t, 3> m_auCopies{};
  CSidePoint m_Middle;
  std::array<double, 3> m_afSlopeX{};
  std::array<double, 3> m_afSlopeY{};
};

/// The plane that heights of the side of a triangle are continued from: that of its corners, or of its corners and one
/// of a neighbour in its leaf. None where heights are missing, or lie on one line.
std::optional<CSidePlane> SidePlaneOf(const CTearPatch& patch, const CTearSides& sides, std::uint32_t t);

/// Where a single cut side begins or ends inside the surface or on the rim: by vertex the one before such an end,
/// CCutTriangulation::kNone elsewhere.
std::vector<std::uint32_t> VerticesBeforeEnds(const CCutTriangulation& triangles);

/// What a plane counts at a point so far from its middle, in cells.
inline double SideWeightAt(double dx, double dy) {
  constexpr double kSoftening = 0.25;  // keeps the weight of a triangle around the point itself finite
  const double near = dx * dx + dy * dy + kSoftening;
  return 1.0 / (near * near);
}

/// The side of an open end, 0 or 1, that a plane lies on whose middle is so far from it; `along` is the way to the end.
inline std::size_t SideOfEnd(const CSidePoint& along, double dx, double dy) {
  return along.y * dx - along.x * dy > 0.0 ? 0 : 1;
}

/// What a unit of weight counts on either side of an open end, which counts as much as the other one.
inline std::array<double, 2> SharesOfSides(const std::array<double, 2>& weights) {
  const bool both = weights[0] > 0.0 && weights[1] > 0.0;
  std::array<double, 2> shares{};
  for (std::size_t hand = 0; hand < shares.size(); ++hand) {
    if (weights[hand] > 0.0) shares[hand] = (both ? 0.5 : 1.0) / weights[hand];
  }
  return shares;
}
