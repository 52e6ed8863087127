// The image view as pixels: the photograph, the lines of the grid, and frames.

#include <algorithm>
#include <array>
#include <cmath>
#include <functional>
#include <optional>
#include <string>

#include <GL/gl.h>
#include <unistd.h>

#include "drawing/FrameBuffer.h"
#include "support/CStaging.h"
#include "support/gui/ImageViewDrawingTest.h"

TEST_F(ImageViewDrawingTest, WithoutFlagsThereIsTheBackground) {
  Shoot();
  EXPECT_EQ(CountOfOthers(kBlack), 0);
  g_DrawingSettings.m_afBackground = {0, 1, 0, 0};
  Shoot();
  EXPECT_EQ(CountOfOthers(kGreen), 0);
}

TEST_F(ImageViewDrawingTest, PictureFillsTheExtentTheRightWayUp) {
  LoadPicture(Quarters(60));
  Shoot(ImageFlag::kImage);
  EXPECT_EQ(At(20, 20), kRed);
  EXPECT_EQ(At(80, 20), kGreen);
  EXPECT_EQ(At(20, 80), kBlue);
  EXPECT_EQ(At(80, 80), kYellow);
  EXPECT_EQ(At(1, 1), kRed);
  EXPECT_EQ(At(97, 97), kYellow);
  EXPECT_EQ(Count(kBlack), 0);
}

TEST_F(ImageViewDrawingTest, PictureOfAtMostTwoPixelsPerScreenPixelIsDrawnItself) {
  LoadPicture(Quarters(2 * kSize));
  EXPECT_EQ(DrawnTextureWidth(), 256);
  LoadPicture(Quarters(2 * kSize + 2));
  EXPECT_EQ(DrawnTextureWidth(), 128);
  EXPECT_EQ(At(45, 45), kRed);
  EXPECT_EQ(At(97, 97), kYellow);
}

TEST_F(ImageViewDrawingTest, ZoomChoosesTheCopyThatIsDrawn) {
  LoadPicture(Quarters(4 * kSize));
  EXPECT_EQ(DrawnTextureWidth(), 256);
  g_fZoom = 2;
  EXPECT_EQ(DrawnTextureWidth(), 128);
  g_fZoom = 0.5;
  EXPECT_EQ(DrawnTextureWidth(), 512);
}

TEST_F(ImageViewDrawingTest, StripesFinerThanTheScreenAreGreyWhereverTheyLie) {
  constexpr int kSide = 5 * kSize + 3;
  CPicture picture{kSide, kSide, {}};
  for (int k = 0; k < kSide * kSide; ++k)
    picture.m_aPixels.insert(picture.m_aPixels.end(), 3, k % kSide % 2 == 0 ? 255 : 0);
  LoadPicture(picture);
  Shoot(ImageFlag::kImage);
  const CPicture before = m_Frame;
  EXPECT_LE(Distance(At(50, 50), {128, 128, 128}), 1);
  View().SetZoomAndPan(1, {0.3, 0});
  Shoot(ImageFlag::kImage);
  EXPECT_EQ(CountPixels(before,
                        [&](int x, int y) {
                          return x < kSize - 2 && Distance(PixelOf(before, x, y), PixelOf(m_Frame, x, y)) > 1;
                        }),
            0U);
}

TEST_F(ImageViewDrawingTest, PictureBeyondTheLimitOfTheDriverIsDrawnReduced) {
  m_Textures.SetLargestTexture([] { return 32; });
  LoadPicture(Quarters(64));
  EXPECT_TRUE(m_Host.m_aNotices.empty());
  EXPECT_EQ(DrawnTextureWidth(), 32);
  EXPECT_EQ(At(20, 20), kRed);
  EXPECT_EQ(At(80, 80), kYellow);
}

TEST_F(ImageViewDrawingTest, PictureNeedsItsFlag) {
  LoadPicture(PlainPicture(3, 3, 255, 0, 0));
  Shoot();
  EXPECT_EQ(Count(kRed), 0);
}

