#include <algorithm>
#include <bit>
#include <cmath>
#include <map>
#include <set>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "drawing/CSurfaceArrays.h"
#include "support/AllocationCount.h"
#include "support/GridBuilders.h"

namespace {

using Line = std::pair<std::pair<double, double>, std::pair<double, double>>;

constexpr double kFloatError = 1e-5;

class SurfaceArraysTest : public ::testing::Test {
 protected:
  CGrid& Grid() { return m_Grid.m_Grid; }
  CQuadTree& Tree() { return Grid().Surface().Tree(); }
  // Brings numbering and surface up to a change of the subdivision.
  void Settle() {
    Tree().RefreshEdgeMarks();
    Grid().BuildHNumerotation();
    Grid().Surface().Reconstruct();
  }
  void Randomised(std::uint32_t seed) {
    Randomise(Tree(), seed);
    Settle();
    SetRandomSurface(Grid(), seed);
  }
  Vector3 At(std::uint32_t vertex) const { return Entry(m_Arrays.Positions(), vertex); }
  Vector3 NormalAt(std::uint32_t vertex) const { return Entry(m_Arrays.Normals(), vertex); }
  static Vector3 Entry(std::span<const float> array, std::size_t vertex) {
    return {array[3 * vertex], array[3 * vertex + 1], array[3 * vertex + 2]};
  }
  std::set<Line> Lines(int level) const {
    const std::span<const std::uint32_t> ends = m_Arrays.Lines(level);
    std::set<Line> lines;
    for (std::size_t k = 0; k < ends.size(); k += 2) {
      const Vector3 a = At(ends[k]);
      const Vector3 b = At(ends[k + 1]);
      lines.insert({{a.x, a.y}, {b.x, b.y}});
    }
    EXPECT_EQ(lines.size(), ends.size() / 2) << "a line twice, level " << level;
    return lines;
  }

  // Level 4 with cells four steps wide.
  CTestGrid m_Grid{4, 2};
  CSurfaceArrays m_Arrays;
};

std::size_t MarkedTriangles(CQuadTree& tree) {
  std::size_t count = 0;
  for (const CLeaf& leaf : tree.Leaves()) count += static_cast<std::size_t>(std::popcount(leaf.m_uMarked));
  return count;
}

}  // namespace

TEST_F(SurfaceArraysTest, UniformGridHasItsPointsItsCentresAndFourTrianglesPerCell) {
  m_Arrays.RefreshSurface(Grid());
  EXPECT_EQ(m_Arrays.Positions().size(), 3 * (25U + 16U));
  EXPECT_EQ(m_Arrays.Triangles().size(), 3 * 4 * 16U);
}

TEST_F(SurfaceArraysTest, VerticesLieOnTheSurface) {
  for (std::uint32_t seed = 1; seed <= 8; ++seed) {
    Randomised(seed);
    m_Arrays.RefreshSurface(Grid());
    const CLattice& lattice = Grid().Surface().Lattice();
    for (const std::uint32_t v : m_Arrays.Triangles()) {
      const Vector3 p = At(v);
      EXPECT_NEAR(p.z, Grid().GetHeightAt(lattice.ColumnOf(p.x), lattice.RowOf(p.y)), kFloatError) << seed;
    }
  }
}

TEST_F(SurfaceArraysTest, TrianglesFaceUpAndCoverTheModelButForDiscontinuities) {
  for (std::uint32_t seed = 1; seed <= 8; ++seed) {
    Randomised(seed);
    m_Arrays.RefreshSurface(Grid());
    double covered = 0;
    const std::span<const std::uint32_t> t = m_Arrays.Triangles();
    for (std::size_t k = 0; k < t.size(); k += 3) {
      const double twice = Cross(At(t[k + 1]) - At(t[k]), At(t[k + 2]) - At(t[k])).z;
      EXPECT_GT(twice, 0);
      covered += twice / 2;
    }
    double expected = 0;
    const double unit = Grid().Surface().Lattice().StepX() * Grid().Surface().Lattice().StepY();
    for (const CLeaf& leaf : Tree().Leaves())
      expected += unit * leaf.m_uSize * leaf.m_uSize * (4 - std::popcount(leaf.m_uMarked)) / 4.0;
    EXPECT_NEAR(covered, expected, 1e-3) << seed;
  }
}

TEST_F(SurfaceArraysTest, MarkedTrianglesAreLeftOut) {
  MakeLeaf(Tree(), 2, 1, 1, 1);
  MakeLeaf(Tree(), 2, 2, 1, 15);
  Settle();
  m_Arrays.RefreshSurface(Grid());
  EXPECT_EQ(MarkedTriangles(Tree()), 5U);
  EXPECT_EQ(m_Arrays.Triangles().size(), 3 * (4 * 16U - 5));
}

