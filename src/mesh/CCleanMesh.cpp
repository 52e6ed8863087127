#include "mesh/CCleanMesh.h"

#include <algorithm>
#include <utility>

#include "base/Memory.h"
#include "lattice/CLattice.h"
#include "mesh/CSideHeights.h"
#include "mesh/CTearCutter.h"
#include "mesh/CTearPatch.h"
#include "mesh/CTearSides.h"
#include "mesh/CTearStrips.h"
#include "mesh/CTornSurface.h"
#include "mesh/TearCuts.h"
#include "quadtree/CQuadTree.h"

double UnderWidthOf(const CExtent& extent) { return std::max(extent.x1 - extent.x0, extent.y1 - extent.y0) / 8.0; }

CCleanMesh::CCleanMesh(const CQuadTree& tree, CSurfaceMesh mesh, const CCntrCtrlList& curves,
                       const CCleanMeshOptions& options, const CExportSteps& steps)
    : m_Extent(tree.Lattice().Extent()),
      m_iCells(tree.Lattice().PointsPerSide() - 1),
      m_fShare(1.0 / m_iCells),
      m_afCell{(m_Extent.x1 - m_Extent.x0) / m_iCells, (m_Extent.y1 - m_Extent.y0) / m_iCells},
      m_Options(options),
      m_Plane(m_iCells, options.m_fScale * (m_Extent.x1 - m_Extent.x0),
              options.m_fScale * (m_Extent.y1 - m_Extent.y0)) {
  constexpr double kPlain = 0.2;
  if (m_Options.m_fUnderWidth <= 0.0) m_Options.m_fUnderWidth = UnderWidthOf(m_Extent);
  AddVertices(tree, mesh);
  if (!steps.Goes(kPlain / 2)) return;
  const double width = options.m_Gap == TearGap::Under ? m_Options.m_fUnderWidth : 0.0;
  CTearPatch patch(tree, mesh, m_Plane, ReachOf(width, m_afCell, m_iCells));
  TakePlainTriangles(std::move(mesh), patch);
  if (!patch.Triangles().Triangles().empty()) AddPatch(patch, tree.Lattice(), curves, steps.Part(kPlain, 1));
}

void CCleanMesh::AddVertices(const CQuadTree& tree, const CSurfaceMesh& mesh) {
  // The room behind them is for what cuts add; it costs nothing unused.
  ReserveLarge(m_aRaised, mesh.VertexCount() + mesh.VertexCount() / 8);
  const std::span<const double> heights = tree.Lattice().Heights();
  const auto side = static_cast<std::uint32_t>(m_iCells) + 1;
  const auto add = [&](std::uint32_t point, double offset, double z) {
    const std::uint32_t row = point / side;
    m_aRaised.push_back({m_Plane.At(point % side + offset, row + offset), z});
  };
  for (const std::uint32_t point : mesh.Points()) add(point, 0.0, heights[point]);
  for (const CLeaf& leaf : tree.Leaves())
    add(leaf.m_uPoint, 0.5 * leaf.m_uSize, CSurfaceMesh::CentreHeight(tree, leaf, heights));
}

// Leaves of the patch are few, and what is behind them moves up.
void CCleanMesh::TakePlainTriangles(CSurfaceMesh&& mesh, const CTearPatch& patch) {
  const auto corners = static_cast<std::uint32_t>(mesh.CornerCount());
  m_aTriangles = std::move(mesh).TakeTriangles();
  if (patch.Triangles().Triangles().empty()) return;
  std::erase_if(m_aTriangles, [&](const CSurfaceMesh::CTriangle& t) { return patch.HoldsLeaf(t[2] - corners); });
}

void CCleanMesh::AddPatch(CTearPatch& patch, const CLattice& lattice, const CCntrCtrlList& curves,
                          const CExportSteps& steps) {
  constexpr double kCut = 0.3;
  constexpr double kRaised = 0.9;
  CTearCutter cutter(patch.Triangles(), m_Plane);
  if (!CutAlongCurves(patch, cutter, curves, lattice, steps.Part(0, kCut))) return;
  const CTearSides sides(patch);
  const CExportSteps raising = steps.Part(kCut, kRaised);
  const auto heightOf = [this](std::uint32_t vertex) { return m_aRaised[vertex].m_fZ; };
  if (m_Options.m_Gap != TearGap::Under) {
    CTornSurface torn(patch, sides, CSideHeights::RaisedOnce(patch, sides, heightOf, raising),
                      m_Options.m_fHeightScale);
    if (!steps.Goes(kRaised)) return;
    if (m_Options.m_Gap == TearGap::Wall) torn.SplitAtChanges(cutter);
    if (m_Options.m_bOpenEdges) torn.OpenEdges();
    AddTorn(torn, patch);
    return;
  }
  const CSideHeights side(patch, sides, true, raising);
  if (!steps.Goes(kRaised)) return;
  std::vector<double> known;
  for (const std::uint32_t vertex : side.KnownVertices()) known.push_back(heightOf(vertex));
  CTornSurface torn(patch, sides, side.Raised(known), m_Options.m_fHeightScale);
  if (m_Options.m_bOpenEdges) torn.OpenEdges();
  const std::vector<std::uint32_t> numbers = AddTorn(torn, patch);
  AddStrips(patch, sides, side, known, numbers);
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
    m_aRaised[number] = {torn.PlaceOf(copy), torn.Heights()[copy]};
  };
  for (std::uint32_t copy = 0; copy < vertices.size(); ++copy) keep(copy);
  for (std::uint32_t copy = 0; copy < vertices.size(); ++copy) {
    if (numbers[copy] != CTearPatch::kNone) continue;
    numbers[copy] = static_cast<std::uint32_t>(m_aRaised.size());
    m_aRaised.push_back({torn.PlaceOf(copy), torn.Heights()[copy]});
  }
  for (const auto& [a, b, c] : torn.Corners()) m_aTriangles.push_back({numbers[a], numbers[b], numbers[c]});
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
    stripNumbers.push_back(joined == CTearStrips::kNone ? static_cast<std::uint32_t>(m_aRaised.size())
                                                        : numbers[joined]);
    if (joined != CTearStrips::kNone) continue;
    const CCellPoint shown = strips.PictureOf(vertex, m_iCells);
    const CCellPoint& place = vertex.m_Above.m_Place;
    m_aRaised.push_back({m_Plane.At(place.x, place.y), z[v]});
    m_aShown.push_back({shown.x / m_iCells, shown.y / m_iCells});
  }
  for (const auto& corners : strips.Triangles()) {
    for (const std::uint32_t v : corners) m_auStrips.push_back(stripNumbers[v]);
  }
}

Vector3 CCleanMesh::Position(std::size_t vertex) const {
  const CRaised& v = m_aRaised[vertex];
  const double width = m_Extent.x1 - m_Extent.x0;
  const double height = m_Extent.y1 - m_Extent.y0;
  return {m_Extent.x0 + m_Plane.ColumnOf(v.m_Place) * width / m_iCells,
          m_Extent.y0 + m_Plane.RowOf(v.m_Place) * height / m_iCells, v.m_fZ};
}
