#include <string>

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include "formats/PngBytes.h"

namespace {

CPicture PictureOf(int width, int height, unsigned seed) {
  CPicture picture{width, height, {}};
  for (int k = 0; k < 3 * width * height; ++k)
    picture.m_aPixels.push_back(static_cast<std::uint8_t>((seed = seed * 1664525U + 1013904223U) >> 24));
  return picture;
}

}  // namespace

RC_GTEST_PROP(PngBytesProperty, EveryPictureComesBack, (unsigned seed)) {
  const CPicture picture = PictureOf(*rc::gen::inRange(1, 40), *rc::gen::inRange(1, 40), seed);
  const std::string bytes = PngOf(picture);
  RC_ASSERT(IsPng(bytes));
  const std::optional<CPicture> back = PictureOfPng(bytes);
  RC_ASSERT(back.has_value());
  RC_ASSERT(back->m_iWidth == picture.m_iWidth);
  RC_ASSERT(back->m_iHeight == picture.m_iHeight);
  RC_ASSERT(back->m_aPixels == picture.m_aPixels);
}

TEST(PngBytesTest, WhatIsNoWholePngIsRefused) {
  const std::string bytes = PngOf(PictureOf(20, 10, 1));
  for (std::size_t length = 0; length < bytes.size() - 12; ++length)
    EXPECT_FALSE(PictureOfPng(bytes.substr(0, length)).has_value()) << length;
  EXPECT_FALSE(PictureOfPng("BM and so on").has_value());
  EXPECT_EQ(PngOf({}), "");
}

TEST(PngBytesTest, AHugePictureInAFewBytesIsRefused) {
  std::string bytes = PngOf(PictureOf(1, 1, 1));
  // The width, after the signature, the length and the name of the first chunk.
  bytes.replace(16, 8, std::string("\x0f\xff\xff\xff\x0f\xff\xff\xff", 8));
  EXPECT_FALSE(PictureOfPng(bytes).has_value());
}
