#include "support/BenchPicture.h"

#include <algorithm>
#include <cmath>
#include <fstream>
#include <iterator>
#include <stdexcept>

namespace {

int Integer(const std::vector<char>& bytes, std::size_t at) {
  unsigned value = 0;
  for (std::size_t i = 4; i-- > 0;) value = value << 8 | static_cast<unsigned char>(bytes[at + i]);
  return static_cast<int>(value);
}

CTopDownImage Blank(int width, int height) {
  return {width, height,
          std::vector<std::uint8_t>(3 * static_cast<std::size_t>(width) * static_cast<std::size_t>(height))};
}

std::size_t First(const CTopDownImage& image, int column, int row) {
  return 3 *
         (static_cast<std::size_t>(row) * static_cast<std::size_t>(image.m_iWidth) + static_cast<std::size_t>(column));
}

}  // namespace

CTopDownImage ReadPicture(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  const std::vector<char> bytes{std::istreambuf_iterator<char>(file), {}};
  if (bytes.size() < 54) throw std::runtime_error("no bitmap: " + path);
  CTopDownImage image = Blank(Integer(bytes, 18), Integer(bytes, 22));
  const std::size_t fileRow = (3 * static_cast<std::size_t>(image.m_iWidth) + 3) / 4 * 4;
  if (bytes.size() < 54 + fileRow * static_cast<std::size_t>(image.m_iHeight))
    throw std::runtime_error("short: " + path);
  for (int row = 0; row < image.m_iHeight; ++row) {
    const std::size_t source = 54 + fileRow * static_cast<std::size_t>(image.m_iHeight - 1 - row);
    for (int column = 0; column < image.m_iWidth; ++column) {
      for (std::size_t c = 0; c < 3; ++c) {
        image.m_aPixels[First(image, column, row) + c] =
            static_cast<std::uint8_t>(bytes[source + 3 * static_cast<std::size_t>(column) + 2 - c]);
      }
    }
  }
  return image;
}

CTopDownImage DrawPicture(int width, int height) {
  CTopDownImage image = Blank(width, height);
  for (int row = 0; row < height; ++row) {
    for (int column = 0; column < width; ++column) {
      for (std::size_t c = 0; c < 3; ++c) {
        const double wave =
            std::sin(column * 0.031 + std::cos(row * 0.017)) * std::cos(row * 0.11 + static_cast<double>(c));
        const int noise = (column * 7919 + row * 104729) % 17;
        image.m_aPixels[First(image, column, row) + c] = static_cast<std::uint8_t>(120 + 90 * wave + noise);
      }
    }
  }
  return image;
}

CTopDownImage Enlarge(const CTopDownImage& image, double pixels) {
  const double factor = std::sqrt(pixels / (static_cast<double>(image.m_iWidth) * image.m_iHeight));
  CTopDownImage large = Blank(static_cast<int>(image.m_iWidth * factor), static_cast<int>(image.m_iHeight * factor));
  for (int row = 0; row < large.m_iHeight; ++row) {
    const double y = std::min(row / factor, image.m_iHeight - 1.001);
    for (int column = 0; column < large.m_iWidth; ++column) {
      const double x = std::min(column / factor, image.m_iWidth - 1.001);
      const std::size_t at = First(image, static_cast<int>(x), static_cast<int>(y));
      const std::size_t below = First(image, static_cast<int>(x), static_cast<int>(y) + 1);
      const double u = x - std::floor(x);
      const double v = y - std::floor(y);
      for (std::size_t c = 0; c < 3; ++c) {
        const double top = (1 - u) * image.m_aPixels[at + c] + u * image.m_aPixels[at + 3 + c];
        const double bottom = (1 - u) * image.m_aPixels[below + c] + u * image.m_aPixels[below + 3 + c];
        large.m_aPixels[First(large, column, row) + c] =
            static_cast<std::uint8_t>(std::lround((1 - v) * top + v * bottom));
      }
    }
  }
  return large;
}
