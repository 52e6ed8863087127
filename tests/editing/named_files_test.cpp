// The commands on files whose names are known, and the names that choosers propose.

#include <gtest/gtest.h>

#include "support/BmpBuilders.h"
#include "support/CTemporaryDirectory.h"
#include "support/FileBuilders.h"
#include "support/GridCommandsTest.h"

namespace {

class NamedFilesTest : public GridCommandsTest {
 protected:
  CFilesAtHand& Files() { return m_Commands.Files(); }
  /// One tick's worth of what is posted; its codes.
  std::vector<int> PerformPosted() {
    std::vector<int> codes;
    for (const CPendingRound& round : Grid().Run().Take()) {
      for (const Operation operation : round.m_aOperations) {
        codes.push_back(CodeOf(operation));
        m_Commands.Perform(operation);
      }
    }
    return codes;
  }
  void Load(const std::string& file) {
    m_Host.m_File = file;
    m_Commands.Perform(Operation::kLoadGrid);
  }
};

}  // namespace

TEST_F(NamedFilesTest, LoadedModelHasItsName) {
  Load("/a.grid");
  EXPECT_EQ(Files().Model(), (CModelName{"/a.grid", false}));
}

TEST_F(NamedFilesTest, NameSaysWhetherTheFileHoldsLights) {
  const CTemporaryDirectory scratch;
  const CFullModel model;
  for (const bool lights : {true, false}) {
    const std::string file = scratch.File(lights ? "lit.grid" : "unlit.grid");
    ASSERT_TRUE(model.m_Grid.Save(file, [&] { return lights; }));
    EXPECT_EQ(HoldsLights(file), lights);
    Load(file);
    EXPECT_EQ(Files().Model().m_bWithLights, lights);
  }
  EXPECT_FALSE(HoldsLights(scratch.File("missing")));
}

TEST_F(NamedFilesTest, OnlyAWholeModelHasAName) {
  for (const auto& [state, name] : {std::pair{GridFileState::Damaged, ""},
                                    {GridFileState::Invalid, ""},
                                    {GridFileState::OutOfMemory, ""},
                                    {GridFileState::NotOpened, "/old.grid"},
                                    {GridFileState::NoGridFile, "/old.grid"},
                                    {GridFileState::TooLarge, "/old.grid"}}) {
    Files().SetModel({"/old.grid"});
    m_Loaded = state;
    Load("/new.grid");
    EXPECT_EQ(Files().Model().m_File, name) << static_cast<int>(state);
  }
}

TEST_F(NamedFilesTest, NewGridHasNone) {
  Files().SetModel({"/a.grid"});
  m_Commands.Perform(Operation::kNewGrid);
  EXPECT_EQ(Files().Model().m_File, "/a.grid") << "it was cancelled";
  m_NewGrid = CGridParameters{3, {0, 100, 0, 100}, true};
  m_Commands.Perform(Operation::kNewGrid);
  EXPECT_EQ(Files().Model().m_File, "");
}

TEST_F(NamedFilesTest, SavedModelHasItsNewNameUnlessItCouldNotBeSaved) {
  m_Host.m_File = "/a.grid";
  m_bAsksForLights = true;
  m_Host.m_bYes = true;
  m_Commands.Perform(Operation::kSaveGrid);
  EXPECT_EQ(Files().Model(), (CModelName{"/a.grid", true}));
  m_Host.m_File = "/b.grid";
  m_Saved.m_Trouble = "no";
  m_Commands.Perform(Operation::kSaveGrid);
  EXPECT_EQ(Files().Model(), (CModelName{"/a.grid", true}));
  m_Host.m_File = "/scene.wrl";
  m_Saved.m_Trouble = "";
  m_bAsksForLights = false;
  m_Commands.Write(VrmlFormat());
  EXPECT_EQ(Files().Model(), (CModelName{"/a.grid", true})) << "an export is no model";
}

// Save Again.

TEST_F(NamedFilesTest, SavingAgainAsksNothing) {
  m_bAsksForLights = true;
  for (const bool lights : {true, false}) {
    m_asDone.clear();
    Files().SetModel({"/a.grid", lights});
    m_Commands.SaveAgain();
    EXPECT_EQ(m_asDone, (Done{"save /a.grid", lights ? "with lights" : "without lights"}));
    EXPECT_EQ(Files().Model(), (CModelName{"/a.grid", lights}));
  }
  EXPECT_TRUE(m_Host.m_aChoosers.empty());
  EXPECT_TRUE(m_Host.m_asQuestions.empty());
  EXPECT_EQ(m_Host.m_asSaved, (Done{"/a.grid", "/a.grid"}));
  EXPECT_TRUE(Grid().Run().IsRunning());
  EXPECT_FALSE(m_bRanMeanwhile);
}

TEST_F(NamedFilesTest, SavingAgainWithoutANameAsksForOne) {
  m_Host.m_File = "/a.relievo";
  m_Commands.SaveAgain();
  EXPECT_EQ(m_asDone, Done{"project /a.relievo"});
  ASSERT_EQ(m_Host.m_aChoosers.size(), 1U);
  EXPECT_EQ(m_Host.m_aChoosers.front().first, "please input project file name");
  EXPECT_EQ(m_Host.m_asSaved, Done{"/a.relievo"});
  m_Commands.SaveAgain();
  EXPECT_EQ(m_asDone, (Done{"project /a.relievo", "project /a.relievo"}));
  EXPECT_EQ(m_Host.m_aChoosers.size(), 1U);
  EXPECT_EQ(m_Host.m_asSaved, (Done{"/a.relievo", "/a.relievo"}));
}

