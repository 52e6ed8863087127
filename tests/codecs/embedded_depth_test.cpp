// Depth maps that photographs carry.

#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "codecs/EmbeddedDepth.h"
#include "support/DepthInJpeg.h"
#include "support/PictureEncoders.h"

namespace {

// Grey, 3 x 2: from the bottom 10 20 30 and 40 50 60.
CPicture MapPicture() {
  CPicture picture{3, 2, {}};
  for (const int value : {10, 20, 30, 40, 50, 60}) {
    for (int k = 0; k < 3; ++k) picture.m_aPixels.push_back(static_cast<std::uint8_t>(value));
  }
  return picture;
}

std::string MapPng(int bits = 8) {
  CPngSettings settings;
  settings.m_Kind = PngKind::Grey;
  settings.m_iBits = bits;
  return TestPng(MapPicture(), settings);
}

std::string Photograph(int orientation = 0) {
  CJpegSettings settings;
  settings.m_iOrientation = orientation;
  return TestJpeg({8, 6, std::vector<std::uint8_t>(8 * 6 * 3, 90)}, settings);
}

std::vector<float> ValuesIn(const std::string& jpeg) {
  const std::optional<CEmbeddedDepth> embedded = EmbeddedDepthOf(jpeg);
  if (!embedded.has_value()) return {};
  const CReadDepthMap read = ReadEmbeddedDepth(*embedded);
  if (!read) return {};
  return {read.m_pMap->Values().begin(), read.m_pMap->Values().end()};
}

const std::vector<float> kValues{10, 20, 30, 40, 50, 60};

}  // namespace

TEST(EmbeddedDepth, StandsInTheMainPacket) {
  EXPECT_EQ(ValuesIn(WithPacket(Photograph(), DepthPacket(MapPng()))), kValues);
}

TEST(EmbeddedDepth, StandsInExtendedSegmentsInAnyOrder) {
  const std::string packet = DepthPacket(MapPng());
  EXPECT_EQ(ValuesIn(WithExtendedPacket(Photograph(), packet, packet.size())), kValues);
  EXPECT_EQ(ValuesIn(WithExtendedPacket(Photograph(), packet, 50)), kValues);
}

TEST(EmbeddedDepth, StandsBehindAMainPacketWithoutOne) {
  const std::string main = R"(<x:xmpmeta xmlns:x="adobe:ns:meta/"/>)";
  EXPECT_EQ(ValuesIn(WithPacket(WithExtendedPacket(Photograph(), DepthPacket(MapPng()), 100), main)), kValues);
}

TEST(EmbeddedDepth, BlanksInItsTextDoNotMatter) {
  EXPECT_EQ(ValuesIn(WithPacket(Photograph(), DepthPacket(MapPng(), true))), kValues);
}

TEST(EmbeddedDepth, MayBeAJpeg) {
  const CPicture flat{16, 8, std::vector<std::uint8_t>(16 * 8 * 3, 77)};
  for (const JpegKind kind : {JpegKind::Grey, JpegKind::Colour}) {
    CJpegSettings settings;
    settings.m_Kind = kind;
    EXPECT_EQ(ValuesIn(WithPacket(Photograph(), DepthPacket(TestJpeg(flat, settings)))),
              std::vector<float>(16 * 8, 77));
  }
}

TEST(EmbeddedDepth, MayHaveSixteenBits) {
  EXPECT_GT(ValuesIn(WithPacket(Photograph(), DepthPacket(MapPng(16)))).at(0), 255);
}

TEST(EmbeddedDepth, IsTurnedWithThePhotograph) {
  const std::string packet = DepthPacket(MapPng());
  // Half a turn; and a quarter, after which the first row is the right column.
  EXPECT_EQ(ValuesIn(WithPacket(Photograph(3), packet)), (std::vector<float>{60, 50, 40, 30, 20, 10}));
  EXPECT_EQ(ValuesIn(WithPacket(Photograph(6), packet)), (std::vector<float>{30, 60, 20, 50, 10, 40}));
}

TEST(EmbeddedDepth, OtherPhotographsHaveNone) {
  EXPECT_FALSE(EmbeddedDepthOf(Photograph()).has_value());
  EXPECT_FALSE(EmbeddedDepthOf("").has_value());
  EXPECT_FALSE(EmbeddedDepthOf(MapPng()).has_value());
  EXPECT_FALSE(EmbeddedDepthOf(WithPacket(Photograph(), "<x /depthmap/ rubbish")).has_value());
  EXPECT_FALSE(EmbeddedDepthOf(WithPacket(Photograph(), DepthPacket("rubbish"))).has_value());
}

TEST(EmbeddedDepth, ADamagedMapIsRefusedWithAReason) {
  const std::string cut = MapPng().substr(0, 40);
  const std::optional<CEmbeddedDepth> embedded = EmbeddedDepthOf(WithPacket(Photograph(), DepthPacket(cut)));
  ASSERT_TRUE(embedded.has_value());
  EXPECT_NE(ReadEmbeddedDepth(*embedded).m_Reason, "");
}

TEST(EmbeddedDepth, AnIncompleteOrForgedExtensionIsNone) {
  const std::string whole = WithExtendedPacket(Photograph(), DepthPacket(MapPng()), 50);
  const std::size_t segment = whole.find("http://ns.adobe.com/xmp/extension/");
  std::string without = whole;
  without[segment] = 'x';
  EXPECT_FALSE(EmbeddedDepthOf(without).has_value());
  std::string huge = whole;
  huge.replace(segment + 35 + 32, 4, "\x7F\xFF\xFF\xFF");
  EXPECT_FALSE(EmbeddedDepthOf(huge).has_value());
}

TEST(EmbeddedDepth, AnyBeginningOfAFileIsRead) {
  const std::string whole = WithExtendedPacket(Photograph(6), DepthPacket(MapPng()), 60);
  for (std::size_t length = 0; length < whole.size(); length += 7) EmbeddedDepthOf(whole.substr(0, length));
}