TEST_F(ImageViewDrawingTest, ZoomAndPanMoveThePicture) {
  LoadPicture(Quarters(64));
  g_fZoom = 2;
  Shoot(ImageFlag::kImage);
  EXPECT_EQ(At(20, 50), kBlack);
  EXPECT_EQ(At(30, 30), kRed);
  g_fZoom = 0.5;
  Push(FL_LEFT_MOUSE, 50.5, 50.5, FL_SHIFT);
  Drag(90.5, 50.5);
  Shoot();
  EXPECT_EQ(At(75, 20), kRed);
  EXPECT_EQ(At(95, 20), kGreen);
}

TEST_F(ImageViewDrawingTest, PictureSurvivesHidingTheView) {
  LoadPicture(PlainPicture(4, 4, 255, 0, 0));
  View().hide();
  View().show();
  ASSERT_TRUE(RunToolkitUntil([this] { return View().shown() != 0; }));
  Shoot(ImageFlag::kImage);
  EXPECT_EQ(CountOfOthers(kRed), 0);
}

TEST_F(ImageViewDrawingTest, GridLinesAreGreyUnlessLevelsHaveColours) {
  const auto isLit = [this](double x, double y) { return At(x, y) != kBlack; };
  Shoot(ImageFlag::kGrid);
  EXPECT_TRUE(isLit(49, 37) || isLit(50, 37));
  EXPECT_TRUE(isLit(37, 24) || isLit(37, 25));
  EXPECT_FALSE(isLit(37, 37));
  for (int x = 0; x < kSize; ++x) {
    const CRgb c = At(x, 37);
    EXPECT_TRUE(c.m_uRed == c.m_uGreen && c.m_uGreen == c.m_uBlue) << x;
  }
  g_DrawingSettings.m_bSpecificSubdivisionColours = true;
  Shoot();
  const CRgb coloured = std::max(At(49, 37), At(50, 37), [](CRgb a, CRgb b) { return a.m_uGreen < b.m_uGreen; });
  EXPECT_GT(coloured.m_uGreen, coloured.m_uRed);  // level 2: (0.5, 1, 0.5)
}

TEST_F(ImageViewDrawingTest, GreyAndThicknessAreTheSettings) {
  g_DrawingSettings.m_GreyGrid = {1, 0, 0};
  g_DrawingSettings.m_ImageView.m_fGridThickness = 5;
  Shoot(ImageFlag::kGrid);
  for (const double x : {48.0, 49.0, 50.0, 51.0}) EXPECT_EQ(At(x, 37), kRed) << x;
}

TEST_F(ImageViewDrawingTest, SubdividedCellsAreDrawnAtOnce) {
  g_DrawingSettings.m_ImageView.m_fGridThickness = 3;
  Shoot(ImageFlag::kGrid);
  EXPECT_EQ(At(12, 6), kBlack);
  MakeLeaf(Grid().Surface().Tree(), 1, 0, 0);
  Shoot();
  EXPECT_NE(At(12, 6), kBlack);
}

TEST_F(ImageViewDrawingTest, DiscontinuityIsAGapOnlyWithItsFlag) {
  LoadPicture(PlainPicture(4, 4, 255, 0, 0));
  MakeLeaf(Grid().Surface().Tree(), 2, 1, 1, CellFlag::kTriangles);
  Shoot(ImageFlag::kImage);
  EXPECT_EQ(At(37, 37), kRed);
  Shoot(ImageFlag::kImage | ImageFlag::kDiscontinuityGap);
  EXPECT_EQ(At(37, 37), kBlack);
  EXPECT_EQ(At(20, 37), kRed);
  EXPECT_EQ(At(55, 37), kRed);
}

