// The overlays of the menu.

#include <algorithm>
#include <array>
#include <fstream>
#include <memory>
#include <string>

#include "drawing/COverlay.h"
#include "support/CStaging.h"
#include "support/UpdateBuilders.h"
#include "support/gui/WindowTest.h"
#include "ui/seams/OverlaySource.h"
#include "ui/window/COverlays.h"

namespace {

class CTestSource : public OverlaySource {
 public:
  std::shared_ptr<const COverlay> Update() override {
    ++m_iUpdates;
    return m_iUpdates == 1 ? std::make_shared<const COverlay>() : nullptr;
  }
  void Begin() override { m_iUpdates = 0; }
  void End() override { ++m_iEnds; }

  int m_iUpdates = 0;
  int m_iEnds = 0;
};

// Always another overlay, for which it takes a fifth of a second.
class CSlowSource : public OverlaySource {
 public:
  CSlowSource(double& time, bool followsEdits) : m_fTime(time), m_bFollowsEdits(followsEdits) {}
  std::shared_ptr<const COverlay> Update() override {
    m_fTime += 0.2;
    return std::make_shared<const COverlay>();
  }
  bool FollowsEditsAlone() const override { return m_bFollowsEdits; }
  void Begin() override {}

 private:
  double& m_fTime;
  bool m_bFollowsEdits;
};

// Seconds from the end of an answer until there is the next one.
double PauseAfterAnswerOf(bool followsEdits) {
  double time = 0.0;
  int shown = 0;
  COverlays overlays([&shown](const std::shared_ptr<const COverlay>& overlay) { shown += overlay != nullptr ? 1 : 0; },
                     [&time] { return time; });
  CSlowSource source(time, followsEdits);
  overlays.Show(&source);
  const double ended = time;
  while (shown == 1) {
    time += 0.01;
    overlays.Follow();
  }
  overlays.Show(nullptr);
  return time - ended;
}

class WindowOverlaysTest : public WindowTest {
 protected:
  WindowOverlaysTest() {
    CWindowServices services = Services();
    services.m_Model.m_Write = [](const CModelFormat&, const CGrid&, const std::string&, const CWriteSettings&) {
      return CSaveOutcome();
    };
    m_Window.SetServices(std::move(services));
    AddAll(Grid(), SomeConstraints());
    Tick();
  }
  ~WindowOverlaysTest() override { m_Window.Overlays().Show(nullptr); }
  void Tick() {
    for (int k = 0; k < 3; ++k) Grid().UpdateGrid();
    Fl::check();
  }
  const COverlay* Shown() const { return m_Window.ImageView().Overlay(); }
  double Largest() const {
    double most = 0;
    for (const double value : Shown()->m_afAtPoints) most = std::max(most, std::abs(value));
    return most;
  }
};

}  // namespace

TEST_F(WindowOverlaysTest, AtMostOneIsShown) {
  EXPECT_EQ(Shown(), nullptr);
  EXPECT_FALSE(Menu().IsActive(MenuEntry::SaveOverlay));
  Menu().Choose(MenuEntry::Bending);
  ASSERT_NE(Shown(), nullptr);
  EXPECT_EQ(Shown()->m_Title, "Bending");
  EXPECT_TRUE(Menu().IsActive(MenuEntry::SaveOverlay));
  Menu().Choose(MenuEntry::Misfit);
  EXPECT_NE(Shown()->m_Title, "Bending");
  EXPECT_FALSE(Menu().IsChecked(MenuEntry::Bending));
  EXPECT_TRUE(Menu().IsChecked(MenuEntry::Misfit));
  Menu().Choose(MenuEntry::Misfit);
  EXPECT_EQ(Shown(), nullptr);
  EXPECT_FALSE(Menu().IsActive(MenuEntry::SaveOverlay));
}

