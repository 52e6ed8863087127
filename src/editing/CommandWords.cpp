#include "editing/CommandWords.h"

#include <algorithm>
#include <cstddef>
#include <utility>

namespace {

constexpr char kNoQuote = '\0';

bool IsBlank(char c) { return c == ' ' || c == '\t' || c == '\n' || c == '\r'; }

/// Takes a line character by character.
class CSplitter {
 public:
  void Take(char c) {
    if (m_bEscaped) {
      AddEscaped(c);
    } else if (c == '\\' && m_cQuote != '\'') {
      m_bEscaped = true;
      m_bInWord = true;
    } else if (m_cQuote != kNoQuote) {
      AddQuoted(c);
    } else if (c == '\'' || c == '"') {
      m_cQuote = c;
      m_bInWord = true;
    } else if (IsBlank(c)) {
      EndWord();
    } else {
      Add(c);
    }
  }
  std::optional<std::vector<std::string>> Finish() {
    if (m_bEscaped || m_cQuote != kNoQuote) return {};
    EndWord();
    return std::move(m_aWords);
  }

 private:
  void Add(char c) {
    m_Word += c;
    m_bInWord = true;
  }
  void AddEscaped(char c) {
    const bool plain = m_cQuote == kNoQuote || c == '"' || c == '\\';
    if (!plain) Add('\\');
    Add(c);
    m_bEscaped = false;
  }
  void AddQuoted(char c) {
    if (c == m_cQuote) {
      m_cQuote = kNoQuote;
    } else {
      Add(c);
    }
  }
  void EndWord() {
    if (m_bInWord) m_aWords.push_back(std::exchange(m_Word, {}));
    m_bInWord = false;
  }

  std::vector<std::string> m_aWords;
  std::string m_Word;
  bool m_bInWord = false;  ///< also in one that is empty so far: ""
  bool m_bEscaped = false;
  char m_cQuote = kNoQuote;
};

}  // namespace

std::optional<std::vector<std::string>> CommandWords(std::string_view line) {
  CSplitter splitter;
  for (const char c : line) splitter.Take(c);
  return splitter.Finish();
}

std::string WithFilledPlaces(std::string_view word, const std::map<std::string, std::string>& values) {
  std::string filled;
  while (!word.empty()) {
    const auto here = std::ranges::find_if(values, [&](const auto& value) { return word.starts_with(value.first); });
    if (here == values.end()) {
      filled += word.front();
      word.remove_prefix(1);
    } else {
      filled += here->second;
      word.remove_prefix(here->first.size());
    }
  }
  return filled;
}
