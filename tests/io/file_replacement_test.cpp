#include <filesystem>

#include <gtest/gtest.h>

#include "io/CFileReplacement.h"
#include "support/BmpBuilders.h"
#include "support/CTemporaryDirectory.h"

namespace {

class FileReplacementTest : public ::testing::Test {
 protected:
  CTemporaryDirectory m_Scratch;
  std::string m_File = m_Scratch.File("target");
  CBytes m_aOld{1, 2, 3};
  CBytes m_aNew{4, 5};
};

}  // namespace

TEST_F(FileReplacementTest, OldContentsStayUntilTheNewOnesAreInPlace) {
  WriteBytes(m_File, m_aOld);
  CFileReplacement file(m_File);
  ASSERT_TRUE(file.IsOpen());
  file.Write(m_aNew);
  EXPECT_EQ(ReadBytes(m_File), m_aOld);
  EXPECT_TRUE(file.Commit());
  EXPECT_EQ(ReadBytes(m_File), m_aNew);
}

TEST_F(FileReplacementTest, WithoutCommitNothingHasHappened) {
  WriteBytes(m_File, m_aOld);
  { CFileReplacement(m_File).Write(m_aNew); }
  EXPECT_EQ(ReadBytes(m_File), m_aOld);
  EXPECT_EQ(m_Scratch.Names(), std::vector<std::string>{"target"});
}

TEST_F(FileReplacementTest, NewFileIsMade) {
  CFileReplacement file(m_File);
  file.Write(m_aNew);
  EXPECT_FALSE(std::filesystem::exists(m_File));
  EXPECT_TRUE(file.Commit());
  EXPECT_EQ(ReadBytes(m_File), m_aNew);
}

TEST_F(FileReplacementTest, FileLeftByACrashIsNotTouched) {
  WriteBytes(m_File + ".part0", m_aOld);
  CFileReplacement file(m_File);
  file.Write(m_aNew);
  EXPECT_TRUE(file.Commit());
  EXPECT_EQ(ReadBytes(m_File + ".part0"), m_aOld);
}

TEST_F(FileReplacementTest, TargetThatBecameADirectoryMakesCommitFail) {
  CFileReplacement file(m_File);
  std::filesystem::create_directory(m_File);
  WriteBytes(m_File + "/something", m_aOld);
  EXPECT_FALSE(file.Commit());
}
