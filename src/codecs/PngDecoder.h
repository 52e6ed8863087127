#pragma once

#include <string_view>

#include "codecs/RasterSink.h"

/// Decodes a PNG of any kind: grey, palette, colour, with opacity or one transparent colour, 1 to 16 bits, interlaced.
/// Nothing is written to the console.
Decoding DecodePng(std::string_view bytes, RasterSink& sink);
