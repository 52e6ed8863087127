// Photographs stand upright, however the camera was held.

#include <array>
#include <functional>
#include <ostream>
#include <string>
#include <tuple>

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include "codecs/Orientation.h"
#include "codecs/PictureFormats.h"
#include "support/PictureBuilders.h"
#include "support/PictureEncoders.h"

namespace {

/// Where the corners of the stored picture go, from left to right and from top to bottom.
struct CTurn {
  int m_iOrientation;
  std::array<bool, 2> m_abFirst;   ///< right, bottom: that of the first row and column, red
  std::array<bool, 2> m_abSecond;  ///< the same for the first row and the last column, blue
};

constexpr std::array kTurns{CTurn{1, {false, false}, {true, false}}, CTurn{2, {true, false}, {false, false}},
                            CTurn{3, {true, true}, {false, true}},   CTurn{4, {false, true}, {true, true}},
                            CTurn{5, {false, false}, {false, true}}, CTurn{6, {true, false}, {true, true}},
                            CTurn{7, {true, true}, {true, false}},   CTurn{8, {false, true}, {false, false}}};

struct CTurnedKind {
  const char* m_pName;
  std::function<std::string(const CPicture&, int)> m_Encode;
};

std::ostream& operator<<(std::ostream& out, const CTurnedKind& kind) { return out << kind.m_pName; }

template <typename Settings>
Settings Turned(int orientation) {
  Settings settings;
  settings.m_iOrientation = orientation;
  return settings;
}

std::string PngWithOrientationLast(const CPicture& picture, int orientation) {
  auto settings = Turned<CPngSettings>(orientation);
  settings.m_bExifLast = true;
  return TestPng(picture, settings);
}

#ifdef RELIEVO_HEIF
// Exif, which contradicts the boxes, is not to be looked at.
std::string TurnedHeif(const CPicture& picture, int turn, bool avif) {
  auto settings = Turned<CHeifSettings>(turn == 3 ? 6 : 3);
  settings.m_iTurn = turn;
  settings.m_bAvif = avif;
  return TestHeif(picture, settings);
}
#endif

bool IsNear(const CRgb& a, const CRgb& b) {
  constexpr int kLoss = 40;
  for (std::size_t c = 0; c < 3; ++c) {
    if (std::abs(a[c] - b[c]) > kLoss) return false;
  }
  return true;
}

CRgb Corner(const CPicture& picture, const std::array<bool, 2>& place) {
  constexpr int kInside = 4;
  return PixelAt(picture, place[0] ? picture.m_iWidth - 1 - kInside : kInside,
                 place[1] ? picture.m_iHeight - 1 - kInside : kInside);
}

class OrientationTest : public ::testing::TestWithParam<std::tuple<CTurnedKind, CTurn>> {};

}  // namespace

TEST_P(OrientationTest, TheMarkedCornersAreWhereTheyBelong) {
  const auto& [kind, turn] = GetParam();
  const CPicture source = MarkedCorners();
  const CReadPicture read = ReadPicture(kind.m_Encode(source, turn.m_iOrientation), "picture");
  ASSERT_TRUE(read) << read.m_Reason;
  const bool transposed = turn.m_iOrientation > 4;
  EXPECT_EQ(read.m_Picture.m_iWidth, transposed ? source.m_iHeight : source.m_iWidth);
  EXPECT_EQ(read.m_Picture.m_iHeight, transposed ? source.m_iWidth : source.m_iHeight);
  EXPECT_TRUE(IsNear(Corner(read.m_Picture, turn.m_abFirst), {255, 0, 0}));
  EXPECT_TRUE(IsNear(Corner(read.m_Picture, turn.m_abSecond), {0, 0, 255}));
}

INSTANTIATE_TEST_SUITE_P(
    Exif, OrientationTest,
    ::testing::Combine(
        ::testing::Values(
            CTurnedKind{"JPEG", [](const CPicture& picture,
                                   int orientation) { return TestJpeg(picture, Turned<CJpegSettings>(orientation)); }},
            CTurnedKind{"PNG", [](const CPicture& picture,
                                  int orientation) { return TestPng(picture, Turned<CPngSettings>(orientation)); }},
            CTurnedKind{"PNG, behind the pixels", PngWithOrientationLast},
            CTurnedKind{"TIFF", [](const CPicture& picture,
                                   int orientation) { return TestTiff(picture, Turned<CTiffSettings>(orientation)); }},
            CTurnedKind{"WebP", [](const CPicture& picture,
                                   int orientation) { return TestWebp(picture, Turned<CWebpSettings>(orientation)); }}),
        ::testing::ValuesIn(kTurns)));

#ifdef RELIEVO_HEIF
INSTANTIATE_TEST_SUITE_P(
    Boxes, OrientationTest,
    ::testing::Combine(::testing::Values(CTurnedKind{"HEIC", [](const CPicture& picture,
                                                                int turn) { return TurnedHeif(picture, turn, false); }},
                                         CTurnedKind{"AVIF", [](const CPicture& picture,
                                                                int turn) { return TurnedHeif(picture, turn, true); }}),
                       ::testing::ValuesIn(kTurns)));
#endif

// Against the definition, pixel by pixel.
RC_GTEST_PROP(OrientationProperty, EveryPixelGoesWhereItBelongs, ()) {
  const int width = *rc::gen::inRange(1, 70);
  const int height = *rc::gen::inRange(1, 70);
  const int orientation = *rc::gen::inRange(1, 9);
  std::vector<int> values(static_cast<std::size_t>(width * height));
  for (std::size_t k = 0; k < values.size(); ++k) values[k] = static_cast<int>(k);
  int newWidth = width;
  int newHeight = height;
  MakeUpright<1>(values, newWidth, newHeight, orientation);
  for (int y = 0; y < newHeight; ++y) {
    for (int x = 0; x < newWidth; ++x) {
      const int a = orientation > 4 ? y : x;
      const int b = orientation > 4 ? x : y;
      const bool last = orientation == 2 || orientation == 3 || orientation == 7 || orientation == 8;
      const bool below = orientation == 3 || orientation == 4 || orientation == 6 || orientation == 7;
      const int column = last ? width - 1 - a : a;
      const int row = below ? height - 1 - b : b;
      RC_ASSERT(values[static_cast<std::size_t>((newHeight - 1 - y) * newWidth + x)] == row * width + column);
    }
  }
}

TEST(ExifOrientationTest, BothByteOrdersAreRead) {
  EXPECT_EQ(ExifOrientation(ExifOf(6)), 6);
  EXPECT_EQ(ExifOrientation(std::string("Exif\0\0", 6) + ExifOf(8)), 8);
  EXPECT_EQ(ExifOrientation(std::string("MM\0*\0\0\0\x8\0\x1\x1\x12\0\x3\0\0\0\x1\0\x5\0\0\0\0\0\0", 26)), 5);
}

TEST(ExifOrientationTest, WhatIsDamagedMeansUpright) {
  const std::string whole = ExifOf(6);
  for (std::size_t length = 0; length < 19; ++length) EXPECT_EQ(ExifOrientation(whole.substr(0, length)), 1) << length;
  for (const int strange : {0, 9, 255}) EXPECT_EQ(ExifOrientation(ExifOf(strange)), 1);
  EXPECT_EQ(ExifOrientation(std::string("II*\0\xFF\xFF\xFF\xFF", 8)), 1);
}
