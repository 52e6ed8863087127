// Colour maps, and what an overlay is drawn from.

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <limits>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "drawing/COverlayPainter.h"
#include "drawing/OverlayValues.h"
#include "model/CSurfaceMesh.h"
#include "report/CSavedSurface.h"
#include "report/SurfaceHeights.h"
#include "support/ConstraintBuilders.h"
#include "support/CurveBuilders.h"
#include "support/TreeBuilders.h"
#include "support/UpdateBuilders.h"

namespace {

const double kNoValue = std::numeric_limits<double>::quiet_NaN();

// The lightness that eyes see, from the linear light of the colour [0, 1].
double Lightness(const std::array<std::uint8_t, 3>& colour) {
  constexpr std::array kShares{0.2126, 0.7152, 0.0722};
  double light = 0;
  for (std::size_t k = 0; k < colour.size(); ++k) light += kShares[k] * std::pow(colour[k] / 255.0, 2.2);
  return std::cbrt(light);
}

TEST(ColourMaps, PerceptualOneGrowsLighterAtAnEvenPace) {
  for (int k = 1; k <= 20; ++k) {
    const double step = Lightness(ColourAt(ColourMap::Perceptual, k / 20.0)) -
                        Lightness(ColourAt(ColourMap::Perceptual, (k - 1) / 20.0));
    EXPECT_NEAR(step, 0.035, 0.015) << k;
  }
}

TEST(ColourMaps, BlueWhiteRedIsWhiteInTheMiddleAndDarkAtBothEnds) {
  EXPECT_EQ(ColourAt(ColourMap::BlueWhiteRed, 0.5), (std::array<std::uint8_t, 3>{255, 255, 255}));
  const auto low = ColourAt(ColourMap::BlueWhiteRed, 0.0);
  const auto high = ColourAt(ColourMap::BlueWhiteRed, 1.0);
  EXPECT_GT(low[2], low[0] + 100);
  EXPECT_GT(high[0], high[2] + 100);
}

TEST(ColourMaps, WhatLiesBeyondIsTheNearestEnd) {
  for (const ColourMap map : {ColourMap::Perceptual, ColourMap::BlueWhiteRed}) {
    EXPECT_EQ(ColourAt(map, -3), ColourAt(map, 0));
    EXPECT_EQ(ColourAt(map, 7), ColourAt(map, 1));
    EXPECT_EQ(ColourAt(map, kNoValue), ColourAt(map, 0));
  }
}

class OverlayPainterTest : public ::testing::Test {
 protected:
  const CGrid& Grid() const { return m_Grid.m_Grid; }
  void Prepare() { m_Grid.m_Grid.PerformPendingWork(); }
  // The columns of the points over all of the lattice.
  COverlay Columns() const {
    COverlay overlay;
    overlay.m_fHigh = Grid().Surface().Lattice().PointsPerSide() - 1;
    overlay.m_uTree = Grid().Surface().Tree().Revision();
    const auto side = static_cast<std::uint32_t>(Grid().Surface().Lattice().PointsPerSide());
    for (std::size_t k = 0; k < Grid().Surface().Order().Count(); ++k)
      overlay.m_afAtPoints.push_back(Grid().Surface().Order().PointAtScan(k) % side);
    return overlay;
  }
  void Show(const COverlay& overlay) {
    m_Painter.Set(std::make_shared<const COverlay>(overlay), Grid().Surface().Tree(), Grid().Surface().Order());
  }

