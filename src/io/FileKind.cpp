#include "io/FileKind.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <string_view>
#include <system_error>

namespace {

struct CMagic {
  std::size_t m_uOffset;
  std::string_view m_Bytes;
  const char* m_Kind;
};

using namespace std::string_view_literals;

constexpr std::array kMagic{
    CMagic{0, "\xFF\xD8\xFF"sv, "a JPEG"}, CMagic{0, "\x89PNG\r\n\x1A\n"sv, "a PNG"},
    CMagic{0, "GIF87a"sv, "a GIF"},        CMagic{0, "GIF89a"sv, "a GIF"},
    CMagic{8, "WEBP"sv, "a WebP"},         CMagic{0, "II*\0"sv, "a TIFF"},
    CMagic{0, "MM\0*"sv, "a TIFF"},        CMagic{4, "ftypavif"sv, "an AVIF"},
    CMagic{4, "ftypheic"sv, "a HEIC"},     CMagic{4, "ftypheix"sv, "a HEIC"},
    CMagic{4, "ftyphevc"sv, "a HEIC"},     CMagic{4, "ftypmif1"sv, "a HEIC"},
    CMagic{4, "ftypmsf1"sv, "a HEIC"},     CMagic{0, "%PDF-"sv, "a PDF"},
    CMagic{0, "#VRML"sv, "a VRML scene"},
};

bool Holds(std::string_view text, const CMagic& magic) {
  return text.size() >= magic.m_uOffset && text.substr(magic.m_uOffset).starts_with(magic.m_Bytes);
}

std::uint32_t Number(std::string_view text, std::size_t offset, std::size_t width) {
  std::uint32_t value = 0;
  for (std::size_t k = width; k-- > 0;) value = value << 8 | static_cast<std::uint8_t>(text[offset + k]);
  return value;
}

// Only what the reader refuses, in the order in which it matters to somebody who has to save the picture again.
std::string KindOfBmp(std::string_view text) {
  constexpr std::size_t kHeader = 54;
  constexpr std::uint32_t kInfoHeader = 40;
  if (text.size() < kHeader) return "a BMP cut short";
  const std::uint32_t info = Number(text, 14, 4);
  if (info < kInfoHeader) return "a BMP of an old kind";
  const std::uint32_t bits = Number(text, 28, 2);
  // Bit fields; they are uncompressed, and come with 16 or 32 bits.
  constexpr std::uint32_t kBitFields = 3;
  const std::uint32_t compression = Number(text, 30, 4);
  if (compression != 0 && compression != kBitFields) return "a compressed BMP";
  if (bits != 24) return "a BMP with " + std::to_string(bits) + (bits == 1 ? " bit a pixel" : " bits a pixel");
  if (static_cast<std::int32_t>(Number(text, 22, 4)) < 0) return "a BMP with its top row first";
  if (info == 108) return "a BMP with a header of version 4";
  if (info == 124) return "a BMP with a header of version 5";
  if (info != kInfoHeader || Number(text, 10, 4) != kHeader) return "a BMP with a longer header";
  if (compression != 0 || Number(text, 26, 2) != 1) return "a BMP with a strange header";
  return "a BMP of an impossible size";
}

// How many numbers the first line of `text` consists of, -1 where it holds anything else; the line is taken off.
int TakeNumbers(std::string_view& text) {
  std::string_view line = text.substr(0, text.find('\n'));
  text.remove_prefix(std::min(line.size() + 1, text.size()));
  for (int count = 0;; ++count) {
    line.remove_prefix(std::min(line.find_first_not_of(" \t\r"), line.size()));
    if (line.empty()) return count;
    double number = 0.0;
    const auto [end, error] = std::from_chars(line.data(), line.data() + line.size(), number);
    if (error != std::errc()) return -1;
    line.remove_prefix(static_cast<std::size_t>(end - line.data()));
  }
}

// A rectangle, and what precedes the first list of constraints, as they are saved.
bool IsGridFile(std::string_view text) {
  const int corners = TakeNumbers(text);
  const int levels = TakeNumbers(text);
  return corners == 4 && levels == 2;
}

}  // namespace

std::string KindOfBytes(std::span<const std::uint8_t> bytes) {
  const std::string_view text(reinterpret_cast<const char*>(bytes.data()), bytes.size());
  if (text.empty()) return "an empty file";
  if (text.starts_with("BM")) return KindOfBmp(text);
  const auto* const magic = std::ranges::find_if(kMagic, [text](const CMagic& known) { return Holds(text, known); });
  if (magic != kMagic.end()) return magic->m_Kind;
  return IsGridFile(text) ? "a grid file" : "";
}
