#include "mesh/CCutTriangulation.h"

#include <algorithm>
#include <utility>

// There are about half as many vertices.
void CCutTriangulation::Reserve(std::size_t triangles) {
  m_aTriangles.reserve(triangles);
  m_aPlaces.reserve(triangles / 2 + triangles / 8);
  m_auTriangleAt.reserve(triangles / 2 + triangles / 8);
}

std::uint32_t CCutTriangulation::AddVertex(const CMeshPlace& place) {
  m_aPlaces.push_back(place);
  m_auTriangleAt.push_back(kNone);
  return static_cast<std::uint32_t>(m_aPlaces.size() - 1);
}

void CCutTriangulation::AddTriangle(const std::array<std::uint32_t, 3>& vertices, std::uint32_t origin) {
  const auto t = static_cast<std::uint32_t>(m_aTriangles.size());
  m_aTriangles.push_back({.m_auVertices = vertices, .m_uOrigin = origin});
  for (const std::uint32_t vertex : vertices) m_auTriangleAt[vertex] = t;
}

// Each side waits at the lower of its ends for the other triangle that has it: no more than a few wait at one vertex.
bool CCutTriangulation::Link(const CExportSteps& steps) {
  std::vector<std::uint32_t> first(m_aPlaces.size(), kNone);
  std::vector<std::uint32_t> next(3 * m_aTriangles.size());
  return steps.ForBlocks(next.size(), [&](std::size_t begin, std::size_t end) {
    for (auto slot = static_cast<std::uint32_t>(begin); slot < end; ++slot) LinkSide(slot, first, next);
  });
}

void CCutTriangulation::LinkSide(std::uint32_t slot, std::vector<std::uint32_t>& first,
                                 std::vector<std::uint32_t>& next) {
  const CCorner side{slot / 3, slot % 3};
  const auto [low, high] = std::minmax({Vertex(side, 0), Vertex(side, 1)});
  std::uint32_t* waiting = &first[low];
  while (*waiting != kNone) {
    const CCorner other{*waiting / 3, *waiting % 3};
    if (std::max(Vertex(other, 0), Vertex(other, 1)) == high) break;
    waiting = &next[*waiting];
  }
  if (*waiting == kNone) {
    next[slot] = std::exchange(first[low], slot);
    return;
  }
  const CCorner other{*waiting / 3, *waiting % 3};
  m_aTriangles[side.m_uTriangle].m_auNeighbours[side.m_uPlace] = other.m_uTriangle;
  m_aTriangles[other.m_uTriangle].m_auNeighbours[other.m_uPlace] = side.m_uTriangle;
  *waiting = next[*waiting];
}

std::uint32_t CCutTriangulation::SideInNeighbour(std::uint32_t t, std::uint32_t k) const {
  const auto& beyond = m_aTriangles[m_aTriangles[t].m_auNeighbours[k]].m_auNeighbours;
  return beyond[0] == t ? 0 : beyond[1] == t ? 1 : 2;
}

void CCutTriangulation::CornersAround(std::uint32_t vertex, std::vector<CCorner>& corners) const {
  corners.clear();
  const auto cornerIn = [this, vertex](std::uint32_t t) {
    const auto& vertices = m_aTriangles[t].m_auVertices;
    return CCorner{t, static_cast<std::uint32_t>(std::ranges::find(vertices, vertex) - vertices.begin())};
  };
  const CCorner first = cornerIn(m_auTriangleAt[vertex]);
  // Clockwise to the rim, or once around.
  CCorner start = first;
  for (;;) {
    const std::uint32_t before = m_aTriangles[start.m_uTriangle].m_auNeighbours[start.m_uPlace];
    if (before == kNone) break;
    start = cornerIn(before);
    if (start.m_uTriangle == first.m_uTriangle) break;
  }
  CCorner corner = start;
  for (;;) {
    corners.push_back(corner);
    const std::uint32_t next = m_aTriangles[corner.m_uTriangle].m_auNeighbours[(corner.m_uPlace + 2) % 3];
    if (next == kNone || next == start.m_uTriangle) return;
    corner = cornerIn(next);
  }
}

