#include "editing/TypedNumber.h"

#include <charconv>
#include <cmath>

#include "base/NumberText.h"

std::optional<double> TypedNumber(std::string_view text) {
  constexpr std::string_view kBlanks = " \t";
  const std::size_t first = text.find_first_not_of(kBlanks);
  if (first == std::string_view::npos) return std::nullopt;
  text = text.substr(first, text.find_last_not_of(kBlanks) - first + 1);
  if (text.starts_with('+') && !text.starts_with("+-")) text.remove_prefix(1);
  double number = 0.0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (error != std::errc() || end != text.data() + text.size() || !std::isfinite(number)) return std::nullopt;
  return number;
}

std::string ShownNumber(double value, double unit) {
  constexpr int kDigits = 9;
  return RoundedText(value, kDigits, unit);
}
