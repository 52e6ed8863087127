// Which part of the model the views show, moved by real keys and a real wheel in the running program.

#include <cmath>
#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "drawing/CCamera.h"
#include "drawing/DisplayFlags.h"
#include "drawing/SurfaceFit.h"
#include "editing/ProjectCamera.h"
#include "projects/ProjectFile.h"
#include "support/FileBuilders.h"
#include "support/gui/Input.h"
#include "support/gui/RunTest.h"

namespace {

// Of the wheel.
constexpr int kAway = 4;
constexpr int kTowards = 5;

// Over a place on the screen.
void TurnWheelWithCtrl(const CRelievo& program, CPixel place, int notches, int button = kAway) {
  MovePointer(place);
  program.Rests();
  HoldKeys("ctrl");
  for (int notch = 0; notch < notches; ++notch) {
    Click(place, button);
    program.Rests();
  }
  LetGoOfKeys("ctrl");
  program.Rests();
}

using ViewMovesRunTest = RunTest;

}  // namespace

// Clicks place heights and so tell what lies where.
TEST_F(ViewMovesRunTest, WheelAndKeysWithCtrlMoveTheViewUnderThePointer) {
  constexpr CPixel kAbout{180, 120};
  constexpr double kZoom = 1.25 * 1.25;
  m_User.ClickOn(Control::PositionConstraint);
  TurnWheelWithCtrl(m_Program, m_User.OnPhotograph(kAbout), 2);
  m_User.ClickAt(m_User.OnPhotograph(kAbout));
  m_User.ClickAt(m_User.OnPhotograph({380, 120}));
  TurnWheelWithCtrl(m_Program, m_User.AreaOf(Control::ModelView).Centre(), 2);
  m_User.Type("ctrl+Up");
  m_User.ClickAt(m_User.OnPhotograph({380, 320}));
  m_User.Type("ctrl+0");
  m_User.ClickAt(m_User.OnPhotograph({480, 60}));
  m_User.Type("ctrl+Right");
  m_User.ClickAt(m_User.OnPhotograph({60, 60}));
  CTestGrid saved;
  ASSERT_TRUE(ReadModel(saved.m_Grid));
  const CPlanePoint about = InModel(kAbout);
  const auto zoomed = [&](CPixel pixel) {
    const CPlanePoint place = InModel(pixel);
    return CPlanePoint{about.x + (place.x - about.x) / kZoom, about.y + (place.y - about.y) / kZoom};
  };
  const double tenth = (InModel({600, 0}).x - InModel({0, 0}).x) / 10;
  const std::vector<CPlanePoint> places{about,
                                        zoomed({380, 120}),
                                        zoomed({380, 320}),
                                        InModel({480, 60}),
                                        {InModel({60, 60}).x + tenth, InModel({60, 60}).y}};
  ASSERT_EQ(saved.m_Grid.Constraints().Points().size(), places.size());
  std::size_t k = 0;
  for (const CPtCstr& height : saved.m_Grid.Constraints().Points()) {
    EXPECT_NEAR(height.m_fX, places[k].x, 0.2) << k;
    EXPECT_NEAR(height.m_fY, places[k].y, 0.2) << k;
    ++k;
  }
}

namespace {

/// The program with a slanting plane, seen from the side, and two heights in it; what its views show is read from the
/// project that it saves.
class ModelViewMovesRunTest : public ::testing::Test {
 protected:
  static constexpr CPixel kAbout{290, 150};

  ModelViewMovesRunTest() {
    CGrid& grid = m_Grid.m_Grid;
    grid.Initialize(3, false, 0, 0, 200, 100);
    SetSurface(grid, CRamp{0.4, -0.3, 10});
    for (const double x : {50.0, 150.0}) grid.AddPtCstr({x, 60, PtCstrKind::kPosition, 10 + 0.4 * x - 18});
    grid.PerformPendingWork();
    CCamera camera;
    camera.Reset({0, 0, grid.Surface().MinHeight()}, {200, 100, grid.Surface().MaxHeight()});
    camera.m_fTheta = 70;
    camera.m_fPhi = 25;
    camera.m_fZeta = 5;
    camera.UpdateEye();
    CProject project;
    project.m_Model = StateOf(grid);
    project.m_Views.m_iEditingMode = static_cast<int>(EditingMode::Position);
    project.m_Views.m_uImageFlags = ImageFlag::kAtStart;
    project.m_Views.m_uModelFlags = ModelFlag::kGrid;
    camera.m_fR0 = camera.m_fR;
    KeepCamera(camera, project.m_Views);
    EXPECT_TRUE(SaveProject(project, m_File));
    m_Program.emplace(std::vector{m_File});
    m_User.emplace(*m_Program);
    EXPECT_TRUE(m_Program->Rests());
  }

