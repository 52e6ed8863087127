#include "lighting/CTextureImages.h"

#include <algorithm>

int CTextureImages::PaddedSide(int side) {
  int padded = 1;
  while (padded < side) padded *= 2;
  return padded;
}

void CTextureImages::SetPicture(const CPicture& picture) {
  constexpr std::uint8_t kWhite = 255;
  m_iPictureWidth = picture.m_iWidth;
  m_iPictureHeight = picture.m_iHeight;
  m_iTextureWidth = PaddedSide(picture.m_iWidth);
  m_iTextureHeight = PaddedSide(picture.m_iHeight);
  const std::size_t row = 3 * static_cast<std::size_t>(m_iPictureWidth);
  const std::size_t paddedRow = 3 * static_cast<std::size_t>(m_iTextureWidth);
  std::vector<std::uint8_t>& photograph = m_aaImages[kPhotograph];
  photograph.assign(paddedRow * static_cast<std::size_t>(m_iTextureHeight), kWhite);
  for (std::size_t y = 0; y < static_cast<std::size_t>(m_iPictureHeight); ++y) {
    std::copy_n(picture.m_aPixels.begin() + static_cast<std::ptrdiff_t>(y * row), row,
                photograph.begin() + static_cast<std::ptrdiff_t>(y * paddedRow));
  }
  m_aaImages[kKd] = photograph;
  m_aaImages[kIllumination] = photograph;
  for (unsigned& revision : m_auRevisions) ++revision;
}
