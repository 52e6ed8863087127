// The depth map that a grid follows, from the edits to the surface.

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <memory>
#include <numeric>
#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "io/GridFile.h"
#include "model/CModelState.h"
#include "support/CStaging.h"
#include "support/ConstraintBuilders.h"
#include "support/CurveBuilders.h"
#include "support/DepthBuilders.h"
#include "support/UpdateBuilders.h"

namespace {

double Hill(double u, double v) { return std::exp(-12 * ((u - 0.4) * (u - 0.4) + (v - 0.6) * (v - 0.6))); }

std::shared_ptr<const CDepthMap> HillMap() { return SharedDepthMap(33, 33, Hill); }

// A grid of level 4 whose model goes from 0 to 100 in both directions, all points in use.
struct CReferenceGrid {
  CReferenceGrid() { m_Console.Take(); }
  void AddHillHeights(double factor = 30) {
    for (const auto& [u, v] : {std::array{0.1, 0.2}, {0.4, 0.6}, {0.8, 0.3}, {0.6, 0.9}})
      m_Grid.AddPtCstr(HeightCstr(100 * u, 100 * v, factor * Hill(u, v)));
  }
  // Enough for a bent response: the heights are those of the hill to the power.
  void AddBentHeights(double power) {
    for (int k = 0; k < 24; ++k) {
      const double u = 0.05 + 0.9 * std::fmod(0.618 * k, 1.0);
      const double v = 0.05 + 0.9 * k / 24;
      m_Grid.AddPtCstr(HeightCstr(100 * u, 100 * v, 30 * std::pow(Hill(u, v), power)));
    }
  }
  // RMS distance from a field, model units.
  template <typename Field>
  double DistanceFrom(const Field& field) const {
    double sum = 0.0;
    for (int row = 0; row <= 16; ++row) {
      for (int column = 0; column <= 16; ++column) {
        const double missed = m_Grid.GetHeightAt(column, row) - field(column / 16.0, row / 16.0);
        sum += missed * missed;
      }
    }
    return std::sqrt(sum / 289);
  }

