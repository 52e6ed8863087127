// Curves, and the texels that they take out of the picture, as the image view draws them.

#include <string>
#include <vector>

#include "drawing/DrawingSettings.h"
#include "io/Bmp.h"
#include "support/BmpBuilders.h"
#include "support/CStaging.h"
#include "support/CTemporaryDirectory.h"
#include "support/CurveBuilders.h"
#include "support/gui/ImageViewTest.h"

namespace {

constexpr CRgb kWhite{255, 255, 255};
constexpr CRgb kRed{255, 0, 0};
constexpr CRgb kGreen{0, 255, 0};
constexpr CRgb kBlue{0, 0, 255};

// What is drawn, read back from the file that SaveFrame writes.
class CurveDrawingTest : public ImageViewTest {
 protected:
  CurveDrawingTest() {
    Attach();
    View().SetMode(EditingMode::Curve);
    m_Window.show();
    EXPECT_TRUE(RunToolkitUntil([this] { return View().shown() != 0; }));
    View().SetDisplayFlags(ImageFlag::kCurves);
    TakeConsole();
  }
  void Shoot() {
    // As at the end of a rebuild.
    Grid().Surface().Tree().ListLeaves();
    ASSERT_TRUE(View().SaveFrame(m_Scratch.File("frame.bmp")));
    m_Frame = Global::LoadBMP(m_Scratch.File("frame.bmp"), 1)->m_Picture;
    TakeConsole();
  }
  CRgb At(double x, double y) const {
    const auto index = 3 * (static_cast<std::size_t>(y) * kSize + static_cast<std::size_t>(x));
    return {m_Frame.m_aPixels.at(index), m_Frame.m_aPixels.at(index + 1), m_Frame.m_aPixels.at(index + 2)};
  }
  int Count(const CRgb& colour) const {
    int count = 0;
    for (int y = 0; y < kSize; ++y) {
      for (int x = 0; x < kSize; ++x) count += At(x, y) == colour ? 1 : 0;
    }
    return count;
  }
  CCntrCtrl& Add(const CPlaces& places, CurveType type = CurveType::kPosition, bool closed = false) {
    return CStaging::Constraints(Grid()).Curves().Add(PointsAt(places), type, closed);
  }
  // Pixels lit on the line x = const between two heights.
  int WidthAt(double x, int from, int to) const {
    int width = 0;
    for (int y = from; y <= to; ++y) width += At(x, y) == kWhite ? 1 : 0;
    return width;
  }
  void Click(double x, double y) {
    Push(FL_LEFT_MOUSE, x, y);
    Release();
  }

  CTemporaryDirectory m_Scratch;
  CPicture m_Frame;
  CGlobalScope<CDrawingSettings> m_Settings{g_DrawingSettings, CDrawingSettings{}};
};

const CPlaces kAcross{{10, 50}, {90, 50}};

}  // namespace

TEST_F(CurveDrawingTest, CurvesNeedTheirFlag) {
  Add(kAcross);
  Shoot();
  EXPECT_NE(At(40, 50), kBlack);
  View().SetDisplayFlags(ImageFlag::kPointConstraints);
  Shoot();
  EXPECT_EQ(Count(kBlack), kSize * kSize);
}

TEST_F(CurveDrawingTest, TypesHaveColoursOfTheirOwn) {
  std::vector<CRgb> colours;
  CCntrCtrl& curve = Add(kAcross);
  for (const CurveType type : {CurveType::kPosition, CurveType::kNormal, CurveType::kFairness, CurveType::kNone}) {
    curve.SetType(type);
    Shoot();
    for (const CRgb& other : colours) EXPECT_FALSE(At(40, 50) == other) << static_cast<int>(type);
    for (const CRgb& state : {kGreen, kBlue, kBlack}) EXPECT_FALSE(At(40, 50) == state) << static_cast<int>(type);
    colours.push_back(At(40, 50));
  }
}

TEST_F(CurveDrawingTest, StateShowsBesideTheType) {
  CCntrCtrl& curve = Add(kAcross, CurveType::kNormal);
  Shoot();
  const CRgb plain = At(40, 50);
  EXPECT_EQ(Count(kBlue), 0);
  curve.SetState(PtCstrState::kHighlighted, true);
  Shoot();
  EXPECT_GT(Count(kBlue), 100);
  EXPECT_EQ(At(40, 50), plain);
  curve.SetState(PtCstrState::kSelected, true);
  Shoot();
  EXPECT_GT(Count(kGreen), 100);
  EXPECT_EQ(Count(kBlue), 0);
}

