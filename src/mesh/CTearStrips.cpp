#include "mesh/CTearStrips.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <map>
#include <queue>
#include <tuple>
#include <utility>

namespace {

// How far a strip that would rise above the surface over it stays below, of the step at the tear, and, as that may be
// next to nothing, as far as the width from the tear of the range of all heights beside tears. Two surfaces in one
// place would flicker.
constexpr double kClear = 1.0 / 64.0;
// Of a cell squared over the width: what a strip is wider, as its outer edge is straight within a triangle. What lies
// as far as the width from a point bends by one over that, so that from corners at most h apart it is seen at most h *
// h / (6 * width) farther than it is; no side of a triangle is longer than one and a half cells.
constexpr double kRim = 1.5 * 1.5 / 6.0;

// Some milliseconds' work.
constexpr std::size_t kPointsAtOnce = std::size_t{1} << 12;

double Between(const std::array<double, 2>& ends, double share) { return ends[0] + share * (ends[1] - ends[0]); }

CCellPoint Between(const std::array<CCellPoint, 2>& ends, double share) {
  return {ends[0].x + share * (ends[1].x - ends[0].x), ends[0].y + share * (ends[1].y - ends[0].y)};
}

}  // namespace

// Of two that a strip reaches the point from, the nearer one; else that which reaches closer.
bool CTearStrips::CNearest::IsBetterThan(const CNearest& other) const {
  if (m_uSide == kNone || other.m_uSide == kNone) return other.m_uSide == kNone && m_uSide != kNone;
  if (Beyond() < 0.0 && other.Beyond() < 0.0) return m_fDistance < other.m_fDistance;
  return Beyond() < other.Beyond();
}

CTearStrips::CTearStrips(const CTearPatch& patch, const CTearSides& sides, std::vector<CFarSide> cuts, double width,
                         const std::array<double, 2>& cell, const CExportSteps& steps)
    : m_aSides(std::move(cuts)), m_fWidth(width), m_afCell(cell) {
  if (m_aSides.empty()) return;
  constexpr double kMade = 0.5;
  constexpr double kSpread = 0.8;
  CStripMesh mesh(patch, sides, m_aSides, width, cell, steps.Part(0, kMade));
  if (!steps.Goes(kMade)) return;
  LinkSides(mesh.VertexCount());
  if (Spread(mesh, steps.Part(kMade, kSpread))) Cover(mesh, steps.Part(kSpread, 1));
}

// Along a piece the side behind another begins at the copy where that ends.
void CTearStrips::LinkSides(std::size_t copies) {
  std::vector<std::uint32_t> from(copies, kNone);
  for (std::uint32_t s = 0; s < m_aSides.size(); ++s) from[m_aSides[s].m_auNear[0]] = s;
  m_auBeside.assign(m_aSides.size(), {kNone, kNone});
  for (std::uint32_t s = 0; s < m_aSides.size(); ++s) {
    const std::uint32_t behind = from[m_aSides[s].m_auNear[1]];
    if (behind == kNone) continue;
    m_auBeside[s][1] = behind;
    m_auBeside[behind][0] = s;
  }
}

// A point to the right of the side belongs to the piece beyond. Where the nearest place is an end that says nothing.
CTearStrips::CNearest CTearStrips::NearestOn(std::uint32_t side, const CCellPoint& p) const {
  constexpr double kRounding = 1e-9;
  const CFarSide& cut = m_aSides[side];
  const auto [a, b] = cut.m_aEnds;
  const double dx = (b.x - a.x) * m_afCell[0];
  const double dy = (b.y - a.y) * m_afCell[1];
  const double px = (p.x - a.x) * m_afCell[0];
  const double py = (p.y - a.y) * m_afCell[1];
  const double square = dx * dx + dy * dy;
  const double along = (px * dx + py * dy) / square;
  const double share = std::clamp(along, cut.m_afRange[0], cut.m_afRange[1]);
  const bool isBeyond = along == share && dx * py - dy * px < -kRounding * square;
  return {isBeyond ? kNone : side, share, std::hypot(px - share * dx, py - share * dy), Between(cut.m_afWidths, share)};
}

