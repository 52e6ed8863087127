#pragma once

/// A straight line in lattice coordinates.
struct CGridSegment {
  double x0;
  double y0;
  double x1;
  double y1;

  /// Whether none of the four coordinates is infinite or not a number.
  bool IsFinite() const;
  /// Keeps the part inside the square from 0 to `side` [LiangBarsky1984]. False, and nothing kept, where that has no
  /// length.
  bool Clip(double side);
  CGridSegment Transposed() const { return {y0, x0, y1, x1}; }
  CGridSegment Reversed() const { return {x1, y1, x0, y0}; }
};
