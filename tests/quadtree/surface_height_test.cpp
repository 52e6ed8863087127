#include <algorithm>
#include <cmath>
#include <vector>

#include <gtest/gtest.h>

#include "support/ConsoleCapture.h"
#include "support/TreeBuilders.h"

namespace {

// Coefficients are rounded to multiples of 1e-10, each by itself; heights of size 10 feel it here.
constexpr double kRounding = 1e-8;

TEST(HeightAt, IsThatOfThePointAtAPointInUse) {
  CTestTree test(3, 2);
  SetRandomHeights(test.m_Lattice, 2);
  for (int row = 0; row <= 8; row += 2) {
    for (int column = 0; column <= 8; column += 2)
      EXPECT_EQ(test.m_Surface.HeightAt(column, row), Z(test, column, row)) << column << ", " << row;
  }
}

TEST(HeightAt, BlendsTheCentreAndTheEndsOfTheSide) {
  CTestTree test(2, 0);
  Z(test, 0, 0) = 1;
  Z(test, 4, 0) = 2;
  Z(test, 4, 4) = 4;
  Z(test, 0, 4) = 9;
  EXPECT_EQ(test.m_Surface.HeightAt(2, 2), 4.0);
  EXPECT_NEAR(test.m_Surface.HeightAt(1, 0), 1.25, kRounding);
  EXPECT_NEAR(test.m_Surface.HeightAt(2, 1), 0.5 * 4.0 + 0.5 * 1.5, kRounding);
  EXPECT_NEAR(test.m_Surface.HeightAt(4, 3), 3.5, kRounding);
}

TEST(HeightAt, FollowsTheHangingPointOfASplitSide) {
  CTestTree test(3, 1);
  test.m_Tree.CellAt(2, 1, 0).subdiv(false);
  test.Settle();
  Z(test, 4, 2) = 8;
  EXPECT_NEAR(test.m_Surface.HeightAt(4, 1), 4.0, kRounding);
  EXPECT_EQ(test.m_Surface.HeightAt(2, 2), 2.0) << "the centre takes the midpoint of the split side";
  EXPECT_NEAR(test.m_Surface.HeightAt(3, 2), 5.0, kRounding);
}

TEST(HeightAt, IsZeroOutside) {
  CTestTree test(2, 1);
  SetHeights(test.m_Lattice, CFlat{3});
  EXPECT_EQ(ConsoleTextOf([&] {
              EXPECT_EQ(test.m_Surface.HeightAt(-0.5, 1), 0.0);
              EXPECT_EQ(test.m_Surface.HeightAt(1, 4.5), 0.0);
            }),
            "");
}

TEST(HeightAt, OnASharedSideHasNothingOfTheCentre) {
  CTestTree test(3, 1);
  test.Root().Child(0).SetFlags(1 | 2 | 4);
  Z(test, 0, 0) = 1e6;
  EXPECT_EQ(test.m_Surface.HeightAt(4, 1), 0.0);
}

TEST(HeightAt, RepeatsAPlaneOnAMixedSubdivision) {
  CTestTree test(4, 1);
  MakeLeaf(test.m_Tree, 0, 5, 9);
  MakeLeaf(test.m_Tree, 1, 6, 1);
  const CRamp ramp;
  SetHeights(test.m_Lattice, ramp);
  for (int j = 0; j <= 43; ++j) {
    for (int i = 0; i <= 39; ++i) {
      const double gx = 0.41 * i;
      const double gy = 0.37 * j;
      ASSERT_NEAR(test.m_Surface.HeightAt(gx, gy), ramp(test.m_Lattice.XOf(gx), test.m_Lattice.YOf(gy)), kRounding);
    }
  }
}

TEST(SampleLattice, KeepsPointsInUseAndInterpolatesTheOthers) {
  CTestTree test(3, 1);
  test.m_Tree.CellAt(2, 1, 0).subdiv(false);
  SetRandomHeights(test.m_Lattice, 4);
  std::vector<double> sampled(test.m_Lattice.PointCount());
  test.m_Surface.SampleLattice(sampled);
  for (int row = 0; row <= 8; ++row) {
    for (int column = 0; column <= 8; ++column) {
      const std::size_t point = test.m_Lattice.Index(column, row);
      if (test.m_Lattice.Has(point, PointFlag::kInUse))
        EXPECT_EQ(sampled[point], test.m_Lattice.Heights()[point]);
      else
        EXPECT_NEAR(sampled[point], test.m_Surface.HeightAt(column, row), kRounding);
    }
  }
}

TEST(SampleLattice, LeavesTheHeightArrayAsItIs) {
  CTestTree test(3, 1);
  SetRandomHeights(test.m_Lattice, 4);
  const std::vector<double> before = test.m_Lattice.Heights();
  std::vector<double> sampled(test.m_Lattice.PointCount());
  test.m_Surface.SampleLattice(sampled);
  EXPECT_EQ(test.m_Lattice.Heights(), before);
}

TEST(SampleLattice, OfTheFinestSubdivisionIsTheHeightArray) {
  CTestTree test(3, 3);
  SetHeights(test.m_Lattice, CBump{});
  std::vector<double> sampled(test.m_Lattice.PointCount());
  test.m_Surface.SampleLattice(sampled);
  EXPECT_EQ(sampled, test.m_Lattice.Heights());
}

TEST(SampleLattice, StaysBetweenTheHeightsOfAStep) {
  CTestTree test(4, 2);
  SetHeights(test.m_Lattice, CStep{});
  std::vector<double> sampled(test.m_Lattice.PointCount());
  test.m_Surface.SampleLattice(sampled);
  EXPECT_NEAR(*std::min_element(sampled.begin(), sampled.end()), -1.0, kRounding);
  EXPECT_NEAR(*std::max_element(sampled.begin(), sampled.end()), 2.0, kRounding);
  EXPECT_NEAR(sampled[test.m_Lattice.Index(3, 7)], -1.0, kRounding);
}

}  // namespace
