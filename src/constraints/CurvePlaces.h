#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <vector>

#include "base/CPlanePoint.h"

class CCntrCtrl;

/// How a curve is divided: into places so far apart, or into so many.
struct CCurveSteps {
  std::optional<double> m_Distance;  ///< model units along the curve; without one the count holds
  std::size_t m_uCount = 8;

  bool operator==(const CCurveSteps&) const = default;
};

/// A place on a curve or beside it.
struct CCurvePlace {
  CPlanePoint m_Foot;     ///< on the curve
  CPlanePoint m_Place;    ///< as far to the left of it, perpendicular to its segment there, as was asked for
  double m_fShare = 0.0;  ///< of the curve's length up to the foot
};

/// More places than this along one curve come from a mistyped number.
inline constexpr std::size_t kMostCurvePlaces = 10'000;

/// Of all segments, model units; 0 without any, and where it is no finite number.
double LengthOf(const CCntrCtrl& curve);

/// Lengths along a curve, from its first node, at which its places lie. An open one has a place at either end, or a
/// single one in its middle; distances begin at its first node and end where the curve does. A closed one has none at
/// its end, which is its start, and with distances none nearer to it than half of one. Nothing without a length, where
/// the distance is not above 0, and for more than kMostCurvePlaces.
std::vector<double> StepsAlong(double length, bool closed, const CCurveSteps& steps);

/// Places at lengths along a curve, in rising order; a place at a node belongs to the segment that begins there.
/// `beside`: model units to the left as one travels along the curve, below 0 to the right. Segments without a length
/// are passed over. Linear in nodes and lengths.
std::vector<CCurvePlace> PlacesAlong(const CCntrCtrl& curve, std::span<const double> lengths, double beside);
