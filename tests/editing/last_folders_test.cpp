#include <filesystem>
#include <string>

#include <gtest/gtest.h>

#include "editing/CLastFolders.h"
#include "support/CTemporaryDirectory.h"
#include "support/ConsoleCapture.h"
#include "support/FileBuilders.h"

namespace {

class LastFoldersTest : public ::testing::Test {
 protected:
  /// A folder that there is, with a name that is hard to write down.
  std::string Folder(const std::string& name) const {
    std::filesystem::create_directories(m_Scratch.File(name));
    return m_Scratch.File(name);
  }

  CTemporaryDirectory m_Scratch;
  std::string m_File = m_Scratch.File("last-folders");
  CLastFolders m_Folders{m_File};
};

}  // namespace

TEST_F(LastFoldersTest, EachKindHasItsOwn) {
  EXPECT_EQ(m_Folders.Of("picture"), "");
  m_Folders.Note("picture", Folder("a") + "/x.bmp");
  m_Folders.Note(".grid", Folder("b") + "/x.grid");
  m_Folders.Note("picture", Folder("c") + "/x.bmp");
  EXPECT_EQ(m_Folders.Of("picture"), Folder("c"));
  EXPECT_EQ(m_Folders.Of(".grid"), Folder("b"));
  EXPECT_EQ(m_Folders.Of(".wrl"), "");
}

TEST_F(LastFoldersTest, TheNextRunKnowsThem) {
  const std::string strange = Folder("\tb\nc 100% &@\xc3\xa4\xff");
  m_Folders.Note("picture", strange + "/x.bmp");
  m_Folders.Note(".grid", "/x.grid");
  CLastFolders next(m_File);
  EXPECT_EQ(next.Of("picture"), strange);
  EXPECT_EQ(next.Of(".grid"), "/");
}

TEST_F(LastFoldersTest, AFolderThatHasGoneIsNone) {
  m_Folders.Note("picture", Folder("a") + "/x.bmp");
  std::filesystem::remove(Folder("a"));
  EXPECT_EQ(m_Folders.Of("picture"), "");
}

TEST_F(LastFoldersTest, LinesWithoutSenseAreLeftOutAndToldOnce) {
  WriteText(m_File, "nonsense\npicture\tfile:///tmp\n\n.grid\thttp://x\n");
  const ConsoleCapture console;
  EXPECT_EQ(m_Folders.Of("picture"), "/tmp");
  EXPECT_EQ(m_Folders.Of(".grid"), "");
  EXPECT_EQ(console.Text(), "The list of last folders in " + m_File + " is damaged in part\n");
}

TEST_F(LastFoldersTest, WhereNothingCanBeKeptTheyLastAsLongAsTheRun) {
  const ConsoleCapture console;
  const std::string lost = m_Scratch.File("missing/folders");
  CLastFolders unwritable(lost);
  for (const char* file : {"/tmp/x", "/x"}) unwritable.Note("picture", file);
  EXPECT_EQ(unwritable.Of("picture"), "/");
  EXPECT_EQ(console.Text(), "The list of last folders cannot be kept in " + lost + "\n");
  CLastFolders none({});
  none.Note("picture", "/tmp/x");
  EXPECT_EQ(none.Of("picture"), "/tmp");
}
