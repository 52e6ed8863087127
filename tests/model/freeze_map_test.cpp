#include <cmath>

#include <gtest/gtest.h>

#include "support/GridBuilders.h"
#include "support/UpdateBuilders.h"

namespace {

class FreezeMapTest : public ::testing::Test {
 protected:
  CGrid& Grid() { return m_Grid.m_Grid; }
  std::size_t FrozenCount() { return Grid().Surface().Lattice().Count(PointFlag::kFrozen); }
  // Whether exactly the points in use within `radius` of the place are frozen.
  void ExpectDisc(double x, double y, double radius) {
    const CLattice& lattice = Grid().Surface().Lattice();
    for (int row = 0; row < lattice.PointsPerSide(); ++row) {
      for (int column = 0; column < lattice.PointsPerSide(); ++column) {
        const std::size_t point = lattice.Index(column, row);
        const bool within = std::hypot(lattice.XOf(column) - x, lattice.YOf(row) - y) <= radius;
        EXPECT_EQ(lattice.Has(point, PointFlag::kFrozen), within && lattice.Has(point, PointFlag::kInUse))
            << column << ", " << row;
      }
    }
  }

  CGlobalScope<double> m_Zoom{g_fZoom, 1.0};
  CTestGrid m_Grid{4, 3};
};

}  // namespace

TEST_F(FreezeMapTest, BrushFreezesThePointsInUseWithinFourUnits) {
  Grid().PaintFreezeMap(4.5, 23, true);
  EXPECT_GT(FrozenCount(), 0U);
  ExpectDisc(4.5, 23, 4);
}

TEST_F(FreezeMapTest, BrushGrowsWithTheZoom) {
  g_fZoom = 2;
  Grid().PaintFreezeMap(4.5, 23, true);
  ExpectDisc(4.5, 23, 8);
}

TEST_F(FreezeMapTest, PointAtTheRimIsWithin) {
  g_fZoom = 0.5;  // a radius of 2, which is the distance of two points in x
  Grid().PaintFreezeMap(Grid().Surface().Lattice().XOf(8), Grid().Surface().Lattice().YOf(8), true);
  EXPECT_TRUE(Grid().Surface().Lattice().Has(Grid().Surface().Lattice().Index(10, 8), PointFlag::kFrozen));
  EXPECT_TRUE(Grid().Surface().Lattice().Has(Grid().Surface().Lattice().Index(6, 8), PointFlag::kFrozen));
}

TEST_F(FreezeMapTest, ClearingSetsTheSamePointsFree) {
  Grid().PaintFreezeMap(0, 22, true);
  Grid().PaintFreezeMap(10, 24, true);
  Grid().PaintFreezeMap(0, 22, false);
  Grid().PaintFreezeMap(10, 24, false);
  EXPECT_EQ(FrozenCount(), 0U);
}

TEST_F(FreezeMapTest, BrushMayLieOutsideOrCoverEverything) {
  Grid().PaintFreezeMap(-1000, 1e9, true);
  EXPECT_EQ(FrozenCount(), 0U);
  g_fZoom = 1e6;
  Grid().PaintFreezeMap(4, 23, true);
  EXPECT_EQ(FrozenCount(), 81U);
}

TEST_F(FreezeMapTest, NothingElseChanges) {
  const Operation operation = Grid().Run().NextOperation();
  const std::uint64_t revision = Grid().Marks().FreezeRevision();
  const std::size_t inUse = Grid().Surface().Lattice().Count(PointFlag::kInUse);
  Grid().PaintFreezeMap(4, 23, true);
  EXPECT_EQ(Grid().Run().NextOperation(), operation);
  EXPECT_EQ(Grid().Surface().Lattice().Count(PointFlag::kInUse), inUse);
  EXPECT_GT(Grid().Marks().FreezeRevision(), revision);
}
