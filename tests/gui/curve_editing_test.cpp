// Curves under the mouse and the keys of the image view.

#include <string>
#include <vector>

#include "support/CurveBuilders.h"
#include "support/gui/ImageViewTest.h"
#include "ui/seams/HelpTexts.h"

namespace {

using Numbers = std::vector<int>;

constexpr int kLeftButton = FL_LEFT_MOUSE;
constexpr int kMiddleButton = FL_MIDDLE_MOUSE;
constexpr int kRightButton = FL_RIGHT_MOUSE;
constexpr std::uint32_t kTear = CurveType::kPosition;
constexpr std::uint32_t kCrease = CurveType::kNormal;
constexpr std::uint32_t kFair = CurveType::kFairness;
const std::string kPushLine = "CImageView::HandleCurveCstr\t\t\tFL_PUSH\n";

class CurveEditingTest : public ImageViewTest {
 protected:
  CurveEditingTest() {
    Attach();
    View().SetMode(EditingMode::Curve);
    Settle();
  }
  // Nothing is pending or remembered afterwards.
  void Settle() {
    Grid().PerformPendingWork();
    TakeConsole();
    m_Host = {};
  }
  CCntrCtrlList& Curves() { return Grid().Curves(); }
  CCntrCtrl& Curve(int place = 0) { return CurveAt(Curves(), place); }
  void Add(const CPlaces& places, std::uint32_t type = kTear, bool closed = false) {
    Grid().AddCurve(PointsAt(places), type, closed);
    Settle();
  }
  void Click(double x, double y, int button = kLeftButton) {
    Push(button, x, y);
    Release(button);
  }
  // Two points of a curve of the type, and the mouse somewhere else.
  void Begin(std::uint32_t type = kTear) {
    View().SetCurveType(static_cast<int>(type));
    Click(20.5, 20.5);
    Click(60.5, 20.5);
    Move(60.5, 70.5);
  }
  std::size_t Pending() { return Grid().PendingCurve().Points().size(); }
  bool IsIdle() { return Grid().PendingCurve().IsIdle(); }
  void ExpectPlaces(const CPlaces& places, const CPlaces& actual) {
    ASSERT_EQ(actual.size(), places.size());
    for (std::size_t k = 0; k < places.size(); ++k) {
      EXPECT_NEAR(actual[k][0], places[k][0], 1e-9) << k;
      EXPECT_NEAR(actual[k][1], places[k][1], 1e-9) << k;
    }
  }
};

const CPlaces kBent{{20.5, 20.5}, {60.5, 20.5}, {60.5, 70.5}};

}  // namespace

// Drawing.

TEST_F(CurveEditingTest, FirstClickBeginsACurve) {
  EXPECT_TRUE(IsIdle());
  Move(20.5, 20.5);
  EXPECT_EQ(PushWithoutHovering(kLeftButton, 20.5, 20.5), 1);
  EXPECT_EQ(TakeConsole(), kPushLine);
  EXPECT_EQ(m_Host.m_aiHelps, Numbers{HelpText::kCurveInProgress});
  EXPECT_EQ(HelpText::kCurveInProgress, 8);
  EXPECT_FALSE(IsIdle());
  EXPECT_EQ(Pending(), 1U);
  EXPECT_EQ(Grid().PendingCurve().Points()[0].m_uKind, 0U);
  EXPECT_EQ(Release(), 1);
  Click(40.5, 20.5);
  EXPECT_EQ(m_Host.m_aiHelps.size(), 1U) << "the text stays";
  EXPECT_EQ(Grid().NextOperation(), Operation::kNone) << "nothing is held, so the release posts nothing";
}

TEST_F(CurveEditingTest, PointsAreKeptOffTheBorder) {
  View().SetCurveType(1);
  PushWithoutHovering(kLeftButton, -20, 200);
  Move(300, -7);
  Key(FL_Enter);
  ExpectPlaces({{0.1, 99.9}, {99.9, 0.1}}, PlacesOf(Curve()));
}

TEST_F(CurveEditingTest, EnterAfterTwoClicksMakesAnOpenCurveOfThree) {
  for (const int enter : {FL_Enter, FL_KP_Enter}) {
    Begin(kCrease);
    TakeConsole();
    m_Host = {};
    EXPECT_EQ(Key(enter), 1);
    EXPECT_EQ(TakeConsole(), "CCntrCtrl creation\ncontour with 3 nodes added \n");
    EXPECT_EQ(Grid().NextOperation(), 1024);
    ExpectPlaces(kBent, PlacesOf(Curve()));
    EXPECT_FALSE(Curve().IsClosed());
    EXPECT_EQ(Curve().Type(), kCrease);
    EXPECT_EQ(m_Host.m_aiHelps, Numbers{HelpText::kCurves});
    EXPECT_EQ(HelpText::kCurves, 4);
    EXPECT_TRUE(IsIdle());
    EXPECT_EQ(Pending(), 0U);
    Curves().clear();
    Settle();
  }
}

