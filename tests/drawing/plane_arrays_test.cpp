#include <array>
#include <map>
#include <set>
#include <tuple>
#include <vector>

#include <gtest/gtest.h>

#include "drawing/CPlaneArrays.h"
#include "support/GridBuilders.h"

namespace {

using Step = std::tuple<int, int, bool>;  // column and row of the start, horizontal

class PlaneArraysTest : public ::testing::Test {
 protected:
  CGrid& Grid() { return m_Grid.m_Grid; }
  void Refresh() {
    Grid().Surface().Tree().ListLeaves();
    m_Arrays.RefreshSubdivision(Grid());
  }

  // The lattice steps that the lines cover, each of which must be covered once.
  static void AddSteps(std::span<const float> vertices, int level, std::map<Step, int>& steps) {
    for (std::size_t k = 0; k < vertices.size(); k += 4) {
      const bool horizontal = vertices[k + 1] == vertices[k + 3];
      const auto x = static_cast<int>(vertices[k]);
      const auto y = static_cast<int>(vertices[k + 1]);
      const auto length = static_cast<int>(vertices[k + 2] - vertices[k] + vertices[k + 3] - vertices[k + 1]);
      for (int s = 0; s < length; ++s) {
        const Step step(horizontal ? x + s : x, horizontal ? y : y + s, horizontal);
        EXPECT_TRUE(steps.emplace(step, level).second);
      }
    }
  }
  std::map<Step, int> StepsOfLines() {
    std::map<Step, int> steps;
    for (int level = 0; level <= Grid().Surface().Lattice().Level(); ++level)
      AddSteps(m_Arrays.Lines(level), level, steps);
    return steps;
  }

  CTestGrid m_Grid;
  CPlaneArrays m_Arrays;
};

// The same from the edges, one by one.
void AddEdge(const CEdge& edge, bool inside, std::map<Step, int>& steps) {
  if (!edge.IsLeaf()) {
    for (int k = 0; k < 2; ++k) AddEdge(edge.Half(k), inside, steps);
    return;
  }
  if (edge.HasBothMarks() != inside) return;
  const bool horizontal = edge.IsHorizontal();
  const int length = edge.Xb() - edge.Xa() + edge.Yb() - edge.Ya();
  int level = 0;
  while (1 << level < length) ++level;
  for (int s = 0; s < length; ++s)
    steps[{horizontal ? edge.Xa() + s : edge.Xa(), horizontal ? edge.Ya() : edge.Ya() + s, horizontal}] = level;
}
std::map<Step, int> StepsOfEdges(const CQuadTree& tree, bool inside) {
  std::map<Step, int> steps;
  tree.ForEachLeaf([&](const CQuadT& cell) {
    for (int side = 0; side < 4; ++side) AddEdge(cell.Edge(side), inside, steps);
  });
  return steps;
}

}  // namespace

TEST_F(PlaneArraysTest, UniformGridIsOneLinePerRowAndColumn) {
  Refresh();
  EXPECT_EQ(m_Arrays.Lines(2).size(), 2U * 5U * 4U);
  EXPECT_EQ(StepsOfLines(), StepsOfEdges(Grid().Surface().Tree(), false));
}

TEST_F(PlaneArraysTest, EverySideIsDrawnOnceAtItsLevel) {
  for (std::uint32_t seed = 1; seed <= 8; ++seed) {
    Randomise(Grid().Surface().Tree(), seed);
    Refresh();
    EXPECT_EQ(StepsOfLines(), StepsOfEdges(Grid().Surface().Tree(), false)) << seed;
  }
}

TEST_F(PlaneArraysTest, SidesInsideADiscontinuityAreApart) {
  MakeLeaf(Grid().Surface().Tree(), 1, 2, 3, CellFlag::kTriangles);
  MakeLeaf(Grid().Surface().Tree(), 1, 3, 3, CellFlag::kTriangles);
  Grid().Surface().Tree().RefreshEdgeMarks();
  Refresh();
  EXPECT_EQ(std::vector<float>(m_Arrays.LinesInside().begin(), m_Arrays.LinesInside().end()),
            (std::vector<float>{6, 6, 6, 8}));
  EXPECT_FALSE(StepsOfLines().contains({6, 6, false}));
}

TEST_F(PlaneArraysTest, GapsAreTheMarkedTriangles) {
  MakeLeaf(Grid().Surface().Tree(), 2, 1, 0, 1U << kTop);
  Grid().Surface().Tree().RefreshEdgeMarks();
  Refresh();
  EXPECT_EQ(std::vector<float>(m_Arrays.Gaps().begin(), m_Arrays.Gaps().end()), (std::vector<float>{8, 4, 4, 4, 6, 2}));
}

TEST_F(PlaneArraysTest, ArraysFollowTheSubdivision) {
  Refresh();
  EXPECT_TRUE(m_Arrays.Lines(1).empty());
  MakeLeaf(Grid().Surface().Tree(), 1, 0, 0);
  Refresh();
  EXPECT_FALSE(m_Arrays.Lines(1).empty());
}

TEST_F(PlaneArraysTest, FrozenPointsAreThoseInUse) {
  Grid().PaintFreezeMap(kOblong.x0, kOblong.y0, true);
  Grid().Surface().Lattice().Set(Grid().Surface().Lattice().Index(1, 1), PointFlag::kFrozen);
  m_Arrays.RefreshFrozen(Grid());
  std::set<std::pair<float, float>> drawn;
  for (std::size_t k = 0; k < m_Arrays.Frozen().size(); k += 2)
    drawn.emplace(m_Arrays.Frozen()[k], m_Arrays.Frozen()[k + 1]);
  EXPECT_EQ(drawn, (std::set<std::pair<float, float>>{{0, 0}, {4, 0}, {0, 4}, {0, 8}}));
}

TEST_F(PlaneArraysTest, FrozenPointsFollowTheBrush) {
  Grid().PaintFreezeMap(kOblong.x0, kOblong.y0, true);
  m_Arrays.RefreshFrozen(Grid());
  Grid().PaintFreezeMap(kOblong.x0, kOblong.y0, false);
  m_Arrays.RefreshFrozen(Grid());
  EXPECT_TRUE(m_Arrays.Frozen().empty());
}
