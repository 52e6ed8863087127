#include "drawing/CSurfaceArrays.h"

#include "model/CGrid.h"
#include "quadtree/CEdge.h"
#include "quadtree/CQuadTree.h"

namespace {

void Put(std::vector<float>& array, std::size_t vertex, const Vector3& v) {
  array[3 * vertex] = static_cast<float>(v.x);
  array[3 * vertex + 1] = static_cast<float>(v.y);
  array[3 * vertex + 2] = static_cast<float>(v.z);
}

}  // namespace

bool CSurfaceArrays::HasChanged(CStamp& seen, const CGrid& grid, double length) {
  const CStamp now{grid.Surface().Tree().Revision(), grid.Surface().Revision(), length};
  if (seen == now) return false;
  seen = now;
  return true;
}

void CSurfaceArrays::RefreshSurface(const CGrid& grid) {
  const CStamp before = m_Surface;
  if (!HasChanged(m_Surface, grid)) return;
  const CQuadTree& tree = grid.Surface().Tree();
  const bool otherTree = before.m_uTree != m_Surface.m_uTree;
  if (otherTree) m_Mesh.Build(tree);
  if (otherTree || m_Extent != grid.Surface().Lattice().Extent()) {
    m_Extent = grid.Surface().Lattice().Extent();
    m_Mesh.Place(tree, m_afPositions);
  }
  m_Mesh.Raise(tree, std::span(m_afPositions));
}

void CSurfaceArrays::RefreshNormals(const CGrid& grid) {
  RefreshSurface(grid);
  if (!HasChanged(m_Normals, grid)) return;
  const CLattice& lattice = grid.Surface().Lattice();
  m_afNormals.resize(m_afPositions.size());
  std::size_t v = 0;
  for (const std::uint32_t point : m_Mesh.Points()) Put(m_afNormals, v++, lattice.PointNormals()[point]);
  for (const CLeaf& leaf : grid.Surface().Tree().Leaves()) Put(m_afNormals, v++, lattice.CellNormals()[leaf.m_uCell]);
}

void CSurfaceArrays::RefreshLines(const CGrid& grid) {
  RefreshSurface(grid);
  if (m_Lines.m_uTree == grid.Surface().Tree().Revision()) return;
  m_Lines.m_uTree = grid.Surface().Tree().Revision();
  for (std::vector<std::uint32_t>& lines : m_aauLines) lines.clear();
  const CLattice& lattice = grid.Surface().Lattice();
  const int last = lattice.PointsPerSide() - 1;
  // Every line lies on the bottom or the left side of one leaf, but for the model's right and top border.
  for (const CLeaf& leaf : grid.Surface().Tree().Leaves()) {
    const CQuadT& cell = *leaf.m_pCell;
    AddLines(cell.Edge(kBottom), cell.Level(), lattice);
    AddLines(cell.Edge(kLeft), cell.Level(), lattice);
    if (cell.X1() == last) AddLines(cell.Edge(kRight), cell.Level(), lattice);
    if (cell.Y1() == last) AddLines(cell.Edge(kTop), cell.Level(), lattice);
  }
}

void CSurfaceArrays::AddLines(const CEdge& edge, int level, const CLattice& lattice) {
  if (!edge.IsLeaf() && edge.HasHalves()) {
    AddLines(edge.Half(0), level - 1, lattice);
    AddLines(edge.Half(1), level - 1, lattice);
    return;
  }
  if (edge.HasBothMarks()) return;
  const std::uint32_t a = m_Mesh.VertexAt(lattice.Index(edge.Xa(), edge.Ya()));
  const std::uint32_t b = m_Mesh.VertexAt(lattice.Index(edge.Xb(), edge.Yb()));
  m_aauLines[static_cast<std::size_t>(level)].insert(m_aauLines[static_cast<std::size_t>(level)].end(), {a, b});
}

void CSurfaceArrays::RefreshPointNormals(const CGrid& grid, double length) {
  RefreshNormals(grid);
  if (HasChanged(m_PointNormals, grid, length)) FillSegments(0, m_Mesh.CornerCount(), length, m_afPointNormals);
}

void CSurfaceArrays::RefreshCellNormals(const CGrid& grid, double length) {
  RefreshNormals(grid);
  if (HasChanged(m_CellNormals, grid, length))
    FillSegments(m_Mesh.CornerCount(), m_Mesh.VertexCount(), length, m_afCellNormals);
}

void CSurfaceArrays::FillSegments(std::size_t first, std::size_t end, double length,
                                  std::vector<float>& segments) const {
  segments.clear();
  for (std::size_t v = first; v < end; ++v) {
    const float* p = &m_afPositions[3 * v];
    const float* n = &m_afNormals[3 * v];
    // Inside a discontinuity there is no normal: none at a point, not a number at a cell.
    const double squares = n[0] * n[0] + n[1] * n[1] + n[2] * n[2];
    if (!(squares > 0)) continue;
    const auto s = static_cast<float>(length);
    segments.insert(segments.end(), {p[0], p[1], p[2], p[0] + s * n[0], p[1] + s * n[1], p[2] + s * n[2]});
  }
}
