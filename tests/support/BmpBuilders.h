#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <string>
#include <vector>

#include "base/CPicture.h"

using CBytes = std::vector<std::uint8_t>;

inline void WriteBytes(const std::string& filename, const CBytes& bytes) {
  std::ofstream file(filename, std::ios::binary);
  file.write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
}
inline CBytes ReadBytes(const std::string& filename) {
  std::ifstream file(filename, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

/// The low bytes of `value`, least significant first, at an offset of a header.
inline void PutBytes(CBytes& bytes, std::size_t offset, std::size_t width, std::int64_t value) {
  for (std::size_t k = 0; k < width; ++k) bytes[offset + k] = static_cast<std::uint8_t>(value >> (8 * k));
}

/// The bytes of a bitmap file without its rows, put together field by field.
inline CBytes BmpHeader(std::int64_t width, std::int64_t height) {
  CBytes header(54);
  header[0] = 'B';
  header[1] = 'M';
  PutBytes(header, 10, 4, 54);
  PutBytes(header, 14, 4, 40);
  PutBytes(header, 18, 4, width);
  PutBytes(header, 22, 4, height);
  PutBytes(header, 26, 2, 1);
  PutBytes(header, 28, 2, 24);
  return header;
}

/// A picture whose bytes are all different from their neighbours, the same for the same size.
inline CPicture SomePicture(int width, int height) {
  CPicture picture{width, height, {}};
  std::mt19937 random(static_cast<std::uint32_t>(width * 1000 + height));
  const std::size_t count = std::size_t{3} * static_cast<std::size_t>(width) * static_cast<std::size_t>(height);
  for (std::size_t k = 0; k < count; ++k) picture.m_aPixels.push_back(static_cast<std::uint8_t>(random()));
  return picture;
}
/// The same colour everywhere.
inline CPicture PlainPicture(int width, int height, std::uint8_t red, std::uint8_t green, std::uint8_t blue) {
  CPicture picture{width, height, {}};
  for (int k = 0; k < width * height; ++k) picture.m_aPixels.insert(picture.m_aPixels.end(), {red, green, blue});
  return picture;
}

/// Its bytes in a file, written pixel by pixel.
inline CBytes BmpFile(const CPicture& picture) {
  CBytes bytes = BmpHeader(picture.m_iWidth, picture.m_iHeight);
  std::size_t at = 0;
  for (int row = 0; row < picture.m_iHeight; ++row) {
    for (int column = 0; column < picture.m_iWidth; ++column, at += 3) {
      for (const std::size_t channel : {2U, 1U, 0U}) bytes.push_back(picture.m_aPixels[at + channel]);
    }
    while (bytes.size() % 4 != 2) bytes.push_back(0xEE);
  }
  return bytes;
}
