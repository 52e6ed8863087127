#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "support/PictureEncoders.h"

// Files that are no depth maps, in every format in which depth maps come.

/// A file, and what its name is to be.
struct CBadDepthMap {
  std::string m_Name;
  std::string m_Bytes;
};

inline constexpr std::uint32_t kImmenseSide = 20000;

/// A number of four bytes at a place, in either order.
inline void SetNumber(std::string& bytes, std::size_t place, std::uint32_t number, bool littleEndian) {
  for (std::size_t k = 0; k < 4; ++k)
    bytes[place + k] = static_cast<char>(number >> (littleEndian ? 8 * k : 24 - 8 * k) & 0xFF);
}

/// The PNG with another size in its header, whose checksum is right again.
inline std::string WithPngSize(std::string png, std::uint32_t width, std::uint32_t height) {
  constexpr std::size_t kHeader = 12;
  constexpr std::size_t kLength = 17;
  constexpr std::uint32_t kPolynomial = 0xEDB88320;
  SetNumber(png, kHeader + 4, width, false);
  SetNumber(png, kHeader + 8, height, false);
  std::uint32_t sum = 0xFFFFFFFF;
  for (const char c : std::string_view(png).substr(kHeader, kLength)) {
    sum ^= static_cast<unsigned char>(c);
    for (int bit = 0; bit < 8; ++bit) sum = sum >> 1 ^ ((sum & 1) != 0 ? kPolynomial : 0);
  }
  SetNumber(png, kHeader + kLength, ~sum, false);
  return png;
}

/// Where the value of a tag stands in a TIFF of the order of this machine; its end where there is none.
inline std::size_t PlaceOfTag(const std::string& tiff, unsigned tag) {
  const auto number = [&](std::size_t place, std::size_t bytes) {
    std::size_t value = 0;
    for (std::size_t k = bytes; k > 0; --k) value = value << 8 | static_cast<unsigned char>(tiff[place + k - 1]);
    return value;
  };
  const std::size_t directory = number(4, 4);
  for (std::size_t k = 0; k < number(directory, 2); ++k) {
    const std::size_t entry = directory + 2 + 12 * k;
    if (number(entry, 2) == tag) return entry + 8;
  }
  return tiff.size();
}

/// The TIFF with another size in its header.
inline std::string WithTiffSize(std::string tiff, std::uint32_t width, std::uint32_t height) {
  SetNumber(tiff, PlaceOfTag(tiff, 256), width, true);
  SetNumber(tiff, PlaceOfTag(tiff, 257), height, true);
  return tiff;
}

/// A TIFF of floats of which none is a number.
inline std::string TiffOfNoNumbers(const CPicture& picture) {
  CTiffSettings settings;
  settings.m_Kind = TiffKind::Float;
  settings.m_iRowsPerStrip = picture.m_iHeight;
  std::string tiff = TestTiff(picture, settings);
  const std::size_t place = PlaceOfTag(tiff, 273);
  std::size_t pixels = 0;
  for (std::size_t k = 4; k > 0; --k) pixels = pixels << 8 | static_cast<unsigned char>(tiff[place + k - 1]);
  const auto width = static_cast<std::size_t>(picture.m_iWidth);
  const auto height = static_cast<std::size_t>(picture.m_iHeight);
  for (std::size_t k = 0; k < width * height; ++k) SetNumber(tiff, pixels + 4 * k, 0x7FC00000, true);
  return tiff;
}

/// Grey, of that many pixels a side.
inline CPicture GreySquare(int side) {
  CPicture picture{side, side, {}};
  for (int k = 0; k < side * side; ++k)
    picture.m_aPixels.insert(picture.m_aPixels.end(), 3, static_cast<std::uint8_t>(37 * k % 251));
  return picture;
}

/// Cut, of another size than the header says, of one value, without a number, and of an immense size.
inline std::vector<CBadDepthMap> BadDepthMaps() {
  const CPicture picture = GreySquare(16);
  std::vector<CBadDepthMap> bad{
      {"empty.pfm", ""},
      {"cut.pfm", "Pf\n4 4\n-1\n" + std::string(40, '\0')},
      {"another size.pfm", "Pf\n40 40\n-1\n" + std::string(64, '\0')},
      {"longer.pfm", "Pf\n4 4\n-1\n" + std::string(80, '\0')},
      {"single.pfm", "Pf\n1 1\n-1\n" + std::string(4, '\0')},
      {"no numbers.pfm", "Pf\n2 2\n-1\n" + std::string("\0\0\xC0\x7F\0\0\x80\xFF\0\0\xC0\x7F\0\0\x80\x7F", 16)},
      {"immense.pfm", "Pf\n20000 20000\n-1\n" + std::string(64, '\0')},
      {"no numbers.tif", TiffOfNoNumbers(picture)}};
  for (const int bits : {8, 16}) {
    const std::string kind = std::to_string(bits) + " bits";
    CPngSettings png;
    png.m_Kind = PngKind::Grey;
    png.m_iBits = bits;
    const std::string whole = TestPng(picture, png);
    bad.push_back({"cut " + kind + ".png", whole.substr(0, whole.size() * 2 / 3)});
    bad.push_back({"another size " + kind + ".png", WithPngSize(whole, 16, 40)});
    bad.push_back({"single " + kind + ".png", TestPng(GreySquare(1), png)});
    bad.push_back({"immense " + kind + ".png", WithPngSize(whole, kImmenseSide, kImmenseSide)});
  }
  for (const TiffKind kind : {TiffKind::Grey, TiffKind::Float}) {
    const std::string name = kind == TiffKind::Float ? "floats" : "16 bits";
    CTiffSettings tiff;
    tiff.m_Kind = kind;
    tiff.m_iBits = 16;
    const std::string whole = TestTiff(picture, tiff);
    bad.push_back({"cut " + name + ".tif", whole.substr(0, whole.size() * 2 / 3)});
    bad.push_back({"another size " + name + ".tif", WithTiffSize(whole, 16, 400)});
    bad.push_back({"single " + name + ".tif", TestTiff(GreySquare(1), tiff)});
    bad.push_back({"immense " + name + ".tif", WithTiffSize(whole, kImmenseSide, kImmenseSide)});
  }
  return bad;
}
