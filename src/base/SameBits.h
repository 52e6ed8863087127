#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>

/// Whether both are the same to the last bit: 0 and -0 are not, and a value that is no number is like itself.
inline bool SameBits(double a, double b) { return std::bit_cast<std::uint64_t>(a) == std::bit_cast<std::uint64_t>(b); }

/// The same for all entries of two arrays of one size.
template <typename Array>
bool SameBits(const Array& a, const Array& b) {
  for (std::size_t k = 0; k < a.size(); ++k) {
    if (!SameBits(a[k], b[k])) return false;
  }
  return true;
}
