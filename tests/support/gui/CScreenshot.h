#pragma once

#include <cstddef>
#include <cstdint>
#include <ostream>
#include <vector>

/// A place on the screen or in a window, in pixels from the top left corner.
struct CPixel {
  int m_iX = 0;
  int m_iY = 0;
};

/// A rectangle of pixels.
struct CArea {
  int m_iX = 0;
  int m_iY = 0;
  int m_iWidth = 0;
  int m_iHeight = 0;

  /// The pixel (x, y) counted from the area's own corner, in the coordinates of the area.
  CPixel At(CPixel inside) const { return {m_iX + inside.m_iX, m_iY + inside.m_iY}; }
  CPixel Centre() const { return At({m_iWidth / 2, m_iHeight / 2}); }
  friend bool operator==(const CArea&, const CArea&) = default;
};

struct CRgb {
  std::uint8_t m_uRed = 0;
  std::uint8_t m_uGreen = 0;
  std::uint8_t m_uBlue = 0;

  friend bool operator==(const CRgb&, const CRgb&) = default;
};

inline constexpr CRgb kBlack{0, 0, 0};

/// What a failed assertion says about a value.
std::ostream& operator<<(std::ostream& out, const CArea& area);
std::ostream& operator<<(std::ostream& out, const CRgb& colour);

/// The pixels of a part of the screen as they were seen at one moment.
class CScreenshot {
 public:
  /// All black.
  CScreenshot(int width, int height);

  int Width() const { return m_iWidth; }
  int Height() const { return m_iHeight; }
  /// Throws std::out_of_range outside the picture.
  CRgb At(CPixel pixel) const { return m_aPixels.at(Index(pixel)); }
  void Set(CPixel pixel, CRgb colour) { m_aPixels.at(Index(pixel)) = colour; }
  /// Number of pixels of exactly this colour.
  std::size_t Count(CRgb colour) const;
  bool IsAll(CRgb colour) const { return Count(colour) == m_aPixels.size(); }
  friend bool operator==(const CScreenshot&, const CScreenshot&) = default;

 private:
  std::size_t Index(CPixel pixel) const;

  int m_iWidth;
  int m_iHeight;
  std::vector<CRgb> m_aPixels;  ///< row * width + column, row 0 at the top
};
