// A depth map on the command line.

#include <sstream>
#include <string>
#include <vector>

#include "batch/BatchTest.h"
#include "projects/ProjectFile.h"
#include "support/BadDepthMaps.h"
#include "support/DepthBuilders.h"
#include "support/PictureBuilders.h"
#include "support/PictureEncoders.h"

namespace {

// A bowl with a rim in it, for a model that is kOblong: twice as wide as high it is not, nor is the map.
std::string BowlPfm(int width, int height) {
  return PfmOf(DepthMapOf(width, height, [](double u, double v) {
    const double depth = (u - 0.5) * (u - 0.5) + (v - 0.5) * (v - 0.5);
    return depth < 0.06 ? 3 : depth;
  }));
}

// A photograph that is dark to the left of a share of its width and light to the right.
std::string EdgePng(double edge) {
  constexpr int kWidth = 1280;
  return TestPng(PictureOf(kWidth, 480,
                           [&](int x, int) {
                             return (x + 0.5) / kWidth < edge ? CRgb{40, 40, 40} : CRgb{90, 90, 90};
                           }),
                 {});
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

// The map's step is at half of the width. The photograph's edge is followed within 0.5 % of its larger side, and where
// it is farther away, the map is.
TEST_F(BatchReference, SuggestedTearsLieOnThePhotographsEdge) {
  WriteText(Path("step.pfm"),
            PfmOf(Blurred(DepthMapOf(320, 120, [](double u, double) { return u < 0.5 ? 0 : 1; }), 1)));
  const auto nodes = [this](const std::string& options) {
    EXPECT_EQ(Run("plain.grid --reference-depth step.pfm --suggest-tears 1 --iterations 0 --save o.grid" + options), 0)
        << Bytes("err");
    CTestGrid test(4, 4);
    EXPECT_EQ(ReadText(test.m_Grid, Bytes("o.grid")), GridFileState::Whole);
    std::vector<double> shares;
    for (const CCntrCtrl& curve : test.m_Grid.Constraints().Curves())
      for (const CCntrNode& node : curve.Nodes())
        shares.push_back((node.m_fX - kOblong.x0) / (kOblong.x1 - kOblong.x0));
    EXPECT_GE(shares.size(), 2U);
    return shares;
  };
  constexpr double kPixel = 1.0 / 1280;
  for (const double share : nodes("")) EXPECT_NEAR(share, 0.5, kPixel);
  for (const auto& [edge, wanted] : {std::pair(0.504, 0.504), {0.496, 0.496}, {0.508, 0.5}}) {
    WriteText(Path("photo.png"), EdgePng(edge));
    for (const double share : nodes(" --image photo.png")) EXPECT_NEAR(share, wanted, 1.5 * kPixel) << edge;
  }
}

// Heights that are squares of the map's values; scale and offset are those of a straight response.
TEST_F(BatchReference, ABentResponseIsReported) {
  WriteText(Path("ramp.pfm"), PfmOf(DepthMapOf(160, 60, [](double u, double) { return u; })));
  CTestGrid test(4, 4);
  for (int k = 0; k < 16; ++k) {
    const double u = (k + 0.5) / 16;
    test.m_Grid.AddPtCstr(HeightCstr(kOblong.x0 + 16 * u, 20.5 + 5.0 * (k % 4) / 3, 3 + 4 * u * u));
  }
  test.m_Grid.PerformPendingWork();
  WriteText(Path("bent.grid"), GridText(test.m_Grid));
  ASSERT_EQ(Run("bent.grid --reference-depth ramp.pfm --report json"), 0) << Bytes("err");
  const nlohmann::json bent = Report()["reference"];
  EXPECT_EQ(bent["response"], "bent");
  EXPECT_EQ(bent["heights"], 16);
  EXPECT_LT(bent["misfit_rms"], 1e-4);
  // The line through u * u at places that lie evenly around 1/2 has the slope 1.
  EXPECT_NEAR(bent["scale"].get<double>(), 4, 1e-4);
  ASSERT_EQ(Run("bent.grid --reference-depth ramp.pfm --report text"), 0);
  EXPECT_NE(Bytes("out").find("\nreference response: bent\n"), std::string::npos) << Bytes("out");
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
  project.m_Model.m_Document.m_Sketch.m_Reference = {};
  ASSERT_TRUE(SaveProject(project, Path("bare.relievo")));
  ASSERT_EQ(Run("cup.relievo --report json"), 0) << Bytes("err");
  EXPECT_EQ(Report()["reference"]["strength"], 0.8);
  ASSERT_EQ(Run("cup.relievo --reference-strength 0.25 --report json"), 0);
  EXPECT_EQ(Report()["reference"]["strength"], 0.25);
  ASSERT_EQ(Run("cup.relievo --reference-depth map.pfm --reference-strength 0 --report json"), 0);
  EXPECT_FALSE(Report().contains("reference"));
  ASSERT_EQ(Run("bare.relievo"), 0) << Bytes("err");
  for (const char* options : {"--reference-strength 0.25", "--suggest-tears 3"}) {
    EXPECT_EQ(Run(std::string("bare.relievo --save bare.grid ") + options), 2) << options;
    EXPECT_NE(Bytes("err").find("The project bare.relievo has no depth map; --reference-depth names one."),
              std::string::npos)
        << Bytes("err");
    EXPECT_FALSE(std::filesystem::exists(Path("bare.grid")));
  }
  ASSERT_EQ(Run("bare.relievo --reference-depth map.pfm --reference-strength 0.25 --report json"), 0);
  EXPECT_EQ(Report()["reference"]["strength"], 0.25);
}

}  // namespace
