// The pictures that the lights make of a photograph, computed apart from those of the model.

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <vector>

#include <gtest/gtest.h>

#include "lighting/LitPicture.h"
#include "support/CStaging.h"
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
    return LitPictureOf(which, RandomPicture(kWidth, kHeight), CStaging::RemovedLights(m_Grid),
                        CStaging::AddedLights(m_Grid), m_Grid.Surface().Interpolation(), goes);
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
