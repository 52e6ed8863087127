#include "drawing/Minification.h"

#include <cmath>
#include <limits>

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

namespace {

constexpr double kDegree = 3.14159265358979323846 / 180;

// A view that shows 3 screen pixels per model unit, the model turned about its y axis and rolled.
CScreenAxes Turned(double turn, double roll = 0) {
  const double c = 3 * std::cos(roll * kDegree);
  const double s = 3 * std::sin(roll * kDegree);
  const double cosine = std::cos(turn * kDegree);
  const double sine = std::sin(turn * kDegree);
  return {{c * cosine, s * cosine}, {-s, c}, {c * sine, s * sine}};
}

// As many picture pixels per model unit, to the right and up.
constexpr CPlanePoint kPixel{1.0 / 12, 1.0 / 30};

void ExpectPixels(const CScreenAxes& axes, double x, double y) {
  const CPlanePoint pixels = PixelsPerScreenPixel(axes, kPixel);
  EXPECT_NEAR(pixels.x, x, 1e-9);
  EXPECT_NEAR(pixels.y, y, 1e-9);
}

}  // namespace

TEST(Minification, AxesComeFromMatricesAndViewport) {
  // A quarter turn, doubled, under a projection of half the length to the right and a tenth up.
  const std::array<double, 16> projection{0.5, 0, 0, 0, 0, 0.1, 0, 0, 0, 0, 1, 0, 7, 8, 9, 1};
  const std::array<double, 16> modelView{0, 2, 0, 0, -2, 0, 0, 0, 0, 0, 2, 0, 1, 2, 3, 1};
  const CScreenAxes axes = CScreenAxes::Of(projection, modelView, 40, 100);
  EXPECT_EQ(axes.m_X, (CPlanePoint{0, 10}));
  EXPECT_EQ(axes.m_Y, (CPlanePoint{-20, 0}));
  EXPECT_EQ(axes.m_Z, (CPlanePoint{0, 0}));
}

TEST(Minification, FromTheFrontItIsTheRatioOfThePixels) { ExpectPixels(Turned(0), 4, 10); }

TEST(Minification, ARollChangesNothing) {
  for (const double roll : {30.0, 45.0, 200.0}) ExpectPixels(Turned(0, roll), 4, 10);
}

TEST(Minification, AQuarterTurnSwapsNothing) {
  // The picture's sides go on the other sides of the screen, where a pixel is as large.
  ExpectPixels(Turned(0, 90), 4, 10);
}

TEST(Minification, TurningAwayAddsPixelsAlongOneSide) {
  ExpectPixels(Turned(60), 8, 10);
  ExpectPixels(Turned(-60, 30), 8, 10);
}

TEST(Minification, TurningFarAwayAddsNoMore) {
  ExpectPixels(Turned(80), 16, 10);
  ExpectPixels(Turned(90), 16, 10);
  // Both sides along one line of the screen.
  ExpectPixels({{2, 0}, {2, 0}, {1, 3}}, 16, 40);
}

TEST(Minification, StretchedViewsHaveRatiosOfTheirOwn) {
  // The image view: twice as many screen pixels per unit up as to the right.
  ExpectPixels({{3, 0}, {0, 6}, {}}, 4, 5);
}

TEST(Minification, WhereNothingIsDrawnThereAreNone) {
  ExpectPixels({}, 0, 0);
  EXPECT_EQ(PixelsPerScreenPixel(Turned(0), {0, 1}), CPlanePoint());
  const double nan = std::numeric_limits<double>::quiet_NaN();
  EXPECT_EQ(PixelsPerScreenPixel({{nan, nan}, {nan, nan}, {nan, nan}}, kPixel), CPlanePoint());
}

TEST(Reduction, BeginsBeyondTwoPixels) {
  EXPECT_EQ(ReductionFor({0, 0.01}), CReduction());
  EXPECT_EQ(ReductionFor({2, 1.99}), CReduction());
  EXPECT_EQ(ReductionFor({2.001, 2}), (CReduction{1, 0}));
  EXPECT_EQ(ReductionFor({4, 4.001}), (CReduction{1, 2}));
  EXPECT_EQ(ReductionFor({13.2, 9.9}), (CReduction{3, 3}));
}

TEST(Reduction, DoesNotDependOnRoundingInSinglePrecision) {
  EXPECT_EQ(ReductionFor({2 * (1 + 1e-6), 16 * (1 + 1e-6)}), (CReduction{0, 3}));
}

TEST(Reduction, HasAnEnd) {
  const double infinity = std::numeric_limits<double>::infinity();
  EXPECT_EQ(ReductionFor({infinity, std::numeric_limits<double>::quiet_NaN()}), (CReduction{30, 0}));
}

RC_GTEST_PROP(ReductionProperty, LeavesOneToTwoPixels, ()) {
  const double pixels = *rc::gen::inRange(2001, 100'000'000) / 1000.0;
  const double left = pixels / std::exp2(ReductionFor({pixels, 0}).m_iX);
  RC_ASSERT(left > 1 - 1e-4);
  RC_ASSERT(left < 2 + 1e-4);
}
