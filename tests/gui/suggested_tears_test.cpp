// Tears that the panel "Reference depth" suggests, shown over the photograph until they are taken or dropped.

#include <string>

#include <FL/Fl_Spinner.H>
#include <FL/Fl_Value_Slider.H>

#include "codecs/PngBytes.h"
#include "support/gui/ReferencePanelTest.h"

namespace {

using SuggestedTearsTest = ReferencePanelTest;

}  // namespace

TEST_F(SuggestedTearsTest, WhileSeveralAreChosenNoTearIsShown) {
  Open();
  LoadStep();
  ASSERT_TRUE(RunToolkitUntil([this] { return IsActive("Suggest Tears"); }));
  Push("Suggest Tears");
  ASSERT_TRUE(RunToolkitUntil([this] { return IsActive("Drop"); }));
  const auto drawn = [this] { return m_Window.ImageView().DrawnPicture().value_or(CPicture{}).m_aPixels; };
  const auto shown = drawn();
  Menu().Choose(MenuEntry::SelectSeveral);
  const auto choosing = drawn();
  EXPECT_TRUE(choosing != shown);
  Push("Drop");
  EXPECT_TRUE(drawn() == choosing);
}

// Nor a photograph's edges that are no longer there.
TEST_F(SuggestedTearsTest, WithTheSamePhotographTearsAreSuggestedAlike) {
  Open();
  LoadStep();
  LoadPicture();
  const auto taken = [this] {
    EXPECT_TRUE(RunToolkitUntil([this] { return IsActive("Take"); }));
    Push("Take");
    const auto points = CurveNodes();
    m_Window.History().Take(UserStep::Undo);
    Grid().PerformPendingWork();
    return points;
  };
  ASSERT_TRUE(RunToolkitUntil([this] { return IsActive("Suggest Tears"); }));
  Push("Suggest Tears");
  const auto once = taken();
  EXPECT_FALSE(once.empty());
  for (int k = 0; k < 3; ++k) Push("Suggest Tears");
  EXPECT_EQ(taken(), once);
  Push("Suggest Tears");
  LoadPicture();
  Push("Suggest Tears");
  EXPECT_EQ(taken(), once);
}

// Of the map's step at half of the width, and of a photograph's edge beside it.
TEST_F(SuggestedTearsTest, TearsLieOnThePhotographsEdge) {
  Open();
  const auto step = [](double u, double) { return u < 0.5 ? 0 : 1; };
  Grid().ReferenceEdits().Load(std::make_shared<const CDepthMap>(Blurred(DepthMapOf(320, 120, step), 1)),
                               "/maps/step.pfm");
  Grid().PerformPendingWork();
  constexpr int kWidth = 1280;
  constexpr double kPixel = 1.0 / kWidth;
  const auto expectTearAt = [this](double wanted) {
    ASSERT_TRUE(RunToolkitUntil([this] { return IsActive("Suggest Tears"); }));
    Push("Suggest Tears");
    ASSERT_TRUE(RunToolkitUntil([this] { return IsActive("Take"); }));
    Push("Take");
    const CExtent extent = Grid().Surface().Lattice().Extent();
    const auto nodes = CurveNodes();
    EXPECT_GE(nodes.size(), 2U);
    for (const auto& [x, y] : nodes) EXPECT_NEAR((x - extent.x0) / (extent.x1 - extent.x0), wanted, 1.5 * kPixel) << y;
    m_Window.History().Take(UserStep::Undo);
    Grid().PerformPendingWork();
    ASSERT_EQ(Curves(), 0U);
  };
  expectTearAt(0.5);
  for (const double edge : {0.504, 0.496}) {
    CPicture photograph{kWidth, 480, {}};
    for (int k = 0; k < kWidth * 480; ++k)
      photograph.m_aPixels.insert(photograph.m_aPixels.end(), 3, (k % kWidth + 0.5) / kWidth < edge ? 40 : 90);
    m_Dialogs.m_File = (m_Directory.Path() / ("photo" + std::to_string(edge) + ".png")).string();
    WriteText(*m_Dialogs.m_File, PngOf(photograph));
    Menu().Choose(MenuEntry::LoadImage);
    ASSERT_TRUE(RunToolkitUntil([this] { return Grid().Relighting().Textures().Photograph().m_iWidth == kWidth; }));
    expectTearAt(edge);
  }
}

