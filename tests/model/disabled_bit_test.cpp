// Which point constraints are disabled because they lie in a discontinuity, and when that is found out.

#include <array>

#include <gtest/gtest.h>

#include "model/CGrid.h"
#include "support/CStaging.h"
#include "support/UpdateBuilders.h"

namespace {

// Leaves of 4 x 4 lattice steps; a lattice step is 1 by 0.375 model units.
class DisabledBitTest : public testing::Test {
 protected:
  CGrid& Grid() { return m_Test.m_Grid; }
  CPtCstrList& List() { return CStaging::Constraints(Grid()).Points(); }
  CQuadT& Leaf(int i, int j) { return Grid().Surface().Tree().CellAt(2, i, j); }
  // A constraint at a place of leaf (i, j), given from its centre in units of its size.
  CPtCstr Placed(CPtCstr constraint, int i, int j, double u, double v) {
    constraint.m_fX = Grid().Surface().Lattice().XOf(4 * (i + 0.5 + u));
    constraint.m_fY = Grid().Surface().Lattice().YOf(4 * (j + 0.5 + v));
    return constraint;
  }
  bool IsDisabled(int place) { return RecordAt(List(), place).HasKind(PtCstrKind::kDisabled); }
  // Whether a constraint added now is disabled. It is gone afterwards.
  bool WouldBeDisabled(const CPtCstr& constraint) {
    List().clear();
    Grid().AddPtCstr(constraint);
    const bool disabled = IsDisabled(0);
    List().clear();
    return disabled;
  }
  // The same with a single triangle of a single leaf marked.
  bool WouldBeDisabled(const CPtCstr& constraint, CQuadT& leaf, int triangle) {
    leaf.SetFlags(1U << triangle);
    const bool disabled = WouldBeDisabled(constraint);
    leaf.ClearFlags(CellFlag::kMarkable);
    return disabled;
  }

