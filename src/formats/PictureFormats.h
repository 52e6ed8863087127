#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "io/Bmp.h"

/// One kind of file that a picture is read from.
struct CPictureFormat {
  const char* m_pSuffix = "";  ///< of the names of its files, with the dot
  /// See Global::LoadBMP; rows follow one another without gaps.
  std::optional<Global::CLoadedPicture> (*m_pRead)(const std::string& filename) = nullptr;
};

/// The kinds, in the order in which a chooser offers them.
std::span<const CPictureFormat> PictureFormats();

/// Reads a picture. Nothing, with a console line, where the file holds no picture of a known kind.
std::optional<Global::CLoadedPicture> ReadPicture(const std::string& filename);
/// The same for the contents of a file, which console lines call `name`; a PNG is read, too.
std::optional<Global::CLoadedPicture> ReadPicture(std::string_view bytes, const std::string& name);
