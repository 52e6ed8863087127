#include "drawing/CSurfaceArrays.h"

#include <limits>

#include "model/CGrid.h"
#include "quadtree/CEdge.h"
#include "quadtree/CQuadTree.h"

namespace {

constexpr std::uint32_t kNoVertex = std::numeric_limits<std::uint32_t>::max();

// Lattice indices of the corners of a leaf, in their order.
std::array<std::size_t, 4> CornersOf(const CLeaf& leaf, const CLattice& lattice) {
  const std::size_t up = static_cast<std::size_t>(leaf.m_uSize) * static_cast<std::size_t>(lattice.PointsPerSide());
  const std::size_t first = leaf.m_uPoint;
  return {first, first + leaf.m_uSize, first + leaf.m_uSize + up, first + up};
}

void Put(std::vector<float>& array, std::size_t vertex, const Vector3& v) {
  array[3 * vertex] = static_cast<float>(v.x);
  array[3 * vertex + 1] = static_cast<float>(v.y);
  array[3 * vertex + 2] = static_cast<float>(v.z);
}

}  // namespace

bool CSurfaceArrays::HasChanged(CStamp& seen, const CGrid& grid, double length) {
  const CStamp now{grid.Tree().Revision(), grid.Surface().Revision(), length};
  if (seen == now) return false;
  seen = now;
  return true;
}

void CSurfaceArrays::RefreshSurface(CGrid& grid) {
  const CStamp before = m_Surface;
  if (!HasChanged(m_Surface, grid)) return;
  const bool otherTree = before.m_uTree != m_Surface.m_uTree;
  if (otherTree) {
    NumberCorners(grid);
    ListTriangles(grid);
  }
  if (otherTree || m_Extent != grid.Lattice().Extent()) PlaceVertices(grid);
  RaiseVertices(grid);
}

void CSurfaceArrays::NumberCorners(CGrid& grid) {
  const CLattice& lattice = grid.Lattice();
  m_auVertexOf.assign(lattice.PointCount(), kNoVertex);
  m_auPoints.clear();
  for (const CLeaf& leaf : grid.Tree().Leaves()) {
    for (const std::size_t point : CornersOf(leaf, lattice)) {
      if (m_auVertexOf[point] != kNoVertex) continue;
      m_auVertexOf[point] = static_cast<std::uint32_t>(m_auPoints.size());
      m_auPoints.push_back(static_cast<std::uint32_t>(point));
    }
  }
}

void CSurfaceArrays::ListTriangles(CGrid& grid) {
  m_auTriangles.clear();
  auto centre = static_cast<std::uint32_t>(CornerCount());
  for (const CLeaf& leaf : grid.Tree().Leaves()) AddTriangles(leaf, centre++, grid.Lattice());
}

void CSurfaceArrays::AddTriangles(const CLeaf& leaf, std::uint32_t centre, const CLattice& lattice) {
  for (int k = 0; k < 4; ++k) {
    if ((leaf.m_uMarked >> k & 1U) != 0) continue;
    // Edges run right and up, so the top and the left side are met from their second end.
    AddSide(leaf.m_pCell->Edge(k), k == kTop || k == kLeft, centre, lattice);
  }
}

void CSurfaceArrays::AddSide(const CEdge& edge, bool backwards, std::uint32_t centre, const CLattice& lattice) {
  if (!edge.IsLeaf() && edge.HasHalves()) {
    AddSide(edge.Half(backwards ? 1 : 0), backwards, centre, lattice);
    AddSide(edge.Half(backwards ? 0 : 1), backwards, centre, lattice);
    return;
  }
  const std::uint32_t a = m_auVertexOf[lattice.Index(edge.Xa(), edge.Ya())];
  const std::uint32_t b = m_auVertexOf[lattice.Index(edge.Xb(), edge.Yb())];
  m_auTriangles.insert(m_auTriangles.end(), {backwards ? b : a, backwards ? a : b, centre});
}

