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

constexpr const char* kNotALeaf = "Error CQuadT::subdiv() Attempt to subdivise a non-leaf cell\n";
constexpr const char* kHighestLevel = "Error CQuadT::subdiv()  Attempt to subdivide a highest level cell\n";
constexpr const char* kNotInCell = "Error : CQuadT::subdiv the cell you want is not in the current one\n";
constexpr const char* kNeverHappens = "Error CQuadT::subdiv_t\t\tThis message should NEVER happen\n";

bool InUse(const CTestTree& test, int column, int row) {
  return test.m_Lattice.Has(test.m_Lattice.Index(column, row), PointFlag::kInUse);
}

TEST(QuadTreeSplit, ActivatesTheChildrenAndTheirCorners) {
  CTestTree test(3, 1);
  CQuadT& cell = test.m_Tree.CellAt(2, 1, 0);  // 4..8 by 0..4
  cell.subdiv(false);
  EXPECT_FALSE(cell.IsActive());
  for (int k = 0; k < 4; ++k) EXPECT_TRUE(cell.Child(k).IsActive());
  for (const int row : {0, 2, 4}) {
    for (const int column : {4, 6, 8}) EXPECT_TRUE(InUse(test, column, row)) << column << ", " << row;
  }
  EXPECT_FALSE(InUse(test, 2, 0));
}

TEST(QuadTreeSplit, OpensTheOuterEdgesAndLightsTheInnerOnes) {
  CTestTree test(3, 1);
  CQuadT& cell = test.m_Tree.CellAt(2, 1, 0);
  cell.subdiv(false);
  for (int side = 0; side < 4; ++side) {
    EXPECT_FALSE(cell.Edge(side).IsLeaf());
    EXPECT_TRUE(cell.Edge(side).Half(0).IsLeaf());
    EXPECT_TRUE(cell.Edge(side).Half(1).IsLeaf());
    EXPECT_TRUE(cell.InnerEdges()[static_cast<std::size_t>(side)]->IsLeaf());
  }
}

TEST(QuadTreeSplit, WithoutInterpolationKeepsAllHeights) {
  CTestTree test(3, 1);
  SetRandomHeights(test.m_Lattice, 5);
  const std::vector<double> before = test.m_Lattice.Heights();
  test.m_Tree.CellAt(2, 1, 0).subdiv(false);
  EXPECT_EQ(test.m_Lattice.Heights(), before);
}

TEST(QuadTreeSplit, InterpolatesTheSidesAndTheCentre) {
  CTestTree test(3, 1);
  Z(test, 4, 0) = 1;
  Z(test, 8, 0) = 2;
  Z(test, 8, 4) = 4;
  Z(test, 4, 4) = 8;
  test.m_Tree.CellAt(2, 1, 0).subdiv(true);
  EXPECT_EQ(Z(test, 6, 0), 1.5);
  EXPECT_EQ(Z(test, 8, 2), 3.0);
  EXPECT_EQ(Z(test, 6, 4), 6.0);
  EXPECT_EQ(Z(test, 4, 2), 4.5);
  EXPECT_EQ(Z(test, 6, 2), 3.75);
}

TEST(QuadTreeSplit, InterpolationOverwritesTheMidpointsThatNeighboursHadSplit) {
  // The cell amid 3 by 3, and its neighbours by side.
  struct CNeighbour {
    int m_iColumn;
    int m_iRow;
    std::array<int, 2> m_aMidpoint;
  };
  constexpr std::array kNeighbours{CNeighbour{1, 0, {6, 4}}, CNeighbour{2, 1, {8, 6}}, CNeighbour{1, 2, {6, 8}},
                                   CNeighbour{0, 1, {4, 6}}};
  for (const CNeighbour& neighbour : kNeighbours) {
    CTestTree test(4, 2);
    const auto& [column, row] = neighbour.m_aMidpoint;
    test.m_Tree.CellAt(2, neighbour.m_iColumn, neighbour.m_iRow).subdiv(true);
    ASSERT_TRUE(InUse(test, column, row));
    Z(test, column, row) = 9;
    test.m_Tree.CellAt(2, 1, 1).subdiv(true);
    EXPECT_EQ(Z(test, column, row), 0.0) << column << ", " << row;
  }
}

