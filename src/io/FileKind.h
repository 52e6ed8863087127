#pragma once

#include <cstdint>
#include <span>
#include <string>

// What a file is, for somebody who expected a picture. Judged by the first bytes, never by the name.

/// How many of a file's first bytes `KindOfBytes` can make use of.
inline constexpr std::size_t kKindBytes = 256;

/// A noun with its article, such as "a JPEG" or "a BMP with 8 bits a pixel"; empty for what is not known. `bytes` is
/// the beginning of the file, or all of it.
std::string KindOfBytes(std::span<const std::uint8_t> bytes);
