#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <new>

/// Gives the memory of RawBytes back.
struct CDeleteRawBytes {
  /// As the smart pointer calls it.
  void operator()(std::uint8_t* bytes) const { ::operator delete(bytes); }
};

/// Bytes that nobody has written yet, so that the system need not have memory for them before they are used.
using RawBytes = std::unique_ptr<std::uint8_t, CDeleteRawBytes>;

/// Throws std::bad_alloc.
inline RawBytes MakeRawBytes(std::size_t count) { return RawBytes(static_cast<std::uint8_t*>(::operator new(count))); }
