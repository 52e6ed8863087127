#include <cmath>
#include <limits>
#include <vector>

#include <gtest/gtest.h>

#include "reference/CDepthMap.h"
#include "support/DepthBuilders.h"

namespace {

constexpr float kNotANumber = std::numeric_limits<float>::quiet_NaN();

TEST(DepthMapTest, ValuesAreBroughtToMinusOneToOne) {
  const CDepthMap map(3, 2, 32, {10, 20, 30, 40, 50, 90});
  const CDepthReading reading(map, false);
  EXPECT_EQ(reading.KnownCount(), 6U);
  EXPECT_DOUBLE_EQ(reading.Low(), 10);
  EXPECT_DOUBLE_EQ(reading.High(), 90);
  EXPECT_DOUBLE_EQ(reading.At(0, 0), -1);
  EXPECT_DOUBLE_EQ(reading.At(2, 1), 1);
  EXPECT_DOUBLE_EQ(reading.At(1, 1), 0);
  EXPECT_DOUBLE_EQ(reading.Mean(), (40.0 - 50) / 40);
}

TEST(DepthMapTest, WhatIsNotFiniteIsNoValue) {
  const CDepthMap map(2, 2, 32, {kNotANumber, std::numeric_limits<float>::infinity(), 0, 4});
  const CDepthReading reading(map, true);
  EXPECT_EQ(reading.KnownCount(), 2U) << "0 among floats is a value";
  EXPECT_TRUE(std::isnan(reading.At(0, 0)));
  EXPECT_TRUE(std::isnan(reading.At(1, 0)));
  EXPECT_DOUBLE_EQ(reading.At(0, 1), -1);
}

TEST(DepthMapTest, ZeroAmongWholeNumbersIsAChoice) {
  const CDepthMap map(2, 2, 16, {0, 100, 200, 300});
  EXPECT_DOUBLE_EQ(CDepthReading(map, false).At(0, 0), -1);
  const CDepthReading reading(map, true);
  EXPECT_TRUE(std::isnan(reading.At(0, 0)));
  EXPECT_DOUBLE_EQ(reading.Low(), 100);
}

TEST(DepthMapTest, BetweenPixelsItIsBilinearAndBeyondThemLinear) {
  const CDepthMap map = DepthMapOf(4, 8, [](double u, double v) { return 4 * u + 16 * v; });
  const CDepthReading reading(map, false);
  for (const double u : {0.0, 0.1, 0.25, 0.6, 1.0}) {
    for (const double v : {0.0, 0.3, 0.9, 1.0}) {
      const double value = reading.Bilinear(reading.ColumnOf(u), reading.RowOf(v));
      EXPECT_NEAR(value, reading.Normalised(4 * u + 16 * v), 1e-12) << u << ' ' << v;
    }
  }
}

TEST(DepthMapTest, APixelWithoutValueLeavesItsSurroundingsWithoutOne) {
  const CDepthMap map(3, 2, 32, {1, 2, kNotANumber, 4, 5, 6});
  const CDepthReading reading(map, false);
  EXPECT_TRUE(std::isnan(reading.Bilinear(1.5, 0.5)));
  EXPECT_FALSE(std::isnan(reading.Bilinear(0.5, 0.5)));
  EXPECT_FALSE(std::isnan(reading.Bilinear(1.0, 0.5))) << "it has no weight here";
}

TEST(DepthMapTest, OneValueEverywhereIsInTheMiddle) {
  const CDepthMap map(2, 2, 8, {7, 7, 7, 7});
  const CDepthReading reading(map, false);
  EXPECT_EQ(reading.At(1, 1), 0.0);
  EXPECT_EQ(reading.Mean(), 0.0);
}

TEST(DepthMapTest, HolesAreFilledFromTheirNeighbours) {
  const CDepthMap map(4, 1 + 1, 32, {1, kNotANumber, kNotANumber, 4, 1, kNotANumber, kNotANumber, 4});
  EXPECT_EQ(CDepthReading(map, false).Filled(), (std::vector<float>{1, 1, 4, 4, 1, 1, 4, 4}));
  const CDepthMap none(2, 2, 32, {kNotANumber, kNotANumber, kNotANumber, kNotANumber});
  EXPECT_EQ(CDepthReading(none, false).Filled(), std::vector<float>(4, 0.0F));
}

TEST(DepthMapTest, TheLargestNumbersAreFilledInAsWell) {
  constexpr float kLarge = 3e38F;
  const CDepthMap map(2, 2, 32, {kLarge, kNotANumber, kNotANumber, kLarge});
  EXPECT_EQ(CDepthReading(map, false).Filled(), std::vector<float>(4, kLarge));
  EXPECT_DOUBLE_EQ(CDepthReading(map, false).Mean(), 0.0);
}

TEST(DepthMapTest, MapsAreComparedBitByBit) {
  const CDepthMap map(2, 1, 32, {kNotANumber, 1});
  EXPECT_TRUE(map == CDepthMap(2, 1, 32, {kNotANumber, 1}));
  EXPECT_FALSE(map == CDepthMap(1, 2, 32, {kNotANumber, 1}));
  EXPECT_FALSE(map == CDepthMap(2, 1, 32, {kNotANumber, 2}));
}

}  // namespace