TEST_F(CurveEditingTest, ShiftEnterClosesTheCurve) {
  Begin();
  Key(FL_Enter, FL_SHIFT);
  EXPECT_EQ(Curve().Nodes().size(), 3U);
  EXPECT_TRUE(Curve().IsClosed());
  EXPECT_FALSE(Grid().PendingCurve().ClosesOnValidate());
}

TEST_F(CurveEditingTest, EnterOnTheFirstPointClosesTheClickedPointsOnly) {
  Begin();
  Click(60.5, 70.5);
  Move(20.5, 21.5);
  EXPECT_TRUE(Grid().PendingCurve().ClosesOnValidate());
  Key(FL_Enter);
  ExpectPlaces(kBent, PlacesOf(Curve()));
  EXPECT_TRUE(Curve().IsClosed());
  EXPECT_FALSE(Grid().PendingCurve().ClosesOnValidate());
}

TEST_F(CurveEditingTest, ShiftEnterAfterOneClickMakesATwoPointOpenCurve) {
  View().SetCurveType(4);
  Click(20.5, 20.5);
  Move(60.5, 70.5);
  Key(FL_Enter, FL_SHIFT);
  EXPECT_EQ(Curve().Nodes().size(), 2U);
  EXPECT_FALSE(Curve().IsClosed());
}

TEST_F(CurveEditingTest, SinglePointMakesNoCurve) {
  View().SetCurveType(1);
  Click(20.5, 20.5);
  Move(20.5, 20.5);
  Key(FL_Enter);
  EXPECT_TRUE(Curves().empty());
  EXPECT_TRUE(IsIdle());
  EXPECT_EQ(m_Host.m_aiHelps, (Numbers{8, 4}));
  EXPECT_EQ(Grid().NextOperation(), Operation::kNone);
}

TEST_F(CurveEditingTest, EnterWithoutACurveOnlyUnselects) {
  Add(kBent);
  Click(20.5, 20.5);
  Settle();
  EXPECT_EQ(Selection(Curves()), "1:100");
  EXPECT_EQ(Key(FL_Enter), 1);
  EXPECT_EQ(Curves().size(), 1U);
  EXPECT_EQ(Selection(Curves()), "0:000");
  EXPECT_TRUE(IsIdle());
}

TEST_F(CurveEditingTest, EnterWithoutATypeAsksForOne) {
  Begin(0);
  EXPECT_EQ(Key(FL_Enter), 1);
  EXPECT_EQ(m_Host.m_aTold, std::vector{FormatHelp(HelpText::kCurveTypeWanted)});
  EXPECT_TRUE(Curves().empty());
  EXPECT_EQ(Pending(), 2U);
  EXPECT_FALSE(IsIdle());
  Key('n');
  EXPECT_EQ(Pending(), 2U);
  EXPECT_EQ(m_Host.m_iHelpsRestored, 1);
  Key(FL_Enter);
  ExpectPlaces(kBent, PlacesOf(Curve()));
  EXPECT_EQ(Curve().Type(), kCrease);
}

TEST_F(CurveEditingTest, EscapeForgetsTheCurveAndTheSelection) {
  Add({{80.5, 20.5}, {80.5, 70.5}});
  Click(80.5, 20.5);
  Begin();
  m_Host = {};
  EXPECT_EQ(Key(FL_Escape), 1);
  EXPECT_TRUE(IsIdle());
  EXPECT_EQ(Pending(), 0U);
  EXPECT_EQ(Selection(Curves()), "0:00");
  EXPECT_EQ(m_Host.m_aiHelps, Numbers{4});
  EXPECT_GT(m_Host.m_iImageRedraws, 0);
  EXPECT_EQ(Curves().size(), 1U);
}

TEST_F(CurveEditingTest, ClosingFollowsTheMouse) {
  Move(20.5, 20.5);
  EXPECT_FALSE(Grid().PendingCurve().ClosesOnValidate()) << "no curve in progress";
  Begin();
  for (const auto& [x, y, closes] : {std::tuple{20.5, 20.5, true}, {21.5, 21.5, false}, {20.5, 19.5, true}}) {
    Move(x, y);
    EXPECT_EQ(Grid().PendingCurve().ClosesOnValidate(), closes) << x << ", " << y;
  }
  Key(FL_Escape);
  EXPECT_FALSE(Grid().PendingCurve().ClosesOnValidate());
}

