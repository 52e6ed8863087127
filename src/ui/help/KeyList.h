#pragma once

#include <string>
#include <string_view>
#include <vector>

/// A row of the list of keys.
struct CKeyLine {
  std::string m_Where;
  std::string m_Inputs;  ///< keys, clicks and drags, separated by commas
  std::string m_Effect;

  /// Whether each word of `search` stands somewhere in the row, whatever its case.
  bool Matches(std::string_view search) const;
  bool operator==(const CKeyLine&) const = default;
};

/// docs/keys.md as it was when the program was built.
std::string_view KeysText();

/// The rows of the table in a text like that; an empty first cell is the one above it.
std::vector<CKeyLine> KeyListIn(std::string_view text);
