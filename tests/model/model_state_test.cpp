// A whole model as a value: that coming back to it brings the surface, and that it stays; and a document as a value,
// and what coming back to it posts.

#include <algorithm>
#include <cmath>
#include <functional>
#include <iterator>
#include <optional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "model/CModelState.h"
#include "support/CTemporaryDirectory.h"
#include "support/CurveGrid.h"

namespace {

double RangeOf(const std::vector<double>& heights) {
  const auto [low, high] = std::ranges::minmax(heights);
  return high - low;
}

/// A model with something of everything, on the surface that its constraints ask for.
struct CRichGrid : CCurveGrid {
  CRichGrid() {
    AddAll(m_Grid, SomeConstraints());
    Add(kPath);
    Add({{1, 24}, {3, 25}, {6, 25.5}}, kFair);
    m_Grid.CellEdits().RefineAt(9.1, 20.6);
    CLight light = *m_Grid.GetLightSource(1, kAddedLights);
    light.m_bActive = true;
    m_Grid.SetLight(1, kAddedLights, light);
    m_Grid.UpdateGrid();
    m_Grid.CellEdits().Select(0, 20.5, 4, 22);
    m_Grid.SelectPtCstr(10, 22, PtCstrKind::kPosition);
    Click({{2, 22}});
  }
  void Ruin() {
    g_iMaxLevel = 3;
    g_iBaseLevel = 1;
    g_fPickTolerance = 7;
    g_bHighRes = 0;
    m_Grid.Relighting().SetLights({}, {});
    m_Grid.Initialize(1, false, 0, 0, 5, 5);
    m_Grid.Reset();
    m_Grid.UpdateGrid();
  }
  ~CRichGrid() { g_fPickTolerance = 1.0; }
};

}  // namespace

TEST(ModelStateTest, AConvergedSurfaceIsBackAtOnceAndStays) {
  CRichGrid test;
  ASSERT_TRUE(RunUntilPaused(test.m_Grid));
  const CModelState state = StateOf(test.m_Grid);
  const std::vector<double> heights = NodalHeights(test.m_Grid);
  const double range = RangeOf(heights);
  ASSERT_GT(range, 1.0);
  test.Ruin();
  CRestoration::RestoreState(test.m_Grid, state);
  EXPECT_TRUE(DocumentOf(test.m_Grid) == state.m_Document);
  EXPECT_LT(LargestDifference(NodalHeights(test.m_Grid), heights), 1e-12 * range);
  EXPECT_TRUE(test.m_Grid.Solver().HasConverged());
  for (int tick = 0; tick < 20; ++tick) test.m_Grid.UpdateGrid();
  EXPECT_LT(LargestDifference(NodalHeights(test.m_Grid), heights), 1e-9 * range);
}

TEST(ModelStateTest, AnotherGridTellsWhyTheSolverHadStopped) {
  CModelState state;
  {
    CRichGrid test;
    ASSERT_TRUE(RunUntilPaused(test.m_Grid));
    state = StateOf(test.m_Grid);
  }
  CCurveGrid other;
  CRestoration::RestoreState(other.m_Grid, state);
  other.m_Console.Take();
  other.m_Grid.UpdateGrid();
  EXPECT_TRUE(other.m_Console.Take().starts_with("|r_rr| is too small "));
  EXPECT_TRUE(other.m_Grid.Solver().HasConverged());
}

TEST(ModelStateTest, HoldsLevelsToleranceLightsAndSelections) {
  CRichGrid test;
  g_iMaxLevel = 5;
  g_iBaseLevel = 3;
  g_fPickTolerance = 0.25;
  const CModelState state = StateOf(test.m_Grid);
  ASSERT_FALSE(state.m_Document.m_auSelectedCells.empty());
  test.Ruin();
  CRestoration::RestoreState(test.m_Grid, state);
  EXPECT_EQ(g_iMaxLevel, 5);
  EXPECT_EQ(g_iBaseLevel, 3);
  EXPECT_EQ(g_fPickTolerance, 0.25);
  EXPECT_TRUE(test.m_Grid.GetLightSource(1, kAddedLights)->m_bActive);
  EXPECT_EQ(DocumentOf(test.m_Grid).m_auSelectedCells, state.m_Document.m_auSelectedCells);
  ASSERT_NE(test.m_Grid.Constraints().Points().FirstSelected(), nullptr);
  EXPECT_EQ(test.m_Grid.Constraints().Points().FirstSelected()->m_fX, 10);
  EXPECT_EQ(test.m_Grid.Run().NextOperation(), Operation::kNone);
}

