#include "mesh/CClosedTears.h"

#include <algorithm>
#include <cmath>

#include "lattice/CLattice.h"
#include "mesh/CCleanMesh.h"
#include "mesh/CTearCutter.h"
#include "mesh/TearCuts.h"
#include "model/CSurfaceMesh.h"
#include "quadtree/CQuadTree.h"

namespace {

// Of the range of the heights: a step that has grown from the other side to this is no noise of the solver.
constexpr double kTurned = 1e-4;

void Put(std::vector<float>& array, std::size_t at, const CCellPoint& p) {
  array[at] = static_cast<float>(p.x);
  array[at + 1] = static_cast<float>(p.y);
}

}  // namespace

CClosedTears::CClosedTears(const CQuadTree& tree, const CSurfaceMesh& mesh, const CCntrCtrlList& curves, bool under)
    : m_Extent(tree.Lattice().Extent()),
      m_iCells(tree.Lattice().PointsPerSide() - 1),
      m_afCell{(m_Extent.x1 - m_Extent.x0) / m_iCells, (m_Extent.y1 - m_Extent.y0) / m_iCells},
      m_fWidth(under ? UnderWidthOf(m_Extent) : 0.0),
      m_Plane(m_iCells, m_Extent.x1 - m_Extent.x0, m_Extent.y1 - m_Extent.y0),
      m_Patch(tree, mesh, m_Plane, ReachOf(m_fWidth, m_afCell, m_iCells)) {
  mesh.ForEachTriangle([&](std::uint32_t a, std::uint32_t b, std::uint32_t centre, bool /*torn*/) {
    if (!m_Patch.HoldsLeaf(centre - mesh.CornerCount())) m_auPlain.insert(m_auPlain.end(), {a, b, centre});
  });
  if (m_Patch.Triangles().Triangles().empty()) return;
  CTearCutter cutter(m_Patch.Triangles(), m_Plane);
  CutAlongCurves(m_Patch, cutter, curves, tree.Lattice());
  AddTriangles();
}

CCellPoint CClosedTears::ModelPoint(const CCellPoint& p) const {
  return {m_Extent.x0 + p.x * m_afCell[0], m_Extent.y0 + p.y * m_afCell[1]};
}

void CClosedTears::AddTriangles() {
  m_Sides.emplace(m_Patch);
  m_Side.emplace(m_Patch, *m_Sides, m_fWidth > 0.0);
  if (m_fWidth > 0.0) m_FarSides.emplace(m_Patch, *m_Sides, m_fWidth, m_afCell);
  const std::size_t copies = m_Sides->CopyCount();
  m_afKnown.resize(m_Side->KnownVertices().size());
  m_afHeights.resize(copies);
  m_aPlanes.resize(m_Side->PlaneCount());
  m_afPositions.resize(3 * copies);
  m_afNormals.resize(3 * copies);
  m_afShown.resize(2 * copies);
  for (std::uint32_t copy = 0; copy < copies; ++copy) {
    const std::uint32_t vertex = m_Sides->VertexOf(copy);
    const CCellPoint place = ModelPoint({m_Patch.ColumnOf(vertex), m_Patch.RowOf(vertex)});
    Put(m_afPositions, 3 * std::size_t{copy}, place);
    Put(m_afShown, 2 * std::size_t{copy}, place);
  }
  for (std::uint32_t t = 0; t < m_Patch.Triangles().Triangles().size(); ++t) {
    for (std::uint32_t k = 0; k < 3; ++k) m_auTriangles.push_back(m_Sides->CopyOf(t, k));
  }
}

void CClosedTears::MakeStrips() {
  m_afStripsMadeFrom = m_afHeights;
  m_Strips.emplace(m_Patch, *m_Sides, m_FarSides->Lower(m_afHeights, 1.0), m_fWidth, m_afCell);
  const auto copies = static_cast<std::uint32_t>(m_Sides->CopyCount());
  const std::size_t vertices = m_Strips->Vertices().size();
  m_afStrips.resize(vertices);
  m_afPositions.resize(3 * (copies + vertices));
  m_afNormals.resize(3 * (copies + vertices));
  m_afShown.resize(2 * (copies + vertices));
  for (std::size_t v = 0; v < vertices; ++v) {
    const CTearStrips::CVertex& vertex = m_Strips->Vertices()[v];
    Put(m_afPositions, 3 * (copies + v), ModelPoint(vertex.m_Above.m_Place));
    Put(m_afShown, 2 * (copies + v), ModelPoint(m_Strips->PictureOf(vertex, m_iCells)));
  }
  m_auStrips.clear();
  for (const auto& corners : m_Strips->Triangles()) {
    for (const std::uint32_t v : corners) m_auStrips.push_back(copies + v);
  }
}

