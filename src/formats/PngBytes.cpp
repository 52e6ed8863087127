#include "formats/PngBytes.h"

#include <cstddef>
#include <memory>
#include <new>

#include <png.h>

namespace {

/// The library's picture: what is still held of it goes with the object.
class CPngImage {
 public:
  CPngImage() { m_Image.version = PNG_IMAGE_VERSION; }
  ~CPngImage() { png_image_free(&m_Image); }
  CPngImage(const CPngImage&) = delete;
  CPngImage& operator=(const CPngImage&) = delete;

  png_image& operator*() { return m_Image; }
  png_image* operator->() { return &m_Image; }

 private:
  png_image m_Image{};
};

// Our rows begin at the bottom, those of the format at the top.
int StrideOf(int width) { return -3 * width; }

}  // namespace

bool IsPng(std::string_view bytes) { return bytes.starts_with("\x89PNG\r\n\x1A\n"); }

std::string PngOf(const CPicture& picture) {
  if (picture.m_aPixels.empty()) return {};
  CPngImage image;
  image->width = static_cast<png_uint_32>(picture.m_iWidth);
  image->height = static_cast<png_uint_32>(picture.m_iHeight);
  image->format = PNG_FORMAT_RGB;
  // One pass only: asking for the length first would compress twice.
  std::string bytes(PNG_IMAGE_PNG_SIZE_MAX(*image), '\0');
  png_alloc_size_t length = bytes.size();
  const int written = png_image_write_to_memory(&*image, bytes.data(), &length, 0, picture.m_aPixels.data(),
                                                StrideOf(picture.m_iWidth), nullptr);
  bytes.resize(written != 0 ? length : 0);
  return bytes;
}
