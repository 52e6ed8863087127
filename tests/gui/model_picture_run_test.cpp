// What the program without a window draws of a model is what the window shows of it.

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <string>

#include "codecs/PictureFormats.h"
#include "support/ProgramRun.h"
#include "support/SamplePhotograph.h"
#include "support/gui/RunTest.h"

namespace {

// Levels that the pictures may differ by where nothing ends, and how much their surroundings may differ there.
constexpr int kEqual = 2;
constexpr int kSmooth = 16;

class ModelPictureRunTest : public RunTest {
 protected:
  void SetUp() override {
    RunTest::SetUp();
    m_User.ClickOn(Control::PositionConstraint);
    PlaceHeight({290, 110}, 60);
    for (const CPixel corner : {CPixel{20, 20}, CPixel{580, 20}, CPixel{20, 380}, CPixel{580, 380}})
      PlaceHeight(corner, 0);
    m_User.ClickOn(Control::ResumeSolver);
    ASSERT_TRUE(m_Program.Rests());
    m_User.Type("ctrl+alt+g");
    m_User.ClickOn(Control::ResetModelView);
    ASSERT_TRUE(SaveModel("model.grid"));
  }
  CPicture Drawn(const std::string& turn) const {
    EXPECT_EQ(
        RunIn(m_Program.Directory(), "'" RELIEVO_PICTURE "' model.grid --image '" + std::string(kSamplePhotograph) +
                                         "' --size 430x430 -o drawn.png --turn " + turn),
        0);
    return ReadPicture(File("drawn.png").string()).m_Picture;
  }
};

// Largest difference between the pixels of two pictures in one place, and between those around a place of one.
int Difference(const CPicture& a, const CPicture& b, std::size_t pixel, std::size_t other) {
  int most = 0;
  for (std::size_t c = 0; c < 3; ++c)
    most = std::max(most, std::abs(a.m_aPixels[3 * pixel + c] - b.m_aPixels[3 * other + c]));
  return most;
}
bool IsSmooth(const CPicture& picture, int x, int y) {
  const auto at = [&picture](int column, int row) { return static_cast<std::size_t>(row * picture.m_iWidth + column); };
  for (int dx = -2; dx <= 2; ++dx) {
    for (int dy = -2; dy <= 2; ++dy) {
      if (Difference(picture, picture, at(x, y), at(x + dx, y + dy)) > kSmooth) return false;
    }
  }
  return true;
}

void ExpectEqualAwayFromEdges(const CPicture& shot, const CPicture& drawn) {
  ASSERT_EQ(shot.m_iWidth, drawn.m_iWidth);
  ASSERT_EQ(shot.m_iHeight, drawn.m_iHeight);
  int compared = 0;
  int covered = 0;
  int unequal = 0;
  for (int y = 2; y < shot.m_iHeight - 2; ++y) {
    for (int x = 2; x < shot.m_iWidth - 2; ++x) {
      const auto pixel = static_cast<std::size_t>(y * shot.m_iWidth + x);
      if (!IsSmooth(shot, x, y)) continue;
      ++compared;
      covered += *std::max_element(&shot.m_aPixels[3 * pixel], &shot.m_aPixels[3 * pixel] + 3) > kSmooth;
      unequal += Difference(shot, drawn, pixel, pixel) > kEqual;
    }
  }
  EXPECT_GT(compared, shot.m_iWidth * shot.m_iHeight / 2);
  EXPECT_GT(covered, 10000);
  EXPECT_EQ(unequal, 0);
}

}  // namespace

TEST_F(ModelPictureRunTest, IsWhatTheWindowShows) {
  ExpectEqualAwayFromEdges(Shoot(1, "front.bmp"), Drawn("0,0"));
  // In one step, whose tangent is the hundred pixels over the camera's two hundred.
  const CPixel middle = m_User.AreaOf(Control::ModelView).Centre();
  m_User.DragSlowly(middle, {middle.m_iX + 100, middle.m_iY}, 1, "", 1);
  ExpectEqualAwayFromEdges(Shoot(1, "right.bmp"), Drawn("26.56505,0"));
}
