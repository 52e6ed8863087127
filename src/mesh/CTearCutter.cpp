#include "mesh/CTearCutter.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <optional>
#include <utility>

namespace {

std::uint64_t KeyOf(const CMeshPlace& place) {
  return static_cast<std::uint64_t>(static_cast<std::uint32_t>(place.x)) << 32 | static_cast<std::uint32_t>(place.y);
}

// Around one vertex, on the way of one line.
constexpr int kMostTurns = 64;
// In cells; more than a triangle beside a tear is wide.
constexpr double kAhead = 2.0;
// In cells. Points of a cut that are nearer to each other are one.
constexpr double kLeast = 1.0 / 4096;
// How far one gives way to another, with room for rounding: a vertex behind it must not be taken for one on its way.
constexpr double kApart = CTearCutter::kOnePoint + 0.25 / 4096;

}  // namespace

void CTearCutter::Cut(const CMeshPlace& from, const CMeshPlace& to) {
  const std::uint32_t vertex = VertexAt(from);
  if (vertex != kNone) CutFrom(vertex, to);
}

void CTearCutter::CutFrom(std::uint32_t vertex, const CMeshPlace& to) {
  const auto known = m_Vertices.find(KeyOf(to));
  const CMeshPlace target = known != m_Vertices.end() ? m_Triangles.Place(known->second) : to;
  const CMeshPlace start = m_Triangles.Place(vertex);
  bool arrived = Between(vertex, target) < kOnePoint;
  for (int turns = 0; !arrived;) {
    const std::uint32_t next = Step(vertex, {start, target}, arrived);
    // A side all but through the vertex has been turned out of the way.
    if (next == vertex && !arrived && ++turns < kMostTurns) continue;
    // Every step leads nearer, or rounding could send the line round in a ring.
    if (next == kNone || Between(next, target) >= Between(vertex, target)) break;
    m_Triangles.Cut(vertex, next);
    vertex = next;
    arrived = arrived || Between(vertex, target) < kOnePoint;
  }
  if (arrived) m_Vertices.emplace(KeyOf(to), vertex);
}

std::uint32_t CTearCutter::VertexAt(const CMeshPlace& place) {
  const auto known = m_Vertices.find(KeyOf(place));
  if (known != m_Vertices.end()) return known->second;
  const std::uint32_t t = TriangleAt(place);
  if (t == kNone) return kNone;
  const std::uint32_t vertex = PlaceIn(t, place);
  m_Vertices.emplace(KeyOf(place), vertex);
  return vertex;
}

// Walks towards the place; the rim may stop it where the region has holes.
std::uint32_t CTearCutter::TriangleAt(const CMeshPlace& place) {
  const std::span<const CCutTriangulation::CTriangle> triangles = m_Triangles.Triangles();
  const auto sideBefore = [&](std::uint32_t t) {
    const auto& v = triangles[t].m_auVertices;
    for (std::uint32_t k = 0; k < 3; ++k) {
      if (Turn(m_Triangles.Place(v[k]), m_Triangles.Place(v[(k + 1) % 3]), place) < 0) return k;
    }
    return 3U;
  };
  std::uint32_t t = m_uLast;
  for (std::size_t step = 0; step < triangles.size() && t != kNone; ++step) {
    const std::uint32_t side = sideBefore(t);
    if (side == 3) return m_uLast = t;
    t = triangles[t].m_auNeighbours[side];
  }
  for (t = 0; t < triangles.size(); ++t) {
    if (sideBefore(t) == 3) return m_uLast = t;
  }
  return kNone;
}

std::uint32_t CTearCutter::NearestCorner(std::uint32_t t, const CMeshPlace& place) const {
  const auto& vertices = m_Triangles.Triangle(t).m_auVertices;
  return *std::ranges::min_element(vertices, {}, [&](std::uint32_t v) { return Between(v, place); });
}

// The vertex for a place in a triangle: one of its corners, or a new one on a side or inside it.
std::uint32_t CTearCutter::PlaceIn(std::uint32_t t, const CMeshPlace& place) {
  const std::uint32_t corner = NearestCorner(t, place);
  if (Between(corner, place) < kOnePoint) return corner;
  const auto& v = m_Triangles.Triangle(t).m_auVertices;
  const auto distance = [&](std::uint32_t k) {
    return m_Plane.Distance(place, m_Triangles.Place(v[k]), m_Triangles.Place(v[(k + 1) % 3]));
  };
  const std::uint32_t side = std::ranges::min(std::array{0U, 1U, 2U}, {}, distance);
  if (distance(side) < kOnePoint) return SplitNear(t, side, place, place);
  return m_Triangles.SplitTriangle(t, place).value_or(corner);
}