TEST(QuadTreeSplit, RefusesACellThatIsNotActive) {
  CTestTree test(3, 1);
  EXPECT_EQ(ConsoleTextOf([&] { test.Root().subdiv(true); }), kNotALeaf);
  EXPECT_EQ(ConsoleTextOf([&] { test.m_Tree.CellAt(0, 0, 0).subdiv(true); }), kNotALeaf);
  EXPECT_EQ(MismatchOfSubdivision(test.m_Tree, CReferenceTree(3, 1)), "");
}

TEST(QuadTreeSplit, RefusesAUnitCell) {
  CTestTree test(3, 3);
  SetRandomHeights(test.m_Lattice, 5);
  const std::vector<double> before = test.m_Lattice.Heights();
  EXPECT_EQ(ConsoleTextOf([&] { test.m_Tree.CellAt(0, 2, 5).subdiv(true); }), kHighestLevel);
  EXPECT_TRUE(test.m_Tree.CellAt(0, 2, 5).IsActive());
  EXPECT_EQ(test.m_Lattice.Heights(), before);
  EXPECT_EQ(MismatchOfSubdivision(test.m_Tree, CReferenceTree(3, 3)), "");
}

TEST(QuadTreeRectangle, RefinesDownToTheCell) {
  CTestTree test(4, 0);
  CQuadT* cell = test.Root().subdiv(6, 4, 8, 6, 0);
  ASSERT_EQ(cell, &test.m_Tree.CellAt(1, 3, 2));
  EXPECT_TRUE(cell->IsActive());
  EXPECT_TRUE(test.m_Tree.CellAt(2, 0, 1).IsActive());
  EXPECT_TRUE(test.m_Tree.CellAt(3, 1, 1).IsActive());
  EXPECT_EQ(test.m_Tree.LeafCount(), 10);
}

TEST(QuadTreeRectangle, RefinementLeavesTheHeightsAlone) {
  CTestTree test(3, 0);
  Z(test, 0, 0) = 8;
  test.Root().subdiv(0, 0, 1, 1, 0);
  EXPECT_EQ(Z(test, 4, 0), 0.0);
}

TEST(QuadTreeRectangle, CoarsensBackToTheCell) {
  CTestTree test(4, 4);
  EXPECT_EQ(test.Root().subdiv(8, 0, 16, 8, 0), &test.Root().Child(1));
  CReferenceTree expected(4, 4);
  expected.Apply({CTreeOp::Kind::kMakeLeaf, 3, 1, 0, 0});
  EXPECT_EQ(MismatchOfSubdivision(test.m_Tree, expected), "");
}

TEST(QuadTreeRectangle, GivesAnActiveCellBackUnchanged) {
  CTestTree test(3, 2);
  EXPECT_EQ(test.Root().subdiv(2, 4, 4, 6, 0), &test.m_Tree.CellAt(1, 1, 2));
  EXPECT_EQ(test.m_Tree.CellAt(1, 1, 2).Flags(), 0U);
  EXPECT_EQ(MismatchOfSubdivision(test.m_Tree, CReferenceTree(3, 2)), "");
}

TEST(QuadTreeRectangle, IsNullOutsideTheRoot) {
  CTestTree test(3, 2);
  EXPECT_EQ(ConsoleTextOf([&] {
              EXPECT_EQ(test.Root().subdiv(-2, 0, 0, 2, 0), nullptr);
              EXPECT_EQ(test.Root().subdiv(0, -2, 2, 0, 0), nullptr);
              EXPECT_EQ(test.Root().subdiv(6, 0, 10, 4, 0), nullptr);
              EXPECT_EQ(test.Root().subdiv(0, 6, 4, 10, 0), nullptr);
            }),
            "");
  EXPECT_EQ(MismatchOfSubdivision(test.m_Tree, CReferenceTree(3, 2)), "");
}

TEST(QuadTreeRectangle, IsNullWhereItStraddlesChildren) {
  CTestTree test(3, 2);
  EXPECT_EQ(test.Root().subdiv(2, 2, 6, 6, 0), nullptr);
  EXPECT_EQ(MismatchOfSubdivision(test.m_Tree, CReferenceTree(3, 2)), "");
}

