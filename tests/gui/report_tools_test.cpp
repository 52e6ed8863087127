// The report on the constraints, the values and the keys as tools of the window, with the real mouse where it counts.

#include <cmath>
#include <stdexcept>
#include <string>
#include <vector>

#include <FL/Fl_Browser.H>
#include <FL/Fl_Hold_Browser.H>
#include <FL/Fl_Input.H>

#include "app/CToolSet.h"
#include "support/CurveBuilders.h"
#include "support/KeyTable.h"
#include "support/gui/ClickUntil.h"
#include "support/gui/Input.h"
#include "support/gui/Widgets.h"
#include "support/gui/WindowTest.h"
#include "ui/help/KeyList.h"
#include "ui/report/CReportTable.h"
#include "ui/values/CValueField.h"

namespace {

class ReportToolsTest : public WindowTest {
 protected:
  void SetUp() override {
    m_Window.position(10, 40);
    ASSERT_NO_FATAL_FAILURE(ShowWindow());
    Grid().Initialize(3, false, 0, 0, 100, 100);
    Grid().PerformPendingWork();
  }
  void TearDown() override {
    for (const char* title : {"Constraint report", "Constraint values", "Keys and mouse"}) {
      if (Fl_Window* window = Find(title)) window->hide();
    }
  }

  static Fl_Window* Find(const std::string& title) {
    for (Fl_Window* window = Fl::first_window(); window != nullptr; window = Fl::next_window(window)) {
      if (window->label() != nullptr && window->label() == title) return window;
    }
    return nullptr;
  }
  // Once it is drawn.
  Fl_Window& Opened(MenuEntry entry, const std::string& title) {
    Menu().Choose(entry);
    Fl_Window* window = Find(title);
    if (window == nullptr) throw std::runtime_error(title);
    EXPECT_TRUE(RunToolkitUntil([&] { return window->damage() == 0 && window->visible() != 0; }));
    return *window;
  }
  template <class Kind>
  static Kind& Only(Fl_Group& group) {
    for (Fl_Widget* widget : WidgetsIn(group)) {
      if (auto* found = dynamic_cast<Kind*>(widget)) return *found;
    }
    throw std::runtime_error("no such widget");
  }
  CReportTable& Report() { return Only<CReportTable>(Opened(MenuEntry::ConstraintReport, "Constraint report")); }
  static std::vector<std::string> States(CReportTable& table) {
    std::vector<std::string> states;
    for (int row = 0; row < table.rows(); ++row) states.push_back(table.RowTexts(row).m_State);
    return states;
  }
  void ClickOnRow(CReportTable& table, int row) {
    constexpr int kRowHeight = 20;
    Click(
        {table.top_window()->x_root() + table.x() + 60,
         table.top_window()->y_root() + table.y() + table.col_header_height() + 2 + row * kRowHeight + kRowHeight / 2});
  }
  void Add(const CPtCstr& constraint) {
    Grid().AddPtCstr(constraint);
    Grid().PerformPendingWork();
  }

  CToolSet m_Tools{m_Window, Grid()};
};

}  // namespace

TEST_F(ReportToolsTest, TableNamesWhatIsWrongAndFollowsEdits) {
  Add({20, 20, PtCstrKind::kPosition, 5});
  Add({20, 20, PtCstrKind::kPosition, 9});
  Add({60, 70, PtCstrKind::kPosition, 1});
  CReportTable& table = Report();
  ASSERT_EQ(table.rows(), 3);
  EXPECT_EQ(table.RowTexts(0).m_State, "contradicts height 0 at the same place");
  EXPECT_EQ(table.RowTexts(0).m_Name, "height 1") << "it misses more";
  EXPECT_EQ(table.RowTexts(0).m_Wanted, "9");
  EXPECT_EQ(table.RowTexts(1).m_State, "contradicts height 1 at the same place");
  Grid().PointEdits().SelectNumber(1);
  Grid().SetSelectedHeight(5);
  EXPECT_TRUE(RunToolkitUntil([&] { return States(table)[0].find("contradicts") == std::string::npos; }));
  const std::vector<std::string> states = States(table);
  EXPECT_NE(std::ranges::find(states, "repeats height 0 at the same place"), states.end());
}

