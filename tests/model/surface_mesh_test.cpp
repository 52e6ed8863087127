#include <algorithm>
#include <bit>
#include <cmath>
#include <map>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "model/CSurfaceMesh.h"
#include "support/TreeBuilders.h"
#include "support/TreeGenerators.h"

namespace {

struct CTriangle {
  std::uint32_t m_uA;
  std::uint32_t m_uB;
  std::uint32_t m_uCentre;
  bool m_bTorn;
};

class SurfaceMeshTest : public ::testing::Test {
 protected:
  CQuadTree& Tree() { return m_Test.m_Tree; }
  CLattice& Lattice() { return m_Test.m_Lattice; }
  void Build() {
    m_Test.Settle();
    Tree().ListLeaves();
    m_Mesh.Build(Tree());
    m_Mesh.Place(Tree(), m_afPositions);
    m_Mesh.Raise(Tree(), std::span(m_afPositions));
  }
  void Randomised(std::uint32_t seed) {
    Randomise(Tree(), seed);
    SetRandomHeights(Lattice(), seed);
    Build();
  }
  Vector3 At(std::size_t vertex) const {
    return {m_afPositions[3 * vertex], m_afPositions[3 * vertex + 1], m_afPositions[3 * vertex + 2]};
  }
  std::vector<CTriangle> Triangles() const {
    std::vector<CTriangle> triangles;
    m_Mesh.ForEachTriangle([&](std::uint32_t a, std::uint32_t b, std::uint32_t centre, bool torn) {
      triangles.push_back({a, b, centre, torn});
    });
    return triangles;
  }
  // Those in a tear, which the list of the others lacks.
  std::size_t TornCount() const { return Triangles().size() - m_Mesh.Triangles().size() / 3; }
  double Area(const CTriangle& t) const { return Cross(At(t.m_uB) - At(t.m_uA), At(t.m_uCentre) - At(t.m_uA)).z / 2; }
  double AreaOf(const CLeaf& leaf) {
    return Lattice().StepX() * Lattice().StepY() * leaf.m_uSize * static_cast<double>(leaf.m_uSize);
  }

  // Level 4 with cells four steps wide.
  CTestTree m_Test{4, 2};
  CSurfaceMesh m_Mesh;
  std::vector<double> m_afPositions;
};

constexpr std::uint32_t kSeeds = 12;

}  // namespace

TEST_F(SurfaceMeshTest, UniformGridHasItsPointsItsCentresAndFourTrianglesPerCell) {
  Build();
  EXPECT_EQ(m_Mesh.CornerCount(), 25U);
  EXPECT_EQ(m_Mesh.VertexCount(), 25U + 16U);
  EXPECT_EQ(m_Mesh.Triangles().size(), 3 * 4 * 16U);
  EXPECT_EQ(TornCount(), 0U);
}

TEST_F(SurfaceMeshTest, OneLeafIsAFanOfFourTriangles) {
  Tree().SetStartLevel(0);
  Build();
  EXPECT_EQ(m_Mesh.VertexCount(), 5U);
  EXPECT_EQ(Triangles().size(), 4U);
}

TEST_F(SurfaceMeshTest, VerticesAreThePointsInUse) {
  for (std::uint32_t seed = 1; seed <= kSeeds; ++seed) {
    Randomised(seed);
    for (std::size_t point = 0; point < Lattice().PointCount(); ++point) {
      const std::uint32_t vertex = m_Mesh.VertexAt(point);
      ASSERT_EQ(vertex != CSurfaceMesh::kNone, Lattice().Has(point, PointFlag::kInUse)) << seed;
      if (vertex == CSurfaceMesh::kNone) continue;
      ASSERT_LT(vertex, m_Mesh.CornerCount());
      EXPECT_EQ(m_Mesh.Points()[vertex], point);
    }
    EXPECT_EQ(m_Mesh.CornerCount(), m_Test.m_Order.Count());
  }
}

