#include <algorithm>
#include <filesystem>
#include <fstream>
#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <FL/Fl_Button.H>
#include <FL/Fl_Value_Output.H>
#include <gtest/gtest.h>
#include <unistd.h>

#include "support/CTemporaryDirectory.h"
#include "support/ConsoleCapture.h"
#include "support/RecorderBuilders.h"
#include "support/gui/Input.h"
#include "support/gui/ToolkitTest.h"
#include "ui/recorder/AnimationRecorder.h"
#include "ui/seams/TimerInterval.h"
#include "ui/window/CToolkitDialogs.h"

namespace {

enum { kRecord, kPause, kPlay, kStop, kReset, kExport };

constexpr const char* kQuestion =
    "The system will save the frames you recorded in bmp files. This might take a lot of space. Are you sure you want "
    "to continue ?";
constexpr const char* kTemplateQuestion = "please input template file name, without extension";
constexpr const char* kArmed = "CGridView::recMode_Play : add_timeout\n";

// The user who answers the dialog that comes up next by keys.
class CKeyAnswer {
 public:
  explicit CKeyAnswer(std::vector<std::string> keys) : m_aKeys(std::move(keys)) {
    Fl::add_timeout(0.0, OnTimeout, this);
  }
  ~CKeyAnswer() { Fl::remove_timeout(OnTimeout, this); }
  CKeyAnswer(const CKeyAnswer&) = delete;
  CKeyAnswer& operator=(const CKeyAnswer&) = delete;

 private:
  static void OnTimeout(void* answer) {
    auto& self = *static_cast<CKeyAnswer*>(answer);
    const auto dialog = self.m_Screen.WindowsOf(getpid());
    if (Fl::modal() == nullptr || dialog.empty() || !self.m_Screen.HasFocus(dialog.back())) {
      Fl::add_timeout(0.01, OnTimeout, answer);
      return;
    }
    for (const std::string& keys : self.m_aKeys) PressKey(keys);
  }

  CScreen m_Screen;
  std::vector<std::string> m_aKeys;
};

class AnimationRecorderTest : public ToolkitTest {
 protected:
  AnimationRecorderTest() { g_fTimerInterval = 0.001; }
  void SetUp() override { m_Window.Open(); }
  void TearDown() override {
    m_Window.Close();
    g_fTimerInterval = m_fInterval;
  }

  Fl_Button& Button(int index) { return dynamic_cast<Fl_Button&>(*m_Window.child(index)); }
  Fl_Value_Output& Output(int index) { return dynamic_cast<Fl_Value_Output&>(*m_Window.child(6 + index)); }
  void Press(int button) { Button(button).do_callback(); }
  // What a redraw of the view after `milliseconds` does.
  void Draw(int number, int milliseconds = 20) {
    m_Clock.m_iNow += milliseconds;
    m_View.m_Camera = CameraNumber(number);
    m_Window.StoreFrame();
  }
  void RecordFrames(int count) {
    Press(kRecord);
    Press(kPause);
    for (int number = 0; number < count; ++number) Draw(number);
    Press(kStop);
  }
  // One sign per button, '+' if it can be pressed, '!' after it if it is down.
  std::string Buttons() {
    std::string text;
    for (int index = 0; index < 6; ++index) {
      text += Button(index).active() != 0 ? '+' : '-';
      if (Button(index).value() != 0) text += '!';
    }
    return text;
  }
  std::uint32_t Mode() const { return m_Window.Recorder().Mode(); }
  bool RunUntilIdle() {
    return RunToolkitUntil([&] { return Mode() == RecordMode::kIdle; });
  }
  void ExportTo(const std::string& templateName) {
    m_Dialogs.m_Answer = templateName;
    Press(kExport);
  }
  std::vector<std::string> FilesIn(const std::filesystem::path& directory) {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(directory)) names.push_back(entry.path().filename());
    std::sort(names.begin(), names.end());
    return names;
  }

