#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "constraints/CPtCstr.h"

/// The curve in progress: the points clicked so far, and how it is to end.
class CPendingCurve {
 public:
  /// Whether no curve is in progress.
  bool IsIdle() const { return m_bIdle; }
  std::span<const CPtCstr> Points() const { return m_aPoints; }
  /// Whether validating closes the curve: the cursor rests on the first point.
  bool ClosesOnValidate() const { return m_bClosedOnValidate; }
  void SetClosedOnValidate(bool closes) { m_bClosedOnValidate = closes; }

  /// A curve is in progress from the first point on.
  void Append(double x, double y);
  /// The cursor has moved to (x, y), away from every finished curve: the curve closes if it is within reach of the
  /// first point (see CPtCstr::IsWithinReach), and not otherwise. Nothing while idle.
  void Hover(double x, double y, double reach);
  /// Forgets the points; no curve is in progress.
  void Drop();

  /// Whether both have the same points; how they end is up to the cursor.
  bool operator==(const CPendingCurve& other) const { return m_bIdle == other.m_bIdle && m_aPoints == other.m_aPoints; }

 private:
  bool m_bIdle = true;
  bool m_bClosedOnValidate = false;
  std::vector<CPtCstr> m_aPoints;
};