TEST(ModelStateTest, ASolverOnItsWayGoesOnToTheSameSurface) {
  CRichGrid test;
  const CModelState state = StateOf(test.m_Grid);
  ASSERT_FALSE(test.m_Grid.Solver().HasConverged());
  ASSERT_TRUE(RunUntilPaused(test.m_Grid));
  const std::vector<double> wanted = NodalHeights(test.m_Grid);
  test.Ruin();
  CRestoration::RestoreState(test.m_Grid, state);
  test.m_Grid.Run().SetRunning(true);
  ASSERT_TRUE(RunUntilPaused(test.m_Grid));
  EXPECT_LT(LargestDifference(NodalHeights(test.m_Grid), wanted), 1e-6 * RangeOf(wanted));
}

// The constraint asks for more than it gets, and would ask again.
TEST(ModelStateTest, ASurfaceBetweenContradictionsStays) {
  CConvergedGrid test;
  test.m_Grid.AddPtCstr(HeightCstr(3, 25, 5));
  test.m_Grid.Run().SetRunning(true);
  ASSERT_TRUE(RunUntilPaused(test.m_Grid));
  const CModelState state = StateOf(test.m_Grid);
  const std::vector<double> heights = NodalHeights(test.m_Grid);
  test.Initialize(2);
  test.m_Grid.Reset();
  test.m_Grid.UpdateGrid();
  CRestoration::RestoreState(test.m_Grid, state);
  for (int tick = 0; tick < 20; ++tick) test.m_Grid.UpdateGrid();
  EXPECT_LT(LargestDifference(NodalHeights(test.m_Grid), heights), 1e-9 * RangeOf(heights));
}

TEST(ModelStateTest, AnEditThatWaitsIsNotForgotten) {
  CConvergedGrid test;
  test.m_Grid.SelectPtCstr(10, 22, PtCstrKind::kPosition);
  test.m_Grid.SetSelectedHeight(6);
  const CModelState state = StateOf(test.m_Grid);
  test.Initialize(2);
  CRestoration::RestoreState(test.m_Grid, state);
  test.m_Grid.Run().SetRunning(true);
  ASSERT_TRUE(RunUntilPaused(test.m_Grid));
  EXPECT_NEAR(SurfaceHeight(test.m_Grid, 10, 22), 6, 1e-6);
}

TEST(ModelStateTest, BringsBothResolutionsInEveryMode) {
  for (const WaveletMode mode : kAllModes) {
    CRichGrid test;
    test.m_Grid.Builder().SetWaveletMode(mode);
    test.m_Grid.Run().Post(Operation::kRestoreHigh);
    test.m_Grid.PerformPendingWork();
    SetRandomSurface(test.m_Grid, 3);
    const std::vector<double> high = SurfaceOnLattice(test.m_Grid);
    const CModelState state = StateOf(test.m_Grid);
    test.m_Grid.Run().Post(Operation::kRestoreNormal);
    test.m_Grid.PerformPendingWork();
    const std::vector<double> normal = SurfaceOnLattice(test.m_Grid);
    test.m_Grid.Builder().SetWaveletMode(WaveletMode::New);
    test.Ruin();
    CRestoration::RestoreState(test.m_Grid, state);
    EXPECT_EQ(test.m_Grid.Surface().Mode(), mode);
    EXPECT_EQ(g_bHighRes, 1);
    EXPECT_LT(LargestDifference(SurfaceOnLattice(test.m_Grid), high), 1e-12);
    test.m_Grid.Run().Post(Operation::kRestoreNormal);
    test.m_Grid.PerformPendingWork();
    EXPECT_LT(LargestDifference(SurfaceOnLattice(test.m_Grid), normal), 1e-12);
  }
}

TEST(ModelStateTest, LeavesWhatTheBrushHasPainted) {
  CRichGrid test;
  const CModelState state = StateOf(test.m_Grid);
  test.m_Grid.PaintFreezeMap(3, 22, true);
  const std::size_t frozen = test.m_Grid.Surface().Lattice().Count(PointFlag::kFrozen);
  ASSERT_GT(frozen, 0U);
  CRestoration::RestoreState(test.m_Grid, state);
  EXPECT_EQ(test.m_Grid.Surface().Lattice().Count(PointFlag::kFrozen), frozen);
}

