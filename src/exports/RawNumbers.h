#pragma once

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstring>
#include <span>

#include "base/CByteSink.h"
#include "base/ExportProgress.h"

static_assert(std::endian::native == std::endian::little, "numbers go into files as they are in memory");

/// Copies a value of numbers as it lies in memory, which formats with the least significant byte first take; the place
/// behind it.
template <typename Value>
char* PutRaw(const Value& value, char* out) {
  std::memcpy(out, &value, sizeof(value));
  return out + sizeof(value);
}

/// Gives records of `size` bytes each, at most CByteSink::kLeastRoom, which `put(index, out)` writes; it gives the
/// place behind them. False where the steps do not go on.
template <typename Put>
bool PutRecords(std::size_t count, std::size_t size, const CExportSteps& steps, const Put& put, CByteSink& sink) {
  return steps.ForBlocks(count, [&](std::size_t begin, std::size_t end) {
    while (begin < end) {
      const std::span<char> room = sink.Room();
      const std::size_t behind = std::min(end, begin + room.size() / size);
      char* out = room.data();
      for (; begin < behind; ++begin) out = put(begin, out);
      sink.Filled(static_cast<std::size_t>(out - room.data()));
    }
  });
}
