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

CTearSides::CTearSides(const CTearPatch& patch, const CExportSteps& steps) {
  constexpr double kJoined = 0.4;
  constexpr double kCopied = 0.8;
  const std::vector<bool> atCut = VerticesAtCuts(patch);
  CGroups groups(3 * patch.Triangles().Triangles().size());
  if (JoinCorners(patch, atCut, groups, steps.Part(0, kJoined)) &&
      FindCopies(patch, atCut, groups, steps.Part(kJoined, kCopied)))
    FindPieces(patch, steps.Part(kCopied, 1));
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
bool CTearSides::JoinCorners(const CTearPatch& patch, const std::vector<bool>& atCut, CGroups& groups,
                             const CExportSteps& steps) {
  const CCutTriangulation& triangles = patch.Triangles();
  const auto join = [&](std::uint32_t t) {
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
  };
  return steps.ForBlocks(triangles.Triangles().size(), [&](std::size_t begin, std::size_t end) {
    for (auto t = static_cast<std::uint32_t>(begin); t < end; ++t) join(t);
  });
}

// Where the region of the patch ends, triangles may meet in a vertex alone: away from cuts it has one copy all the
// same.
bool CTearSides::FindCopies(const CTearPatch& patch, const std::vector<bool>& atCut, CGroups& groups,
                            const CExportSteps& steps) {
  const std::span<const CCutTriangulation::CTriangle> triangles = patch.Triangles().Triangles();
  std::vector<std::uint32_t> copyOf(3 * triangles.size(), CTearPatch::kNone);
  std::vector<std::uint32_t> onlyCopyOf(patch.Triangles().VertexCount(), CTearPatch::kNone);
  m_auCopies.reserve(3 * triangles.size());
  m_auVertices.reserve(onlyCopyOf.size());
  m_auTriangles.reserve(onlyCopyOf.size());
  const auto find = [&](std::uint32_t t) {
    const CTearPatch::COrigin& origin = patch.OriginOf(t);
    for (std::uint32_t k = 0; k < 3; ++k) {
      const std::uint32_t vertex = triangles[t].m_auVertices[k];
      std::uint32_t& copy = atCut[vertex] ? copyOf[groups.Find(3 * t + k)] : onlyCopyOf[vertex];
      if (copy == CTearPatch::kNone) {
        copy = static_cast<std::uint32_t>(m_auVertices.size());
        m_auVertices.push_back(vertex);
        m_auTriangles.push_back(t);
        m_abKnown.push_back(false);
      }
      m_auCopies.push_back(copy);
      const bool isCorner = patch.IsCorner(vertex);
      const bool isCentre = !isCorner && patch.MeshVertex(vertex) != CTearPatch::kNone;
      if ((isCorner && !origin.m_bTorn) || (isCentre && origin.m_bWholeLeaf)) m_abKnown[copy] = true;
    }
  };
  return steps.ForBlocks(triangles.size(), [&](std::size_t begin, std::size_t end) {
    for (auto t = static_cast<std::uint32_t>(begin); t < end; ++t) find(t);
  });
}

void CTearSides::FindPieces(const CTearPatch& patch, const CExportSteps& steps) {
  const std::size_t triangles = patch.Triangles().Triangles().size();
  m_auPieces.assign(triangles, CTearPatch::kNone);
  steps.ForBlocks(triangles, [&](std::size_t begin, std::size_t end) {
    for (auto first = static_cast<std::uint32_t>(begin); first < end; ++first) {
      if (m_auPieces[first] == CTearPatch::kNone) SpreadPiece(patch, first);
    }
  });
}

void CTearSides::SpreadPiece(const CTearPatch& patch, std::uint32_t first) {
  const std::span<const CCutTriangulation::CTriangle> triangles = patch.Triangles().Triangles();
  const auto piece = static_cast<std::uint32_t>(m_uPieces++);
  m_auPieces[first] = piece;
  m_auLeft.push_back(first);
  while (!m_auLeft.empty()) {
    const CCutTriangulation::CTriangle& triangle = triangles[m_auLeft.back()];
    m_auLeft.pop_back();
    for (std::size_t k = 0; k < 3; ++k) {
      const std::uint32_t beyond = triangle.m_auNeighbours[k];
      if (beyond == CTearPatch::kNone || triangle.m_abCut[k] || m_auPieces[beyond] != CTearPatch::kNone) continue;
      m_auPieces[beyond] = piece;
      m_auLeft.push_back(beyond);
    }
  }
}