TEST_F(SurfaceArraysTest, NoGapOpensWhereCellsOfDifferentSizesMeet) {
  MakeLeaf(Tree(), 0, 5, 6);
  Settle();
  SetRandomSurface(Grid(), 3);
  m_Arrays.RefreshSurface(Grid());
  // Every side of a triangle inside the model belongs to two triangles, in opposite directions.
  std::map<std::pair<std::uint32_t, std::uint32_t>, int> sides;
  const std::span<const std::uint32_t> t = m_Arrays.Triangles();
  for (std::size_t k = 0; k < t.size(); k += 3) {
    for (std::size_t c = 0; c < 3; ++c) ++sides[{t[k + c], t[k + (c + 1) % 3]}];
  }
  const auto onBorder = [&](std::uint32_t v) {
    const Vector3 p = At(v);
    return p.x == -3.5F || p.x == 12.5F || p.y == 20.0F || p.y == 26.0F;
  };
  for (const auto& [side, count] : sides) {
    EXPECT_EQ(count, 1);
    if (!onBorder(side.first) || !onBorder(side.second)) {
      EXPECT_TRUE(sides.contains({side.second, side.first}));
    }
  }
}

TEST_F(SurfaceArraysTest, NormalsAreThePointsAtCornersAndTheCellsAtCentres) {
  SetSurface(Grid(), CBump{});
  m_Arrays.RefreshNormals(Grid());
  const CLattice& lattice = Grid().Surface().Lattice();
  ASSERT_EQ(m_Arrays.Normals().size(), m_Arrays.Positions().size());
  const std::span<const std::uint32_t> t = m_Arrays.Triangles();
  for (std::size_t k = 0; k < t.size(); k += 3) {
    for (const std::uint32_t v : {t[k], t[k + 1]}) {
      const Vector3 p = At(v);
      const std::size_t point = lattice.Index(static_cast<int>(std::lround(lattice.ColumnOf(p.x))),
                                              static_cast<int>(std::lround(lattice.RowOf(p.y))));
      EXPECT_LT(Length(NormalAt(v) - lattice.PointNormals()[point]), kFloatError);
    }
    const Vector3 c = At(t[k + 2]);
    const CQuadT* cell = Tree().PointInCell(c.x, c.y);
    EXPECT_LT(Length(NormalAt(t[k + 2]) - lattice.CellNormals()[lattice.CellIndex(cell->X0(), cell->Y0())]),
              kFloatError);
  }
}

TEST_F(SurfaceArraysTest, LinesAreTheSidesOfTheLeavesByTheirLength) {
  MakeLeaf(Tree(), 1, 2, 2);
  Settle();
  m_Arrays.RefreshLines(Grid());
  // Of 40 sides of 4 x 4 cells the four around the split cell are halved; four more lie inside it.
  EXPECT_EQ(Lines(2).size(), 36U);
  EXPECT_EQ(Lines(1).size(), 8U + 4U);
  EXPECT_TRUE(Lines(0).empty());
}

TEST_F(SurfaceArraysTest, LinesAreTheLeafEdgesOfAnyTree) {
  for (std::uint32_t seed = 1; seed <= 8; ++seed) {
    Randomised(seed);
    m_Arrays.RefreshLines(Grid());
    const CLattice& lattice = Grid().Surface().Lattice();
    for (int level = 0; level <= 4; ++level) {
      std::set<Line> expected;
      const int step = 1 << level;
      const auto add = [&](const CEdge& e) {
        if (!e.IsLeaf() || e.HasBothMarks()) return;
        const auto at = [&](int column, int row) {
          return std::pair<double, double>(static_cast<float>(lattice.XOf(column)),
                                           static_cast<float>(lattice.YOf(row)));
        };
        expected.insert({at(e.Xa(), e.Ya()), at(e.Xb(), e.Yb())});
      };
      for (int across = 0; across <= 16; across += step) {
        for (int along = 0; along < 16; along += step) {
          add(Tree().HorizontalEdge(level, along, across));
          add(Tree().VerticalEdge(level, across, along));
        }
      }
      EXPECT_EQ(Lines(level), expected) << "seed " << seed << " level " << level;
    }
  }
}

TEST_F(SurfaceArraysTest, EdgesInsideADiscontinuityAreLeftOut) {
  MakeLeaf(Tree(), 2, 1, 1, 15);
  MakeLeaf(Tree(), 2, 2, 1, 15);
  Settle();
  m_Arrays.RefreshLines(Grid());
  EXPECT_EQ(Lines(2).size(), 39U);
}

