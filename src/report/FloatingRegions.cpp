#include "report/FloatingRegions.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <optional>
#include <sstream>
#include <utility>

#include "model/CGrid.h"

namespace {

// Planes whose slope over the box is below this share of their height at the middle are level.
constexpr double kLevel = 1e-6;

double SlopeOver(const CPlane& plane, const CExtent& box) {
  return std::hypot(plane.m_fP, plane.m_fQ) * std::hypot(box.x1 - box.x0, box.y1 - box.y0) / 2;
}

std::string Text(const CPlanePoint& place) {
  std::ostringstream text;
  text.imbue(std::locale::classic());
  // What rounding leaves of 0 is not worth six digits.
  const auto clean = [](double value) { return std::abs(value) < 1e-9 ? 0.0 : value; };
  text << '(' << clean(place.x) << ", " << clean(place.y) << ')';
  return text.str();
}

// The part in the box of the line on which the plane is 0; where it passes by, from the point nearest to the middle on.
std::pair<CPlanePoint, CPlanePoint> ZeroLine(const CPlane& plane, const CExtent& box) {
  const double square = plane.m_fP * plane.m_fP + plane.m_fQ * plane.m_fQ;
  const CPlanePoint foot{plane.m_Place.x - plane.m_fZ * plane.m_fP / square,
                         plane.m_Place.y - plane.m_fZ * plane.m_fQ / square};
  const CPlanePoint along{-plane.m_fQ / std::sqrt(square), plane.m_fP / std::sqrt(square)};
  const double far = std::hypot(box.x1 - box.x0, box.y1 - box.y0);
  double from = -far;
  double to = far;
  const auto narrow = [&](double at, double way, double low, double high) {
    if (std::abs(way) < kLevel) return;
    const auto [first, last] = std::minmax({(low - at) / way, (high - at) / way});
    from = std::max(from, first);
    to = std::min(to, last);
  };
  narrow(foot.x, along.x, box.x0, box.x1);
  narrow(foot.y, along.y, box.y0, box.y1);
  if (from >= to) {
    from = 0.0;
    to = far;
  }
  const auto at = [&](double t) { return CPlanePoint{foot.x + t * along.x, foot.y + t * along.y}; };
  return {at(from), at(to)};
}

// Where both planes are 0.
std::optional<CPlanePoint> ZeroPoint(const CPlane& a, const CPlane& b, const CExtent& box) {
  const double turn = a.m_fP * b.m_fQ - a.m_fQ * b.m_fP;
  const double reach = std::hypot(box.x1 - box.x0, box.y1 - box.y0) / 2;
  if (std::abs(turn) * reach * reach < kLevel) return std::nullopt;
  return CPlanePoint{a.m_Place.x + (a.m_fQ * b.m_fZ - a.m_fZ * b.m_fQ) / turn,
                     a.m_Place.y + (a.m_fZ * b.m_fP - a.m_fP * b.m_fZ) / turn};
}

std::string MissingTo(const CRegion& region, const CExtent& box) {
  const std::vector<CPlane>& free = region.m_aFree;
  if (free.size() == 1 && SlopeOver(free.front(), box) > kLevel * std::abs(free.front().m_fZ)) {
    const auto [from, to] = ZeroLine(free.front(), box);
    return "can tilt about the line from " + Text(from) + " to " + Text(to);
  }
  if (free.size() == 1) return "needs 1 height";
  std::string missing = "needs " + std::to_string(free.size()) + " heights";
  if (free.size() != 2) return missing;
  const std::optional<CPlanePoint> pivot = ZeroPoint(free[0], free[1], box);
  if (pivot) missing += ", can tilt about the point " + Text(*pivot);
  return missing;
}

}  // namespace

CFreedom FreedomOf(const CGrid& grid) {
  CFreedom freedom;
  freedom.Build(grid.Surface().Tree(), grid.Surface().Order(), grid.Solver().System().Constraints(),
                grid.Solver().CurveTerms());
  return freedom;
}

std::vector<CFloatingRegion> FloatingRegions(const CFreedom& freedom) {
  std::vector<CFloatingRegion> floating;
  for (const CRegion& region : freedom.Regions()) {
    if (region.m_aFree.empty()) continue;
    const CPieces::CPiece& piece = freedom.Pieces()[region.m_uPiece];
    floating.push_back(
        {region.m_uPiece, region.m_aFree.size(), piece.PointCount(), piece.m_Box, MissingTo(region, piece.m_Box)});
  }
  return floating;
}
