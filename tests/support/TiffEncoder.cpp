#include <algorithm>
#include <array>
#include <cstring>
#include <vector>

#include <tiffio.h>

#include "support/CTemporaryDirectory.h"
#include "support/EncodedRows.h"
#include "support/FileBuilders.h"
#include "support/PictureEncoders.h"

namespace {

/// The samples of a picture, each 1, 2 or 4 bytes, pixel by pixel.
struct CSamples {
  std::size_t m_uChannels = 0;
  std::size_t m_uBytes = 1;
  std::vector<std::uint8_t> m_acBytes;
  std::array<std::array<std::uint16_t, 256>, 3> m_aPalette{};
};

template <typename Sample>
void Put(CSamples& samples, Sample value) {
  std::array<std::uint8_t, sizeof(Sample)> bytes{};
  std::memcpy(bytes.data(), &value, sizeof(Sample));
  samples.m_acBytes.insert(samples.m_acBytes.end(), bytes.begin(), bytes.end());
}

std::vector<std::uint8_t> ChannelsOf(const CRgb& pixel, TiffKind kind, bool left) {
  const std::uint8_t grey = pixel[1];
  switch (kind) {
    case TiffKind::Grey:
    case TiffKind::Float:
      return {grey};
    case TiffKind::GreyInverted:
      return {static_cast<std::uint8_t>(255 - grey)};
    case TiffKind::Bilevel:
      return {static_cast<std::uint8_t>(grey > 127 ? 1 : 0)};
    case TiffKind::BilevelInverted:
      return {static_cast<std::uint8_t>(grey > 127 ? 0 : 1)};
    case TiffKind::ColourAlpha:
      return {pixel[0], pixel[1], pixel[2], static_cast<std::uint8_t>(left ? 0 : 255)};
    case TiffKind::Cmyk: {
      const auto inks = InksOf(pixel);
      return {inks.begin(), inks.end()};
    }
    default:
      return {pixel[0], pixel[1], pixel[2]};
  }
}

// A palette of the red and green channels, four bits each.
std::uint8_t PaletteIndex(CSamples& samples, const CRgb& pixel) {
  const auto index = static_cast<std::uint8_t>((pixel[0] & 0xF0) | pixel[1] >> 4);
  for (std::size_t c = 0; c < 3; ++c) samples.m_aPalette[c][index] = static_cast<std::uint16_t>(257 * pixel[c]);
  return index;
}

CSamples SamplesOf(const CPicture& picture, const CTiffSettings& settings) {
  CSamples samples;
  samples.m_uBytes = settings.m_Kind == TiffKind::Float ? 4 : static_cast<std::size_t>(settings.m_iBits) / 8;
  int x = 0;
  for (const CRgb& pixel : TopFirst(picture)) {
    std::vector<std::uint8_t> channels = ChannelsOf(pixel, settings.m_Kind, x < picture.m_iWidth / 2);
    if (settings.m_Kind == TiffKind::Palette) channels = {PaletteIndex(samples, pixel)};
    samples.m_uChannels = channels.size();
    for (const std::uint8_t channel : channels) {
      if (samples.m_uBytes == 4) Put(samples, static_cast<float>(channel) / 8.0F - 5.0F);
      if (samples.m_uBytes == 2) Put(samples, static_cast<std::uint16_t>(257 * channel));
      if (samples.m_uBytes == 1) samples.m_acBytes.push_back(channel);
    }
    if (++x == picture.m_iWidth) x = 0;
  }
  return samples;
}

bool IsBilevel(TiffKind kind) { return kind == TiffKind::Bilevel || kind == TiffKind::BilevelInverted; }

int PhotometricOf(TiffKind kind) {
  switch (kind) {
    case TiffKind::Grey:
    case TiffKind::Float:
    case TiffKind::Bilevel:
      return PHOTOMETRIC_MINISBLACK;
    case TiffKind::GreyInverted:
    case TiffKind::BilevelInverted:
      return PHOTOMETRIC_MINISWHITE;
    case TiffKind::Palette:
      return PHOTOMETRIC_PALETTE;
    case TiffKind::Cmyk:
      return PHOTOMETRIC_SEPARATED;
    case TiffKind::Ycbcr:
      return PHOTOMETRIC_YCBCR;
    default:
      return PHOTOMETRIC_RGB;
  }
}

void PutTags(TIFF* tiff, const CPicture& picture, const CTiffSettings& settings, CSamples& samples) {
  TIFFSetField(tiff, TIFFTAG_IMAGEWIDTH, picture.m_iWidth);
  TIFFSetField(tiff, TIFFTAG_IMAGELENGTH, picture.m_iHeight);
  TIFFSetField(tiff, TIFFTAG_BITSPERSAMPLE, IsBilevel(settings.m_Kind) ? 1 : static_cast<int>(8 * samples.m_uBytes));
  TIFFSetField(tiff, TIFFTAG_SAMPLESPERPIXEL, static_cast<int>(samples.m_uChannels));
  TIFFSetField(tiff, TIFFTAG_PHOTOMETRIC, PhotometricOf(settings.m_Kind));
  TIFFSetField(tiff, TIFFTAG_COMPRESSION, settings.m_iCompression);
  TIFFSetField(tiff, TIFFTAG_PLANARCONFIG, settings.m_bApart ? PLANARCONFIG_SEPARATE : PLANARCONFIG_CONTIG);
  if (settings.m_Kind == TiffKind::Ycbcr) TIFFSetField(tiff, TIFFTAG_JPEGCOLORMODE, JPEGCOLORMODE_RGB);
  if (settings.m_Kind == TiffKind::Float) TIFFSetField(tiff, TIFFTAG_SAMPLEFORMAT, SAMPLEFORMAT_IEEEFP);
  if (settings.m_bSigned) TIFFSetField(tiff, TIFFTAG_SAMPLEFORMAT, SAMPLEFORMAT_INT);
  if (settings.m_Kind == TiffKind::Palette)
    TIFFSetField(tiff, TIFFTAG_COLORMAP, samples.m_aPalette[0].data(), samples.m_aPalette[1].data(),
                 samples.m_aPalette[2].data());
  constexpr std::array<std::uint16_t, 1> kStraight{EXTRASAMPLE_UNASSALPHA};
  if (settings.m_Kind == TiffKind::ColourAlpha) TIFFSetField(tiff, TIFFTAG_EXTRASAMPLES, 1, kStraight.data());
  if (settings.m_iOrientation != 0) TIFFSetField(tiff, TIFFTAG_ORIENTATION, settings.m_iOrientation);
  if (!settings.m_Profile.empty())
    TIFFSetField(tiff, TIFFTAG_ICCPROFILE, static_cast<std::uint32_t>(settings.m_Profile.size()),
                 settings.m_Profile.data());
}

/// A block of a picture, a strip or a tile of one channel or of all.
struct CBlock {
  std::size_t m_uLeft, m_uTop, m_uColumns, m_uRows, m_uFirst, m_uCount;
};

std::vector<std::uint8_t> Packed(const CSamples& samples, const CPicture& picture, const CBlock& block, bool bits) {
  std::vector<std::uint8_t> packed;
  for (std::size_t y = block.m_uTop; y < block.m_uTop + block.m_uRows; ++y) {
    std::size_t bit = 0;
    for (std::size_t x = block.m_uLeft; x < block.m_uLeft + block.m_uColumns; ++x) {
      const std::size_t pixel = std::min<std::size_t>(y, static_cast<std::size_t>(picture.m_iHeight) - 1) *
                                    static_cast<std::size_t>(picture.m_iWidth) +
                                std::min<std::size_t>(x, static_cast<std::size_t>(picture.m_iWidth) - 1);
      const std::uint8_t* const from =
          &samples.m_acBytes[(pixel * samples.m_uChannels + block.m_uFirst) * samples.m_uBytes];
      if (!bits) {
        packed.insert(packed.end(), from, from + block.m_uCount * samples.m_uBytes);
        continue;
      }
      if (bit % 8 == 0) packed.push_back(0);
      packed.back() = static_cast<std::uint8_t>(packed.back() | *from << (7 - bit++ % 8));
    }
  }
  return packed;
}

void PutPixels(TIFF* tiff, const CPicture& picture, const CTiffSettings& settings, const CSamples& samples) {
  constexpr std::size_t kTile = 16;
  const auto width = static_cast<std::size_t>(picture.m_iWidth);
  const auto height = static_cast<std::size_t>(picture.m_iHeight);
  const std::size_t columns = settings.m_bTiled ? kTile : width;
  const std::size_t rows = settings.m_bTiled ? kTile : static_cast<std::size_t>(settings.m_iRowsPerStrip);
  if (settings.m_bTiled) {
    TIFFSetField(tiff, TIFFTAG_TILEWIDTH, static_cast<int>(kTile));
    TIFFSetField(tiff, TIFFTAG_TILELENGTH, static_cast<int>(kTile));
  } else {
    TIFFSetField(tiff, TIFFTAG_ROWSPERSTRIP, settings.m_iRowsPerStrip);
  }
  const std::size_t planes = settings.m_bApart ? samples.m_uChannels : 1;
  std::uint32_t index = 0;
  for (std::size_t plane = 0; plane < planes; ++plane) {
    for (std::size_t top = 0; top < height; top += rows) {
      for (std::size_t left = 0; left < width; left += columns) {
        const std::size_t used = settings.m_bTiled ? rows : std::min(rows, height - top);
        std::vector<std::uint8_t> block =
            Packed(samples, picture, {left, top, columns, used, plane, samples.m_uChannels / planes},
                   IsBilevel(settings.m_Kind));
        if (settings.m_bTiled) {
          TIFFWriteEncodedTile(tiff, index++, block.data(), static_cast<tmsize_t>(block.size()));
        } else {
          TIFFWriteEncodedStrip(tiff, index++, block.data(), static_cast<tmsize_t>(block.size()));
        }
      }
    }
  }
}

}  // namespace

std::string TestTiff(const CPicture& picture, const CTiffSettings& settings) {
  const CTemporaryDirectory directory;
  const std::string file = directory.File("picture.tif");
  CSamples samples = SamplesOf(picture, settings);
  TIFF* const tiff = TIFFOpen(file.c_str(), "w");
  PutTags(tiff, picture, settings, samples);
  PutPixels(tiff, picture, settings, samples);
  TIFFClose(tiff);
  return BytesOf(file);
}
