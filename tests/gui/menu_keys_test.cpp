// Every key that the menu takes, tried out and compared with the list that the user reads.

#include <array>
#include <cctype>
#include <string>
#include <vector>

#include <FL/Fl.H>

#include "support/KeyTable.h"
#include "support/gui/WindowTest.h"
#include "ui/window/CMainMenu.h"

namespace {

class MenuKeysTest : public ToolkitTest {
 protected:
  /// What a key chooses, as "menu, entry", or "open a menu".
  std::string Chosen(CTypedKey key) {
    const auto choose = [&] { return Choose(key); };
    if (WithTypedKey(key, choose)) return m_Chosen;
    // So does the toolkit with a letter that nobody wants.
    for (char& c : key.m_Text) c = static_cast<char>(std::toupper(c));
    return WithTypedKey(key, choose) ? m_Chosen : "";
  }

  CMainMenu m_Menu{0, 0, 400, 25, [this](MenuEntry) { m_Chosen = PathOf(m_Menu.mvalue()); }};

 private:
  bool Choose(const CTypedKey& key) {
    m_Chosen.clear();
    // An open menu would wait for the user, so the titles are asked in the way the toolkit asks them.
    if (!IsEntry(key)) {
      const Fl_Menu_Item* title = key.m_iModifiers == FL_ALT ? m_Menu.menu()->find_shortcut(nullptr, true) : nullptr;
      if (title != nullptr && title->submenu() != 0) m_Chosen = "open a menu";
      return title != nullptr;
    }
    return m_Menu.handle(FL_SHORTCUT) != 0;
  }
  bool IsEntry(const CTypedKey& key) {
    for (int k = 0; k < m_Menu.size(); ++k) {
      const Fl_Menu_Item& item = m_Menu.menu()[k];
      if (item.text != nullptr && item.shortcut_ == (key.m_iKey | key.m_iModifiers)) return true;
    }
    return key.m_iModifiers != FL_ALT;
  }
  std::string PathOf(const Fl_Menu_Item* item) {
    std::array<char, 200> path{};
    if (m_Menu.item_pathname(path.data(), path.size(), item) != 0) return "no path";
    std::string text;
    for (const char c : std::string(path.data())) {
      if (c == '/') text += ", ";
      if (c != '/' && c != '&') text += c;
    }
    return text;
  }

  std::string m_Chosen;
};

std::vector<CKeyRow> MenuRows() {
  std::vector<CKeyRow> rows;
  for (const CKeyRow& row : ListedKeyTable()) {
    if (row.m_Where == "menus") rows.push_back(row);
  }
  return rows;
}

std::string ListedEffect(const CTypedKey& key) {
  for (const CKeyRow& row : MenuRows()) {
    for (const CKeyInput& input : row.Inputs()) {
      if (input.m_Key == key.Input().m_Key && input.m_iModifiers == key.m_iModifiers) return row.m_Effect;
    }
  }
  return "";
}

// The whole window but for its menu, which waits for dialogs.
class WindowKeysTest : public WindowTest {
 protected:
  WindowKeysTest() { Menu().deactivate(); }
};

}  // namespace

TEST_F(MenuKeysTest, EachKeyChoosesWhatIsListed) {
  EXPECT_GT(MenuRows().size(), 15U);
  ExpectKeysAreThoseListed(InputsAt({"menus"}), [this](const CTypedKey& key) {
    EXPECT_EQ(Chosen(key), ListedEffect(key)) << key.Input().Text();
    return Chosen(key);
  });
}

// Escape would close a window; this one takes the focus instead. Tab and the arrows are kept from moving the focus.
TEST_F(WindowKeysTest, NoOtherKeyIsTakenThanThoseOfTheImageView) {
  ShowWindow();
  m_Window.ImageView().SetMode(EditingMode::Position);
  m_Window.ImageView().take_focus();
  std::vector<CKeyInput> listed = InputsAt({"both views", "positions and normals"});
  for (const char* key : {"Left", "Right", "Up", "Down"}) listed.push_back(ParseInput(key));
  ExpectKeysAreThoseListed(listed, [this](const CTypedKey& key) {
    const bool used = WithTypedKey(key, [this] { return Fl::handle(FL_KEYBOARD, &m_Window) != 0; });
    m_Grid.m_Console.Take();
    return used ? "used" : "";
  });
}
