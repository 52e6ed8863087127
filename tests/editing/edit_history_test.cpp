// Which edits make which steps, and that the way back and forward leads through the same documents.

#include <functional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "model/Globals.h"
#include "support/HistoryBuilders.h"

namespace {

using Lines = std::vector<std::string>;

struct CEditCase {
  std::string m_Name;  ///< of its step
  std::function<void(CTestHistory&)> m_Edit;
};

const CPlaces kCurvePlaces{{0, 21}, {4, 22}, {8, 24}};

void Prepare(CTestHistory& test) {
  AddAll(test.Grid(), SomeConstraints());
  test.Grid().AddCurve(PointsAt(kCurvePlaces), kTear, false);
  test.Round();
  test.Grid().CurveEdits().AppendPending(2, 22);
  test.Grid().CellEdits().Select(0, 20.5, 4, 22);
  test.Grid().SelectPtCstr(10, 22, PtCstrKind::kPosition);
  test.Round();
  test.m_History.Clear();
}

CLight Lit() {
  CLight light;
  light.m_bActive = true;
  return light;
}

void Pick(CGrid& grid) { grid.PickCurve(4, 22, CurveType::kAll); }

std::vector<CEditCase> EditCases() {
  using T = CTestHistory;
  return {
      {"add point", [](T& t) { t.Grid().AddPtCstr(HeightCstr(7, 21.5, 2)); }},
      {"move point", [](T& t) { t.Grid().MoveSelectedPtCstr(1, 0); }},
      {"move height", [](T& t) { t.Grid().SetSelectedHeight(9); }},
      {"turn slope",
       [](T& t) {
         t.Grid().SelectPtCstr(6, 23.5, PtCstrKind::kNormal);
         t.Grid().ChangeSelectedNormal(1, 0);
       }},
      {"delete point", [](T& t) { t.Grid().DeleteSelectedPtCstr(); }},
      {"curve point", [](T& t) { t.Grid().CurveEdits().AppendPending(1, 22); }},
      {"give up curve", [](T& t) { t.Grid().CurveEdits().CancelPending(); }},
      {"tear", [](T& t) { t.Grid().CurveEdits().ValidatePending(5, 21, false, kTear); }},
      {"crease", [](T& t) { t.Grid().CurveEdits().ValidatePending(5, 21, false, kCrease); }},
      {"fairness curve",
       [](T& t) {
         t.Grid().AddTracedCurve(PointsAt({{1, 21}, {2, 25}}), kFair, false);
       }},
      {"move node", [](T& t) { Pick(t.Grid()), t.Grid().MoveSelectedCurve(1, 0, CurveType::kAll); }},
      {"curve type", [](T& t) { Pick(t.Grid()), t.Grid().CurveEdits().SetSelectedType(kCrease); }},
      {"delete node", [](T& t) { Pick(t.Grid()), t.Grid().DeleteSelectedCurveNode(); }},
      {"delete curve", [](T& t) { Pick(t.Grid()), t.Grid().DeleteSelectedCurve(); }},
      {"curve attributes",
       [](T& t) {
         CContourAttributes attributes;
         attributes.m_bLeftAutoBump = true;
         t.Grid().CurveEdits().SetAttributes(t.Grid().Constraints().FindCurve(4, 22, 1), 0, attributes, kTear, true);
       }},
      {"refine cell", [](T& t) { t.Grid().CellEdits().RefineAt(-2, 25); }},
      {"split cells", [](T& t) { t.Grid().CellEdits().SplitSelected(); }},
      {"merge cells",
       [](T& t) {
         t.Grid().CellEdits().Select(-3.5, 20, 12.5, 26);
         t.Grid().CellEdits().MergeSelected();
       }},
      {"light", [](T& t) { t.Grid().SetLight(2, kRemovedLights, Lit()); }},
      {"switch resolution", [](T& t) { t.Grid().Run().Post(Operation::kTransferToHigh); }},
      {"Reset the solver", [](T& t) { t.Grid().Reset(); }},
      {"New Grid",
       [](T& t) {
         t.NewGrid(3, {0, 7, 0, 9});
       }},
  };
}

}  // namespace

