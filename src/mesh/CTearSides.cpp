#include "mesh/CTearSides.h"

#include <numeric>

#include "mesh/CTearPatch.h"

void CTearSides::CGroups::Join(std::uint32_t a, std::uint32_t b) { m_auParents[Find(a)] = Find(b); }

std::uint32_t CTearSides::CGroups::Find(std::uint32_t k) {
  while (m_auParents[k] != k) k = m_auParents[k] = m_auParents[m_auParents[k]];
  return k;
}

CTearSides::CGroups::CGroups(std::size_t count) : m_auParents(count) {
  std::iota(m_auParents.begin(), m_auParents.end(), std::uint32_t{0});
}

CTearSides::CTearSides(const CTearPatch& patch) {
  CGroups groups(3 * patch.Triangles().Triangles().size());
  JoinCorners(patch, groups);
  FindCopies(patch, groups);
  FindPieces(patch);
}

// Where the region of the patch ends, triangles may meet in a vertex alone; only a cut parts them.
void CTearSides::JoinCorners(const CTearPatch& patch, CGroups& groups) {
  const CCutTriangulation& triangles = patch.Triangles();
  const auto count = static_cast<std::uint32_t>(triangles.Triangles().size());
  std::vector<bool> atCut(triangles.VertexCount());
  for (std::uint32_t t = 0; t < count; ++t) {
    const auto& triangle = triangles.Triangle(t);
    for (std::uint32_t k = 0; k < 3; ++k) {
      const std::uint32_t beyond = triangle.m_auNeighbours[k];
      if (triangle.m_abCut[k]) atCut[triangle.m_auVertices[k]] = atCut[triangle.m_auVertices[(k + 1) % 3]] = true;
      if (triangle.m_abCut[k] || beyond == CTearPatch::kNone || beyond < t) continue;
      const std::uint32_t side = triangles.SideInNeighbour(t, k);
      groups.Join(3 * t + k, 3 * beyond + (side + 1) % 3);
      groups.Join(3 * t + (k + 1) % 3, 3 * beyond + side);
    }
  }
  std::vector<std::uint32_t> last(triangles.VertexCount(), CTearPatch::kNone);
  for (std::uint32_t slot = 0; slot < 3 * count; ++slot) {
    const std::uint32_t vertex = triangles.Triangle(slot / 3).m_auVertices[slot % 3];
    if (!atCut[vertex] && last[vertex] != CTearPatch::kNone) groups.Join(slot, last[vertex]);
    last[vertex] = slot;
  }
}

void CTearSides::FindCopies(const CTearPatch& patch, CGroups& groups) {
  const auto slots = static_cast<std::uint32_t>(3 * patch.Triangles().Triangles().size());
  std::vector<std::uint32_t> copyOf(slots, CTearPatch::kNone);
  for (std::uint32_t slot = 0; slot < slots; ++slot) {
    const std::uint32_t vertex = patch.Triangles().Triangle(slot / 3).m_auVertices[slot % 3];
    std::uint32_t& copy = copyOf[groups.Find(slot)];
    if (copy == CTearPatch::kNone) {
      copy = static_cast<std::uint32_t>(m_auVertices.size());
      m_auVertices.push_back(vertex);
      m_auTriangles.push_back(slot / 3);
      m_abKnown.push_back(false);
    }
    m_auCopies.push_back(copy);
    const CTearPatch::COrigin& origin = patch.OriginOf(slot / 3);
    const bool isCentre = !patch.IsCorner(vertex) && patch.MeshVertex(vertex) != CTearPatch::kNone;
    if ((patch.IsCorner(vertex) && !origin.m_bTorn) || (isCentre && origin.m_bWholeLeaf)) m_abKnown[copy] = true;
  }
}

void CTearSides::FindPieces(const CTearPatch& patch) {
  const std::span<const CCutTriangulation::CTriangle> triangles = patch.Triangles().Triangles();
  const auto count = static_cast<std::uint32_t>(triangles.size());
  CGroups groups(count);
  for (std::uint32_t t = 0; t < count; ++t) {
    for (std::size_t k = 0; k < 3; ++k) {
      const std::uint32_t beyond = triangles[t].m_auNeighbours[k];
      if (beyond != CTearPatch::kNone && beyond > t && !triangles[t].m_abCut[k]) groups.Join(t, beyond);
    }
  }
  std::vector<std::uint32_t> numbers(count, CTearPatch::kNone);
  m_auPieces.resize(count);
  for (std::uint32_t t = 0; t < count; ++t) {
    std::uint32_t& number = numbers[groups.Find(t)];
    if (number == CTearPatch::kNone) number = static_cast<std::uint32_t>(m_uPieces++);
    m_auPieces[t] = number;
  }
}
