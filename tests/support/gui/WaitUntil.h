#pragma once

#include <chrono>
#include <concepts>
#include <thread>

/// How long a windowed test waits for what must happen. Only a test that fails waits that long.
inline constexpr std::chrono::seconds kPatience{20};

/// Tries `condition` again and again until it holds; false if it never did.
template <std::predicate Condition>
bool WaitUntil(Condition condition) {
  using namespace std::chrono_literals;
  const auto end = std::chrono::steady_clock::now() + kPatience;
  while (!condition()) {
    if (std::chrono::steady_clock::now() > end) return false;
    std::this_thread::sleep_for(5ms);
  }
  return true;
}
