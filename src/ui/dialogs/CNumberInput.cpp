#include "ui/dialogs/CNumberInput.h"

#include <array>
#include <charconv>
#include <cmath>
#include <string_view>

namespace {

std::string_view Trimmed(std::string_view text) {
  const std::size_t first = text.find_first_not_of(" \t");
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(" \t") - first + 1);
}

}  // namespace

void CNumberInput::Preset(double number) {
  constexpr std::size_t kTextSize = 128;  // what the toolkit formats numbers into
  value(number);
  std::array<char, kTextSize> text{};
  format(text.data());
  // A value that is the same as before leaves what the user typed in the input.
  input.value(text.data());
  m_fPreset = number;
  m_sPresetText = text.data();
}

std::optional<double> CNumberInput::Number() const {
  if (input.value() == m_sPresetText) return m_fPreset;
  std::string_view text = Trimmed(input.value());
  if (text.starts_with('+')) text.remove_prefix(1);
  double number = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (error != std::errc() || end != text.data() + text.size() || !std::isfinite(number)) return std::nullopt;
  return number;
}
