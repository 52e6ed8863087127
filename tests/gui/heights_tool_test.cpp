// Heights along a curve as a tool of the window: what its panel begins with, follows and places.

#include <cmath>
#include <iterator>
#include <stdexcept>
#include <string>
#include <vector>

#include <FL/Fl_Check_Button.H>
#include <FL/Fl_Choice.H>
#include <FL/Fl_Output.H>

#include "app/CToolSet.h"
#include "model/HeightsAlong.h"
#include "support/CurveBuilders.h"
#include "support/FileBuilders.h"
#include "support/UpdateBuilders.h"
#include "support/gui/Widgets.h"
#include "support/gui/WindowTest.h"
#include "ui/dialogs/CNumberInput.h"

namespace {

class HeightsToolTest : public WindowTest {
 protected:
  // A curve from left to right in the middle of the model.
  static constexpr double kCurveY = 47;

  void SetUp() override {
    ASSERT_NO_FATAL_FAILURE(ShowWindow());
    Grid().Initialize(3, false, 0, 0, 100, 100);
    Grid().PerformPendingWork();
  }
  void TearDown() override {
    if (Fl_Window* panel = Found()) panel->hide();
  }

  void AddCurve(CurveType type, double to = 80) {
    AddCurveThrough(Grid(), type, {{20, kCurveY}, {to, kCurveY}});
    Grid().PerformPendingWork();
  }
  static Fl_Window* Found() {
    for (Fl_Window* window = Fl::first_window(); window != nullptr; window = Fl::next_window(window)) {
      if (window->label() != nullptr && std::string(window->label()) == "Heights along a curve") return window;
    }
    return nullptr;
  }
  static Fl_Window& Panel() {
    if (Fl_Window* panel = Found()) return *panel;
    throw std::runtime_error("the panel is not open");
  }
  void Open() { Menu().Choose(MenuEntry::HeightsAlongCurve); }
  static double Number(const char* field) { return Find<CNumberInput>(Panel(), field).Number().value_or(std::nan("")); }
  static std::string Text(const char* field) { return Find<Fl_Output>(Panel(), field).value(); }
  bool Comes(const char* field, const std::string& text) {
    const bool comes = RunToolkitUntil([&] { return Text(field) == text; });
    EXPECT_TRUE(comes) << field << ": " << Text(field);
    return comes;
  }
  static void Fill(const char* field, const char* text) { ::Type(Find<CNumberInput>(Panel(), field), text); }
  static void Choose(const char* field, int row) {
    auto& choice = Find<Fl_Choice>(Panel(), field);
    choice.value(row);
    choice.do_callback();
  }
  double BesideATear() {
    const CLattice& lattice = Grid().Surface().Lattice();
    return 1.5 * 5 / 7 * std::hypot(lattice.StepX(), lattice.StepY());
  }
  // What it places lies so far to the left of the curve, which goes to the right.
  std::vector<double> PlacedToTheLeft() {
    const std::size_t before = Grid().Constraints().Points().size();
    Press(Find<Fl_Button>(Panel(), "Place"));
    std::vector<double> sides;
    for (const CPtCstr& height : Grid().Constraints().Points()) sides.push_back(height.m_fY - kCurveY);
    sides.erase(sides.begin(), sides.begin() + static_cast<std::ptrdiff_t>(before));
    return sides;
  }
  void ExpectSides(const std::vector<double>& expected) {
    const std::vector<double> sides = PlacedToTheLeft();
    ASSERT_EQ(sides.size(), expected.size());
    for (std::size_t k = 0; k < sides.size(); ++k) EXPECT_NEAR(sides[k], expected[k], 1e-9) << k;
  }

  CToolSet m_Tools{m_Window, Grid()};
};

}  // namespace

TEST_F(HeightsToolTest, BeginsBesideATearAtTheMeanAndThenAtTheHeightSetLast) {
  AddCurve(kTear);
  SetSurface(Grid(), CRamp{0.5, -0.25, 3});
  const double mean = MeanHeight(Grid().Surface());
  Open();
  EXPECT_EQ(Text("Curve"), "tear, open, 60 long");
  EXPECT_EQ(Find<Fl_Choice>(Panel(), "Divided by").value(), 0);
  EXPECT_EQ(Number("Number"), static_cast<double>(CHeightsAlong().m_Steps.m_uCount));
  EXPECT_NEAR(Number("First height"), mean, 1e-9);
  EXPECT_EQ(Number("Last height"), Number("First height"));
  EXPECT_EQ(Find<Fl_Check_Button>(Panel(), "Follow the surface").value(), 0);
  EXPECT_EQ(Find<Fl_Choice>(Panel(), "Side").value(), 0);
  EXPECT_DOUBLE_EQ(Number("Distance beside it"), BesideATear());
  Panel().hide();
  Grid().AddPtCstr({50, 90, PtCstrKind::kPosition, 1});
  Grid().PointEdits().SelectNumber(0);
  Grid().SetSelectedHeight(7.25);
  Open();
  EXPECT_EQ(Number("First height"), 7.25);
  EXPECT_EQ(Number("Last height"), 7.25);
}

