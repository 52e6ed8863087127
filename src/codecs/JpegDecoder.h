#pragma once

#include <string_view>

#include "codecs/RasterSink.h"

/// Whether the bytes begin as those of a JPEG do.
bool IsJpeg(std::string_view bytes);

/// Decodes a JPEG: grey, colour and CMYK, progressive ones, too. Nothing is written to the console.
Decoding DecodeJpeg(std::string_view bytes, RasterSink& sink);
