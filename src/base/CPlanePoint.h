#pragma once

/// A point of the model rectangle, in model units.
struct CPlanePoint {
  double x = 0.0;
  double y = 0.0;

  bool operator==(const CPlanePoint&) const = default;
};
