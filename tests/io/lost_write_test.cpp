#include <functional>

#include <gtest/gtest.h>

#include "io/CSafeFile.h"
#include "support/CFullDisk.h"
#include "support/CTemporaryDirectory.h"
#include "support/FileBuilders.h"
#include "support/OtherUser.h"

namespace {

struct CWriter {
  const char* m_pName;
  const char* m_pMethod;
  std::function<CSaveOutcome(const CGrid& grid, const std::string& file)> m_Write;
};

const std::vector<CWriter> kWriters{
    {"Grid", "Save", [](const CGrid& grid, const std::string& file) { return grid.Save(file); }},
    {"Vrml", "SaveVrml", [](const CGrid& grid, const std::string& file) { return grid.SaveVrml(file); }},
    {"HeightField", "SaveHeightField",
     [](const CGrid& grid, const std::string& file) { return grid.SaveHeightField(file, 90, 90); }},
};

class LostWrite : public testing::TestWithParam<CWriter> {
 protected:
  /// Tries to write and expects the report of a failure.
  void ExpectFailure(const std::string& file) {
    const CSaveOutcome outcome = GetParam().m_Write(m_Model.m_Grid, file);
    EXPECT_FALSE(outcome);
    EXPECT_EQ(m_Model.m_Console.Take(),
              std::string("Error CGrid::") + GetParam().m_pMethod + "()\t\tfail to write file " + file + "\n");
    EXPECT_EQ(outcome.m_Trouble, "The file " + file + " could not be written. If it existed before, it is unchanged.");
    EXPECT_EQ(GridText(m_Model.m_Grid), m_Before) << "the model stays as it was";
  }
  std::ptrdiff_t FileCount() const {
    return std::distance(std::filesystem::directory_iterator(m_Directory.Path()), {});
  }

  CTemporaryDirectory m_Directory;
  CFullModel m_Model;
  CActingHost m_Host{m_Model.m_Grid};
  std::string m_Before = GridText(m_Model.m_Grid);
};

TEST_P(LostWrite, OnAFullDiskLeavesTheOldFileWhole) {
  const std::string file = m_Directory.Path() / "out";
  WriteText(file, "old contents");
  {
    const CFullDisk full(1000);
    ExpectFailure(file);
  }
  EXPECT_EQ(BytesOf(file), "old contents");
  EXPECT_EQ(FileCount(), 1) << "nothing is left beside it";
}

TEST_P(LostWrite, OnAFullDiskLeavesNoNewFile) {
  {
    const CFullDisk full(1000);
    ExpectFailure(m_Directory.Path() / "out");
  }
  EXPECT_EQ(FileCount(), 0);
}

TEST_P(LostWrite, IntoAMissingFolderIsReported) { ExpectFailure(m_Directory.Path() / "none" / "out"); }

TEST_P(LostWrite, OntoADirectoryIsReported) {
  ExpectFailure(m_Directory.Path());
  EXPECT_EQ(FileCount(), 0);
}

TEST_P(LostWrite, ToADeviceIsReported) { ExpectFailure("/dev/null"); }

TEST_P(LostWrite, WithoutPermissionIsReported) {
  const std::string file = m_Directory.Path() / "out";
  WriteText(file, "old contents");
  chmod(m_Directory.Path().c_str(), 0777);
  chmod(file.c_str(), 0444);
  EXPECT_TRUE(SucceedsAsOtherUser([&] {
    ExpectFailure(file);
    return !HasFailure();
  }));
  EXPECT_EQ(BytesOf(file), "old contents");
  EXPECT_EQ(FileCount(), 1);
}

INSTANTIATE_TEST_SUITE_P(Each, LostWrite, testing::ValuesIn(kWriters),
                         [](const auto& writer) { return std::string(writer.param.m_pName); });

TEST(SafeFile, ReplacesTheOldContentsOnlyWhenItIsComplete) {
  const CTemporaryDirectory directory;
  const std::string file = directory.Path() / "out";
  WriteText(file, "old contents");
  CSafeFile safe(file);
  safe.Text() << "new " << 1.5 << std::string(100000, 'x');
  EXPECT_EQ(BytesOf(file), "old contents");
  EXPECT_TRUE(safe.Commit());
  EXPECT_EQ(BytesOf(file), "new 1.5" + std::string(100000, 'x'));
}

}  // namespace
