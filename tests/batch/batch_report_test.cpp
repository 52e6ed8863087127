// What the report and standard error say of a model that is not as its user takes it to be.

#include <string>

#include "batch/BatchTest.h"

namespace {

using nlohmann::json;

// Of the eight, three heights act.
void WriteIdleModel(const std::filesystem::path& path) {
  CTestGrid test(4, 2);
  AddCurveThrough(test.m_Grid, CurveType::kPosition, {{1, 23.9}, {8, 23.9}});
  AddAll(test.m_Grid, {HeightCstr(3, 21, 1), HeightCstr(4, 23.9, 2), SlopeCstr(4, 23.9), HeightCstr(20, 22, 3),
                       SlopeCstr(3, 19), SlopeCstr(3, 20.05), HeightAndSlopeCstr(6, 20.05, 2), HeightCstr(3, 25, 1)});
  test.m_Grid.PerformPendingWork();
  WriteText(path, GridText(test.m_Grid));
}

TEST_F(Batch, ReportsInactiveConstraints) {
  WriteIdleModel(Path("idle.grid"));
  ASSERT_EQ(Run("idle.grid --report json --iterations 10"), 0);
  EXPECT_EQ(Report()["constraints"], 8);
  EXPECT_EQ(Report()["inactive_constraints"], json::parse(R"([{"index": 1, "kind": "position", "reason": "in a tear"},
                            {"index": 2, "kind": "normal", "reason": "in a tear"},
                            {"index": 3, "kind": "position", "reason": "outside"},
                            {"index": 4, "kind": "normal", "reason": "outside"},
                            {"index": 5, "kind": "normal", "reason": "on the border"},
                            {"index": 6, "kind": "normal", "reason": "on the border"}])"));
}

TEST_F(Batch, ReportsThatNoConstraintIsInactive) {
  CTestGrid test(4, 2);
  AddAll(test.m_Grid, {HeightCstr(3, 21, 1), SlopeCstr(3, 22)});
  test.m_Grid.PerformPendingWork();
  WriteText(Path("active.grid"), GridText(test.m_Grid));
  ASSERT_EQ(Run("active.grid --report json --iterations 0"), 0);
  EXPECT_EQ(Report()["inactive_constraints"], json::array());
  EXPECT_EQ(Bytes("err").find("nactive constraints"), std::string::npos);
  ASSERT_EQ(Run("active.grid --report text --iterations 0"), 0);
  EXPECT_NE(Bytes("out").find("\ninactive constraints: 0\n"), std::string::npos);
}

TEST_F(Batch, ListsInactiveConstraintsInText) {
  WriteIdleModel(Path("idle.grid"));
  ASSERT_EQ(Run("idle.grid --report text --iterations 0"), 0);
  EXPECT_NE(Bytes("out").find("\ninactive constraints: 6\n"
                              "inactive constraint 1: position in a tear\n"
                              "inactive constraint 2: normal in a tear\n"
                              "inactive constraint 3: position outside\n"
                              "inactive constraint 4: normal outside\n"
                              "inactive constraint 5: normal on the border\n"
                              "inactive constraint 6: normal on the border\n"),
            std::string::npos);
}

TEST_F(Batch, TellsOfInactiveConstraintsOnStandardError) {
  WriteIdleModel(Path("idle.grid"));
  ASSERT_EQ(Run("idle.grid --iterations 10"), 0);
  const std::string line = "relievo-batch: Inactive constraints: 6 of 8 (2 in a tear, 2 on the border, 2 outside).\n";
  EXPECT_TRUE(Bytes("err").ends_with(line)) << Bytes("err");
  ASSERT_EQ(Run("idle.grid --iterations 10 --quiet"), 0);
  EXPECT_EQ(Bytes("err"), "");
}

// A height whose row is beyond the finite numbers.
TEST_F(Batch, NamesNumbersThatAreNotFinite) {
  CTestGrid test(4, 2);
  AddAll(test.m_Grid, {HeightCstr(3, 21, 1e308)});
  test.m_Grid.PerformPendingWork();
  WriteText(Path("huge.grid"), GridText(test.m_Grid));
  ASSERT_EQ(Run("huge.grid --iterations 0 --report json"), 0);
  EXPECT_EQ(Bytes("out").find("null"), std::string::npos) << Bytes("out");
  EXPECT_EQ(Report()["non_finite"], json({"largest_constraint_residual"}));
  EXPECT_FALSE(Report().contains("largest_constraint_residual"));
  ASSERT_EQ(Run("huge.grid --iterations 0 --report text"), 0);
  EXPECT_NE(Bytes("out").find("\nnon finite: largest_constraint_residual\n"), std::string::npos) << Bytes("out");
  ASSERT_EQ(Run("model.grid --iterations 0 --report json"), 0);
  EXPECT_FALSE(Report().contains("non_finite"));
}

// A model that breaks off among its heights.
class DamagedBatch : public Batch {
 protected:
  DamagedBatch() {
    const std::string text = Bytes("model.grid");
    WriteText(Path("cut.grid"), text.substr(0, text.find("\n\nZ\n") + 20));
  }
};

TEST_F(DamagedBatch, IsReportedAndWrittenAsFarAsItCouldBeRead) {
  EXPECT_EQ(Run("cut.grid --iterations 0 --quiet --save o.grid --report json"), 5);
  EXPECT_NE(Bytes("err").find("is damaged"), std::string::npos);
  EXPECT_EQ(Report()["damaged"], true);
  EXPECT_NE(Bytes("o.grid"), "");
  EXPECT_EQ(Run("model.grid --iterations 0 --report json"), 0);
  EXPECT_EQ(Report()["damaged"], false);
}

TEST_F(DamagedBatch, GoesBeforeNotConvergedAndBehindAnOutputThatFailed) {
  EXPECT_EQ(Run("cut.grid --max-iterations 10 --report json"), 5);
  EXPECT_EQ(Report()["converged"], false);
  EXPECT_EQ(Run("cut.grid --max-iterations 10 --save none/o.grid"), 4);
}

TEST_F(DamagedBatch, IsRefusedWhenStrict) {
  EXPECT_EQ(Run("cut.grid --strict --iterations 0 --save o.grid --vrml o.wrl --height-field o.txt --report json"), 2);
  EXPECT_NE(Bytes("err").find("is damaged"), std::string::npos);
  EXPECT_EQ(Bytes("out"), "");
  for (const char* name : {"o.grid", "o.wrl", "o.txt"}) EXPECT_FALSE(std::filesystem::exists(Path(name))) << name;
  EXPECT_EQ(Run("model.grid --strict --iterations 0 --save o.grid"), 0);
}

}  // namespace
