// A depth map on the command line.

#include <bit>
#include <cstdint>
#include <sstream>
#include <string>
#include <vector>

#include "batch/BatchTest.h"
#include "formats/ProjectFile.h"
#include "support/BadDepthMaps.h"
#include "support/PictureBuilders.h"
#include "support/PictureEncoders.h"

namespace {

// A bowl with a rim in it, for a model that is kOblong: twice as wide as high it is not, nor is the map.
std::string BowlPfm(int width, int height) {
  std::string bytes = "Pf\n" + std::to_string(width) + ' ' + std::to_string(height) + "\n-1\n";
  for (int row = 0; row < height; ++row) {
    for (int column = 0; column < width; ++column) {
      const float u = (static_cast<float>(column) + 0.5F) / static_cast<float>(width) - 0.5F;
      const float v = (static_cast<float>(row) + 0.5F) / static_cast<float>(height) - 0.5F;
      const float depth = u * u + v * v < 0.06F ? 3 : u * u + v * v;
      const auto number = std::bit_cast<std::uint32_t>(depth);
      for (int k = 0; k < 4; ++k) bytes += static_cast<char>(number >> (8 * k) & 0xFF);
    }
  }
  return bytes;
}

// The lines of a report that no clock has written.
std::string WithoutSeconds(const std::string& report) {
  std::istringstream lines(report);
  std::string kept;
  for (std::string line; std::getline(lines, line);) {
    const bool timed = line.find("seconds") != std::string::npos || line.find("load") != std::string::npos ||
                       line.find("solve") != std::string::npos || line.find("write") != std::string::npos;
    if (!timed) kept += line + '\n';
  }
  return kept;
}

class BatchReference : public Batch {
 protected:
  BatchReference() {
    CTestGrid test(4, 4);
    AddAll(test.m_Grid, SomeConstraints());
    test.m_Grid.PerformPendingWork();
    WriteText(Path("plain.grid"), GridText(test.m_Grid));
    WriteText(Path("map.pfm"), BowlPfm(160, 60));
  }
};

TEST_F(BatchReference, ShapesTheSurface) {
  ASSERT_EQ(Run("plain.grid --report json"), 0) << Bytes("err");
  const nlohmann::json without = Report();
  EXPECT_FALSE(without.contains("reference_energy"));
  EXPECT_FALSE(without.contains("reference"));
  ASSERT_EQ(Run("plain.grid --reference-depth map.pfm --reference-strength 1 --report json"), 0) << Bytes("err");
  const nlohmann::json with = Report();
  EXPECT_GT(with["energy"], without["energy"]);
  EXPECT_LT(with["reference_energy"], with["energy"]);
  EXPECT_LT(with["largest_constraint_residual"], 1e-6);
  EXPECT_EQ(with["reference"]["strength"], 1.0);
  EXPECT_EQ(with["reference"]["heights"], 3);
  EXPECT_EQ(with["reference"]["fitted"], true);
  EXPECT_EQ(with["reference"]["response"], "straight");
  EXPECT_TRUE(with["reference"].contains("worst_constraint"));
  ASSERT_EQ(Run("plain.grid --reference-depth map.pfm --report text"), 0);
  EXPECT_NE(Bytes("out").find("\nreference strength: 0.8\n"), std::string::npos) << Bytes("out");
}

// All that is written is the same, byte for byte.
TEST_F(BatchReference, StrengthZeroIsAsNoMap) {
  ASSERT_EQ(Run("plain.grid --save a.grid --vrml a.wrl"), 0);
  const std::string lines = Bytes("err");
  // One whose proportions are others.
  WriteText(Path("square.pfm"), BowlPfm(60, 60));
  ASSERT_EQ(Run("plain.grid --save b.grid --vrml b.wrl --reference-depth square.pfm --reference-strength 0"), 0);
  EXPECT_EQ(Bytes("err"), lines);
  EXPECT_EQ(Bytes("a.grid"), Bytes("b.grid"));
  EXPECT_EQ(Bytes("a.wrl"), Bytes("b.wrl"));
  ASSERT_EQ(Run("plain.grid --save a.grid --reference-depth map.pfm"), 0);
  EXPECT_NE(Bytes("a.grid"), Bytes("b.grid"));
  for (const char* form : {"json", "text"}) {
    const std::string report = std::string("plain.grid --report ") + form;
    ASSERT_EQ(Run(report), 0);
    const std::string without = WithoutSeconds(Bytes("out"));
    ASSERT_EQ(Run(report + " --reference-depth map.pfm --reference-strength 0"), 0);
    EXPECT_EQ(WithoutSeconds(Bytes("out")), without);
    EXPECT_FALSE(without.empty());
  }
}

TEST_F(BatchReference, AMapThatCannotBeReadIsAnInputThatIsMissing) {
  WriteText(Path("colour.png"), TestPng(Squares(32, 12), {}));
  std::vector<std::string> names{"none.pfm", "colour.png", "plain.grid"};
  for (const CBadDepthMap& bad : BadDepthMaps()) {
    names.push_back(bad.m_Name);
    WriteText(Path(bad.m_Name), bad.m_Bytes);
  }
  WriteText(Path("o.grid"), "as before");
  for (const std::string& name : names) {
    EXPECT_EQ(Run("plain.grid --save o.grid --reference-depth '" + name + "'"), 2) << name;
    EXPECT_NE(Bytes("err").find("The file " + name + " is not a depth map that can be read: "), std::string::npos)
        << name << ' ' << Bytes("err");
    EXPECT_EQ(Bytes("o.grid"), "as before") << name;
  }
}

TEST_F(BatchReference, ProportionsAreTold) {
  ASSERT_EQ(Run("plain.grid --iterations 0 --reference-depth map.pfm"), 0);
  EXPECT_EQ(Bytes("err").find("proportions"), std::string::npos) << Bytes("err");
  WriteText(Path("square.pfm"), BowlPfm(60, 60));
  ASSERT_EQ(Run("plain.grid --iterations 0 --reference-depth square.pfm"), 0);
  EXPECT_NE(
      Bytes("err").find("The file square.pfm has other proportions (60 x 60) than what it is stretched over (16 x 6)."),
      std::string::npos)
      << Bytes("err");
  const std::string alone = "plain.grid --iterations 0 --reference-depth square.pfm --reference-strength 0";
  ASSERT_EQ(Run(alone), 0);
  EXPECT_EQ(Bytes("err").find("proportions"), std::string::npos) << "it counts for nothing";
  ASSERT_EQ(Run(alone + " --suggest-tears 2"), 0);
  EXPECT_NE(Bytes("err").find("has other proportions"), std::string::npos) << "its tears do";
}

TEST_F(BatchReference, OptionsWantAMap) {
  for (const char* option : {"--reference-strength 0.5", "--suggest-tears 3"}) {
    EXPECT_EQ(Run(std::string("plain.grid ") + option), 1) << option;
    EXPECT_NE(Bytes("err").find("requires --reference-depth"), std::string::npos) << option;
  }
  for (const char* strength : {"1.5", "-0.1", "''", "x", "nan"}) {
    EXPECT_EQ(Run(std::string("plain.grid --reference-depth map.pfm --reference-strength ") + strength), 1) << strength;
    EXPECT_NE(Bytes("err").find("a number from 0 to 1 is expected"), std::string::npos) << strength;
  }
  EXPECT_EQ(Run("plain.grid --reference-depth map.pfm --save map.pfm"), 1);
  EXPECT_NE(Bytes("err").find("--save and --reference-depth are one file"), std::string::npos);
}

TEST_F(BatchReference, SuggestedTearsBecomeCurves) {
  ASSERT_EQ(Run("plain.grid --reference-depth map.pfm --suggest-tears 4 --save o.grid --report json"), 0)
      << Bytes("err");
  EXPECT_EQ(Report()["suggested_tears"], 1);
  EXPECT_EQ(Report()["curves"], 1);
  WriteText(Path("photo.png"), TestPng(Squares(320, 120), {}));
  ASSERT_EQ(Run("plain.grid --reference-depth map.pfm --suggest-tears 4 --image photo.png --report json"), 0);
  EXPECT_EQ(Report()["suggested_tears"], 1);
}

TEST_F(BatchReference, AProjectBringsItsOwnMap) {
  const ConsoleCapture console;
  CTestGrid test(4, 4);
  AddAll(test.m_Grid, SomeConstraints());
  test.m_Grid.ReferenceEdits().Load(std::make_shared<const CDepthMap>(2, 2, 8, std::vector<float>{1, 2, 3, 200}), "/m");
  test.m_Grid.PerformPendingWork();
  CProject project;
  project.m_Model = StateOf(test.m_Grid);
  project.m_Heights = SolvedHeights(test.m_Grid);
  ASSERT_TRUE(SaveProject(project, Path("cup.relievo")));
  ASSERT_EQ(Run("cup.relievo --report json"), 0) << Bytes("err");
  EXPECT_EQ(Report()["reference"]["strength"], 0.8);
  ASSERT_EQ(Run("cup.relievo --reference-strength 0.25 --report json"), 0);
  EXPECT_EQ(Report()["reference"]["strength"], 0.25);
  ASSERT_EQ(Run("cup.relievo --reference-depth map.pfm --reference-strength 0 --report json"), 0);
  EXPECT_FALSE(Report().contains("reference"));
}

}  // namespace
