// What the help line says at the start, and what of the window outlives a run.

#include <algorithm>
#include <filesystem>
#include <string>
#include <utility>
#include <vector>

#include "support/FileBuilders.h"
#include "support/gui/WindowTest.h"

namespace {

const char* const kFirstStep = HelpTextOf(HelpText::kFirstStep);

// The toolkit goes round once.
void GoRound() {
  bool round = false;
  RunToolkitUntil([&round] { return std::exchange(round, true); });
}

class FirstStepTest : public WindowTest {
 protected:
  FirstStepTest() { m_Window.ShowFirstStep(); }

  std::string Shown() { return HelpLine().value(); }
};

}  // namespace

TEST_F(FirstStepTest, SaysWhatToDo) {
  EXPECT_EQ(Shown(), "Open a photograph (Alt+Shift+O, or drop it here), choose Position constraint, and click");
  GoRound();
  EXPECT_EQ(Shown(), kFirstStep);
  HelpLine().ShowHelp(HelpText::kModelView);
  HelpLine().RestoreHelp();
  EXPECT_EQ(Shown(), kFirstStep) << "the mouse has only passed over something";
}

TEST_F(FirstStepTest, GoesWithAPhotograph) {
  LoadPicture();
  GoRound();
  EXPECT_NE(Shown(), kFirstStep);
  EXPECT_NE(HelpLine().CurrentHelp(), HelpText::kFirstStep);
}

TEST_F(FirstStepTest, GoesWithAMode) {
  ClickOn(Control::PositionConstraint);
  GoRound();
  EXPECT_EQ(HelpLine().CurrentHelp(), HelpText::kPositions);
}

TEST_F(FirstStepTest, GoesWithAClickAndLeavesWhatThatSays) {
  ShowWindow();
  SendMouse(FL_MOVE, Control::ImageView);
  SendMouse(FL_PUSH, Control::ImageView);
  SendMouse(FL_RELEASE, Control::ImageView);
  EXPECT_EQ(Shown(), "slope (0, 0)");
  GoRound();
  EXPECT_EQ(Shown(), "slope (0, 0)");
  HelpLine().RestoreHelp();
  EXPECT_EQ(Shown(), "");
}

TEST_F(FirstStepTest, DoesNotComeBack) {
  ClickOn(Control::PositionConstraint);
  GoRound();
  m_Window.ImageView().SetMode(EditingMode::Unset);
  HelpLine().SetCurrentHelp(HelpText::kNone);
  GoRound();
  EXPECT_EQ(Shown(), "");
}

namespace {

/// The window of the next run.
struct CNextRun {
  CNextRun(const std::string& settings, UserDialogs& dialogs) : m_Window(RegisterSolverTimer, &dialogs) {
    m_Window.Settings().KeepIn(settings);
    m_Window.RestorePlace();
    m_Window.AttachGrid(m_Grid.m_Grid);
    m_Window.RestoreSwitches();
  }

  bool Has(MenuEntry entry) const { return m_Window.Menu().IsChecked(entry); }

  CTestGrid m_Grid;
  CImageViewUI m_Window;
};

class RememberedTest : public WindowTest {
 protected:
  RememberedTest() { m_Window.Settings().KeepIn(m_File); }

  const std::string m_File = m_Directory.File("settings.json");
};

}  // namespace

TEST_F(RememberedTest, NothingIsKeptUnlessThatIsWanted) {
  Menu().Choose(MenuEntry::KeepProportions);
  Menu().Choose(MenuEntry::StatusBar);
  m_Window.KeepPlace();
  EXPECT_FALSE(std::filesystem::exists(m_File));
  const CNextRun next(m_File, m_Dialogs);
  EXPECT_FALSE(next.Has(MenuEntry::KeepProportions));
  EXPECT_TRUE(next.Has(MenuEntry::StatusBar));
}

