#include <string>

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include "codecs/PictureFormats.h"
#include "codecs/PngBytes.h"

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
  const CReadPicture back = ReadPicture(bytes, "picture");
  RC_ASSERT(back.m_Picture.m_iWidth == picture.m_iWidth);
  RC_ASSERT(back.m_Picture.m_iHeight == picture.m_iHeight);
  RC_ASSERT(back.m_Picture.m_aPixels == picture.m_aPixels);
}

TEST(PngBytesTest, AnEmptyPictureHasNoBytes) { EXPECT_EQ(PngOf({}), ""); }
