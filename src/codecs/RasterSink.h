#pragma once

#include <cstddef>
#include <string>

/// What the samples of a raster mean. Of CMYK the full value is full ink.
enum class SampleColour { Grey, Rgb, Cmyk };

/// Whether a sample of opacity follows those of the colour, and whether it is contained in these already.
enum class SampleAlpha { None, Straight, Premultiplied };

/// How a decoder hands over its pixels.
struct CRaster {
  int m_iWidth = 0;
  int m_iHeight = 0;
  SampleColour m_Colour = SampleColour::Rgb;
  SampleAlpha m_Alpha = SampleAlpha::None;
  int m_iBits = 8;            ///< of a sample: 8, 16, or 32 for a float
  bool m_bConverted = false;  ///< the file's own samples are of another kind, and these are made to be looked at
  std::string m_Profile;      ///< bytes of the embedded ICC profile; empty for sRGB

  /// Samples of a pixel, but for its opacity.
  std::size_t Colours() const { return m_Colour == SampleColour::Grey ? 1 : m_Colour == SampleColour::Rgb ? 3 : 4; }
  /// Samples of a pixel.
  std::size_t Channels() const { return Colours() + (m_Alpha == SampleAlpha::None ? 0 : 1); }
  /// Bytes of a row.
  std::size_t Stride() const {
    return static_cast<std::size_t>(m_iWidth) * Channels() * static_cast<std::size_t>(m_iBits / 8);
  }
};

/// What takes the pixels of a decoder.
class RasterSink {
 public:
  RasterSink() = default;
  virtual ~RasterSink() = default;
  RasterSink(const RasterSink&) = delete;
  RasterSink& operator=(const RasterSink&) = delete;

  /// Told once, before the first row. False where the raster is not wanted; the decoder then ends.
  virtual bool Begin(const CRaster& raster) = 0;
  /// The next row from the top, Stride() bytes: samples in the machine's byte order, those of a pixel together. Throws
  /// std::bad_alloc.
  virtual void Row(const void* samples) = 0;
  /// How the rows are to be turned for an upright picture, in the numbers of Exif, 1 to 8. May be told at any time.
  virtual void SetOrientation(int orientation) = 0;
};

/// How decoding ended.
enum class Decoding {
  Whole,
  EndsEarly,  ///< the rows that came are what there is
  Damaged,    ///< all rows came, or some, and what is wrong in them cannot be told
  CutShort,   ///< the bytes end before anything could be shown
  Unusable,   ///< damaged before anything could be shown, or of a kind of its format that cannot be decoded
  Refused,    ///< by the sink
  NoMemory,
};
