#include <array>
#include <string>
#include <utility>

#include <FL/Fl.H>
#include <gtest/gtest.h>

#include "drawing/DisplayFlags.h"
#include "support/CStaging.h"
#include "support/UpdateBuilders.h"
#include "support/gui/CHeldKey.h"
#include "support/gui/ModelViewTest.h"
#include "ui/modelview/CGridView.h"
#include "ui/seams/HelpTexts.h"

namespace {

constexpr double kPi = 3.1415926;

// Events go straight to the view, as the toolkit would send them.
class ModelViewEventsTest : public ModelViewTest {
 protected:
  void SetUp() override {
    ModelViewTest::SetUp();
    View().EnableEvents();
    m_Grid.m_Console.Take();
  }
  void TearDown() override { Fl::e_state = 0; }

  int Send(int event, int x = 100, int y = 100) {
    Fl::e_x = x;
    Fl::e_y = y;
    return View().handle(event);
  }
  void Press(int button) {
    Fl::e_keysym = FL_Button + button;
    EXPECT_EQ(Send(FL_PUSH), 1);
    // A key typed in a drag leaves this behind.
    Fl::e_keysym = 'x';
  }
  // A press and one motion, in pixels to the right and up.
  void Drag(int button, int dx, int dy, int state = 0) {
    Fl::e_state = state;
    Press(button);
    EXPECT_EQ(Send(FL_DRAG, 100 + dx, 100 - dy), 1);
  }
  CCamera CameraAtStart() {
    View().ResetCamera();
    return View().Camera();
  }
};

void ExpectSame(const CCamera& a, const CCamera& b) {
  EXPECT_LT(Length(a.m_Eye - b.m_Eye), 1e-12);
  EXPECT_LT(Length(a.m_Up - b.m_Up), 1e-12);
  EXPECT_EQ(a.m_fR, b.m_fR);
}

std::array<double, 4> Turned(const CCamera& camera, const std::array<double, 4>& d, double dx, double dy) {
  const Vector3 turned = camera.RotateDirection({d[0], d[1], d[2]}, dx, dy);
  return {turned.x, turned.y, turned.z, d[3]};
}

}  // namespace

using ModelViewStartTest = ModelViewTest;

TEST_F(ModelViewStartTest, FlagsStartWithGridAndNoTransformation) { EXPECT_EQ(View().DisplayFlags(), 514U); }

TEST_F(ModelViewStartTest, FlagsAreSetAndClearedOneByOne) {
  for (const std::uint32_t flag : {2U, 4U, 8U, 64U, 0x10000U, 0x20000U, 0x40000U}) {
    View().SetFlag(flag, false);
    const std::uint32_t before = View().DisplayFlags();
    View().SetFlag(flag, true);
    EXPECT_EQ(View().DisplayFlags(), before | flag);
    EXPECT_NE(View().damage(), 0);
  }
}

TEST_F(ModelViewStartTest, FlagsHaveTheirValues) {
  const std::array flags{ModelFlag::kGrid,          ModelFlag::kPointConstraints, ModelFlag::kCurves,
                         ModelFlag::kTexturedModel, ModelFlag::kCellNormals,      ModelFlag::kPointNormals,
                         ModelFlag::kTexelNormals};
  EXPECT_EQ(flags, (std::array<std::uint32_t, 7>{2, 4, 8, 64, 0x10000, 0x20000, 0x40000}));
}

TEST_F(ModelViewStartTest, AttachingAGridLooksAtItsBox) {
  SetSurface(Grid(), CBump{});
  View().AttachGrid(Grid());
  const CCamera& camera = View().Camera();
  const Vector3 box{16, 6, Grid().Surface().MaxHeight() - Grid().Surface().MinHeight()};
  ASSERT_GT(box.z, 1);
  EXPECT_DOUBLE_EQ(camera.m_fR, 0.5 * Length(box));
  EXPECT_LT(
      Length(camera.m_Centre - Vector3{4.5, 23, 0.5 * (Grid().Surface().MinHeight() + Grid().Surface().MaxHeight())}),
      1e-12);
}

