#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

#include "codecs/ColourProfile.h"
#include "codecs/RasterSink.h"

/// Makes 8-bit sRGB on white of the rows of a raster with 8 or 16 bits a sample.
class CRowConverter {
 public:
  CRowConverter() = default;
  /// For the rows of such a raster.
  explicit CRowConverter(const CRaster& raster);

  /// Writes 3 * width bytes at `rgb`.
  void Convert(const void* samples, std::uint8_t* rgb);
  /// Whether the colours of the raster are sRGB.
  bool IsSrgb() const { return m_uColours != 4 && !(m_Profile && m_Profile->Converts()); }
  /// Whether the raster has a profile that is of no use.
  bool IsProfileUnusable() const { return m_Profile && m_Profile->IsUnusable(); }

 private:
  template <typename Sample>
  void Convert(const Sample* samples, std::uint8_t* rgb);
  template <typename Sample>
  const Sample* OnWhite(const Sample* samples);

  std::size_t m_uPixels = 0;
  std::size_t m_uColours = 3;
  SampleAlpha m_Alpha = SampleAlpha::None;
  int m_iBits = 8;
  std::optional<CColourProfile> m_Profile;
  std::vector<std::uint16_t> m_auOpaque;  ///< a row without opacity, as samples of either size
};
