// Curves in progress under the mouse and the keys of the image view.

#include <string>
#include <vector>

#include "support/gui/CurveEditingTest.h"
#include "ui/seams/HelpTexts.h"

namespace {

using Numbers = std::vector<int>;

}  // namespace

TEST_F(CurveEditingTest, FirstClickBeginsACurve) {
  EXPECT_TRUE(IsIdle());
  Move(20.5, 20.5);
  EXPECT_EQ(PushWithoutHovering(kLeftButton, 20.5, 20.5), 1);
  EXPECT_EQ(TakeConsole(), kPushLine);
  EXPECT_EQ(m_Host.m_aiHelps, Numbers{HelpText::kCurveInProgress});
  EXPECT_EQ(HelpText::kCurveInProgress, 8);
  EXPECT_FALSE(IsIdle());
  EXPECT_EQ(Pending(), 1U);
  EXPECT_EQ(Grid().Constraints().PendingCurve().Points()[0].m_uKind, 0U);
  EXPECT_EQ(Release(), 1);
  Click(40.5, 20.5);
  EXPECT_EQ(m_Host.m_aiHelps.size(), 1U) << "the text stays";
  EXPECT_EQ(Grid().Run().NextOperation(), Operation::kNone) << "nothing is held, so the release posts nothing";
}

TEST_F(CurveEditingTest, PointsAreKeptOffTheBorder) {
  View().SetCurveType(CurveType::kPosition);
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
    EXPECT_EQ(Grid().Run().NextOperation(), Operation::kNewCurve);
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
  EXPECT_FALSE(Grid().Constraints().PendingCurve().ClosesOnValidate());
}

TEST_F(CurveEditingTest, EnterOnTheFirstPointClosesTheClickedPointsOnly) {
  Begin();
  Click(60.5, 70.5);
  Move(20.5, 21.5);
  EXPECT_TRUE(Grid().Constraints().PendingCurve().ClosesOnValidate());
  Key(FL_Enter);
  ExpectPlaces(kBent, PlacesOf(Curve()));
  EXPECT_TRUE(Curve().IsClosed());
  EXPECT_FALSE(Grid().Constraints().PendingCurve().ClosesOnValidate());
}

TEST_F(CurveEditingTest, ShiftEnterAfterOneClickMakesATwoPointOpenCurve) {
  View().SetCurveType(CurveType::kFairness);
  Click(20.5, 20.5);
  Move(60.5, 70.5);
  Key(FL_Enter, FL_SHIFT);
  EXPECT_EQ(Curve().Nodes().size(), 2U);
  EXPECT_FALSE(Curve().IsClosed());
}

TEST_F(CurveEditingTest, SinglePointMakesNoCurve) {
  View().SetCurveType(CurveType::kPosition);
  Click(20.5, 20.5);
  Move(20.5, 20.5);
  Key(FL_Enter);
  EXPECT_TRUE(Curves().empty());
  EXPECT_TRUE(IsIdle());
  EXPECT_EQ(m_Host.m_aiHelps, (Numbers{8, 4}));
  EXPECT_EQ(Grid().Run().NextOperation(), Operation::kNone);
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
  Begin(CurveType::kNone);
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
  EXPECT_FALSE(Grid().Constraints().PendingCurve().ClosesOnValidate()) << "no curve in progress";
  Begin();
  for (const auto& [x, y, closes] : {std::tuple{20.5, 20.5, true}, {21.5, 21.5, false}, {20.5, 19.5, true}}) {
    Move(x, y);
    EXPECT_EQ(Grid().Constraints().PendingCurve().ClosesOnValidate(), closes) << x << ", " << y;
  }
  Key(FL_Escape);
  EXPECT_FALSE(Grid().Constraints().PendingCurve().ClosesOnValidate());
}

TEST_F(CurveEditingTest, CurveUnderTheMouseLeavesClosingAsItIs) {
  Add({{80.5, 20.5}, {80.5, 70.5}});
  Begin();
  Move(20.5, 20.5);
  Move(80.5, 20.5);
  EXPECT_TRUE(Grid().Constraints().PendingCurve().ClosesOnValidate());
}

TEST_F(CurveEditingTest, PressOnACurveAppendsWhileOneIsInProgress) {
  Add({{80.5, 20.5}, {80.5, 70.5}}, kFair);
  Begin(kTear);
  m_Host = {};
  Click(80.5, 20.5);
  EXPECT_EQ(Pending(), 3U);
  EXPECT_EQ(Selection(Curves()), "0:00");
  EXPECT_EQ(View().CurveType(), CurveType::kPosition);
  EXPECT_TRUE(m_Host.m_aiCurveTypes.empty());
  EXPECT_EQ(Grid().Run().NextOperation(), Operation::kNone);
}

TEST_F(CurveEditingTest, OtherButtonsOnNothingAddNoPoint) {
  for (const int button : {kMiddleButton, kRightButton}) {
    View().SetCurveType(CurveType::kPosition);
    Click(30.5, 30.5, button);
    EXPECT_TRUE(IsIdle());
    Begin();
    Click(30.5, 30.5, button);
    EXPECT_EQ(Pending(), 2U);
    Key(FL_Escape);
  }
  EXPECT_EQ(Grid().Run().NextOperation(), Operation::kNone);
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
  View().SetCurveType(CurveType::kPosition);
  for (int k = 0; k < 4; ++k) Click(20.5, 20.5);
  Move(60.5, 20.5);
  Key(FL_Enter, FL_SHIFT);
  EXPECT_EQ(Curve().Nodes().size(), 5U);
  Grid().PerformPendingWork();
  for (const double z : Grid().Surface().Lattice().Heights()) EXPECT_TRUE(std::isfinite(z));
}