  double m_fInterval = g_fTimerInterval;
  ConsoleCapture m_Console;
  CTestClock m_Clock;
  RecordingView m_View;
  RecordingRecorderHost m_Host;
  AnsweringDialogs m_Dialogs;
  CTemporaryDirectory m_Directory;
  CAnimationRecorder m_Window{m_View, m_Host, m_Dialogs, m_Clock.Clock()};
};

}  // namespace

TEST_F(AnimationRecorderTest, HasItsTitleSizeAndTexts) {
  EXPECT_STREQ(m_Window.label(), "Animation Record Interface");
  EXPECT_EQ(std::pair(m_Window.w(), m_Window.h()), std::pair(290, 100));
  const std::vector<std::pair<std::string, std::string>> buttons{
      {"@circle", "Record a new sequence"},  {"@+2||", "Pause"},
      {"@>", "Play the recorded animation"}, {"@square", "Stop the animation"},
      {"@reload", "Reset the animation"},    {"@returnarrow", "Export the animation"}};
  for (int index = 0; index < 6; ++index) {
    EXPECT_EQ(Button(index).label(), buttons[static_cast<std::size_t>(index)].first);
    EXPECT_EQ(Button(index).tooltip(), buttons[static_cast<std::size_t>(index)].second);
  }
  EXPECT_STREQ(Output(0).label(), "Frame number : ");
  EXPECT_STREQ(Output(1).label(), "Tick");
}

TEST_F(AnimationRecorderTest, StartsIdleWithPausePlayAndExportInactive) {
  EXPECT_EQ(Mode(), RecordMode::kIdle);
  EXPECT_EQ(Buttons(), "+--++-");
  EXPECT_EQ(m_Host.m_Calls, "pause ");
}

TEST_F(AnimationRecorderTest, RecordIsDownAndPauseShownPressed) {
  Press(kRecord);
  EXPECT_EQ(Mode(), 6U);
  EXPECT_EQ(Buttons(), "-!+!-++-");
  Draw(1);
  EXPECT_TRUE(m_Window.Recorder().Frames().empty());
}

TEST_F(AnimationRecorderTest, EveryRedrawAfterPauseIsAFrame) {
  Press(kRecord);
  Press(kPause);
  EXPECT_EQ(Buttons(), "-!+-++-");
  Draw(1, 40);
  EXPECT_EQ(Output(0).value(), 1);
  EXPECT_DOUBLE_EQ(Output(1).value(), 0.04);
  Draw(2, 25);
  EXPECT_EQ(Output(0).value(), 2);
  EXPECT_DOUBLE_EQ(Output(1).value(), 0.025);
  EXPECT_EQ(m_Host.m_Calls, "pause 1 2 ");
  Press(kPause);
  Draw(3);
  EXPECT_EQ(Output(0).value(), 2);
}

TEST_F(AnimationRecorderTest, RecordAgainAppends) {
  RecordFrames(2);
  EXPECT_EQ(Buttons(), "+-++++");
  Press(kRecord);
  EXPECT_EQ(Output(0).value(), 2);
  EXPECT_EQ(Output(1).value(), 0);
  Press(kPause);
  Draw(9);
  EXPECT_EQ(Output(0).value(), 3);
}

TEST_F(AnimationRecorderTest, ResetEmptiesTheList) {
  RecordFrames(2);
  Press(kReset);
  EXPECT_EQ(Buttons(), "+--++-");
  EXPECT_EQ(Output(0).value(), 0);
  EXPECT_EQ(Output(1).value(), 0);
}

