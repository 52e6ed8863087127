#include "io/FileUri.h"

#include <charconv>
#include <cstdint>

namespace {

constexpr std::string_view kScheme = "file://";
constexpr std::string_view kHexDigits = "0123456789ABCDEF";

// What may stand in the path of a URI as it is. The names of locales have no say in it.
bool IsPlain(unsigned char c) {
  const bool letter = (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
  return letter || (c >= '0' && c <= '9') || std::string_view("/-_.~").find(static_cast<char>(c)) != std::string::npos;
}

// The byte that two hexadecimal digits stand for; nothing for other text, and for 0, which no name contains.
std::optional<char> ByteOf(std::string_view digits) {
  std::uint8_t byte = 0;
  const char* end = digits.data() + digits.size();
  const auto [rest, error] = std::from_chars(digits.data(), end, byte, 16);
  if (digits.size() != 2 || error != std::errc() || rest != end || byte == 0) return {};
  return static_cast<char>(byte);
}

}  // namespace

std::string UriOf(std::string_view path) {
  std::string uri(kScheme);
  for (const char c : path) {
    const auto byte = static_cast<unsigned char>(c);
    if (IsPlain(byte)) {
      uri += c;
    } else {
      uri += {'%', kHexDigits[byte >> 4], kHexDigits[byte & 15]};
    }
  }
  return uri;
}

std::optional<std::string> PathOf(std::string_view uri) {
  if (!uri.starts_with(kScheme)) return {};
  uri.remove_prefix(kScheme.size());
  // A host may stand before the path.
  constexpr std::string_view kThisMachine = "localhost";
  if (uri.starts_with(kThisMachine)) uri.remove_prefix(kThisMachine.size());
  if (!uri.starts_with('/')) return {};
  std::string path;
  for (; !uri.empty(); uri.remove_prefix(1)) {
    if (uri.front() != '%') {
      path += uri.front();
      continue;
    }
    const std::optional<char> byte = ByteOf(uri.substr(1, 2));
    if (!byte.has_value()) return {};
    path += *byte;
    uri.remove_prefix(2);
  }
  return path;
}
