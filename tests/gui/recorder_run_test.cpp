// An orbit of the camera, recorded, played and exported by mouse and keyboard.

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <set>
#include <thread>

#include "support/SamplePhotograph.h"
#include "support/gui/Input.h"
#include "support/gui/Pictures.h"
#include "support/gui/RunTest.h"
#include "support/gui/WaitUntil.h"

namespace {

constexpr int kFrames = 60;

enum RecorderButton { kRecord, kPause, kPlay, kStop, kReset, kExport };

class RecorderRunTest : public RunTest {
 protected:
  void SetUp() override {
    RunTest::SetUp();
    m_User.ClickOn(Control::Recorder);
    const auto recorder = m_Program.WaitForWindow("Animation Record Interface");
    ASSERT_TRUE(recorder.has_value() && m_Program.Rests());
    m_Recorder = m_Program.Screen().AreaOf(*recorder);
  }

  CPixel PlaceOf(RecorderButton button) const { return m_Recorder.At({30 + 46 * button, 27}); }
  void ClickOn(RecorderButton button) const { m_User.ClickAt(PlaceOf(button)); }
  void RecordOrbit() const {
    ClickOn(kRecord);
    ClickOn(kPause);
    const CArea view = m_User.AreaOf(Control::ModelView);
    m_User.DragSlowly(view.At({35, 215}), view.At({35 + 6 * kFrames, 215}), 1, "", kFrames);
    ClickOn(kPause);
  }
  CScreenshot Model() const { return m_User.See(m_User.AreaOf(Control::ModelView)); }
  // Playback comes to a rest, though its timer goes on.
  bool ModelStandsStill() const {
    using namespace std::chrono_literals;
    return WaitUntil([&] {
      const CScreenshot before = Model();
      std::this_thread::sleep_for(100ms);
      return Model() == before;
    });
  }
  bool ModelComesToBe(const CScreenshot& wanted) const {
    return WaitUntil([&] { return Model() == wanted; });
  }

  CArea m_Recorder;
};

std::string FrameName(int number) {
  std::array<char, 32> name{};
  std::snprintf(name.data(), name.size(), "orbit%4d.bmp", number);
  return name.data();
}

}  // namespace

TEST_F(RecorderRunTest, OrbitIsPlayedWithAPause) {
  RecordOrbit();
  const CScreenshot last = Model();
  ClickOn(kStop);
  // Without waiting for the end.
  MovePointer(PlaceOf(kPlay));
  m_Program.Rests();
  Click(PlaceOf(kPlay));
  ASSERT_TRUE(WaitUntil([&] { return !(Model() == last); }));
  Click(PlaceOf(kPause));
  ASSERT_TRUE(ModelStandsStill());
  const CScreenshot paused = Model();
  EXPECT_FALSE(paused == last) << "in the midst of the orbit";
  Click(PlaceOf(kPause));
  EXPECT_TRUE(ModelComesToBe(last)) << "goes on to the end";
  Click(PlaceOf(kPlay));
  ASSERT_TRUE(WaitUntil([&] { return !(Model() == last); }));
  Click(PlaceOf(kStop));
  ASSERT_TRUE(m_Program.Rests());
  EXPECT_FALSE(Model() == last) << "goes no further";
}

TEST_F(RecorderRunTest, OrbitIsExportedAsPictures) {
  RecordOrbit();
  ClickOn(kStop);
  ClickOn(kExport);
  ASSERT_TRUE(m_User.Answer(true));
  ASSERT_TRUE(m_User.AnswerText("orbit"));
  ASSERT_TRUE(m_User.Answer(true)) << "Export finished";
  std::set<std::vector<std::uint8_t>> pictures;
  for (int number = 0; number < kFrames; ++number) {
    const auto loaded = Global::LoadBMP(File(FrameName(number)).string(), 1);
    ASSERT_TRUE(loaded.has_value()) << FrameName(number);
    EXPECT_EQ(loaded->m_Picture.m_iWidth, 430);
    EXPECT_GT(Covered(loaded->m_Picture), 430U);
    pictures.insert(loaded->m_Picture.m_aPixels);
  }
  EXPECT_EQ(pictures.size(), static_cast<std::size_t>(kFrames)) << "each is different";
  EXPECT_FALSE(std::filesystem::exists(File(FrameName(kFrames))));
}