TEST_F(CurveDrawingTest, NodesShowAndShowTheirState) {
  CCntrCtrl& curve = Add({{10, 50}, {50, 50}, {90, 50}});
  Shoot();
  EXPECT_NE(At(50, 52), kBlack);
  EXPECT_EQ(At(40, 52), kBlack);
  std::next(curve.Nodes().begin())->SetState(PtCstrState::kHighlighted, true);
  Shoot();
  EXPECT_EQ(At(50, 52), kBlue);
  curve.Nodes().back().SetState(PtCstrState::kSelected, true);
  Shoot();
  EXPECT_EQ(At(90, 52), kGreen);
  EXPECT_EQ(At(50, 52), kBlue);
}

TEST_F(CurveDrawingTest, ClosedCurveHasItsLastSegment) {
  Add({{20, 20}, {80, 20}, {80, 80}}, CurveType::kFairness, true);
  Shoot();
  EXPECT_NE(At(50, 50), kBlack);
  CStaging::Constraints(Grid()).Curves().back().SetClosed(false);
  Shoot();
  EXPECT_EQ(At(50, 50), kBlack);
}

TEST_F(CurveDrawingTest, GeneratedConstraintsShowWhereTheyAre) {
  CStaging::Constraints(Grid()).Generated().Add(SlopeCstr(30, 70));
  Shoot();
  EXPECT_EQ(At(30, 70), kRed);
  EXPECT_LT(Count(kRed), 40);
  View().SetDisplayFlags(0);
  Shoot();
  EXPECT_EQ(Count(kRed), 0);
}

TEST_F(CurveDrawingTest, CurvesKeepTheirWidthOnTheScreen) {
  Add(kAcross);
  g_fZoom = 0.5;
  Shoot();
  EXPECT_NE(At(40, 50), kBlack);
  EXPECT_EQ(At(40, 53), kBlack);
}

// The curve in progress.

TEST_F(CurveDrawingTest, CurveInProgressLeadsToTheMouse) {
  View().SetDisplayFlags(0);
  Click(20.5, 20.5);
  Click(80.5, 20.5);
  Move(80.5, 80.5);
  Shoot();
  EXPECT_EQ(At(50, 20), kWhite);
  EXPECT_EQ(At(80, 50), kWhite);
  EXPECT_EQ(At(50, 50), kBlack) << "it does not lead back";
  Move(30.5, 80.5);
  Shoot();
  EXPECT_EQ(At(80, 50), kBlack);
  EXPECT_EQ(At(55, 50), kWhite);
}

TEST_F(CurveDrawingTest, CurveInProgressEndsAtItsLastPointWithoutTheMouse) {
  Click(20.5, 20.5);
  Click(80.5, 20.5);
  Move(80.5, 80.5);
  SendAt(FL_LEAVE, 80.5, 99.5);
  Shoot();
  EXPECT_EQ(At(50, 20), kWhite);
  EXPECT_EQ(At(80, 50), kBlack);
}

TEST_F(CurveDrawingTest, CurveThatIsToCloseIsWideAndClosed) {
  Click(20.5, 20.5);
  Click(80.5, 20.5);
  Click(80.5, 80.5);
  Shoot();
  EXPECT_LE(WidthAt(40, 10, 30), 2);
  EXPECT_EQ(At(50, 50), kBlack);
  Move(20.5, 20.5);
  Shoot();
  EXPECT_EQ(WidthAt(40, 10, 30), 5);
  EXPECT_EQ(At(50, 50), kWhite);
}

TEST_F(CurveDrawingTest, CurveInProgressLiesOverThePicture) {
  Grid().Relighting().SetPicture(PlainPicture(2, 2, 255, 0, 0));
  View().make_current();
  m_Textures.Load(Grid().Relighting().Textures());
  View().SetDisplayFlags(ImageFlag::kImage);
  Click(20.5, 20.5);
  Move(80.5, 20.5);
  Shoot();
  EXPECT_EQ(At(50, 20), kWhite);
  EXPECT_EQ(At(50, 60), kRed);
}

