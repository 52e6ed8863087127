#include <array>
#include <string>
#include <tuple>

#include "support/gui/EditingTest.h"

namespace {

class PositionEditingTest : public EditingTest {
 protected:
  PositionEditingTest() : EditingTest(EditingMode::Position) {}
};

class NormalEditingTest : public EditingTest {
 protected:
  NormalEditingTest() : EditingTest(EditingMode::Normal) {}
};

// Both kinds follow the same rules of selection.
struct CKind {
  EditingMode m_Mode;
  std::uint32_t m_uKind;
  const char* m_pKeyLine;
};

class CommonEditingTest : public EditingTest, public ::testing::WithParamInterface<CKind> {
 protected:
  CommonEditingTest() : EditingTest(GetParam().m_Mode) {}
  // One of the kind that is edited, and one of the other kind.
  static CPtCstr Own(double x, double y) { return {x, y, GetParam().m_uKind}; }
  static CPtCstr Other(double x, double y) { return {x, y, 3 - GetParam().m_uKind}; }
};

}  // namespace

INSTANTIATE_TEST_SUITE_P(Kinds, CommonEditingTest,
                         ::testing::Values(CKind{EditingMode::Position, PtCstrKind::kPosition,
                                                 "CImageView::HandlePtPosCstr : FL_KEYBOARD\n"},
                                           CKind{EditingMode::Normal, PtCstrKind::kNormal, ""}),
                         [](const auto& kind) {
                           return std::string(kind.param.m_Mode == EditingMode::Position ? "Position" : "Normal");
                         });

TEST_P(CommonEditingTest, HoveringHighlightsWhatIsWithinReach) {
  Add(Own(20.5, 20.5));
  Add(Own(60.5, 20.5));
  Add(Other(20.5, 20.5));
  EXPECT_EQ(Move(20.5, 21.5), 1);
  EXPECT_EQ(Highlights(List()), "100");
  EXPECT_GT(m_Host.m_iImageRedraws, 0);
  Move(21.5, 21.5);
  EXPECT_EQ(Highlights(List()), "000");
  SendAt(FL_ENTER, 60.5, 20.5);
  EXPECT_EQ(Highlights(List()), "010");
}

TEST_P(CommonEditingTest, ReachGrowsWithTheZoom) {
  Add(Own(51, 53));
  Add(Own(51, 53.1));
  g_fZoom = 2;
  // The pixel of p at zoom 1 now stands for 2 p - 50.
  Move(50.5, 50.5);
  EXPECT_EQ(Highlights(List()), "10");
}

TEST_P(CommonEditingTest, PressIsJudgedByTheHoverPosition) {
  Add(Own(20.5, 20.5));
  Move(20.5, 20.5);
  PushWithoutHovering(kLeftButton, 70.5, 70.5);
  EXPECT_EQ(Selection(List()), "1");
  EXPECT_EQ(List().size(), 1U);
}

TEST_P(CommonEditingTest, RepeatedClicksStepThroughAPile) {
  Add(Own(20.5, 20.5));
  Add(Own(20.5, 20.5));
  for (const char* selection : {"01", "10", "01"}) {
    Push(kLeftButton, 20.5, 20.5);
    Release();
    EXPECT_EQ(Selection(List()), selection);
  }
}

TEST_P(CommonEditingTest, OtherButtonsOnNothingDoNothing) {
  Add(Own(20.5, 20.5));
  SetSelection(List(), "1");
  for (const int button : {kMiddleButton, kRightButton}) {
    EXPECT_EQ(Push(button, 70.5, 70.5), 1);
    EXPECT_EQ(Drag(80.5, 80.5), 1);
    EXPECT_EQ(Release(button), 1);
  }
  EXPECT_EQ(List().size(), 1U);
  EXPECT_EQ(Selection(List()), "1");
  EXPECT_EQ(Grid().Run().NextOperation(), Operation::kNone);
  ExpectPlace(At(0), 20.5, 20.5);
}

TEST_P(CommonEditingTest, MiddleButtonSelectsAndDragsNothing) {
  Add(Own(20.5, 20.5));
  Push(kMiddleButton, 20.5, 20.5);
  Drag(40.5, 40.5);
  EXPECT_EQ(Selection(List()), "1");
  ExpectPlace(At(0), 20.5, 20.5);
  EXPECT_EQ(Grid().Run().NextOperation(), Operation::kNone);
}