TEST_F(ModelViewStartTest, EventsGoToTheToolkitUntilTheyAreEnabled) {
  const CCamera before = View().Camera();
  m_Grid.m_Console.Take();
  Fl::e_keysym = FL_Button + FL_RIGHT_MOUSE;
  for (const auto& [event, x] : {std::pair{FL_ENTER, 0}, {FL_PUSH, 0}, {FL_DRAG, 90}, {FL_RELEASE, 90}}) {
    Fl::e_x = x;
    View().handle(event);
  }
  EXPECT_EQ(m_Grid.m_Console.Take(), "Default:\nDefault:\nDefault:\nDefault:\n");
  ExpectSame(View().Camera(), before);
  EXPECT_EQ(m_Host.m_iPauses, 0);
  EXPECT_TRUE(m_Host.m_aiHelps.empty());
}

TEST_F(ModelViewEventsTest, EnabledEventsAreNotLogged) {
  Send(FL_ENTER);
  Send(FL_KEYBOARD);
  Drag(FL_LEFT_MOUSE, 5, 5);
  Send(FL_RELEASE);
  EXPECT_EQ(m_Grid.m_Console.Take(), "");
}

TEST_F(ModelViewEventsTest, HelpIsShownWhileThePointerIsInside) {
  EXPECT_EQ(Send(FL_ENTER), 1);
  EXPECT_EQ(m_Host.m_aiHelps, std::vector{19});
  EXPECT_EQ(m_Host.m_iFocuses, 0);
  EXPECT_EQ(Send(FL_MOVE), 1);
  EXPECT_EQ(m_Host.m_aiHelps, (std::vector{19, 19}));
  EXPECT_EQ(m_Host.m_iFocuses, 1) << "moving lets the image view take the focus";
  EXPECT_EQ(m_Host.m_iHelpsRestored, 0);
  EXPECT_EQ(Send(FL_LEAVE), 1);
  EXPECT_EQ(m_Host.m_iHelpsRestored, 1);
}

TEST_F(ModelViewEventsTest, KeysAndTheWheelAreNotUsed) {
  for (const int event : {FL_KEYBOARD, FL_SHORTCUT, FL_MOUSEWHEEL, FL_FOCUS}) EXPECT_EQ(Send(event), 0) << event;
}

TEST_F(ModelViewEventsTest, WheelWithCtrlZoomsAboutThePointOfTheSurface) {
  SetSurface(Grid(), CRamp{});
  View().ResetCamera();
  Fl::e_x = 300;
  Fl::e_y = 180;
  Fl::e_state = FL_CTRL;
  Fl::e_dy = -1;
  const CCamera before = View().Camera();
  const auto underPointer = [&] {
    const CSightLine line = View().Camera().SightLine(300, 180, kSize, kSize, View().Camera().HalfSizes(1, 1, false));
    const CSurface& surface = Grid().Surface();
    return FirstSeen(surface.Interpolation(), line, surface.MinHeight(), surface.MaxHeight());
  };
  const auto point = underPointer();
  ASSERT_TRUE(point) << "the surface lies there";
  EXPECT_EQ(View().handle(FL_MOUSEWHEEL), 1);
  EXPECT_DOUBLE_EQ(View().Camera().m_fR, 0.8 * before.m_fR);
  ASSERT_TRUE(underPointer());
  EXPECT_LT(Length(*underPointer() - *point), 1e-6);
  EXPECT_NEAR(View().Camera().m_Centre.z, point->z, 1e-6) << "turning keeps it in view";

  Fl::e_state = FL_CTRL | FL_BUTTON1;
  const double r = View().Camera().m_fR;
  EXPECT_EQ(View().handle(FL_MOUSEWHEEL), 1);
  EXPECT_EQ(View().Camera().m_fR, r) << "not with a button held";
  // Over a point at another depth, what turning keeps in view would move.
  Fl::e_x = 180;
  Fl::e_y = 230;
  const Vector3 centre = View().Camera().m_Centre;
  EXPECT_EQ(View().handle(FL_MOUSEWHEEL), 1);
  EXPECT_EQ(View().Camera().m_Centre, centre);
  Fl::e_state = FL_CTRL;
  Fl::e_dy = 0;
  EXPECT_EQ(View().handle(FL_MOUSEWHEEL), 1);
  EXPECT_EQ(View().Camera().m_Centre, centre) << "sideways";
  Fl::e_dy = -1;
  Fl::e_x = kSize;
  EXPECT_EQ(View().handle(FL_MOUSEWHEEL), 0) << "outside";
  Fl::e_state = 0;
  Fl::e_x = 300;
  EXPECT_EQ(View().handle(FL_MOUSEWHEEL), 0);
  View().ResetCamera();
  EXPECT_EQ(View().Camera().m_Centre, before.m_Centre);
}

