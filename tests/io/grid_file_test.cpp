#include <clocale>
#include <memory>
#include <optional>

#include <gtest/gtest.h>

#include "support/CStaging.h"
#include "support/CTemporaryDirectory.h"
#include "support/FileBuilders.h"

namespace {

const std::filesystem::path kGoldenFiles = RELIEVO_GOLDEN_FILES;

/// The model of golden/small.grid: nine points.
struct CSmallModel : CTestGrid {
  CSmallModel() : CTestGrid(1, 1) {
    AddAll(m_Grid, {HeightCstr(0.5, 21.25, 1.5), SlopeCstr(4, 22, 0.25, -0.5)});
    CCntrCtrl& curve = AddCurveThrough(m_Grid, CurveType::kFairness, {{1, 25.5}, {2, 25.5}});
    curve.SetAllWeights(11, 12, 13, 14);
    curve.SetOption(CurveOption::kRightAutoBump, true);
    curve.SetOrientation(CurveSide::Left, -7.5);
    curve.SetOrientation(CurveSide::Right, 7.5);
    curve.SetDistance(CurveSide::Left, 2.5);
    curve.SetDistance(CurveSide::Right, 3.5);
    m_Grid.PerformPendingWork();
    m_Grid.Builder().SetHeights(std::vector<double>{1, -2.5, 1.0 / 3, 1e6, 1e-5, -0.125, 123456.789, 6, 7});
    m_Console.Take();
  }
};

TEST(GridFile, IsWrittenToTheLetter) {
  const CSmallModel model;
  EXPECT_EQ(GridText(model.m_Grid), BytesOf(kGoldenFiles / "small.grid"));
}

TEST(GridFile, GivesTheModelBack) {
  CTestGrid test(3, 1);
  ASSERT_EQ(ReadText(test.m_Grid, BytesOf(kGoldenFiles / "small.grid")), GridFileState::Whole);
  EXPECT_EQ(test.m_Grid.Surface().Lattice().Level(), 1);
  EXPECT_EQ(NodalHeights(test.m_Grid), (std::vector<double>{1, -2.5, 0.333333, 1e6, 1e-5, -0.125, 123456.789, 6, 7}));
  EXPECT_EQ(test.m_Grid.Surface().MaxHeight(), 1e6);
  EXPECT_EQ(test.m_Grid.Surface().MinHeight(), -2.5);
  const CPtCstr& slope = RecordAt(test.m_Grid.Constraints().Points(), 1);
  EXPECT_EQ(slope.m_fQ, -0.5);
  const CCntrCtrl& curve = *test.m_Grid.Constraints().Curves().begin();
  EXPECT_EQ(curve.Nodes().back().m_Weights.m_fLeftTorsion, 12);
  EXPECT_EQ(curve.AutoBump(CurveSide::Right).m_fDistance, 3.5);
  EXPECT_EQ(curve.Options(), CurveOption::kRightAutoBump);
}

TEST(GridFile, LoadsIntoTheSameBytes) {
  const CFullModel model;
  const std::string text = GridText(model.m_Grid);
  CTestGrid other(5, 5);
  ASSERT_EQ(ReadText(other.m_Grid, text), GridFileState::Whole);
  EXPECT_EQ(GridText(other.m_Grid), text);
  other.m_Grid.PerformPendingWork();
  EXPECT_EQ(GridText(other.m_Grid), text) << "after the work that a save performs first";
}

/// A surface and constraints all over the rectangle.
void Furnish(CGrid& grid, const CExtent& e) {
  grid.Initialize(2, false, e.x0, e.y0, e.x1, e.y1);
  AddAll(grid, {HeightCstr(e.x0 + (e.x1 - e.x0) / 3, e.y0 + (e.y1 - e.y0) / 7, (e.x1 - e.x0) / 11)});
  AddCurveThrough(grid, CurveType::kPosition,
                  {{e.x0 + (e.x1 - e.x0) / 9, e.y0 + (e.y1 - e.y0) / 9}, {e.x0 + (e.x1 - e.x0) / 2, e.y1}});
  grid.PerformPendingWork();
}

class GridFileRectangle : public testing::TestWithParam<CExtent> {};

TEST_P(GridFileRectangle, ComesBackWithAllThatLiesInIt) {
  const CExtent e = GetParam();
  const double tolerance = 1e-5 * std::max(e.x1 - e.x0, e.y1 - e.y0);
  CTestGrid model(4, 2);
  Furnish(model.m_Grid, e);
  CTestGrid other;
  ASSERT_EQ(ReadText(other.m_Grid, GridText(model.m_Grid)), GridFileState::Whole);
  const CExtent& read = other.m_Grid.Surface().Lattice().Extent();
  EXPECT_NEAR(read.x0, e.x0, tolerance);
  EXPECT_NEAR(read.x1 - read.x0, e.x1 - e.x0, 3e-5 * (e.x1 - e.x0));
  EXPECT_NEAR(read.y1 - read.y0, e.y1 - e.y0, 3e-5 * (e.y1 - e.y0));
  const CPtCstr& record = RecordAt(other.m_Grid.Constraints().Points(), 0);
  const CPtCstr& saved = RecordAt(model.m_Grid.Constraints().Points(), 0);
  EXPECT_NEAR(record.m_fX, saved.m_fX, tolerance);
  EXPECT_NEAR(record.m_fY, saved.m_fY, tolerance);
  EXPECT_NEAR(record.m_fZ, saved.m_fZ, tolerance);
  const CCntrNode& node = CStaging::Constraints(other.m_Grid).Curves().begin()->Nodes().front();
  EXPECT_NEAR(node.m_fX, e.x0 + (e.x1 - e.x0) / 9, tolerance);
}

INSTANTIATE_TEST_SUITE_P(Each, GridFileRectangle,
                         testing::Values(CExtent{4500049, 4500149, -4500149, -4500049},
                                         CExtent{99.9999999, 100, 99.9999999, 100}, CExtent{99.9999999, 100, 0, 1000},
                                         CExtent{0, 1.0 / 3, 0, 2000.0 / 3}, CExtent{-1e-9, 1e-9, 0, 1}));

TEST(GridFile, OfARectangleThatBeginsAtZeroHasSixDigits) {
  CTestGrid model(4, 2);
  Furnish(model.m_Grid, {0, 1234.5678, 0, 100.0 / 3});
  std::istringstream in(GridText(model.m_Grid));
  for (std::string word; in >> word;)
    EXPECT_LE(std::ranges::count_if(word, [](char c) { return c >= '0' && c <= '9'; }), 8) << word;
  EXPECT_EQ(GridText(model.m_Grid).find("0\t0\t1234.57\t33.3333\n"), 0U);
}

TEST(GridFile, KeepsTheHeightOfNormalConstraintsUntilTheNextTick) {
  CSmallModel model;
  ReadText(model.m_Grid, Replaced(GridText(model.m_Grid), "4\t22\t0\t0.25", "4\t22\t77\t0.25"));
  EXPECT_EQ(RecordAt(model.m_Grid.Constraints().Points(), 1).m_fZ, 77);
  model.m_Grid.UpdateGrid();
  EXPECT_NE(RecordAt(model.m_Grid.Constraints().Points(), 1).m_fZ, 77);
}

TEST(GridFile, LeavesTheSolverToRestartFromTheLoadedHeights) {
  CFullModel model;
  const std::string text = GridText(model.m_Grid);
  model.m_Grid.Builder().SetWaveletMode(WaveletMode::None);
  model.m_Grid.Run().Post(Operation::kRebuild);
  g_bHighRes = 1;
  ASSERT_EQ(ReadText(model.m_Grid, text), GridFileState::Whole);
  EXPECT_EQ(model.m_Grid.Solver().Counter(), 0);
  EXPECT_EQ(model.m_Grid.Run().NextOperation(), Operation::kNone);
  EXPECT_EQ(model.m_Grid.Surface().Mode(), WaveletMode::New);
  EXPECT_EQ(g_bHighRes, 0);
  std::vector<double> heights(model.m_Grid.Surface().Order().Count());
  model.m_Grid.Surface().Basis().invW(model.m_Grid.Surface().Coefficients(), heights);
  EXPECT_LT(LargestDifference(heights, ByScan(model.m_Grid.Surface().Order(), NodalHeights(model.m_Grid))), 1e-12);
}

TEST(GridFile, IsSolvedOnAlsoWhereTheModelBeforeHadConverged) {
  const CTemporaryDirectory directory;
  const std::string file = (directory.Path() / "unsolved.grid").string();
  CTestGrid unsolved(4, 2);
  AddAll(unsolved.m_Grid, SomeConstraints());
  unsolved.m_Grid.PerformPendingWork();
  ASSERT_TRUE(unsolved.m_Grid.Save(file));
  CTestGrid test(4, 2);
  test.m_Grid.UpdateGrid();
  ASSERT_FALSE(test.m_Grid.Run().IsRunning());
  test.m_Grid.Load(file);
  test.m_Grid.Run().SetRunning(true);
  ASSERT_TRUE(RunUntilPaused(test.m_Grid));
  EXPECT_NEAR(SurfaceHeight(test.m_Grid, 3, 25), 3, 1e-6);
}

TEST(GridFile, TheLevelsOfTheFileAreThoseOfNewGridsOnly) {
  CTestGrid test(7, 3);
  const std::string text = GridText(test.m_Grid);
  CTestGrid other(6, 2);
  ASSERT_EQ(ReadText(other.m_Grid, text), GridFileState::Whole);
  EXPECT_EQ(g_iBaseLevel, 3);
  EXPECT_EQ(g_iMaxLevel, 7);
  EXPECT_EQ(other.m_Grid.Wanted().BaseLevel(), 5) << "always";
  EXPECT_EQ(other.m_Grid.Surface().ActivePointCount(), 81) << "as the saved subdivision says";
}

TEST(GridFile, HoldsTheLevelsOfNewGridsAsTheyAreNow) {
  const CTestGrid test(4, 2);
  const CResolutionScope levels(6, 3);
  EXPECT_NE(GridText(test.m_Grid).find("\nL\n3\n6\n"), std::string::npos) << GridText(test.m_Grid);
}

TEST(GridFile, KeepsTheFirstNumberOfEachList) {
  const CFullModel model;
  CTestGrid other;
  ReadText(other.m_Grid, GridText(model.m_Grid));
  EXPECT_EQ(other.m_Grid.Constraints().Headers().m_iPoints, 3);
  EXPECT_EQ(other.m_Grid.Constraints().Headers().m_iCurves, 4);
  EXPECT_EQ(other.m_Grid.Constraints().Headers().m_iRegions, 5);
}

TEST(GridFile, GeneratedConstraintsAreMadeAnew) {
  CFullModel model;
  const std::size_t generated = model.m_Grid.Constraints().Generated().size();
  ASSERT_GT(generated, 0U);
  CTestGrid other;
  ReadText(other.m_Grid, GridText(model.m_Grid));
  EXPECT_EQ(other.m_Grid.Constraints().Generated().size(), generated);
  EXPECT_EQ(other.m_Grid.Constraints().Points().size(), SomeConstraints().size());
}

// A grid of the other resolution must not reappear after a load.
TEST(GridFile, ForgetsTheOtherResolution) {
  CFullModel model;
  const std::string text = GridText(model.m_Grid);
  model.m_Grid.Run().Post(Operation::kTransferToHigh);
  model.m_Grid.PerformPendingWork();
  ReadText(model.m_Grid, text);
  model.m_Grid.Run().Post(Operation::kRestoreHigh);
  model.m_Grid.PerformPendingWork();
  EXPECT_EQ(model.m_Grid.Surface().MaxHeight(), 0.0);
  EXPECT_EQ(model.m_Grid.Surface().MinHeight(), 0.0);
}

TEST(GridFile, AHighResolutionModelComesBackAsTheNormalOne) {
  CFullModel model;
  model.m_Grid.Run().Post(Operation::kTransferToHigh);
  model.m_Grid.PerformPendingWork();
  const std::string text = GridText(model.m_Grid);
  CTestGrid other;
  ASSERT_EQ(ReadText(other.m_Grid, text), GridFileState::Whole);
  EXPECT_EQ(g_bHighRes, 0);
  EXPECT_EQ(other.m_Grid.Surface().ActivePointCount(), 17 * 17);
  EXPECT_EQ(GridText(other.m_Grid), text);
}

TEST(OldGridFile, HasConstraintsAndSubdivisionButNoHeights) {
  CFullModel model;
  std::string text = GridText(model.m_Grid);
  text = text.substr(0, text.find("\n\nZ\n"));
  const std::size_t levels = text.find('L');
  text = text.substr(0, levels) + "Q" + text.substr(text.find('T') + 1) + "\n";
  ASSERT_EQ(ReadText(model.m_Grid, text), GridFileState::Whole);
  EXPECT_EQ(model.m_Grid.Constraints().Points().size(), SomeConstraints().size());
  EXPECT_EQ(model.m_Grid.Constraints().Curves().size(), 1U);
  EXPECT_EQ(model.m_Grid.Surface().MaxHeight(), 0.0);
  EXPECT_EQ(model.m_Grid.Solver().Counter(), 0);
  EXPECT_EQ(g_iBaseLevel, 5);
  EXPECT_EQ(g_iMaxLevel, 7);
  EXPECT_TRUE(model.m_Grid.Wanted().Current().Root().Child(1).Child(0).Child(2).IsLeaf());
}

/// Decimal commas and grouped thousands.
class CCommas : public std::numpunct<char> {
 protected:
  char do_decimal_point() const override { return ','; }
  char do_thousands_sep() const override { return '.'; }
  std::string do_grouping() const override { return "\3"; }
};

TEST(GridFile, IsTheSameUnderEveryLocale) {
  const CTemporaryDirectory directory;
  CSmallModel model;
  const std::locale before = std::locale::global(std::locale(std::locale::classic(), new CCommas));
  const CSaveOutcome saved = model.m_Grid.Save(directory.Path() / "m.grid");
  const GridFileState state = model.m_Grid.Load(directory.Path() / "m.grid");
  const std::string again = (model.m_Grid.Save(directory.Path() / "n.grid"), BytesOf(directory.Path() / "n.grid"));
  std::locale::global(before);
  EXPECT_TRUE(saved);
  EXPECT_EQ(state, GridFileState::Whole);
  EXPECT_EQ(BytesOf(directory.Path() / "m.grid"), BytesOf(kGoldenFiles / "small.grid"));
  EXPECT_EQ(again, BytesOf(kGoldenFiles / "small.grid"));
}

TEST(GridFileLights, AreAskedForAfterTheRestAndGoIntoTheFileOnYes) {
  const CTemporaryDirectory directory;
  CSmallModel model;
  int questions = 0;
  ASSERT_TRUE(model.m_Grid.Save(directory.Path() / "m.grid", [&questions] { return ++questions == 1; }));
  EXPECT_EQ(questions, 1);
  const std::string text = BytesOf(directory.Path() / "m.grid");
  const std::string common = Replaced(BytesOf(kGoldenFiles / "small.grid"), "\n\nE\n", "\n\nI\n");
  EXPECT_EQ(text.substr(0, common.size()), common);
  EXPECT_EQ(std::count(text.begin() + static_cast<std::ptrdiff_t>(common.size()), text.end(), '\n'), 10 * 5);
}

TEST(GridFileLights, StayAsTheyAreWhenTheFileHasNone) {
  CSmallModel model;
  CStaging::RemovedLights(model.m_Grid).m_aLights[2].m_afColour = {0.25, 0.5, 0.75};
  const CLightSet before = model.m_Grid.Relighting().RemovedLights();
  ASSERT_EQ(ReadText(model.m_Grid, BytesOf(kGoldenFiles / "small.grid")), GridFileState::Whole);
  EXPECT_EQ(model.m_Grid.Relighting().RemovedLights(), before);
}

TEST(GridFileLights, ComeBack) {
  CSmallModel model;
  CStaging::RemovedLights(model.m_Grid).m_aLights[2].m_afColour = {0.25, 0.5, 0.75};
  CStaging::AddedLights(model.m_Grid).m_aLights[4].m_bActive = true;
  const CLightSet removed = model.m_Grid.Relighting().RemovedLights();
  const CLightSet added = model.m_Grid.Relighting().AddedLights();
  std::ostringstream out;
  WriteGrid(out, model.m_Grid);
  WriteLights(out, model.m_Grid);
  CStaging::RemovedLights(model.m_Grid) = CStaging::AddedLights(model.m_Grid) = CLightSet{};
  ASSERT_EQ(ReadText(model.m_Grid, out.str()), GridFileState::Whole);
  EXPECT_EQ(model.m_Grid.Relighting().RemovedLights(), removed);
  EXPECT_EQ(model.m_Grid.Relighting().AddedLights(), added);
}

// Rounding the nodes of a curve to six digits may make it meet other cells, and so change the numbering.
TEST(GridFileOrder, HeightsGoByTheirPlacesWhereTheNumberingHasChanged) {
  CFullModel model;
  const std::vector<double> before = SurfaceOnLattice(model.m_Grid);
  const CPointOrder order = model.m_Grid.Surface().Order();
  std::string text = Replaced(GridText(model.m_Grid), "9\t23.5\t", "9\t24.5\t");
  ASSERT_EQ(ReadText(model.m_Grid, text), GridFileState::Whole);
  ASSERT_NE(model.m_Grid.Surface().Order().Count(), order.Count());
  EXPECT_NE(model.m_Console.Text().find("The point order has changed: the heights go by it\n"), std::string::npos);
  const std::vector<double>& heights = model.m_Grid.Surface().Lattice().Heights();
  for (std::size_t k = 0; k < model.m_Grid.Surface().Order().Count(); ++k) {
    const std::uint32_t point = model.m_Grid.Surface().Order().PointOf(k);
    if (order.NumberOf(point) < 0) continue;
    EXPECT_NEAR(heights[point], before[point], 1e-5) << point;
  }
}

TEST(GridFileOrder, APointWithoutAHeightLiesWhereItsParentsPutIt) {
  CTestGrid model(2, 1);
  SetSurface(model.m_Grid, CRamp{});
  std::string text = GridText(model.m_Grid);
  text = Replaced(text, "bNvNvNvNe", "bbNvNvNvNevNvNvNe");
  ASSERT_EQ(ReadText(model.m_Grid, text), GridFileState::Damaged);
  const std::vector<double> heights = NodalHeights(model.m_Grid);
  ASSERT_EQ(heights.size(), 14U);
  for (std::size_t k = 0; k < heights.size(); ++k) {
    const CLattice& lattice = model.m_Grid.Surface().Lattice();
    const CPointOrder& order = model.m_Grid.Surface().Order();
    EXPECT_NEAR(heights[k], CRamp{}(lattice.XOf(order.ColumnOf(k)), lattice.YOf(order.RowOf(k))), 1e-4) << k;
  }
}

// The notice must not depend on whether the numbering of what could be read is the same.
TEST(GridFileOrder, AnotherOrderDoesNotMendWhatWasDamagedBefore) {
  CFullModel model;
  const std::string text = Replaced(GridText(model.m_Grid), "9\t23.5\t", "9\t24.5\t");
  const std::size_t heights = text.find("\n\nZ\n") + 4;
  const std::size_t first = text.find('\n', heights) - heights;
  const std::vector<std::string> damaged{
      Replaced(text, "0\t1\n", "nan\t1\n"),
      Replaced(text, text.substr(heights, first + 1), "nan\n"),
      Replaced(text, text.substr(heights, first + 1), "1e101\n"),
  };
  for (const std::string& each : damaged) {
    CTestGrid other;
    EXPECT_EQ(ReadText(other.m_Grid, each), GridFileState::Damaged);
    EXPECT_NE(other.m_Console.Text().find("The point order has changed: the heights go by it\n"), std::string::npos);
  }
}

struct CMissingPlace {
  const char* m_pPlace;
  GridFileState m_State;
};

class GridFilePlaces : public testing::TestWithParam<CMissingPlace> {};

// Whatever curves add to the points in use may differ from one reading to another, the rest may not.
TEST_P(GridFilePlaces, MustHoldCornersAndTheSubdivisionOfTheFile) {
  const CFullModel model;
  std::string text = GridText(model.m_Grid);
  const std::size_t places = text.find("\n\nN\n") + 4;
  const std::size_t at = text.find(GetParam().m_pPlace, places);
  ASSERT_NE(at, std::string::npos);
  const auto line = std::count(text.begin() + static_cast<std::ptrdiff_t>(places),
                               text.begin() + static_cast<std::ptrdiff_t>(at), '\n');
  text.erase(at, text.find('\n', at) + 1 - at);
  std::size_t height = text.find("\n\nZ\n") + 4;
  for (std::ptrdiff_t k = 0; k < line; ++k) height = text.find('\n', height) + 1;
  text.erase(height, text.find('\n', height) + 1 - height);
  CTestGrid other;
  EXPECT_EQ(ReadText(other.m_Grid, text), GetParam().m_State);
}

INSTANTIATE_TEST_SUITE_P(Each, GridFilePlaces,
                         testing::Values(CMissingPlace{"(0, 0)\n", GridFileState::Damaged},
                                         CMissingPlace{"(16, 16)\n", GridFileState::Damaged},
                                         CMissingPlace{"(8, 8)\n", GridFileState::Damaged},
                                         CMissingPlace{"(4, 12)\n", GridFileState::Damaged},
                                         CMissingPlace{"(10, 2)\n", GridFileState::Damaged},
                                         CMissingPlace{"(5, 8)\n", GridFileState::Whole}));

TEST(GridFileOrder, OneThatDoesNotFitTheHeightsIsDamaged) {
  const CFullModel model;
  const std::string text = GridText(model.m_Grid);
  for (const char* by : {"(0, 0)\n(0, 0)\n", "(0, 0)\n(99, 0)\n", "(0, 0)\n(1 0)\n"}) {
    CTestGrid other;
    EXPECT_EQ(ReadText(other.m_Grid, Replaced(text, "(0, 0)\n", by)), GridFileState::Damaged) << by;
  }
}

}  // namespace
