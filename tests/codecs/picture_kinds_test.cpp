// One file of every kind that people have, each against the picture that it was made of.

#include <functional>
#include <ostream>
#include <string>

#include <gtest/gtest.h>

#include "codecs/PictureFormats.h"
#include "support/CTemporaryDirectory.h"
#include "support/ConsoleCapture.h"
#include "support/FileBuilders.h"
#include "support/PictureBuilders.h"
#include "support/PictureEncoders.h"

namespace {

/// What becomes of a colour, and of the left half where that is transparent.
enum class Shown { Same, Grey, Bilevel, WhiteLeft, GreyWhiteLeft, RedIsWhite };

struct CKindCase {
  const char* m_pName;
  std::function<std::string(const CPicture&)> m_Encode;
  Shown m_Shown = Shown::Same;
  double m_fLoss = 0.0;  ///< mean difference that the format may make
};

std::ostream& operator<<(std::ostream& out, const CKindCase& kind) { return out << kind.m_pName; }

CRgb ShownPixel(const CRgb& pixel, bool left, Shown shown) {
  constexpr CRgb kWhite{255, 255, 255};
  const CRgb grey{pixel[1], pixel[1], pixel[1]};
  switch (shown) {
    case Shown::Same:
      return pixel;
    case Shown::Grey:
      return grey;
    case Shown::Bilevel:
      return pixel[1] > 127 ? kWhite : CRgb{};
    case Shown::WhiteLeft:
      return left ? kWhite : pixel;
    case Shown::GreyWhiteLeft:
      return left ? kWhite : grey;
    case Shown::RedIsWhite:
      return pixel == CRgb{255, 0, 0} ? kWhite : pixel;
  }
  return {};
}

std::function<std::string(const CPicture&)> Jpeg(JpegKind kind, bool progressive = false) {
  CJpegSettings settings;
  settings.m_Kind = kind;
  settings.m_bProgressive = progressive;
  return [settings](const CPicture& picture) { return TestJpeg(picture, settings); };
}

std::function<std::string(const CPicture&)> Png(PngKind kind, int bits = 8, bool interlaced = false) {
  CPngSettings settings;
  settings.m_Kind = kind;
  settings.m_iBits = bits;
  settings.m_bInterlaced = interlaced;
  return [settings](const CPicture& picture) { return TestPng(picture, settings); };
}

std::function<std::string(const CPicture&)> Tiff(TiffKind kind, int bits = 8, bool tiled = false, bool apart = false,
                                                 int compression = 1) {
  CTiffSettings settings;
  settings.m_Kind = kind;
  settings.m_iBits = bits;
  settings.m_bTiled = tiled;
  settings.m_bApart = apart;
  settings.m_iCompression = compression;
  // With JPEG inside they must hold whole blocks.
  settings.m_iRowsPerStrip = compression == 7 ? 16 : 5;
  return [settings](const CPicture& picture) { return TestTiff(picture, settings); };
}

std::function<std::string(const CPicture&)> Webp(bool lossless, bool alpha) {
  CWebpSettings settings;
  settings.m_bLossless = lossless;
  settings.m_bAlpha = alpha;
  return [settings](const CPicture& picture) { return TestWebp(picture, settings); };
}

#ifdef RELIEVO_HEIF
std::function<std::string(const CPicture&)> Heif(bool avif, bool alpha) {
  CHeifSettings settings;
  settings.m_bAvif = avif;
  settings.m_bAlpha = alpha;
  return [settings](const CPicture& picture) { return TestHeif(picture, settings); };
}
#endif

class PictureKindTest : public ::testing::TestWithParam<CKindCase> {};

}  // namespace

TEST_P(PictureKindTest, EqualsWhatItWasMadeOf) {
  const CKindCase& kind = GetParam();
  CPicture source = kind.m_Shown == Shown::RedIsWhite ? MarkedCorners() : Squares();
  const CTemporaryDirectory directory;
  const std::string file = directory.File("no suffix that says anything");
  WriteText(file, kind.m_Encode(source));
  const ConsoleCapture console;
  const CReadPicture read = ReadPicture(file);
  EXPECT_TRUE(read) << read.m_Reason;
  EXPECT_EQ(read.m_Notice, "");
  EXPECT_EQ(console.Text(), "");
  const CPicture shown = PictureOf(source.m_iWidth, source.m_iHeight, [&](int x, int y) {
    return ShownPixel(PixelAt(source, x, y), x < source.m_iWidth / 2, kind.m_Shown);
  });
  EXPECT_LE(MeanDifference(read.m_Picture, shown), kind.m_fLoss);
}

INSTANTIATE_TEST_SUITE_P(Jpeg, PictureKindTest,
                         ::testing::Values(CKindCase{"colour", Jpeg(JpegKind::Colour), Shown::Same, 1.5},
                                           CKindCase{"progressive", Jpeg(JpegKind::Colour, true), Shown::Same, 1.5},
                                           CKindCase{"grey", Jpeg(JpegKind::Grey), Shown::Grey, 1.5},
                                           CKindCase{"CMYK", Jpeg(JpegKind::Cmyk), Shown::Same, 2.5},
                                           CKindCase{"CMYK upside down", Jpeg(JpegKind::AdobeCmyk), Shown::Same, 2.5},
                                           CKindCase{"YCCK", Jpeg(JpegKind::AdobeYcck), Shown::Same, 2.5},
                                           CKindCase{"progressive YCCK", Jpeg(JpegKind::AdobeYcck, true), Shown::Same,
                                                     2.5}));

