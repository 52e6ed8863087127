#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <tiffio.h>

#include "codecs/ChannelFormats.h"

/// Numbers of a map, row by row from the top.
struct CMap {
  int m_iWidth = 0;
  int m_iHeight = 0;
  std::vector<float> m_afNumbers;

  float At(int column, int row) const { return m_afNumbers[static_cast<std::size_t>(row * m_iWidth + column)]; }
};

/// The same of rows from the bottom.
inline CMap FromBottom(CMap map) {
  CMap turned{map.m_iWidth, map.m_iHeight, {}};
  for (auto end = map.m_afNumbers.end(); end != map.m_afNumbers.begin(); end -= map.m_iWidth)
    turned.m_afNumbers.insert(turned.m_afNumbers.end(), end - map.m_iWidth, end);
  return turned;
}

/// A portable float map.
inline CMap ReadPfm(const std::string& bytes) {
  std::istringstream in(bytes);
  std::string kind;
  CMap map;
  double scale = 0;
  in >> kind >> map.m_iWidth >> map.m_iHeight >> scale;
  EXPECT_EQ(kind, "Pf");
  EXPECT_LT(scale, 0) << "little endian";
  in.get();
  map.m_afNumbers.resize(static_cast<std::size_t>(map.m_iWidth * map.m_iHeight));
  EXPECT_EQ(bytes.size() - static_cast<std::size_t>(in.tellg()), 4 * map.m_afNumbers.size());
  std::memcpy(map.m_afNumbers.data(), &bytes[static_cast<std::size_t>(in.tellg())], 4 * map.m_afNumbers.size());
  return FromBottom(map);
}

/// A field of its directory, which must be there.
template <typename Number>
Number TiffField(TIFF* tiff, std::uint32_t tag) {
  Number value = 0;
  EXPECT_EQ(TIFFGetField(tiff, tag, &value), 1) << tag;
  return value;
}

/// A TIFF of floats, by the library.
inline CMap ReadTiff(const std::string& file) {
  const std::unique_ptr<TIFF, decltype(&TIFFClose)> tiff(TIFFOpen(file.c_str(), "r"), &TIFFClose);
  if (tiff == nullptr) return {};
  CMap map{static_cast<int>(TiffField<std::uint32_t>(tiff.get(), TIFFTAG_IMAGEWIDTH)),
           static_cast<int>(TiffField<std::uint32_t>(tiff.get(), TIFFTAG_IMAGELENGTH)),
           {}};
  EXPECT_EQ(TiffField<std::uint16_t>(tiff.get(), TIFFTAG_BITSPERSAMPLE), 32);
  EXPECT_EQ(TiffField<std::uint16_t>(tiff.get(), TIFFTAG_SAMPLEFORMAT), SAMPLEFORMAT_IEEEFP);
  EXPECT_EQ(TiffField<std::uint16_t>(tiff.get(), TIFFTAG_SAMPLESPERPIXEL), 1);
  EXPECT_EQ(TiffField<std::uint16_t>(tiff.get(), TIFFTAG_ORIENTATION), ORIENTATION_TOPLEFT);
  map.m_afNumbers.resize(static_cast<std::size_t>(map.m_iWidth * map.m_iHeight));
  for (int row = 0; row < map.m_iHeight; ++row)
    EXPECT_EQ(TIFFReadScanline(tiff.get(), &map.m_afNumbers[static_cast<std::size_t>(row * map.m_iWidth)],
                               static_cast<std::uint32_t>(row), 0),
              1);
  return map;
}

/// A map of one channel as this program reads it.
inline CMap ReadOwn(const std::string& file) {
  const CReadChannel channel = ReadChannel(file);
  EXPECT_TRUE(channel) << channel.m_Reason;
  return FromBottom({channel.m_iWidth, channel.m_iHeight, channel.m_afValues});
}