TEST_F(ReportToolsTest, ClickSelectsAndCentresInBothViews) {
  Add({20, 20, PtCstrKind::kPosition, 5});
  Add({60, 70, PtCstrKind::kPosition, 50});
  CReportTable& table = Report();
  ASSERT_EQ(table.RowTexts(0).m_Name, "height 1");
  ClickOnRow(table, 1);
  const CPtCstrList& points = Grid().Constraints().Points();
  ASSERT_TRUE(RunToolkitUntil([&] { return points.FirstSelected() == &*points.begin(); }));
  const CViewMapping& mapping = m_Window.ImageView().Mapping();
  const CExtent shown = mapping.Visible();
  EXPECT_NEAR((shown.x0 + shown.x1) / 2, 20, 1e-9);
  EXPECT_NEAR((shown.y0 + shown.y1) / 2, 20, 1e-9);
  EXPECT_EQ(m_Window.GridView().Camera().m_Centre.x, 20);
  EXPECT_EQ(m_Window.GridView().Camera().m_Centre.y, 20);
  Fl::e_keysym = FL_Up;
  EXPECT_EQ(table.handle(FL_KEYBOARD), 1);
  EXPECT_TRUE(RunToolkitUntil([&] { return points.FirstSelected() == &*std::next(points.begin()); }));
}

TEST_F(ReportToolsTest, ClickOnWhatACurveGeneratesSelectsTheCurve) {
  Grid().AddCurve(PointsAt({{20, 50}, {80, 50}}), kCrease, false);
  Grid().CurveEdits().SelectNumber(0, 0);
  CContourAttributes attributes = CContourAttributes::Of(CurveAt(Grid().Constraints().Curves(), 0),
                                                         Grid().Constraints().Curves().begin()->Nodes().front());
  attributes.m_bLeftAutoBump = true;
  Grid().CurveEdits().SetAttributes(Grid().Constraints().Curves().begin()->Id(), 0, attributes, CurveType::kNone,
                                    false);
  Grid().UnselectAll();
  Grid().PerformPendingWork();
  CReportTable& table = Report();
  ASSERT_GT(table.rows(), 0);
  EXPECT_EQ(table.RowTexts(0).m_Name, "slope of curve 0");
  ClickOnRow(table, 0);
  EXPECT_TRUE(RunToolkitUntil([&] { return Grid().Constraints().Curves().SelectedNode().m_pNode != nullptr; }));
}

TEST_F(ReportToolsTest, FloatingRegionsAreNamedWithWhatIsMissing) {
  auto& report = static_cast<Fl_Group&>(*Report().parent());
  const auto& regions = Only<Fl_Hold_Browser>(report);
  EXPECT_NE(std::string(regions.text(1)).find("needs 3 heights"), std::string::npos) << regions.text(1);
  for (const auto& [x, y] : std::vector<CPlanePoint>{{20, 20}, {80, 20}}) Add({x, y, PtCstrKind::kPosition, 5});
  EXPECT_TRUE(RunToolkitUntil(
      [&] { return std::string(regions.text(1)).find("can tilt about the line") != std::string::npos; }));
  Add({50, 80, PtCstrKind::kPosition, 5});
  EXPECT_TRUE(RunToolkitUntil([&] { return std::string(regions.text(1)) == "none"; }));
}

