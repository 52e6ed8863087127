// The window of the numbers of what is selected, by mouse and keyboard.

#include <string>

#include <FL/Fl_Box.H>
#include <FL/Fl_Check_Button.H>
#include <FL/Fl_Choice.H>

#include "editing/TypedNumber.h"
#include "support/GridBuilders.h"
#include "support/gui/PanelTest.h"
#include "ui/values/CValueField.h"
#include "ui/values/CValuesPanel.h"
#include "ui/values/ValuesCommands.h"

namespace {

class CTestCommands : public ValuesCommands {
 public:
  void TakeNextHeight(std::function<void()> ended) override { m_Ended = std::move(ended); }
  void DropNextHeight() override {
    if (const auto ended = std::exchange(m_Ended, nullptr)) ended();
  }
  void ValueChanged() override { ++m_iChanges; }
  bool IsChoosing() const override { return m_bChoosing; }

  std::function<void()> m_Ended;
  bool m_bChoosing = false;
  int m_iChanges = 0;
};

class ValuesPanelTest : public PanelTest {
 protected:
  ValuesPanelTest() { Grid().Initialize(2, false, 0, 0, 100, 100); }

  CGrid& Grid() { return m_Grid.m_Grid; }
  void Add(const CPtCstr& constraint) {
    Grid().AddPtCstr(constraint);
    Grid().PointEdits().SelectNumber(Grid().Constraints().Points().size() - 1);
    m_Panel.Refresh();
  }
  const CPtCstr& Point() { return *Grid().Constraints().Points().FirstSelected(); }
  CValueField& Field(const char* label) { return Find<CValueField>(m_Panel, label); }
  std::string Text(const char* label) { return Field(label).value(); }
  // Whether the panel says that somewhere.
  bool Says(const std::string& text) {
    for (const Fl_Widget* widget : WidgetsIn(m_Panel)) {
      if (widget->label() != nullptr && widget->label() == text) return true;
    }
    return false;
  }
  // In place of what the field has, without ending it.
  void TypeOver(const char* label, const std::string& text) {
    Field(label).take_focus();
    Field(label).position(Field(label).size(), 0);
    Field(label).replace(0, Field(label).size(), text.c_str());
    Field(label).set_changed();
  }
  void Key(const char* label, int key, int state = 0) {
    Fl::e_keysym = key;
    Fl::e_state = state;
    Fl::e_length = 0;
    static std::string none;
    Fl::e_text = none.data();
    Field(label).handle(FL_KEYBOARD);
    Fl::e_state = 0;
  }
  void Enter(const char* label, const std::string& text) {
    TypeOver(label, text);
    Key(label, FL_Enter);
  }

  CTestGrid m_Grid;
  CTestCommands m_Commands;
  int m_iClosed = 0;
  CValuesPanel m_Panel{Grid(), m_Commands, m_MainWindow, [this] { ++m_iClosed; }};
};

}  // namespace

TEST_F(ValuesPanelTest, FollowsTheSelection) {
  m_Panel.Refresh();
  EXPECT_TRUE(Says("Nothing is selected"));
  EXPECT_EQ(Field("x").active(), 0U);
  Add({20, 30, PtCstrKind::kPosition, 44.8});
  EXPECT_TRUE(Says("Position constraint"));
  EXPECT_EQ(Text("x") + ' ' + Text("y") + ' ' + Text("z") + Text("Tilt"), "20 30 44.8");
  EXPECT_EQ(Field("Tilt").active(), 0U);
  Add({25, 30, PtCstrKind::kNormal, 0, 0, -1});
  EXPECT_TRUE(Says("Normal constraint"));
  EXPECT_EQ(Text("Tilt") + ' ' + Text("Direction") + Text("z"), "45 270");
  Grid().AddCurve(std::vector<CPtCstr>{{20, 20}, {60, 20}, {60, 60}}, CurveType::kNormal, false);
  Grid().CurveEdits().SelectNumber(0, 1);
  m_Panel.Refresh();
  EXPECT_TRUE(Says("Node of a crease"));
  EXPECT_EQ(Text("x") + ' ' + Text("distance") + Text("p (dz/dx)"), "60 5");
  EXPECT_EQ(Find<Fl_Choice>(m_Panel, "Type").value(), 1);
}

TEST_F(ValuesPanelTest, TypedNumbersActAtReturnOrWhenTheFieldIsLeft) {
  Add({20, 30, PtCstrKind::kPosition, 5});
  m_Panel.Open();
  ASSERT_TRUE(Appears("Constraint values"));
  TypeOver("z", "12.25");
  EXPECT_EQ(Point().m_fZ, 5);
  m_Panel.Refresh();
  EXPECT_EQ(Text("z"), "12.25") << "nobody writes over it";
  Key("z", FL_Enter);
  EXPECT_EQ(Point().m_fZ, 12.25);
  TypeOver("x", "21.5");
  Field("y").take_focus();
  EXPECT_EQ(Point().m_fX, 21.5);
  TypeOver("z", "-3");
  m_Panel.hide();
  EXPECT_EQ(Point().m_fZ, -3) << "closing leaves the field";
  EXPECT_EQ(m_iClosed, 1);
}

