#include <array>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "model/CGrid.h"
#include "solver/TreeWalkTransform.h"
#include "support/CStaging.h"
#include "support/GridBuilders.h"

namespace {

// Of heights in -1..1; the weights of an interpolation are rounded to multiples of 1e-10.
constexpr double kSampleError = 1e-9;

class GridRebuildTest : public testing::TestWithParam<WaveletMode> {
 protected:
  GridRebuildTest() { Grid().Builder().SetWaveletMode(GetParam()); }

  CGrid& Grid() { return m_Test.m_Grid; }
  CSubdivisionRecord& Record() { return CStaging::Subdivision(Grid()); }
  CSaveQuadT& Saved(const std::vector<int>& path) { return SavedNode(Record(), path); }
  double HeightAt(int column, int row) {
    return Grid().Surface().Lattice().Heights()[Grid().Surface().Lattice().Index(column, row)];
  }

  // How far the points in use lie from the surface given by heights at all lattice points.
  double DistanceFrom(const std::vector<double>& surface) {
    Grid().Surface().Reconstruct();
    return LargestDifference(NodalHeights(Grid()), Gathered(Grid().Surface().Order(), surface));
  }
  // A subdivision with leaves of different size, with random heights.
  void MakeUneven() {
    Saved({0, 2}).subdiv();
    Saved({0, 2, 2}).subdiv();
    Saved({3, 1}).subdiv();
    MakeSavedLeaf(Saved({1}));
    Grid().Builder().ReplaySubdivision();
    SetRandomSurface(Grid(), 17);
  }
  void MarkBlock() {
    for (const auto& [i, j] : {std::array{1, 1}, {2, 1}, {1, 2}, {2, 2}})
      MakeLeaf(Grid().Surface().Tree(), 2, i, j, CellFlag::kTriangles);
    Grid().Surface().Tree().RefreshEdgeMarks();
  }

