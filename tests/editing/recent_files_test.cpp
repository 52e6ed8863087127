#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "editing/CRecentFiles.h"
#include "support/CTemporaryDirectory.h"

namespace {

using CList = std::vector<CRecentWork>;

class RecentFilesTest : public ::testing::Test {
 protected:
  CTemporaryDirectory m_Scratch;
  std::string m_File = m_Scratch.File("recent");
  CRecentFiles m_Recent{m_File};
};

}  // namespace

// So that a failure shows names.
static void PrintTo(const CRecentWork& work, std::ostream* out) { *out << work.m_Model << " + " << work.m_Picture; }

TEST_F(RecentFilesTest, TheLatestComesFirst) {
  EXPECT_EQ(m_Recent.List(), CList());
  EXPECT_TRUE(m_Recent.Note({"/a.grid", ""}));
  EXPECT_TRUE(m_Recent.Note({"/b.grid", "/b.bmp"}));
  EXPECT_EQ(m_Recent.List(), (CList{{"/b.grid", "/b.bmp"}, {"/a.grid", ""}}));
}

TEST_F(RecentFilesTest, OneModelIsOneEntry) {
  m_Recent.Note({"/a.grid", "/a.bmp"});
  m_Recent.Note({"/b.grid", ""});
  m_Recent.Note({"/a.grid", "/other.bmp"});
  EXPECT_EQ(m_Recent.List(), (CList{{"/a.grid", "/other.bmp"}, {"/b.grid", ""}}));
}

TEST_F(RecentFilesTest, APictureJoinsItsModel) {
  m_Recent.Note({"", "/a.bmp"});
  m_Recent.Note({"", "/b.bmp"});
  m_Recent.Note({"/a.grid", "/a.bmp"});
  EXPECT_EQ(m_Recent.List(), (CList{{"/a.grid", "/a.bmp"}, {"", "/b.bmp"}}));
}

TEST_F(RecentFilesTest, TwoModelsOfOnePictureStayTwo) {
  m_Recent.Note({"/a.grid", "/a.bmp"});
  m_Recent.Note({"/b.grid", "/a.bmp"});
  EXPECT_EQ(m_Recent.List().size(), 2u);
}

TEST_F(RecentFilesTest, TheEleventhGoes) {
  for (int k = 0; k <= 10; ++k) m_Recent.Note({"/" + std::to_string(k), ""});
  ASSERT_EQ(m_Recent.List().size(), CRecentFiles::kMost);
  EXPECT_EQ(m_Recent.List().front().m_Model, "/10");
  EXPECT_EQ(m_Recent.List().back().m_Model, "/1");
}

TEST_F(RecentFilesTest, AnyNameIsKept) {
  const CRecentWork strange{"/a\tb\nc/&@\xff.grid", "/100% \xc3\xa4.bmp"};
  m_Recent.Note(strange);
  EXPECT_EQ(CRecentFiles(m_File).List(), CList{strange});
}

TEST_F(RecentFilesTest, TwoProgramsShareTheList) {
  CRecentFiles other(m_File);
  m_Recent.Note({"/a", ""});
  other.Note({"/b", ""});
  EXPECT_EQ(m_Recent.List(), (CList{{"/b", ""}, {"/a", ""}}));
}

TEST_F(RecentFilesTest, ClearingForgetsAll) {
  m_Recent.Note({"/a", ""});
  EXPECT_TRUE(m_Recent.Clear());
  EXPECT_EQ(m_Recent.List(), CList());
}

TEST_F(RecentFilesTest, LinesWithoutSenseAreLeftOut) {
  std::ofstream(m_File) << "nonsense\nfile:///a\t\n\t\nhttp://x\tfile:///b\nfile:///a%\t\n\tfile:///b\n";
  EXPECT_EQ(m_Recent.List(), (CList{{"/a", ""}, {"", "/b"}}));
}

TEST_F(RecentFilesTest, WithoutAFolderNothingIsKept) {
  CRecentFiles none({});
  EXPECT_TRUE(none.Note({"/a", ""}));
  EXPECT_EQ(none.List(), CList());
  CRecentFiles lost(m_Scratch.File("missing/recent"));
  EXPECT_FALSE(lost.Note({"/a", ""}));
  EXPECT_EQ(lost.List(), CList());
}