TEST_P(CommonEditingTest, LeftDragMovesWithTheMouse) {
  Add(Own(20.5, 20.5));
  Push(kLeftButton, 21.5, 20.5);
  m_Host = {};
  EXPECT_EQ(Drag(30.5, 25.5), 1);
  ExpectPlace(At(0), 29.5, 25.5);
  EXPECT_EQ(Grid().Run().NextOperation(), Operation::kRestart);
  EXPECT_GT(m_Host.m_iImageRedraws, 0);
  EXPECT_GT(m_Host.m_iModelRedraws, 0);
  Drag(40.5, 20.5);
  ExpectPlace(At(0), 39.5, 20.5);
}

TEST_P(CommonEditingTest, NothingIsDraggedOntoTheBorder) {
  Add(Own(20.5, 20.5));
  Push(kLeftButton, 21.5, 20.5);
  Drag(-80.5, 150.5);
  ExpectPlace(At(0), 0.1, 99.9);
  Drag(30.5, 25.5);
  ExpectPlace(At(0), 29.5, 25.5);
}

TEST_P(CommonEditingTest, ReleaseEndsTheDrag) {
  Add(Own(20.5, 20.5));
  Push(kLeftButton, 20.5, 20.5);
  EXPECT_EQ(Release(), 1);
  Drag(40.5, 40.5);
  ExpectPlace(At(0), 20.5, 20.5);
}

TEST_P(CommonEditingTest, DialogEndsTheDrag) {
  Push(kLeftButton, 20.5, 20.5);
  Settle();
  View().EndDrag();
  Drag(40.5, 40.5);
  EXPECT_EQ(Grid().Run().NextOperation(), Operation::kNone);
}

TEST_P(CommonEditingTest, PlacesAreHeldOffTheBorder) {
  PushWithoutHovering(kLeftButton, 100.5, -5.5);
  ASSERT_EQ(List().size(), 1U);
  ExpectPlace(At(0), 99.9, 0.1);
}

TEST_P(CommonEditingTest, CreationSelectsAndRebuilds) {
  Add(Other(20.5, 20.5));
  EXPECT_EQ(Push(kLeftButton, 20.5, 20.5), 1);
  ASSERT_EQ(List().size(), 2U);
  EXPECT_EQ(At(1).m_uKind, GetParam().m_uKind);
  ExpectPlace(At(1), 20.5, 20.5);
  EXPECT_NEAR(At(1).m_fZ, Ramp(20.5, 20.5), 1e-9);
  EXPECT_EQ(Selection(List()), "01");
  EXPECT_EQ(Grid().Run().NextOperation(), Operation::kRebuild);
  EXPECT_GT(m_Host.m_iImageRedraws, 0);
}

TEST_P(CommonEditingTest, KeysAreLoggedInPositionModeOnly) {
  for (const int key : {static_cast<int>('a'), FL_Tab, FL_Escape, FL_Delete}) {
    TakeConsole();
    Key(key);
    EXPECT_EQ(TakeConsole(), GetParam().m_pKeyLine) << key;
  }
}

TEST_P(CommonEditingTest, KeysSelectAndDelete) {
  struct CCase {
    int m_iKey;
    int m_iState;
    const char* m_pBefore;
    const char* m_pAfter;
  };
  // The second of the three is of the other kind.
  for (const CCase& c :
       {CCase{FL_Tab, 0, "100", "001"}, CCase{FL_Tab, 0, "001", "100"}, CCase{FL_Tab, 0, "000", "100"},
        CCase{FL_Tab, FL_SHIFT, "001", "100"}, CCase{FL_Tab, FL_SHIFT, "100", "001"},
        CCase{FL_Tab, FL_SHIFT, "000", "001"}, CCase{FL_Escape, 0, "001", "000"}, CCase{FL_Delete, 0, "100", "01"},
        CCase{FL_BackSpace, 0, "100", "01"}, CCase{FL_Delete, 0, "000", "000"}}) {
    List().clear();
    Add(Own(20.5, 20.5));
    Add(Other(30.5, 20.5));
    Add(Own(40.5, 20.5));
    SetSelection(List(), c.m_pBefore);
    EXPECT_EQ(Key(c.m_iKey, c.m_iState), 1);
    EXPECT_EQ(Selection(List()), c.m_pAfter) << c.m_iKey << " from " << c.m_pBefore;
    EXPECT_GT(m_Host.m_iImageRedraws, 0);
  }
}