void CCutTriangulation::Replace(std::uint32_t t, std::uint32_t oldNeighbour, std::uint32_t neighbour) {
  if (t == kNone) return;
  auto& neighbours = m_aTriangles[t].m_auNeighbours;
  *std::ranges::find(neighbours, oldNeighbour) = neighbour;
}

void CCutTriangulation::Settle(std::uint32_t t) {
  for (const std::uint32_t vertex : m_aTriangles[t].m_auVertices) m_auTriangleAt[vertex] = t;
}

// The triangle keeps the part at the first end of its side k; `part` gets the other, at its second end:
//
//        c                 b becomes the new vertex in the triangle, and a in the part
//      / | \.
//    a --v-- b
void CCutTriangulation::SplitHalf(std::uint32_t t, std::uint32_t k, std::uint32_t vertex, std::uint32_t part) {
  CTriangle& whole = m_aTriangles[t];
  CTriangle& other = m_aTriangles[part];
  const std::uint32_t next = (k + 1) % 3;
  const std::uint32_t last = (k + 2) % 3;
  other = whole;
  other.m_auVertices[k] = vertex;
  other.m_auNeighbours[last] = t;
  other.m_abCut[last] = false;
  whole.m_auVertices[next] = vertex;
  whole.m_auNeighbours[next] = part;
  whole.m_abCut[next] = false;
  Replace(other.m_auNeighbours[next], t, part);
}

std::optional<std::uint32_t> CCutTriangulation::SplitSide(std::uint32_t t, std::uint32_t k, const CMeshPlace& place) {
  const std::uint32_t beyond = m_aTriangles[t].m_auNeighbours[k];
  const bool isRim = beyond == kNone;
  const CCorner corner{t, k};
  const CCorner opposite{beyond, isRim ? 0 : SideInNeighbour(t, k)};
  const auto halves = [&](const CCorner& c) {
    return HasArea(Vertex(c, 2), Vertex(c, 0), place) && HasArea(Vertex(c, 1), Vertex(c, 2), place);
  };
  if (!halves(corner) || (!isRim && !halves(opposite))) return std::nullopt;
  const std::uint32_t vertex = AddVertex(place);
  const auto part = static_cast<std::uint32_t>(m_aTriangles.size());
  m_aTriangles.resize(m_aTriangles.size() + (isRim ? 1 : 2));
  SplitHalf(t, k, vertex, part);
  Settle(t);
  Settle(part);
  if (isRim) return vertex;
  // The first end of the one is the second end of the other.
  SplitHalf(beyond, opposite.m_uPlace, vertex, part + 1);
  m_aTriangles[t].m_auNeighbours[k] = part + 1;
  m_aTriangles[part + 1].m_auNeighbours[opposite.m_uPlace] = t;
  m_aTriangles[part].m_auNeighbours[k] = beyond;
  m_aTriangles[beyond].m_auNeighbours[opposite.m_uPlace] = part;
  Settle(beyond);
  Settle(part + 1);
  return vertex;
}

std::optional<std::uint32_t> CCutTriangulation::SplitTriangle(std::uint32_t t, const CMeshPlace& place) {
  const CTriangle whole = m_aTriangles[t];
  for (std::uint32_t k = 0; k < 3; ++k) {
    if (!HasArea(whole.m_auVertices[k], whole.m_auVertices[(k + 1) % 3], place)) return std::nullopt;
  }
  const std::uint32_t vertex = AddVertex(place);
  const auto first = static_cast<std::uint32_t>(m_aTriangles.size());
  m_aTriangles.resize(m_aTriangles.size() + 2);
  // Part k has side k of the whole as its first side and the new vertex as its last corner.
  const std::array<std::uint32_t, 3> parts{t, first, first + 1};
  for (std::uint32_t k = 0; k < 3; ++k) {
    CTriangle& part = m_aTriangles[parts[k]];
    part = {.m_auVertices = {whole.m_auVertices[k], whole.m_auVertices[(k + 1) % 3], vertex},
            .m_auNeighbours = {whole.m_auNeighbours[k], parts[(k + 1) % 3], parts[(k + 2) % 3]},
            .m_uOrigin = whole.m_uOrigin,
            .m_abCut = {whole.m_abCut[k], false, false}};
    if (k > 0) Replace(whole.m_auNeighbours[k], t, parts[k]);
  }
  for (const std::uint32_t part : parts) Settle(part);
  return vertex;
}

