#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <vector>

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include "lighting/CAlbedoMap.h"
#include "lighting/CShading.h"
#include "lighting/CTextureImages.h"
#include "support/LightingBuilders.h"

namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNone = std::numeric_limits<double>::quiet_NaN();

// The three images and the albedo of a picture under two sets of lights.
struct CRelit {
  CRelit(const CPicture& picture, const std::vector<Vector3>& normals, const CLightSet& removed, const CLightSet& added,
         Tone tone = Tone::Clipped) {
    m_Images.SetPicture(picture);
    const CShading before(removed);
    const CShading after(added);
    m_Albedo.Compute(normals, {before, after, tone}, m_Images);
  }

  std::uint8_t KdByte(std::size_t k = 0) const { return m_Images.Image(CTextureImages::kKd)[k]; }
  std::uint8_t NewByte(std::size_t k = 0) const { return m_Images.Image(CTextureImages::kIllumination)[k]; }

  CTextureImages m_Images;
  CAlbedoMap m_Albedo;
};

// One grey texel that looks up, under grey ambient lights.
CRelit RelitTexel(std::uint8_t photograph, double removed, double added) {
  return {PlainPicture(1, 1, photograph),
          {{0, 0, 1}},
          AmbientLight(removed, removed, removed),
          AmbientLight(added, added, added)};
}

struct CByteCase {
  std::uint8_t photograph;
  double removed;
  double added;
  double kd;
  int kdByte;
  int newByte;
};

class AlbedoByteTest : public testing::TestWithParam<CByteCase> {};

INSTANTIATE_TEST_SUITE_P(Bytes, AlbedoByteTest,
                         testing::Values(CByteCase{128, 1, 1, 128 / 255.0, 128, 128},       //
                                         CByteCase{51, 0.5, 0.25, 0.4, 102, 25},            // 25.5
                                         CByteCase{153, 0.5, 1, 1.2, 306 - 256, 255},       //
                                         CByteCase{153, 0.5, 0.5, 1.2, 50, 153},            //
                                         CByteCase{0, 0.5, 1, 0, 0, 0},                     //
                                         CByteCase{255, 0, 1, 0, 0, 0},                     //
                                         CByteCase{255, -1, 1, 0, 0, 0},                    //
                                         CByteCase{255, 1, -1, 1, 255, 0},                  //
                                         CByteCase{255, 1, 1e300, 1, 255, 255},             //
                                         CByteCase{255, 1, 1.001, 1, 255, 255},             //
                                         CByteCase{255, 0x1p-24, 0x1p-24, 0x1p24, 0, 255},  //
                                         CByteCase{255, 255 / (0x1p31 + 77.5), 1, (0x1p31 + 77.5) / 255, 77, 255},
                                         CByteCase{255, 255 / (0x1p40 + 200.5), 1, (0x1p40 + 200.5) / 255, 200, 255},
                                         CByteCase{255, 0x1p-1000, 1, 0x1p1000, 0, 255},
                                         CByteCase{255, 5e-324, 1, kInfinity, 0, 0},
                                         CByteCase{255, 5e-324, 0, kInfinity, 0, 0},
                                         CByteCase{255, kInfinity, 1, 0, 0, 0}, CByteCase{255, kNone, 1, 0, 0, 0},
                                         CByteCase{255, 1, kNone, 1, 255, 0}, CByteCase{255, 1, kInfinity, 1, 255, 0}));

TEST_P(AlbedoByteTest, FollowsTheRule) {
  const CByteCase& c = GetParam();
  const CRelit relit = RelitTexel(c.photograph, c.removed, c.added);
  for (std::size_t k = 0; k < 3; ++k) {
    EXPECT_DOUBLE_EQ(relit.m_Albedo.Kd()[k], c.kd);
    EXPECT_EQ(relit.KdByte(k), c.kdByte);
    EXPECT_EQ(relit.NewByte(k), c.newByte);
  }
}

TEST(AlbedoMap, SoftToneRunsIntoWhite) {
  for (int percent = 0; percent <= 300; ++percent) {
    const double x = percent / 100.0;
    const CRelit relit(PlainPicture(1, 1, 255), {{0, 0, 1}}, AmbientLight(1, 1, 1), AmbientLight(x, x, x), Tone::Soft);
    const double soft = x <= 0.8 ? x : 0.8 + 0.2 * (1 - std::exp(-(x - 0.8) / 0.2));
    EXPECT_NEAR(relit.NewByte(), std::floor(255 * soft + 1e-9), x <= 0.8 ? 1 : 0) << x;
    EXPECT_EQ(relit.KdByte(), 255);
    if (x > 0.8) continue;
    EXPECT_EQ(relit.NewByte(), RelitTexel(255, 1, x).NewByte()) << x;
  }
}

