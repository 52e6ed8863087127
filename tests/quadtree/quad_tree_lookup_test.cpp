#include <limits>

#include <gtest/gtest.h>

#include "quadtree/CQuadTree.h"
#include "quadtree/CSaveQuadT.h"
#include "support/ConsoleCapture.h"
#include "support/TreeBuilders.h"

namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

TEST(PointLocation, FindsTheActiveLeafWhateverItsSize) {
  CTestTree test(3, 1);
  test.m_Tree.CellAt(2, 1, 0).subdiv(false);
  EXPECT_EQ(test.m_Tree.PointInCell_g(1.5, 2.5), &test.m_Tree.CellAt(2, 0, 0));
  EXPECT_EQ(test.m_Tree.PointInCell_g(7.5, 3.5), &test.m_Tree.CellAt(1, 3, 1));
}

TEST(PointLocation, ADividingLineBelongsToTheRightAndUpperCell) {
  CTestTree test(2, 2);
  EXPECT_EQ(test.m_Tree.PointInCell_g(2.0, 0.5), &test.m_Tree.CellAt(0, 2, 0));
  EXPECT_EQ(test.m_Tree.PointInCell_g(0.5, 2.0), &test.m_Tree.CellAt(0, 0, 2));
  EXPECT_EQ(test.m_Tree.PointInCell_g(2.0, 2.0), &test.m_Tree.CellAt(0, 2, 2));
  EXPECT_EQ(test.m_Tree.PointInCell_g(3.0, 1.0), &test.m_Tree.CellAt(0, 3, 1));
}

TEST(PointLocation, TheOuterBorderIsInside) {
  CTestTree test(2, 2);
  EXPECT_EQ(test.m_Tree.PointInCell_g(0.0, 0.0), &test.m_Tree.CellAt(0, 0, 0));
  EXPECT_EQ(test.m_Tree.PointInCell_g(4.0, 1.5), &test.m_Tree.CellAt(0, 3, 1));
  EXPECT_EQ(test.m_Tree.PointInCell_g(4.0, 4.0), &test.m_Tree.CellAt(0, 3, 3));
  EXPECT_EQ(test.m_Tree.PointInCell_g(0.5, 4.0), &test.m_Tree.CellAt(0, 0, 3));
}

TEST(PointLocation, IsSilentlyNullOutside) {
  CTestTree test(2, 2);
  EXPECT_EQ(ConsoleTextOf([&] {
              EXPECT_EQ(test.m_Tree.PointInCell_g(-1e-9, 1.0), nullptr);
              EXPECT_EQ(test.m_Tree.PointInCell_g(4.000001, 1.0), nullptr);
              EXPECT_EQ(test.m_Tree.PointInCell_g(1.0, -1e-9), nullptr);
              EXPECT_EQ(test.m_Tree.PointInCell_g(1.0, 4.000001), nullptr);
            }),
            "");
}

TEST(PointLocation, ReportsACoordinateThatIsNotANumber) {
  CTestTree test(2, 2);
  const char* line = "Error CQuadT::PointInCell_g() This message should NEVER appear !!\n";
  EXPECT_EQ(ConsoleTextOf([&] { EXPECT_EQ(test.m_Tree.PointInCell_g(kNaN, 1.0), nullptr); }), line);
  EXPECT_EQ(ConsoleTextOf([&] { EXPECT_EQ(test.m_Tree.PointInCell_g(1.0, kNaN), nullptr); }), line);
}

TEST(PointLocation, ReportsATreeWithoutActiveCells) {
  CTestTree test(2, 1);
  test.m_Tree.SetStartLevel(3);  // below the finest cells
  EXPECT_EQ(ConsoleTextOf([&] { EXPECT_EQ(test.m_Tree.PointInCell_g(2.5, 1.5), nullptr); }),
            "Error CQuadT::PointInCell_g() stop == 0 but the highest level has been reached\n");
}

TEST(PointLocation, InModelUnitsIsStrictlyInside) {
  CTestTree test(2, 2);
  EXPECT_EQ(test.m_Tree.PointInCell(1.0, 20.5), &test.m_Tree.CellAt(0, 1, 0));
  EXPECT_EQ(test.m_Tree.PointInCell(12.4999, 25.9999), &test.m_Tree.CellAt(0, 3, 3));
  EXPECT_EQ(test.m_Tree.PointInCell(-3.5, 21.0), nullptr);
  EXPECT_EQ(test.m_Tree.PointInCell(12.5, 21.0), nullptr);
  EXPECT_EQ(test.m_Tree.PointInCell(1.0, 20.0), nullptr);
  EXPECT_EQ(test.m_Tree.PointInCell(1.0, 26.0), nullptr);
  EXPECT_EQ(ConsoleTextOf([&] { EXPECT_EQ(test.m_Tree.PointInCell(kNaN, 21.0), nullptr); }), "");
}