  CProject Saved() {
    const std::string told = m_File + " is saved";
    const std::size_t before = m_User->Times(told);
    m_User->Type("ctrl+s");
    EXPECT_TRUE(m_User->Reads(told, before));
    return ReadProject(m_File).m_Project.value();
  }
  CProjectViews Views() { return Saved().m_Views; }
  static void ExpectSame(const CProjectViews& views, const CCamera& camera, double tolerance = 1e-6) {
    EXPECT_LT(Length(views.m_Centre - camera.m_Centre), tolerance);
    EXPECT_LT(Length(views.m_Eye - camera.m_Eye), tolerance);
    EXPECT_NEAR(views.m_fR, camera.m_fR, tolerance);
    EXPECT_EQ(views.m_fR0, camera.m_fR0);
    EXPECT_EQ(views.m_fTheta, camera.m_fTheta);
    EXPECT_EQ(views.m_fPhi, camera.m_fPhi);
    EXPECT_EQ(views.m_fZeta, camera.m_fZeta);
  }
  static void ExpectSameImageView(const CProjectViews& a, const CProjectViews& b) {
    EXPECT_EQ(a.m_fZoom, b.m_fZoom);
    EXPECT_EQ(a.m_Pan, b.m_Pan);
  }
  // What of the surface lies under a pixel of the model view.
  Vector3 Under(const CProjectViews& views, CPixel pixel) {
    const CCamera camera = CameraOf(views);
    const CArea view = m_User->AreaOf(Control::ModelView);
    const CHalfSizes sizes = camera.HalfSizes(view.m_iWidth, view.m_iHeight, false);
    const CSightLine line = camera.SightLine(pixel.m_iX, pixel.m_iY, view.m_iWidth, view.m_iHeight, sizes);
    const CSurface& surface = m_Grid.m_Grid.Surface();
    return FirstSeen(surface.Interpolation(), line, surface.MinHeight() - 1, surface.MaxHeight() + 1).value();
  }
  CPixel OnModel(CPixel pixel) const { return m_User->AreaOf(Control::ModelView).At(pixel); }
  CPixel OnImage(CPixel pixel) const { return m_User->AreaOf(Control::ImageView).At(pixel); }
  void PointAt(CPixel place) const {
    MovePointer(place);
    m_Program->Rests();
  }
  // With the button, over a place.
  void WhileHeld(int button, CPixel place, const std::function<void()>& act) const {
    PointAt(place);
    PressButton(button);
    m_Program->Rests();
    HoldKeys("ctrl");
    act();
    LetGoOfKeys("ctrl");
    ReleaseButton(button);
    m_Program->Rests();
  }

  CTestGrid m_Grid;
  CTemporaryDirectory m_Scratch;
  const std::string m_File = m_Scratch.File("slanting.relievo");
  std::optional<CRelievo> m_Program;
  std::optional<CUser> m_User;
};

}  // namespace

TEST_F(ModelViewMovesRunTest, WheelWithCtrlZoomsAboutThePointOfTheSurfaceUnderThePointer) {
  const CProjectViews before = Views();
  const Vector3 point = Under(before, kAbout);
  TurnWheelWithCtrl(*m_Program, OnModel(kAbout), 3);
  const CProjectViews near = Views();
  EXPECT_NEAR(near.m_fR, 0.512 * before.m_fR, 1e-9 * before.m_fR);
  EXPECT_LT(Length(Under(near, kAbout) - point), 1e-4) << "it stays under the pointer";
  const Vector3 sight = Normalised(near.m_Centre - near.m_Eye);
  EXPECT_NEAR(Dot(near.m_Centre - point, sight), 0, 1e-4) << "and is as deep as what turning keeps in view";
  EXPECT_NEAR(Length(near.m_Eye - near.m_Centre), near.m_fR, 1e-6);
  ExpectSameImageView(near, before);
  TurnWheelWithCtrl(*m_Program, OnModel({120, 260}), 5, kTowards);
  const CProjectViews far = Views();
  EXPECT_NEAR(far.m_fR, 1.5625 * before.m_fR, 1e-9 * before.m_fR);
  EXPECT_LT(Length(Under(far, {120, 260}) - Under(near, {120, 260})), 1e-4);
}