TEST_F(AnimationRecorderTest, PlaybackShowsEachFrameOnceAndEndsIdle) {
  RecordFrames(4);
  m_View.m_aShown.clear();
  Press(kPlay);
  EXPECT_EQ(Mode(), RecordMode::kPlaying);
  EXPECT_EQ(g_nPlaybackTimers, 1);
  EXPECT_EQ(m_Console.Take(), kArmed);
  ASSERT_TRUE(RunUntilIdle());
  EXPECT_EQ(g_nPlaybackTimers, 0);
  // The last frame is drawn once more at the end.
  ASSERT_EQ(m_View.m_aShown.size(), 5U);
  for (int number = 0; number < 4; ++number) {
    EXPECT_EQ(m_View.m_aShown[static_cast<std::size_t>(number)], CameraNumber(number));
  }
  EXPECT_EQ(m_View.m_aShown[4], CameraNumber(3));
  EXPECT_EQ(Buttons(), "+-++++");
}

TEST_F(AnimationRecorderTest, TickShowsOneFrameAndArmsTheNext) {
  RecordFrames(3);
  g_fTimerInterval = 0.0;
  Press(kPlay);
  g_fTimerInterval = 1e6;  // for the ticks after the first
  Fl::check();
  EXPECT_EQ(m_View.m_iRedraws, 1);
  EXPECT_EQ(g_nPlaybackTimers, 1);
  EXPECT_EQ(Mode(), RecordMode::kPlaying);
}

TEST_F(AnimationRecorderTest, LastTickShowsTheLastFrameAndEnds) {
  RecordFrames(1);
  g_fTimerInterval = 0.0;
  Press(kPlay);
  Fl::check();
  EXPECT_EQ(m_View.m_aShown.front(), CameraNumber(0));
  EXPECT_EQ(Mode(), RecordMode::kIdle);
  EXPECT_EQ(g_nPlaybackTimers, 0);
}

TEST_F(AnimationRecorderTest, PlaybackOfSoManyFramesTakesSoManyTicks) {
  for (const int frames : {1, 2, 5}) {
    CFrameRecorder recorder(m_Clock.Clock());
    recorder.Record();
    recorder.TogglePause();
    for (int number = 0; number < frames; ++number) recorder.Capture(CameraNumber(number));
    CPlayback playback(recorder, m_View, [] {});
    g_fTimerInterval = 1e6;
    playback.Play();
    int ticks = 0;
    for (; g_nPlaybackTimers != 0 && ticks <= frames; ++ticks) CPlayback::OnTick(&playback);
    EXPECT_EQ(ticks, frames);
    EXPECT_EQ(recorder.Mode(), RecordMode::kIdle);
  }
}

TEST_F(AnimationRecorderTest, ButtonsWhilePlayingAndPaused) {
  RecordFrames(3);
  g_fTimerInterval = 1e6;
  Press(kPlay);
  EXPECT_EQ(Buttons(), "+++!+++");
  Press(kPause);
  EXPECT_EQ(Mode(), 12U);
  EXPECT_EQ(Buttons(), "++!+!+++");
}

TEST_F(AnimationRecorderTest, PausedPlaybackShowsNothingAndGoesOn) {
  RecordFrames(3);
  g_fTimerInterval = 1e6;
  Press(kPlay);
  Press(kPause);
  const int before = m_View.m_iRedraws;
  Fl::check();
  EXPECT_EQ(m_View.m_iRedraws, before);
  EXPECT_EQ(g_nPlaybackTimers, 1);
  m_Window.Close();
  m_Window.Open();
  g_fTimerInterval = 0.001;
  Press(kPlay);
  Press(kPause);
  // Ticks pass while another timeout is waited for.
  bool passed = false;
  Fl::add_timeout(
      0.01, [](void* flag) { *static_cast<bool*>(flag) = true; }, &passed);
  ASSERT_TRUE(RunToolkitUntil([&] { return passed; }));
  EXPECT_EQ(m_View.m_iRedraws, before);
  EXPECT_EQ(g_nPlaybackTimers, 1);
  Press(kPause);
  EXPECT_TRUE(RunUntilIdle());
  EXPECT_EQ(m_View.m_iRedraws, before + 4);
}

TEST_F(AnimationRecorderTest, SecondPlayArmsNoSecondTimer) {
  RecordFrames(3);
  g_fTimerInterval = 1e6;
  Press(kPlay);
  m_Console.Take();
  Press(kPlay);
  EXPECT_EQ(m_Console.Take(), "CGridView::recMode_play() : timeout already set...");
  EXPECT_EQ(g_nPlaybackTimers, 1);
}

