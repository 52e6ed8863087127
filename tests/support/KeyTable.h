#pragma once

#include <functional>
#include <string>
#include <vector>

/// What the user does: a key, the wheel, or a click or drag of the mouse, with keys held.
struct CKeyInput {
  enum class Kind { Key, Wheel, Click, DoubleClick, Drag };

  Kind m_Kind = Kind::Key;
  int m_iModifiers = 0;          ///< of FL_SHIFT, FL_CTRL and FL_ALT
  std::string m_Key;             ///< of Kind::Key: "Tab", "Enter", ..., or its character, letters in lower case
  std::vector<int> m_aiButtons;  ///< of clicks and drags
  bool m_bOnSomething = false;   ///< on a constraint or a curve, not just anywhere

  /// Whether what is listed as this stands for what was done, too: with other keys held as well, somewhere in
  /// particular, and as the press that begins a drag.
  bool Covers(const CKeyInput& done) const;
  std::string Text() const;

  bool operator==(const CKeyInput&) const = default;
};

/// What `text` means: "Ctrl+Enter", "p", "wheel", "Shift+left drag", "right click on a curve",
/// "double click on a node"; "any click" is one with
/// each of the three buttons.
CKeyInput ParseInput(std::string text);

struct CKeyRow {
  std::string m_Where;
  std::string m_Inputs;  ///< as written, separated by ", "
  std::string m_Effect;

  bool operator==(const CKeyRow&) const = default;
  std::vector<CKeyInput> Inputs() const;
};

/// The table of docs/keys.md, and what the man page says under "MOUSE AND KEYS".
std::vector<CKeyRow> ListedKeyTable();
std::vector<CKeyRow> ManPageKeyTable();

/// The inputs that docs/keys.md lists for these places.
std::vector<CKeyInput> InputsAt(const std::vector<std::string>& places);
bool IsCovered(const std::vector<CKeyInput>& listed, const CKeyInput& done);

/// A key as the toolkit reports it.
struct CTypedKey {
  int m_iKey = 0;
  int m_iModifiers = 0;
  std::string m_Text;

  CKeyInput Input() const;
};
/// Every key of a keyboard with every set of modifiers.
std::vector<CTypedKey> AllTypedKeys();
/// Makes `key` the toolkit's current event and calls `handle`.
bool WithTypedKey(const CTypedKey& key, const std::function<bool()>& handle);

/// What an input leads to, as a text; the same from the same beginning, empty where it does nothing.
template <typename Input>
using OutcomeOf = std::function<std::string(const Input&)>;

/// Types every key with every set of modifiers. The listed ones must do something. One that is not listed must do
/// nothing or, with modifiers more than a listed one has, the same.
void ExpectKeysAreThoseListed(const std::vector<CKeyInput>& listed, const OutcomeOf<CTypedKey>& type);
/// The same for each button's click and drag with each key held, anywhere and on something.
void ExpectGesturesAreThoseListed(const std::vector<CKeyInput>& listed, const OutcomeOf<CKeyInput>& perform);
