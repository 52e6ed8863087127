#include <vector>

#include <gtest/gtest.h>

#include "solver/TreeWalkTransform.h"
#include "support/GridBuilders.h"
#include "support/TreeBuilders.h"
#include "support/TreeWalk.h"

namespace {

using Values = std::vector<double>;

// Heights of a lattice of three points a side, row by row from the bottom.
const Values kHeights{1,  10, 2,   //
                      40, 50, 20,  //
                      8,  30, 4};
const Values kCoefs{1,    8.5, 2,   //
                    35.5, 25,  17,  //
                    8,    24,  4};

TEST(TreeWalkTest, CoefficientIsHeightMinusMeanOfParents) {
  CTestTree tree(1, 1);
  Values coefs(9);
  WalkW(tree.m_Tree, WaveletMode::Simple, kHeights, coefs);
  EXPECT_EQ(coefs, kCoefs);
}

TEST(TreeWalkTest, InverseGivesTheHeightsBack) {
  CTestTree tree(1, 1);
  Values values = kCoefs;
  WalkInvW(tree.m_Tree, WaveletMode::Simple, values);
  EXPECT_EQ(values, kHeights);
}

TEST(TreeWalkTest, WithoutWaveletsNothingIsPredicted) {
  CTestTree tree(1, 1);
  Values coefs(9);
  WalkW(tree.m_Tree, WaveletMode::None, kHeights, coefs);
  EXPECT_EQ(coefs, kHeights);
  WalkInvW(tree.m_Tree, WaveletMode::None, coefs);
  EXPECT_EQ(coefs, kHeights);
}

TEST(TreeWalkTest, NewModeLeavesOutParentsBeyondACut) {
  CTestTree tree(1, 1);
  tree.m_Tree.CellAt(0, 0, 0).SetFlags(1U << kRight);
  tree.m_Tree.CellAt(0, 1, 0).SetFlags(1U << kLeft);
  tree.Settle();
  Values coefs(9);
  WalkW(tree.m_Tree, WaveletMode::New, kHeights, coefs);
  EXPECT_DOUBLE_EQ(coefs[4], 50 - (20 + 30 + 40) / 3.0);
  WalkInvW(tree.m_Tree, WaveletMode::New, coefs);
  EXPECT_DOUBLE_EQ(coefs[4], 50);
}

TEST(TreeWalkTest, EveryPassStartsWithoutComputedPoints) {
  CTestTree tree(1, 1);
  tree.m_Lattice.Set(1, PointFlag::kComputed);
  Values coefs(9);
  WalkW(tree.m_Tree, WaveletMode::Simple, kHeights, coefs);
  EXPECT_EQ(coefs, kCoefs);
  WalkInvW(tree.m_Tree, WaveletMode::Simple, coefs);
  EXPECT_EQ(coefs, kHeights);
}

TEST(TreeWalkTest, OnlyPointsInUseAreTouched) {
  CTestTree tree(3, 2);
  Randomise(tree.m_Tree, 3);
  const Values heights = RandomValues(1, tree.m_Lattice.PointCount());
  Values coefs(heights.size(), -7);
  Values values = heights;
  WalkW(tree.m_Tree, WaveletMode::Simple, heights, coefs);
  WalkInvW(tree.m_Tree, WaveletMode::Simple, values);
  for (std::size_t point = 0; point < heights.size(); ++point) {
    if (tree.m_Lattice.Has(point, PointFlag::kInUse)) continue;
    EXPECT_EQ(coefs[point], -7) << point;
    EXPECT_EQ(values[point], heights[point]) << point;
  }
}

TEST(TreeWalkTest, OtherPointFlagsStay) {
  CTestTree tree(1, 1);
  tree.m_Lattice.Set(1, PointFlag::kCrease | PointFlag::kFrozen);
  Values values = kCoefs;
  WalkInvW(tree.m_Tree, WaveletMode::Simple, values);
  EXPECT_TRUE(tree.m_Lattice.Has(1, PointFlag::kCrease));
  EXPECT_TRUE(tree.m_Lattice.Has(1, PointFlag::kFrozen));
  EXPECT_EQ(tree.m_Lattice.Count(PointFlag::kInUse), 9U);
}

}  // namespace
