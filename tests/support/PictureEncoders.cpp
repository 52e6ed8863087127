// JPEG, PNG and WebP; TIFF and HEIF have sources of their own.

#include "support/PictureEncoders.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <vector>

#include <jpeglib.h>
#include <lcms2.h>
#include <png.h>
#include <webp/encode.h>
#include <webp/mux.h>

#include "support/EncodedRows.h"

std::string ExifOf(int orientation) {
  std::string exif("II*\0\x8\0\0\0\x1\0\x12\x1\x3\0\x1\0\0\0\0\0\0\0\0\0\0\0", 26);
  exif[18] = static_cast<char>(orientation);
  return exif;
}

namespace {

std::string BytesOfProfile(cmsHPROFILE profile) {
  cmsUInt32Number length = 0;
  cmsSaveProfileToMem(profile, nullptr, &length);
  std::string bytes(length, '\0');
  cmsSaveProfileToMem(profile, bytes.data(), &length);
  cmsCloseProfile(profile);
  return bytes;
}

std::string RgbProfile(const cmsCIExyYTRIPLE& primaries, double gamma) {
  const cmsCIExyY white{0.3127, 0.3290, 1.0};
  cmsToneCurve* const curve = cmsBuildGamma(nullptr, gamma);
  const std::array<cmsToneCurve*, 3> curves{curve, curve, curve};
  const cmsHPROFILE profile = cmsCreateRGBProfile(&white, &primaries, curves.data());
  cmsFreeToneCurve(curve);
  return BytesOfProfile(profile);
}

std::string LinearGrey() {
  cmsToneCurve* const curve = cmsBuildGamma(nullptr, 1.0);
  const cmsHPROFILE profile = cmsCreateGrayProfile(cmsD50_xyY(), curve);
  cmsFreeToneCurve(curve);
  return BytesOfProfile(profile);
}

// Inks that are darker than light minus ink.
std::string Inks() {
  const auto sample = [](const cmsUInt16Number* in, cmsUInt16Number* out, void* /*cargo*/) -> cmsInt32Number {
    cmsCIELab lab{100.0 * (1 - in[3] / 65535.0) * (1 - in[1] / 65535.0 * 0.6), 0, 0};
    lab.a = in[1] / 65535.0 * 70;
    cmsFloat2LabEncodedV2(out, &lab);
    return 1;
  };
  const cmsHPROFILE profile = cmsCreateProfilePlaceholder(nullptr);
  cmsSetProfileVersion(profile, 2.1);
  cmsSetDeviceClass(profile, cmsSigOutputClass);
  cmsSetColorSpace(profile, cmsSigCmykData);
  cmsSetPCS(profile, cmsSigLabData);
  cmsPipeline* const pipeline = cmsPipelineAlloc(nullptr, 4, 3);
  cmsStage* const stage = cmsStageAllocCLut16bit(nullptr, 9, 4, 3, nullptr);
  cmsStageSampleCLut16bit(stage, sample, nullptr, 0);
  cmsPipelineInsertStage(pipeline, cmsAT_BEGIN, stage);
  cmsWriteTag(profile, cmsSigAToB0Tag, pipeline);
  cmsPipelineFree(pipeline);
  return BytesOfProfile(profile);
}

}  // namespace

std::string ProfileNamed(const std::string& name) {
  if (name == "Adobe RGB") return RgbProfile({{0.64, 0.33, 1}, {0.21, 0.71, 1}, {0.15, 0.06, 1}}, 2.2);
  if (name == "Display P3") return RgbProfile({{0.68, 0.32, 1}, {0.265, 0.69, 1}, {0.15, 0.06, 1}}, 2.2);
  if (name == "linear grey") return LinearGrey();
  if (name == "CMYK") return Inks();
  return BytesOfProfile(cmsCreate_sRGBProfile());
}

namespace {

// What a pixel becomes in the samples of the kind.
std::vector<JSAMPLE> JpegSamples(const CPicture& picture, JpegKind kind) {
  std::vector<JSAMPLE> samples;
  for (const CRgb& pixel : TopFirst(picture)) {
    const auto inks = InksOf(pixel);
    const bool inverted = kind == JpegKind::AdobeCmyk || kind == JpegKind::AdobeYcck;
    if (kind == JpegKind::Colour) {
      samples.insert(samples.end(), pixel.begin(), pixel.end());
    } else if (kind == JpegKind::Grey) {
      samples.push_back(pixel[1]);
    } else {
      for (const std::uint8_t ink : inks) samples.push_back(static_cast<JSAMPLE>(inverted ? 255 - ink : ink));
    }
  }
  return samples;
}

void ChooseColours(jpeg_compress_struct& info, JpegKind kind) {
  info.input_components = kind == JpegKind::Colour ? 3 : kind == JpegKind::Grey ? 1 : 4;
  info.in_color_space = kind == JpegKind::Colour ? JCS_RGB : kind == JpegKind::Grey ? JCS_GRAYSCALE : JCS_CMYK;
  jpeg_set_defaults(&info);
  if (kind == JpegKind::AdobeYcck) jpeg_set_colorspace(&info, JCS_YCCK);
  info.write_Adobe_marker = kind == JpegKind::AdobeCmyk || kind == JpegKind::AdobeYcck ? TRUE : FALSE;
  for (int k = 0; k < info.num_components; ++k) info.comp_info[k].h_samp_factor = info.comp_info[k].v_samp_factor = 1;
}

}  // namespace

