#include "mesh/CTornSurface.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

#include "mesh/CTearCutter.h"
#include "mesh/CTearPatch.h"
#include "mesh/CTearSides.h"

namespace {

bool Holds(const CTornSurface::CCorners& corners, const std::array<std::uint32_t, 2>& copies) {
  return std::ranges::all_of(copies,
                             [&](std::uint32_t copy) { return std::ranges::find(corners, copy) != corners.end(); });
}

// Up both chains together, the one that has come less far first.
void AddWall(std::span<const std::uint32_t> from, std::span<const std::uint32_t> to,
             std::vector<std::uint32_t>& walls) {
  std::size_t i = 0;
  std::size_t j = 0;
  while (i + 1 < from.size() || j + 1 < to.size()) {
    const bool second = j + 1 < to.size() && (i + 1 == from.size() || j * from.size() <= i * to.size());
    const std::uint32_t next = second ? to[j + 1] : from[i + 1];
    walls.insert(walls.end(), {from[i], to[j], next});
    ++(second ? j : i);
  }
}

}  // namespace

CTornSurface::CTornSurface(CTearPatch& patch, const CTearSides& sides, std::vector<double> heights, double scale)
    : m_Patch(patch), m_afHeights(std::move(heights)), m_fScale(scale) {
  m_aCorners.reserve(patch.Triangles().Triangles().size());
  for (std::uint32_t t = 0; t < patch.Triangles().Triangles().size(); ++t)
    m_aCorners.push_back({sides.CopyOf(t, 0), sides.CopyOf(t, 1), sides.CopyOf(t, 2)});
  m_auVertices.reserve(sides.CopyCount());
  for (std::uint32_t copy = 0; copy < sides.CopyCount(); ++copy) m_auVertices.push_back(sides.VertexOf(copy));
}

std::vector<CTornSurface::CCutSide> CTornSurface::CutSides() const {
  const CCutTriangulation& triangles = m_Patch.Triangles();
  std::vector<CCutSide> sides;
  triangles.ForEachCut([&](std::uint32_t t, std::uint32_t k, std::uint32_t beyond, std::uint32_t there) {
    const auto& vertices = triangles.Triangle(t).m_auVertices;
    const std::uint32_t next = (k + 1) % 3;
    sides.push_back({t,
                     beyond,
                     vertices[k],
                     vertices[next],
                     {m_aCorners[t][k], m_aCorners[t][next]},
                     {m_aCorners[beyond][(there + 1) % 3], m_aCorners[beyond][there]}});
  });
  return sides;
}

// Where a side is too short to be split the heights become one at its end, which may bring about another change next
// to it: each round leaves fewer.
bool CTornSurface::SplitAtChanges(CTearCutter& cutter, const CExportSteps& steps) {
  constexpr int kRounds = 16;
  bool changed = true;
  for (int round = 0; round < kRounds && changed; ++round) {
    const CExportSteps part = steps.Part(1.0 * round / kRounds, (round + 1.0) / kRounds);
    if (!part.Goes(0)) return false;
    changed = false;
    const std::vector<CCutSide> sides = CutSides();
    const auto split = [&](std::size_t begin, std::size_t end) {
      for (std::size_t s = begin; s < end; ++s) changed = SplitAtChange(sides[s], cutter) || changed;
    };
    if (!part.ForBlocks(sides.size(), split)) return false;
  }
  return steps.Goes(1);
}

