#include "formats/PngBytes.h"

#include <cstddef>

#include "formats/CPngWriter.h"

bool IsPng(std::string_view bytes) { return bytes.starts_with("\x89PNG\r\n\x1A\n"); }

std::string PngOf(const CPicture& picture) {
  if (picture.m_aPixels.empty()) return {};
  CPngWriter png(picture.m_iWidth, picture.m_iHeight, PngPixels::Colours);
  const std::size_t stride = 3 * static_cast<std::size_t>(picture.m_iWidth);
  // Our rows begin at the bottom, those of the format at the top.
  for (std::size_t row = static_cast<std::size_t>(picture.m_iHeight); row-- > 0;)
    png.Row(&picture.m_aPixels[row * stride]);
  return png.Take();
}
