#include "formats/PngBytes.h"

#include <cstddef>
#include <memory>
#include <new>

#include <png.h>

#include "base/Memory.h"

namespace {

constexpr double kLargestPicture = 1 << 30;

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

std::optional<CPicture> PictureOfPng(std::string_view bytes) {
  CPngImage image;
  if (!IsPng(bytes) || png_image_begin_read_from_memory(&*image, bytes.data(), bytes.size()) == 0) return {};
  image->format = PNG_FORMAT_RGB;
  const double needed = 3.0 * image->width * image->height;
  if (needed > kLargestPicture || needed > AvailableMemory()) return {};
  CPicture picture{static_cast<int>(image->width), static_cast<int>(image->height), {}};
  picture.m_aPixels.resize(static_cast<std::size_t>(needed));
  constexpr png_color kBlack{0, 0, 0};
  if (png_image_finish_read(&*image, &kBlack, picture.m_aPixels.data(), StrideOf(picture.m_iWidth), nullptr) == 0)
    return {};
  return picture;
}

Decoding DecodePng(std::string_view bytes, RasterSink& sink) {
  const std::optional<CPicture> picture = PictureOfPng(bytes);
  if (!picture.has_value()) return Decoding::Unusable;
  CRaster raster;
  raster.m_iWidth = picture->m_iWidth;
  raster.m_iHeight = picture->m_iHeight;
  if (!sink.Begin(raster)) return Decoding::Refused;
  for (std::size_t end = picture->m_aPixels.size(); end > 0; end -= raster.Stride())
    sink.Row(&picture->m_aPixels[end - raster.Stride()]);
  return Decoding::Whole;
}
