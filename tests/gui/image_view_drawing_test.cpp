#include <algorithm>
#include <array>
#include <cmath>
#include <functional>
#include <string>

#include <GL/gl.h>
#include <unistd.h>

#include "drawing/DrawingSettings.h"
#include "drawing/FrameBuffer.h"
#include "io/Bmp.h"
#include "model/PointProbe.h"
#include "support/CStaging.h"
#include "support/CTemporaryDirectory.h"
#include "support/ConstraintBuilders.h"
#include "support/gui/ImageViewTest.h"
#include "support/gui/Pictures.h"

namespace {

const CRgb kGrey{128, 128, 128};
const CRgb kWhite{255, 255, 255};
const CRgb kYellow{255, 255, 0};
const CRgb kRed{255, 0, 0};
const CRgb kGreen{0, 255, 0};
const CRgb kBlue{0, 0, 255};
const CRgb kCyan{0, 255, 255};
const CRgb kOrange{255, 128, 0};

// What is drawn, read back from the file that SaveFrame writes. The grid's lines lie at 0, 25, 50, 75 and 100.
class ImageViewDrawingTest : public ImageViewTest {
 protected:
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

}  // namespace

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

TEST_F(ImageViewDrawingTest, PointConstraintsHaveTheColoursOfTheirStates) {
  struct CCase {
    std::uint32_t m_uKind = 0;
    std::uint32_t m_uState = 0;
    CRgb m_Colour;
  };
  const auto highlighted = PtCstrState::kHighlighted;
  const auto selected = PtCstrState::kSelected;
  // Wide enough that the middle of a stroke is not blended.
  g_DrawingSettings.m_ImageView = {1, 20, 20, 5, 5, 5, 5};
  for (const CCase& c : {CCase{PtCstrKind::kPosition, 0, kYellow},
                         {PtCstrKind::kPosition, highlighted, kBlue},
                         {PtCstrKind::kPosition, selected, kGreen},
                         {PtCstrKind::kPosition, selected | highlighted, kGreen},
                         {PtCstrKind::kNormal, 0, kRed},
                         {PtCstrKind::kNormal, highlighted, kBlue},
                         {PtCstrKind::kNormal, selected, kGreen}}) {
    CStaging::Constraints(Grid()).Points().clear();
    Grid().AddPtCstr({50, 50, c.m_uKind});
    CStaging::Constraints(Grid()).Points().begin()->SetState(c.m_uState, true);
    Shoot(ImageFlag::kPointConstraints);
    EXPECT_GT(Count(c.m_Colour), 50) << c.m_uKind << ", " << c.m_uState;
    Shoot(0);
    EXPECT_EQ(Count(c.m_Colour), 0);
  }
}

TEST_F(ImageViewDrawingTest, SizesAndThicknessesAreTheSettings) {
  Grid().AddPtCstr(HeightCstr(50, 50, 0));
  g_DrawingSettings.m_ImageView.m_fPositionSize = 40;
  g_DrawingSettings.m_ImageView.m_fUnselectedPositionThickness = 5;
  Shoot(ImageFlag::kPointConstraints);
  EXPECT_EQ(At(33, 50), kYellow);
  EXPECT_EQ(At(66, 50), kYellow);
  EXPECT_EQ(At(27, 50), kBlack);
  EXPECT_EQ(At(40, 51), kYellow);
  EXPECT_EQ(At(40, 56), kBlack);
}

TEST_F(ImageViewDrawingTest, ConstraintsKeepTheirSizeOnTheScreen) {
  Grid().AddPtCstr(HeightCstr(50, 50, 0));
  Shoot(ImageFlag::kPointConstraints);
  const int count = CountOfOthers(kBlack);
  EXPECT_GT(count, 0);
  g_fZoom = 0.1;
  Shoot();
  EXPECT_NEAR(CountOfOthers(kBlack), count, 2);
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

TEST_F(ImageViewDrawingTest, ConstraintsAreRoundAndUnderThePressInTrueProportions) {
  Grid().Initialize(2, false, 0, 0, 200, 100);
  View().SetDisplayFlags(ImageFlag::kPointConstraints | ImageFlag::kProportions);
  View().SetMode(EditingMode::Position);
  Push(FL_LEFT_MOUSE, 30.5, 40.5);
  Release();
  const CPtCstr& made = *Grid().Constraints().Points().begin();
  EXPECT_DOUBLE_EQ(made.m_fX, 61);
  EXPECT_DOUBLE_EQ(made.m_fY, 31);
  Shoot();
  const CPixels drawn = Box();
  EXPECT_EQ(drawn.m_iRight - drawn.m_iLeft, drawn.m_iTop - drawn.m_iBottom);
  EXPECT_NEAR((drawn.m_iRight + drawn.m_iLeft) / 2.0, 30, 1);
  EXPECT_NEAR((drawn.m_iTop + drawn.m_iBottom) / 2.0, 40, 1);
}

TEST_F(ImageViewDrawingTest, NormalLeansAsItsSlopesSay) {
  g_DrawingSettings.m_ImageView = {1, 10, 4, 3, 3, 3, 3};
  Grid().AddPtCstr(SlopeCstr(50, 50, -5, 0));
  Shoot(ImageFlag::kPointConstraints);
  EXPECT_NE(At(66, 50), kBlack);  // the normal points to growing x where the surface falls
  EXPECT_EQ(At(34, 50), kBlack);
}

TEST_F(ImageViewDrawingTest, FrozenPointsHaveAColourOfTheirOwn) {
  Grid().PaintFreezeMap(50, 50, true);
  Shoot(ImageFlag::kFreezeMap);
  EXPECT_EQ(At(50, 50), kCyan);
  EXPECT_EQ(At(25, 25), kBlack);
  Grid().PaintFreezeMap(50, 50, false);
  Shoot();
  EXPECT_EQ(Count(kCyan), 0);
  for (const CRgb& used : {kYellow, kRed, kGreen, kBlue, kGrey, kWhite, kOrange}) EXPECT_NE(used, kCyan);
}

TEST_F(ImageViewDrawingTest, BrushIsARingOfConstantSizeUnderTheMouse) {
  Move(50.5, 50.5);
  Shoot();
  EXPECT_EQ(Count(kWhite), 0);
  View().SetDebugFlags(DebugFlag::kFreeze);
  Shoot();
  EXPECT_EQ(Count(kWhite), 0);
  Move(30.5, 60.5);
  Shoot();
  const int count = Count(kWhite);
  EXPECT_GT(count, 0);
  EXPECT_EQ(At(30, 60), kBlack);
  g_fZoom = 0.25;
  Shoot();
  EXPECT_NEAR(Count(kWhite), count, count / 2.0);
}

TEST_F(ImageViewDrawingTest, TracedInterpolationShowsItsPoints) {
  class CHost : public RecordingHost {
   public:
    explicit CHost(CImageView& view) : m_View(view) {}
    void ShowInterpolation(const CInterpolationTrace& trace) override { m_View.ShowInterpolation(trace); }
    CImageView& m_View;
  };
  CHost host(View());
  Grid().Run().AttachHost(&host);
  View().SetDebugFlags(DebugFlag::kInterpolation);
  Move(37.5, 27.5);
  Grid().Run().AttachHost(nullptr);
  Shoot(0);
  EXPECT_EQ(At(25, 25), kOrange);
  EXPECT_EQ(At(50, 25), kOrange);
  EXPECT_EQ(At(75, 75), kBlack);
  MakeLeaf(Grid().Surface().Tree(), 1, 0, 0);
  Shoot();
  EXPECT_EQ(Count(kOrange), 0);
}

TEST_F(ImageViewDrawingTest, TermShowsItsPointsAndCoefficients) {
  Grid().SetSparseH();
  View().SetDebugFlags(DebugFlag::kHorizontalCoefs);
  Move(50.5, 51.5);
  Shoot(0);
  for (const double x : {25.0, 50.0, 75.0}) EXPECT_EQ(At(x, 50), kOrange) << x;
  EXPECT_EQ(At(50, 25), kBlack);
  EXPECT_GT(Count(kOrange), 3 * 25 + 10);  // the points, and figures beside them
}

TEST_F(ImageViewDrawingTest, ToolThatIsSwitchedOffTakesWhatItShowedWithIt) {
  Grid().SetSparseH();
  const CPointProbe probe(Grid());
  const std::size_t point = Grid().Surface().Lattice().Index(8, 8);
  View().SetDebugFlags(DebugFlag::kHorizontalCoefs | DebugFlag::kVerticalCoefs);
  Move(50.5, 51.5);
  View().SetDebugFlags(DebugFlag::kHorizontalCoefs);
  Shoot(0);
  EXPECT_EQ(At(75, 50), kOrange);
  EXPECT_EQ(At(50, 75), kBlack);
  EXPECT_EQ(m_Host.m_afInfluences.back(), probe.SecondDifference(point, true).m_fWeight);
  View().SetDebugFlags(DebugFlag::kPointArea);
  EXPECT_EQ(m_Host.m_afInfluences.back(), probe.Area(point));
  for (const std::uint32_t flags : {0U, DebugFlag::kHorizontalCoefs}) View().SetDebugFlags(flags);
  Shoot();
  EXPECT_EQ(Count(kOrange), 0) << "until the mouse moves again";
}

TEST_F(ImageViewDrawingTest, InterpolationTestStartsAnew) {
  CStencil stencil;
  CInterpolationTrace trace;
  ASSERT_TRUE(Grid().Surface().Interpolation().GetBilinearInterpolation(37.5, 27.5, stencil, &trace));
  View().SetDebugFlags(DebugFlag::kInterpolation);
  View().ShowInterpolation(trace);
  for (const std::uint32_t flags : {0U, DebugFlag::kInterpolation}) View().SetDebugFlags(flags);
  Shoot(0);
  EXPECT_EQ(Count(kOrange), 0);
}

TEST_F(ImageViewDrawingTest, SelectedCellsAreTinted) {
  View().SetDebugFlags(DebugFlag::kSelectCells);
  Shoot();
  EXPECT_EQ(At(37, 37), kBlack);
  CStaging::Subdivision(Grid()).SelectRectangle(Grid().Surface().Tree(), 5, 5, 7, 7);
  CStaging::Subdivision(Grid()).ShowSelection(Grid().Surface().Tree());
  Shoot();
  for (const auto& [x, y, tinted] : {std::tuple{27, 27, true}, {48, 48, true}, {23, 37, false}, {37, 53, false}})
    EXPECT_EQ(At(x, y) != kBlack, tinted) << x << ", " << y;
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
  LoadPicture(PlainPicture(2, 2, 255, 0, 0));
  View().SetMode(EditingMode::Position);  // the mouse may hover, and leave the flags alone
  View().SetDisplayFlags(ImageFlag::kImage);
  EXPECT_TRUE(RunToolkitUntil([this] {
    const auto window = m_Screen.FindWindow(getpid(), m_Window.label());
    return window.has_value() && m_Screen.Capture(m_Screen.AreaOf(*window)).IsAll(kRed);
  }));
}
