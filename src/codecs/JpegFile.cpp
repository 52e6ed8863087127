#include "codecs/JpegFile.h"

#include <algorithm>
#include <csetjmp>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <vector>

#include <jpeglib.h>

#include "io/CFileReplacement.h"

namespace {

constexpr int kQuality = 95;

/// The library's error handler, which must not return: it goes back to where the encoding was begun.
struct CErrorHandler {
  jpeg_error_mgr m_Manager;
  std::jmp_buf m_Start;
};

[[noreturn]] void GiveUp(j_common_ptr info) { std::longjmp(reinterpret_cast<CErrorHandler*>(info->err)->m_Start, 1); }

/// The encoded bytes, in memory that the library allocates with malloc.
struct CEncoded {
  unsigned char* m_pBytes = nullptr;
  unsigned long m_uSize = 0;
};

// Holds nothing with a destructor, because an error jumps out of it.
bool Encode(const CPicture& picture, std::vector<unsigned char>& row, CEncoded& encoded) {
  CErrorHandler handler{};
  jpeg_compress_struct info{};
  info.err = jpeg_std_error(&handler.m_Manager);
  handler.m_Manager.error_exit = GiveUp;
  if (setjmp(handler.m_Start) != 0) {
    jpeg_destroy_compress(&info);
    encoded = {};  // where the memory is by then, only the library knows
    return false;
  }
  jpeg_create_compress(&info);
  jpeg_mem_dest(&info, &encoded.m_pBytes, &encoded.m_uSize);
  info.image_width = static_cast<JDIMENSION>(picture.m_iWidth);
  info.image_height = static_cast<JDIMENSION>(picture.m_iHeight);
  info.input_components = 3;
  info.in_color_space = JCS_RGB;
  jpeg_set_defaults(&info);
  jpeg_set_quality(&info, kQuality, TRUE);
  jpeg_start_compress(&info, TRUE);
  JSAMPROW pixels = row.data();
  while (info.next_scanline < info.image_height) {
    // The format begins with the top row.
    const std::size_t y = info.image_height - 1 - info.next_scanline;
    std::copy_n(&picture.m_aPixels[y * row.size()], row.size(), row.data());
    jpeg_write_scanlines(&info, &pixels, 1);
  }
  jpeg_finish_compress(&info);
  jpeg_destroy_compress(&info);
  return true;
}

}  // namespace

std::string JpegOf(const CPicture& picture) {
  constexpr int kMostPixels = JPEG_MAX_DIMENSION;
  if (picture.m_aPixels.empty() || picture.m_iWidth > kMostPixels || picture.m_iHeight > kMostPixels) return {};
  CEncoded encoded;
  std::vector<unsigned char> row(3 * static_cast<std::size_t>(picture.m_iWidth));
  const bool ready = Encode(picture, row, encoded);
  const std::unique_ptr<unsigned char, decltype(&std::free)> owner(encoded.m_pBytes, &std::free);
  return ready ? std::string(reinterpret_cast<const char*>(encoded.m_pBytes), encoded.m_uSize) : std::string();
}

bool SaveJpeg(const std::string& filename, const CReadPicture& read) {
  CFileReplacement file(filename);
  if (!file.IsOpen()) return false;
  const std::string bytes = read.m_pJpeg != nullptr ? *read.m_pJpeg : JpegOf(read.m_Picture);
  if (bytes.empty()) return false;
  file.Write({reinterpret_cast<const unsigned char*>(bytes.data()), bytes.size()});
  return file.Commit();
}
