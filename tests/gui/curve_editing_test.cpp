// Finished curves under the mouse and the keys of the image view.

#include <vector>

#include "support/gui/CurveEditingTest.h"

namespace {

using Numbers = std::vector<int>;

}  // namespace

// Highlighting and picking.

TEST_F(CurveEditingTest, HoveringHighlightsNodesAndTheirCurves) {
  Add(kBent);
  Add({{20.5, 21.25}, {20.5, 70.5}}, kFair);
  EXPECT_EQ(Move(20.5, 20.5), 1);
  EXPECT_EQ(Highlights(Curves()), "1:100 1:10");
  EXPECT_GT(m_Host.m_iImageRedraws, 0);
  SendAt(FL_ENTER, 60.5, 70.5);
  EXPECT_EQ(Highlights(Curves()), "1:001 0:00");
  Move(40.5, 20.5);
  EXPECT_EQ(Highlights(Curves()), "0:000 0:00") << "between two nodes";
}

TEST_F(CurveEditingTest, LeftClickPicksTheCurveAndTakesItsType) {
  Add(kBent, kCrease);
  Click(60.5, 20.5);
  EXPECT_EQ(Selection(Curves()), "1:010");
  EXPECT_EQ(View().CurveType(), CurveType::kNormal);
  EXPECT_EQ(m_Host.m_aiCurveTypes, Numbers{2});
  EXPECT_TRUE(IsIdle());
  EXPECT_EQ(Grid().Run().NextOperation(), Operation::kRebuildMaps);
  EXPECT_EQ(CodeOf(Operation::kRebuildMaps), 4);
  EXPECT_EQ(TakeConsole(), kPushLine);
}

TEST_F(CurveEditingTest, RepeatedClicksStepThroughAPile) {
  Add({{20.5, 20.5}, {60.5, 20.5}}, kTear);
  Add({{20.5, 20.5}, {60.5, 70.5}}, kFair);
  for (const auto& [selection, type] : {std::pair{"0:00 1:10", 4}, {"1:10 0:00", 1}, {"0:00 1:10", 4}}) {
    Click(20.5, 20.5);
    EXPECT_EQ(Selection(Curves()), selection);
    EXPECT_EQ(static_cast<int>(View().CurveType()), type);
  }
}

TEST_F(CurveEditingTest, ClickOnNothingUnselectsAndBeginsACurve) {
  Add(kBent);
  Click(60.5, 20.5);
  Click(90.5, 90.5);
  EXPECT_EQ(Selection(Curves()), "0:000");
  EXPECT_EQ(Pending(), 1U);
}

TEST_F(CurveEditingTest, LeftDragMovesThePickedNodeAlone) {
  Add(kBent);
  Push(kLeftButton, 60.5, 21.5);  // a pixel beside the node
  EXPECT_EQ(Drag(70.5, 31.5), 1);
  ExpectPlaces({kBent[0], {70.5, 30.5}, kBent[2]}, PlacesOf(Curve()));
  EXPECT_EQ(Grid().Run().NextOperation(), Operation::kNone) << "not before the release";
  EXPECT_GT(m_Host.m_iModelRedraws, 0);
  Release();
  EXPECT_EQ(Grid().Run().NextOperation(), Operation::kRebuildMaps);
  Drag(10.5, 10.5);
  ExpectPlaces({kBent[0], {70.5, 30.5}, kBent[2]}, PlacesOf(Curve()));
}

TEST_F(CurveEditingTest, BorderHoldsADraggedNodeUntilTheMouseIsBack) {
  Add(kBent);
  Push(kLeftButton, 60.5, 20.5);
  Drag(60.5, -40.5);
  EXPECT_NEAR(PlacesOf(Curve())[1][1], 0.1, 1e-9);
  Drag(60.5, 30.5);
  ExpectPlaces({kBent[0], {60.5, 30.5}, kBent[2]}, PlacesOf(Curve()));
}

