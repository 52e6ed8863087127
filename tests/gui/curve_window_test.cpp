// Curves and the manual subdivision in the main window: its buttons, its lamps, its help line, the dialog.

#include "support/CStaging.h"
#include "support/CurveBuilders.h"
#include "support/UpdateBuilders.h"
#include "support/gui/Input.h"
#include "support/gui/WindowTest.h"

namespace {

using Texts = std::vector<std::string>;

const char* const kIdleHelp = HelpTextOf(4);
const char* const kDrawingHelp = HelpTextOf(8);

// Over kOblong, -3.5..12.5 by 20..26.
class CurveWindowTest : public WindowTest {
 protected:
  CurveWindowTest() {
    m_Window.SetServices(Services());
    Grid().Run().SetRunning(false);
    // The mouse of the display must not enter a view of its own accord.
    MovePointer({0, 0});
    ShowWindow();
    ClickOn(Control::CurveConstraint);
    Send(FL_MOVE, 10, 21);
    View().take_focus();
    Settle();
  }
  void Settle() {
    Grid().PerformPendingWork();
    m_Grid.m_Console.Take();
  }
  CImageView& View() { return m_Window.ImageView(); }
  CCntrCtrlList& Curves() { return CStaging::Constraints(Grid()).Curves(); }
  CCntrCtrl& Curve(int place = 0) { return CurveAt(Curves(), place); }
  void Add(const CPlaces& places, CurveType type = kTear) {
    Grid().AddCurve(PointsAt(places), type, false);
    Settle();
  }
  void PlaceMouse(double x, double y) {
    const CExtent& e = Grid().Surface().Lattice().Extent();
    Fl::e_x = View().x() + static_cast<int>((x - e.x0) / (e.x1 - e.x0) * View().w());
    Fl::e_y = View().y() + static_cast<int>((e.y1 - y) / (e.y1 - e.y0) * View().h());
  }
  void Send(int event, double x, double y, int button = FL_LEFT_MOUSE) {
    PlaceMouse(x, y);
    Fl::e_keysym = event == FL_MOVE ? 0 : FL_Button + button;
    Fl::e_state = event == FL_PUSH || event == FL_DRAG ? FL_BUTTON1 << (button - 1) : 0;
    Fl::handle(event, &m_Window);
  }
  void Press(double x, double y, int button = FL_LEFT_MOUSE) {
    Send(FL_MOVE, x, y);
    Send(FL_PUSH, x, y, button);
  }
  void Click(double x, double y, int button = FL_LEFT_MOUSE) {
    Press(x, y, button);
    Send(FL_RELEASE, x, y, button);
  }
  void TypeAt(int key, double x, double y, int modifiers = 0) {
    PlaceMouse(x, y);
    Type(key, modifiers);
  }
  int Lamps() {
    return (IsOn(Control::PositionDiscontinuity) ? 1 : 0) + (IsOn(Control::NormalDiscontinuity) ? 2 : 0) +
           (IsOn(Control::FairnessConstraint) ? 4 : 0);
  }
  bool SettlesBy(auto condition) {
    return RunToolkitUntil([&] { return Grid().Run().NextOperation() == Operation::kNone && condition(); });
  }

  CGlobalScope<double> m_Zoom{g_fZoom, 1.0};
  CGlobalScope<double> m_Tolerance{g_fPickTolerance, 0.5};
};

const CPlaces kPath{{0, 22}, {4, 24}, {8, 22}};

}  // namespace

TEST_F(CurveWindowTest, CurvesAndSelectAreThereWithoutAnyService) {
  m_Window.SetServices({});
  for (const Control control : {Control::CurveConstraint, Control::FairnessConstraint, Control::Select})
    EXPECT_TRUE(IsActive(control));
  EXPECT_TRUE(Menu().IsActive(MenuEntry::DiscontinuityTexels));
  EXPECT_TRUE(Menu().IsActive(MenuEntry::TexelNormals));
}