TEST_F(ImageViewDrawingTest, EdgesInsideADiscontinuityHaveAFlagOfTheirOwn) {
  g_DrawingSettings.m_ImageView.m_fGridThickness = 3;
  MakeLeaf(Grid().Surface().Tree(), 2, 1, 1, CellFlag::kTriangles);
  MakeLeaf(Grid().Surface().Tree(), 2, 2, 1, CellFlag::kTriangles);
  Grid().Surface().Tree().RefreshEdgeMarks();
  Shoot(ImageFlag::kGrid);
  EXPECT_EQ(At(50, 37), kBlack);
  EXPECT_NE(At(25, 37), kBlack);
  Shoot(ImageFlag::kDiscontinuityEdges);
  EXPECT_NE(At(50, 37), kBlack);
  EXPECT_EQ(At(25, 37), kBlack);
}

TEST_F(ImageViewDrawingTest, PictureOfAWideModelHasBarsInTrueProportions) {
  Grid().Initialize(2, false, 0, 0, 200, 100);
  LoadPicture(Quarters(64));
  Shoot(ImageFlag::kImage);
  EXPECT_EQ(At(20, 2), kRed);
  Shoot(ImageFlag::kImage | ImageFlag::kProportions);
  for (const int x : {2, 20, 45}) {
    EXPECT_EQ(At(x, 23), kBlack);
    EXPECT_EQ(At(x, 27), kRed);
    EXPECT_EQ(At(x, 72), kBlue);
    EXPECT_EQ(At(x, 76), kBlack);
  }
}

TEST_F(ImageViewDrawingTest, HiddenViewSavesNoFrame) {
  m_Window.hide();
  EXPECT_FALSE(View().SaveFrame(m_Scratch.File("frame.bmp")));
  EXPECT_TRUE(m_Scratch.Names().empty());
}

TEST_F(ImageViewDrawingTest, FrameBufferIsSavedAsFarAsTheViewportReaches) {
  View().make_current();
  glViewport(3, 5, 33, 17);
  glEnable(GL_SCISSOR_TEST);
  for (const auto& [red, blue, height] : {std::tuple{1.0F, 0.0F, 100}, {0.0F, 1.0F, 6}}) {
    glScissor(0, 0, 100, height);
    glClearColor(red, 0, blue, 0);
    glClear(GL_COLOR_BUFFER_BIT);
  }
  EXPECT_TRUE(Global::SaveFrameBuffer(m_Scratch.File("part.bmp")));
  EXPECT_FALSE(Global::SaveFrameBuffer(m_Scratch.File("none/part.bmp")));
  const CPicture part = Global::LoadBMP(m_Scratch.File("part.bmp"), 1)->m_Picture;
  CPicture expected = PlainPicture(33, 17, 255, 0, 0);
  const CPicture lowest = PlainPicture(33, 1, 0, 0, 255);
  std::copy(lowest.m_aPixels.begin(), lowest.m_aPixels.end(), expected.m_aPixels.begin());
  EXPECT_EQ(part.m_iWidth, 33);
  EXPECT_EQ(part.m_aPixels, expected.m_aPixels);
}

TEST_F(ImageViewDrawingTest, DrawingIsTheSameOnTheScreen) {
  std::optional<WindowId> window;
  // Drawn into a window that is there: what is drawn while the window manager still places it may not stay.
  ASSERT_TRUE(RunToolkitUntil([&] {
    window = m_Screen.FindWindow(getpid(), m_Window.label());
    return window.has_value();
  }));
  LoadPicture(PlainPicture(2, 2, 255, 0, 0));
  View().SetMode(EditingMode::Position);  // the mouse may hover, and leave the flags alone
  View().SetDisplayFlags(ImageFlag::kImage);
  const auto onScreen = [&] { return m_Screen.Capture(m_Screen.AreaOf(*window)); };
  EXPECT_TRUE(RunToolkitUntil([&] { return onScreen().IsAll(kRed); }))
      << onScreen().Count(kRed) << " pixels are red, the first is " << onScreen().At({0, 0}) << "; "
      << m_Screen.AreaOf(*window) << ", flags " << View().DisplayFlags() << ", valid " << int{View().valid()};
}