  CResolutionScope m_Scope{4, 4};
  ConsoleCapture m_Console;
  CGrid m_Grid;
};

std::string GridBytes(const CGrid& grid) {
  std::ostringstream out;
  WriteGrid(out, grid.Sketch(), {});
  return out.str();
}

TEST(GridReferenceTest, TheSurfaceTakesItsShapeFromTheMap) {
  CReferenceGrid test;
  test.AddHillHeights();
  ASSERT_TRUE(RunUntilPaused(test.m_Grid));
  const auto hill = [](double u, double v) { return 30 * Hill(u, v); };
  const double alone = test.DistanceFrom(hill);
  test.m_Grid.ReferenceEdits().Load(HillMap(), "/hill.pfm");
  test.m_Grid.ReferenceEdits().SetStrength(1);
  ASSERT_TRUE(RunUntilPaused(test.m_Grid));
  ASSERT_TRUE(test.m_Grid.Solver().HasConverged());
  EXPECT_LT(test.DistanceFrom(hill), 0.05 * alone);
  EXPECT_NEAR(test.m_Grid.Reference().Fitted().m_fRms, 0, 0.1);
  for (const CPtCstr& c : test.m_Grid.Constraints().Points())
    EXPECT_NEAR(SurfaceHeight(test.m_Grid, c.m_fX, c.m_fY), c.m_fZ, 1e-5);
  test.m_Grid.ReferenceEdits().Remove();
  ASSERT_TRUE(RunUntilPaused(test.m_Grid));
  EXPECT_NEAR(test.DistanceFrom(hill), alone, 1e-6 * alone);
}

// The same numbers, files and lines, to the last byte.
TEST(GridReferenceTest, StrengthZeroIsAsNoMap) {
  const auto run = [](bool map) {
    CReferenceGrid test;
    test.AddHillHeights();
    test.m_Grid.AddCurve(PointsAt({{20, 20}, {70, 40}}), CurveType::kPosition, false);
    if (map) {
      CReference reference{HillMap(), "/hill.pfm", {}};
      reference.m_Settings.m_fStrength = 0;
      CStaging::Reference(test.m_Grid).Set(reference);
    }
    RunUntilPaused(test.m_Grid);
    test.m_Grid.SetSelectedHeight(7);
    RunUntilPaused(test.m_Grid);
    std::ostringstream bytes;
    bytes << GridBytes(test.m_Grid) << test.m_Console.Take();
    for (const double height : SurfaceOnLattice(test.m_Grid)) bytes << std::hexfloat << height << ' ';
    for (const double multiplier : test.m_Grid.Solver().Multipliers()) bytes << multiplier << ' ';
    return bytes.str();
  };
  EXPECT_EQ(run(true), run(false));
}

TEST(GridReferenceTest, AGridFileKnowsNothingOfIt) {
  CReferenceGrid test;
  test.AddHillHeights();
  const std::string before = GridBytes(test.m_Grid);
  test.m_Grid.ReferenceEdits().Load(HillMap(), "/hill.pfm");
  EXPECT_EQ(GridBytes(test.m_Grid), before);
}

TEST(GridReferenceTest, EditsPostWhatTheyPutOutOfDate) {
  CReferenceGrid test;
  CReferenceEdits& edits = test.m_Grid.ReferenceEdits();
  const auto posted = [&] {
    const Operation operation = test.m_Grid.Run().NextOperation();
    test.m_Grid.PerformPendingWork();
    return operation;
  };
  posted();
  edits.Load(HillMap(), "/hill.pfm");
  EXPECT_EQ(posted(), Operation::kRebuild);
  edits.Load(HillMap(), "/hill.pfm");
  EXPECT_EQ(posted(), Operation::kNone) << "the same map again";
  edits.SetStrength(0.5);
  EXPECT_EQ(posted(), Operation::kRestart);
  EXPECT_EQ(test.m_Grid.Solver().Counter(), 0);
  edits.SetStrength(7);
  EXPECT_EQ(test.m_Grid.Reference().Value().m_Settings.m_fStrength, 1);
  EXPECT_EQ(posted(), Operation::kRestart);
  edits.SetNearIsBright(false);
  EXPECT_EQ(posted(), Operation::kRestart);
  edits.SetResponse(ReferenceResponse::Straight);
  EXPECT_EQ(posted(), Operation::kRestart);
  edits.SetSceneDepth(12);
  EXPECT_EQ(posted(), Operation::kRestart);
  edits.SetSceneDepth(-12);
  EXPECT_EQ(posted(), Operation::kNone);
  edits.SetZeroIsUnknown(true);
  EXPECT_EQ(posted(), Operation::kRebuild);
  edits.Remove();
  EXPECT_EQ(posted(), Operation::kRebuild);
  EXPECT_TRUE(test.m_Grid.Solver().System().Load().empty());
  EXPECT_TRUE(test.m_Grid.Reference().Value() == CReference());
}

TEST(GridReferenceTest, DocumentsBringItBack) {
  CReferenceGrid test;
  test.m_Grid.PerformPendingWork();
  const CDocument empty = DocumentOf(test.m_Grid);
  test.m_Grid.ReferenceEdits().Load(HillMap(), "/hill.pfm");
  const CDocument loaded = DocumentOf(test.m_Grid);
  test.m_Grid.ReferenceEdits().SetStrength(0.3);
  test.m_Grid.PerformPendingWork();
  EXPECT_FALSE(empty == loaded);
  CRestoration::RestoreDocument(test.m_Grid, loaded);
  EXPECT_EQ(test.m_Grid.Run().NextOperation(), Operation::kRestart);
  EXPECT_EQ(test.m_Grid.Reference().Value().m_Settings.m_fStrength, 0.8);
  test.m_Grid.PerformPendingWork();
  CRestoration::RestoreDocument(test.m_Grid, empty);
  EXPECT_EQ(test.m_Grid.Run().NextOperation(), Operation::kRebuild);
  EXPECT_FALSE(test.m_Grid.Reference().HasMap());
}

TEST(GridReferenceTest, StatesBringItBack) {
  CReferenceGrid test;
  test.AddHillHeights();
  test.m_Grid.ReferenceEdits().Load(HillMap(), "/hill.pfm");
  ASSERT_TRUE(RunUntilPaused(test.m_Grid));
  const std::vector<double> wanted = SurfaceOnLattice(test.m_Grid);
  const CModelState state = StateOf(test.m_Grid);
  test.m_Grid.Initialize(4, false, 0, 0, 100, 100);
  EXPECT_FALSE(test.m_Grid.Reference().HasMap());
  EXPECT_TRUE(test.m_Grid.Solver().System().Load().empty());
  CRestoration::RestoreState(test.m_Grid, state);
  EXPECT_TRUE(test.m_Grid.Reference().HasMap());
  EXPECT_FALSE(test.m_Grid.Solver().System().Load().empty());
  EXPECT_TRUE(test.m_Grid.Solver().HasConverged());
  EXPECT_EQ(SurfaceOnLattice(test.m_Grid), wanted);
}

TEST(GridReferenceTest, ANewGridThatKeepsConstraintsKeepsIt) {
  CReferenceGrid test;
  test.m_Grid.ReferenceEdits().Load(HillMap(), "/hill.pfm");
  test.m_Grid.Initialize(3, true, 0, 0, 50, 50);
  EXPECT_TRUE(test.m_Grid.Reference().HasMap());
  EXPECT_EQ(test.m_Grid.Solver().System().Load().size(), 81U);
}

TEST(GridReferenceTest, IsFittedAgainWithEveryHeight) {
  CReferenceGrid test;
  test.AddHillHeights(30);
  test.m_Grid.ReferenceEdits().Load(HillMap(), "/hill.pfm");
  test.m_Grid.PerformPendingWork();
  const double before = test.m_Grid.Reference().Fitted().m_fLinear;
  for (const std::size_t k : {0U, 1U, 2U, 3U}) {
    CPtCstr& c = RecordAt(CStaging::Constraints(test.m_Grid).Points(), static_cast<int>(k));
    test.m_Grid.UnselectAll();
    c.SetState(PtCstrState::kSelected, true);
    test.m_Grid.SetSelectedHeight(2 * c.m_fZ);
  }
  test.m_Grid.PerformPendingWork();
  EXPECT_NEAR(test.m_Grid.Reference().Fitted().m_fLinear, 2 * before, 1e-9);
}

TEST(GridReferenceTest, AResponseIsChosenAnewWhenTheHandLetsGo) {
  CReferenceGrid test;
  test.AddBentHeights(1);
  test.m_Grid.ReferenceEdits().Load(HillMap(), "/hill.pfm");
  test.m_Grid.PerformPendingWork();
  EXPECT_FALSE(test.m_Grid.Reference().Fitted().m_bBent);
  test.m_Grid.Gate().BeginGesture(CEditGate::Hold::Other);
  for (CPtCstr& c : CStaging::Constraints(test.m_Grid).Points()) c.m_fZ = c.m_fZ * c.m_fZ / 30;
  test.m_Grid.Run().Post(Operation::kRestart);
  test.m_Grid.PerformPendingWork();
  EXPECT_FALSE(test.m_Grid.Reference().Fitted().m_bBent);
  EXPECT_TRUE(test.m_Grid.Reference().Fitted().m_bChoosesBent);
  test.m_Grid.Gate().EndGesture(CEditGate::GestureEnd::Released);
  EXPECT_EQ(test.m_Grid.Run().NextOperation(), Operation::kRestart);
  test.m_Grid.PerformPendingWork();
  EXPECT_TRUE(test.m_Grid.Reference().Fitted().m_bBent);
  test.m_Grid.Gate().BeginGesture(CEditGate::Hold::Other);
  test.m_Grid.Gate().EndGesture(CEditGate::GestureEnd::Released);
  EXPECT_EQ(test.m_Grid.Run().NextOperation(), Operation::kNone) << "nothing to choose";
}

TEST(GridReferenceTest, FairnessCurvesSmoothWhatTheMapBends) {
  CReferenceGrid test;
  test.AddHillHeights();
  test.m_Grid.ReferenceEdits().Load(HillMap(), "/hill.pfm");
  test.m_Grid.PerformPendingWork();
  const std::vector<double> load = test.m_Grid.Solver().System().Load();
  test.m_Grid.AddCurve(PointsAt({{20, 22}, {71, 43}, {80, 90}}), CurveType::kFairness, false);
  test.m_Grid.PerformPendingWork();
  EXPECT_EQ(test.m_Grid.Solver().System().Load(), load);
}

// Forces act within each side of a tear: their sum is 0 there, as is their moment.
TEST(GridReferenceTest, TearsCutTheReferenceToo) {
  CReferenceGrid test;
  test.AddHillHeights();
  test.m_Grid.ReferenceEdits().Load(HillMap(), "/hill.pfm");
  test.m_Grid.AddCurve(PointsAt({{40, 0}, {40, 100}}), CurveType::kPosition, false);
  test.m_Grid.PerformPendingWork();
  const std::vector<double>& load = test.m_Grid.Solver().System().Load();
  const CPointOrder& order = test.m_Grid.Surface().Order();
  double left = 0.0;
  double magnitude = 0.0;
  for (std::size_t i = 0; i < load.size(); ++i) {
    if (order.PointAtScan(i) % 17 > 6) continue;
    left += load[i];
    magnitude += std::abs(load[i]);
  }
  EXPECT_LT(std::abs(left), 1e-12 * magnitude);
}

}  // namespace
