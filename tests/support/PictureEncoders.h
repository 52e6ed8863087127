#pragma once

#include <cstdint>
#include <string>

#include "base/CPicture.h"

// Files in other people's formats, made of a picture as cameras, scanners and the web make them.

/// What files of every kind may hold beside their pixels.
struct CFileExtras {
  int m_iOrientation = 0;  ///< of Exif, or in the format's own place; 0 for none
  std::string m_Profile;   ///< ICC
};

/// A block of Exif that holds nothing but an orientation, without the name that JPEG puts in front.
std::string ExifOf(int orientation);

/// The bytes of the ICC profile of a known space: "Adobe RGB", "Display P3", "sRGB", "linear grey", "CMYK".
std::string ProfileNamed(const std::string& name);

enum class JpegKind { Colour, Grey, Cmyk, AdobeCmyk, AdobeYcck };
struct CJpegSettings : CFileExtras {
  JpegKind m_Kind = JpegKind::Colour;
  bool m_bProgressive = false;
};
std::string TestJpeg(const CPicture& picture, const CJpegSettings& settings);

enum class PngKind { Colour, Grey, Grey1, Palette, ColourAlpha, GreyAlpha, TransparentColour };
struct CPngSettings : CFileExtras {
  PngKind m_Kind = PngKind::Colour;
  int m_iBits = 8;  ///< 8 or 16
  bool m_bInterlaced = false;
  bool m_bExifLast = false;  ///< behind the pixels
  double m_fGamma = 0.0;     ///< as files have it, such as 0.45455; 0 for none
};
/// With opacity, the left half is transparent and the right one opaque; the transparent colour is red. A palette knows
/// the first 200 colours of the picture. One bit says whether green is above 127.
std::string TestPng(const CPicture& picture, const CPngSettings& settings);

enum class TiffKind { Colour, Grey, GreyInverted, Bilevel, BilevelInverted, Palette, ColourAlpha, Cmyk, Float, Ycbcr };
struct CTiffSettings : CFileExtras {
  TiffKind m_Kind = TiffKind::Colour;
  int m_iBits = 8;  ///< 8 or 16
  bool m_bSigned = false;
  bool m_bTiled = false;
  bool m_bApart = false;
  int m_iCompression = 1;  ///< a COMPRESSION_ of the library: 1 none, 5 LZW, 7 JPEG, 8 deflate
  int m_iRowsPerStrip = 5;
};
std::string TestTiff(const CPicture& picture, const CTiffSettings& settings);

struct CWebpSettings : CFileExtras {
  bool m_bLossless = true;
  bool m_bAlpha = false;  ///< the left half is transparent
};
std::string TestWebp(const CPicture& picture, const CWebpSettings& settings);

struct CHeifSettings : CFileExtras {
  bool m_bAvif = false;
  int m_iTurn = 1;  ///< by boxes of the file, in the numbers of Exif
  bool m_bAlpha = false;
};
/// Empty where the installed library has no encoder.
std::string TestHeif(const CPicture& picture, const CHeifSettings& settings);
