// Heights beside cuts, looked for in the shortest way there is.

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <numbers>
#include <optional>
#include <set>
#include <vector>

#include <gtest/gtest.h>

#include "mesh/CSideHeights.h"
#include "mesh/CTearCutter.h"
#include "mesh/CTearPatch.h"
#include "mesh/CTearSides.h"
#include "mesh/SidePlanes.h"
#include "mesh/TearCuts.h"
#include "support/CleanMeshBuilders.h"

namespace {

// A torn grid with its patch, cut.
class CCutGrid {
 public:
  CCutGrid(const std::vector<CTestTear>& tears, int level, int baseLevel, std::uint32_t seed)
      : m_Torn(tears, level, baseLevel, seed),
        m_Mesh(MeshOf(m_Torn)),
        m_Plane(1 << level, 3.0, 2.0),
        m_Patch(m_Torn.Tree(), m_Mesh, m_Plane),
        m_Sides(Cut()) {
    SetRandomHeights(m_Torn.Lattice(), seed + 1);
  }

  std::vector<double> RaisedOnce() const {
    return CSideHeights::RaisedOnce(m_Patch, m_Sides, [this](std::uint32_t v) { return HeightOf(v); }, {});
  }
  std::vector<double> RaisedFromTerms() const {
    const CSideHeights heights(m_Patch, m_Sides);
    std::vector<double> known;
    for (const std::uint32_t vertex : heights.KnownVertices()) known.push_back(HeightOf(vertex));
    return heights.Raised(known);
  }
  // Of the nearest triangles of its side; nothing where that has no plane of its own.
  std::optional<double> Searched(std::uint32_t copy) const {
    if (m_Sides.IsKnown(copy)) return HeightOf(m_Patch.MeshVertex(m_Sides.VertexOf(copy)));
    if (m_Provided.count(m_Sides.PieceOf(m_Sides.TriangleAt(copy))) == 0) return {};
    for (double reach = CSideHeights::kRing;; reach *= 2) {
      if (const auto height = MeanOf(Near(copy, reach), m_Sides.VertexOf(copy))) return height;
    }
  }
  std::size_t CopyCount() const { return m_Sides.CopyCount(); }

 private:
  static CSurfaceMesh MeshOf(CTornGrid& torn) {
    CSurfaceMesh mesh;
    mesh.Build(torn.Tree());
    return mesh;
  }
  CTearSides Cut() {
    CTearCutter cutter(m_Patch.Triangles(), m_Plane);
    if (!m_Patch.Triangles().Triangles().empty())
      CutAlongCurves(m_Patch, cutter, m_Torn.m_Grid.Constraints().Curves(), m_Torn.Lattice(), {});
    CTearSides sides(m_Patch);
    m_auBefore = VerticesBeforeEnds(m_Patch.Triangles());
    for (std::uint32_t t = 0; t < m_Patch.Triangles().Triangles().size(); ++t) {
      if (SidePlaneOf(m_Patch, sides, t)) m_Provided.insert(sides.PieceOf(t));
    }
    return sides;
  }
  double HeightOf(std::uint32_t vertex) const {
    const std::span<const double> heights = m_Torn.m_Grid.Surface().Lattice().Heights();
    const CQuadTree& tree = m_Torn.m_Grid.Surface().Tree();
    return vertex < m_Mesh.CornerCount()
               ? heights[m_Mesh.Points()[vertex]]
               : CSurfaceMesh::CentreHeight(tree, tree.Leaves()[vertex - m_Mesh.CornerCount()], heights);
  }
  std::array<float, 2> At(std::uint32_t vertex) const {
    return {static_cast<float>(m_Patch.ColumnOf(vertex)), static_cast<float>(m_Patch.RowOf(vertex))};
  }
  // Coordinates as precise as the program takes them for that.
  bool IsNear(std::uint32_t t, std::uint32_t vertex, double reach) const {
    const auto& v = m_Patch.Triangles().Triangle(t).m_auVertices;
    const std::array middle{m_Patch.ColumnOf(vertex), m_Patch.RowOf(vertex)};
    for (std::size_t axis = 0; axis < 2; ++axis) {
      const auto [least, most] = std::minmax({At(v[0])[axis], At(v[1])[axis], At(v[2])[axis]});
      if (least >= static_cast<float>(middle[axis] + reach) || most <= static_cast<float>(middle[axis] - reach))
        return false;
    }
    return true;
  }
  std::vector<std::uint32_t> Near(std::uint32_t copy, double reach) const {
    std::vector<std::uint32_t> near{m_Sides.TriangleAt(copy)};
    std::set<std::uint32_t> seen{near.front()};
    for (std::size_t at = 0; at < near.size(); ++at) {
      const auto& triangle = m_Patch.Triangles().Triangle(near[at]);
      for (std::size_t k = 0; k < 3; ++k) {
        const std::uint32_t beyond = triangle.m_auNeighbours[k];
        if (beyond == CTearPatch::kNone || triangle.m_abCut[k] || !IsNear(beyond, m_Sides.VertexOf(copy), reach))
          continue;
        if (seen.insert(beyond).second) near.push_back(beyond);
      }
    }
    return near;
  }
  std::optional<double> MeanOf(const std::vector<std::uint32_t>& near, std::uint32_t vertex) const {
    std::array<double, 2> weights{};
    std::array<double, 2> sums{};
    double low = HUGE_VAL;
    double high = -HUGE_VAL;
    const auto heightOf = [&](std::uint32_t copy) {
      const double z = HeightOf(m_Patch.MeshVertex(m_Sides.VertexOf(copy)));
      low = std::min(low, z);
      high = std::max(high, z);
      return z;
    };
    const std::uint32_t before = m_auBefore[vertex];
    for (const std::uint32_t t : near) {
      for (std::uint32_t k = 0; k < 3; ++k) {
        if (m_Sides.IsKnown(m_Sides.CopyOf(t, k))) heightOf(m_Sides.CopyOf(t, k));
      }
      const auto plane = SidePlaneOf(m_Patch, m_Sides, t);
      if (!plane) continue;
      const double dx = m_Patch.ColumnOf(vertex) - plane->m_Middle.x;
      const double dy = m_Patch.RowOf(vertex) - plane->m_Middle.y;
      double height = 0.0;
      for (std::size_t k = 0; k < 3; ++k)
        height += heightOf(plane->m_auCopies[k]) * (1.0 / 3 + plane->m_afSlopeX[k] * dx + plane->m_afSlopeY[k] * dy);
      const double weight = std::pow(dx * dx + dy * dy + 0.25, -2);
      const bool left = before == CTearPatch::kNone || (m_Patch.RowOf(vertex) - m_Patch.RowOf(before)) * dx >
                                                           (m_Patch.ColumnOf(vertex) - m_Patch.ColumnOf(before)) * dy;
      weights[left ? 0 : 1] += weight;
      sums[left ? 0 : 1] += weight * height;
    }
    if (weights[0] + weights[1] == 0.0) return {};
    const double both = weights[0] > 0 && weights[1] > 0 ? 0.5 : 1.0;
    double mean = 0.0;
    for (std::size_t hand = 0; hand < 2; ++hand) mean += weights[hand] > 0 ? both * sums[hand] / weights[hand] : 0.0;
    const double more = (high - low) / 2;
    return std::clamp(mean, low - more, high + more);
  }

