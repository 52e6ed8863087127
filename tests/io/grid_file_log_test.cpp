#include <gtest/gtest.h>
#include <sys/stat.h>

#include "support/CStaging.h"
#include "support/CTemporaryDirectory.h"
#include "support/FileBuilders.h"

namespace {

// One unknown cell, no constraints: the shortest file there is.
constexpr const char* kShort =
    "0\t0\t100\t50\n0\t0\n0\t0\n0\t0\n\n\n\nL\n1\n2\n\nT\nN\n\nZ\n1\n2\n3\n4\n\n\nN\n(0, 0)\n(4, 0)\n(4, 4)\n(0, 4)\n"
    "\n\nE\n";

std::string LogOf(CGrid& grid, ConsoleCapture& console, const std::string& text) {
  console.Take();
  ReadText(grid, text);
  return console.Take();
}

const std::string kUpToConstraints =
    "CGrid::Load\t\tFreeAll()...\n"
    "CGrid::Load\t\t...FreeAll() complete\n"
    "CGrid::Load\t\tLoading the grid dimentions...\n"
    "CGrid::Load\t\t...grid dimentions loaded\n"
    "x0 : 0, y0 : 0, x1 : 100, y1 : 50\n"
    "CGrid::Load\t\tLoading constraints...\n"
    "toto2\n"
    "toto3\n"
    "CGrid::Load\t\t...Loading constraints complete\n";
const std::string kLevels = "CGrid::Load\t\tRead the max and current resolution\n";
const std::string kInitialize =
    "CGrid::Load\t\tInitialize()...\n"
    "0, 100, 0, 50\n"
    "CGrid::Initialize\t\t\tlevel : 2\n"
    "*** SetSparseH ***\n"
    "25 points\n"
    "CGrid::Load\t\t...Initialize() complete\n"
    "CGrid::Load\t\tRead the quad tree structure...\n";
const std::string kTree =
    "CGrid::Load\t\t... quad tree structure successfully read\n"
    "CGrid::Load\t\tConstruction of matrixes + new order...\n";
const std::string kHeights =
    "CGrid::Load\t\tMatrixes succesfully created\n"
    "CGrid::Load\t\tReading the height field...\n"
    "CGrid::Load\t\tm_iNbActivePoints = 4\n"
    "CGrid::Load\t\t... Height field read\n"
    "CGrid::Load\t\tWavelet transformation to get the coefficients...\n"
    "CGrid::Load\t\t... Wavelet transformation done\n"
    "CGrid::Load\t\tCopy the wavelet coefficients to the coefficient matrix (m_pfWaveCoefGrid)...\n"
    "CGrid::Load\t\tSkipping the current point order \n"
    "\t\t(reconstructed from the quad tree by BuildHNumerotation)\n";
const std::string kNoLights =
    "c = E\n"
    "CGrid::Load\t\tNo lighting is activated.\n"
    "CGrid::Load\t\tNo high res version was saved\n";

TEST(LoadLog, BeginsWithEveryStepUpToTheTree) {
  CTestGrid test;
  const std::string log = LogOf(test.m_Grid, test.m_Console, kShort);
  const std::string head = kUpToConstraints + kLevels + kInitialize + kTree;
  EXPECT_EQ(log.substr(0, head.size()), head);
}

TEST(LoadLog, EndsWithHeightsOrderAndTheLackOfLights) {
  CTestGrid test;
  const std::string log = LogOf(test.m_Grid, test.m_Console, kShort);
  const std::string tail = kHeights + kNoLights;
  EXPECT_EQ(log.substr(log.size() - tail.size()), tail);
}

TEST(LoadLog, NamesTheLights) {
  CTestGrid test;
  std::ostringstream lights;
  WriteLights(lights, test.m_Grid);
  const std::string log = LogOf(test.m_Grid, test.m_Console, Replaced(kShort, "\n\nE\n", lights.str()));
  const std::string tail =
      kHeights + "c = I\nCGrid::Load\t\tLoading the light sources...\nCGrid::Load\t\t...Lightsources loaded.\n";
  EXPECT_EQ(log.substr(log.size() - tail.size()), tail);
}

TEST(LoadLog, NamesTheOldFormat) {
  CTestGrid test;
  const std::string log = LogOf(test.m_Grid, test.m_Console, "0\t0\t100\t50\n0\t0\n0\t0\n0\t0\n\nQN");
  const std::string tail =
      "CGrid::Load\t\tMatrixes succesfully created\n"
      "CGrid::Load\t\tOld format detected.\n"
      "\t\t\tThe default base resolution level is set to 5\n"
      "\t\t\tThe default max resolution level is set to 7\n"
      "\t\t\tNo height field is loaded\n";
  EXPECT_EQ(log.substr(log.size() - tail.size()), tail);
  EXPECT_EQ(log.substr(0, kUpToConstraints.size()), kUpToConstraints);
}

struct CBadFile {
  const char* m_pReplace;  ///< this part of kShort
  const char* m_pBy;
  const char* m_pExpected;  ///< what the console says was expected
};

const std::vector<CBadFile> kBadFiles{
    {"0\t0\n0\t0\n0\t0\n", "0\t1\n0\t0\n0\t0\n", "as many point constraints as announced"},
    {"0\t0\n0\t0\n0\t0\n", "0\t-1\n0\t0\n0\t0\n", "as many point constraints as announced"},
    {"0\t0\n0\t0\n0\t0\n", "0\t99999999999999999999\n0\t0\n0\t0\n", "as many point constraints as announced"},
    {"0\t0\n0\t0\n0\t0\n", "0\t2000000000\n1\t2\t3\t4\t5\t1\n0\t0\n0\t0\n", "as many point constraints as announced"},
    {"0\t0\n0\t0\n0\t0\n", "0\t1\n1\t2\t3\tfour\t5\t1\n0\t0\n0\t0\n", "as many point constraints as announced"},
    {"0\t0\n0\t0\n0\t0\n", "0\t2\n1\t2\t3\t4\t5\t\n6.5\t7\t8\t9\t10\t1\n0\t0\n0\t0\n",
     "as many point constraints as announced"},
    {"0\t0\n0\t0\n0\t0\n", "0\t0\n0\t1\n0\t0\n", "as many curve constraints as announced"},
    {"0\t0\n0\t0\n0\t0\n", "0\t0\n0\t1\n0\t4000000000\n1\t1\t0\t0\t0\t0\t0\t0\t0\t0\n",
     "as many curve constraints as announced"},
    {"0\t0\n0\t0\n0\t0\n", "0\t0\n0\t0\n0\t1\n", "no region constraints"},
    {"L\n", "X\n", "'Q' or 'L' after region constraints"},
    {"L\n1\n2\n\nT\nN\n\nZ", "", "'Q' or 'L' after region constraints"},
    {"L\n1\n2", "L\n0\n2", "levels from 1 to 10, the base level not above the max level"},
    {"L\n1\n2", "L\n1\n11", "levels from 1 to 10, the base level not above the max level"},
    {"L\n1\n2", "L\n3\n2", "levels from 1 to 10, the base level not above the max level"},
    {"L\n1\n2", "L\n-1\n99999999999", "levels from 1 to 10, the base level not above the max level"},
    {"T\n", "S\n", "'T' after levels"},
    {"T\nN", "T\nbNNNNe", "a quad tree no deeper than the max level"},
    {"T\nN", "T\nbNvNvNvN", "a quad tree no deeper than the max level"},
    {"T\nN", "T\nbbbNvNvNvNevNvNvNevNvNvNe", "a quad tree no deeper than the max level"},
};

class BadGridFile : public testing::TestWithParam<CBadFile> {};

TEST_P(BadGridFile, IsRefusedWithALineThatNamesWhatWasExpected) {
  CFullModel model;
  const auto& [part, by, expected] = GetParam();
  EXPECT_EQ(ReadText(model.m_Grid, Replaced(kShort, part, by)), GridFileState::Invalid);
  const std::string log = model.m_Console.Take();
  EXPECT_NE(log.find(std::string("\nCGrid::Load\t\tInvalid format: attempting ") + expected + "\n"), std::string::npos)
      << log;
}

TEST_P(BadGridFile, LeavesAFreshGridThatWorks) {
  CFullModel model;
  ReadText(model.m_Grid, Replaced(kShort, GetParam().m_pReplace, GetParam().m_pBy));
  EXPECT_TRUE(model.m_Grid.Constraints().Curves().empty());
  EXPECT_LE(model.m_Grid.Constraints().Points().size(), 1U) << "those read from the file only";
  EXPECT_EQ(model.m_Grid.Surface().MaxHeight(), 0.0);
  EXPECT_GE(model.m_Grid.Surface().ActivePointCount(), 4);
  model.m_Grid.UpdateGrid();
  // Before the other grid sets the levels of new grids, which are part of the text.
  const std::string text = GridText(model.m_Grid);
  CTestGrid other;
  EXPECT_EQ(ReadText(other.m_Grid, text), GridFileState::Whole);
}

INSTANTIATE_TEST_SUITE_P(All, BadGridFile, testing::ValuesIn(kBadFiles));

TEST(BadGridFiles, KeepTheConstraintsReadSoFar) {
  CTestGrid test;
  const std::string text =
      Replaced(kShort, "0\t0\n0\t0\n0\t0\n", "0\t2\n1\t2\t3\t4\t5\t1\n6\t7\t8\t9\t10\t2\n0\t0\n0\t9\n");
  EXPECT_EQ(ReadText(test.m_Grid, text), GridFileState::Invalid);
  ASSERT_EQ(test.m_Grid.Constraints().Points().size(), 2U);
  EXPECT_EQ(RecordAt(test.m_Grid.Constraints().Points(), 1).m_fQ, 10);
  EXPECT_EQ(test.m_Grid.Surface().Lattice().Extent().y1, 50);
}

TEST(BadGridFiles, DoNotTouchTheLevelsUnlessTheyAreSound) {
  CTestGrid test(4, 2);
  ReadText(test.m_Grid, Replaced(kShort, "L\n1\n2", "L\n3\n2"));
  EXPECT_EQ(g_iBaseLevel, 2);
  EXPECT_EQ(g_iMaxLevel, 4);
}

TEST(DamagedGridFile, LeavesOutRecordsWithNumbersThatAreNotFinite) {
  CTestGrid test;
  const std::string text = Replaced(kShort, "0\t0\n0\t0\n0\t0\n",
                                    "0\t4\n1\t2\tnan\t4\t5\t1\n1\t2\t1e999\t4\t5\t1\n1\t2\t3\t-inf\t5\t1\n"
                                    "6\t7\t8\t9\t10\t1\n0\t1\n0\t2\n1\t2\t0\t0\t0\t0\t0\t0\tinf\t0\n"
                                    "3\t2\t0\t0\t0\t0\t0\t0\t0\t0\n\n1\n0\n0\n0\n5\n5\n0\t0\n");
  EXPECT_EQ(ReadText(test.m_Grid, text), GridFileState::Damaged);
  ASSERT_EQ(test.m_Grid.Constraints().Points().size(), 1U);
  EXPECT_EQ(RecordAt(test.m_Grid.Constraints().Points(), 0).m_fX, 6);
  EXPECT_TRUE(test.m_Grid.Constraints().Curves().empty());
  const std::string log = test.m_Console.Take();
  EXPECT_EQ(Occurrences(log, "CGrid::Load\t\tA point constraint with a number that is not finite is left out\n"), 3);
  EXPECT_EQ(Occurrences(log, "CGrid::Load\t\tA curve constraint with a number that is not finite is left out\n"), 1);
}

TEST(DamagedGridFile, LeavesOutPointsOfUnknownKinds) {
  CTestGrid test;
  const std::string text = Replaced(kShort, "0\t0\n0\t0\n0\t0\n",
                                    "0\t5\n1\t2\t3\t4\t5\t0\n1\t2\t3\t4\t5\t-1\n1\t2\t3\t4\t5\t8\n"
                                    "1\t2\t3\t4\t5\t4\n6\t7\t8\t9\t10\t3\n0\t0\n0\t0\n");
  EXPECT_EQ(ReadText(test.m_Grid, text), GridFileState::Damaged);
  ASSERT_EQ(test.m_Grid.Constraints().Points().size(), 1U);
  EXPECT_EQ(RecordAt(test.m_Grid.Constraints().Points(), 0).m_fX, 6);
  EXPECT_EQ(Occurrences(test.m_Console.Take(), "CGrid::Load\t\tA point constraint of an unknown kind is left out\n"),
            4);
}

TEST(DamagedGridFile, HasZerosWhereItEndsInsideTheHeights) {
  CTestGrid test;
  const std::string text = kShort;
  EXPECT_EQ(ReadText(test.m_Grid, text.substr(0, text.find("3\n4\n"))), GridFileState::Damaged);
  EXPECT_EQ(NodalHeights(test.m_Grid), (std::vector<double>{1, 2, 0, 0}));
}

TEST(DamagedGridFile, HasZerosForHeightsThatAreNotFinite) {
  CTestGrid test;
  EXPECT_EQ(ReadText(test.m_Grid, Replaced(kShort, "1\n2\n3\n4\n", "1\nnan\n3\n-1e400\n")), GridFileState::Damaged);
  EXPECT_EQ(NodalHeights(test.m_Grid), (std::vector<double>{1, 0, 3, 0}));
}

TEST(DamagedGridFile, HasZerosForHeightsThatCannotBeCalculatedWith) {
  CTestGrid test;
  EXPECT_EQ(ReadText(test.m_Grid, Replaced(kShort, "1\n2\n3\n4\n", "1e308\n-1e101\n3\n1e100\n")),
            GridFileState::Damaged);
  EXPECT_EQ(NodalHeights(test.m_Grid), (std::vector<double>{0, 0, 3, 1e100}));
}

TEST(DamagedGridFile, MayEndAnywhereAfterTheTree) {
  const CFullModel model;
  const std::string text = GridText(model.m_Grid);
  for (std::size_t end = text.find("\n\nZ\n"); end < text.size() - 2; end += 7) {
    CTestGrid test;
    EXPECT_EQ(ReadText(test.m_Grid, text.substr(0, end)), GridFileState::Damaged) << end;
    EXPECT_TRUE(std::isfinite(test.m_Grid.Surface().MaxHeight()));
  }
}

TEST(DamagedGridFile, KeepsTheLightsThereAreWhereItsOwnAreCutShort) {
  CTestGrid test;
  std::ostringstream lights;
  WriteLights(lights, test.m_Grid);
  CStaging::AddedLights(test.m_Grid).m_aLights[0].m_bActive = true;
  const std::string whole = Replaced(kShort, "\n\nE\n", lights.str());
  EXPECT_EQ(ReadText(test.m_Grid, whole.substr(0, whole.size() - 10)), GridFileState::Damaged);
  EXPECT_TRUE(test.m_Grid.Relighting().AddedLights().m_aLights[0].m_bActive);
}

class NoGridFile : public testing::TestWithParam<const char*> {};

TEST_P(NoGridFile, LeavesTheModelAsItIs) {
  CFullModel model;
  const std::string before = GridText(model.m_Grid);
  EXPECT_EQ(ReadText(model.m_Grid, Replaced(kShort, "0\t0\t100\t50", GetParam())), GridFileState::NoGridFile);
  EXPECT_EQ(model.m_Console.Take(),
            "CGrid::Load\t\tLoading the grid dimentions...\n"
            "CGrid::Load\t\tInvalid format: attempting a rectangle of finite numbers, x0 < x1 and y0 < y1\n");
  EXPECT_EQ(GridText(model.m_Grid), before);
}

INSTANTIATE_TEST_SUITE_P(All, NoGridFile,
                         testing::Values("", "0\t0\tx\t50", "0\t0\tnan\t50", "0\t0\t1e999\t50", "-inf\t0\t100\t50",
                                         "-1e308\t0\t1e308\t50", "0\t0\t1e-310\t50", "100\t0\t100\t50", "0\t50\t100\t0",
                                         "BM6"));

// Whatever is read ahead, the levels of new grids stay those of the model.
TEST(BadGridFiles, GiveUpTheModelOnceTheyHaveARectangle) {
  CFullModel model;
  EXPECT_EQ(ReadText(model.m_Grid, "0 0 100 50 x"), GridFileState::Invalid);
  EXPECT_TRUE(model.m_Grid.Constraints().Points().empty());
  EXPECT_EQ(model.m_Grid.Surface().Lattice().Extent().y1, 50);
  EXPECT_EQ(model.m_Console.Take().find("CGrid::Load\t\tFreeAll()...\nCGrid::Load\t\t...FreeAll() complete\n"
                                        "CGrid::Load\t\tLoading the grid dimentions...\n"),
            0U);
}

TEST(ShortGridFile, ThatAsksForALargeLatticeIsRefusedBeforeAnythingIsFreed) {
  CFullModel model;
  const std::string before = GridText(model.m_Grid);
  const std::string large = Replaced(kShort, "L\n1\n2", "L\n1\n10");
  EXPECT_EQ(ReadText(model.m_Grid, large.substr(0, large.find("\n\nE\n"))), GridFileState::TooLarge);
  EXPECT_EQ(model.m_Console.Take(), "");
  EXPECT_EQ(GridText(model.m_Grid), before);
  const std::string modest = Replaced(kShort, "L\n1\n2", "L\n1\n7");
  EXPECT_EQ(ReadText(model.m_Grid, modest.substr(0, modest.find("\n\nE\n"))), GridFileState::Damaged);
}

// What the program itself may have saved it must read again, however coarse the surface on a fine lattice is.
TEST(ShortGridFile, ThatIsWholeIsReadHoweverLargeItsLattice) {
  CTestGrid test;
  std::string text = Replaced(kShort, "L\n1\n2", "L\n1\n9");
  for (const auto& [part, by] : {std::pair{"(4, 0)", "(512, 0)"}, {"(4, 4)", "(512, 512)"}, {"(0, 4)", "(0, 512)"}})
    text = Replaced(text, part, by);
  EXPECT_EQ(ReadText(test.m_Grid, text), GridFileState::Whole);
  EXPECT_EQ(test.m_Grid.Surface().Lattice().Level(), 9);
}

class LoadFile : public testing::Test {
 protected:
  std::string FileWith(const std::string& text) const {
    WriteText(m_Directory.Path() / "m.grid", text);
    return m_Directory.Path() / "m.grid";
  }
  GridFileState Load(const std::string& file) {
    const GridFileState state = m_Model.m_Grid.Load(file);
    if (const std::string trouble = TroubleWith(state, file); !trouble.empty()) m_aNotices.push_back(trouble);
    return state;
  }

