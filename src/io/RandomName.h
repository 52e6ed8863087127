#pragma once

#include <cstddef>
#include <random>
#include <string>
#include <string_view>

/// A short random name for a file that is to lie beside another one for a moment.
inline std::string RandomName() {
  constexpr std::string_view kLetters = "abcdefghijklmnopqrstuvwxyz234567";
  constexpr std::size_t kRandomLetters = 10;
  std::random_device random;
  std::string name = ".relievo-";
  for (std::size_t k = 0; k < kRandomLetters; ++k) name += kLetters[random() % kLetters.size()];
  return name;
}
