// The folder of unsaved work: whole files only, held by those that run, never too many.

#include <csignal>
#include <filesystem>
#include <random>
#include <string>
#include <thread>

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include "editing/CRecoveryFolder.h"
#include "support/BmpBuilders.h"
#include "support/CFullDisk.h"
#include "support/CTemporaryDirectory.h"

namespace {

namespace fs = std::filesystem;
using CFiles = std::vector<fs::path>;

CBytes Bytes(const std::string& text) { return {text.begin(), text.end()}; }

class RecoveryFolderTest : public ::testing::Test {
 protected:
  /// What a program that has been killed leaves: its file, and its lock without a holder.
  fs::path Leave(const std::string& name, const std::string& text, int age) const {
    fs::create_directory(m_Folder);
    fs::path file = m_Folder / name;
    WriteBytes(file, Bytes(text));
    fs::last_write_time(file, fs::file_time_type::clock::now() - std::chrono::hours(age));
    return file;
  }
  std::size_t Count(const std::string& suffix) const {
    std::size_t count = 0;
    for (const auto& entry : fs::directory_iterator(m_Folder)) count += entry.path().extension() == suffix ? 1U : 0U;
    return count;
  }

  CTemporaryDirectory m_Scratch;
  fs::path m_Folder = m_Scratch.Path() / "relievo";
};

}  // namespace

TEST_F(RecoveryFolderTest, WhatAProgramWritesIsNobodysOnceItHasEnded) {
  CRecoveryFolder other(m_Folder);
  {
    CRecoveryFolder program(m_Folder);
    ASSERT_TRUE(program.Write(Bytes("one")));
    ASSERT_TRUE(program.Write(Bytes("two")));
    EXPECT_EQ(Count(".relievo"), 1U) << "one file for each program";
    EXPECT_EQ(other.Left(), CFiles{}) << "a running program's file";
  }
  const CFiles left = other.Left();
  ASSERT_EQ(left.size(), 1U);
  EXPECT_EQ(ReadBytes(left.front()), Bytes("two"));
}

