#pragma once

#include <bit>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>

// Numbers as bytes, the least significant first on every machine, floating-point ones in the IEEE format.

/// Appends numbers to bytes.
class CByteWriter {
 public:
  /// One number: 1 byte for a bool, else as many as the type has.
  template <typename Number>
  void Put(Number value) {
    if constexpr (std::is_same_v<Number, double>) {
      Put(std::bit_cast<std::uint64_t>(value));
    } else {
      for (std::size_t k = 0; k < sizeof(Number); ++k) m_Bytes += static_cast<char>(value >> (8 * k) & 0xFF);
    }
  }
  /// The numbers of a range one after the other, without their count.
  template <typename Range>
  void PutAll(const Range& values) {
    for (const auto value : values) Put(value);
  }

  /// What has been written so far; `Take` leaves nothing.
  const std::string& Bytes() const { return m_Bytes; }
  std::string Take() { return std::move(m_Bytes); }

 private:
  std::string m_Bytes;
};

/// Takes numbers off bytes. Whatever goes beyond their end, and every floating-point number that is not finite, reads
/// as 0 and is remembered.
class CByteReader {
 public:
  /// The bytes must outlive the reader.
  explicit CByteReader(std::string_view bytes) : m_Bytes(bytes) {}

  /// The next number (see CByteWriter).
  template <typename Number>
  Number Get() {
    if constexpr (std::is_same_v<Number, double>) {
      const auto value = std::bit_cast<double>(Get<std::uint64_t>());
      m_bSound = m_bSound && std::isfinite(value);
      return std::isfinite(value) ? value : 0.0;
    } else {
      if (!Has(1, sizeof(Number))) return {};
      std::uint64_t value = 0;
      for (std::size_t k = sizeof(Number); k-- > 0;) value = value << 8 | static_cast<unsigned char>(m_Bytes[k]);
      m_Bytes.remove_prefix(sizeof(Number));
      return static_cast<Number>(value);
    }
  }
  /// Whether there are `count` records of so many bytes; remembered if not, so that a count may be tried before memory
  /// is taken for it.
  bool Has(std::uint64_t count, std::size_t size) {
    m_bSound = m_bSound && count <= m_Bytes.size() / size;
    return m_bSound;
  }

  /// Whether all that was asked for was there, and finite; and whether nothing is left besides.
  bool IsSound() const { return m_bSound; }
  bool IsWhole() const { return m_bSound && m_Bytes.empty(); }

 private:
  std::string_view m_Bytes;
  bool m_bSound = true;
};