TEST_F(CurveEditingTest, CurveUnderTheMouseLeavesClosingAsItIs) {
  Add({{80.5, 20.5}, {80.5, 70.5}});
  Begin();
  Move(20.5, 20.5);
  Move(80.5, 20.5);
  EXPECT_TRUE(Grid().PendingCurve().ClosesOnValidate());
}

TEST_F(CurveEditingTest, PressOnACurveAppendsWhileOneIsInProgress) {
  Add({{80.5, 20.5}, {80.5, 70.5}}, kFair);
  Begin(kTear);
  m_Host = {};
  Click(80.5, 20.5);
  EXPECT_EQ(Pending(), 3U);
  EXPECT_EQ(Selection(Curves()), "0:00");
  EXPECT_EQ(View().CurveType(), 1);
  EXPECT_TRUE(m_Host.m_aiCurveTypes.empty());
  EXPECT_EQ(Grid().NextOperation(), Operation::kNone);
}

TEST_F(CurveEditingTest, OtherButtonsOnNothingAddNoPoint) {
  for (const int button : {kMiddleButton, kRightButton}) {
    View().SetCurveType(1);
    Click(30.5, 30.5, button);
    EXPECT_TRUE(IsIdle());
    Begin();
    Click(30.5, 30.5, button);
    EXPECT_EQ(Pending(), 2U);
    Key(FL_Escape);
  }
  EXPECT_EQ(Grid().NextOperation(), Operation::kNone);
  EXPECT_TRUE(m_Host.m_aAttributePlaces.empty());
}

TEST_F(CurveEditingTest, KeyKnowsWhereTheMouseIsBeforeItsMotionIsTold) {
  Begin();
  Click(60.5, 70.5);
  Fl::e_x = PixelX(20.5);
  Fl::e_y = PixelY(20.5);
  Key(FL_Enter);
  EXPECT_TRUE(Curve().IsClosed());
  ExpectPlaces(kBent, PlacesOf(Curve()));
}

TEST_F(CurveEditingTest, DoubleClickAndRepeatedPlacesAreNoTrouble) {
  View().SetCurveType(1);
  for (int k = 0; k < 4; ++k) Click(20.5, 20.5);
  Move(60.5, 20.5);
  Key(FL_Enter, FL_SHIFT);
  EXPECT_EQ(Curve().Nodes().size(), 5U);
  Grid().PerformPendingWork();
  for (const double z : Grid().Lattice().Heights()) EXPECT_TRUE(std::isfinite(z));
}

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
  EXPECT_EQ(View().CurveType(), 2);
  EXPECT_EQ(m_Host.m_aiCurveTypes, Numbers{2});
  EXPECT_TRUE(IsIdle());
  EXPECT_EQ(Grid().NextOperation(), Operation::kRebuildMaps);
  EXPECT_EQ(Operation::kRebuildMaps, 4);
  EXPECT_EQ(TakeConsole(), kPushLine);
}

