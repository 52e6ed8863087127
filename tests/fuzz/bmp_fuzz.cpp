// Whatever a bitmap file holds, it is refused or gives a picture with all its bytes.

#include <cstdlib>
#include <cstring>
#include <optional>
#include <ostream>
#include <string>

#include <sys/mman.h>
#include <unistd.h>

#include "base/Console.h"
#include "fuzz/FuzzTarget.h"
#include "io/Bmp.h"

namespace {

// A short file may announce a large picture, whose missing rows repeat the last one. That only costs time.
constexpr std::uint64_t kMostBytes = std::uint64_t{1} << 22;
constexpr std::uint64_t kRefusedBytes = std::uint64_t{1} << 26;

bool IsTooLarge(const std::uint8_t* data, std::size_t size) {
  constexpr std::size_t kWidth = 18;
  constexpr std::size_t kHeight = 22;
  if (size < kHeight + sizeof(std::int32_t)) return false;
  std::int32_t width = 0;
  std::int32_t height = 0;
  std::memcpy(&width, data + kWidth, sizeof(width));
  std::memcpy(&height, data + kHeight, sizeof(height));
  if (width < 0 || height < 0) return false;
  const std::uint64_t bytes = 3 * static_cast<std::uint64_t>(width) * static_cast<std::uint64_t>(height);
  return bytes > kMostBytes && bytes <= kRefusedBytes;
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (IsTooLarge(data, size)) return 0;
  std::ostream nowhere(nullptr);
  const CConsoleRedirect redirect(nowhere);
  const int file = memfd_create("input", 0);
  if (file < 0 || write(file, data, size) != static_cast<ssize_t>(size)) std::abort();
  const std::string name = "/proc/self/fd/" + std::to_string(file);
  for (const int align : {1, 4}) {
    const std::optional<Global::CLoadedPicture> loaded = Global::LoadBMP(name, align);
    if (!loaded.has_value()) continue;
    const CPicture& picture = loaded->m_Picture;
    const std::size_t row = (3 * static_cast<std::size_t>(picture.m_iWidth) + static_cast<std::size_t>(align) - 1) /
                            static_cast<std::size_t>(align) * static_cast<std::size_t>(align);
    if (picture.m_aPixels.size() != (picture.m_iWidth == 0 ? 0 : row * static_cast<std::size_t>(picture.m_iHeight)))
      std::abort();
  }
  close(file);
  return 0;
}
