// A photograph with curves drawn on it by mouse and keyboard: a cup that stands in front of its saucer.

#include <cmath>
#include <numbers>

#include "drawing/DrawingSettings.h"
#include "io/Bmp.h"
#include "support/BmpBuilders.h"
#include "support/CStaging.h"
#include "support/CurveBuilders.h"
#include "support/UpdateBuilders.h"
#include "support/gui/Input.h"
#include "support/gui/WindowTest.h"

namespace {

/// A place of the photograph, in pixels from its upper left corner.
struct CSpot {
  double x;
  double y;
};

struct CEllipse {
  CSpot m_Centre;
  double m_fWidth;   ///< half of it
  double m_fHeight;  ///< half of it
};

constexpr int kPictureWidth = 600;
constexpr int kPictureHeight = 400;
constexpr CEllipse kRim{{290.5, 113}, 118, 95};
constexpr CEllipse kSaucer{{278.5, 228}, 200, 160};

class CoffeeCurvesTest : public WindowTest {
 protected:
  CoffeeCurvesTest() {
    g_iMaxLevel = 7;
    Grid().Initialize(5, false, 0, 0, 100, 100);
    Grid().Run().SetRunning(false);
    m_Window.GridView().ResetCamera();
    // The mouse of the display must not enter a view of its own accord.
    MovePointer({0, 0});
    ShowWindow();
    m_Dialogs.m_File = RELIEVO_SAMPLES "/coffee.bmp";
    Menu().Choose(MenuEntry::LoadImage);
    Menu().Choose(MenuEntry::ModelCurves);
    ClickOn(Control::CurveConstraint);
    // The first key comes before the mouse.
    View().take_focus();
  }
  CImageView& View() { return m_Window.ImageView(); }
  void PlaceMouse(const CSpot& spot) {
    Fl::e_x = View().x() + static_cast<int>(spot.x / kPictureWidth * View().w());
    Fl::e_y = View().y() + static_cast<int>(spot.y / kPictureHeight * View().h());
  }
  void Send(int event, const CSpot& spot) {
    PlaceMouse(spot);
    Fl::e_keysym = event == FL_MOVE ? 0 : FL_Button + FL_LEFT_MOUSE;
    Fl::e_state = event == FL_PUSH ? FL_BUTTON1 : 0;
    Fl::handle(event, &m_Window);
  }
  void Click(const CSpot& spot) {
    Send(FL_MOVE, spot);
    Send(FL_PUSH, spot);
    Send(FL_RELEASE, spot);
  }
  void Enter(const CSpot& spot, int modifiers = 0) {
    Send(FL_MOVE, spot);
    PlaceMouse(spot);
    Type(FL_Enter, modifiers);
    Grid().PerformPendingWork();
  }
  // From one angle to another, in degrees clockwise from the right.
  void DrawArc(const CEllipse& e, double from, double to) {
    constexpr int kNodes = 32;
    const auto at = [&](int k) {
      const double angle = (from + (to - from) * k / kNodes) * std::numbers::pi / 180;
      return CSpot{e.m_Centre.x + e.m_fWidth * std::cos(angle), e.m_Centre.y + e.m_fHeight * std::sin(angle)};
    };
    for (int k = 0; k < kNodes; ++k) Click(at(k));
    Enter(at(kNodes));
  }
  void Raise(const CSpot& spot, double height) {
    Grid().AddPtCstr(HeightCstr(spot.x / kPictureWidth * 100, 100 - spot.y / kPictureHeight * 100, height));
  }
  // The height of the surface under a place of the photograph.
  double HeightUnder(const CSpot& spot) {
    const int side = Grid().Surface().Lattice().PointsPerSide() - 1;
    return Grid().GetHeightAt(spot.x / kPictureWidth * side, (1 - spot.y / kPictureHeight) * side);
  }
  void DrawScene() {
    Type('p', 0, "p");
    DrawArc(kRim, 0, 360);
    DrawArc(kSaucer, -52, 242);
    Type('n', 0, "n");
    Click({0, 105});
    Enter({152, 0});
    for (const CSpot& spot : {CSpot{290, 35}, CSpot{190, 110}, CSpot{385, 110}, CSpot{290, 190}}) Raise(spot, 25);
    for (const CSpot& spot : {CSpot{110, 180}, CSpot{440, 200}, CSpot{280, 360}, CSpot{420, 300}}) Raise(spot, 8);
    for (const CSpot& spot : {CSpot{30, 380}, CSpot{580, 20}, CSpot{580, 380}, CSpot{60, 120}}) Raise(spot, 0);
  }
  void Solve() {
    constexpr int kTicks = 300;
    Grid().Run().SetRunning(true);
    for (int k = 0; k < kTicks; ++k) Grid().UpdateGrid();
    Grid().Run().SetRunning(false);
  }
  void TurnModel() {
    CGridView& view = m_Window.GridView();
    view.ResetCamera();
    Fl::e_x = 200;
    Fl::e_y = 200;
    Fl::e_state = 0;
    Fl::e_keysym = FL_Button + FL_LEFT_MOUSE;
    view.handle(FL_PUSH);
    Fl::e_x += 100;
    Fl::e_y -= 100;
    view.handle(FL_DRAG);
    view.handle(FL_RELEASE);
  }
  CPicture ModelFrame() {
    const std::string file = (m_Directory.Path() / "model.bmp").string();
    EXPECT_TRUE(m_Window.GridView().SaveFrame(file));
    return std::move(Global::LoadBMP(file, 1)->m_Picture);
  }
  // Of the pixel of the frame that shows a point of the model.
  CRgb ColourAt(const CPicture& frame, const Vector3& place) {
    const CCamera& camera = m_Window.GridView().Camera();
    const Vector3 forward = Normalised(camera.m_Centre - camera.m_Eye);
    const Vector3 right = Normalised(Cross(forward, camera.m_Up));
    const Vector3 up = Cross(right, forward);
    const auto pixel = [&](const Vector3& axis, int size) {
      return static_cast<int>((Dot(place - camera.m_Centre, axis) / camera.m_fR + 1) / 2 * size);
    };
    const int x = pixel(right, frame.m_iWidth);
    const int y = pixel(up, frame.m_iHeight);
    const std::uint8_t* rgb = &frame.m_aPixels.at(3 * static_cast<std::size_t>(y * frame.m_iWidth + x));
    return {rgb[0], rgb[1], rgb[2]};
  }
  // Of the places between cup and saucer on the side that the turned model shows, those that show the background.
  double ShareOfGap(const CPicture& frame) {
    constexpr int kAngles = 13;
    constexpr int kHeights = 5;
    int gaps = 0;
    for (int k = 0; k < kAngles * kHeights; ++k) {
      const int step = k / kHeights;
      const double angle = std::numbers::pi / 3 * step / (kAngles - 1);
      const double height = 12 + 2 * (k % kHeights);
      const double x = kRim.m_Centre.x + kRim.m_fWidth * std::cos(angle);
      const double y = kRim.m_Centre.y + kRim.m_fHeight * std::sin(angle);
      const Vector3 place{x / kPictureWidth * 100, 100 - y / kPictureHeight * 100, height};
      gaps += ColourAt(frame, place) == kGreen ? 1 : 0;
    }
    return static_cast<double>(gaps) / (kAngles * kHeights);
  }