TEST_F(WindowOverlaysTest, OverlayOfATool) {
  Menu().Choose(MenuEntry::Bending);
  CTestSource source;
  m_Window.Overlays().Show(&source);
  EXPECT_FALSE(Menu().IsChecked(MenuEntry::Bending));
  EXPECT_EQ(Shown()->m_Title, "");
  Menu().Choose(MenuEntry::Bending);
  EXPECT_EQ(source.m_iEnds, 1);
  EXPECT_EQ(m_Window.Overlays().Shown() == &source, false);
}

TEST(Overlays, QuickEditsAreFollowedWithinHalfASecondAndTheSolverAtAFifthOfTheTime) {
  EXPECT_LT(PauseAfterAnswerOf(true), 0.45);
  EXPECT_NEAR(PauseAfterAnswerOf(false), 4 * 0.2 + 0.2, 0.05);
}

TEST_F(WindowOverlaysTest, RegionsThatFloatFollowEditsAlone) {
  const auto followsEditsAlone = [this](MenuEntry entry) {
    Menu().Choose(entry);
    return m_Window.Overlays().Shown()->FollowsEditsAlone();
  };
  EXPECT_TRUE(followsEditsAlone(MenuEntry::FloatingRegions));
  EXPECT_FALSE(followsEditsAlone(MenuEntry::Misfit));
  EXPECT_FALSE(followsEditsAlone(MenuEntry::Bending));
}

TEST_F(WindowOverlaysTest, FollowsTheSurfaceWithinHalfASecond) {
  Menu().Choose(MenuEntry::Bending);
  const std::vector<double> before = Shown()->m_afAtPoints;
  Grid().AddPtCstr(HeightCstr(5, 23, 40));
  Tick();
  EXPECT_TRUE(RunToolkitUntil([&] { return Shown()->m_afAtPoints != before; }));
}

TEST_F(WindowOverlaysTest, MisfitIsNoneRightAfterSaving) {
  Menu().Choose(MenuEntry::Misfit);
  EXPECT_FALSE(Shown()->m_bHasBar) << "nothing has been saved yet";
  m_Dialogs.m_File = (m_Directory.Path() / "model.grid").string();
  Menu().Choose(kSaveGrid);
  ASSERT_TRUE(RunToolkitUntil([this] { return Shown()->m_bHasBar; }));
  EXPECT_LT(Largest(), 0.5);
  Grid().AddPtCstr(HeightCstr(5, 23, 40));
  ASSERT_TRUE(RunToolkitUntil([this] {
    Tick();
    return Largest() > 20;
  }));
  Menu().Choose(kSaveGrid);
  EXPECT_TRUE(RunToolkitUntil([this] { return Largest() < 1; }));
}

TEST_F(WindowOverlaysTest, FloatingRegionsFollowEdits) {
  Menu().Choose(MenuEntry::FloatingRegions);
  EXPECT_EQ(Shown()->m_Title, "No region floats");
  Grid().AddCurve(
      std::vector{HeightCstr(3, 22, 0), HeightCstr(9, 22, 0), HeightCstr(9, 24.5, 0), HeightCstr(3, 24.5, 0)},
      CurveType::kPosition, true);
  Tick();
  EXPECT_TRUE(RunToolkitUntil([this] { return Shown()->m_Title == "1 region floats:"; }));
  EXPECT_EQ(Shown()->m_asNotes.front(), "needs 1 height");
}

TEST_F(WindowOverlaysTest, SettlingIsSwitchedInTheMenu) {
  Menu().Choose(MenuEntry::SettleFloating);
  EXPECT_TRUE(Grid().IsSettling());
  EXPECT_EQ(Shown(), nullptr);
  Menu().Choose(MenuEntry::SettleFloating);
  EXPECT_FALSE(Grid().IsSettling());
}

