#include "mesh/CCleanMesh.h"

#include <algorithm>
#include <utility>

#include "base/Memory.h"
#include "mesh/CSideHeights.h"
#include "mesh/CTearCutter.h"
#include "mesh/CTearPatch.h"
#include "mesh/CTearSides.h"
#include "mesh/CTearStrips.h"
#include "mesh/CTornSurface.h"
#include "mesh/TearCuts.h"
#include "quadtree/CQuadTree.h"

double UnderWidthOf(const CExtent& extent) { return std::max(extent.x1 - extent.x0, extent.y1 - extent.y0) / 8.0; }

CCleanMesh::CCleanMesh(const CQuadTree& tree, const CSurfaceMesh& mesh, const CCntrCtrlList& curves,
                       const CCleanMeshOptions& options)
    : m_Extent(tree.Lattice().Extent()),
      m_iCells(tree.Lattice().PointsPerSide() - 1),
      m_afCell{(m_Extent.x1 - m_Extent.x0) / m_iCells, (m_Extent.y1 - m_Extent.y0) / m_iCells},
      m_Options(options),
      m_Plane(m_iCells, options.m_fScale * (m_Extent.x1 - m_Extent.x0),
              options.m_fScale * (m_Extent.y1 - m_Extent.y0)) {
  if (m_Options.m_fUnderWidth <= 0.0) m_Options.m_fUnderWidth = UnderWidthOf(m_Extent);
  AddVertices(tree, mesh);
  const double width = options.m_Gap == TearGap::Under ? m_Options.m_fUnderWidth : 0.0;
  CTearPatch patch(tree, mesh, m_Plane, ReachOf(width, m_afCell, m_iCells));
  AddPlainTriangles(mesh, patch);
  if (patch.Triangles().Triangles().empty()) return;
  CTearCutter cutter(patch.Triangles(), m_Plane);
  CutAlongCurves(patch, cutter, curves, tree.Lattice());
  std::vector<double> meshHeights;
  meshHeights.reserve(m_aVertices.size());
  for (const CVertex& vertex : m_aVertices) meshHeights.push_back(vertex.m_fZ);
  const CTearSides sides(patch);
  const CSideHeights side(patch, sides, options.m_Gap == TearGap::Under);
  const std::vector<double> known = side.KnownOf(meshHeights);
  CTornSurface torn(patch, sides, side.Raised(known), options.m_fHeightScale);
  if (options.m_Gap == TearGap::Wall) torn.SplitAtChanges(cutter);
  if (options.m_bOpenEdges) torn.OpenEdges();
  const std::vector<std::uint32_t> numbers = AddTorn(torn, patch);
  if (options.m_Gap == TearGap::Under) AddStrips(patch, sides, side, known, numbers);
}

CCleanMesh::CVertex CCleanMesh::VertexAt(const CMeshPlace& place, double z) const {
  return {place, z, {m_Plane.ColumnOf(place) / m_iCells, m_Plane.RowOf(place) / m_iCells}};
}

void CCleanMesh::AddVertices(const CQuadTree& tree, const CSurfaceMesh& mesh) {
  std::vector<double> positions;
  ReserveLarge(positions, 3 * mesh.VertexCount());
  positions.resize(3 * mesh.VertexCount());
  mesh.Raise(tree, std::span(positions));
  const int side = m_iCells + 1;
  ReserveLarge(m_aVertices, mesh.VertexCount());
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
  ReserveLarge(m_auTriangles, mesh.Triangles().size());
  mesh.ForEachTriangle([&](std::uint32_t a, std::uint32_t b, std::uint32_t centre, bool /*torn*/) {
    if (patch.HoldsLeaf(centre - mesh.CornerCount())) return;
    for (const std::uint32_t corner : {a, b, centre}) m_auTriangles.push_back(corner);
  });
}

// A vertex of the mesh keeps its number for its first copy.
std::vector<std::uint32_t> CCleanMesh::AddTorn(const CTornSurface& torn, const CTearPatch& patch) {
  const std::span<const std::uint32_t> vertices = torn.Vertices();
  std::vector<std::uint32_t> numbers(vertices.size(), CTearPatch::kNone);
  std::vector<bool> taken(patch.Triangles().VertexCount());
  const auto keep = [&](std::uint32_t copy) {
    const std::uint32_t vertex = vertices[copy];
    const std::uint32_t number = patch.MeshVertex(vertex);
    if (number == CTearPatch::kNone || taken[vertex]) return;
    taken[vertex] = true;
    numbers[copy] = number;
    m_aVertices[number].m_Place = torn.PlaceOf(copy);
    m_aVertices[number].m_fZ = torn.Heights()[copy];
  };
  for (std::uint32_t copy = 0; copy < vertices.size(); ++copy) keep(copy);
  for (std::uint32_t copy = 0; copy < vertices.size(); ++copy) {
    if (numbers[copy] != CTearPatch::kNone) continue;
    numbers[copy] = static_cast<std::uint32_t>(m_aVertices.size());
    m_aVertices.push_back(VertexAt(torn.PlaceOf(copy), torn.Heights()[copy]));
  }
  for (const auto& corners : torn.Corners()) {
    for (const std::uint32_t copy : corners) m_auTriangles.push_back(numbers[copy]);
  }
  if (m_Options.m_Gap != TearGap::Wall) return numbers;
  for (const std::uint32_t copy : torn.Walls()) m_auWalls.push_back(numbers[copy]);
  return numbers;
}

void CCleanMesh::AddStrips(const CTearPatch& patch, const CTearSides& sides, const CSideHeights& side,
                           std::span<const double> known, std::span<const std::uint32_t> numbers) {
  const std::vector<double> heights = side.Raised(known);
  const CFarSides farSides(patch, sides, m_Options.m_fUnderWidth, m_afCell);
  const CTearStrips strips(patch, sides, farSides.Lower(heights, m_Options.m_fHeightScale), m_Options.m_fUnderWidth,
                           m_afCell);
  std::vector<double> z(strips.Vertices().size());
  strips.Raise(side, heights, side.RaisedPlanes(known, heights), z);
  std::vector<std::uint32_t> stripNumbers;
  for (std::size_t v = 0; v < z.size(); ++v) {
    const CTearStrips::CVertex& vertex = strips.Vertices()[v];
    const std::uint32_t joined = strips.JoinedTo(vertex);
    stripNumbers.push_back(joined == CTearStrips::kNone ? static_cast<std::uint32_t>(m_aVertices.size())
                                                        : numbers[joined]);
    if (joined != CTearStrips::kNone) continue;
    const CCellPoint shown = strips.PictureOf(vertex, m_iCells);
    const CCellPoint& place = vertex.m_Above.m_Place;
    m_aVertices.push_back({m_Plane.At(place.x, place.y), z[v], {shown.x / m_iCells, shown.y / m_iCells}});
  }
  for (const auto& corners : strips.Triangles()) {
    for (const std::uint32_t v : corners) m_auStrips.push_back(stripNumbers[v]);
  }
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