TEST(QuadTreeRectangle, ARectangleThatIsNoCellEndsAtAUnitCell) {
  CTestTree test(3, 3);
  EXPECT_EQ(ConsoleTextOf([&] { EXPECT_EQ(test.Root().subdiv(5, 2, 6, 2, 0), &test.m_Tree.CellAt(0, 5, 2)); }),
            kNeverHappens);
}

TEST(QuadTreeRectangle, RefusesADormantUnitCellAndGivesTheRoot) {
  CTestTree test(3, 2);
  CQuadT& dormant = test.m_Tree.CellAt(0, 3, 3);
  EXPECT_EQ(ConsoleTextOf([&] { EXPECT_EQ(dormant.subdiv(3, 3, 4, 4, 0), &test.Root()); }),
            "Error CQuadT::subdiv   stop = 0, but the cell is a leaf\n");
}

TEST(QuadTreeMarking, AddsTheFlagsToAnExistingCell) {
  CTestTree test(3, 2);
  CQuadT* cell = test.Root().subdiv(2, 4, 4, 6, 1);
  test.Root().subdiv(2, 4, 4, 6, 4 | CellFlag::kFallingCrease);
  EXPECT_EQ(cell->Flags(), 1U | 4U | 32U);
}

TEST(QuadTreeMarking, ThreeTrianglesOfAnExistingCellBecomeFour) {
  CTestTree test(3, 2);
  EXPECT_EQ(test.Root().subdiv(2, 4, 4, 6, 1 | 2 | 8)->Flags(), 15U);
  EXPECT_EQ(test.Root().subdiv(0, 0, 2, 2, 1 | 4)->Flags(), 5U);
  EXPECT_EQ(test.Root().subdiv(0, 0, 2, 2, 2 | CellFlag::kRisingCrease)->Flags(), 15U | 16U);
  EXPECT_EQ(test.Root().subdiv(6, 6, 8, 8, 16 | 32 | 1)->Flags(), 49U) << "creases are no triangles";
}

TEST(QuadTreeMarking, ThreeTrianglesOfARefinedCellStayThree) {
  CTestTree test(3, 1);
  CQuadT* cell = test.Root().subdiv(2, 4, 4, 6, 1 | 2 | 8);
  EXPECT_EQ(cell->Flags(), 11U);
  EXPECT_TRUE(cell->IsActive());
}

TEST(QuadTreeMarking, DoesNotCoarsen) {
  CTestTree test(3, 3);
  CQuadT* cell = test.Root().subdiv(0, 0, 4, 4, 1);
  ASSERT_EQ(cell, &test.Root().Child(0));
  EXPECT_EQ(cell->Flags(), 1U);
  EXPECT_EQ(MismatchOfSubdivision(test.m_Tree, CReferenceTree(3, 3)), "");
}

TEST(QuadTreeMarking, OtherBitsAloneAreNoMark) {
  CTestTree test(3, 3);
  CQuadT* cell = test.Root().subdiv(0, 0, 4, 4, CellFlag::kSelected);
  EXPECT_TRUE(cell->IsActive()) << "coarsened as without flags";
  EXPECT_EQ(cell->Flags(), 0U);
  EXPECT_EQ(test.Root().subdiv(0, 0, 2, 2, CellFlag::kSelected)->Flags(), 0U) << "refined as without flags";
}

TEST(QuadTreeRefine, SplitsFromTheGivenCellDown) {
  CTestTree test(3, 1);
  CQuadT& start = test.Root().Child(2);
  EXPECT_EQ(start.subdiv_t(7, 4, 8, 5, 3), &test.m_Tree.CellAt(0, 7, 4));
  EXPECT_EQ(test.m_Tree.CellAt(0, 7, 4).Flags(), 3U);
  EXPECT_EQ(test.m_Tree.LeafCount(), 4 + 3 + 3);
}

TEST(QuadTreeRefine, ReportsASplitOfACellThatIsNotActiveAndGoesOn) {
  CTestTree test(3, 1);
  EXPECT_EQ(ConsoleTextOf([&] { EXPECT_EQ(test.Root().subdiv_t(4, 4, 6, 6, 0), &test.m_Tree.CellAt(1, 2, 2)); }),
            kNotALeaf);
  EXPECT_TRUE(test.m_Tree.CellAt(1, 2, 2).IsActive());
}

