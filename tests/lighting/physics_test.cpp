// What the passes are for: a picture of a lit surface gives back the surface's own colour. The picture goes through a
// file, as every photograph does.

#include <algorithm>
#include <cmath>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "io/Bmp.h"
#include "lighting/CShading.h"
#include "quadtree/TreeNormals.h"
#include "support/BmpBuilders.h"
#include "support/CStaging.h"
#include "support/CTemporaryDirectory.h"
#include "support/LightingBuilders.h"

namespace {

constexpr Vector3 kAlbedo{0.9, 0.8, 0.95};
// The rows of the file are padded.
constexpr int kSide = 97;
constexpr std::size_t kTexels = std::size_t{kSide} * kSide;

// Two lights and an ambient term whose shading never exceeds 1.
CLightSet KnownLights() {
  CLightSet set = AmbientLight(0.1, 0.15, 0.1);
  SwitchOn(set, 0, {0.5, 0.45, 0.5}, {-1, 1, 1});
  SwitchOn(set, 2, {0.4, 0.4, 0.35}, {1, 0, 2});
  return set;
}

// What is read back from the file written of a picture; an empty one where either fails.
CPicture ThroughFile(const CPicture& picture) {
  const CTemporaryDirectory scratch;
  const std::string file = scratch.File("bump.bmp");
  if (!Global::SaveBMP(file, picture.m_aPixels, picture.m_iWidth, picture.m_iHeight, 1)) return {};
  const auto loaded = Global::LoadBMP(file, 1);
  return loaded.has_value() && !loaded->m_bEndsEarly ? loaded->m_Picture : CPicture{};
}

// A bump over the whole model, photographed under the known lights.
struct CPhotographedBump : CTestGrid {
  CPhotographedBump() : CTestGrid(6, 6) {
    SetHeights(m_Grid.Surface().Lattice(), CBump{4.0, 23.0, 1.75});
    ComputeNormals(m_Grid.Surface().Tree());
    m_Grid.Relighting().SetPicture(PlainPicture(kSide, kSide));
    m_Grid.ComputeCoefsTexels();
    m_Grid.Relighting().SetPicture(ThroughFile(Photograph()));
    m_Grid.ComputeCoefsTexels();
    CStaging::RemovedLights(m_Grid) = KnownLights();
  }

  Vector3 ShadingAt(std::size_t texel) const {
    return CShading(KnownLights()).Of(m_Grid.Relighting().Texels().Normals()[texel]);
  }

  CPicture Photograph() const {
    CPicture picture = PlainPicture(kSide, kSide);
    const auto byte = [](double value) { return static_cast<std::uint8_t>(std::lround(255 * value)); };
    for (std::size_t i = 0; i < m_Grid.Relighting().Texels().Normals().size(); ++i) {
      const Vector3 s = ShadingAt(i);
      picture.m_aPixels[3 * i] = byte(kAlbedo.x * s.x);
      picture.m_aPixels[3 * i + 1] = byte(kAlbedo.y * s.y);
      picture.m_aPixels[3 * i + 2] = byte(kAlbedo.z * s.z);
    }
    return picture;
  }
};

TEST(Relighting, ThePhotographOutlivesItsFile) {
  const CPhotographedBump test;
  const CPicture picture = test.Photograph();
  const CPicture read = ThroughFile(picture);
  EXPECT_EQ(read.m_iWidth, kSide);
  EXPECT_EQ(read.m_iHeight, kSide);
  EXPECT_EQ(read.m_aPixels, picture.m_aPixels);
}

TEST(Relighting, ALitBumpGivesBackAConstantAlbedo) {
  CPhotographedBump test;
  test.m_Grid.GetKd();
  const auto kd = test.m_Grid.Relighting().Albedo().Kd();
  int bright = 0;
  for (std::size_t i = 0; 3 * i < kd.size(); ++i) {
    const Vector3 s = test.ShadingAt(i);
    if (std::min({s.x, s.y, s.z}) < 0.3) continue;
    ++bright;
    EXPECT_NEAR(kd[3 * i] / kAlbedo.x, 1.0, 0.01);
    EXPECT_NEAR(kd[3 * i + 1] / kAlbedo.y, 1.0, 0.01);
    EXPECT_NEAR(kd[3 * i + 2] / kAlbedo.z, 1.0, 0.01);
  }
  EXPECT_GT(bright, kSide * kSide / 2);
}

TEST(Relighting, TheBumpIsShadedAllOver) {
  const CPhotographedBump test;
  double darkest = 1;
  double brightest = 0;
  for (std::size_t i = 0; i < kTexels; ++i) {
    darkest = std::min(darkest, test.ShadingAt(i).x);
    brightest = std::max(brightest, test.ShadingAt(i).x);
  }
  EXPECT_LT(darkest, 0.3);
  EXPECT_GT(brightest, 0.8);
}

TEST(Relighting, TheSameLightsRemovedAndAddedGiveBackThePhotograph) {
  CPhotographedBump test;
  CStaging::AddedLights(test.m_Grid) = KnownLights();
  test.m_Grid.GetKd();
  const CTextureImages& images = test.m_Grid.Relighting().Textures();
  ASSERT_EQ(images.PictureWidth(), kSide);
  const auto photograph = images.Image(CTextureImages::kPhotograph);
  const auto relit = images.Image(CTextureImages::kIllumination);
  for (std::size_t k = 0; k < relit.size(); ++k) EXPECT_LE(std::abs(photograph[k] - relit[k]), 1);
}

}  // namespace
