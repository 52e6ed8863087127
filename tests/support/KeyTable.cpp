#include "support/KeyTable.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <fstream>
#include <stdexcept>
#include <string_view>
#include <utility>

#include <FL/Fl.H>
#include <gtest/gtest.h>

namespace {

using Kind = CKeyInput::Kind;

constexpr std::array<std::pair<std::string_view, int>, 3> kModifiers{
    {{"Shift+", FL_SHIFT}, {"Ctrl+", FL_CTRL}, {"Alt+", FL_ALT}}};
constexpr std::array<std::pair<std::string_view, int>, 3> kButtons{
    {{"left ", FL_LEFT_MOUSE}, {"middle ", FL_MIDDLE_MOUSE}, {"right ", FL_RIGHT_MOUSE}}};
constexpr auto kNamedKeys = std::to_array<std::pair<std::string_view, int>>(
    {{"Tab", FL_Tab},        {"Enter", FL_Enter},        {"Enter", FL_KP_Enter},
     {"Escape", FL_Escape},  {"Delete", FL_Delete},      {"BackSpace", FL_BackSpace},
     {"Left", FL_Left},      {"Right", FL_Right},        {"Up", FL_Up},
     {"Down", FL_Down},      {"Home", FL_Home},          {"End", FL_End},
     {"PageUp", FL_Page_Up}, {"PageDown", FL_Page_Down}, {"Insert", FL_Insert},
     {"Pause", FL_Pause},    {"Menu", FL_Menu},          {"F1", FL_F + 1},
     {"F5", FL_F + 5},       {"F12", FL_F + 12}});

bool TakeFront(std::string& text, std::string_view front) {
  if (!text.starts_with(front) || text.size() == front.size()) return false;
  text.erase(0, front.size());
  return true;
}

std::string Trimmed(const std::string& text) {
  const std::size_t first = text.find_first_not_of(' ');
  return first == std::string::npos ? "" : text.substr(first, text.find_last_not_of(' ') - first + 1);
}

std::vector<std::string> Split(const std::string& text, std::string_view separator) {
  std::vector<std::string> parts;
  std::size_t from = 0;
  for (std::size_t to = text.find(separator); to != std::string::npos; to = text.find(separator, from)) {
    parts.push_back(text.substr(from, to - from));
    from = to + separator.size();
  }
  parts.push_back(text.substr(from));
  return parts;
}

std::ifstream Opened(const char* file) {
  std::ifstream in(file);
  if (!in) throw std::runtime_error(std::string(file) + " cannot be read");
  return in;
}

std::vector<int> TakeButtons(std::string& text) {
  if (TakeFront(text, "any ")) return {FL_LEFT_MOUSE, FL_MIDDLE_MOUSE, FL_RIGHT_MOUSE};
  for (const auto& [name, button] : kButtons) {
    if (TakeFront(text, name)) return {button};
  }
  return {};
}

/// Each button's click and drag with each key held, anywhere and on something.
std::vector<CKeyInput> AllGestures() {
  std::vector<CKeyInput> gestures;
  for (const auto& [name, button] : kButtons) {
    for (const int modifiers : {0, FL_SHIFT, FL_CTRL, FL_ALT}) {
      for (const bool onSomething : {false, true}) {
        for (const Kind kind : {Kind::Click, Kind::Drag})
          gestures.push_back({kind, modifiers, "", {button}, onSomething});
      }
    }
  }
  return gestures;
}

std::string ModifierText(int modifiers) {
  std::string text;
  for (const auto& [name, modifier] : kModifiers) text += (modifiers & modifier) != 0 ? name : "";
  return text;
}

struct COutcome {
  CKeyInput m_Done;
  std::string m_Text;