TEST_F(HeightsToolTest, LeftAndRightAreThoseOfTheWay) {
  AddCurve(kTear);
  const double beside = BesideATear();
  Open();
  Fill("Number", "3");
  ASSERT_TRUE(Comes("Would be placed", "3 heights"));
  ExpectSides({beside, beside, beside});
  EXPECT_EQ(Found(), nullptr) << "it closes";
  Open();
  Fill("Number", "2");
  Choose("Side", 1);
  Fill("Distance beside it", "21.5");
  ASSERT_TRUE(Comes("Would be placed", "2 heights"));
  ExpectSides({-21.5, -21.5});
  Open();
  EXPECT_DOUBLE_EQ(Number("Distance beside it"), beside) << "a panel that has been closed begins anew";
  Fill("Number", "2");
  Choose("Side", 2);
  ASSERT_TRUE(Comes("Would be placed", "4 heights"));
  ExpectSides({beside, beside, -beside, -beside});
}

TEST_F(HeightsToolTest, TellsHowManyAreLeftOut) {
  AddCurve(kTear, 120);
  Open();
  Fill("Number", "6");
  ASSERT_TRUE(Comes("Would be placed", "4 heights, 2 left out")) << "those at 100 and 120";
  Fill("Distance beside it", "0");
  ASSERT_TRUE(Comes("Would be placed", "0 heights, 6 left out")) << "on the tear itself";
  EXPECT_FALSE(Find<Fl_Button>(Panel(), "Place").active());
  Fill("Distance beside it", "21");
  ASSERT_TRUE(Comes("Would be placed", "4 heights, 2 left out"));
  EXPECT_EQ(PlacedToTheLeft().size(), 4U);
  EXPECT_EQ(std::string(HelpLine().value()), FormatHelp(HelpText::kHeightsAlongBut, {"4", "2"}));
}

TEST_F(HeightsToolTest, FollowsTheSurfaceAndGoesByDistance) {
  AddCurve(kCrease);
  Open();
  EXPECT_EQ(Text("Curve"), "crease, open, 60 long");
  EXPECT_EQ(Number("Distance beside it"), 0);
  Choose("Divided by", 1);
  Fill("Distance", "15");
  ASSERT_TRUE(Comes("Would be placed", "5 heights"));
  auto& follow = Find<Fl_Check_Button>(Panel(), "Follow the surface");
  follow.value(1);
  follow.do_callback();
  EXPECT_FALSE(Find<CNumberInput>(Panel(), "First height").active());
  EXPECT_FALSE(Find<CNumberInput>(Panel(), "Last height").active());
  SetSurface(Grid(), CRamp{0.5, -0.25, 3});
  Press(Find<Fl_Button>(Panel(), "Place"));
  double x = 20;
  for (const CPtCstr& height : Grid().Constraints().Points()) {
    EXPECT_NEAR(height.m_fX, x, 1e-9);
    EXPECT_NEAR(height.m_fZ, 3 + 0.5 * x - 0.25 * kCurveY, 1e-9);
    x += 15;
  }
  EXPECT_EQ(x, 95);
}

TEST_F(HeightsToolTest, KeepsWhatIsTypedWhenItIsAskedForAgain) {
  AddCurve(kTear);
  Open();
  Fill("Distance beside it", "23.5");
  Fill("Number", "4");
  ASSERT_TRUE(Comes("Would be placed", "4 heights"));
  Open();
  EXPECT_EQ(Number("Distance beside it"), 23.5);
  EXPECT_EQ(Number("Number"), 4);
  EXPECT_EQ(Text("Would be placed"), "4 heights");
}

TEST_F(HeightsToolTest, TheCurveThatChangesIsTheOneToldAndKeepsTheDistance) {
  AddCurve(kTear);
  Open();
  Fill("Distance beside it", "23.5");
  Grid().CurveEdits().SelectNumber(0, 1);
  Grid().CurveEdits().PlaceSelectedNode(60, kCurveY);
  EXPECT_TRUE(Comes("Curve", "tear, open, 40 long"));
  EXPECT_EQ(Number("Distance beside it"), 23.5);
}

