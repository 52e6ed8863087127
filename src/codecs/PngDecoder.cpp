#include "codecs/PngDecoder.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <csetjmp>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>
#include <vector>

#include <png.h>

#include "base/Memory.h"
#include "codecs/ColourProfile.h"
#include "codecs/Orientation.h"

namespace {

// The method of compression makes no more of a byte.
constexpr double kMostPerFileByte = 1040;
constexpr double kHarmless = 64 << 20;

/// The bytes that have not been read yet.
struct CPngSource {
  std::string_view m_Rest;
  bool m_bEnded = false;  ///< more was wanted than there is
};

// The bytes up to a chunk that says to be longer than what is left. For a remark, a profile and the like the library
// would set aside whatever they say, before it looks for the bytes; the end of the pixels may be missing.
std::string_view UpToLyingChunk(std::string_view bytes) {
  constexpr std::size_t kSignature = 8;
  constexpr std::size_t kAround = 12;  // length and name before, checksum behind
  std::size_t at = kSignature;
  while (bytes.size() >= at + kAround) {
    std::size_t length = 0;
    for (std::size_t k = 0; k < 4; ++k) length = length << 8 | static_cast<unsigned char>(bytes[at + k]);
    const std::string_view name = bytes.substr(at + 4, 4);
    const bool fits = length <= bytes.size() - at - kAround;
    if (!fits) return name == "IDAT" ? bytes : bytes.substr(0, at);
    if (name == "IEND") break;
    at += kAround + length;
  }
  return bytes;
}

void Read(png_structp png, png_bytep to, std::size_t length) {
  auto& source = *static_cast<CPngSource*>(png_get_io_ptr(png));
  if (length > source.m_Rest.size()) {
    source.m_bEnded = true;
    png_error(png, "");
  }
  std::memcpy(to, source.m_Rest.data(), length);
  source.m_Rest.remove_prefix(length);
}

[[noreturn]] void GiveUp(png_structp png, png_const_charp /*message*/) { png_longjmp(png, 1); }

void SayNothing(png_structp /*png*/, png_const_charp /*message*/) {}

/// The library's state of one picture. Each call of the library goes through `Try`, so that its jumps skip nothing that
/// has a destructor.
class CPngReader {
 public:
  explicit CPngReader(std::string_view bytes)
      : m_uSize(bytes.size()),
        m_Source{UpToLyingChunk(bytes)},
        m_pPng(png_create_read_struct(PNG_LIBPNG_VER_STRING, nullptr, GiveUp, SayNothing)),
        m_pInfo(m_pPng == nullptr ? nullptr : png_create_info_struct(m_pPng)) {}
  ~CPngReader() { png_destroy_read_struct(&m_pPng, &m_pInfo, nullptr); }
  CPngReader(const CPngReader&) = delete;
  CPngReader& operator=(const CPngReader&) = delete;

  Decoding Decode(RasterSink& sink);

 private:
  template <typename Call>
  bool Try(Call call) {
    if (setjmp(png_jmpbuf(m_pPng)) != 0) return false;
    call();
    return true;
  }
  bool ReadHeader();
  CRaster Raster() const;
  void FindProfile(CRaster& raster) const;
  void FindOrientation(RasterSink& sink) const;
  Decoding ReadRows(const CRaster& raster, RasterSink& sink);
  Decoding ReadPasses(const CRaster& raster, RasterSink& sink);
  Decoding Ended(bool anything) const;