// From a side on along its piece, as long as that leads nearer.
CTearStrips::CNearest CTearStrips::NearestAlong(std::uint32_t side, const CCellPoint& p) const {
  const CNearest first = NearestOn(side, p);
  CNearest best = first;
  for (std::size_t way = 0; way < 2; ++way) {
    double least = first.m_fDistance;
    for (std::uint32_t s = m_auBeside[side][way]; s != kNone && s != side; s = m_auBeside[s][way]) {
      const CNearest next = NearestOn(s, p);
      if (next.m_fDistance > least) break;
      least = next.m_fDistance;
      if (next.m_uSide != kNone) best = next;
    }
  }
  return best;
}

// Positive outside of the strips, which are somewhat wider where they have their full width. A triangle at a corner
// that no side is nearest to belongs to them up to there.
double CTearStrips::Outside(const CNearest& nearest) const {
  if (nearest.m_uSide == kNone) return 1e-3 * m_fWidth;
  const double cell = std::max(m_afCell[0], m_afCell[1]);
  const double rim = kRim * std::min(cell, cell * cell / m_fWidth);
  return nearest.Beyond() - rim * nearest.m_fWidth / m_fWidth;
}

// From the tears on through their pieces, from a vertex to those with which it shares a triangle. A strip that narrows
// towards an end may be the nearer one where another reaches farther.
bool CTearStrips::Spread(const CStripMesh& mesh, const CExportSteps& steps) {
  m_aNearest.assign(mesh.VertexCount(), {});
  m_afOutside.assign(mesh.VertexCount(), HUGE_VAL);
  std::vector<std::uint32_t> deepest(mesh.VertexCount(), kNone);
  using CReached = std::tuple<double, std::uint32_t, std::uint32_t>;
  std::priority_queue<CReached, std::vector<CReached>, std::greater<>> queue;
  const auto reach = [&](std::uint32_t v, std::uint32_t side) {
    const CNearest nearest = NearestAlong(side, mesh.Vertex(v).m_Place);
    const double outside = Outside(nearest);
    const bool isDeeper = outside < m_afOutside[v];
    const bool isBetter = nearest.IsBetterThan(m_aNearest[v]);
    if (isDeeper) {
      m_afOutside[v] = outside;
      deepest[v] = nearest.m_uSide;
    }
    if (isBetter) m_aNearest[v] = nearest;
    if ((isBetter || isDeeper) && outside < 0.0) queue.emplace(nearest.m_fDistance, v, nearest.m_uSide);
  };
  for (std::uint32_t s = 0; s < m_aSides.size(); ++s) {
    for (std::size_t end = 0; end < 2; ++end) reach(m_aSides[s].m_auNear[end], s);
    const std::uint32_t split = mesh.SplitOf(m_aSides[s].m_auNear[0], m_aSides[s].m_auNear[1]);
    if (split != CStripMesh::kNone) reach(split, s);
  }
  // How far it will go is not known.
  for (std::size_t taken = 0; !queue.empty(); ++taken) {
    if (taken % kPointsAtOnce == 0 && !steps.Goes(0)) return false;
    const auto [distance, v, side] = queue.top();
    queue.pop();
    if (side != m_aNearest[v].m_uSide && side != deepest[v]) continue;
    for (const std::uint32_t t : mesh.Around(v)) {
      for (const std::uint32_t corner : mesh.Triangles()[t]) reach(corner, side);
    }
  }
  return steps.Goes(1);
}

bool CTearStrips::Cover(CStripMesh& mesh, const CExportSteps& steps) {
  constexpr double kCovered = 0.7;
  const auto isInside = [this](std::uint32_t v) { return m_afOutside[v] < 0.0; };
  const auto cover = [&](std::size_t begin, std::size_t end) {
    for (std::size_t t = begin; t < end; ++t) {
      const CStripMesh::CCorners corners = mesh.Triangles()[t];
      if (std::ranges::any_of(corners, isInside)) AddClipped(mesh, corners);
    }
  };
  return steps.Part(0, kCovered).ForBlocks(mesh.Triangles().size(), cover) && Number(mesh, steps.Part(kCovered, 1));
}

// What of a triangle lies inside: all of it, or a corner, or what a corner is cut from.
void CTearStrips::AddClipped(CStripMesh& mesh, const CStripMesh::CCorners& corners) {
  std::vector<std::uint32_t> inside;
  for (std::size_t k = 0; k < corners.size(); ++k) {
    const std::uint32_t a = corners[k];
    const std::uint32_t b = corners[(k + 1) % 3];
    const double from = m_afOutside[a];
    const double to = m_afOutside[b];
    if (from <= 0.0) inside.push_back(a);
    if (!((from < 0.0 && to > 0.0) || (from > 0.0 && to < 0.0))) continue;
    std::uint32_t rim = mesh.RimOf(a, b);
    if (rim == CStripMesh::kNone) {
      rim = mesh.AddRim(a, b, from / (from - to));
      const CNearest first = NearestAlong(m_aNearest[from < 0.0 ? a : b].m_uSide, mesh.Vertex(rim).m_Place);
      m_aNearest.push_back(first.m_uSide != kNone ? first : m_aNearest[from < 0.0 ? a : b]);
    }
    inside.push_back(rim);
  }
  for (std::size_t k = 2; k < inside.size(); ++k) m_aTriangles.push_back({inside[0], inside[k - 1], inside[k]});
}

