#include <array>
#include <fstream>

#include <gtest/gtest.h>

#include "codecs/PictureFormats.h"
#include "support/CStaging.h"
#include "support/CurveBuilders.h"
#include "support/GridCommandsTest.h"

namespace {

using Chooser = std::pair<std::string, std::string>;

constexpr auto kDeferrable =
    std::to_array({Operation::kNewGrid, Operation::kLoadGrid, Operation::kLoadImage, Operation::kSaveGrid});

}  // namespace

TEST_F(GridCommandsTest, WhileTheTickIsRegisteredTheCodeWaits) {
  g_nSolverTimers = 1;
  for (const Operation operation : kDeferrable) {
    m_Commands.Request(operation);
    EXPECT_EQ(Grid().Run().NextOperation(), operation);
  }
  EXPECT_TRUE(m_asDone.empty());
  EXPECT_TRUE(m_Host.m_aChoosers.empty());
}

TEST_F(GridCommandsTest, CodesAreThoseOfTheTable) {
  std::vector<int> codes;
  codes.reserve(kDeferrable.size());
  for (const Operation operation : kDeferrable) codes.push_back(CodeOf(operation));
  EXPECT_EQ(codes, (std::vector{4096, 2048, 16384, 8192}));
}

TEST_F(GridCommandsTest, WithNoTickTheCommandActsAtOnce) {
  m_Host.m_File = "name";
  for (const Operation operation : kDeferrable) m_Commands.Request(operation);
  EXPECT_EQ(Grid().Run().NextOperation(), Operation::kNone);
  EXPECT_EQ(m_asDone, (Done{"ask", "load name", "save name"}));
  EXPECT_EQ(m_Host.m_asPictures, Done{"name"});
}

TEST_F(GridCommandsTest, ChoosersHaveTheirTitlesAndPatterns) {
  for (const Operation operation : {Operation::kSaveGrid, Operation::kLoadGrid, Operation::kLoadImage}) {
    m_Commands.Perform(operation);
  }
  m_Commands.Write(VrmlFormat());
  EXPECT_EQ(m_Host.m_aChoosers, (std::vector<Chooser>{{"please input grid file name", "none"},
                                                      {"please input grid file name", "*.grid"},
                                                      {"please input image file name", "*.bmp"},
                                                      {"please input VRML file name", "*.wrl"}}));
}

TEST_F(GridCommandsTest, OnlyPicturesHaveAnotherPatternWhichListsAllThatCanBeRead) {
  for (const Operation operation : {Operation::kSaveGrid, Operation::kLoadGrid, Operation::kLoadImage})
    m_Commands.Perform(operation);
  m_Commands.OpenProject();
  ASSERT_EQ(m_Host.m_asOtherPatterns.size(), 4U);
  const std::string pictures = std::exchange(m_Host.m_asOtherPatterns[2], "");
  EXPECT_EQ(m_Host.m_asOtherPatterns, Done(4));
  EXPECT_TRUE(pictures.starts_with("Pictures (*.{bmp,") && pictures.ends_with("})")) << pictures;
  for (const CPictureFormat& format : PictureFormats()) {
    for (const std::string suffix : format.m_apSuffixes)
      EXPECT_TRUE(pictures.find(suffix.substr(1) + ',') != pictures.npos ||
                  pictures.find(suffix.substr(1) + '}') != pictures.npos)
          << suffix;
  }
}

TEST_F(GridCommandsTest, CancelledChooserDoesNothing) {
  for (const Operation operation : {Operation::kSaveGrid, Operation::kLoadGrid, Operation::kLoadImage}) {
    m_Commands.Perform(operation);
    EXPECT_TRUE(Grid().Run().IsRunning());
  }
  m_Commands.Write(VrmlFormat());
  EXPECT_TRUE(m_asDone.empty());
  EXPECT_TRUE(m_Host.m_asPictures.empty());
  EXPECT_TRUE(m_Host.m_asNotices.empty());
}

TEST_F(GridCommandsTest, CancelledLoadIsLogged) {
  m_Commands.Perform(Operation::kLoadGrid);
  EXPECT_EQ(Console(), "CImageView::LoadGrid() : filename == NULL\n");
}

