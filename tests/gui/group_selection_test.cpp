// Choosing a group with the left button, presses that somebody waits for, and double clicks.

#include <optional>
#include <string>
#include <vector>

#include "support/ConstraintBuilders.h"
#include "support/gui/EditingTest.h"

namespace {

class GroupSelectionTest : public EditingTest {
 protected:
  GroupSelectionTest() : EditingTest(EditingMode::Position) {
    for (const CPlanePoint& place : {CPlanePoint{20.5, 20.5}, {40.5, 20.5}, {80.5, 80.5}})
      Add({place.x, place.y, PtCstrKind::kPosition, 5});
  }
  std::string Chosen() { return States(List(), PtCstrState::kChosen); }
  void ClickAt(double x, double y, int clicks = 0) {
    Fl::event_clicks(clicks);
    Push(FL_LEFT_MOUSE, x, y);
    Release();
    Fl::event_clicks(0);
  }
  void DragFrom(const CPlanePoint& from, const CPlanePoint& to, int state = 0) {
    Push(FL_LEFT_MOUSE, from.x, from.y, state);
    Drag(to.x, to.y);
    Release();
  }
};

class DoubleClickTest : public GroupSelectionTest {
 protected:
  int Opened() const { return m_Host.m_iValuesOpened; }
};

}  // namespace

TEST_F(GroupSelectionTest, LeftButtonChoosesAndDoesNothingElse) {
  View().SetChoosing(true);
  DragFrom({10.5, 10.5}, {50.5, 50.5});
  EXPECT_EQ(Chosen(), "110");
  ClickAt(80.5, 80.5);
  EXPECT_EQ(Chosen(), "111");
  ClickAt(20.5, 20.5);
  EXPECT_EQ(Chosen(), "011");
  ClickAt(60.5, 60.5);
  EXPECT_EQ(Chosen(), "011") << "there is none";
  EXPECT_EQ(List().size(), 3U) << "and none is made";
  EXPECT_EQ(Selection(List()), "000");
  EXPECT_EQ(RecordAt(List(), 0).m_fX, 20.5);
}

TEST_F(GroupSelectionTest, OtherButtonsAndShiftStayTheViews) {
  View().SetChoosing(true);
  Push(FL_RIGHT_MOUSE, 20.5, 20.5);
  Drag(30.5, 20.5);
  Release(FL_RIGHT_MOUSE);
  EXPECT_NEAR(RecordAt(List(), 0).m_fZ, 15, 1e-9);
  DragFrom({10.5, 10.5}, {50.5, 50.5}, FL_SHIFT);
  EXPECT_EQ(Chosen(), "000");
  EXPECT_NE(View().Mapping().PanNow().x, 0);
}

TEST_F(GroupSelectionTest, DeleteIsForTheSelectedOne) {
  SetSelection(List(), "001");
  View().SetChoosing(true);
  DragFrom({10.5, 10.5}, {50.5, 50.5});
  Key(FL_Delete);
  EXPECT_EQ(Chosen(), "11");
}

TEST_F(GroupSelectionTest, EscapeOnlyEndsIt) {
  SetSelection(List(), "001");
  View().SetChoosing(true);
  EXPECT_EQ(Key(FL_Escape), 1);
  EXPECT_EQ(m_Host.m_iChoosingEnds, 1);
  EXPECT_EQ(Selection(List()), "001");
}

TEST_F(GroupSelectionTest, SwitchedOffNobodyIsChosen) {
  View().SetChoosing(true);
  DragFrom({10.5, 10.5}, {50.5, 50.5});
  View().SetChoosing(false);
  EXPECT_EQ(Chosen(), "000");
  ClickAt(60.5, 60.5);
  EXPECT_EQ(List().size(), 4U);
}

