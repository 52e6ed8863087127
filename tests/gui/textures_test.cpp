#include <array>
#include <string>
#include <tuple>

#include <GL/gl.h>
#include <gtest/gtest.h>

#include "drawing/CTextures.h"
#include "drawing/DisplayFlags.h"
#include "support/CStaging.h"
#include "support/gui/ModelViewTest.h"

namespace {

constexpr std::array kImages{CTextureImages::kPhotograph, CTextureImages::kKd, CTextureImages::kIllumination};

class TexturesTest : public ModelViewTest {
 protected:
  CTextureImages& Images() { return CStaging::Textures(Grid()); }
  // Of the bound texture.
  static GLint Parameter(GLenum name) {
    GLint value = 0;
    glGetTexParameteriv(GL_TEXTURE_2D, name, &value);
    return value;
  }
  static GLint LevelParameter(GLenum name) {
    GLint value = 0;
    glGetTexLevelParameteriv(GL_TEXTURE_2D, 0, name, &value);
    return value;
  }
  // First pixel of an image on the graphics card.
  CRgb FirstPixel(CTextureImages::Which which) {
    EXPECT_TRUE(m_Textures.Bind(Images(), which));
    std::vector<std::uint8_t> pixels(
        static_cast<std::size_t>(3 * LevelParameter(GL_TEXTURE_WIDTH) * LevelParameter(GL_TEXTURE_HEIGHT)));
    glPixelStorei(GL_PACK_ALIGNMENT, 1);
    glGetTexImage(GL_TEXTURE_2D, 0, GL_RGB, GL_UNSIGNED_BYTE, pixels.data());
    return {pixels[0], pixels[1], pixels[2]};
  }
  void Paint(CTextureImages::Which which, std::uint8_t shade) {
    std::ranges::fill(Images().Image(which), shade);
    Images().MarkChanged(which);
  }
};

}  // namespace

TEST_F(TexturesTest, WithoutAPictureThereIsNothingToBind) {
  View().make_current();
  for (const CTextureImages::Which which : kImages) EXPECT_FALSE(m_Textures.Bind(Images(), which));
}

TEST_F(TexturesTest, LoadingLogsWhatOpenGLSaysOnce) {
  m_Grid.m_Console.Take();
  LoadPicture(PlainPicture(kRed));
  EXPECT_EQ(m_Grid.m_Console.Take(), "CImageView::LoadImage\tglTexImage2D\t\t=> GL_ERROR : no error\n");
}

TEST_F(TexturesTest, ErrorMadeElsewhereBeforeIsNotTheUploads) {
  View().make_current();
  glEnable(GL_RGBA);
  m_Grid.m_Console.Take();
  LoadPicture(PlainPicture(kRed));
  EXPECT_EQ(m_Grid.m_Console.Take(), "CImageView::LoadImage\tglTexImage2D\t\t=> GL_ERROR : no error\n");
}

TEST_F(TexturesTest, UploadThatFailsIsNamed) {
  GLint largest = 0;
  View().make_current();
  glGetIntegerv(GL_MAX_TEXTURE_SIZE, &largest);
  m_Grid.m_Console.Take();
  LoadPicture(PictureOf(2 * largest, 1, [](int /*x*/, int /*y*/) { return kRed; }));
  EXPECT_EQ(m_Grid.m_Console.Take(), "CImageView::LoadImage\tglTexImage2D\t\t=> GL_ERROR : invalid value\n");
}

TEST_F(TexturesTest, LoadingEnablesTexturing) {
  LoadPicture(PlainPicture(kRed));
  EXPECT_TRUE(glIsEnabled(GL_TEXTURE_2D));
}