TEST_F(CurveEditingTest, RepeatedClicksStepThroughAPile) {
  Add({{20.5, 20.5}, {60.5, 20.5}}, kTear);
  Add({{20.5, 20.5}, {60.5, 70.5}}, kFair);
  for (const auto& [selection, type] : {std::pair{"0:00 1:10", 4}, {"1:10 0:00", 1}, {"0:00 1:10", 4}}) {
    Click(20.5, 20.5);
    EXPECT_EQ(Selection(Curves()), selection);
    EXPECT_EQ(View().CurveType(), type);
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
  EXPECT_EQ(Grid().NextOperation(), Operation::kNone) << "not before the release";
  EXPECT_GT(m_Host.m_iModelRedraws, 0);
  Release();
  EXPECT_EQ(Grid().NextOperation(), Operation::kRebuildMaps);
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
  View().SetCurveType(1);
  for (const int button : {kMiddleButton, kRightButton}) {
    Push(button, 60.5, 20.5);
    Drag(70.5, 30.5);
    Release(button);
    ExpectPlaces(kBent, PlacesOf(Curve()));
    EXPECT_EQ(Grid().NextOperation(), Operation::kRebuildMaps);
    Settle();
  }
}

TEST_F(CurveEditingTest, EndOfTheDragLetsTheMoveTakeEffect) {
  Add(kBent);
  Push(kLeftButton, 60.5, 20.5);
  View().EndDrag();
  EXPECT_EQ(Grid().NextOperation(), Operation::kNone) << "nothing was moved";
  Push(kLeftButton, 60.5, 20.5);
  Drag(70.5, 30.5);
  View().SetMode(EditingMode::Position);
  EXPECT_EQ(Grid().NextOperation(), Operation::kRebuildMaps);
  Settle();
  View().SetMode(EditingMode::Curve);
  Drag(10.5, 10.5);
  Release();
  EXPECT_EQ(Grid().NextOperation(), Operation::kNone);
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
  View().SetCurveType(4);
  Push(kMiddleButton, 60.5, 20.5);
  EXPECT_EQ(Curve().Type(), kFair);
  EXPECT_EQ(View().CurveType(), 4);
  EXPECT_TRUE(m_Host.m_aiCurveTypes.empty());
  Release(kMiddleButton);
  EXPECT_EQ(Grid().NextOperation(), Operation::kRebuildMaps);
}

TEST_F(CurveEditingTest, MiddleButtonWithoutATypeDoesNothing) {
  Add(kBent, kTear);
  EXPECT_EQ(Push(kMiddleButton, 60.5, 20.5), 1);
  Release(kMiddleButton);
  EXPECT_EQ(Curve().Type(), kTear);
  EXPECT_EQ(Selection(Curves()), "0:000");
  EXPECT_EQ(Grid().NextOperation(), Operation::kNone);
}

TEST_F(CurveEditingTest, RightButtonAsksForTheAttributesAtThePress) {
  Add(kBent, kCrease);
  View().SetCurveType(1);
  Push(kRightButton, 60.5, 21.5);
  EXPECT_EQ(TakeConsole(), kPushLine + "Fl::event_button() == FL_RIGHT_MOUSE\n");
  ASSERT_EQ(m_Host.m_aAttributePlaces.size(), 1U);
  EXPECT_NEAR(m_Host.m_aAttributePlaces[0].x, 60.5, 1e-9);
  EXPECT_NEAR(m_Host.m_aAttributePlaces[0].y, 21.5, 1e-9);
  EXPECT_EQ(View().CurveType(), 1) << "unlike a left click";
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
  Grid().Post(Operation::kContourAttributes);
  Release(kRightButton);
  EXPECT_EQ(Grid().NextOperation(), 512);
}

// Keys.

TEST_F(CurveEditingTest, LettersChooseTheType) {
  Add(kBent);
  for (const auto& [key, type] : {std::pair{+'f', 4}, {+'n', 2}, {+'p', 1}}) {
    Click(60.5, 20.5);
    m_Host = {};
    EXPECT_EQ(Key(key), 1);
    EXPECT_EQ(View().CurveType(), type);
    EXPECT_EQ(m_Host.m_aiCurveTypes, Numbers{type});
    EXPECT_EQ(Selection(Curves()), "0:000");
  }
}

TEST_F(CurveEditingTest, LettersWithModifiersAreTheMenus) {
  for (const int key : {+'f', +'n', +'p'}) {
    for (const int modifier : {FL_CTRL, FL_ALT, FL_META}) EXPECT_EQ(Key(key, modifier), 0);
    EXPECT_EQ(View().CurveType(), 0);
  }
  EXPECT_EQ(Key('p', FL_SHIFT), 1);
  EXPECT_EQ(View().CurveType(), 1);
}

TEST_F(CurveEditingTest, BackSpaceDeletesTheSelectedNode) {
  Add(kBent);
  Click(60.5, 20.5);
  Settle();
  EXPECT_EQ(Key(FL_BackSpace), 1);
  ExpectPlaces({kBent[0], kBent[2]}, PlacesOf(Curve()));
  EXPECT_EQ(Grid().NextOperation(), 4);
  Settle();
  Key(FL_BackSpace);
  EXPECT_EQ(Curve().Nodes().size(), 2U) << "nothing is selected";
  EXPECT_EQ(Grid().NextOperation(), 4) << "all the same";
}

TEST_F(CurveEditingTest, DeleteDeletesTheSelectedCurve) {
  Add(kBent);
  Add({{80.5, 20.5}, {80.5, 70.5}});
  Click(60.5, 20.5);
  Settle();
  EXPECT_EQ(Key(FL_Delete), 1);
  ASSERT_EQ(Curves().size(), 1U);
  EXPECT_EQ(Curve().Nodes().size(), 2U);
  EXPECT_EQ(Grid().NextOperation(), 4);
}

TEST_F(CurveEditingTest, DeletedNodeIsDraggedNoMore) {
  Add(kBent);
  for (const int key : {FL_BackSpace, FL_Delete}) {
    Push(kLeftButton, 20.5, 20.5);
    Key(key);
    Settle();
    Drag(50.5, 50.5);
    Release();
    EXPECT_EQ(Grid().NextOperation(), Operation::kNone);
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
  EXPECT_EQ(View().CurveType(), 0);
}
