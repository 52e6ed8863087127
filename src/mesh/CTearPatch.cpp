#include "mesh/CTearPatch.h"

#include <algorithm>

#include "lattice/CLattice.h"
#include "model/CSurfaceMesh.h"
#include "quadtree/CQuadTree.h"

CTearPatch::CTearPatch(const CQuadTree& tree, const CSurfaceMesh& mesh, const CMeshPlane& plane)
    : m_Plane(plane), m_uCorners(mesh.CornerCount()), m_abLeaves(tree.Leaves().size()) {
  ChooseLeaves(tree);
  if (std::ranges::find(m_abLeaves, true) == m_abLeaves.end()) return;
  AddTriangles(tree, mesh);
  m_Triangles.Link();
}

void CTearPatch::ChooseLeaves(const CQuadTree& tree) {
  const int cells = tree.Lattice().PointsPerSide() - 1;
  std::vector<bool> near(static_cast<std::size_t>(cells) * static_cast<std::size_t>(cells));
  const auto forEachCell = [&](const CLeaf& leaf, int reach, const auto& visit) {
    const CQuadT& c = *leaf.m_pCell;
    for (int j = std::max(c.Y0() - reach, 0); j < std::min(c.Y1() + reach, cells); ++j) {
      for (int i = std::max(c.X0() - reach, 0); i < std::min(c.X1() + reach, cells); ++i)
        visit(tree.Lattice().CellIndex(i, j));
    }
  };
  for (const CLeaf& leaf : tree.Leaves()) {
    if (leaf.m_uMarked != 0) forEachCell(leaf, kReach, [&](std::size_t cell) { near[cell] = true; });
  }
  std::size_t number = 0;
  for (const CLeaf& leaf : tree.Leaves()) {
    bool isNear = false;
    forEachCell(leaf, 0, [&](std::size_t cell) { isNear = isNear || near[cell]; });
    m_abLeaves[number++] = isNear;
  }
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
