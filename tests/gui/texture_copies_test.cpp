#include <algorithm>
#include <array>
#include <cmath>
#include <vector>

#include <GL/gl.h>
#include <gtest/gtest.h>

#include "base/AreaFilter.h"
#include "drawing/CTextures.h"
#include "drawing/DisplayFlags.h"
#include "support/CStaging.h"
#include "support/gui/ModelViewTest.h"

namespace {

CRgb ManyColours(int x, int y) {
  return {static_cast<std::uint8_t>(x * 31 + y), static_cast<std::uint8_t>(x * x + 7 * y),
          static_cast<std::uint8_t>(x ^ y)};
}

// Finer than any view shows it.
CRgb FineStripes(int x, int /*y*/) { return x % 2 == 0 ? kBlack : kWhite; }

class TextureCopiesTest : public ModelViewTest {
 protected:
  CTextureImages& Images() { return CStaging::Textures(Grid()); }
  // Of the bound texture.
  static int Width() { return LevelParameter(GL_TEXTURE_WIDTH); }
  static int Height() { return LevelParameter(GL_TEXTURE_HEIGHT); }
  static int LevelParameter(GLenum name) {
    GLint value = 0;
    glGetTexLevelParameteriv(GL_TEXTURE_2D, 0, name, &value);
    return value;
  }
  static int Parameter(GLenum name) {
    GLint value = 0;
    glGetTexParameteriv(GL_TEXTURE_2D, name, &value);
    return value;
  }
  static CPicture BoundTexture() {
    CPicture texture{Width(), Height(), {}};
    texture.m_aPixels.resize(static_cast<std::size_t>(3 * texture.m_iWidth * texture.m_iHeight));
    glPixelStorei(GL_PACK_ALIGNMENT, 1);
    glGetTexImage(GL_TEXTURE_2D, 0, GL_RGB, GL_UNSIGNED_BYTE, texture.m_aPixels.data());
    return texture;
  }
  CPicture Copy(CTextureImages::Which which, const CReduction& reduction) {
    EXPECT_TRUE(m_Textures.Bind(Images(), which, reduction));
    return BoundTexture();
  }
  void Paint(CTextureImages::Which which, std::uint8_t shade) {
    std::ranges::fill(Images().Image(which), shade);
    Images().MarkChanged(which);
  }
  static int CountTextures() {
    constexpr GLuint kNames = 2000;
    int count = 0;
    for (GLuint name = 1; name < kNames; ++name) count += glIsTexture(name) != GL_FALSE ? 1 : 0;
    return count;
  }
  // The view as it is now, and how wide the texture was that it drew.
  CPicture Frame() {
    CPicture frame = FrameOf(View());
    m_iDrawnWidth = Width();
    return frame;
  }
  void Turn(double degrees) {
    CCamera camera = View().Camera();
    camera.m_fPhi = degrees;
    camera.UpdateEye();
    View().SetCamera(camera);
  }
  // Of the picture on the flat model, well inside its outline.
  int LargestChange(const CPicture& a, const CPicture& b) {
    int change = 0;
    for (int y = kSize / 2 - 20; y < kSize / 2 + 20; ++y) {
      for (int x = kSize / 2 - 60; x < kSize / 2 + 60; ++x)
        change = std::max(change, Distance(PixelOf(a, x, y), PixelOf(b, x, y)));
    }
    return change;
  }

  int m_iDrawnWidth = 0;
};

// The copy in the corner, and its last column and row once more.
void ExpectExtended(const CPicture& texture, const CPicture& copy) {
  for (int y = 0; y < std::min(copy.m_iHeight + 1, texture.m_iHeight); ++y) {
    for (int x = 0; x < std::min(copy.m_iWidth + 1, texture.m_iWidth); ++x) {
      ASSERT_EQ(PixelOf(texture, x, y), PixelOf(copy, std::min(x, copy.m_iWidth - 1), std::min(y, copy.m_iHeight - 1)))
          << x << ' ' << y;
    }
  }
}

}  // namespace

TEST_F(TextureCopiesTest, TheyAreAreaMeansInTheSameCorner) {
  for (const auto& [width, height] : {std::pair{300, 200}, {64, 32}, {65, 1}, {1, 1}}) {
    const CPicture picture = PictureOf(width, height, ManyColours);
    LoadPicture(picture);
    for (const CReduction reduction : {CReduction{1, 0}, {0, 1}, {2, 3}, {30, 30}}) {
      const CPicture texture = Copy(CTextureImages::kPhotograph, reduction);
      const int left = Images().TextureWidth() / texture.m_iWidth;
      const int below = Images().TextureHeight() / texture.m_iHeight;
      EXPECT_EQ(left, std::min(1 << reduction.m_iX, Images().TextureWidth()));
      EXPECT_EQ(below, std::min(1 << reduction.m_iY, Images().TextureHeight()));
      if (left == 1 && below == 1) continue;  // the image itself
      ExpectExtended(
          texture, AreaFiltered({picture.m_aPixels, width, height, 3 * static_cast<std::size_t>(width)}, left, below));
    }
  }
}