  CTestGrid m_Test{4, 2};
};

std::string NameOf(const testing::TestParamInfo<WaveletMode>& mode) {
  switch (mode.param) {
    case WaveletMode::None:
      return "None";
    case WaveletMode::Simple:
      return "Simple";
    default:
      return "New";
  }
}

INSTANTIATE_TEST_SUITE_P(Modes, GridRebuildTest, testing::ValuesIn(kAllModes), NameOf);

TEST_P(GridRebuildTest, RenumberingWhatHasNotChangedKeepsTheSurface) {
  MakeUneven();
  const std::vector<double> before = SurfaceOnLattice(Grid());
  Grid().BuildHNumerotation();
  EXPECT_LT(DistanceFrom(before), kSampleError);
}

TEST_P(GridRebuildTest, ReplayingWhatHasNotChangedKeepsTheSurface) {
  MakeUneven();
  const std::vector<double> before = SurfaceOnLattice(Grid());
  Grid().Builder().ReplaySubdivision();
  EXPECT_LT(DistanceFrom(before), kSampleError);
  EXPECT_LT(LargestDifference(SurfaceOnLattice(Grid()), before), kSampleError);
}

TEST_P(GridRebuildTest, ReplayingAgainAndAgainKeepsTheSurface) {
  MakeUneven();
  const std::vector<double> before = SurfaceOnLattice(Grid());
  for (int k = 0; k < 5; ++k) Grid().Builder().ReplaySubdivision();
  EXPECT_LT(DistanceFrom(before), kSampleError);
}

TEST_P(GridRebuildTest, SettingUpTheSystemKeepsTheSurface) {
  MakeUneven();
  const std::vector<double> before = SurfaceOnLattice(Grid());
  Grid().SetSparseH();
  EXPECT_EQ(Grid().Solver().Counter(), 0);
  EXPECT_LT(DistanceFrom(before), kSampleError);
}

TEST_P(GridRebuildTest, RefinementPutsNewPointsOntoTheSurface) {
  MakeUneven();
  const std::vector<double> before = SurfaceOnLattice(Grid());
  const int points = Grid().Surface().ActivePointCount();
  Saved({1}).subdiv();
  Saved({1, 3}).subdiv();
  Saved({0, 2, 0}).subdiv();
  Saved({2, 0}).subdiv();
  Grid().Builder().ReplaySubdivision();
  EXPECT_GT(Grid().Surface().ActivePointCount(), points);
  EXPECT_LT(DistanceFrom(before), kSampleError);
}

// The neighbours had already split some sides of the cells that are refined, with midpoints of their own height.
TEST_P(GridRebuildTest, RefinementKeepsHangingPoints) {
  Saved({0, 1}).subdiv();
  Saved({0, 3}).subdiv();
  Grid().Builder().ReplaySubdivision();
  SetRandomSurface(Grid(), 23);
  const double right = HeightAt(8, 2);
  const double inner = HeightAt(4, 2);
  const double top = HeightAt(2, 8);
  Saved({0, 0}).subdiv();
  Saved({1, 0}).subdiv();
  Saved({3, 0}).subdiv();
  Grid().Builder().ReplaySubdivision();
  Grid().Surface().Reconstruct();
  EXPECT_NEAR(HeightAt(8, 2), right, kSampleError);
  EXPECT_NEAR(HeightAt(4, 2), inner, kSampleError);
  EXPECT_NEAR(HeightAt(2, 8), top, kSampleError);
}

TEST_P(GridRebuildTest, NewPointOfAFlatCellIsTheMeanOfItsCorners) {
  SetRandomSurface(Grid(), 5);
  const double centre = (HeightAt(0, 0) + HeightAt(4, 0) + HeightAt(4, 4) + HeightAt(0, 4)) / 4;
  const double bottom = (HeightAt(0, 0) + HeightAt(4, 0)) / 2;
  Saved({0, 0}).subdiv();
  Grid().Builder().ReplaySubdivision();
  Grid().Surface().Reconstruct();
  EXPECT_NEAR(HeightAt(2, 2), centre, kSampleError);
  EXPECT_NEAR(HeightAt(2, 0), bottom, kSampleError);
}

TEST_P(GridRebuildTest, CoarseningKeepsThePointsThatRemain) {
  MakeUneven();
  const std::vector<double> before = SurfaceOnLattice(Grid());
  const int points = Grid().Surface().ActivePointCount();
  MakeSavedLeaf(Saved({0}));
  MakeSavedLeaf(Saved({3, 1}));
  Grid().Builder().ReplaySubdivision();
  EXPECT_LT(Grid().Surface().ActivePointCount(), points);
  EXPECT_LT(DistanceFrom(before), kSampleError);
}

TEST_P(GridRebuildTest, CoarseningToOneCellKeepsTheCorners) {
  MakeUneven();
  const std::vector<double> before = SurfaceOnLattice(Grid());
  MakeSavedLeaf(Record().Root());
  Grid().Builder().ReplaySubdivision();
  EXPECT_EQ(Grid().Surface().ActivePointCount(), 4);
  EXPECT_LT(DistanceFrom(before), kSampleError);
}

TEST_P(GridRebuildTest, RefiningAndCoarseningAgainKeepsThePointsThatWereThere) {
  MakeUneven();
  const std::vector<double> before = SurfaceOnLattice(Grid());
  Saved({1}).subdiv();
  Grid().Builder().ReplaySubdivision();
  MakeSavedLeaf(Saved({1}));
  Grid().Builder().ReplaySubdivision();
  EXPECT_LT(DistanceFrom(before), kSampleError);
}

TEST_P(GridRebuildTest, ReplaysMayFollowEachOtherWithoutReconstruction) {
  MakeUneven();
  const std::vector<double> before = SurfaceOnLattice(Grid());
  Saved({1}).subdiv();
  Grid().Builder().ReplaySubdivision();
  MakeSavedLeaf(Saved({0}));
  Saved({2, 2}).subdiv();
  Grid().Builder().ReplaySubdivision();
  EXPECT_LT(DistanceFrom(before), kSampleError);
}

// The height array belongs to the tree while it changes; what a point in use is worth is known apart from it.
TEST_P(GridRebuildTest, ReplayDoesNotTrustTheHeightArray) {
  MakeUneven();
  const std::vector<double> before = SurfaceOnLattice(Grid());
  SetRandomHeights(Grid().Surface().Lattice(), 19);
  Grid().Builder().ReplaySubdivision();
  EXPECT_LT(DistanceFrom(before), kSampleError);
}

// The split interpolates the midpoint of a side that a neighbour had split, over the height the point had.
TEST_P(GridRebuildTest, RenumberingAfterASplitKeepsThePointsThatWereThere) {
  Saved({0, 1}).subdiv();
  Grid().Builder().ReplaySubdivision();
  SetRandomSurface(Grid(), 29);
  const std::vector<double> before = SurfaceOnLattice(Grid());
  Grid().Surface().Tree().CellAt(2, 0, 0).subdiv(true);
  Grid().BuildHNumerotation();
  Grid().Surface().Reconstruct();
  EXPECT_NEAR(HeightAt(4, 2), before[Grid().Surface().Lattice().Index(4, 2)], kSampleError);
}

// What refines the tree after a replay and numbers it again finds the surface as it was before the replay.
TEST_P(GridRebuildTest, PointsSplitOffAfterAReplayLieOnTheSurface) {
  MakeUneven();
  const std::vector<double> before = SurfaceOnLattice(Grid());
  Grid().Builder().ReplaySubdivision();
  MakeLeaf(Grid().Surface().Tree(), 0, 13, 9);
  MakeLeaf(Grid().Surface().Tree(), 1, 5, 0);
  Grid().BuildHNumerotation();
  EXPECT_LT(DistanceFrom(before), kSampleError);
}

TEST_P(GridRebuildTest, ReconstructedSurfaceIsTheOneTheNextRebuildKeeps) {
  MakeUneven();
  Grid().Builder().ReplaySubdivision();
  SetRandomSurface(Grid(), 31);
  const std::vector<double> before = SurfaceOnLattice(Grid());
  Grid().BuildHNumerotation();
  EXPECT_LT(DistanceFrom(before), kSampleError);
  Grid().Builder().ReplaySubdivision();
  EXPECT_LT(DistanceFrom(before), kSampleError);
}

TEST_P(GridRebuildTest, RenumberingInsideMarksKeepsTheSurface) {
  MakeUneven();
  MarkBlock();
  Grid().BuildHNumerotation();
  SetRandomSurface(Grid(), 37);
  const std::vector<double> before = SurfaceOnLattice(Grid());
  Grid().BuildHNumerotation();
  EXPECT_LT(DistanceFrom(before), kSampleError);
}

TEST_P(GridRebuildTest, MarksCutTheBasisAtTheNextNumbering) {
  SetRandomSurface(Grid(), 41);
  const std::vector<double> before(Grid().Surface().Coefficients().begin(), Grid().Surface().Coefficients().end());
  MarkBlock();
  Grid().BuildHNumerotation();
  const bool changed = LargestDifference(Grid().Surface().Coefficients(), before) > 1e-3;
  EXPECT_EQ(changed, GetParam() == WaveletMode::New);
  EXPECT_LT(Grid().Surface().TestWavelets(), 1e-12);
}

TEST_P(GridRebuildTest, ReplayForgetsMarksAndKeepsHeights) {
  MakeUneven();
  MarkBlock();
  Grid().BuildHNumerotation();
  SetRandomSurface(Grid(), 43);
  const std::vector<double> before = SurfaceOnLattice(Grid());
  Grid().Builder().ReplaySubdivision();
  EXPECT_FALSE(Grid().Surface().Tree().CellAt(2, 1, 1).Edge(kRight).HasBothMarks());
  EXPECT_LT(DistanceFrom(before), kSampleError);
  EXPECT_LT(Grid().Surface().TestWavelets(), 1e-12);
}

TEST_P(GridRebuildTest, ReplayReportsTheNewCount) {
  Saved({2, 2}).subdiv();
  m_Test.m_Console.Take();
  Grid().Builder().ReplaySubdivision();
  EXPECT_EQ(m_Test.m_Console.Take(), "30 points\n");
  EXPECT_EQ(Grid().Surface().ActivePointCount(), 30);
  EXPECT_EQ(Grid().Surface().Coefficients().size(), 30U);
}

TEST_P(GridRebuildTest, CoefficientsAreThoseOfTheModeInForce) {
  MakeUneven();
  Grid().Builder().ReplaySubdivision();
  std::vector<double> byPoint(Grid().Surface().Lattice().PointCount());
  WalkW(Grid().Surface().Tree(), GetParam(), Grid().Surface().Lattice().Heights(), byPoint);
  EXPECT_LT(LargestDifference(Grid().Surface().Coefficients(), Gathered(Grid().Surface().Order(), byPoint)), 1e-12);
}

TEST_P(GridRebuildTest, ChangeOfModeKeepsTheSurface) {
  MakeUneven();
  MarkBlock();
  Grid().BuildHNumerotation();
  SetRandomSurface(Grid(), 47);
  const std::vector<double> before = SurfaceOnLattice(Grid());
  for (const WaveletMode mode : kAllModes) {
    Grid().Builder().SetWaveletMode(mode);
    EXPECT_EQ(Grid().Surface().Mode(), mode);
    EXPECT_LT(Grid().Surface().TestWavelets(), 1e-12);
    EXPECT_LT(DistanceFrom(before), kSampleError);
  }
}

TEST_P(GridRebuildTest, ChangeOfModeTakesCoefficientsThatWereNotReconstructed) {
  const std::vector<double> heights = RandomValues(53, Grid().Surface().Order().Count());
  Grid().Surface().Basis().W(ByScan(Grid().Surface().Order(), heights), Grid().Surface().Coefficients());
  Grid().Builder().SetWaveletMode(WaveletMode::None);
  EXPECT_LT(LargestDifference(Grid().Surface().Coefficients(), heights), 1e-12);
}

TEST_P(GridRebuildTest, ChangeOfModeNeverRaisesTheCounter) {
  for (const WaveletMode mode : kAllModes) {
    Grid().Builder().SetWaveletMode(mode);
    EXPECT_EQ(Grid().Solver().Counter(), -1);
  }
  Grid().SetSparseH();
  Grid().Builder().SetWaveletMode(WaveletMode::Simple);
  EXPECT_EQ(Grid().Solver().Counter(), 0);
}

TEST_P(GridRebuildTest, InitializeKeepsTheMode) {
  m_Test.Initialize(3);
  EXPECT_EQ(Grid().Surface().Mode(), GetParam());
  EXPECT_EQ(Grid().Surface().Basis().Mode(), GetParam());
}

}  // namespace