TEST_F(AnimationRecorderTest, StopRecordResetAndClosingEndTheTimer) {
  const std::vector<std::function<void()>> ends{[&] { Press(kStop); }, [&] { Press(kRecord); }, [&] { Press(kReset); },
                                                [&] { m_Window.Close(); }};
  for (const auto& end : ends) {
    for (const bool paused : {false, true}) {
      m_Window.Open();
      RecordFrames(3);
      g_fTimerInterval = 1e6;
      Press(kPlay);
      if (paused) Press(kPause);
      ASSERT_EQ(g_nPlaybackTimers, 1);
      end();
      EXPECT_EQ(g_nPlaybackTimers, 0);
      EXPECT_FALSE(m_Window.Recorder().IsIn(RecordMode::kPlaying));
    }
  }
}

TEST_F(AnimationRecorderTest, TickOfNothingDoesNothing) {
  RecordFrames(3);
  g_fTimerInterval = 1e6;
  Press(kPlay);
  CPlayback::OnTick(nullptr);
  EXPECT_EQ(g_nPlaybackTimers, 1);
  EXPECT_EQ(m_View.m_iRedraws, 0);
}

TEST_F(AnimationRecorderTest, ExportAsksAndWritesEveryFrame) {
  RecordFrames(3);
  ExportTo((m_Directory.Path() / "f").string());
  EXPECT_EQ(m_Dialogs.m_aTexts, (std::vector<std::string>{kQuestion, kTemplateQuestion, "Export finished"}));
  EXPECT_EQ(FilesIn(m_Directory.Path()), (std::vector<std::string>{"f   0.bmp", "f   1.bmp", "f   2.bmp"}));
  for (int number = 0; number < 3; ++number) {
    std::ifstream file(m_Directory.Path() / ("f   " + std::to_string(number) + ".bmp"));
    int written = -1;
    file >> written;
    EXPECT_EQ(written, number);
  }
  EXPECT_EQ(Buttons(), "+-++++");
}

TEST_F(AnimationRecorderTest, ExportEndsAtNo) {
  RecordFrames(3);
  m_Dialogs.m_bYes = false;
  ExportTo((m_Directory.Path() / "f").string());
  EXPECT_EQ(m_Dialogs.m_aTexts, std::vector<std::string>{kQuestion});
  EXPECT_TRUE(FilesIn(m_Directory.Path()).empty());
  EXPECT_EQ(Buttons(), "+-++++");
}

TEST_F(AnimationRecorderTest, ExportWithoutANameIsCancelled) {
  RecordFrames(3);
  ExportTo("");
  EXPECT_EQ(m_Dialogs.m_aTexts.back(), "You didn't chose any name ! Action canceled");
  EXPECT_TRUE(m_View.m_aFileNames.empty());
}

TEST_F(AnimationRecorderTest, ExportOfAnEmptyListFinishes) {
  ExportTo((m_Directory.Path() / "f").string());
  EXPECT_EQ(m_Dialogs.m_aTexts.back(), "Export finished");
  EXPECT_TRUE(FilesIn(m_Directory.Path()).empty());
}

TEST_F(AnimationRecorderTest, FileThatCannotBeWrittenEndsTheExport) {
  RecordFrames(4);
  const std::string name = (m_Directory.Path() / "f").string();
  std::filesystem::create_directory(name + "   2.bmp");
  ExportTo(name);
  EXPECT_EQ(m_Dialogs.m_aTexts.back(), "Cannot write " + name + "   2.bmp");
  EXPECT_EQ(FilesIn(m_Directory.Path()), (std::vector<std::string>{"f   0.bmp", "f   1.bmp", "f   2.bmp"}));
}

