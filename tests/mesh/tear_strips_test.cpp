// What runs on beneath the higher sides of tears.

#include <algorithm>
#include <cmath>
#include <vector>

#include <gtest/gtest.h>

#include "support/CStripJudge.h"
#include "support/CleanMeshBuilders.h"

namespace {

// Columns are one unit wide, rows 0.375.
constexpr double kWidth = 2.5;
constexpr double kRow = 7.4;

// The corners of the strips: where they are, their height, and the place of the picture that they show.
struct CStripPoint {
  double m_fColumn = 0.0;
  double m_fRow = 0.0;
  double m_fZ = 0.0;
  double m_fShownColumn = 0.0;
  double m_fShownRow = 0.0;
};

std::vector<CStripPoint> StripsOf(CTornGrid& grid, double width = kWidth) {
  const CCleanMesh mesh = grid.Mesh({.m_Gap = TearGap::Under, .m_fUnderWidth = width});
  std::vector<CStripPoint> points;
  for (const std::uint32_t v : mesh.Strips()) {
    const Vector3 p = mesh.Position(v);
    const auto [u, w] = mesh.Picture(v);
    points.push_back({grid.Lattice().ColumnOf(p.x), grid.Lattice().RowOf(p.y), p.z, 16 * u, 16 * w});
  }
  return points;
}

// From the tear, in widths.
double AwayOf(const CStripPoint& p) { return std::abs(p.m_fRow - kRow) * 0.375 / kWidth; }

double LeastRow(const std::vector<CStripPoint>& points) {
  return std::ranges::min_element(points, {}, &CStripPoint::m_fRow)->m_fRow;
}

double LargestRow(const std::vector<CStripPoint>& points) {
  return std::ranges::max_element(points, {}, &CStripPoint::m_fRow)->m_fRow;
}

}  // namespace

TEST(TearStripsTest, ContinuesThePlaneOfTheLowerSideAndMirrorsItsPicture) {
  // The lower side rises along the tear, the higher one lies above it.
  CTornGrid grid({{{{0.0, kRow}, {16.0, kRow}}}});
  grid.Raise([](int column, int row) { return row < kRow ? 0.5 * column : 20.0; });
  const std::vector<CStripPoint> strips = StripsOf(grid);
  ASSERT_FALSE(strips.empty());
  for (const CStripPoint& p : strips) {
    EXPECT_NEAR(p.m_fZ, 0.5 * p.m_fColumn, 1e-5);
    EXPECT_NEAR(p.m_fShownColumn, p.m_fColumn, 1e-5);
    EXPECT_NEAR(p.m_fShownRow, 2 * kRow - p.m_fRow, 1e-5);
  }
  EXPECT_NEAR(LeastRow(strips), kRow, 1e-5);
  // It is three eighths of a cell wider, and less where the width is more than a cell.
  EXPECT_GE(LargestRow(strips), kRow + kWidth / 0.375);
  EXPECT_LE(LargestRow(strips), kRow + (kWidth + 0.375 / kWidth) / 0.375 + 1e-5);
}

// Held to the border of the picture, all beyond it would show the same pixels, drawn out to streaks.
TEST(TearStripsTest, WhatLiesBeyondTheBorderShowsThePictureMirroredThere) {
  CTornGrid grid({{{{0.0, kRow}, {16.0, kRow}}}});
  grid.Raise([](int /*column*/, int row) { return row < kRow ? 0.0 : 4.0; });
  double farthest = 0.0;
  for (const CStripPoint& p : StripsOf(grid, 4.0)) {
    EXPECT_NEAR(p.m_fShownRow, std::abs(2 * kRow - p.m_fRow), 1e-5);
    farthest = std::min(farthest, 2 * kRow - p.m_fRow);
  }
  EXPECT_LT(farthest, -1.0);
}

TEST(TearStripsTest, EndsWhereTheHigherPieceEnds) {
  CTornGrid grid({{{{0.0, 7.4}, {16.0, 7.4}}}, {{{0.0, 10.7}, {16.0, 10.7}}}});
  grid.Raise([](int /*column*/, int row) { return row < 7.4 ? 0.0 : 5.0; });
  const std::vector<CStripPoint> strips = StripsOf(grid);
  EXPECT_NEAR(LeastRow(strips), 7.4, 1e-5);
  EXPECT_NEAR(LargestRow(strips), 10.7, 1e-5);
}

TEST(TearStripsTest, NothingRunsOnWhereBothSidesAreOneHeight) {
  CTornGrid grid({{{{0.0, kRow}, {16.0, kRow}}}});
  grid.Raise([](int column, int /*row*/) { return 0.25 * column; });
  EXPECT_TRUE(StripsOf(grid).empty());
}

