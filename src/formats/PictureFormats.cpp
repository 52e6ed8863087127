#include "formats/PictureFormats.h"

#include <array>
#include <utility>

#include "formats/PngBytes.h"

namespace {

std::optional<Global::CLoadedPicture> ReadBmp(const std::string& filename) { return Global::LoadBMP(filename, 1); }

}  // namespace

std::span<const CPictureFormat> PictureFormats() {
  static constexpr std::array kFormats{CPictureFormat{.m_pSuffix = ".bmp", .m_pRead = ReadBmp}};
  return kFormats;
}

// Bitmaps come first and complain about everything that is none.
std::optional<Global::CLoadedPicture> ReadPicture(const std::string& filename) {
  return PictureFormats().front().m_pRead(filename);
}

std::optional<Global::CLoadedPicture> ReadPicture(std::string_view bytes, const std::string& name) {
  if (!IsPng(bytes)) return Global::LoadBMP(bytes, name, 1);
  std::optional<CPicture> picture = PictureOfPng(bytes);
  if (!picture.has_value()) return {};
  return Global::CLoadedPicture{std::move(*picture)};
}
