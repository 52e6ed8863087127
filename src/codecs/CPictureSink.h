#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "codecs/CRowConverter.h"
#include "codecs/PictureFormats.h"
#include "codecs/RasterSink.h"

/// Makes an 8-bit sRGB picture on white of the rows of a decoder.
class CPictureSink : public RasterSink {
 public:
  bool Begin(const CRaster& raster) override;
  void Row(const void* samples) override;
  void SetOrientation(int orientation) override { m_iOrientation = orientation; }

  /// Why the raster was refused; none if it was not.
  PictureTrouble Trouble() const { return m_Trouble; }
  /// The same in words, as the end of a sentence.
  const std::string& Reason() const { return m_Reason; }
  /// Whether the rows are shown as they came: upright and sRGB.
  bool IsAsItCame() const { return m_iOrientation == 1 && m_Converter.IsSrgb() && !m_Converter.IsProfileUnusable(); }
  /// Whether the colours are only guessed, as their profile is of no use.
  bool AreColoursGuessed() const { return m_Converter.IsProfileUnusable(); }
  /// Whether so many rows are missing that white ones in their place would be all but the whole picture, and would take
  /// far more memory than a file of `length` bytes.
  bool IsNearlyNothing(std::size_t length) const;
  /// The upright picture, once; rows that have not come are white. Throws std::bad_alloc.
  CPicture Take();

 private:
  double Bytes() const { return 3.0 * m_Raster.m_iWidth * m_Raster.m_iHeight; }
  bool IsTooLarge();
  bool HasMemory();

  CRaster m_Raster;
  CRowConverter m_Converter;
  std::vector<std::uint8_t> m_acRow;
  int m_iOrientation = 1;
  CPicture m_Picture;  ///< from the top
  PictureTrouble m_Trouble = PictureTrouble::None;
  std::string m_Reason;
};
