#include "lighting/CTextureImages.h"

#include <algorithm>
#include <utility>

int CTextureImages::PaddedSide(int side) {
  int padded = 1;
  while (padded < side) padded *= 2;
  return padded;
}

void CTextureImages::SetPicture(const CPicture& picture) {
  constexpr std::uint8_t kWhite = 255;
  const int textureWidth = PaddedSide(picture.m_iWidth);
  const int textureHeight = PaddedSide(picture.m_iHeight);
  const std::size_t row = 3 * static_cast<std::size_t>(picture.m_iWidth);
  const std::size_t paddedRow = 3 * static_cast<std::size_t>(textureWidth);
  std::vector<std::uint8_t> photograph(paddedRow * static_cast<std::size_t>(textureHeight), kWhite);
  for (std::size_t y = 0; y < static_cast<std::size_t>(picture.m_iHeight); ++y) {
    std::copy_n(picture.m_aPixels.begin() + static_cast<std::ptrdiff_t>(y * row), row,
                photograph.begin() + static_cast<std::ptrdiff_t>(y * paddedRow));
  }
  std::vector<std::uint8_t> kd = photograph;
  std::vector<std::uint8_t> illumination = photograph;
  // Nothing may throw from here on: the images and their size change together or not at all.
  m_iPictureWidth = picture.m_iWidth;
  m_iPictureHeight = picture.m_iHeight;
  m_iTextureWidth = textureWidth;
  m_iTextureHeight = textureHeight;
  m_aaImages = {std::move(photograph), std::move(kd), std::move(illumination)};
  for (unsigned& revision : m_auRevisions) ++revision;
  m_pPreview.reset();
}

void CTextureImages::ShowPreview(std::shared_ptr<const CTextureImages> images, const CHalvings& halvings) {
  m_pPreview = std::move(images);
  m_PreviewHalvings = halvings;
  for (const Which which : {kKd, kIllumination}) ++m_auRevisions[which];
}

CPicture CTextureImages::Photograph() const {
  CPicture picture{m_iPictureWidth, m_iPictureHeight, {}};
  const auto row = 3 * static_cast<std::size_t>(m_iPictureWidth);
  const auto stride = 3 * static_cast<std::size_t>(m_iTextureWidth);
  picture.m_aPixels.reserve(row * static_cast<std::size_t>(m_iPictureHeight));
  for (std::size_t y = 0; y < static_cast<std::size_t>(m_iPictureHeight); ++y) {
    const auto pixels = Image(kPhotograph).subspan(y * stride, row);
    picture.m_aPixels.insert(picture.m_aPixels.end(), pixels.begin(), pixels.end());
  }
  return picture;
}
