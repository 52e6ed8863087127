#include "codecs/HeifDecoder.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

#include <libheif/heif.h>

#include "codecs/ColourProfile.h"
#include "codecs/PictureFormats.h"

namespace {

struct CRelease {
  void operator()(heif_context* context) const { heif_context_free(context); }
  void operator()(const heif_image_handle* handle) const { heif_image_handle_release(handle); }
  void operator()(const heif_image* image) const { heif_image_release(image); }
  void operator()(heif_decoding_options* options) const { heif_decoding_options_free(options); }
  void operator()(heif_color_profile_nclx* colours) const { heif_nclx_color_profile_free(colours); }
};
template <typename Type>
using Owned = std::unique_ptr<Type, CRelease>;

bool HasBrand(std::string_view bytes, const char* brand) {
  constexpr std::size_t kNameAt = 4;
  return bytes.size() > kNameAt && bytes.substr(kNameAt).starts_with(std::string("ftyp") + brand);
}

std::uint64_t BigEndian(std::string_view bytes) {
  std::uint64_t value = 0;
  for (const char byte : bytes) value = value << 8 | static_cast<std::uint8_t>(byte);
  return value;
}

// Whether a box goes on beyond the end. A length of 1 stands for a longer one behind the name, 0 for all that is left.
bool IsCut(std::string_view bytes) {
  constexpr std::size_t kHeader = 8;
  while (bytes.size() >= kHeader) {
    std::uint64_t length = BigEndian(bytes.substr(0, 4));
    if (length == 1 && bytes.size() >= 2 * kHeader) length = BigEndian(bytes.substr(kHeader, kHeader));
    if (length < kHeader) return false;
    if (length > bytes.size()) return true;
    bytes.remove_prefix(length);
  }
  return !bytes.empty();
}

Decoding Failed(const heif_error& error, std::string_view bytes) {
  if (error.code == heif_error_Memory_allocation_error) return Decoding::NoMemory;
  return IsCut(bytes) || error.subcode == heif_suberror_End_of_data ? Decoding::CutShort : Decoding::Unusable;
}

std::string ProfileIn(const heif_image_handle* handle) {
  std::string bytes(heif_image_handle_get_raw_color_profile_size(handle), '\0');
  if (!bytes.empty() && heif_image_handle_get_raw_color_profile(handle, bytes.data()).code == heif_error_Ok)
    return bytes;
  heif_color_profile_nclx* found = nullptr;
  const heif_error error = heif_image_handle_get_nclx_color_profile(handle, &found);
  const Owned<heif_color_profile_nclx> colours(found);
  if (error.code != heif_error_Ok || colours == nullptr || colours->color_primaries == heif_color_primaries_unspecified)
    return {};
  const auto& c = *colours;
  return ProfileOf({c.color_primary_red_x, c.color_primary_red_y, c.color_primary_green_x, c.color_primary_green_y,
                    c.color_primary_blue_x, c.color_primary_blue_y, c.color_primary_white_x, c.color_primary_white_y},
                   0.0);
}

CRaster RasterOf(const heif_image_handle* handle) {
  CRaster raster;
  raster.m_iWidth = heif_image_handle_get_width(handle);
  raster.m_iHeight = heif_image_handle_get_height(handle);
  if (heif_image_handle_has_alpha_channel(handle) != 0) {
    const bool contained = heif_image_handle_is_premultiplied_alpha(handle) != 0;
    raster.m_Alpha = contained ? SampleAlpha::Premultiplied : SampleAlpha::Straight;
  }
  raster.m_Profile = ProfileIn(handle);
  return raster;
}

Decoding DecodeRows(const heif_image_handle* handle, const CRaster& raster, std::string_view bytes, RasterSink& sink) {
  const Owned<heif_decoding_options> options(heif_decoding_options_alloc());
  if (options == nullptr) return Decoding::NoMemory;
  options->convert_hdr_to_8bit = 1;
  const bool alpha = raster.m_Alpha != SampleAlpha::None;
  heif_image* decoded = nullptr;
  const heif_error error =
      heif_decode_image(handle, &decoded, heif_colorspace_RGB,
                        alpha ? heif_chroma_interleaved_RGBA : heif_chroma_interleaved_RGB, options.get());
  const Owned<heif_image> image(decoded);
  if (error.code != heif_error_Ok) return Failed(error, bytes);
  int stride = 0;
  const std::uint8_t* const plane = heif_image_get_plane_readonly(image.get(), heif_channel_interleaved, &stride);
  // What is announced may be another size than what is decoded.
  if (plane == nullptr || heif_image_get_primary_width(image.get()) < raster.m_iWidth ||
      heif_image_get_primary_height(image.get()) < raster.m_iHeight)
    return Decoding::Unusable;
  for (int y = 0; y < raster.m_iHeight; ++y)
    sink.Row(plane + static_cast<std::ptrdiff_t>(y) * static_cast<std::ptrdiff_t>(stride));
  return IsCut(bytes) ? Decoding::EndsEarly : Decoding::Whole;
}

}  // namespace

bool IsHeic(std::string_view bytes) {
  return std::ranges::any_of(std::array{"heic", "heix", "hevc", "mif1", "msf1"},
                             [bytes](const char* brand) { return HasBrand(bytes, brand); });
}

bool IsAvif(std::string_view bytes) { return HasBrand(bytes, "avif"); }

bool CanDecodeHeic() { return heif_have_decoder_for_format(heif_compression_HEVC) != 0; }

bool CanDecodeAvif() { return heif_have_decoder_for_format(heif_compression_AV1) != 0; }

Decoding DecodeHeif(std::string_view bytes, RasterSink& sink) {
  const Owned<heif_context> context(heif_context_alloc());
  if (context == nullptr) return Decoding::NoMemory;
  heif_context_set_maximum_image_size_limit(context.get(), kMostPictureSide);
  heif_error error = heif_context_read_from_memory_without_copy(context.get(), bytes.data(), bytes.size(), nullptr);
  if (error.code != heif_error_Ok) return Failed(error, bytes);
  heif_image_handle* found = nullptr;
  error = heif_context_get_primary_image_handle(context.get(), &found);
  const Owned<heif_image_handle> handle(found);
  if (error.code != heif_error_Ok) return Failed(error, bytes);
  const CRaster raster = RasterOf(handle.get());
  if (raster.m_iWidth <= 0 || raster.m_iHeight <= 0) return Decoding::Unusable;
  if (!sink.Begin(raster)) return Decoding::Refused;
  return DecodeRows(handle.get(), raster, bytes, sink);
}
