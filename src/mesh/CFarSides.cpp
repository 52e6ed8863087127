#include "mesh/CFarSides.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <queue>
#include <utility>

#include "mesh/CTearPatch.h"
#include "mesh/CTearSides.h"

namespace {

CFarSide Turned(const CFarSide& side) {
  return {{side.m_auFar[1], side.m_auFar[0]},
          {side.m_auNear[1], side.m_auNear[0]},
          {side.m_aEnds[1], side.m_aEnds[0]},
          {side.m_afWidths[1], side.m_afWidths[0]}};
}

// Of the largest height: steps that are no more than the rounding of sums and of floats.
constexpr double kSame = 1e-6;

int Sign(double step, double least) { return step > least ? 1 : step < -least ? -1 : 0; }

}  // namespace

CFarSides::CFarSides(const CTearPatch& patch, const CTearSides& sides, double width,
                     const std::array<double, 2>& cell) {
  const CCutTriangulation& triangles = patch.Triangles();
  std::vector<std::array<std::uint32_t, 2>> vertices;
  triangles.ForEachCut([&](std::uint32_t t, std::uint32_t k, std::uint32_t beyond, std::uint32_t there) {
    const std::uint32_t next = (k + 1) % 3;
    const auto& corners = triangles.Triangle(t).m_auVertices;
    const std::array ends{corners[k], corners[next]};
    m_aSides.push_back({{sides.CopyOf(t, k), sides.CopyOf(t, next)},
                        {sides.CopyOf(beyond, (there + 1) % 3), sides.CopyOf(beyond, there)},
                        {CCellPoint{patch.ColumnOf(ends[0]), patch.RowOf(ends[0])},
                         CCellPoint{patch.ColumnOf(ends[1]), patch.RowOf(ends[1])}}});
    vertices.push_back(ends);
  });
  FindWidths(patch, width, cell, vertices);
}

// The shortest way along the cuts from an end inside the surface, at most the full width.
void CFarSides::FindWidths(const CTearPatch& patch, double width, const std::array<double, 2>& cell,
                           const std::vector<std::array<std::uint32_t, 2>>& vertices) {
  struct CWay {
    std::uint32_t m_uTo;
    double m_fLength;
  };
  std::vector<std::vector<CWay>> ways(patch.Triangles().VertexCount());
  for (std::size_t s = 0; s < m_aSides.size(); ++s) {
    const auto& [a, b] = m_aSides[s].m_aEnds;
    const double length = std::hypot((b.x - a.x) * cell[0], (b.y - a.y) * cell[1]);
    ways[vertices[s][0]].push_back({vertices[s][1], length});
    ways[vertices[s][1]].push_back({vertices[s][0], length});
  }
  std::vector<double> widths(ways.size(), width);
  using CReached = std::pair<double, std::uint32_t>;
  std::priority_queue<CReached, std::vector<CReached>, std::greater<>> queue;
  const auto reach = [&](std::uint32_t vertex, double length) {
    if (length >= widths[vertex]) return;
    widths[vertex] = length;
    queue.emplace(length, vertex);
  };
  for (std::uint32_t v = 0; v < ways.size(); ++v) {
    const CMeshPlace& place = patch.Triangles().Place(v);
    if (ways[v].size() == 1 && !patch.Plane().AreOnOneBorder(place, place)) reach(v, 0.0);
  }
  while (!queue.empty()) {
    const auto [length, vertex] = queue.top();
    queue.pop();
    if (length > widths[vertex]) continue;
    for (const CWay& way : ways[vertex]) reach(way.m_uTo, length + way.m_fLength);
  }
  for (std::size_t s = 0; s < m_aSides.size(); ++s)
    m_aSides[s].m_afWidths = {widths[vertices[s][0]], widths[vertices[s][1]]};
}

std::vector<CFarSide> CFarSides::Lower(std::span<const double> heights, double scale) const {
  std::vector<CFarSide> lower;
  double largest = 0.0;
  for (const double z : heights) largest = std::max(largest, std::abs(scale * z));
  const double least = kSame * largest;
  const auto written = [&](std::uint32_t copy) { return static_cast<float>(scale * heights[copy]); };
  const auto add = [&](CFarSide side) {
    const double from = static_cast<double>(written(side.m_auNear[0])) - written(side.m_auFar[0]);
    const double to = static_cast<double>(written(side.m_auNear[1])) - written(side.m_auFar[1]);
    if (!(from > least) && !(to > least)) return;
    const double change = from / (from - to);
    if (from < 0.0) side.m_afRange[0] = change;
    if (to < 0.0) side.m_afRange[1] = change;
    lower.push_back(side);
  };
  for (const CFarSide& side : m_aSides) {
    add(side);
    add(Turned(side));
  }
  return lower;
}

bool CFarSides::HaveTurned(std::span<const double> before, std::span<const double> heights, double least) const {
  return std::ranges::any_of(m_aSides, [&](const CFarSide& side) {
    for (std::size_t end = 0; end < side.m_auNear.size(); ++end) {
      const auto step = [&](std::span<const double> z) { return z[side.m_auNear[end]] - z[side.m_auFar[end]]; };
      const int now = Sign(step(heights), least);
      if (now != 0 && now != Sign(step(before), 0.0)) return true;
    }
    return false;
  });
}
