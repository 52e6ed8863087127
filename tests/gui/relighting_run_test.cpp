// Another light on the photograph, by mouse and keyboard: one is taken out on the left and one put in on the right.

#include <algorithm>
#include <array>
#include <cmath>
#include <optional>

#include "lighting/LightAngles.h"
#include "support/SamplePhotograph.h"
#include "support/gui/CLightPanelUser.h"
#include "support/gui/Input.h"
#include "support/gui/Pictures.h"
#include "support/gui/RunTest.h"
#include "support/gui/WaitUntil.h"

namespace {

// On the photograph: the slopes of a hill over the cup.
constexpr CPixel kTop{290, 110};
constexpr CPixel kLeftSlope{170, 110};
constexpr CPixel kRightSlope{410, 110};

void ExpectNear(const CLightAngles& angles, double theta, double phi) {
  constexpr double kSliderSteps = 2;  // degrees
  EXPECT_NEAR(angles.m_fTheta, theta, kSliderSteps);
  EXPECT_NEAR(angles.m_fPhi, phi, kSliderSteps);
}

class RelightingRunTest : public RunTest {
 protected:
  void SetUp() override {
    RunTest::SetUp();
    m_User.ClickOn(Control::PositionConstraint);
    PlaceHeight(kTop, 86);
    for (const CPixel corner : {CPixel{20, 20}, CPixel{580, 20}, CPixel{20, 380}, CPixel{580, 380}})
      PlaceHeight(corner, 0);
    for (const CPixel side : {CPixel{60, 110}, CPixel{520, 110}}) PlaceHeight(side, 0);
    m_User.ClickOn(Control::ResumeSolver);
    ASSERT_TRUE(m_Program.Rests());
    m_User.Type("ctrl+alt+g");
    m_User.ClickOn(Control::LightSources);
    const auto panel = m_Program.WaitForWindow("Light sources");
    ASSERT_TRUE(panel.has_value() && m_Program.Rests());
    m_Panel.emplace(m_User, m_Program.Screen().AreaOf(*panel));
  }

  // Mean red around a place of the photograph in a frame of the model seen from the front.
  static double Brightness(const CPicture& frame, CPixel place) {
    constexpr int kReach = 8;
    const int left = FirstCovered(frame);
    const int side = frame.m_iWidth - 2 * left;
    const int x = left + place.m_iX * side / kPhotographWidth;
    const int y = left + (kPhotographHeight - place.m_iY) * side / kPhotographHeight;
    double sum = 0;
    for (int dx = -kReach; dx <= kReach; ++dx) {
      for (int dy = -kReach; dy <= kReach; ++dy) sum += PixelOf(frame, x + dx, y + dy).m_uRed;
    }
    return sum / ((2 * kReach + 1) * (2 * kReach + 1));
  }
  static int FirstCovered(const CPicture& frame) {
    int x = 0;
    while (PixelOf(frame, x, frame.m_iHeight / 2) == kBlack) ++x;
    return x;
  }

  void ExpectLightsSaved() const {
    m_User.ChooseEntry(MenuTitle::File, 3);
    ASSERT_TRUE(m_User.ChooseFile("please input grid file name", File("lit.grid")) && m_User.Answer(true));
    ASSERT_TRUE(m_Program.Rests());
    CTestGrid saved;
    ASSERT_EQ(saved.m_Grid.Load(File("lit.grid").string()), GridFileState::Whole);
    const auto& removed = saved.m_Grid.Relighting().RemovedLights().m_aLights;
    const auto& added = saved.m_Grid.Relighting().AddedLights().m_aLights;
    ExpectNear(AnglesOf(removed[0].Direction()), 55, 135);
    ExpectNear(AnglesOf(added[0].Direction()), 55, 0);
    for (const auto& lights : {removed, added}) {
      EXPECT_TRUE(lights[0].m_bActive && lights[CLightSet::kAmbient].m_bActive);
      for (const double channel : lights[CLightSet::kAmbient].m_afColour) EXPECT_NEAR(channel, 0.6, 0.01);
    }
  }

