#include "reference/CValueSampler.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <limits>

#include "lattice/CLattice.h"
#include "quadtree/CPointOrder.h"
#include "quadtree/CQuadTree.h"
#include "reference/CDepthMap.h"

namespace {

// More pixels than this along the spacing of a point, and single ones are not enough.
constexpr double kMostPixels = 2.0;
// Of the weights of the pixels in sight, those with a value must make up this share.
constexpr double kEnough = 0.5;
// A point on a tear looks from this share of its spacing to the side that it is joined to.
constexpr double kAside = 1e-4;
// How far a pixel in sight is searched for, in pixels: a loop without any is smaller.
constexpr int kFarthest = 64;

// The product of the spreads of pixels along and across, of the square of their sum: less, and their slope across is a
// guess.
constexpr double kInALine = 0.01;

constexpr double kNoValue = std::numeric_limits<double>::quiet_NaN();

// The integral up to t of the tent that is 1 at 0 and 0 from 1 on: linear interpolation between pixels, summed.
double TentBelow(double t) {
  if (t <= -1) return 0.0;
  if (t >= 1) return 1.0;
  return t < 0 ? (1 + t) * (1 + t) / 2 : 1 - (1 - t) * (1 - t) / 2;
}

/// Weighted values over the plane, and the plane through them by least squares.
class CPlaneFit {
 public:
  void Add(double weight, double x, double y, double value) {
    m_fW += weight;
    m_fX += weight * x;
    m_fY += weight * y;
    m_fXX += weight * x * x;
    m_fXY += weight * x * y;
    m_fYY += weight * y * y;
    m_fV += weight * value;
    m_fXV += weight * x * value;
    m_fYV += weight * y * value;
  }
  double Mean() const { return m_fV / m_fW; }
  /// Of the plane; the mean where they lie in a line.
  double AtOrigin() const {
    const double x = m_fX / m_fW;
    const double y = m_fY / m_fW;
    const double xx = m_fXX / m_fW - x * x;
    const double xy = m_fXY / m_fW - x * y;
    const double yy = m_fYY / m_fW - y * y;
    const double xv = m_fXV / m_fW - x * Mean();
    const double yv = m_fYV / m_fW - y * Mean();
    const double determinant = xx * yy - xy * xy;
    if (!(determinant > kInALine * (xx + yy) * (xx + yy))) return Mean();
    return Mean() - (x * (yy * xv - xy * yv) + y * (xx * yv - xy * xv)) / determinant;
  }

 private:
  double m_fW = 0.0;
  double m_fX = 0.0;
  double m_fY = 0.0;
  double m_fXX = 0.0;
  double m_fXY = 0.0;
  double m_fYY = 0.0;
  double m_fV = 0.0;
  double m_fXV = 0.0;
  double m_fYV = 0.0;
};

}  // namespace

CValueSampler::CValueSampler(const CDepthReading& reading, const CQuadTree& tree, const CPointOrder& order,
                             std::span<const CGridSegment> tears)
    : m_Reading(reading),
      m_Tree(tree),
      m_Order(order),
      m_Sight(tears, tree.Lattice().PointsPerSide() - 1),
      m_aPoints(order.Count()) {
  SurveyEdges();
}

void CValueSampler::SurveyEdges() {
  const CLattice& lattice = m_Tree.Lattice();
  const auto at = [&](int column, int row) -> CPoint& {
    const auto number = static_cast<std::size_t>(m_Order.NumberOf(lattice.Index(column, row)));
    return m_aPoints[m_Order.ScanOf(number)];
  };
  const auto survey = [&](const CEdge& edge, const auto& self) -> void {
    if (!edge.IsLeaf()) {
      self(edge.Half(0), self);
      self(edge.Half(1), self);
      return;
    }
    CPoint& a = at(edge.Xa(), edge.Ya());
    CPoint& b = at(edge.Xb(), edge.Yb());
    const int length = edge.Xb() - edge.Xa() + edge.Yb() - edge.Ya();
    for (CPoint* end : {&a, &b}) end->m_iSpacing = std::max(end->m_iSpacing, length);
    if (edge.HasBothMarks()) return;
    (edge.IsHorizontal() ? a.m_iJoinedX : a.m_iJoinedY) |= 1;
    (edge.IsHorizontal() ? b.m_iJoinedX : b.m_iJoinedY) |= 2;
  };
  for (const CLeaf& leaf : m_Tree.Leaves()) {
    for (int side = 0; side < 4; ++side) survey(leaf.m_pCell->Edge(side), survey);
  }
  // Joined on both sides it looks to neither.
  const auto direction = [](int joined) { return (joined & 1) - (joined >> 1); };
  for (CPoint& point : m_aPoints) {
    point.m_iJoinedX = direction(point.m_iJoinedX);
    point.m_iJoinedY = direction(point.m_iJoinedY);
  }
}

void CValueSampler::Sample(std::vector<double>& values) {
  values.resize(m_aPoints.size());
  for (std::uint32_t position = 0; position < values.size(); ++position) values[position] = ValueAt(position);
}