// The dialog opens within a tick that has taken up the edit before it, but has not built the system for it.
TEST_F(ReportToolsTest, RegionsAreThoseOfTheEditBeforeADialogThatWasCancelled) {
  for (const auto& [x, y] : std::vector<CPlanePoint>{{20, 20}, {50, 50}, {80, 20}}) Add({x, y, PtCstrKind::kPosition});
  const auto& regions = Only<Fl_Hold_Browser>(static_cast<Fl_Group&>(*Report().parent()));
  ASSERT_TRUE(RunToolkitUntil([&] { return std::string(regions.text(1)) == "none"; }));
  bool asked = false;
  CWindowServices services = Services();
  services.m_Model.m_AskNewGrid = [&asked](const CGrid&) {
    Fl_Window dialog(200, 100, "Some dialog");
    dialog.end();
    dialog.set_modal();
    dialog.show();
    // Longer than the report rests.
    Fl::add_timeout(
        0.5, [](void* done) { *static_cast<bool*>(done) = true; }, &asked);
    EXPECT_TRUE(RunToolkitUntil([&asked] { return asked; }));
    return std::optional<CGridParameters>();
  };
  m_Window.SetServices(std::move(services));
  // All three in one line.
  Grid().PointEdits().SelectNumber(1);
  Grid().PointEdits().PlaceSelected(50, 20);
  Grid().Run().Post(Operation::kNewGrid);
  EXPECT_TRUE(RunToolkitUntil([&] { return asked && !Grid().Run().HasPending(); }));
  EXPECT_TRUE(RunToolkitUntil(
      [&] { return std::string(regions.text(1)).find("can tilt about the line") != std::string::npos; }));
}

TEST_F(ReportToolsTest, TypedNumberIsThatOfTheConstraintItWasTypedFor) {
  ClickOn(Control::PositionConstraint);
  Add({20, 20, PtCstrKind::kPosition, 5});
  Add({60, 70, PtCstrKind::kPosition, 5});
  Grid().PointEdits().SelectNumber(0);
  Fl_Window& values = Opened(MenuEntry::ConstraintValues, "Constraint values");
  auto& field = ::Find<CValueField>(values, "z");
  ASSERT_TRUE(RunToolkitUntil([&] { return std::string(field.value()) == "5"; }));
  const auto middle = [](const Fl_Widget& widget) {
    const Fl_Window& window = *widget.top_window();
    return CPixel{window.x_root() + widget.x() + widget.w() / 2, window.y_root() + widget.y() + widget.h() / 2};
  };
  ASSERT_TRUE(ClickUntil([&] { return middle(field); }, [&] { return Fl::focus() == &field; }));
  PressKey("ctrl+a");
  TypeText("12");
  ASSERT_TRUE(RunToolkitUntil([&] { return std::string(field.value()) == "12"; }));
  const CPtCstrList& points = Grid().Constraints().Points();
  const CPtCstr& second = *std::next(points.begin());
  const Fl_Window& view = m_Window.ImageView();
  Click({view.x_root() + static_cast<int>(0.6 * view.w()), view.y_root() + static_cast<int>(0.3 * view.h())});
  EXPECT_TRUE(RunToolkitUntil([&] { return points.FirstSelected() == &second && std::string(field.value()) == "5"; }));
  EXPECT_EQ(points.begin()->m_fZ, 12);
  EXPECT_EQ(second.m_fZ, 5);
}

TEST_F(ReportToolsTest, HeightIsTakenFromTheConstraintThatIsClicked) {
  ClickOn(Control::PositionConstraint);
  Add({20, 20, PtCstrKind::kPosition, 5});
  Add({60, 70, PtCstrKind::kPosition, 50});
  Grid().PointEdits().SelectNumber(0);
  Fl_Window& values = Opened(MenuEntry::ConstraintValues, "Constraint values");
  EXPECT_TRUE(RunToolkitUntil([&] { return std::string(::Find<CValueField>(values, "z").value()) == "5"; }));
  auto& button = ::Find<Fl_Button>(values, "Same height as ...");
  Press(button);
  const Fl_Window& view = m_Window.ImageView();
  Click({view.x_root() + static_cast<int>(0.6 * view.w()), view.y_root() + static_cast<int>(0.3 * view.h())});
  const CPtCstrList& points = Grid().Constraints().Points();
  EXPECT_TRUE(RunToolkitUntil([&] { return points.begin()->m_fZ == 50; }));
  EXPECT_TRUE(RunToolkitUntil([&] { return button.value() == 0; }));
  EXPECT_TRUE(RunToolkitUntil([&] { return std::string(HelpLine().value()) == "height 50"; }));
  EXPECT_EQ(points.FirstSelected(), &*points.begin());
  EXPECT_EQ(points.size(), 2U);
}