void CCutTriangulation::SetCut(std::uint32_t t, std::uint32_t k, bool cut) {
  m_aTriangles[t].m_abCut[k] = cut;
  const std::uint32_t beyond = m_aTriangles[t].m_auNeighbours[k];
  if (beyond != kNone) m_aTriangles[beyond].m_abCut[SideInNeighbour(t, k)] = cut;
}

//      c               c
//    /   \           / | \.
//   a --- b   ->    a  |  b   t keeps a, the triangle beyond keeps b
//    \   /           \ | /
//      d               d
bool CCutTriangulation::Flip(std::uint32_t t, std::uint32_t k, std::uint32_t through) {
  const std::uint32_t beyond = m_aTriangles[t].m_auNeighbours[k];
  if (beyond == kNone) return false;
  const std::uint32_t there = SideInNeighbour(t, k);
  const std::uint32_t a = Vertex({t, k}, 0);
  const std::uint32_t b = Vertex({t, k}, 1);
  const std::uint32_t c = Vertex({t, k}, 2);
  const std::uint32_t d = Vertex({beyond, there}, 2);
  if (!HasArea(a, d, m_aPlaces[c]) || !HasArea(d, b, m_aPlaces[c])) return false;
  if (m_aTriangles[t].m_abCut[k]) {
    Cut(a, through);
    Cut(through, b);
  }
  TurnSide({t, k}, {beyond, there});
  return true;
}

void CCutTriangulation::TurnSide(const CCorner& here, const CCorner& beyond) {
  const CTriangle upper = m_aTriangles[here.m_uTriangle];
  const CTriangle lower = m_aTriangles[beyond.m_uTriangle];
  const std::uint32_t a = Vertex(here, 0);
  const std::uint32_t b = Vertex(here, 1);
  const std::uint32_t c = Vertex(here, 2);
  const std::uint32_t d = Vertex(beyond, 2);
  const bool isUpper = Turn(m_aPlaces[a], m_aPlaces[b], m_aPlaces[c]) >= Turn(m_aPlaces[b], m_aPlaces[a], m_aPlaces[d]);
  const std::uint32_t origin = isUpper ? upper.m_uOrigin : lower.m_uOrigin;
  const std::uint32_t next = (here.m_uPlace + 1) % 3;
  const std::uint32_t last = (here.m_uPlace + 2) % 3;
  const std::uint32_t nextThere = (beyond.m_uPlace + 1) % 3;
  const std::uint32_t lastThere = (beyond.m_uPlace + 2) % 3;
  const std::uint32_t t = here.m_uTriangle;
  const std::uint32_t s = beyond.m_uTriangle;
  m_aTriangles[t] = {{a, d, c},
                     {lower.m_auNeighbours[nextThere], s, upper.m_auNeighbours[last]},
                     origin,
                     {lower.m_abCut[nextThere], false, upper.m_abCut[last]}};
  m_aTriangles[s] = {{d, b, c},
                     {lower.m_auNeighbours[lastThere], upper.m_auNeighbours[next], t},
                     origin,
                     {lower.m_abCut[lastThere], upper.m_abCut[next], false}};
  Replace(lower.m_auNeighbours[nextThere], s, t);
  Replace(upper.m_auNeighbours[next], t, s);
  Settle(t);
  Settle(s);
}

bool CCutTriangulation::Cut(std::uint32_t from, std::uint32_t to) {
  std::vector<CCorner> corners;
  CornersAround(from, corners);
  for (const CCorner& corner : corners) {
    const CTriangle& t = m_aTriangles[corner.m_uTriangle];
    for (const std::uint32_t side : {corner.m_uPlace, (corner.m_uPlace + 2) % 3}) {
      if (t.m_auVertices[side] != to && t.m_auVertices[(side + 1) % 3] != to) continue;
      SetCut(corner.m_uTriangle, side, true);
      return true;
    }
  }
  return false;
}
