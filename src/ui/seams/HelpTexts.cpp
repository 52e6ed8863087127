#include "ui/seams/HelpTexts.h"

#include "base/NumberText.h"

void FormatHelp(std::string& text, HelpText::Index index, std::initializer_list<std::string_view> values) {
  const std::string_view pattern = HelpTextOf(index);
  text.clear();
  for (std::size_t i = 0; i < pattern.size(); ++i) {
    const std::size_t place = i + 1 < pattern.size() ? static_cast<std::size_t>(pattern[i + 1] - '1') : values.size();
    if (pattern[i] == '%' && place < values.size()) {
      text += values.begin()[place];
      ++i;
    } else {
      text += pattern[i];
    }
  }
}

std::string FormatHelp(HelpText::Index index, std::initializer_list<std::string_view> values) {
  std::string text;
  FormatHelp(text, index, values);
  return text;
}

std::string HelpNumber(double value, double unit) {
  constexpr int kDigits = 6;
  return RoundedText(value, kDigits, unit);
}