TEST_F(HeightsToolTest, AnotherTypeHasItsOwnDistance) {
  AddCurve(kCrease);
  Open();
  Fill("Number", "3");
  ASSERT_TRUE(Comes("Would be placed", "3 heights"));
  Grid().CurveEdits().SelectNumber(0, 0);
  Grid().CurveEdits().SetSelectedType(kTear);
  Grid().PerformPendingWork();
  EXPECT_TRUE(Comes("Curve", "tear, open, 60 long"));
  EXPECT_DOUBLE_EQ(Number("Distance beside it"), BesideATear());
  EXPECT_TRUE(Comes("Would be placed", "3 heights"));
}

TEST_F(HeightsToolTest, AllOfThemAreOneStepOfUndo) {
  AddCurve(kCrease);
  Open();
  Fill("Number", "6");
  Fill("First height", "4");
  Fill("Last height", "9");
  ASSERT_TRUE(Comes("Would be placed", "6 heights"));
  EXPECT_EQ(PlacedToTheLeft().size(), 6U);
  EXPECT_EQ(std::string(HelpLine().value()), FormatHelp(HelpText::kHeightsAlong, {"6"}));
  const auto become = [&](std::size_t count) {
    return RunToolkitUntil([&] { return Grid().Constraints().Points().size() == count; });
  };
  Menu().Choose(MenuEntry::Undo);
  EXPECT_TRUE(become(0));
  EXPECT_EQ(std::string(HelpLine().value()), "Undone: heights along a curve");
  EXPECT_EQ(Grid().Constraints().Curves().size(), 1U);
  Menu().Choose(MenuEntry::Redo);
  ASSERT_TRUE(become(6));
  EXPECT_EQ(Grid().Constraints().Points().begin()->m_fZ, 4);
  EXPECT_EQ(std::prev(Grid().Constraints().Points().end())->m_fZ, 9);
  EXPECT_EQ(Grid().LastHeight(), 9);
}

TEST_F(HeightsToolTest, AClosedCurveGetsNoneTwice) {
  Grid().AddCurve(std::vector<CPtCstr>{{20, 20}, {80, 20}, {80, 80}, {20, 80}}, kFair, true);
  Grid().PerformPendingWork();
  Open();
  EXPECT_EQ(Text("Curve"), "fairness, closed, 240 long");
  ASSERT_TRUE(Comes("Would be placed", "8 heights"));
  Press(Find<Fl_Button>(Panel(), "Place"));
  const std::vector<CPlanePoint> expected{{20, 20}, {50, 20}, {80, 20}, {80, 50},
                                          {80, 80}, {50, 80}, {20, 80}, {20, 50}};
  ASSERT_EQ(Grid().Constraints().Points().size(), expected.size());
  std::size_t k = 0;
  for (const CPtCstr& height : Grid().Constraints().Points()) {
    EXPECT_NEAR(height.m_fX, expected[k].x, 1e-9) << k;
    EXPECT_NEAR(height.m_fY, expected[k].y, 1e-9) << k;
    ++k;
  }
}

TEST_F(HeightsToolTest, SaysWhyNothingWouldBePlaced) {
  Open();
  EXPECT_EQ(Text("Curve"), "none yet");
  EXPECT_EQ(Text("Would be placed"), "0 heights");
  EXPECT_FALSE(Find<Fl_Button>(Panel(), "Place").active());
  AddCurve(kCrease);
  ASSERT_TRUE(Comes("Would be placed", "8 heights"));
  EXPECT_TRUE(Find<Fl_Button>(Panel(), "Place").active());
  struct CCase {
    const char* m_pField;
    const char* m_pWrong;
    const char* m_pSound;
    const char* m_pReason;
  };
  const auto refuses = [&](const CCase& c) {
    Fill(c.m_pField, c.m_pWrong);
    EXPECT_TRUE(Comes("Would be placed", c.m_pReason)) << c.m_pField << ' ' << c.m_pWrong;
    EXPECT_FALSE(Find<Fl_Button>(Panel(), "Place").active());
    Fill(c.m_pField, c.m_pSound);
  };
  for (const char* wrong : {"0", "2.5", "10001", "-3", "ten"})
    refuses({"Number", wrong, "8", "1 to 10000 heights are possible"});
  refuses({"First height", "x", "1", "a height is no number"});
  refuses({"Last height", "", "1", "a height is no number"});
  refuses({"Distance beside it", "-1", "0", "the distance beside must be 0 or more"});
  ASSERT_TRUE(Comes("Would be placed", "8 heights"));
  Choose("Divided by", 1);
  for (const char* wrong : {"0", "-5", "x"}) refuses({"Distance", wrong, "20", "the distance must be above 0"});
  EXPECT_TRUE(Comes("Would be placed", "4 heights"));
}
