#pragma once

#include <array>
#include <charconv>
#include <string>

/// The shortest text that reads back as the same number, the same under every locale.
inline std::string ShortestText(double number) {
  constexpr std::size_t kLongest = 32;
  std::array<char, kLongest> text{};
  return {text.data(), std::to_chars(text.data(), text.data() + text.size(), number).ptr};
}
