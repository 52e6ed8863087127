#include "ui/window/HelpTexts.h"

std::string FormatHelp(int index, std::initializer_list<std::string> values) {
  const std::string pattern = HelpTextOf(index);
  std::string text;
  for (std::size_t i = 0; i < pattern.size(); ++i) {
    const std::size_t place = i + 1 < pattern.size() ? static_cast<std::size_t>(pattern[i + 1] - '1') : values.size();
    if (pattern[i] == '%' && place < values.size()) {
      text += values.begin()[place];
      ++i;
    } else {
      text += pattern[i];
    }
  }
  return text;
}
