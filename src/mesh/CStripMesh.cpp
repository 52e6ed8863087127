#include "mesh/CStripMesh.h"

#include <algorithm>
#include <cmath>

#include "mesh/CTearPatch.h"
#include "mesh/CTearSides.h"

namespace {

// In cells: all sides of the triangles of a leaf one cell wide are shorter.
constexpr double kLong = 1.5;
// Of a cell: narrower strips are made of triangles no smaller than that.
constexpr double kFinest = 1.0 / 16.0;

}  // namespace

CStripMesh::CStripMesh(const CTearPatch& patch, const CTearSides& sides, std::span<const CFarSide> cuts, double width,
                       const std::array<double, 2>& cell, const CExportSteps& steps)
    : m_fWidth(width), m_afCell(cell) {
  constexpr double kMarked = 0.3;
  constexpr double kSplit = 0.9;
  AddCopies(patch, sides);
  if (!steps.Goes(kMarked / 2)) return;
  MarkNear(patch, sides, cuts);
  if (!steps.Goes(kMarked)) return;
  for (const CFarSide& cut : cuts) {
    const auto& [a, b] = cut.m_auNear;
    for (const double share : cut.m_afRange) {
      if (share > 0.0 && share < 1.0) m_Splits[KeyOf(a, b)] = AddBetween(a, b, share);
    }
  }
  if (SplitLong(patch, sides, steps.Part(kMarked, kSplit))) FindAround();
}

std::uint64_t CStripMesh::KeyOf(std::uint32_t a, std::uint32_t b) {
  return static_cast<std::uint64_t>(std::min(a, b)) << 32 | std::max(a, b);
}

void CStripMesh::AddCopies(const CTearPatch& patch, const CTearSides& sides) {
  m_aVertices.reserve(sides.CopyCount());
  for (std::uint32_t copy = 0; copy < sides.CopyCount(); ++copy) {
    const std::uint32_t vertex = sides.VertexOf(copy);
    m_aVertices.push_back({{patch.ColumnOf(vertex), patch.RowOf(vertex)}, {copy, copy, copy}, {1.0, 0.0, 0.0}});
  }
}

// The cuts, and what shares a triangle with them or with such a one.
void CStripMesh::MarkNear(const CTearPatch& patch, const CTearSides& sides, std::span<const CFarSide> cuts) {
  m_abNear.assign(m_aVertices.size(), false);
  for (const CFarSide& cut : cuts) {
    for (const std::uint32_t copy : cut.m_auNear) m_abNear[copy] = true;
  }
  for (int ring = 0; ring < 2; ++ring) {
    const std::vector<bool> before = m_abNear;
    for (std::uint32_t t = 0; t < patch.Triangles().Triangles().size(); ++t) {
      const CCorners corners{sides.CopyOf(t, 0), sides.CopyOf(t, 1), sides.CopyOf(t, 2)};
      if (std::ranges::none_of(corners, [&](std::uint32_t v) { return before[v]; })) continue;
      for (const std::uint32_t v : corners) m_abNear[v] = true;
    }
  }
}

std::uint32_t CStripMesh::AddBetween(std::uint32_t a, std::uint32_t b, double share) {
  const CVertex& p = m_aVertices[a];
  const CVertex& q = m_aVertices[b];
  CVertex vertex{{p.m_Place.x + share * (q.m_Place.x - p.m_Place.x), p.m_Place.y + share * (q.m_Place.y - p.m_Place.y)},
                 p.m_auCopies,
                 p.m_afShares};
  for (double& s : vertex.m_afShares) s *= 1.0 - share;
  for (std::size_t k = 0; k < q.m_auCopies.size(); ++k) {
    if (q.m_afShares[k] == 0.0) continue;
    std::size_t at = 0;
    while (at < 2 && (vertex.m_auCopies[at] != q.m_auCopies[k] || vertex.m_afShares[at] == 0.0)) ++at;
    if (vertex.m_auCopies[at] != q.m_auCopies[k] || vertex.m_afShares[at] == 0.0) {
      at = static_cast<std::size_t>(std::ranges::find(vertex.m_afShares, 0.0) - vertex.m_afShares.begin());
      vertex.m_auCopies[at] = q.m_auCopies[k];
    }
    vertex.m_afShares[at] += share * q.m_afShares[k];
  }
  m_aVertices.push_back(vertex);
  m_abNear.push_back(m_abNear[a] && m_abNear[b]);
  return static_cast<std::uint32_t>(m_aVertices.size() - 1);
}