  // A removed and an added light are on, and the model shows the new illumination.
  void Relight() const {
    m_Panel->SetLights(CLightPanelUser::kRemoved, 55, 135, 0.6);
    m_Panel->SetLights(CLightPanelUser::kAdded, 55, 0, 0.6);
    m_Panel->ClickOn(CLightPanelUser::kUpdateInterpolation);
    m_Panel->ClickOn(CLightPanelUser::kUpdateKd);
    ASSERT_TRUE(m_User.Reads(kRelit));
    m_Panel->ClickOn(CLightPanelUser::kNewIllumination);
    // The panel may lie over the model view.
    const auto panel = m_Program.WaitForWindow("Light sources");
    ASSERT_TRUE(panel.has_value());
    m_Program.Screen().AskToClose(*panel);
    ASSERT_TRUE(WaitUntil([&] { return m_Program.Screen().WindowsOf(m_Program.Pid()).size() == 1; }));
    ASSERT_TRUE(m_Program.Rests());
  }
  CPixel InView(int x, int y) const { return m_User.AreaOf(Control::ModelView).At({x, y}); }

  static constexpr const char* kRelit = "CGrid::GetKd\t\t\t\t...GetKd\tdone";

  std::optional<CLightPanelUser> m_Panel;
};

}  // namespace

TEST_F(RelightingRunTest, ShadingMovesToTheOtherSideAndTheLightsAreSaved) {
  const CPicture before = Shoot(1, "before.bmp");
  m_Panel->SetLights(CLightPanelUser::kRemoved, 55, 135, 0.6);
  m_Panel->SetLights(CLightPanelUser::kAdded, 55, 0, 0.6);
  m_Panel->ClickOn(CLightPanelUser::kUpdateInterpolation);
  m_Panel->ClickOn(CLightPanelUser::kUpdateKd);
  ASSERT_TRUE(m_User.Reads("CGrid::GetKd\t\t\t\t...GetKd\tdone"));
  m_Panel->ClickOn(CLightPanelUser::kNewIllumination);
  const CPicture after = Shoot(1, "after.bmp");

  const double left = Brightness(after, kLeftSlope) / Brightness(before, kLeftSlope);
  const double right = Brightness(after, kRightSlope) / Brightness(before, kRightSlope);
  EXPECT_LT(left, 0.8) << "in the shade now";
  EXPECT_GT(right, 1.1) << "lit now";
  ExpectLightsSaved();
}

TEST_F(RelightingRunTest, ImagesFollowALightThatIsTurned) {
  Relight();
  const CPicture before = Shoot(1, "before.bmp");
  const std::size_t times = m_User.Times(kRelit);
  // Half round the model, from its right to its left.
  m_User.DragSlowly(InView(415, 215), InView(20, 215), 1, "ctrl+1", 8);
  EXPECT_GT(m_User.Times(kRelit), times + 1) << "during the drag and at its end";
  const CPicture after = Shoot(1, "after.bmp");
  EXPECT_GT(Brightness(after, kLeftSlope), 1.1 * Brightness(before, kLeftSlope)) << "lit now";
}