TEST(TearStripsTest, StaysBelowTheHigherSideWhereItWouldRiseAboveIt) {
  // The lower side rises towards the tear, by more than the step within the width.
  CTornGrid grid({{{{0.0, kRow}, {16.0, kRow}}}});
  grid.Raise([](int /*column*/, int row) { return row < kRow ? 1.0 * row : 8.0; });
  const std::vector<CStripPoint> strips = StripsOf(grid);
  const double step = 8.0 - kRow;
  for (const CStripPoint& p : strips) {
    EXPECT_LE(p.m_fZ, std::min(p.m_fRow, 8.0 - step / 64) + 1e-5);
    // No farther below than all heights range, less where the tear is near.
    EXPECT_GE(p.m_fZ, std::min(p.m_fRow, 8.0 - std::max(step, 8.0 * AwayOf(p)) / 64) - 1e-5);
  }
}

// Where both sides are nearly one height the strip would else lie in the surface, and either would be seen in spots.
TEST(TearStripsTest, StaysClearOfTheHigherSideWhereTheStepIsNextToNothing) {
  CTornGrid grid({{{{0.0, kRow}, {16.0, kRow}}}});
  grid.Raise([](int column, int row) { return column + (row < kRow ? 0.0 : 1e-3); });
  const std::vector<CStripPoint> strips = StripsOf(grid);
  ASSERT_FALSE(strips.empty());
  for (const CStripPoint& p : strips) EXPECT_NEAR(p.m_fZ, p.m_fColumn - 16.0 * AwayOf(p) / 64, 2e-3);
}

TEST(TearStripsTest, NarrowsTowardsAnEndInsideTheSurface) {
  // Both sides are one height from three cells before the end on; what reaches beyond that is a round end.
  CTornGrid grid({{{{0.0, kRow}, {9.3, kRow}}}});
  grid.Raise([](int /*column*/, int row) { return row < kRow ? 0.0 : 4.0; });
  const std::vector<CStripPoint> strips = StripsOf(grid, 6.0);
  ASSERT_FALSE(strips.empty());
  for (const CStripPoint& p : strips) {
    const double behind = (p.m_fRow - kRow) * 0.375;
    EXPECT_LE(behind, std::max(9.3 - p.m_fColumn, 9.3 - 6.4) + 0.2);
    EXPECT_LE(std::hypot(std::max(p.m_fColumn - 6.6, 0.0), behind), 3.25);
  }
}

TEST(TearStripsTest, ChangesSidesWhereTheSurfacesDo) {
  // Above the tear 2 higher on the left and 2 lower on the right.
  CTornGrid grid({{{{0.0, kRow}, {16.0, kRow}}}});
  grid.Raise([](int column, int row) { return row < kRow ? 0.0 : (8.0 - column) / 4; });
  bool left = false;
  bool right = false;
  for (const CStripPoint& p : StripsOf(grid, 1.0)) {
    // What reaches beyond the change is a round end.
    EXPECT_TRUE(p.m_fColumn > 6.6 || p.m_fRow >= kRow - 1e-5) << p.m_fColumn << ' ' << p.m_fRow;
    EXPECT_TRUE(p.m_fColumn < 9.4 || p.m_fRow <= kRow + 1e-5) << p.m_fColumn << ' ' << p.m_fRow;
    left = left || (p.m_fColumn < 6 && p.m_fRow > kRow + 2);
    right = right || (p.m_fColumn > 10 && p.m_fRow < kRow - 2);
  }
  EXPECT_TRUE(left);
  EXPECT_TRUE(right);
}

TEST(TearStripsTest, SharesTheVerticesOfTheLowerSideAlongTheTear) {
  CTornGrid grid({{{{0.0, kRow}, {16.0, kRow}}}});
  grid.Raise([](int /*column*/, int row) { return row < kRow ? 0.0 : 4.0; });
  const CCleanMesh mesh = grid.Mesh({.m_Gap = TearGap::Under});
  std::size_t shared = 0;
  for (const std::uint32_t v : mesh.Strips())
    shared += std::ranges::find(mesh.Triangles(), v) != mesh.Triangles().end() ? 1 : 0;
  EXPECT_GE(shared, 16U);
}

TEST(TearStripsTest, RunsAnEighthOfTheLargerSideWhereNothingElseIsSaid) {
  EXPECT_DOUBLE_EQ(UnderWidthOf({.x0 = 0.0, .x1 = 32.0, .y0 = 0.0, .y1 = 6.0}), 4.0);
  EXPECT_DOUBLE_EQ(UnderWidthOf({.x0 = -1.0, .x1 = 0.0, .y0 = 0.0, .y1 = 64.0}), 8.0);
}
