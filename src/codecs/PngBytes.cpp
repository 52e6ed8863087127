#include "codecs/PngBytes.h"

#include <cstddef>

#include "codecs/CPngWriter.h"

bool IsPng(std::string_view bytes) { return bytes.starts_with("\x89PNG\r\n\x1A\n"); }

std::string PngOf(const CPicture& picture, const std::function<bool(double)>& goes) {
  if (picture.m_aPixels.empty()) return {};
  CPngWriter png(picture.m_iWidth, picture.m_iHeight, PngPixels::Colours);
  const std::size_t stride = 3 * static_cast<std::size_t>(picture.m_iWidth);
  // Our rows begin at the bottom, those of the format at the top.
  for (int row = picture.m_iHeight - 1; row >= 0; --row) {
    if (goes && !goes(1 - static_cast<double>(row) / picture.m_iHeight)) return {};
    png.Row(&picture.m_aPixels[static_cast<std::size_t>(row) * stride]);
  }
  return png.Take();
}
