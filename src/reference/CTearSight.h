#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "base/CPlanePoint.h"
#include "constraints/GridSegment.h"

/// Which places a tear parts from each other: those that cannot see each other across it. Lattice coordinates.
class CTearSight {
 public:
  /// For a lattice of `side` steps. Linear in the length of the lines.
  CTearSight(std::span<const CGridSegment> lines, double side);

  /// Whether there are tears at all.
  bool IsEmpty() const { return m_aLines.empty(); }
  /// The lines that may reach into the rectangle from `low` to `high`, into `near`, whose memory is kept; some of them
  /// more than once.
  void CollectNear(const CPlanePoint& low, const CPlanePoint& high, std::vector<CGridSegment>& near) const;

 private:
  /// Buckets a side.
  static constexpr int kBuckets = 64;
  static std::size_t NumberOf(int column, int row);
  int BucketOf(double place) const;

  std::vector<CGridSegment> m_aLines;
  double m_fSide;
  std::vector<std::vector<std::uint32_t>> m_aauBuckets;  ///< numbers of lines, row by row
};

/// Whether one of the lines crosses the way from `a` to `b`, or touches it on the way.
bool IsParted(const CPlanePoint& a, const CPlanePoint& b, std::span<const CGridSegment> lines);
