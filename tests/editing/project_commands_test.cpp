// The commands that open and save the work as a whole.

#include <cstdint>
#include <optional>
#include <string>
#include <utility>

#include <gtest/gtest.h>

#include "support/BmpBuilders.h"
#include "support/CTemporaryDirectory.h"
#include "support/GridCommandsTest.h"

namespace {

class ProjectCommandsTest : public GridCommandsTest {
 protected:
  /// A model with one height, as a project that is read.
  static CReadProject OneHeight() {
    CTestGrid other(4, 2);
    other.m_Grid.AddPtCstr({30, 40, PtCstrKind::kPosition, 7});
    other.m_Grid.PerformPendingWork();
    CProject project;
    project.m_Model = StateOf(other.m_Grid);
    return {project, {}};
  }
  /// A file that begins as project files do, and its name.
  std::string SomeFile() const {
    const std::string file = m_Scratch.File("a.relievo");
    WriteBytes(file, {'P', 'K', 3, 4});
    return file;
  }
  void NoteSaves() {
    CRecoveryServices recovery;
    recovery.m_Replacing = [this] { m_asReplaced.push_back("replacing " + std::to_string(Heights())); };
    recovery.m_Replaced = [this] { m_asReplaced.push_back("replaced " + std::to_string(Heights())); };
    recovery.m_Saved = [this] { ++m_iSaved; };
    recovery.m_ChooseWork = [this] { return m_Work; };
    m_Commands.SetRecovery(recovery);
  }
  std::size_t Heights() { return Grid().Constraints().Points().size(); }

  CTemporaryDirectory m_Scratch;
  int m_iSaved = 0;
  std::vector<std::string> m_asReplaced;
  std::optional<std::string> m_Work;
};

}  // namespace

TEST_F(ProjectCommandsTest, SavingAsksForAFileAndGivesTheModelItsName) {
  NoteSaves();
  m_Host.m_File = "/cup.relievo";
  m_Commands.SaveProject();
  EXPECT_EQ(m_asDone, Done{"project /cup.relievo"});
  EXPECT_EQ(m_Host.m_aChoosers.front(),
            (std::pair<std::string, std::string>("please input project file name", "*.relievo")));
  EXPECT_EQ(m_Commands.Files().Model().m_File, "/cup.relievo");
  EXPECT_EQ(m_iSaved, 1);
  EXPECT_EQ(m_Host.m_asSaved, Done{"/cup.relievo"});
  EXPECT_TRUE(Grid().Run().IsRunning());
}

TEST_F(ProjectCommandsTest, WhatCannotBeWrittenIsTold) {
  NoteSaves();
  m_Host.m_File = "/cup.relievo";
  m_Saved.m_Trouble = "It cannot be written.";
  m_Commands.SaveProject();
  EXPECT_EQ(m_Host.m_asNotices, Done{"It cannot be written."});
  EXPECT_EQ(m_iSaved, 0);
  EXPECT_EQ(m_Commands.Files().Model().m_File, "");
}

TEST_F(ProjectCommandsTest, OpeningWaitsForTheTickUnderTheCodeOfLoading) {
  g_nSolverTimers = 1;
  m_Host.m_File = SomeFile();
  m_Project = OneHeight();
  m_Commands.OpenProject();
  EXPECT_EQ(CodeOf(Grid().Run().NextOperation()), 2048);
  EXPECT_TRUE(m_Host.m_aChoosers.empty());
  m_Commands.Perform(Operation::kLoadGrid);
  EXPECT_EQ(m_asDone, Done{"read " + SomeFile()});
  EXPECT_EQ(Heights(), 1U);
  EXPECT_EQ(m_Host.m_iReplaced, 1);
}

TEST_F(ProjectCommandsTest, OpeningIsOneChangeThatAFileHolds) {
  NoteSaves();
  m_Host.m_File = SomeFile();
  m_Project = OneHeight();
  m_Commands.OpenProject();
  EXPECT_EQ(m_iSaved, 1);
  EXPECT_EQ(m_asReplaced, (Done{"replacing 0", "replaced 1"}));
  EXPECT_EQ(m_Commands.Files().Model().m_File, SomeFile());
  EXPECT_TRUE(m_Commands.Files().Model().m_bProject);
}

TEST_F(ProjectCommandsTest, AProjectIsKnownByItsContentsWhereverItIsOpened) {
  m_Project = OneHeight();
  m_Commands.OpenNow({SomeFile(), ""});
  EXPECT_EQ(m_asDone, Done{"read " + SomeFile()});
  m_Host.m_File = SomeFile();
  m_Commands.Perform(Operation::kLoadGrid);
  EXPECT_EQ(m_asDone.size(), 2U);
  EXPECT_EQ(Heights(), 1U);
}

TEST_F(ProjectCommandsTest, OneThatIsRefusedChangesNothing) {
  NoteSaves();
  Grid().AddPtCstr({10, 10, PtCstrKind::kPosition, 1});
  m_Host.m_File = SomeFile();
  m_Project = {{}, "The file is damaged. The model stays as it was."};
  const std::uint64_t edits = Grid().Gate().Edits();
  m_Commands.OpenProject();
  EXPECT_EQ(m_Host.m_asNotices, Done{"The file is damaged. The model stays as it was."});
  EXPECT_EQ(Heights(), 1U);
  EXPECT_EQ(Grid().Gate().Edits(), edits);
  EXPECT_EQ(m_Host.m_iReplaced, 0);
  EXPECT_EQ(m_iSaved, 0);
  EXPECT_EQ(m_asReplaced, Done{"replacing 1"});
}

TEST_F(ProjectCommandsTest, RecoveredWorkIsAnEditWithoutAName) {
  NoteSaves();
  m_Commands.Files().SetModel({"/a.grid"});
  m_Project = OneHeight();
  m_Work = SomeFile();
  const std::uint64_t edits = Grid().Gate().Edits();
  m_Commands.RecoverWork();
  EXPECT_EQ(Heights(), 1U);
  EXPECT_GT(Grid().Gate().Edits(), edits);
  EXPECT_EQ(m_iSaved, 0);
  EXPECT_EQ(m_Commands.Files().Model().m_File, "");
  m_Work.reset();
  m_Commands.RecoverWork();
  EXPECT_EQ(m_asDone.size(), 1U) << "nothing was chosen";
}
