// What the report, standard error and the exit status say of constraints that contradict each other and regions that
// float.

#include <cstddef>
#include <sstream>
#include <string>
#include <vector>

#include "batch/BatchTest.h"
#include "support/CStaging.h"
#include "support/CurveBuilders.h"

namespace {

using nlohmann::json;

// Three heights that settle the surface, one against another at its place, and a closed tear with nothing inside.
class WrongBatch : public Batch {
 protected:
  WrongBatch() {
    CTestGrid test(4, 4);
    AddAll(test.m_Grid, {HeightCstr(-3, 20.5, 1), HeightCstr(12, 20.5, 2), HeightCstr(-3, 25.5, 3)});
    Write(test, "settled.grid");
    AddAll(test.m_Grid, {HeightCstr(11, 25.5, 4), HeightCstr(11, 25.5, 6)});
    Write(test, "contradicted.grid");
    test.m_Grid.AddCurve(PointsAt({{1, 21.5}, {8, 21.5}, {8, 24.5}, {1, 24.5}}), kTear, true);
    Write(test, "wrong.grid");
  }
  void Write(CTestGrid& test, const std::string& name) const {
    test.m_Grid.PerformPendingWork();
    WriteText(Path(name), GridText(test.m_Grid));
  }
};

TEST_F(WrongBatch, ReportsThatNothingIsWrong) {
  ASSERT_EQ(Run("settled.grid --strict --report json"), 0);
  EXPECT_EQ(Report()["contradictions"], json::array());
  EXPECT_EQ(Report()["floating_regions"], json::array());
  EXPECT_EQ(Bytes("err").find("ontradict"), std::string::npos);
  EXPECT_EQ(Bytes("err").find("loating"), std::string::npos);
  ASSERT_EQ(Run("settled.grid --report text"), 0);
  EXPECT_NE(Bytes("out").find("\ncontradictions: 0\nfloating regions: 0\n"), std::string::npos) << Bytes("out");
}

TEST_F(WrongBatch, NamesContradictionsWithWhatTheyMiss) {
  Run("contradicted.grid --report json");
  const json contradictions = Report()["contradictions"];
  ASSERT_EQ(contradictions.size(), 1U);
  EXPECT_NEAR(contradictions[0]["gap"].get<double>(), 2, 1e-6);
  const json constraints = contradictions[0]["constraints"];
  ASSERT_EQ(constraints.size(), 2U);
  EXPECT_EQ(constraints[0]["index"], 3);
  EXPECT_EQ(constraints[0]["kind"], "position");
  EXPECT_NEAR(constraints[0]["missed"].get<double>(), 1, 1e-3);
  EXPECT_EQ(constraints[1]["index"], 4);
  EXPECT_NEAR(constraints[1]["missed"].get<double>(), 1, 1e-3);
}

TEST_F(WrongBatch, NamesFloatingRegions) {
  Run("wrong.grid --report json");
  const json regions = Report()["floating_regions"];
  ASSERT_EQ(regions.size(), 1U);
  EXPECT_EQ(regions[0]["free"], 3);
  EXPECT_EQ(regions[0]["missing"], "needs 3 heights");
  EXPECT_GT(regions[0]["points"], 20);
  EXPECT_GE(regions[0]["box"]["x"][0], 1);
  EXPECT_LE(regions[0]["box"]["x"][1], 8);
  EXPECT_GE(regions[0]["box"]["y"][0], 21.5);
  EXPECT_LE(regions[0]["box"]["y"][1], 24.5);
}

// One height less each: two heights leave a tilt about their line, one leaves that and another.
TEST_F(WrongBatch, CountsTheFreeDirectionsOfEachRegion) {
  CTestGrid test(4, 4);
  AddAll(test.m_Grid, {HeightCstr(-3, 20.5, 1), HeightCstr(12, 20.5, 2), HeightCstr(-3, 25.5, 3)});
  test.m_Grid.AddCurve(PointsAt({{1, 21.5}, {8, 21.5}, {8, 24.5}, {1, 24.5}}), kTear, true);
  test.m_Grid.AddPtCstr(HeightCstr(4, 23, 1));
  Write(test, "two.grid");
  Run("two.grid --report json");
  ASSERT_EQ(Report()["floating_regions"].size(), 1U);
  EXPECT_EQ(Report()["floating_regions"][0]["free"], 2);
  EXPECT_EQ(Report()["floating_regions"][0]["missing"], "needs 2 heights, can tilt about the point (4, 23)");
  test.m_Grid.AddPtCstr(HeightCstr(6, 23, 1));
  Write(test, "one.grid");
  EXPECT_EQ(Run("one.grid --strict --report json"), 6);
  ASSERT_EQ(Report()["floating_regions"].size(), 1U);
  EXPECT_EQ(Report()["floating_regions"][0]["free"], 1);
  const std::string tilt = Report()["floating_regions"][0]["missing"];
  EXPECT_EQ(tilt.substr(0, 28), "can tilt about the line from") << tilt;
  test.m_Grid.AddPtCstr(HeightCstr(5, 23.5, 1));
  Write(test, "none.grid");
  EXPECT_EQ(Run("none.grid --strict --report json"), 0);
  EXPECT_EQ(Report()["floating_regions"], json::array());
}

// Two curves on one line want slopes of 0 and of 1 across it, at the same places beside it.
TEST_F(WrongBatch, NamesTheCurvesThatContradict) {
  CTestGrid test(4, 4);
  AddAll(test.m_Grid, {HeightCstr(-3, 20.5, 1), HeightCstr(12, 20.5, 2), HeightCstr(-3, 25.5, 3)});
  for (const double y : {22.0, 24.0, 24.0}) test.m_Grid.AddCurve(PointsAt({{0, y}, {9, y}}), kCrease, false);
  for (const int curve : {1, 2}) {
    CCntrCtrl& of = CurveAt(CStaging::Constraints(test.m_Grid).Curves(), curve);
    of.SetOption(CurveOption::kLeftAutoBump, true);
    of.SetOrientation(CurveSide::Left, curve == 1 ? 0 : 45);
  }
  Write(test, "curve.grid");
  EXPECT_EQ(Run("curve.grid --strict --iterations 100 --report json"), 6);
  const json contradictions = Report()["contradictions"];
  ASSERT_GE(contradictions.size(), 1U);
  // Across a cell of 6 / 16.
  EXPECT_NEAR(contradictions[0]["gap"].get<double>(), 6.0 / 16, 1e-5);
  const json constraints = contradictions[0]["constraints"];
  ASSERT_EQ(constraints.size(), 2U);
  for (const std::size_t k : {0U, 1U}) {
    EXPECT_EQ(constraints[k]["curve"], k + 1);
    EXPECT_EQ(constraints[k]["kind"], "normal");
    EXPECT_FALSE(constraints[k].contains("index"));
  }
  EXPECT_NE(Bytes("err").find("Constraints that contradict each other: one of curve 1 and one of curve 2"),
            std::string::npos)
      << Bytes("err");
}

// The third height repeats the first.
TEST_F(WrongBatch, NamesEveryMemberOfAContradiction) {
  CTestGrid test(4, 4);
  AddAll(test.m_Grid, {HeightCstr(-3, 20.5, 1), HeightCstr(12, 20.5, 2), HeightCstr(-3, 25.5, 3)});
  AddAll(test.m_Grid, {HeightCstr(11, 25.5, 4), HeightCstr(11, 25.5, 6), HeightCstr(11, 25.5, 4)});
  Write(test, "third.grid");
  Run("third.grid --iterations 100 --report json");
  EXPECT_EQ(Report()["contradictions"].size(), 2U);
  EXPECT_NE(Bytes("err").find("Constraints that contradict each other: 3 and 4, 4 and 5."), std::string::npos)
      << Bytes("err");
}

TEST_F(WrongBatch, TellsBothInTextAndOnStandardError) {
  Run("wrong.grid --report text --iterations 100");
  EXPECT_NE(Bytes("out").find("\ncontradictions: 1\ncontradiction 0: constraint 3 position misses "),
            std::string::npos);
  EXPECT_NE(Bytes("out").find(", constraint 4 position misses "), std::string::npos);
  EXPECT_NE(Bytes("out").find("\nfloating regions: 1\nfloating region 0: "), std::string::npos);
  EXPECT_NE(Bytes("out").find("), needs 3 heights\n"), std::string::npos);
  EXPECT_NE(Bytes("err").find("relievo-batch: Constraints that contradict each other: 3 and 4.\n"), std::string::npos);
  EXPECT_NE(Bytes("err").find("relievo-batch: Floating regions: 1 (needs 3 heights).\n"), std::string::npos);
  Run("wrong.grid --iterations 100 --quiet");
  EXPECT_EQ(Bytes("err"), "");
}

TEST_F(WrongBatch, EndsWithAStatusOfItsOwnWhereItIsStrict) {
  EXPECT_EQ(Run("wrong.grid --iterations 100"), 0);
  EXPECT_EQ(Run("wrong.grid --iterations 100 --strict --save o.grid"), 6);
  EXPECT_NE(Bytes("o.grid"), "");
  EXPECT_EQ(Run("contradicted.grid --iterations 100 --strict"), 6);
  EXPECT_EQ(Run("wrong.grid --max-iterations 10 --strict"), 6);
  EXPECT_EQ(Run("wrong.grid --max-iterations 10"), 3);
  EXPECT_EQ(Run("wrong.grid --iterations 10 --strict --save none/o.grid"), 4);
}

// Heights on a plane, so many that all their points hang together.
TEST_F(WrongBatch, TakesASearchThatWasCutShortForAContradiction) {
  CTestGrid test(6, 6);
  const std::vector<double> places = RandomValues(3, 16000);
  for (std::size_t k = 0; k < places.size(); k += 2)
    test.m_Grid.AddPtCstr(HeightCstr(4.5 + 7.9 * places[k], 23 + 2.9 * places[k + 1], 0));
  Write(test, "crowded.grid");
  ASSERT_EQ(Run("crowded.grid --iterations 0 --report json"), 0);
  EXPECT_EQ(Report()["contradictions"], json::array());
  EXPECT_EQ(Report()["contradictions_complete"], false);
  const std::string told =
      "relievo-batch: The search for contradictions was cut short: constraints lie too close together.\n";
  EXPECT_NE(Bytes("err").find(told), std::string::npos) << Bytes("err");
  EXPECT_EQ(Run("crowded.grid --iterations 0 --report text --strict --save o.grid"), 6);
  EXPECT_NE(Bytes("out").find("contradictions: 0\n"), std::string::npos);
  EXPECT_NE(Bytes("o.grid"), "");
  ASSERT_EQ(Run("wrong.grid --iterations 0 --report json"), 0);
  EXPECT_FALSE(Report().contains("contradictions_complete"));
}

// A tear around a single point, which has no height of its own.
TEST_F(WrongBatch, ReportsTheRangeOfWhatIsDrawn) {
  CTestGrid test(4, 4);
  test.m_Grid.AddCurve(PointsAt({{4.2, 22.9}, {4.8, 22.9}, {4.8, 23.1}, {4.2, 23.1}}), kTear, true);
  test.m_Grid.PerformPendingWork();
  std::vector<double> heights(test.m_Grid.Surface().Order().Count(), 3);
  const std::size_t middle = test.m_Grid.Surface().Lattice().Index(8, 8);
  heights[static_cast<std::size_t>(test.m_Grid.Surface().Order().NumberOf(middle))] = 1000;
  heights.front() = -2;
  test.m_Grid.Surface().SetHeights(heights);
  ASSERT_EQ(test.m_Grid.Surface().MaxHeight(), 1000);
  Write(test, "torn.grid");
  ASSERT_EQ(Run("torn.grid --iterations 0 --report json"), 0);
  EXPECT_EQ(Report()["z_range"], json({-2.0, 3.0}));
}

// The surface in the file is at 0 everywhere; the inside of the tear follows what is around it.
TEST_F(WrongBatch, SettlesFloatingRegionsWhenAsked) {
  const auto middle = [this] {
    const std::string text = Bytes("o.txt");
    double value = 0;
    std::istringstream heights(text);
    for (int k = 0; k < 41; ++k) heights >> value;
    return value;
  };
  Run("wrong.grid --height-field o.txt --size 9x9 --seed 3");
  EXPECT_LT(middle(), 1);
  Run("wrong.grid --height-field o.txt --size 9x9 --seed 3 --settle");
  EXPECT_GT(middle(), 1.5);
  EXPECT_LT(middle(), 5);
}

}  // namespace
