#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <list>
#include <memory>

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include "io/CFileReplacement.h"
#include "support/BmpBuilders.h"
#include "support/CTemporaryDirectory.h"
#include "support/OtherUser.h"

namespace {

namespace fs = std::filesystem;

// What reached the system and in which order; `fsync` fails where a test says so.
std::vector<std::string> g_aCalls;
bool g_bSyncFails = false;

class FileReplacementTest : public ::testing::Test {
 protected:
  FileReplacementTest() {
    g_aCalls.clear();
    g_bSyncFails = false;
  }
  bool Replace(const std::string& file) const {
    CFileReplacement replacement(file);
    if (!replacement.IsOpen()) return false;
    replacement.Write(m_aNew);
    return replacement.Commit();
  }
  /// The one file beside the target.
  fs::path Beside() const {
    for (const auto& entry : fs::directory_iterator(m_Scratch.Path())) {
      if (entry.path() != m_File) return entry.path();
    }
    return {};
  }
  struct stat Status(const fs::path& file) const {
    struct stat status {};
    EXPECT_EQ(lstat(file.c_str(), &status), 0);
    return status;
  }

  CTemporaryDirectory m_Scratch;
  std::string m_File = m_Scratch.File("target");
  CBytes m_aOld{1, 2, 3};
  CBytes m_aNew{4, 5};
};

}  // namespace

extern "C" {
int __real_fsync(int file);
int __real_rename(const char* from, const char* to);

int __wrap_fsync(int file) {
  struct stat status {};
  fstat(file, &status);
  g_aCalls.emplace_back(S_ISDIR(status.st_mode) ? "sync folder" : "sync " + std::to_string(status.st_size));
  if (!g_bSyncFails) return __real_fsync(file);
  errno = EIO;
  return -1;
}

int __wrap_rename(const char* from, const char* to) {
  g_aCalls.emplace_back("rename");
  return __real_rename(from, to);
}
}

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
  EXPECT_FALSE(fs::exists(m_File));
  EXPECT_TRUE(file.Commit());
  EXPECT_EQ(ReadBytes(m_File), m_aNew);
}

TEST_F(FileReplacementTest, NewFileHasThePermissionsOfAnyNewFile) {
  const mode_t before = umask(027);
  EXPECT_TRUE(Replace(m_File));
  umask(before);
  EXPECT_EQ(Status(m_File).st_mode & 07777U, 0640U);
}

TEST_F(FileReplacementTest, ContentsAreOnTheDiskBeforeTheNameAndTheFolderAfterIt) {
  EXPECT_TRUE(Replace(m_File));
  EXPECT_EQ(g_aCalls, (std::vector<std::string>{"sync 2", "rename", "sync folder"}));
}

TEST_F(FileReplacementTest, ContentsThatDoNotReachTheDiskReplaceNothing) {
  WriteBytes(m_File, m_aOld);
  g_bSyncFails = true;
  EXPECT_FALSE(Replace(m_File));
  EXPECT_EQ(ReadBytes(m_File), m_aOld);
  EXPECT_EQ(m_Scratch.Names(), std::vector<std::string>{"target"});
}

TEST_F(FileReplacementTest, FilesLeftByCrashesStopNothing) {
  std::list<CFileReplacement> left;
  for (int k = 0; k < 150; ++k) EXPECT_TRUE(left.emplace_back(m_File).IsOpen());
  EXPECT_TRUE(Replace(m_File));
  EXPECT_EQ(m_Scratch.Names().size(), 151U);
}

TEST_F(FileReplacementTest, LongestNameThereIsCanBeWritten) {
  const std::string name(255, 'n');
  EXPECT_TRUE(Replace(m_Scratch.File(name)));
  EXPECT_TRUE(Replace(m_Scratch.File(name)));
  EXPECT_EQ(m_Scratch.Names(), std::vector<std::string>{name});
  EXPECT_FALSE(Replace(m_Scratch.File(name + "n")));
}

TEST_F(FileReplacementTest, NameWithoutAFolderIsOneInThePresentFolder) {
  const fs::path before = fs::current_path();
  fs::current_path(m_Scratch.Path());
  const bool replaced = Replace("target");
  fs::current_path(before);
  EXPECT_TRUE(replaced);
  EXPECT_EQ(ReadBytes(m_File), m_aNew);
  EXPECT_EQ(g_aCalls.back(), "sync folder");
}

TEST_F(FileReplacementTest, LinksAreFollowedToTheirEnd) {
  fs::create_directory(m_Scratch.File("sub"));
  fs::create_symlink("sub/second", m_Scratch.File("first"));
  fs::create_symlink("../target", m_Scratch.File("sub/second"));
  WriteBytes(m_File, m_aOld);
  EXPECT_TRUE(Replace(m_Scratch.File("first")));
  EXPECT_TRUE(fs::is_symlink(m_Scratch.File("first")));
  EXPECT_TRUE(fs::is_symlink(m_Scratch.File("sub/second")));
  EXPECT_FALSE(fs::is_symlink(m_File));
  EXPECT_EQ(ReadBytes(m_File), m_aNew);
}

TEST_F(FileReplacementTest, LinkToNothingYetMakesTheFileThere) {
  fs::create_directory(m_Scratch.File("sub"));
  fs::create_symlink("sub/new", m_Scratch.File("link"));
  EXPECT_TRUE(Replace(m_Scratch.File("link")));
  EXPECT_TRUE(fs::is_symlink(m_Scratch.File("link")));
  EXPECT_EQ(ReadBytes(m_Scratch.File("sub/new")), m_aNew);
}

