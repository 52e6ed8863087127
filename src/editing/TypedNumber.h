#pragma once

#include <optional>
#include <string>
#include <string_view>

/// The number that a person has typed, whatever stands before or behind it in blanks; nothing for what is no finite
/// number. The decimal sign is the point under every locale.
std::optional<double> TypedNumber(std::string_view text);

/// A number as a field shows it: nine digits at most, enough to tell two steps apart in models of any unit, and 0 for
/// what is less than a billionth of `unit`, the size that matters.
std::string ShownNumber(double value, double unit);
