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

CTearPatch::CTearPatch(const CQuadTree& tree, const CSurfaceMesh& mesh, const CMeshPlane& plane, int reach,
                       const CExportSteps& steps)
    : m_Plane(plane), m_uCorners(mesh.CornerCount()) {
  constexpr double kChosen = 0.3;
  constexpr double kAdded = 0.7;
  const auto isMarked = [](const CLeaf& leaf) { return leaf.m_uMarked != 0; };
  if (std::ranges::none_of(tree.Leaves(), isMarked)) return;
  if (ChooseLeaves(tree, reach, steps.Part(0, kChosen)) && AddTriangles(tree, mesh, steps.Part(kChosen, kAdded)))
    m_Triangles.Link(steps.Part(kAdded, 1));
}

bool CTearPatch::ChooseLeaves(const CQuadTree& tree, int reach, const CExportSteps& steps) {
  constexpr double kMarked = 0.4;
  constexpr double kWidened = 0.6;
  const auto side = static_cast<std::size_t>(tree.Lattice().PointsPerSide() - 1);
  std::vector<std::uint8_t> marked(side * side);
  const std::span<const CLeaf> leaves = tree.Leaves();
  const auto mark = [&](std::size_t begin, std::size_t end) {
    for (const CLeaf& leaf : leaves.subspan(begin, end - begin)) {
      if (leaf.m_uMarked == 0) continue;
      const std::size_t column = leaf.m_uCell % side;
      const std::size_t first = column - std::min(column, static_cast<std::size_t>(reach));
      const std::size_t behind = std::min(side, column + leaf.m_uSize + static_cast<std::size_t>(reach));
      ForEachRow(leaf, side, marked,
                 [&](std::uint8_t* row) { std::fill(row - (column - first), row + (behind - column), 1); });
    }
  };
  if (!steps.Part(0, kMarked).ForBlocks(leaves.size(), mark)) return false;
  WidenColumns(marked, side, reach);
  m_abLeaves.assign(leaves.size(), 0);
  const auto choose = [&](std::size_t begin, std::size_t end) {
    for (std::size_t number = begin; number < end; ++number) {
      const std::size_t size = leaves[number].m_uSize;
      ForEachRow(leaves[number], side, marked, [&](const std::uint8_t* row) {
        if (std::find(row, row + size, 1) != row + size) m_abLeaves[number] = 1;
      });
    }
  };
  return steps.Part(kWidened, 1).ForBlocks(leaves.size(), choose);
}

bool CTearPatch::AddTriangles(const CQuadTree& tree, const CSurfaceMesh& mesh, const CExportSteps& steps) {
  constexpr double kChosen = 0.2;
  constexpr double kVertices = 0.6;
  // Nearly all leaves have four.
  std::vector<CChosen> chosen;
  chosen.reserve(static_cast<std::size_t>(std::ranges::count(m_abLeaves, 1)) * 4);
  mesh.ForEachTriangle([&](std::uint32_t a, std::uint32_t b, std::uint32_t centre, bool torn) {
    const auto leaf = static_cast<std::uint32_t>(centre - m_uCorners);
    if (m_abLeaves[leaf] != 0) chosen.push_back({{a, b, centre}, leaf, torn});
  });
  // With room for those of the cuts.
  m_Triangles.Reserve(chosen.size() + chosen.size() / 4);
  std::vector<std::uint32_t> numbers(mesh.VertexCount(), kNone);
  if (!AddVertices(tree, mesh, chosen, numbers, steps.Part(kChosen, kVertices))) return false;
  std::uint32_t last = kNone;
  std::uint8_t place = 0;
  m_aOrigins.reserve(chosen.size());
  const auto add = [&](std::size_t begin, std::size_t end) {
    for (std::size_t k = begin; k < end; ++k) {
      const auto& [vertices, leaf, torn] = chosen[k];
      place = leaf == last ? static_cast<std::uint8_t>(place + 1) : std::uint8_t{0};
      last = leaf;
      m_Triangles.AddTriangle({numbers[vertices[0]], numbers[vertices[1]], numbers[vertices[2]]},
                              static_cast<std::uint32_t>(m_aOrigins.size()));
      m_aOrigins.push_back({leaf, place, torn, tree.Leaves()[leaf].m_uMarked == 0, tree.Leaves()[leaf].m_uSize == 1});
    }
  };
  return steps.Part(kVertices, 1).ForBlocks(chosen.size(), add);
}

// In the order of the mesh, so that what is near in it stays near in memory. Numbers by vertex of the mesh.
bool CTearPatch::AddVertices(const CQuadTree& tree, const CSurfaceMesh& mesh, std::span<const CChosen> chosen,
                             std::vector<std::uint32_t>& numbers, const CExportSteps& steps) {
  const auto side = static_cast<std::uint32_t>(tree.Lattice().PointsPerSide());
  const auto add = [&](std::uint32_t vertex, std::uint32_t point, double offset) {
    if (numbers[vertex] != kNone) return;
    const std::uint32_t row = point / side;
    numbers[vertex] = m_Triangles.AddVertex(m_Plane.At(point % side + offset, row + offset));
    m_auMeshVertices.push_back(vertex);
  };
  return steps.ForBlocks(chosen.size(), [&](std::size_t begin, std::size_t end) {
    for (const auto& [vertices, number, torn] : chosen.subspan(begin, end - begin)) {
      for (const std::uint32_t corner : {vertices[0], vertices[1]}) add(corner, mesh.Points()[corner], 0.0);
      const CLeaf& leaf = tree.Leaves()[number];
      add(vertices[2], leaf.m_uPoint, 0.5 * leaf.m_uSize);
    }
  });
}
