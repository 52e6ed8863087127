#include "mesh/CTearPatch.h"

#include <algorithm>

#include "lattice/CLattice.h"
#include "model/CSurfaceMesh.h"
#include "quadtree/CQuadTree.h"

namespace {

/// Calls `visit` for the marks of each row of cells of a leaf.
template <typename Visit>
void ForEachRow(const CLeaf& leaf, std::size_t side, std::vector<std::uint8_t>& cells, const Visit& visit) {
  for (std::size_t row = 0; row < leaf.m_uSize; ++row) visit(&cells[leaf.m_uCell + row * side]);
}

// Marks all cells as far as `reach` above or below a marked one: row by row, up and down, each cell counts how far that
// is.
void WidenColumns(std::vector<std::uint8_t>& marked, std::size_t side, int reach) {
  std::vector<std::uint8_t> wide(marked.size());
  std::vector<int> left(side);
  const auto pass = [&](std::size_t row) {
    const std::uint8_t* from = &marked[row * side];
    std::uint8_t* to = &wide[row * side];
    for (std::size_t k = 0; k < side; ++k) {
      left[k] = from[k] != 0 ? reach + 1 : std::max(left[k] - 1, 0);
      if (left[k] > 0) to[k] = 1;
    }
  };
  for (std::size_t row = 0; row < side; ++row) pass(row);
  std::ranges::fill(left, 0);
  for (std::size_t row = side; row-- > 0;) pass(row);
  marked.swap(wide);
}

}  // namespace

CTearPatch::CTearPatch(const CQuadTree& tree, const CSurfaceMesh& mesh, const CMeshPlane& plane, int reach)
    : m_Plane(plane), m_uCorners(mesh.CornerCount()) {
  const auto isMarked = [](const CLeaf& leaf) { return leaf.m_uMarked != 0; };
  if (std::ranges::none_of(tree.Leaves(), isMarked)) return;
  ChooseLeaves(tree, reach);
  AddTriangles(tree, mesh);
  m_Triangles.Link();
}

void CTearPatch::ChooseLeaves(const CQuadTree& tree, int reach) {
  const auto side = static_cast<std::size_t>(tree.Lattice().PointsPerSide() - 1);
  std::vector<std::uint8_t> marked(side * side);
  const std::span<const CLeaf> leaves = tree.Leaves();
  for (const CLeaf& leaf : leaves) {
    if (leaf.m_uMarked == 0) continue;
    const std::size_t column = leaf.m_uCell % side;
    const std::size_t before = std::min(column, static_cast<std::size_t>(reach));
    const std::size_t end = std::min(side, column + leaf.m_uSize + static_cast<std::size_t>(reach));
    ForEachRow(leaf, side, marked, [&](std::uint8_t* row) { std::fill(row - before, row + (end - column), 1); });
  }
  WidenColumns(marked, side, reach);
  m_abLeaves.assign(leaves.size(), 0);
  for (std::size_t number = 0; number < leaves.size(); ++number) {
    const std::size_t size = leaves[number].m_uSize;
    ForEachRow(leaves[number], side, marked, [&](const std::uint8_t* row) {
      if (std::find(row, row + size, 1) != row + size) m_abLeaves[number] = 1;
    });
  }
}

void CTearPatch::AddTriangles(const CQuadTree& tree, const CSurfaceMesh& mesh) {
  std::vector<CChosen> chosen;
  mesh.ForEachTriangle([&](std::uint32_t a, std::uint32_t b, std::uint32_t centre, bool torn) {
    const auto leaf = static_cast<std::uint32_t>(centre - m_uCorners);
    if (m_abLeaves[leaf] != 0) chosen.push_back({{a, b, centre}, leaf, torn});
  });
  const std::vector<std::uint32_t> numbers = AddVertices(tree, mesh, chosen);
  std::uint32_t last = kNone;
  std::uint8_t place = 0;
  for (const auto& [vertices, leaf, torn] : chosen) {
    place = leaf == last ? static_cast<std::uint8_t>(place + 1) : std::uint8_t{0};
    last = leaf;
    m_Triangles.AddTriangle({numbers[vertices[0]], numbers[vertices[1]], numbers[vertices[2]]},
                            static_cast<std::uint32_t>(m_aOrigins.size()));
    m_aOrigins.push_back({leaf, place, torn, tree.Leaves()[leaf].m_uMarked == 0});
  }
}

// In the order of the mesh, so that what is near in it stays near in memory. Numbers by vertex of the mesh.
std::vector<std::uint32_t> CTearPatch::AddVertices(const CQuadTree& tree, const CSurfaceMesh& mesh,
                                                   std::span<const CChosen> chosen) {
  std::vector<std::uint32_t> numbers(mesh.VertexCount(), kNone);
  const auto side = static_cast<std::uint32_t>(tree.Lattice().PointsPerSide());
  const auto add = [&](std::uint32_t vertex, std::uint32_t point, double offset) {
    if (numbers[vertex] != kNone) return;
    const std::uint32_t row = point / side;
    numbers[vertex] = m_Triangles.AddVertex(m_Plane.At(point % side + offset, row + offset));
    m_auMeshVertices.push_back(vertex);
  };
  for (const auto& [vertices, number, torn] : chosen) {
    for (const std::uint32_t corner : {vertices[0], vertices[1]}) add(corner, mesh.Points()[corner], 0.0);
    const CLeaf& leaf = tree.Leaves()[number];
    add(vertices[2], leaf.m_uPoint, 0.5 * leaf.m_uSize);
  }
  return numbers;
}
