#include "support/gui/CScreenshot.h"

#include <algorithm>
#include <stdexcept>

std::ostream& operator<<(std::ostream& out, const CArea& area) {
  return out << area.m_iWidth << 'x' << area.m_iHeight << " at " << area.m_iX << ',' << area.m_iY;
}

std::ostream& operator<<(std::ostream& out, const CRgb& colour) {
  return out << "rgb(" << int{colour.m_uRed} << ", " << int{colour.m_uGreen} << ", " << int{colour.m_uBlue} << ')';
}

CScreenshot::CScreenshot(int width, int height)
    : m_iWidth(width),
      m_iHeight(height),
      m_aPixels(static_cast<std::size_t>(width) * static_cast<std::size_t>(height)) {}

std::size_t CScreenshot::Count(CRgb colour) const {
  return static_cast<std::size_t>(std::ranges::count(m_aPixels, colour));
}

std::size_t CScreenshot::Index(CPixel pixel) const {
  const auto [x, y] = pixel;
  if (x < 0 || x >= m_iWidth || y < 0 || y >= m_iHeight) throw std::out_of_range("no such pixel in the screenshot");
  return static_cast<std::size_t>(y) * static_cast<std::size_t>(m_iWidth) + static_cast<std::size_t>(x);
}
