// The whole program under random actions. RELIEVO_MONKEY_ACTIONS and RELIEVO_MONKEY_SEED say how many and which;
// RELIEVO_MONKEY_NEW_GRIDS, after how many of them the program is brought back to a new grid and its memory measured.

#include <algorithm>
#include <array>
#include <chrono>
#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <string>
#include <vector>

#include <FL/Fl.H>
#include <FL/Fl_Button.H>
#include <gtest/gtest.h>
#include <malloc.h>
#include <unistd.h>

#include "app/CToolSet.h"
#include "app/SolverTimer.h"
#include "model/CGrid.h"
#include "model/Globals.h"
#include "support/CTemporaryDirectory.h"
#include "support/SamplePhotograph.h"
#include "support/gui/CDeedLog.h"
#include "support/gui/CHabits.h"
#include "support/gui/CMonkey.h"
#include "support/gui/CRandomDialogs.h"
#include "ui/imageview/CImageView.h"
#include "ui/modelview/CGridView.h"
#include "ui/window/CImageViewUI.h"

namespace {

constexpr int kActions = 800;
constexpr int kActionsBetweenLooks = 100;
const int kEntries = static_cast<int>(WriteEntry(ModelFormats().size()));
constexpr double kMostGrowth = 1.1;
constexpr std::array kDrawn{MenuEntry::ImageGrid,    MenuEntry::ImagePoints,         MenuEntry::ImageCurves,
                            MenuEntry::FreezeMap,    MenuEntry::ModelGrid,           MenuEntry::ModelPoints,
                            MenuEntry::ModelCurves,  MenuEntry::DiscontinuityTexels, MenuEntry::CellNormals,
                            MenuEntry::PointNormals, MenuEntry::TexelNormals};

int FromEnvironment(const char* name, int otherwise) {
  const char* text = std::getenv(name);
  return text == nullptr ? otherwise : std::atoi(text);
}

// What the allocator has kept of freed memory goes back first, or holes between small blocks would count as growth.
double ResidentMegabytes() {
  malloc_trim(0);
  double pages = 0;
  std::ifstream("/proc/self/statm") >> pages >> pages;
  return pages * static_cast<double>(sysconf(_SC_PAGESIZE)) / 1e6;
}

class MonkeyTest : public ::testing::Test {
 protected:
  MonkeyTest() : m_Before(std::filesystem::current_path()) {
    std::filesystem::current_path(m_Directory.Path());
    m_Grid.Save(m_Dialogs.FirstGrid());
    m_Dialogs.ReportTo(m_Log);
    // As far as it gets, the end of the program is left out.
    m_Window.callback([](Fl_Widget*, void*) {});
    m_Window.Files().KeepIn(m_State.Path());
    m_Window.show();
    m_Window.AttachGrid(m_Grid);
    RegisterSolverTimer(m_Grid);
  }
  ~MonkeyTest() override {
    Fl::remove_timeout(OnSolverTimer);
    g_nSolverTimers = 0;
    std::filesystem::current_path(m_Before);
  }

  // Now and then several actions meet one round of the toolkit, as those of a hasty user do.
  void Act() {
    if (m_Monkey.OneIn(8)) {
      Choose(static_cast<MenuEntry>(m_Monkey.Below(kEntries)));
    } else if (m_Monkey.OneIn(2)) {
      m_Habits.Act();
    } else {
      m_Monkey.Act();
    }
    if (m_Monkey.OneIn(4)) Fl::check();
    m_Log.Look();
  }
  // The tutorial opens outside of the program.
  void Choose(MenuEntry entry) {
    m_Monkey.Count();
    if (entry == MenuEntry::Tutorial) return;
    CMainMenu& menu = m_Window.Menu();
    if (menu.IsActive(entry)) menu.Choose(entry);
  }
  bool IsFinite() const {
    return std::ranges::all_of(m_Grid.Surface().Lattice().Heights(), [](double z) { return std::isfinite(z); }) &&
           std::ranges::all_of(m_Grid.Surface().Coefficients(), [](double c) { return std::isfinite(c); });
  }

