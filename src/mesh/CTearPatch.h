#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "base/ExportProgress.h"
#include "mesh/CCutTriangulation.h"
#include "mesh/CMeshPlane.h"

class CLattice;
class CQuadTree;
class CSurfaceMesh;

/// The triangles of a surface mesh in and around its tears, to be cut along them.
///
/// Leaves as far as `kReach` cells or more from one with a marked triangle belong to it, so that all that a tear may
/// touch, and all that the heights on both sides of it are found from, lies in it. Without a tear it is empty. Linear
/// in the number of leaves.
class CTearPatch {
 public:
  /// In cells one lattice step wide.
  static constexpr int kReach = 5;
  static constexpr std::uint32_t kNone = CCutTriangulation::kNone;

  /// One triangle of a leaf.
  struct COrigin {
    std::uint32_t m_uLeaf = 0;  ///< its number among the leaves of the tree
    std::uint8_t m_uPlace = 0;  ///< its number among those of the leaf
    bool m_bTorn = false;       ///< lies in a tear
    bool m_bWholeLeaf = false;  ///< no triangle of the leaf does
    bool m_bUnit = false;       ///< the leaf is one lattice step wide, and has four triangles
  };

  /// `mesh` must have been built from `tree`; `reach` is at least kReach. Not whole where `steps` do not go on.
  CTearPatch(const CQuadTree& tree, const CSurfaceMesh& mesh, const CMeshPlane& plane, int reach = kReach,
             const CExportSteps& steps = {});

  /// The triangles, whose origins are numbers in `Origin`.
  CCutTriangulation& Triangles() { return m_Triangles; }
  const CCutTriangulation& Triangles() const { return m_Triangles; }
  const COrigin& Origin(std::uint32_t origin) const { return m_aOrigins[origin]; }
  std::size_t OriginCount() const { return m_aOrigins.size(); }
  /// What a triangle was cut from.
  const COrigin& OriginOf(std::uint32_t t) const { return m_aOrigins[m_Triangles.Triangle(t).m_uOrigin]; }
  bool HoldsLeaf(std::size_t leaf) const { return !m_abLeaves.empty() && m_abLeaves[leaf] != 0; }

  /// The vertex of the mesh that a vertex is; kNone for a point of a cut. Its place in lattice coordinates.
  std::uint32_t MeshVertex(std::uint32_t vertex) const {
    return vertex < m_auMeshVertices.size() ? m_auMeshVertices[vertex] : kNone;
  }
  double ColumnOf(std::uint32_t vertex) const { return m_Plane.ColumnOf(m_Triangles.Place(vertex)); }
  double RowOf(std::uint32_t vertex) const { return m_Plane.RowOf(m_Triangles.Place(vertex)); }
  /// Whether it is a lattice point, rather than a centre or a point of a cut.
  bool IsCorner(std::uint32_t vertex) const { return MeshVertex(vertex) < m_uCorners; }
  const CMeshPlane& Plane() const { return m_Plane; }

 private:
  // A triangle of the mesh.
  struct CChosen {
    std::array<std::uint32_t, 3> m_auVertices{};
    std::uint32_t m_uLeaf = 0;
    bool m_bTorn = false;
  };

  bool ChooseLeaves(const CQuadTree& tree, int reach, const CExportSteps& steps);
  bool AddTriangles(const CQuadTree& tree, const CSurfaceMesh& mesh, const CExportSteps& steps);
  bool AddVertices(const CQuadTree& tree, const CSurfaceMesh& mesh, std::span<const CChosen> chosen,
                   std::vector<std::uint32_t>& numbers, const CExportSteps& steps);

  const CMeshPlane& m_Plane;
  std::size_t m_uCorners;
  std::vector<std::uint8_t> m_abLeaves;         ///< by number, 1 for those that belong to it; none where no leaf does
  std::vector<std::uint32_t> m_auMeshVertices;  ///< by vertex
  std::vector<COrigin> m_aOrigins;
  CCutTriangulation m_Triangles;
};