// Leaves out the vertices in no triangle.
bool CTearStrips::Number(const CStripMesh& mesh, const CExportSteps& steps) {
  std::vector<std::uint32_t> numbers(mesh.VertexCount(), kNone);
  const auto take = [&](std::uint32_t& v) {
    std::uint32_t& number = numbers[v];
    if (number == kNone) {
      number = static_cast<std::uint32_t>(m_aVertices.size());
      const CNearest& nearest = m_aNearest[v];
      m_aVertices.push_back({mesh.Vertex(v), nearest.m_uSide, nearest.m_fShare, nearest.m_fDistance / m_fWidth});
    }
    v = number;
  };
  const auto number = [&](std::size_t begin, std::size_t end) {
    for (std::size_t t = begin; t < end; ++t) std::ranges::for_each(m_aTriangles[t], take);
  };
  const bool whole = steps.ForBlocks(m_aTriangles.size(), number);
  m_aNearest = {};
  m_afOutside = {};
  return whole;
}

void CTearStrips::Raise(const CSideHeights& side, std::span<const double> heights,
                        std::span<const CSideHeights::CPlane> planes, std::span<double> strips) const {
  const auto [lowest, highest] = std::ranges::minmax(heights);
  const double range = highest - lowest;
  for (std::size_t v = 0; v < m_aVertices.size(); ++v) {
    const CVertex& vertex = m_aVertices[v];
    const CFarSide& cut = m_aSides[vertex.m_uSide];
    std::array<double, 2> z{};
    std::array<double, 2> low{};
    std::array<double, 2> high{};
    std::array<double, 2> step{};
    for (std::size_t end = 0; end < z.size(); ++end) {
      const CSideHeights::CPlane& plane = planes[side.PlaneOf(cut.m_auFar[end])];
      z[end] = plane.m_fZ + plane.m_fSlopeX * (vertex.m_Above.m_Place.x - cut.m_aEnds[end].x) +
               plane.m_fSlopeY * (vertex.m_Above.m_Place.y - cut.m_aEnds[end].y);
      low[end] = plane.m_fLow;
      high[end] = plane.m_fHigh;
      step[end] = heights[cut.m_auNear[end]] - heights[cut.m_auFar[end]];
    }
    double above = 0.0;
    for (std::size_t k = 0; k < vertex.m_Above.m_auCopies.size(); ++k)
      above += vertex.m_Above.m_afShares[k] * heights[vertex.m_Above.m_auCopies[k]];
    const double s = vertex.m_fShare;
    const double continued = std::min(std::max(Between(z, s), Between(low, s)), Between(high, s));
    strips[v] = std::min(continued, above - kClear * std::max(Between(step, s), range * vertex.m_fAway));
  }
}

std::uint32_t CTearStrips::JoinedTo(const CVertex& vertex) const {
  const CFarSide& cut = m_aSides[vertex.m_uSide];
  for (std::size_t end = 0; end < 2; ++end) {
    const bool isThere = vertex.m_fShare == static_cast<double>(end) && vertex.m_Above.m_afShares[0] == 1.0 &&
                         vertex.m_Above.m_auCopies[0] == cut.m_auNear[end];
    if (isThere) return cut.m_auFar[end];
  }
  return kNone;
}

CCellPoint CTearStrips::PictureOf(const CVertex& vertex, int cells) const {
  // Held to the border instead, all that is outside would show the same pixel.
  const auto inside = [cells](double place) {
    const double last = cells;
    return std::clamp(place > last ? 2.0 * last - place : std::abs(place), 0.0, last);
  };
  const CCellPoint at = Between(m_aSides[vertex.m_uSide].m_aEnds, vertex.m_fShare);
  return {inside(2.0 * at.x - vertex.m_Above.m_Place.x), inside(2.0 * at.y - vertex.m_Above.m_Place.y)};
}