TEST_P(CommonEditingTest, TabFindsNothingAmongTheOtherKind) {
  Add(Other(20.5, 20.5));
  EXPECT_EQ(Key(FL_Tab), 1);
  EXPECT_EQ(Selection(List()), "0");
}

TEST_P(CommonEditingTest, DeletingTheLastOfAKindSelectsNothing) {
  Add(Own(20.5, 20.5));
  Add(Other(30.5, 20.5));
  SetSelection(List(), "10");
  Key(FL_Delete);
  EXPECT_EQ(Selection(List()), "0");
  EXPECT_EQ(Grid().Run().NextOperation(), Operation::kRebuild);
}

TEST_P(CommonEditingTest, OtherKeysAreNotUsed) {
  for (const int key : {static_cast<int>('p'), static_cast<int>('n'), FL_Enter, FL_F + 1})
    EXPECT_EQ(Key(key), 0) << key;
  for (const char key : {'n', 'o', 's', 'e'}) EXPECT_EQ(Key(key, FL_ALT), 0) << key;
}

TEST_P(CommonEditingTest, WheelStepsThroughTheSelection) {
  for (const double x : {20.5, 40.5, 60.5}) Add(Own(x, 20.5));
  for (const auto& [dy, after] : {std::pair{1, "100"}, {1, "010"}, {3, "001"}, {-1, "010"}, {0, "100"}}) {
    EXPECT_EQ(Wheel(dy), 1);
    EXPECT_EQ(Selection(List()), after) << dy;
  }
  EXPECT_GT(m_Host.m_iImageRedraws, 0);
}

TEST_P(CommonEditingTest, DragDoesNotGoOnWithAnotherConstraint) {
  for (const int key : {FL_Delete, FL_Tab, FL_Escape}) {
    List().clear();
    Add(Own(20.5, 20.5));
    Add(Own(60.5, 60.5));
    Push(kLeftButton, 20.5, 20.5);
    Key(key);
    Settle();
    Drag(40.5, 40.5);
    EXPECT_EQ(Grid().Run().NextOperation(), Operation::kNone) << key;
  }
}

TEST_P(CommonEditingTest, ModeChangeClearsTheSelectionAndEndsTheDrag) {
  Push(kLeftButton, 20.5, 20.5);
  Settle();
  View().SetMode(GetParam().m_Mode);
  EXPECT_EQ(Selection(List()), "0");
  Drag(30.5, 30.5);
  EXPECT_EQ(Grid().Run().NextOperation(), Operation::kNone);
}

TEST_P(CommonEditingTest, CurveTypeClearsTheSelection) {
  Push(kLeftButton, 20.5, 20.5);
  View().SetCurveType(CurveType::kNormal);
  EXPECT_EQ(Selection(List()), "0");
  EXPECT_EQ(View().CurveType(), CurveType::kNormal);
}

TEST_F(PositionEditingTest, CreationAndDragSetTheHeight) {
  Push(kLeftButton, 20.5, 20.5);
  const double height = At(0).m_fZ;
  EXPECT_EQ(Drag(25.5, 18.5), 1);
  EXPECT_NEAR(At(0).m_fZ, height + 5 - 2, 1e-9);
  EXPECT_NE(Grid().Run().NextOperation(), Operation::kNone);
  ExpectPlace(At(0), 20.5, 20.5);
  Drag(10.5, 20.5);
  EXPECT_NEAR(At(0).m_fZ, height - 10, 1e-9);
}

TEST_F(PositionEditingTest, SecondPressMovesWhatTheFirstCreated) {
  Push(kLeftButton, 20.5, 20.5);
  Drag(25.5, 20.5);
  Release();
  const double height = At(0).m_fZ;
  Push(kLeftButton, 20.5, 20.5);
  Drag(30.5, 20.5);
  ExpectPlace(At(0), 30.5, 20.5);
  EXPECT_EQ(At(0).m_fZ, height);
}

TEST_F(PositionEditingTest, RightDragChangesTheHeightFromThePress) {
  Add(HeightCstr(20.5, 20.5, 7));
  Push(kRightButton, 21.5, 20.5);
  m_Host = {};
  Drag(31.5, 30.5);
  EXPECT_NEAR(At(0).m_fZ, 7 + 20, 1e-9);
  EXPECT_EQ(Grid().Run().NextOperation(), Operation::kRestart);
  EXPECT_GT(m_Host.m_iImageRedraws, 0);
  Drag(21.5, 20.5);
  EXPECT_NEAR(At(0).m_fZ, 7, 1e-9);
  ExpectPlace(At(0), 20.5, 20.5);
}

