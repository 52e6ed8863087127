#include "constraints/CurvePlaces.h"

#include <algorithm>
#include <cmath>

#include "constraints/CCntrCtrl.h"

namespace {

// What rounding may take from the last of many equal distances, as a share of one.
constexpr double kRounding = 1e-9;

struct CSegment {
  CPlanePoint m_From;
  CPlanePoint m_To;
  double m_fLength = 0.0;
};

std::vector<CSegment> SegmentsOf(const CCntrCtrl& curve) {
  std::vector<CSegment> segments;
  curve.ForEachSegment([&](const CPtCstr& a, const CPtCstr& b) {
    const double length = std::hypot(b.m_fX - a.m_fX, b.m_fY - a.m_fY);
    if (length > 0) segments.push_back({{a.m_fX, a.m_fY}, {b.m_fX, b.m_fY}, length});
  });
  return segments;
}

double LengthOf(std::span<const CSegment> segments) {
  double length = 0.0;
  for (const CSegment& segment : segments) length += segment.m_fLength;
  return std::isfinite(length) ? length : 0.0;
}

// `along`: from the start of the segment.
CCurvePlace PlaceOn(const CSegment& segment, double along, double beside) {
  const double dx = (segment.m_To.x - segment.m_From.x) / segment.m_fLength;
  const double dy = (segment.m_To.y - segment.m_From.y) / segment.m_fLength;
  const CPlanePoint foot{segment.m_From.x + along * dx, segment.m_From.y + along * dy};
  return {foot, {foot.x - beside * dy, foot.y + beside * dx}, 0.0};
}

std::vector<double> EqualParts(double length, bool closed, std::size_t count) {
  if (count == 1 && !closed) return {length / 2};
  const auto parts = static_cast<double>(closed ? count : count - 1);
  std::vector<double> lengths(count);
  for (std::size_t k = 0; k < count; ++k) lengths[k] = static_cast<double>(k) / parts * length;
  return lengths;
}

}  // namespace

double LengthOf(const CCntrCtrl& curve) { return LengthOf(SegmentsOf(curve)); }

std::vector<double> StepsAlong(double length, bool closed, const CCurveSteps& steps) {
  if (!(length > 0)) return {};
  if (!steps.m_Distance.has_value()) {
    const bool possible = steps.m_uCount > 0 && steps.m_uCount <= kMostCurvePlaces;
    return possible ? EqualParts(length, closed, steps.m_uCount) : std::vector<double>();
  }
  const double distance = *steps.m_Distance;
  if (!(distance > 0) || !(length / distance < static_cast<double>(kMostCurvePlaces))) return {};
  const double last = closed ? length - distance / 2 : length + kRounding * distance;
  std::vector<double> lengths{0.0};
  for (double k = 1; k * distance <= last; ++k) lengths.push_back(std::min(k * distance, length));
  return lengths;
}

std::vector<CCurvePlace> PlacesAlong(const CCntrCtrl& curve, std::span<const double> lengths, double beside) {
  const std::vector<CSegment> segments = SegmentsOf(curve);
  const double whole = LengthOf(segments);
  std::vector<CCurvePlace> places;
  if (whole == 0) return places;
  auto segment = segments.begin();
  double start = 0.0;
  for (const double length : lengths) {
    for (; std::next(segment) != segments.end() && start + segment->m_fLength <= length; ++segment)
      start += segment->m_fLength;
    places.push_back(PlaceOn(*segment, std::min(length - start, segment->m_fLength), beside));
    places.back().m_fShare = length / whole;
  }
  return places;
}
