#pragma once

#include <array>
#include <charconv>
#include <cmath>
#include <string>

/// The shortest text that reads back as the same number, the same under every locale.
inline std::string ShortestText(double number) {
  constexpr std::size_t kLongest = 32;
  std::array<char, kLongest> text{};
  return {text.data(), std::to_chars(text.data(), text.data() + text.size(), number).ptr};
}

/// A number for people to read, the same under every locale: at most so many digits, and 0 for what is less than a
/// billionth of `unit`, the size that matters.
inline std::string RoundedText(double number, int digits, double unit) {
  constexpr double kNoise = 1e-9;
  constexpr std::size_t kLongest = 32;
  if (std::abs(number) < kNoise * unit) number = 0.0;
  std::array<char, kLongest> text{};
  return {text.data(),
          std::to_chars(text.data(), text.data() + text.size(), number, std::chars_format::general, digits).ptr};
}