  bool operator==(const COutcome&) const = default;
};

// The input without those of its modifiers that `listed` does not have.
CKeyInput WithModifiersOf(const CKeyInput& listed, CKeyInput input) {
  input.m_iModifiers = listed.m_iModifiers;
  return input;
}

void ExpectOutcomesAreListed(const std::vector<CKeyInput>& listed, const std::vector<COutcome>& outcomes) {
  for (const COutcome& outcome : outcomes) {
    const CKeyInput& done = outcome.m_Done;
    const auto isDone = [&](const CKeyInput& input) {
      return input.Covers(done) && input.m_Kind == done.m_Kind && input.m_iModifiers == done.m_iModifiers &&
             input.m_bOnSomething == done.m_bOnSomething;
    };
    const auto doesTheSame = [&](const CKeyInput& input) {
      const COutcome plain{WithModifiersOf(input, done), outcome.m_Text};
      return input.Covers(done) && std::ranges::find(outcomes, plain) != outcomes.end();
    };
    if (std::ranges::any_of(listed, isDone)) {
      EXPECT_NE(outcome.m_Text, "") << done.Text() << " is listed, but does nothing";
    } else if (!outcome.m_Text.empty()) {
      EXPECT_TRUE(std::ranges::any_of(listed, doesTheSame)) << done.Text() << " does something that is not listed";
    }
  }
}

bool IsSubset(int modifiers, int of) { return (modifiers & ~of) == 0; }

}  // namespace

bool CKeyInput::Covers(const CKeyInput& done) const {
  if (!IsSubset(m_iModifiers, done.m_iModifiers) || (m_bOnSomething && !done.m_bOnSomething)) return false;
  if (m_Kind != done.m_Kind && !(m_Kind == Kind::Click && done.m_Kind == Kind::Drag)) return false;
  return m_Key == done.m_Key && std::ranges::all_of(done.m_aiButtons, [this](int button) {
           return std::ranges::find(m_aiButtons, button) != m_aiButtons.end();
         });
}

std::string CKeyInput::Text() const {
  std::string text = ModifierText(m_iModifiers) + m_Key;
  for (const auto& [name, button] : kButtons) {
    if (std::ranges::find(m_aiButtons, button) != m_aiButtons.end()) text += name;
  }
  if (m_Kind == Kind::Click) text += "click";
  if (m_Kind == Kind::Drag) text += "drag";
  return text + (m_bOnSomething ? " on something" : "");
}

CKeyInput ParseInput(std::string text) {
  CKeyInput input;
  for (bool taken = true; taken;) {
    taken = false;
    for (const auto& [name, modifier] : kModifiers) {
      if (TakeFront(text, name)) input.m_iModifiers |= modifier, taken = true;
    }
  }
  const bool twice = TakeFront(text, "double ");
  input.m_aiButtons = twice ? std::vector{FL_LEFT_MOUSE} : TakeButtons(text);
  if (input.m_aiButtons.empty()) {
    input.m_Kind = text == "wheel" ? Kind::Wheel : Kind::Key;
    if (input.m_Kind == Kind::Key) input.m_Key = text;
    if (text.size() == 1) input.m_Key[0] = static_cast<char>(std::tolower(text[0]));
    return input;
  }
  input.m_Kind = text.starts_with("drag") ? Kind::Drag : twice ? Kind::DoubleClick : Kind::Click;
  input.m_bOnSomething = text.find(" on a ") != std::string::npos;
  return input;
}

std::vector<CKeyInput> CKeyRow::Inputs() const {
  std::vector<CKeyInput> inputs;
  for (const std::string& text : Split(m_Inputs, ", ")) inputs.push_back(ParseInput(text));
  return inputs;
}

std::vector<CKeyRow> ListedKeyTable() {
  std::ifstream in = Opened(RELIEVO_KEYS);
  std::string line;
  std::vector<CKeyRow> rows;
  std::string where;
  while (std::getline(in, line)) {
    const std::vector<std::string> cells = Split(line, "|");
    if (cells.size() != 5 || cells[1] == "---" || Trimmed(cells[1]) == "where") continue;
    if (!Trimmed(cells[1]).empty()) where = Trimmed(cells[1]);
    rows.push_back({where, Trimmed(cells[2]), Trimmed(cells[3])});
  }
  return rows;
}