TEST(FindEdge, FindsTheSidesOfReachedCells) {
  CTestTree test(3, 1);
  const CQuadT& cell = test.m_Tree.CellAt(2, 1, 1);
  EXPECT_EQ(test.m_Tree.FindEdge(4, 4, 8, 4), &cell.Edge(kBottom));
  EXPECT_EQ(test.m_Tree.FindEdge(8, 4, 8, 8), &cell.Edge(kRight));
  EXPECT_EQ(test.m_Tree.FindEdge(4, 8, 8, 8), &cell.Edge(kTop));
  EXPECT_EQ(test.m_Tree.FindEdge(4, 4, 4, 8), &cell.Edge(kLeft));
  EXPECT_EQ(test.m_Tree.FindEdge(0, 8, 8, 8), &test.Root().Edge(kTop)) << "of a split cell too";
}

TEST(FindEdge, DoesNotFindTheSidesOfDormantCells) {
  CTestTree test(3, 1);
  EXPECT_EQ(test.m_Tree.FindEdge(4, 4, 6, 4), nullptr);
  test.m_Tree.CellAt(2, 1, 0).subdiv(false);
  EXPECT_NE(test.m_Tree.FindEdge(4, 4, 6, 4), nullptr) << "reached from below";
  EXPECT_EQ(test.m_Tree.FindEdge(4, 6, 6, 6), nullptr);
}

TEST(FindEdge, TheRootsSidesAreThereEvenWhenItIsTheOnlyLeaf) {
  CTestTree test(3, 0);
  EXPECT_EQ(test.m_Tree.FindEdge(8, 0, 8, 8), &test.Root().Edge(kRight));
  EXPECT_EQ(test.m_Tree.FindEdge(0, 0, 4, 0), nullptr);
}

TEST(FindEdge, IsNullForEndsThatAreNoEdge) {
  CTestTree test(3, 3);
  EXPECT_EQ(test.m_Tree.FindEdge(2, 2, 1, 2), nullptr) << "second end first";
  EXPECT_EQ(test.m_Tree.FindEdge(1, 1, 2, 2), nullptr) << "slanted";
  EXPECT_EQ(test.m_Tree.FindEdge(3, 3, 3, 3), nullptr) << "no length";
  EXPECT_EQ(test.m_Tree.FindEdge(0, 4, 3, 4), nullptr) << "length no power of two";
  EXPECT_EQ(test.m_Tree.FindEdge(1, 0, 3, 0), nullptr) << "between two edges";
  EXPECT_EQ(test.m_Tree.FindEdge(0, 1, 2, 1), nullptr) << "on a line between those of its length";
  EXPECT_EQ(test.m_Tree.FindEdge(8, 0, 9, 0), nullptr) << "outside";
  EXPECT_EQ(test.m_Tree.FindEdge(-1, 0, 0, 0), nullptr) << "outside";
}

TEST(ManualSetCell, MirrorsTheWantedLeafAtThePoint) {
  CTestTree test(3, 3);
  CSubdivisionRecord record(3);
  record.SetStartLevel(1);
  record.Root().Child(2).subdiv();
  const auto cellAt = [&](double x, double y, const CSaveQuadT& expected) {
    CSaveQuadT* saved = &record.Root();
    const CQuadT* cell = test.m_Tree.getManualSetCell(x, y, saved);
    EXPECT_EQ(saved, &expected);
    return cell;
  };
  EXPECT_EQ(cellAt(3.9, 3.9, record.Root().Child(0)), &test.Root().Child(0));
  EXPECT_EQ(cellAt(4.0, 3.9, record.Root().Child(1)), &test.Root().Child(1));
  EXPECT_EQ(cellAt(3.9, 4.0, record.Root().Child(3)), &test.Root().Child(3));
  EXPECT_EQ(cellAt(5.9, 5.9, record.Root().Child(2).Child(0)), &test.Root().Child(2).Child(0));
  EXPECT_EQ(cellAt(6.0, 5.9, record.Root().Child(2).Child(1)), &test.Root().Child(2).Child(1));
  EXPECT_EQ(cellAt(6.0, 6.0, record.Root().Child(2).Child(2)), &test.Root().Child(2).Child(2));
  EXPECT_EQ(cellAt(5.9, 6.0, record.Root().Child(2).Child(3)), &test.Root().Child(2).Child(3));
  EXPECT_EQ(cellAt(8.0, 8.0, record.Root().Child(2).Child(2)), &test.Root().Child(2).Child(2));
}