INSTANTIATE_TEST_SUITE_P(
    Png, PictureKindTest,
    ::testing::Values(
        CKindCase{"colour", Png(PngKind::Colour)}, CKindCase{"colour, 16 bits", Png(PngKind::Colour, 16)},
        CKindCase{"interlaced", Png(PngKind::Colour, 8, true)}, CKindCase{"grey", Png(PngKind::Grey), Shown::Grey},
        CKindCase{"grey, 16 bits, interlaced", Png(PngKind::Grey, 16, true), Shown::Grey},
        CKindCase{"1 bit", Png(PngKind::Grey1), Shown::Bilevel},
        CKindCase{"1 bit, interlaced", Png(PngKind::Grey1, 8, true), Shown::Bilevel},
        CKindCase{"palette", Png(PngKind::Palette)}, CKindCase{"palette, interlaced", Png(PngKind::Palette, 8, true)},
        CKindCase{"opacity", Png(PngKind::ColourAlpha), Shown::WhiteLeft},
        CKindCase{"opacity, 16 bits", Png(PngKind::ColourAlpha, 16), Shown::WhiteLeft},
        CKindCase{"grey with opacity", Png(PngKind::GreyAlpha), Shown::GreyWhiteLeft},
        CKindCase{"transparent colour", Png(PngKind::TransparentColour), Shown::RedIsWhite},
        CKindCase{"transparent colour, 16 bits", Png(PngKind::TransparentColour, 16), Shown::RedIsWhite}));

INSTANTIATE_TEST_SUITE_P(
    Tiff, PictureKindTest,
    ::testing::Values(
        CKindCase{"strips", Tiff(TiffKind::Colour)},
        CKindCase{"strips, packed", Tiff(TiffKind::Colour, 8, false, false, 8)},
        CKindCase{"tiles", Tiff(TiffKind::Colour, 8, true, false, 5)},
        CKindCase{"channels apart", Tiff(TiffKind::Colour, 8, false, true)},
        CKindCase{"channels apart in tiles", Tiff(TiffKind::Colour, 8, true, true, 8)},
        CKindCase{"16 bits", Tiff(TiffKind::Colour, 16)},
        CKindCase{"16 bits, channels apart in tiles", Tiff(TiffKind::Colour, 16, true, true)},
        CKindCase{"grey", Tiff(TiffKind::Grey), Shown::Grey},
        CKindCase{"grey, 16 bits", Tiff(TiffKind::Grey, 16), Shown::Grey},
        CKindCase{"white is zero", Tiff(TiffKind::GreyInverted), Shown::Grey},
        CKindCase{"1 bit", Tiff(TiffKind::Bilevel), Shown::Bilevel},
        CKindCase{"1 bit, white is zero", Tiff(TiffKind::BilevelInverted, 8, false, false, 4), Shown::Bilevel},
        CKindCase{"1 bit in tiles", Tiff(TiffKind::Bilevel, 8, true), Shown::Bilevel},
        CKindCase{"palette", Tiff(TiffKind::Palette)},
        CKindCase{"opacity", Tiff(TiffKind::ColourAlpha), Shown::WhiteLeft},
        CKindCase{"opacity, 16 bits, apart", Tiff(TiffKind::ColourAlpha, 16, false, true), Shown::WhiteLeft},
        CKindCase{"CMYK", Tiff(TiffKind::Cmyk), Shown::Same, 1.0},
        CKindCase{"CMYK, 16 bits", Tiff(TiffKind::Cmyk, 16), Shown::Same, 1.0},
        CKindCase{"JPEG inside", Tiff(TiffKind::Ycbcr, 8, false, false, 7), Shown::Same, 8.0}));

INSTANTIATE_TEST_SUITE_P(Webp, PictureKindTest,
                         ::testing::Values(CKindCase{"lossless", Webp(true, false)},
                                           CKindCase{"lossless with opacity", Webp(true, true), Shown::WhiteLeft},
                                           CKindCase{"lossy", Webp(false, false), Shown::Same, 8.0},
                                           CKindCase{"lossy with opacity", Webp(false, true), Shown::WhiteLeft, 8.0}));

#ifdef RELIEVO_HEIF
INSTANTIATE_TEST_SUITE_P(Heif, PictureKindTest,
                         ::testing::Values(CKindCase{"HEIC", Heif(false, false), Shown::Same, 3.0},
                                           CKindCase{"HEIC with opacity", Heif(false, true), Shown::WhiteLeft, 3.0},
                                           CKindCase{"AVIF", Heif(true, false), Shown::Same, 3.0},
                                           CKindCase{"AVIF with opacity", Heif(true, true), Shown::WhiteLeft, 3.0}));
#endif