TEST_F(GridCommandsTest, FileThatCannotBeOpenedLeavesTheViewsAsTheyAre) {
  m_Host.m_File = "name";
  m_Loaded = GridFileState::NotOpened;
  g_fPickTolerance = 7.0;
  m_Commands.Perform(Operation::kLoadGrid);
  EXPECT_EQ(m_Host.m_iReplaced, 0);
  EXPECT_EQ(g_fPickTolerance, 7.0);
  EXPECT_TRUE(Grid().Run().IsRunning());
}

TEST_F(GridCommandsTest, CommandsHoldTheSolverAndLetItGoOn) {
  m_Host.m_File = "name";
  for (const Operation operation : kDeferrable) {
    m_Commands.Perform(operation);
    EXPECT_TRUE(Grid().Run().IsRunning()) << CodeOf(operation);
  }
  m_Commands.Write(VrmlFormat());
  EXPECT_TRUE(Grid().Run().IsRunning());
  EXPECT_FALSE(m_bRanMeanwhile);
}

TEST_F(GridCommandsTest, OnlyLoadGridStartsAStoppedSolver) {
  for (const Operation operation : kDeferrable) {
    Solver().StopSolver();
    m_Commands.Perform(operation);
    EXPECT_EQ(Grid().Run().IsRunning(), operation == Operation::kLoadGrid) << CodeOf(operation);
  }
}

TEST_F(GridCommandsTest, LoadGridDoesNotEndAFreeze) {
  Solver().PauseForFreeze();
  m_Commands.Perform(Operation::kLoadGrid);
  EXPECT_FALSE(Grid().Run().IsRunning());
}

TEST_F(GridCommandsTest, NewGridTakesWhatWasGiven) {
  m_NewGrid = CGridParameters{3, {-5, 45, 10, 30}, false};
  m_Commands.Perform(Operation::kNewGrid);
  EXPECT_EQ(Grid().Wanted().BaseLevel(), 3);
  const CExtent& extent = Grid().Surface().Lattice().Extent();
  EXPECT_EQ(std::vector({extent.x0, extent.x1, extent.y0, extent.y1}), std::vector({-5.0, 45.0, 10.0, 30.0}));
  EXPECT_EQ(Grid().Run().NextOperation(), Operation::kRebuildMaps) << "the reset";
  EXPECT_EQ(m_Host.m_iReplaced, 1);
}

TEST_F(GridCommandsTest, NewGridKeepsTheConstraintsIfAsked) {
  for (const bool keep : {true, false}) {
    Grid().AddPtCstr({});
    m_NewGrid = CGridParameters{2, {0, 100, 0, 100}, keep};
    m_Commands.Perform(Operation::kNewGrid);
    EXPECT_EQ(Grid().Constraints().Points().size(), keep ? 1U : 0U);
  }
}

TEST_F(GridCommandsTest, CancelledNewGridChangesNothing) {
  const int level = Grid().Wanted().BaseLevel();
  m_Commands.Perform(Operation::kNewGrid);
  EXPECT_EQ(Grid().Wanted().BaseLevel(), level);
  EXPECT_EQ(m_Host.m_iReplaced, 0);
  EXPECT_EQ(g_fPickTolerance, 1.0);
}

TEST_F(GridCommandsTest, PickToleranceIsAHundredthOfTheLargerExtent) {
  m_NewGrid = CGridParameters{2, {0, 20, -10, 40}, false};
  m_Commands.Perform(Operation::kNewGrid);
  EXPECT_DOUBLE_EQ(g_fPickTolerance, 0.5);
  m_Host.m_File = "name";
  Grid().Surface().SetExtent({0, 300, 0, 100});
  m_Commands.Perform(Operation::kLoadGrid);
  EXPECT_DOUBLE_EQ(g_fPickTolerance, 3.0);
  EXPECT_EQ(m_Host.m_iReplaced, 2);
}

