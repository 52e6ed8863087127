// The help line says when the solver is left stopped, and when an edit waits for it.

#include <FL/Fl.H>

#include "support/ConstraintBuilders.h"
#include "support/UpdateBuilders.h"
#include "support/gui/WindowTest.h"

namespace {

using Tool = CImageViewUI::Tool;

constexpr const char* kStopped = "The solver is stopped: Resume the solver lets it go on";

class StoppedSolverTest : public WindowTest {
 protected:
  StoppedSolverTest() { m_Window.SetServices(Services()); }

  // How often the program has said so since the last time, on the console.
  int Told() { return Occurrences(m_Grid.m_Console.Take(), std::string(kStopped) + "\n"); }
  std::string Shown() { return HelpLine().value(); }
  // Lets an edit take effect.
  void Settle() {
    ASSERT_TRUE(RunToolkitUntil([this] { return Grid().Run().NextOperation() == Operation::kNone; }));
  }
  void Edit() {
    Grid().AddPtCstr(HeightCstr(4, 22, 1));
    Settle();
  }
};

}  // namespace

TEST_F(StoppedSolverTest, ScissorsSayThatTheyLeaveItStopped) {
  const TestTool& scissors = AddTool(Tool::Scissors);
  LoadPicture();
  SendMouse(FL_MOVE, Control::Scissors);
  // After a release the toolkit looks for what lies there on the screen.
  Fl::e_x_root = m_Window.x() + Fl::e_x;
  Fl::e_y_root = m_Window.y() + Fl::e_y;
  ClickOn(Control::Scissors);
  ASSERT_TRUE(scissors.m_bOpen);
  EXPECT_EQ(Told(), 0);
  ClickOn(Control::Scissors);
  EXPECT_EQ(Told(), 1);
  EXPECT_EQ(Shown(), kStopped);
  SendMouse(FL_MOVE, Control::Scissors);
  EXPECT_EQ(Shown(), kStopped) << "the mouse is still over the button";
  SendMouse(FL_MOVE, Control::ResumeSolver);
  EXPECT_NE(Shown(), kStopped);
}

TEST_F(StoppedSolverTest, RecorderSaysSoTooWhoeverClosesIt) {
  TestTool& recorder = AddTool(Tool::Recorder);
  m_Window.Solver().PauseForRecorder();
  recorder.Open();
  m_Window.Solver().EndRecorder();
  recorder.Close();
  EXPECT_EQ(Told(), 1);
  EXPECT_EQ(Shown(), kStopped);
}

TEST_F(StoppedSolverTest, AToolThatLeavesItRunningSaysNothing) {
  AddTool(Tool::Scissors);
  AddTool(Tool::LightSources);
  LoadPicture();
  ClickOn(Control::Scissors);
  ClickOn(Control::ResumeSolver);
  ClickOn(Control::Scissors);
  ClickOn(Control::StopSolver);
  for (int click = 0; click < 2; ++click) ClickOn(Control::LightSources);
  EXPECT_EQ(Told(), 0);
}

TEST_F(StoppedSolverTest, TheFirstEditOfEachStopIsTold) {
  for (int stop = 0; stop < 2; ++stop) {
    ClickOn(Control::StopSolver);
    Fl::check();
    EXPECT_EQ(Told(), 0) << "nothing waits yet";
    Edit();
    EXPECT_EQ(Told(), 1);
    EXPECT_EQ(Shown(), kStopped);
    Edit();
    EXPECT_EQ(Told(), 0);
    ClickOn(Control::ResumeSolver);
    Settle();
    EXPECT_EQ(Told(), 0);
  }
}

TEST_F(StoppedSolverTest, AnEditThatTheSolverFollowsIsNotTold) {
  Edit();
  m_Window.Solver().PauseSolverConverged();
  Edit();
  m_Window.Solver().PauseForRecorder();
  Edit();
  EXPECT_EQ(Told(), 0);
}

TEST_F(StoppedSolverTest, ADragComesToItsEndFirst) {
  ClickOn(Control::StopSolver);
  ClickOn(Control::PositionConstraint);
  SendMouse(FL_MOVE, Control::ImageView);
  SendMouse(FL_PUSH, Control::ImageView);
  Fl::check();
  EXPECT_EQ(Grid().Run().NextOperation(), Operation::kNone) << "the edit has taken effect";
  EXPECT_EQ(Shown().rfind("height ", 0), 0U);
  EXPECT_EQ(Told(), 0);
  SendMouse(FL_RELEASE, Control::ImageView);
  Fl::check();
  EXPECT_EQ(Told(), 1);
  EXPECT_EQ(Shown(), kStopped);
}

TEST_F(StoppedSolverTest, CurvesAndTheResetOfTheSolverWaitToo) {
  ClickOn(Control::StopSolver);
  Grid().AddCurve(SomeConstraints(), CurveType::kPosition, false);
  Settle();
  EXPECT_EQ(Told(), 1);
  ClickOn(Control::ResumeSolver);
  ClickOn(Control::StopSolver);
  ClickOn(Control::ResetSolver);
  Settle();
  EXPECT_EQ(Told(), 1);
}