TEST_F(AnimationRecorderTest, ExportPausesARecordingAndItsRedrawsRecordNothing) {
  RecordFrames(2);
  Press(kRecord);
  Press(kPause);
  m_View.m_OnDraw = [&] { m_Window.StoreFrame(); };
  ExportTo((m_Directory.Path() / "f").string());
  EXPECT_EQ(Mode(), 6U);
  EXPECT_EQ(m_Window.Recorder().Frames().size(), 2U);
  EXPECT_EQ(m_View.m_aFileNames.size(), 2U);
}

TEST_F(AnimationRecorderTest, ButtonsAreInactiveDuringAnExport) {
  RecordFrames(2);
  std::string during;
  m_View.m_OnDraw = [&] { during = Buttons(); };
  ExportTo((m_Directory.Path() / "f").string());
  EXPECT_EQ(during, "------");
}

TEST_F(AnimationRecorderTest, EscapeStopsTheExport) {
  RecordFrames(2000);
  m_View.m_OnDraw = [&] {
    if (m_View.m_aFileNames.size() != 5) return;
    ASSERT_TRUE(RunToolkitUntil([&] {
      const auto dialog = m_Screen.FindWindow(getpid(), "Export the animation");
      return dialog.has_value() && m_Screen.HasFocus(*dialog);
    }));
    PressKey("Escape");
  };
  ExportTo((m_Directory.Path() / "f").string());
  EXPECT_LT(m_View.m_aFileNames.size(), 2000U);
  EXPECT_GE(m_View.m_aFileNames.size(), 5U);
  EXPECT_EQ(m_Dialogs.m_aTexts.back(), kTemplateQuestion);
  EXPECT_TRUE(m_Window.IsOpen());
}

TEST_F(AnimationRecorderTest, EveryWayOfClosingEndsTheRecorder) {
  int closed = 0;
  m_Window.OnClosed([&] { ++closed; });
  Press(kRecord);
  m_Window.Close();
  EXPECT_EQ(m_Host.m_Calls, "pause end ");
  EXPECT_EQ(Mode(), RecordMode::kIdle);
  m_Window.Close();
  EXPECT_EQ(closed, 1);
  m_Window.Open();
  const auto window = [&] { return m_Screen.FindWindow(getpid(), m_Window.label()); };
  ASSERT_TRUE(RunToolkitUntil([&] { return window().has_value(); }));
  m_Screen.AskToClose(*window());
  EXPECT_TRUE(RunToolkitUntil([&] { return !m_Window.IsOpen(); }));
  EXPECT_EQ(m_Host.m_Calls, "pause end pause end ");
  EXPECT_EQ(closed, 2);
  EXPECT_FALSE(m_Window.shown());
}

TEST_F(AnimationRecorderTest, FramesOutliveTheClosedWindow) {
  RecordFrames(3);
  m_Window.Close();
  m_Window.Open();
  EXPECT_EQ(m_Window.Recorder().Frames().size(), 3U);
  EXPECT_EQ(Buttons(), "+-++++");
  EXPECT_EQ(Output(0).value(), 3);
}

TEST_F(AnimationRecorderTest, ToolkitAsksAndTells) {
  m_Window.Close();
  CToolkitDialogs dialogs;
  const auto answered = [](std::vector<std::string> keys, const auto& ask) {
    const CKeyAnswer answer(std::move(keys));
    return ask();
  };
  EXPECT_TRUE(answered({"Return"}, [&] { return dialogs.Ask("Sure ?"); }));
  EXPECT_FALSE(answered({"Escape"}, [&] { return dialogs.Ask("Sure ?"); }));
  EXPECT_EQ(answered({"a", "b", "Return"}, [&] { return dialogs.AskText("Name"); }), "ab");
  EXPECT_EQ(answered({"Return"}, [&] { return dialogs.AskText("Name"); }), "");
  EXPECT_EQ(answered({"a", "Escape"}, [&] { return dialogs.AskText("Name"); }), "");
  answered({"Return"}, [&] { dialogs.Notice("Export finished"); });
}
