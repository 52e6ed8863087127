#pragma once

#include <cstddef>
#include <string_view>

#include "codecs/ChannelFormats.h"

// PFM: a header of text ("Pf", or "PF" for colours; width and height; a number below 0 for bytes with the least
// significant first), then floats, bottom row first.

/// So many bytes tell a PFM.
inline constexpr std::size_t kPfmKindBytes = 3;

/// Whether the bytes begin as those of a PFM do.
bool IsPfm(std::string_view bytes);

/// Reads a PFM, of equal channels where it has three. The bytes must be just those that its header announces. Throws
/// std::bad_alloc.
CReadChannel ReadPfm(std::string_view bytes);
