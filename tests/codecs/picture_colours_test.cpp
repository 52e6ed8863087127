// Embedded profiles against formulas, and what may be copied byte by byte.

#include <array>
#include <cmath>
#include <string>

#include <gtest/gtest.h>

#include "codecs/ColourProfile.h"
#include "codecs/PictureFormats.h"
#include "support/PictureBuilders.h"
#include "support/PictureEncoders.h"

namespace {

using Matrix = std::array<std::array<double, 3>, 3>;

constexpr Matrix kAdobeToXyz{
    {{0.5767309, 0.1855540, 0.1881852}, {0.2973769, 0.6273491, 0.0752741}, {0.0270343, 0.0706872, 0.9911085}}};
constexpr Matrix kP3ToXyz{
    {{0.4865709, 0.2656677, 0.1982173}, {0.2289746, 0.6917385, 0.0792869}, {0.0, 0.0451134, 1.0439444}}};
constexpr Matrix kXyzToSrgb{
    {{3.2404542, -1.5371385, -0.4985314}, {-0.9692660, 1.8760108, 0.0415560}, {0.0556434, -0.2040259, 1.0572252}}};

std::array<double, 3> Product(const Matrix& matrix, const std::array<double, 3>& v) {
  std::array<double, 3> product{};
  for (std::size_t k = 0; k < 3; ++k) product[k] = matrix[k][0] * v[0] + matrix[k][1] * v[1] + matrix[k][2] * v[2];
  return product;
}

double SrgbCurve(double light) {
  if (light <= 0.0031308) return 12.92 * std::max(light, 0.0);
  return 1.055 * std::pow(std::min(light, 1.0), 1 / 2.4) - 0.055;
}

CRgb InSrgb(const Matrix& toXyz, const CRgb& pixel) {
  std::array<double, 3> light{};
  for (std::size_t c = 0; c < 3; ++c) light[c] = std::pow(pixel[c] / 255.0, 2.2);
  light = Product(kXyzToSrgb, Product(toXyz, light));
  CRgb srgb{};
  for (std::size_t c = 0; c < 3; ++c) srgb[c] = static_cast<std::uint8_t>(std::lround(255 * SrgbCurve(light[c])));
  return srgb;
}

CPicture Converted(const CPicture& picture, const Matrix& toXyz) {
  return PictureOf(picture.m_iWidth, picture.m_iHeight,
                   [&](int x, int y) { return InSrgb(toXyz, PixelAt(picture, x, y)); });
}

// Colours that sRGB has, too.
CPicture Pastels() {
  return PictureOf(32, 32, [](int x, int y) {
    return CRgb{static_cast<std::uint8_t>(110 + x / 8 * 20), static_cast<std::uint8_t>(110 + y / 8 * 20),
                static_cast<std::uint8_t>(120 + (x + y) / 16 * 20)};
  });
}

template <typename Settings>
Settings WithProfile(const std::string& name) {
  Settings settings;
  settings.m_Profile = ProfileNamed(name);
  return settings;
}

CReadPicture Read(const std::string& bytes) { return ReadPicture(bytes, "picture"); }

}  // namespace

TEST(PictureColoursTest, ProfilesOfEveryFormatAreConverted) {
  const CPicture source = Pastels();
  const CPicture adobe = Converted(source, kAdobeToXyz);
  EXPECT_GT(MeanDifference(source, adobe), 4);
  EXPECT_LE(MeanDifference(Read(TestPng(source, WithProfile<CPngSettings>("Adobe RGB"))).m_Picture, adobe), 0.7);
  EXPECT_LE(MeanDifference(Read(TestTiff(source, WithProfile<CTiffSettings>("Adobe RGB"))).m_Picture, adobe), 0.7);
  EXPECT_LE(MeanDifference(Read(TestWebp(source, WithProfile<CWebpSettings>("Adobe RGB"))).m_Picture, adobe), 0.7);
  EXPECT_LE(MeanDifference(Read(TestJpeg(source, WithProfile<CJpegSettings>("Adobe RGB"))).m_Picture, adobe), 1.5);
  const CPicture p3 = Converted(source, kP3ToXyz);
  EXPECT_GT(MeanDifference(source, p3), 2);
  EXPECT_LE(MeanDifference(Read(TestJpeg(source, WithProfile<CJpegSettings>("Display P3"))).m_Picture, p3), 1.5);
#ifdef RELIEVO_HEIF
  EXPECT_LE(MeanDifference(Read(TestHeif(source, WithProfile<CHeifSettings>("Display P3"))).m_Picture, p3), 3);
#endif
}

TEST(PictureColoursTest, SixteenBitsAreConvertedAsSuch) {
  auto settings = WithProfile<CPngSettings>("Display P3");
  settings.m_iBits = 16;
  EXPECT_LE(MeanDifference(Read(TestPng(Pastels(), settings)).m_Picture, Converted(Pastels(), kP3ToXyz)), 0.7);
}

TEST(PictureColoursTest, SrgbStaysAsItIs) {
  const CReadPicture read = Read(TestPng(Squares(), WithProfile<CPngSettings>("sRGB")));
  EXPECT_EQ(read.m_Picture.m_aPixels, Squares().m_aPixels);
}

