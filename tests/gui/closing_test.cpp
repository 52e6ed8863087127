#include <csignal>
#include <filesystem>

#include <gtest/gtest.h>

#include "support/FileBuilders.h"
#include "support/gui/CRelievo.h"
#include "support/gui/CUser.h"
#include "support/gui/Input.h"
#include "support/gui/WaitUntil.h"

namespace {

class ClosingTest : public ::testing::Test {
 protected:
  void Close() { m_Program.Screen().AskToClose(m_Program.MainWindow()); }

  CRelievo m_Program;
};

constexpr int kKilledBy = 128;

class SignalTest : public ClosingTest, public testing::WithParamInterface<int> {
 protected:
  std::vector<std::string> Names() const {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(m_Program.Directory()))
      names.push_back(entry.path().filename());
    return names;
  }
};

}  // namespace

TEST_F(ClosingTest, ClosingTheWindowEndsTheProgram) {
  Close();
  EXPECT_EQ(m_Program.WaitForExit(), 0);
}

TEST_F(ClosingTest, EscapeDoesNot) {
  PressKey("Escape");
  EXPECT_TRUE(m_Program.HandlesEvents());
}

TEST_F(ClosingTest, ClosingAfterAnEscapeDoes) {
  PressKey("Escape");
  ASSERT_TRUE(m_Program.HandlesEvents());
  Close();
  EXPECT_EQ(m_Program.WaitForExit(), 0);
}

TEST_P(SignalTest, EndsTheProgramAsIfNobodyHadCaughtIt) {
  kill(m_Program.Pid(), GetParam());
  EXPECT_EQ(m_Program.WaitForExit(), kKilledBy + GetParam());
}

// The model is being written while it is still open whether its lights are to be.
TEST_P(SignalTest, LeavesNothingOfASaveThatIsNotComplete) {
  const std::filesystem::path file = m_Program.Directory() / "model.grid";
  WriteText(file, "old contents");
  const CUser user(m_Program);
  user.ChooseEntry(MenuTitle::File, 3);
  ASSERT_TRUE(user.ChooseFile("please input grid file name", file));
  ASSERT_TRUE(WaitUntil([this] { return Names().size() == 2; }));
  ASSERT_TRUE(m_Program.Rests());
  kill(m_Program.Pid(), GetParam());
  EXPECT_EQ(m_Program.WaitForExit(), kKilledBy + GetParam());
  EXPECT_EQ(Names(), std::vector<std::string>{"model.grid"});
  EXPECT_EQ(BytesOf(file), "old contents");
}

INSTANTIATE_TEST_SUITE_P(Each, SignalTest, testing::Values(SIGINT, SIGTERM, SIGHUP));
