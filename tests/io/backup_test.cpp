// The old file beside the new one.

#include <algorithm>
#include <filesystem>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <sys/stat.h>

#include "io/CFileReplacement.h"
#include "io/CKeepOldFile.h"
#include "support/BmpBuilders.h"
#include "support/CTemporaryDirectory.h"
#include "support/ConsoleCapture.h"
#include "support/OtherUser.h"

namespace {

class BackupTest : public ::testing::Test {
 protected:
  bool Replace(const std::string& file, bool keeps = true) const {
    const CKeepOldFile keep(keeps ? file : "");
    CFileReplacement replacement(file);
    if (!replacement.IsOpen()) return false;
    replacement.Write(m_aNew);
    return replacement.Commit();
  }
  std::vector<std::string> Names() const {
    std::vector<std::string> names = m_Scratch.Names();
    std::ranges::sort(names);
    return names;
  }
  static std::string NotKept(const std::string& file, const std::string& why) {
    return "No copy of the old " + file + " is kept: " + why + "\n";
  }

  CTemporaryDirectory m_Scratch;
  std::string m_File = m_Scratch.File("a.grid");
  CBytes m_aOld{1, 2, 3};
  CBytes m_aNew{4, 5};
};

using NameList = std::vector<std::string>;

}  // namespace

TEST_F(BackupTest, OldFileStaysUnderItsNameWithATilde) {
  WriteBytes(m_File, m_aOld);
  EXPECT_TRUE(Replace(m_File));
  EXPECT_EQ(ReadBytes(m_File), m_aNew);
  EXPECT_EQ(ReadBytes(m_File + "~"), m_aOld);
  EXPECT_EQ(Names(), (NameList{"a.grid", "a.grid~"}));
}

TEST_F(BackupTest, ItReplacesAnOlderOne) {
  WriteBytes(m_File, m_aOld);
  WriteBytes(m_File + "~", {9});
  EXPECT_TRUE(Replace(m_File));
  EXPECT_EQ(ReadBytes(m_File + "~"), m_aOld);
}

TEST_F(BackupTest, WithoutTheWishNothingIsKept) {
  WriteBytes(m_File, m_aOld);
  EXPECT_TRUE(Replace(m_File, false));
  const CKeepOldFile other(m_Scratch.File("other"));
  EXPECT_TRUE(Replace(m_File, false));
  EXPECT_EQ(Names(), NameList{"a.grid"});
}

TEST_F(BackupTest, OfANewFileThereIsNone) {
  EXPECT_TRUE(Replace(m_File));
  EXPECT_EQ(Names(), NameList{"a.grid"});
}

TEST_F(BackupTest, ThatOfALinkLiesBesideItsTarget) {
  std::filesystem::create_directory(m_Scratch.File("there"));
  const std::string target = m_Scratch.File("there/b.grid");
  WriteBytes(target, m_aOld);
  std::filesystem::create_symlink("there/b.grid", m_File);
  EXPECT_TRUE(Replace(m_File));
  EXPECT_EQ(ReadBytes(target), m_aNew);
  EXPECT_EQ(ReadBytes(target + "~"), m_aOld);
  EXPECT_EQ(Names(), (NameList{"a.grid", "there"}));
}

TEST_F(BackupTest, WhatIsNotReplacedKeepsItsOlderOne) {
  WriteBytes(m_File, m_aOld);
  WriteBytes(m_File + "~", {9});
  const CKeepOldFile keep(m_File);
  { CFileReplacement(m_File).Write(m_aNew); }
  EXPECT_EQ(ReadBytes(m_File), m_aOld);
  EXPECT_EQ(ReadBytes(m_File + "~"), CBytes{9});
  EXPECT_EQ(Names(), (NameList{"a.grid", "a.grid~"}));
}

TEST_F(BackupTest, ANameOfFullLengthHasNone) {
  const std::string file = m_Scratch.File(std::string(255, 'x'));
  WriteBytes(file, m_aOld);
  const ConsoleCapture console;
  EXPECT_TRUE(Replace(file));
  EXPECT_EQ(ReadBytes(file), m_aNew);
  EXPECT_EQ(console.Text(), NotKept(file, "its name has no room for a ~"));
  EXPECT_EQ(Names().size(), 1U);
  const std::string shorter = m_Scratch.File(std::string(254, 'x'));
  WriteBytes(shorter, m_aOld);
  EXPECT_TRUE(Replace(shorter));
  EXPECT_EQ(ReadBytes(shorter + "~"), m_aOld);
}

TEST_F(BackupTest, AFolderInItsPlaceStays) {
  WriteBytes(m_File, m_aOld);
  std::filesystem::create_directory(m_File + "~");
  const ConsoleCapture console;
  EXPECT_TRUE(Replace(m_File));
  EXPECT_EQ(ReadBytes(m_File), m_aNew);
  EXPECT_EQ(console.Text(), NotKept(m_File, "Is a directory"));
  EXPECT_EQ(Names(), (NameList{"a.grid", "a.grid~"}));
}

TEST_F(BackupTest, AnotherNameOfTheFileItselfBecomesIt) {
  WriteBytes(m_File, m_aOld);
  std::filesystem::create_hard_link(m_File, m_File + "~");
  EXPECT_TRUE(Replace(m_File));
  EXPECT_EQ(ReadBytes(m_File + "~"), m_aOld);
  EXPECT_EQ(Names(), (NameList{"a.grid", "a.grid~"}));
}

TEST_F(BackupTest, InAFolderThatMayNotBeWrittenNothingChanges) {
  WriteBytes(m_File, m_aOld);
  std::filesystem::permissions(m_Scratch.Path(), std::filesystem::perms(0555));
  EXPECT_FALSE(SucceedsAsOtherUser([this] { return Replace(m_File); }));
  std::filesystem::permissions(m_Scratch.Path(), std::filesystem::perms(0755));
  EXPECT_EQ(ReadBytes(m_File), m_aOld);
  EXPECT_EQ(Names(), NameList{"a.grid"});
}

// A system may refuse a second name of a file that belongs to somebody else.
TEST_F(BackupTest, AFileOfSomebodyElseIsCopied) {
  WriteBytes(m_File, m_aOld);
  std::filesystem::permissions(m_Scratch.Path(), std::filesystem::perms(0777));
  std::filesystem::permissions(m_File, std::filesystem::perms(0666));
  EXPECT_TRUE(SucceedsAsOtherUser([this] { return Replace(m_File); }));
  EXPECT_EQ(ReadBytes(m_File), m_aNew);
  EXPECT_EQ(ReadBytes(m_File + "~"), m_aOld);
}
