// Which point constraints the system has no row for, why, and when that is found out.

#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "model/CGrid.h"
#include "support/CStaging.h"
#include "support/UpdateBuilders.h"

namespace {

// Cells of 4 by 1.5 model units; the tear goes along y = 23.9 from x = 1 to x = 8.
class InactiveConstraintsTest : public testing::Test {
 protected:
  CGrid& Grid() { return m_Test.m_Grid; }
  CPtCstrList& List() { return CStaging::Constraints(Grid()).Points(); }
  const CPtCstr& At(int place) { return RecordAt(List(), place); }
  void Tear() { Grid().AddCurve(std::vector<CPtCstr>{{1, 23.9}, {8, 23.9}}, CurveType::kPosition, false); }
  void Rebuild(const std::vector<CPtCstr>& records) {
    for (const CPtCstr& c : records) List().Add(c);
    Grid().Run().Post(Operation::kRebuildMaps);
    Grid().PerformPendingWork();
  }
  std::string Why(int place) { return InactivityText(Grid().Constraints().WhyInactive(At(place))); }

  CTestGrid m_Test{4, 2};
  CActingHost m_Host{m_Test.m_Grid};
};

TEST_F(InactiveConstraintsTest, ThoseWithRowsAreActive) {
  Rebuild({HeightCstr(3, 21, 1), SlopeCstr(3, 22), HeightAndSlopeCstr(6, 22, 1), HeightCstr(-3.5, 26, 2)});
  for (int k = 0; k < 4; ++k) {
    EXPECT_TRUE(At(k).IsActive()) << k;
    EXPECT_EQ(At(k).m_uIdle, 0U) << k;
    EXPECT_EQ(Why(k), "") << k;
  }
  EXPECT_EQ(Grid().Constraints().ActiveCount(), 4);
}

TEST_F(InactiveConstraintsTest, EachReasonIsTold) {
  Tear();
  Rebuild({HeightCstr(4, 23.9, 1), SlopeCstr(4, 23.9), HeightCstr(20, 22, 1), SlopeCstr(3, 19.9), SlopeCstr(3, 20.05),
           SlopeCstr(12.5, 22), SlopeCstr(-3.5, 26), HeightCstr(3, 21, 1)});
  const std::vector<std::string> reasons{"in a tear",     "in a tear",     "outside",       "outside",
                                         "on the border", "on the border", "on the border", ""};
  for (int k = 0; k < 8; ++k) EXPECT_EQ(Why(k), reasons[static_cast<std::size_t>(k)]) << k;
  EXPECT_EQ(Grid().Constraints().ActiveCount(), 1);
}

TEST_F(InactiveConstraintsTest, AHeightOutlivesItsSlopeAtTheBorder) {
  Rebuild({HeightAndSlopeCstr(3, 20.05, 1)});
  EXPECT_TRUE(At(0).IsActive());
  EXPECT_EQ(At(0).m_uIdle, PtCstrKind::kNormal);
  EXPECT_EQ(Why(0), "on the border");
}

TEST_F(InactiveConstraintsTest, ATearTakesBothKinds) {
  Tear();
  Rebuild({HeightAndSlopeCstr(4, 23.9, 1)});
  EXPECT_FALSE(At(0).IsActive());
  EXPECT_EQ(At(0).m_uIdle, PtCstrKind::kPosition | PtCstrKind::kNormal);
  EXPECT_EQ(Why(0), "in a tear");
}

TEST_F(InactiveConstraintsTest, ARecordOfNoKindIsNotActiveForNoReason) {
  Rebuild({{3, 21}});
  EXPECT_FALSE(At(0).IsActive());
  EXPECT_EQ(Why(0), "");
  EXPECT_EQ(Grid().Constraints().ActiveCount(), 0);
}

TEST_F(InactiveConstraintsTest, OneAddedIsJudgedAtOnce) {
  Grid().AddPtCstr(HeightCstr(20, 22, 1));
  EXPECT_EQ(Why(0), "outside");
  EXPECT_EQ(m_Host.m_iConstraints, 0);
  Grid().AddPtCstr(HeightCstr(3, 22, 1));
  EXPECT_EQ(Why(1), "");
  EXPECT_EQ(m_Host.m_iConstraints, 1);
}

TEST_F(InactiveConstraintsTest, OneMovedIsJudgedAtOnce) {
  Rebuild({HeightCstr(3, 21, 1)});
  SetSelection(List(), "1");
  Grid().MoveSelectedPtCstr(20, 0);
  EXPECT_EQ(Why(0), "outside");
  EXPECT_EQ(m_Host.m_iConstraints, 0);
  Grid().MoveSelectedPtCstr(-20, 0);
  EXPECT_EQ(Why(0), "");
  EXPECT_EQ(m_Host.m_iConstraints, 1);
}

TEST_F(InactiveConstraintsTest, ATearDrawnOverAHeightTakesItOutOfTheCount) {
  Rebuild({HeightCstr(4, 23.9, 1), HeightCstr(3, 21, 1)});
  EXPECT_EQ(m_Host.m_iConstraints, 2);
  Tear();
  Grid().PerformPendingWork();
  EXPECT_EQ(m_Host.m_iConstraints, 1);
  EXPECT_EQ(Why(0), "in a tear");
  CStaging::Constraints(Grid()).Curves().clear();
  Rebuild({});
  EXPECT_EQ(m_Host.m_iConstraints, 2);
  EXPECT_EQ(Why(0), "");
}

TEST_F(InactiveConstraintsTest, GeneratedOnesAreJudgedAndNotCounted) {
  Rebuild({HeightCstr(3, 21, 1)});
  CStaging::Constraints(Grid()).Generated().Add(SlopeCstr(3, 19));
  Grid().Run().Post(Operation::kRestart);
  Grid().PerformPendingWork();
  EXPECT_EQ(Grid().Constraints().WhyInactive(RecordAt(Grid().Constraints().Generated(), 0)), Inactivity::Outside);
  EXPECT_EQ(Grid().Constraints().ActiveCount(), 1);
}

// Whatever is said of a constraint alone is what becomes of it among others.
TEST_F(InactiveConstraintsTest, TheRowsAgreeWithTheJudgementOfEachAlone) {
  Tear();
  std::vector<CPtCstr> records;
  const std::vector<double> chance = RandomValues(7, 600);
  for (std::size_t k = 0; k < chance.size(); k += 3) {
    const double x = 4.5 + 9 * chance[k];
    const double y = 23 + 3.5 * chance[k + 1];
    records.push_back(HeightAndSlopeCstr(x, y, 0));
    if (chance[k + 2] < 0.3)
      records.back().SetKind(chance[k + 2] < -0.3 ? PtCstrKind::kPosition : PtCstrKind::kNormal, false);
  }
  Rebuild(records);
  std::size_t rows = 0;
  for (const CPtCstr& c : List()) {
    const std::uint32_t kinds =
        CConstraintRows::KindsWithRows(c, Grid().Surface().Tree(), Grid().Surface().Interpolation());
    EXPECT_EQ(kinds & c.m_uIdle, 0U);
    EXPECT_EQ(kinds | c.m_uIdle, c.m_uKind & (PtCstrKind::kPosition | PtCstrKind::kNormal));
    EXPECT_EQ(c.m_uIdle != 0, Grid().Constraints().WhyInactive(c) != Inactivity::None);
    rows += ((kinds & PtCstrKind::kPosition) != 0 ? 1U : 0U) + ((kinds & PtCstrKind::kNormal) != 0 ? 2U : 0U);
  }
  EXPECT_EQ(Grid().Solver().System().Constraints().Count(), rows);
}

}  // namespace
