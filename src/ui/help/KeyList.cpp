#include "ui/help/KeyList.h"

#include <algorithm>
#include <cctype>
#include <cstddef>

namespace {

std::string LowerCase(std::string_view text) {
  std::string lower(text);
  std::ranges::transform(lower, lower.begin(), [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
  return lower;
}

std::string Trimmed(std::string_view text) {
  const std::size_t first = text.find_first_not_of(' ');
  if (first == std::string_view::npos) return {};
  return std::string(text.substr(first, text.find_last_not_of(' ') - first + 1));
}

// Between the bars of a row; nothing for a line that is none.
std::vector<std::string> CellsOf(std::string_view line) {
  std::vector<std::string> cells;
  if (!line.starts_with('|')) return cells;
  std::size_t from = 1;
  for (std::size_t to = line.find('|', from); to != std::string_view::npos; to = line.find('|', from)) {
    cells.push_back(Trimmed(line.substr(from, to - from)));
    from = to + 1;
  }
  return cells;
}

}  // namespace

bool CKeyLine::Matches(std::string_view search) const {
  const std::string text = LowerCase(m_Where + '\n' + m_Inputs + '\n' + m_Effect);
  const std::string wanted = LowerCase(search);
  std::size_t from = wanted.find_first_not_of(' ');
  while (from != std::string::npos) {
    const std::size_t to = std::min(wanted.find(' ', from), wanted.size());
    if (text.find(wanted.substr(from, to - from)) == std::string::npos) return false;
    from = wanted.find_first_not_of(' ', to);
  }
  return true;
}

// The table begins with its titles and a line of dashes.
std::vector<CKeyLine> KeyListIn(std::string_view text) {
  constexpr std::size_t kCells = 3;
  constexpr int kHeadLines = 2;
  std::vector<CKeyLine> lines;
  std::string where;
  int row = 0;
  while (!text.empty()) {
    const std::size_t end = std::min(text.find('\n'), text.size());
    const std::vector<std::string> cells = CellsOf(text.substr(0, end));
    text.remove_prefix(std::min(end + 1, text.size()));
    if (cells.size() != kCells || ++row <= kHeadLines) continue;
    if (!cells[0].empty()) where = cells[0];
    lines.push_back({where, cells[1], cells[2]});
  }
  return lines;
}
