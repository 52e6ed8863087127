// The pictures that the lights make of a photograph, computed apart from those of the model.

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <span>
#include <vector>

#include <gtest/gtest.h>

#include "lighting/LitPicture.h"
#include "support/CStaging.h"
#include "support/FileBuilders.h"
#include "support/LightingBuilders.h"

namespace {

constexpr int kWidth = 37;
constexpr int kHeight = 23;

// A torn surface with a photograph and lights of both kinds, some of which parts of it face away from.
struct CLitGrid : CPictureGrid {
  CLitGrid() : CPictureGrid(kWidth, kHeight) {
    CStaging::RemovedLights(m_Grid) = AmbientLight(0.02, 0.0, 0.3);
    SwitchOn(CStaging::RemovedLights(m_Grid), 2, {0.6, 0.9, 0.4}, {-3, 1, 0.5});
    CStaging::AddedLights(m_Grid) = AmbientLight(0.1, 0.2, 0.1);
    SwitchOn(CStaging::AddedLights(m_Grid), 1, {0.9, 0.8, 1.0}, {1, 1, 1});
  }
  CPicture Computed(LitPicture which, const std::function<bool(double)>& goes = {}) {
    const CInterpolation surface = m_Grid.Surface().Interpolation();
    const CPicture photograph = RandomPicture(kWidth, kHeight);
    return LitPictureOf(which,
                        {photograph, CStaging::RemovedLights(m_Grid), CStaging::AddedLights(m_Grid), surface,
                         m_NormalsOf, m_Grid.Relighting().RelitTone()},
                        goes);
  }
  void Tear() {
    AddCurveThrough(m_Grid, CurveType::kPosition, {{-1.5, 21}, {4.25, 23}, {9, 23.5}});
    m_Grid.PerformPendingWork();
    SetRandomSurface(m_Grid, 5);
  }
  // The bytes of an image of the model, without what is beside the picture.
  std::vector<std::uint8_t> Image(CTextureImages::Which which) {
    const CTextureImages& images = m_Grid.Relighting().Textures();
    std::vector<std::uint8_t> bytes;
    for (int row = 0; row < kHeight; ++row) {
      const auto first = images.Image(which).begin() + 3L * row * images.TextureWidth();
      bytes.insert(bytes.end(), first, first + 3L * kWidth);
    }
    return bytes;
  }

  std::function<std::vector<Vector3>(std::span<const std::size_t>)> m_NormalsOf;
};

}  // namespace

// As the three buttons of the panel would leave them.
TEST(LitPictureTest, IsWhatTheModelMakesButForAlbedosAboveOne) {
  CLitGrid lit;
  const CPicture albedo = lit.Computed(LitPicture::Albedo);
  const CPicture relit = lit.Computed(LitPicture::Relit);
  lit.m_Grid.ComputeNormalsOnly();
  lit.m_Grid.ComputeCoefsTexels();
  lit.m_Grid.GetKd();
  EXPECT_EQ(relit.m_aPixels, lit.Image(CTextureImages::kIllumination));
  const std::vector<std::uint8_t> wrapped = lit.Image(CTextureImages::kKd);
  std::array<int, 3> kinds{};
  for (std::size_t k = 0; k < wrapped.size(); ++k) {
    const double kd = lit.m_Grid.Relighting().Albedo().Kd()[k];
    EXPECT_EQ(albedo.m_aPixels[k], kd >= 1 ? 255 : wrapped[k]) << kd;
    ++kinds[kd >= 1 ? 0 : kd > 0 ? 1 : 2];
  }
  EXPECT_GT(*std::ranges::min_element(kinds), 10) << "above 1, below, and none at all";
}

TEST(LitPictureTest, SoftToneIsThatOfTheModel) {
  CLitGrid lit;
  const CPicture albedo = lit.Computed(LitPicture::Albedo);
  const CPicture clipped = lit.Computed(LitPicture::Relit);
  lit.m_Grid.SetTone(Tone::Soft);
  const CPicture relit = lit.Computed(LitPicture::Relit);
  EXPECT_NE(relit.m_aPixels, clipped.m_aPixels);
  EXPECT_EQ(lit.Computed(LitPicture::Albedo).m_aPixels, albedo.m_aPixels);
  lit.m_Grid.ComputeNormalsOnly();
  lit.m_Grid.ComputeCoefsTexels();
  lit.m_Grid.GetKd();
  EXPECT_EQ(relit.m_aPixels, lit.Image(CTextureImages::kIllumination));
}

// The model shows gaps there.
TEST(LitPictureTest, TakesNormalsBesideTearsFromElsewhere) {
  CLitGrid lit;
  lit.Tear();
  const CPicture without = lit.Computed(LitPicture::Relit);
  lit.m_Grid.ComputeNormalsOnly();
  lit.m_Grid.ComputeCoefsTexels();
  lit.m_Grid.GetKd();
  EXPECT_EQ(without.m_aPixels, lit.Image(CTextureImages::kIllumination));
  std::vector<std::size_t> asked;
  lit.m_NormalsOf = [&asked](std::span<const std::size_t> texels) {
    asked.assign(texels.begin(), texels.end());
    return std::vector<Vector3>(texels.size(), {0, 0, 1});
  };
  const CPicture with = lit.Computed(LitPicture::Relit);
  EXPECT_GT(asked.size(), 5U);
  EXPECT_TRUE(std::ranges::is_sorted(asked));
  EXPECT_NE(with.m_aPixels, without.m_aPixels);
  const std::span<const Vector3> normals = lit.m_Grid.Relighting().Texels().Normals();
  for (std::size_t texel = 0; texel < normals.size(); ++texel) {
    const bool isAsked = std::ranges::binary_search(asked, texel);
    EXPECT_EQ(isAsked, std::isnan(normals[texel].x)) << texel;
    const std::uint8_t blue = without.m_aPixels[3 * texel + 2];
    EXPECT_TRUE(isAsked ? blue == 0 : with.m_aPixels[3 * texel + 2] == blue) << texel;
  }
}

TEST(LitPictureTest, NeedsNoPictureOfTheModel) {
  CLitGrid lit;
  const CPicture before = lit.Computed(LitPicture::Relit);
  lit.m_Grid.Relighting().SetPicture(PlainPicture(2, 2));
  EXPECT_EQ(lit.Computed(LitPicture::Relit).m_aPixels, before.m_aPixels);
}

TEST(LitPictureTest, IsEmptyWhereItIsCancelled) {
  CLitGrid lit;
  std::vector<double> shares;
  const auto goes = [&shares](double share) {
    shares.push_back(share);
    return shares.size() < 5;
  };
  EXPECT_TRUE(lit.Computed(LitPicture::Albedo, goes).m_aPixels.empty());
  EXPECT_EQ(shares.size(), 5U);
  EXPECT_TRUE(std::ranges::is_sorted(shares));
}
