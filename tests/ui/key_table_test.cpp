// The list of keys that the user reads. That the program keeps to it is tested with each window.

#include <set>

#include <gtest/gtest.h>

#include "support/KeyTable.h"

TEST(KeyTable, ManPageSaysTheSameAsTheList) {
  const std::vector<CKeyRow> list = ListedKeyTable();
  EXPECT_EQ(ManPageKeyTable().size(), list.size());
  EXPECT_TRUE(ManPageKeyTable() == list);
}

// A place that no test knows would not be compared with the program.
TEST(KeyTable, EveryPlaceIsCompared) {
  std::set<std::string> places;
  for (const CKeyRow& row : ListedKeyTable()) places.insert(row.m_Where);
  EXPECT_EQ(places, (std::set<std::string>{"both views", "left view", "positions and normals", "curves",
                                           "Select (resolution by hand)", "Select Several", "Freeze (debugging)",
                                           "right view", "scissors", "menus", "dialogs and tool windows", "dialogs"}));
}

TEST(KeyTable, EveryInputIsUnderstood) {
  const std::set<std::string> names{"Tab",  "Enter", "Escape", "Delete", "BackSpace",
                                    "Left", "Right", "Up",     "Down",   "F1"};
  for (const CKeyRow& row : ListedKeyTable()) {
    EXPECT_FALSE(row.m_Effect.empty()) << row.m_Inputs;
    for (const CKeyInput& input : row.Inputs()) {
      if (input.m_Kind != CKeyInput::Kind::Key) continue;
      EXPECT_TRUE(input.m_Key.size() == 1 || names.contains(input.m_Key)) << row.m_Inputs;
    }
  }
}

TEST(KeyTable, InputsAreReadWithWhatIsHeld) {
  const CKeyInput zoom = ParseInput("Ctrl+-");
  EXPECT_EQ(zoom.m_iModifiers, ParseInput("Ctrl+left drag").m_iModifiers);
  EXPECT_EQ(zoom.m_Key, "-");
  EXPECT_EQ(ParseInput("+").m_Key, "+");
  EXPECT_EQ(ParseInput("Alt+Shift+O").m_Key, "o");
  EXPECT_TRUE(ParseInput("any click").Covers(ParseInput("Shift+right drag on a curve")));
  EXPECT_FALSE(ParseInput("left click on a curve").Covers(ParseInput("left click")));
  EXPECT_FALSE(ParseInput("left drag").Covers(ParseInput("left click")));
  EXPECT_FALSE(ParseInput("Ctrl+=").Covers(ParseInput("=")));
}
