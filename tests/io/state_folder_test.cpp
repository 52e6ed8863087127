#include <cstdlib>
#include <filesystem>
#include <string>

#include <gtest/gtest.h>
#include <sys/stat.h>

#include "io/StateFolder.h"
#include "support/CTemporaryDirectory.h"

namespace {

namespace fs = std::filesystem;

class StateFolderTest : public ::testing::Test {
 protected:
  StateFolderTest() {
    setenv("HOME", m_Scratch.Path().c_str(), 1);
    unsetenv("XDG_STATE_HOME");
    unsetenv("XDG_CONFIG_HOME");
  }

  CTemporaryDirectory m_Scratch;
};

}  // namespace

TEST_F(StateFolderTest, LiesInTheHomeFolder) {
  EXPECT_EQ(StateFolder(), fs::path(m_Scratch.Path()) / ".local/state/relievo");
  EXPECT_TRUE(fs::is_directory(StateFolder()));
}

TEST_F(StateFolderTest, IsForTheUserAlone) {
  struct stat status {};
  ASSERT_EQ(stat(StateFolder().c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 0777, 0700u);
}

TEST_F(StateFolderTest, GoesWhereTheVariableSays) {
  const std::string other = m_Scratch.File("other/state");
  setenv("XDG_STATE_HOME", other.c_str(), 1);
  EXPECT_EQ(StateFolder(), fs::path(other) / "relievo");
  EXPECT_TRUE(fs::is_directory(StateFolder()));
}

TEST_F(StateFolderTest, ARelativeVariableCountsAsNone) {
  setenv("XDG_STATE_HOME", "state", 1);
  EXPECT_EQ(StateFolder(), fs::path(m_Scratch.Path()) / ".local/state/relievo");
  setenv("HOME", "home", 1);
  EXPECT_EQ(StateFolder(), fs::path());
}

TEST_F(StateFolderTest, WithoutAHomeThereIsNone) {
  unsetenv("HOME");
  EXPECT_EQ(StateFolder(), fs::path());
  setenv("HOME", "/dev/null", 1);
  EXPECT_EQ(StateFolder(), fs::path());
}

TEST_F(StateFolderTest, SettingsLieWhereUsersLookForThem) {
  EXPECT_EQ(SettingsFolder(), fs::path(m_Scratch.Path()) / ".config/relievo");
  setenv("XDG_CONFIG_HOME", m_Scratch.File("other").c_str(), 1);
  EXPECT_EQ(SettingsFolder(), fs::path(m_Scratch.File("other")) / "relievo");
  setenv("XDG_CONFIG_HOME", "config", 1);
  EXPECT_EQ(SettingsFolder(), fs::path(m_Scratch.Path()) / ".config/relievo");
  setenv("HOME", "home", 1);
  EXPECT_EQ(SettingsFolder(), fs::path());
}

TEST_F(StateFolderTest, NoFolderIsMadeForSettingsThatNobodyHas) {
  SettingsFolder();
  EXPECT_FALSE(fs::exists(m_Scratch.File(".config")));
}