TEST_F(ModelViewEventsTest, MovesBySteps) {
  const CCamera start = View().Camera();
  View().MoveView(ViewMove::Right);
  View().MoveView(ViewMove::Up);
  EXPECT_NEAR(View().Camera().m_Centre.x - start.m_Centre.x, 0.2 * start.m_fR, 1e-6);
  EXPECT_NEAR(View().Camera().m_Centre.y - start.m_Centre.y, 0.2 * start.m_fR, 1e-6);
  View().MoveView(ViewMove::Left);
  View().MoveView(ViewMove::Down);
  EXPECT_LT(Length(View().Camera().m_Centre - start.m_Centre), 1e-6);
}

TEST_F(ModelViewEventsTest, ShowsAllOfTheSurfaceAtItsAngle) {
  CCamera camera = View().Camera();
  camera.m_fPhi = 30;
  camera.m_fR = 0;
  View().SetCamera(camera);
  View().MoveView(ViewMove::All);
  EXPECT_EQ(View().Camera().m_fPhi, 30);
  const double diagonal = std::hypot(kOblong.x1 - kOblong.x0, kOblong.y1 - kOblong.y0);
  EXPECT_GT(View().Camera().m_fR, 0.3 * (kOblong.y1 - kOblong.y0));
  EXPECT_LT(View().Camera().m_fR, 0.6 * diagonal);
}

TEST_F(ModelViewEventsTest, SolverRestsFromThePressToTheRelease) {
  Drag(FL_LEFT_MOUSE, 3, 3);
  EXPECT_EQ(m_Host.m_iPauses, 1);
  EXPECT_EQ(m_Host.m_iResumptions, 0);
  EXPECT_EQ(Send(FL_RELEASE), 1);
  EXPECT_EQ(m_Host.m_iResumptions, 1);
}

TEST_F(ModelViewEventsTest, LeftDragTurnsTheEye) {
  CCamera expected = CameraAtStart();
  expected.Rotate(12, 7);
  Drag(FL_LEFT_MOUSE, 12, 7);
  ExpectSame(View().Camera(), expected);
  EXPECT_NE(View().damage(), 0);
}

TEST_F(ModelViewEventsTest, DragGoesByTheMotionSinceTheLastEvent) {
  CCamera expected = CameraAtStart();
  expected.Rotate(12, 7);
  expected.Rotate(-3, 1);
  Drag(FL_LEFT_MOUSE, 12, 7);
  Send(FL_DRAG, 109, 92);
  ExpectSame(View().Camera(), expected);
}

TEST_F(ModelViewEventsTest, MiddleDragZoomsAndRightDragRolls) {
  CCamera zoomed = CameraAtStart();
  zoomed.Zoom(30, -10);
  Drag(FL_MIDDLE_MOUSE, 30, -10);
  ExpectSame(View().Camera(), zoomed);
  CCamera rolled = CameraAtStart();
  rolled.Roll(30, -10);
  Drag(FL_RIGHT_MOUSE, 30, -10);
  ExpectSame(View().Camera(), rolled);
}

TEST_F(ModelViewEventsTest, ModifiersDoNotChangeTheMiddleAndRightDrag) {
  for (const int state : {FL_CTRL, FL_ALT, FL_SHIFT}) {
    CCamera zoomed = CameraAtStart();
    zoomed.Zoom(30, 0);
    Drag(FL_MIDDLE_MOUSE, 30, 0, state);
    ExpectSame(View().Camera(), zoomed);
  }
}

