#pragma once

#include <span>
#include <string_view>

#include "codecs/PictureFormats.h"
#include "codecs/RasterSink.h"

/// A kind of file and what reads it.
struct CPictureDecoder {
  CPictureFormat m_Format;
  bool (*m_pIsOne)(std::string_view bytes) = nullptr;  ///< by the first kKindBytes
  Decoding (*m_pDecode)(std::string_view bytes, RasterSink& sink) = nullptr;
};

/// All that this build has and the installed libraries can do; BMP, the program's own kind, is not among them.
std::span<const CPictureDecoder> PictureDecoders();

/// The one for a file that begins so; null for none.
const CPictureDecoder* DecoderOf(std::string_view bytes);