void CClosedTears::Raise(std::span<const float> mesh) {
  if (!m_Side) return;
  const std::span<const std::uint32_t> known = m_Side->KnownVertices();
  for (std::size_t k = 0; k < known.size(); ++k) m_afKnown[k] = mesh[3 * std::size_t{known[k]} + 2];
  m_Side->Raise(m_afKnown, m_afHeights);
  if (m_FarSides && !m_afKnown.empty()) {
    const auto [low, high] = std::ranges::minmax(m_afKnown);
    if (!m_Strips || m_FarSides->HaveTurned(m_afStripsMadeFrom, m_afHeights, kTurned * (high - low))) MakeStrips();
    m_Side->RaisePlanes(m_afKnown, m_afHeights, m_aPlanes);
    m_Strips->Raise(*m_Side, m_afHeights, m_aPlanes, m_afStrips);
  }
  std::size_t v = 0;
  for (const double z : m_afHeights) m_afPositions[3 * v++ + 2] = static_cast<float>(z);
  for (const double z : m_afStrips) m_afPositions[3 * v++ + 2] = static_cast<float>(z);
}

// Those of the triangles around each vertex, the larger ones counting more.
void CClosedTears::AddNormals(std::span<const std::uint32_t> triangles) {
  const auto at = [this](std::uint32_t v) {
    const float* p = &m_afPositions[3 * std::size_t{v}];
    return Vector3{p[0], p[1], p[2]};
  };
  for (std::size_t t = 0; t < triangles.size(); t += 3) {
    const Vector3 first = at(triangles[t]);
    const Vector3 area = Cross(at(triangles[t + 1]) - first, at(triangles[t + 2]) - first);
    for (std::size_t k = 0; k < 3; ++k) {
      float* n = &m_afNormals[3 * std::size_t{triangles[t + k]}];
      n[0] += static_cast<float>(area.x);
      n[1] += static_cast<float>(area.y);
      n[2] += static_cast<float>(area.z);
    }
  }
}

void CClosedTears::RaiseNormals(std::span<const float> mesh) {
  if (!m_Side) return;
  std::ranges::fill(m_afNormals, 0.0F);
  AddNormals(m_auTriangles);
  AddNormals(m_auStrips);
  for (std::uint32_t copy = 0; copy < m_Sides->CopyCount(); ++copy) {
    if (!m_Sides->IsKnown(copy)) continue;
    const float* n = &mesh[3 * std::size_t{m_Patch.MeshVertex(m_Sides->VertexOf(copy))}];
    if (n[0] * n[0] + n[1] * n[1] + n[2] * n[2] > 0.0F) std::copy_n(n, 3, &m_afNormals[3 * std::size_t{copy}]);
  }
  for (std::size_t v = 0; v < m_afNormals.size(); v += 3) {
    float* n = &m_afNormals[v];
    const float length = std::sqrt(n[0] * n[0] + n[1] * n[1] + n[2] * n[2]);
    for (std::size_t axis = 0; axis < 3; ++axis) n[axis] = length > 0.0F ? n[axis] / length : axis == 2 ? 1.0F : 0.0F;
  }
  // A strip goes on smoothly from the side that it belongs to.
  for (std::size_t v = 0; v < m_afStrips.size(); ++v) {
    const std::uint32_t joined = m_Strips->JoinedTo(m_Strips->Vertices()[v]);
    if (joined == CTearStrips::kNone) continue;
    std::copy_n(&m_afNormals[3 * std::size_t{joined}], 3, &m_afNormals[3 * (m_Sides->CopyCount() + v)]);
  }
}
