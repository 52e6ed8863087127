#include "projects/ProjectPicture.h"

#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <ostream>
#include <string>
#include <system_error>
#include <utility>

#include "base/Console.h"
#include "codecs/PictureFormats.h"
#include "codecs/PngBytes.h"
#include "io/RegularFile.h"
#include "projects/ProjectFile.h"

namespace {

std::optional<std::string> Contents(const std::string& filename) {
  if (!IsRegularFile(filename)) return {};
  std::ifstream in(filename, std::ios::binary);
  std::string bytes{std::istreambuf_iterator<char>(in), {}};
  if (!in.is_open() || in.bad()) return {};
  return bytes;
}

bool IsSame(const CReadPicture& read, const CPicture& shown) {
  return read && read.m_Picture.m_iWidth == shown.m_iWidth && read.m_Picture.m_aPixels == shown.m_aPixels;
}

bool Shows(const std::string& bytes, const CPicture& shown) {
  std::ostream nowhere(nullptr);
  const CConsoleRedirect redirect(nowhere);
  return IsSame(ReadPicture(bytes, {}), shown);
}

}  // namespace

CProjectPicture WithBytes(const CProjectPicture& picture, const CPicture& shown) {
  CProjectPicture kept = picture;
  if (kept.m_pBytes != nullptr || shown.m_aPixels.empty()) return kept;
  std::optional<std::string> bytes = Contents(picture.m_File);
  if (!bytes.has_value() || !Shows(*bytes, shown)) bytes = PngOf(shown);
  kept.m_pBytes = std::make_shared<const std::string>(std::move(*bytes));
  return kept;
}

CProjectPicture WithBytesOfItsProject(const CProjectPicture& picture) {
  if (picture.m_pBytes != nullptr || picture.m_Project.empty()) return picture;
  const CReadProject read = ReadProject(picture.m_Project);
  return {picture.m_File, picture.m_Project, read.m_Project ? read.m_Project->m_Picture.m_pBytes : nullptr};
}

CReadPicture PixelsOf(const CProjectPicture& picture) {
  return picture.m_pBytes != nullptr ? ReadPicture(*picture.m_pBytes, picture.m_File) : ReadPicture(picture.m_File);
}

CReadPicture WithPixels(const CProjectPicture& picture, const CPicture& shown) {
  std::ostream nowhere(nullptr);
  const CConsoleRedirect redirect(nowhere);
  CReadPicture read = PixelsOf(picture);
  if (IsSame(read, shown)) return read;
  read = {};
  read.m_Picture = shown;
  return read;
}
