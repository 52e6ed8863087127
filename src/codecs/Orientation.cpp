#include "codecs/Orientation.h"

#include <cstdint>

namespace {

constexpr std::uint32_t kOrientationTag = 0x0112;
constexpr std::size_t kEntrySize = 12;

/// Numbers in either byte order; zero beyond the end.
class CExifBlock {
 public:
  explicit CExifBlock(std::string_view bytes) : m_Bytes(bytes), m_bLittleEndian(bytes.starts_with("II")) {}

  std::uint32_t Number(std::size_t offset, std::size_t width) const {
    if (offset > m_Bytes.size() || width > m_Bytes.size() - offset) return 0;
    std::uint32_t value = 0;
    for (std::size_t k = 0; k < width; ++k)
      value = value << 8 | static_cast<std::uint8_t>(m_Bytes[offset + (m_bLittleEndian ? width - 1 - k : k)]);
    return value;
  }

 private:
  std::string_view m_Bytes;
  bool m_bLittleEndian;
};

}  // namespace

int ExifOrientation(std::string_view exif) {
  constexpr std::string_view kName("Exif\0\0", 6);
  if (exif.starts_with(kName)) exif.remove_prefix(kName.size());
  if (!exif.starts_with("II") && !exif.starts_with("MM")) return 1;
  const CExifBlock block(exif);
  const std::size_t directory = block.Number(4, 4);
  const std::size_t count = block.Number(directory, 2);
  for (std::size_t k = 0; k < count; ++k) {
    const std::size_t entry = directory + 2 + k * kEntrySize;
    if (entry > exif.size()) break;
    if (block.Number(entry, 2) != kOrientationTag) continue;
    const std::uint32_t orientation = block.Number(entry + 8, 2);
    return orientation >= 1 && orientation <= 8 ? static_cast<int>(orientation) : 1;
  }
  return 1;
}