  CTemporaryDirectory m_Directory;
  CFullModel m_Model;
  CActingHost m_Host{m_Model.m_Grid};
  std::vector<std::string> m_aNotices;
};

TEST_F(LoadFile, ThatIsMissingLeavesTheGridUnchanged) {
  const std::string before = GridText(m_Model.m_Grid);
  const std::string missing = m_Directory.Path() / "none.grid";
  EXPECT_EQ(Load(missing), GridFileState::NotOpened);
  EXPECT_EQ(m_Model.m_Console.Take(), "toto1\nError opening the file " + missing + "\n");
  EXPECT_EQ(GridText(m_Model.m_Grid), before);
  EXPECT_EQ(m_aNotices, std::vector<std::string>{"The file " + missing + " cannot be opened."});
}

TEST_F(LoadFile, ThatIsADirectoryIsNotOpenedEither) {
  EXPECT_EQ(Load(m_Directory.Path()), GridFileState::NotOpened);
  EXPECT_EQ(m_Model.m_Grid.Constraints().Points().size(), SomeConstraints().size());
}

TEST_F(LoadFile, ThatIsAPipeIsNotWaitedFor) {
  const std::string pipe = m_Directory.Path() / "pipe";
  ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
  EXPECT_EQ(Load(pipe), GridFileState::NotOpened);
  EXPECT_EQ(m_aNotices, std::vector<std::string>{"The file " + pipe + " cannot be opened."});
}

TEST_F(LoadFile, BeginsItsLogAndShowsWhatItHasRead) {
  EXPECT_EQ(Load(FileWith(Replaced(kShort, "0\t0\n", "0\t1\n1\t2\t3\t4\t5\t1\n"))), GridFileState::Whole);
  EXPECT_EQ(m_Model.m_Console.Take().find("toto1\nCGrid::Load\t\tFreeAll()...\n"), 0U);
  EXPECT_EQ(m_Host.m_iConstraints, 1);
  EXPECT_EQ(m_Host.m_iIterations, 0);
  EXPECT_EQ(m_Host.m_iPoints, 4);
  EXPECT_GT(m_Host.m_iRedraws, 0);
  EXPECT_TRUE(m_aNotices.empty());
}

TEST_F(LoadFile, ThatIsNoGridFileLeavesTheGridUnchanged) {
  const std::string before = GridText(m_Model.m_Grid);
  const std::string file = FileWith("nonsense");
  EXPECT_EQ(Load(file), GridFileState::NoGridFile);
  EXPECT_EQ(GridText(m_Model.m_Grid), before);
  EXPECT_EQ(m_Host.m_iRedraws, 0);
  EXPECT_EQ(m_aNotices,
            std::vector<std::string>{"The file " + file + " is not a grid file. The model stays as it was."});
}

TEST_F(LoadFile, TellsTheUserOfAnInvalidFile) {
  const std::string file = FileWith("0 0 1 1 nonsense");
  EXPECT_EQ(Load(file), GridFileState::Invalid);
  EXPECT_EQ(m_aNotices,
            std::vector<std::string>{"The file " + file +
                                     " is not a valid grid file. A new grid holds the constraints read from it."});
}

TEST_F(LoadFile, TellsTheUserOfADamagedFile) {
  const std::string file = FileWith(Replaced(kShort, "1\n2\n3\n4\n", "1\n2\n"));
  Load(FileWith(std::string(kShort).substr(0, std::string(kShort).find("3\n4"))));
  EXPECT_EQ(m_aNotices,
            std::vector<std::string>{"The file " + file + " is damaged. What could not be read is missing or zero."});
}

}  // namespace
