// The manual selection in the wanted subdivision.

#include <algorithm>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "quadtree/CQuadTree.h"
#include "quadtree/CSaveQuadT.h"
#include "support/ConsoleCapture.h"
#include "support/TreeBuilders.h"

namespace {

const std::string kHighest = "Error CSaveQuadT::subdivSelected()  Attempt to subdivise a highest level cell\n";

int Times(const std::string& text, const std::string& line) { return static_cast<int>(text.size() / line.size()); }

TEST(SavedSelectionTest, SplitMovesTheSelectionToTheChildren) {
  CSubdivisionRecord record(4);
  record.SetStartLevel(2);
  CSaveQuadT& node = record.Root().Child(0).Child(2);
  node.SetSelected(true);
  record.subdivSelected();
  EXPECT_FALSE(node.IsSelected());
  EXPECT_FALSE(node.IsLeaf());
  for (int k = 0; k < 4; ++k) {
    EXPECT_TRUE(node.Child(k).IsSelected());
    EXPECT_TRUE(node.Child(k).IsLeaf());
    EXPECT_FALSE(node.Child(k).Child(0).IsSelected()) << "one level only";
  }
}

TEST(SavedSelectionTest, ThirdSplitOfALevelTwoCellMeetsTheFinestLevel) {
  CSubdivisionRecord record(4);
  record.SetStartLevel(2);
  record.Root().Child(0).Child(2).SetSelected(true);
  EXPECT_EQ(ConsoleTextOf([&] {
              record.subdivSelected();
              record.subdivSelected();
            }),
            "");
  const std::string text = ConsoleTextOf([&] { record.subdivSelected(); });
  EXPECT_EQ(Times(text, kHighest), 16);
  EXPECT_EQ(text.substr(0, kHighest.size()), kHighest);
  EXPECT_TRUE(record.Root().Child(0).Child(2).Child(3).Child(1).IsSelected()) << "left as it is";
}

TEST(SavedSelectionTest, MergeNeedsAllFourChildren) {
  CSubdivisionRecord record(3);
  record.SetStartLevel(2);
  CSaveQuadT& node = record.Root().Child(3);
  for (int k = 0; k < 3; ++k) node.Child(k).SetSelected(true);
  record.MergeSelected();
  EXPECT_FALSE(node.IsLeaf());
  EXPECT_TRUE(node.Child(0).IsSelected());
  node.Child(3).SetSelected(true);
  record.MergeSelected();
  EXPECT_TRUE(node.IsLeaf());
  EXPECT_TRUE(node.IsSelected());
  for (int k = 0; k < 4; ++k) {
    EXPECT_FALSE(node.Child(k).IsLeaf());
    EXPECT_FALSE(node.Child(k).IsSelected());
  }
}

TEST(SavedSelectionTest, MergeGoesOneLevelAtATime) {
  CSubdivisionRecord record(2);
  record.SetStartLevel(2);
  for (int k = 0; k < 4; ++k) {
    for (int child = 0; child < 4; ++child) record.Root().Child(k).Child(child).SetSelected(true);
  }
  record.MergeSelected();
  EXPECT_FALSE(record.Root().IsLeaf());
  EXPECT_TRUE(record.Root().Child(2).IsSelected());
  record.MergeSelected();
  EXPECT_TRUE(record.Root().IsLeaf());
}

TEST(SavedSelectionTest, ShownOnTheCellOfTheNodeAlone) {
  CTestTree test(3, 2);
  CSubdivisionRecord record(3);
  record.SetStartLevel(2);
  record.Root().Child(2).SetSelected(true);
  record.Root().Child(2).Child(2).SetSelected(true);
  for (int level = 0; level <= 3; ++level) test.m_Tree.CellAt(level, 0, 0).SetFlags(CellFlag::kSelected | 15);
  test.m_Tree.CellAt(1, 3, 3).SetFlags(CellFlag::kSelected);
  record.ShowSelection(test.m_Tree);
  EXPECT_TRUE(test.m_Tree.CellAt(2, 1, 1).HasFlag(CellFlag::kSelected));
  EXPECT_FALSE(test.m_Tree.CellAt(1, 3, 3).HasFlag(CellFlag::kSelected)) << "below it";
  for (int level = 0; level <= 3; ++level) EXPECT_EQ(test.m_Tree.CellAt(level, 0, 0).Flags(), 15U) << level;
}

TEST(SavedSelectionTest, ShownCellsAreListedByTheirCorners) {
  CTestTree test(3, 2);
  CSubdivisionRecord record(3);
  record.SetStartLevel(2);
  record.Root().Child(1).Child(3).SetSelected(true);
  record.Root().Child(2).SetSelected(true);
  record.Root().Child(2).Child(2).SetSelected(true);
  EXPECT_TRUE(test.m_Tree.SelectedCorners().empty());
  const std::vector<int> expected{4, 2, 6, 2, 6, 4, 4, 4, 4, 4, 8, 4, 8, 8, 4, 8};
  for (int k = 0; k < 2; ++k) {
    record.ShowSelection(test.m_Tree);
    EXPECT_TRUE(std::ranges::equal(test.m_Tree.SelectedCorners(), expected)) << "time " << k;
  }
  test.m_Tree.Replay(record, 2);
  EXPECT_EQ(test.m_Tree.SelectedCorners().size(), expected.size()) << "selected cells stay selected";
  test.m_Tree.Reset(2);
  EXPECT_TRUE(test.m_Tree.SelectedCorners().empty());
}

TEST(SavedSelectionTest, RefinementAtAPointGoesDownToTheFinestLevel) {
  CTestTree test(4, 1);
  CSubdivisionRecord record(4);
  record.SetStartLevel(1);
  record.RefineAt(test.m_Tree, 9.5, 3.2);
  const CSaveQuadT& quarter = record.Root().Child(1);
  EXPECT_FALSE(quarter.IsLeaf());
  EXPECT_TRUE(quarter.Child(1).IsLeaf());
  // (9.5, 3.2) lies in the column of 8..12, 8..10, 9..10 and the row of 0..4, 2..4, 3..4.
  EXPECT_TRUE(quarter.Child(0).Child(3).Child(2).IsLeaf());
  EXPECT_FALSE(quarter.Child(0).Child(3).IsLeaf());
  EXPECT_TRUE(record.Root().Child(0).IsLeaf());
}

struct CMiddlePoint {
  double m_fX;
  double m_fY;
  int m_iChild;
};

TEST(SavedSelectionTest, RefinementTakesTheRightAndUpperChildOnTheMiddleLines) {
  for (const CMiddlePoint& point : {CMiddlePoint{8, 3, 1}, {8, 8, 2}, {3, 8, 3}, {7.9, 7.9, 0}}) {
    CTestTree test(4, 0);
    CSubdivisionRecord record(4);
    record.SetStartLevel(0);
    record.RefineAt(test.m_Tree, point.m_fX, point.m_fY);
    for (int k = 0; k < 4; ++k) EXPECT_EQ(record.Root().Child(k).IsLeaf(), k != point.m_iChild) << point.m_iChild;
  }
}

TEST(SavedSelectionTest, RefinementOutsideTheTreeIsRefused) {
  CTestTree test(3, 1);
  CSubdivisionRecord record(3);
  record.SetStartLevel(1);
  EXPECT_NE(ConsoleTextOf([&] { record.RefineAt(test.m_Tree, -1, 2); }).find("is not in the tree"), std::string::npos);
  for (int k = 0; k < 4; ++k) EXPECT_TRUE(record.Root().Child(k).IsLeaf());
}

// Four by four leaves, two lattice steps wide.
struct CSplitGrid {
  CSplitGrid() { m_Record.SetStartLevel(2); }
  void Select(double gx0, double gy0, double gx1, double gy1) {
    m_Record.SelectRectangle(m_Test.m_Tree, gx0, gy0, gx1, gy1);
  }
  // One row of digits per row of leaves, the upper one first.
  std::string Selection() {
    std::string rows;
    for (int j = 3; j >= 0; --j) {
      for (int i = 0; i < 4; ++i) {
        CSaveQuadT* node = &m_Record.Root();
        for (int half = 2; half > 0; half /= 2) {
          const bool right = (i & half) != 0;
          const bool upper = (j & half) != 0;
          node = &node->Child(right ? (upper ? 2 : 1) : (upper ? 3 : 0));
        }
        rows += node->IsSelected() ? '1' : '0';
      }
      rows += j > 0 ? "/" : "";
    }
    return rows;
  }