// After a heading ".SS where" each row is ".TP", a line of inputs and a line that says what they do.
std::vector<CKeyRow> ManPageKeyTable() {
  std::ifstream in = Opened(RELIEVO_MAN_PAGE);
  std::string line;
  while (std::getline(in, line) && line != ".SH MOUSE AND KEYS") continue;
  std::vector<CKeyRow> rows;
  std::string where;
  while (std::getline(in, line) && !line.starts_with(".SH")) {
    if (line.starts_with(".SS ")) where = line.substr(4);
    if (line != ".TP") continue;
    CKeyRow row{where, {}, {}};
    std::getline(in, row.m_Inputs);
    std::getline(in, row.m_Effect);
    // Only hyphens are escaped.
    for (std::string* text : {&row.m_Inputs, &row.m_Effect}) std::erase(*text, '\\');
    rows.push_back(row);
  }
  return rows;
}

std::vector<CKeyInput> InputsAt(const std::vector<std::string>& places) {
  std::vector<CKeyInput> inputs;
  for (const CKeyRow& row : ListedKeyTable()) {
    if (std::ranges::find(places, row.m_Where) == places.end()) continue;
    for (CKeyInput& input : row.Inputs()) inputs.push_back(std::move(input));
  }
  return inputs;
}

bool IsCovered(const std::vector<CKeyInput>& listed, const CKeyInput& done) {
  return std::ranges::any_of(listed, [&](const CKeyInput& input) { return input.Covers(done); });
}

CKeyInput CTypedKey::Input() const {
  CKeyInput input;
  input.m_iModifiers = m_iModifiers;
  input.m_Key = m_Text;
  for (const auto& [name, key] : kNamedKeys) {
    if (key == m_iKey) input.m_Key = name;
  }
  return input;
}

std::vector<CTypedKey> AllTypedKeys() {
  std::vector<CTypedKey> keys;
  for (const bool shift : {false, true}) {
    for (const bool control : {false, true}) {
      for (const bool alt : {false, true}) {
        const int modifiers = (shift ? FL_SHIFT : 0) | (control ? FL_CTRL : 0) | (alt ? FL_ALT : 0);
        for (const auto& [name, key] : kNamedKeys) keys.push_back({key, modifiers, ""});
        for (char c = ' '; c <= '~'; ++c) {
          if (c < 'A' || c > 'Z') keys.push_back({c, modifiers, {c}});
        }
        for (const char c : std::string_view("0123456789+-*/.=")) keys.push_back({FL_KP + c, modifiers, {c}});
      }
    }
  }
  return keys;
}

bool WithTypedKey(const CTypedKey& key, const std::function<bool()>& handle) {
  std::string text = key.m_Text;
  Fl::e_keysym = key.m_iKey;
  Fl::e_state = key.m_iModifiers;
  Fl::e_text = text.data();
  Fl::e_length = static_cast<int>(text.size());
  const bool result = handle();
  Fl::e_text = nullptr;
  Fl::e_length = 0;
  Fl::e_state = 0;
  return result;
}

void ExpectKeysAreThoseListed(const std::vector<CKeyInput>& listed, const OutcomeOf<CTypedKey>& type) {
  std::vector<COutcome> outcomes;
  for (const CTypedKey& key : AllTypedKeys()) outcomes.push_back({key.Input(), type(key)});
  ExpectOutcomesAreListed(listed, outcomes);
}

void ExpectGesturesAreThoseListed(const std::vector<CKeyInput>& listed, const OutcomeOf<CKeyInput>& perform) {
  std::vector<COutcome> outcomes;
  for (const CKeyInput& gesture : AllGestures()) outcomes.push_back({gesture, perform(gesture)});
  ExpectOutcomesAreListed(listed, outcomes);
}