TEST_F(GridCommandsTest, FilesAreWrittenWithNothingPending) {
  m_Host.m_File = "name";
  Grid().AddPtCstr({});
  m_Commands.Perform(Operation::kSaveGrid);
  EXPECT_EQ(Grid().Run().NextOperation(), Operation::kNone);
  Grid().AddPtCstr({});
  m_Commands.Write(VrmlFormat());
  EXPECT_EQ(Grid().Run().NextOperation(), Operation::kNone);
  Grid().AddPtCstr({});
  m_Commands.Write(HeightFieldFormat());
  EXPECT_EQ(Grid().Run().NextOperation(), Operation::kNone);
}

TEST_F(GridCommandsTest, VrmlWithoutAPictureWarnsAndGoesOn) {
  m_Host.m_File = "scene.wrl";
  m_Commands.Write(VrmlFormat());
  EXPECT_EQ(Console().find("can't save as VRML without texture file\n"), 0U);
  EXPECT_EQ(m_asDone, Done{"vrml scene.wrl"});
}

TEST_F(GridCommandsTest, VrmlWithAPictureNamesItAndSaysWhatIsLeftToDo) {
  m_Host.m_File = "scene.wrl";
  m_Host.m_Texture = "cup.bmp";
  m_Commands.Write(VrmlFormat());
  EXPECT_EQ(Console().find("can't save"), std::string::npos);
  EXPECT_EQ(m_asDone, Done{"vrml scene.wrl"});
  EXPECT_EQ(m_Host.m_asNotices, Done{"VRML complete. You need to get a jpeg version of the texture file, named "
                                     "picture.jpg, and put it in the same directory as the wrl file."});
}

TEST_F(GridCommandsTest, SavingAsksForTheLightsWhenTheFileComesToThem) {
  m_Host.m_File = "name";
  m_Commands.Perform(Operation::kSaveGrid);
  EXPECT_TRUE(m_Host.m_asQuestions.empty()) << "the file never came to them";
  m_bAsksForLights = true;
  for (const bool yes : {true, false}) {
    m_asDone.clear();
    m_Host.m_asQuestions.clear();
    m_Host.m_bYes = yes;
    m_Commands.Perform(Operation::kSaveGrid);
    EXPECT_EQ(m_asDone, (Done{"save name", yes ? "with lights" : "without lights"}));
    EXPECT_EQ(m_Host.m_asQuestions, Done{"Do you want to save lighting information ?"});
  }
}

TEST_F(GridCommandsTest, WhatCannotBeWrittenIsTold) {
  m_Host.m_File = "name";
  m_Saved.m_Trouble = "It cannot be written.";
  m_Commands.Perform(Operation::kSaveGrid);
  EXPECT_EQ(m_Host.m_asNotices, Done{"It cannot be written."});
  m_Host.m_asNotices.clear();
  m_Commands.Write(VrmlFormat());
  EXPECT_EQ(m_Host.m_asNotices, Done{"It cannot be written."}) << "and not that it is complete";
  m_Host.m_asNotices.clear();
  m_Host.m_File = "/dev/null";
  CModelServices services;
  services.m_Write = WriteModel;
  services.m_AskSize = [](const std::function<void(int, int)>& write) { write(2, 2); };
  m_Commands.SetServices(services);
  m_Commands.Write(HeightFieldFormat());
  EXPECT_EQ(m_Host.m_asNotices,
            Done{"The file /dev/null could not be written. If it existed before, it is unchanged."});
  EXPECT_EQ(m_Host.m_aChoosers.back(), Chooser("please input Height-Field file name", "none"));
}

TEST_F(GridCommandsTest, WhatIsWrongWithALoadedFileIsTold) {
  m_Host.m_File = "name";
  for (const auto& [state, notices] :
       {std::pair{GridFileState::Whole, Done{}},
        {GridFileState::Damaged, {"The file name is damaged. What could not be read is missing or zero."}},
        {GridFileState::NoGridFile, {"The file name is not a grid file. The model stays as it was."}},
        {GridFileState::NotOpened, {"The file name cannot be opened."}}}) {
    m_Host.m_asNotices.clear();
    m_Host.m_iReplaced = 0;
    m_Loaded = state;
    m_Commands.Perform(Operation::kLoadGrid);
    EXPECT_EQ(m_Host.m_asNotices, notices);
    EXPECT_EQ(m_Host.m_iReplaced, IsReplaced(state) ? 1 : 0);
  }
}