TEST(EditHistoryTest, EveryEditIsAStepThatIsTakenBackToTheLastBit) {
  for (const CEditCase& c : EditCases()) {
    SCOPED_TRACE(c.m_Name);
    CTestHistory test;
    Prepare(test);
    const CDocument before = DocumentOf(test.Grid());
    c.m_Edit(test);
    test.Round();
    const CDocument after = DocumentOf(test.Grid());
    ASSERT_EQ(test.Count(), 1U);
    EXPECT_EQ(test.m_History.UndoName(), c.m_Name);
    test.Undo();
    EXPECT_TRUE(DocumentOf(test.Grid()) == before);
    EXPECT_EQ(test.m_History.RedoName(), c.m_Name);
    test.Redo();
    EXPECT_TRUE(DocumentOf(test.Grid()) == after);
    test.Undo();
    EXPECT_TRUE(DocumentOf(test.Grid()) == before);
    EXPECT_EQ(test.Taken(), (Lines{"undone " + c.m_Name, "done " + c.m_Name, "undone " + c.m_Name}));
    EXPECT_FALSE(test.Grid().Run().HasPending());
  }
}

TEST(EditHistoryTest, WhatWasSelectedIsSelectedAgain) {
  CTestHistory test;
  Prepare(test);
  const std::vector<std::uint32_t> cells = DocumentOf(test.Grid()).m_auSelectedCells;
  ASSERT_FALSE(cells.empty());
  test.Grid().SetSelectedHeight(9);
  test.Grid().UnselectAll();
  test.Grid().CellEdits().SplitSelected();
  test.Round();
  test.Undo();
  EXPECT_EQ(DocumentOf(test.Grid()).m_auSelectedCells, cells);
  EXPECT_EQ(test.Grid().Constraints().Points().FirstSelected(), nullptr);
  test.Undo();
  ASSERT_NE(test.Grid().Constraints().Points().FirstSelected(), nullptr);
  EXPECT_EQ(test.Grid().GetSelectedHeight(), -2);
}

TEST(EditHistoryTest, SelectingAndLookingAreNoSteps) {
  CTestHistory test;
  Prepare(test);
  test.Grid().UnselectAll();
  test.Grid().SelectNextPtCstr(PtCstrKind::kPosition);
  test.Grid().HighlightPtCstrs(10, 22, PtCstrKind::kPosition);
  Pick(test.Grid());
  test.Grid().CellEdits().Select(0, 22, 4, 24);
  test.Grid().PaintFreezeMap(3, 22, true);
  test.Grid().UpdateGrid();
  test.Grid().ChangeSelectedNormal(0, 0);
  test.Grid().SetSelectedHeight(test.Grid().GetSelectedHeight());
  test.Round();
  EXPECT_EQ(test.Count(), 0U);
}

TEST(EditHistoryTest, ADragIsOneStepWithTheNameOfItsBeginning) {
  CTestHistory test;
  Prepare(test);
  const CDocument before = DocumentOf(test.Grid());
  test.Grid().Gate().BeginGesture(CEditGate::Hold::Other);
  test.Grid().AddPtCstr(HeightCstr(7, 21.5, 2));
  test.m_Host.m_bDragging = true;
  for (int k = 0; k < 5; ++k) {
    test.Grid().SetSelectedHeight(k);
    test.Round();
  }
  EXPECT_EQ(test.Count(), 0U);
  test.m_Host.m_bDragging = false;
  test.Grid().Gate().EndGesture(CEditGate::GestureEnd::Released);
  ASSERT_EQ(test.Count(), 1U);
  EXPECT_EQ(test.m_History.UndoName(), "add point");
  test.Undo();
  EXPECT_TRUE(DocumentOf(test.Grid()) == before);
}

TEST(EditHistoryTest, ADraggedNodeIsOneStepWithWhatItTears) {
  CTestHistory test;
  Prepare(test);
  Pick(test.Grid());
  test.Grid().Gate().BeginGesture(CEditGate::Hold::Curve);
  for (int k = 0; k < 3; ++k) test.Grid().MoveSelectedCurve(0.25, 0, CurveType::kAll);
  test.Grid().Gate().EndGesture(CEditGate::GestureEnd::Released);
  test.Round();
  EXPECT_EQ(test.Count(), 1U);
  EXPECT_EQ(test.m_History.UndoName(), "move node");
}

TEST(EditHistoryTest, ADragWhoseEndWasLostEndsWithTheButton) {
  CTestHistory test;
  Prepare(test);
  test.Grid().Gate().BeginGesture(CEditGate::Hold::Other);
  test.Grid().SetSelectedHeight(7);
  test.Round();
  EXPECT_EQ(test.Count(), 1U);
  test.Grid().SetSelectedHeight(8);
  EXPECT_EQ(test.Count(), 2U);
}

