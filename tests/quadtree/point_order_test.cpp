#include <ostream>
#include <span>
#include <vector>

#include <gtest/gtest.h>

#include "quadtree/CPointOrder.h"
#include "support/TreeBuilders.h"

namespace {

struct CNumbered {
  int m_iColumn;
  int m_iRow;
  int m_iCode;
  bool operator==(const CNumbered&) const = default;
};

std::ostream& operator<<(std::ostream& out, const CNumbered& p) {
  return out << '(' << p.m_iColumn << ", " << p.m_iRow << ") code " << p.m_iCode;
}

// The unknowns from `first` on, in their order.
std::vector<CNumbered> Listed(const CPointOrder& order, std::size_t first = 0) {
  std::vector<CNumbered> points;
  for (std::size_t k = first; k < order.Count(); ++k)
    points.push_back({order.ColumnOf(k), order.RowOf(k), order.LevelCode(k)});
  return points;
}

TEST(PointOrderTest, OneCellHasItsFourCornersOnly) {
  const CTestTree tree(2, 0);
  const std::vector<CNumbered> expected{{0, 0, 1}, {4, 0, 1}, {4, 4, 1}, {0, 4, 1}};
  EXPECT_EQ(Listed(tree.m_Order), expected);
}

TEST(PointOrderTest, QuartersOfWhichTheNorthEastOneIsRefined) {
  CTestTree tree(2, 1);
  tree.Root().Child(2).subdiv(false);
  tree.Settle();
  const std::vector<CNumbered> expected{{0, 0, 1}, {4, 0, 1},  {4, 4, 1}, {0, 4, 1},   // the corners
                                        {2, 0, 2}, {4, 2, -2}, {2, 4, 2}, {0, 2, -2},  // the sides of the root
                                        {2, 2, 3},                                     // its centre
                                        {3, 2, 4}, {4, 3, -4}, {3, 4, 4}, {2, 3, -4},  // the sides of the quarter
                                        {3, 3, 5}};                                    // its centre
  EXPECT_EQ(Listed(tree.m_Order), expected);
}

TEST(PointOrderTest, SidesSharedByRefinedQuartersAreNumberedOnce) {
  const CTestTree tree(2, 2);
  const std::vector<CNumbered> expected{{1, 0, 4},  {2, 1, -4}, {1, 2, 4},  {0, 1, -4},  // south-west
                                        {3, 0, 4},  {4, 1, -4}, {3, 2, 4},   // south-east; its left side is numbered
                                        {4, 3, -4}, {3, 4, 4},  {2, 3, -4},  // north-east
                                        {1, 4, 4},  {0, 3, -4},              // north-west
                                        {1, 1, 5},  {3, 1, 5},  {3, 3, 5},  {1, 3, 5}};  // the centres
  EXPECT_EQ(Listed(tree.m_Order, 9), expected);
}

// All points of a level come before those of the next one, however deep the first cells go.
TEST(PointOrderTest, LevelsAreFinishedOneAfterTheOther) {
  CTestTree tree(3, 1);
  tree.Root().Child(0).subdiv(false);
  tree.Root().Child(0).Child(0).subdiv(false);
  tree.Root().Child(1).subdiv(false);
  tree.Settle();
  const std::vector<CNumbered> expected{{2, 0, 4}, {4, 2, -4}, {2, 4, 4}, {0, 2, -4},  // sides of the two quarters
                                        {6, 0, 4}, {8, 2, -4}, {6, 4, 4},              //
                                        {2, 2, 5}, {6, 2, 5},                          // their centres
                                        {1, 0, 6}, {2, 1, -6}, {1, 2, 6}, {0, 1, -6}, {1, 1, 7}};
  EXPECT_EQ(Listed(tree.m_Order, 9), expected);
}

TEST(PointOrderTest, CornersAreNumberedRoundTheLattice) {
  const CTestTree tree(3, 1);
  EXPECT_EQ(tree.m_Order.NumberOf(0), 0);
  EXPECT_EQ(tree.m_Order.NumberOf(8), 1);
  EXPECT_EQ(tree.m_Order.NumberOf(80), 2);
  EXPECT_EQ(tree.m_Order.NumberOf(72), 3);
}

TEST(PointOrderTest, FirstPointLiesAtTheLowerLeftCornerOfTheModel) {
  const CTestTree tree(3, 2);
  EXPECT_DOUBLE_EQ(tree.m_Lattice.XOf(tree.m_Order.ColumnOf(0)), kOblong.x0);
  EXPECT_DOUBLE_EQ(tree.m_Lattice.YOf(tree.m_Order.RowOf(0)), kOblong.y0);
  EXPECT_DOUBLE_EQ(tree.m_Lattice.XOf(tree.m_Order.ColumnOf(2)), kOblong.x1);
  EXPECT_DOUBLE_EQ(tree.m_Lattice.YOf(tree.m_Order.RowOf(2)), kOblong.y1);
}

TEST(PointOrderTest, UniformSubdivisionUsesItsWholeGrid) {
  for (int startLevel = 0; startLevel <= 4; ++startLevel) {
    const CTestTree tree(4, startLevel);
    const auto side = (std::size_t{1} << startLevel) + 1;
    EXPECT_EQ(tree.m_Order.Count(), side * side);
  }
}

TEST(PointOrderTest, UnusedPointsHaveNoNumber) {
  const CTestTree tree(2, 1);
  for (std::size_t point = 0; point < tree.m_Lattice.PointCount(); ++point)
    EXPECT_EQ(tree.m_Order.NumberOf(point) >= 0, tree.m_Lattice.Has(point, PointFlag::kInUse)) << point;
  EXPECT_EQ(tree.m_Order.NumberOf(6), -1);
}

TEST(PointOrderTest, NumberAndPointAreInverse) {
  CTestTree tree(4, 2);
  Randomise(tree.m_Tree, 7);
  tree.Settle();
  for (std::size_t k = 0; k < tree.m_Order.Count(); ++k) {
    EXPECT_EQ(tree.m_Order.NumberOf(tree.m_Order.PointOf(k)), static_cast<std::int32_t>(k));
    EXPECT_EQ(tree.m_Lattice.Index(tree.m_Order.ColumnOf(k), tree.m_Order.RowOf(k)), tree.m_Order.PointOf(k));
  }
}

TEST(PointOrderTest, BuildForgetsTheFormerSubdivision) {
  CTestTree tree(3, 3);
  tree.m_Tree.SetStartLevel(1);
  tree.Settle();
  EXPECT_EQ(tree.m_Order.Count(), 9U);
  EXPECT_EQ(tree.m_Order.NumberOf(tree.m_Lattice.Index(1, 1)), -1);
}

TEST(PointOrderTest, APointKeepsItsFirstNumberAndCode) {
  CPointOrder order;
  order.Reset(1);
  order.Append(2, 1, -2);
  order.Append(0, 0, 1);
  order.Append(2, 1, 5);
  const std::vector<CNumbered> expected{{2, 1, -2}, {0, 0, 1}};
  EXPECT_EQ(Listed(order), expected);
  EXPECT_EQ(order.NumberOf(5), 0);
}

TEST(PointOrderTest, ResetForgetsAllNumbersAndTakesTheLevel) {
  CPointOrder order;
  order.Reset(1);
  order.Append(1, 1, 3);
  order.Reset(3);
  EXPECT_EQ(order.Count(), 0U);
  EXPECT_EQ(order.Level(), 3);
  EXPECT_EQ(order.NumberOf(80), -1);
}

TEST(PointOrderTest, FreeForgetsAllNumbers) {
  CTestTree tree(2, 1);
  tree.m_Order.Free();
  EXPECT_EQ(tree.m_Order.Count(), 0U);
  tree.Settle();
  EXPECT_EQ(tree.m_Order.Count(), 9U);
}

}  // namespace
