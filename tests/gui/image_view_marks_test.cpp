// The image view as pixels: constraints, the brush, and what the debugging tools mark.

#include <array>
#include <cmath>
#include <string>

#include "model/PointProbe.h"
#include "support/CStaging.h"
#include "support/ConstraintBuilders.h"
#include "support/gui/ImageViewDrawingTest.h"

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