TEST_F(NamedFilesTest, SavingAgainThatFailsIsTold) {
  Files().SetModel({"/a.grid"});
  m_Saved.m_Trouble = "It cannot be written.";
  m_Commands.SaveAgain();
  EXPECT_EQ(m_Host.m_asNotices, Done{"It cannot be written."});
  EXPECT_TRUE(m_Host.m_asSaved.empty());
  EXPECT_EQ(Files().Model().m_File, "/a.grid");
}

TEST_F(NamedFilesTest, SavingAgainWaitsWithItsNameForTheTick) {
  g_nSolverTimers = 1;
  Files().SetModel({"/a.grid"});
  m_Commands.SaveAgain();
  EXPECT_EQ(CodeOf(Grid().Run().NextOperation()), 8192);
  EXPECT_TRUE(m_asDone.empty());
  PerformPosted();
  EXPECT_EQ(m_asDone, Done{"save /a.grid"});
}

TEST_F(NamedFilesTest, SavingAgainWritesNoOtherModelThanWasMeant) {
  g_nSolverTimers = 1;
  m_NewGrid = CGridParameters{3, {0, 100, 0, 100}, false};
  Files().SetModel({"/a.grid"});
  m_Commands.Request(Operation::kNewGrid);
  m_Commands.SaveAgain();
  PerformPosted();
  EXPECT_EQ(m_asDone, Done{"ask"}) << "the new grid is not written over the old model";
  EXPECT_EQ(m_Host.m_aChoosers.size(), 1U) << "but under a name that is asked for";
}

// Files that are opened without a chooser.

TEST_F(NamedFilesTest, NamedFilesOpenWithoutAChooser) {
  m_Commands.Open({"/a.grid", "/a.bmp"});
  EXPECT_EQ(m_asDone, Done{"load /a.grid"});
  EXPECT_EQ(m_Host.m_asPictures, Done{"/a.bmp"});
  EXPECT_TRUE(m_Host.m_aChoosers.empty());
  EXPECT_EQ(Files().Recent().List(), (std::vector<CWorkFiles>{{"/a.grid", "/a.bmp"}}));
}

TEST_F(NamedFilesTest, TheyWaitForTheTickWithTheirNames) {
  g_nSolverTimers = 1;
  m_Commands.Open({"/a.grid", "/a.bmp"});
  m_Commands.Open({"", "/b.bmp"});
  m_Commands.Open({"/c.grid", ""});
  EXPECT_TRUE(m_asDone.empty());
  EXPECT_EQ(PerformPosted(), (std::vector{2048, 16384, 2048}));
  EXPECT_EQ(m_asDone, (Done{"load /a.grid", "load /c.grid"}));
  EXPECT_EQ(m_Host.m_asPictures, Done{"/b.bmp"}) << "the latest of what was posted twice in a row";
  EXPECT_TRUE(m_Host.m_aChoosers.empty());
}

TEST_F(NamedFilesTest, TheMenuAsksAfterANamedFileToo) {
  g_nSolverTimers = 1;
  m_Commands.Open({"/a.grid", ""});
  m_Commands.Request(Operation::kLoadImage);
  m_Commands.Request(Operation::kLoadGrid);
  PerformPosted();
  EXPECT_EQ(m_asDone, Done{"load /a.grid"});
  EXPECT_EQ(m_Host.m_aChoosers.size(), 2U);
}

TEST_F(NamedFilesTest, OpenedNowTheyDoNotWait) {
  g_nSolverTimers = 1;
  m_Commands.OpenNow({"/a.grid", "/a.bmp"});
  EXPECT_EQ(m_asDone, Done{"load /a.grid"});
  EXPECT_EQ(m_Host.m_asPictures, Done{"/a.bmp"});
}

TEST_F(NamedFilesTest, ADragEndsBeforeAFileIsOpenedOrSavedWithoutAQuestion) {
  m_Commands.Open({"/a.grid", ""});
  EXPECT_EQ(m_Host.m_iDragEnds, 1);
  m_Commands.Open({"", "/a.bmp"});
  EXPECT_EQ(m_Host.m_iDragEnds, 2);
  m_Commands.SaveAgain();
  EXPECT_EQ(m_Host.m_iDragEnds, 3);
}

TEST_F(NamedFilesTest, APictureThatCannotBeReadIsNoRecentOne) {
  m_Host.m_bPictureRead = false;
  m_Commands.Open({"", "/a.bmp"});
  EXPECT_TRUE(Files().Recent().List().empty());
}

// Choosers.

TEST_F(NamedFilesTest, SavingProposesTheName) {
  m_Commands.Perform(Operation::kSaveGrid);
  Files().PictureOpened("/photos/cup.bmp");
  m_Commands.Perform(Operation::kSaveGrid);
  Files().SetModel({"/models/a.grid"});
  m_Commands.Perform(Operation::kSaveGrid);
  m_Commands.Perform(Operation::kLoadGrid);
  m_Commands.Write(VrmlFormat());
  EXPECT_EQ(m_Host.m_asStarts, (Done{"", "/photos/cup.grid", "/models/a.grid", "", ""}));
}