TEST_F(CurveWindowTest, CurveIsDrawnWithTheMouseAndTheKeyboard) {
  EXPECT_STREQ(HelpLine().value(), kIdleHelp);
  ClickOn(Control::PositionDiscontinuity);
  EXPECT_EQ(View().CurveType(), CurveType::kPosition);
  Click(0, 22);
  EXPECT_STREQ(HelpLine().value(), kDrawingHelp);
  Click(4, 24);
  Send(FL_MOVE, 8, 22);
  TypeAt(FL_Enter, 8, 22);
  ASSERT_EQ(Curves().size(), 1U);
  EXPECT_EQ(Curve().Nodes().size(), 3U);
  EXPECT_NEAR(Curve().Nodes().back().m_fX, 8, 0.05);
  EXPECT_NEAR(Curve().Nodes().back().m_fY, 22, 0.05);
  EXPECT_STREQ(HelpLine().value(), kIdleHelp);
  EXPECT_EQ(m_Window.visible(), 1);
}

TEST_F(CurveWindowTest, EditingWithTheSolverStoppedShowsAtOnce) {
  const int before = Grid().Surface().Tree().LeafCount();
  m_Window.ImageView().SetCurveType(CurveType::kPosition);
  Click(0, 22);
  Send(FL_MOVE, 8, 24);
  TypeAt(FL_Enter, 8, 24);
  EXPECT_EQ(Grid().Run().NextOperation(), Operation::kNewCurve);
  EXPECT_TRUE(SettlesBy([&] { return Grid().Surface().Tree().LeafCount() > before; }));
  EXPECT_EQ(ReadOut(Control::CellCount), Grid().Surface().Tree().LeafCount());
}

TEST_F(CurveWindowTest, PointsClickedSinceTheCurveWasPostedStay) {
  RegisterSolverTimer(Grid());
  Grid().Run().SetRunning(true);
  m_Window.ImageView().SetCurveType(CurveType::kNormal);
  Click(0, 22);
  TypeAt(FL_Enter, 8, 24);
  ASSERT_EQ(Grid().Run().NextOperation(), Operation::kNewCurve);
  Click(2, 25);
  EXPECT_TRUE(SettlesBy([] { return true; }));
  EXPECT_EQ(Grid().Constraints().PendingCurve().Points().size(), 1U);
  EXPECT_EQ(Curves().size(), 1U);
}

TEST_F(CurveWindowTest, EnterWithoutATypeAsksInTheHelpLine) {
  Click(0, 22);
  TypeAt(FL_Enter, 8, 24);
  EXPECT_STREQ(HelpLine().value(), HelpTextOf(HelpText::kCurveTypeWanted));
  EXPECT_TRUE(Curves().empty());
  TypeAt('f', 8, 24);
  EXPECT_STREQ(HelpLine().value(), kDrawingHelp);
  EXPECT_EQ(Lamps(), 4);
  TypeAt(FL_Enter, 8, 24);
  EXPECT_EQ(Curve().Type(), kFair);
}

TEST_F(CurveWindowTest, HelpOfAButtonMakesWayForThatOfTheDrawing) {
  Click(0, 22);
  SendMouse(FL_MOVE, Control::ResetSolver);
  EXPECT_STREQ(HelpLine().value(), HelpTextOf(15));
  Send(FL_MOVE, 1, 22);
  EXPECT_STREQ(HelpLine().value(), kDrawingHelp);
}

TEST_F(CurveWindowTest, LampsFollowTheTypeOfThePickedCurve) {
  for (const CurveType type : {kTear, kCrease, kFair, kTear}) {
    Curves().clear();
    Add(kPath, type);
    Click(4, 24);
    EXPECT_EQ(Lamps(), static_cast<int>(type));
    EXPECT_EQ(View().CurveType(), type);
    EXPECT_EQ(Selection(Curves()), "1:010");
    Settle();
  }
}

TEST_F(CurveWindowTest, LampsFollowTheKeys) {
  EXPECT_EQ(Lamps(), 0);
  for (const auto& [key, type] : {std::pair{'p', 1}, {'n', 2}, {'f', 4}}) {
    TypeAt(key, 4, 24);
    EXPECT_EQ(Lamps(), type);
  }
}