  CTornGrid m_Torn;
  CSurfaceMesh m_Mesh;
  CMeshPlane m_Plane;
  CTearPatch m_Patch;
  std::vector<std::uint32_t> m_auBefore;
  std::set<std::uint32_t> m_Provided;
  CTearSides m_Sides;
};

void ExpectFound(const CCutGrid& grid, std::uint32_t seed) {
  const std::vector<double> heights = grid.RaisedOnce();
  const std::vector<double> fromTerms = grid.RaisedFromTerms();
  ASSERT_EQ(heights.size(), grid.CopyCount());
  ASSERT_EQ(fromTerms.size(), grid.CopyCount());
  for (std::uint32_t copy = 0; copy < heights.size(); ++copy) {
    const double allowed = 1e-9 * std::max(1.0, std::abs(heights[copy]));
    ASSERT_NEAR(heights[copy], fromTerms[copy], allowed) << "seed " << seed << ", copy " << copy;
    const std::optional<double> searched = grid.Searched(copy);
    ASSERT_NEAR(heights[copy], searched.value_or(heights[copy]), allowed) << "seed " << seed << ", copy " << copy;
  }
}

}  // namespace

TEST(SideHeights, AreThoseOfAPlainSearchOnEvenGrids) {
  for (std::uint32_t seed = 0; seed < 40; ++seed) ExpectFound({RandomTears(seed, 32), 5, 5, 0}, seed);
}

TEST(SideHeights, AreThoseOfAPlainSearchOnMixedGrids) {
  for (std::uint32_t seed = 100; seed < 140; ++seed) ExpectFound({RandomTears(seed, 32), 5, 3, seed}, seed);
}

// Turns, ends and second tears within one ring: what is near is not what hangs together there.
TEST(SideHeights, AreThoseOfAPlainSearchInNarrowBends) {
  for (std::uint32_t seed = 0; seed < 12; ++seed) {
    const double pitch = 0.9 + 0.31 * seed;
    CTestTear tear;
    for (int k = 0; k < 120; ++k) {
      const double angle = 0.2 * k;
      const double radius = 1.3 + pitch * angle / (2 * std::numbers::pi);
      if (radius > 15) break;
      tear.m_aNodes.push_back({16.1 + radius * std::cos(angle), 15.8 + radius * std::sin(angle)});
    }
    ExpectFound({{tear}, 5, 5, 0}, seed);
  }
}