TEST_F(RecoveryFolderTest, IsForTheUserAlone) {
  CRecoveryFolder program(m_Folder);
  program.Write(Bytes("one"));
  struct stat status {};
  for (const auto& entry : fs::directory_iterator(m_Folder)) {
    ASSERT_EQ(stat(entry.path().c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777, 0600u) << entry;
  }
}

TEST_F(RecoveryFolderTest, ProgramsKeepTheirFilesApart) {
  CRecoveryFolder one(m_Folder);
  CRecoveryFolder two(m_Folder);
  EXPECT_TRUE(one.Write(Bytes("one")));
  EXPECT_TRUE(two.Write(Bytes("two")));
  EXPECT_EQ(Count(".relievo"), 2U);
  one.Forget();
  EXPECT_EQ(Count(".relievo"), 1U);
}

TEST_F(RecoveryFolderTest, WhatIsForgottenLeavesNothing) {
  {
    CRecoveryFolder program(m_Folder);
    program.Write(Bytes("one"));
    program.Forget();
  }
  EXPECT_TRUE(fs::is_empty(m_Folder));
  { const CRecoveryFolder idle(m_Folder); }
  EXPECT_TRUE(fs::is_empty(m_Folder));
}

TEST_F(RecoveryFolderTest, ClaimedWorkIsOfferedToNobodyElse) {
  const fs::path file = Leave("a.relievo", "a", 1);
  CRecoveryFolder one(m_Folder);
  CRecoveryFolder two(m_Folder);
  EXPECT_TRUE(one.Claim(file));
  EXPECT_TRUE(one.Claim(file)) << "once more";
  EXPECT_FALSE(two.Claim(file));
  EXPECT_FALSE(two.Discard(file));
  EXPECT_EQ(two.Left(), CFiles{});
  EXPECT_EQ(one.Left(), CFiles{file});
  one.Release(file);
  EXPECT_EQ(two.Left(), CFiles{file});
  EXPECT_TRUE(two.Discard(file));
  EXPECT_EQ(one.Left(), CFiles{});
  EXPECT_FALSE(one.Claim(file));
}

TEST_F(RecoveryFolderTest, TheNewestComesFirst) {
  const fs::path old = Leave("b.relievo", "b", 3);
  const fs::path young = Leave("a.relievo", "a", 1);
  const fs::path middle = Leave("c.relievo", "c", 2);
  EXPECT_EQ(CRecoveryFolder(m_Folder).Left(), (CFiles{young, middle, old}));
}

TEST_F(RecoveryFolderTest, TheOldestGoWhenThereAreTooMany) {
  for (int k = 0; k < 14; ++k) Leave(std::to_string(k) + ".relievo", "x", 1 + k);
  CRecoveryFolder program(m_Folder);
  ASSERT_TRUE(program.Write(Bytes("own")));
  EXPECT_EQ(Count(".relievo"), CRecoveryFolder::kMostFiles);
  const CFiles left = program.Left();
  ASSERT_EQ(left.size(), CRecoveryFolder::kMostFiles - 1);
  EXPECT_EQ(left.front().filename(), "0.relievo");
  EXPECT_EQ(left.back().filename(), "8.relievo");
}

TEST_F(RecoveryFolderTest, TheOldestGoWhenTheyAreTooLarge) {
  for (int k = 0; k < 3; ++k) {
    const fs::path file = Leave(std::to_string(k) + ".relievo", "", 1);
    fs::resize_file(file, 90'000'000);
    fs::last_write_time(file, fs::file_time_type::clock::now() - std::chrono::hours(1 + k));
  }
  CRecoveryFolder program(m_Folder);
  ASSERT_TRUE(program.Write(Bytes("own")));
  EXPECT_EQ(program.Left().size(), 2U);
  EXPECT_EQ(program.Left().back().filename(), "1.relievo");
}

TEST_F(RecoveryFolderTest, WhatCannotBeWrittenLeavesWhatThereWas) {
  EXPECT_FALSE(CRecoveryFolder(fs::path()).Write(Bytes("x")));
  EXPECT_FALSE(CRecoveryFolder("/proc/none").Write(Bytes("x")));
  CRecoveryFolder program(m_Folder);
  ASSERT_TRUE(program.Write(Bytes("one")));
  EXPECT_FALSE(program.Write(CBytes(CRecoveryFolder::kMostBytes + 1)));
  for (const auto& entry : fs::directory_iterator(m_Folder)) {
    if (entry.path().extension() == ".relievo") {
      EXPECT_EQ(ReadBytes(entry.path()), Bytes("one"));
    }
  }
}

TEST_F(RecoveryFolderTest, AFullDiskLeavesTheOldFileWholeAndNothingElse) {
  CRecoveryFolder program(m_Folder);
  ASSERT_TRUE(program.Write(Bytes("one")));
  {
    const CFullDisk full(100);
    EXPECT_FALSE(program.Write(CBytes(10'000, 'x')));
  }
  EXPECT_EQ(Count(".part"), 0U);
  for (const auto& entry : fs::directory_iterator(m_Folder)) {
    if (entry.path().extension() == ".relievo") {
      EXPECT_EQ(ReadBytes(entry.path()), Bytes("one"));
    }
  }
  EXPECT_TRUE(program.Write(Bytes("two")));
}

// What programs have left that were ended while they wrote.
TEST_F(RecoveryFolderTest, PartsAndLocksOfTheDeadAreSwept) {
  Leave("a.part", "cut", 1);
  Leave("a.lock", "", 1);
  Leave("b.lock", "", 1);
  const fs::path whole = Leave("c.relievo", "c", 1);
  Leave("c.part", "cut", 1);
  Leave("c.lock", "", 1);
  CRecoveryFolder program(m_Folder);
  program.Write(Bytes("own"));
  EXPECT_EQ(Count(".part"), 0U);
  EXPECT_EQ(Count(".lock"), 2U);
  EXPECT_EQ(program.Left(), CFiles{whole});
}

// A child writes one state after the other and says which is complete; it is killed at any moment. What is left is
// whole and no older than what it said.
TEST_F(RecoveryFolderTest, KilledAtAnyMomentItLeavesAWholeState) {
  constexpr int kRounds = 200;
  constexpr std::size_t kStateSize = 200'000;
  std::minstd_rand random(7);
  for (int round = 0; round < kRounds; ++round) {
    int said[2];
    ASSERT_EQ(pipe(said), 0);
    const pid_t child = fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
      CRecoveryFolder folder(m_Folder);
      for (unsigned char state = 1;; ++state) {
        if (!folder.Write(CBytes(kStateSize, state)) || write(said[1], &state, 1) != 1) _exit(1);
      }
    }
    std::this_thread::sleep_for(std::chrono::microseconds(2'000 + random() % 6'000));
    kill(child, SIGKILL);
    waitpid(child, nullptr, 0);
    close(said[1]);
    unsigned char complete = 0;
    for (unsigned char state = 0; read(said[0], &state, 1) == 1;) complete = state;
    close(said[0]);

    CRecoveryFolder next(m_Folder);
    const CFiles left = next.Left();
    ASSERT_EQ(left.size(), complete == 0 && left.empty() ? 0U : 1U) << round;
    if (left.empty()) continue;
    const CBytes state = ReadBytes(left.front());
    ASSERT_EQ(state, CBytes(kStateSize, state.front())) << round;
    ASSERT_GE(state.front(), complete) << round;
    ASSERT_TRUE(next.Discard(left.front()));
  }
}
