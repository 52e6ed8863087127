#include <algorithm>
#include <utility>

#include <gtest/gtest.h>

#include "lighting/CTextureImages.h"

namespace {

// Every byte tells its place.
CPicture Numbered(int width, int height) {
  CPicture picture{width, height, {}};
  for (int k = 0; k < 3 * width * height; ++k) picture.m_aPixels.push_back(static_cast<std::uint8_t>(k % 251));
  return picture;
}

struct CSide {
  int side;
  int padded;
};

class PaddedSideTest : public testing::TestWithParam<CSide> {};

INSTANTIATE_TEST_SUITE_P(Sides, PaddedSideTest,
                         testing::Values(CSide{0, 1}, CSide{1, 1}, CSide{2, 2}, CSide{3, 4}, CSide{200, 256},
                                         CSide{256, 256}, CSide{257, 512}, CSide{300, 512}));

TEST_P(PaddedSideTest, IsTheSmallestPowerOfTwoNotBelow) {
  EXPECT_EQ(CTextureImages::PaddedSide(GetParam().side), GetParam().padded);
}

TEST(TextureImagesTest, PictureLiesInTheLowerLeftCornerOnWhite) {
  CTextureImages images;
  const CPicture picture = Numbered(3, 2);
  images.SetPicture(picture);
  ASSERT_EQ(images.TextureWidth(), 4);
  ASSERT_EQ(images.TextureHeight(), 2);
  const auto& photograph = std::as_const(images).Image(CTextureImages::kPhotograph);
  ASSERT_EQ(photograph.size(), 24U);
  for (std::size_t y = 0; y < 2; ++y) {
    for (std::size_t k = 0; k < 9; ++k) EXPECT_EQ(photograph[12 * y + k], picture.m_aPixels[9 * y + k]);
    for (std::size_t k = 9; k < 12; ++k) EXPECT_EQ(photograph[12 * y + k], 255);
  }
}

TEST(TextureImagesTest, AllThreeImagesShowANewPicture) {
  CTextureImages images;
  EXPECT_FALSE(images.HasPicture());
  images.SetPicture(Numbered(5, 3));
  EXPECT_TRUE(images.HasPicture());
  const auto photograph = images.Image(CTextureImages::kPhotograph);
  for (const auto which : {CTextureImages::kKd, CTextureImages::kIllumination}) {
    EXPECT_TRUE(std::ranges::equal(images.Image(which), photograph));
  }
}

TEST(TextureImagesTest, RevisionsTellWhatChanged) {
  CTextureImages images;
  images.SetPicture(Numbered(2, 2));
  const unsigned photograph = images.Revision(CTextureImages::kPhotograph);
  const unsigned kd = images.Revision(CTextureImages::kKd);
  images.MarkChanged(CTextureImages::kKd);
  EXPECT_EQ(images.Revision(CTextureImages::kPhotograph), photograph);
  EXPECT_NE(images.Revision(CTextureImages::kKd), kd);
  images.SetPicture(Numbered(1, 1));
  EXPECT_NE(images.Revision(CTextureImages::kPhotograph), photograph);
}

}  // namespace
