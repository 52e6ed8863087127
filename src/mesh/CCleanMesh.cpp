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
      m_Plane(m_iCells, options.m_fScale * (m_Extent.x1 - m_Extent.x0), options.m_fScale * (m_Extent.y1 - m_Extent.y0)),
      m_uCorners(mesh.CornerCount()) {
  constexpr double kPlain = 0.2;
  if (m_Options.m_fUnderWidth <= 0.0) m_Options.m_fUnderWidth = UnderWidthOf(m_Extent);
  AddVertices(tree, mesh);
  if (!steps.Goes(kPlain / 2)) return;
  const double width = options.m_Gap == TearGap::Under ? m_Options.m_fUnderWidth : 0.0;
  CTearPatch patch(tree, mesh, m_Plane, ReachOf(width, m_afCell, m_iCells), steps.Part(kPlain / 2, kPlain));
  if (!steps.Goes(kPlain)) return;
  TakePlainTriangles(std::move(mesh), patch);
  if (!patch.Triangles().Triangles().empty()) AddPatch(patch, tree.Lattice(), curves, steps.Part(kPlain, 1));
}

void CCleanMesh::AddVertices(const CQuadTree& tree, const CSurfaceMesh& mesh) {
  // The room behind them is for what cuts add; it costs nothing unused.
  const std::size_t room = mesh.VertexCount() + mesh.VertexCount() / 8;
  ReserveLarge(m_aWritten, room);
  ReserveLarge(m_afZ, room);
  if (m_Options.m_bPictures) ReserveLarge(m_aPictures, room);
  const std::span<const double> heights = tree.Lattice().Heights();
  const auto side = static_cast<std::uint32_t>(m_iCells) + 1;
  const std::vector<float> xs = m_Plane.WrittenColumns();
  const std::vector<float> ys = m_Plane.WrittenRows();
  const auto shown = [share = 0.5 * m_fShare](std::uint32_t half) { return static_cast<float>(half * share); };
  const auto add = [&](std::uint32_t point, std::uint32_t size, double z) {
    const std::uint32_t row = point / side;
    const std::uint32_t x = 2 * (point - row * side) + size;
    const std::uint32_t y = 2 * row + size;
    m_aWritten.push_back({xs[x], ys[y], static_cast<float>(m_Options.m_fHeightScale * z)});
    m_afZ.push_back(z);
    if (m_Options.m_bPictures) m_aPictures.push_back({shown(x), shown(y)});
  };
  for (const std::uint32_t point : mesh.Points()) add(point, 0, heights[point]);
  for (const CLeaf& leaf : tree.Leaves())
    add(leaf.m_uPoint, leaf.m_uSize, CSurfaceMesh::CentreHeight(tree, leaf, heights));
}

void CCleanMesh::Put(std::uint32_t vertex, const CMeshPlace& place, double z,
                     const CSurfaceMesh::CTexturePoint& picture) {
  if (vertex >= m_aWritten.size()) {
    m_aWritten.resize(vertex + std::size_t{1});
    m_afZ.resize(m_aWritten.size());
    if (m_Options.m_bPictures) m_aPictures.resize(m_aWritten.size());
  }
  m_aWritten[vertex] = {m_Plane.WrittenX(place), m_Plane.WrittenY(place),
                        static_cast<float>(m_Options.m_fHeightScale * z)};
  m_afZ[vertex] = z;
  if (m_Options.m_bPictures) m_aPictures[vertex] = {static_cast<float>(picture.u), static_cast<float>(picture.v)};
}

// Leaves of the patch are few, and what is behind them moves up.
void CCleanMesh::TakePlainTriangles(CSurfaceMesh&& mesh, const CTearPatch& patch) {
  const auto corners = static_cast<std::uint32_t>(mesh.CornerCount());
  m_aTriangles = std::move(mesh).TakeTriangles();
  if (!patch.Triangles().Triangles().empty())
    std::erase_if(m_aTriangles, [&](const CSurfaceMesh::CTriangle& t) { return patch.HoldsLeaf(t[2] - corners); });
  m_uFanTriangles = m_aTriangles.size();
}

