#include "io/Bmp.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <new>
#include <system_error>
#include <vector>

#include "base/Console.h"
#include "io/CFileReplacement.h"
#include "io/RegularFile.h"

namespace {

constexpr std::size_t kHeaderSize = 54;
constexpr std::size_t kFileAlign = 4;
// Far beyond what a graphics card takes as a texture, and small enough that a forged header cannot exhaust the memory.
constexpr std::uint64_t kMaxPictureBytes = std::uint64_t{1} << 30;
// A header may ask for this much, or for so many bytes per byte of the file, and no more. Short files are read as
// far as they go, but a few bytes must not fill the memory.
constexpr std::uint64_t kHarmlessBytes = std::uint64_t{64} << 20;
constexpr std::uint64_t kMostPerFileByte = 16;
// Many rows per system call, and still within the cache.
constexpr std::size_t kStreamBuffer = std::size_t{1} << 17;

using Header = std::array<std::uint8_t, kHeaderSize>;

// Offsets of the header's fields, two or four bytes wide.
namespace Field {
constexpr std::size_t kFileSize = 2;
constexpr std::size_t kPixelOffset = 10;
constexpr std::size_t kInfoSize = 14;
constexpr std::size_t kWidth = 18;
constexpr std::size_t kHeight = 22;
constexpr std::size_t kPlanes = 26;
constexpr std::size_t kBitsPerPixel = 28;
constexpr std::size_t kCompression = 30;
}  // namespace Field

constexpr std::uint32_t kInfoHeaderSize = 40;

std::uint32_t Get(const Header& header, std::size_t offset, std::size_t width) {
  std::uint32_t value = 0;
  for (std::size_t k = width; k-- > 0;) value = value << 8 | header[offset + k];
  return value;
}

void Put(Header& header, std::size_t offset, std::size_t width, std::uint32_t value) {
  for (std::size_t k = 0; k < width; ++k) header[offset + k] = static_cast<std::uint8_t>(value >> (8 * k));
}

constexpr std::uint64_t RoundedUp(std::uint64_t value, std::uint64_t align) {
  return (value + align - 1) / align * align;
}

struct CSize {
  std::int32_t m_iWidth;
  std::int32_t m_iHeight;

  std::uint64_t Stride(std::uint64_t align) const { return RoundedUp(3 * static_cast<std::uint64_t>(m_iWidth), align); }
  // Both factors are below 2^33 and 2^31, so that their product does not overflow.
  bool IsBearable(std::uint64_t align, std::uint64_t fileSize) const {
    if (m_iWidth < 0) return false;
    const std::uint64_t bytes = Stride(align) * static_cast<std::uint64_t>(m_iHeight);
    return bytes <= kMaxPictureBytes && (bytes <= kHarmlessBytes || bytes / kMostPerFileByte <= fileSize);
  }
};

void Refuse(const std::string& filename) {
  Console() << filename << " format is not 24bit uncompressed bitmap with orig at left-bottom corner!\n";
}

// The header's verdict; nothing, with the line that says why, for a file that is refused.
std::optional<CSize> SizeFrom(const Header& header, const std::string& filename, std::uint64_t fileSize,
                              std::uint64_t align) {
  if (Get(header, Field::kPixelOffset, 4) != kHeaderSize) {
    Console() << filename << " file header not accepted!";
    return {};
  }
  const CSize size{static_cast<std::int32_t>(Get(header, Field::kWidth, 4)),
                   static_cast<std::int32_t>(Get(header, Field::kHeight, 4))};
  const bool accepted = Get(header, Field::kInfoSize, 4) == kInfoHeaderSize && size.m_iHeight >= 0 &&
                        Get(header, Field::kPlanes, 2) == 1 && Get(header, Field::kBitsPerPixel, 2) == 24 &&
                        Get(header, Field::kCompression, 4) == 0;
  if (!accepted || !size.IsBearable(align, fileSize)) {
    Refuse(filename);
    return {};
  }
  return size;
}

// Exchanges the first and the third byte of every pixel. The blocks are laid out for the compiler's vector
// instructions: every byte comes from two places before, the same place or two places after, as three masks say.
void SwapRedAndBlue(const std::uint8_t* in, std::uint8_t* out, std::size_t pixels) {
  constexpr std::size_t kBlock = 48;
  constexpr auto kMask = [](std::size_t channel) {
    std::array<std::uint8_t, kBlock> mask{};
    for (std::size_t k = channel; k < kBlock; k += 3) mask[k] = 0xFF;
    return mask;
  };
  static constexpr auto kFirst = kMask(0);
  static constexpr auto kSecond = kMask(1);
  static constexpr auto kThird = kMask(2);
  const std::size_t bytes = 3 * pixels;
  const auto swapPixel = [in, out](std::size_t at) {
    out[at] = in[at + 2];
    out[at + 1] = in[at + 1];
    out[at + 2] = in[at];
  };
  std::size_t at = 0;
  // A block reads two bytes beyond either end, so the first and the last pixel stay out of them.
  if (pixels > 0) swapPixel(at), at += 3;
  for (; at + kBlock + 2 <= bytes; at += kBlock) {
    std::array<std::uint8_t, kBlock> swapped{};
    for (std::size_t k = 0; k < kBlock; ++k) {
      swapped[k] = static_cast<std::uint8_t>((in[at + k + 2] & kFirst[k]) | (in[at + k] & kSecond[k]) |
                                             (in[at + k - 2] & kThird[k]));
    }
    std::copy(swapped.begin(), swapped.end(), out + at);
  }
  for (; at < bytes; at += 3) swapPixel(at);
}

// A file being read through a buffer of its own.
class CInput {
 public:
  explicit CInput(const std::string& filename)
      : CInput(IsRegularFile(filename) ? std::fopen(filename.c_str(), "rb") : nullptr) {
    std::error_code ignored;
    m_uSize = std::filesystem::file_size(filename, ignored);
  }
  /// Reads a copy of the bytes.
  explicit CInput(std::string_view bytes)
      : m_acBytes(bytes.begin(), bytes.end()),
        m_pFile(fmemopen(m_acBytes.data(), m_acBytes.size(), "rb")),
        m_uSize(bytes.size()) {}
  bool IsOpen() const { return m_pFile != nullptr; }
  std::uint64_t Size() const { return m_uSize; }
  /// False where the file ends early; the rest of `bytes` then stays as it is.
  bool Read(std::span<std::uint8_t> bytes) {
    return std::fread(bytes.data(), 1, bytes.size(), m_pFile.get()) == bytes.size();
  }

