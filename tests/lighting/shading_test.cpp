#include <cmath>
#include <limits>

#include <gtest/gtest.h>

#include "lighting/CShading.h"
#include "support/LightingBuilders.h"

namespace {

constexpr Vector3 kUp{0, 0, 1};

TEST(Shading, NoLightGivesBlack) {
  const CShading shading{CLightSet{}};
  EXPECT_FALSE(shading.IsAnyActive());
  EXPECT_EQ(shading.Of(kUp), Vector3{});
}

TEST(Shading, ALightGivesItsColourTimesTheCosine) {
  CLightSet set;
  SwitchOn(set, 2, {1, 0.5, 0.25}, {0.6, 0, 0.8});
  const Vector3 rgb = CShading(set).Of(kUp);
  EXPECT_NEAR(rgb.x, 0.8, 1e-15);
  EXPECT_NEAR(rgb.y, 0.4, 1e-15);
  EXPECT_NEAR(rgb.z, 0.2, 1e-15);
}

TEST(Shading, ALightFromBehindGivesNothingButCountsAsActive) {
  CLightSet set;
  SwitchOn(set, 0, {1, 1, 1}, {0, 0, -1});
  SwitchOn(set, 1, {1, 1, 1}, {1, 0, 0});
  const CShading shading(set);
  EXPECT_TRUE(shading.IsAnyActive());
  EXPECT_EQ(shading.Of(kUp), Vector3{});
}

TEST(Shading, TheAmbientLightHasNoDirection) {
  CLightSet set = AmbientLight(0.1, 0.2, 0.3);
  set.m_aLights[CLightSet::kAmbient].SetDirection({0, 0, -1});
  for (const Vector3& normal : {kUp, Vector3{0, 0, -1}, Vector3{std::nan(""), 0, 0}})
    EXPECT_EQ(CShading(set).Of(normal), (Vector3{0.1, 0.2, 0.3}));
}

TEST(Shading, AllActiveLightsAddUpAndTheOthersDoNot) {
  CLightSet set = AmbientLight(0.125, 0.25, 0);
  for (std::size_t k = 0; k < 4; ++k) SwitchOn(set, k, {0.25, 0, 1});
  set.m_aLights[1].m_bActive = false;
  EXPECT_EQ(CShading(set).Of(kUp), (Vector3{0.875, 0.25, 3}));
}

TEST(Shading, DirectionsCountWithTheirLength) {
  CLightSet set;
  SwitchOn(set, 0, {1, 1, 1});
  set.m_aLights[0].SetDirection({0, 0, 0.5});
  EXPECT_EQ(CShading(set).Of(kUp), (Vector3{0.5, 0.5, 0.5}));
}

TEST(Shading, OfANormalThatIsNotANumberIsNotANumber) {
  CLightSet set = AmbientLight(1, 1, 1);
  SwitchOn(set, 0, {1, 1, 1});
  EXPECT_TRUE(std::isnan(CShading(set).Of({std::nan(""), std::nan(""), std::nan("")}).x));
}

TEST(Shading, IsLinearInTheNormalWhileItFacesTheSameLights) {
  CLightSet set = AmbientLight(0.1, 0.2, 0.3);
  SwitchOn(set, 0, {1, 0.5, 0.25}, {1, 2, 3});
  SwitchOn(set, 2, {0.2, 0.4, 0.8}, {-1, 1, 1});
  SwitchOn(set, 3, {1, 1, 1}, {0, 0, -1});
  const CShading shading(set);
  const auto m = shading.ColourTimesDirection(kUp);
  for (const Vector3& n : {kUp, Normalised({0.1, 0.2, 0.9}), Normalised({-0.2, 0.1, 0.8})}) {
    const Vector3 rgb = shading.Of(n);
    EXPECT_NEAR(rgb.x, Dot(m[0], n) + 0.1, 1e-12);
    EXPECT_NEAR(rgb.y, Dot(m[1], n) + 0.2, 1e-12);
    EXPECT_NEAR(rgb.z, Dot(m[2], n) + 0.3, 1e-12);
  }
}

}  // namespace