TEST_F(PositionEditingTest, HeightDragGoesBeyondTheExtent) {
  Add(HeightCstr(20.5, 20.5, 0));
  Push(kRightButton, 20.5, 20.5);
  Drag(220.5, 20.5);
  EXPECT_NEAR(At(0).m_fZ, 200, 1e-9);
}

TEST_F(PositionEditingTest, MovingKeepsTheHeight) {
  Add(HeightCstr(20.5, 20.5, 7));
  Push(kLeftButton, 20.5, 20.5);
  Drag(50.5, 50.5);
  EXPECT_EQ(At(0).m_fZ, 7);
}

TEST_F(PositionEditingTest, MovedConstraintKnowsItsDiscontinuity) {
  MakeLeaf(Grid().Surface().Tree(), 2, 3, 3, CellFlag::kTriangles);
  Add(HeightCstr(20.5, 20.5, 7));
  Push(kLeftButton, 20.5, 20.5);
  Drag(90.5, 90.5);
  EXPECT_TRUE(At(0).HasKind(PtCstrKind::kDisabled));
  Drag(20.5, 20.5);
  EXPECT_FALSE(At(0).HasKind(PtCstrKind::kDisabled));
}

TEST_F(NormalEditingTest, CreationIsLogged) {
  Push(kLeftButton, 20.5, 30.5);
  EXPECT_EQ(TakeConsole(), "Creation d'une nouvelle contrainte : 20.5, 30.5\n");
  EXPECT_EQ(At(0).m_fP, 0);
  EXPECT_EQ(At(0).m_fQ, 0);
}

TEST_F(NormalEditingTest, HoveringSwitchesTheGridOnAndRedrawsBothViews) {
  View().SetDisplayFlags(ImageFlag::kPointConstraints);
  m_Host = {};
  Move(20.5, 20.5);
  EXPECT_EQ(View().DisplayFlags(), ImageFlag::kPointConstraints | ImageFlag::kGrid);
  EXPECT_GT(m_Host.m_iImageRedraws, 0);
  EXPECT_GT(m_Host.m_iModelRedraws, 0);
}

TEST_F(PositionEditingTest, HoveringLeavesTheFlagsAlone) {
  View().SetDisplayFlags(ImageFlag::kPointConstraints);
  Move(20.5, 20.5);
  EXPECT_EQ(View().DisplayFlags(), ImageFlag::kPointConstraints);
}

TEST_F(NormalEditingTest, CreationAndDragTiltAgainstTheMovement) {
  Push(kLeftButton, 20.5, 20.5);
  EXPECT_EQ(Drag(25.5, 18.5), 1);
  EXPECT_NEAR(At(0).m_fP, -5 / 2.5, 1e-9);
  EXPECT_NEAR(At(0).m_fQ, 2 / 2.5, 1e-9);
  ExpectPlace(At(0), 20.5, 20.5);
}

TEST_F(NormalEditingTest, RightDragTiltsStepByStep) {
  Add(SlopeCstr(20.5, 20.5, 1, 1));
  Push(kRightButton, 21.5, 20.5);
  m_Host = {};
  Drag(31.5, 25.5);
  EXPECT_NEAR(At(0).m_fP, 1 - 4, 1e-9);
  EXPECT_NEAR(At(0).m_fQ, 1 - 2, 1e-9);
  EXPECT_EQ(Grid().Run().NextOperation(), Operation::kRestart);
  EXPECT_GT(m_Host.m_iImageRedraws, 0);
  EXPECT_GT(m_Host.m_iModelRedraws, 0);
  Drag(21.5, 20.5);
  EXPECT_NEAR(At(0).m_fP, 1, 1e-9);
  EXPECT_NEAR(At(0).m_fQ, 1, 1e-9);
}

TEST_F(NormalEditingTest, MovedConstraintTakesTheHeightOfItsNewPlace) {
  Add(SlopeCstr(20.5, 20.5, 1, 1));
  Push(kLeftButton, 20.5, 20.5);
  Drag(50.5, 40.5);
  EXPECT_NEAR(At(0).m_fZ, Ramp(50.5, 40.5), 1e-9);
  EXPECT_EQ(At(0).m_fP, 1);
}
