#include "codecs/XmpPackets.h"

#include <cstddef>
#include <cstdint>
#include <map>
#include <utility>

namespace {

using namespace std::string_view_literals;

constexpr std::string_view kExif = "Exif\0\0"sv;
constexpr std::string_view kMain = "http://ns.adobe.com/xap/1.0/\0"sv;
constexpr std::string_view kExtension = "http://ns.adobe.com/xmp/extension/\0"sv;
constexpr std::size_t kDigestLength = 32;
constexpr std::size_t kNumberLength = 4;

constexpr unsigned kStartOfImage = 0xD8;
constexpr unsigned kStartOfScan = 0xDA;
constexpr unsigned kEndOfImage = 0xD9;
constexpr unsigned kApplication1 = 0xE1;

unsigned ByteAt(std::string_view bytes, std::size_t place) { return static_cast<unsigned char>(bytes[place]); }

std::size_t NumberAt(std::string_view bytes, std::size_t place, std::size_t length) {
  std::size_t number = 0;
  for (std::size_t k = 0; k < length; ++k) number = number << 8 | ByteAt(bytes, place + k);
  return number;
}

/// An extended packet, of which each segment has a part, in any order.
struct CExtension {
  std::string m_Text;
  std::size_t m_uFilled = 0;
};

class CMetadataReader {
 public:
  explicit CMetadataReader(std::size_t fileLength) : m_uFileLength(fileLength) {}

  void Take(std::string_view segment) {
    if (segment.starts_with(kMain)) {
      if (m_Found.m_aPackets.empty()) m_Found.m_aPackets.emplace_back(segment.substr(kMain.size()));
    } else if (segment.starts_with(kExtension)) {
      TakeExtension(segment.substr(kExtension.size()));
    } else if (segment.starts_with(kExif) && m_Found.m_Exif.empty()) {
      m_Found.m_Exif = segment;
    }
  }
  CJpegMetadata Finish() {
    for (auto& [digest, extension] : m_Extensions) {
      if (extension.m_uFilled == extension.m_Text.size()) m_Found.m_aPackets.push_back(std::move(extension.m_Text));
    }
    return std::move(m_Found);
  }

 private:
  void TakeExtension(std::string_view segment) {
    if (segment.size() < kDigestLength + 2 * kNumberLength) return;
    const std::size_t length = NumberAt(segment, kDigestLength, kNumberLength);
    const std::size_t offset = NumberAt(segment, kDigestLength + kNumberLength, kNumberLength);
    const std::string_view part = segment.substr(kDigestLength + 2 * kNumberLength);
    if (offset > length || part.size() > length - offset) return;
    CExtension* extension = ExtensionOf(std::string(segment.substr(0, kDigestLength)), length);
    if (extension == nullptr) return;
    extension->m_Text.replace(offset, part.size(), part);
    extension->m_uFilled += part.size();
  }
  // Null for one that cannot be: all of them together are shorter than the file.
  CExtension* ExtensionOf(const std::string& digest, std::size_t length) {
    const auto known = m_Extensions.find(digest);
    if (known != m_Extensions.end()) return known->second.m_Text.size() == length ? &known->second : nullptr;
    if (length > m_uFileLength - m_uTaken) return nullptr;
    m_uTaken += length;
    CExtension& extension = m_Extensions[digest];
    extension.m_Text.resize(length);
    return &extension;
  }

  std::size_t m_uFileLength;
  std::size_t m_uTaken = 0;  ///< by extended packets
  CJpegMetadata m_Found;
  std::map<std::string, CExtension> m_Extensions;  ///< by their digests
};

}  // namespace

CJpegMetadata MetadataOf(std::string_view jpeg) {
  CMetadataReader reader(jpeg.size());
  std::size_t place = 2;
  while (jpeg.size() >= place + 4 && ByteAt(jpeg, 1) == kStartOfImage && ByteAt(jpeg, place) == 0xFF) {
    const unsigned marker = ByteAt(jpeg, place + 1);
    if (marker == 0xFF) {
      ++place;
      continue;
    }
    if (marker == kStartOfScan || marker == kEndOfImage) break;
    const std::size_t length = NumberAt(jpeg, place + 2, 2);
    if (length < 2 || length > jpeg.size() - place - 2) break;
    if (marker == kApplication1) reader.Take(jpeg.substr(place + 4, length - 2));
    place += 2 + length;
  }
  return reader.Finish();
}