TEST_F(RememberedTest, SwitchesHoldInTheNextRun) {
  Menu().Choose(MenuEntry::KeepProportions);
  Menu().Choose(MenuEntry::Remember);
  Menu().Choose(MenuEntry::StatusBar);
  Menu().Choose(MenuEntry::NewHeightsAtLast);
  const CNextRun next(m_File, m_Dialogs);
  EXPECT_TRUE(next.Has(MenuEntry::Remember));
  EXPECT_TRUE(next.Has(MenuEntry::KeepProportions));
  EXPECT_TRUE(next.Has(MenuEntry::NewHeightsAtLast));
  EXPECT_FALSE(next.Has(MenuEntry::StatusBar));
  EXPECT_TRUE(next.Has(MenuEntry::DebugInterface));
  EXPECT_EQ(next.m_Window.HelpLine().visible(), 0) << "what they switch is switched";
  EXPECT_NE(next.m_Window.GridView().DisplayFlags() & ModelFlag::kProportions, 0U);
}

TEST_F(RememberedTest, EveryMarkIsKeptByItself) {
  Menu().Choose(MenuEntry::Remember);
  const std::vector<MenuEntry> switches = CMainMenu::Switches();
  for (const MenuEntry entry : switches) {
    Menu().Choose(entry);
    CNextRun next(m_File, m_Dialogs);
    for (const MenuEntry other : switches)
      EXPECT_EQ(next.Has(other), Menu().IsChecked(other))
          << CMainMenu::TextOf(entry) << ", " << CMainMenu::TextOf(other);
    EXPECT_EQ(next.m_Window.ShowsCoordinates(), entry == MenuEntry::Coordinates);
    EXPECT_EQ(next.m_Window.ShowsDebugZone(), entry != MenuEntry::DebugInterface);
    EXPECT_EQ(next.m_Grid.m_Grid.IsSettling(), entry == MenuEntry::SettleFloating);
    next.m_Window.ShowFirstStep();
    GoRound();
    EXPECT_STREQ(next.m_Window.HelpLine().value(), kFirstStep) << CMainMenu::TextOf(entry);
    Menu().Choose(entry);
  }
}

// As with --defaults.
TEST_F(RememberedTest, ARunThatReadsNothingLeavesWhatIsKeptAlone) {
  Menu().Choose(MenuEntry::Remember);
  Menu().Choose(MenuEntry::KeepProportions);
  m_Window.KeepPlace();
  const std::string kept = BytesOf(m_File);
  CTestGrid grid;
  CImageViewUI window(RegisterSolverTimer, &m_Dialogs);
  window.Settings().KeepIn(m_File);
  window.AttachGrid(grid.m_Grid);
  EXPECT_FALSE(window.Menu().IsChecked(MenuEntry::KeepProportions));
  window.Menu().Choose(MenuEntry::StatusBar);
  window.Menu().Choose(MenuEntry::ClosedTears);
  window.KeepPlace();
  EXPECT_EQ(BytesOf(m_File), kept);
  window.Menu().Choose(MenuEntry::Remember);
  const CNextRun next(m_File, m_Dialogs);
  EXPECT_TRUE(next.Has(MenuEntry::ClosedTears)) << "what holds now is what is wanted";
  EXPECT_FALSE(next.Has(MenuEntry::KeepProportions));
  EXPECT_FALSE(next.Has(MenuEntry::StatusBar));
}

TEST_F(RememberedTest, WhatTakesTheMouseOverBeginsSwitchedOff) {
  Menu().Choose(MenuEntry::Remember);
  Menu().Choose(MenuEntry::SelectSeveral);
  ASSERT_TRUE(m_Window.ImageView().IsChoosing());
  CNextRun next(m_File, m_Dialogs);
  EXPECT_TRUE(next.Has(MenuEntry::Remember));
  EXPECT_FALSE(next.Has(MenuEntry::SelectSeveral));
  EXPECT_FALSE(next.m_Window.ImageView().IsChoosing());
}

