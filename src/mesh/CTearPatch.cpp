#include "mesh/CTearPatch.h"

#include <algorithm>

#include "lattice/CLattice.h"
#include "model/CSurfaceMesh.h"
#include "quadtree/CQuadTree.h"

namespace {

// Marks all cells of a line as far as `reach` from a marked one; they lie `stride` apart.
void Widen(std::uint8_t* line, int stride, int cells, int reach) {
  const auto at = [&](int k) -> std::uint8_t& { return line[static_cast<std::ptrdiff_t>(k) * stride]; };
  // Up to where cells behind the last marked one belong to it, and from where those before the next one do.
  int end = 0;
  for (int k = 0; k < cells; ++k) {
    if (at(k) == 1) end = k + reach + 1;
    if (k < end && at(k) == 0) at(k) = 2;
  }
  int begin = cells;
  for (int k = cells - 1; k >= 0; --k) {
    if (at(k) == 1) begin = k - reach;
    if (k >= begin && at(k) == 0) at(k) = 2;
  }
  for (int k = 0; k < cells; ++k) at(k) = at(k) != 0 ? 1 : 0;
}

}  // namespace

CTearPatch::CTearPatch(const CQuadTree& tree, const CSurfaceMesh& mesh, const CMeshPlane& plane, int reach)
    : m_Plane(plane), m_uCorners(mesh.CornerCount()), m_abLeaves(tree.Leaves().size()) {
  ChooseLeaves(tree, reach);
  if (std::ranges::find(m_abLeaves, true) == m_abLeaves.end()) return;
  AddTriangles(tree, mesh);
  m_Triangles.Link();
}

void CTearPatch::ChooseLeaves(const CQuadTree& tree, int reach) {
  const int cells = tree.Lattice().PointsPerSide() - 1;
  const auto side = static_cast<std::size_t>(cells);
  std::vector<std::uint8_t> marked(side * side);
  const auto forEachCell = [&](const CLeaf& leaf, const auto& visit) {
    const CQuadT& c = *leaf.m_pCell;
    for (int j = c.Y0(); j < c.Y1(); ++j) {
      for (int i = c.X0(); i < c.X1(); ++i)
        visit(marked[static_cast<std::size_t>(j) * side + static_cast<std::size_t>(i)]);
    }
  };
  const std::span<const CLeaf> leaves = tree.Leaves();
  for (const CLeaf& leaf : leaves) {
    if (leaf.m_uMarked != 0) forEachCell(leaf, [](std::uint8_t& cell) { cell = 1; });
  }
  // Along the rows, then along the columns.
  for (std::size_t k = 0; k < side; ++k) Widen(&marked[k * side], 1, cells, reach);
  for (std::size_t k = 0; k < side; ++k) Widen(&marked[k], cells, cells, reach);
  for (std::size_t number = 0; number < leaves.size(); ++number)
    forEachCell(leaves[number], [&](std::uint8_t cell) { m_abLeaves[number] = m_abLeaves[number] || cell != 0; });
}

void CTearPatch::AddTriangles(const CQuadTree& tree, const CSurfaceMesh& mesh) {
  std::vector<std::uint32_t> numbers(mesh.VertexCount(), kNone);
  AddVertices(tree, mesh, numbers);
  std::uint32_t last = kNone;
  std::uint8_t place = 0;
  mesh.ForEachTriangle([&](std::uint32_t a, std::uint32_t b, std::uint32_t centre, bool torn) {
    const auto leaf = static_cast<std::uint32_t>(centre - m_uCorners);
    if (!m_abLeaves[leaf]) return;
    place = leaf == last ? static_cast<std::uint8_t>(place + 1) : std::uint8_t{0};
    last = leaf;
    m_Triangles.AddTriangle({numbers[a], numbers[b], numbers[centre]}, static_cast<std::uint32_t>(m_aOrigins.size()));
    m_aOrigins.push_back({leaf, place, torn, tree.Leaves()[leaf].m_uMarked == 0});
  });
}

// In the order of the mesh, so that what is near in it stays near in memory.
void CTearPatch::AddVertices(const CQuadTree& tree, const CSurfaceMesh& mesh, std::vector<std::uint32_t>& numbers) {
  const int side = tree.Lattice().PointsPerSide();
  const auto add = [&](std::uint32_t vertex, double column, double row) {
    numbers[vertex] = m_Triangles.AddVertex(m_Plane.At(column, row));
    m_auMeshVertices.push_back(vertex);
  };
  mesh.ForEachTriangle([&](std::uint32_t a, std::uint32_t b, std::uint32_t centre, bool /*torn*/) {
    const std::size_t leaf = centre - m_uCorners;
    if (!m_abLeaves[leaf]) return;
    for (const std::uint32_t corner : {a, b}) {
      if (numbers[corner] != kNone) continue;
      const auto point = static_cast<int>(mesh.Points()[corner]);
      const int row = point / side;
      add(corner, point % side, row);
    }
    if (numbers[centre] != kNone) return;
    const CQuadT& cell = *tree.Leaves()[leaf].m_pCell;
    add(centre, cell.X0() + 0.5 * cell.Size(), cell.Y0() + 0.5 * cell.Size());
  });
}
