#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "base/CPicture.h"

/// Pictures as uncompressed 24-bit bitmap files, bottom row first. In memory the bytes of a pixel are red, green, blue
/// and each row takes 3 * width bytes rounded up to a multiple of `align`; row 0 is the bottom row here, too.
namespace Global {

/// What could be read of a bitmap.
struct CLoadedPicture {
  CPicture m_Picture;
  bool m_bEndsEarly = false;  ///< the file is shorter than its header says
};

/// Reads a picture; with `align` 1 its rows follow one another without gaps.
///
/// Nothing, with a console line, where the file cannot be opened, is not such a bitmap (the signature is not looked
/// at), has its top row first, or has a negative or an excessive size, which is found out before anything of that size
/// is allocated: more than 1 GiB or than there is memory for, or above both 64 MiB and 16 bytes per byte of the file.
/// A file that ends early is read as far as it goes: the rest of an incomplete row is that of the row before it (zeros
/// in the first), and every further row repeats it.
std::optional<CLoadedPicture> LoadBMP(const std::string& filename, int align);

/// The same for the contents of such a file; console lines call them `name`.
std::optional<CLoadedPicture> LoadBMP(std::string_view bytes, const std::string& name, int align);

/// Writes the `height` rows in `data`. The file of that name keeps its old contents until the new ones are complete.
/// Whether it has been written; if not, a console line says so. A height below 1 writes the header alone.
bool SaveBMP(const std::string& filename, std::span<const std::uint8_t> data, int width, int height, int align);

}  // namespace Global
