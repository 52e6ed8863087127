#include <algorithm>
#include <numeric>
#include <vector>

#include <gtest/gtest.h>

#include "base/CRandom.h"

namespace {

std::vector<double> Draw(CRandom& random, double limit, std::size_t count = 2000) {
  std::vector<double> values(count);
  for (double& v : values) v = random.UpTo(limit);
  return values;
}

std::vector<double> Draw(std::uint32_t seed, double limit) {
  CRandom random(seed);
  return Draw(random, limit);
}

TEST(RandomTest, ValuesLieBetweenZeroAndTheLimit) {
  for (const double limit : {1.0, 10.0 / 289, 1e-30, 1e30}) {
    const std::vector<double> values = Draw(3, limit);
    EXPECT_TRUE(std::ranges::all_of(values, [limit](double v) { return v >= 0 && v <= limit; })) << limit;
  }
}

TEST(RandomTest, ValuesFillTheRangeEvenly) {
  const std::vector<double> values = Draw(3, 8.0);
  for (int tenth = 0; tenth < 10; ++tenth) {
    const auto inTenth = [tenth](double v) { return v >= 0.8 * tenth && v < 0.8 * (tenth + 1); };
    EXPECT_NEAR(static_cast<double>(std::ranges::count_if(values, inTenth)), 200, 60) << tenth;
  }
  EXPECT_NEAR(std::accumulate(values.begin(), values.end(), 0.0) / 2000, 4.0, 0.25);
}

TEST(RandomTest, LimitZeroGivesZero) {
  CRandom random(5);
  EXPECT_EQ(random.UpTo(0.0), 0.0);
}

TEST(RandomTest, SameSeedGivesTheSameValues) { EXPECT_EQ(Draw(7, 2.0), Draw(7, 2.0)); }

TEST(RandomTest, OtherSeedsGiveOtherValues) {
  EXPECT_NE(Draw(7, 2.0), Draw(8, 2.0));
  EXPECT_NE(Draw(0, 2.0), Draw(1, 2.0));
}

TEST(RandomTest, ValuesDoNotRepeatThemselves) {
  std::vector<double> values = Draw(9, 1.0);
  std::ranges::sort(values);
  EXPECT_EQ(std::ranges::adjacent_find(values), values.end());
}

}  // namespace
