#include "reference/CTearSight.h"

#include <algorithm>

namespace {

// Twice the area of the triangle: above 0 where it turns left.
double Turn(const CPlanePoint& a, const CPlanePoint& b, const CPlanePoint& c) {
  return (b.x - a.x) * (c.y - a.y) - (b.y - a.y) * (c.x - a.x);
}

bool Crosses(const CPlanePoint& a, const CPlanePoint& b, const CGridSegment& line) {
  const CPlanePoint p{line.x0, line.y0};
  const CPlanePoint q{line.x1, line.y1};
  const double atA = Turn(p, q, a);
  const double atB = Turn(p, q, b);
  if ((atA > 0) == (atB > 0) || atA == 0) return false;
  const double atP = Turn(a, b, p);
  const double atQ = Turn(a, b, q);
  return atP == 0 || atQ == 0 || (atP > 0) != (atQ > 0);
}

}  // namespace

CTearSight::CTearSight(std::span<const CGridSegment> lines, double side)
    : m_aLines(lines.begin(), lines.end()), m_fSide(side) {
  if (m_aLines.empty()) return;
  m_aauBuckets.resize(std::size_t{kBuckets} * kBuckets);
  for (std::uint32_t k = 0; k < m_aLines.size(); ++k) {
    const CGridSegment& s = m_aLines[k];
    const int right = BucketOf(std::max(s.x0, s.x1));
    const int top = BucketOf(std::max(s.y0, s.y1));
    for (int j = BucketOf(std::min(s.y0, s.y1)); j <= top; ++j) {
      for (int i = BucketOf(std::min(s.x0, s.x1)); i <= right; ++i) m_aauBuckets[NumberOf(i, j)].push_back(k);
    }
  }
}

std::size_t CTearSight::NumberOf(int column, int row) {
  return static_cast<std::size_t>(row) * kBuckets + static_cast<std::size_t>(column);
}

int CTearSight::BucketOf(double place) const {
  return std::clamp(static_cast<int>(place / m_fSide * kBuckets), 0, kBuckets - 1);
}

void CTearSight::CollectNear(const CPlanePoint& low, const CPlanePoint& high, std::vector<CGridSegment>& near) const {
  near.clear();
  if (IsEmpty()) return;
  for (int j = BucketOf(low.y); j <= BucketOf(high.y); ++j) {
    for (int i = BucketOf(low.x); i <= BucketOf(high.x); ++i) {
      for (const std::uint32_t k : m_aauBuckets[NumberOf(i, j)]) {
        const CGridSegment& s = m_aLines[k];
        const bool apart = std::max(s.x0, s.x1) < low.x || std::min(s.x0, s.x1) > high.x ||
                           std::max(s.y0, s.y1) < low.y || std::min(s.y0, s.y1) > high.y;
        if (!apart) near.push_back(s);
      }
    }
  }
}

bool IsParted(const CPlanePoint& a, const CPlanePoint& b, std::span<const CGridSegment> lines) {
  return std::ranges::any_of(lines, [&](const CGridSegment& line) { return Crosses(a, b, line); });
}
