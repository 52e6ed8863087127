// Overlays in the image view, as pixels.

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>
#include <limits>
#include <memory>
#include <utility>

#include <GL/gl.h>

#include "drawing/COverlay.h"
#include "support/gui/ImageViewTest.h"
#include "ui/imageview/CLegend.h"

namespace {

// Without grid, picture and marks, so that all is black but the overlay.
class OverlayTest : public ImageViewTest {
 protected:
  OverlayTest() {
    Grid().PerformPendingWork();
    Attach();
    m_Window.show();
    EXPECT_TRUE(RunToolkitUntil([this] { return View().shown() != 0; }));
    View().SetDisplayFlags(0);
  }
  CPicture Look() {
    std::optional<CPicture> picture = View().DrawnPicture();
    EXPECT_TRUE(picture.has_value());
    return picture.value_or(CPicture{});
  }
  // The colours at the place (x, y).
  static std::array<int, 3> At(const CPicture& picture, int x, int y) {
    const auto index = 3 * static_cast<std::size_t>(y * kSize + x);
    return {picture.m_aPixels[index], picture.m_aPixels[index + 1], picture.m_aPixels[index + 2]};
  }
  static void ExpectColour(const std::array<int, 3>& seen, const std::array<std::uint8_t, 3>& colour, double share) {
    for (std::size_t k = 0; k < seen.size(); ++k) EXPECT_NEAR(seen[k], share * colour[k], 4);
  }
  // Heights of 0 on the left and 1 on the right, by the points.
  COverlay Ramp() {
    COverlay overlay;
    overlay.m_Title = "T";
    overlay.m_uTree = Grid().Surface().Tree().Revision();
    const int side = Grid().Surface().Lattice().PointsPerSide();
    for (std::size_t k = 0; k < Grid().Surface().Order().Count(); ++k)
      overlay.m_afAtPoints.push_back(static_cast<int>(Grid().Surface().Order().PointAtScan(k)) % side / (side - 1.0));
    return overlay;
  }
  void Show(const COverlay& overlay) { View().ShowOverlay(std::make_shared<const COverlay>(overlay)); }
};

}  // namespace

TEST_F(OverlayTest, ValuesAreInterpolatedAndLetThePictureShineThrough) {
  COverlay overlay = Ramp();
  overlay.m_fOpacity = 0.5;
  Show(overlay);
  const CPicture picture = Look();
  for (const int x : {3, 30, 50, 71, 96})
    ExpectColour(At(picture, x, 80), ColourAt(ColourMap::Perceptual, (x + 0.5) / kSize), 0.5);
}

TEST_F(OverlayTest, RasterCoversTheModelFromTheLowerLeft) {
  COverlay overlay;
  overlay.m_bHasBar = false;
  overlay.m_fOpacity = 1.0;
  overlay.m_Raster = {2, 2, {0.0F, 1.0F, std::numeric_limits<float>::quiet_NaN(), 0.5F}};
  Show(overlay);
  const CPicture picture = Look();
  ExpectColour(At(picture, 10, 20), ColourAt(ColourMap::Perceptual, 0.0), 1.0);
  ExpectColour(At(picture, 90, 80), ColourAt(ColourMap::Perceptual, 0.5), 1.0);
  ExpectColour(At(picture, 10, 90), {0, 0, 0}, 1.0);
}

