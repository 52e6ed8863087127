// Work that no file holds, whatever ends the program: the real program, ended in every way, and started again.

#include <algorithm>
#include <csignal>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <optional>
#include <random>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "projects/ProjectFile.h"
#include "support/CTemporaryDirectory.h"
#include "support/gui/CRelievo.h"
#include "support/gui/CUser.h"
#include "support/gui/Input.h"
#include "support/gui/WaitUntil.h"

namespace {

namespace fs = std::filesystem;
using namespace std::chrono_literals;

constexpr CPixel kFirstPlace{100, 60};

class RecoveryRunTest : public ::testing::Test {
 protected:
  void Start(const fs::path& state) {
    m_Program.emplace(std::vector<std::string>{}, state);
    m_User.emplace(*m_Program);
  }
  void Start() { Start(m_State.Path()); }
  void End(int signal) {
    kill(m_Program->Pid(), signal);
    m_Program->WaitForExit();
  }
  /// Adds that many heights, each at a place of its own.
  void Place(int count) {
    m_User->ClickOn(Control::PositionConstraint);
    for (int k = 0; k < count; ++k) {
      const CArea view = m_User->AreaOf(Control::ImageView);
      m_User->ClickAt(view.At({kFirstPlace.m_iX + 20 * (m_iPlaced % 12), kFirstPlace.m_iY + 20 * (m_iPlaced / 12)}));
      ++m_iPlaced;
    }
  }
  std::vector<fs::path> Files(const char* suffix = kProjectSuffix) const {
    std::vector<fs::path> files;
    std::error_code none;
    for (const auto& entry : fs::directory_iterator(m_State.Path() / "relievo", none)) {
      if (entry.path().extension() == suffix) files.push_back(entry.path());
    }
    return files;
  }
  static std::size_t PointsIn(const fs::path& file) {
    const CReadProject read = ReadProject(file.string());
    return read.m_Project ? read.m_Project->m_Model.m_Document.m_Sketch.m_Points.size() : 0;
  }
  /// The heights in the newest state that is kept; 0 where none is.
  std::size_t Kept() const {
    std::size_t most = 0;
    for (const fs::path& file : Files()) most = std::max(most, PointsIn(file));
    return most;
  }
  bool AllAreWhole() const {
    return std::ranges::all_of(Files(),
                               [](const fs::path& file) { return ReadProject(file.string()).m_Project.has_value(); });
  }
  bool TellsOfUnsavedWork() {
    const std::vector<std::string> lines = m_Program->ConsoleLines();
    return std::ranges::any_of(lines, [](const std::string& line) { return line.starts_with("Unsaved work of "); });
  }
  void Recover() {
    for (const char* key : {"alt+f", "w"}) {
      PressKey(key);
      m_Program->Rests();
    }
    const std::optional<WindowId> list = m_Program->WaitForWindow("Recover Unsaved Work");
    ASSERT_TRUE(list.has_value());
    ASSERT_TRUE(WaitUntil([&] { return m_Program->Screen().HasFocus(*list); }));
    PressKey("Return");
    ASSERT_TRUE(m_User->IsGone(*list));
    m_Program->Rests();
  }
  /// The heights that the program has now, by way of a saved grid file.
  std::size_t Present() {
    const fs::path file = m_Program->Directory() / "present.relievo";
    fs::remove(file);
    m_User->ChooseEntry(MenuTitle::File, 7);
    EXPECT_TRUE(m_User->ChooseFile("please input project file name", file));
    EXPECT_TRUE(WaitUntil([&] { return fs::exists(file); }));
    return PointsIn(file);
  }

  CTemporaryDirectory m_State;
  std::optional<CRelievo> m_Program;
  std::optional<CUser> m_User;
  int m_iPlaced = 0;
};

// scripts/kill.sh asks for more.
int Rounds() {
  constexpr int kRounds = 10;
  const char* const wanted = std::getenv("RELIEVO_KILLS");
  return wanted == nullptr ? kRounds : std::atoi(wanted);
}

void Sleep(std::uint_fast32_t milliseconds) { std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds)); }

class RecoverySignalTest : public RecoveryRunTest, public testing::WithParamInterface<int> {};

}  // namespace

TEST_F(RecoveryRunTest, WithoutUnsavedWorkNothingIsSaid) {
  Start();
  End(SIGKILL);
  EXPECT_TRUE(Files().empty());
  Start();
  EXPECT_FALSE(TellsOfUnsavedWork());
}

