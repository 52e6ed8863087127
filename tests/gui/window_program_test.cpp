// The main window of the running program, under a user's mouse and keyboard.

#include <algorithm>
#include <fstream>
#include <iterator>
#include <string>

#include <gtest/gtest.h>

#include "support/CTemporaryDirectory.h"
#include "support/gui/CChildProcess.h"
#include "support/gui/CRelievo.h"
#include "support/gui/Input.h"
#include "support/gui/WaitUntil.h"
#include "ui/window/Controls.h"

namespace {

class WindowProgramTest : public ::testing::Test {
 protected:
  CPixel PlaceOf(Control control) {
    const CRect& rect = RowOf(control).m_Design;
    return m_Program.MainArea().At({rect.x + rect.w / 2, rect.y + rect.h / 2});
  }
  CScreenshot Shot(Control control) {
    const CRect& rect = RowOf(control).m_Design;
    const CPixel corner = m_Program.MainArea().At({rect.x, rect.y});
    return m_Program.Screen().Capture({corner.m_iX, corner.m_iY, rect.w, rect.h});
  }
  static bool Differ(const CScreenshot& a, const CScreenshot& b) {
    for (int y = 0; y < a.Height(); ++y) {
      for (int x = 0; x < a.Width(); ++x)
        if (!(a.At({x, y}) == b.At({x, y}))) return true;
    }
    return false;
  }
  bool Prints(const std::string& line) {
    return WaitUntil([&] {
      const std::vector<std::string> lines = m_Program.ConsoleLines();
      return std::find(lines.begin(), lines.end(), line) != lines.end();
    });
  }

  CRelievo m_Program;
};

}  // namespace

TEST_F(WindowProgramTest, HelpFollowsTheMouse) {
  MovePointer(PlaceOf(Control::ImageView));
  ASSERT_TRUE(m_Program.HandlesEvents());
  const CScreenshot empty = Shot(Control::HelpLine);
  MovePointer(PlaceOf(Control::ResetSolver));
  EXPECT_TRUE(WaitUntil([&] { return Differ(Shot(Control::HelpLine), empty); }));
  MovePointer(PlaceOf(Control::Iterations));
  EXPECT_TRUE(WaitUntil([&] { return !Differ(Shot(Control::HelpLine), empty); }));
}

TEST_F(WindowProgramTest, WaveletTestIsLogged) {
  Click(PlaceOf(Control::TestWavelets));
  EXPECT_TRUE(WaitUntil([&] {
    for (const std::string& line : m_Program.ConsoleLines())
      if (line.rfind("CGrid::TestWavelets\t\tlargest difference : ", 0) == 0) return true;
    return false;
  }));
}

TEST_F(WindowProgramTest, SwitchOfResolutionAsksFirst) {
  Click(PlaceOf(Control::SwitchResolution));
  ASSERT_TRUE(Prints("CImageViewUI::cb_m_pbtnSwitchHR_LR"));
  ASSERT_TRUE(WaitUntil([&] { return m_Program.Screen().WindowsOf(m_Program.Pid()).size() == 2; }));
  const CScreenshot before = Shot(Control::SwitchResolution);
  PressKey("Escape");
  EXPECT_TRUE(Prints("16641 points")) << "the grid of 129 by 129 points";
  EXPECT_TRUE(WaitUntil([&] { return Differ(Shot(Control::SwitchResolution), before); }));
}

TEST_F(WindowProgramTest, PictureIsAskedForWithItsShortcut) {
  PressKey("alt+shift+o");
  EXPECT_TRUE(m_Program.WaitForWindow("please input image file name").has_value());
  PressKey("Escape");
  EXPECT_TRUE(WaitUntil([&] { return m_Program.Screen().WindowsOf(m_Program.Pid()).size() == 1; }));
  EXPECT_TRUE(m_Program.HandlesEvents());
}

TEST_F(WindowProgramTest, PopupIsAcknowledged) {
  Click(PlaceOf(Control::Popup));
  ASSERT_TRUE(WaitUntil([&] { return m_Program.Screen().WindowsOf(m_Program.Pid()).size() == 2; }));
  PressKey("Return");
  EXPECT_TRUE(WaitUntil([&] { return m_Program.Screen().WindowsOf(m_Program.Pid()).size() == 1; }));
}

TEST_F(WindowProgramTest, ShortcutShowsInTheMenu) {
  const CArea menu = m_Program.MainArea();
  const auto entries = [&] { return m_Program.Screen().Capture({menu.m_iX + 50, menu.m_iY + 25, 100, 100}); };
  ASSERT_TRUE(WaitUntil([&] { return !entries().IsAll(kBlack); }));
  const CScreenshot withGrid = entries();
  Click(menu.At({80, 10}));
  ASSERT_TRUE(WaitUntil([&] { return Differ(entries(), withGrid); }));
  const CScreenshot checked = entries();
  PressKey("Escape");
  PressKey("ctrl+g");
  ASSERT_TRUE(WaitUntil([&] { return entries().IsAll(kBlack); }));
  Click(menu.At({80, 10}));
  EXPECT_TRUE(WaitUntil([&] { return !entries().IsAll(kBlack) && Differ(entries(), checked); }));
}