TEST_F(TextureCopiesTest, TheyAreFilteredLinearlyAndClamped) {
  LoadPicture(PlainPicture(kRed));
  Copy(CTextureImages::kKd, {1, 1});
  EXPECT_EQ(Parameter(GL_TEXTURE_MIN_FILTER), GL_LINEAR);
  EXPECT_EQ(Parameter(GL_TEXTURE_MAG_FILTER), GL_LINEAR);
  EXPECT_EQ(Parameter(GL_TEXTURE_WRAP_S), GL_CLAMP_TO_EDGE);
  EXPECT_EQ(Parameter(GL_TEXTURE_WRAP_T), GL_CLAMP_TO_EDGE);
}

TEST_F(TextureCopiesTest, TheyLeaveTheImagesAndTheReadingOfPixelsAsTheyWere) {
  LoadPicture(PictureOf(5, 3, ManyColours));
  Copy(CTextureImages::kPhotograph, {1, 1});
  ASSERT_TRUE(m_Textures.Bind(Images(), CTextureImages::kPhotograph));
  EXPECT_TRUE(std::ranges::equal(BoundTexture().m_aPixels, Images().Image(CTextureImages::kPhotograph)));
  Paint(CTextureImages::kPhotograph, 9);
  ASSERT_TRUE(m_Textures.Bind(Images(), CTextureImages::kPhotograph));
  EXPECT_TRUE(std::ranges::equal(BoundTexture().m_aPixels, Images().Image(CTextureImages::kPhotograph)));
}

TEST_F(TextureCopiesTest, TheyFollowTheirImageAndNoOther) {
  LoadPicture(PlainPicture(kRed));
  Copy(CTextureImages::kKd, {1, 1});
  Copy(CTextureImages::kIllumination, {1, 1});
  Paint(CTextureImages::kKd, 77);
  EXPECT_EQ(PixelOf(Copy(CTextureImages::kKd, {1, 1}), 0, 0), (CRgb{77, 77, 77}));
  EXPECT_EQ(PixelOf(Copy(CTextureImages::kIllumination, {1, 1}), 0, 0), kRed);
}

TEST_F(TextureCopiesTest, TheyAreMadeOnce) {
  LoadPicture(PlainPicture(kRed));
  Copy(CTextureImages::kKd, {1, 1});
  Copy(CTextureImages::kKd, {2, 1});
  // Behind the back of the revision.
  std::ranges::fill(Images().Image(CTextureImages::kKd), std::uint8_t{77});
  EXPECT_EQ(PixelOf(Copy(CTextureImages::kKd, {1, 1}), 0, 0), kRed);
  EXPECT_EQ(PixelOf(Copy(CTextureImages::kKd, {2, 1}), 0, 0), kRed);
}

TEST_F(TextureCopiesTest, ThereAreNeverManyAndNoneOfAFormerPicture) {
  for (int round = 0; round < 3; ++round) {
    LoadPicture(PictureOf(256, 256, ManyColours));
    EXPECT_EQ(CountTextures(), 3);
    for (int x = 0; x < 9; ++x) {
      for (int y = 0; y < 9; ++y) Copy(CTextureImages::kPhotograph, {x, y});
    }
    EXPECT_EQ(CountTextures(), 3 + 8);
  }
}

TEST_F(TextureCopiesTest, TheyComeBackWithANewContext) {
  LoadPicture(PlainPicture(kRed));
  Paint(CTextureImages::kKd, 77);
  Copy(CTextureImages::kPhotograph, {1, 1});
  View().hide();
  View().show();
  ASSERT_TRUE(WaitUntilDrawn());
  View().make_current();
  for (const CReduction reduction : {CReduction{1, 1}, {}}) {
    EXPECT_EQ(PixelOf(Copy(CTextureImages::kKd, reduction), 0, 0), (CRgb{77, 77, 77}));
    EXPECT_EQ(PixelOf(Copy(CTextureImages::kPhotograph, reduction), 0, 0), kRed);
  }
}

TEST_F(TextureCopiesTest, NamesOfAFormerContextAreNotTakenForOthers) {
  LoadPicture(PlainPicture(kRed));
  Paint(CTextureImages::kIllumination, 77);
  View().SetDrawTexture(DrawnTexture::kIllumination);
  ShowOnly(ModelFlag::kTexturedModel);
  View().hide();
  View().show();
  ASSERT_TRUE(WaitUntilDrawn());
  View().make_current();
  EXPECT_EQ(PixelOf(Copy(CTextureImages::kPhotograph, {}), 0, 0), kRed);
  EXPECT_EQ(PixelOf(Copy(CTextureImages::kIllumination, {}), 0, 0), (CRgb{77, 77, 77}));
}

