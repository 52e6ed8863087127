#include "codecs/TiffDecoder.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>
#include <vector>

#include "base/Memory.h"
#include "codecs/CTiffBands.h"
#include "codecs/CTiffFile.h"

namespace {

// A picture that the library is to convert is not believed to be larger than either of these.
constexpr double kHarmless = 64 << 20;
constexpr double kMostPerFileByte = 4096;

/// What is made of the stored samples.
class CTiffPixels {
 public:
  CTiffPixels(const CTiffFile& file, const CTiffLayout& layout);

  /// Whether these colours are known here; otherwise the library must convert them.
  bool IsKnown() const { return m_bKnown; }
  const CRaster& Raster() const { return m_Raster; }
  /// A row in the order of the raster, made of a stored one.
  const void* Row(const std::uint8_t* stored);

 private:
  void FindColours(const CTiffFile& file);
  void FindAlpha(const CTiffFile& file);
  bool TakePalette(const CTiffFile& file);
  template <typename Sample>
  void Convert(const std::uint8_t* stored);

  CTiffLayout m_Layout;
  CRaster m_Raster;
  bool m_bKnown = false;
  bool m_bInverted = false;  ///< the full value is black
  std::vector<std::array<std::uint8_t, 3>> m_aPalette;
  std::vector<std::uint8_t> m_acRow;
};

CTiffPixels::CTiffPixels(const CTiffFile& file, const CTiffLayout& layout) : m_Layout(layout) {
  m_Raster.m_iWidth = static_cast<int>(layout.m_uWidth);
  m_Raster.m_iHeight = static_cast<int>(layout.m_uHeight);
  m_Raster.m_iBits = std::max<int>(layout.m_uBits, 8);
  const auto format = file.Field<std::uint16_t>(TIFFTAG_SAMPLEFORMAT);
  const bool integer = format == SAMPLEFORMAT_UINT || format == SAMPLEFORMAT_VOID;
  constexpr std::array<std::uint16_t, 5> kIntegers{1, 2, 4, 8, 16};
  m_bKnown = integer ? std::ranges::count(kIntegers, layout.m_uBits) != 0
                     : format == SAMPLEFORMAT_IEEEFP && layout.m_uBits == 32;
  if (!m_bKnown) return;
  FindColours(file);
  FindAlpha(file);
  m_bKnown = m_bKnown && layout.m_uSamples >= (m_aPalette.empty() ? m_Raster.Channels() : 1);
  void* profile = nullptr;
  std::uint32_t length = 0;
  if (TIFFGetField(file.Handle(), TIFFTAG_ICCPROFILE, &length, &profile) != 0)
    m_Raster.m_Profile.assign(static_cast<const char*>(profile), length);
}

void CTiffPixels::FindColours(const CTiffFile& file) {
  const auto photometric = file.Field<std::uint16_t>(TIFFTAG_PHOTOMETRIC);
  m_bInverted = photometric == PHOTOMETRIC_MINISWHITE;
  if (photometric == PHOTOMETRIC_MINISWHITE || photometric == PHOTOMETRIC_MINISBLACK) {
    m_Raster.m_Colour = SampleColour::Grey;
  } else if (photometric == PHOTOMETRIC_SEPARATED) {
    m_Raster.m_Colour = SampleColour::Cmyk;
    m_bKnown = file.Field<std::uint16_t>(TIFFTAG_INKSET) == INKSET_CMYK;
  } else if (photometric == PHOTOMETRIC_PALETTE) {
    m_bKnown = TakePalette(file);
  } else if (photometric == PHOTOMETRIC_YCBCR && file.Field<std::uint16_t>(TIFFTAG_COMPRESSION) == COMPRESSION_JPEG) {
    // The library that decodes the blocks converts them, too.
    m_bKnown = TIFFSetField(file.Handle(), TIFFTAG_JPEGCOLORMODE, JPEGCOLORMODE_RGB) != 0;
  } else {
    m_bKnown = photometric == PHOTOMETRIC_RGB;
  }
}

void CTiffPixels::FindAlpha(const CTiffFile& file) {
  std::uint16_t count = 0;
  std::uint16_t* kinds = nullptr;
  if (!m_aPalette.empty() || TIFFGetField(file.Handle(), TIFFTAG_EXTRASAMPLES, &count, &kinds) == 0 || count == 0 ||
      m_Layout.m_uSamples <= m_Raster.Colours())
    return;
  if (kinds[0] == EXTRASAMPLE_ASSOCALPHA) m_Raster.m_Alpha = SampleAlpha::Premultiplied;
  if (kinds[0] == EXTRASAMPLE_UNASSALPHA) m_Raster.m_Alpha = SampleAlpha::Straight;
}

bool CTiffPixels::TakePalette(const CTiffFile& file) {
  std::uint16_t* red = nullptr;
  std::uint16_t* green = nullptr;
  std::uint16_t* blue = nullptr;
  if (m_Layout.m_uBits > 8 || TIFFGetField(file.Handle(), TIFFTAG_COLORMAP, &red, &green, &blue) == 0) return false;
  const std::size_t count = std::size_t{1} << m_Layout.m_uBits;
  const auto isByte = [](std::uint16_t value) { return value < 256; };
  // Some programs write bytes where the format has 16 bits.
  const bool bytes = std::all_of(red, red + count, isByte) && std::all_of(green, green + count, isByte) &&
                     std::all_of(blue, blue + count, isByte);
  const auto byte = [bytes](std::uint16_t value) { return static_cast<std::uint8_t>(bytes ? value : value / 257); };
  for (std::size_t k = 0; k < count; ++k) m_aPalette.push_back({byte(red[k]), byte(green[k]), byte(blue[k])});
  return true;
}

template <typename Sample>
void CTiffPixels::Convert(const std::uint8_t* stored) {
  const std::size_t channels = m_Raster.Channels();
  const auto full = static_cast<Sample>(std::numeric_limits<Sample>::max());
  const auto scale = static_cast<unsigned>(m_Layout.m_uBits < 8 ? 255U / ((1U << m_Layout.m_uBits) - 1) : 1U);
  for (std::size_t pixel = 0; pixel < m_Layout.m_uWidth; ++pixel) {
    for (std::size_t c = 0; c < channels; ++c) {
      Sample value{};
      std::memcpy(&value, stored + (pixel * m_Layout.m_uSamples + c) * sizeof(Sample), sizeof(Sample));
      if constexpr (sizeof(Sample) == 1) value = static_cast<Sample>(value * scale);
      if (m_bInverted && c < m_Raster.Colours() && std::numeric_limits<Sample>::is_integer)
        value = static_cast<Sample>(full - value);
      std::memcpy(&m_acRow[(pixel * channels + c) * sizeof(Sample)], &value, sizeof(Sample));
    }
  }
}

const void* CTiffPixels::Row(const std::uint8_t* stored) {
  m_acRow.resize(m_Raster.Stride());
  if (!m_aPalette.empty()) {
    const std::size_t last = m_aPalette.size() - 1;
    for (std::size_t k = 0; k < m_Layout.m_uWidth; ++k)
      std::ranges::copy(m_aPalette[std::min<std::size_t>(stored[k * m_Layout.m_uSamples], last)], &m_acRow[3 * k]);
  } else if (m_Raster.m_iBits == 8) {
    Convert<std::uint8_t>(stored);
  } else if (m_Raster.m_iBits == 16) {
    Convert<std::uint16_t>(stored);
  } else {
    Convert<float>(stored);
  }
  return m_acRow.data();
}

Decoding ReadBands(const CTiffFile& file, const CTiffLayout& layout, CTiffPixels& pixels, RasterSink& sink) {
  CTiffBands bands(file, layout);
  if (!bands.IsUsable()) return Decoding::Unusable;
  const std::vector<std::uint8_t> blank(pixels.Raster().Stride(), layout.m_uBlank);
  bool anything = false;
  bool whole = true;
  // Rows for which there is nothing are handed over when there is something after them, as they take memory.
  std::uint32_t missing = 0;
  for (std::uint32_t row = 0; row < layout.m_uHeight && !file.HasEnded(); row += bands.RowsPerBand()) {
    const CBandParts parts = bands.Read(row);
    const std::uint32_t rows = std::min(bands.RowsPerBand(), layout.m_uHeight - row);
    whole = whole && parts.m_uDamaged == 0;
    if (parts.m_uDamaged != 0 && file.HasEnded()) break;
    missing += parts.m_uSound == 0 ? rows : 0;
    if (parts.m_uSound == 0) continue;
    anything = true;
    for (; missing > 0; --missing) sink.Row(blank.data());
    for (std::uint32_t k = 0; k < rows; ++k) sink.Row(pixels.Row(bands.Row(k)));
  }
  if (file.HasEnded()) return anything ? Decoding::EndsEarly : Decoding::CutShort;
  if (whole) return Decoding::Whole;
  return anything ? Decoding::Damaged : Decoding::Unusable;
}

// By the library, which takes a second picture for it.
Decoding Convert(const CTiffFile& file, const CTiffLayout& layout, std::size_t length, RasterSink& sink) {
  CRaster raster;
  raster.m_iWidth = static_cast<int>(layout.m_uWidth);
  raster.m_iHeight = static_cast<int>(layout.m_uHeight);
  raster.m_Alpha = SampleAlpha::Premultiplied;
  raster.m_bConverted = true;
  if (!sink.Begin(raster)) return Decoding::Refused;
  const double bytes = static_cast<double>(raster.Stride()) * raster.m_iHeight;
  if (bytes > std::max(kHarmless, kMostPerFileByte * static_cast<double>(length))) return Decoding::CutShort;
  if (bytes > AvailableMemory()) return Decoding::NoMemory;
  std::vector<std::uint32_t> image(static_cast<std::size_t>(bytes) / sizeof(std::uint32_t));
  const int orientation = file.Field<std::uint16_t>(TIFFTAG_ORIENTATION);
  if (TIFFReadRGBAImageOriented(file.Handle(), layout.m_uWidth, layout.m_uHeight, image.data(), orientation, 1) == 0)
    return file.HasEnded() ? Decoding::CutShort : Decoding::Unusable;
  std::vector<std::uint8_t> row(raster.Stride());
  for (std::size_t y = 0; y < layout.m_uHeight; ++y) {
    for (std::size_t k = 0; k < layout.m_uWidth; ++k) {
      const std::uint32_t pixel = image[y * layout.m_uWidth + k];
      const std::array<std::uint32_t, 4> channels{TIFFGetR(pixel), TIFFGetG(pixel), TIFFGetB(pixel), TIFFGetA(pixel)};
      std::ranges::transform(channels, &row[4 * k], [](std::uint32_t v) { return static_cast<std::uint8_t>(v); });
    }
    sink.Row(row.data());
  }
  return file.HasEnded() ? Decoding::EndsEarly : Decoding::Whole;
}

CTiffLayout LayoutOf(const CTiffFile& file) {
  CTiffLayout layout;
  layout.m_uWidth = file.Field<std::uint32_t>(TIFFTAG_IMAGEWIDTH);
  layout.m_uHeight = file.Field<std::uint32_t>(TIFFTAG_IMAGELENGTH);
  layout.m_uBits = file.Field<std::uint16_t>(TIFFTAG_BITSPERSAMPLE);
  layout.m_uSamples = file.Field<std::uint16_t>(TIFFTAG_SAMPLESPERPIXEL);
  layout.m_bTiled = TIFFIsTiled(file.Handle()) != 0;
  layout.m_bApart = file.Field<std::uint16_t>(TIFFTAG_PLANARCONFIG) == PLANARCONFIG_SEPARATE && layout.m_uSamples > 1;
  const auto photometric = file.Field<std::uint16_t>(TIFFTAG_PHOTOMETRIC);
  if (photometric == PHOTOMETRIC_MINISWHITE || photometric == PHOTOMETRIC_SEPARATED) layout.m_uBlank = 0;
  return layout;
}

}  // namespace

