#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "base/CPicture.h"
#include "formats/RasterSink.h"

/// Whether the bytes begin as those of a PNG do.
bool IsPng(std::string_view bytes);

/// A picture as the bytes of a PNG, which lose nothing of it. Empty for an empty picture and where they cannot be had.
std::string PngOf(const CPicture& picture);

/// The picture in a PNG, 8-bit RGB whatever it holds, on black where it is transparent. Nothing for other bytes, for
/// damaged ones and for a picture larger than the memory or than 1 GiB.
std::optional<CPicture> PictureOfPng(std::string_view bytes);

/// Decodes a PNG as `PictureOfPng` does.
Decoding DecodePng(std::string_view bytes, RasterSink& sink);