TEST_F(GridCommandsTest, CurvesRefusedByALoadedFileAreToldAfterItsTrouble) {
  for (const int segments : {2, 24}) Grid().AddCurve(LineOf(segments), CurveType::kFairness, false);
  for (CCntrCtrl& curve : CStaging::Constraints(Grid()).Curves()) {
    curve.SetOption(CurveOption::kLeftAutoBump, true);
    curve.SetDistance(CurveSide::Left, kSmallDistance);
  }
  Grid().PerformPendingWork();
  m_Host.m_File = "name";
  m_Loaded = GridFileState::Damaged;
  for (int k = 0; k < 2; ++k) m_Commands.Perform(Operation::kLoadGrid);
  const std::string damaged = "The file name is damaged. What could not be read is missing or zero.";
  EXPECT_EQ(m_Host.m_asNotices, (Done{damaged,
                                      "The curves would generate more than 200000 constraints. 1 of them generate "
                                      "none: make their distances larger.",
                                      damaged}));
}

TEST_F(GridCommandsTest, VrmlAndHeightFieldAreNeverDeferred) {
  g_nSolverTimers = 1;
  m_Host.m_File = "name";
  m_Commands.Write(VrmlFormat());
  m_Commands.Write(HeightFieldFormat());
  EXPECT_EQ(m_asDone.size(), 2U);
}

TEST_F(GridCommandsTest, HeightFieldStopsTheSolverAndKeepsTheReason) {
  Solver().PauseSolverConverged();
  Solver().Run();
  m_Commands.Write(HeightFieldFormat());
  EXPECT_FALSE(Grid().Run().IsRunning());
  EXPECT_FALSE(m_Test.m_Panel.m_bRunning);
  EXPECT_EQ(Solver().Reason(), PauseReason::Converged);
}

TEST_F(GridCommandsTest, WhatNobodyBringsIsNotDone) {
  m_Commands.SetServices({});
  m_Host.m_File = "name";
  for (const Operation operation : {Operation::kNewGrid, Operation::kLoadGrid, Operation::kSaveGrid}) {
    m_Commands.Perform(operation);
  }
  m_Commands.Write(VrmlFormat());
  m_Commands.Write(HeightFieldFormat());
  EXPECT_TRUE(m_Host.m_aChoosers.empty());
  EXPECT_TRUE(Grid().Run().IsRunning());
}

TEST_F(GridCommandsTest, SwitchUpAsksWhetherToInterpolate) {
  for (const auto& [yes, code] : {std::pair{true, 8}, {false, 32}}) {
    m_Host.m_bYes = yes;
    m_Commands.SwitchResolution();
    EXPECT_EQ(CodeOf(Grid().Run().NextOperation()), code);
    EXPECT_EQ(m_Host.m_asQuestions.back(), "Do you want  to compute an interpolation to get the high res grid ?");
  }
}

TEST_F(GridCommandsTest, SwitchDownAsksNothing) {
  g_bHighRes = 1;
  m_Commands.SwitchResolution();
  EXPECT_EQ(Grid().Run().NextOperation(), Operation::kRestoreNormal);
  EXPECT_TRUE(m_Host.m_asQuestions.empty());
}

TEST_F(GridCommandsTest, SwitchResumesTheSolver) {
  Solver().StopSolver();
  m_Commands.SwitchResolution();
  EXPECT_TRUE(Grid().Run().IsRunning());
  EXPECT_EQ(CTimerStarts::Count(), 1);
}

TEST_F(GridCommandsTest, DragsEndBeforeADialogOpens) {
  m_Commands.Perform(Operation::kNewGrid);
  EXPECT_EQ(m_Host.m_iDragEnds, 1);
  m_Commands.Write(HeightFieldFormat());
  EXPECT_EQ(m_Host.m_iDragEnds, 2);
}

// The attributes of a curve.