TEST_F(SurfaceMeshTest, TrianglesJoinTwoCornersAndTheCentreOfTheirLeaf) {
  for (std::uint32_t seed = 1; seed <= kSeeds; ++seed) {
    Randomised(seed);
    for (const CTriangle& t : Triangles()) {
      ASSERT_LT(t.m_uA, m_Mesh.CornerCount());
      ASSERT_LT(t.m_uB, m_Mesh.CornerCount());
      ASSERT_GE(t.m_uCentre, m_Mesh.CornerCount());
      ASSERT_LT(t.m_uCentre, m_Mesh.VertexCount());
      const CQuadT& leaf = *Tree().Leaves()[t.m_uCentre - m_Mesh.CornerCount()].m_pCell;
      const Vector3 centre = At(t.m_uCentre);
      EXPECT_EQ(Tree().PointInCell(centre.x, centre.y), &leaf) << seed;
    }
  }
}

TEST_F(SurfaceMeshTest, TrianglesFaceUpAndCoverEveryLeafOnce) {
  for (std::uint32_t seed = 1; seed <= kSeeds; ++seed) {
    Randomised(seed);
    std::vector<double> covered(Tree().Leaves().size());
    for (const CTriangle& t : Triangles()) {
      EXPECT_GT(Area(t), 0);
      covered[t.m_uCentre - m_Mesh.CornerCount()] += Area(t);
    }
    for (std::size_t k = 0; k < covered.size(); ++k) EXPECT_NEAR(covered[k], AreaOf(Tree().Leaves()[k]), 1e-9) << seed;
  }
}

TEST_F(SurfaceMeshTest, FansAreClosedAndComeLeafByLeaf) {
  for (std::uint32_t seed = 1; seed <= kSeeds; ++seed) {
    Randomised(seed);
    const std::vector<CTriangle> triangles = Triangles();
    auto t = triangles.begin();
    for (std::size_t leaf = 0; leaf < Tree().Leaves().size(); ++leaf) {
      const std::uint32_t first = m_Mesh.VertexAt(Tree().Leaves()[leaf].m_uPoint);
      std::uint32_t last = first;
      for (; t != triangles.end() && t->m_uCentre == m_Mesh.CornerCount() + leaf; ++t) {
        EXPECT_EQ(t->m_uA, last) << seed;
        last = t->m_uB;
      }
      EXPECT_EQ(last, first) << seed;
    }
    EXPECT_EQ(t, triangles.end());
  }
}

TEST_F(SurfaceMeshTest, NoGapOpensWhereCellsOfDifferentSizesMeet) {
  for (std::uint32_t seed = 1; seed <= kSeeds; ++seed) {
    Randomised(seed);
    std::map<std::pair<std::uint32_t, std::uint32_t>, int> sides;
    for (const CTriangle& t : Triangles()) {
      ++sides[{t.m_uA, t.m_uB}];
      ++sides[{t.m_uB, t.m_uCentre}];
      ++sides[{t.m_uCentre, t.m_uA}];
    }
    std::size_t single = 0;
    for (const auto& [side, count] : sides) {
      EXPECT_EQ(count, 1) << seed;
      if (!sides.contains({side.second, side.first})) ++single;
    }
    // Those along the border of the model.
    std::size_t border = 0;
    const auto last = static_cast<std::uint32_t>(Lattice().PointsPerSide() - 1);
    for (const std::uint32_t point : m_Mesh.Points()) {
      const std::uint32_t column = point % (last + 1);
      const std::uint32_t row = point / (last + 1);
      border += column == 0 || column == last || row == 0 || row == last ? 1 : 0;
    }
    EXPECT_EQ(single, border) << seed;
  }
}

