#pragma once

#include <bit>
#include <cstring>

static_assert(std::endian::native == std::endian::little, "numbers go into files as they are in memory");

/// Copies a value of numbers as it lies in memory, which formats with the least significant byte first take; the place
/// behind it.
template <typename Value>
char* PutRaw(const Value& value, char* out) {
  std::memcpy(out, &value, sizeof(value));
  return out + sizeof(value);
}