// The names that a lost texture had are given out again.
TEST_F(OverlayTest, RasterIsItsOwnTextureAfterAllContextsHaveGone) {
  COverlay overlay;
  overlay.m_bHasBar = false;
  overlay.m_fOpacity = 1.0;
  overlay.m_Raster = {2, 2, {0.0F, 1.0F, 0.0F, 1.0F}};
  Show(overlay);
  const CPicture before = Look();
  m_Window.hide();
  m_Window.show();
  ASSERT_TRUE(RunToolkitUntil([this] { return View().shown() != 0; }));
  View().make_current();
  std::array<unsigned, 8> others{};
  glGenTextures(static_cast<GLsizei>(others.size()), others.data());
  constexpr std::array<std::uint8_t, 4> kGreen{0, 255, 0, 255};
  for (const unsigned other : others) {
    glBindTexture(GL_TEXTURE_2D, other);
    glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA, 1, 1, 0, GL_RGBA, GL_UNSIGNED_BYTE, kGreen.data());
  }
  const CPicture after = Look();
  ExpectColour(At(after, 10, 80), ColourAt(ColourMap::Perceptual, 0.0), 1.0);
  EXPECT_EQ(after.m_aPixels, before.m_aPixels);
  for (const unsigned other : others) {
    int width = 0;
    glBindTexture(GL_TEXTURE_2D, other);
    glGetTexLevelParameteriv(GL_TEXTURE_2D, 0, GL_TEXTURE_WIDTH, &width);
    EXPECT_EQ(width, 1) << "somebody else's";
  }
}

TEST_F(OverlayTest, LegendHasTheColoursOfTheMapOnADarkPlate) {
  COverlay overlay = Ramp();
  overlay.m_Map = ColourMap::BlueWhiteRed;
  overlay.m_fOpacity = 0.0;
  Show(overlay);
  const CPicture picture = Look();
  int plate = 0;
  int red = 0;
  int blue = 0;
  for (int y = 8; y < 60; ++y) {
    for (int x = 0; x < kSize; ++x) {
      const auto [r, g, b] = At(picture, x, y);
      plate += r == 24 && g == 24 && b == 24 ? 1 : 0;
      red += r > b + 60 ? 1 : 0;
      blue += b > r + 60 ? 1 : 0;
    }
  }
  EXPECT_GT(plate, 1000);
  EXPECT_GT(blue, 100) << "the view is narrower than the bar";
  EXPECT_EQ(red, 0);
}

TEST_F(OverlayTest, WithoutAnOverlayAllIsAsBefore) {
  const CPicture before = Look();
  Show(Ramp());
  EXPECT_NE(Look().m_aPixels, before.m_aPixels);
  View().ShowOverlay(nullptr);
  EXPECT_EQ(Look().m_aPixels, before.m_aPixels);
}

TEST_F(OverlayTest, LongNumbersOfTheLegendDoNotTouch) {
  constexpr int kWidth = 500;
  m_Window.size(kWidth, kSize);
  View().size(kWidth, kSize);
  for (const double most : {12345.678, 1e-7, 1e-300}) {
    COverlay overlay = Ramp();
    overlay.m_fLow = -most;
    overlay.m_fHigh = most;
    Show(overlay);
    const CPicture picture = Look();
    ASSERT_EQ(picture.m_iWidth, kWidth);
    // Columns without a letter between the first and the last one, where the numbers stand.
    int gaps = 0;
    int dark = kWidth;
    for (int x = 0; x < kWidth; ++x) {
      int brightest = 0;
      for (int y = 15; y < 25; ++y)
        brightest = std::max<int>(brightest, picture.m_aPixels[3 * static_cast<std::size_t>(y * kWidth + x)]);
      // Digits leave some room between them, too.
      if (brightest > 150 && std::exchange(dark, 0) > 9) ++gaps;
      if (brightest <= 150 && dark < kWidth) ++dark;
    }
    EXPECT_EQ(gaps, 1 + 2) << most << ", the one before the first number is one";
  }
}

TEST_F(OverlayTest, LegendSaysTheRangeInFourDigits) {
  COverlay overlay;
  overlay.m_fLow = -123.456;
  overlay.m_fHigh = 0.000123456;
  overlay.m_Title = "Height";
  EXPECT_EQ(CLegend::TitleOf(overlay), "Height");
  overlay.m_Unit = "m";
  EXPECT_EQ(CLegend::TitleOf(overlay), "Height [m]");
  EXPECT_EQ(CLegend::ValueText(overlay, overlay.m_fLow), "-123.5");
  EXPECT_EQ(CLegend::ValueText(overlay, overlay.m_fHigh), "0.0001235");
  EXPECT_EQ(CLegend::ValueText(overlay, 0), "0");
}
