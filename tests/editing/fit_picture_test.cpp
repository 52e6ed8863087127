// A grid in the proportions of the picture.

#include <vector>

#include <gtest/gtest.h>

#include "support/HistoryBuilders.h"

namespace {

class FitPictureTest : public ::testing::Test {
 protected:
  CGrid& Grid() { return m_Test.Grid(); }
  CGridCommands& Commands() { return m_Test.m_Commands; }
  void Show(int width, int height) {
    const auto bytes = 3 * static_cast<std::size_t>(width) * static_cast<std::size_t>(height);
    ASSERT_TRUE(Grid().Relighting().SetPicture({width, height, std::vector<std::uint8_t>(bytes)}));
  }
  const CExtent& Extent() { return Grid().Surface().Lattice().Extent(); }
  void Fit() {
    Grid().Run().RequestStep(UserStep::FitPicture);
    m_Test.Round();
  }

  CTestHistory m_Test;
};

}  // namespace

TEST_F(FitPictureTest, TheShorterSideIsAHundred) {
  Show(4, 3);
  Fit();
  EXPECT_EQ(Extent(), (CExtent{0, 400.0 / 3, 0, 100}));
  EXPECT_DOUBLE_EQ(g_fPickTolerance, 4.0 / 3);
  Show(3, 7);
  Fit();
  EXPECT_EQ(Extent(), (CExtent{0, 100, 0, 700.0 / 3}));
  EXPECT_DOUBLE_EQ(g_fPickTolerance, 7.0 / 3);
  EXPECT_EQ(m_Test.m_CommandHost.m_iReplaced, 2);
}

TEST_F(FitPictureTest, TheBaseLevelStaysAndTheModelLosesItsName) {
  m_Test.NewGrid(3, {0, 7, 0, 9});
  Commands().Files().SetModel({"/a.grid"});
  Show(2, 1);
  Fit();
  EXPECT_EQ(Grid().Wanted().BaseLevel(), 3);
  EXPECT_EQ(Commands().Files().Model(), CModelName());
}

TEST_F(FitPictureTest, IsOneStepBack) {
  m_Test.NewGrid(3, {0, 7, 0, 9});
  Show(2, 1);
  m_Test.Round();
  const std::size_t before = m_Test.Count();
  const CDocument document = DocumentOf(Grid());
  Fit();
  EXPECT_EQ(m_Test.Count(), before + 1);
  EXPECT_EQ(m_Test.m_History.UndoName(), "Grid in the Picture's Proportions");
  m_Test.Undo();
  EXPECT_TRUE(DocumentOf(Grid()) == document);
  m_Test.Redo();
  EXPECT_EQ(Extent(), (CExtent{0, 200, 0, 100}));
  EXPECT_EQ(m_Test.Taken().back(), "done Grid in the Picture's Proportions");
}

TEST_F(FitPictureTest, WaitsBesideTheCodesForTheEndOfTheTick) {
  Show(2, 1);
  const CExtent before = Extent();
  g_nSolverTimers = 1;
  Grid().Run().RequestStep(UserStep::FitPicture);
  m_Test.Round();
  EXPECT_EQ(Grid().Run().NextOperation(), Operation::kNone);
  EXPECT_EQ(Extent(), before);
  Grid().UpdateGrid();
  EXPECT_EQ(Extent(), (CExtent{0, 200, 0, 100}));
  EXPECT_FALSE(Grid().Run().HasPending());
}

TEST_F(FitPictureTest, AStoppedSolverStaysStoppedAndARunningOneGoesOn) {
  Show(2, 1);
  for (const bool running : {false, true}) {
    running ? m_Test.m_Test.m_Solver.Run() : m_Test.m_Test.m_Solver.StopSolver();
    Fit();
    EXPECT_EQ(Grid().Run().IsRunning(), running);
  }
}

TEST_F(FitPictureTest, NothingThatAHandHasMadeIsLost) {
  EXPECT_FALSE(Commands().CanFitPicture()) << "there is no picture";
  Show(2, 1);
  const CExtent before = Extent();
  EXPECT_TRUE(Commands().CanFitPicture());
  const std::vector<void (*)(CGrid&)> deeds{[](CGrid& grid) { grid.AddPtCstr(HeightCstr(7, 21.5, 2)); },
                                            [](CGrid& grid) { grid.CurveEdits().AppendPending(1, 22); },
                                            [](CGrid& grid) {
                                              grid.AddCurve(PointsAt({{0, 21}, {4, 22}}), kTear, false);
                                            }};
  for (std::size_t k = 0; k < deeds.size(); ++k) {
    deeds[k](Grid());
    EXPECT_FALSE(Commands().CanFitPicture()) << k;
    EXPECT_FALSE(Commands().OffersFit()) << k;
    Fit();
    EXPECT_EQ(Extent(), before) << k;
    m_Test.Undo();
    EXPECT_TRUE(Commands().CanFitPicture()) << k;
  }
}

TEST_F(FitPictureTest, IsOfferedWhereTheGridStretchesThePicture) {
  m_Test.NewGrid(3, {0, 133, 0, 100});
  Show(640, 480);
  EXPECT_FALSE(Commands().OffersFit()) << "typed into a dialog it is near enough";
  Show(480, 640);
  EXPECT_TRUE(Commands().OffersFit());
  Fit();
  EXPECT_FALSE(Commands().OffersFit());
  EXPECT_TRUE(Commands().CanFitPicture());
}