TEST_F(ReportToolsTest, HelpLineFollowsTypedNumbers) {
  Add({20, 20, PtCstrKind::kPosition, 5});
  Grid().PointEdits().SelectNumber(0);
  Fl_Window& values = Opened(MenuEntry::ConstraintValues, "Constraint values");
  EXPECT_TRUE(RunToolkitUntil([&] { return std::string(::Find<CValueField>(values, "z").value()) == "5"; }));
  auto& height = ::Find<CValueField>(values, "z");
  height.replace(0, height.size(), "28");
  height.set_changed();
  values.hide();
  EXPECT_EQ(Grid().Constraints().Points().begin()->m_fZ, 28);
  EXPECT_STREQ(HelpLine().value(), "height 28");
}

TEST_F(ReportToolsTest, DoubleClickOpensTheValues) {
  ClickOn(Control::PositionConstraint);
  Add({50, 50, PtCstrKind::kPosition, 5});
  const Fl_Window& view = m_Window.ImageView();
  const CPixel middle{view.x_root() + view.w() / 2, view.y_root() + view.h() / 2};
  MovePointer({middle.m_iX + 20, middle.m_iY});
  MovePointer(middle);
  ASSERT_TRUE(RunToolkitUntil([&] { return Fl::event_x_root() == middle.m_iX; }));
  Click(middle);
  Click(middle);
  EXPECT_TRUE(RunToolkitUntil([&] { return Find("Constraint values") != nullptr; }));
  EXPECT_EQ(Grid().Constraints().Points().size(), 1U);
}

TEST_F(ReportToolsTest, SelectAndSelectSeveralSwitchEachOtherOff) {
  Menu().Choose(MenuEntry::SelectSeveral);
  EXPECT_TRUE(m_Window.ImageView().IsChoosing());
  ClickOn(Control::Select);
  EXPECT_FALSE(m_Window.ImageView().IsChoosing());
  EXPECT_FALSE(Menu().IsChecked(MenuEntry::SelectSeveral));
  Menu().Choose(MenuEntry::SelectSeveral);
  EXPECT_TRUE(m_Window.ImageView().IsChoosing());
  EXPECT_FALSE(IsOn(Control::Select));
  EXPECT_EQ(m_Window.ImageView().DebugFlags() & DebugFlag::kSelectCells, 0U);
  m_Window.EndChoosing();
  EXPECT_FALSE(Menu().IsChecked(MenuEntry::SelectSeveral));
}

// Help.

TEST_F(ReportToolsTest, KeysAreListedAndSearched) {
  Fl_Window& keys = Opened(MenuEntry::KeysAndMouse, "Keys and mouse");
  auto& list = Only<Fl_Browser>(keys);
  const int whole = list.size();
  EXPECT_GE(whole, static_cast<int>(ListedKeyTable().size()));
  auto& search = ::Find<Fl_Input>(keys, "Search");
  search.value("CTRL show");
  search.do_callback();
  EXPECT_LT(list.size(), whole / 2);
  EXPECT_NE(std::string(list.text(1)).find("Ctrl+0"), std::string::npos) << list.text(1);
  search.value("no such words");
  search.do_callback();
  EXPECT_EQ(list.size(), 1);
}

TEST_F(ReportToolsTest, KeyListIsTheOneThatTheTestsRead) {
  std::vector<CKeyRow> listed;
  for (const CKeyLine& line : KeyListIn(KeysText())) listed.push_back({line.m_Where, line.m_Inputs, line.m_Effect});
  EXPECT_TRUE(listed == ListedKeyTable());
}

TEST_F(ReportToolsTest, F1OpensTheKeysAndAboutTellsTheVersion) {
  Type(FL_F + 1, 0);
  EXPECT_NE(Find("Keys and mouse"), nullptr);
  Menu().Choose(MenuEntry::About);
  ASSERT_EQ(m_Dialogs.m_asNotices.size(), 1U);
  EXPECT_TRUE(m_Dialogs.m_asNotices[0].starts_with("relievo " RELIEVO_VERSION "\n")) << m_Dialogs.m_asNotices[0];
}
