#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
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
  const CDepthMap map = DepthMapOf(80, 80, [](double u, double) { return u < 0.5 ? 0 : 1; });
  // Between two points of a column, from the border to far beyond the filter.
  const Lines strip{{15.9, 3.0, 16.1, 3.0}, {15.9, 3.0, 15.9, 12.0}, {16.1, 3.0, 16.1, 12.0}};
  const std::vector<double> values = tree.Sample(map, strip);
  for (std::size_t i = 0; i < values.size(); ++i) EXPECT_FALSE(std::isnan(values[i])) << i;
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
