#include "mesh/CCleanMesh.h"

#include <utility>

#include "constraints/TearLines.h"
#include "mesh/CEndLeader.h"
#include "mesh/CSideHeights.h"
#include "mesh/CTearCutter.h"
#include "mesh/CTearPatch.h"
#include "mesh/CTearSides.h"
#include "mesh/CTornSurface.h"
#include "quadtree/CQuadTree.h"

namespace {

// Cuts the patch along all curves and the ways that join their ends.
void CutAll(CTearPatch& patch, CTearCutter& cutter, const std::vector<CGridSegment>& lines) {
  for (const CGridSegment& s : lines) cutter.Cut(patch.Plane().At(s.x0, s.y0), patch.Plane().At(s.x1, s.y1));
  CEndLeader(patch, cutter).LeadAll();
}

}  // namespace

CCleanMesh::CCleanMesh(const CQuadTree& tree, const CSurfaceMesh& mesh, const CCntrCtrlList& curves,
                       const CCleanMeshOptions& options)
    : m_Extent(tree.Lattice().Extent()),
      m_iCells(tree.Lattice().PointsPerSide() - 1),
      m_Options(options),
      m_Plane(m_iCells, options.m_fScale * (m_Extent.x1 - m_Extent.x0),
              options.m_fScale * (m_Extent.y1 - m_Extent.y0)) {
  AddVertices(tree, mesh);
  CTearPatch patch(tree, mesh, m_Plane);
  AddPlainTriangles(mesh, patch);
  if (patch.Triangles().Triangles().empty()) return;
  CTearCutter cutter(patch.Triangles(), m_Plane);
  CutAll(patch, cutter, TearLines(curves, tree.Lattice()));
  std::vector<double> known;
  known.reserve(m_aVertices.size());
  for (const CVertex& vertex : m_aVertices) known.push_back(vertex.m_fZ);
  const CTearSides sides(patch);
  CTornSurface torn(patch, sides, CSideHeights(patch, sides).Compute(known), options.m_fHeightScale);
  if (options.m_Gap == TearGap::Wall) torn.SplitAtChanges(cutter);
  AddTorn(torn, patch);
}

CCleanMesh::CVertex CCleanMesh::VertexAt(const CMeshPlace& place, double z) const {
  return {place, z, {m_Plane.ColumnOf(place) / m_iCells, m_Plane.RowOf(place) / m_iCells}};
}

void CCleanMesh::AddVertices(const CQuadTree& tree, const CSurfaceMesh& mesh) {
  std::vector<double> positions(3 * mesh.VertexCount());
  mesh.Raise(tree, std::span(positions));
  const int side = m_iCells + 1;
  m_aVertices.reserve(mesh.VertexCount());
  const auto add = [&](double column, double row) {
    m_aVertices.push_back(VertexAt(m_Plane.At(column, row), positions[3 * m_aVertices.size() + 2]));
  };
  for (const std::uint32_t point : mesh.Points()) {
    const int row = static_cast<int>(point) / side;
    add(static_cast<int>(point) % side, row);
  }
  for (const CLeaf& leaf : tree.Leaves()) {
    add(leaf.m_pCell->X0() + 0.5 * leaf.m_uSize, leaf.m_pCell->Y0() + 0.5 * leaf.m_uSize);
  }
}

void CCleanMesh::AddPlainTriangles(const CSurfaceMesh& mesh, const CTearPatch& patch) {
  m_auTriangles.reserve(mesh.Triangles().size());
  mesh.ForEachTriangle([&](std::uint32_t a, std::uint32_t b, std::uint32_t centre, bool /*torn*/) {
    if (!patch.HoldsLeaf(centre - mesh.CornerCount())) m_auTriangles.insert(m_auTriangles.end(), {a, b, centre});
  });
}

// A vertex of the mesh keeps its number for its first copy.
void CCleanMesh::AddTorn(const CTornSurface& torn, const CTearPatch& patch) {
  const std::span<const std::uint32_t> vertices = torn.Vertices();
  std::vector<std::uint32_t> numbers(vertices.size(), CTearPatch::kNone);
  std::vector<bool> taken(patch.Triangles().VertexCount());
  const auto keep = [&](std::uint32_t copy) {
    const std::uint32_t vertex = vertices[copy];
    const std::uint32_t number = patch.MeshVertex(vertex);
    if (number == CTearPatch::kNone || taken[vertex]) return;
    taken[vertex] = true;
    numbers[copy] = number;
    m_aVertices[number].m_fZ = torn.Heights()[copy];
  };
  for (std::uint32_t copy = 0; copy < vertices.size(); ++copy) keep(copy);
  for (std::uint32_t copy = 0; copy < vertices.size(); ++copy) {
    if (numbers[copy] != CTearPatch::kNone) continue;
    numbers[copy] = static_cast<std::uint32_t>(m_aVertices.size());
    m_aVertices.push_back(VertexAt(patch.Triangles().Place(vertices[copy]), torn.Heights()[copy]));
  }
  for (const auto& corners : torn.Corners()) {
    for (const std::uint32_t copy : corners) m_auTriangles.push_back(numbers[copy]);
  }
  if (m_Options.m_Gap != TearGap::Wall) return;
  for (const std::uint32_t copy : torn.Walls()) m_auWalls.push_back(numbers[copy]);
}

Vector3 CCleanMesh::Position(std::size_t vertex) const {
  const CVertex& v = m_aVertices[vertex];
  const double width = m_Extent.x1 - m_Extent.x0;
  const double height = m_Extent.y1 - m_Extent.y0;
  return {m_Extent.x0 + m_Plane.ColumnOf(v.m_Place) * width / m_iCells,
          m_Extent.y0 + m_Plane.RowOf(v.m_Place) * height / m_iCells, v.m_fZ};
}

std::array<float, 3> CCleanMesh::Written(std::size_t vertex) const {
  const CVertex& v = m_aVertices[vertex];
  return {m_Plane.WrittenX(v.m_Place), m_Plane.WrittenY(v.m_Place),
          static_cast<float>(m_Options.m_fHeightScale * v.m_fZ)};
}
