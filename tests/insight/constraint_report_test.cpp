// The report on the constraints: ten made cases of what contradicts, repeats, floats or does not act.

#include <cstddef>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "report/ConstraintReport.h"
#include "report/FloatingRegions.h"
#include "support/CStaging.h"
#include "support/CurveBuilders.h"
#include "support/UpdateBuilders.h"

namespace {

using Lines = std::vector<std::size_t>;

// 100 by 100 units in 32 by 32 cells.
struct CReportGrid {
  explicit CReportGrid(const std::vector<CPtCstr>& constraints = {}) : m_Scope(5, 5) {
    m_Grid.Initialize(5, false, 0, 0, 100, 100);
    AddAll(m_Grid, constraints);
  }
  CConstraintReport Solved() {
    RunUntilPaused(m_Grid, 3000);
    EXPECT_FALSE(m_Grid.Run().IsRunning());
    return ReportOnConstraints(m_Grid);
  }
  std::vector<CFloatingRegion> Floating() {
    m_Grid.PerformPendingWork();
    return FloatingRegions(FreedomOf(m_Grid));
  }

  CResolutionScope m_Scope;
  ConsoleCapture m_Console;
  CGrid m_Grid;
};

// Heights on a slope, away from the places of the cases.
const std::vector<CPtCstr> kAround{HeightCstr(5, 5, 0), HeightCstr(95, 5, 10), HeightCstr(5, 95, 20)};
std::vector<CPtCstr> Around(const std::vector<CPtCstr>& more) {
  std::vector<CPtCstr> all = kAround;
  all.insert(all.end(), more.begin(), more.end());
  return all;
}

std::vector<std::string> States(const CConstraintReport& report) {
  std::vector<std::string> states;
  for (const CConstraintLine& line : report.m_aLines) states.push_back(StateText(line));
  return states;
}

TEST(ConstraintReport, TellsWhatIsKept) {
  CReportGrid test(Around({SlopeCstr(50, 50, 0.25, -0.5)}));
  const CConstraintReport report = test.Solved();
  EXPECT_EQ(States(report), std::vector<std::string>(4, "kept"));
  EXPECT_NEAR(report.m_aLines[1].m_afKept[0], 10, 1e-5);
  EXPECT_NEAR(report.m_aLines[3].m_afKept[0], 0.25, 1e-5);
  EXPECT_NEAR(report.m_aLines[3].m_afKept[1], -0.5, 1e-5);
  EXPECT_EQ(report.m_aLines[3].m_afWanted[1], -0.5);
  EXPECT_TRUE(report.m_aContradictions.empty());
  EXPECT_GT(report.m_fRange, 19);
}

TEST(ConstraintReport, TellsWhatIsNotKeptYetWhileTheSolverRuns) {
  CReportGrid test(kAround);
  test.m_Grid.PerformPendingWork();
  const CConstraintReport report = ReportOnConstraints(test.m_Grid);
  EXPECT_EQ(StateText(report.m_aLines[2]), "not yet");
  EXPECT_NEAR(report.m_aLines[2].m_fMissed, 20, 0.01);
  EXPECT_EQ(report.ByMissed(), (Lines{2, 1, 0}));
  test.m_Grid.Run().SetRunning(false);
  EXPECT_EQ(StateText(ReportOnConstraints(test.m_Grid).m_aLines[2]), "not kept");
}

TEST(ConstraintReport, FindsTwoHeightsAtOnePlace) {
  CReportGrid test(Around({HeightCstr(40, 60, 12), HeightCstr(40, 60, 15)}));
  const CConstraintReport report = test.Solved();
  ASSERT_EQ(report.m_aContradictions.size(), 1U);
  EXPECT_EQ(report.m_aContradictions[0].m_auLines, (Lines{3, 4}));
  EXPECT_NEAR(report.m_aContradictions[0].m_fGap, 3, 1e-6);
  EXPECT_EQ(StateText(report.m_aLines[3]), "contradicts");
  EXPECT_EQ(report.m_aLines[3].m_auOthers, (Lines{4}));
  EXPECT_EQ(report.m_aLines[4].m_auOthers, (Lines{3}));
  EXPECT_NEAR(report.m_aLines[3].m_fMissed, 1.5, 1e-4);
  EXPECT_EQ(StateText(report.m_aLines[0]), "kept");
}

TEST(ConstraintReport, TakesAHeightGivenTwiceForRepeated) {
  CReportGrid test(Around({HeightCstr(40, 60, 12), HeightCstr(40, 60, 12)}));
  const CConstraintReport report = test.Solved();
  EXPECT_TRUE(report.m_aContradictions.empty());
  EXPECT_EQ(StateText(report.m_aLines[3]), "kept");
  EXPECT_EQ(StateText(report.m_aLines[4]), "repeats");
  EXPECT_EQ(report.m_aLines[4].m_auOthers, (Lines{3}));
}

// Its probes are half a cell to the left and right, above and below.
TEST(ConstraintReport, FindsANormalAgainstHeightsAroundIt) {
  const double half = 100.0 / 64;
  CReportGrid test(Around({HeightCstr(50 - half, 50, 1), HeightCstr(50 + half, 50, 2), SlopeCstr(50, 50, 5, 0)}));
  const CConstraintReport report = test.Solved();
  ASSERT_EQ(report.m_aContradictions.size(), 1U);
  EXPECT_EQ(report.m_aContradictions[0].m_auLines, (Lines{3, 4, 5}));
  EXPECT_NEAR(report.m_aContradictions[0].m_fGap, 5 * 2 * half - 1, 1e-6);
}

TEST(ConstraintReport, TakesANormalForKeptOfWhichHeightsGiveOneSlope) {
  const double half = 100.0 / 64;
  CReportGrid test(
      Around({HeightCstr(50 - half, 50, 1), HeightCstr(50 + half, 50, 2), SlopeCstr(50, 50, 1 / (2 * half), 0)}));
  const CConstraintReport report = test.Solved();
  EXPECT_TRUE(report.m_aContradictions.empty());
  EXPECT_EQ(StateText(report.m_aLines[5]), "kept");
}

// The surface is linear along the side of a cell.
TEST(ConstraintReport, FindsThreeHeightsAlongOneSideOfACell) {
  const double side = 100.0 / 32;
  CReportGrid test(
      Around({HeightCstr(16 * side, 50, 0), HeightCstr(16.5 * side, 50, 4), HeightCstr(17 * side, 50, 0)}));
  const CConstraintReport report = test.Solved();
  ASSERT_EQ(report.m_aContradictions.size(), 1U);
  EXPECT_EQ(report.m_aContradictions[0].m_auLines, (Lines{3, 4, 5}));
  EXPECT_NEAR(report.m_aContradictions[0].m_fGap, 4, 1e-6);
}

TEST(ConstraintReport, FindsTwoNormalsAtOnePlace) {
  CReportGrid test(Around({SlopeCstr(50, 50, 1, 0), SlopeCstr(50, 50, -1, 0)}));
  const CConstraintReport report = test.Solved();
  ASSERT_EQ(report.m_aContradictions.size(), 1U);
  EXPECT_EQ(report.m_aContradictions[0].m_auLines, (Lines{3, 4}));
  // Across a cell of 3.125.
  EXPECT_NEAR(report.m_aContradictions[0].m_fGap, 6.25, 1e-6);
}

TEST(ConstraintReport, LeavesHeightsOnOneSlopeAlone) {
  std::vector<CPtCstr> many;
  for (int k = 0; k < 40; ++k) many.push_back(HeightCstr(20.5 + 1.3 * k, 30.2 + 0.9 * k, 1 + 0.5 * k));
  CReportGrid test(many);
  test.m_Grid.PerformPendingWork();
  EXPECT_TRUE(ReportOnConstraints(test.m_Grid).m_aContradictions.empty());
}

TEST(ConstraintReport, NamesWhatLiesInATearOrOutside) {
  CReportGrid test(Around({HeightCstr(51, 50, 3), HeightCstr(150, 50, 3), HeightAndSlopeCstr(50, 0.5, 3)}));
  test.m_Grid.AddCurve(PointsAt({{51, 20}, {51, 80}}), kTear, false);
  const CConstraintReport report = test.Solved();
  EXPECT_EQ(States(report),
            (std::vector<std::string>{"kept", "kept", "kept", "in a tear", "outside", "kept", "on the border"}));
  EXPECT_EQ(report.m_aLines[3].m_fMissed, 0);
}

// A tear around a single point, which has no height of its own.
TEST(ConstraintReport, CountsTheRangeOfWhatIsDrawn) {
  CReportGrid test(kAround);
  test.m_Grid.AddCurve(PointsAt({{48.8, 48.8}, {51.2, 48.8}, {51.2, 51.2}, {48.8, 51.2}}), kTear, true);
  const double range = test.Solved().m_fRange;
  CSurface& surface = test.m_Grid.Surface();
  std::vector<double> heights = NodalHeights(test.m_Grid);
  heights[static_cast<std::size_t>(surface.Order().NumberOf(surface.Lattice().Index(16, 16)))] = 1000;
  surface.SetHeights(heights);
  ASSERT_EQ(surface.MaxHeight(), 1000);
  EXPECT_NEAR(ReportOnConstraints(test.m_Grid).m_fRange, range, 1e-9);
  EXPECT_NEAR(range, 33.3, 0.1);
}

TEST(ConstraintReport, NamesTheCurveOfWhatIsGenerated) {
  CReportGrid test(kAround);
  test.m_Grid.AddCurve(PointsAt({{20, 60}, {80, 60}}), kCrease, false);
  test.m_Grid.AddCurve(PointsAt({{20, 40}, {80, 40}}), kCrease, false);
  CCntrCtrl& curve = CurveAt(CStaging::Constraints(test.m_Grid).Curves(), 1);
  curve.SetOption(CurveOption::kLeftAutoBump, true);
  const CConstraintReport report = test.Solved();
  ASSERT_GT(report.m_aLines.size(), 8U);
  EXPECT_FALSE(report.m_aLines[2].m_Curve.has_value());
  EXPECT_EQ(report.m_aLines[3].m_Curve, 1U);
  EXPECT_EQ(report.m_aLines.back().m_Curve, 1U);
}

TEST(FloatingRegions, NameAClosedTearWithoutAHeightInside) {
  CReportGrid test(kAround);
  test.m_Grid.AddCurve(PointsAt({{30, 30}, {70, 30}, {70, 70}, {30, 70}}), kTear, true);
  const std::vector<CFloatingRegion> floating = test.Floating();
  ASSERT_EQ(floating.size(), 1U);
  EXPECT_EQ(floating[0].m_uFree, 3U);
  EXPECT_EQ(floating[0].m_Missing, "needs 3 heights");
  EXPECT_NEAR(floating[0].m_Box.x0, 31.25, 1e-9);
  EXPECT_NEAR(floating[0].m_Box.x1, 68.75, 1e-9);
  EXPECT_EQ(floating[0].m_uPoints, 13U * 13U);
}

TEST(FloatingRegions, SayWhatIsMissing) {
  CReportGrid test({HeightCstr(25, 50, 3)});
  ASSERT_EQ(test.Floating().size(), 1U);
  EXPECT_EQ(test.Floating()[0].m_Missing, "needs 2 heights, can tilt about the point (25, 50)");
  test.m_Grid.AddPtCstr(HeightCstr(75, 50, 3));
  EXPECT_EQ(test.Floating()[0].m_uFree, 1U);
  const std::string tilt = test.Floating()[0].m_Missing;
  EXPECT_TRUE(tilt == "can tilt about the line from (0, 50) to (100, 50)" ||
              tilt == "can tilt about the line from (100, 50) to (0, 50)")
      << tilt;
  test.m_Grid.AddPtCstr(HeightCstr(75, 60, 3));
  EXPECT_TRUE(test.Floating().empty());
}

TEST(FloatingRegions, NeedOneHeightWhereOnlyTheTiltIsSettled) {
  CReportGrid test({SlopeCstr(25, 50)});
  ASSERT_EQ(test.Floating().size(), 1U);
  EXPECT_EQ(test.Floating()[0].m_Missing, "needs 1 height");
}

}  // namespace
