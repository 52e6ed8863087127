#include "mesh/CSideHeights.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <utility>

#include "mesh/CTearPatch.h"
#include "mesh/CTearSides.h"

namespace {

constexpr std::uint32_t kNone = CCutTriangulation::kNone;
// In cells: keeps the weight of a triangle around the point itself finite.
constexpr double kSoftening = 0.25;
// Farther than any lattice is wide.
constexpr double kEverywhere = 4096.0;

}  // namespace

std::vector<double> CSideHeights::Compute(std::span<const double> known) {
  m_afHeights.assign(m_Sides.CopyCount(), 0.0);
  for (std::uint32_t copy = 0; copy < m_Sides.CopyCount(); ++copy) {
    if (m_Sides.IsKnown(copy)) m_afHeights[copy] = known[m_Patch.MeshVertex(m_Sides.VertexOf(copy))];
  }
  m_aPoints.clear();
  for (std::uint32_t v = 0; v < m_Patch.Triangles().VertexCount(); ++v)
    m_aPoints.push_back({m_Patch.ColumnOf(v), m_Patch.RowOf(v)});
  FindPlanes();
  FindFosters();
  FindEnds();
  MakeNodes();
  m_auSeen.assign(m_Patch.Triangles().Triangles().size(), 0);
  m_uSearch = 0;
  for (std::uint32_t copy = 0; copy < m_Sides.CopyCount(); ++copy) {
    if (!m_Sides.IsKnown(copy)) m_afHeights[copy] = Continue(copy);
  }
  return std::move(m_afHeights);
}

std::array<std::uint32_t, 3> CSideHeights::CopiesOf(std::uint32_t t) const {
  return {m_Sides.CopyOf(t, 0), m_Sides.CopyOf(t, 1), m_Sides.CopyOf(t, 2)};
}

CSideHeights::CPlane CSideHeights::PlaneThrough(const std::array<std::uint32_t, 3>& copies) const {
  const auto unknown = [this](std::uint32_t copy) { return !m_Sides.IsKnown(copy); };
  if (std::ranges::any_of(copies, unknown)) return {};
  const auto [a, b, c] = copies;
  const CPoint& p = m_aPoints[m_Sides.VertexOf(a)];
  const CPoint& q = m_aPoints[m_Sides.VertexOf(b)];
  const CPoint& r = m_aPoints[m_Sides.VertexOf(c)];
  const double bz = m_afHeights[b] - m_afHeights[a];
  const double cz = m_afHeights[c] - m_afHeights[a];
  const double area = (q.x - p.x) * (r.y - p.y) - (q.y - p.y) * (r.x - p.x);
  if (area == 0.0) return {};
  return {.m_bKnown = true,
          .m_Middle = {(p.x + q.x + r.x) / 3.0, (p.y + q.y + r.y) / 3.0},
          .m_fZ = (m_afHeights[a] + m_afHeights[b] + m_afHeights[c]) / 3.0,
          .m_fSlopeX = (bz * (r.y - p.y) - cz * (q.y - p.y)) / area,
          .m_fSlopeY = (cz * (q.x - p.x) - bz * (r.x - p.x)) / area};
}

// Two neighbouring triangles of a torn leaf that are in no tear lack the centre, but have three corners between them.
void CSideHeights::FindPlanes() {
  const auto triangles = m_Patch.Triangles().Triangles();
  m_aNodes.assign(triangles.size(), {});
  for (std::uint32_t t = 0; t < triangles.size(); ++t) {
    const std::array<std::uint32_t, 3> copies = CopiesOf(t);
    m_aNodes[t].m_Plane = PlaneThrough(copies);
    const auto& origin = m_Patch.OriginOf(t);
    if (origin.m_bTorn || origin.m_bWholeLeaf) continue;
    for (std::uint32_t k = 0; k < 3; ++k) {
      const std::uint32_t beyond = triangles[t].m_auNeighbours[k];
      if (beyond == kNone || triangles[t].m_abCut[k]) continue;
      const auto& other = m_Patch.OriginOf(beyond);
      if (other.m_uLeaf != origin.m_uLeaf || other.m_bTorn) continue;
      const std::uint32_t far = m_Sides.CopyOf(beyond, (m_Patch.Triangles().SideInNeighbour(t, k) + 2) % 3);
      const bool centreFirst = m_Sides.IsKnown(copies[(k + 1) % 3]);
      const CPlane plane = PlaneThrough({centreFirst ? copies[(k + 1) % 3] : copies[k], copies[(k + 2) % 3], far});
      if (plane.m_bKnown) m_aNodes[t].m_Plane = plane;
    }
  }
}

