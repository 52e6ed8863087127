#include <algorithm>
#include <array>

#include <gtest/gtest.h>

#include "lattice/CLattice.h"

namespace {

// Neither square nor at the origin.
constexpr CExtent kQuarterOblong{-40, 88, 16, 48};

CLattice OblongLattice(int level) {
  CLattice lattice(level);
  lattice.SetExtent(kQuarterOblong);
  return lattice;
}

template <typename Range, typename Value>
bool AllEqual(const Range& range, const Value& value) {
  return std::ranges::all_of(range, [&](const Value& v) { return v == value; });
}

TEST(LatticeTest, LevelFixesTheNumberOfPoints) {
  const std::array<int, 5> sides{3, 5, 9, 17, 33};
  for (int level = 1; level <= 5; ++level) {
    const CLattice lattice(level);
    EXPECT_EQ(lattice.Level(), level);
    EXPECT_EQ(lattice.PointsPerSide(), sides[static_cast<std::size_t>(level) - 1]);
    EXPECT_EQ(lattice.PointCount(), static_cast<std::size_t>(lattice.PointsPerSide() * lattice.PointsPerSide()));
  }
}

TEST(LatticeTest, LevelsOneToTenAreSupported) {
  EXPECT_EQ(CLattice::kMinLevel, 1);
  EXPECT_EQ(CLattice::kMaxLevel, 10);
}

TEST(LatticeTest, PointsAreStoredRowByRow) {
  const CLattice lattice(3);
  EXPECT_EQ(lattice.Index(0, 0), 0U);
  EXPECT_EQ(lattice.Index(8, 0), 8U);
  EXPECT_EQ(lattice.Index(0, 1), 9U);
  EXPECT_EQ(lattice.Index(8, 8), 80U);
}

TEST(LatticeTest, UnitCellsAreStoredRowByRow) {
  const CLattice lattice(3);
  EXPECT_EQ(lattice.CellIndex(0, 0), 0U);
  EXPECT_EQ(lattice.CellIndex(7, 0), 7U);
  EXPECT_EQ(lattice.CellIndex(0, 1), 8U);
  EXPECT_EQ(lattice.CellIndex(7, 7), 63U);
}

TEST(LatticeTest, ExtentIsAHundredSquareUntilSet) {
  const CLattice lattice(2);
  EXPECT_EQ(lattice.Extent().x0, 0);
  EXPECT_EQ(lattice.Extent().x1, 100);
  EXPECT_EQ(lattice.Extent().y0, 0);
  EXPECT_EQ(lattice.Extent().y1, 100);
}

TEST(LatticeTest, EndsOfTheExtentAreTheFirstAndLastPoint) {
  const CLattice lattice = OblongLattice(5);
  EXPECT_DOUBLE_EQ(lattice.ColumnOf(-40), 0);
  EXPECT_DOUBLE_EQ(lattice.ColumnOf(88), 32);
  EXPECT_DOUBLE_EQ(lattice.RowOf(16), 0);
  EXPECT_DOUBLE_EQ(lattice.RowOf(48), 32);
}

TEST(LatticeTest, CentreOfTheExtentIsTheMiddlePoint) {
  const CLattice lattice = OblongLattice(5);
  EXPECT_DOUBLE_EQ(lattice.ColumnOf(24), 16);
  EXPECT_DOUBLE_EQ(lattice.RowOf(32), 16);
}

TEST(LatticeTest, CoordinatesAreLinearAlsoOutside) {
  const CLattice lattice = OblongLattice(5);
  EXPECT_DOUBLE_EQ(lattice.ColumnOf(-41), -0.25);
  EXPECT_DOUBLE_EQ(lattice.ColumnOf(92), 33);
  EXPECT_DOUBLE_EQ(lattice.RowOf(15), -1);
  EXPECT_DOUBLE_EQ(lattice.RowOf(16.25), 0.25);
}

TEST(LatticeTest, ModelCoordinatesOfPoints) {
  const CLattice lattice = OblongLattice(5);
  EXPECT_DOUBLE_EQ(lattice.XOf(0), -40);
  EXPECT_DOUBLE_EQ(lattice.XOf(1), -36);
  EXPECT_DOUBLE_EQ(lattice.XOf(32), 88);
  EXPECT_DOUBLE_EQ(lattice.YOf(0), 16);
  EXPECT_DOUBLE_EQ(lattice.YOf(1.5), 17.5);
  EXPECT_DOUBLE_EQ(lattice.YOf(32), 48);
}

TEST(LatticeTest, MapsAreInverses) {
  CLattice lattice(4);
  lattice.SetExtent({3, 17.5, -8, 120});
  for (int step = -5; step <= 40; ++step) {
    const double t = 0.7 * step;
    EXPECT_NEAR(lattice.ColumnOf(lattice.XOf(t)), t, 1e-12);
    EXPECT_NEAR(lattice.RowOf(lattice.YOf(t)), t, 1e-12);
  }
}

TEST(LatticeTest, StepsAreTheSidesOfALatticeCell) {
  CLattice lattice = OblongLattice(5);
  EXPECT_DOUBLE_EQ(lattice.StepX(), 4);
  EXPECT_DOUBLE_EQ(lattice.StepY(), 1);
  lattice.SetExtent({0, 16, 0, 64});
  EXPECT_DOUBLE_EQ(lattice.StepX(), 0.5);
  EXPECT_DOUBLE_EQ(lattice.StepY(), 2);
}

TEST(LatticeTest, AllocateClearsWhatWasStored) {
  CLattice lattice = OblongLattice(3);
  std::ranges::fill(lattice.Heights(), 7.0);
  std::ranges::fill(lattice.Smoothness(), 7.0);
  std::ranges::fill(lattice.PointNormals(), Vector3{0, 0, 1});
  std::ranges::fill(lattice.CellNormals(), Vector3{0, 0, 1});
  lattice.Set(40, ~0U);
  lattice.Allocate(3);
  EXPECT_TRUE(AllEqual(lattice.Heights(), 0.0));
  EXPECT_TRUE(AllEqual(lattice.Smoothness(), 0.0));
  EXPECT_TRUE(AllEqual(lattice.PointNormals(), Vector3{}));
  EXPECT_TRUE(AllEqual(lattice.CellNormals(), Vector3{}));
  EXPECT_EQ(lattice.Count(~0U), 0U);
}

TEST(LatticeTest, AllocateSizesTheArraysForTheLevelAndKeepsTheExtent) {
  CLattice lattice = OblongLattice(5);
  lattice.Allocate(2);
  EXPECT_EQ(lattice.PointsPerSide(), 5);
  EXPECT_EQ(lattice.Heights().size(), 25U);
  EXPECT_EQ(lattice.Smoothness().size(), 25U);
  EXPECT_EQ(lattice.PointNormals().size(), 25U);
  EXPECT_EQ(lattice.CellNormals().size(), 16U);
  EXPECT_EQ(lattice.Extent().x0, -40);
  EXPECT_EQ(lattice.Extent().y1, 48);
}

TEST(LatticeTest, FreeGivesTheMemoryBackAndKeepsLevelAndExtent) {
  CLattice lattice = OblongLattice(4);
  lattice.Free();
  EXPECT_EQ(lattice.Heights().capacity(), 0U);
  EXPECT_TRUE(lattice.Smoothness().empty());
  EXPECT_TRUE(lattice.PointNormals().empty());
  EXPECT_TRUE(lattice.CellNormals().empty());
  EXPECT_EQ(lattice.Level(), 4);
  EXPECT_EQ(lattice.Extent().x1, 88);
}

// The values are shared with everything that keeps point flags; they may not move.
TEST(LatticeTest, PointFlagsHaveTheirOwnBits) {
  EXPECT_EQ(PointFlag::kCrease, 1U);
  EXPECT_EQ(PointFlag::kInUse, 8U);
  EXPECT_EQ(PointFlag::kTraced, 16U);
  EXPECT_EQ(PointFlag::kComputed, 64U);
  EXPECT_EQ(PointFlag::kFrozen, 128U);
}

TEST(LatticeTest, FlagsOfAPointAreSetAndClearedOneByOne) {
  CLattice lattice(2);
  lattice.Set(7, PointFlag::kInUse);
  lattice.Set(7, PointFlag::kFrozen);
  lattice.Clear(7, PointFlag::kInUse);
  EXPECT_TRUE(lattice.Has(7, PointFlag::kFrozen));
  EXPECT_FALSE(lattice.Has(7, PointFlag::kInUse));
  EXPECT_FALSE(lattice.Has(6, PointFlag::kFrozen));
}

TEST(LatticeTest, ClearAllTakesTheGivenBitsOffEveryPoint) {
  CLattice lattice(2);
  for (const std::size_t point : {0U, 12U, 24U}) lattice.Set(point, PointFlag::kInUse | PointFlag::kCrease);
  lattice.ClearAll(PointFlag::kCrease);
  EXPECT_EQ(lattice.Count(PointFlag::kCrease), 0U);
  EXPECT_EQ(lattice.Count(PointFlag::kInUse), 3U);
}

TEST(LatticeTest, CountSeesOnlyTheFlagAskedFor) {
  CLattice lattice(2);
  lattice.Set(0, PointFlag::kInUse);
  lattice.Set(5, PointFlag::kInUse | PointFlag::kTraced);
  lattice.Set(9, PointFlag::kTraced | PointFlag::kFrozen);
  EXPECT_EQ(lattice.Count(PointFlag::kInUse), 2U);
  EXPECT_EQ(lattice.Count(PointFlag::kFrozen), 1U);
  EXPECT_EQ(lattice.Count(PointFlag::kComputed), 0U);
}

}  // namespace