TEST_F(RelightingRunTest, LiveImagesFollowTheSlidersAsUpdateKdWouldHaveThem) {
  m_Panel->SetLights(CLightPanelUser::kRemoved, 55, 135, 0.6);
  m_Panel->SetLights(CLightPanelUser::kAdded, 55, 0, 0.6);
  EXPECT_EQ(m_User.Times(kRelit), 0U) << "it is off at the start";
  m_Panel->ClickOn(CLightPanelUser::kUpdateInterpolation);
  m_Panel->ClickOn(CLightPanelUser::kLive);
  ASSERT_TRUE(m_User.Reads(kRelit));
  m_Panel->ClickOn(CLightPanelUser::kNewIllumination);
  const CPicture before = Shoot(1, "before.bmp");
  m_Panel->ClickOn(CLightPanelUser::kLight1);
  const std::size_t times = m_User.Times(kRelit);
  m_Panel->DragTheta(55, 20);
  EXPECT_GT(m_User.Times(kRelit), times + 1) << "during the drag and at its end";
  const CPicture live = Shoot(1, "live.bmp");
  EXPECT_NE(live.m_aPixels, before.m_aPixels);
  const std::size_t liveTimes = m_User.Times(kRelit);
  m_Panel->ClickOn(CLightPanelUser::kUpdateKd);
  EXPECT_EQ(m_User.Times(kRelit), liveTimes + 1);
  EXPECT_EQ(Shoot(1, "updated.bmp").m_aPixels, live.m_aPixels);
  m_User.Type("ctrl+z");
  ASSERT_TRUE(m_User.Reads(kRelit, liveTimes + 1));
  EXPECT_NE(Shoot(1, "undone.bmp").m_aPixels, live.m_aPixels);
  m_Panel->ClickOn(CLightPanelUser::kLive);
  const std::size_t offTimes = m_User.Times(kRelit);
  m_Panel->DragTheta(55, 20);
  EXPECT_EQ(m_User.Times(kRelit), offTimes);
}

TEST_F(RelightingRunTest, SoftLightKeepsWhatIsBrightApartAndIsUndone) {
  m_Panel->SetLights(CLightPanelUser::kRemoved, 55, 135, 0.3);
  m_Panel->SetLights(CLightPanelUser::kAdded, 10, 0, 1);
  m_Panel->ClickOn(CLightPanelUser::kUpdateKd);
  ASSERT_TRUE(m_User.Reads(kRelit));
  m_Panel->ClickOn(CLightPanelUser::kNewIllumination);
  const CPicture clipped = Shoot(1, "clipped.bmp");
  m_Panel->ClickOn(CLightPanelUser::kSoft);
  ASSERT_TRUE(m_User.Reads(kRelit, 1)) << "computed images follow at once";
  const CPicture soft = Shoot(1, "soft.bmp");
  const auto white = [](const CPicture& picture) { return std::ranges::count(picture.m_aPixels, 255); };
  EXPECT_GT(white(clipped), 1000);
  EXPECT_LT(white(soft), white(clipped) / 2);
  m_User.Type("ctrl+z");
  ASSERT_TRUE(m_User.Reads(kRelit, 2));
  EXPECT_EQ(Shoot(1, "undone.bmp").m_aPixels, clipped.m_aPixels);
}

// Where a menu's title has the same digit.
TEST_F(RelightingRunTest, DigitsChooseLightsWhileTheyAreTurned) {
  Relight();
  for (const char* held : {"alt+2", "alt+3"}) {
    const std::size_t windows = m_Program.Screen().WindowsOf(m_Program.Pid()).size();
    const std::size_t times = m_User.Times(kRelit);
    MovePointer(InView(200, 215));
    ASSERT_TRUE(m_Program.Rests());
    // Alt before the button would be the window manager's.
    PressButton(1);
    HoldKeys(held);
    MovePointer(InView(150, 250));
    m_Program.Rests();
    ReleaseButton(1);
    LetGoOfKeys(held);
    ASSERT_TRUE(m_Program.Rests());
    EXPECT_GT(m_User.Times(kRelit), times) << held;
    EXPECT_EQ(m_Program.Screen().WindowsOf(m_Program.Pid()).size(), windows) << held;
  }
  m_User.ChooseEntry(MenuTitle::File, 3);
  ASSERT_TRUE(m_User.ChooseFile("please input grid file name", File("turned.grid")) && m_User.Answer(true));
  ASSERT_TRUE(m_Program.Rests());
  CTestGrid saved;
  ASSERT_EQ(saved.m_Grid.Load(File("turned.grid").string()), GridFileState::Whole);
  const CLightSet& removed = saved.m_Grid.Relighting().RemovedLights();
  const CLightSet none = CLightSet::Removed();
  for (const std::size_t k : {1U, 2U})
    EXPECT_NE(removed.m_aLights[k].m_afDirection, none.m_aLights[k].m_afDirection) << k;
  EXPECT_EQ(removed.m_aLights[3].m_afDirection, none.m_aLights[3].m_afDirection);
}
