#include "codecs/EmbeddedDepth.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <new>
#include <utility>
#include <vector>

#include <exempi/xmp.h>

#include "codecs/JpegDecoder.h"
#include "codecs/Orientation.h"
#include "codecs/PngBytes.h"
#include "codecs/XmpPackets.h"

namespace {

constexpr std::string_view kNamespaceEnd = "/depthmap/";
constexpr std::string_view kProperty = ":Data";
constexpr int kNoDigit = -1;

struct CRelease {
  void operator()(XmpPtr packet) const { xmp_free(packet); }
};
struct CReleaseIterator {
  void operator()(XmpIteratorPtr iterator) const { xmp_iterator_free(iterator); }
};
struct CReleaseString {
  void operator()(XmpStringPtr text) const { xmp_string_free(text); }
};
using CPacket = std::unique_ptr<_Xmp, CRelease>;
using CIterator = std::unique_ptr<_XmpIterator, CReleaseIterator>;
using CText = std::unique_ptr<_XmpString, CReleaseString>;

int DigitOf(char c) {
  constexpr std::string_view kDigits = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  const std::size_t place = kDigits.find(c);
  return place == std::string_view::npos ? kNoDigit : static_cast<int>(place);
}

// Up to the first character that is neither a digit nor a blank.
std::string DecodeBase64(std::string_view text) {
  std::array<int, 256> digits{};
  for (std::size_t k = 0; k < digits.size(); ++k) digits[k] = DigitOf(static_cast<char>(k));
  std::string bytes;
  bytes.reserve(text.size() / 4 * 3);
  std::uint32_t bits = 0;
  int count = 0;
  for (const char c : text) {
    if (c == '\n' || c == '\r' || c == ' ' || c == '\t') continue;
    const int digit = digits[static_cast<unsigned char>(c)];
    if (digit == kNoDigit) break;
    bits = bits << 6 | static_cast<std::uint32_t>(digit);
    count += 6;
    if (count < 8) continue;
    count -= 8;
    bytes += static_cast<char>(bits >> count & 0xFF);
  }
  return bytes;
}

// Empty where the packet has none.
std::string MapIn(const std::string& text) {
  const CPacket packet(xmp_new(text.data(), text.size()));
  if (packet == nullptr) return {};
  const CIterator iterator(xmp_iterator_new(packet.get(), nullptr, nullptr, XMP_ITER_JUSTLEAFNODES));
  const CText schema(xmp_string_new());
  const CText name(xmp_string_new());
  const CText value(xmp_string_new());
  if (iterator == nullptr) return {};
  std::uint32_t options = 0;
  while (xmp_iterator_next(iterator.get(), schema.get(), name.get(), value.get(), &options)) {
    const std::string_view space = xmp_string_cstr(schema.get());
    const std::string_view property = xmp_string_cstr(name.get());
    if (space.ends_with(kNamespaceEnd) && property.ends_with(kProperty))
      return DecodeBase64({xmp_string_cstr(value.get()), xmp_string_len(value.get())});
  }
  return {};
}

// The library is set up once; what it keeps goes with the process.
bool HasLibrary() {
  static const bool there = xmp_init();
  return there;
}

// The values again as they came, from the top, and then turned.
std::shared_ptr<const CDepthMap> Turned(const CDepthMap& map, int orientation) {
  int width = map.Width();
  int height = map.Height();
  std::vector<float> values(map.Values().begin(), map.Values().end());
  const auto side = static_cast<std::ptrdiff_t>(width);
  for (int row = 0; row < height / 2; ++row)
    std::swap_ranges(values.begin() + row * side, values.begin() + (row + 1) * side,
                     values.begin() + (height - 1 - row) * side);
  MakeUpright<1>(values, width, height, orientation);
  return std::make_shared<const CDepthMap>(width, height, map.Bits(), std::move(values));
}

}  // namespace

std::optional<CEmbeddedDepth> EmbeddedDepthOf(std::string_view jpeg) {
  if (!IsJpeg(jpeg)) return {};
  const CJpegMetadata metadata = MetadataOf(jpeg);
  for (const std::string& packet : metadata.m_aPackets) {
    // Most packets are spared the library.
    if (packet.find(kNamespaceEnd) == std::string::npos || !HasLibrary()) continue;
    std::string bytes = MapIn(packet);
    if (IsJpeg(bytes) || IsPng(bytes))
      return CEmbeddedDepth{std::move(bytes), metadata.m_Exif.empty() ? 1 : ExifOrientation(metadata.m_Exif)};
  }
  return {};
}

CReadDepthMap ReadEmbeddedDepth(const CEmbeddedDepth& embedded) {
  CReadDepthMap read = ReadDepthMap(embedded.m_Bytes, "embedded depth map");
  if (!read || embedded.m_iOrientation == 1) return read;
  try {
    read.m_pMap = Turned(*read.m_pMap, embedded.m_iOrientation);
  } catch (const std::bad_alloc&) {
    read = {};
    read.m_Reason = "there is not enough memory to read it";
  }
  return read;
}