void CCleanMesh::AddPatch(CTearPatch& patch, const CLattice& lattice, const CCntrCtrlList& curves,
                          const CExportSteps& steps) {
  constexpr double kCut = 0.3;
  constexpr double kSides = 0.4;
  constexpr double kRaised = 0.75;
  CTearCutter cutter(patch.Triangles(), m_Plane);
  if (!CutAlongCurves(patch, cutter, curves, lattice, steps.Part(0, kCut))) return;
  const CTearSides sides(patch, steps.Part(kCut, kSides));
  if (!steps.Goes(kSides)) return;
  if (m_Options.m_Gap == TearGap::Under) {
    AddUnder(patch, sides, steps.Part(kSides, 1));
    return;
  }
  const auto heightOf = [this](std::uint32_t vertex) { return m_afZ[vertex]; };
  std::vector<double> heights = CSideHeights::RaisedOnce(patch, sides, heightOf, steps.Part(kSides, kRaised));
  if (!steps.Goes(kRaised)) return;
  CTornSurface torn(patch, sides, std::move(heights), m_Options.m_fHeightScale);
  AddTornOpenOrWalled(torn, patch, cutter, steps.Part(kRaised, 1));
}

void CCleanMesh::AddTornOpenOrWalled(CTornSurface& torn, const CTearPatch& patch, CTearCutter& cutter,
                                     const CExportSteps& steps) {
  constexpr double kSplit = 0.3;
  constexpr double kAdded = 0.7;
  if (m_Options.m_Gap == TearGap::Wall && !torn.SplitAtChanges(cutter, steps.Part(0, kSplit))) return;
  if (!steps.Goes(kSplit)) return;
  if (m_Options.m_bOpenEdges) torn.OpenEdges();
  const std::vector<std::uint32_t> numbers = AddTorn(torn, patch, steps.Part(kSplit, kAdded));
  if (m_Options.m_Gap != TearGap::Wall || !steps.Goes(kAdded)) return;
  for (const std::uint32_t copy : torn.Walls(steps.Part(kAdded, 1))) m_auWalls.push_back(numbers[copy]);
}

void CCleanMesh::AddUnder(CTearPatch& patch, const CTearSides& sides, const CExportSteps& steps) {
  constexpr double kFound = 0.5;
  constexpr double kAdded = 0.6;
  const CSideHeights side(patch, sides, true, steps.Part(0, kFound));
  if (!steps.Goes(kFound)) return;
  std::vector<double> known;
  for (const std::uint32_t vertex : side.KnownVertices()) known.push_back(m_afZ[vertex]);
  CTornSurface torn(patch, sides, side.Raised(known), m_Options.m_fHeightScale);
  if (m_Options.m_bOpenEdges) torn.OpenEdges();
  const std::vector<std::uint32_t> numbers = AddTorn(torn, patch, steps.Part(kFound, kAdded));
  if (steps.Goes(kAdded)) AddStrips(patch, sides, side, known, numbers, steps.Part(kAdded, 1));
}