TEST_F(CurveWindowTest, TypeButtonsUnselectAndKeepTheCurveInProgress) {
  Add(kPath);
  Click(4, 24);
  Settle();
  Click(0, 25);
  ClickOn(Control::FairnessConstraint);
  EXPECT_EQ(Selection(Curves()), "0:000");
  EXPECT_EQ(Grid().Constraints().PendingCurve().Points().size(), 1U);
}

TEST_F(CurveWindowTest, ModeButtonsDropTheCurveInProgress) {
  for (const Control mode : {Control::PositionConstraint, Control::NormalConstraint}) {
    ClickOn(Control::CurveConstraint);
    Click(0, 25);
    EXPECT_FALSE(Grid().Constraints().PendingCurve().IsIdle());
    ClickOn(mode);
    EXPECT_TRUE(Grid().Constraints().PendingCurve().IsIdle());
    EXPECT_EQ(HelpLine().CurrentHelp(), RowOf(mode).m_iHelp);
  }
}

TEST_F(CurveWindowTest, EscapeKeepsTheWindow) {
  Click(0, 25);
  TypeAt(FL_Escape, 0, 25);
  EXPECT_TRUE(Grid().Constraints().PendingCurve().IsIdle());
  EXPECT_EQ(m_Window.visible(), 1);
  EXPECT_STREQ(HelpLine().value(), kIdleHelp);
}

TEST_F(CurveWindowTest, NewGridPutsTheHelpBack) {
  CWindowServices services = Services();
  services.m_Model.m_AskNewGrid = [](const CGrid&) { return std::optional(CGridParameters{2, {0, 10, 0, 10}, false}); };
  m_Window.SetServices(services);
  Click(0, 25);
  Menu().Choose(MenuEntry::NewGrid);
  EXPECT_EQ(HelpLine().CurrentHelp(), 4);
}

// Contour Attributes.

TEST_F(CurveWindowTest, AttributesAreAskedForAtOnceWithNoTick) {
  Add(kPath, kCrease);
  Curve().SetDistance(CurveSide::Left, 2.5);
  std::next(Curve().Nodes().begin())->m_Weights = {1, 2, 3, 4};
  Click(4, 24, FL_RIGHT_MOUSE);
  EXPECT_EQ(m_asDone, Texts{"attributes"});
  EXPECT_EQ(m_Attributes.m_aAutoBumps[0].m_fDistance, 2.5);
  EXPECT_EQ(m_Attributes.m_Weights, (CNodeWeights{1, 2, 3, 4}));
  EXPECT_EQ(Curve().Type(), kCrease) << "cancelled";
}

TEST_F(CurveWindowTest, AttributesWaitForTheTick) {
  Add(kPath, kFair);
  RegisterSolverTimer(Grid());
  Grid().Run().SetRunning(true);
  Press(4, 24, FL_RIGHT_MOUSE);
  EXPECT_TRUE(m_asDone.empty());
  EXPECT_EQ(Grid().Run().NextOperation(), Operation::kContourAttributes);
  Send(FL_RELEASE, 4, 24, FL_RIGHT_MOUSE);
  EXPECT_EQ(Grid().Run().NextOperation(), Operation::kContourAttributes) << "the release posts nothing over it";
  EXPECT_TRUE(RunToolkitUntil([&] { return m_asDone == Texts{"fairness attributes"}; }));
}

TEST_F(CurveWindowTest, AttributesAreThoseOfTheClickEvenIfTheMouseHasGone) {
  Add(kPath, kTear);
  Add({{0, 25}, {10, 25}}, kCrease);
  m_ContourAnswer = CContourAnswer{};
  m_ContourAnswer->m_Attributes.m_bClosed = true;
  RegisterSolverTimer(Grid());
  Grid().Run().SetRunning(true);
  Click(4, 24, FL_RIGHT_MOUSE);
  Send(FL_MOVE, 10, 25);
  EXPECT_TRUE(RunToolkitUntil([&] { return !m_asDone.empty(); }));
  EXPECT_TRUE(Curve().IsClosed());
  EXPECT_FALSE(Curve(1).IsClosed());
}

