#include "scissors/CTopDownImage.h"

#include <algorithm>

#include "lighting/CTextureImages.h"

CTopDownImage CopyPhotograph(const CTextureImages& images) {
  CTopDownImage copy{images.PictureWidth(), images.PictureHeight(), {}};
  const auto height = static_cast<std::size_t>(copy.m_iHeight);
  const std::size_t row = 3 * static_cast<std::size_t>(copy.m_iWidth);
  const std::size_t paddedRow = 3 * static_cast<std::size_t>(images.TextureWidth());
  const std::span<const std::uint8_t> photograph = images.Image(CTextureImages::kPhotograph);
  copy.m_aPixels.resize(row * height);
  for (std::size_t y = 0; y < height; ++y) {
    const std::span<const std::uint8_t> source = photograph.subspan((height - 1 - y) * paddedRow, row);
    std::copy(source.begin(), source.end(), copy.m_aPixels.begin() + static_cast<std::ptrdiff_t>(y * row));
  }
  return copy;
}
