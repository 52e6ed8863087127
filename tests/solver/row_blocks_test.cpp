// How rows are told off into blocks, beside a choice that compares all of them with each other.

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <random>
#include <span>
#include <vector>

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include "solver/CRowTree.h"
#include "solver/RowBlocks.h"

namespace {

using Places = std::vector<CRowPlace>;

constexpr int kArrangements = 4;

// Anywhere, in three clusters, in five points, or on a line.
CRowPlace RandomPlace(int arrangement, std::mt19937& random) {
  std::uniform_real_distribution<double> share(0.0, 1.0);
  const double cluster = 0.2 + 0.3 * static_cast<double>(random() % 3);
  switch (arrangement) {
    case 0:
      return {share(random), share(random), false};
    case 1:
      return {cluster + 1e-5 * share(random), 1.0 - cluster + 1e-7 * share(random), false};
    case 2:
      return {static_cast<double>(random() % 5) / 4, 0.5, false};
    default:
      return {share(random), 0.375, false};
  }
}
Places RandomPlaces(int arrangement, std::size_t count, std::uint32_t seed) {
  std::mt19937 random(seed);
  Places places(count);
  for (CRowPlace& place : places) place = RandomPlace(arrangement, random);
  return places;
}

CRowBox BoxAround(const Places& places, std::span<const std::uint32_t> rows) {
  CRowBox box;
  for (const std::uint32_t j : rows) box.Add(places[j]);
  return box;
}

std::vector<CRowTree::CFound> NearestOfAll(const Places& places, const CRowBox& box, std::size_t limit,
                                           std::size_t count) {
  std::vector<CRowTree::CFound> all;
  for (std::uint32_t rank = 0; rank < std::min(limit, places.size()); ++rank)
    all.push_back({box.DistanceTo(places[rank]), rank});
  std::sort(all.begin(), all.end());
  all.resize(std::min(count, all.size()));
  return all;
}

RC_GTEST_PROP(RowTreeProperty, NearestAreThoseOfAComparisonOfAll, ()) {
  const auto seed = *rc::gen::arbitrary<std::uint32_t>();
  const Places places = RandomPlaces(*rc::gen::inRange(0, kArrangements), *rc::gen::inRange<std::size_t>(0, 200), seed);
  const Places corners =
      RandomPlaces(*rc::gen::inRange(0, kArrangements), *rc::gen::inRange<std::size_t>(1, 4), seed + 1);
  CRowBox box;
  for (const CRowPlace& corner : corners) box.Add(corner);
  CRowTree tree(places);
  std::vector<CRowTree::CFound> found;
  for (int query = 0; query < 5; ++query) {
    const auto limit = *rc::gen::inRange<std::uint32_t>(0, 210);
    const auto count = *rc::gen::inRange<std::size_t>(0, 30);
    tree.FindNearest(box, limit, count, found);
    RC_ASSERT(found == NearestOfAll(places, box, limit, count));
  }
}

RC_GTEST_PROP(RowBlocksProperty, EveryRowIsInOneBlockAfterTheNearestOfEarlierOnes, ()) {
  const CRowBlockSizes sizes{4, 3, 5};
  Places places = RandomPlaces(*rc::gen::inRange(0, kArrangements), *rc::gen::inRange<std::size_t>(0, 60),
                               *rc::gen::arbitrary<std::uint32_t>());
  for (CRowPlace& place : places) place.m_bSlope = *rc::gen::arbitrary<bool>();
  Places ranked;
  std::vector<std::uint32_t> order;
  for (const CRowBlock& block : ChooseRowBlocks(places, sizes)) {
    RC_ASSERT(block.OwnCount() > 0 && block.OwnCount() <= (order.empty() ? sizes.m_uFirst : sizes.m_uOwn));
    const auto own = std::span(block.m_auRows).subspan(block.m_uEarlier);
    const auto nearest = NearestOfAll(ranked, BoxAround(places, own), ranked.size(), sizes.m_uEarlier);
    RC_ASSERT(nearest.size() == block.m_uEarlier);
    for (std::size_t k = 0; k < nearest.size(); ++k) RC_ASSERT(block.m_auRows[k] == order[nearest[k].m_uRank]);
    const auto inside = std::ranges::count(nearest, 0.0, &CRowTree::CFound::m_fDistance);
    RC_ASSERT(own.size() == 1 || inside <= static_cast<std::ptrdiff_t>(sizes.m_uEarlier / 2));
    for (const std::uint32_t j : own) {
      const bool afterSlope = !ranked.empty() && ranked.back().m_bSlope;
      RC_ASSERT(places[j].m_bSlope || !afterSlope);
      order.push_back(j);
      ranked.push_back(places[j]);
    }
  }
  std::sort(order.begin(), order.end());
  RC_ASSERT(order.size() == places.size());
  for (std::uint32_t j = 0; j < order.size(); ++j) RC_ASSERT(order[j] == j);
}

TEST(RowBlocksTest, FirstRowsAreFarApart) {
  Places places;
  for (int i = 0; i < 16; ++i) {
    for (int k = 0; k < 16; ++k) places.push_back({(i + 0.5) / 16, (k + 0.5) / 16, false});
  }
  const std::vector<CRowBlock> blocks = ChooseRowBlocks(places, {16, 8, 8});
  const std::vector<std::uint32_t>& first = blocks.front().m_auRows;
  ASSERT_EQ(first.size(), 16U);
  const auto distance = [&](std::uint32_t a, std::uint32_t b) {
    return std::hypot(places[a].m_fX - places[b].m_fX, places[a].m_fY - places[b].m_fY);
  };
  for (const std::uint32_t a : first) {
    for (const std::uint32_t b : first) EXPECT_TRUE(a == b || distance(a, b) >= 0.25 - 1e-12) << a << ' ' << b;
  }
}

// As many as curves may generate. A choice that compares all of them would take minutes.
TEST(RowBlocksTest, TwoHundredThousandRowsAreSoonToldOff) {
  constexpr std::size_t kCount = 200000;
  std::mt19937 random(1);
  Places places(kCount);
  for (std::size_t j = 0; j < kCount; ++j) {
    places[j] = RandomPlace(static_cast<int>(j % kArrangements), random);
    places[j].m_bSlope = j % 3 == 0;
  }
  std::vector<bool> seen(kCount);
  std::size_t rows = 0;
  for (const CRowBlock& block : ChooseRowBlocks(places, {256, 3, 11})) {
    for (const std::uint32_t j : std::span(block.m_auRows).subspan(block.m_uEarlier)) {
      ASSERT_FALSE(seen[j]);
      seen[j] = true;
      ++rows;
    }
  }
  EXPECT_EQ(rows, kCount);
}

}  // namespace