TEST_F(ModelViewEventsTest, ZoomedToNothingOnlyTheBackgroundShows) {
  CameraAtStart();
  Drag(FL_MIDDLE_MOUSE, -1000, 0);
  EXPECT_EQ(View().Camera().m_fR, 0);
  EXPECT_EQ(CountPixels(FrameOf(View()), kBlack), kSize * kSize);
  Drag(FL_LEFT_MOUSE, 10, 10);
  View().ResetCamera();
  EXPECT_GT(View().Camera().m_fR, 1);
}

TEST_F(ModelViewEventsTest, EndOfTheDragIsTheEndOfItsEffect) {
  const CCamera before = CameraAtStart();
  Press(FL_LEFT_MOUSE);
  View().EndDrag();
  EXPECT_EQ(m_Host.m_iResumptions, 1);
  Send(FL_DRAG, 150, 150);
  ExpectSame(View().Camera(), before);
  View().EndDrag();
  EXPECT_EQ(m_Host.m_iResumptions, 1) << "nothing was under way";
}

TEST_F(ModelViewEventsTest, AltTurnsTheHeldRemovedLightsAndCtrlTheAddedOnes) {
  for (const int state : {FL_ALT, FL_META, FL_CTRL}) {
    CStaging::RemovedLights(Grid()) = CStaging::AddedLights(Grid()) = CLightSet{};
    const CCamera camera = CameraAtStart();
    const std::array<double, 4> straight = CLight{}.m_afDirection;
    const CHeldKey one('1');
    const CHeldKey three(FL_KP + '3');
    Drag(FL_LEFT_MOUSE, 20, -15, state);
    ExpectSame(View().Camera(), camera);
    const CLightSet& moved = state == FL_CTRL ? Grid().Relighting().AddedLights() : Grid().Relighting().RemovedLights();
    const CLightSet& kept = state == FL_CTRL ? Grid().Relighting().RemovedLights() : Grid().Relighting().AddedLights();
    for (std::size_t k = 0; k < 5; ++k) {
      EXPECT_EQ(moved.m_aLights[k].m_afDirection, k == 0 || k == 2 ? Turned(camera, straight, 20, -15) : straight) << k;
      EXPECT_EQ(kept.m_aLights[k].m_afDirection, straight) << k;
    }
  }
  EXPECT_EQ(m_Host.m_iLightMoves, 3);
}

TEST_F(ModelViewEventsTest, WithoutADigitNoLightMoves) {
  const CCamera camera = CameraAtStart();
  Drag(FL_LEFT_MOUSE, 20, -15, FL_CTRL);
  EXPECT_EQ(Grid().Relighting().AddedLights().m_aLights[0].m_afDirection, CLight{}.m_afDirection);
  ExpectSame(View().Camera(), camera);
  EXPECT_EQ(m_Host.m_iLightMoves, 0);
}

TEST_F(ModelViewEventsTest, ShiftDragMovesTheHeightOfTheSelectedPosition) {
  Grid().AddPtCstr(HeightCstr(5, 22, 2));
  RecordAt(CStaging::Constraints(Grid()).Points(), 0).SetState(PtCstrState::kSelected, true);
  const CCamera camera = CameraAtStart();
  Drag(FL_LEFT_MOUSE, 50, 43, FL_SHIFT);
  ExpectSame(View().Camera(), camera);
  EXPECT_NEAR(Grid().GetSelectedHeight(), 2 + 0.1 * 16 * 16 / camera.m_fR, 1e-9);
  EXPECT_EQ(m_Host.m_iImageRedraws, 1);
  Drag(FL_LEFT_MOUSE, 50, -86, FL_SHIFT);
  EXPECT_NEAR(Grid().GetSelectedHeight(), 2 - 0.1 * 16 * 16 / camera.m_fR, 1e-9);
}

