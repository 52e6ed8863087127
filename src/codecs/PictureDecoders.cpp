#include "codecs/PictureDecoders.h"

#include <algorithm>
#include <array>
#include <vector>

#ifdef RELIEVO_HEIF
#include "codecs/HeifDecoder.h"
#endif
#include "codecs/JpegDecoder.h"
#include "codecs/PngBytes.h"
#include "codecs/PngDecoder.h"
#include "codecs/TiffDecoder.h"
#include "codecs/WebpDecoder.h"

namespace {

constexpr std::array kJpegSuffixes{".jpg", ".jpeg"};
constexpr std::array kPngSuffixes{".png"};
constexpr std::array kTiffSuffixes{".tif", ".tiff"};
constexpr std::array kWebpSuffixes{".webp"};
#ifdef RELIEVO_HEIF
constexpr std::array kHeicSuffixes{".heic", ".heif"};
constexpr std::array kAvifSuffixes{".avif"};
#endif

std::vector<CPictureDecoder> AllDecoders() {
  std::vector<CPictureDecoder> all{{{"JPEG", kJpegSuffixes}, IsJpeg, DecodeJpeg},
                                   {{"PNG", kPngSuffixes}, IsPng, DecodePng},
                                   {{"TIFF", kTiffSuffixes}, IsTiff, DecodeTiff},
                                   {{"WebP", kWebpSuffixes}, IsWebp, DecodeWebp}};
#ifdef RELIEVO_HEIF
  if (CanDecodeHeic()) all.push_back({{"HEIC", kHeicSuffixes}, IsHeic, DecodeHeif});
  if (CanDecodeAvif()) all.push_back({{"AVIF", kAvifSuffixes}, IsAvif, DecodeHeif});
#endif
  return all;
}

}  // namespace

std::span<const CPictureDecoder> PictureDecoders() {
  static const std::vector<CPictureDecoder> decoders = AllDecoders();
  return decoders;
}

const CPictureDecoder* DecoderOf(std::string_view bytes) {
  const std::span<const CPictureDecoder> decoders = PictureDecoders();
  const auto known =
      std::ranges::find_if(decoders, [bytes](const CPictureDecoder& decoder) { return decoder.m_pIsOne(bytes); });
  return known == decoders.end() ? nullptr : &*known;
}