bool IsTiff(std::string_view bytes) {
  constexpr std::size_t kLength = 4;
  const std::string_view magic = bytes.substr(0, kLength);
  return magic == std::string_view("II*\0", kLength) || magic == std::string_view("MM\0*", kLength) ||
         magic == std::string_view("II+\0", kLength) || magic == std::string_view("MM\0+", kLength);
}

Decoding DecodeTiff(std::string_view bytes, RasterSink& sink) {
  const CTiffFile file(bytes);
  if (file.Handle() == nullptr) return file.HasEnded() ? Decoding::CutShort : Decoding::Unusable;
  const CTiffLayout layout = LayoutOf(file);
  constexpr std::uint32_t kMostSide = std::numeric_limits<int>::max();
  // No photograph or map has more; a damaged number of them would have a band of a small picture take a gigabyte.
  constexpr std::uint16_t kMostSamples = 64;
  if (layout.m_uSamples > kMostSamples) return Decoding::Unusable;
  if (layout.m_uWidth == 0 || layout.m_uHeight == 0 || layout.m_uSamples == 0 || layout.m_uWidth > kMostSide ||
      layout.m_uHeight > kMostSide)
    return Decoding::Unusable;
  const auto orientation = file.Field<std::uint16_t>(TIFFTAG_ORIENTATION);
  sink.SetOrientation(orientation >= 1 && orientation <= 8 ? orientation : 1);
  CTiffPixels pixels(file, layout);
  if (!pixels.IsKnown()) return Convert(file, layout, bytes.size(), sink);
  if (!sink.Begin(pixels.Raster())) return Decoding::Refused;
  return ReadBands(file, layout, pixels, sink);
}
