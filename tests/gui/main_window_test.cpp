#include <gtest/gtest.h>

#include "support/gui/CRelievo.h"
#include "support/gui/Input.h"
#include "support/gui/WaitUntil.h"

namespace {

class MainWindowTest : public ::testing::Test {
 protected:
  bool WaitForViews(const std::vector<CArea>& areas) {
    return WaitUntil([&] { return m_Program.ViewAreas() == areas; });
  }
  // The views are laid out by the program, so they tell that it has handled a new size and all events before it.
  bool AnswersANewSize(int width, int height) {
    const std::vector<CArea> before = m_Program.ViewAreas();
    m_Program.Screen().AskForSize(m_Program.MainWindow(), width, height);
    return WaitUntil([&] {
      const std::vector<CArea> now = m_Program.ViewAreas();
      return now.size() == 2 && now != before;
    });
  }

  CRelievo m_Program;
};

const std::vector<CArea> kViewsAtStart{{2, 23, 430, 430}, {438, 23, 430, 430}};

}  // namespace

TEST_F(MainWindowTest, HasItsTitleAndSize) {
  EXPECT_EQ(m_Program.Screen().TitleOf(m_Program.MainWindow()), "Image View");
  const CArea area = m_Program.MainArea();
  EXPECT_EQ(area.m_iWidth, 870);
  EXPECT_EQ(area.m_iHeight, 660);
}

TEST_F(MainWindowTest, IsTheOnlyWindow) {
  EXPECT_EQ(m_Program.Screen().WindowsOf(m_Program.Pid()), std::vector{m_Program.MainWindow()});
}

TEST_F(MainWindowTest, HasASmallestSizeAndNoLargest) {
  const CSizeLimits limits = m_Program.Screen().SizeLimitsOf(m_Program.MainWindow());
  EXPECT_EQ(limits.m_iMinWidth, 800);
  EXPECT_EQ(limits.m_iMinHeight, 190);
  EXPECT_FALSE(limits.m_bHasMaximum);
}

TEST_F(MainWindowTest, StopsShrinkingAtTheSmallestSize) {
  m_Program.Screen().AskForSize(m_Program.MainWindow(), 300, 100);
  EXPECT_TRUE(WaitUntil([&] {
    const CArea area = m_Program.MainArea();
    return area.m_iWidth == 800 && area.m_iHeight == 190;
  })) << m_Program.MainArea();
}

TEST_F(MainWindowTest, ViewsLieSideBySide) { EXPECT_TRUE(WaitForViews(kViewsAtStart)); }

TEST_F(MainWindowTest, ViewsShowTheBackground) {
  ASSERT_TRUE(WaitForViews(kViewsAtStart));
  CScreen& screen = m_Program.Screen();
  for (const WindowId view : m_Program.Views()) {
    EXPECT_TRUE(WaitUntil([&] { return screen.Capture(screen.AreaOf(view)).IsAll(kBlack); }));
  }
  const CScreenshot window = screen.Capture(m_Program.MainArea());
  EXPECT_NE(window.At({435, 200}), kBlack) << "between the views";
  EXPECT_NE(window.At({435, 560}), kBlack) << "below the views";
}

TEST_F(MainWindowTest, AnswersNewSizesWhileTheSolverRuns) {
  ASSERT_TRUE(WaitForViews(kViewsAtStart));
  EXPECT_TRUE(AnswersANewSize(1000, 800));
  EXPECT_TRUE(AnswersANewSize(900, 700));
}

TEST_F(MainWindowTest, SurvivesMouseAndKeysInTheViews) {
  ASSERT_TRUE(WaitForViews(kViewsAtStart));
  for (const WindowId view : m_Program.Views()) {
    const CArea area = m_Program.Screen().AreaOf(view);
    Click(area.Centre());
    for (const int button : {1, 2, 3}) Drag(area.At({100, 100}), area.At({200, 150}), button);
    Drag(area.At({100, 100}), area.At({200, 150}), 1, "shift");
    PressKey("Return");
  }
  EXPECT_TRUE(AnswersANewSize(1000, 800));
  EXPECT_TRUE(m_Program.IsRunning());
}