TEST(EditHistoryTest, ADragThatComesBackIsNone) {
  CTestHistory test;
  Prepare(test);
  test.Grid().Gate().BeginGesture(CEditGate::Hold::Other);
  const double height = test.Grid().GetSelectedHeight();
  for (const double z : {7.0, height}) test.Grid().SetSelectedHeight(z);
  test.Grid().Gate().EndGesture(CEditGate::GestureEnd::Released);
  EXPECT_EQ(test.Count(), 0U);
}

TEST(EditHistoryTest, WhatASliderChangesWhileItIsHeldIsOneStep) {
  CTestHistory test;
  Prepare(test);
  test.m_Host.m_bDragging = true;
  for (const double red : {0.1, 0.2, 0.3}) {
    CLight light = *test.Grid().GetLightSource(0, kAddedLights);
    light.m_afColour[0] = red;
    test.Grid().SetLight(0, kAddedLights, light);
    test.m_fTime += 5;
    test.Round();
  }
  EXPECT_EQ(test.Count(), 0U);
  EXPECT_TRUE(test.m_History.CanUndo());
  test.m_Host.m_bDragging = false;
  test.Round();
  EXPECT_EQ(test.Count(), 1U);
  test.Undo();
  EXPECT_TRUE(test.m_Host.m_bLights);
  EXPECT_EQ(test.Grid().GetLightSource(0, kAddedLights)->m_afColour[0], 1.0);
}

TEST(EditHistoryTest, KeysOnTheSameThingWithinASecondAreOneStep) {
  for (const double pause : {0.9, 1.1}) {
    CTestHistory test;
    Prepare(test);
    const CDocument before = DocumentOf(test.Grid());
    for (int k = 0; k < 2; ++k) {
      test.Grid().CellEdits().SplitSelected();
      test.Round();
      test.m_fTime += pause;
    }
    EXPECT_EQ(test.Count(), pause < 1 ? 1U : 2U);
    while (test.m_History.CanUndo()) test.Undo();
    EXPECT_TRUE(DocumentOf(test.Grid()) == before);
  }
}

TEST(EditHistoryTest, KeysOnAnotherThingAreAnotherStep) {
  CTestHistory test;
  Prepare(test);
  test.m_Host.m_bTyping = true;
  for (const double z : {7.0, 8.0}) test.Grid().SetSelectedHeight(z);
  EXPECT_EQ(test.Count(), 1U);
  test.Grid().SelectNextPtCstr(PtCstrKind::kPosition);
  test.Grid().SetSelectedHeight(9);
  EXPECT_EQ(test.Count(), 2U);
  test.Grid().CellEdits().SplitSelected();
  test.Grid().CellEdits().Select(6, 23, 9, 25);
  test.Grid().CellEdits().SplitSelected();
  test.Round();
  EXPECT_EQ(test.Count(), 3U);
  test.Grid().CellEdits().MergeSelected();
  test.Round();
  EXPECT_EQ(test.Count(), 4U);
}

TEST(EditHistoryTest, ClicksInARowAreEachAStep) {
  CTestHistory test;
  Prepare(test);
  for (const double z : {7.0, 8.0}) test.Grid().SetSelectedHeight(z);
  EXPECT_EQ(test.Count(), 2U);
}

TEST(EditHistoryTest, ANewEditAfterUndoDropsRedo) {
  CTestHistory test;
  Prepare(test);
  test.Grid().SetSelectedHeight(9);
  test.Undo();
  ASSERT_TRUE(test.m_History.CanRedo());
  test.Grid().UnselectAll();
  EXPECT_TRUE(test.m_History.CanRedo());
  test.Grid().AddPtCstr(HeightCstr(7, 21.5, 2));
  EXPECT_FALSE(test.m_History.CanRedo());
}

TEST(EditHistoryTest, WhereThereIsNoStepNothingHappens) {
  CTestHistory test;
  const CDocument before = DocumentOf(test.Grid());
  test.Undo();
  test.Redo();
  EXPECT_TRUE(DocumentOf(test.Grid()) == before);
  EXPECT_TRUE(test.Taken().empty());
  EXPECT_FALSE(test.m_History.CanUndo());
}

TEST(EditHistoryTest, DuringADragUndoIsIgnored) {
  CTestHistory test;
  Prepare(test);
  test.Grid().SetSelectedHeight(9);
  test.m_Host.m_bDragging = true;
  test.Undo();
  EXPECT_EQ(test.Grid().GetSelectedHeight(), 9);
  EXPECT_FALSE(test.Grid().Run().HasPending());
  test.m_Host.m_bDragging = false;
  g_nSolverTimers = 1;
  test.m_History.Request(UserStep::Undo);
  test.m_Host.m_bDragging = true;
  test.Grid().UpdateGrid();
  EXPECT_EQ(test.Grid().GetSelectedHeight(), 9);
}