  CTestTree m_Test{3, 2};
  CSubdivisionRecord m_Record{3};
};

TEST(SavedSelectionTest, RectangleSelectsTheLeavesItMeets) {
  CSplitGrid test;
  test.Select(2.5, 0.5, 5.5, 3);
  EXPECT_EQ(test.Selection(), "0000/0000/0110/0110");
  EXPECT_FALSE(test.m_Record.Root().IsSelected());
  EXPECT_FALSE(test.m_Record.Root().Child(0).IsSelected()) << "only leaves";
}

TEST(SavedSelectionTest, RectangleHasClosedBoundsAndCornersInAnyOrder) {
  CSplitGrid test;
  test.Select(4, 4, 2, 4);
  EXPECT_EQ(test.Selection(), "0000/1110/1110/0000") << "a line on a border meets both sides";
}

TEST(SavedSelectionTest, RectangleLeavesTheSelectionElsewhere) {
  CSplitGrid test;
  test.Select(0.5, 0.5, 0.6, 0.6);
  test.Select(7.5, 7.5, 7.6, 7.6);
  EXPECT_EQ(test.Selection(), "0001/0000/0000/1000");
  test.Select(-5, -5, -1, -1);
  EXPECT_EQ(test.Selection(), "0001/0000/0000/1000");
}

TEST(SavedSelectionTest, RectangleUnselectsWhatIsNoLeaf) {
  CSplitGrid test;
  test.m_Record.Root().Child(0).SetSelected(true);
  test.Select(0.5, 0.5, 0.6, 0.6);
  EXPECT_FALSE(test.m_Record.Root().Child(0).IsSelected());
  EXPECT_EQ(test.Selection(), "0000/0000/0000/1000");
}

TEST(SavedSelectionTest, RectangleGoesNoDeeperThanTheCells) {
  CSplitGrid test;
  CTestTree coarse(3, 1);
  test.m_Record.SelectRectangle(coarse.m_Tree, 0, 0, 8, 8);
  EXPECT_EQ(test.Selection(), "0000/0000/0000/0000") << "the cells are not split yet";
}

TEST(SavedSelectionTest, ClearingStopsAtTheFirstSelectedNodeOfABranch) {
  CSplitGrid test;
  test.Select(0.5, 0.5, 0.6, 0.6);
  test.Select(7.5, 7.5, 7.6, 7.6);
  test.m_Record.Root().Child(2).SetSelected(true);
  test.m_Record.ClearSelection();
  EXPECT_EQ(test.Selection(), "0001/0000/0000/0000");
  EXPECT_FALSE(test.m_Record.Root().Child(2).IsSelected());
  test.m_Record.ClearSelection();
  EXPECT_EQ(test.Selection(), "0000/0000/0000/0000");
}

TEST(SavedSelectionTest, RefinementUnselectsWhatItSplits) {
  CSplitGrid test;
  test.Select(0.5, 0.5, 0.6, 0.6);
  test.m_Record.RefineAt(test.m_Test.m_Tree, 0.5, 0.5);
  EXPECT_EQ(test.Selection(), "0000/0000/0000/0000");
}

}  // namespace
