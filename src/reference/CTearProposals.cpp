#include "reference/CTearProposals.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

namespace {

double DistanceFrom(const CPlanePoint& place, const CPlanePoint& a, const CPlanePoint& b) {
  const double dx = b.x - a.x;
  const double dy = b.y - a.y;
  const double square = dx * dx + dy * dy;
  const double along = (place.x - a.x) * dx + (place.y - a.y) * dy;
  const double t = square > 0 ? std::clamp(along / square, 0.0, 1.0) : 0.0;
  return std::hypot(place.x - (a.x + t * dx), place.y - (a.y + t * dy));
}

double DistanceFrom(const CPlanePoint& place, const CTearProposal& tear) {
  const std::vector<CPlanePoint>& points = tear.m_aPoints;
  double least = std::numeric_limits<double>::infinity();
  for (std::size_t k = 1; k < points.size(); ++k)
    least = std::min(least, DistanceFrom(place, points[k - 1], points[k]));
  if (tear.m_bClosed && points.size() > 1) least = std::min(least, DistanceFrom(place, points.back(), points.front()));
  return least;
}

}  // namespace

void CTearProposals::Set(std::vector<CTearProposal> tears) {
  Clear();
  m_aItems.reserve(tears.size());
  for (CTearProposal& tear : tears) m_aItems.push_back({std::move(tear)});
}

std::size_t CTearProposals::TakenCount() const {
  return static_cast<std::size_t>(std::ranges::count(m_aItems, true, &CItem::m_bTaken));
}

bool CTearProposals::SwitchAt(double x, double y, double reach) {
  CItem* nearest = nullptr;
  double least = reach;
  for (CItem& item : m_aItems) {
    const double distance = DistanceFrom({x, y}, item.m_Tear);
    if (distance > least) continue;
    least = distance;
    nearest = &item;
  }
  if (nearest != nullptr) nearest->m_bTaken = !nearest->m_bTaken;
  return nearest != nullptr;
}
