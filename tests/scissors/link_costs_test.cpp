#include <cmath>
#include <cstddef>
#include <numbers>

#include <gtest/gtest.h>

#include "lighting/CTextureImages.h"
#include "scissors/CLinkCosts.h"
#include "support/ScissorsBuilders.h"

namespace {

constexpr double kTolerance = 2e-5;  // single precision, costs up to 255

double Channel(const CTopDownImage& image, int column, int row, int channel) {
  return image.ColourAt({column, row})[static_cast<std::size_t>(channel)];
}

// The two ends of a link and the pixels on either side of it, found by turning the rule of the first straight and the
// first diagonal link by quarter turns: (x, y) becomes (y, -x).
CPixelPosition Turned(CPixelPosition step, int quarters) {
  for (; quarters > 0; --quarters) step = {step.m_iRow, -step.m_iColumn};
  return step;
}

double DerivativeOf(const CTopDownImage& image, CPixelPosition p, int link) {
  const auto at = [&](CPixelPosition step, int channel) {
    const CPixelPosition turned = Turned(step, link / 2);
    return Channel(image, p.m_iColumn + turned.m_iColumn, p.m_iRow + turned.m_iRow, channel);
  };
  double sum = 0;
  for (int c = 0; c < 3; ++c) {
    const double d = link % 2 == 0 ? std::abs(at({0, -1}, c) + at({1, -1}, c) - at({0, 1}, c) - at({1, 1}, c)) * 0.25
                                   : std::abs(at({1, 0}, c) - at({0, -1}, c)) * 0.5;
    sum += d * d;
  }
  return std::sqrt(sum / 3);
}

bool IsInside(const CTopDownImage& image, CPixelPosition p) {
  return p.m_iColumn >= 2 && p.m_iColumn < image.m_iWidth - 2 && p.m_iRow >= 2 && p.m_iRow < image.m_iHeight - 2;
}

template <typename Visit>
void ForEachPixel(const CTopDownImage& image, Visit&& visit) {
  for (int row = 0; row < image.m_iHeight; ++row) {
    for (int column = 0; column < image.m_iWidth; ++column) visit(CPixelPosition{column, row});
  }
}

double MaximumOf(const CTopDownImage& image) {
  double maximum = 0;
  ForEachPixel(image, [&](CPixelPosition p) {
    if (!IsInside(image, p)) return;
    for (int link = 0; link < kLinkCount; ++link) maximum = std::max(maximum, DerivativeOf(image, p, link));
  });
  return maximum;
}

void ExpectCostsByTheRule(const CTopDownImage& image) {
  const CLinkCosts costs = ComputeLinkCosts(image);
  const double maximum = MaximumOf(image);
  EXPECT_NEAR(costs.m_fMaximum, maximum, kTolerance);
  ForEachPixel(image, [&](CPixelPosition p) {
    for (int link = 0; link < kLinkCount; ++link) {
      const double derivative = IsInside(image, p) ? DerivativeOf(image, p, link) : 0;
      const double length = link % 2 == 0 ? 1 / std::numbers::sqrt2 : 1;
      ASSERT_NEAR(costs.Cost(p, link), (maximum - derivative) * length, kTolerance)
          << p.m_iColumn << ' ' << p.m_iRow << " link " << link;
    }
  });
}

}  // namespace

TEST(LinkStepsTest, NeighboursGoRoundFromTheRight) {
  constexpr std::array<std::array<int, 2>, 8> kSteps{
      {{1, 0}, {1, -1}, {0, -1}, {-1, -1}, {-1, 0}, {-1, 1}, {0, 1}, {1, 1}}};
  for (std::size_t k = 0; k < kSteps.size(); ++k) {
    EXPECT_EQ(kLinkSteps[k], (CPixelPosition{kSteps[k][0], kSteps[k][1]})) << k;
  }
}

TEST(LinkCostsTest, RandomPicturesFollowTheRule) {
  for (const auto& [width, height] : {std::pair{9, 7}, {5, 5}, {5, 12}, {17, 6}, {6, 6}, {33, 20}}) {
    ExpectCostsByTheRule(RandomTopDownImage(width, height, static_cast<unsigned>(width)));
  }
}