TEST(QuadTreeRefine, AStraddlingRectangleIsFoundOutWhenTheCellsAreSplit) {
  CTestTree test(3, 1);
  EXPECT_EQ(ConsoleTextOf([&] { EXPECT_EQ(test.Root().Child(0).subdiv_t(1, 1, 3, 3, 0), nullptr); }), "");
  EXPECT_EQ(test.m_Tree.LeafCount(), 4 + 3);
}

TEST(QuadTreeRefine, OnlyTheSouthWestQuarterChecksTheFarSides) {
  CTestTree test(4, 0);
  // Starts in the south-east quarter, reaches above it, and is followed to the north-west quarter of that one.
  EXPECT_EQ(ConsoleTextOf([&] { EXPECT_EQ(test.Root().subdiv(8, 4, 12, 12, 0), nullptr); }), "");
  EXPECT_FALSE(test.m_Tree.CellAt(3, 1, 0).IsActive());
  EXPECT_FALSE(test.m_Tree.CellAt(2, 2, 1).IsActive());
}

TEST(QuadTreeCoarsen, GivesAnActiveCellBack) {
  CTestTree test(3, 2);
  EXPECT_EQ(ConsoleTextOf([&] { EXPECT_EQ(test.m_Tree.CellAt(1, 1, 1).subdiv_t2(), &test.m_Tree.CellAt(1, 1, 1)); }),
            "");
  EXPECT_EQ(MismatchOfSubdivision(test.m_Tree, CReferenceTree(3, 2)), "");
}

TEST(QuadTreeCoarsen, RefusesADormantUnitCell) {
  CTestTree test(3, 2);
  EXPECT_EQ(ConsoleTextOf([&] { test.m_Tree.CellAt(0, 1, 1).subdiv_t2(); }),
            "Error CQuadT::subdiv_t2() The highest level has been reached without the stop barrier\n");
  EXPECT_FALSE(test.m_Tree.CellAt(0, 1, 1).IsActive());
}

TEST(QuadTreeCoarsen, TakesTheWholeTreeBackToOneCell) {
  CTestTree test(4, 4);
  test.Root().subdiv_t2();
  EXPECT_EQ(MismatchOfSubdivision(test.m_Tree, CReferenceTree(4, 0)), "");
}

TEST(QuadTreeCoarsen, KeepsTheSideOfAFinerNeighbourSplit) {
  for (const int side : {kBottom, kRight, kTop, kLeft}) {
    CTestTree test(4, 2);
    CQuadT& cell = test.m_Tree.CellAt(2, 1, 1);  // 4..8 by 4..8
    cell.subdiv(false);
    const std::array<int, 2> away{side == kRight  ? 1
                                  : side == kLeft ? -1
                                                  : 0,
                                  side == kTop      ? 1
                                  : side == kBottom ? -1
                                                    : 0};
    test.m_Tree.CellAt(2, 1 + away[0], 1 + away[1]).subdiv(false);
    cell.subdiv_t2();
    EXPECT_TRUE(cell.IsActive());
    for (int k = 0; k < 4; ++k) {
      const CEdge& edge = cell.Edge(k);
      EXPECT_EQ(edge.IsLeaf(), k != side);
      EXPECT_EQ(edge.Half(0).IsLeaf(), k == side);
      EXPECT_EQ(InUse(test, edge.XMid(), edge.YMid()), k == side);
    }
    EXPECT_FALSE(InUse(test, 6, 6));
  }
}

TEST(QuadTreeCoarsen, ANeighbourThatIsALargerCellDoesNotKeepTheSideSplit) {
  CTestTree test(4, 1);
  CQuadT& quarter = test.Root().Child(0);
  quarter.subdiv(false);
  quarter.Child(1).subdiv(false);
  quarter.Child(1).subdiv_t2();
  EXPECT_TRUE(quarter.Child(1).Edge(kRight).IsLeaf());
  EXPECT_FALSE(InUse(test, 8, 2));
  EXPECT_TRUE(InUse(test, 8, 4));
}

