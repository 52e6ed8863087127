#include <array>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "quadtree/CQuadTree.h"
#include "quadtree/CSaveQuadT.h"
#include "support/ConsoleCapture.h"
#include "support/TreeBuilders.h"
#include "support/TreeReference.h"

namespace {

constexpr const char* kFinest = "Error: Attempt to subdivise a leaf in CSaveQuadT\n";

int NodesOf(const CSaveQuadT& node, int level, const auto& visit) {
  visit(node, level);
  int count = 1;
  if (!node.HasChildren()) return count;
  for (int k = 0; k < 4; ++k) count += NodesOf(node.Child(k), level + 1, visit);
  return count;
}

TEST(SubdivisionRecord, IsCompleteWithTheFinestNodesAloneAsLeaves) {
  for (const int depth : {0, 1, 2, 5}) {
    const CSubdivisionRecord record(depth);
    const int count = NodesOf(record.Root(), 0, [depth](const CSaveQuadT& node, int level) {
      EXPECT_EQ(node.IsLeaf(), level == depth);
      EXPECT_EQ(node.HasChildren(), level < depth);
    });
    EXPECT_EQ(count, ((4 << (2 * depth)) - 1) / 3);
    EXPECT_EQ(record.Depth(), depth);
  }
}

TEST(SubdivisionRecord, StartLevelMakesExactlyThatGenerationLeaves) {
  CSubdivisionRecord record(3);
  for (int depth = 0; depth <= 3; ++depth) {
    record.SetStartLevel(depth);
    NodesOf(record.Root(), 0, [depth](const CSaveQuadT& node, int level) { EXPECT_EQ(node.IsLeaf(), level == depth); });
  }
}

TEST(SubdivisionRecord, StartLevelLeavesNothingSelected) {
  CSubdivisionRecord record(3);
  record.SetStartLevel(2);
  record.Root().SetSelected(true);
  record.Root().Child(1).Child(2).SetSelected(true);
  record.Root().Child(1).Child(2).Child(0).SetSelected(true);
  record.SetStartLevel(1);
  NodesOf(record.Root(), 0, [](const CSaveQuadT& node, int) { EXPECT_FALSE(node.IsSelected()); });
}

TEST(SubdivisionRecord, StaysWholeWhenMoved) {
  CSubdivisionRecord record(2);
  record.Root().Child(3).subdiv();
  CSubdivisionRecord moved = std::move(record);
  EXPECT_EQ(moved.Depth(), 2);
  EXPECT_TRUE(moved.Root().Child(3).Child(0).IsLeaf());
  EXPECT_EQ(NodesOf(moved.Root(), 0, [](const CSaveQuadT&, int) {}), 21);
}

TEST(SavedNode, SubdivHandsTheLeafToTheFourChildren) {
  CSubdivisionRecord record(3);
  record.SetStartLevel(1);
  CSaveQuadT& node = record.Root().Child(1);
  node.subdiv();
  EXPECT_FALSE(node.IsLeaf());
  for (int k = 0; k < 4; ++k) {
    EXPECT_TRUE(node.Child(k).IsLeaf());
    EXPECT_FALSE(node.Child(k).Child(0).IsLeaf());
  }
  EXPECT_TRUE(record.Root().Child(0).IsLeaf());
}

TEST(SavedNode, SubdivRefusesAFinestNode) {
  CSubdivisionRecord record(1);
  EXPECT_EQ(ConsoleTextOf([&] { record.Root().Child(2).subdiv(); }), kFinest);
  EXPECT_TRUE(record.Root().Child(2).IsLeaf());
}

TEST(Replay, MakesExactlyTheWantedLeaves) {
  CTestTree test(4, 2);
  CSubdivisionRecord record(4);
  record.SetStartLevel(1);
  record.Root().Child(2).subdiv();
  record.Root().Child(2).Child(1).subdiv();
  Randomise(test.m_Tree, 3, 20);
  test.m_Tree.Replay(record, 2);
  CReferenceTree expected(4, 1);
  expected.Apply({CTreeOp::Kind::kMakeLeaf, 1, 6, 4, 0});
  EXPECT_EQ(MismatchOfSubdivision(test.m_Tree, expected), "");
}

TEST(Replay, IsTheSameFromAnyStartLevel) {
  CSubdivisionRecord record(4);
  record.SetStartLevel(2);
  record.Root().Child(1).Child(3).subdiv();
  CReferenceTree expected(4, 2);
  expected.Apply({CTreeOp::Kind::kMakeLeaf, 1, 4, 2, 0});
  for (int start = 0; start <= 4; ++start) {
    CTestTree test(4, 4);
    test.m_Tree.Replay(record, start);
    EXPECT_EQ(MismatchOfSubdivision(test.m_Tree, expected), "") << "start level " << start;
  }
}

TEST(Replay, InterpolatesTheMidpointsOfItsSplits) {
  CTestTree test(3, 0);
  for (const auto& [column, row] : {std::pair{0, 0}, {8, 0}, {8, 8}, {0, 8}})
    test.m_Lattice.Heights()[test.m_Lattice.Index(column, row)] = column + 2.0 * row;
  CSubdivisionRecord record(3);
  record.SetStartLevel(2);
  test.m_Tree.Replay(record, 0);
  for (int row = 0; row <= 8; row += 2) {
    for (int column = 0; column <= 8; column += 2)
      EXPECT_EQ(test.m_Lattice.Heights()[test.m_Lattice.Index(column, row)], column + 2.0 * row);
  }
}

// The heights of a finer subdivision do not shine through.
TEST(Replay, OverwritesTheMidpointsOnEverySideWhateverTheyWere) {
  CTestTree test(4, 4);
  SetRandomHeights(test.m_Lattice, 7);
  const std::vector<double> before = test.m_Lattice.Heights();
  const auto was = [&](int column, int row) { return before[test.m_Lattice.Index(column, row)]; };
  const auto is = [&](int column, int row) { return test.m_Lattice.Heights()[test.m_Lattice.Index(column, row)]; };
  CSubdivisionRecord record(4);
  record.SetStartLevel(1);
  // All around the middle of the model: each is the lower, right, upper and left neighbour of another one.
  for (int k = 0; k < 4; ++k) record.Root().Child(k).subdiv();
  test.m_Tree.Replay(record, 1);
  for (const int row : {0, 8}) {
    for (const int column : {0, 8}) {
      const double bottom = (was(column, row) + was(column + 8, row)) / 2;
      const double right = (was(column + 8, row) + was(column + 8, row + 8)) / 2;
      const double top = (was(column, row + 8) + was(column + 8, row + 8)) / 2;
      const double left = (was(column, row) + was(column, row + 8)) / 2;
      EXPECT_EQ(is(column + 4, row), bottom);
      EXPECT_EQ(is(column + 8, row + 4), right);
      EXPECT_EQ(is(column + 4, row + 8), top);
      EXPECT_EQ(is(column, row + 4), left);
      EXPECT_EQ(is(column + 4, row + 4), (right + left + bottom + top) / 4);
    }
  }
}

TEST(Replay, KeepsTheHeightsOfTheStartLevel) {
  CTestTree test(3, 1);
  SetRandomHeights(test.m_Lattice, 11);
  const std::vector<double> before = test.m_Lattice.Heights();
  CSubdivisionRecord record(3);
  record.SetStartLevel(2);
  test.m_Tree.Replay(record, 2);
  EXPECT_EQ(test.m_Lattice.Heights(), before);
}

TEST(Replay, ForgetsAllCellFlagsButTheSelection) {
  CTestTree test(3, 1);
  for (int level = 0; level <= 3; ++level) test.m_Tree.CellAt(level, 0, 0).SetFlags(63 | 512 | CellFlag::kSelected);
  CSubdivisionRecord record(3);
  record.SetStartLevel(1);
  test.m_Tree.Replay(record, 1);
  for (int level = 0; level <= 3; ++level) EXPECT_EQ(test.m_Tree.CellAt(level, 0, 0).Flags(), 1024U) << level;
}

TEST(Replay, ForgetsCreasesAndOldPointsInUseButNoOtherPointFlag) {
  CTestTree test(3, 3);
  for (std::size_t point = 0; point < test.m_Lattice.PointCount(); ++point)
    test.m_Lattice.Set(point, PointFlag::kCrease | PointFlag::kInUse | PointFlag::kFrozen);
  CSubdivisionRecord record(3);
  record.SetStartLevel(0);
  test.m_Tree.Replay(record, 0);
  EXPECT_EQ(test.m_Lattice.Count(PointFlag::kCrease), 0U);
  EXPECT_EQ(test.m_Lattice.Count(PointFlag::kInUse), 4U);
  EXPECT_EQ(test.m_Lattice.Count(PointFlag::kFrozen), test.m_Lattice.PointCount());
}

TEST(Replay, LeavesTheRecordAsItIs) {
  CTestTree test(2, 1);
  CSubdivisionRecord record(2);
  record.SetStartLevel(1);
  record.Root().Child(0).subdiv();
  test.m_Tree.Replay(record, 1);
  EXPECT_TRUE(record.Root().Child(3).IsLeaf());
  EXPECT_FALSE(record.Root().Child(0).IsLeaf());
  EXPECT_TRUE(record.Root().Child(0).Child(2).IsLeaf());
}

TEST(Replay, AFinestNodeThatIsNoLeafIsReported) {
  CTestTree test(1, 1);
  CSubdivisionRecord record(1);
  record.Root().Child(3).SetLeaf(false);
  EXPECT_EQ(ConsoleTextOf([&] { test.m_Tree.Replay(record, 1); }),
            "Error CQuadT::subdiv()  Attempt to subdivide a highest level cell\n");
  EXPECT_EQ(MismatchOfSubdivision(test.m_Tree, CReferenceTree(1, 1)), "");
}

}  // namespace