// The shorter side shows 2 R.
TEST_F(ModelViewEventsTest, ShiftDragGoesByTheShorterSideInTrueProportions) {
  Grid().AddPtCstr(HeightCstr(5, 22, 2));
  RecordAt(CStaging::Constraints(Grid()).Points(), 0).SetState(PtCstrState::kSelected, true);
  const CCamera camera = CameraAtStart();
  View().resize(0, 0, kSize / 2, kSize);
  Drag(FL_LEFT_MOUSE, 50, 43, FL_SHIFT);
  EXPECT_NEAR(Grid().GetSelectedHeight(), 2 + 0.1 * 16 * 16 / camera.m_fR, 1e-9);
  View().SetFlag(ModelFlag::kProportions, true);
  Drag(FL_LEFT_MOUSE, 50, -43, FL_SHIFT);
  EXPECT_NEAR(Grid().GetSelectedHeight(), 2 - 0.1 * 16 * 16 / camera.m_fR, 1e-9) << "twice as far";
}

TEST_F(ModelViewEventsTest, SurfaceHasItsShapeInAnyViewInTrueProportions) {
  LoadPicture(PlainPicture(kYellow));
  ShowOnly(ModelFlag::kTexturedModel);
  View().SetFlag(ModelFlag::kGrid, false);
  CameraAtStart();
  View().resize(0, 0, kSize, kSize / 2);
  ASSERT_TRUE(WaitUntilDrawn());
  const double perUnit = 0.5 * kSize / (2 * View().Camera().m_fR);
  const double area = 16 * 6 * perUnit * perUnit;
  EXPECT_NEAR(CountPixels(FrameOf(View()), kYellow), 2 * area, 0.03 * area) << "twice as wide as it is";
  View().SetFlag(ModelFlag::kProportions, true);
  EXPECT_NEAR(CountPixels(FrameOf(View()), kYellow), area, 0.03 * area);
  View().MoveView(ViewMove::All);
  const double ofAll = 0.5 * kSize / (2 * View().Camera().m_fR);
  EXPECT_NEAR(16 * ofAll, kSize / 1.04, 2) << "as large as fits";
}

TEST_F(ModelViewEventsTest, WheelWithCtrlZoomsAboutThePointOfTheSurfaceInTrueProportions) {
  SetSurface(Grid(), CRamp{});
  View().ResetCamera();
  View().resize(0, 0, kSize, kSize / 3);
  View().SetFlag(ModelFlag::kProportions, true);
  const auto underPointer = [&] {
    const CCamera& camera = View().Camera();
    const CHalfSizes sizes = camera.HalfSizes(View().w(), View().h(), true);
    const CSurface& surface = Grid().Surface();
    return FirstSeen(surface.Interpolation(), camera.SightLine(250, 60, View().w(), View().h(), sizes),
                     surface.MinHeight(), surface.MaxHeight());
  };
  const auto point = underPointer();
  ASSERT_TRUE(point);
  Fl::e_state = FL_CTRL;
  Fl::e_dy = -1;
  EXPECT_EQ(Send(FL_MOUSEWHEEL, 250, 60), 1);
  ASSERT_TRUE(underPointer());
  EXPECT_LT(Length(*underPointer() - *point), 1e-6);
}

TEST_F(ModelViewEventsTest, ShiftDragWithoutASelectedPositionDoesNothing) {
  Grid().AddPtCstr(HeightCstr(5, 22, 2));
  Grid().AddPtCstr(SlopeCstr(6, 23));
  Grid().PerformPendingWork();
  RecordAt(CStaging::Constraints(Grid()).Points(), 1).SetState(PtCstrState::kSelected, true);
  const CCamera camera = CameraAtStart();
  Drag(FL_LEFT_MOUSE, 50, 43, FL_SHIFT);
  ExpectSame(View().Camera(), camera);
  EXPECT_EQ(RecordAt(Grid().Constraints().Points(), 0).m_fZ, 2);
  EXPECT_EQ(Grid().Run().NextOperation(), Operation::kNone);
  EXPECT_EQ(m_Host.m_iImageRedraws, 0);
}