TEST_F(RememberedTest, OtherMarksBeginAsEver) {
  Menu().Choose(MenuEntry::Remember);
  Menu().Choose(MenuEntry::ImageGrid);
  Menu().Choose(MenuEntry::CellNormals);
  const CNextRun next(m_File, m_Dialogs);
  EXPECT_TRUE(next.Has(MenuEntry::ImageGrid));
  EXPECT_FALSE(next.Has(MenuEntry::CellNormals));
}

TEST_F(RememberedTest, ForgettingIsRememberedToo) {
  Menu().Choose(MenuEntry::Remember);
  Menu().Choose(MenuEntry::KeepProportions);
  Menu().Choose(MenuEntry::Remember);
  Menu().Choose(MenuEntry::StatusBar);
  const CNextRun next(m_File, m_Dialogs);
  EXPECT_FALSE(next.Has(MenuEntry::Remember));
  EXPECT_FALSE(next.Has(MenuEntry::KeepProportions));
  EXPECT_TRUE(next.Has(MenuEntry::StatusBar));
}

TEST_F(RememberedTest, TheWindowComesBackWhereItWas) {
  ShowWindow();
  Menu().Choose(MenuEntry::Remember);
  for (const auto& [width, height] : {std::pair(1000, 700), {kMinDesignWidth, kMinDesignHeight}}) {
    m_Window.resize(30, 40, width, height);
    m_Window.KeepPlace();
    const CNextRun next(m_File, m_Dialogs);
    EXPECT_EQ(next.m_Window.x(), 30);
    EXPECT_EQ(next.m_Window.y(), 40);
    EXPECT_EQ(next.m_Window.w(), width);
    EXPECT_EQ(next.m_Window.h(), height);
  }
}

TEST_F(RememberedTest, APlaceOffTheScreenIsBroughtBackOntoIt) {
  m_Window.Settings().Set(
      {{"remember", true}, {"window_left", 1e5}, {"window_top", -1e5}, {"window_width", 50.0}, {"window_height", 9e4}});
  const CNextRun next(m_File, m_Dialogs);
  int x = 0;
  int y = 0;
  int w = 0;
  int h = 0;
  Fl::screen_work_area(x, y, w, h, 0, 0);
  EXPECT_GE(next.m_Window.x(), x);
  EXPECT_GE(next.m_Window.y(), y);
  EXPECT_LE(next.m_Window.x() + next.m_Window.w(), x + w);
  EXPECT_LE(next.m_Window.y() + next.m_Window.h(), y + h);
  EXPECT_GE(next.m_Window.w(), kMinDesignWidth);
}

TEST_F(RememberedTest, WhatStandsInTheFileOfAnotherKindIsNoSetting) {
  m_Window.Settings().Set({{"remember", true}, {"switch_keep_proportions", 7.0}, {"window_left", std::string("far")}});
  const CNextRun next(m_File, m_Dialogs);
  EXPECT_TRUE(next.Has(MenuEntry::Remember));
  EXPECT_FALSE(next.Has(MenuEntry::KeepProportions));
}

TEST(RememberedSwitchesTest, AreThoseOfEditAndInspectAndOfTheWindowItself) {
  const std::vector<MenuEntry> switches = CMainMenu::Switches();
  const auto has = [&](MenuEntry entry) { return std::ranges::find(switches, entry) != switches.end(); };
  for (const MenuEntry entry : {MenuEntry::DebugInterface, MenuEntry::StatusBar, MenuEntry::NewHeightsAtLast,
                                MenuEntry::ClosedTears, MenuEntry::BehindTears, MenuEntry::KeepProportions})
    EXPECT_TRUE(has(entry)) << CMainMenu::TextOf(entry);
  for (const MenuEntry entry :
       {MenuEntry::Remember, MenuEntry::SelectSeveral, MenuEntry::ImageGrid, MenuEntry::SubdivisionColours})
    EXPECT_FALSE(has(entry)) << CMainMenu::TextOf(entry);
  EXPECT_EQ(CMainMenu::TextOf(MenuEntry::Remember), "Remember Window and Switches");
}
