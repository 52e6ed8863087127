#include <gtest/gtest.h>

#include "support/gui/CRelievo.h"
#include "support/gui/Input.h"

namespace {

class ClosingTest : public ::testing::Test {
 protected:
  void Close() { m_Program.Screen().AskToClose(m_Program.MainWindow()); }

  CRelievo m_Program;
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