TEST_F(SurfaceMeshTest, TrianglesInATearAreMarkedAndListedApart) {
  for (std::uint32_t seed = 1; seed <= kSeeds; ++seed) {
    Randomised(seed);
    std::vector<double> torn(Tree().Leaves().size());
    std::vector<std::uint32_t> whole;
    std::size_t count = 0;
    for (const CTriangle& t : Triangles()) {
      if (t.m_bTorn) {
        torn[t.m_uCentre - m_Mesh.CornerCount()] += Area(t);
        ++count;
      } else {
        whole.insert(whole.end(), {t.m_uA, t.m_uB, t.m_uCentre});
      }
    }
    EXPECT_TRUE(std::ranges::equal(whole, m_Mesh.Triangles())) << seed;
    EXPECT_EQ(count, TornCount());
    for (std::size_t k = 0; k < torn.size(); ++k) {
      const CLeaf& leaf = Tree().Leaves()[k];
      EXPECT_NEAR(torn[k], AreaOf(leaf) * std::popcount(leaf.m_uMarked) / 4.0, 1e-9) << seed;
    }
  }
}

TEST_F(SurfaceMeshTest, TornSideBesideAFinerCellIsTornAllAlong) {
  // The bottom and the right side of a cell, of which finer cells halve the right one.
  MakeLeaf(Tree(), 2, 1, 1, 3);
  MakeLeaf(Tree(), 1, 4, 2);
  Build();
  EXPECT_EQ(TornCount(), 3U);
  const auto torn = [&](double column, double row) {
    for (const CTriangle& t : Triangles()) {
      const Vector3 middle = (1.0 / 3) * (At(t.m_uA) + At(t.m_uB) + At(t.m_uCentre));
      if (std::abs(Lattice().ColumnOf(middle.x) - column) < 0.01 && std::abs(Lattice().RowOf(middle.y) - row) < 0.01)
        return t.m_bTorn;
    }
    ADD_FAILURE() << "no triangle about " << column << ' ' << row;
    return false;
  };
  EXPECT_TRUE(torn(6, 14.0 / 3));
  EXPECT_TRUE(torn(22.0 / 3, 16.0 / 3));
  EXPECT_TRUE(torn(22.0 / 3, 20.0 / 3));
  EXPECT_FALSE(torn(6, 22.0 / 3));
}

TEST_F(SurfaceMeshTest, VerticesLieOnTheSurface) {
  for (std::uint32_t seed = 1; seed <= kSeeds; ++seed) {
    Randomised(seed);
    for (std::size_t v = 0; v < m_Mesh.VertexCount(); ++v) {
      const Vector3 p = At(v);
      EXPECT_NEAR(p.z, m_Test.m_Surface.HeightAt(Lattice().ColumnOf(p.x), Lattice().RowOf(p.y)), 1e-9) << seed;
    }
  }
}

TEST_F(SurfaceMeshTest, ZeroHasNoSign) {
  SetHeights(Lattice(), CFlat{-0.0});
  Build();
  for (std::size_t v = m_Mesh.CornerCount(); v < m_Mesh.VertexCount(); ++v) EXPECT_FALSE(std::signbit(At(v).z));
}

TEST_F(SurfaceMeshTest, FloatsAreTheDoublesRounded) {
  Randomised(3);
  std::vector<float> rounded;
  m_Mesh.Place(Tree(), rounded);
  m_Mesh.Raise(Tree(), std::span(rounded));
  ASSERT_EQ(rounded.size(), m_afPositions.size());
  for (std::size_t k = 0; k < rounded.size(); ++k) EXPECT_EQ(rounded[k], static_cast<float>(m_afPositions[k]));
}

TEST_F(SurfaceMeshTest, TextureCoordinatesSpreadThePictureOverTheModel) {
  for (std::uint32_t seed = 1; seed <= kSeeds; ++seed) {
    Randomised(seed);
    const std::vector<CSurfaceMesh::CTexturePoint> coordinates = m_Mesh.TextureCoordinates(Tree());
    ASSERT_EQ(coordinates.size(), m_Mesh.VertexCount());
    for (std::size_t v = 0; v < coordinates.size(); ++v) {
      EXPECT_NEAR(coordinates[v].u, (At(v).x - kOblong.x0) / (kOblong.x1 - kOblong.x0), 1e-12);
      EXPECT_NEAR(coordinates[v].v, (At(v).y - kOblong.y0) / (kOblong.y1 - kOblong.y0), 1e-12);
    }
  }
}