TEST(AlbedoMap, WhatIsNotFiniteIsBlackUnderTheShoulderToo) {
  for (const double light : {kInfinity, kNone, -kInfinity}) {
    const CRelit relit(PlainPicture(1, 1, 255), {{0, 0, 1}}, AmbientLight(1, 1, 1), AmbientLight(light, light, light),
                       Tone::Soft);
    EXPECT_EQ(relit.NewByte(), 0);
  }
}

TEST(AlbedoMap, UnderAmbientLightAloneTheNormalDoesNotMatter) {
  const std::vector<Vector3> normals{{0, 0, 1}, {0, 0, -1}, {1, 0, 0}, {kNone, kNone, kNone}};
  const CRelit relit(PlainPicture(2, 2, 51), normals, AmbientLight(0.25, 0.5, 1), AmbientLight(1, 1, 1));
  for (std::size_t i = 0; i < 4; ++i) {
    EXPECT_DOUBLE_EQ(relit.m_Albedo.Kd()[3 * i], 0.8);
    EXPECT_DOUBLE_EQ(relit.m_Albedo.Kd()[3 * i + 1], 0.4);
    EXPECT_DOUBLE_EQ(relit.m_Albedo.Kd()[3 * i + 2], 0.2);
  }
}

TEST(AlbedoMap, ATexelThatFacesNoRemovedLightIsBlack) {
  CLightSet removed;
  SwitchOn(removed, 0, {1, 1, 1}, {1, 0, 0});
  SwitchOn(removed, 1, {1, 1, 1}, {0, 0, -1});
  const CRelit relit(PlainPicture(1, 1, 200), {{0, 0, 1}}, removed, AmbientLight(1, 1, 1));
  EXPECT_EQ(relit.m_Albedo.Kd()[0], 0.0);
  EXPECT_EQ(relit.KdByte(), 0);
  EXPECT_EQ(relit.NewByte(), 0);
}

TEST(AlbedoMap, ANormalThatIsNotANumberGivesBlackUnderDirectionalLights) {
  CLightSet directional = AmbientLight(0.5, 0.5, 0.5);
  SwitchOn(directional, 3, {1, 1, 1});
  const std::vector<Vector3> normals{{kNone, kNone, kNone}};
  const CRelit removed(PlainPicture(1, 1, 200), normals, directional, AmbientLight(1, 1, 1));
  EXPECT_EQ(removed.KdByte(), 0);
  EXPECT_EQ(removed.NewByte(), 0);
  const CRelit added(PlainPicture(1, 1, 200), normals, AmbientLight(1, 1, 1), directional);
  EXPECT_EQ(added.KdByte(), 200);
  EXPECT_EQ(added.NewByte(), 0);
}

TEST(AlbedoMap, WithoutAddedLightsTheNewIlluminationIsBlack) {
  const CRelit relit(RandomPicture(3, 2), std::vector<Vector3>(6, {0, 0, 1}), AmbientLight(1, 1, 1), CLightSet{});
  for (std::size_t y = 0; y < 2; ++y) {
    for (std::size_t k = 0; k < 9; ++k) EXPECT_EQ(relit.NewByte(12 * y + k), 0);
  }
}

TEST(AlbedoMap, TheMarginsStayWhite) {
  const CRelit relit(PlainPicture(3, 3, 0), std::vector<Vector3>(9, {0, 0, 1}), AmbientLight(1, 1, 1), CLightSet{});
  for (const auto which : {CTextureImages::kKd, CTextureImages::kIllumination}) {
    const auto image = relit.m_Images.Image(which);
    EXPECT_EQ(std::count(image.begin(), image.end(), 255), 3 * (16 - 9));
  }
}

