#include <algorithm>
#include <string>

#include <gtest/gtest.h>
#include <sys/stat.h>

#include "projects/CZipReader.h"
#include "projects/ZipWriter.h"
#include "support/BmpBuilders.h"
#include "support/CTemporaryDirectory.h"

namespace {

constexpr std::size_t kPlenty = 1 << 20;

class ZipTest : public ::testing::Test {
 protected:
  void Write(const std::vector<CZipMember>& members) { WriteBytes(m_File, ZipOf(members)); }
  /// The archive with every occurrence of a text of the same length replaced.
  void Replace(const std::string& from, const std::string& to) {
    CBytes bytes = ReadBytes(m_File);
    for (auto at = bytes.begin();; at += static_cast<std::ptrdiff_t>(to.size())) {
      at = std::search(at, bytes.end(), from.begin(), from.end());
      if (at == bytes.end()) break;
      std::copy(to.begin(), to.end(), at);
    }
    WriteBytes(m_File, bytes);
  }

  CTemporaryDirectory m_Scratch;
  std::string m_File = m_Scratch.File("a.zip");
};

}  // namespace

TEST_F(ZipTest, GivesBackWhatWasWritten) {
  const std::string zeros(100'000, '\0');
  const std::string photograph("\xff\xd8\0jpeg", 7);
  Write({{"project.json", "{}"}, {"surface/heights", zeros}, {"photo.jpg", photograph, false}, {"empty", ""}});
  EXPECT_LT(ReadBytes(m_File).size(), 2'000u) << "the zeros are packed";
  const CZipReader zip(m_File);
  ASSERT_TRUE(zip.IsOpen()) << zip.Trouble();
  EXPECT_EQ(zip.Read("project.json", kPlenty), "{}");
  EXPECT_EQ(zip.Read("surface/heights", kPlenty), zeros);
  EXPECT_EQ(zip.Read("photo.jpg", kPlenty), photograph);
  EXPECT_EQ(zip.Read("empty", kPlenty), "");
  EXPECT_TRUE(zip.Has("empty"));
  EXPECT_FALSE(zip.Has("other"));
  EXPECT_EQ(zip.Read("other", kPlenty), std::nullopt);
}

TEST_F(ZipTest, ReadsNoMoreThanAskedFor) {
  std::string bomb;
  bomb.resize(10'000'000);
  Write({{"bomb", bomb}});
  const CZipReader zip(m_File);
  EXPECT_EQ(zip.Read("bomb", 9'999'999), std::nullopt);
  EXPECT_EQ(zip.Read("bomb", 10'000'000)->size(), bomb.size());
}

TEST_F(ZipTest, DamagedContentsAreNoContents) {
  Write({{"text", "the quick brown fox", false}});
  Replace("quick", "quack");
  const CZipReader zip(m_File);
  ASSERT_TRUE(zip.IsOpen());
  EXPECT_EQ(zip.Read("text", kPlenty), std::nullopt);
}

TEST_F(ZipTest, ALieAboutTheSizeCostsNothing) {
  const std::string text(5'000, 'x');
  Write({{"text", text}});
  // 5,000 bytes become two thousand million.
  Replace(std::string("\x88\x13\0\0", 4), std::string("\0\0\0\x77", 4));
  const CZipReader zip(m_File);
  ASSERT_TRUE(zip.IsOpen()) << zip.Trouble();
  EXPECT_EQ(zip.Read("text", kPlenty).value_or(text), text);
}

TEST_F(ZipTest, NamesThatLeadOutAreRefused) {
  for (const char* name : {"../etcetc", "/etc/host", "a/../b/cd", "etc/abc..", "..\\abcdef", "abcdef/.."}) {
    Write({{"abcdefghi", "x"}});
    Replace("abcdefghi", std::string(name).substr(0, 9));
    const bool harmless = std::string(name) == "etc/abc..";
    EXPECT_EQ(CZipReader(m_File).IsOpen(), harmless) << name;
    if (!harmless) {
      EXPECT_EQ(CZipReader(m_File).Trouble(), "has a member whose name leads out of it") << name;
    }
  }
}

TEST_F(ZipTest, TwoMembersOfOneNameAreRefused) {
  Write({{"one", "x"}, {"two", "y"}});
  Replace("two", "one");
  EXPECT_EQ(CZipReader(m_File).Trouble(), "is no zip archive, or is damaged");
}

TEST_F(ZipTest, TooManyMembersAreRefused) {
  std::vector<CZipMember> members;
  for (int k = 0; k < CZipReader::kMostMembers; ++k) members.push_back({std::to_string(k), "x"});
  Write(members);
  EXPECT_TRUE(CZipReader(m_File).IsOpen());
  members.push_back({"last", "x"});
  Write(members);
  EXPECT_EQ(CZipReader(m_File).Trouble(), "has too many members");
}

TEST_F(ZipTest, ACutArchiveIsRefusedWhereverItIsCut) {
  Write({{"one", "some text"}, {"two", "another text"}});
  const CBytes whole = ReadBytes(m_File);
  for (std::size_t length = 0; length < whole.size(); ++length) {
    WriteBytes(m_File, CBytes(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(length)));
    EXPECT_FALSE(CZipReader(m_File).IsOpen()) << length;
  }
}

TEST_F(ZipTest, WhatIsNoRegularFileIsNotOpened) {
  EXPECT_EQ(CZipReader(m_Scratch.File("none")).Trouble(), "cannot be opened");
  const std::string pipe = m_Scratch.File("pipe");
  ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
  EXPECT_EQ(CZipReader(pipe).Trouble(), "cannot be opened");
  WriteBytes(m_File, {1, 2, 3});
  EXPECT_EQ(CZipReader(m_File).Trouble(), "is no zip archive, or is damaged");
}
