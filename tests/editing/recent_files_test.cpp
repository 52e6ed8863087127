#include <filesystem>
#include <ostream>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <sys/stat.h>

#include "editing/CRecentFiles.h"
#include "support/CTemporaryDirectory.h"
#include "support/ConsoleCapture.h"
#include "support/FileBuilders.h"

namespace {

using CList = std::vector<CWorkFiles>;

class RecentFilesTest : public ::testing::Test {
 protected:
  CTemporaryDirectory m_Scratch;
  std::string m_File = m_Scratch.File("recent");
  CRecentFiles m_Recent{m_File};
};

}  // namespace

// So that a failure shows names.
void PrintTo(const CWorkFiles& work, std::ostream* out) { *out << work.m_Model << " + " << work.m_Picture; }

TEST_F(RecentFilesTest, TheLatestComesFirst) {
  EXPECT_EQ(m_Recent.List(), CList());
  m_Recent.Note({"/a.grid", ""});
  m_Recent.Note({"/b.grid", "/b.bmp"});
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
  const CWorkFiles strange{"/a\tb\nc/&@\xff.grid", "/100% \xc3\xa4.bmp"};
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
  m_Recent.Clear();
  EXPECT_EQ(m_Recent.List(), CList());
}

TEST_F(RecentFilesTest, LinesWithoutSenseAreLeftOutAndToldOnce) {
  WriteText(m_File, "nonsense\nfile:///a\t\n\t\nhttp://x\tfile:///b\nfile:///a%\t\n\tfile:///b\n");
  const ConsoleCapture console;
  for (int k = 0; k < 2; ++k) EXPECT_EQ(m_Recent.List(), (CList{{"/a", ""}, {"", "/b"}}));
  EXPECT_EQ(console.Text(), "The list of recent files in " + m_File + " is damaged in part\n");
}

TEST_F(RecentFilesTest, WithoutAFolderTheListLastsAsLongAsTheRun) {
  const ConsoleCapture console;
  CRecentFiles none({});
  none.Note({"/a", ""});
  EXPECT_EQ(none.List(), (CList{{"/a", ""}}));
  EXPECT_EQ(console.Text(), "");
  none.Clear();
  EXPECT_EQ(none.List(), CList());
}

TEST_F(RecentFilesTest, WhereItCannotBeWrittenItLastsAsLongAndOneLineSaysSo) {
  const ConsoleCapture console;
  const std::string file = m_Scratch.File("missing/recent");
  CRecentFiles lost(file);
  for (const char* model : {"/a", "/b"}) lost.Note({model, ""});
  EXPECT_EQ(lost.List(), (CList{{"/b", ""}, {"/a", ""}}));
  EXPECT_EQ(console.Text(), "The list of recent files cannot be kept in " + file + "\n");
}

// Neither a pipe, which would be waited for, nor more than there is memory for.
TEST_F(RecentFilesTest, WhatIsNoListIsAnEmptyOne) {
  const ConsoleCapture console;
  ASSERT_EQ(mkfifo(m_File.c_str(), 0600), 0);
  EXPECT_EQ(m_Recent.List(), CList());
  std::filesystem::remove(m_File);
  WriteText(m_File, std::string(3'000'000, 'x'));
  EXPECT_EQ(m_Recent.List(), CList());
}
