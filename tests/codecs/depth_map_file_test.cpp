// Depth maps of every kind that is read, and what is refused.

#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "codecs/DepthMapFile.h"
#include "exports/SurfaceExport.h"
#include "support/BadDepthMaps.h"
#include "support/CTemporaryDirectory.h"
#include "support/FileBuilders.h"
#include "support/GridBuilders.h"
#include "support/PictureBuilders.h"
#include "support/PictureEncoders.h"

namespace {

constexpr float kNotANumber = std::numeric_limits<float>::quiet_NaN();

std::string FloatBytes(const std::vector<float>& values, bool littleEndian) {
  std::string bytes;
  for (const float value : values) {
    const auto number = std::bit_cast<std::uint32_t>(value);
    for (int k = 0; k < 4; ++k) bytes += static_cast<char>(number >> (littleEndian ? 8 * k : 24 - 8 * k) & 0xFF);
  }
  return bytes;
}

std::string Pfm(const std::string& header, const std::vector<float>& values, bool littleEndian = true) {
  return header + FloatBytes(values, littleEndian);
}

std::vector<float> MapValues(const CReadDepthMap& read) {
  if (!read) return {};
  return {read.m_pMap->Values().begin(), read.m_pMap->Values().end()};
}

CReadDepthMap ReadMap(const std::string& bytes) { return ReadDepthMap(bytes, "map"); }

// A picture of one colour channel, as bytes of that kind.
CPicture GreySquares() {
  const CPicture source = Squares(32, 24);
  return PictureOf(32, 24, [&](int x, int y) {
    const std::uint8_t green = PixelAt(source, x, y)[1];
    return CRgb{green, green, green};
  });
}

TEST(DepthMapFileTest, PfmOfBothByteOrders) {
  const std::vector<float> values{1, -2.5F, 3e-7F, 4, 5e8F, 6};
  const CReadDepthMap little = ReadMap(Pfm("Pf\n3 2\n-1.0\n", values));
  EXPECT_EQ(MapValues(little), values) << little.m_Reason;
  EXPECT_EQ(little.m_pMap->Width(), 3);
  EXPECT_EQ(little.m_pMap->Height(), 2);
  EXPECT_EQ(little.m_pMap->Bits(), 32);
  EXPECT_EQ(MapValues(ReadMap(Pfm("Pf\n3 2\n1.0\n", values, false))), values);
  EXPECT_EQ(MapValues(ReadMap(Pfm("Pf 3 2 -0.5\n", values))), values) << "the scale changes nothing";
  EXPECT_EQ(MapValues(ReadMap(Pfm("Pf\r\n3 2\r\n-1\r\n", values))), values);
}

TEST(DepthMapFileTest, PfmInColourNeedsEqualChannels) {
  EXPECT_EQ(MapValues(ReadMap(Pfm("PF\n2 2\n-1\n", {1, 1, 1, 2, 2, 2, 3, 3, 3, 4, 4, 4}))),
            (std::vector<float>{1, 2, 3, 4}));
  const CReadDepthMap colours = ReadMap(Pfm("PF\n2 2\n-1\n", {1, 1, 1, 2, 2, 2, 3, 3.5F, 3, 4, 4, 4}));
  EXPECT_FALSE(colours);
  EXPECT_EQ(colours.m_Reason, "it holds colours; one channel is needed");
}

TEST(DepthMapFileTest, PfmKeepsWhatIsNoNumber) {
  const CReadDepthMap read = ReadMap(Pfm("Pf\n2 2\n-1\n", {kNotANumber, HUGE_VALF, 1, 2}));
  ASSERT_TRUE(read);
  EXPECT_TRUE(std::isnan(read.m_pMap->Values()[0]));
  EXPECT_TRUE(std::isinf(read.m_pMap->Values()[1]));
}

TEST(DepthMapFileTest, PicturesOfOneChannel) {
  const CPicture grey = GreySquares();
  CPngSettings png;
  png.m_Kind = PngKind::Grey;
  for (const int bits : {8, 16}) {
    png.m_iBits = bits;
    const CReadDepthMap read = ReadMap(TestPng(grey, png));
    ASSERT_TRUE(read) << read.m_Reason;
    EXPECT_EQ(read.m_pMap->Bits(), bits);
    EXPECT_EQ(read.m_pMap->Width(), 32);
  }
  EXPECT_TRUE(ReadMap(TestPng(grey, {}))) << "equal channels";
  CTiffSettings tiff;
  tiff.m_Kind = TiffKind::Float;
  EXPECT_EQ(ReadMap(TestTiff(grey, tiff)).m_pMap->Bits(), 32);
  tiff.m_Kind = TiffKind::Grey;
  tiff.m_iBits = 16;
  EXPECT_EQ(ReadMap(TestTiff(grey, tiff)).m_pMap->Bits(), 16);
}

TEST(DepthMapFileTest, ColourMapsAreRefused) {
  EXPECT_EQ(ReadMap(TestPng(Squares(32, 24), {})).m_Reason, "it holds colours; one channel is needed");
  CPngSettings palette;
  palette.m_Kind = PngKind::Palette;
  EXPECT_EQ(ReadMap(TestPng(Squares(32, 24), palette)).m_Reason, "it holds colours; one channel is needed");
}

TEST(DepthMapFileTest, DamagedPfmIsRefused) {
  const std::vector<float> four{1, 2, 3, 4};
  for (const char* header : {"Pf", "Pf\n", "Pf\n2 2\n", "Pf\n2 2\n0\n", "Pf\n2 2\nnan\n", "Pf\n-2 -2\n-1\n",
                             "Pf\n0 4\n-1\n", "Pf\n2 x\n-1\n", "Pf\n99999999999 2\n-1\n", "Pf\n2 2\n-1"})
    EXPECT_FALSE(ReadMap(header)) << header;
  const std::string whole = Pfm("Pf\n2 2\n-1\n", four);
  const char* const length = "its length is not that of the 2 x 2 values that its header announces";
  EXPECT_EQ(ReadMap(whole.substr(0, whole.size() - 1)).m_Reason, length);
  EXPECT_EQ(ReadMap(whole + '\n').m_Reason, length);
  EXPECT_EQ(ReadMap("Pf\n2 2\n-1\n").m_Reason, length);
}

TEST(DepthMapFileTest, CutPicturesAreRefused) {
  CPngSettings png;
  png.m_Kind = PngKind::Grey;
  const std::string whole = TestPng(GreySquares(), png);
  EXPECT_EQ(ReadMap(whole.substr(0, whole.size() * 3 / 4)).m_Reason, "it is damaged, or ends early");
  EXPECT_FALSE(ReadMap("rubbish"));
  EXPECT_FALSE(ReadMap(""));
}

// The library takes a list of strips that is too short for complete.
TEST(DepthMapFileTest, RowsThatATiffOnlyAnnouncesAreMissed) {
  CTiffSettings tiff;
  tiff.m_Kind = TiffKind::Grey;
  for (const int bits : {8, 16}) {
    tiff.m_iBits = bits;
    const std::string whole = TestTiff(GreySquares(), tiff);
    ASSERT_TRUE(ReadMap(whole));
    EXPECT_EQ(ReadMap(WithTiffSize(whole, 32, 400)).m_Reason, "it is damaged, or ends early") << bits;
  }
}

// A small file could ask for a gigabyte so. Here the rows are as long as they must be.
TEST(DepthMapFileTest, ATiffOfAHundredSamplesIsRefused) {
  CTiffSettings tiff;
  tiff.m_Kind = TiffKind::Grey;
  std::string many = TestTiff(GreySquare(200), tiff);
  many[PlaceOfTag(many, 277)] = 100;
  EXPECT_FALSE(ReadMap(WithTiffSize(many, 2, 200)));
}

TEST(DepthMapFileTest, ASingleValueAndNoneAtAllAreRefused) {
  EXPECT_EQ(ReadMap(Pfm("Pf\n1 1\n-1\n", {3})).m_Reason, "it has 1 x 1 values; two on each side are the least");
  EXPECT_EQ(ReadMap(Pfm("Pf\n4 1\n-1\n", {1, 2, 3, 4})).m_Reason,
            "it has 4 x 1 values; two on each side are the least");
  EXPECT_EQ(ReadMap(Pfm("Pf\n2 2\n-1\n", {kNotANumber, kNotANumber, -HUGE_VALF, kNotANumber})).m_Reason,
            "none of its values is a number");
}

TEST(DepthMapFileTest, AnImmenseHeaderIsRefusedBeforeAnyMemoryIsTaken) {
  const std::string text = "its 20000 x 20000 values are too many: a side may have 65535, and all of them 1 GiB";
  EXPECT_EQ(ReadMap("Pf\n20000 20000\n-1\n").m_Reason, text);
  CPngSettings grey;
  grey.m_Kind = PngKind::Grey;
  std::string png = TestPng(GreySquares(), grey);
  // Width and height of the header, the most significant byte first.
  for (const std::size_t at : {16U, 20U}) png.replace(at, 4, std::string("\0\0\x4E\x20", 4));
  EXPECT_FALSE(ReadMap(png));
  EXPECT_FALSE(ReadMap("Pf\n2000000000 2000000000\n-1\n"));
}

TEST(DepthMapFileTest, FilesAreReadByTheirContents) {
  const CTemporaryDirectory scratch;
  const std::string file = scratch.File("map.png");
  WriteText(file, Pfm("Pf\n2 2\n-1\n", {1, 2, 3, 4}));
  EXPECT_EQ(MapValues(ReadDepthMap(file)), (std::vector<float>{1, 2, 3, 4}));
  EXPECT_EQ(ReadDepthMap(scratch.File("none.pfm")).m_Reason, "there is no such file");
  EXPECT_TRUE(ReadDepthMap(scratch.Path().string()).m_Reason.starts_with("this is a folder"));
}

// A sample for each lattice point; the PNG has whole numbers.
TEST(DepthMapFileTest, TheProgramsOwnHeightMapsAreRead) {
  CTestGrid test(4, 4);
  SetSurface(test.m_Grid, CBump());
  const CSurface& surface = test.m_Grid.Surface();
  const CTemporaryDirectory scratch;
  for (const char* name : {"map.png", "map.tif", "map.pfm"}) {
    ASSERT_TRUE(ExportSurface(test.m_Grid, scratch.File(name), {})) << name;
    const CReadDepthMap read = ReadDepthMap(scratch.File(name));
    ASSERT_TRUE(read) << name << ' ' << read.m_Reason;
    ASSERT_EQ(read.m_pMap->Width(), 17) << name;
    const CDepthReading reading(*read.m_pMap, false);
    for (int row = 0; row < 17; ++row) {
      for (int column = 0; column < 17; ++column) {
        const double share =
            (test.m_Grid.GetHeightAt(column, row) - surface.MinHeight()) / (surface.MaxHeight() - surface.MinHeight());
        ASSERT_NEAR(reading.At(column, row), 2 * share - 1, 1e-4) << name << ' ' << column << ' ' << row;
      }
    }
  }
}

TEST(DepthMapFileTest, OtherProportionsAreTold) {
  const CReadDepthMap read = ReadMap(Pfm("Pf\n4 2\n-1\n", {1, 2, 3, 4, 5, 6, 7, 8}));
  EXPECT_EQ(ProportionsNotice(*read.m_pMap, 4000, 2000), "");
  EXPECT_EQ(ProportionsNotice(*read.m_pMap, 4000, 2039), "");
  EXPECT_EQ(ProportionsNotice(*read.m_pMap, 640, 480),
            "has other proportions (4 x 2) than what it is stretched over (640 x 480)");
  EXPECT_NE(ProportionsNotice(*read.m_pMap, 4000, 2100), "");
  EXPECT_NE(ProportionsNotice(*read.m_pMap, 4100, 2000), "");
}

}  // namespace
