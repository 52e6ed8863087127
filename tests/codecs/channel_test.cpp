// Heights and depths: one channel of numbers as they are stored.

#include <array>
#include <fstream>
#include <limits>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "codecs/CChannelSink.h"
#include "codecs/ChannelFormats.h"
#include "support/BmpBuilders.h"
#include "support/CTemporaryDirectory.h"
#include "support/FileBuilders.h"
#include "support/PictureBuilders.h"
#include "support/PictureEncoders.h"

namespace {

class ChannelTest : public ::testing::Test {
 protected:
  CReadChannel Read(const std::string& bytes) {
    WriteText(m_File, bytes);
    return ReadChannel(m_File);
  }
  // The green channel of the source, bottom row first, as `number` stores it.
  template <typename Number>
  std::vector<float> Stored(Number number) const {
    std::vector<float> values;
    for (std::size_t k = 1; k < m_Source.m_aPixels.size(); k += 3) values.push_back(number(m_Source.m_aPixels[k]));
    return values;
  }

  CTemporaryDirectory m_Scratch;
  std::string m_File = m_Scratch.File("heights");
  CPicture m_Source = Squares(32, 24);
};

float Byte(int value) { return static_cast<float>(value); }
float Word(int value) { return static_cast<float>(257 * value); }

}  // namespace

TEST_F(ChannelTest, PngKeepsEightAndSixteenBits) {
  CPngSettings settings;
  settings.m_Kind = PngKind::Grey;
  const CReadChannel bytes = Read(TestPng(m_Source, settings));
  EXPECT_EQ(bytes.m_afValues, Stored(Byte)) << bytes.m_Reason;
  EXPECT_EQ(bytes.m_iBits, 8);
  settings.m_iBits = 16;
  const CReadChannel words = Read(TestPng(m_Source, settings));
  EXPECT_EQ(words.m_afValues, Stored(Word));
  EXPECT_EQ(words.m_iBits, 16);
  EXPECT_EQ(words.m_iWidth, 32);
  EXPECT_EQ(words.m_iHeight, 24);
}

TEST_F(ChannelTest, TiffKeepsFloatsToo) {
  CTiffSettings settings;
  settings.m_Kind = TiffKind::Grey;
  EXPECT_EQ(Read(TestTiff(m_Source, settings)).m_afValues, Stored(Byte));
  settings.m_iBits = 16;
  EXPECT_EQ(Read(TestTiff(m_Source, settings)).m_afValues, Stored(Word));
  settings.m_Kind = TiffKind::Float;
  settings.m_bTiled = true;
  const CReadChannel floats = Read(TestTiff(m_Source, settings));
  EXPECT_EQ(floats.m_afValues, Stored([](int value) { return static_cast<float>(value) / 8 - 5; }));
  EXPECT_EQ(floats.m_iBits, 32);
}

TEST_F(ChannelTest, EqualChannelsAreOne) {
  const CPicture source = m_Source;
  m_Source = PictureOf(source.m_iWidth, source.m_iHeight, [&](int x, int y) {
    const std::uint8_t green = PixelAt(source, x, y)[1];
    return CRgb{green, green, green};
  });
  CPngSettings settings;
  settings.m_iBits = 16;
  EXPECT_EQ(Read(TestPng(m_Source, settings)).m_afValues, Stored(Word));
  const CBytes bitmap = BmpFile(m_Source);
  EXPECT_EQ(Read({bitmap.begin(), bitmap.end()}).m_afValues, Stored(Byte));
  const CReadChannel colours = Read(TestPng(source, settings));
  EXPECT_EQ(colours.m_Trouble, PictureTrouble::NotOneChannel);
  EXPECT_EQ(colours.m_Reason, "it holds colours; one channel is needed");
}

// A profile says how numbers look, not what they are.
TEST_F(ChannelTest, OnlyTheOrientationIsApplied) {
  CPngSettings settings;
  settings.m_Kind = PngKind::Grey;
  settings.m_Profile = ProfileNamed("linear grey");
  EXPECT_EQ(Read(TestPng(m_Source, settings)).m_afValues, Stored(Byte));
  settings.m_iOrientation = 6;
  const CReadChannel turned = Read(TestPng(m_Source, settings));
  EXPECT_EQ(turned.m_iWidth, 24);
  EXPECT_EQ(turned.m_afValues.back(), static_cast<float>(PixelAt(m_Source, 0, 0)[1]))
      << "its top left corner goes right";
}

// Made to be looked at, sixteen bits become eight, and what is negative comes above the rest.
TEST_F(ChannelTest, NumbersWithASignAreRefusedRatherThanConverted) {
  CTiffSettings settings;
  settings.m_Kind = TiffKind::Grey;
  settings.m_bSigned = true;
  for (const int bits : {8, 16}) {
    settings.m_iBits = bits;
    const CReadChannel read = Read(TestTiff(m_Source, settings));
    EXPECT_EQ(read.m_Trouble, PictureTrouble::Damaged) << bits;
    EXPECT_EQ(read.m_Reason,
              "its numbers are of a kind that is not read; 8 or 16 bits without a sign, or floats of 32 bits, are");
    EXPECT_TRUE(read.m_afValues.empty());
  }
}

TEST(ChannelSinkTest, ThreeChannelsWithoutANumberAreOne) {
  CChannelSink sink;
  CRaster raster;
  raster.m_iWidth = 2;
  raster.m_iHeight = 1;
  raster.m_iBits = 32;
  ASSERT_TRUE(sink.Begin(raster));
  const float none = std::numeric_limits<float>::quiet_NaN();
  sink.Row(std::array{none, none, none, 2.0F, 2.0F, 2.0F}.data());
  EXPECT_TRUE(sink.IsOneChannel());
  sink.Row(std::array{2.0F, none, 2.0F, 2.0F, 2.0F, 2.0F}.data());
  EXPECT_FALSE(sink.IsOneChannel());
}

TEST_F(ChannelTest, WhatIsCutOrNoPictureIsRefused) {
  CPngSettings settings;
  settings.m_Kind = PngKind::Grey;
  const std::string whole = TestPng(m_Source, settings);
  EXPECT_EQ(Read(whole.substr(0, whole.size() / 2)).m_Reason, "it is damaged, or ends early");
  EXPECT_EQ(Read("rubbish").m_Trouble, PictureTrouble::Unknown);
  EXPECT_EQ(ReadChannel(m_Scratch.Path().string()).m_Trouble, PictureTrouble::Folder);
  CTiffSettings floats;
  floats.m_Kind = TiffKind::Float;
  WriteText(m_File, TestTiff(m_Source, floats));
  EXPECT_EQ(ReadPicture(m_File).m_Reason, "it holds floating-point numbers instead of colours");
}