TEST_F(CurveWindowTest, AnswerGivesTheCurveItsAttributesAndTheCurrentType) {
  Add(kPath, kTear);
  m_ContourAnswer = CContourAnswer{};
  m_ContourAnswer->m_Attributes.m_Weights = {5, 6, 7, 8};
  Click(4, 24, FL_RIGHT_MOUSE);
  EXPECT_EQ(Curve().Type(), kTear) << "no current type";
  EXPECT_EQ(std::next(Curve().Nodes().begin())->m_Weights, (CNodeWeights{5, 6, 7, 8}));
  EXPECT_EQ(Curve().Nodes().front().m_Weights, CNodeWeights{});
  EXPECT_EQ(Grid().Run().NextOperation(), Operation::kRebuildMaps);
  Settle();
  TypeAt('n', 4, 24);
  m_ContourAnswer->m_bAllNodes = true;
  Click(4, 24, FL_RIGHT_MOUSE);
  EXPECT_EQ(Curve().Type(), kCrease);
  EXPECT_EQ(Curve().Nodes().front().m_Weights, (CNodeWeights{5, 6, 7, 8}));
}

TEST_F(CurveWindowTest, ExportMakesTheGeneratedConstraintsTheUsersOwn) {
  Add(kPath, kTear);
  m_ContourAnswer = CContourAnswer{};
  m_ContourAnswer->m_Attributes.m_bLeftAutoBump = true;
  Click(4, 24, FL_RIGHT_MOUSE);
  Settle();
  const std::size_t generated = Grid().Constraints().Generated().size();
  EXPECT_GT(generated, 1U);
  m_ContourAnswer->m_bExport = true;
  Click(4, 24, FL_RIGHT_MOUSE);
  EXPECT_EQ(Grid().Constraints().Points().size(), generated);
  EXPECT_EQ(Curve().Options(), 0U);
  Settle();
  EXPECT_EQ(Grid().Constraints().Generated().size(), 0U);
}

TEST_F(CurveWindowTest, DialogEndsTheDrag) {
  Add(kPath, kTear);
  Press(4, 24, FL_RIGHT_MOUSE);
  EXPECT_EQ(m_asDone, Texts{"attributes"});
  Send(FL_RELEASE, 4, 24, FL_RIGHT_MOUSE);
  EXPECT_EQ(Grid().Run().NextOperation(), Operation::kNone) << "the dialog has taken the release";
}

// "Select".

TEST_F(CurveWindowTest, SelectExplainsItselfAsLongAsItIsOn) {
  ClickOn(Control::Select);
  EXPECT_EQ(HelpLine().CurrentHelp(), 10);
  Click(0, 22);
  EXPECT_TRUE(Grid().Constraints().PendingCurve().IsIdle()) << "the tool has the mouse";
  ClickOn(Control::Select);
  EXPECT_EQ(HelpLine().CurrentHelp(), 4);
}

TEST_F(CurveWindowTest, SelectedCellsAreSplitWithTheSolverStopped) {
  ClickOn(Control::Select);
  Press(0, 22);
  Send(FL_DRAG, 5, 24);
  Send(FL_RELEASE, 5, 24);
  const int before = Grid().Surface().Tree().LeafCount();
  TypeAt('=', 5, 24, FL_SHIFT);
  EXPECT_TRUE(SettlesBy([&] { return Grid().Surface().Tree().LeafCount() > before; }));
  ClickOn(Control::Select);
  EXPECT_FALSE(Grid().Wanted().Current().Root().IsSelected());
}

TEST_F(CurveWindowTest, SwitchingSelectOffDrawsBothViews) {
  ClickOn(Control::Select);
  ASSERT_TRUE(RunToolkitUntil([&] { return View().damage() == 0 && m_Window.GridView().damage() == 0; }));
  ClickOn(Control::Select);
  EXPECT_NE(View().damage(), 0);
  EXPECT_NE(m_Window.GridView().damage(), 0);
}
