#include "editing/TypedNumber.h"

#include <array>
#include <charconv>
#include <cmath>

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
  constexpr double kNoise = 1e-9;
  constexpr int kDigits = 9;
  constexpr std::size_t kLongest = 32;
  if (std::abs(value) < kNoise * unit) value = 0.0;
  std::array<char, kLongest> text{};
  return {text.data(),
          std::to_chars(text.data(), text.data() + text.size(), value, std::chars_format::general, kDigits).ptr};
}