  CTestGrid m_Grid;
  COverlayPainter m_Painter;
};

TEST_F(OverlayPainterTest, InterpolatesOverTheLeaves) {
  Prepare();
  Show(Columns());
  const CLattice& lattice = Grid().Surface().Lattice();
  EXPECT_EQ(m_Painter.Triangles().size(), 12 * Grid().Surface().Tree().Leaves().size());
  for (std::size_t v = 0; v < m_Painter.Places().size(); ++v)
    EXPECT_NEAR(m_Painter.Places()[v], lattice.ColumnOf(m_Painter.Positions()[3 * v]) / 16, 1e-6);
}

TEST_F(OverlayPainterTest, LeavesOutWhatLiesInATear) {
  m_Grid.m_Grid.AddCurve(PointsAt({{0, 21}, {6, 24}}), kTear, false);
  Prepare();
  std::size_t torn = 0;
  for (const CLeaf& leaf : Grid().Surface().Tree().Leaves()) torn += leaf.m_uMarked != 0 ? 1 : 0;
  ASSERT_GT(torn, 0U);
  Show(Columns());
  CSurfaceMesh mesh;
  mesh.Build(Grid().Surface().Tree());
  EXPECT_EQ(m_Painter.Triangles().size(), mesh.Triangles().size());
}

TEST_F(OverlayPainterTest, LeavesOutWhatHasNoValue) {
  Prepare();
  COverlay overlay = Columns();
  overlay.m_afAtPoints.front() = kNoValue;
  Show(overlay);
  // The corner of one leaf, whose centre is the mean of all four.
  EXPECT_EQ(m_Painter.Triangles().size(), 12 * (Grid().Surface().Tree().Leaves().size() - 1));
}

TEST_F(OverlayPainterTest, ValuesOfAnotherSubdivisionAreNotShown) {
  Prepare();
  COverlay overlay = Columns();
  --overlay.m_uTree;
  Show(overlay);
  EXPECT_TRUE(m_Painter.Triangles().empty());
  EXPECT_NE(m_Painter.Shown(), nullptr);
}

// The window is not to be held up by them when the values come.
TEST_F(OverlayPainterTest, TrianglesAreMadeBeforeTheValuesAndKept) {
  Prepare();
  COverlay overlay = Columns();
  std::vector<double> columns;
  std::swap(columns, overlay.m_afAtPoints);
  Show(overlay);
  EXPECT_TRUE(m_Painter.Triangles().empty()) << "there is nothing to show yet";
  const float* positions = m_Painter.Positions().data();
  ASSERT_NE(positions, nullptr);
  overlay.m_afAtPoints = columns;
  Show(overlay);
  const std::uint32_t* triangles = m_Painter.Triangles().data();
  ASSERT_NE(triangles, nullptr);
  for (double& value : overlay.m_afAtPoints) value = overlay.m_fHigh - value;
  Show(overlay);
  EXPECT_EQ(m_Painter.Positions().data(), positions);
  EXPECT_EQ(m_Painter.Triangles().data(), triangles);
  EXPECT_EQ(m_Painter.Triangles().size(), 12 * Grid().Surface().Tree().Leaves().size());
  const CLattice& lattice = Grid().Surface().Lattice();
  for (std::size_t v = 0; v < m_Painter.Places().size(); ++v)
    EXPECT_NEAR(m_Painter.Places()[v], 1 - lattice.ColumnOf(m_Painter.Positions()[3 * v]) / 16, 1e-6);
  m_Painter.Set(nullptr, Grid().Surface().Tree(), Grid().Surface().Order());
  EXPECT_EQ(m_Painter.Positions().data(), nullptr) << "memory that nobody needs";
}

// The columns of the points, over the tree as it is.
void ExpectColumns(COverlayPainter& painter, CTestTree& test) {
  test.Settle();
  test.m_Tree.ListLeaves();
  COverlay overlay;
  overlay.m_fHigh = test.m_Lattice.PointsPerSide() - 1;
  overlay.m_uTree = test.m_Tree.Revision();
  const auto side = static_cast<std::uint32_t>(test.m_Lattice.PointsPerSide());
  for (std::size_t k = 0; k < test.m_Order.Count(); ++k)
    overlay.m_afAtPoints.push_back(test.m_Order.PointAtScan(k) % side);
  painter.Set(std::make_shared<const COverlay>(overlay), test.m_Tree, test.m_Order);
  CSurfaceMesh mesh;
  mesh.Build(test.m_Tree);
  std::vector<float> positions;
  mesh.Place(test.m_Tree, positions);
  EXPECT_TRUE(std::ranges::equal(painter.Triangles(), mesh.Triangles()));
  ASSERT_EQ(painter.Places().size(), mesh.VertexCount());
  ASSERT_EQ(painter.Positions().size(), positions.size());
  for (std::size_t v = 0; v < mesh.VertexCount(); ++v) {
    EXPECT_EQ(painter.Positions()[3 * v], positions[3 * v]);
    EXPECT_EQ(painter.Positions()[3 * v + 1], positions[3 * v + 1]);
    EXPECT_NEAR(painter.Places()[v], test.m_Lattice.ColumnOf(positions[3 * v]) / overlay.m_fHigh, 1e-6);
  }
}

TEST(OverlayPainter, MakesOtherTrianglesForEveryOtherTearSubdivisionAndRectangle) {
  CTestTree test(4, 2);
  COverlayPainter painter;
  ExpectColumns(painter, test);
  MakeLeaf(test.m_Tree, 0, 5, 9);
  ExpectColumns(painter, test);
  // A tear through leaves that stay, and gone again.
  CQuadT& leaf = *test.m_Tree.PointInCell_g(14, 14);
  leaf.SetFlags(1U << kTop);
  ExpectColumns(painter, test);
  const std::size_t torn = painter.Triangles().size();
  leaf.ClearFlags(1U << kTop);
  ExpectColumns(painter, test);
  EXPECT_EQ(painter.Triangles().size(), torn + 3);
  test.m_Lattice.SetExtent({0, 3, 0, 5});
  ExpectColumns(painter, test);
}

TEST(OverlayValues, MisfitIsNoneRightAfterSavingAndThenWhatHasChanged) {
  CConvergedGrid test;
  CSavedSurface saved;
  EXPECT_FALSE(MisfitOverlay(test.m_Grid, saved).m_bHasBar);
  saved.Take(test.m_Grid);
  for (const double value : MisfitOverlay(test.m_Grid, saved).m_afAtPoints) EXPECT_EQ(value, 0.0);
  const double before = SurfaceHeight(test.m_Grid, 3, 25);
  test.m_Grid.AddPtCstr(HeightCstr(3.5, 24.5, 8));
  ASSERT_TRUE(RunUntilPaused(test.m_Grid));
  const COverlay overlay = MisfitOverlay(test.m_Grid, saved);
  EXPECT_EQ(overlay.m_fLow, -overlay.m_fHigh);
  EXPECT_EQ(overlay.m_Map, ColourMap::BlueWhiteRed);
  EXPECT_NEAR(SurfaceHeight(test.m_Grid, 3, 25), before, 1e-4);
  EXPECT_GT(overlay.m_fHigh, 1.0);
}

TEST(OverlayValues, SurfaceOfAnotherExtentIsNotCompared) {
  CConvergedGrid test;
  CSavedSurface saved;
  saved.Take(test.m_Grid);
  EXPECT_TRUE(saved.IsComparable(test.m_Grid));
  test.m_Grid.Initialize(2, false, 0, 0, 7, 7);
  EXPECT_FALSE(saved.IsComparable(test.m_Grid));
}

TEST(OverlayValues, FloatingRegionsAreColouredByTheirFreeDirections) {
  CConvergedGrid test(5, 4);
  EXPECT_EQ(FloatingOverlay(test.m_Grid).m_Title, "No region floats");
  test.m_Grid.AddCurve(PointsAt({{3, 22}, {9, 22}, {9, 24.5}, {3, 24.5}}), kTear, true);
  test.m_Grid.PerformPendingWork();
  const COverlay overlay = FloatingOverlay(test.m_Grid);
  EXPECT_EQ(overlay.m_Title, "1 region floats:");
  // There is a slope in it.
  EXPECT_EQ(overlay.m_asNotes, std::vector<std::string>{"needs 1 height"});
  const CLattice& lattice = test.m_Grid.Surface().Lattice();
  const auto side = static_cast<std::uint32_t>(lattice.PointsPerSide());
  int inside = 0;
  for (std::size_t k = 0; k < overlay.m_afAtPoints.size(); ++k) {
    if (std::isnan(overlay.m_afAtPoints[k])) continue;
    const std::uint32_t point = test.m_Grid.Surface().Order().PointAtScan(k);
    const std::uint32_t row = point / side;
    EXPECT_EQ(overlay.m_afAtPoints[k], 1.0);
    EXPECT_NEAR(lattice.XOf(point % side), 6, 3.1);
    EXPECT_NEAR(lattice.YOf(row), 23.25, 1.3);
    ++inside;
  }
  EXPECT_GT(inside, 20);
}

TEST(OverlayValues, BendingIsTheDensityAndItsColoursLeaveOutTheSharpestPoints) {
  CConvergedGrid test(5, 4);
  const COverlay overlay = BendingOverlay(test.m_Grid);
  EXPECT_EQ(overlay.m_afAtPoints, BendingDensity(test.m_Grid));
  EXPECT_EQ(overlay.m_Map, ColourMap::Perceptual);
  EXPECT_EQ(overlay.m_fLow, 0.0);
  const auto above = std::ranges::count_if(overlay.m_afAtPoints, [&](double v) { return v > overlay.m_fHigh; });
  EXPECT_GT(above, 0);
  EXPECT_LE(above, static_cast<std::ptrdiff_t>(overlay.m_afAtPoints.size() / 100 + 1));
  EXPECT_TRUE(overlay.m_bHighIsOpen);
}

}  // namespace
