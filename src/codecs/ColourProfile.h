#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "codecs/RasterSink.h"

/// The colours that a picture is made of, as places in the diagram of CIE 1931: red, green, blue and white, x and y
/// each.
using Primaries = std::array<double, 8>;

/// The bytes of an ICC profile for such colours; `gamma` 0 stands for the curve of sRGB. Empty where they describe no
/// colours, or those of sRGB itself.
std::string ProfileOf(const Primaries& primaries, double gamma);

/// Converts the rows of a raster to 8-bit sRGB by its embedded profile.
class CColourProfile {
 public:
  /// Of rows without opacity. Throws std::bad_alloc.
  explicit CColourProfile(const CRaster& raster);

  /// Whether there is anything to convert: not without a profile, with that of sRGB, or one that is of no use.
  bool Converts() const { return m_pTransform != nullptr; }
  /// Whether there is a profile that is damaged or is for other colours than the raster has.
  bool IsUnusable() const { return m_bUnusable; }
  /// Writes 3 * pixels bytes at `rgb`.
  void Convert(const void* samples, std::uint8_t* rgb, std::size_t pixels);

 private:
  struct CDelete {
    void operator()(void* transform) const;
  };
  bool IsNearlySrgb(std::size_t channels) const;

  std::unique_ptr<void, CDelete> m_pTransform;
  std::vector<std::uint8_t> m_acGreyAsRgb;  ///< for grey pixels with a profile of colours
  std::size_t m_uRepeatedBytes = 0;         ///< of a grey sample that becomes three; 0 for none
  bool m_bUnusable = false;
};