TEST_F(GroupSelectionTest, PressThatIsWaitedForDoesNothingElse) {
  std::vector<std::optional<CPlanePoint>> taken;
  bool done = false;
  View().TakeNextPress([&](const std::optional<CPlanePoint>& place) {
    taken.push_back(place);
    return done;
  });
  DragFrom({60.5, 60.5}, {70.5, 70.5});
  done = true;
  ClickAt(20.5, 20.5);
  EXPECT_EQ(taken.size(), 2U);
  ASSERT_TRUE(taken.back().has_value());
  EXPECT_NEAR(taken.back()->x, 20.5, 1e-9);
  EXPECT_NEAR(taken.back()->y, 20.5, 1e-9);
  EXPECT_EQ(List().size(), 3U);
  EXPECT_EQ(Selection(List()), "000");
  ClickAt(20.5, 20.5);
  EXPECT_EQ(Selection(List()), "100") << "that was all";
}

TEST_F(GroupSelectionTest, EscapeEndsTheWaitAndNothingElse) {
  SetSelection(List(), "001");
  bool told = false;
  View().TakeNextPress([&](const std::optional<CPlanePoint>& place) { return told = !place.has_value(); });
  EXPECT_EQ(Key(FL_Escape), 1);
  EXPECT_TRUE(told);
  EXPECT_EQ(Selection(List()), "001");
  Key(FL_Escape);
  EXPECT_EQ(Selection(List()), "000");
}

TEST_F(DoubleClickTest, OnAConstraintOpensItsValues) {
  ClickAt(20.5, 20.5);
  EXPECT_EQ(Opened(), 0);
  ClickAt(20.5, 20.5, 1);
  EXPECT_EQ(Opened(), 1);
  EXPECT_EQ(Selection(List()), "100");
  ClickAt(20.5, 20.5, 2);
  EXPECT_EQ(Opened(), 2);
}

TEST_F(DoubleClickTest, OnAPileShowsWhatTheSecondClickSelects) {
  Add({20.5, 20.5, PtCstrKind::kPosition, 6});
  ClickAt(20.5, 20.5);
  EXPECT_EQ(Selection(List()), "0001");
  ClickAt(20.5, 20.5, 1);
  EXPECT_EQ(Opened(), 1);
  EXPECT_EQ(Selection(List()), "1000");
}

TEST_F(DoubleClickTest, OnWhatTheFirstClickMadeOpensNothing) {
  ClickAt(60.5, 60.5);
  ClickAt(60.5, 60.5, 1);
  EXPECT_EQ(Opened(), 0);
  EXPECT_EQ(List().size(), 4U);
  ClickAt(60.5, 60.5, 2);
  EXPECT_EQ(Opened(), 1) << "it was there before the second one";
}

TEST_F(DoubleClickTest, WithADragInItOpensNothing) {
  DragFrom({20.5, 20.5}, {22.5, 20.5});
  ClickAt(22.5, 20.5, 1);
  EXPECT_EQ(Opened(), 0);
  ClickAt(40.5, 20.5);
  Fl::event_clicks(1);
  DragFrom({40.5, 20.5}, {44.5, 20.5});
  EXPECT_EQ(Opened(), 0);
}

TEST_F(DoubleClickTest, WithAPressThatTheViewTakesBetweenOpensNothing) {
  ClickAt(20.5, 20.5);
  Push(FL_LEFT_MOUSE, 20.5, 20.5, FL_SHIFT);
  Release();
  ClickAt(20.5, 20.5, 2);
  EXPECT_EQ(Opened(), 0);
  ClickAt(20.5, 20.5, 3);
  EXPECT_EQ(Opened(), 1);
}

TEST_F(DoubleClickTest, TwoSlowClicksOpenNothing) {
  ClickAt(20.5, 20.5);
  ClickAt(20.5, 20.5);
  EXPECT_EQ(Opened(), 0);
}

TEST_F(DoubleClickTest, OnANodeOpensUnlessACurveIsInProgress) {
  View().SetMode(EditingMode::Curve);
  Grid().AddCurve(std::vector<CPtCstr>{{20.5, 60.5}, {60.5, 60.5}}, CurveType::kPosition, false);
  ClickAt(60.5, 60.5);
  ClickAt(60.5, 60.5, 1);
  EXPECT_EQ(Opened(), 1);
  ClickAt(30.5, 30.5);
  ClickAt(60.5, 60.5);
  ClickAt(60.5, 60.5, 1);
  EXPECT_EQ(Opened(), 1);
}