TEST(LinkCostsTest, StraightDerivativeSetsThePairsOnBothSidesAgainstEachOther) {
  const CTopDownImage image = TopDownImageOf(7, 7, [](int, int row) {
    return row < 3 ? std::array{200, 100, 40} : std::array{0, 0, 0};
  });
  const CLinkCosts costs = ComputeLinkCosts(image);
  const double derivative = std::sqrt((200.0 * 200 + 100 * 100 + 40 * 40) / 3) / 2;
  EXPECT_NEAR(costs.m_fMaximum, derivative, kTolerance);
  EXPECT_NEAR(costs.Cost({3, 3}, 0), 0, kTolerance);  // along the edge
  EXPECT_NEAR(costs.Cost({3, 3}, 2), derivative / std::numbers::sqrt2, kTolerance);
}

TEST(LinkCostsTest, LinkCostsTheSameFromBothOfItsInnerPixels) {
  const CTopDownImage image = RandomTopDownImage(12, 11, 3);
  const CLinkCosts costs = ComputeLinkCosts(image);
  ForEachPixel(image, [&](CPixelPosition p) {
    for (int link = 0; link < kLinkCount; ++link) {
      const CPixelPosition& step = kLinkSteps[static_cast<std::size_t>(link)];
      const CPixelPosition q{p.m_iColumn + step.m_iColumn, p.m_iRow + step.m_iRow};
      if (!IsInside(image, p) || !IsInside(image, q)) continue;
      EXPECT_EQ(costs.Cost(p, link), costs.Cost(q, (link + 4) % 8));
    }
  });
}

TEST(LinkCostsTest, StrongEdgeOfTheMarginCountsFromItsInnerPixelOnly) {
  const CTopDownImage image = RandomTopDownImage(8, 8, 5);
  const CLinkCosts costs = ComputeLinkCosts(image);
  EXPECT_EQ(costs.Cost({1, 4}, 0), costs.PlainCost(0));
  EXPECT_LT(costs.Cost({2, 4}, 4), costs.PlainCost(4));
}

TEST(LinkCostsTest, MarginCostsTheMaximumTimesTheLength) {
  const CLinkCosts costs = ComputeLinkCosts(RandomTopDownImage(10, 9, 1));
  for (const CPixelPosition p : {CPixelPosition{0, 0}, {1, 4}, {8, 4}, {5, 1}, {5, 7}, {9, 8}}) {
    for (int link = 0; link < kLinkCount; ++link) {
      const double length = link % 2 == 0 ? 1 / std::numbers::sqrt2 : 1;
      EXPECT_NEAR(costs.Cost(p, link), costs.m_fMaximum * length, kTolerance);
    }
  }
}

TEST(LinkCostsTest, UniformPictureCostsTheSameEverywhere) {
  const CTopDownImage image = GreyPicture(9, 8);
  const CLinkCosts costs = ComputeLinkCosts(image);
  EXPECT_GT(costs.m_fMaximum, 0.0F);
  ForEachPixel(image, [&](CPixelPosition p) {
    for (int link = 0; link < kLinkCount; ++link) EXPECT_EQ(costs.Cost(p, link), costs.PlainCost(link));
  });
  EXPECT_EQ(costs.PlainCost(1), costs.m_fMaximum);
  EXPECT_NEAR(costs.PlainCost(0), costs.m_fMaximum / std::numbers::sqrt2, kTolerance);
}

TEST(LinkCostsTest, PictureWithoutAnInsideIsUniform) {
  for (const auto& [width, height] : {std::pair{1, 1}, {4, 9}, {9, 4}, {1, 20}, {3, 2}}) {
    const CLinkCosts costs = ComputeLinkCosts(RandomTopDownImage(width, height, 2));
    EXPECT_EQ(costs.Cost({0, 0}, 0), costs.PlainCost(0));
    EXPECT_EQ(costs.m_fMaximum, 1.0F);
  }
}

TEST(TopDownImageTest, CopyReversesTheRowsAndDropsThePadding) {
  CTextureImages images;
  images.SetPicture({3, 2, {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16, 17, 18}});
  const CTopDownImage copy = CopyPhotograph(images);
  EXPECT_EQ(copy.m_iWidth, 3);
  EXPECT_EQ(copy.m_iHeight, 2);
  EXPECT_EQ(copy.m_aPixels, (std::vector<std::uint8_t>{10, 11, 12, 13, 14, 15, 16, 17, 18, 1, 2, 3, 4, 5, 6, 7, 8, 9}));
  EXPECT_EQ(copy.ColourAt({2, 1}), (std::array<std::uint8_t, 3>{7, 8, 9}));
}

TEST(TopDownImageTest, CopyOfNoPictureIsEmpty) {
  const CTopDownImage copy = CopyPhotograph({});
  EXPECT_TRUE(copy.m_aPixels.empty());
  EXPECT_EQ(copy.m_iWidth, 0);
  EXPECT_EQ(copy.m_iHeight, 0);
}