TEST(QuadTreeFindCell, DescendsThroughCellsThatAreNotActive) {
  CTestTree test(3, 2);
  for (const auto& [x, y] : std::vector<std::array<int, 2>>{{0, 0}, {4, 0}, {4, 4}, {0, 4}}) {
    const CQuadT* found = test.Root().FindCell(x, y, x + 4, y + 4);
    ASSERT_NE(found, nullptr);
    EXPECT_TRUE(found->HasRect(x, y, x + 4, y + 4));
  }
  EXPECT_EQ(test.Root().FindCell(0, 0, 8, 8), &test.Root());
  EXPECT_EQ(test.Root().FindCell(6, 2, 8, 4), &test.m_Tree.CellAt(1, 3, 1));
}

TEST(QuadTreeFindCell, StopsAtTheActiveCellAboveASmallerRectangle) {
  CTestTree test(3, 1);
  EXPECT_EQ(test.Root().FindCell(5, 6, 6, 7), &test.Root().Child(2));
  test.m_Tree.SetStartLevel(3);
  EXPECT_EQ(test.Root().FindCell(5, 6, 6, 6), &test.m_Tree.CellAt(0, 5, 6)) << "a unit cell has no children";
}

TEST(QuadTreeFindCell, IsSilentlyNullBesideACellAtTheOrigin) {
  CTestTree test(3, 1);
  const auto isNull = [&](CQuadT& cell, int x, int y) { return cell.FindCell(x, y, x + 4, y + 4) == nullptr; };
  EXPECT_EQ(ConsoleTextOf([&] {
              EXPECT_TRUE(isNull(test.Root(), -4, 0));
              EXPECT_TRUE(isNull(test.Root(), 8, 4));
              EXPECT_TRUE(isNull(test.Root(), 0, -4));
              EXPECT_TRUE(isNull(test.Root(), 4, 8));
              EXPECT_TRUE(isNull(test.Root().Child(0), 4, 0));
            }),
            "");
}

TEST(QuadTreeFindCell, ReportsARectangleBesideAnotherCellOrPartlyOutside) {
  CTestTree test(3, 1);
  EXPECT_EQ(ConsoleTextOf([&] { EXPECT_EQ(test.Root().Child(1).FindCell(0, 0, 4, 4), nullptr); }), kNotInCell);
  EXPECT_EQ(ConsoleTextOf([&] { EXPECT_EQ(test.Root().FindCell(-1, 0, 3, 4), nullptr); }), kNotInCell);
  EXPECT_EQ(ConsoleTextOf([&] { EXPECT_EQ(test.Root().FindCell(6, 0, 9, 3), nullptr); }), kNotInCell);
  EXPECT_EQ(ConsoleTextOf([&] { EXPECT_EQ(test.Root().FindCell(0, -2, 4, 2), nullptr); }), kNotInCell);
  EXPECT_EQ(ConsoleTextOf([&] { EXPECT_EQ(test.Root().FindCell(4, 6, 8, 10), nullptr); }), kNotInCell);
}

TEST(QuadTreeFindCell, TheSouthWestQuarterRefusesStraddlingRectanglesSilently) {
  CTestTree test(3, 2);
  const std::string text = ConsoleTextOf([&] {
    EXPECT_EQ(test.Root().FindCell(2, 2, 6, 4), nullptr);
    EXPECT_EQ(test.Root().FindCell(2, 2, 4, 6), nullptr);
  });
  EXPECT_EQ(text, "");
}

TEST(QuadTreeFindCell, TheOtherQuartersLeaveItToTheNextLevelToReport) {
  CTestTree test(3, 2);
  EXPECT_EQ(ConsoleTextOf([&] { EXPECT_EQ(test.Root().FindCell(4, 2, 6, 6), nullptr); }), kNotInCell) << "south-east";
  EXPECT_EQ(ConsoleTextOf([&] { EXPECT_EQ(test.Root().FindCell(2, 4, 6, 6), nullptr); }), kNotInCell) << "north-west";
  EXPECT_EQ(ConsoleTextOf([&] { EXPECT_EQ(test.Root().FindCell(5, 5, 9, 7), nullptr); }), kNotInCell) << "beyond";
}

}  // namespace
