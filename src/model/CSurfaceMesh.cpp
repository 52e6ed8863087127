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
  m_auTriangles.clear();
  ReserveLarge(m_auTriangles, 12 * m_uCentres);  // four a leaf, unless it has smaller neighbours
  m_aTorn.clear();
  auto centre = static_cast<std::uint32_t>(CornerCount());
  for (const CLeaf& leaf : tree.Leaves()) {
    for (int k = 0; k < 4; ++k) {
      // Edges run right and up, so the top and the left side are met from their second end.
      const bool backwards = k == kTop || k == kLeft;
      AddSide(leaf.m_pCell->Edge(k), backwards, (leaf.m_uMarked >> k & 1U) != 0, centre, tree.Lattice());
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
  const std::uint32_t a = backwards ? second : first;
  const std::uint32_t b = backwards ? first : second;
  if (torn) {
    m_aTorn.push_back({m_auTriangles.size(), a, b, centre});
  } else {
    for (const std::uint32_t corner : {a, b, centre}) m_auTriangles.push_back(corner);
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
void CSurfaceMesh::Raise(const CQuadTree& tree, std::span<Number> positions, std::span<const double> heights) const {
  for (std::size_t v = 0; v < CornerCount(); ++v) positions[3 * v + 2] = static_cast<Number>(heights[m_auPoints[v]]);
  std::size_t v = CornerCount();
  for (const CLeaf& leaf : tree.Leaves()) {
    const auto [a, b, c, d] = CornersOf(leaf, tree.Lattice());
    // A sum begun with 0, like that of the weights, is never -0, which a file would show.
    const double z = leaf.m_uCentre == CLeaf::kMeanOfCorners
                         ? 0.25 * (0.0 + heights[a] + heights[b] + heights[c] + heights[d])
                         : tree.CentreOf(leaf).Of(heights);
    positions[3 * v++ + 2] = static_cast<Number>(z);
  }
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
