#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "reference/CDepthMap.h"
#include "reference/CValueSampler.h"
#include "support/DepthBuilders.h"
#include "support/GridBuilders.h"
#include "support/TreeBuilders.h"

namespace {

using Lines = std::vector<CGridSegment>;

struct CSampledTree : CTestTree {
  CSampledTree(int level, int startLevel) : CTestTree(level, startLevel) {
    Settle();
    m_Tree.ListLeaves();
  }
  std::vector<double> Sample(const CDepthMap& map, const Lines& tears = {}) const {
    const CDepthReading reading(map, false);
    std::vector<double> values;
    CValueSampler(reading, m_Tree, m_Order, tears).Sample(values);
    return values;
  }
  double ColumnOf(std::size_t position) const {
    return static_cast<double>(m_Order.PointAtScan(position) % static_cast<std::uint32_t>(m_Order.PointsPerSide()));
  }
  double RowOf(std::size_t position) const {
    const std::uint32_t row = m_Order.PointAtScan(position) / static_cast<std::uint32_t>(m_Order.PointsPerSide());
    return row;
  }
};

// Whether the ways from a to b and along the line cross.
bool Crosses(const CPlanePoint& a, const CPlanePoint& b, const CGridSegment& line) {
  const auto turn = [](double ax, double ay, double bx, double by, double cx, double cy) {
    return (bx - ax) * (cy - ay) - (by - ay) * (cx - ax) > 0;
  };
  return turn(a.x, a.y, b.x, b.y, line.x0, line.y0) != turn(a.x, a.y, b.x, b.y, line.x1, line.y1) &&
         turn(line.x0, line.y0, line.x1, line.y1, a.x, a.y) != turn(line.x0, line.y0, line.x1, line.y1, b.x, b.y);
}

// The value of the nearest pixel, in pixels, that no tear parts from a place on a lattice of 32 steps, by trying all.
double NearestSeen(const CDepthReading& reading, const CPlanePoint& place, const Lines& tears) {
  double nearest = HUGE_VAL;
  double value = 0.0;
  for (int row = 0; row < reading.Height(); ++row) {
    for (int column = 0; column < reading.Width(); ++column) {
      const CPlanePoint pixel{(column + 0.5) / reading.Width() * 32, (row + 0.5) / reading.Height() * 32};
      const auto parts = [&](const CGridSegment& line) { return Crosses(place, pixel, line); };
      const double distance = std::hypot((pixel.x - place.x) * reading.Width(), (pixel.y - place.y) * reading.Height());
      if (distance >= nearest || std::ranges::any_of(tears, parts)) continue;
      nearest = distance;
      value = reading.At(column, row);
    }
  }
  return value;
}

TEST(ValueSamplerTest, PlanesStayPlanesAtAnySpacing) {
  for (const int startLevel : {2, 4}) {
    const CSampledTree tree(4, startLevel);
    for (const int size : {5, 16, 61, 200}) {
      const CDepthMap map = DepthMapOf(size, 2 * size, [](double u, double v) { return 3 * u - 8 * v; });
      const CDepthReading reading(map, false);
      const std::vector<double> values = tree.Sample(map);
      for (std::size_t i = 0; i < values.size(); ++i)
        ASSERT_NEAR(values[i], reading.Normalised(3 * tree.ColumnOf(i) / 16 - 8 * tree.RowOf(i) / 16), 1e-6)
            << size << ' ' << i;
    }
  }
}

TEST(ValueSamplerTest, NoiseOfSinglePixelsIsFilteredWhereThePointsAreApart) {
  const CSampledTree tree(4, 4);
  const CDepthMap map = DepthMapOf(
      320, 320, [](double u, double v) { return (static_cast<int>(u * 320) + static_cast<int>(v * 320)) % 2; });
  for (std::size_t i = 0; const double value : tree.Sample(map)) {
    const bool inside = tree.ColumnOf(i) > 0 && tree.ColumnOf(i) < 16 && tree.RowOf(i) > 0 && tree.RowOf(i) < 16;
    EXPECT_TRUE(!inside || std::abs(value) < 0.02) << i;
    ++i;
  }
}

// Noise of one to either side, by a hash of the pixel; root mean squares over the inner points and those of the border.
TEST(ValueSamplerTest, NoiseIsFilteredOnTheBorderAsWell) {
  const CSampledTree tree(4, 4);
  const CDepthMap map = DepthMapOf(320, 320, [](double u, double v) {
    auto hash = static_cast<std::uint32_t>(u * 320) * 2654435761U ^ static_cast<std::uint32_t>(v * 320) * 2246822519U;
    hash = (hash ^ hash >> 15U) * 3266489917U;
    return ((hash ^ hash >> 13U) & 1U) == 0 ? -1.0 : 1.0;
  });
  double inside = 0.0;
  double border = 0.0;
  int count = 0;
  for (std::size_t i = 0; const double value : tree.Sample(map)) {
    const double column = tree.ColumnOf(i);
    const double row = tree.RowOf(i);
    ++i;
    if (column > 0 && column < 16 && row > 0 && row < 16) {
      inside += value * value / (15 * 15);
      continue;
    }
    border += value * value / 64;
    ++count;
    EXPECT_LT(std::abs(value), 0.5) << column << ' ' << row;
  }
  EXPECT_EQ(count, 64);
  EXPECT_LT(std::sqrt(inside), 0.08);
  EXPECT_LT(std::sqrt(border), 3 * std::sqrt(inside));
}

TEST(ValueSamplerTest, PlanesStayPlanesOverMapsOfAnyProportions) {
  const CSampledTree tree(4, 2);
  for (const auto& [width, height] : {std::pair{640, 2}, {3, 500}, {900, 9}}) {
    const CDepthMap map = DepthMapOf(width, height, [](double u, double v) { return 2 * v - 5 * u; });
    const CDepthReading reading(map, false);
    const std::vector<double> values = tree.Sample(map);
    for (std::size_t i = 0; i < values.size(); ++i)
      ASSERT_NEAR(values[i], reading.Normalised(2 * tree.RowOf(i) / 16 - 5 * tree.ColumnOf(i) / 16), 1e-5)
          << width << ' ' << height << ' ' << i;
  }
}

// A step along a line at a slant, far from whole pixels.
TEST(ValueSamplerTest, NoPixelBeyondATearCounts) {
  const CSampledTree tree(4, 3);
  const auto side = [](double column, double row) { return row - 2.2 - 0.71 * column > 0; };
  const CDepthMap map = DepthMapOf(500, 300, [&](double u, double v) { return side(16 * u, 16 * v) ? 5 : -3; });
  const std::vector<double> values = tree.Sample(map, {{0, 2.2, 16, 2.2 + 0.71 * 16}});
  for (std::size_t i = 0; i < values.size(); ++i)
    EXPECT_NEAR(values[i], side(tree.ColumnOf(i), tree.RowOf(i)) ? 1 : -1, 1e-6) << i;
  const std::vector<double> across = tree.Sample(map);
  EXPECT_GT(LargestDifference(across, values), 0.3) << "the tear makes a difference";
}

// On the point itself there is a loop so small that no pixel lies in it.
TEST(ValueSamplerTest, WithoutAPixelInSightThePointHasNoValue) {
  const CSampledTree tree(4, 2);
  const CDepthMap map = DepthMapOf(160, 160, [](double u, double) { return u; });
  constexpr double kHalf = 0.03;
  const Lines loop{{8 - kHalf, 8 - kHalf, 8 + kHalf, 8 - kHalf},
                   {8 + kHalf, 8 - kHalf, 8 + kHalf, 8 + kHalf},
                   {8 + kHalf, 8 + kHalf, 8 - kHalf, 8 + kHalf},
                   {8 - kHalf, 8 + kHalf, 8 - kHalf, 8 - kHalf}};
  const std::vector<double> values = tree.Sample(map, loop);
  for (std::size_t i = 0; i < values.size(); ++i)
    EXPECT_EQ(std::isnan(values[i]), tree.ColumnOf(i) == 8 && tree.RowOf(i) == 8) << i;
}

// A strip narrower than the distance of two points, with the nearest pixels of its own farther away than those beyond.
TEST(ValueSamplerTest, TheNearestPixelInSightServesWhereThereIsNoneAround) {
  const CSampledTree tree(5, 5);
  // No two pixels have one value.
  const CDepthMap map = DepthMapOf(80, 80, [](double u, double v) { return u + 100 * v; });
  const CDepthReading reading(map, false);
  // Around points of a column, open far beyond their filter, and a bit nearer to the pixels on their left.
  const Lines strip{{15.83, 3.0, 16.1, 3.0}, {15.83, 3.0, 15.83, 12.0}, {16.1, 3.0, 16.1, 12.0}};
  const std::vector<double> values = tree.Sample(map, strip);
  int inStrip = 0;
  for (std::size_t i = 0; i < values.size(); ++i) {
    EXPECT_FALSE(std::isnan(values[i])) << i;
    const double row = tree.RowOf(i);
    // Half a step below its end a filter sees pixels beyond it.
    if (tree.ColumnOf(i) != 16 || row < 4 || row > 11) continue;
    ++inStrip;
    EXPECT_EQ(values[i], NearestSeen(reading, {16, row}, strip)) << row;
  }
  EXPECT_EQ(inStrip, 8);
}

TEST(ValueSamplerTest, HolesLeavePointsWithoutAValue) {
  const CSampledTree tree(4, 4);
  const auto hole = [](double u, double v) {
    return u > 0.3 && u < 0.7 && v > 0.3 && v < 0.7 ? std::numeric_limits<double>::quiet_NaN() : u;
  };
  for (const int size : {24, 160}) {
    const std::vector<double> values = tree.Sample(DepthMapOf(size, size, hole));
    for (std::size_t i = 0; i < values.size(); ++i) {
      const double u = tree.ColumnOf(i) / 16;
      const double v = tree.RowOf(i) / 16;
      const double depth = std::min(0.2 - std::abs(u - 0.5), 0.2 - std::abs(v - 0.5));
      EXPECT_TRUE(std::abs(depth) < 0.05 || std::isnan(values[i]) == (depth > 0)) << size << ' ' << i;
    }
  }
}

}  // namespace