std::string TestJpeg(const CPicture& picture, const CJpegSettings& settings) {
  jpeg_error_mgr errors{};
  jpeg_compress_struct info{};
  info.err = jpeg_std_error(&errors);
  jpeg_create_compress(&info);
  unsigned char* bytes = nullptr;
  unsigned long length = 0;
  jpeg_mem_dest(&info, &bytes, &length);
  info.image_width = static_cast<JDIMENSION>(picture.m_iWidth);
  info.image_height = static_cast<JDIMENSION>(picture.m_iHeight);
  ChooseColours(info, settings.m_Kind);
  jpeg_set_quality(&info, 97, TRUE);
  if (settings.m_bProgressive) jpeg_simple_progression(&info);
  jpeg_start_compress(&info, TRUE);
  const std::string exif = std::string("Exif\0\0", 6) + ExifOf(settings.m_iOrientation);
  if (settings.m_iOrientation != 0)
    jpeg_write_marker(&info, JPEG_APP0 + 1, reinterpret_cast<const JOCTET*>(exif.data()),
                      static_cast<unsigned>(exif.size()));
  if (!settings.m_Profile.empty())
    jpeg_write_icc_profile(&info, reinterpret_cast<const JOCTET*>(settings.m_Profile.data()),
                           static_cast<unsigned>(settings.m_Profile.size()));
  std::vector<JSAMPLE> samples = JpegSamples(picture, settings.m_Kind);
  const std::size_t stride = samples.size() / static_cast<std::size_t>(picture.m_iHeight);
  while (info.next_scanline < info.image_height) {
    JSAMPROW row = &samples[info.next_scanline * stride];
    jpeg_write_scanlines(&info, &row, 1);
  }
  jpeg_finish_compress(&info);
  jpeg_destroy_compress(&info);
  const std::unique_ptr<unsigned char, decltype(&std::free)> owner(bytes, &std::free);
  return {reinterpret_cast<const char*>(bytes), length};
}

namespace {

int TypeOf(PngKind kind) {
  switch (kind) {
    case PngKind::Grey:
    case PngKind::Grey1:
      return PNG_COLOR_TYPE_GRAY;
    case PngKind::Palette:
      return PNG_COLOR_TYPE_PALETTE;
    case PngKind::ColourAlpha:
      return PNG_COLOR_TYPE_RGB_ALPHA;
    case PngKind::GreyAlpha:
      return PNG_COLOR_TYPE_GRAY_ALPHA;
    default:
      return PNG_COLOR_TYPE_RGB;
  }
}

/// The rows as the format wants them before they are packed, and the colours of a palette.
struct CPngRows {
  std::vector<std::uint8_t> m_acSamples;
  std::vector<png_color> m_aPalette;
};

std::uint8_t PaletteIndex(CPngRows& rows, const CRgb& pixel) {
  const auto same = [&pixel](const png_color& c) {
    return c.red == pixel[0] && c.green == pixel[1] && c.blue == pixel[2];
  };
  const auto known = std::ranges::find_if(rows.m_aPalette, same);
  const auto index = static_cast<std::uint8_t>(known - rows.m_aPalette.begin());
  if (known == rows.m_aPalette.end() && rows.m_aPalette.size() < 200)
    rows.m_aPalette.push_back({pixel[0], pixel[1], pixel[2]});
  return index;
}

CPngRows RowsOf(const CPicture& picture, const CPngSettings& settings) {
  CPngRows rows;
  // The low byte is another one, so that it is seen where it goes.
  const auto put = [&](std::uint8_t value) {
    rows.m_acSamples.push_back(value);
    if (settings.m_iBits == 16) rows.m_acSamples.push_back(value);
  };
  int x = 0;
  for (const CRgb& pixel : TopFirst(picture)) {
    const bool left = x < picture.m_iWidth / 2;
    if (++x == picture.m_iWidth) x = 0;
    const int type = TypeOf(settings.m_Kind);
    if (settings.m_Kind == PngKind::Palette) {
      rows.m_acSamples.push_back(PaletteIndex(rows, pixel));
    } else if (settings.m_Kind == PngKind::Grey1) {
      rows.m_acSamples.push_back(pixel[1] > 127 ? 1 : 0);
    } else if ((type & PNG_COLOR_MASK_COLOR) == 0) {
      put(pixel[1]);
    } else {
      for (const std::uint8_t channel : pixel) put(channel);
    }
    if ((type & PNG_COLOR_MASK_ALPHA) != 0) put(left ? 0 : 255);
  }
  return rows;
}

void PutExtras(png_structp png, png_infop info, const CPngSettings& settings) {
  if (!settings.m_Profile.empty())
    png_set_iCCP(png, info, "profile", 0, reinterpret_cast<png_const_bytep>(settings.m_Profile.data()),
                 static_cast<png_uint_32>(settings.m_Profile.size()));
  if (settings.m_fGamma > 0) png_set_gAMA(png, info, settings.m_fGamma);
  if (settings.m_Kind == PngKind::TransparentColour) {
    png_color_16 red{};
    red.red = settings.m_iBits == 16 ? 0xFFFF : 0xFF;
    png_set_tRNS(png, info, nullptr, 0, &red);
  }
}

void PutExif(png_structp png, png_infop info, int orientation) {
  std::string exif = ExifOf(orientation);
  if (orientation != 0)
    png_set_eXIf_1(png, info, static_cast<png_uint_32>(exif.size()), reinterpret_cast<png_bytep>(exif.data()));
}

void Append(png_structp png, png_bytep bytes, std::size_t length) {
  static_cast<std::string*>(png_get_io_ptr(png))->append(reinterpret_cast<const char*>(bytes), length);
}

}  // namespace