TEST_F(SurfaceArraysTest, NormalSegmentsStandOnThePointsAndTheCentres) {
  const CRamp ramp;
  SetSurface(Grid(), ramp);
  m_Arrays.RefreshPointNormals(Grid(), 2);
  m_Arrays.RefreshCellNormals(Grid(), 3);
  ASSERT_EQ(m_Arrays.PointNormals().size(), 6 * 25U);
  ASSERT_EQ(m_Arrays.CellNormals().size(), 6 * 16U);
  for (const auto& [segments, length] : {std::pair{m_Arrays.PointNormals(), 2.0}, {m_Arrays.CellNormals(), 3.0}}) {
    for (std::size_t end = 0; end < segments.size() / 3; end += 2) {
      const Vector3 foot = Entry(segments, end);
      EXPECT_NEAR(foot.z, ramp(foot.x, foot.y), kFloatError);
      EXPECT_LT(Length(Entry(segments, end + 1) - foot - length * ramp.Normal()), 1e-4);
    }
  }
}

TEST_F(SurfaceArraysTest, WhereThereIsNoNormalThereIsNoSegment) {
  // A cell wholly in a discontinuity has none; the corner of the model lies on that cell alone.
  MakeLeaf(Tree(), 2, 0, 0, 15);
  Settle();
  m_Arrays.RefreshPointNormals(Grid(), 1);
  m_Arrays.RefreshCellNormals(Grid(), 1);
  EXPECT_EQ(m_Arrays.CellNormals().size(), 6 * 15U);
  EXPECT_EQ(m_Arrays.PointNormals().size(), 6 * 24U);
  EXPECT_TRUE(std::ranges::all_of(m_Arrays.CellNormals(), [](float c) { return std::isfinite(c); }));
}

TEST_F(SurfaceArraysTest, SegmentsTakeAnotherLength) {
  SetSurface(Grid(), CFlat{});
  m_Arrays.RefreshPointNormals(Grid(), 1);
  m_Arrays.RefreshPointNormals(Grid(), 5);
  const std::span<const float> ends = m_Arrays.PointNormals();
  ASSERT_EQ(ends.size(), 6 * 25U);
  EXPECT_FLOAT_EQ(ends[5] - ends[2], 5);
}

TEST_F(SurfaceArraysTest, FollowTheSurfaceTheSubdivisionAndTheExtent) {
  m_Arrays.RefreshSurface(Grid());
  SetSurface(Grid(), CFlat{2.5});
  m_Arrays.RefreshSurface(Grid());
  for (std::uint32_t v = 0; v < 41; ++v) EXPECT_FLOAT_EQ(static_cast<float>(At(v).z), 2.5F);
  Grid().Surface().SetExtent({0, 10, 0, 10});
  m_Arrays.RefreshSurface(Grid());
  for (std::uint32_t v = 0; v < 41; ++v) EXPECT_LE(At(v).y, 10);
  MakeLeaf(Tree(), 1, 0, 0);
  Settle();
  m_Arrays.RefreshSurface(Grid());
  EXPECT_EQ(m_Arrays.Positions().size(), 3 * (30U + 19U));
}

TEST_F(SurfaceArraysTest, AnotherGridIsTakenUp) {
  m_Arrays.RefreshNormals(Grid());
  CTestGrid other(5, 3);
  SetSurface(other.m_Grid, CFlat{1});
  m_Arrays.RefreshNormals(other.m_Grid);
  EXPECT_EQ(m_Arrays.Positions().size(), 3 * (81U + 64U));
  EXPECT_EQ(m_Arrays.Normals().size(), m_Arrays.Positions().size());
}

TEST_F(SurfaceArraysTest, ATickRefillsWithoutAllocating) {
  m_Arrays.RefreshNormals(Grid());
  m_Arrays.RefreshLines(Grid());
  SetSurface(Grid(), CBump{});
  const std::size_t before = AllocationCount();
  m_Arrays.RefreshNormals(Grid());
  m_Arrays.RefreshLines(Grid());
  EXPECT_EQ(AllocationCount(), before);
}

TEST_F(SurfaceArraysTest, WhatHasNotChangedIsNotRefilled) {
  m_Arrays.RefreshSurface(Grid());
  const float before = m_Arrays.Positions()[2];
  // Behind the back of the revisions.
  for (double& z : Grid().Surface().Lattice().Heights()) z = 77;
  m_Arrays.RefreshSurface(Grid());
  EXPECT_EQ(m_Arrays.Positions()[2], before);
  Grid().Surface().Reconstruct();
  m_Arrays.RefreshSurface(Grid());
  EXPECT_EQ(m_Arrays.Positions()[2], before);
}
