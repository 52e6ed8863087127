#pragma once

#include <string>

/// What the user is to be told of `count` curves that were refused their generated constraints.
inline std::string RefusedCurvesText(int count) {
  return "The curves would generate more than 200000 constraints. " + std::to_string(count) +
         " of them generate none: make their distances larger.";
}