TEST_F(CurveDrawingTest, CurveInProgressIsGoneAfterItsEnd) {
  View().SetDisplayFlags(0);
  for (const int key : {FL_Escape, FL_Enter}) {
    View().SetCurveType(CurveType::kPosition);
    Click(20.5, 20.5);
    Move(80.5, 20.5);
    Key(key);
    Shoot();
    EXPECT_EQ(Count(kWhite), 0);
  }
  EXPECT_EQ(Grid().Constraints().Curves().size(), 1U);
}

TEST_F(CurveDrawingTest, OtherModesShowNoCurveInProgress) {
  Click(20.5, 20.5);
  Move(80.5, 20.5);
  View().SetMode(EditingMode::Position);
  Shoot();
  EXPECT_EQ(Count(kWhite), 0);
}

// Texels.

TEST_F(CurveDrawingTest, TexelsInADiscontinuityAreMarkedWithTheirFlag) {
  Grid().Relighting().SetPicture(PlainPicture(50, 20, 0, 0, 0));
  MakeLeaf(Grid().Surface().Tree(), 2, 1, 1, CellFlag::kTriangles);
  Grid().TestTexelsInDiscontinuity();
  Shoot();
  EXPECT_EQ(At(37, 37), kBlack);
  View().SetDisplayFlags(ImageFlag::kDiscontinuityTexels);
  Shoot();
  EXPECT_EQ(ImageFlag::kDiscontinuityTexels, 0x80000U);
  for (const auto& [x, y, lit] : {std::tuple{27, 27, true}, {48, 48, true}, {20, 37, false}, {37, 60, false}})
    EXPECT_EQ(At(x, y) != kBlack, lit) << x << ", " << y;
}

TEST_F(CurveDrawingTest, WithoutAPictureThereAreNoTexels) {
  MakeLeaf(Grid().Surface().Tree(), 2, 1, 1, CellFlag::kTriangles);
  View().SetDisplayFlags(ImageFlag::kDiscontinuityTexels);
  Shoot();
  EXPECT_EQ(Count(kBlack), kSize * kSize);
}

// The albedo under the mouse.

TEST_F(CurveDrawingTest, AlbedoUnderTheMouseIsLogged) {
  Grid().SetSparseH();
  Grid().Relighting().SetPicture(PlainPicture(50, 20, 0, 0, 0));
  for (const std::uint32_t flag : {2U, 4U, 8U, 32U, 64U, 0x100U}) {
    View().SetDebugFlags(flag);
    TakeConsole();
    Move(99.5, 0.5);
    EXPECT_NE(TakeConsole().find("xt : 49 , yt : 0 , kdr : 0.000000 , kdg : 0.000000 , kdb : 0.000000\n"),
              std::string::npos)
        << flag;
  }
  View().SetDebugFlags(DebugFlag::kInterpolation);
  Move(50.5, 50.5);
  EXPECT_EQ(TakeConsole().find("xt : "), std::string::npos);
}

TEST_F(CurveDrawingTest, AlbedoIsThatOfTheTexel) {
  CPicture picture = PlainPicture(2, 2, 0, 0, 0);
  picture.m_aPixels[9] = 51;  // upper right, red
  Grid().Relighting().SetPicture(picture);
  CLight& ambient = CStaging::RemovedLights(Grid()).m_aLights[CLightSet::kAmbient];
  ambient.m_bActive = true;
  ambient.m_afColour = {0.5, 0.5, 0.5};
  Grid().GetKd();
  View().SetDebugFlags(DebugFlag::kNormalTest);
  TakeConsole();
  Move(75.5, 75.5);
  EXPECT_NE(TakeConsole().find("xt : 1 , yt : 1 , kdr : 0.400000 , kdg : 0.000000 , kdb : 0.000000\n"),
            std::string::npos);
}

TEST_F(CurveDrawingTest, AlbedoIsHeldToThePictureAndNeedsOne) {
  View().SetDebugFlags(DebugFlag::kNormalTest);
  Move(50.5, 50.5);
  EXPECT_EQ(TakeConsole().find("xt : "), std::string::npos);
  Grid().Relighting().SetPicture(PlainPicture(50, 20, 0, 0, 0));
  g_fZoom = 2;
  Move(0.5, 99.5);
  EXPECT_NE(TakeConsole().find("xt : 0 , yt : 19 , "), std::string::npos);
}