 private:
  struct CClose {
    void operator()(std::FILE* file) const { std::fclose(file); }
  };
  explicit CInput(std::FILE* file) : m_acBuffer(kStreamBuffer), m_pFile(file) {
    if (IsOpen()) std::setvbuf(file, m_acBuffer.data(), _IOFBF, m_acBuffer.size());
  }

  std::vector<char> m_acBytes;
  std::vector<char> m_acBuffer;  ///< outlives the file that uses it
  std::unique_ptr<std::FILE, CClose> m_pFile;
  std::uint64_t m_uSize = 0;
};

// All rows, in the order of the file. Whether the file holds them all.
bool ReadRows(CInput& file, const CSize& size, std::size_t stride, std::vector<std::uint8_t>& pixels) {
  if (size.m_iWidth == 0 || size.m_iHeight == 0) return true;
  std::vector<std::uint8_t> fileRow(size.Stride(kFileAlign));
  std::vector<std::uint8_t> row(stride);
  bool complete = true;
  for (std::int32_t k = 0; k < size.m_iHeight; ++k) {
    complete = file.Read(fileRow) && complete;
    SwapRedAndBlue(fileRow.data(), row.data(), static_cast<std::size_t>(size.m_iWidth));
    // Appended instead of written in place, so that the memory is touched only once.
    pixels.insert(pixels.end(), row.begin(), row.end());
  }
  return complete;
}

std::optional<Global::CLoadedPicture> Load(CInput file, const std::string& filename, std::uint64_t align) {
  if (!file.IsOpen()) {
    Console() << "fail to open file " << filename << '\n';
    return {};
  }
  Header header{};
  // A header cut short fails the checks by its zeros or has lost no field that is looked at.
  const bool headerComplete = file.Read(header);
  const std::optional<CSize> size = SizeFrom(header, filename, file.Size(), align);
  if (!size.has_value()) return {};
  Global::CLoadedPicture loaded{{size->m_iWidth, size->m_iHeight, {}}, false};
  const std::size_t stride = size->Stride(align);
  loaded.m_Picture.m_aPixels.reserve(stride * static_cast<std::size_t>(size->m_iHeight));
  Console() << "Global::LoadBMP\t\twidth = " << size->m_iWidth << "; padded_w = " << stride
            << "; height = " << size->m_iHeight << '\n';
  loaded.m_bEndsEarly = !ReadRows(file, *size, stride, loaded.m_Picture.m_aPixels) || !headerComplete;
  return loaded;
}

Header HeaderOf(int width, int height) {
  const auto rows = static_cast<std::uint32_t>(std::max(height, 0));
  const auto rowSize = static_cast<std::uint32_t>(RoundedUp(3 * static_cast<std::uint64_t>(width), kFileAlign));
  Header header{'B', 'M'};
  Put(header, Field::kFileSize, 4, rowSize * rows + static_cast<std::uint32_t>(kHeaderSize));
  Put(header, Field::kPixelOffset, 4, kHeaderSize);
  Put(header, Field::kInfoSize, 4, kInfoHeaderSize);
  Put(header, Field::kWidth, 4, static_cast<std::uint32_t>(width));
  Put(header, Field::kHeight, 4, static_cast<std::uint32_t>(height));
  Put(header, Field::kPlanes, 2, 1);
  Put(header, Field::kBitsPerPixel, 2, 24);
  return header;
}

}  // namespace

std::optional<Global::CLoadedPicture> Global::LoadBMP(const std::string& filename, int align) {
  try {
    return Load(CInput(filename), filename, static_cast<std::uint64_t>(align));
  } catch (const std::bad_alloc&) {
    Refuse(filename);
    return {};
  }
}

std::optional<Global::CLoadedPicture> Global::LoadBMP(std::string_view bytes, const std::string& name, int align) {
  try {
    return Load(CInput(bytes), name, static_cast<std::uint64_t>(align));
  } catch (const std::bad_alloc&) {
    Refuse(name);
    return {};
  }
}

bool Global::SaveBMP(const std::string& filename, std::span<const std::uint8_t> data, int width, int height,
                     int align) {
  CFileReplacement file(filename);
  if (!file.IsOpen()) {
    Console() << "fail to open file " << filename << '\n';
    return false;
  }
  const CSize size{width, height};
  const std::size_t stride = size.Stride(static_cast<std::uint64_t>(align));
  file.Write(HeaderOf(width, height));
  std::vector<std::uint8_t> fileRow(size.Stride(kFileAlign));
  for (int k = 0; k < height; ++k) {
    SwapRedAndBlue(data.data() + static_cast<std::size_t>(k) * stride, fileRow.data(), static_cast<std::size_t>(width));
    file.Write(fileRow);
  }
  if (file.Commit()) return true;
  Console() << "Error Global::SaveBMP\t\tfail to write file " << filename << '\n';
  return false;
}
