#pragma once

#include <string_view>

#include "codecs/RasterSink.h"

/// Whether the bytes begin as those of a TIFF do.
bool IsTiff(std::string_view bytes);

/// Decodes the first picture of a TIFF: strips or tiles, channels together or apart, 1 to 16 bits a sample or floats,
/// palettes, inks; of other colours what the library makes of them. Nothing is written to the console.
Decoding DecodeTiff(std::string_view bytes, RasterSink& sink);