TEST(PictureColoursTest, GreyProfilesAreConverted) {
  auto settings = WithProfile<CPngSettings>("linear grey");
  settings.m_Kind = PngKind::Grey;
  const CPicture source = Pastels();
  const CPicture read = Read(TestPng(source, settings)).m_Picture;
  const int light = PixelAt(source, 0, 31)[1];
  EXPECT_NEAR(PixelAt(read, 0, 31)[0], 255 * SrgbCurve(light / 255.0), 2);
}

// A profile of colours for a grey picture is used for its curve.
TEST(PictureColoursTest, GreyWithAProfileOfColoursStaysGrey) {
  auto settings = WithProfile<CJpegSettings>("Adobe RGB");
  settings.m_Kind = JpegKind::Grey;
  const CReadPicture read = Read(TestJpeg(Pastels(), settings));
  EXPECT_EQ(read.m_Notice, "");
  const CRgb pixel = PixelAt(read.m_Picture, 4, 4);
  EXPECT_NEAR(pixel[0], pixel[2], 2);
}

TEST(PictureColoursTest, InksAreConvertedByTheirProfile) {
  const CPicture magenta = PictureOf(16, 16, [](int x, int) {
    return x < 8 ? CRgb{255, 0, 255} : CRgb{255, 255, 255};
  });
  for (const bool tiff : {false, true}) {
    auto jpeg = WithProfile<CJpegSettings>("CMYK");
    jpeg.m_Kind = JpegKind::AdobeCmyk;
    auto settings = WithProfile<CTiffSettings>("CMYK");
    settings.m_Kind = TiffKind::Cmyk;
    const CReadPicture read = Read(tiff ? TestTiff(magenta, settings) : TestJpeg(magenta, jpeg));
    EXPECT_EQ(read.m_Notice, "");
    EXPECT_LT(PixelAt(read.m_Picture, 2, 4)[2], 200) << "another magenta than without a profile";
    EXPECT_GT(PixelAt(read.m_Picture, 13, 4)[1], 245) << "paper";
  }
}

TEST(PictureColoursTest, AProfileThatCannotBeUsedIsTold) {
  CJpegSettings settings;
  for (const std::string& profile : {std::string(300, 'x'), ProfileNamed("CMYK")}) {
    settings.m_Profile = profile;
    const CReadPicture read = Read(TestJpeg(Squares(), settings));
    EXPECT_TRUE(read);
    EXPECT_EQ(read.m_Notice, "has a colour profile that cannot be used: its colours are taken for sRGB");
    EXPECT_LE(MeanDifference(read.m_Picture, Squares()), 1.5);
  }
}

TEST(PictureColoursTest, GammaOfAPngIsAProfile) {
  CPngSettings settings;
  settings.m_fGamma = 1.0;
  const CPicture grey = PictureOf(8, 8, [](int, int) { return CRgb{64, 64, 64}; });
  EXPECT_NEAR(PixelAt(Read(TestPng(grey, settings)).m_Picture, 0, 0)[1], 255 * SrgbCurve(64 / 255.0), 1);
  settings.m_fGamma = 0.45455;
  EXPECT_EQ(Read(TestPng(Squares(), settings)).m_Picture.m_aPixels, Squares().m_aPixels);
}

TEST(ColourProfileTest, ImpossibleColoursGiveNoProfile) {
  EXPECT_EQ(ProfileOf({0.64, 0.33, 0.30, 0.60, 0.15, 0.06, 0.3127, 0.3290}, 0.0), "");
  EXPECT_EQ(ProfileOf({0, 0, 0, 0, 0, 0, 0, 0}, 2.2), "");
  EXPECT_NE(ProfileOf({0.68, 0.32, 0.265, 0.69, 0.15, 0.06, 0.3127, 0.3290}, 0.0), "");
}

// Only what every other program shows in the same way.
TEST(JpegCopyTest, OnlyUprightSrgbIsCopied) {
  CJpegSettings settings;
  const std::string plain = TestJpeg(Squares(), settings);
  ASSERT_NE(Read(plain).m_pJpeg, nullptr);
  EXPECT_EQ(*Read(plain).m_pJpeg, plain);
  EXPECT_NE(Read(TestJpeg(Squares(), WithProfile<CJpegSettings>("sRGB"))).m_pJpeg, nullptr);
  EXPECT_EQ(Read(TestJpeg(Squares(), WithProfile<CJpegSettings>("Adobe RGB"))).m_pJpeg, nullptr);
  EXPECT_EQ(Read(plain.substr(0, plain.size() / 2)).m_pJpeg, nullptr);
  EXPECT_EQ(Read(TestPng(Squares(), {})).m_pJpeg, nullptr);
  settings.m_iOrientation = 6;
  EXPECT_EQ(Read(TestJpeg(Squares(), settings)).m_pJpeg, nullptr);
  settings.m_iOrientation = 1;
  EXPECT_NE(Read(TestJpeg(Squares(), settings)).m_pJpeg, nullptr);
  settings.m_Kind = JpegKind::AdobeCmyk;
  EXPECT_EQ(Read(TestJpeg(Squares(), settings)).m_pJpeg, nullptr);
}