TEST_F(FileReplacementTest, LinksInACircleAreRefused) {
  fs::create_symlink("b", m_Scratch.File("a"));
  fs::create_symlink("a", m_Scratch.File("b"));
  EXPECT_FALSE(CFileReplacement(m_Scratch.File("a")).IsOpen());
}

TEST_F(FileReplacementTest, OwnerGroupAndPermissionsAreKept) {
  WriteBytes(m_File, m_aOld);
  const bool root = geteuid() == 0;
  ASSERT_EQ(chown(m_File.c_str(), root ? kNobody : geteuid(), root ? kNobody - 1 : getegid()), 0);
  ASSERT_EQ(chmod(m_File.c_str(), 0640), 0);
  const struct stat before = Status(m_File);
  EXPECT_TRUE(Replace(m_File));
  const struct stat after = Status(m_File);
  EXPECT_NE(after.st_ino, before.st_ino);
  EXPECT_EQ(after.st_uid, before.st_uid);
  EXPECT_EQ(after.st_gid, before.st_gid);
  EXPECT_EQ(after.st_mode, before.st_mode);
}

TEST_F(FileReplacementTest, FileOfAnotherUserIsReplacedWhereItMayBe) {
  WriteBytes(m_File, m_aOld);
  ASSERT_EQ(chmod(m_Scratch.Path().c_str(), 0777), 0);
  ASSERT_EQ(chmod(m_File.c_str(), 04666), 0);
  EXPECT_TRUE(SucceedsAsOtherUser([&] { return Replace(m_File); }));
  EXPECT_EQ(ReadBytes(m_File), m_aNew);
  const bool sameOwner = geteuid() != 0;
  EXPECT_EQ(Status(m_File).st_mode & 07777U, sameOwner ? 04666U : 0666U) << "nothing runs in another user's name";
}

TEST_F(FileReplacementTest, PrivateFileIsPrivateFromItsFirstByte) {
  WriteBytes(m_File, m_aOld);
  ASSERT_EQ(chmod(m_File.c_str(), 0600), 0);
  const CFileReplacement file(m_File);
  EXPECT_EQ(Status(Beside()).st_mode & 07777U, 0600U);
}

TEST_F(FileReplacementTest, TargetWithoutWritePermissionIsRefused) {
  WriteBytes(m_File, m_aOld);
  ASSERT_EQ(chmod(m_Scratch.Path().c_str(), 0777), 0);
  ASSERT_EQ(chmod(m_File.c_str(), 0444), 0);
  EXPECT_TRUE(SucceedsAsOtherUser([&] { return !CFileReplacement(m_File).IsOpen(); }));
  EXPECT_EQ(ReadBytes(m_File), m_aOld);
  EXPECT_EQ(m_Scratch.Names(), std::vector<std::string>{"target"});
}

TEST_F(FileReplacementTest, FolderWithoutWritePermissionIsRefused) {
  ASSERT_EQ(chmod(m_Scratch.Path().c_str(), 0555), 0);
  EXPECT_TRUE(SucceedsAsOtherUser([&] { return !CFileReplacement(m_File).IsOpen(); }));
  ASSERT_EQ(chmod(m_Scratch.Path().c_str(), 0700), 0);
}

TEST_F(FileReplacementTest, WhatIsNoFileIsRefusedAtOnce) {
  ASSERT_EQ(mkfifo(m_Scratch.File("pipe").c_str(), 0600), 0);
  fs::create_symlink("/dev/full", m_Scratch.File("link"));
  for (const std::string& file : {m_Scratch.File("pipe"), std::string("/dev/null"), m_Scratch.File("link"),
                                  m_Scratch.Path().string(), m_Scratch.File("."), m_Scratch.File("none/")}) {
    EXPECT_FALSE(CFileReplacement(file).IsOpen()) << file;
  }
  EXPECT_EQ(m_Scratch.Names().size(), 2U);
}

TEST_F(FileReplacementTest, OpenFileOfAProcessIsRefused) {
  WriteBytes(m_File, m_aOld);
  const auto close = [](std::FILE* file) { std::fclose(file); };
  const std::unique_ptr<std::FILE, decltype(close)> file(std::fopen(m_File.c_str(), "ab"), close);
  EXPECT_FALSE(CFileReplacement("/dev/fd/" + std::to_string(fileno(file.get()))).IsOpen());
  EXPECT_FALSE(CFileReplacement("/proc/self/fd/" + std::to_string(fileno(file.get()))).IsOpen());
}

TEST_F(FileReplacementTest, TargetThatBecameADirectoryMakesCommitFail) {
  CFileReplacement file(m_File);
  fs::create_directory(m_File);
  WriteBytes(m_File + "/something", m_aOld);
  EXPECT_FALSE(file.Commit());
}

TEST_F(FileReplacementTest, ProcessThatEndsLeavesNothingBeside) {
  WriteBytes(m_File, m_aOld);
  // Kept, so that no destructor does what is asked of the end of the process.
  static CFileReplacement* begun = nullptr;
  const auto begin = [this] {
    begun = new CFileReplacement(m_File);
    return begun->IsOpen();
  };
  EXPECT_EXIT(std::exit(begin() ? 7 : 0), testing::ExitedWithCode(7), "");
  EXPECT_EXIT((begin(), CFileReplacement::RemoveUnfinished(), _exit(7)), testing::ExitedWithCode(7), "");
  EXPECT_EQ(m_Scratch.Names(), std::vector<std::string>{"target"});
  EXPECT_EQ(ReadBytes(m_File), m_aOld);
}
