#include "ui/seams/UiScale.h"

#include <charconv>
#include <cstdlib>
#include <string_view>
#include <system_error>

double UiScale() {
  constexpr double kLeast = 0.5;
  constexpr double kMost = 4.0;
  const char* text = std::getenv("RELIEVO_SCALE");
  if (text == nullptr) return 1.0;
  const std::string_view number(text);
  const char* const end = number.data() + number.size();
  double scale = 0.0;
  // Always with a point, whatever the locale says.
  const auto [rest, error] = std::from_chars(number.data(), end, scale);
  const bool valid = error == std::errc() && rest == end && scale >= kLeast && scale <= kMost;
  return valid ? scale : 1.0;
}
