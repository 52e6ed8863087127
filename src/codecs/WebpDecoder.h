#pragma once

#include <string_view>

#include "codecs/RasterSink.h"

/// Whether the bytes begin as those of a WebP do.
bool IsWebp(std::string_view bytes);

/// Decodes a WebP, of one that moves the first picture.
Decoding DecodeWebp(std::string_view bytes, RasterSink& sink);