TEST_F(SuggestedTearsTest, SuggestedTearsAreTakenInOneStep) {
  Open();
  LoadStep();
  ASSERT_TRUE(RunToolkitUntil([this] { return IsActive("Suggest Tears"); }));
  EXPECT_DOUBLE_EQ(Find<Fl_Value_Slider>(Panel(), "Gaps from (%)").value(), 7);
  Push("Suggest Tears");
  ASSERT_TRUE(RunToolkitUntil([this] { return IsActive("Take"); }));
  EXPECT_EQ(Curves(), 0U) << "nothing is made yet";
  Push("Take");
  EXPECT_GE(Curves(), 1U);
  EXPECT_TRUE(RunToolkitUntil([this] { return !IsActive("Take") && !IsActive("Drop"); }));
  m_Window.History().Take(UserStep::Undo);
  Grid().PerformPendingWork();
  EXPECT_EQ(Curves(), 0U);
  EXPECT_TRUE(Grid().Reference().HasMap());
}

TEST_F(SuggestedTearsTest, ClosingThePanelTakesThem) {
  Open();
  LoadStep();
  ASSERT_TRUE(RunToolkitUntil([this] { return IsActive("Suggest Tears"); }));
  Push("Suggest Tears");
  Panel().hide();
  EXPECT_GE(Curves(), 1U);
}

TEST_F(SuggestedTearsTest, DroppedOnesMakeNoCurve) {
  Open();
  LoadStep();
  ASSERT_TRUE(RunToolkitUntil([this] { return IsActive("Suggest Tears"); }));
  Push("Suggest Tears");
  ASSERT_TRUE(RunToolkitUntil([this] { return IsActive("Drop"); }));
  Push("Drop");
  Panel().hide();
  EXPECT_EQ(Curves(), 0U);
}

TEST_F(SuggestedTearsTest, AnotherMapDropsThoseOfTheFormer) {
  Open();
  LoadStep();
  ASSERT_TRUE(RunToolkitUntil([this] { return IsActive("Suggest Tears"); }));
  Push("Suggest Tears");
  ASSERT_TRUE(RunToolkitUntil([this] { return IsActive("Take"); }));
  Push("Remove");
  EXPECT_TRUE(RunToolkitUntil([this] { return !IsActive("Take"); }));
  Panel().hide();
  EXPECT_EQ(Curves(), 0U);
}

TEST_F(SuggestedTearsTest, ANumberOfTearsIsTheMost) {
  Open();
  const auto steps = [](double x, double /*y*/) { return std::floor(4 * x); };
  Grid().ReferenceEdits().Load(SharedDepthMap(64, 64, steps), "/maps/steps.pfm");
  Grid().PerformPendingWork();
  auto& count = Find<Fl_Spinner>(Panel(), "Tears at most");
  EXPECT_EQ(count.value(), 15);
  ASSERT_TRUE(RunToolkitUntil([this] { return IsActive("Suggest Tears"); }));
  Push("Suggest Tears");
  ASSERT_TRUE(RunToolkitUntil([this] { return IsActive("Take"); }));
  count.value(2);
  count.do_callback();
  Push("Take");
  EXPECT_EQ(Curves(), 2U);
}

// A step of the whole range, and one of a seventh.
TEST_F(SuggestedTearsTest, TheShareSaysWhatIsAGap) {
  Open();
  const auto steps = [](double x, double /*y*/) { return x < 0.3 ? 0.0 : x < 0.7 ? 1.0 : 7.0; };
  Grid().ReferenceEdits().Load(SharedDepthMap(300, 300, steps), "/maps/steps.pfm");
  Grid().PerformPendingWork();
  ASSERT_TRUE(RunToolkitUntil([this] { return IsActive("Suggest Tears"); }));
  auto& share = Find<Fl_Value_Slider>(Panel(), "Gaps from (%)");
  DragAlong(share, 0.35, 0.95);
  EXPECT_GT(share.value(), 20);
  Push("Suggest Tears");
  ASSERT_TRUE(RunToolkitUntil([this] { return IsActive("Take"); }));
  Push("Take");
  EXPECT_EQ(Curves(), 1U) << "the larger step alone";
  m_Window.History().Take(UserStep::Undo);
  Grid().PerformPendingWork();
  ASSERT_EQ(Curves(), 0U);
  DragAlong(share, 0.95, 0.35);
  EXPECT_LT(share.value(), 12);
  Push("Suggest Tears");
  ASSERT_TRUE(RunToolkitUntil([this] { return IsActive("Take"); }));
  Push("Take");
  EXPECT_EQ(Curves(), 2U);
}
