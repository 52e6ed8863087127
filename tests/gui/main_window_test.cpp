#include <gtest/gtest.h>

#include "support/gui/CRelievo.h"
#include "support/gui/Input.h"
#include "support/gui/WaitUntil.h"

namespace {

class MainWindowTest : public ::testing::Test {
 protected:
  CScreen& Screen() { return m_Program.Screen(); }

  CRelievo m_Program;
};

const std::vector<CArea> kViewsAtStart{{2, 23, 430, 430}, {438, 23, 430, 430}};

}  // namespace

TEST_F(MainWindowTest, HasItsTitleAndSize) {
  EXPECT_EQ(Screen().TitleOf(m_Program.MainWindow()), "Image View");
  const CArea area = m_Program.MainArea();
  EXPECT_EQ(area.m_iWidth, 870);
  EXPECT_EQ(area.m_iHeight, 660);
}

TEST_F(MainWindowTest, IsTheOnlyWindow) {
  EXPECT_EQ(Screen().WindowsOf(m_Program.Pid()), std::vector{m_Program.MainWindow()});
}

TEST_F(MainWindowTest, HasASmallestSizeAndNoLargest) {
  const CSizeLimits limits = Screen().SizeLimitsOf(m_Program.MainWindow());
  EXPECT_EQ(limits.m_iMinWidth, 800);
  EXPECT_EQ(limits.m_iMinHeight, 190);
  EXPECT_FALSE(limits.m_bHasMaximum);
}

TEST_F(MainWindowTest, StopsShrinkingAtTheSmallestSize) {
  Screen().AskForSize(m_Program.MainWindow(), 300, 100);
  EXPECT_TRUE(WaitUntil([&] {
    const CArea area = m_Program.MainArea();
    return area.m_iWidth == 800 && area.m_iHeight == 190;
  })) << m_Program.MainArea();
}

TEST_F(MainWindowTest, ViewsLieSideBySide) { EXPECT_EQ(m_Program.ViewAreas(), kViewsAtStart); }

TEST_F(MainWindowTest, ViewsShowTheBackground) {
  for (const WindowId view : m_Program.Views()) {
    EXPECT_TRUE(WaitUntil([&] { return Screen().Capture(Screen().AreaOf(view)).At({5, 5}) == kBlack; }));
  }
  const CScreenshot window = Screen().Capture(m_Program.MainArea());
  EXPECT_NE(window.At({435, 200}), kBlack) << "between the views";
  EXPECT_NE(window.At({435, 560}), kBlack) << "below the views";
}

TEST_F(MainWindowTest, ViewsGrowWithIt) {
  Screen().AskForSize(m_Program.MainWindow(), 1000, 800);
  EXPECT_TRUE(WaitUntil([&] {
    const std::vector<CArea> views = m_Program.ViewAreas();
    return views.size() == 2 && views[0].m_iWidth > 430 && views[1].m_iWidth > 430;
  }));
}

TEST_F(MainWindowTest, SurvivesMouseAndKeysInTheViews) {
  for (const WindowId view : m_Program.Views()) {
    const CArea area = Screen().AreaOf(view);
    Click(area.Centre());
    for (const int button : {1, 2, 3}) Drag(area.At({100, 100}), area.At({200, 150}), button);
    Drag(area.At({100, 100}), area.At({200, 150}), 1, "shift");
    PressKey("Return");
  }
  EXPECT_TRUE(m_Program.HandlesEvents());
}
