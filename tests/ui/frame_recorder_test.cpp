#include <vector>

#include <gtest/gtest.h>

#include "support/CTemporaryDirectory.h"
#include "support/RecorderBuilders.h"
#include "ui/recorder/FrameExport.h"

namespace {

class FrameRecorderTest : public ::testing::Test {
 protected:
  // Frames at the given times, in milliseconds, since recording was asked for.
  void RecordAt(const std::vector<int>& times) {
    m_Recorder.Record();
    m_Recorder.TogglePause();
    const std::int64_t start = m_Clock.m_iNow;
    for (const int time : times) {
      m_Clock.m_iNow = start + time;
      m_Recorder.Capture(CameraNumber(time));
    }
  }
  std::vector<double> Seconds() const {
    std::vector<double> seconds;
    for (const CFrame& frame : m_Recorder.Frames()) seconds.push_back(frame.m_fSeconds);
    return seconds;
  }

  CTestClock m_Clock;
  CFrameRecorder m_Recorder{m_Clock.Clock()};
};

}  // namespace

TEST_F(FrameRecorderTest, StartsIdleAndEmpty) {
  EXPECT_EQ(m_Recorder.Mode(), 1U);
  EXPECT_TRUE(m_Recorder.Frames().empty());
  EXPECT_FALSE(m_Recorder.Capture({}));
}

TEST_F(FrameRecorderTest, RecordingStartsPaused) {
  m_Recorder.Record();
  EXPECT_EQ(m_Recorder.Mode(), 6U);
  EXPECT_FALSE(m_Recorder.Capture({}));
  m_Recorder.TogglePause();
  EXPECT_EQ(m_Recorder.Mode(), 2U);
  EXPECT_TRUE(m_Recorder.Capture({}));
  m_Recorder.TogglePause();
  EXPECT_EQ(m_Recorder.Mode(), 6U);
  EXPECT_FALSE(m_Recorder.Capture({}));
}

TEST_F(FrameRecorderTest, FramesKeepTheCameraAsItIs) {
  RecordAt({5});
  ASSERT_EQ(m_Recorder.Frames().size(), 1U);
  EXPECT_EQ(m_Recorder.Frames()[0].m_Camera, CameraNumber(5));
}

TEST_F(FrameRecorderTest, TimesCountFromTheFrameBefore) {
  RecordAt({20, 53, 1053});
  const std::vector<double> seconds = Seconds();
  ASSERT_EQ(seconds.size(), 3U);
  EXPECT_DOUBLE_EQ(seconds[0], 0.020);
  EXPECT_DOUBLE_EQ(seconds[1], 0.033);
  EXPECT_DOUBLE_EQ(seconds[2], 1.0);
  EXPECT_DOUBLE_EQ(m_Recorder.ShownSeconds(), 1.0);
}

TEST_F(FrameRecorderTest, RecordingAgainAppendsAndTakesTheTimeAnew) {
  RecordAt({20, 40});
  m_Clock.m_iNow += 5000;
  m_Recorder.Record();
  EXPECT_EQ(m_Recorder.Mode(), 6U);
  EXPECT_EQ(m_Recorder.ShownSeconds(), 0.0);
  EXPECT_EQ(m_Recorder.Frames().size(), 2U);
  RecordAt({7});
  EXPECT_EQ(m_Recorder.Frames().size(), 3U);
  EXPECT_DOUBLE_EQ(Seconds()[2], 0.007);
}

TEST_F(FrameRecorderTest, PauseIsForRecordingAndPlaying) {
  m_Recorder.TogglePause();
  m_Recorder.Pause();
  EXPECT_EQ(m_Recorder.Mode(), 1U);
  m_Recorder.Play();
  EXPECT_EQ(m_Recorder.Mode(), 8U);
  m_Recorder.TogglePause();
  EXPECT_EQ(m_Recorder.Mode(), 12U);
  m_Recorder.Pause();
  EXPECT_EQ(m_Recorder.Mode(), 12U);
  m_Recorder.TogglePause();
  EXPECT_EQ(m_Recorder.Mode(), 8U);
}

TEST_F(FrameRecorderTest, PlayingShowsTheFramesInOrder) {
  RecordAt({1, 2});
  m_Recorder.Play();
  EXPECT_FALSE(m_Recorder.Capture({}));
  EXPECT_EQ(m_Recorder.Next()->m_Camera, CameraNumber(1));
  EXPECT_FALSE(m_Recorder.IsAtEnd());
  EXPECT_EQ(m_Recorder.Next()->m_Camera, CameraNumber(2));
  EXPECT_TRUE(m_Recorder.IsAtEnd());
  EXPECT_EQ(m_Recorder.Next(), nullptr);
  m_Recorder.Play();
  EXPECT_EQ(m_Recorder.Next()->m_Camera, CameraNumber(1));
}

TEST_F(FrameRecorderTest, PausedOrIdleRecorderHasNoNextFrame) {
  RecordAt({1, 2});
  EXPECT_EQ(m_Recorder.Next(), nullptr);
  m_Recorder.Play();
  m_Recorder.TogglePause();
  EXPECT_EQ(m_Recorder.Next(), nullptr);
  m_Recorder.Stop();
  EXPECT_EQ(m_Recorder.Next(), nullptr);
}

TEST_F(FrameRecorderTest, StopKeepsTheFramesAndResetDropsThem) {
  RecordAt({1, 2});
  m_Recorder.Stop();
  EXPECT_EQ(m_Recorder.Mode(), 1U);
  EXPECT_EQ(m_Recorder.Frames().size(), 2U);
  m_Recorder.Play();
  m_Recorder.Reset();
  EXPECT_EQ(m_Recorder.Mode(), 1U);
  EXPECT_TRUE(m_Recorder.Frames().empty());
  EXPECT_EQ(m_Recorder.ShownSeconds(), 0.0);
  EXPECT_TRUE(m_Recorder.IsAtEnd());
}

TEST(FrameFileNameTest, NumberIsPaddedWithBlanksToFourPlaces) {
  EXPECT_EQ(FrameFileName("a", 0), "a   0.bmp");
  EXPECT_EQ(FrameFileName("a", 12), "a  12.bmp");
  EXPECT_EQ(FrameFileName("a", 999), "a 999.bmp");
  EXPECT_EQ(FrameFileName("a", 9999), "a9999.bmp");
  EXPECT_EQ(FrameFileName("a", 10000), "a10000.bmp");
}

TEST(FrameFileNameTest, TemplateIsTakenAsItIs) { EXPECT_EQ(FrameFileName("/tmp/50%s", 3), "/tmp/50%s   3.bmp"); }

TEST(ExportFramesTest, StopsBetweenFrames) {
  const CTemporaryDirectory directory;
  RecordingView view;
  std::string failed;
  const std::vector<CFrame> frames(5);
  const auto goOn = [](int number) { return number < 2; };
  EXPECT_EQ(ExportFrames(frames, (directory.Path() / "f").string(), view, goOn, failed), ExportResult::Stopped);
  EXPECT_EQ(view.m_aFileNames.size(), 2U);
  EXPECT_EQ(failed, "");
}
