// The command that edits the attributes of a curve in a dialog.

#include <gtest/gtest.h>

#include "support/CStaging.h"
#include "support/CurveBuilders.h"
#include "support/GridCommandsTest.h"

TEST_F(GridCommandsTest, CurveIsEditedAtOnceWithNoTick) {
  Grid().AddCurve(PointsAt({{0, 21}, {4, 22}, {8, 24}}), CurveType::kFairness, false);
  Grid().PerformPendingWork();
  m_CurveAnswer = CContourAnswer{};
  m_CurveAnswer->m_Attributes.m_bClosed = true;
  m_Commands.EditCurveAttributes(4, 22, CurveType::kNormal);
  EXPECT_EQ(m_asDone, Done{"fairness"});
  EXPECT_EQ(m_Host.m_iDragEnds, 1);
  EXPECT_TRUE(Grid().Constraints().Curves().back().IsClosed());
  EXPECT_EQ(Grid().Constraints().Curves().back().Type(), CurveType::kNormal);
  EXPECT_EQ(Grid().Run().NextOperation(), Operation::kRebuildMaps);
}

TEST_F(GridCommandsTest, CurveWaitsForTheTick) {
  Grid().AddCurve(PointsAt({{0, 21}, {4, 22}}), CurveType::kNormal, false);
  Grid().PerformPendingWork();
  g_nSolverTimers = 1;
  m_Commands.EditCurveAttributes(4, 22, CurveType::kNone);
  EXPECT_EQ(Grid().Run().NextOperation(), Operation::kContourAttributes);
  EXPECT_TRUE(m_asDone.empty());
  m_Commands.Perform(Operation::kContourAttributes);
  EXPECT_EQ(m_asDone, Done{"curve"});
}

TEST_F(GridCommandsTest, TheCurveThatWasClickedIsEditedWhateverLiesThereByThen) {
  const CPlaces places{{0, 21}, {4, 22}};
  for (int k = 0; k < 2; ++k) Grid().AddCurve(PointsAt(places), CurveType::kNormal, false);
  Grid().PerformPendingWork();
  g_nSolverTimers = 1;
  m_Commands.EditCurveAttributes(4, 22, CurveType::kNone);
  Grid().PickCurve(4, 22, CurveType::kAll);
  Grid().PickCurve(4, 22, CurveType::kAll);
  ASSERT_EQ(Grid().Constraints().Curves().begin()->HasState(PtCstrState::kSelected), true);
  Grid().DeleteSelectedCurve();
  m_Commands.Perform(Operation::kContourAttributes);
  EXPECT_TRUE(m_asDone.empty());
}

TEST_F(GridCommandsTest, NoDialogWhereThereIsNoCurve) {
  m_Commands.EditCurveAttributes(4, 22, CurveType::kNone);
  EXPECT_TRUE(m_asDone.empty());
  Grid().AddCurve(PointsAt({{0, 21}, {4, 22}}), CurveType::kNormal, false);
  m_Commands.SetServices({});
  m_Commands.EditCurveAttributes(4, 22, CurveType::kNone);
  EXPECT_TRUE(m_asDone.empty());
  EXPECT_EQ(m_Host.m_iDragEnds, 0);
}

TEST_F(GridCommandsTest, CancelledAttributesChangeNothing) {
  Grid().AddCurve(PointsAt({{0, 21}, {4, 22}}), CurveType::kNormal, false);
  Grid().PerformPendingWork();
  m_Commands.EditCurveAttributes(4, 22, CurveType::kPosition);
  EXPECT_EQ(Grid().Constraints().Curves().back().Type(), CurveType::kNormal);
  EXPECT_EQ(Grid().Run().NextOperation(), Operation::kNone);
  EXPECT_TRUE(Grid().Run().IsRunning());
  EXPECT_FALSE(m_bRanMeanwhile);
}

TEST_F(GridCommandsTest, ExportOfConstraintsPostsOneRebuildForAll) {
  Grid().AddCurve(PointsAt({{0, 21}, {8, 21}}), CurveType::kPosition, false);
  Grid().PerformPendingWork();
  m_CurveAnswer = CContourAnswer{};
  m_CurveAnswer->m_Attributes.m_bRightAutoBump = true;
  m_CurveAnswer->m_bExport = true;
  m_Commands.EditCurveAttributes(0, 21, CurveType::kNone);
  EXPECT_EQ(Grid().Constraints().Points().size(), 2U) << "at 0 and 5";
  EXPECT_EQ(Grid().Constraints().Curves().back().Options(), 0U);
  Console();
  Grid().PerformPendingWork();
  const std::string lines = Console();
  EXPECT_EQ(lines.find("CGrid::SetDiscMap()"), lines.rfind("CGrid::SetDiscMap()"));
}

TEST_F(GridCommandsTest, ExportOfTooManyConstraintsIsRefused) {
  Grid().AddCurve(LineOf(40), CurveType::kFairness, false);
  Grid().PerformPendingWork();
  m_CurveAnswer = CContourAnswer{};
  m_CurveAnswer->m_Attributes.m_bLeftAutoBump = true;
  m_CurveAnswer->m_Attributes.m_aAutoBumps[0].m_fDistance = kSmallDistance;
  m_CurveAnswer->m_bExport = true;
  m_Commands.EditCurveAttributes(-3, 22, CurveType::kNone);
  EXPECT_TRUE(Grid().Constraints().Points().empty());
  EXPECT_EQ(m_Host.m_asNotices, Done{"The curve would generate more than 200000 constraints: make its distances "
                                     "larger."});
}
