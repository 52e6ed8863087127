#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>

#include <GL/gl.h>

#include "drawing/DrawingSettings.h"
#include "io/Bmp.h"
#include "support/CTemporaryDirectory.h"
#include "support/gui/ImageViewTest.h"
#include "support/gui/Pictures.h"

/// What is drawn, read back from the file that SaveFrame writes. The grid's lines lie at 0, 25, 50, 75 and 100.
class ImageViewDrawingTest : public ImageViewTest {
 protected:
  static constexpr CRgb kGrey{128, 128, 128};
  static constexpr CRgb kWhite{255, 255, 255};
  static constexpr CRgb kYellow{255, 255, 0};
  static constexpr CRgb kRed{255, 0, 0};
  static constexpr CRgb kGreen{0, 255, 0};
  static constexpr CRgb kBlue{0, 0, 255};
  static constexpr CRgb kCyan{0, 255, 255};
  static constexpr CRgb kOrange{255, 128, 0};

  ImageViewDrawingTest() {
    Attach();
    m_Window.show();
    EXPECT_TRUE(RunToolkitUntil([this] { return View().shown() != 0; }));
    View().SetDisplayFlags(0);
  }
  void Shoot() {
    // As at the end of a rebuild.
    Grid().Surface().Tree().ListLeaves();
    ASSERT_TRUE(View().SaveFrame(m_Scratch.File("frame.bmp")));
    m_Frame = Global::LoadBMP(m_Scratch.File("frame.bmp"), 1)->m_Picture;
    ASSERT_EQ(m_Frame.m_iWidth, kSize);
    ASSERT_EQ(m_Frame.m_iHeight, kSize);
  }
  void Shoot(std::uint32_t flags) {
    View().SetDisplayFlags(flags);
    Shoot();
  }
  // Of the texture that the picture is drawn from, in texels.
  int DrawnTextureWidth() {
    Shoot(ImageFlag::kImage);
    GLint width = 0;
    glGetTexLevelParameteriv(GL_TEXTURE_2D, 0, GL_TEXTURE_WIDTH, &width);
    return width;
  }
  // Of the pixel whose centre is the place (x, y).
  CRgb At(double x, double y) const {
    const auto index = 3 * (static_cast<std::size_t>(y) * kSize + static_cast<std::size_t>(x));
    return {m_Frame.m_aPixels[index], m_Frame.m_aPixels[index + 1], m_Frame.m_aPixels[index + 2]};
  }
  int Count(const CRgb& colour) const {
    int count = 0;
    for (int y = 0; y < kSize; ++y) {
      for (int x = 0; x < kSize; ++x) count += At(x, y) == colour ? 1 : 0;
    }
    return count;
  }
  struct CPixels {
    int m_iLeft = kSize;
    int m_iRight = -1;
    int m_iBottom = kSize;
    int m_iTop = -1;
  };
  // Around all that is not black.
  CPixels Box() const {
    CPixels box;
    for (int k = 0; k < kSize * kSize; ++k) {
      const int x = k % kSize;
      const int y = k / kSize;
      if (At(x, y) == kBlack) continue;
      box = {std::min(box.m_iLeft, x), std::max(box.m_iRight, x), std::min(box.m_iBottom, y), std::max(box.m_iTop, y)};
    }
    return box;
  }
  int CountOfOthers(const CRgb& colour) const { return kSize * kSize - Count(colour); }
  void LoadPicture(const CPicture& picture) {
    WriteBytes(m_Scratch.File("picture.bmp"), BmpFile(picture));
    ASSERT_TRUE(View().LoadImage(m_Scratch.File("picture.bmp")));
  }
  // A picture with one colour per quarter: lower left, lower right, upper left, upper right.
  static CPicture Quarters(int side) {
    CPicture picture{side, side, {}};
    for (int y = 0; y < side; ++y) {
      for (int x = 0; x < side; ++x) {
        const CRgb c = y < side / 2 ? (x < side / 2 ? kRed : kGreen) : (x < side / 2 ? kBlue : kYellow);
        picture.m_aPixels.insert(picture.m_aPixels.end(), {c.m_uRed, c.m_uGreen, c.m_uBlue});
      }
    }
    return picture;
  }

  CTemporaryDirectory m_Scratch;
  CPicture m_Frame;
  CGlobalScope<CDrawingSettings> m_Settings{g_DrawingSettings, CDrawingSettings{}};
};