  CTestGrid m_Test{4, 2};
};

TEST_F(DisabledBitTest, PositionIsDisabledByTheTriangleThatHoldsIt) {
  const std::array<std::array<double, 2>, 4> places{{{0.125, -0.25}, {0.25, 0.125}, {-0.125, 0.25}, {-0.25, -0.125}}};
  for (std::size_t held = 0; held < 4; ++held) {
    const CPtCstr position = Placed(HeightCstr(0, 0, 1), 1, 2, places[held][0], places[held][1]);
    for (int marked = 0; marked < 4; ++marked)
      EXPECT_EQ(WouldBeDisabled(position, Leaf(1, 2), marked), marked == static_cast<int>(held)) << held << marked;
  }
}

TEST_F(DisabledBitTest, TrianglesReachToTheCornersOfTheLeaf) {
  EXPECT_TRUE(WouldBeDisabled(Placed(HeightCstr(0, 0, 1), 1, 2, 0.4375, -0.46875), Leaf(1, 2), kBottom));
  EXPECT_TRUE(WouldBeDisabled(Placed(HeightCstr(0, 0, 1), 1, 2, 0.46875, -0.4375), Leaf(1, 2), kRight));
  EXPECT_TRUE(WouldBeDisabled(Placed(HeightCstr(0, 0, 1), 1, 2, -0.4375, 0.46875), Leaf(1, 2), kTop));
  EXPECT_TRUE(WouldBeDisabled(Placed(HeightCstr(0, 0, 1), 1, 2, -0.46875, 0.4375), Leaf(1, 2), kLeft));
}

TEST_F(DisabledBitTest, NothingIsDisabledWithoutMarks) {
  EXPECT_FALSE(WouldBeDisabled(Placed(HeightCstr(0, 0, 1), 1, 2, 0.25, 0.125)));
  EXPECT_FALSE(WouldBeDisabled(Placed(SlopeCstr(0, 0), 1, 2, 0.25, 0.125)));
}

TEST_F(DisabledBitTest, OnlyTriangleMarksCount) {
  Leaf(1, 2).SetFlags(CellFlag::kRisingCrease | CellFlag::kFallingCrease | CellFlag::kSelected);
  EXPECT_FALSE(WouldBeDisabled(Placed(HeightCstr(0, 0, 1), 1, 2, 0.25, 0.125)));
}

TEST_F(DisabledBitTest, LeafThatHoldsThePointDecides) {
  const CPtCstr position = Placed(HeightCstr(0, 0, 1), 1, 2, 0.3125, 0.15625);
  EXPECT_FALSE(WouldBeDisabled(position, Grid().Surface().Tree().CellAt(1, 3, 5), kLeft));
  EXPECT_FALSE(WouldBeDisabled(position, Grid().Surface().Tree().CellAt(3, 0, 1), kRight));
  Leaf(1, 2).subdiv(true);
  EXPECT_FALSE(WouldBeDisabled(position, Leaf(1, 2), kRight));
  EXPECT_TRUE(WouldBeDisabled(position, Grid().Surface().Tree().CellAt(1, 3, 5), kBottom));
}

TEST_F(DisabledBitTest, OutsideAPositionIsEnabledAndANormalDisabled) {
  for (int i = 0; i < 4; ++i) {
    for (int j = 0; j < 4; ++j) Leaf(i, j).SetFlags(CellFlag::kTriangles);
  }
  EXPECT_FALSE(WouldBeDisabled(HeightCstr(kOblong.x1 + 0.5, 23, 1)));
  Grid().SetDiscMap();
  EXPECT_TRUE(WouldBeDisabled(SlopeCstr(kOblong.x1 + 0.5, 23)));
  EXPECT_TRUE(WouldBeDisabled(SlopeCstr(4, kOblong.y0 - 0.5)));
}

// The probes lie half a cell above, below, left and right of the point; each falls into a triangle of its own.
TEST_F(DisabledBitTest, NormalIsDisabledByEachOfItsFourProbes) {
  const CPtCstr normal = Placed(SlopeCstr(0, 0), 1, 1, 0.25, 0.125);
  EXPECT_TRUE(WouldBeDisabled(normal, Leaf(1, 2), kBottom));
  EXPECT_TRUE(WouldBeDisabled(normal, Leaf(1, 1), kBottom));
  EXPECT_TRUE(WouldBeDisabled(normal, Leaf(1, 1), kLeft));
  EXPECT_TRUE(WouldBeDisabled(normal, Leaf(2, 1), kLeft));
}

TEST_F(DisabledBitTest, NormalIsNotDisabledByWhatNoProbeMeets) {
  const CPtCstr normal = Placed(SlopeCstr(0, 0), 1, 1, 0.25, 0.125);
  for (const Side side : {kRight, kTop}) {
    EXPECT_FALSE(WouldBeDisabled(normal, Leaf(1, 1), side));
    EXPECT_FALSE(WouldBeDisabled(normal, Leaf(1, 2), side));
    EXPECT_FALSE(WouldBeDisabled(normal, Leaf(2, 1), side));
  }
  for (const Side side : {kBottom, kRight, kTop, kLeft}) {
    EXPECT_FALSE(WouldBeDisabled(normal, Leaf(0, 1), side));
    EXPECT_FALSE(WouldBeDisabled(normal, Leaf(1, 0), side));
    EXPECT_FALSE(WouldBeDisabled(normal, Leaf(2, 2), side));
  }
}

TEST_F(DisabledBitTest, ProbesAreHalfTheSizeOfTheCellThatHoldsThePoint) {
  const CPtCstr normal = Placed(SlopeCstr(0, 0), 1, 1, 0.375, 0.3125);
  EXPECT_TRUE(WouldBeDisabled(normal, Leaf(2, 1), kTop));
  EXPECT_FALSE(WouldBeDisabled(normal, Leaf(2, 1), kLeft));
  Leaf(1, 1).subdiv(true);
  // The finer cell is (3, 3) of its level, the point at (0.25, 0.125) from its centre.
  EXPECT_FALSE(WouldBeDisabled(normal, Leaf(2, 1), kTop));
  EXPECT_TRUE(WouldBeDisabled(normal, Leaf(2, 1), kLeft));
  EXPECT_TRUE(WouldBeDisabled(normal, Grid().Surface().Tree().CellAt(1, 3, 3), kBottom));
  EXPECT_FALSE(WouldBeDisabled(normal, Grid().Surface().Tree().CellAt(1, 3, 2), kTop));
}

TEST_F(DisabledBitTest, ProbesOutsideAreInNoDiscontinuity) {
  for (int j = 0; j < 4; ++j) Leaf(1, j).SetFlags(CellFlag::kTriangles);
  EXPECT_FALSE(WouldBeDisabled(Placed(SlopeCstr(0, 0), 0, 1, -0.25, 0.125)));
  EXPECT_TRUE(WouldBeDisabled(Placed(SlopeCstr(0, 0), 0, 1, 0.25, 0.125)));
}

TEST_F(DisabledBitTest, RecordOfBothKindsIsDisabledByEither) {
  const CPtCstr both = Placed(HeightAndSlopeCstr(0, 0, 1), 1, 1, 0.25, 0.125);
  EXPECT_TRUE(WouldBeDisabled(both, Leaf(1, 1), kRight));
  EXPECT_TRUE(WouldBeDisabled(both, Leaf(2, 1), kLeft));
  EXPECT_FALSE(WouldBeDisabled(both, Leaf(1, 1), kTop));
}

TEST_F(DisabledBitTest, BitThatARecordBringsAlongIsForgotten) {
  CPtCstr position = Placed(HeightCstr(0, 0, 1), 1, 1, 0.25, 0.125);
  position.SetKind(PtCstrKind::kDisabled, true);
  EXPECT_FALSE(WouldBeDisabled(position));
}

TEST_F(DisabledBitTest, MovingIntoADiscontinuityDisablesAndOutOfItEnables) {
  Leaf(2, 1).SetFlags(CellFlag::kTriangles);
  Grid().AddPtCstr(Placed(HeightCstr(0, 0, 1), 1, 1, 0.25, 0.125));
  SetSelection(List(), "1");
  Grid().MoveSelectedPtCstr(4, 0);
  EXPECT_TRUE(IsDisabled(0));
  Grid().MoveSelectedPtCstr(0, 1.5);
  EXPECT_FALSE(IsDisabled(0));
}

TEST_F(DisabledBitTest, OtherEditsDoNotLookAgain) {
  Grid().AddPtCstr(Placed(HeightCstr(0, 0, 1), 1, 1, 0.25, 0.125));
  SetSelection(List(), "1");
  Leaf(1, 1).SetFlags(CellFlag::kTriangles);
  Grid().SetSelectedHeight(5);
  EXPECT_FALSE(IsDisabled(0));
}

TEST_F(DisabledBitTest, RebuildingTheMapsLooksAtEveryPointAgain) {
  Leaf(1, 1).SetFlags(CellFlag::kTriangles);
  Grid().AddPtCstr(Placed(HeightCstr(0, 0, 1), 1, 1, 0.25, 0.125));
  Grid().AddPtCstr(Placed(SlopeCstr(0, 0), 0, 1, 0.25, 0.125));
  Grid().AddPtCstr(Placed(SlopeCstr(0, 0), 2, 2, 0, 0));
  ASSERT_TRUE(IsDisabled(0) && IsDisabled(1) && !IsDisabled(2));
  RecordAt(List(), 2).m_fX = kOblong.x1 + 1;
  Grid().SetDiscMap();
  EXPECT_FALSE(IsDisabled(0));
  EXPECT_FALSE(IsDisabled(1));
  EXPECT_TRUE(IsDisabled(2));
}

TEST_F(DisabledBitTest, DisabledConstraintAddsNoRow) {
  Leaf(1, 1).SetFlags(CellFlag::kTriangles);
  Grid().AddPtCstr(Placed(HeightAndSlopeCstr(0, 0, 1), 1, 1, 0.25, 0.125));
  Grid().AddPtCstr(Placed(HeightCstr(0, 0, 1), 2, 1, 0.25, 0.125));
  Grid().PerformPendingWork();
  EXPECT_EQ(Grid().Solver().System().ConstraintCount(), 1U);
  Grid().SetDiscMap();
  EXPECT_EQ(Grid().Solver().System().ConstraintCount(), 4U);
}

}  // namespace
