#pragma once

#include <string_view>

#include "codecs/RasterSink.h"

/// Whether the bytes begin as those of a HEIC do.
bool IsHeic(std::string_view bytes);
/// Whether the bytes begin as those of an AVIF do.
bool IsAvif(std::string_view bytes);

/// Whether the installed library can decode HEIC; it has its decoders from elsewhere.
bool CanDecodeHeic();
/// Whether it can decode AVIF.
bool CanDecodeAvif();

/// Decodes the main picture of a HEIC or an AVIF. It is turned as the file itself says; what Exif says of that is a
/// copy for other programs.
Decoding DecodeHeif(std::string_view bytes, RasterSink& sink);