  // Brings the program to where every measurement finds the same, by its own commands: no tool open, the window in its
  // first size, the photograph, relit, everything drawn, both resolutions visited, and a new grid without constraints.
  // What is kept for the next redraw or the next system has then grown to its full size, whatever came before.
  void StartOver() {
    m_Monkey.EndDialogs();
    m_Monkey.SetObedient(true);
    m_Dialogs.SetObedient(true);
    m_Habits.CloseTools();
    m_Window.size(m_iWidth, m_iHeight);
    Check(MenuEntry::DebugInterface, true);
    EndFreezing();
    ChooseAndWait(MenuEntry::LoadImage);
    EXPECT_EQ(m_Grid.Relighting().Textures().PictureWidth(), kPhotographWidth);
    ChooseAndWait(MenuEntry::LoadGrid);
    CLight light = *m_Grid.GetLightSource(0, kRemovedLights);
    light.m_bActive = true;
    m_Grid.SetLight(0, kRemovedLights, light);
    m_Grid.GetKd();
    for (const MenuEntry entry : kDrawn) Check(entry, true);
    m_Monkey.Press(m_Window.Widget(Control::SwitchResolution));
    WorkOff();
    EXPECT_EQ(g_bHighRes, 1);
    m_Monkey.Press(m_Window.Widget(Control::SwitchResolution));
    WorkOff();
    EXPECT_EQ(g_bHighRes, 0);
    ChooseAndWait(MenuEntry::NewGrid);
    for (const MenuEntry entry : kDrawn) Check(entry, false);
    RenewContexts();
    WorkOff();
    // Of as many megabytes as steps may take.
    m_Window.History().Clear();
    m_Dialogs.SetObedient(false);
    m_Monkey.SetObedient(false);
    m_Log.Look();
  }
  // Drawing in software keeps the geometry of former frames, tens of megabytes, for as long as a context lives.
  void RenewContexts() {
    for (Fl_Window* view :
         {static_cast<Fl_Window*>(&m_Window.ImageView()), static_cast<Fl_Window*>(&m_Window.GridView())}) {
      view->hide();
      view->show();
    }
  }
  void Check(MenuEntry entry, bool wanted) {
    if (m_Window.Menu().IsChecked(entry) != wanted) Choose(entry);
  }
  // The tool holds the solver and the switch of resolution.
  void EndFreezing() {
    auto& button = dynamic_cast<Fl_Button&>(m_Window.Widget(Control::Freeze));
    if (button.value() != 0) m_Monkey.Press(button);
  }
  void ChooseAndWait(MenuEntry entry) {
    Choose(entry);
    WorkOff();
  }
  void WorkOff() {
    constexpr int kRounds = 20;
    while (m_Grid.Run().HasPending()) Fl::check();
    for (int round = 0; round < kRounds; ++round) Fl::check();
  }
  void Measure() {
    StartOver();
    EXPECT_EQ(m_Grid.Surface().Lattice().Level(), kDefaultMaxLevel);
    EXPECT_EQ(m_Grid.Constraints().Points().size() + m_Grid.Constraints().Curves().size(), 0U);
    m_afMegabytes.push_back(ResidentMegabytes());
    std::cout << m_Monkey.Actions() << " actions: " << m_afMegabytes.back() << " MB resident, "
              << static_cast<double>(mallinfo2().uordblks + mallinfo2().hblkhd) / 1e6 << " MB allocated" << std::endl;
  }

  CMonkey m_Monkey{static_cast<std::uint32_t>(FromEnvironment("RELIEVO_MONKEY_SEED", 1))};
  std::filesystem::path m_Before;
  CTemporaryDirectory m_Directory;
  CTemporaryDirectory m_State;
  CRandomDialogs m_Dialogs{m_Monkey, m_Directory.Path()};
  CGrid m_Grid;
  CImageViewUI m_Window{RegisterSolverTimer, &m_Dialogs};
  CToolSet m_Tools{m_Window, m_Grid};
  int m_iWidth = m_Window.w();
  int m_iHeight = m_Window.h();
  CHabits m_Habits{m_Monkey, m_Window};
  CDeedLog m_Log{m_Window, m_Grid};
  std::vector<double> m_afMegabytes;
};

}  // namespace

TEST_F(MonkeyTest, DoesNoHarm) {
  const int actions = FromEnvironment("RELIEVO_MONKEY_ACTIONS", kActions);
  const int newGrids = FromEnvironment("RELIEVO_MONKEY_NEW_GRIDS", actions + 1);
  int looked = 0;
  int measured = 0;
  std::chrono::duration<double> slowest{};
  while (m_Monkey.Actions() < actions) {
    const auto start = std::chrono::steady_clock::now();
    Act();
    slowest = std::max<std::chrono::duration<double>>(slowest, std::chrono::steady_clock::now() - start);
    if (m_Monkey.Actions() >= measured + newGrids) {
      Measure();
      measured = m_Monkey.Actions();
    }
    if (m_Monkey.Actions() < looked + kActionsBetweenLooks) continue;
    looked = m_Monkey.Actions();
    ASSERT_TRUE(IsFinite()) << "after " << looked << " actions";
  }
  m_Monkey.EndDialogs();
  EXPECT_TRUE(IsFinite());
  m_Log.Print(std::cout);
  std::cout << "slowest action: " << slowest.count() << " s\n";
  if (m_afMegabytes.size() > 2) {
    EXPECT_LE(m_afMegabytes.back(), kMostGrowth * m_afMegabytes[1]);
  }
}
