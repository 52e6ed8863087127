#include <array>

#include <gtest/gtest.h>

#include "support/WindowBuilders.h"

namespace {

using enum PauseReason;

class SolverControlTest : public ::testing::Test {
 protected:
  bool IsRunning() { return m_Test.Grid().Run().IsRunning(); }
  CSolverControl& Solver() { return m_Test.m_Solver; }
  RecordingPanel& Panel() { return m_Test.m_Panel; }
  void ExpectStopped(PauseReason reason) {
    EXPECT_FALSE(IsRunning());
    EXPECT_FALSE(Panel().m_bRunning);
    EXPECT_EQ(Solver().Reason(), reason);
  }
  void ExpectResumed() {
    EXPECT_TRUE(IsRunning());
    EXPECT_TRUE(Panel().m_bRunning);
    EXPECT_EQ(Solver().Reason(), Command);
    EXPECT_EQ(CTimerStarts::Count(), 1);
  }
  // Brings the solver to a stop for each of the reasons.
  void Pause(PauseReason reason) {
    if (reason == User) Solver().StopSolver();
    if (reason == Command) Solver().PauseSolverForCommand();
    if (reason == Converged) Solver().PauseSolverConverged();
    if (reason == Freeze) Solver().PauseForFreeze();
    if (reason == Recorder) Solver().PauseForRecorder();
  }

  CTestSolver m_Test;
};

/// Which of the three ways of resuming works after which pause.
struct CResumeRow {
  PauseReason m_Reason;
  bool m_bAfterCommand;
  bool m_bAfterChange;
  bool m_bAlways;
};
constexpr auto kResumes = std::to_array<CResumeRow>({
    {User, false, false, true},
    {Command, true, false, true},
    {Converged, false, true, true},
    {Freeze, false, false, false},
    {Recorder, false, false, false},
});

class ResumeTest : public SolverControlTest, public ::testing::WithParamInterface<CResumeRow> {
 protected:
  void SetUp() override { Pause(GetParam().m_Reason); }
  void ExpectOutcome(bool resumed) {
    if (resumed) {
      ExpectResumed();
    } else {
      ExpectStopped(GetParam().m_Reason);
      EXPECT_EQ(CTimerStarts::Count(), 0);
    }
  }
};

}  // namespace

INSTANTIATE_TEST_SUITE_P(EveryReason, ResumeTest, ::testing::ValuesIn(kResumes));

TEST_P(ResumeTest, PauseStopsTheGridForItsReason) { ExpectStopped(GetParam().m_Reason); }

TEST_P(ResumeTest, AfterACommand) {
  Solver().ResumeAfterCommand();
  ExpectOutcome(GetParam().m_bAfterCommand);
}

TEST_P(ResumeTest, AfterAChange) {
  Solver().ResumeAfterChange();
  ExpectOutcome(GetParam().m_bAfterChange);
}

TEST_P(ResumeTest, Always) {
  Solver().ResumeSolver();
  ExpectOutcome(GetParam().m_bAlways);
}

TEST(PauseReasonTest, ValuesAreThoseOfTheTable) {
  EXPECT_EQ(static_cast<int>(User), 0);
  EXPECT_EQ(static_cast<int>(Command), 1);
  EXPECT_EQ(static_cast<int>(Converged), 2);
  EXPECT_EQ(static_cast<int>(Freeze), 3);
  EXPECT_EQ(static_cast<int>(Recorder), 4);
}

TEST_F(SolverControlTest, StartsWithTheUsersReason) { EXPECT_EQ(Solver().Reason(), User); }

TEST_F(SolverControlTest, CommandPausesOnlyARunningSolver) {
  Pause(Converged);
  Solver().PauseSolverForCommand();
  ExpectStopped(Converged);
  Solver().ResumeAfterCommand();
  ExpectStopped(Converged);
}

TEST_F(SolverControlTest, HaltKeepsTheReason) {
  Pause(Command);
  Solver().ResumeAfterCommand();
  Solver().HaltSolver();
  ExpectStopped(Command);
}

TEST_F(SolverControlTest, RunningKeepsTheReason) {
  Pause(Converged);
  Solver().Run();
  EXPECT_TRUE(IsRunning());
  EXPECT_EQ(Solver().Reason(), Converged);
  EXPECT_EQ(CTimerStarts::Count(), 1);
}

TEST_F(SolverControlTest, FreezeTakesTheSolverControlsAndGivesThemBack) {
  Pause(Freeze);
  EXPECT_FALSE(Panel().m_bSolverControls);
  EXPECT_TRUE(Panel().m_bEditing);
  Solver().EndFreeze();
  EXPECT_TRUE(Panel().m_bSolverControls);
  ExpectStopped(User);
}

TEST_F(SolverControlTest, RecorderTakesTheEditingToo) {
  Pause(Recorder);
  EXPECT_FALSE(Panel().m_bSolverControls);
  EXPECT_FALSE(Panel().m_bEditing);
  Solver().EndRecorder();
  EXPECT_TRUE(Panel().m_bSolverControls);
  EXPECT_TRUE(Panel().m_bEditing);
  ExpectStopped(User);
}

TEST_F(SolverControlTest, StoppedByTheUserOrByAToolThatLeftItSo) {
  EXPECT_FALSE(Solver().IsStoppedByUser()) << "runs from the start";
  for (const PauseReason reason : {Command, Converged, Freeze, Recorder}) {
    Pause(reason);
    EXPECT_FALSE(Solver().IsStoppedByUser());
  }
  Solver().EndRecorder();
  EXPECT_TRUE(Solver().IsStoppedByUser());
  Solver().ResumeSolver();
  EXPECT_FALSE(Solver().IsStoppedByUser());
  Pause(User);
  EXPECT_TRUE(Solver().IsStoppedByUser());
}

TEST_F(SolverControlTest, OneEditOfEachStopIsTheFirstToWait) {
  EXPECT_FALSE(Solver().TakeFirstWait()) << "runs";
  for (const PauseReason before : {User, Converged, Freeze}) {
    Pause(before);
    Pause(User);
    EXPECT_TRUE(Solver().TakeFirstWait());
    EXPECT_FALSE(Solver().TakeFirstWait());
    Pause(User);
    EXPECT_FALSE(Solver().TakeFirstWait()) << "it was stopped already";
  }
  Solver().Run();
  EXPECT_FALSE(Solver().TakeFirstWait());
  Solver().StopSolver();
  EXPECT_TRUE(Solver().TakeFirstWait());
}

TEST_F(SolverControlTest, WithoutAGridOnlyThePanelMoves) {
  CSolverControl alone(Panel(), CTimerStarts::Start);
  alone.StopSolver();
  EXPECT_FALSE(Panel().m_bRunning);
  alone.ResumeSolver();
  EXPECT_TRUE(Panel().m_bRunning);
  EXPECT_FALSE(alone.IsRunning());
  EXPECT_EQ(CTimerStarts::Count(), 0);
}