// Pieces that have no plane of their own borrow from a neighbour that has, or that has borrowed already.
void CSideHeights::FindFosters() {
  const auto triangles = m_Patch.Triangles().Triangles();
  std::vector<bool> provided(m_Sides.PieceCount());
  for (std::uint32_t t = 0; t < triangles.size(); ++t) {
    if (m_aNodes[t].m_Plane.m_bKnown) provided[m_Sides.PieceOf(t)] = true;
  }
  m_auFosters.assign(m_Sides.PieceCount(), kNone);
  for (bool found = true; found;) {
    std::map<std::pair<std::uint32_t, std::uint32_t>, double> shared;
    for (std::uint32_t t = 0; t < triangles.size(); ++t) {
      const std::uint32_t piece = m_Sides.PieceOf(t);
      if (provided[piece]) continue;
      for (std::size_t k = 0; k < 3; ++k) {
        const std::uint32_t beyond = triangles[t].m_auNeighbours[k];
        if (beyond == kNone || !triangles[t].m_abCut[k] || !provided[m_Sides.PieceOf(beyond)]) continue;
        const auto& v = triangles[t].m_auVertices;
        shared[{piece, m_Sides.PieceOf(beyond)}] +=
            m_Patch.Plane().Distance(m_Patch.Triangles().Place(v[k]), m_Patch.Triangles().Place(v[(k + 1) % 3]));
      }
    }
    std::vector<double> most(m_Sides.PieceCount(), 0.0);
    for (const auto& [pieces, length] : shared) {
      provided[pieces.first] = true;
      if (length <= most[pieces.first]) continue;
      most[pieces.first] = length;
      m_auFosters[pieces.first] = pieces.second;
    }
    found = !shared.empty();
  }
}

// Where a single cut side begins or ends inside the surface.
void CSideHeights::FindEnds() {
  const CCutTriangulation& triangles = m_Patch.Triangles();
  std::vector<std::uint8_t> cuts(triangles.VertexCount());
  m_auBefore.assign(triangles.VertexCount(), kNone);
  for (std::uint32_t t = 0; t < triangles.Triangles().size(); ++t) {
    const auto& triangle = triangles.Triangle(t);
    for (std::uint32_t k = 0; k < 3; ++k) {
      const std::uint32_t beyond = triangle.m_auNeighbours[k];
      if (!triangle.m_abCut[k] || (beyond != kNone && beyond < t)) continue;
      const std::uint32_t a = triangle.m_auVertices[k];
      const std::uint32_t b = triangle.m_auVertices[(k + 1) % 3];
      for (const auto& [end, other] : {std::pair{a, b}, std::pair{b, a}}) {
        cuts[end] = static_cast<std::uint8_t>(std::min(cuts[end] + 1, 2));
        m_auBefore[end] = cuts[end] == 1 ? other : kNone;
      }
    }
  }
}