// The wheel over the image view selects another constraint and leaves the field where it is.
TEST_F(ValuesPanelTest, TypedNumberIsThatOfWhatWasSelectedWhenItWasTyped) {
  for (const CPtCstr& c : {CPtCstr{20, 30, PtCstrKind::kPosition, 5}, CPtCstr{40, 30, PtCstrKind::kPosition, 5}})
    Add(c);
  const CPtCstrList& points = Grid().Constraints().Points();
  const CPtCstr& first = *points.begin();
  const CPtCstr& second = *std::next(points.begin());
  m_Panel.Open();
  ASSERT_TRUE(Appears("Constraint values"));
  TypeOver("z", "12");
  Grid().PointEdits().SelectNumber(0);
  Key("z", FL_Enter);
  EXPECT_EQ(second.m_fZ, 12);
  EXPECT_EQ(first.m_fZ, 5);
  EXPECT_EQ(points.FirstSelected(), &first);
  m_Panel.Refresh();
  TypeOver("z", "7");
  Grid().PointEdits().SelectNumber(1);
  m_Panel.Refresh();
  EXPECT_EQ(first.m_fZ, 7) << "as if the field had been left";
  EXPECT_EQ(Text("z"), "12");
  TypeOver("z", "high");
  Grid().PointEdits().SelectNumber(0);
  m_Panel.Refresh();
  EXPECT_TRUE(Says("That is no number"));
  EXPECT_EQ(Text("z"), "7");
  TypeOver("z", "99");
  Grid().UnselectAll();
  m_Panel.Refresh();
  EXPECT_EQ(first.m_fZ, 99);
  EXPECT_EQ(points.FirstSelected(), nullptr);
  m_Panel.hide();
}

TEST_F(ValuesPanelTest, TypedNumberOfANodeIsItsOwn) {
  Grid().AddCurve(std::vector<CPtCstr>{{20, 20}, {60, 20}, {60, 60}}, CurveType::kNormal, false);
  Grid().CurveEdits().SelectNumber(0, 1);
  m_Panel.Refresh();
  TypeOver("x", "50");
  Grid().CurveEdits().SelectNumber(0, 2);
  Key("x", FL_Enter);
  const CCntrCtrl& curve = *Grid().Constraints().Curves().begin();
  EXPECT_EQ(std::next(curve.Nodes().begin())->m_fX, 50);
  EXPECT_EQ(curve.Nodes().back().m_fX, 60);
  EXPECT_EQ(Grid().Constraints().Curves().SelectedNode().m_pNode, &curve.Nodes().back());
}

TEST_F(ValuesPanelTest, WhatWasTypedGoesWithItsConstraint) {
  for (const CPtCstr& c : {CPtCstr{20, 30, PtCstrKind::kPosition, 5}, CPtCstr{40, 30, PtCstrKind::kPosition, 5}})
    Add(c);
  TypeOver("z", "12");
  Grid().PointEdits().DeleteSelected();
  Key("z", FL_Enter);
  ASSERT_EQ(Grid().Constraints().Points().size(), 1U);
  EXPECT_EQ(Point().m_fZ, 5);
}

TEST_F(ValuesPanelTest, RubbishIsRefusedWithAWord) {
  Add({20, 30, PtCstrKind::kPosition, 5});
  Enter("z", "high");
  EXPECT_TRUE(Says("That is no number"));
  EXPECT_EQ(Text("z"), "5");
  Enter("x", "2000");
  EXPECT_TRUE(Says("x goes from 0.1 to 99.9"));
  EXPECT_EQ(Text("x"), "20");
  Enter("x", "40");
  EXPECT_FALSE(Says("x goes from 0.1 to 99.9"));
  EXPECT_EQ(Point().m_fX, 40);
  EXPECT_EQ(Point().m_fZ, 5);
  EXPECT_EQ(m_Commands.m_iChanges, 1) << "the refused ones have changed nothing";
}

TEST_F(ValuesPanelTest, EscapeBringsTheOldNumberBack) {
  Add({20, 30, PtCstrKind::kPosition, 5});
  TypeOver("z", "77");
  Key("z", FL_Escape);
  EXPECT_EQ(Text("z"), "5");
  Key("z", FL_Enter);
  EXPECT_EQ(Point().m_fZ, 5);
}