// The corners opposite a side, in its triangle and in the one beyond.
std::vector<std::uint32_t> CTearCutter::CornersBeside(std::uint32_t t, std::uint32_t side) const {
  std::vector<std::uint32_t> corners{m_Triangles.Vertex({t, side}, 2)};
  const std::uint32_t beyond = m_Triangles.Triangle(t).m_auNeighbours[side];
  if (beyond != kNone) corners.push_back(m_Triangles.Vertex({beyond, m_Triangles.SideInNeighbour(t, side)}, 2));
  return corners;
}

// A vertex nearer than that to a place at a side, through however many triangles; kNone for none.
std::uint32_t CTearCutter::Nearer(double distance, std::uint32_t t, std::uint32_t side, const CMeshPlace& place) {
  m_auAround.assign(1, t);
  const auto look = [&](std::uint32_t beyond) {
    if (beyond != kNone && std::ranges::find(m_auAround, beyond) == m_auAround.end()) m_auAround.push_back(beyond);
  };
  look(m_Triangles.Triangle(t).m_auNeighbours[side]);
  std::size_t looked = 0;
  while (looked < m_auAround.size()) {
    const CCutTriangulation::CTriangle& triangle = m_Triangles.Triangle(m_auAround[looked++]);
    for (std::uint32_t k = 0; k < 3; ++k) {
      const std::uint32_t vertex = triangle.m_auVertices[k];
      if (Between(vertex, place) < distance) return vertex;
      const CMeshPlace& next = m_Triangles.Place(triangle.m_auVertices[(k + 1) % 3]);
      if (m_Plane.Distance(place, m_Triangles.Place(vertex), next) < distance) look(triangle.m_auNeighbours[k]);
    }
  }
  return kNone;
}

// The vertex at a side for a place there that is too near to a vertex: one beside that, or an end of the side,
// whichever is nearer to where the cut leads.
std::uint32_t CTearCutter::GiveWay(std::uint32_t near, std::uint32_t t, std::uint32_t side, const CMeshPlace& place,
                                   const CMeshPlace& to) {
  const auto& triangle = m_Triangles.Triangle(t);
  const std::array<std::uint32_t, 2> ends{triangle.m_auVertices[side], triangle.m_auVertices[(side + 1) % 3]};
  const CMeshPlace a = m_Triangles.Place(ends[0]);
  const CMeshPlace b = m_Triangles.Place(ends[1]);
  const CMeshPlace& vertex = m_Triangles.Place(near);
  const double off = m_Plane.Distance(vertex, a, b);
  const double along = std::sqrt(std::max(kApart * kApart - off * off, 0.0)) / m_Plane.Distance(a, b);
  const double share = m_Plane.Nearest(vertex, a, b);
  std::array places{CMeshPlane::Between(a, b, std::max(share - along, 0.0)),
                    CMeshPlane::Between(a, b, std::min(share + along, 1.0))};
  if (m_Plane.Distance(places[1], to) < m_Plane.Distance(places[0], to)) std::swap(places[0], places[1]);
  for (const CMeshPlace& at : places) {
    for (const std::uint32_t end : ends) {
      if (Between(end, at) < kOnePoint) return end;
    }
    if (Nearer(kOnePoint, t, side, at) != kNone) continue;
    if (const std::optional<std::uint32_t> split = m_Triangles.SplitSide(t, side, at)) return *split;
  }
  const std::uint32_t nearer = Between(ends[0], place) <= Between(ends[1], place) ? ends[0] : ends[1];
  return m_Triangles.SplitSide(t, side, place).value_or(nearer);
}

// A side on the border of the rectangle is split on it, whatever the place; another part of the rim is not split.
std::uint32_t CTearCutter::SplitNear(std::uint32_t t, std::uint32_t side, const CMeshPlace& place,
                                     const CMeshPlace& to) {
  const auto& triangle = m_Triangles.Triangle(t);
  const std::array<std::uint32_t, 2> ends{triangle.m_auVertices[side], triangle.m_auVertices[(side + 1) % 3]};
  const std::uint32_t nearer = Between(ends[0], place) <= Between(ends[1], place) ? ends[0] : ends[1];
  CMeshPlace at = place;
  if (triangle.m_auNeighbours[side] == kNone) {
    const CMeshPlace& a = m_Triangles.Place(ends[0]);
    const CMeshPlace& b = m_Triangles.Place(ends[1]);
    if (!m_Plane.AreOnOneBorder(a, b)) return nearer;
    at = m_Plane.OntoBorder(place, a, b);
  }
  if (Between(nearer, at) < kOnePoint) return nearer;
  for (const std::uint32_t corner : CornersBeside(t, side)) {
    if (Between(corner, at) < kOnePoint && m_Triangles.Flip(t, side, corner)) return corner;
  }
  const std::uint32_t tooNear = Nearer(kLeast, t, side, at);
  return tooNear == kNone ? m_Triangles.SplitSide(t, side, at).value_or(nearer) : GiveWay(tooNear, t, side, at, to);
}

