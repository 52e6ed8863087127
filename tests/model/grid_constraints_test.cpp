// What the grid's operations on its point constraints do to the records, what they post and what they show.

#include <string>

#include <gtest/gtest.h>

#include "model/CGrid.h"
#include "support/CStaging.h"
#include "support/UpdateBuilders.h"

namespace {

constexpr std::uint32_t kPosition = PtCstrKind::kPosition;
constexpr std::uint32_t kNormal = PtCstrKind::kNormal;

// A ramp under a recording host; nothing is pending.
class GridConstraintsTest : public testing::Test {
 protected:
  GridConstraintsTest() { SetSurface(Grid(), m_Ramp); }

  CGrid& Grid() { return m_Test.m_Grid; }
  CPtCstrList& List() { return CStaging::Constraints(Grid()).Points(); }
  // Puts records into the list, one selected for each 1 in `selection`, past the operations that post.
  void Fill(const std::vector<CPtCstr>& records, const std::string& selection) {
    for (const CPtCstr& c : records) List().Add(c);
    SetSelection(List(), selection);
  }
  // What has been posted since the last call.
  int Posted() {
    const Operation operation = Grid().Run().NextOperation();
    Grid().PerformPendingWork();
    return CodeOf(operation);
  }

  const CRamp m_Ramp{0.5, -2, 40};
  CTestGrid m_Test{4, 2};
  CActingHost m_Host{m_Test.m_Grid};
};

TEST_F(GridConstraintsTest, AddingCopiesTheRecordAndPostsARebuild) {
  Grid().AddPtCstr({1, 22, kPosition | kNormal, 3, 4, 5, 3});
  ASSERT_EQ(List().size(), 1U);
  const CPtCstr& added = RecordAt(List(), 0);
  EXPECT_EQ(added.m_uKind, kPosition | kNormal);
  EXPECT_EQ(added.m_fX, 1);
  EXPECT_EQ(added.m_fY, 22);
  EXPECT_EQ(added.m_fZ, 3);
  EXPECT_EQ(added.m_fP, 4);
  EXPECT_EQ(added.m_fQ, 5);
  EXPECT_EQ(added.m_uState, 0U);
  EXPECT_EQ(Grid().Run().NextOperation(), Operation::kRebuild);
}

TEST_F(GridConstraintsTest, AddingShowsTheCountAndRedraws) {
  Grid().AddPtCstr(HeightCstr(1, 22, 3));
  EXPECT_EQ(m_Host.m_iConstraints, 1);
  EXPECT_EQ(m_Host.m_iRedraws, 1);
  Grid().AddPtCstr(HeightCstr(2, 22, 3));
  EXPECT_EQ(m_Host.m_iConstraints, 2);
}

TEST_F(GridConstraintsTest, AddingWorksWithoutAHost) {
  Grid().Run().AttachHost(nullptr);
  Grid().AddPtCstr(HeightCstr(1, 22, 3));
  EXPECT_EQ(List().size(), 1U);
  EXPECT_EQ(Posted(), 2);
}

TEST_F(GridConstraintsTest, PickToleranceIsOneModelUnitAtZoomOne) {
  EXPECT_EQ(g_fZoom, 1.0);
  EXPECT_EQ(g_fPickTolerance, 1.0);
  Fill({HeightCstr(4, 23, 0)}, "0");
  EXPECT_TRUE(Grid().HighlightPtCstrs(4.5, 22.5, kPosition));
  EXPECT_FALSE(Grid().HighlightPtCstrs(4.5, 22.375, kPosition));
}

TEST_F(GridConstraintsTest, ReachGrowsWithTheZoomAndTheTolerance) {
  Fill({HeightCstr(4, 23, 0)}, "0");
  for (const auto& [zoom, tolerance] : {std::pair{2.0, 1.0}, {1.0, 2.0}, {0.5, 1.0}, {4.0, 0.25}}) {
    const CGlobalScope zoomScope(g_fZoom, zoom);
    const CGlobalScope toleranceScope(g_fPickTolerance, tolerance);
    const double reach = zoom * tolerance;
    EXPECT_TRUE(Grid().HighlightPtCstrs(4 + reach / 2, 23 + reach / 2, kPosition));
    EXPECT_FALSE(Grid().HighlightPtCstrs(4 + reach / 2, 23 + reach / 2 + 0.125, kPosition));
    Grid().SelectPtCstr(4 - reach, 23, kPosition);
    EXPECT_EQ(Selection(List()), "1");
    Grid().SelectPtCstr(4 - reach - 0.125, 23, kPosition);
    EXPECT_EQ(Selection(List()), "0");
  }
}

TEST_F(GridConstraintsTest, ClicksAndKeysSelectByTheListsRules) {
  Fill({HeightCstr(4, 23, 0), SlopeCstr(4, 23), HeightCstr(4.25, 23, 1)}, "000");
  Grid().SelectPtCstr(4, 23, kPosition);
  EXPECT_EQ(Selection(List()), "001");
  Grid().SelectPtCstr(4, 23, kPosition);
  EXPECT_EQ(Selection(List()), "100");
  Grid().SelectNextPtCstr(kPosition);
  EXPECT_EQ(Selection(List()), "001");
  Grid().SelectPrevPtCstr(kPosition);
  EXPECT_EQ(Selection(List()), "100");
  Grid().UnselectAll();
  EXPECT_EQ(Selection(List()), "000");
  Grid().SelectPrevPtCstr(kNormal);
  EXPECT_EQ(Selection(List()), "010");
}

TEST_F(GridConstraintsTest, SelectingPostsNothing) {
  Fill({HeightCstr(4, 23, 0)}, "0");
  Grid().HighlightPtCstrs(4, 23, kPosition);
  Grid().SelectPtCstr(4, 23, kPosition);
  Grid().SelectNextPtCstr(kPosition);
  Grid().UnselectAll();
  EXPECT_EQ(Grid().Run().NextOperation(), Operation::kNone);
}

TEST_F(GridConstraintsTest, HeightIsThatOfTheFirstSelectedPosition) {
  EXPECT_EQ(Grid().GetSelectedHeight(), 0.0);
  Fill({HeightCstr(1, 21, 5), SlopeCstr(1, 21), HeightCstr(1, 21, 7), HeightAndSlopeCstr(1, 21, 9)}, "0000");
  EXPECT_EQ(Grid().GetSelectedHeight(), 0.0);
  SetSelection(List(), "0100");
  EXPECT_EQ(Grid().GetSelectedHeight(), 0.0);
  SetSelection(List(), "0111");
  EXPECT_EQ(Grid().GetSelectedHeight(), 7);
  SetSelection(List(), "0001");
  EXPECT_EQ(Grid().GetSelectedHeight(), 9);
}

TEST_F(GridConstraintsTest, SettingTheHeightChangesTheFirstSelectedPositionAndRestarts) {
  Fill({HeightCstr(1, 21, 5), SlopeCstr(1, 21), HeightCstr(1, 21, 7), HeightCstr(1, 21, 9)}, "0111");
  Grid().SetSelectedHeight(-2.5);
  EXPECT_EQ(Grid().Run().NextOperation(), Operation::kRestart);
  EXPECT_EQ(RecordAt(List(), 0).m_fZ, 5);
  EXPECT_EQ(RecordAt(List(), 1).m_fZ, 0);
  EXPECT_EQ(RecordAt(List(), 2).m_fZ, -2.5);
  EXPECT_EQ(RecordAt(List(), 3).m_fZ, 9);
}

TEST_F(GridConstraintsTest, SettingTheHeightOfNothingPostsNothing) {
  Fill({HeightCstr(1, 21, 5), SlopeCstr(1, 21)}, "01");
  Grid().SetSelectedHeight(-2.5);
  EXPECT_EQ(Grid().Run().NextOperation(), Operation::kNone);
  EXPECT_EQ(RecordAt(List(), 0).m_fZ, 5);
}

TEST_F(GridConstraintsTest, ChangingTheNormalAddsToTheFirstSelectedOne) {
  Fill({SlopeCstr(1, 21), HeightCstr(1, 21, 7), SlopeCstr(4, 23, 0.5, 0.25), SlopeCstr(1, 21)}, "0111");
  Grid().ChangeSelectedNormal(1, -2);
  EXPECT_EQ(Grid().Run().NextOperation(), Operation::kRestart);
  const CPtCstr& changed = RecordAt(List(), 2);
  EXPECT_EQ(changed.m_fP, 1.5);
  EXPECT_EQ(changed.m_fQ, -1.75);
  EXPECT_NEAR(changed.m_fZ, m_Ramp(4, 23), 1e-9);
  EXPECT_EQ(RecordAt(List(), 0).m_fP, 0);
  EXPECT_EQ(RecordAt(List(), 1).m_fP, 0);
  EXPECT_EQ(RecordAt(List(), 1).m_fZ, 7);
  EXPECT_EQ(RecordAt(List(), 3).m_fP, 0);
}

TEST_F(GridConstraintsTest, ChangingTheNormalRestartsWithoutOneToo) {
  Grid().ChangeSelectedNormal(1, -2);
  EXPECT_EQ(Posted(), 1);
  Fill({SlopeCstr(1, 21), HeightCstr(1, 21, 7)}, "01");
  Grid().ChangeSelectedNormal(1, -2);
  EXPECT_EQ(Posted(), 1);
  EXPECT_EQ(RecordAt(List(), 0).m_fP, 0);
  EXPECT_EQ(RecordAt(List(), 1).m_fP, 0);
}

TEST_F(GridConstraintsTest, HeightOfARecordOfBothKindsIsTheUsers) {
  Fill({HeightAndSlopeCstr(1, 21, 7)}, "1");
  Grid().ChangeSelectedNormal(1, -2);
  EXPECT_EQ(RecordAt(List(), 0).m_fP, 1);
  EXPECT_EQ(RecordAt(List(), 0).m_fZ, 7);
  Grid().MoveSelectedPtCstr(1, 1);
  EXPECT_EQ(RecordAt(List(), 0).m_fZ, 7);
  Grid().RefreshNormalCstrHeights();
  EXPECT_EQ(RecordAt(List(), 0).m_fZ, 7);
}

TEST_F(GridConstraintsTest, MovingTakesTheFirstSelectedOfAnyKind) {
  Fill({HeightCstr(1, 21, 5), HeightCstr(2, 22, 6), SlopeCstr(3, 23)}, "011");
  Grid().MoveSelectedPtCstr(0.5, -0.25);
  EXPECT_EQ(Grid().Run().NextOperation(), Operation::kRestart);
  EXPECT_EQ(RecordAt(List(), 1).m_fX, 2.5);
  EXPECT_EQ(RecordAt(List(), 1).m_fY, 21.75);
  EXPECT_EQ(RecordAt(List(), 1).m_fZ, 6);
  EXPECT_EQ(RecordAt(List(), 0).m_fX, 1);
  EXPECT_EQ(RecordAt(List(), 2).m_fX, 3);
}

TEST_F(GridConstraintsTest, MovedNormalTakesTheHeightAtItsNewPlace) {
  Fill({SlopeCstr(3, 23)}, "1");
  Grid().MoveSelectedPtCstr(0.5, -0.25);
  EXPECT_NEAR(RecordAt(List(), 0).m_fZ, m_Ramp(3.5, 22.75), 1e-9);
}

TEST_F(GridConstraintsTest, MovingShowsTheConstraintsAgain) {
  Fill({HeightCstr(1, 21, 5)}, "1");
  Grid().MoveSelectedPtCstr(0.5, -0.25);
  EXPECT_EQ(m_Host.m_iConstraints, 1);
}

TEST_F(GridConstraintsTest, NothingHappensWithoutASelection) {
  Fill({HeightCstr(1, 21, 5), SlopeCstr(2, 22)}, "00");
  Grid().MoveSelectedPtCstr(1, 1);
  Grid().DeleteSelectedPtCstr();
  Grid().SetSelectedHeight(1);
  EXPECT_EQ(Grid().Run().NextOperation(), Operation::kNone);
  EXPECT_EQ(List().size(), 2U);
  EXPECT_EQ(RecordAt(List(), 0).m_fX, 1);
  EXPECT_EQ(m_Host.m_iConstraints, -1);
  EXPECT_EQ(m_Host.m_iRedraws, 0);
}

TEST_F(GridConstraintsTest, DeletingPostsARebuildAndSelectsTheSuccessor) {
  Fill({HeightCstr(1, 21, 5), SlopeCstr(2, 22), HeightCstr(3, 23, 6)}, "001");
  Grid().DeleteSelectedPtCstr();
  EXPECT_EQ(Selection(List()), "10");
  EXPECT_EQ(Grid().Run().NextOperation(), Operation::kRebuild);
  EXPECT_EQ(m_Host.m_iConstraints, 2);
  EXPECT_EQ(m_Host.m_iRedraws, 1);
}

TEST_F(GridConstraintsTest, OperationsLeaveTheGeneratedConstraintsAlone) {
  CStaging::Constraints(Grid()).Generated().Add(HeightCstr(4, 23, 5));
  SetSelection(CStaging::Constraints(Grid()).Generated(), "1");
  EXPECT_FALSE(Grid().HighlightPtCstrs(4, 23, kPosition));
  Grid().MoveSelectedPtCstr(1, 1);
  Grid().DeleteSelectedPtCstr();
  Grid().UnselectAll();
  EXPECT_EQ(Selection(Grid().Constraints().Generated()), "1");
  EXPECT_EQ(RecordAt(Grid().Constraints().Generated(), 0).m_fX, 4);
}

TEST_F(GridConstraintsTest, RefreshGivesNormalsOfBothListsTheHeightUnderThem) {
  Fill({SlopeCstr(2, 22), HeightCstr(3, 23, 6)}, "00");
  CStaging::Constraints(Grid()).Generated().Add(SlopeCstr(5.5, 24.25));
  CStaging::Constraints(Grid()).Generated().Add(HeightAndSlopeCstr(5.5, 24.25, 8));
  Grid().RefreshNormalCstrHeights();
  EXPECT_NEAR(RecordAt(List(), 0).m_fZ, m_Ramp(2, 22), 1e-9);
  EXPECT_EQ(RecordAt(List(), 1).m_fZ, 6);
  EXPECT_NEAR(RecordAt(Grid().Constraints().Generated(), 0).m_fZ, m_Ramp(5.5, 24.25), 1e-9);
  EXPECT_EQ(RecordAt(Grid().Constraints().Generated(), 1).m_fZ, 8);
}

TEST_F(GridConstraintsTest, TickKeepsTheHeightOfNormalsUpToDate) {
  AddAll(Grid(), SomeConstraints());
  Grid().UpdateGrid();
  const CPtCstr& slope = RecordAt(List(), 3);
  EXPECT_NE(slope.m_fZ, 0);
  EXPECT_EQ(slope.m_fZ, SurfaceHeight(Grid(), slope.m_fX, slope.m_fY));
  EXPECT_EQ(RecordAt(List(), 2).m_fZ, 3);
}

TEST_F(GridConstraintsTest, PendingWorkBringsTheHeightOfNormalsUpToDate) {
  Fill({SlopeCstr(2, 22), HeightCstr(3, 23, 6)}, "00");
  Grid().Run().Post(Operation::kRebuildMaps);
  Grid().PerformPendingWork();
  EXPECT_NEAR(RecordAt(List(), 0).m_fZ, m_Ramp(2, 22), 1e-9);
  EXPECT_EQ(RecordAt(List(), 1).m_fZ, 6);
}

// Indices run over the lattice, whatever its extent.
TEST_F(GridConstraintsTest, HeightAtTakesLatticeIndices) {
  EXPECT_NEAR(Grid().GetHeightAt(0, 0), m_Ramp(kOblong.x0, kOblong.y0), 1e-9);
  EXPECT_NEAR(Grid().GetHeightAt(16, 0), m_Ramp(kOblong.x1, kOblong.y0), 1e-9);
  EXPECT_NEAR(Grid().GetHeightAt(2.5, 8), m_Ramp(-1, 23), 1e-9);
  EXPECT_EQ(Grid().GetHeightAt(16.5, 8), 0);
}

}  // namespace
