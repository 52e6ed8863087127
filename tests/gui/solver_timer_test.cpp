#include <unistd.h>

#include "app/SolverTimer.h"
#include "support/gui/ToolkitTest.h"
#include "ui/seams/TimerInterval.h"
#include "ui/window/CImageViewUI.h"

namespace {

/// Counts the ticks and keeps the solver running, which has nothing to do on a flat surface and would stop itself. A
/// tick has left the toolkit's list while it works, so one found there is a second registration.
class CWatchingWindow : public CImageViewUI {
 public:
  explicit CWatchingWindow(CGrid& grid) : CImageViewUI(RegisterSolverTimer), m_Grid(grid) { AttachGrid(grid); }
  void RequestRedraw() override {
    ++m_iTicks;
    m_bSecondTick = m_bSecondTick || Fl::has_timeout(OnSolverTimer, &m_Grid) != 0;
    m_Grid.Run().SetRunning(!m_bStopsGrid);
    CImageViewUI::RequestRedraw();
  }

  int m_iTicks = 0;
  bool m_bSecondTick = false;
  bool m_bStopsGrid = false;

 private:
  CGrid& m_Grid;
};

class SolverTimerTest : public ToolkitTest {
 protected:
  SolverTimerTest() : m_Window(Grid()) { m_Window.show(); }
  void TearDown() override {
    Fl::remove_timeout(OnSolverTimer);
    g_nSolverTimers = 0;
    g_fTimerInterval = m_fInterval;
  }

  bool IsRegistered() { return Fl::has_timeout(OnSolverTimer, &Grid()) != 0; }
  bool RunUntilTick() {
    const int before = m_Window.m_iTicks;
    GiveWork();
    return RunToolkitUntil([&] { return m_Window.m_iTicks > before; });
  }
  bool RunUntilTimerEnds() {
    return RunToolkitUntil([] { return g_nSolverTimers == 0; });
  }

  double m_fInterval = g_fTimerInterval;
  CWatchingWindow m_Window;
};

}  // namespace

TEST_F(SolverTimerTest, SharedIntervalStartsAtAFiftiethOfASecond) { EXPECT_EQ(g_fTimerInterval, 0.02); }

TEST_F(SolverTimerTest, RegistrationIsCounted) {
  EXPECT_EQ(g_nSolverTimers, 0);
  RegisterSolverTimer(Grid());
  EXPECT_EQ(g_nSolverTimers, 1);
  EXPECT_TRUE(IsRegistered());
}

TEST_F(SolverTimerTest, FirstTickComesAfterTheSharedInterval) {
  g_fTimerInterval = 1e6;
  RegisterSolverTimer(Grid());
  Fl::check();
  EXPECT_EQ(m_Window.m_iTicks, 0);
  Fl::remove_timeout(OnSolverTimer, &Grid());
  g_nSolverTimers = 0;
  g_fTimerInterval = 0.0;
  RegisterSolverTimer(Grid());
  Fl::check();
  EXPECT_EQ(m_Window.m_iTicks, 1);
}

TEST_F(SolverTimerTest, EveryWaitReturnsAfterATick) {
  g_fTimerInterval = 0.0;
  RegisterSolverTimer(Grid());
  g_fTimerInterval = 1e6;  // for the first tick only
  for (int wait = 0; wait < 20; ++wait) {
    const int before = m_Window.m_iTicks;
    GiveWork();
    Fl::wait();
    EXPECT_GT(m_Window.m_iTicks, before);
    EXPECT_TRUE(IsRegistered());
    EXPECT_EQ(g_nSolverTimers, 1);
  }
}

TEST_F(SolverTimerTest, EventsAreHandledBetweenTicks) {
  g_fTimerInterval = 0.0;
  RegisterSolverTimer(Grid());
  const auto onScreen = [&] { return m_Screen.FindWindow(getpid(), m_Window.label()); };
  ASSERT_TRUE(RunToolkitUntil([&] { return onScreen().has_value(); }));
  m_Screen.AskForSize(*onScreen(), 1000, 700);
  EXPECT_TRUE(RunToolkitUntil([&] { return m_Window.w() == 1000; }));
  EXPECT_TRUE(RunUntilTick());
}