void CSurfaceArrays::PlaceVertices(CGrid& grid) {
  const CLattice& lattice = grid.Lattice();
  const std::span<const CLeaf> leaves = grid.Tree().Leaves();
  m_Extent = lattice.Extent();
  m_afPositions.resize(3 * (CornerCount() + leaves.size()));
  const auto side = static_cast<std::uint32_t>(lattice.PointsPerSide());
  // `half` the size of the leaf whose lower left corner the point is, or 0 for the point itself.
  const auto place = [&](std::size_t vertex, std::uint32_t point, double half) {
    const std::uint32_t column = point % side;
    const std::uint32_t row = point / side;
    Put(m_afPositions, vertex, {lattice.XOf(column + half), lattice.YOf(row + half), 0});
  };
  for (std::size_t v = 0; v < CornerCount(); ++v) place(v, m_auPoints[v], 0);
  std::size_t v = CornerCount();
  for (const CLeaf& leaf : leaves) place(v++, leaf.m_uPoint, 0.5 * leaf.m_uSize);
}

void CSurfaceArrays::RaiseVertices(CGrid& grid) {
  const CQuadTree& tree = grid.Tree();
  const CLattice& lattice = grid.Lattice();
  const std::span<const double> heights = lattice.Heights();
  for (std::size_t v = 0; v < CornerCount(); ++v) m_afPositions[3 * v + 2] = static_cast<float>(heights[m_auPoints[v]]);
  std::size_t v = CornerCount();
  for (const CLeaf& leaf : grid.Tree().Leaves()) {
    const auto [a, b, c, d] = CornersOf(leaf, lattice);
    const double z = leaf.m_uCentre == CLeaf::kMeanOfCorners
                         ? 0.25 * (heights[a] + heights[b] + heights[c] + heights[d])
                         : tree.CentreOf(leaf).Of(heights);
    m_afPositions[3 * v++ + 2] = static_cast<float>(z);
  }
}

void CSurfaceArrays::RefreshNormals(CGrid& grid) {
  RefreshSurface(grid);
  if (!HasChanged(m_Normals, grid)) return;
  const CLattice& lattice = grid.Lattice();
  m_afNormals.resize(m_afPositions.size());
  for (std::size_t v = 0; v < CornerCount(); ++v) Put(m_afNormals, v, lattice.PointNormals()[m_auPoints[v]]);
  std::size_t v = CornerCount();
  for (const CLeaf& leaf : grid.Tree().Leaves()) Put(m_afNormals, v++, lattice.CellNormals()[leaf.m_uCell]);
}

void CSurfaceArrays::RefreshLines(CGrid& grid) {
  RefreshSurface(grid);
  if (m_Lines.m_uTree == grid.Tree().Revision()) return;
  m_Lines.m_uTree = grid.Tree().Revision();
  for (std::vector<std::uint32_t>& lines : m_aauLines) lines.clear();
  const CLattice& lattice = grid.Lattice();
  const int last = lattice.PointsPerSide() - 1;
  // Every line lies on the bottom or the left side of one leaf, but for the model's right and top border.
  for (const CLeaf& leaf : grid.Tree().Leaves()) {
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
  const std::uint32_t a = m_auVertexOf[lattice.Index(edge.Xa(), edge.Ya())];
  const std::uint32_t b = m_auVertexOf[lattice.Index(edge.Xb(), edge.Yb())];
  m_aauLines[static_cast<std::size_t>(level)].insert(m_aauLines[static_cast<std::size_t>(level)].end(), {a, b});
}

void CSurfaceArrays::RefreshPointNormals(CGrid& grid, double length) {
  RefreshNormals(grid);
  if (HasChanged(m_PointNormals, grid, length)) FillSegments(0, CornerCount(), length, m_afPointNormals);
}

void CSurfaceArrays::RefreshCellNormals(CGrid& grid, double length) {
  RefreshNormals(grid);
  if (HasChanged(m_CellNormals, grid, length)) FillSegments(CornerCount(), VertexCount(), length, m_afCellNormals);
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