// Another one may be a thousand times as tall.
TEST(ModelStateTest, TheHeightAskedForLastIsOneOfTheModel) {
  const CTemporaryDirectory scratch;
  const std::string file = scratch.File("model.grid");
  CRichGrid test;
  CGrid& grid = test.m_Grid;
  const auto ask = [&](double z) {
    grid.PointEdits().SelectNumber(0);
    grid.SetSelectedHeight(z);
    grid.PerformPendingWork();
  };
  ask(6.5);
  const CModelState state = StateOf(grid);
  ASSERT_TRUE(grid.Save(file));
  grid.Initialize(1, true, 0, 0, 5, 5);
  EXPECT_EQ(grid.LastHeight(), 6.5) << "its constraints are kept";
  grid.Initialize(1, false, 0, 0, 5, 5);
  EXPECT_EQ(grid.LastHeight(), std::nullopt);
  grid.AddPtCstr(HeightCstr(2, 2, 1));
  ask(3000);
  ASSERT_EQ(grid.Load(file), GridFileState::Whole);
  EXPECT_EQ(grid.LastHeight(), std::nullopt);
  ask(3000);
  CRestoration::RestoreState(grid, state);
  EXPECT_EQ(grid.LastHeight(), 6.5) << "one comes back to that model";
  ask(3000);
  CModelState opened = state;
  opened.m_LastHeight.reset();
  CRestoration::RestoreState(grid, opened);
  EXPECT_EQ(grid.LastHeight(), std::nullopt);
}

