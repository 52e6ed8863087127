#include "model/CSurfaceMesh.h"

#include <array>

#include "base/Memory.h"
#include "lattice/CLattice.h"
#include "quadtree/CQuadTree.h"

namespace {

// Lattice indices of the corners of a leaf, in their order.
std::array<std::size_t, 4> CornersOf(const CLeaf& leaf, const CLattice& lattice) {
  const std::size_t up = static_cast<std::size_t>(leaf.m_uSize) * static_cast<std::size_t>(lattice.PointsPerSide());
  const std::size_t first = leaf.m_uPoint;
  return {first, first + leaf.m_uSize, first + leaf.m_uSize + up, first + up};
}

}  // namespace

void CSurfaceMesh::Build(const CQuadTree& tree) {
  NumberCorners(tree);
  m_uCentres = tree.Leaves().size();
  m_aTriangles.clear();
  // Four a leaf, unless it has smaller neighbours. The room behind them is for what cuts add; it costs nothing unused.
  ReserveLarge(m_aTriangles, 4 * m_uCentres + m_uCentres / 2);
  m_aTorn.clear();
  auto centre = static_cast<std::uint32_t>(CornerCount());
  for (const CLeaf& leaf : tree.Leaves()) {
    const auto isTorn = [&leaf](int k) { return (leaf.m_uMarked >> k & 1U) != 0; };
    if (leaf.m_uSize == 1) {
      // Nothing is smaller, and its edges need not be looked at.
      const std::array<std::size_t, 4> points = CornersOf(leaf, tree.Lattice());
      const std::array corners{m_auVertexAt[points[0]], m_auVertexAt[points[1]], m_auVertexAt[points[2]],
                               m_auVertexAt[points[3]]};
      const std::array<CTriangle, 4> fan{{{corners[0], corners[1], centre},
                                          {corners[1], corners[2], centre},
                                          {corners[2], corners[3], centre},
                                          {corners[3], corners[0], centre}}};
      if (leaf.m_uMarked == 0) {
        m_aTriangles.insert(m_aTriangles.end(), fan.begin(), fan.end());
      } else {
        for (int k = 0; k < 4; ++k) AddTriangle(fan[static_cast<std::size_t>(k)], isTorn(k));
      }
    } else {
      for (int k = 0; k < 4; ++k) {
        // Edges run right and up, so the top and the left side are met from their second end.
        const bool backwards = k == kTop || k == kLeft;
        AddSide(leaf.m_pCell->Edge(k), backwards, isTorn(k), centre, tree.Lattice());
      }
    }
    ++centre;
  }
}

void CSurfaceMesh::NumberCorners(const CQuadTree& tree) {
  const CLattice& lattice = tree.Lattice();
  m_auVertexAt.assign(lattice.PointCount(), kNone);
  m_auPoints.clear();
  for (const CLeaf& leaf : tree.Leaves()) {
    for (const std::size_t point : CornersOf(leaf, lattice)) {
      if (m_auVertexAt[point] != kNone) continue;
      m_auVertexAt[point] = static_cast<std::uint32_t>(m_auPoints.size());
      m_auPoints.push_back(static_cast<std::uint32_t>(point));
    }
  }
}

void CSurfaceMesh::AddSide(const CEdge& edge, bool backwards, bool torn, std::uint32_t centre,
                           const CLattice& lattice) {
  if (!edge.IsLeaf() && edge.HasHalves()) {
    AddSide(edge.Half(backwards ? 1 : 0), backwards, torn, centre, lattice);
    AddSide(edge.Half(backwards ? 0 : 1), backwards, torn, centre, lattice);
    return;
  }
  const std::uint32_t first = m_auVertexAt[lattice.Index(edge.Xa(), edge.Ya())];
  const std::uint32_t second = m_auVertexAt[lattice.Index(edge.Xb(), edge.Yb())];
  AddTriangle({backwards ? second : first, backwards ? first : second, centre}, torn);
}

void CSurfaceMesh::AddTriangle(const CTriangle& triangle, bool torn) {
  if (torn) {
    m_aTorn.push_back({m_aTriangles.size(), triangle[0], triangle[1], triangle[2]});
  } else {
    m_aTriangles.push_back(triangle);
  }
}

template <typename Visit>
void CSurfaceMesh::ForEachPlace(const CQuadTree& tree, const Visit& visit) const {
  const auto side = static_cast<std::uint32_t>(tree.Lattice().PointsPerSide());
  const auto at = [&visit, side](std::size_t vertex, std::uint32_t point, double offset) {
    const std::uint32_t row = point / side;
    visit(vertex, point % side + offset, row + offset);
  };
  for (std::size_t v = 0; v < CornerCount(); ++v) at(v, m_auPoints[v], 0.0);
  std::size_t v = CornerCount();
  for (const CLeaf& leaf : tree.Leaves()) {
    at(v++, leaf.m_uPoint, 0.5 * leaf.m_uSize);
  }
}

template <typename Number>
void CSurfaceMesh::Place(const CQuadTree& tree, std::vector<Number>& positions) const {
  const CLattice& lattice = tree.Lattice();
  positions.resize(3 * VertexCount());
  ForEachPlace(tree, [&](std::size_t vertex, double column, double row) {
    positions[3 * vertex] = static_cast<Number>(lattice.XOf(column));
    positions[3 * vertex + 1] = static_cast<Number>(lattice.YOf(row));
  });
}

template <typename Number>
void CSurfaceMesh::Raise(const CQuadTree& tree, std::span<Number> positions) const {
  Raise(tree, positions, tree.Lattice().Heights());
}

template <typename Number>
void CSurfaceMesh::Raise(const CQuadTree& tree, std::span<Number> positions, std::span<const double> values) const {
  for (std::size_t v = 0; v < CornerCount(); ++v) positions[3 * v + 2] = static_cast<Number>(values[m_auPoints[v]]);
  std::size_t v = CornerCount();
  for (const CLeaf& leaf : tree.Leaves())
    positions[3 * v++ + 2] = static_cast<Number>(CentreHeight(tree, leaf, values));
}

double CSurfaceMesh::CentreHeight(const CQuadTree& tree, const CLeaf& leaf, std::span<const double> heights) {
  if (leaf.m_uCentre != CLeaf::kMeanOfCorners) return tree.CentreOf(leaf).Of(heights);
  const auto [a, b, c, d] = CornersOf(leaf, tree.Lattice());
  // A sum begun with 0, like that of the weights, is never -0, which a file would show.
  return 0.25 * (0.0 + heights[a] + heights[b] + heights[c] + heights[d]);
}

template void CSurfaceMesh::Place(const CQuadTree&, std::vector<float>&) const;
template void CSurfaceMesh::Place(const CQuadTree&, std::vector<double>&) const;
template void CSurfaceMesh::Raise(const CQuadTree&, std::span<float>) const;
template void CSurfaceMesh::Raise(const CQuadTree&, std::span<double>) const;
template void CSurfaceMesh::Raise(const CQuadTree&, std::span<double>, std::span<const double>) const;

std::vector<CSurfaceMesh::CTexturePoint> CSurfaceMesh::TextureCoordinates(const CQuadTree& tree) const {
  const int steps = tree.Lattice().PointsPerSide() - 1;
  std::vector<CTexturePoint> coordinates(VertexCount());
  ForEachPlace(tree, [&](std::size_t vertex, double column, double row) {
    coordinates[vertex] = {column / steps, row / steps};
  });
  return coordinates;
}