TEST(AlbedoMap, ThePhotographStaysAndTheOthersAreMarkedAsChanged) {
  CTextureImages images;
  images.SetPicture(RandomPicture(2, 2));
  const auto photograph = images.Image(CTextureImages::kPhotograph);
  const std::vector<std::uint8_t> before(photograph.begin(), photograph.end());
  const unsigned revision = images.Revision(CTextureImages::kPhotograph);
  const CShading removed(AmbientLight(0.5, 0.5, 0.5));
  const CShading added{CLightSet{}};
  CAlbedoMap().Compute(std::vector<Vector3>(4, {0, 0, 1}), {removed, added}, images);
  EXPECT_TRUE(std::ranges::equal(images.Image(CTextureImages::kPhotograph), before));
  EXPECT_EQ(images.Revision(CTextureImages::kPhotograph), revision);
  EXPECT_GT(images.Revision(CTextureImages::kKd), revision);
  EXPECT_GT(images.Revision(CTextureImages::kIllumination), revision);
}

TEST(AlbedoMap, IsEmptyUntilComputed) {
  CAlbedoMap albedo;
  albedo.Reserve(3, 2);
  EXPECT_FALSE(albedo.IsComputed());
  EXPECT_TRUE(albedo.Kd().empty());
  const CRelit relit = RelitTexel(1, 1, 1);
  EXPECT_TRUE(relit.m_Albedo.IsComputed());
  EXPECT_EQ(relit.m_Albedo.Kd().size(), 3U);
}

// A second time, as plainly as it can be said.
struct CExpected {
  double m_fKd;
  int m_iKdByte;
  int m_iNewByte;
};

std::array<double, 3> PlainShading(const CLightSet& set, const Vector3& n) {
  std::array<double, 3> sum{};
  for (std::size_t k = 0; k < 5; ++k) {
    const CLight& light = set.m_aLights[k];
    const double d =
        k == 4 ? 1.0 : light.m_afDirection[0] * n.x + light.m_afDirection[1] * n.y + light.m_afDirection[2] * n.z;
    if (!light.m_bActive || d <= 0) continue;
    for (std::size_t c = 0; c < 3; ++c) sum[c] += d * light.m_afColour[c];
  }
  return sum;
}

CExpected PlainTexel(int byte, double before, double after) {
  const double kd = before > 0 ? byte / 255.0 / before : 0;
  return {kd, static_cast<int>(static_cast<std::int64_t>(kd * 255) % 256),
          static_cast<int>(std::min<std::int64_t>(255, static_cast<std::int64_t>(kd * after * 255)))};
}

CLightSet ArbitrarySet() {
  CLightSet set;
  const auto unit = [] { return *rc::gen::inRange(0, 101) / 100.0; };
  for (std::size_t k = 0; k < 5; ++k) {
    if (*rc::gen::arbitrary<bool>())
      SwitchOn(set, k, {unit(), unit(), unit()}, {2 * unit() - 1, 2 * unit() - 1, unit() + 0.01});
  }
  return set;
}

RC_GTEST_PROP(AlbedoMapProperty, EqualsThePlainReference, ()) {
  const int width = *rc::gen::inRange(1, 7);
  const int height = *rc::gen::inRange(1, 7);
  const CPicture picture = RandomPicture(width, height, *rc::gen::arbitrary<std::uint32_t>());
  std::mt19937 random(picture.m_aPixels[0]);
  std::uniform_real_distribution<double> part(-1, 1);
  std::vector<Vector3> normals(static_cast<std::size_t>(width * height));
  for (Vector3& n : normals) n = Normalised({part(random), part(random), part(random)});
  const CLightSet removed = ArbitrarySet();
  const CLightSet added = ArbitrarySet();
  const CRelit relit(picture, normals, removed, added);
  const auto pitch = 3 * static_cast<std::size_t>(relit.m_Images.TextureWidth());
  for (std::size_t i = 0; i < normals.size(); ++i) {
    const auto before = PlainShading(removed, normals[i]);
    const auto after = PlainShading(added, normals[i]);
    const auto w = static_cast<std::size_t>(width);
    for (std::size_t c = 0; c < 3; ++c) {
      const CExpected expected = PlainTexel(picture.m_aPixels[3 * i + c], before[c], after[c]);
      const std::size_t at = i / w * pitch + 3 * (i % w) + c;
      RC_ASSERT(relit.m_Albedo.Kd()[3 * i + c] == expected.m_fKd);
      RC_ASSERT(relit.KdByte(at) == expected.m_iKdByte);
      RC_ASSERT(relit.NewByte(at) == expected.m_iNewByte);
    }
  }
}

}  // namespace