TEST(ModelStateTest, CopiesShareTheSurface) {
  const CRichGrid test;
  const CModelState state = StateOf(test.m_Grid);
  const CModelState copy = state;
  EXPECT_EQ(copy.m_pSurface, state.m_pSurface);
  EXPECT_EQ(copy.m_pSolver, state.m_pSolver);
  EXPECT_TRUE(copy.m_Document == state.m_Document);
  const std::size_t points = test.m_Grid.Surface().Lattice().PointCount();
  EXPECT_GT(BytesOf(state), 2 * points * sizeof(double));
  EXPECT_LT(BytesOf(state), 2 * points * sizeof(double) + 20'000);
}

TEST(ModelStateTest, DocumentsAreComparedToTheLastBit) {
  const CRichGrid test;
  const CDocument document = DocumentOf(test.m_Grid);
  CDocument other = document;
  EXPECT_TRUE(other == document);
  other.m_Sketch.m_Points.begin()->m_fP = -0.0;
  EXPECT_FALSE(other == document);
  other = document;
  other.m_Sketch.m_Points.begin()->m_fX = std::nan("");
  EXPECT_FALSE(other == document);
  EXPECT_TRUE(other == CDocument(other));
  other = document;
  other.m_AddedLights.m_aLights[4].m_afColour[0] = 0.125;
  EXPECT_FALSE(other == document);
  other = document;
  other.m_auSelectedCells.clear();
  EXPECT_TRUE(other == document);
}

namespace {

struct CBackCase {
  const char* m_pName;
  std::function<void(CGrid&)> m_Edit;
  Operation m_Posted;  ///< on the way back
};

std::vector<CBackCase> BackCases() {
  const auto select = [](CGrid& g) { g.SelectPtCstr(10, 22, PtCstrKind::kPosition); };
  const auto pick = [](CGrid& g) { g.PickCurve(4, 22, CurveType::kAll); };
  return {
      {"nothing", [](CGrid&) {}, Operation::kNone},
      {"point added", [](CGrid& g) { g.AddPtCstr(HeightCstr(7, 21.5, 2)); }, Operation::kRebuild},
      {"point deleted", [=](CGrid& g) { select(g), g.DeleteSelectedPtCstr(); }, Operation::kRebuild},
      {"height", [=](CGrid& g) { select(g), g.SetSelectedHeight(9); }, Operation::kRestart},
      {"place", [=](CGrid& g) { select(g), g.MoveSelectedPtCstr(-6, 0); }, Operation::kRestart},
      {"curve point", [](CGrid& g) { g.CurveEdits().AppendPending(1, 22); }, Operation::kNone},
      {"curve given up", [](CGrid& g) { g.CurveEdits().CancelPending(); }, Operation::kNone},
      {"curve",
       [](CGrid& g) {
         g.AddCurve(PointsAt({{1, 21}, {2, 25}}), kCrease, false);
       },
       Operation::kRebuildMaps},
      {"curve ended", [](CGrid& g) { g.CurveEdits().ValidatePending(5, 21, false, kTear); }, Operation::kRebuildMaps},
      {"node", [=](CGrid& g) { pick(g), g.MoveSelectedCurve(1, 0, CurveType::kAll); }, Operation::kRebuildMaps},
      {"type", [=](CGrid& g) { pick(g), g.CurveEdits().SetSelectedType(kCrease); }, Operation::kRebuildMaps},
      {"node deleted", [=](CGrid& g) { pick(g), g.DeleteSelectedCurveNode(); }, Operation::kRebuildMaps},
      {"curve deleted", [=](CGrid& g) { pick(g), g.DeleteSelectedCurve(); }, Operation::kRebuildMaps},
      {"cell", [](CGrid& g) { g.CellEdits().RefineAt(-2, 25); }, Operation::kRebuildMaps},
      {"split", [](CGrid& g) { g.CellEdits().SplitSelected(); }, Operation::kRebuildMaps},
      {"light", [](CGrid& g) { g.SetLight(2, kRemovedLights, CLight{true}); }, Operation::kNone},
  };
}

// What a file would hold of the points that the tree says.
std::vector<std::uint32_t> KindsOf(const CGrid& grid) {
  std::vector<std::uint32_t> kinds;
  for (const CPtCstr& c : grid.Constraints().Points()) kinds.insert(kinds.end(), {c.m_uKind, c.m_uIdle});
  return kinds;
}

}  // namespace

TEST(RestoreDocumentTest, BringsBackEveryBitAndPostsAsEditsDo) {
  for (const CBackCase& c : BackCases()) {
    for (const bool performed : {false, true}) {
      SCOPED_TRACE(c.m_pName);
      CRichGrid test;
      test.m_Grid.PerformPendingWork();
      const CDocument before = DocumentOf(test.m_Grid);
      const std::vector<std::uint32_t> kinds = KindsOf(test.m_Grid);
      const int points = test.m_Grid.Surface().ActivePointCount();
      c.m_Edit(test.m_Grid);
      if (performed) test.m_Grid.PerformPendingWork();
      EXPECT_EQ(DocumentOf(test.m_Grid) == before,
                c.m_pName == std::string("nothing") || (!performed && c.m_pName == std::string("split")));
      test.m_Grid.Run().DropPending();
      CRestoration::RestoreDocument(test.m_Grid, before);
      if (performed) {
        EXPECT_EQ(test.m_Grid.Run().NextOperation(), c.m_Posted);
      }
      EXPECT_TRUE(DocumentOf(test.m_Grid) == before);
      EXPECT_EQ(DocumentOf(test.m_Grid).m_auSelectedCells, before.m_auSelectedCells);
      test.m_Grid.PerformPendingWork();
      EXPECT_TRUE(DocumentOf(test.m_Grid) == before);
      EXPECT_EQ(KindsOf(test.m_Grid), kinds);
      EXPECT_EQ(test.m_Grid.Surface().ActivePointCount(), points);
    }
  }
}

TEST(RestoreDocumentTest, SelectsAgainAndHighlightsNothing) {
  CRichGrid test;
  test.m_Grid.PickCurve(4, 22, CurveType::kAll);
  test.m_Grid.HighlightCurves(4, 22, CurveType::kAll);
  test.m_Grid.HighlightPtCstrs(10, 22, PtCstrKind::kPosition);
  const CDocument document = DocumentOf(test.m_Grid);
  test.m_Grid.UnselectAll();
  test.m_Grid.DeleteSelectedCurve();
  CRestoration::RestoreDocument(test.m_Grid, document);
  EXPECT_EQ(Selection(test.m_Grid.Constraints().Curves()), Selection(document.m_Sketch.m_Curves));
  EXPECT_EQ(Selection(test.m_Grid.Constraints().Curves()).find('1'), 0U);
  EXPECT_EQ(Highlights(test.m_Grid.Constraints().Curves()).find('1'), std::string::npos);
  ASSERT_NE(test.m_Grid.Constraints().Points().FirstSelected(), nullptr);
  EXPECT_FALSE(std::ranges::any_of(test.m_Grid.Constraints().Points(),
                                   [](const CPtCstr& c) { return c.HasState(PtCstrState::kHighlighted); }));
}

TEST(RestoreDocumentTest, LeavesTheSurface) {
  CRichGrid test;
  ASSERT_TRUE(RunUntilPaused(test.m_Grid));
  const CDocument before = DocumentOf(test.m_Grid);
  const std::vector<double> heights = NodalHeights(test.m_Grid);
  test.m_Grid.AddPtCstr(HeightCstr(7, 21.5, 2));
  CRestoration::RestoreDocument(test.m_Grid, before);
  test.m_Grid.PerformPendingWork();
  EXPECT_LT(LargestDifference(NodalHeights(test.m_Grid), heights), 1e-12 * RangeOf(heights));
  EXPECT_FALSE(test.m_Grid.Solver().HasConverged());
}