TEST(EditHistoryTest, WithATickRegisteredAStepWaitsForIt) {
  CTestHistory test;
  Prepare(test);
  test.Grid().SetSelectedHeight(9);
  g_nSolverTimers = 1;
  test.Undo();
  EXPECT_EQ(test.Grid().GetSelectedHeight(), 9);
  test.Grid().UpdateGrid();
  EXPECT_EQ(test.Grid().GetSelectedHeight(), -2);
  EXPECT_FALSE(test.Grid().Run().HasPending());
}

TEST(EditHistoryTest, AKeyThatWaitsIsPerformedBeforeItIsTakenBack) {
  CTestHistory test;
  Prepare(test);
  const CDocument before = DocumentOf(test.Grid());
  g_nSolverTimers = 1;
  test.Grid().CellEdits().SplitSelected();
  EXPECT_TRUE(test.m_History.CanUndo());
  test.m_History.Request(UserStep::Undo);
  test.Grid().UpdateGrid();
  EXPECT_TRUE(DocumentOf(test.Grid()) == before);
  EXPECT_EQ(test.Taken(), Lines{"undone split cells"});
  test.Grid().UpdateGrid();
  EXPECT_TRUE(DocumentOf(test.Grid()) == before);
}

TEST(EditHistoryTest, ACurveThatTheRebuildOpensBelongsToItsStep) {
  CTestHistory test;
  Prepare(test);
  Pick(test.Grid());
  CContourAttributes attributes;
  attributes.m_bClosed = true;
  test.Grid().CurveEdits().SetAttributes(test.Grid().Constraints().FindCurve(4, 22, 1), 0, attributes, kTear, false);
  test.Round();
  const CDocument closed = DocumentOf(test.Grid());
  Pick(test.Grid());
  test.Grid().DeleteSelectedCurveNode();
  test.Round();
  EXPECT_FALSE(test.Grid().Constraints().Curves().back().IsClosed());
  const CDocument open = DocumentOf(test.Grid());
  test.Undo();
  EXPECT_TRUE(DocumentOf(test.Grid()) == closed);
  test.Redo();
  EXPECT_TRUE(DocumentOf(test.Grid()) == open);
}

TEST(EditHistoryTest, ACurveThatTheRebuildDropsLeavesNoStep) {
  CTestHistory test;
  Prepare(test);
  test.Grid().AddCurve(PointsAt({{1, 21}}), kTear, false);
  EXPECT_EQ(test.Count(), 1U);
  test.Round();
  EXPECT_EQ(test.Count(), 0U);
}

TEST(EditHistoryTest, AnAnswerWithConstraintsToExportIsOneStep) {
  CTestHistory test;
  Prepare(test);
  CContourAnswer answer;
  answer.m_Attributes.m_bLeftAutoBump = true;
  answer.m_Attributes.m_aAutoBumps[0] = {1.0, 20.0};
  answer.m_bExport = true;
  test.m_Services.m_AskContourAttributes = [&](const CContourAttributes&, bool) { return answer; };
  test.m_Commands.SetServices(test.m_Services);
  const std::size_t points = test.Grid().Constraints().Points().size();
  const CDocument before = DocumentOf(test.Grid());
  test.m_Commands.EditCurveAttributes(4, 22, kTear);
  test.Round();
  EXPECT_GT(test.Grid().Constraints().Points().size(), points);
  EXPECT_EQ(test.Count(), 1U);
  EXPECT_EQ(test.m_History.UndoName(), "export constraints");
  test.Undo();
  EXPECT_TRUE(DocumentOf(test.Grid()) == before);
}

TEST(EditHistoryTest, WhatIsKeptIsBounded) {
  CTestHistory test;
  Prepare(test);
  for (int k = 0; k < 500; ++k) test.Grid().SetSelectedHeight(k);
  EXPECT_EQ(test.Count(), 500U);
  EXPECT_LT(test.m_History.Steps().Bytes(), CEditHistory::kMostBytes);
  CEditHistory small(
      test.m_Host, test.m_Test.m_Solver, [] { return 0.0; }, 30'000);
  test.m_History.Detach();
  small.AttachGrid(test.Grid());
  for (int k = 0; k < 50; ++k) test.Grid().SetSelectedHeight(1000 + k);
  EXPECT_LE(small.Steps().Bytes(), 30'000U);
  EXPECT_GT(small.Steps().UndoCount(), 2U);
  EXPECT_LT(small.Steps().UndoCount(), 50U);
}
