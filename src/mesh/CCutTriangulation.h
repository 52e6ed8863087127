#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "base/ExportProgress.h"
#include "mesh/CMeshPlane.h"

/// Triangles of the plane, counter-clockwise, in which every side is shared by two or lies on the rim; any side may be
/// cut.
///
/// Points are only added by splitting triangles, and no split is made that would leave one without area or turned
/// over. So the triangles cover the same region without gap or overlap whatever is done, but where the rim itself is
/// split by a point off it.
class CCutTriangulation {
 public:
  static constexpr std::uint32_t kNone = 0xFFFFFFFF;

  /// Side k joins corner k to corner (k + 1) % 3.
  struct CTriangle {
    std::array<std::uint32_t, 3> m_auVertices{};
    std::array<std::uint32_t, 3> m_auNeighbours{kNone, kNone, kNone};  ///< by side; kNone at the rim
    std::uint32_t m_uOrigin = 0;                                       ///< given by the user, handed on to its parts
    std::array<bool, 3> m_abCut{};                                     ///< by side
  };
  /// One corner of one triangle.
  struct CCorner {
    std::uint32_t m_uTriangle = kNone;
    std::uint32_t m_uPlace = 0;  ///< 0 to 2
  };

  // Making it: vertices and triangles, then `Link`.
  /// Makes room for so many triangles, and the vertices that they have.
  void Reserve(std::size_t triangles);
  /// Adds a vertex; its number.
  std::uint32_t AddVertex(const CMeshPlace& place);
  /// Adds a triangle with positive area.
  void AddTriangle(const std::array<std::uint32_t, 3>& vertices, std::uint32_t origin);
  /// Finds who is whose neighbour. False, and not all, where `steps` do not go on.
  bool Link(const CExportSteps& steps = {});

  /// What there is.
  std::size_t VertexCount() const { return m_aPlaces.size(); }
  const CMeshPlace& Place(std::uint32_t vertex) const { return m_aPlaces[vertex]; }
  std::span<const CTriangle> Triangles() const { return m_aTriangles; }
  const CTriangle& Triangle(std::uint32_t t) const { return m_aTriangles[t]; }
  /// Vertex `k` (counted on beyond 2) of a corner's triangle, from the corner itself: 0.
  std::uint32_t Vertex(const CCorner& corner, std::uint32_t k) const {
    return m_aTriangles[corner.m_uTriangle].m_auVertices[(corner.m_uPlace + k) % 3];
  }
  /// The corners around a vertex, counter-clockwise; at the rim from the side that lies on it.
  void CornersAround(std::uint32_t vertex, std::vector<CCorner>& corners) const;
  /// The place of side `k` in the list of its neighbour.
  std::uint32_t SideInNeighbour(std::uint32_t t, std::uint32_t k) const;
  /// Calls `visit(t, k, beyond, there)` once for every cut between two triangles: side `k` of triangle `t` is side
  /// `there` of triangle `beyond`, which has the larger number.
  template <typename Visit>
  void ForEachCut(Visit&& visit) const {
    for (std::uint32_t t = 0; t < m_aTriangles.size(); ++t) {
      for (std::uint32_t k = 0; k < 3; ++k) {
        const std::uint32_t beyond = m_aTriangles[t].m_auNeighbours[k];
        if (m_aTriangles[t].m_abCut[k] && beyond != kNone && beyond > t) visit(t, k, beyond, SideInNeighbour(t, k));
      }
    }
  }

  /// Splits side `k` of a triangle, and the triangle beyond it, by a new vertex at or near the side; its parts are as
  /// cut as it was. Nothing, and no vertex, where one of the parts would have no area.
  std::optional<std::uint32_t> SplitSide(std::uint32_t t, std::uint32_t k, const CMeshPlace& place);
  /// Splits a triangle in three. Nothing where the place does not lie inside it.
  std::optional<std::uint32_t> SplitTriangle(std::uint32_t t, const CMeshPlace& place);
  /// Puts the other diagonal of the two triangles at side `k` in its place; both are then part of the larger one's
  /// origin. A cut goes round by way of `through`, one of the two corners opposite the side. False, and nothing
  /// changed, where one of the new triangles would have no area or the side lies on the rim.
  bool Flip(std::uint32_t t, std::uint32_t k, std::uint32_t through);
  /// Cuts the side between two vertices. False where there is none.
  bool Cut(std::uint32_t from, std::uint32_t to);

 private:
  void LinkSide(std::uint32_t slot, std::vector<std::uint32_t>& first, std::vector<std::uint32_t>& next);
  bool HasArea(std::uint32_t a, std::uint32_t b, const CMeshPlace& c) const {
    return Turn(m_aPlaces[a], m_aPlaces[b], c) > 0;
  }
  void Replace(std::uint32_t t, std::uint32_t oldNeighbour, std::uint32_t neighbour);
  void SplitHalf(std::uint32_t t, std::uint32_t k, std::uint32_t vertex, std::uint32_t part);
  void Settle(std::uint32_t t);
  void TurnSide(const CCorner& here, const CCorner& beyond);
  void SetCut(std::uint32_t t, std::uint32_t k, bool cut);

  std::vector<CMeshPlace> m_aPlaces;
  std::vector<std::uint32_t> m_auTriangleAt;  ///< one of those around each vertex
  std::vector<CTriangle> m_aTriangles;
};
