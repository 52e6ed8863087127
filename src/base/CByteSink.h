#pragma once

#include <cstddef>
#include <functional>
#include <span>
#include <string_view>

#include "base/RawBytes.h"

/// Takes bytes one piece after the other and gives them on in blocks, so that the whole need never be in memory.
///
/// All blocks but the last are of one size, so that each begins at a multiple of it: a file system then has memory for
/// a block in one piece, and takes it in half the time.
class CByteSink {
 public:
  /// Takes a block; it is gone afterwards.
  using Drain = std::function<void(std::string_view)>;
  static constexpr std::size_t kBlock = std::size_t{1} << 20;
  static constexpr std::size_t kLeastRoom = std::size_t{1} << 12;

  /// `drain` is given one block or several that follow each other, and never nothing.
  explicit CByteSink(Drain drain);

  /// Appends bytes.
  void Put(std::string_view bytes);
  /// Where bytes may be made in place, at least kLeastRoom of them, until the next call; `Filled` appends the first of
  /// these.
  std::span<char> Room();
  void Filled(std::size_t count);
  /// Gives on what is left.
  void Flush();

 private:
  Drain m_Drain;
  RawBytes m_pBytes;
  std::size_t m_uUsed = 0;  ///< less than a block between two calls
};