TEST_F(ValuesPanelTest, ArrowKeysAndTheWheelStep) {
  Add({20, 30, PtCstrKind::kPosition, 5});
  Key("z", FL_Up);
  EXPECT_EQ(Text("z"), "5.1");
  Key("z", FL_Down, FL_SHIFT);
  EXPECT_EQ(Text("z"), "4.1");
  Fl::e_x = Field("z").x() + 5;
  Fl::e_y = Field("z").y() + 5;
  Fl::e_dy = -2;
  Field("z").handle(FL_MOUSEWHEEL);
  EXPECT_EQ(Text("z"), "4.3");
  EXPECT_NEAR(Point().m_fZ, 4.3, 1e-12);
  TypeOver("z", "10");
  Key("z", FL_Up);
  EXPECT_EQ(Text("z"), "10.1") << "from what was typed";
}

TEST_F(ValuesPanelTest, NumbersHaveEnoughDigitsAtAnyUnit) {
  for (const double side : {0.001, 100000.0}) {
    Grid().Initialize(2, false, 0, 0, side, side);
    Add({side / 3, side / 7, PtCstrKind::kPosition, side / 11});
    EXPECT_NEAR(*TypedNumber(Text("x")) / (side / 3), 1, 1e-8) << side;
    EXPECT_NEAR(*TypedNumber(Text("z")) / (side / 11), 1, 1e-8) << side;
    const double x = Point().m_fX;
    Field("x").take_focus();
    Field("y").take_focus();
    EXPECT_EQ(Point().m_fX, x) << "a number that nobody changed stays to the last bit";
  }
}

TEST_F(ValuesPanelTest, CurveIsGivenAttributes) {
  Grid().AddCurve(std::vector<CPtCstr>{{20, 20}, {60, 20}, {60, 60}}, CurveType::kPosition, false);
  Grid().CurveEdits().SelectNumber(0, 1);
  m_Panel.Open();
  ASSERT_TRUE(Appears("Constraint values"));
  m_Panel.Refresh();
  Press(Find<Fl_Check_Button>(m_Panel, "closed"));
  const CCntrCtrl& curve = *Grid().Constraints().Curves().begin();
  EXPECT_TRUE(curve.IsClosed());
  auto& type = Find<Fl_Choice>(m_Panel, "Type");
  type.value(2);
  type.do_callback();
  EXPECT_EQ(curve.Type(), CurveType::kFairness);
  Enter("orientation", "30");
  EXPECT_EQ(curve.AutoBump(CurveSide::Left).m_fOrientation, 30);
  m_Panel.hide();
}

TEST_F(ValuesPanelTest, ButtonForTheSameHeightGoesUpOnceAHeightIsTaken) {
  Add({20, 30, PtCstrKind::kPosition, 5});
  m_Panel.Open();
  ASSERT_TRUE(Appears("Constraint values"));
  auto& button = Find<Fl_Button>(m_Panel, "Same height as ...");
  Press(button);
  EXPECT_TRUE(m_Commands.m_Ended != nullptr);
  m_Commands.DropNextHeight();
  EXPECT_EQ(button.value(), 0);
  Press(button);
  Press(button);
  EXPECT_TRUE(m_Commands.m_Ended == nullptr) << "pressed again nobody waits";
  Press(button);
  Grid().UnselectAll();
  m_Panel.Refresh();
  EXPECT_EQ(button.value(), 0) << "there is nothing to give a height to";
  m_Panel.hide();
}

TEST_F(ValuesPanelTest, ButtonsChangeTheGroup) {
  for (const CPtCstr& c : {CPtCstr{20, 20, PtCstrKind::kPosition, 1}, CPtCstr{40, 20, PtCstrKind::kPosition, 3}})
    Add(c);
  Grid().PointEdits().ChooseIn({0, 100, 0, 100});
  m_Panel.Open();
  ASSERT_TRUE(Appears("Constraint values"));
  m_Panel.Refresh();
  EXPECT_EQ(Find<Fl_Button>(m_Panel, "Raise").active(), 0U) << "nobody is choosing";
  m_Commands.m_bChoosing = true;
  m_Panel.Refresh();
  EXPECT_TRUE(Says("Chosen: 2 heights"));
  const CPtCstrList& points = Grid().Constraints().Points();
  const auto heights = [&] {
    std::string text;
    for (const CPtCstr& c : points) text += ShownNumber(c.m_fZ, 1) + ' ';
    return text;
  };
  Enter("by", "10");
  Press(Find<Fl_Button>(m_Panel, "Raise"));
  EXPECT_EQ(heights(), "11 13 ");
  Press(Find<Fl_Button>(m_Panel, "Scale about the mean"));
  EXPECT_EQ(heights(), "11 13 ") << "by 1 at first";
  Enter("to", "7");
  Press(Find<Fl_Button>(m_Panel, "Set to one height"));
  EXPECT_EQ(heights(), "7 7 ");
  Press(Find<Fl_Button>(m_Panel, "Delete the chosen"));
  EXPECT_TRUE(points.empty());
  m_Panel.hide();
}

TEST_F(ValuesPanelTest, WidgetsKeepInside) { ExpectInsideGroups(m_Panel); }
