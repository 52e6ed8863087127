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
  FindPlanes();
  FindFosters();
  FindEnds();
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

// Two neighbouring triangles of a torn leaf that are in no tear lack the centre, but have three corners between them.
void CSideHeights::FindPlanes() {
  const auto triangles = m_Patch.Triangles().Triangles();
  m_aPlanes.assign(triangles.size(), {kNone, kNone, kNone});
  const auto areKnown = [this](const std::array<std::uint32_t, 3>& copies) {
    return std::ranges::all_of(copies, [this](std::uint32_t copy) { return m_Sides.IsKnown(copy); });
  };
  for (std::uint32_t t = 0; t < triangles.size(); ++t) {
    const std::array<std::uint32_t, 3> copies = CopiesOf(t);
    if (areKnown(copies)) m_aPlanes[t] = copies;
    const auto& origin = m_Patch.OriginOf(t);
    if (origin.m_bTorn || origin.m_bWholeLeaf) continue;
    for (std::uint32_t k = 0; k < 3; ++k) {
      const std::uint32_t beyond = triangles[t].m_auNeighbours[k];
      if (beyond == kNone || triangles[t].m_abCut[k]) continue;
      const auto& other = m_Patch.OriginOf(beyond);
      if (other.m_uLeaf != origin.m_uLeaf || other.m_bTorn) continue;
      const std::uint32_t far = m_Sides.CopyOf(beyond, (m_Patch.Triangles().SideInNeighbour(t, k) + 2) % 3);
      const bool centreFirst = m_Sides.IsKnown(copies[(k + 1) % 3]);
      const std::array<std::uint32_t, 3> corners{centreFirst ? copies[(k + 1) % 3] : copies[k], copies[(k + 2) % 3],
                                                 far};
      if (areKnown(corners)) m_aPlanes[t] = corners;
    }
  }
}

// Pieces that have no plane of their own borrow from a neighbour that has, or that has borrowed already.
void CSideHeights::FindFosters() {
  const auto triangles = m_Patch.Triangles().Triangles();
  std::vector<bool> provided(m_Sides.PieceCount());
  for (std::uint32_t t = 0; t < triangles.size(); ++t) {
    if (m_aPlanes[t][0] != kNone) provided[m_Sides.PieceOf(t)] = true;
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
  view.m_fColumn = m_Patch.ColumnOf(vertex);
  view.m_fRow = m_Patch.RowOf(vertex);
  view.m_uBefore = m_auBefore[vertex];
  ++m_uSearch;
  m_auQueue.assign(1, m_Sides.TriangleAt(copy));
  m_auSeen[m_auQueue.front()] = m_uSearch;
  for (std::size_t at = 0; at < m_auQueue.size(); ++at) {
    const std::uint32_t t = m_auQueue[at];
    LookAt(t, view);
    const auto& triangle = m_Patch.Triangles().Triangle(t);
    for (std::size_t k = 0; k < 3; ++k) {
      const std::uint32_t beyond = triangle.m_auNeighbours[k];
      if (beyond == kNone || m_auSeen[beyond] == m_uSearch) continue;
      if (triangle.m_abCut[k] && m_auFosters[m_Sides.PieceOf(t)] != m_Sides.PieceOf(beyond)) continue;
      if (!IsNear(beyond, reach, view)) continue;
      m_auSeen[beyond] = m_uSearch;
      m_auQueue.push_back(beyond);
    }
  }
}

bool CSideHeights::IsNear(std::uint32_t t, double reach, const CView& view) const {
  return std::ranges::any_of(m_Patch.Triangles().Triangle(t).m_auVertices, [&](std::uint32_t v) {
    return std::abs(m_Patch.ColumnOf(v) - view.m_fColumn) < reach && std::abs(m_Patch.RowOf(v) - view.m_fRow) < reach;
  });
}

void CSideHeights::LookAt(std::uint32_t t, CView& view) const {
  for (const std::uint32_t copy : CopiesOf(t)) {
    if (!m_Sides.IsKnown(copy)) continue;
    const double z = m_afHeights[copy];
    view.m_fLow = view.m_bRange ? std::min(view.m_fLow, z) : z;
    view.m_fHigh = view.m_bRange ? std::max(view.m_fHigh, z) : z;
    view.m_bRange = true;
  }
  if (m_aPlanes[t][0] != kNone) AddPlane(m_aPlanes[t], view);
}

// The plane through three heights, at the point in hand, by its distances from their middle.
void CSideHeights::AddPlane(const std::array<std::uint32_t, 3>& copies, CView& view) const {
  const auto [a, b, c] = copies;
  const auto column = [this](std::uint32_t copy) { return m_Patch.ColumnOf(m_Sides.VertexOf(copy)); };
  const auto row = [this](std::uint32_t copy) { return m_Patch.RowOf(m_Sides.VertexOf(copy)); };
  const double bx = column(b) - column(a);
  const double by = row(b) - row(a);
  const double cx = column(c) - column(a);
  const double cy = row(c) - row(a);
  const double px = view.m_fColumn - column(a);
  const double py = view.m_fRow - row(a);
  const double area = bx * cy - by * cx;
  if (area == 0.0) return;
  const double shareB = (px * cy - py * cx) / area;
  const double shareC = (bx * py - by * px) / area;
  const double za = m_afHeights[a];
  const double z = za + shareB * (m_afHeights[b] - za) + shareC * (m_afHeights[c] - za);
  const double distance = std::hypot(px - (bx + cx) / 3.0, py - (by + cy) / 3.0);
  const double weight = 1.0 / std::pow(distance * distance + kSoftening, 2.0);
  bool isLeft = true;
  if (view.m_uBefore != kNone) {
    const double dx = view.m_fColumn - m_Patch.ColumnOf(view.m_uBefore);
    const double dy = view.m_fRow - m_Patch.RowOf(view.m_uBefore);
    isLeft = dx * ((by + cy) / 3.0 - py) - dy * ((bx + cx) / 3.0 - px) > 0.0;
  }
  CSum& sum = isLeft ? view.m_Left : view.m_Right;
  sum.m_fWeight += weight;
  sum.m_fValue += weight * z;
}