TEST_F(CurveEditingTest, OtherButtonsDragNothing) {
  Add(kBent);
  View().SetCurveType(CurveType::kPosition);
  for (const int button : {kMiddleButton, kRightButton}) {
    Push(button, 60.5, 20.5);
    Drag(70.5, 30.5);
    Release(button);
    ExpectPlaces(kBent, PlacesOf(Curve()));
    EXPECT_EQ(Grid().Run().NextOperation(), Operation::kRebuildMaps);
    Settle();
  }
}

TEST_F(CurveEditingTest, EndOfTheDragLetsTheMoveTakeEffect) {
  Add(kBent);
  Push(kLeftButton, 60.5, 20.5);
  View().EndDrag();
  EXPECT_EQ(Grid().Run().NextOperation(), Operation::kNone) << "nothing was moved";
  Push(kLeftButton, 60.5, 20.5);
  Drag(70.5, 30.5);
  View().SetMode(EditingMode::Position);
  EXPECT_EQ(Grid().Run().NextOperation(), Operation::kRebuildMaps);
  Settle();
  View().SetMode(EditingMode::Curve);
  Drag(10.5, 10.5);
  Release();
  EXPECT_EQ(Grid().Run().NextOperation(), Operation::kNone);
}

TEST_F(CurveEditingTest, NodeOfAnUnselectedCurveIsDraggedNoFurther) {
  Add(kBent);
  Push(kLeftButton, 60.5, 20.5);
  Grid().UnselectAll();
  EXPECT_EQ(Drag(70.5, 30.5), 1);
  ExpectPlaces(kBent, PlacesOf(Curve()));
}

TEST_F(CurveEditingTest, MiddleButtonGivesTheCurveTheCurrentType) {
  Add(kBent, kTear);
  View().SetCurveType(CurveType::kFairness);
  Push(kMiddleButton, 60.5, 20.5);
  EXPECT_EQ(Curve().Type(), kFair);
  EXPECT_EQ(View().CurveType(), CurveType::kFairness);
  EXPECT_TRUE(m_Host.m_aiCurveTypes.empty());
  Release(kMiddleButton);
  EXPECT_EQ(Grid().Run().NextOperation(), Operation::kRebuildMaps);
}

TEST_F(CurveEditingTest, MiddleButtonWithoutATypeDoesNothing) {
  Add(kBent, kTear);
  EXPECT_EQ(Push(kMiddleButton, 60.5, 20.5), 1);
  Release(kMiddleButton);
  EXPECT_EQ(Curve().Type(), kTear);
  EXPECT_EQ(Selection(Curves()), "0:000");
  EXPECT_EQ(Grid().Run().NextOperation(), Operation::kNone);
}

TEST_F(CurveEditingTest, RightButtonAsksForTheAttributesAtThePress) {
  Add(kBent, kCrease);
  View().SetCurveType(CurveType::kPosition);
  Push(kRightButton, 60.5, 21.5);
  EXPECT_EQ(TakeConsole(), kPushLine + "Fl::event_button() == FL_RIGHT_MOUSE\n");
  ASSERT_EQ(m_Host.m_aAttributePlaces.size(), 1U);
  EXPECT_NEAR(m_Host.m_aAttributePlaces[0].x, 60.5, 1e-9);
  EXPECT_NEAR(m_Host.m_aAttributePlaces[0].y, 21.5, 1e-9);
  EXPECT_EQ(View().CurveType(), CurveType::kPosition) << "unlike a left click";
  EXPECT_TRUE(m_Host.m_aiCurveTypes.empty());
  EXPECT_EQ(Curve().Type(), kCrease);
}

TEST_F(CurveEditingTest, RightButtonWorksWhileACurveIsInProgress) {
  Add({{80.5, 20.5}, {80.5, 70.5}});
  Begin();
  Click(80.5, 20.5, kRightButton);
  EXPECT_EQ(m_Host.m_aAttributePlaces.size(), 1U);
  EXPECT_EQ(Pending(), 2U);
}

TEST_F(CurveEditingTest, ReleaseKeepsTheRequestForAttributes) {
  Add(kBent);
  Push(kRightButton, 60.5, 20.5);
  Grid().Run().Post(Operation::kContourAttributes);
  Release(kRightButton);
  EXPECT_EQ(Grid().Run().NextOperation(), Operation::kContourAttributes);
}

