// Files that belong together are all new or all old.

#include <array>
#include <filesystem>
#include <string>

#include <gtest/gtest.h>

#include "io/SaveTogether.h"
#include "support/CTemporaryDirectory.h"
#include "support/FileBuilders.h"

namespace {

/// Three files in a folder: the first and the last there is already.
class SaveTogetherTest : public ::testing::Test {
 protected:
  SaveTogetherTest() {
    WriteText(m_Files[0].m_Name, "old a");
    WriteText(m_Files[2].m_Name, "old c");
  }
  std::string All() const {
    std::string all;
    for (const CNewFile& file : m_Files)
      all += (std::filesystem::is_directory(file.m_Name) ? "folder" : BytesOf(file.m_Name)) + ";";
    return all;
  }

  CTemporaryDirectory m_Scratch;
  std::array<CNewFile, 3> m_Files{CNewFile{m_Scratch.File("a"), "new a"}, CNewFile{m_Scratch.File("b"), "new b"},
                                  CNewFile{m_Scratch.File("c"), "new c"}};
};

}  // namespace

TEST_F(SaveTogetherTest, ReplacesAllAndLeavesNothingElse) {
  ASSERT_TRUE(SaveTogether(m_Files));
  EXPECT_EQ(All(), "new a;new b;new c;");
  EXPECT_EQ(m_Scratch.Names().size(), 3U);
}

TEST_F(SaveTogetherTest, TakesBackWhatIsInPlaceWhereTheLastOneFails) {
  const auto spoil = [this](double share) {
    if (share < 1) return true;
    // The contents of all are written by now.
    std::filesystem::remove(m_Files[2].m_Name);
    std::filesystem::create_directory(m_Files[2].m_Name);
    return true;
  };
  const CSaveOutcome outcome = SaveTogether(m_Files, spoil);
  EXPECT_EQ(outcome.m_Trouble,
            "The file " + m_Files[2].m_Name + " could not be written. If it existed before, it is unchanged.");
  EXPECT_EQ(All(), "old a;;folder;");
  EXPECT_EQ(m_Scratch.Names().size(), 2U) << "neither a new file nor a second name";
}

TEST_F(SaveTogetherTest, TakesBackThroughLinks) {
  std::filesystem::rename(m_Files[0].m_Name, m_Scratch.File("target"));
  std::filesystem::create_symlink("target", m_Files[0].m_Name);
  const auto spoil = [this](double share) {
    if (share == 1) std::filesystem::create_directory(m_Files[1].m_Name);
    return true;
  };
  EXPECT_FALSE(SaveTogether(m_Files, spoil));
  EXPECT_EQ(All(), "old a;folder;old c;");
  EXPECT_TRUE(std::filesystem::is_symlink(m_Files[0].m_Name));
  EXPECT_EQ(BytesOf(m_Scratch.File("target")), "old a");
}
