#pragma once

#include <optional>

#include "base/Vector3.h"

class CInterpolation;

/// A straight line of sight, model units: through a point, looked along in a direction that is not 0.
struct CSightLine {
  Vector3 m_Point;
  Vector3 m_Direction;
};

/// The first point of the whole line at which it meets a triangle of the surface that lies in no tear, from whichever
/// side; nothing where it meets none, and along a line of numbers that are none. All heights lie within
/// lowest..highest.
///
/// Follows the leaves under the line, so the time is linear in their number: those between the two heights, which are
/// few where one looks from above. Allocates nothing.
std::optional<Vector3> FirstSeen(const CInterpolation& surface, const CSightLine& line, double lowest, double highest);