TEST_F(TexturesTest, TexturesHaveTheirSizeAndParameters) {
  LoadPicture(PictureOf(300, 200, [](int /*x*/, int /*y*/) { return kRed; }));
  for (const CTextureImages::Which which : kImages) {
    ASSERT_TRUE(m_Textures.Bind(Images(), which));
    EXPECT_EQ(LevelParameter(GL_TEXTURE_WIDTH), 512);
    EXPECT_EQ(LevelParameter(GL_TEXTURE_HEIGHT), 256);
    for (const auto& [name, value] : {std::pair{GL_TEXTURE_WRAP_S, GL_REPEAT},
                                      {GL_TEXTURE_WRAP_T, GL_REPEAT},
                                      {GL_TEXTURE_MIN_FILTER, GL_LINEAR},
                                      {GL_TEXTURE_MAG_FILTER, GL_LINEAR}}) {
      EXPECT_EQ(Parameter(static_cast<GLenum>(name)), value) << name;
    }
    EXPECT_EQ(FirstPixel(which), kRed);
  }
}

TEST_F(TexturesTest, RowsOfAnyWidthAreRead) {
  LoadPicture(PictureOf(1, 1, [](int /*x*/, int /*y*/) { return CRgb{1, 2, 3}; }));
  EXPECT_EQ(FirstPixel(CTextureImages::kPhotograph), (CRgb{1, 2, 3}));
}

TEST_F(TexturesTest, ImageThatChangesIsSentAgainAndClamped) {
  LoadPicture(PlainPicture(kRed));
  Paint(CTextureImages::kKd, 77);
  EXPECT_EQ(FirstPixel(CTextureImages::kKd), (CRgb{77, 77, 77}));
  EXPECT_EQ(Parameter(GL_TEXTURE_WRAP_S), GL_CLAMP);
  EXPECT_EQ(Parameter(GL_TEXTURE_WRAP_T), GL_CLAMP);
  EXPECT_EQ(FirstPixel(CTextureImages::kIllumination), kRed);
  EXPECT_EQ(Parameter(GL_TEXTURE_WRAP_S), GL_REPEAT);
}

TEST_F(TexturesTest, ImageThatHasNotChangedIsNotSentAgain) {
  LoadPicture(PlainPicture(kRed));
  // Behind the back of the revision.
  std::ranges::fill(Images().Image(CTextureImages::kKd), std::uint8_t{77});
  EXPECT_EQ(FirstPixel(CTextureImages::kKd), kRed);
}

TEST_F(TexturesTest, AnotherPictureReplacesAllThree) {
  LoadPicture(PlainPicture(kRed));
  Paint(CTextureImages::kKd, 77);
  FirstPixel(CTextureImages::kKd);
  LoadPicture(PictureOf(2, 4, [](int /*x*/, int /*y*/) { return kBlue; }));
  for (const CTextureImages::Which which : kImages) {
    EXPECT_EQ(FirstPixel(which), kBlue);
    EXPECT_EQ(Parameter(GL_TEXTURE_WRAP_S), GL_REPEAT);
    EXPECT_EQ(LevelParameter(GL_TEXTURE_HEIGHT), 4);
  }
}

TEST_F(TexturesTest, PictureSurvivesTheEndOfTheContext) {
  LoadPicture(PlainPicture(kRed));
  Paint(CTextureImages::kKd, 77);
  ShowOnly(ModelFlag::kTexturedModel);
  ASSERT_EQ(ColourAt(FrameOf(View()), 4, 23), kRed);
  View().hide();
  View().show();
  ASSERT_TRUE(WaitUntilDrawn());
  EXPECT_EQ(ColourAt(FrameOf(View()), 4, 23), kRed);
  EXPECT_EQ(FirstPixel(CTextureImages::kKd), (CRgb{77, 77, 77}));
  EXPECT_EQ(FirstPixel(CTextureImages::kIllumination), kRed);
}

TEST_F(TexturesTest, OtherWindowsShareThem) {
  LoadPicture(PlainPicture(kRed));
  Fl_Window window(100, 100);
  auto* other = new CGridView(0, 0, 100, 100);
  window.end();
  other->AttachGrid(Grid());
  other->AttachTextures(m_Textures);
  other->SetFlag(ModelFlag::kGrid, false);
  other->SetFlag(ModelFlag::kTexturedModel, true);
  window.show();
  ASSERT_TRUE(RunToolkitUntil([&] { return other->visible_r() != 0 && other->damage() == 0; }));
  EXPECT_EQ(PixelOf(FrameOf(*other), 50, 50), kRed);
}