void CSideHeights::MakeNodes() {
  const CCutTriangulation& triangles = m_Patch.Triangles();
  for (std::uint32_t t = 0; t < m_aNodes.size(); ++t) {
    const auto& triangle = triangles.Triangle(t);
    CNode& node = m_aNodes[t];
    node.m_Least = node.m_Most = m_aPoints[triangle.m_auVertices[0]];
    for (std::uint32_t k = 0; k < 3; ++k) {
      const CPoint& p = m_aPoints[triangle.m_auVertices[k]];
      node.m_Least = {std::min(node.m_Least.x, p.x), std::min(node.m_Least.y, p.y)};
      node.m_Most = {std::max(node.m_Most.x, p.x), std::max(node.m_Most.y, p.y)};
      const std::uint32_t copy = m_Sides.CopyOf(t, k);
      if (m_Sides.IsKnown(copy)) node.m_fLow = std::min(node.m_fLow, m_afHeights[copy]);
      if (m_Sides.IsKnown(copy)) node.m_fHigh = std::max(node.m_fHigh, m_afHeights[copy]);
      const std::uint32_t beyond = triangle.m_auNeighbours[k];
      const bool isWay =
          beyond != kNone && (!triangle.m_abCut[k] || m_auFosters[m_Sides.PieceOf(t)] == m_Sides.PieceOf(beyond));
      node.m_auBeyond[k] = isWay ? beyond : kNone;
    }
  }
}

double CSideHeights::Continue(std::uint32_t copy) {
  CView view;
  double reach = kRing;
  LookAround(copy, reach, view);
  while (view.m_Left.m_fWeight + view.m_Right.m_fWeight == 0.0 && reach < kEverywhere) {
    reach *= 2.0;
    view = {};
    LookAround(copy, reach, view);
  }
  const bool left = view.m_Left.m_fWeight > 0.0;
  const bool right = view.m_Right.m_fWeight > 0.0;
  if (!left && !right) return 0.0;
  const auto mean = [](const CSum& sum) { return sum.m_fValue / sum.m_fWeight; };
  const double z =
      left && right ? (mean(view.m_Left) + mean(view.m_Right)) / 2.0 : mean(left ? view.m_Left : view.m_Right);
  const double more = (view.m_fHigh - view.m_fLow) / 2.0;
  return std::clamp(z, view.m_fLow - more, view.m_fHigh + more);
}

// Through all triangles of the side that come as near as that.
void CSideHeights::LookAround(std::uint32_t copy, double reach, CView& view) {
  const std::uint32_t vertex = m_Sides.VertexOf(copy);
  view.m_Point = m_aPoints[vertex];
  view.m_uBefore = m_auBefore[vertex];
  const auto [x, y] = view.m_Point;
  ++m_uSearch;
  m_auQueue.assign(1, m_Sides.TriangleAt(copy));
  m_auSeen[m_auQueue.front()] = m_uSearch;
  for (std::size_t at = 0; at < m_auQueue.size(); ++at) {
    const CNode& node = m_aNodes[m_auQueue[at]];
    view.m_fLow = std::min(view.m_fLow, node.m_fLow);
    view.m_fHigh = std::max(view.m_fHigh, node.m_fHigh);
    if (node.m_Plane.m_bKnown) AddPlane(node.m_Plane, view);
    for (const std::uint32_t beyond : node.m_auBeyond) {
      if (beyond == kNone || m_auSeen[beyond] == m_uSearch) continue;
      const CNode& next = m_aNodes[beyond];
      if (next.m_Least.x >= x + reach || next.m_Most.x <= x - reach || next.m_Least.y >= y + reach ||
          next.m_Most.y <= y - reach)
        continue;
      m_auSeen[beyond] = m_uSearch;
      m_auQueue.push_back(beyond);
    }
  }
}

// By its distance from the middle of the triangle, and on the side of an open end that this lies on.
void CSideHeights::AddPlane(const CPlane& plane, CView& view) const {
  const double dx = view.m_Point.x - plane.m_Middle.x;
  const double dy = view.m_Point.y - plane.m_Middle.y;
  const double near = dx * dx + dy * dy + kSoftening;
  const double weight = 1.0 / (near * near);
  bool isLeft = true;
  if (view.m_uBefore != kNone) {
    const CPoint& before = m_aPoints[view.m_uBefore];
    isLeft = (view.m_Point.y - before.y) * dx - (view.m_Point.x - before.x) * dy > 0.0;
  }
  CSum& sum = isLeft ? view.m_Left : view.m_Right;
  sum.m_fWeight += weight;
  sum.m_fValue += weight * (plane.m_fZ + plane.m_fSlopeX * dx + plane.m_fSlopeY * dy);
}
