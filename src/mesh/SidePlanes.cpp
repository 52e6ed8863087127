#include "mesh/SidePlanes.h"

#include <algorithm>
#include <utility>

#include "mesh/CTearPatch.h"
#include "mesh/CTearSides.h"

namespace {

using CThreeCopies = std::array<std::uint32_t, 3>;

std::optional<CSidePlane> PlaneThrough(const CTearPatch& patch, const CTearSides& sides, const CThreeCopies& copies) {
  if (!std::ranges::all_of(copies, [&sides](std::uint32_t copy) { return sides.IsKnown(copy); })) return {};
  const auto at = [&](std::uint32_t copy) {
    const std::uint32_t vertex = sides.VertexOf(copy);
    return CSidePoint{patch.ColumnOf(vertex), patch.RowOf(vertex)};
  };
  const CSidePoint p = at(copies[0]);
  const CSidePoint q = at(copies[1]);
  const CSidePoint r = at(copies[2]);
  const double area = (q.x - p.x) * (r.y - p.y) - (q.y - p.y) * (r.x - p.x);
  if (area == 0.0) return {};
  return CSidePlane{.m_auCopies = copies,
                    .m_Middle = {(p.x + q.x + r.x) / 3.0, (p.y + q.y + r.y) / 3.0},
                    .m_afSlopeX = {(q.y - r.y) / area, (r.y - p.y) / area, (p.y - q.y) / area},
                    .m_afSlopeY = {(r.x - q.x) / area, (p.x - r.x) / area, (q.x - p.x) / area}};
}

}  // namespace

// Two neighbouring triangles of a torn leaf that are in no tear lack the centre, but have three corners between them.
std::optional<CSidePlane> SidePlaneOf(const CTearPatch& patch, const CTearSides& sides, std::uint32_t t) {
  const auto& triangle = patch.Triangles().Triangle(t);
  const CThreeCopies copies{sides.CopyOf(t, 0), sides.CopyOf(t, 1), sides.CopyOf(t, 2)};
  std::optional<CSidePlane> plane = PlaneThrough(patch, sides, copies);
  const auto& origin = patch.OriginOf(t);
  if (origin.m_bTorn || origin.m_bWholeLeaf) return plane;
  for (std::uint32_t k = 0; k < 3; ++k) {
    const std::uint32_t beyond = triangle.m_auNeighbours[k];
    if (beyond == CTearPatch::kNone || triangle.m_abCut[k]) continue;
    const auto& other = patch.OriginOf(beyond);
    if (other.m_uLeaf != origin.m_uLeaf || other.m_bTorn) continue;
    const std::uint32_t far = sides.CopyOf(beyond, (patch.Triangles().SideInNeighbour(t, k) + 2) % 3);
    const std::uint32_t next = copies[(k + 1) % 3];
    const auto wider = PlaneThrough(patch, sides, {sides.IsKnown(next) ? next : copies[k], copies[(k + 2) % 3], far});
    if (wider) plane = wider;
  }
  return plane;
}

std::vector<std::uint32_t> VerticesBeforeEnds(const CCutTriangulation& triangles) {
  constexpr std::uint32_t kNone = CCutTriangulation::kNone;
  std::vector<std::uint8_t> cuts(triangles.VertexCount());
  std::vector<std::uint32_t> before(triangles.VertexCount(), kNone);
  for (std::uint32_t t = 0; t < triangles.Triangles().size(); ++t) {
    const auto& triangle = triangles.Triangle(t);
    for (std::uint32_t k = 0; k < 3; ++k) {
      const std::uint32_t beyond = triangle.m_auNeighbours[k];
      if (!triangle.m_abCut[k] || (beyond != kNone && beyond < t)) continue;
      const std::uint32_t a = triangle.m_auVertices[k];
      const std::uint32_t b = triangle.m_auVertices[(k + 1) % 3];
      for (const auto& [end, other] : {std::pair{a, b}, std::pair{b, a}}) {
        cuts[end] = static_cast<std::uint8_t>(std::min(cuts[end] + 1, 2));
        before[end] = cuts[end] == 1 ? other : kNone;
      }
    }
  }
  return before;
}
