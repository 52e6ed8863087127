// The scissors on pictures larger than their window, or small ones enlarged.

#include <algorithm>
#include <array>
#include <string>

#include "support/gui/ScissorsViewTest.h"

TEST_F(ScissorsViewTest, OpensUpToTheLongestSideThatPlacesAreKeptFor) {
  for (const int side : {CScissorsTool::kMostSide, CScissorsTool::kMostSide + 1}) {
    const auto bytes = 3 * static_cast<std::size_t>(side);
    for (const CPicture& picture :
         {CPicture{side, 1, std::vector<std::uint8_t>(bytes)}, CPicture{1, side, std::vector<std::uint8_t>(bytes)}}) {
      m_View.Close();
      CStaging::Textures(Grid()).SetPicture(picture);
      m_View.Open();
      EXPECT_EQ(m_View.IsOpen(), side == CScissorsTool::kMostSide) << picture.m_iWidth << " x " << picture.m_iHeight;
    }
  }
}

TEST_F(ScissorsViewTest, KeysZoomAroundTheMouse) {
  OpenWith(RandomTopDownImage(900, 800, 3));
  Point({200, 160});
  for (int zoom = 2; zoom <= 17; ++zoom) {
    ASSERT_TRUE(TypeUntil("ctrl+equal", [&] { return m_View.Viewport().Zoom() == std::min(zoom, 16); }));
  }
  EXPECT_EQ(m_View.Viewport().PixelAt(200, 160), (CPixelPosition{200, 160}));
  for (int zoom = 15; zoom >= 0; --zoom) {
    ASSERT_TRUE(TypeUntil("ctrl+minus", [&] { return m_View.Viewport().Zoom() == std::max(zoom, 1); }));
  }
  EXPECT_EQ(m_View.Viewport().PixelAt(200, 160), (CPixelPosition{200, 160}));
}

TEST_F(ScissorsViewTest, SignsOfTheNumberPadZoomToo) {
  OpenWith(RandomTopDownImage(900, 800, 3));
  Point({200, 160});
  EXPECT_TRUE(TypeUntil("ctrl+KP_Add", [&] { return m_View.Viewport().Zoom() == 2; }));
  EXPECT_TRUE(TypeUntil("ctrl+KP_Subtract", [&] { return m_View.Viewport().Zoom() == 1; }));
}

TEST_F(ScissorsViewTest, WholeLargePictureIsShownReducedAndTracedAsItIs) {
  OpenWith(TopDownImageOf(1780, 1000, [](int x, int /*y*/) { return std::array{x % 4 == 0 ? 200 : 0, 80, 99}; }));
  Point({100, 50});
  ASSERT_TRUE(TypeUntil("ctrl+0", [&] { return m_View.Viewport().Reduction() == 4; }));
  EXPECT_TRUE(SeesAt({300, 200}, {50, 80, 99}));
  EXPECT_TRUE(SeesAt({300, 251}, kBackground));
  ClickAt({100, 50});
  EXPECT_EQ(Contours().Seed(), (CPixelPosition{402, 202}));
  ClickAt({110, 50});
  EXPECT_EQ(Contours().Seed(), (CPixelPosition{442, 202}));
  EXPECT_GT(Contours().InProgress().m_aPixels.size(), 40U);
  EXPECT_TRUE(SeesAt({105, 50}, kInProgress));
  Point({100, 60});
  ASSERT_TRUE(TypeUntil("ctrl+0", [&] { return m_View.Viewport().Reduction() == 1; }));
  EXPECT_EQ(m_View.Viewport().PixelAt(100, 60), (CPixelPosition{402, 242}));
}

TEST_F(ScissorsViewTest, FromTheReducedPictureKeysLeadToZoomOneOnly) {
  OpenWith(RandomTopDownImage(900, 800, 3));
  Point({100, 50});
  ASSERT_TRUE(TypeUntil("ctrl+0", [&] { return m_View.Viewport().Reduction() == 3; }));
  PressKey("ctrl+minus");
  ASSERT_TRUE(TypeUntil("ctrl+equal", [&] { return m_View.Viewport().Reduction() == 1; }));
  EXPECT_EQ(m_View.Viewport().Zoom(), 1);
  EXPECT_EQ(m_View.Viewport().PixelAt(100, 50), (CPixelPosition{301, 151}));
}