TEST(ManualSetCell, AWantedRootIsMirroredByTheRoot) {
  CTestTree test(2, 2);
  CSubdivisionRecord record(2);
  record.SetStartLevel(0);
  CSaveQuadT* saved = &record.Root();
  EXPECT_EQ(test.m_Tree.getManualSetCell(1.0, 3.0, saved), &test.Root());
  EXPECT_EQ(saved, &record.Root());
}

TEST(ManualSetCell, ReportsAPointOutsideTheTree) {
  CTestTree test(2, 1);
  CSubdivisionRecord record(2);
  CSaveQuadT* saved = &record.Root();
  EXPECT_EQ(ConsoleTextOf([&] { EXPECT_EQ(test.m_Tree.getManualSetCell(-0.5, 3.0, saved), nullptr); }),
            "Error CQuadT::getManualSetCell : The specified point -0.5, 3is not in the tree\n");
  EXPECT_EQ(saved, &record.Root());
}

TEST(RectInOneCell, HoldsWithinALeaf) {
  CTestTree test(3, 1);
  EXPECT_TRUE(test.m_Tree.IsRectInOneCell(0, 0, 4, 4));
  EXPECT_TRUE(test.m_Tree.IsRectInOneCell(5, 6, 6, 7));
  EXPECT_TRUE(test.m_Tree.IsRectInOneCell(4, 4, 4, 4));
}

TEST(RectInOneCell, HoldsWithinASplitCellWhoseChildrenItStraddles) {
  CTestTree test(3, 2);
  EXPECT_TRUE(test.m_Tree.IsRectInOneCell(1, 1, 3, 3));
  EXPECT_TRUE(test.m_Tree.IsRectInOneCell(3, 3, 5, 5)) << "the root is a split cell too";
}

TEST(RectInOneCell, FailsOutsideTheTree) {
  CTestTree test(3, 2);
  EXPECT_FALSE(test.m_Tree.IsRectInOneCell(-1, 0, 1, 1));
  EXPECT_FALSE(test.m_Tree.IsRectInOneCell(6, 6, 9, 8));
  EXPECT_FALSE(test.m_Tree.IsRectInOneCell(6, 6, 8, 9));
  EXPECT_FALSE(test.m_Tree.IsRectInOneCell(0, -1, 1, 1));
}

TEST(PointInsideDiscontinuity, AsksTheLeafUnderThePoint) {
  CTestTree test(3, 1);
  test.m_Tree.CellAt(2, 1, 0).subdiv(false);
  MakeLeaf(test.m_Tree, 1, 3, 1, 4);
  EXPECT_TRUE(test.Root().IsPointInsideDiscontinuity(6.5, 2.5));
  EXPECT_TRUE(test.Root().IsPointInsideDiscontinuity(6.0, 2.0)) << "dividing lines belong to the right and upper cell";
  EXPECT_FALSE(test.Root().IsPointInsideDiscontinuity(5.9, 2.5));
  EXPECT_FALSE(test.Root().IsPointInsideDiscontinuity(6.5, 1.9));
  EXPECT_FALSE(test.Root().IsPointInsideDiscontinuity(6.5, 4.0));
}

TEST(PointInsideDiscontinuity, CreasesAndOtherFlagsAreNone) {
  CTestTree test(3, 1);
  test.Root().Child(0).SetFlags(CellFlag::kRisingCrease | CellFlag::kFallingCrease | CellFlag::kSelected);
  EXPECT_FALSE(test.Root().IsPointInsideDiscontinuity(1.0, 1.0));
}

TEST(PointInsideDiscontinuity, OfAnActiveCellIsItsOwnAnswerForAnyPoint) {
  CTestTree test(3, 1);
  MakeLeaf(test.m_Tree, 2, 1, 1, 2);
  EXPECT_TRUE(test.m_Tree.CellAt(2, 1, 1).IsPointInsideDiscontinuity(0.0, 0.0));
}

TEST(PointInsideDiscontinuity, ReportsADormantUnitCellAndSaysYes) {
  CTestTree test(3, 1);
  EXPECT_EQ(ConsoleTextOf([&] { EXPECT_TRUE(test.m_Tree.CellAt(0, 0, 0).IsPointInsideDiscontinuity(0.5, 0.5)); }),
            "Error CQuadT::IsPointInsideDiscontinuity()\t\tstop == 0, but leaf cell\n");
}

TEST(LeafCount, CountsTheActiveLeaves) {
  CTestTree test(3, 1);
  EXPECT_EQ(test.m_Tree.LeafCount(), 4);
  MakeLeaf(test.m_Tree, 0, 0, 0);
  EXPECT_EQ(test.m_Tree.LeafCount(), 10);
}

}  // namespace