// The mean of what lies between the pixels over `half` to either side of the centre. Such a mean keeps planes, which
// one of whole pixels would not. Beyond the outermost pixels nothing lies between: the window is moved, and wide enough
// for the slope.
void CValueSampler::Place(double centre, double half, int count, CWindow& window) const {
  window.m_bMoved = centre - half < 0 || centre + half > count - 1;
  double low = centre - half;
  double width = 2 * half;
  if (window.m_bMoved) {
    width = std::clamp(width, kMostPixels, static_cast<double>(count));
    low = std::clamp(centre - width / 2, -0.5, count - 0.5 - width);
  }
  const double high = low + width;
  const int first = std::clamp(static_cast<int>(std::floor(low)), 0, count - 2);
  const int last = std::clamp(static_cast<int>(std::floor(high)) + 1, first + 1, count - 1);
  window.m_iFirst = first;
  window.m_fUnit = std::max(width, kMostPixels);
  window.m_afWeights.assign(static_cast<std::size_t>(last - first) + 1, 0.0);
  for (int k = first; k <= last; ++k)
    window.m_afWeights[static_cast<std::size_t>(k - first)] = (TentBelow(high - k) - TentBelow(low - k)) / width;
}

CPlanePoint CValueSampler::LatticePlace(double column, double row) const {
  const double side = m_Tree.Lattice().PointsPerSide() - 1;
  return {(column + 0.5) / m_Reading.Width() * side, (row + 0.5) / m_Reading.Height() * side};
}

double CValueSampler::ValueAt(std::uint32_t position) {
  const double side = m_Tree.Lattice().PointsPerSide() - 1;
  const std::uint32_t index = m_Order.PointAtScan(position);
  const auto pointsPerSide = static_cast<std::uint32_t>(m_Tree.Lattice().PointsPerSide());
  const std::uint32_t latticeColumn = index % pointsPerSide;
  const std::uint32_t latticeRow = index / pointsPerSide;
  const CPlanePoint place{static_cast<double>(latticeColumn), static_cast<double>(latticeRow)};
  const CPoint& point = m_aPoints[position];
  const double column = m_Reading.ColumnOf(place.x / side);
  const double row = m_Reading.RowOf(place.y / side);
  const double width = point.m_iSpacing / side * m_Reading.Width();
  const double height = point.m_iSpacing / side * m_Reading.Height();
  if (std::max(width, height) <= kMostPixels) return m_Reading.Bilinear(column, row);
  Place(column, width / 2, m_Reading.Width(), m_Columns);
  Place(row, height / 2, m_Reading.Height(), m_Rows);
  const auto end = [](const CWindow& w) {
    return static_cast<double>(w.m_iFirst) + static_cast<double>(w.m_afWeights.size());
  };
  m_Sight.CollectNear(LatticePlace(m_Columns.m_iFirst - 1, m_Rows.m_iFirst - 1),
                      LatticePlace(end(m_Columns), end(m_Rows)), m_aNear);
  const double aside = kAside * point.m_iSpacing;
  const CPlanePoint eye{place.x + aside * point.m_iJoinedX, place.y + aside * point.m_iJoinedY};
  const double mean = MeanInSight(eye, {column, row});
  return std::isinf(mean) ? NearestInSight(eye, {column, row}) : mean;
}

bool CValueSampler::IsInSight(const CPlanePoint& eye, int column, int row) const {
  return m_aNear.empty() || !IsParted(eye, LatticePlace(column, row), m_aNear);
}

// Where a tear or the border leaves pixels on one side alone, their plane is taken at the point, or the mean would be
// as far off as it slopes. Infinite where no pixel is in sight.
double CValueSampler::MeanInSight(const CPlanePoint& eye, const CPlanePoint& place) {
  double known = 0.0;
  double seen = 0.0;
  CPlaneFit plane;
  for (std::size_t j = 0; j < m_Rows.m_afWeights.size(); ++j) {
    for (std::size_t i = 0; i < m_Columns.m_afWeights.size(); ++i) {
      const double weight = m_Rows.m_afWeights[j] * m_Columns.m_afWeights[i];
      const int column = m_Columns.m_iFirst + static_cast<int>(i);
      const int row = m_Rows.m_iFirst + static_cast<int>(j);
      if (weight == 0.0 || !IsInSight(eye, column, row)) continue;
      seen += weight;
      const double value = m_Reading.At(column, row);
      if (std::isnan(value)) continue;
      known += weight;
      plane.Add(weight, (column - place.x) / m_Columns.m_fUnit, (row - place.y) / m_Rows.m_fUnit, value);
    }
  }
  if (!(seen > 0.0)) return HUGE_VAL;
  if (known < kEnough * seen) return kNoValue;
  const bool around = m_aNear.empty() && !m_Columns.m_bMoved && !m_Rows.m_bMoved;
  return around ? plane.Mean() : plane.AtOrigin();
}

// In growing squares; a pixel at the corner of one may be farther than one in the next.
double CValueSampler::NearestInSight(const CPlanePoint& eye, const CPlanePoint& place) {
  constexpr double kReach = kFarthest + 1;
  m_Sight.CollectNear(LatticePlace(place.x - kReach, place.y - kReach),
                      LatticePlace(place.x + kReach, place.y + kReach), m_aNear);
  double best = HUGE_VAL;
  double value = kNoValue;
  const int column = static_cast<int>(std::lround(place.x));
  const int row = static_cast<int>(std::lround(place.y));
  for (int radius = 0; radius <= kFarthest && (radius - 1) < best; ++radius) {
    for (int dy = -radius; dy <= radius; ++dy) {
      const int step = std::abs(dy) == radius ? 1 : std::max(1, 2 * radius);
      for (int dx = -radius; dx <= radius; dx += step) {
        const int c = column + dx;
        const int r = row + dy;
        const bool inside = c >= 0 && r >= 0 && c < m_Reading.Width() && r < m_Reading.Height();
        const double distance = std::hypot(c - place.x, r - place.y);
        if (!inside || distance >= best || !IsInSight(eye, c, r)) continue;
        best = distance;
        value = m_Reading.At(c, r);
      }
    }
  }
  return value;
}
