#include <cstring>
#include <string>

#ifdef RELIEVO_HEIF
#include <libheif/heif.h>
#endif

#include "support/EncodedRows.h"
#include "support/PictureEncoders.h"

#ifdef RELIEVO_HEIF
namespace {

heif_image* ImageOf(const CPicture& picture, bool alpha) {
  heif_image* image = nullptr;
  heif_image_create(picture.m_iWidth, picture.m_iHeight, heif_colorspace_RGB,
                    alpha ? heif_chroma_interleaved_RGBA : heif_chroma_interleaved_RGB, &image);
  heif_image_add_plane(image, heif_channel_interleaved, picture.m_iWidth, picture.m_iHeight, 8);
  int stride = 0;
  std::uint8_t* const plane = heif_image_get_plane(image, heif_channel_interleaved, &stride);
  const std::vector<CRgb> pixels = TopFirst(picture);
  for (int y = 0; y < picture.m_iHeight; ++y) {
    std::uint8_t* to = plane + static_cast<std::ptrdiff_t>(y) * stride;
    for (int x = 0; x < picture.m_iWidth; ++x) {
      const CRgb& pixel = pixels[static_cast<std::size_t>(y * picture.m_iWidth + x)];
      std::memcpy(to, pixel.data(), 3);
      to += 3;
      if (alpha) *to++ = x < picture.m_iWidth / 2 ? 0 : 255;
    }
  }
  return image;
}

heif_error Append(heif_context* /*context*/, const void* bytes, std::size_t length, void* to) {
  static_cast<std::string*>(to)->append(static_cast<const char*>(bytes), length);
  return {heif_error_Ok, heif_suberror_Unspecified, ""};
}

}  // namespace

std::string TestHeif(const CPicture& picture, const CHeifSettings& settings) {
  heif_context* const context = heif_context_alloc();
  heif_encoder* encoder = nullptr;
  const heif_compression_format format = settings.m_bAvif ? heif_compression_AV1 : heif_compression_HEVC;
  std::string file;
  if (heif_context_get_encoder_for_format(context, format, &encoder).code == heif_error_Ok) {
    heif_encoder_set_lossy_quality(encoder, 95);
    heif_encoder_set_parameter_string(encoder, "chroma", "444");
    heif_encoder_set_logging_level(encoder, 0);
    heif_image* const image = ImageOf(picture, settings.m_bAlpha);
    if (!settings.m_Profile.empty())
      heif_image_set_raw_color_profile(image, "prof", settings.m_Profile.data(), settings.m_Profile.size());
    heif_encoding_options* const options = heif_encoding_options_alloc();
    options->image_orientation = static_cast<heif_orientation>(settings.m_iTurn);
    heif_image_handle* handle = nullptr;
    heif_context_encode_image(context, image, encoder, options, &handle);
    const std::string exif = ExifOf(settings.m_iOrientation);
    if (settings.m_iOrientation != 0)
      heif_context_add_exif_metadata(context, handle, exif.data(), static_cast<int>(exif.size()));
    heif_writer writer{1, Append};
    heif_context_write(context, &writer, &file);
    heif_image_handle_release(handle);
    heif_encoding_options_free(options);
    heif_image_release(image);
    heif_encoder_release(encoder);
  }
  heif_context_free(context);
  return file;
}
#else
std::string TestHeif(const CPicture& /*picture*/, const CHeifSettings& /*settings*/) { return {}; }
#endif