  std::size_t m_uSize;
  CPngSource m_Source;
  png_structp m_pPng;
  png_infop m_pInfo;
  int m_iPasses = 1;
};

bool CPngReader::ReadHeader() {
  return Try([this] {
    png_set_read_fn(m_pPng, &m_Source, Read);
    constexpr png_uint_32 kAnySide = std::numeric_limits<std::int32_t>::max();
    png_set_user_limits(m_pPng, kAnySide, kAnySide);
    // Of a file that ends early the last piece is lost.
    constexpr std::size_t kPiece = 256;
    png_set_compression_buffer_size(m_pPng, kPiece);
    png_read_info(m_pPng, m_pInfo);
    png_set_expand(m_pPng);
    if constexpr (std::endian::native == std::endian::little) png_set_swap(m_pPng);
    m_iPasses = png_set_interlace_handling(m_pPng);
    png_read_update_info(m_pPng, m_pInfo);
  });
}

CRaster CPngReader::Raster() const {
  CRaster raster;
  raster.m_iWidth = static_cast<int>(png_get_image_width(m_pPng, m_pInfo));
  raster.m_iHeight = static_cast<int>(png_get_image_height(m_pPng, m_pInfo));
  raster.m_iBits = png_get_bit_depth(m_pPng, m_pInfo);
  const int type = png_get_color_type(m_pPng, m_pInfo);
  raster.m_Colour = (type & PNG_COLOR_MASK_COLOR) != 0 ? SampleColour::Rgb : SampleColour::Grey;
  raster.m_Alpha = (type & PNG_COLOR_MASK_ALPHA) != 0 ? SampleAlpha::Straight : SampleAlpha::None;
  FindProfile(raster);
  return raster;
}

// A profile, or a curve and colours that say the same; a statement that it is sRGB goes before these.
void CPngReader::FindProfile(CRaster& raster) const {
  png_charp name = nullptr;
  int method = 0;
  png_bytep profile = nullptr;
  png_uint_32 length = 0;
  if (png_get_iCCP(m_pPng, m_pInfo, &name, &method, &profile, &length) != 0)
    return raster.m_Profile.assign(reinterpret_cast<const char*>(profile), length), void();
  double gamma = 0.0;
  if (png_get_valid(m_pPng, m_pInfo, PNG_INFO_sRGB) != 0 || png_get_gAMA(m_pPng, m_pInfo, &gamma) == 0 || gamma <= 0.0)
    return;
  double wx = 0.3127;
  double wy = 0.3290;
  double rx = 0.64;
  double ry = 0.33;
  double gx = 0.30;
  double gy = 0.60;
  double bx = 0.15;
  double by = 0.06;
  png_get_cHRM(m_pPng, m_pInfo, &wx, &wy, &rx, &ry, &gx, &gy, &bx, &by);
  raster.m_Profile = ProfileOf({rx, ry, gx, gy, bx, by, wx, wy}, 1.0 / gamma);
}

void CPngReader::FindOrientation(RasterSink& sink) const {
  png_uint_32 length = 0;
  png_bytep exif = nullptr;
  if (png_get_eXIf_1(m_pPng, m_pInfo, &length, &exif) != 0)
    sink.SetOrientation(ExifOrientation({reinterpret_cast<const char*>(exif), length}));
}

Decoding CPngReader::Ended(bool anything) const {
  if (m_Source.m_bEnded) return anything ? Decoding::EndsEarly : Decoding::CutShort;
  return anything ? Decoding::Damaged : Decoding::Unusable;
}

Decoding CPngReader::Decode(RasterSink& sink) {
  if (m_pInfo == nullptr) return Decoding::NoMemory;
  if (!ReadHeader()) return Ended(false);
  const CRaster raster = Raster();
  FindOrientation(sink);
  if (!sink.Begin(raster)) return Decoding::Refused;
  const double announced = static_cast<double>(raster.Stride()) * raster.m_iHeight;
  if (announced > std::max(kHarmless, 24 * kMostPerFileByte * static_cast<double>(m_uSize))) return Decoding::CutShort;
  if (m_iPasses > 1 && announced > AvailableMemory()) return Decoding::NoMemory;
  const Decoding rows = m_iPasses > 1 ? ReadPasses(raster, sink) : ReadRows(raster, sink);
  if (rows != Decoding::Whole) return rows;
  // The orientation may stand behind the pixels.
  if (!Try([this] { png_read_end(m_pPng, m_pInfo); })) return Ended(true);
  FindOrientation(sink);
  return Decoding::Whole;
}

Decoding CPngReader::ReadRows(const CRaster& raster, RasterSink& sink) {
  std::vector<png_byte> row(raster.Stride());
  for (int y = 0; y < raster.m_iHeight; ++y) {
    if (!Try([this, &row] { png_read_row(m_pPng, row.data(), nullptr); })) return Ended(y > 0);
    sink.Row(row.data());
  }
  return Decoding::Whole;
}

// Each pass fills in between the pixels of those before it, and is shown as blocks until the next one comes.
Decoding CPngReader::ReadPasses(const CRaster& raster, RasterSink& sink) {
  constexpr png_byte kWhite = 0xFF;
  const std::size_t stride = raster.Stride();
  std::vector<png_byte> image(stride * static_cast<std::size_t>(raster.m_iHeight), kWhite);
  Decoding outcome = Decoding::Whole;
  for (int pass = 0; pass < m_iPasses && outcome == Decoding::Whole; ++pass) {
    for (std::size_t at = 0; at < image.size() && outcome == Decoding::Whole; at += stride) {
      png_bytep row = &image[at];
      if (!Try([this, &row] { png_read_rows(m_pPng, nullptr, &row, 1); })) outcome = Ended(pass > 0 || at > 0);
    }
  }
  if (outcome == Decoding::CutShort || outcome == Decoding::Unusable) return outcome;
  for (std::size_t at = 0; at < image.size(); at += stride) sink.Row(&image[at]);
  return outcome;
}

}  // namespace

Decoding DecodePng(std::string_view bytes, RasterSink& sink) { return CPngReader(bytes).Decode(sink); }
