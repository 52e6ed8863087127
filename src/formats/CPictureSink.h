#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "formats/CRowConverter.h"
#include "formats/PictureFormats.h"
#include "formats/RasterSink.h"

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
  bool IsAsItCame() const { return m_iOrientation == 1 && m_Raster.m_Colour != SampleColour::Cmyk; }
  /// The upright picture, once; rows that have not come are white. Throws std::bad_alloc.
  CPicture Take();

 private:
  bool IsTooLarge(double bytes);

  CRaster m_Raster;
  CRowConverter m_Converter;
  std::vector<std::uint8_t> m_acRow;
  int m_iOrientation = 1;
  CPicture m_Picture;  ///< from the top
  PictureTrouble m_Trouble = PictureTrouble::None;
  std::string m_Reason;
};
