#pragma once

#include "quadtree/Interpolation.h"

/// What the model asks of the program around it. The window implements it; a grid without a host works on its own.
class GridHost {
 public:
  virtual ~GridHost() = default;

  /// The surface or what is drawn on it has changed: both views are out of date.
  virtual void RequestRedraw() = 0;
  /// Show what an interpolation was made of over the picture.
  virtual void ShowInterpolation(const CInterpolationTrace& trace) = 0;
};