std::uint32_t CStripMesh::AddRim(std::uint32_t a, std::uint32_t b, double share) {
  return m_Splits[KeyOf(a, b)] = AddBetween(a, b, share);
}

std::uint32_t CStripMesh::SplitOf(std::uint32_t a, std::uint32_t b) const {
  const auto found = m_Splits.find(KeyOf(a, b));
  return found == m_Splits.end() ? kNone : found->second;
}

// Model units.
double CStripMesh::LengthOf(std::uint32_t a, std::uint32_t b) const {
  const CCellPoint& p = m_aVertices[a].m_Place;
  const CCellPoint& q = m_aVertices[b].m_Place;
  return std::hypot((q.x - p.x) * m_afCell[0], (q.y - p.y) * m_afCell[1]);
}

bool CStripMesh::IsLong(std::uint32_t a, std::uint32_t b) const {
  const double dx = m_aVertices[b].m_Place.x - m_aVertices[a].m_Place.x;
  const double dy = m_aVertices[b].m_Place.y - m_aVertices[a].m_Place.y;
  if (std::hypot(dx, dy) > kLong) return true;
  const double fine = std::max(m_fWidth / 2.0, kFinest * std::max(m_afCell[0], m_afCell[1]));
  return m_abNear[a] && m_abNear[b] && LengthOf(a, b) > fine;
}

// The longest of the sides that have to be split, which keeps the parts in shape; 3 for none.
std::size_t CStripMesh::LongestToSplit(const CCorners& corners) const {
  std::size_t longest = 3;
  double most = 0.0;
  for (std::size_t k = 0; k < corners.size(); ++k) {
    const std::uint32_t a = corners[k];
    const std::uint32_t b = corners[(k + 1) % 3];
    if (LengthOf(a, b) <= most || (SplitOf(a, b) == kNone && !IsLong(a, b))) continue;
    longest = k;
    most = LengthOf(a, b);
  }
  return longest;
}

std::uint32_t CStripMesh::SplitToMake(std::uint32_t a, std::uint32_t b) {
  const std::uint32_t there = SplitOf(a, b);
  return there != kNone ? there : m_Splits[KeyOf(a, b)] = AddBetween(a, b, 0.5);
}

// Whether a side is split is a matter of its ends alone, so that the triangles on both sides of it agree.
bool CStripMesh::SplitLong(const CTearPatch& patch, const CTearSides& sides, const CExportSteps& steps) {
  return steps.ForBlocks(patch.Triangles().Triangles().size(), [&](std::size_t begin, std::size_t end) {
    for (auto t = static_cast<std::uint32_t>(begin); t < end; ++t)
      AddSplit({sides.CopyOf(t, 0), sides.CopyOf(t, 1), sides.CopyOf(t, 2)});
  });
}

void CStripMesh::AddSplit(const CCorners& whole) {
  // Nearly all of them.
  if (LongestToSplit(whole) == 3) {
    m_aTriangles.push_back(whole);
    return;
  }
  std::vector<CCorners> left{whole};
  while (!left.empty()) {
    const CCorners corners = left.back();
    left.pop_back();
    const std::size_t k = LongestToSplit(corners);
    if (k == 3) {
      m_aTriangles.push_back(corners);
      continue;
    }
    const std::uint32_t between = SplitToMake(corners[k], corners[(k + 1) % 3]);
    left.push_back({corners[k], between, corners[(k + 2) % 3]});
    left.push_back({between, corners[(k + 1) % 3], corners[(k + 2) % 3]});
  }
}

void CStripMesh::FindAround() {
  m_auFirst.assign(m_aVertices.size() + 1, 0);
  for (const CCorners& corners : m_aTriangles) {
    for (const std::uint32_t v : corners) ++m_auFirst[v + 1];
  }
  for (std::size_t v = 0; v + 1 < m_auFirst.size(); ++v) m_auFirst[v + 1] += m_auFirst[v];
  m_auAround.resize(m_auFirst.back());
  std::vector<std::uint32_t> next(m_auFirst);
  for (std::uint32_t t = 0; t < m_aTriangles.size(); ++t) {
    for (const std::uint32_t v : m_aTriangles[t]) m_auAround[next[v]++] = t;
  }
}
