#include "mesh/CEndLeader.h"

#include <algorithm>

#include "mesh/CTearCutter.h"
#include "mesh/CTearPatch.h"
#include "mesh/CTearSides.h"

namespace {

// In cells. An end farther from an edge has not marked the triangles beside it.
constexpr double kFarthest = 2.0;

bool Cross(const CMeshPlace& a, const CMeshPlace& b, const CMeshPlace& c, const CMeshPlace& d) {
  const auto apart = [](std::int64_t s, std::int64_t t) { return (s > 0 && t < 0) || (s < 0 && t > 0); };
  return apart(Turn(a, b, c), Turn(a, b, d)) && apart(Turn(c, d, a), Turn(c, d, b));
}

}  // namespace

// Leading one end may close the way of another, or open one: as long as it gets them fewer.
bool CEndLeader::LeadAll(const CExportSteps& steps) {
  for (auto before = static_cast<std::size_t>(-1);;) {
    if (!steps.Goes(0)) return false;
    const std::vector<CLine> parted = PartedEdges(steps.Part(0, 0));
    if (!steps.Goes(0)) return false;
    if (parted.empty() || parted.size() >= before) break;
    before = parted.size();
    FindLines();
    bool led = false;
    for (const CLine& line : parted) {
      if (!steps.Goes(0)) return false;
      led = Lead(line) || led;
    }
    if (!led) break;
  }
  return steps.Goes(1);
}

// Leaf edges that are cut, as the triangles on both sides of them lie in a tear, but still whole. Most tears leave
// none, and which heights are known is then of no interest.
std::vector<CEndLeader::CLine> CEndLeader::PartedEdges(const CExportSteps& steps) const {
  const CCutTriangulation& triangles = m_Patch.Triangles();
  std::vector<CCutTriangulation::CCorner> whole;
  for (std::uint32_t t = 0; t < triangles.Triangles().size(); ++t) {
    const auto& triangle = triangles.Triangle(t);
    if (!m_Patch.OriginOf(t).m_bTorn) continue;
    for (std::uint32_t k = 0; k < 3; ++k) {
      const std::uint32_t beyond = triangle.m_auNeighbours[k];
      if (beyond == CTearPatch::kNone || beyond < t || triangle.m_abCut[k] || !m_Patch.OriginOf(beyond).m_bTorn ||
          !m_Patch.IsCorner(triangle.m_auVertices[k]) || !m_Patch.IsCorner(triangle.m_auVertices[(k + 1) % 3]))
        continue;
      whole.push_back({t, k});
    }
  }
  std::vector<CLine> parted;
  if (whole.empty()) return parted;
  const CTearSides sides(m_Patch, steps);
  if (!steps.Goes(1)) return parted;
  for (const CCutTriangulation::CCorner& side : whole) {
    const auto& [t, k] = side;
    if (sides.IsKnown(sides.CopyOf(t, k)) && sides.IsKnown(sides.CopyOf(t, (k + 1) % 3)))
      parted.push_back({triangles.Place(triangles.Vertex(side, 0)), triangles.Place(triangles.Vertex(side, 1))});
  }
  return parted;
}

void CEndLeader::FindLines() {
  const CCutTriangulation& triangles = m_Patch.Triangles();
  std::vector<std::uint8_t> cuts(triangles.VertexCount());
  m_aCuts.clear();
  m_aJoined.clear();
  m_auEnds.clear();
  for (std::uint32_t t = 0; t < triangles.Triangles().size(); ++t) {
    const auto& triangle = triangles.Triangle(t);
    for (std::uint32_t k = 0; k < 3; ++k) {
      const std::uint32_t beyond = triangle.m_auNeighbours[k];
      if (beyond == CTearPatch::kNone || beyond < t) continue;
      const std::array ends{triangle.m_auVertices[k], triangle.m_auVertices[(k + 1) % 3]};
      const CLine line{triangles.Place(ends[0]), triangles.Place(ends[1])};
      const bool areCorners = m_Patch.IsCorner(ends[0]) && m_Patch.IsCorner(ends[1]);
      if (areCorners && !(m_Patch.OriginOf(t).m_bTorn && m_Patch.OriginOf(beyond).m_bTorn)) m_aJoined.push_back(line);
      if (!triangle.m_abCut[k]) continue;
      m_aCuts.push_back(line);
      for (const std::uint32_t end : ends) cuts[end] = static_cast<std::uint8_t>(std::min(cuts[end] + 1, 2));
    }
  }
  for (std::uint32_t v = 0; v < cuts.size(); ++v) {
    const CMeshPlace& place = triangles.Place(v);
    if (cuts[v] == 1 && !m_Patch.Plane().AreOnOneBorder(place, place)) m_auEnds.push_back(v);
  }
}

bool CEndLeader::Lead(const CLine& parted) {
  std::optional<CWay> best;
  double nearest = kFarthest;
  for (const std::uint32_t end : m_auEnds) {
    const double distance = m_Patch.Plane().Distance(m_Patch.Triangles().Place(end), parted[0], parted[1]);
    if (distance >= nearest) continue;
    const std::optional<CWay> way = WayFrom(end, parted);
    if (!way) continue;
    best = way;
    nearest = distance;
  }
  if (!best) return false;
  m_Cutter.CutFrom(best->m_uEnd, best->m_To);
  std::erase(m_auEnds, best->m_uEnd);
  return true;
}

// To the nearest point of a cut beyond the edge; where none of the shortest ways leads through it, straight on through
// its middle.
std::optional<CEndLeader::CWay> CEndLeader::WayFrom(std::uint32_t end, const CLine& parted) const {
  const CMeshPlane& plane = m_Patch.Plane();
  const CMeshPlace from = m_Patch.Triangles().Place(end);
  std::optional<CWay> best;
  const auto consider = [&](const CMeshPlace& to) {
    const double length = plane.Distance(from, to);
    if (best && best->m_fLength <= length) return;
    if (Cross(from, to, parted[0], parted[1]) && IsOpen(from, to)) best = CWay{end, to, length};
  };
  const auto isNear = [&](const CLine& cut) { return plane.Distance(from, cut[0], cut[1]) < 2.0 * kFarthest; };
  for (const CLine& cut : m_aCuts) {
    if (isNear(cut)) consider(CMeshPlane::Between(cut[0], cut[1], plane.Nearest(from, cut[0], cut[1])));
  }
  if (best) return best;
  const CMeshPlace middle = CMeshPlane::Between(parted[0], parted[1], 0.5);
  const CMeshPlace far = CMeshPlane::Between(from, middle, 4.0);
  for (const CLine& cut : m_aCuts) {
    if (!isNear(cut) || !Cross(from, far, cut[0], cut[1])) continue;
    const auto a = static_cast<double>(Turn(from, far, cut[0]));
    const auto b = static_cast<double>(Turn(from, far, cut[1]));
    consider(CMeshPlane::Between(cut[0], cut[1], a / (a - b)));
  }
  return best;
}

bool CEndLeader::IsOpen(const CMeshPlace& from, const CMeshPlace& to) const {
  return std::ranges::none_of(m_aJoined, [&](const CLine& edge) { return Cross(from, to, edge[0], edge[1]); });
}
