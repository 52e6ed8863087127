#include "scissors/CTopDownImage.h"

#include <algorithm>

#include "base/CPicture.h"
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

CTopDownImage TopDown(const CPicture& picture) {
  CTopDownImage copy{picture.m_iWidth, picture.m_iHeight, {}};
  copy.m_aPixels.reserve(picture.m_aPixels.size());
  const std::size_t row = 3 * static_cast<std::size_t>(copy.m_iWidth);
  for (auto end = picture.m_aPixels.end(); end != picture.m_aPixels.begin();) {
    const auto begin = end - static_cast<std::ptrdiff_t>(row);
    copy.m_aPixels.insert(copy.m_aPixels.end(), begin, end);
    end = begin;
  }
  return copy;
}
