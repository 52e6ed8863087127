// The whole program under events by chance. RELIEVO_MONKEY_EVENTS and RELIEVO_MONKEY_SEED say how many and which.

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <optional>
#include <string>

#include <FL/Fl.H>
#include <gtest/gtest.h>

#include "app/CToolSet.h"
#include "app/SolverTimer.h"
#include "support/CTemporaryDirectory.h"
#include "support/ConsoleCapture.h"
#include "support/FileBuilders.h"
#include "support/SamplePhotograph.h"
#include "support/gui/CMonkey.h"
#include "ui/window/CImageViewUI.h"

namespace {

constexpr int kEventsBetweenLooks = 100;
constexpr int kEntries = static_cast<int>(MenuEntry::NoWavelets) + 1;

int FromEnvironment(const char* name, int otherwise) {
  const char* text = std::getenv(name);
  return text == nullptr ? otherwise : std::atoi(text);
}

/// Answers the questions of the window by chance: good files, bad ones and none.
class RandomDialogs : public UserDialogs {
 public:
  RandomDialogs(CMonkey& monkey, const std::filesystem::path& directory) : m_Monkey(monkey), m_Directory(directory) {
    // A copy, since frames are saved under the names of pictures, too.
    std::filesystem::copy_file(kPhotograph, m_Directory / "cup.bmp");
    WriteText(m_Directory / "rubbish.bmp", "BM rubbish");
    WriteText(m_Directory / "rubbish.grid", "0 0 1 nan\n0 3\n");
  }

  std::optional<std::string> ChooseFile(const char* /*title*/, const char* pattern) override {
    const std::string wanted = pattern == nullptr ? "*.grid" : pattern;
    if (m_Monkey.OneIn(4)) return std::nullopt;
    if (m_Monkey.OneIn(8)) return (m_Directory / "missing" / "file").string();
    if (wanted == "*.bmp")
      return m_Monkey.OneOf(std::array{InDirectory("cup.bmp"), InDirectory("shot.bmp"), InDirectory("rubbish.bmp")});
    if (wanted == "*.wrl") return InDirectory("scene.wrl");
    return m_Monkey.OneOf(std::array{InDirectory("a.grid"), InDirectory("b.grid"), InDirectory("rubbish.grid")});
  }
  bool Ask(const char* /*question*/) override { return m_Monkey.OneIn(2); }
  std::string AskText(const char* /*question*/) override {
    if (m_Monkey.OneIn(2)) return {};
    return m_Monkey.OneIn(2) ? (m_Directory / "missing" / "frame").string() : InDirectory("frame");
  }
  void Notice(const char* /*text*/) override {}

 private:
  std::string InDirectory(const char* name) const { return (m_Directory / name).string(); }

  CMonkey& m_Monkey;
  std::filesystem::path m_Directory;
};

class MonkeyTest : public ::testing::Test {
 protected:
  MonkeyTest() : m_Before(std::filesystem::current_path()) {
    std::filesystem::current_path(m_Directory.Path());
    m_Window.show();
    m_Window.AttachGrid(m_Grid);
    RegisterSolverTimer(m_Grid);
  }
  ~MonkeyTest() override {
    Fl::remove_timeout(OnSolverTimer);
    g_nSolverTimers = 0;
    std::filesystem::current_path(m_Before);
  }

  void Choose(MenuEntry entry) {
    CMainMenu& menu = m_Window.Menu();
    if (menu.IsActive(entry)) menu.Choose(entry);
  }
  bool IsFinite() const {
    return std::ranges::all_of(m_Grid.Lattice().Heights(), [](double z) { return std::isfinite(z); }) &&
           std::ranges::all_of(m_Grid.Coefficients(), [](double c) { return std::isfinite(c); });
  }

  CMonkey m_Monkey{static_cast<std::uint32_t>(FromEnvironment("RELIEVO_MONKEY_SEED", 1))};
  std::filesystem::path m_Before;
  CTemporaryDirectory m_Directory;
  ConsoleCapture m_Console;
  RandomDialogs m_Dialogs{m_Monkey, m_Directory.Path()};
  CGrid m_Grid;
  CImageViewUI m_Window{RegisterSolverTimer, &m_Dialogs};
  CToolSet m_Tools{m_Window, m_Grid};
};

}  // namespace

TEST_F(MonkeyTest, DoesNoHarm) {
  const int events = FromEnvironment("RELIEVO_MONKEY_EVENTS", 2000);
  int looked = 0;
  while (m_Monkey.Events() < events) {
    if (m_Monkey.OneIn(8)) {
      Choose(static_cast<MenuEntry>(m_Monkey.Below(kEntries)));
    } else {
      m_Monkey.Act();
    }
    Fl::check();
    if (m_Monkey.Events() < looked + kEventsBetweenLooks) continue;
    looked = m_Monkey.Events();
    m_Console.Take();
    ASSERT_TRUE(IsFinite()) << "after " << looked << " events";
  }
  m_Monkey.EndDialogs();
  EXPECT_TRUE(IsFinite());
}
