#include <FL/Fl.H>
#include <gtest/gtest.h>

#include "ui/window/CRedrawPacer.h"

namespace {

// A pacer with a clock that stands still, and a solver that runs.
class RedrawPacerTest : public ::testing::Test {
 protected:
  // What happens each time the toolkit goes round.
  static void GoRound() { Fl::wait(0); }

  double m_fNow = 5;
  bool m_bBusy = true;
  int m_iRedraws = 0;
  CRedrawPacer m_Pacer{[this] { ++m_iRedraws; }, [this] { return m_bBusy; }, [this] { return m_fNow; }};
};

}  // namespace

TEST_F(RedrawPacerTest, FirstRequestIsDrawnAtOnce) {
  m_Pacer.Request();
  EXPECT_EQ(m_iRedraws, 1);
}

TEST_F(RedrawPacerTest, AtMostSixtyASecondWhileTheSolverRuns) {
  constexpr int kTicksPerSecond = 1000;
  for (int tick = 0; tick < kTicksPerSecond; ++tick) {
    m_fNow += 1.0 / kTicksPerSecond;
    m_Pacer.Request();
  }
  EXPECT_LE(m_iRedraws, 60);
  EXPECT_GE(m_iRedraws, 55);
}

TEST_F(RedrawPacerTest, OwedRedrawComesWhenItsTimeHas) {
  m_Pacer.Request();
  m_Pacer.Request();
  GoRound();
  EXPECT_EQ(m_iRedraws, 1);
  m_fNow += 0.02;
  GoRound();
  EXPECT_EQ(m_iRedraws, 2);
}

TEST_F(RedrawPacerTest, LastStateIsDrawnOnceTheSolverStops) {
  m_Pacer.Request();
  m_Pacer.Request();
  m_bBusy = false;
  GoRound();
  EXPECT_EQ(m_iRedraws, 2);
}

TEST_F(RedrawPacerTest, NothingIsHeldBackWhileTheSolverRests) {
  m_bBusy = false;
  for (int k = 0; k < 3; ++k) m_Pacer.Request();
  EXPECT_EQ(m_iRedraws, 3);
}

TEST_F(RedrawPacerTest, TicksGoOnForAsLongAsADrawingTakes) {
  constexpr double kDrawing = 0.04;
  constexpr double kTick = 0.005;
  m_Pacer.Request();
  for (int frame = 1; frame <= 5; ++frame) {
    m_fNow += kDrawing;
    for (int tick = 0; tick < 8; ++tick) {
      m_Pacer.Request();
      EXPECT_EQ(m_iRedraws, frame) << tick;
      m_fNow += kTick + 1e-6;
    }
    GoRound();
    EXPECT_EQ(m_iRedraws, frame + 1);
  }
}

TEST_F(RedrawPacerTest, LongWaitIsNotTakenForADrawing) {
  m_Pacer.Request();
  m_fNow += 60;
  m_Pacer.Request();
  EXPECT_EQ(m_iRedraws, 1);
  m_fNow += 0.101;
  m_Pacer.Request();
  EXPECT_EQ(m_iRedraws, 2);
}

TEST_F(RedrawPacerTest, SolverThatStartsIsSeenAtOnce) {
  m_bBusy = false;
  m_Pacer.Request();
  m_bBusy = true;
  m_fNow += 10;
  m_Pacer.Request();
  EXPECT_EQ(m_iRedraws, 2);
}

TEST_F(RedrawPacerTest, NothingOwedNothingDrawn) {
  m_Pacer.Request();
  m_fNow += 1;
  GoRound();
  EXPECT_EQ(m_iRedraws, 1);
}

TEST_F(RedrawPacerTest, NothingIsDrawnAfterItsEnd) {
  {
    CRedrawPacer pacer([this] { ++m_iRedraws; }, [this] { return m_bBusy; }, [this] { return m_fNow; });
    pacer.Request();
    pacer.Request();
  }
  m_bBusy = false;
  GoRound();
  EXPECT_EQ(m_iRedraws, 1);
}

TEST(SteadySecondsTest, NeverGoBack) {
  const double before = CRedrawPacer::SteadySeconds();
  EXPECT_GE(CRedrawPacer::SteadySeconds(), before);
}