TEST_F(WindowOverlaysTest, InfluenceIsThatOfTheSelectedConstraint) {
  m_Window.ImageView().SetMode(EditingMode::Position);
  ASSERT_TRUE(RunToolkitUntil([this] {
    Tick();
    return !Grid().Run().HasPending();
  }));
  Menu().Choose(MenuEntry::InfluenceMap);
  EXPECT_EQ(Shown()->m_Title, "Influence: select a constraint to see it");
  Grid().SelectPtCstr(10, 22, PtCstrKind::kPosition);
  ASSERT_TRUE(RunToolkitUntil([this] { return Shown()->m_Title == "Influence of a height larger by 1"; }));
  ASSERT_FALSE(Shown()->m_bHasBar);
  EXPECT_EQ(Shown()->m_uTree, Grid().Surface().Tree().Revision()) << "the view gets its triangles ready";
  ASSERT_TRUE(RunToolkitUntil([this] { return Shown()->m_bHasBar; }));
  EXPECT_GE(Shown()->m_fHigh, 1.0 - 1e-6);
  const COverlay* shown = Shown();
  for (int k = 0; k < 20; ++k) Tick();
  EXPECT_EQ(Shown(), shown) << "nothing has changed";
  Menu().Choose(MenuEntry::InfluenceMap);
  EXPECT_EQ(Shown(), nullptr);
}

TEST_F(WindowOverlaysTest, InfluenceOfASlopeIsThatOfEitherPart) {
  m_Window.ImageView().SetMode(EditingMode::Normal);
  Grid().SelectPtCstr(6, 23.5, PtCstrKind::kNormal);
  Menu().Choose(MenuEntry::InfluenceMap);
  ASSERT_TRUE(RunToolkitUntil([this] { return Shown() != nullptr && Shown()->m_bHasBar; }));
  EXPECT_EQ(Shown()->m_Title, "Influence of a slope dz/dx larger by 1");
  const std::vector<double> ofX = Shown()->m_afAtPoints;
  Menu().Choose(MenuEntry::InfluenceMap);
  EXPECT_TRUE(Menu().IsChecked(MenuEntry::InfluenceMap));
  ASSERT_TRUE(RunToolkitUntil(
      [this] { return Shown()->m_bHasBar && Shown()->m_Title == "Influence of a slope dz/dy larger by 1"; }));
  EXPECT_NE(Shown()->m_afAtPoints, ofX);
  Menu().Choose(MenuEntry::InfluenceMap);
  EXPECT_EQ(Shown(), nullptr);
}

TEST_F(WindowOverlaysTest, InfluenceThatIsNotExactSaysSo) {
  m_Window.ImageView().SetMode(EditingMode::Position);
  Grid().AddCurve(std::vector{HeightCstr(1, 23, 0), HeightCstr(8, 23, 0)}, CurveType::kFairness, false);
  CStaging::Constraints(Grid()).Curves().back().SetAllWeights(1e18, 1e18, 1e18, 1e18);
  Grid().Run().Post(Operation::kRebuildMaps);
  Tick();
  Grid().SelectPtCstr(10, 22, PtCstrKind::kPosition);
  Menu().Choose(MenuEntry::InfluenceMap);
  ASSERT_TRUE(RunToolkitUntil([this] { return Shown() != nullptr && Shown()->m_bHasBar; }));
  EXPECT_EQ(Shown()->m_asNotes, std::vector<std::string>{"Not exact: the solver gave up"});
}

