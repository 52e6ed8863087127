#pragma once

#include <vector>

struct CPlanePoint;

/// What the scissors ask of the program around them.
class ScissorsHost {
 public:
  virtual ~ScissorsHost() = default;

  /// Make an open position discontinuity through the points, in model units. Whether it was made: a contour that is not
  /// taken stays with the scissors.
  virtual bool AddTracedCurve(const std::vector<CPlanePoint>& points) = 0;
  /// What the main window shows may be out of date.
  virtual void RefreshDisplays() = 0;
};