TEST_F(ScissorsViewTest, WheelWithCtrlZoomsAroundTheMouse) {
  OpenWith(RandomTopDownImage(900, 800, 3));
  Point({200, 160});
  const auto turn = [this](int button, const char* keys) {
    HoldKeys(keys);
    Click(OnScreen({200, 160}), button);
    LetGoOfKeys(keys);
  };
  turn(4, "ctrl");
  EXPECT_TRUE(RunToolkitUntil([&] { return m_View.Viewport().Zoom() == 2; }));
  turn(4, "ctrl");
  EXPECT_TRUE(RunToolkitUntil([&] { return m_View.Viewport().Zoom() == 3; }));
  EXPECT_EQ(m_View.Viewport().PixelAt(200, 160), (CPixelPosition{200, 160}));
  turn(5, "ctrl");
  EXPECT_TRUE(RunToolkitUntil([&] { return m_View.Viewport().Zoom() == 2; }));
  turn(4, "shift");
  turn(5, "ctrl");
  EXPECT_TRUE(RunToolkitUntil([&] { return m_View.Viewport().Zoom() == 1; }));
}

TEST_F(ScissorsViewTest, SizeIsKeptForTheNextOpening) {
  m_Screen.AskForSize(*Window(), 700, 600);
  ASSERT_TRUE(RunToolkitUntil([&] { return m_View.w() == 700; }));
  OpenWith(GreyPicture(900, 800, 50));
  EXPECT_EQ(m_Screen.AreaOf(*Window()).m_iWidth, 700);
  EXPECT_EQ(m_Screen.AreaOf(*Window()).m_iHeight, 600);
  EXPECT_EQ(m_View.Viewport().VisibleSize(), (CPixelPosition{700, 578}));
}

TEST_F(ScissorsViewTest, RightDragMovesThePicture) {
  const CTopDownImage picture = RandomTopDownImage(900, 800, 3);
  OpenWith(picture);
  Drag(OnScreen({200, 160}), OnScreen({150, 140}), 3);
  EXPECT_TRUE(RunToolkitUntil([&] { return m_View.Viewport().First() == CPixelPosition{50, 20}; }));
  const auto colour = picture.ColourAt({60, 40});
  EXPECT_TRUE(SeesAt({10, 20}, {colour[0], colour[1], colour[2]}));
  EXPECT_FALSE(Contours().IsInProgress());
}

TEST_F(ScissorsViewTest, LargeTreeGrowsInSlicesAndShowsItsProgress) {
  OpenWith(RandomTopDownImage(1600, 1200, 3));
  ClickAt({20, 30});
  EXPECT_TRUE(Tool().IsBuilding());
  bool showedProgress = false;
  EXPECT_TRUE(RunToolkitUntil([&] {
    showedProgress = showedProgress || std::string(m_View.StatusText()).find("paths: ") != std::string::npos;
    return !Tool().IsBuilding();
  }));
  EXPECT_TRUE(showedProgress);
  EXPECT_EQ(std::string(m_View.StatusText()).find("paths: "), std::string::npos);
}

TEST_F(ScissorsViewTest, NextClickNeedNotWaitForTheTree) {
  OpenWith(RandomTopDownImage(1600, 1200, 3));
  ClickAt({20, 30});
  ClickAt({400, 380});
  EXPECT_TRUE(Tool().IsBuilding());
  EXPECT_GT(Contours().InProgress().m_aPixels.size(), 300U);
}

TEST_F(ScissorsViewTest, LargerWindowShowsMore) {
  OpenWith(GreyPicture(900, 800, 50));
  m_Screen.AskForSize(*Window(), 700, 600);
  EXPECT_TRUE(RunToolkitUntil([&] { return m_View.w() == 700; }));
  EXPECT_EQ(m_View.Viewport().VisibleSize(), (CPixelPosition{700, 578}));
  EXPECT_TRUE(SeesAt({690, 570}, {50, 50, 50}));
}
