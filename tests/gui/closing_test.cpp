#include <gtest/gtest.h>

#include "support/gui/CRelievo.h"
#include "support/gui/Input.h"
#include "support/gui/WaitUntil.h"

namespace {

class ClosingTest : public ::testing::Test {
 protected:
  void TypeEscape() {
    ASSERT_TRUE(WaitUntil([&] { return Screen().HasFocus(m_Program.MainWindow()); }));
    PressKey("Escape");
  }
  void Close() { Screen().AskToClose(m_Program.MainWindow()); }
  // Events are handled in their order: a program that has laid out its views anew has handled the earlier ones, too.
  bool GoesOnRunning() {
    Screen().AskForSize(m_Program.MainWindow(), 1000, 800);
    const auto isLaidOut = [&] {
      const std::vector<CArea> views = m_Program.ViewAreas();
      return !views.empty() && views.front().m_iWidth > 430;
    };
    return WaitUntil([&] { return isLaidOut() || !m_Program.IsRunning(); }) && m_Program.IsRunning();
  }
  CScreen& Screen() { return m_Program.Screen(); }

  CRelievo m_Program;
};

}  // namespace

TEST_F(ClosingTest, ClosingTheWindowEndsTheProgram) {
  Close();
  EXPECT_EQ(m_Program.WaitForExit(), 0);
}

TEST_F(ClosingTest, EscapeDoesNot) {
  TypeEscape();
  EXPECT_TRUE(GoesOnRunning());
}

TEST_F(ClosingTest, ClosingAfterAnEscapeDoes) {
  TypeEscape();
  ASSERT_TRUE(GoesOnRunning());
  Close();
  EXPECT_EQ(m_Program.WaitForExit(), 0);
}