TEST_F(ModelViewEventsTest, ShiftDragTellsTheHeightAndWhatTheSurfaceHad) {
  SetSurface(Grid(), CRamp{0.25, -0.5, 4});
  Grid().AddPtCstr(HeightCstr(5, 22, 2));
  Grid().PerformPendingWork();
  RecordAt(CStaging::Constraints(Grid()).Points(), 0).SetState(PtCstrState::kSelected, true);
  CameraAtStart();
  Fl::e_state = FL_SHIFT;
  Press(FL_LEFT_MOUSE);
  for (const int y : {90, 80}) {
    Send(FL_DRAG, 100, y);
    ASSERT_FALSE(m_Host.m_aMessages.empty());
    EXPECT_EQ(m_Host.m_aMessages.back(),
              "height " + HelpNumber(Grid().GetSelectedHeight(), 1) + ", was " + HelpNumber(4 + 5 * 0.25 - 11, 1));
  }
  EXPECT_TRUE(m_Host.m_aTold.empty()) << "the drag goes on";
  Send(FL_RELEASE, 100, 80);
  EXPECT_EQ(m_Host.m_aTold, std::vector{m_Host.m_aMessages.back()});
}

TEST_F(ModelViewEventsTest, OtherDragsTellNothing) {
  Grid().AddPtCstr(HeightCstr(5, 22, 2));
  RecordAt(CStaging::Constraints(Grid()).Points(), 0).SetState(PtCstrState::kSelected, true);
  Drag(FL_LEFT_MOUSE, 20, 20);
  Drag(FL_RIGHT_MOUSE, 20, 20, FL_SHIFT);
  EXPECT_TRUE(m_Host.m_aMessages.empty());
  EXPECT_TRUE(m_Host.m_aTold.empty());
}

TEST_F(ModelViewEventsTest, TurnsByRightAngleOverManyPixels) {
  CameraAtStart();
  // One pixel turns by atan(1 / 200).
  const int pixels = static_cast<int>(kPi / 2 / std::atan(1.0 / 200));
  Press(FL_LEFT_MOUSE);
  for (int k = 1; k <= pixels; ++k) Send(FL_DRAG, 100 + k, 100);
  EXPECT_NEAR(View().Camera().m_fPhi, 90, 0.5);
}

using ModelViewFrameTest = ModelViewTest;

TEST_F(ModelViewFrameTest, FrameIsTheViewBottomRowFirst) {
  LoadPicture(PictureOf(64, 64, [](int /*x*/, int y) { return y < 32 ? kRed : kBlue; }));
  ShowOnly(ModelFlag::kTexturedModel);
  const CPicture frame = FrameOf(View());
  EXPECT_EQ(frame.m_iWidth, kSize);
  EXPECT_EQ(frame.m_iHeight, kSize);
  EXPECT_EQ(frame.m_aPixels.size(), 3U * kSize * kSize);
  EXPECT_EQ(PixelOf(frame, 200, kSize / 2 - 60), kRed);
  EXPECT_EQ(PixelOf(frame, 200, kSize / 2 + 60), kBlue);
}

TEST_F(ModelViewFrameTest, FrameOfAnOddSizeIsPackedTightly) {
  m_Window.size(301, 203);
  View().size(301, 203);
  ASSERT_TRUE(WaitUntilDrawn());
  const CPicture frame = FrameOf(View());
  EXPECT_EQ(frame.m_iWidth, 301);
  EXPECT_EQ(frame.m_iHeight, 203);
  EXPECT_EQ(frame.m_aPixels.size(), 3U * 301 * 203);
}

TEST_F(ModelViewFrameTest, FrameOfAHiddenViewIsEmpty) {
  View().hide();
  EXPECT_EQ(FrameOf(View()).m_iWidth, 0);
}

TEST_F(ModelViewFrameTest, FrameFollowsAHeightEdit) {
  ShowOnly(ModelFlag::kTexturedModel);
  View().EnableEvents();
  Fl::e_state = 0;
  Fl::e_keysym = FL_Button + FL_LEFT_MOUSE;
  for (const auto& [event, y] : {std::pair{FL_PUSH, 300}, {FL_DRAG, 100}}) {
    Fl::e_y = y;
    View().handle(event);
  }
  const CPicture before = FrameOf(View());
  Grid().AddPtCstr(HeightCstr(4.5, 23, 3));
  RunUntilPaused(Grid());
  EXPECT_NE(FrameOf(View()).m_aPixels, before.m_aPixels);
}