TEST_F(RecoveryRunTest, WhatWasKeptBeforeTheEndComesBackAndGoesWhenItIsSaved) {
  Start();
  Place(2);
  ASSERT_TRUE(WaitUntil([this] { return Kept() == 2; }));
  End(SIGKILL);
  Start();
  EXPECT_TRUE(TellsOfUnsavedWork());
  Recover();
  EXPECT_EQ(Present(), 2U);
  EXPECT_TRUE(WaitUntil([this] { return Files().empty(); })) << "a file holds it";
  End(SIGKILL);
  Start();
  EXPECT_FALSE(TellsOfUnsavedWork());
}

TEST_F(RecoveryRunTest, ClosingTheWindowKeepsTheWork) {
  Start();
  Place(3);
  m_Program->Screen().AskToClose(m_Program->MainWindow());
  EXPECT_EQ(m_Program->WaitForExit(), 0);
  EXPECT_EQ(Kept(), 3U);
}

TEST_F(RecoveryRunTest, WorkBeforeANewGridComesBackAtTheNextStart) {
  Start();
  Place(2);
  PressKey("alt+n");
  ASSERT_TRUE(m_Program->WaitForWindow("Grid Initial Parameters").has_value() && m_Program->Rests());
  PressKey("Return");
  ASSERT_TRUE(m_Program->Rests());
  EXPECT_EQ(Kept(), 2U) << "without waiting";
  End(SIGTERM);
  Start();
  EXPECT_TRUE(TellsOfUnsavedWork());
  Recover();
  EXPECT_EQ(Present(), 2U);
}

TEST_P(RecoverySignalTest, KeepsTheWork) {
  Start();
  Place(3);
  End(GetParam());
  EXPECT_EQ(Kept(), 3U);
}

INSTANTIATE_TEST_SUITE_P(Each, RecoverySignalTest, testing::Values(SIGINT, SIGTERM, SIGHUP));

TEST_F(RecoveryRunTest, ARunningProgramsWorkIsItsOwn) {
  Start();
  Place(1);
  ASSERT_TRUE(WaitUntil([this] { return Kept() == 1; }));
  {
    CRelievo second({}, m_State.Path());
    const std::vector<std::string> lines = second.ConsoleLines();
    EXPECT_TRUE(std::ranges::none_of(lines, [](const std::string& l) { return l.starts_with("Unsaved work of "); }));
    kill(second.Pid(), SIGTERM);
    second.WaitForExit();
  }
  EXPECT_EQ(Kept(), 1U);
}

TEST_F(RecoveryRunTest, WithoutAFolderTheProgramWorks) {
  Start("/proc/none");
  Place(2);
  EXPECT_TRUE(
      m_User->Reads("What is not saved cannot be kept for the next start: its folder is missing, full or read-only."));
  EXPECT_EQ(Present(), 2U);
}

// Heights are placed all the time, and the program is killed at any moment, also while it writes.
TEST_F(RecoveryRunTest, KilledInTheMiddleOfEditsItLosesLittle) {
  std::minstd_rand random(11);
  for (int round = 0; round < Rounds(); ++round) {
    Start();
    m_iPlaced = 0;
    Place(1);
    ASSERT_TRUE(WaitUntil([this] { return Kept() >= 1; })) << round;
    Place(static_cast<int>(random() % 3));
    Sleep(random() % 40);
    const std::size_t before = Kept();
    End(SIGKILL);
    ASSERT_EQ(Files().size(), 1U) << round;
    EXPECT_GE(PointsIn(Files().front()), before) << round;
    Start();
    EXPECT_TRUE(TellsOfUnsavedWork()) << round;
    End(SIGKILL);
    for (const fs::path& file : Files()) fs::remove(file);
  }
}

// Each run goes on with what the one before has left, and is killed before, while or after it writes down one height
// more.
TEST_F(RecoveryRunTest, KilledWhileItWritesItOffersAWholeState) {
  std::minstd_rand random(12);
  Start();
  Place(1);
  ASSERT_TRUE(WaitUntil([this] { return Kept() == 1; }));
  for (int round = 0; round < Rounds(); ++round) {
    End(SIGKILL);
    Start();
    ASSERT_TRUE(TellsOfUnsavedWork()) << round;
    const std::size_t before = Kept();
    Recover();
    Place(1);
    switch (random() % 3) {
      case 0:
        WaitUntil([&] { return !Files(".part").empty() || Kept() > before; });
        break;
      case 1:
        Sleep(random() % 1500);
        break;
      default:
        ASSERT_TRUE(WaitUntil([&] { return Kept() > before; })) << round;
    }
    End(SIGKILL);
    ASSERT_TRUE(AllAreWhole()) << round;
    ASSERT_GE(Kept(), before) << round;
    // The oldest goes after the newest has come, if there is time for that.
    ASSERT_LE(Files().size(), 11U) << round;
  }
}
