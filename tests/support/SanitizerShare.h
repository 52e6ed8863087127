#pragma once

/// How many of `count` repetitions a test makes: all, but a quarter under the sanitizers, where each takes several
/// times as long. For repetitions that differ in what they draw, not in what they test.
constexpr int RepetitionsOf(int count) {
#ifdef __SANITIZE_ADDRESS__
  return count / 4;
#else
  return count;
#endif
}
