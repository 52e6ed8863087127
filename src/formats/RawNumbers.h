#pragma once

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstring>
#include <string>

#include "base/ByteSink.h"
#include "base/ExportProgress.h"

static_assert(std::endian::native == std::endian::little, "numbers go into files as they are in memory");

/// Copies a value of numbers as it lies in memory, which formats with the least significant byte first take; the place
/// behind it.
template <typename Value>
char* PutRaw(const Value& value, char* out) {
  std::memcpy(out, &value, sizeof(value));
  return out + sizeof(value);
}

/// Gives records of `size` bytes each, which `put(index, out)` writes; it gives the place behind them. A few at a time
/// are written, which stay near the processor. False where the steps do not go on.
template <typename Put>
bool PutRecords(std::size_t count, std::size_t size, const CExportSteps& steps, const Put& put, const ByteSink& sink) {
  // Whole pages, whatever the size.
  constexpr std::size_t kAtOnce = 4096;
  std::string few(std::min(count, kAtOnce) * size, '\0');
  return steps.ForBlocks(count, [&](std::size_t begin, std::size_t end) {
    for (std::size_t first = begin; first < end; first += kAtOnce) {
      char* out = few.data();
      for (std::size_t k = first; k < std::min(end, first + kAtOnce); ++k) out = put(k, out);
      sink({few.data(), static_cast<std::size_t>(out - few.data())});
    }
  });
}