  static constexpr CRgb kGreen{0, 255, 0};
  CGlobalScope<CDrawingSettings> m_Settings{g_DrawingSettings, CDrawingSettings{}};
};

}  // namespace

TEST_F(CoffeeCurvesTest, CupStandsInFrontOfItsSaucer) {
  g_DrawingSettings.m_afBackground = {0, 1, 0, 0};
  DrawScene();
  ASSERT_EQ(Grid().Constraints().Curves().size(), 3U);
  Solve();
  EXPECT_NEAR(HeightUnder({290, 200}), 25, 1);
  EXPECT_NEAR(HeightUnder({290, 218}), 8, 1);
  m_Window.GridView().SetFlag(ModelFlag::kGrid, false);
  TurnModel();
  EXPECT_GT(ShareOfGap(ModelFrame()), 0.95);

  CStaging::Constraints(Grid()).Curves().clear();
  Grid().Run().Post(Operation::kRebuildMaps);
  Solve();
  EXPECT_EQ(ShareOfGap(ModelFrame()), 0) << "sewn together";
}

TEST_F(CoffeeCurvesTest, CurvesAreDrawnOverBothViews) {
  DrawScene();
  ASSERT_EQ(Grid().Constraints().Curves().size(), 3U);
  Solve();
  m_Window.GridView().SetFlag(ModelFlag::kGrid, false);
  TurnModel();
  const auto count = [](const CPicture& frame, CRgb colour) {
    int found = 0;
    for (std::size_t k = 0; k < frame.m_aPixels.size(); k += 3)
      found += CRgb{frame.m_aPixels[k], frame.m_aPixels[k + 1], frame.m_aPixels[k + 2]} == colour ? 1 : 0;
    return found;
  };
  constexpr CRgb kTearColour{255, 0, 191};
  constexpr CRgb kCreaseColour{255, 128, 0};
  EXPECT_GT(count(ModelFrame(), kTearColour), 1000);
  EXPECT_GT(count(ModelFrame(), kCreaseColour), 100);
  m_Window.GridView().SetFlag(ModelFlag::kCurves, false);
  EXPECT_EQ(count(ModelFrame(), kTearColour), 0);
  EXPECT_EQ(count(ModelFrame(), kCreaseColour), 0);
}