TEST_F(WindowOverlaysTest, InfluenceSaysThatRegionsAreSettled) {
  m_Window.ImageView().SetMode(EditingMode::Position);
  Grid().AddCurve(
      std::vector{HeightCstr(3, 22, 0), HeightCstr(9, 22, 0), HeightCstr(9, 24.5, 0), HeightCstr(3, 24.5, 0)},
      CurveType::kPosition, true);
  Tick();
  Grid().SelectPtCstr(10, 22, PtCstrKind::kPosition);
  Menu().Choose(MenuEntry::InfluenceMap);
  ASSERT_TRUE(RunToolkitUntil([this] { return Shown() != nullptr && Shown()->m_bHasBar; }));
  EXPECT_TRUE(Shown()->m_asNotes.empty());
  const auto* source = m_Window.Overlays().Shown();
  ASSERT_NE(source, nullptr);
  EXPECT_FALSE(source->IsBusy()) << "the toolkit may rest";
  const std::vector<double> unsettled = Shown()->m_afAtPoints;
  Grid().SetSettling(true);
  ASSERT_TRUE(RunToolkitUntil([this] { return Shown()->m_bHasBar && !Shown()->m_asNotes.empty(); }));
  EXPECT_EQ(Shown()->m_asNotes, std::vector<std::string>{"With the floating regions settled"});
  EXPECT_NE(Shown()->m_afAtPoints, unsettled);
  Grid().UnselectAll();
  EXPECT_TRUE(RunToolkitUntil([this] { return Shown()->m_Title == "Influence: select a constraint to see it"; }));
}

TEST_F(WindowOverlaysTest, CurveWithoutAutoBumpHasNoInfluence) {
  m_Window.ImageView().SetMode(EditingMode::Curve);
  Grid().AddCurve(std::vector{HeightCstr(3, 22, 0), HeightCstr(9, 22, 0)}, CurveType::kNormal, false);
  Tick();
  Grid().PickCurve(3, 22, CurveType::kNormal);
  Menu().Choose(MenuEntry::InfluenceMap);
  ASSERT_TRUE(RunToolkitUntil([this] { return Shown() != nullptr; }));
  EXPECT_EQ(Shown()->m_Title, "Influence: none, the curve has no auto bump");
  EXPECT_STREQ(HelpLine().value(), HelpTextOf(HelpText::kNoInfluence));
}

TEST_F(WindowOverlaysTest, CurveWithAutoBumpHasThatOfADegree) {
  m_Window.ImageView().SetMode(EditingMode::Curve);
  Grid().AddCurve(std::vector{HeightCstr(2, 22.3, 0), HeightCstr(9, 22.3, 0)}, CurveType::kNormal, false);
  CCntrCtrl& curve = CStaging::Constraints(Grid()).Curves().back();
  curve.SetOption(CurveOption::kLeftAutoBump, true);
  curve.SetDistance(CurveSide::Left, 10);
  curve.SetOrientation(CurveSide::Left, 20);
  Grid().Run().Post(Operation::kRebuildMaps);
  Tick();
  Grid().PickCurve(2, 22.3, CurveType::kNormal);
  Menu().Choose(MenuEntry::InfluenceMap);
  ASSERT_TRUE(RunToolkitUntil([this] { return Shown() != nullptr && Shown()->m_bHasBar; }));
  EXPECT_EQ(Shown()->m_Title, "Influence of a degree of the curve's orientation");
  EXPECT_GT(Shown()->m_fHigh, 1e-4);
}

TEST_F(WindowOverlaysTest, SavesTheOverlayAsPng) {
  ShowWindow();
  Menu().Choose(MenuEntry::Bending);
  m_Dialogs.m_File = (m_Directory.Path() / "overlay.png").string();
  Menu().Choose(MenuEntry::SaveOverlay);
  const CReadPicture read = ReadPicture(*m_Dialogs.m_File);
  ASSERT_TRUE(read);
  EXPECT_EQ(read.m_Picture.m_iWidth, m_Window.ImageView().w());
  EXPECT_EQ(read.m_Picture.m_iHeight, m_Window.ImageView().h());
  EXPECT_EQ(read.m_Picture.m_aPixels, m_Window.ImageView().DrawnPicture()->m_aPixels);
  EXPECT_EQ(m_Dialogs.m_aChoosers.back().second, "*.png");
  // A folder cannot be replaced.
  m_Dialogs.m_File = m_Directory.Path().string();
  Menu().Choose(MenuEntry::SaveOverlay);
  EXPECT_EQ(m_Dialogs.m_asNotices.size(), 1U);
}
