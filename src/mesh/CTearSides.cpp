#include "mesh/CTearSides.h"

#include <numeric>
#include <span>

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
  const std::vector<bool> atCut = VerticesAtCuts(patch);
  CGroups groups(3 * patch.Triangles().Triangles().size());
  JoinCorners(patch, atCut, groups);
  FindCopies(patch, atCut, groups);
  FindPieces(patch);
}

std::vector<bool> CTearSides::VerticesAtCuts(const CTearPatch& patch) {
  std::vector<bool> atCut(patch.Triangles().VertexCount());
  for (const CCutTriangulation::CTriangle& triangle : patch.Triangles().Triangles()) {
    for (std::size_t k = 0; k < 3; ++k) {
      if (triangle.m_abCut[k]) atCut[triangle.m_auVertices[k]] = atCut[triangle.m_auVertices[(k + 1) % 3]] = true;
    }
  }
  return atCut;
}

// Only a cut parts the corners at a vertex, so that those of all others need not be joined.
void CTearSides::JoinCorners(const CTearPatch& patch, const std::vector<bool>& atCut, CGroups& groups) {
  const CCutTriangulation& triangles = patch.Triangles();
  for (std::uint32_t t = 0; t < triangles.Triangles().size(); ++t) {
    const auto& triangle = triangles.Triangle(t);
    for (std::uint32_t k = 0; k < 3; ++k) {
      const std::uint32_t beyond = triangle.m_auNeighbours[k];
      const std::uint32_t next = (k + 1) % 3;
      if (triangle.m_abCut[k] || beyond == CTearPatch::kNone || beyond < t) continue;
      if (!atCut[triangle.m_auVertices[k]] && !atCut[triangle.m_auVertices[next]]) continue;
      const std::uint32_t side = triangles.SideInNeighbour(t, k);
      groups.Join(3 * t + k, 3 * beyond + (side + 1) % 3);
      groups.Join(3 * t + next, 3 * beyond + side);
    }
  }
}

// Where the region of the patch ends, triangles may meet in a vertex alone: away from cuts it has one copy all the
// same.
void CTearSides::FindCopies(const CTearPatch& patch, const std::vector<bool>& atCut, CGroups& groups) {
  const auto slots = static_cast<std::uint32_t>(3 * patch.Triangles().Triangles().size());
  std::vector<std::uint32_t> copyOf(slots, CTearPatch::kNone);
  std::vector<std::uint32_t> onlyCopyOf(patch.Triangles().VertexCount(), CTearPatch::kNone);
  m_auCopies.reserve(slots);
  for (std::uint32_t slot = 0; slot < slots; ++slot) {
    const std::uint32_t vertex = patch.Triangles().Triangle(slot / 3).m_auVertices[slot % 3];
    std::uint32_t& copy = atCut[vertex] ? copyOf[groups.Find(slot)] : onlyCopyOf[vertex];
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
  m_auPieces.assign(triangles.size(), CTearPatch::kNone);
  std::vector<std::uint32_t> left;
  for (std::uint32_t first = 0; first < triangles.size(); ++first) {
    if (m_auPieces[first] != CTearPatch::kNone) continue;
    const auto piece = static_cast<std::uint32_t>(m_uPieces++);
    m_auPieces[first] = piece;
    left.push_back(first);
    while (!left.empty()) {
      const CCutTriangulation::CTriangle& triangle = triangles[left.back()];
      left.pop_back();
      for (std::size_t k = 0; k < 3; ++k) {
        const std::uint32_t beyond = triangle.m_auNeighbours[k];
        if (beyond == CTearPatch::kNone || triangle.m_abCut[k] || m_auPieces[beyond] != CTearPatch::kNone) continue;
        m_auPieces[beyond] = piece;
        left.push_back(beyond);
      }
    }
  }
}