bool CTornSurface::SplitAtChange(const CCutSide& side, CTearCutter& cutter) {
  const auto step = [&](std::size_t end) { return Written(side.m_auLeft[end]) - Written(side.m_auRight[end]); };
  const float from = step(0);
  const float to = step(1);
  if (!((from < 0 && to > 0) || (from > 0 && to < 0))) return false;
  // What another split of this round has changed is left to the next one.
  if (!Holds(m_aCorners[side.m_uLeft], side.m_auLeft) || !Holds(m_aCorners[side.m_uRight], side.m_auRight)) return true;
  const double share = static_cast<double>(from) / (static_cast<double>(from) - to);
  const std::size_t before = m_Patch.Triangles().Triangles().size();
  const std::uint32_t vertex = cutter.SplitBetween(side.m_uFrom, side.m_uTo, share);
  if (vertex == CTearCutter::kNone) {
    const std::size_t end = share < 0.5 ? 0 : 1;
    m_afHeights[side.m_auLeft[end]] = m_afHeights[side.m_auRight[end]];
    return true;
  }
  const double z0 = m_afHeights[side.m_auLeft[0]];
  TakeParts(side, vertex, z0 + share * (m_afHeights[side.m_auLeft[1]] - z0), before);
  return true;
}

// The two triangles beside a side that has been split, and their second halves behind the others, get their copies.
void CTornSurface::TakeParts(const CCutSide& side, std::uint32_t vertex, double z, std::size_t before) {
  const CCutTriangulation& triangles = m_Patch.Triangles();
  std::array<CCorners, 2> old{m_aCorners[side.m_uLeft], m_aCorners[side.m_uRight]};
  const auto first = static_cast<std::uint32_t>(m_auVertices.size());
  m_auVertices.insert(m_auVertices.end(), {vertex, vertex});
  m_afHeights.insert(m_afHeights.end(), {z, z});
  m_aCorners.resize(triangles.Triangles().size());
  const auto copyIn = [&](std::size_t hand, std::uint32_t v) {
    if (v == vertex) return first + static_cast<std::uint32_t>(hand);
    for (const std::uint32_t copy : old[hand]) {
      if (m_auVertices[copy] == v) return copy;
    }
    return CTearPatch::kNone;
  };
  const auto newest = static_cast<std::uint32_t>(before);
  for (const std::uint32_t t : {side.m_uLeft, side.m_uRight, newest, newest + 1}) {
    for (std::size_t hand = 0; hand < 2; ++hand) {
      CCorners corners{};
      for (std::size_t k = 0; k < 3; ++k) corners[k] = copyIn(hand, triangles.Triangle(t).m_auVertices[k]);
      if (std::ranges::find(corners, CTearPatch::kNone) == corners.end()) m_aCorners[t] = corners;
    }
  }
}

CMeshPlace CTornSurface::PlaceOf(std::uint32_t copy) const {
  const auto moved = m_Moved.find(copy);
  return moved != m_Moved.end() ? moved->second.m_Place : m_Patch.Triangles().Place(m_auVertices[copy]);
}

void CTornSurface::OpenEdges() {
  std::vector<std::uint8_t> copies(m_Patch.Triangles().VertexCount());
  for (const std::uint32_t vertex : m_auVertices)
    copies[vertex] = static_cast<std::uint8_t>(std::min(copies[vertex] + 1, 4));
  std::vector<CCutTriangulation::CCorner> ring;
  for (std::uint32_t vertex = 0; vertex < copies.size(); ++vertex) {
    if (copies[vertex] < 3) continue;
    m_Patch.Triangles().CornersAround(vertex, ring);
    const auto& [first, place] = ring.front();
    const bool isOnce = m_Patch.Triangles().Triangle(first).m_auNeighbours[place] != CTearPatch::kNone;
    const bool onBorder = BorderBeside(ring.front(), 0).has_value();
    if (isOnce ? copies[vertex] == 4 : onBorder) OpenEdge(ring, onBorder);
  }
}

// The other end of a side of the corner, 0 or 2, that lies on the border of the rectangle.
std::optional<CMeshPlace> CTornSurface::BorderBeside(const CCutTriangulation::CCorner& corner,
                                                     std::uint32_t side) const {
  const CCutTriangulation& triangles = m_Patch.Triangles();
  const auto& neighbours = triangles.Triangle(corner.m_uTriangle).m_auNeighbours;
  if (neighbours[(corner.m_uPlace + side) % 3] != CTearPatch::kNone) return std::nullopt;
  const CMeshPlace& from = triangles.Place(triangles.Vertex(corner, 0));
  const CMeshPlace& to = triangles.Place(triangles.Vertex(corner, side == 0 ? 1 : 2));
  return m_Patch.Plane().AreOnOneBorder(from, to) ? std::optional(to) : std::nullopt;
}

