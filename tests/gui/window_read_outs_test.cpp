// What the main window shows in numbers and lamps, and the lamps that are buttons.

#include <array>
#include <cmath>
#include <string>

#include <FL/Fl.H>
#include <FL/Fl_Box.H>

#include "support/gui/LabelSize.h"
#include "support/gui/WindowTest.h"
#include "ui/window/CNumberOutput.h"

namespace {

class WindowReadOutsTest : public WindowTest {
 protected:
  CNumberOutput& Number(Control control) { return dynamic_cast<CNumberOutput&>(Widget(control)); }
  std::string Shown(Control control) {
    std::array<char, 128> text{};
    Number(control).format(text.data());
    return text.data();
  }
  std::string Shown(Control control, double value) {
    Number(control).value(value);
    return Shown(control);
  }
  int WidthOf(const std::string& text, Control control) {
    Fl_Box box(0, 0, 0, 0, text.c_str());
    box.labelfont(Number(control).textfont());
    box.labelsize(Number(control).textsize());
    return LabelSizeOf(box).first;
  }
  int Room(Control control) { return Widget(control).w() - Fl::box_dw(FL_DOWN_BOX); }
  /// A press on a control that is released somewhere else.
  void PressAndLeave(Control control) {
    SendMouse(FL_PUSH, control);
    Fl::e_x = Fl::e_y = 1;
    Fl::handle(FL_DRAG, &m_Window);
    Fl::e_state = 0;
    Fl::handle(FL_RELEASE, &m_Window);
  }
  bool IsLampOfStopOn() { return IsOn(Control::StopSolver) && !IsOn(Control::ResumeSolver); }
};

class LevelReadOutTest : public WindowReadOutsTest {
 protected:
  LevelReadOutTest() {
    ShowWindow();
    ClickOn(Control::ShowLevel);
    ClickOn(Control::HorizontalCoefs);
  }
  CScreenshot Shot() {
    DrawBoth();
    const Fl_Widget& level = Widget(Control::Level);
    return m_Screen.Capture({m_Window.x() + level.x(), m_Window.y() + level.y(), level.w(), level.h()});
  }
  bool LooksOtherThan(const CScreenshot& before) {
    const CScreenshot now = Shot();
    for (int y = 0; y < now.Height(); ++y) {
      for (int x = 0; x < now.Width(); ++x)
        if (!(now.At({x, y}) == before.At({x, y}))) return true;
    }
    return false;
  }
};

}  // namespace

TEST_F(WindowReadOutsTest, StopAfterConvergenceIsForGood) {
  m_Window.Solver().PauseSolverConverged();
  ASSERT_TRUE(IsLampOfStopOn());
  ClickOn(Control::StopSolver);
  EXPECT_EQ(m_Window.Solver().Reason(), PauseReason::User);
  m_Window.Solver().ResumeAfterChange();
  EXPECT_FALSE(m_Window.Solver().IsRunning());
  EXPECT_TRUE(IsLampOfStopOn());
}

TEST_F(WindowReadOutsTest, StopDuringACommandIsForGood) {
  m_Window.Solver().ResumeSolver();
  m_Window.PauseSolverForCommand();
  ASSERT_TRUE(IsLampOfStopOn());
  ClickOn(Control::StopSolver);
  EXPECT_EQ(m_Window.Solver().Reason(), PauseReason::User);
  m_Window.ResumeAfterCommand();
  EXPECT_FALSE(m_Window.Solver().IsRunning());
}

TEST_F(WindowReadOutsTest, PressReleasedOutsideStopsNothing) {
  m_Window.Solver().ResumeSolver();
  PressAndLeave(Control::StopSolver);
  EXPECT_TRUE(m_Window.Solver().IsRunning());
  EXPECT_TRUE(IsOn(Control::ResumeSolver));
  EXPECT_FALSE(IsOn(Control::StopSolver));
  m_Window.Solver().PauseSolverConverged();
  PressAndLeave(Control::StopSolver);
  EXPECT_EQ(m_Window.Solver().Reason(), PauseReason::Converged);
}

TEST_F(WindowReadOutsTest, NoSideIsShownForTheCentreOfALeaf) {
  const CCellRect leaf = Grid().Surface().Tree().Leaves().front().m_pCell->ModelRect();
  ASSERT_TRUE(Grid().Marks().TraceInterpolation(leaf.x + leaf.width / 2, leaf.y + leaf.height / 2));
  for (const Control number : {Control::FirstNumber, Control::SecondNumber}) EXPECT_EQ(ReadOut(number), -1);
  for (const Control coef : {Control::FirstCoef, Control::SecondCoef}) EXPECT_EQ(ReadOut(coef), 0);
  EXPECT_EQ(ReadOut(Control::CentreCoef), 1);
}

TEST_F(WindowReadOutsTest, FractionsFitTheirField) {
  for (const Control control : {Control::Influence, Control::CentreCoef, Control::FirstCoef}) {
    for (const double value : {0.00107587, -0.00107587, 1.07587e-5, 1.07587e-15, 123456.7891, 1 / 3.0}) {
      const std::string shown = Shown(control, value);
      EXPECT_LE(WidthOf(shown, control), Room(control)) << shown;
      EXPECT_NEAR(std::stod(shown), value, 0.05 * std::abs(value)) << "at least two digits are right";
    }
  }
  EXPECT_EQ(Shown(Control::Influence, 0.25), "0.25") << "where there is room, all as it is";
  EXPECT_EQ(Shown(Control::Influence, 0.125), "0.125");
}

TEST_F(WindowReadOutsTest, WholeNumbersAreShownWhole) {
  EXPECT_EQ(Shown(Control::PointCount, 1050625), "1050625");
  EXPECT_EQ(Shown(Control::CellCount, 4), "4");
  EXPECT_EQ(Shown(Control::Level, -12), "-12");
}

TEST_F(LevelReadOutTest, LevelIsShownBesideOtherTools) {
  EXPECT_TRUE(IsVisible(Control::Level));
  EXPECT_TRUE(IsVisible(Control::Influence));
}

TEST_F(LevelReadOutTest, LevelLiesOnTop) {
  m_Window.ShowNumber(17, -4);
  m_Window.ShowInfluence(0.25);
  ASSERT_TRUE(RunToolkitUntil([this] { return m_Window.damage() == 0; }));
  const CScreenshot before = Shot();
  m_Window.ShowNumber(17, 8888);
  ASSERT_TRUE(RunToolkitUntil([&] { return LooksOtherThan(before); }));
  m_Window.ShowNumber(17, -4);
  m_Window.ShowInfluence(-88.888);
  EXPECT_TRUE(RunToolkitUntil([&] { return !LooksOtherThan(before); })) << "the influence below it";
}
