#include <algorithm>
#include <cmath>
#include <vector>

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include "base/AreaFilter.h"

namespace {

// Random bytes, more than the picture has between its rows.
struct CRandomRows {
  CRandomRows(int width, int height, std::size_t gap)
      : m_auBytes((3 * static_cast<std::size_t>(width) + gap) * static_cast<std::size_t>(height)),
        m_Rows{m_auBytes, width, height, 3 * static_cast<std::size_t>(width) + gap} {
    for (std::uint8_t& byte : m_auBytes) byte = *rc::gen::arbitrary<std::uint8_t>();
  }
  std::vector<std::uint8_t> m_auBytes;
  CPixelRows m_Rows;
};

std::uint8_t ByteOf(const CPixelRows& rows, int x, int y, int channel) {
  return rows.m_auBytes[static_cast<std::size_t>(y) * rows.m_uStride + 3 * static_cast<std::size_t>(x) +
                        static_cast<std::size_t>(channel)];
}

// The mean of a block, clipped to the picture, added up byte by byte.
int PlainMean(const CPixelRows& rows, int x0, int y0, int factorX, int factorY, int channel) {
  int sum = 0;
  int count = 0;
  for (int y = y0; y < std::min(y0 + factorY, rows.m_iHeight); ++y) {
    for (int x = x0; x < std::min(x0 + factorX, rows.m_iWidth); ++x, ++count) sum += ByteOf(rows, x, y, channel);
  }
  return static_cast<int>(std::floor(static_cast<double>(sum) / count + 0.5));
}

bool IsAreaMean(const CPixelRows& source, int factorX, int factorY, const CPicture& result) {
  for (int y = 0; y < result.m_iHeight; ++y) {
    for (int x = 0; x < result.m_iWidth; ++x) {
      for (int c = 0; c < 3; ++c) {
        const auto at = static_cast<std::size_t>(3 * (y * result.m_iWidth + x) + c);
        if (result.m_aPixels.at(at) != PlainMean(source, x * factorX, y * factorY, factorX, factorY, c)) return false;
      }
    }
  }
  return true;
}

int Up(int side, int factor) { return (side + factor - 1) / factor; }

RC_GTEST_PROP(AreaFilterProperty, EachPixelIsTheMeanOfWhatItCovers, ()) {
  const CRandomRows source(*rc::gen::inRange(1, 50), *rc::gen::inRange(1, 20), *rc::gen::inRange<std::size_t>(0, 5));
  const int factorX = *rc::gen::inRange(1, 20);
  const int factorY = *rc::gen::inRange(1, 20);
  const CPicture result = AreaFiltered(source.m_Rows, factorX, factorY);
  RC_ASSERT(result.m_iWidth == Up(source.m_Rows.m_iWidth, factorX));
  RC_ASSERT(result.m_iHeight == Up(source.m_Rows.m_iHeight, factorY));
  RC_ASSERT(result.m_aPixels.size() == static_cast<std::size_t>(3 * result.m_iWidth * result.m_iHeight));
  RC_ASSERT(IsAreaMean(source.m_Rows, factorX, factorY, result));
}

// A picture of one colour, wide or high.
std::vector<std::uint8_t> Plain(int pixels, std::uint8_t shade) {
  std::vector<std::uint8_t> picture(3 * static_cast<std::size_t>(pixels), shade);
  return picture;
}

TEST(AreaFilter, SumsOfManyRowsDoNotOverflow) {
  constexpr int kSide = 700;
  const std::vector<std::uint8_t> white = Plain(2 * kSide, 255);
  for (const int factor : {256, 257, 258, kSide}) {
    const CPicture high = AreaFiltered({white, 2, kSide, 6}, 2, factor);
    EXPECT_TRUE(std::ranges::all_of(high.m_aPixels, [](int byte) { return byte == 255; })) << factor;
    EXPECT_EQ(high.m_iHeight, Up(kSide, factor));
    const CPicture wide = AreaFiltered({white, kSide, 2, 3UL * kSide}, factor, 2);
    EXPECT_TRUE(std::ranges::all_of(wide.m_aPixels, [](int byte) { return byte == 255; })) << factor;
  }
}

TEST(AreaFilter, MeansAreRoundedToTheNearestAndUpFromTheMiddle) {
  const std::vector<std::uint8_t> bytes{0, 1, 2, 1, 1, 3, 0, 1, 2, 0, 2, 2};
  EXPECT_EQ(AreaFiltered({bytes, 2, 1, 6}, 2, 1).m_aPixels, (std::vector<std::uint8_t>{1, 1, 3}));
  EXPECT_EQ(AreaFiltered({bytes, 4, 1, 12}, 4, 1).m_aPixels, (std::vector<std::uint8_t>{0, 1, 2}));
}

TEST(AreaFilter, FactorsOfOneCopy) {
  const std::vector<std::uint8_t> bytes{1, 2, 3, 4, 5, 6, 0, 0, 7, 8, 9, 10, 11, 12};
  const std::vector<std::uint8_t> copy{1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12};
  EXPECT_EQ(AreaFiltered({bytes, 2, 2, 8}, 1, 1).m_aPixels, copy);
  EXPECT_EQ(AreaFiltered({bytes, 2, 2, 8}, 0, -3).m_aPixels, copy);
}

TEST(AreaFilter, FactorsBeyondTheSidesGiveOnePixel) {
  const std::vector<std::uint8_t> bytes{10, 20, 30, 20, 40, 60};
  const CPicture one = AreaFiltered({bytes, 2, 1, 6}, 1 << 30, 64);
  EXPECT_EQ(one.m_iWidth, 1);
  EXPECT_EQ(one.m_iHeight, 1);
  EXPECT_EQ(one.m_aPixels, (std::vector<std::uint8_t>{15, 30, 45}));
}

TEST(AreaFilter, WithoutPixelsThereIsNothing) {
  for (const auto& [width, height] : {std::pair{0, 5}, {5, 0}, {-1, 3}}) {
    const CPicture none = AreaFiltered({{}, width, height, 0}, 2, 2);
    EXPECT_EQ(none.m_iWidth, 0);
    EXPECT_TRUE(none.m_aPixels.empty());
  }
}

}  // namespace