// Where to go on from a vertex: a point of the line not far ahead, so that vertices that the cut has to pass through
// beside it do not lead it away; near the end of the line, or in a triangle that reaches so far, the end.
CMeshPlace CTearCutter::Aim(std::uint32_t from, const CLine& line) {
  const auto& [start, end] = line;
  const double length = m_Plane.Distance(start, end);
  const double share = m_Plane.Nearest(m_Triangles.Place(from), start, end) + kAhead / length;
  if (share >= 1.0) return end;
  const CMeshPlace ahead = CMeshPlane::Between(start, end, share);
  const CCorner corner = CornerTowards(from, ahead);
  if (corner.m_uTriangle == kNone) return end;
  const CMeshPlace& right = m_Triangles.Place(m_Triangles.Vertex(corner, 1));
  const CMeshPlace& left = m_Triangles.Place(m_Triangles.Vertex(corner, 2));
  return Turn(right, left, ahead) < 0 ? ahead : end;
}

// Goes on from a vertex: to the end, or to where the line meets the far side of the triangle that it enters first.
std::uint32_t CTearCutter::Step(std::uint32_t from, const CLine& line, bool& arrived) {
  const CMeshPlace to = Aim(from, line);
  const CCorner corner = CornerTowards(from, to);
  if (corner.m_uTriangle == kNone) return kNone;
  const std::uint32_t right = m_Triangles.Vertex(corner, 1);
  const std::uint32_t left = m_Triangles.Vertex(corner, 2);
  if (Turn(m_Triangles.Place(right), m_Triangles.Place(left), to) >= 0) {
    arrived = true;
    m_uLast = corner.m_uTriangle;
    return PlaceIn(corner.m_uTriangle, to);
  }
  const auto off = [&](std::uint32_t v) { return m_Plane.Distance(m_Triangles.Place(v), m_Triangles.Place(from), to); };
  const std::uint32_t nearer = off(right) <= off(left) ? right : left;
  return off(nearer) < kOnePoint ? nearer : CrossSide(corner, to);
}

// The corner between whose sides the way to a place begins.
CTearCutter::CCorner CTearCutter::CornerTowards(std::uint32_t from, const CMeshPlace& to) {
  m_Triangles.CornersAround(from, m_aCorners);
  const CMeshPlace& start = m_Triangles.Place(from);
  for (const CCorner& corner : m_aCorners) {
    const CMeshPlace& right = m_Triangles.Place(m_Triangles.Vertex(corner, 1));
    const CMeshPlace& left = m_Triangles.Place(m_Triangles.Vertex(corner, 2));
    if (Turn(start, right, to) >= 0 && Turn(start, left, to) <= 0) return corner;
  }
  return {};
}

std::uint32_t CTearCutter::CrossSide(const CCorner& corner, const CMeshPlace& to) {
  const std::uint32_t from = m_Triangles.Vertex(corner, 0);
  const std::uint32_t right = m_Triangles.Vertex(corner, 1);
  const std::uint32_t left = m_Triangles.Vertex(corner, 2);
  const CMeshPlace& a = m_Triangles.Place(right);
  const CMeshPlace& b = m_Triangles.Place(left);
  const auto before = static_cast<double>(-Turn(m_Triangles.Place(from), a, to));
  const auto behind = static_cast<double>(Turn(m_Triangles.Place(from), b, to));
  const double whole = before + behind;
  const double share = whole != 0.0 ? before / whole : 0.5;
  return SplitNear(corner.m_uTriangle, (corner.m_uPlace + 1) % 3, CMeshPlane::Between(a, b, share), to);
}

std::uint32_t CTearCutter::SplitBetween(std::uint32_t a, std::uint32_t b, double share) {
  const CMeshPlace place = CMeshPlane::Between(m_Triangles.Place(a), m_Triangles.Place(b), share);
  if (std::min(Between(a, place), Between(b, place)) < kOnePoint) return kNone;
  m_Triangles.CornersAround(a, m_aCorners);
  for (const CCorner& corner : m_aCorners) {
    if (m_Triangles.Vertex(corner, 1) == b)
      return m_Triangles.SplitSide(corner.m_uTriangle, corner.m_uPlace, place).value_or(kNone);
    if (m_Triangles.Vertex(corner, 2) == b)
      return m_Triangles.SplitSide(corner.m_uTriangle, (corner.m_uPlace + 2) % 3, place).value_or(kNone);
  }
  return kNone;
}
