// What a load leaves behind when memory runs out halfway through it.

#include <cmath>
#include <map>

#include <gtest/gtest.h>

#include "codecs/PictureFormats.h"
#include "io/Bmp.h"
#include "support/AllocationCount.h"
#include "support/BmpBuilders.h"
#include "support/CTemporaryDirectory.h"
#include "support/ConsoleCapture.h"
#include "support/FileBuilders.h"
#include "support/PictureBuilders.h"
#include "support/PictureEncoders.h"

namespace {

class StarvedLoad : public testing::TestWithParam<int> {
 protected:
  /// What has become of a model when the `count`-th allocation of the load has failed.
  GridFileState Try(const std::string& text, long count) {
    CFullModel present;
    const std::string before = GridText(present.m_Grid);
    std::ostringstream nowhere;
    const CConsoleRedirect redirect(nowhere);
    std::istringstream in(text);
    FailAllocation(count);
    const GridFileState state = ReadGrid(in, present.m_Grid);
    m_bFailed = HasAllocationFailed();
    FailAllocation(-1);
    if (!IsReplaced(state)) {
      EXPECT_EQ(GridText(present.m_Grid), before) << count;
    } else {
      EXPECT_NE(present.m_Grid.Constraints().Points().size(), SomeConstraints().size()) << count;
    }
    present.m_Grid.UpdateGrid();
    EXPECT_TRUE(std::isfinite(present.m_Grid.Surface().MaxHeight())) << count;
    return state;
  }
  bool m_bFailed = true;
};

TEST_P(StarvedLoad, KeepsTheModelOrBeginsANewOne) {
  std::string text;
  {
    CTestGrid other(GetParam(), 3);
    AddAll(other.m_Grid, {HeightCstr(1, 22, 5)});
    other.m_Grid.PerformPendingWork();
    text = GridText(other.m_Grid);
  }
  std::map<GridFileState, int> states;
  for (long count = 0; m_bFailed; ++count) ++states[Try(text, count)];
  EXPECT_GT(states[GridFileState::TooLarge], 10);
  EXPECT_GT(states[GridFileState::OutOfMemory], 10);
  EXPECT_EQ(states[GridFileState::NotOpened], 0);
}

INSTANTIATE_TEST_SUITE_P(SameAndOtherLevel, StarvedLoad, testing::Values(4, 5));

TEST(StarvedPicture, IsRefused) {
  const CTemporaryDirectory directory;
  const ConsoleCapture console;
  const std::string file = directory.File("picture.bmp");
  WriteBytes(file, BmpFile(SomePicture(40, 30)));
  int refused = 0;
  for (bool failed = true; failed;) {
    FailAllocation(refused);
    const bool loaded = Global::LoadBMP(file, 1).has_value();
    failed = HasAllocationFailed();
    FailAllocation(-1);
    EXPECT_EQ(loaded, !failed);
    if (failed) ++refused;
  }
  EXPECT_GE(refused, 3);
}

TEST(StarvedPicture, IsRefusedInOtherFormatsToo) {
  CJpegSettings portrait;
  portrait.m_iOrientation = 6;
  portrait.m_Profile = ProfileNamed("Adobe RGB");
  CTiffSettings tiled;
  tiled.m_bTiled = true;
  for (const std::string& bytes :
       {TestJpeg(Squares(), portrait), TestPng(Squares(), {}), TestTiff(Squares(), tiled), TestWebp(Squares(), {})}) {
    const CPicture whole = ReadPicture(bytes, "picture").m_Picture;
    int refused = 0;
    bool failed = true;
    for (long count = 0; failed; ++count) {
      FailAllocation(count);
      const CReadPicture read = ReadPicture(bytes, "picture");
      failed = HasAllocationFailed();
      FailAllocation(-1);
      // Streams can do without some of theirs.
      EXPECT_EQ(read.m_Trouble, read ? PictureTrouble::None : PictureTrouble::NoMemory) << count;
      EXPECT_EQ(read.m_Picture.m_aPixels, read ? whole.m_aPixels : CBytes{}) << count;
      if (!read) ++refused;
    }
    EXPECT_GE(refused, 3);
  }
}

}  // namespace
