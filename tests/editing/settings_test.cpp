#include <cmath>
#include <filesystem>
#include <limits>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include "editing/CSettings.h"
#include "support/CTemporaryDirectory.h"
#include "support/FileBuilders.h"

namespace {

namespace fs = std::filesystem;

class SettingsTest : public ::testing::Test {
 protected:
  SettingsTest() { m_Settings.KeepIn(m_File); }

  /// A run of the program that finds `text` in its file.
  CSettings& Given(const std::string& text) {
    fs::create_directories(fs::path(m_File).parent_path());
    WriteText(m_File, text);
    m_Settings.KeepIn(m_File);
    return m_Settings;
  }

  CTemporaryDirectory m_Scratch;
  std::string m_File = m_Scratch.File("config/relievo/settings.json");
  std::vector<std::string> m_Told;
  CSettings m_Settings{[this](const std::string& text) { m_Told.push_back(text); }};
};

}  // namespace

TEST_F(SettingsTest, NothingIsThereAtFirstAndNothingIsMade) {
  EXPECT_FALSE(m_Settings.Text("estimate"));
  EXPECT_FALSE(m_Settings.Number("width"));
  EXPECT_FALSE(m_Settings.Switch("remember"));
  EXPECT_FALSE(fs::exists(m_Scratch.File("config")));
  EXPECT_TRUE(m_Told.empty());
}

TEST_F(SettingsTest, TheNextRunKnowsThem) {
  m_Settings.Set({{"estimate", std::string("sh \"a b\" \xc3\xa4")}, {"width", 0.1}, {"remember", true}});
  CSettings next([](const std::string& /*text*/) {});
  next.KeepIn(m_File);
  EXPECT_EQ(next.Text("estimate"), "sh \"a b\" \xc3\xa4");
  EXPECT_EQ(next.Number("width"), 0.1);
  EXPECT_EQ(next.Switch("remember"), true);
}

TEST_F(SettingsTest, PeopleCanReadThem) {
  m_Settings.Set({{"remember", false}});
  EXPECT_EQ(BytesOf(m_File), "{\n  \"remember\": false\n}\n");
}

TEST_F(SettingsTest, TheFolderIsForTheUserAlone) {
  m_Settings.Set({{"remember", false}});
  struct stat status {};
  ASSERT_EQ(stat(fs::path(m_File).parent_path().c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 0777, 0700u);
}

TEST_F(SettingsTest, WhatElseStandsInTheFileStays) {
  Given(R"({"theirs": {"deep": [1, null]}, "remember": true})").Set({{"remember", false}});
  EXPECT_EQ(BytesOf(m_File),
            "{\n  \"theirs\": {\n    \"deep\": [\n      1,\n      null\n    ]\n  },\n  \"remember\": false\n}\n");
}

TEST_F(SettingsTest, AnotherRunsSettingsStay) {
  m_Settings.Set({{"width", 1.0}});
  CSettings other([](const std::string& /*text*/) {});
  other.KeepIn(m_File);
  other.Set({{"height", 2.0}});
  m_Settings.Set({{"depth", 3.0}});
  EXPECT_EQ(m_Settings.Number("height"), 2.0);
  EXPECT_EQ(BytesOf(m_File), "{\n  \"width\": 1.0,\n  \"height\": 2.0,\n  \"depth\": 3.0\n}\n");
}

TEST_F(SettingsTest, OfAnotherKindIsNone) {
  Given(R"({"estimate": 3, "width": "3", "remember": 1})");
  EXPECT_FALSE(m_Settings.Text("estimate"));
  EXPECT_FALSE(m_Settings.Number("width"));
  EXPECT_FALSE(m_Settings.Switch("remember"));
}

TEST_F(SettingsTest, ADamagedFileIsNamedOnceAndKeptBesideTheNext) {
  const std::vector<std::string> damaged{
      "{\"width\": 1", "[1]", "", "3", "{\"a\": \"\xff\"}", std::string(3, '\0'), "{\"a\":" + std::string(100000, '[')};
  for (const std::string& text : damaged) {
    m_Told.clear();
    Given(text);
    EXPECT_FALSE(m_Settings.Number("width"));
    m_Settings.Set({{"width", 2.0}});
    EXPECT_EQ(m_Told, std::vector<std::string>{"The settings in " + m_File + " are damaged and are left out."});
    EXPECT_EQ(m_Settings.Number("width"), 2.0);
    EXPECT_EQ(BytesOf(m_File), "{\n  \"width\": 2.0\n}\n");
    EXPECT_EQ(BytesOf(m_File + '~'), text);
  }
}

TEST_F(SettingsTest, AFileWithoutEndIsNotRead) {
  Given("{\"width\": 1}" + std::string(std::size_t{1} << 20, ' '));
  EXPECT_FALSE(m_Settings.Number("width"));
  EXPECT_EQ(m_Told, std::vector<std::string>{"The settings in " + m_File + " are too long and are left out."});
}

TEST_F(SettingsTest, WhatIsNoFileIsNotWaitedFor) {
  fs::create_directories(fs::path(m_File).parent_path());
  ASSERT_EQ(mkfifo(m_File.c_str(), 0600), 0);
  EXPECT_FALSE(m_Settings.Number("width"));
  EXPECT_EQ(m_Told, std::vector<std::string>{"The settings in " + m_File +
                                             " cannot be read and are left out: this is no ordinary file."});
}

TEST_F(SettingsTest, WhatIsAsItWasIsNotWritten) {
  Given("{ \"width\": 1 }").Set({{"width", 1.0}, {"height", std::nan("")}});
  EXPECT_EQ(BytesOf(m_File), "{ \"width\": 1 }");
}

TEST_F(SettingsTest, WhereNothingCanBeKeptTheyLastAsLongAsTheRun) {
  m_Settings.KeepIn("/dev/null/relievo/settings.json");
  m_Settings.Set({{"width", 1.0}});
  m_Settings.Set({{"width", 2.0}});
  EXPECT_EQ(m_Settings.Number("width"), 2.0);
  EXPECT_EQ(m_Told, std::vector<std::string>{"The settings in /dev/null/relievo/settings.json cannot be written."});
  m_Settings.KeepIn({});
  m_Settings.Set({{"height", std::numeric_limits<double>::max()}});
  EXPECT_EQ(m_Settings.Number("height"), std::numeric_limits<double>::max());
  EXPECT_EQ(m_Told.size(), 1u);
}
