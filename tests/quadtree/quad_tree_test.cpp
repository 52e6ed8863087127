#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

#include <gtest/gtest.h>

#include "quadtree/CQuadTree.h"
#include "support/ConsoleCapture.h"
#include "support/TreeBuilders.h"
#include "support/TreeReference.h"

namespace {

using EdgeMark::kAboveOrLeft;
using EdgeMark::kBelowOrRight;

std::array<int, 4> RectOf(const CQuadT& cell) { return {cell.X0(), cell.Y0(), cell.X1(), cell.Y1()}; }
std::array<int, 4> EndsOf(const CEdge& edge) { return {edge.Xa(), edge.Ya(), edge.Xb(), edge.Yb()}; }

template <typename Visit>
void ForEachCell(CQuadT& cell, Visit&& visit) {
  visit(cell);
  if (!cell.HasChildren()) return;
  for (int k = 0; k < 4; ++k) ForEachCell(cell.Child(k), visit);
}

TEST(QuadTree, ChildrenAreSouthWestSouthEastNorthEastNorthWest) {
  CTestTree test(3);
  EXPECT_EQ(RectOf(test.Root()), (std::array{0, 0, 8, 8}));
  const CQuadT& cell = test.Root().Child(1);
  EXPECT_EQ(RectOf(cell), (std::array{4, 0, 8, 4}));
  EXPECT_EQ(RectOf(cell.Child(0)), (std::array{4, 0, 6, 2}));
  EXPECT_EQ(RectOf(cell.Child(1)), (std::array{6, 0, 8, 2}));
  EXPECT_EQ(RectOf(cell.Child(2)), (std::array{6, 2, 8, 4}));
  EXPECT_EQ(RectOf(cell.Child(3)), (std::array{4, 2, 6, 4}));
}

TEST(QuadTree, CornersRunCounterClockwiseFromTheLowerLeft) {
  CTestTree test(3);
  const CQuadT& cell = test.Root().Child(1);
  EXPECT_EQ(cell.Corner(0), (std::array{4, 0}));
  EXPECT_EQ(cell.Corner(1), (std::array{8, 0}));
  EXPECT_EQ(cell.Corner(2), (std::array{8, 4}));
  EXPECT_EQ(cell.Corner(3), (std::array{4, 4}));
}

TEST(QuadTree, EdgesAreBottomRightTopLeft) {
  CTestTree test(3);
  const CQuadT& cell = test.Root().Child(2).Child(3);
  EXPECT_EQ(RectOf(cell), (std::array{4, 6, 6, 8}));
  EXPECT_EQ(EndsOf(cell.Edge(kBottom)), (std::array{4, 6, 6, 6}));
  EXPECT_EQ(EndsOf(cell.Edge(kRight)), (std::array{6, 6, 6, 8}));
  EXPECT_EQ(EndsOf(cell.Edge(kTop)), (std::array{4, 8, 6, 8}));
  EXPECT_EQ(EndsOf(cell.Edge(kLeft)), (std::array{4, 6, 4, 8}));
}

TEST(QuadTree, EveryCellHasTheEdgesOfItsRectangle) {
  CTestTree test(4);
  ForEachCell(test.Root(), [](const CQuadT& cell) {
    for (int side = 0; side < 4; ++side) {
      const auto a = cell.Corner(side);
      const auto b = cell.Corner((side + 1) % 4);
      const bool forward = side == kBottom || side == kRight;
      const std::array<int, 4> ends{forward ? a[0] : b[0], forward ? a[1] : b[1], forward ? b[0] : a[0],
                                    forward ? b[1] : a[1]};
      ASSERT_EQ(EndsOf(cell.Edge(side)), ends);
    }
  });
}

TEST(QuadTree, NeighboursShareTheirEdge) {
  CTestTree test(4);
  for (int level = 0; level < 4; ++level) {
    for (int j = 0; j + 1 < 16 >> level; ++j) {
      for (int i = 0; i + 1 < 16 >> level; ++i) {
        CQuadT& cell = test.m_Tree.CellAt(level, i, j);
        ASSERT_EQ(&cell.Edge(kRight), &test.m_Tree.CellAt(level, i + 1, j).Edge(kLeft));
        ASSERT_EQ(&cell.Edge(kTop), &test.m_Tree.CellAt(level, i, j + 1).Edge(kBottom));
      }
    }
  }
}

TEST(QuadTree, ChildrenStandOnTheHalvesOfTheirParentsEdges) {
  CTestTree test(2);
  CQuadT& root = test.Root();
  EXPECT_EQ(&root.Child(0).Edge(kBottom), &root.Edge(kBottom).Half(0));
  EXPECT_EQ(&root.Child(1).Edge(kBottom), &root.Edge(kBottom).Half(1));
  EXPECT_EQ(&root.Child(1).Edge(kRight), &root.Edge(kRight).Half(0));
  EXPECT_EQ(&root.Child(2).Edge(kRight), &root.Edge(kRight).Half(1));
  EXPECT_EQ(&root.Child(3).Edge(kTop), &root.Edge(kTop).Half(0));
  EXPECT_EQ(&root.Child(2).Edge(kTop), &root.Edge(kTop).Half(1));
  EXPECT_EQ(&root.Child(0).Edge(kLeft), &root.Edge(kLeft).Half(0));
  EXPECT_EQ(&root.Child(3).Edge(kLeft), &root.Edge(kLeft).Half(1));
}

TEST(QuadTree, InnerEdgesRunFromTheCentreToTheSidesInSideOrder) {
  CTestTree test(2);
  const auto inner = test.Root().InnerEdges();
  EXPECT_EQ(EndsOf(*inner[kBottom]), (std::array{2, 0, 2, 2}));
  EXPECT_EQ(EndsOf(*inner[kRight]), (std::array{2, 2, 4, 2}));
  EXPECT_EQ(EndsOf(*inner[kTop]), (std::array{2, 2, 2, 4}));
  EXPECT_EQ(EndsOf(*inner[kLeft]), (std::array{0, 2, 2, 2}));
}

class QuadTreeOfLevel : public testing::TestWithParam<int> {};
INSTANTIATE_TEST_SUITE_P(Levels, QuadTreeOfLevel, testing::Values(1, 2, 5, 7));

TEST_P(QuadTreeOfLevel, IsCompleteAndLookedUpByPlace) {
  const int rootLevel = GetParam();
  CTestTree test(rootLevel);
  std::size_t cells = 0;
  ForEachCell(test.Root(), [&](CQuadT& cell) {
    ++cells;
    const int level = cell.Level();
    ASSERT_EQ(cell.HasChildren(), level > 0);
    ASSERT_EQ(RectOf(cell), (std::array{cell.X0(), cell.Y0(), cell.X0() + (1 << level), cell.Y0() + (1 << level)}));
    ASSERT_EQ(&test.m_Tree.CellAt(level, cell.X0() >> level, cell.Y0() >> level), &cell);
    ASSERT_EQ(&test.m_Tree.HorizontalEdge(level, cell.X0(), cell.Y0()), &cell.Edge(kBottom));
    ASSERT_EQ(&test.m_Tree.HorizontalEdge(level, cell.X0(), cell.Y1()), &cell.Edge(kTop));
    ASSERT_EQ(&test.m_Tree.VerticalEdge(level, cell.X0(), cell.Y0()), &cell.Edge(kLeft));
    ASSERT_EQ(&test.m_Tree.VerticalEdge(level, cell.X1(), cell.Y0()), &cell.Edge(kRight));
  });
  EXPECT_EQ(cells, ((std::size_t{4} << (2 * rootLevel)) - 1) / 3);
  EXPECT_EQ(test.m_Tree.Level(), rootLevel);
}

TEST_P(QuadTreeOfLevel, StartsWithTheFinestCellsActive) {
  CTestTree test(GetParam());
  ForEachCell(test.Root(), [](CQuadT& cell) {
    const bool finest = cell.Level() == 0;
    ASSERT_EQ(cell.IsActive(), finest);
    ASSERT_EQ(cell.Flags(), 0U);
    for (int side = 0; side < 4; ++side) ASSERT_EQ(cell.Edge(side).IsLeaf(), finest);
  });
  EXPECT_EQ(test.m_Tree.LeafCount(), 1 << (2 * GetParam()));
  EXPECT_EQ(test.m_Lattice.Count(PointFlag::kInUse), 0U);
}

TEST_P(QuadTreeOfLevel, StartLevelActivatesExactlyOneGeneration) {
  CTestTree test(GetParam());
  for (const int depth : {0, 1, GetParam(), GetParam() - 1}) {
    test.m_Tree.SetStartLevel(depth);
    EXPECT_EQ(MismatchOfSubdivision(test.m_Tree, CReferenceTree(GetParam(), depth)), "") << "depth " << depth;
    EXPECT_EQ(test.m_Tree.LeafCount(), 1 << (2 * depth));
    EXPECT_EQ(test.m_Lattice.Count(PointFlag::kInUse),
              static_cast<std::size_t>((1 << depth) + 1) * ((1U << depth) + 1));
  }
}

TEST(QuadTree, ModelRectanglesDivideTheExtent) {
  CTestTree test(2);
  const CCellRect root = test.Root().ModelRect();
  EXPECT_EQ((std::array{root.x, root.y, root.width, root.height}), (std::array{-3.5, 20.0, 16.0, 6.0}));
  const CCellRect cell = test.m_Tree.CellAt(0, 3, 2).ModelRect();
  EXPECT_EQ((std::array{cell.x, cell.y, cell.width, cell.height}), (std::array{8.5, 23.0, 4.0, 1.5}));
}

TEST(QuadTree, SurfaceStartsFlatAndUpright) {
  CTestTree test(2);
  ForEachCell(test.Root(), [](const CQuadT& cell) {
    ASSERT_EQ(cell.Surface().m_CellNormal, (Vector3{0, 0, 1}));
    for (std::size_t k = 0; k < 4; ++k) {
      ASSERT_EQ(cell.Surface().m_aTriangleNormals[k], (Vector3{0, 0, 1}));
      ASSERT_EQ(cell.Surface().m_afTriangleZ[k], 0.0);
    }
  });
}

TEST(QuadTree, TriangleCentresLieTwoThirdsTowardsTheSides) {
  CTestTree test(2);
  const CQuadT& cell = test.m_Tree.CellAt(1, 1, 0);  // 4.5..12.5 by 20..23
  EXPECT_EQ(cell.TriangleCentre(kBottom), (Vector3{8.5, 20.5, 0}));
  EXPECT_EQ(cell.TriangleCentre(kTop), (Vector3{8.5, 22.5, 0}));
  EXPECT_DOUBLE_EQ(cell.TriangleCentre(kRight).x, (2 * 12.5 + 8.5) / 3);
  EXPECT_DOUBLE_EQ(cell.TriangleCentre(kLeft).x, (2 * 4.5 + 8.5) / 3);
  EXPECT_EQ(cell.TriangleCentre(kRight).y, 21.5);
  EXPECT_EQ(cell.TriangleCentre(kLeft).y, 21.5);
}

TEST(QuadTree, TriangleCentreHasTheMeanHeightOfItsCorners) {
  CTestTree test(2, 1);
  const CQuadT& cell = test.Root().Child(2);
  const std::array<double, 4> corners{1, 2, 4, 9};  // with the centre at 4
  for (int k = 0; k < 4; ++k) {
    const auto [column, row] = cell.Corner(k);
    test.m_Lattice.Heights()[test.m_Lattice.Index(column, row)] = corners[static_cast<std::size_t>(k)];
  }
  const std::array<double, 4> means{7.0 / 3, 10.0 / 3, 17.0 / 3, 14.0 / 3};
  for (int k = 0; k < 4; ++k) EXPECT_DOUBLE_EQ(cell.TriangleCentre(k).z, means[static_cast<std::size_t>(k)]) << k;
}

TEST(QuadTree, ContainsItsBorder) {
  CTestTree test(2);
  const CQuadT& cell = test.m_Tree.CellAt(1, 1, 0);  // 2..4 by 0..2
  EXPECT_TRUE(cell.Contains(2, 0));
  EXPECT_TRUE(cell.Contains(4, 2));
  EXPECT_FALSE(cell.Contains(1.999, 1));
  EXPECT_FALSE(cell.Contains(4.001, 1));
  EXPECT_FALSE(cell.Contains(3, -0.001));
  EXPECT_FALSE(cell.Contains(3, 2.001));
}

TEST(QuadTree, ResetForgetsFlagsMarksAndSubdivision) {
  CTestTree test(4, 2);
  Randomise(test.m_Tree, 7, 30);
  MakeLeaf(test.m_Tree, 1, 3, 3, 1);
  test.m_Tree.CellAt(3, 0, 1).SetFlags(CellFlag::kSelected);
  test.m_Tree.Reset(3);
  const CReferenceTree fresh(4, 3);
  EXPECT_EQ(MismatchOfSubdivision(test.m_Tree, fresh), "");
  EXPECT_EQ(MismatchOfFlags(test.m_Tree, fresh), "");
  EXPECT_EQ(MismatchOfMarks(test.m_Tree, fresh), "");
}

TEST(QuadTree, AreaTermsOfAUniformGridAreOneCellPerPointAndLessAtTheBorder) {
  CTestTree test(4, 3);
  test.m_Tree.ForEachLeaf([&](const CQuadT& leaf) {
    for (int side = 0; side < 4; ++side) leaf.Edge(side).AddAreaTerm(leaf.X0() + 1, leaf.Y0() + 1, test.m_Lattice);
  });
  const auto weight = [&](int column, int row) {
    return test.m_Lattice.Smoothness()[test.m_Lattice.Index(column, row)];
  };
  EXPECT_EQ(weight(6, 10), 4.0) << "cells are two steps wide";
  EXPECT_EQ(weight(6, 0), 2.0);
  EXPECT_EQ(weight(16, 10), 2.0);
  EXPECT_EQ(weight(0, 16), 1.0);
  EXPECT_EQ(weight(5, 5), 0.0) << "a centre is no point";
}

TEST(QuadTreeLeaves, AreListedInChildOrderWithTheirLowerLeftPoints) {
  CTestTree test(3, 1);
  test.Root().Child(1).subdiv(false);
  std::vector<const CQuadT*> cells;
  for (const CLeaf& leaf : test.m_Tree.Leaves()) {
    cells.push_back(leaf.m_pCell);
    EXPECT_EQ(leaf.m_uPoint, test.m_Lattice.Index(leaf.m_pCell->X0(), leaf.m_pCell->Y0()));
  }
  const CQuadT& split = test.Root().Child(1);
  EXPECT_EQ(cells, (std::vector<const CQuadT*>{&test.Root().Child(0), &split.Child(0), &split.Child(1), &split.Child(2),
                                               &split.Child(3), &test.Root().Child(2), &test.Root().Child(3)}));
}

TEST(QuadTreeLeaves, KeepTheWeightsOfCentresThatAreNotTheMeanOfTheCorners) {
  CTestTree test(3, 1);
  test.Root().Child(1).subdiv(false);
  test.Root().Child(3).SetFlags(4);
  const auto leaves = test.m_Tree.Leaves();
  const std::size_t left = 0;  // its right side is split
  const std::size_t marked = 6;
  for (std::size_t k = 1; k < 5; ++k) EXPECT_EQ(leaves[k].m_uCentre, CLeaf::kMeanOfCorners);
  ASSERT_NE(leaves[left].m_uCentre, CLeaf::kMeanOfCorners);
  ASSERT_NE(leaves[marked].m_uCentre, CLeaf::kMeanOfCorners);
  EXPECT_EQ(test.m_Tree.CentreOf(leaves[left]).m_uCount, 5U);
  EXPECT_EQ(test.m_Tree.CentreOf(leaves[marked]).m_afWeights[0], 0.5 / 3 * 2);
}

TEST(QuadTreeLeaves, FollowEveryChange) {
  CTestTree test(3, 1);
  const auto count = [&] { return test.m_Tree.Leaves().size(); };
  EXPECT_EQ(count(), 4U);
  test.Root().Child(0).subdiv(false);
  EXPECT_EQ(count(), 7U);
  test.Root().subdiv_t2();
  EXPECT_EQ(count(), 1U);
  test.m_Tree.SetStartLevel(3);
  EXPECT_EQ(count(), 64U);
  test.m_Tree.CellAt(0, 0, 0).SetFlags(1);
  EXPECT_NE(test.m_Tree.Leaves()[0].m_uCentre, CLeaf::kMeanOfCorners);
  test.m_Tree.CellAt(0, 0, 0).ClearFlags(1);
  EXPECT_EQ(test.m_Tree.Leaves()[0].m_uCentre, CLeaf::kMeanOfCorners);
}

TEST(QuadTreeMarks, EachTriangleMarksItsOwnSide) {
  for (int side = 0; side < 4; ++side) {
    CTestTree test(3, 2);
    CQuadT& cell = test.m_Tree.CellAt(1, 1, 2);
    cell.SetFlags(1U << side);
    test.m_Tree.RefreshEdgeMarks();
    const bool lower = side == kBottom || side == kRight;
    for (int k = 0; k < 4; ++k) {
      EXPECT_EQ(cell.Edge(k).HasMark(kAboveOrLeft), k == side && lower);
      EXPECT_EQ(cell.Edge(k).HasMark(kBelowOrRight), k == side && !lower);
    }
  }
}

TEST(QuadTreeMarks, BothSidesOfAnEdgeCutIt) {
  CTestTree test(3, 2);
  MakeLeaf(test.m_Tree, 1, 1, 1, 1U << kRight);
  MakeLeaf(test.m_Tree, 1, 2, 1, 1U << kLeft);
  test.m_Tree.RefreshEdgeMarks();
  EXPECT_TRUE(test.m_Tree.CellAt(1, 1, 1).Edge(kRight).HasBothMarks());
  EXPECT_FALSE(test.m_Tree.CellAt(1, 1, 1).Edge(kTop).HasMark(EdgeMark::kBoth));
}

TEST(QuadTreeMarks, TheBorderIsMarkedFromOutsideThroughAllHalves) {
  CTestTree test(3, 1);
  for (int level = 0; level <= 3; ++level) {
    const int last = (8 >> level) - 1;
    for (int i = 0; i <= last; ++i) {
      const CEdge& bottom = test.m_Tree.CellAt(level, i, 0).Edge(kBottom);
      const CEdge& right = test.m_Tree.CellAt(level, last, i).Edge(kRight);
      const CEdge& top = test.m_Tree.CellAt(level, i, last).Edge(kTop);
      const CEdge& left = test.m_Tree.CellAt(level, 0, i).Edge(kLeft);
      for (const CEdge* edge : {&bottom, &right}) EXPECT_TRUE(edge->HasMark(kBelowOrRight) && !edge->HasBothMarks());
      for (const CEdge* edge : {&top, &left}) EXPECT_TRUE(edge->HasMark(kAboveOrLeft) && !edge->HasBothMarks());
    }
  }
}

TEST(QuadTreeMarks, AMarkedCellDoesNotMarkTheSidesOfItsParts) {
  CTestTree test(3, 1);
  test.m_Tree.CellAt(2, 0, 0).SetFlags(1U << kRight);
  test.m_Tree.RefreshEdgeMarks();
  EXPECT_TRUE(test.m_Tree.CellAt(2, 0, 0).Edge(kRight).HasMark(kAboveOrLeft));
  EXPECT_FALSE(test.m_Tree.CellAt(1, 1, 0).Edge(kRight).HasMark(kAboveOrLeft));
}

TEST(QuadTreeMarks, AreTakenBackWithTheFlags) {
  CTestTree test(3, 1);
  for (int level = 0; level <= 3; ++level) test.m_Tree.CellAt(level, 0, 0).SetFlags(CellFlag::kTriangles);
  test.m_Tree.RefreshEdgeMarks();
  for (int level = 0; level <= 3; ++level) test.m_Tree.CellAt(level, 0, 0).ClearFlags(CellFlag::kTriangles);
  test.m_Tree.RefreshEdgeMarks();
  EXPECT_EQ(MismatchOfMarks(test.m_Tree, CReferenceTree(3, 1)), "");
}

}  // namespace