TEST_F(TextureCopiesTest, TheLimitOfTheDriverIsThatOfTheContext) {
  View().make_current();
  GLint limit = 0;
  glGetIntegerv(GL_MAX_TEXTURE_SIZE, &limit);
  EXPECT_EQ(LargestTexture(), limit);
}

TEST_F(TextureCopiesTest, ImagesBeyondTheLimitAreOnlyDrawnFromThem) {
  LoadPicture(PictureOf(300, 60, ManyColours));
  m_Textures.SetLargestTexture([] { return 64; });
  for (const auto which : {CTextureImages::kPhotograph, CTextureImages::kKd, CTextureImages::kIllumination}) {
    const CPicture texture = Copy(which, {});
    EXPECT_EQ(texture.m_iWidth, 64);
    EXPECT_EQ(texture.m_iHeight, 64);
    EXPECT_EQ(Copy(which, {1, 1}).m_iHeight, 32);
  }
  Paint(CTextureImages::kKd, 77);
  EXPECT_EQ(PixelOf(Copy(CTextureImages::kKd, {}), 0, 0), (CRgb{77, 77, 77}));
  m_Textures.SetLargestTexture([] { return 512; });
  EXPECT_EQ(Copy(CTextureImages::kPhotograph, {}).m_iWidth, 512);
}

TEST_F(TextureCopiesTest, PictureBeyondTheLimitIsDrawnWhole) {
  m_Textures.SetLargestTexture([] { return 16; });
  LoadPicture(PictureOf(64, 64, [](int x, int y) { return x < 32 ? (y < 32 ? kRed : kGreen) : kBlue; }));
  ShowOnly(ModelFlag::kTexturedModel);
  const CPicture frame = Frame();
  EXPECT_EQ(m_iDrawnWidth, 16);
  const CExtent& e = Grid().Surface().Lattice().Extent();
  EXPECT_EQ(ColourAt(frame, e.x0 + 0.2 * (e.x1 - e.x0), e.y0 + 0.2 * (e.y1 - e.y0)), kRed);
  EXPECT_EQ(ColourAt(frame, e.x0 + 0.2 * (e.x1 - e.x0), e.y0 + 0.8 * (e.y1 - e.y0)), kGreen);
  EXPECT_EQ(ColourAt(frame, e.x0 + 0.8 * (e.x1 - e.x0), e.y0 + 0.8 * (e.y1 - e.y0)), kBlue);
}

TEST_F(TextureCopiesTest, FineStripesAreGreyAndStayGreyWhenTheModelTurns) {
  LoadPicture(PictureOf(4000, 500, FineStripes));
  ShowOnly(ModelFlag::kTexturedModel);
  const CPicture front = Frame();
  EXPECT_LT(m_iDrawnWidth, 4096);
  EXPECT_LE(Distance(PixelOf(front, kSize / 2, kSize / 2), {128, 128, 128}), 1);
  for (const double degrees : {0.05, 0.4, 20.0, 20.1, 50.0, 50.05}) {
    Turn(degrees);
    EXPECT_LE(LargestChange(front, Frame()), 1) << degrees;
  }
}

TEST_F(TextureCopiesTest, PictureOfAtMostTwoPixelsPerScreenPixelIsDrawnItself) {
  const CExtent& e = Grid().Surface().Lattice().Extent();
  const double across = (e.x1 - e.x0) * kSize / (2 * View().Camera().m_fR);
  const double up = (e.y1 - e.y0) * kSize / (2 * View().Camera().m_fR);
  const int width = static_cast<int>(std::floor(2 * across));
  LoadPicture(PictureOf(width, static_cast<int>(2 * up), ManyColours));
  ShowOnly(ModelFlag::kTexturedModel);
  Frame();
  EXPECT_EQ(m_iDrawnWidth, Images().TextureWidth());
  LoadPicture(PictureOf(width + 1, static_cast<int>(2 * up), ManyColours));
  Frame();
  EXPECT_EQ(m_iDrawnWidth, Images().TextureWidth() / 2);
}

TEST_F(TextureCopiesTest, TheCameraChoosesThem) {
  LoadPicture(PictureOf(2000, 100, ManyColours));
  ShowOnly(ModelFlag::kTexturedModel);
  Frame();
  const int front = m_iDrawnWidth;
  EXPECT_LT(front, 2048);
  Turn(65);
  Frame();
  EXPECT_LT(m_iDrawnWidth, front);
  Turn(0);
  CCamera camera = View().Camera();
  camera.m_fR /= 16;
  camera.UpdateEye();
  View().SetCamera(camera);
  Frame();
  EXPECT_EQ(m_iDrawnWidth, 2048);
}