// The copies of a vertex in the order of `ring`, the corners around it, once or from border to border; those that
// follow each other at one height are a corner of the surface together.
std::vector<CTornSurface::CCopies> CTornSurface::CornersIn(std::span<const CCutTriangulation::CCorner> ring,
                                                           bool onBorder) const {
  std::vector<CCopies> corners;
  for (const auto& [t, place] : ring) {
    const std::uint32_t copy = m_aCorners[t][place];
    if (corners.empty() || Written(corners.back().back()) != Written(copy)) {
      corners.push_back({copy});
    } else if (corners.back().back() != copy) {
      corners.back().push_back(copy);
    }
  }
  if (onBorder || corners.size() == 1 || Written(corners.front().front()) != Written(corners.back().back()))
    return corners;
  for (const std::uint32_t copy : corners.back()) {
    if (std::ranges::find(corners.front(), copy) == corners.front().end()) corners.front().push_back(copy);
  }
  corners.pop_back();
  return corners;
}

void CTornSurface::OpenEdge(std::span<const CCutTriangulation::CCorner> ring, bool onBorder) {
  const std::vector<CCopies> around = CornersIn(ring, onBorder);
  const std::size_t count = around.size();
  const auto heightOf = [&](std::size_t k) { return Written(around[k % count].front()); };
  std::map<std::uint32_t, CMoved> moved;
  std::size_t corners = 0;
  for (std::size_t k = 0; k < count; ++k) {
    float foot = -std::numeric_limits<float>::infinity();
    if (!onBorder || k + 1 < count) foot = heightOf(k + 1);
    if (!onBorder || k > 0) foot = std::max(foot, heightOf(k + count - 1));
    CMeshPlace place;
    if (count == 1 || heightOf(k) <= foot || !MoveIn(around[k], ring, place)) continue;
    ++corners;
    for (const std::uint32_t copy : around[k]) moved[copy] = {place, foot};
  }
  if (corners > 1) m_Moved.merge(moved);
}

// Towards the middle of the corner's triangles, where each side counts once for its length, however short the others
// are; along the border where they have a side there.
std::array<double, 2> CTornSurface::InwardsFrom(const CCopies& copies,
                                                std::span<const CCutTriangulation::CCorner> ring) const {
  const CCutTriangulation& triangles = m_Patch.Triangles();
  const CMeshPlace& from = triangles.Place(m_auVertices[copies.front()]);
  const auto step = [&from](const CMeshPlace& to) {
    return std::array{static_cast<double>(to.x) - from.x, static_cast<double>(to.y) - from.y};
  };
  std::array<double, 2> inwards{};
  for (const CCutTriangulation::CCorner& corner : ring) {
    if (!Has(copies, corner)) continue;
    for (const std::uint32_t side : {0U, 2U}) {
      if (const auto border = BorderBeside(corner, side)) return step(*border);
      const CMeshPlace& to = triangles.Place(triangles.Vertex(corner, side == 0 ? 1 : 2));
      const auto [x, y] = step(to);
      const double length = m_Patch.Plane().Distance(from, to);
      inwards[0] += x / length;
      inwards[1] += y / length;
    }
  }
  return inwards;
}