std::string TestPng(const CPicture& picture, const CPngSettings& settings) {
  std::string file;
  png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
  png_infop info = png_create_info_struct(png);
  png_infop last = png_create_info_struct(png);
  png_set_write_fn(png, &file, Append, nullptr);
  CPngRows rows = RowsOf(picture, settings);
  png_set_IHDR(png, info, static_cast<png_uint_32>(picture.m_iWidth), static_cast<png_uint_32>(picture.m_iHeight),
               settings.m_Kind == PngKind::Grey1 ? 1 : settings.m_iBits, TypeOf(settings.m_Kind),
               settings.m_bInterlaced ? PNG_INTERLACE_ADAM7 : PNG_INTERLACE_NONE, PNG_COMPRESSION_TYPE_DEFAULT,
               PNG_FILTER_TYPE_DEFAULT);
  if (settings.m_Kind == PngKind::Palette)
    png_set_PLTE(png, info, rows.m_aPalette.data(), static_cast<int>(rows.m_aPalette.size()));
  PutExtras(png, info, settings);
  PutExif(png, settings.m_bExifLast ? last : info, settings.m_iOrientation);
  png_write_info(png, info);
  png_set_packing(png);
  const std::size_t stride = rows.m_acSamples.size() / static_cast<std::size_t>(picture.m_iHeight);
  std::vector<png_bytep> starts;
  for (std::size_t at = 0; at < rows.m_acSamples.size(); at += stride) starts.push_back(&rows.m_acSamples[at]);
  png_write_image(png, starts.data());
  png_write_end(png, settings.m_bExifLast ? last : nullptr);
  png_destroy_info_struct(png, &last);
  png_destroy_write_struct(&png, &info);
  return file;
}

std::string TestWebp(const CPicture& picture, const CWebpSettings& settings) {
  std::vector<std::uint8_t> rgba;
  int x = 0;
  for (const CRgb& pixel : TopFirst(picture)) {
    rgba.insert(rgba.end(), pixel.begin(), pixel.end());
    rgba.push_back(settings.m_bAlpha && x < picture.m_iWidth / 2 ? 0 : 255);
    if (++x == picture.m_iWidth) x = 0;
  }
  std::uint8_t* encoded = nullptr;
  const std::size_t length =
      settings.m_bLossless
          ? WebPEncodeLosslessRGBA(rgba.data(), picture.m_iWidth, picture.m_iHeight, 4 * picture.m_iWidth, &encoded)
          : WebPEncodeRGBA(rgba.data(), picture.m_iWidth, picture.m_iHeight, 4 * picture.m_iWidth, 95, &encoded);
  const WebPData pixels{encoded, length};
  WebPMux* const mux = WebPMuxNew();
  WebPMuxSetImage(mux, &pixels, 1);
  const std::string exif = ExifOf(settings.m_iOrientation);
  const WebPData orientation{reinterpret_cast<const std::uint8_t*>(exif.data()), exif.size()};
  if (settings.m_iOrientation != 0) WebPMuxSetChunk(mux, "EXIF", &orientation, 1);
  const WebPData profile{reinterpret_cast<const std::uint8_t*>(settings.m_Profile.data()), settings.m_Profile.size()};
  if (!settings.m_Profile.empty()) WebPMuxSetChunk(mux, "ICCP", &profile, 1);
  WebPData assembled{};
  WebPMuxAssemble(mux, &assembled);
  std::string file(reinterpret_cast<const char*>(assembled.bytes), assembled.size);
  WebPDataClear(&assembled);
  WebPMuxDelete(mux);
  WebPFree(encoded);
  return file;
}