// Keys.

TEST_F(CurveEditingTest, LettersChooseTheType) {
  Add(kBent);
  for (const auto& [key, type] : {std::pair{+'f', 4}, {+'n', 2}, {+'p', 1}}) {
    Click(60.5, 20.5);
    m_Host = {};
    EXPECT_EQ(Key(key), 1);
    EXPECT_EQ(static_cast<int>(View().CurveType()), type);
    EXPECT_EQ(m_Host.m_aiCurveTypes, Numbers{type});
    EXPECT_EQ(Selection(Curves()), "0:000");
  }
}

TEST_F(CurveEditingTest, LettersWithModifiersAreTheMenus) {
  for (const int key : {+'f', +'n', +'p'}) {
    for (const int modifier : {FL_CTRL, FL_ALT, FL_META}) EXPECT_EQ(Key(key, modifier), 0);
    EXPECT_EQ(View().CurveType(), CurveType::kNone);
  }
  EXPECT_EQ(Key('p', FL_SHIFT), 1);
  EXPECT_EQ(View().CurveType(), CurveType::kPosition);
}

TEST_F(CurveEditingTest, BackSpaceDeletesTheSelectedNode) {
  Add(kBent);
  Click(60.5, 20.5);
  Settle();
  EXPECT_EQ(Key(FL_BackSpace), 1);
  ExpectPlaces({kBent[0], kBent[2]}, PlacesOf(Curve()));
  EXPECT_EQ(Grid().Run().NextOperation(), Operation::kRebuildMaps);
  Settle();
  Key(FL_BackSpace);
  EXPECT_EQ(Curve().Nodes().size(), 2U) << "nothing is selected";
  EXPECT_EQ(Grid().Run().NextOperation(), Operation::kRebuildMaps) << "all the same";
}

TEST_F(CurveEditingTest, DeleteDeletesTheSelectedCurve) {
  Add(kBent);
  Add({{80.5, 20.5}, {80.5, 70.5}});
  Click(60.5, 20.5);
  Settle();
  EXPECT_EQ(Key(FL_Delete), 1);
  ASSERT_EQ(Curves().size(), 1U);
  EXPECT_EQ(Curve().Nodes().size(), 2U);
  EXPECT_EQ(Grid().Run().NextOperation(), Operation::kRebuildMaps);
}

TEST_F(CurveEditingTest, DeletedNodeIsDraggedNoMore) {
  Add(kBent);
  for (const int key : {FL_BackSpace, FL_Delete}) {
    Push(kLeftButton, 20.5, 20.5);
    Key(key);
    Settle();
    Drag(50.5, 50.5);
    Release();
    EXPECT_EQ(Grid().Run().NextOperation(), Operation::kNone);
    if (!Curves().empty()) ExpectPlaces({kBent[1], kBent[2]}, PlacesOf(Curve()));
    Curves().clear();
    Add(kBent);
  }
}

TEST_F(CurveEditingTest, OtherKeysAndTheWheelAreSomebodyElses) {
  for (const int key : {static_cast<int>('a'), FL_F + 1, FL_Insert}) EXPECT_EQ(Key(key), 0);
  EXPECT_EQ(Wheel(1), 0);
}

TEST_F(CurveEditingTest, ShiftDragMovesTheViewAndAddsNoPoint) {
  Push(kLeftButton, 20.5, 20.5, FL_SHIFT);
  Drag(30.5, 20.5);
  Release();
  EXPECT_TRUE(IsIdle());
  EXPECT_EQ(m_Host.m_iPauses, 1);
}

TEST_F(CurveEditingTest, KeysOfCurvesAreNoneInOtherModes) {
  View().SetMode(EditingMode::Position);
  EXPECT_EQ(Key('p'), 0);
  EXPECT_EQ(Key(FL_Enter), 0);
  EXPECT_EQ(View().CurveType(), CurveType::kNone);
}