TEST_F(ModelViewMovesRunTest, KeysGoByTenthsShowAllAndAResetClearsThem) {
  const CProjectViews before = Views();
  const char* const handler = "CImageView::HandlePtPosCstr : FL_KEYBOARD";
  const auto type = [&](const char* key) {
    const std::size_t times = m_User->Times(handler);
    m_User->Type(key);
    EXPECT_TRUE(m_User->Reads(handler, times)) << key << ": the mode has it first";
  };
  PointAt(OnModel(kAbout));
  type("ctrl+Right");
  type("ctrl+Up");
  type("ctrl+Up");
  CCamera camera = CameraOf(before);
  camera.Pan(0.2 * camera.m_fR, 0.4 * camera.m_fR);
  ExpectSame(Views(), camera);
  for (const char* key : {"Left", "Down", "0", "ctrl+shift+Left"}) type(key);
  ExpectSame(Views(), camera);
  type("ctrl+Left");
  type("ctrl+Down");
  camera.Pan(-0.2 * camera.m_fR, -0.2 * camera.m_fR);
  ExpectSame(Views(), camera);
  type("ctrl+0");
  FitSurface(camera, m_Grid.m_Grid, 1, 1);
  const CProjectViews all = Views();
  ExpectSame(all, camera, 1e-3);
  ExpectSameImageView(all, before);
  m_User->ClickOn(Control::ResetModelView);
  const CProjectViews reset = Views();
  EXPECT_LT(Length(reset.m_Centre - before.m_Centre), 1e-3);
  EXPECT_NEAR(reset.m_fR, before.m_fR, 1e-3);
  EXPECT_EQ(reset.m_fPhi, 0);
}

TEST_F(ModelViewMovesRunTest, OverNeitherViewKeysAreTheImageViewsAndTheWheelIsNobodys) {
  const CProjectViews before = Views();
  const CPixel beside = m_User->PlaceOf(Control::HelpLine);
  TurnWheelWithCtrl(*m_Program, beside, 2);
  const CProjectViews turned = Views();
  ExpectSame(turned, CameraOf(before));
  ExpectSameImageView(turned, before);
  PointAt(beside);
  m_User->Type("ctrl+Right");
  m_User->Type("ctrl+Down");
  const CProjectViews moved = Views();
  ExpectSame(moved, CameraOf(before));
  EXPECT_NEAR(moved.m_Pan.x, 20, 1e-9);
  EXPECT_NEAR(moved.m_Pan.y, -10, 1e-9);
  m_User->Type("ctrl+0");
  ExpectSameImageView(Views(), before);
}

TEST_F(ModelViewMovesRunTest, DuringADragNothingMoves) {
  const CProjectViews before = Views();
  for (const int button : {1, 2, 3}) {
    WhileHeld(button, OnModel(kAbout), [&] {
      Click(OnModel(kAbout), kAway);
      for (const char* key : {"Right", "Up", "0"}) PressKey(key);
      m_Program->Rests();
    });
  }
  // Off the constraints, with Shift, so that it is a drag of the view.
  PointAt(OnImage({60, 60}));
  HoldKeys("shift");
  WhileHeld(1, OnImage({60, 60}), [&] {
    LetGoOfKeys("shift");
    Click(OnImage({60, 60}), kAway);
    for (const char* key : {"Right", "Up"}) PressKey(key);
    m_Program->Rests();
  });
  const CProjectViews after = Views();
  ExpectSame(after, CameraOf(before));
  ExpectSameImageView(after, before);
  TurnWheelWithCtrl(*m_Program, OnModel(kAbout), 1);
  EXPECT_LT(Views().m_fR, before.m_fR) << "afterwards they do";
}

TEST_F(ModelViewMovesRunTest, ThePlainWheelStillSelectsOverEitherView) {
  const CProjectViews before = Views();
  for (const CPixel& place : {OnModel(kAbout), OnImage({60, 60})}) {
    PointAt(place);
    Click(place, kTowards);
    m_Program->Rests();
    m_User->Type("Delete");
  }
  const CProject after = Saved();
  EXPECT_TRUE(after.m_Model.m_Document.m_Sketch.m_Points.empty());
  ExpectSame(after.m_Views, CameraOf(before));
  ExpectSameImageView(after.m_Views, before);
}

TEST_F(ModelViewMovesRunTest, WheelWithCtrlSelectsNothing) {
  for (const CPixel& place : {OnModel(kAbout), OnImage({60, 60})}) {
    TurnWheelWithCtrl(*m_Program, place, 1, kTowards);
    m_User->Type("Delete");
  }
  const CProject after = Saved();
  EXPECT_EQ(after.m_Model.m_Document.m_Sketch.m_Points.size(), 2U);
  EXPECT_EQ(after.m_Views.m_fZoom, 1.25);
}