TEST_F(SolverTimerTest, ResumeWhileRunningRegistersNoSecondTick) {
  RegisterSolverTimer(Grid());
  ASSERT_TRUE(RunUntilTick());
  RegisterSolverTimer(Grid());
  EXPECT_EQ(g_nSolverTimers, 1);
  ASSERT_TRUE(RunUntilTick());
  EXPECT_FALSE(m_Window.m_bSecondTick);
}

TEST_F(SolverTimerTest, ResumeBeforeTheFirstTickRegistersNoSecondOne) {
  RegisterSolverTimer(Grid());
  RegisterSolverTimer(Grid());
  EXPECT_EQ(g_nSolverTimers, 1);
  ASSERT_TRUE(RunUntilTick());
  EXPECT_FALSE(m_Window.m_bSecondTick);
}

TEST_F(SolverTimerTest, StoppedGridEndsTheTickUntouched) {
  RegisterSolverTimer(Grid());
  GiveWork();
  Grid().Run().SetRunning(false);
  EXPECT_TRUE(RunUntilTimerEnds());
  EXPECT_FALSE(IsRegistered());
  EXPECT_EQ(m_Window.m_iTicks, 0);
  EXPECT_EQ(Grid().Solver().Counter(), -1);
}

TEST_F(SolverTimerTest, GridStoppedDuringATickEndsIt) {
  m_Window.m_bStopsGrid = true;
  RegisterSolverTimer(Grid());
  EXPECT_TRUE(RunUntilTick());
  EXPECT_TRUE(RunUntilTimerEnds());
  EXPECT_FALSE(IsRegistered());
  EXPECT_EQ(m_Window.m_iTicks, 1);
}

TEST_F(SolverTimerTest, TickCanBeRegisteredAgainAfterItsEnd) {
  RegisterSolverTimer(Grid());
  Grid().Run().SetRunning(false);
  ASSERT_TRUE(RunUntilTimerEnds());
  Grid().Run().SetRunning(true);
  RegisterSolverTimer(Grid());
  EXPECT_EQ(g_nSolverTimers, 1);
  EXPECT_TRUE(RunUntilTick());
  EXPECT_FALSE(m_Window.m_bSecondTick);
}

TEST_F(SolverTimerTest, StopAndResumeBeforeTheTickLeavesOne) {
  RegisterSolverTimer(Grid());
  ASSERT_TRUE(RunUntilTick());
  Grid().Run().SetRunning(false);
  Grid().Run().SetRunning(true);
  RegisterSolverTimer(Grid());
  EXPECT_EQ(g_nSolverTimers, 1);
  EXPECT_TRUE(RunUntilTick());
  EXPECT_FALSE(m_Window.m_bSecondTick);
}

TEST_F(SolverTimerTest, ConvergedSolverResumesAfterAChange) {
  CImageViewUI window(RegisterSolverTimer);
  window.AttachGrid(Grid());
  RegisterSolverTimer(Grid());
  ASSERT_TRUE(RunUntilTimerEnds());
  ASSERT_FALSE(Grid().Run().IsRunning());
  Grid().Run().Post(Operation::kRebuild);
  EXPECT_TRUE(Grid().Run().IsRunning());
  EXPECT_EQ(g_nSolverTimers, 1);
  EXPECT_TRUE(RunUntilTimerEnds());
}

TEST_F(SolverTimerTest, StoppedSolverStaysStoppedAfterAChange) {
  RegisterSolverTimer(Grid());
  Grid().Run().SetRunning(false);
  ASSERT_TRUE(RunUntilTimerEnds());
  Grid().Run().Post(Operation::kRebuild);
  m_Window.Solver().ResumeAfterChange();
  EXPECT_FALSE(Grid().Run().IsRunning());
  EXPECT_EQ(g_nSolverTimers, 0);
}

TEST_F(SolverTimerTest, NullGridDoesNothing) {
  RegisterSolverTimer(Grid());
  OnSolverTimer(nullptr);
  Fl::check();
  EXPECT_EQ(g_nSolverTimers, 1);
  EXPECT_TRUE(IsRegistered());
  EXPECT_EQ(Fl::has_timeout(OnSolverTimer, nullptr), 0);
}