// A vertex of the mesh keeps its number for its first copy.
std::vector<std::uint32_t> CCleanMesh::AddTorn(const CTornSurface& torn, const CTearPatch& patch,
                                               const CExportSteps& steps) {
  constexpr double kKept = 0.4;
  constexpr double kAdded = 0.7;
  const std::span<const std::uint32_t> vertices = torn.Vertices();
  std::vector<std::uint32_t> numbers(vertices.size(), CTearPatch::kNone);
  std::vector<bool> taken(patch.Triangles().VertexCount());
  const auto put = [&](std::size_t copy) {
    const CMeshPlace place = torn.PlaceOf(static_cast<std::uint32_t>(copy));
    Put(numbers[copy], place, torn.Heights()[copy], PictureAt(place));
  };
  const auto keep = [&](std::size_t begin, std::size_t end) {
    for (std::size_t copy = begin; copy < end; ++copy) {
      const std::uint32_t number = patch.MeshVertex(vertices[copy]);
      if (number == CTearPatch::kNone || taken[vertices[copy]]) continue;
      taken[vertices[copy]] = true;
      numbers[copy] = number;
      put(copy);
    }
  };
  const auto add = [&](std::size_t begin, std::size_t end) {
    for (std::size_t copy = begin; copy < end; ++copy) {
      if (numbers[copy] != CTearPatch::kNone) continue;
      numbers[copy] = static_cast<std::uint32_t>(m_aWritten.size());
      put(copy);
    }
  };
  if (!steps.Part(0, kKept).ForBlocks(vertices.size(), keep) ||
      !steps.Part(kKept, kAdded).ForBlocks(vertices.size(), add))
    return numbers;
  for (const auto& [copy, moved] : torn.Moved()) {
    const CMeshPlace& place = patch.Triangles().Place(vertices[copy]);
    if (m_Plane.AreOnOneBorder(place, place))
      m_aFeet.push_back({numbers[copy], {m_Plane.WrittenX(place), m_Plane.WrittenY(place), moved.m_fFoot}});
  }
  for (const auto& [a, b, c] : torn.Corners()) m_aTriangles.push_back({numbers[a], numbers[b], numbers[c]});
  return numbers;
}

void CCleanMesh::AddStrips(const CTearPatch& patch, const CTearSides& sides, const CSideHeights& side,
                           std::span<const double> known, std::span<const std::uint32_t> numbers,
                           const CExportSteps& steps) {
  constexpr double kHeights = 0.05;
  constexpr double kFar = 0.1;
  constexpr double kLower = 0.15;
  constexpr double kMade = 0.8;
  constexpr double kPlanes = 0.85;
  constexpr double kRaised = 0.9;
  const std::vector<double> heights = side.Raised(known);
  if (!steps.Goes(kHeights)) return;
  const CFarSides farSides(patch, sides, m_Options.m_fUnderWidth, m_afCell);
  if (!steps.Goes(kFar)) return;
  std::vector<CFarSide> lower = farSides.Lower(heights, m_Options.m_fHeightScale);
  if (!steps.Goes(kLower)) return;
  const CTearStrips strips(patch, sides, std::move(lower), m_Options.m_fUnderWidth, m_afCell,
                           steps.Part(kLower, kMade));
  if (!steps.Goes(kMade)) return;
  const std::vector<CSideHeights::CPlane> planes = side.RaisedPlanes(known, heights);
  if (!steps.Goes(kPlanes)) return;
  std::vector<double> z(strips.Vertices().size());
  strips.Raise(side, heights, planes, z);
  if (!steps.Goes(kRaised)) return;
  std::vector<std::uint32_t> stripNumbers;
  for (std::size_t v = 0; v < z.size(); ++v) {
    const CTearStrips::CVertex& vertex = strips.Vertices()[v];
    const std::uint32_t joined = strips.JoinedTo(vertex);
    stripNumbers.push_back(joined == CTearStrips::kNone ? static_cast<std::uint32_t>(m_aWritten.size())
                                                        : numbers[joined]);
    if (joined != CTearStrips::kNone) continue;
    const CCellPoint shown = strips.PictureOf(vertex, m_iCells);
    const CCellPoint& place = vertex.m_Above.m_Place;
    m_aShown.push_back({shown.x / m_iCells, shown.y / m_iCells});
    Put(stripNumbers.back(), m_Plane.At(place.x, place.y), z[v], m_aShown.back());
  }
  for (const auto& corners : strips.Triangles()) {
    for (const std::uint32_t v : corners) m_auStrips.push_back(stripNumbers[v]);
  }
}

Vector3 CCleanMesh::Position(std::size_t vertex) const {
  const CMeshPlace place = PlaceOf(vertex);
  const double width = m_Extent.x1 - m_Extent.x0;
  const double height = m_Extent.y1 - m_Extent.y0;
  return {m_Extent.x0 + m_Plane.ColumnOf(place) * width / m_iCells,
          m_Extent.y0 + m_Plane.RowOf(place) * height / m_iCells, m_afZ[vertex]};
}