TEST_F(WindowProgramTest, DigitsOpenNoMenuOverTheModelView) {
  const CArea main = m_Program.MainArea();
  // Where the two menus would open, over the image view.
  const auto entries = [&] { return m_Program.Screen().Capture({main.m_iX + 50, main.m_iY + 25, 100, 100}); };
  const auto noMenu = [&] { return entries().IsAll(kBlack); };
  PressKey("ctrl+g");
  for (const char* keys : {"alt+2", "alt+3", "alt+KP_2"}) {
    MovePointer(PlaceOf(Control::ModelView));
    ASSERT_TRUE(m_Program.HandlesEvents());
    PressKey(keys);
    ASSERT_TRUE(m_Program.HandlesEvents());
    EXPECT_TRUE(WaitUntil(noMenu)) << keys;
    MovePointer(PlaceOf(Control::Iterations));
    ASSERT_TRUE(m_Program.HandlesEvents());
    ASSERT_TRUE(WaitUntil(noMenu));
    PressKey(keys);
    EXPECT_TRUE(WaitUntil([&] { return !noMenu(); })) << keys;
    PressKey("Escape");
    ASSERT_TRUE(WaitUntil(noMenu));
  }
}

TEST_F(WindowProgramTest, DesktopKnowsTheWindowsByClassAndIcon) {
  EXPECT_EQ(m_Program.Screen().ClassOf(m_Program.MainWindow()), "relievo");
  EXPECT_TRUE(m_Program.Screen().HasIcon(m_Program.MainWindow()));
  Click(PlaceOf(Control::Popup));
  ASSERT_TRUE(WaitUntil([&] { return m_Program.Screen().WindowsOf(m_Program.Pid()).size() == 2; }));
  for (const WindowId window : m_Program.Screen().WindowsOf(m_Program.Pid()))
    EXPECT_EQ(m_Program.Screen().ClassOf(window), "relievo");
  PressKey("Return");
}

TEST_F(WindowProgramTest, EveryControlIsInTheSmallWindowToo) {
  m_Program.Screen().AskForSize(m_Program.MainWindow(), 800, 300);
  ASSERT_TRUE(WaitUntil([&] { return m_Program.MainArea().m_iHeight == 300; }));
  EXPECT_TRUE(WaitUntil([&] {
    const std::vector<CArea> views = m_Program.ViewAreas();
    return views.size() == 2 && views[0] == CArea{2, 23, 395, 70} && views[1] == CArea{403, 23, 395, 70};
  }));
}

TEST_F(WindowProgramTest, CurveIsDrawnWithTheMouseAndTheKeyboard) {
  Click(PlaceOf(Control::CurveConstraint));
  Click(PlaceOf(Control::PositionDiscontinuity));
  const auto at = [&](int x, int y) { return m_Program.MainArea().At({x, y}); };
  for (const CPixel place : {at(100, 150), at(200, 150), at(200, 350)}) Click(place);
  // On the first point, so that no fourth one is added; the key may overtake the motion.
  MovePointer(at(100, 150));
  PressKey("Return");
  EXPECT_TRUE(Prints("contour with 3 nodes added "));
}

// On a display of its own, which is no part of the one that all other tests use.
TEST(DisplayTest, WithoutOpenGLTheProgramEndsAndSaysWhy) {
  const CTemporaryDirectory directory;
  const auto path = [&](const char* name) { return (directory.Path() / name).string(); };
  const CChildProcess server(
      {"sh", "-c",
       "exec Xvfb -displayfd 3 -screen 0 640x480x24 -nolisten tcp -extension GLX 3>'" + path("number") + "'"},
      directory.Path(), path("server.log"));
  const auto contents = [&](const char* name) {
    std::ifstream file(path(name));
    return std::string(std::istreambuf_iterator<char>(file), {});
  };
  ASSERT_TRUE(WaitUntil([&] { return contents("number").ends_with('\n'); })) << contents("server.log");
  std::string display = ":" + contents("number");
  display.pop_back();
  CChildProcess program({"env", "DISPLAY=" + display, RELIEVO_PROGRAM}, directory.Path(), path("program.log"));
  EXPECT_EQ(program.WaitForExit(), 1);
  EXPECT_NE(contents("program.log").find("\nrelievo: this display has no OpenGL (GLX), "), std::string::npos)
      << contents("program.log");
}