// A thousandth of a cell, or as much less as the corner's triangles need to keep their area.
bool CTornSurface::MoveIn(const CCopies& copies, std::span<const CCutTriangulation::CCorner> ring,
                          CMeshPlace& place) const {
  constexpr double kStep = 1e-3;
  constexpr int kHalvings = 4;
  const CCutTriangulation& triangles = m_Patch.Triangles();
  const CMeshPlace from = triangles.Place(m_auVertices[copies.front()]);
  const auto [x, y] = InwardsFrom(copies, ring);
  const auto towards = [&, x = x, y = y](double share) {
    return CMeshPlace{static_cast<std::int32_t>(std::lround(from.x + share * x)),
                      static_cast<std::int32_t>(std::lround(from.y + share * y))};
  };
  double share = kStep / std::max(m_Patch.Plane().Distance(from, towards(1.0)), kStep);
  for (int halving = 0; halving <= kHalvings; ++halving, share /= 2.0) {
    place = towards(share);
    bool keeps = place != from;
    for (const CCutTriangulation::CCorner& corner : ring) {
      if (!Has(copies, corner)) continue;
      const CMeshPlace& a = triangles.Place(triangles.Vertex(corner, 1));
      keeps = keeps && Turn(a, triangles.Place(triangles.Vertex(corner, 2)), place) > 0;
    }
    if (keeps) return true;
  }
  return false;
}

// Whether the wall between two copies has to meet another copy of their vertex.
bool CTornSurface::IsInChain(std::uint32_t copy, std::uint32_t low, std::uint32_t high) const {
  if (m_Moved.count(copy) != 0) return false;
  for (const std::uint32_t end : {low, high}) {
    const auto moved = m_Moved.find(end);
    if (moved != m_Moved.end() && Written(copy) > moved->second.m_fFoot) return false;
  }
  return true;
}

// The copies of a vertex from one height to another.
std::vector<std::uint32_t> CTornSurface::Chain(std::uint32_t low, std::uint32_t high,
                                               std::span<const std::uint32_t> others) const {
  const float a = Written(low);
  const float b = Written(high);
  std::vector<std::uint32_t> chain{low};
  if (a == b) return chain;
  for (const std::uint32_t copy : others) {
    const float z = Written(copy);
    if (std::min(a, b) < z && z < std::max(a, b) && IsInChain(copy, low, high)) chain.push_back(copy);
  }
  const bool rising = a < b;
  std::ranges::sort(chain, [&](std::uint32_t p, std::uint32_t q) {
    return rising ? Written(p) < Written(q) : Written(p) > Written(q);
  });
  const auto same = [this](std::uint32_t p, std::uint32_t q) { return Written(p) == Written(q); };
  chain.erase(std::unique(chain.begin(), chain.end(), same), chain.end());
  chain.push_back(high);
  return chain;
}

std::vector<std::uint32_t> CTornSurface::Walls(const CExportSteps& steps) const {
  constexpr double kListed = 0.3;
  // The copies of each vertex, one vertex behind the other.
  std::vector<std::uint32_t> first(m_Patch.Triangles().VertexCount() + 1);
  for (const std::uint32_t vertex : m_auVertices) ++first[vertex + 1];
  for (std::size_t v = 1; v < first.size(); ++v) first[v] += first[v - 1];
  std::vector<std::uint32_t> copies(m_auVertices.size());
  std::vector<std::uint32_t> next(first);
  for (std::uint32_t copy = 0; copy < m_auVertices.size(); ++copy) copies[next[m_auVertices[copy]]++] = copy;
  std::vector<std::uint32_t> walls;
  if (!steps.Goes(kListed / 2)) return walls;
  const auto copiesOf = [&](std::uint32_t v) { return std::span(copies).subspan(first[v], first[v + 1] - first[v]); };
  const std::vector<CCutSide> sides = CutSides();
  const auto add = [&](std::size_t begin, std::size_t end) {
    for (const CCutSide& side : std::span(sides).subspan(begin, end - begin)) {
      AddWall(Chain(side.m_auRight[0], side.m_auLeft[0], copiesOf(side.m_uFrom)),
              Chain(side.m_auRight[1], side.m_auLeft[1], copiesOf(side.m_uTo)), walls);
    }
  };
  steps.Part(kListed, 1).ForBlocks(sides.size(), add);
  return walls;
}
