#include <array>
#include <optional>

#include <gtest/gtest.h>

#include "lighting/CLight.h"
#include "lighting/LightControls.h"

namespace {

using Rgb = std::array<double, 3>;

TEST(LightControls, ShowWhatTheRecordHolds) {
  const CLight light{true, false, {0, -2, 0, 0}, {0.25, 0.5, 1}, {1, 0.5, 0, 0.25}};
  const CLightControls controls = ControlsOf(light);
  EXPECT_TRUE(controls.m_bActive);
  EXPECT_FALSE(controls.m_bDrawn);
  EXPECT_NEAR(controls.m_Angles.m_fTheta, 90, 1e-5);
  EXPECT_NEAR(controls.m_Angles.m_fPhi, 270, 1e-5);
  EXPECT_EQ(controls.m_afColour, light.m_afColour);
  EXPECT_EQ(controls.m_aiTubeColour, (std::array{255, 128, 0}));
}

TEST(LightControls, ApplyWritesEveryField) {
  CLight light;
  light.m_afTubeColour[3] = 0.5;
  Apply({true, true, {90, 90}, {0.1, 0.2, 0.3}, {51, 102, 255}}, light);
  EXPECT_TRUE(light.m_bActive);
  EXPECT_TRUE(light.m_bDrawn);
  EXPECT_EQ(light.Direction(), DirectionOf({90, 90}));
  EXPECT_EQ(light.m_afColour, (Rgb{0.1, 0.2, 0.3}));
  EXPECT_EQ(light.m_afTubeColour, (std::array<double, 4>{51 / 255.0, 102 / 255.0, 1, 0.5}));
}

TEST(LightControls, ApplyingWhatIsShownLeavesTheStartValues) {
  for (const CLightSet& set : {CLightSet::Removed(), CLightSet::Added()}) {
    for (const CLight& start : set.m_aLights) {
      CLight light = start;
      Apply(ControlsOf(light), light);
      EXPECT_EQ(light, start);
    }
  }
}

TEST(LightControls, TubeColoursOutsideTheirRangeAreShownAtItsEnd) {
  CLight light;
  light.m_afTubeColour = {2, -1, 0.5, 1};
  EXPECT_EQ(ControlsOf(light).m_aiTubeColour, (std::array{255, 0, 128}));
}

struct CEntry {
  std::array<int, 3> rgb;
  int entry;
};

class ColourCubeTest : public testing::TestWithParam<CEntry> {};

INSTANTIATE_TEST_SUITE_P(Colours, ColourCubeTest,
                         testing::Values(CEntry{{0, 0, 0}, 56}, CEntry{{255, 0, 0}, 88}, CEntry{{0, 255, 0}, 63},
                                         CEntry{{255, 255, 0}, 95}, CEntry{{0, 0, 255}, 216},
                                         CEntry{{255, 255, 255}, 255}, CEntry{{51, 31, 51}, 56},
                                         CEntry{{52, 32, 52}, 105}, CEntry{{128, 128, 128}, 56 + (2 * 5 + 2) * 8 + 4}));

TEST_P(ColourCubeTest, HasFiveRedsEightGreensAndFiveBlues) {
  EXPECT_EQ(ColourCubeEntry(GetParam().rgb), GetParam().entry);
}

TEST(ColourRatios, AreFormedWithEveryChannelThatIsNotZero) {
  const CColourRatios ratios({0.5, 0.25, 0});
  EXPECT_EQ(ratios.Ratio(1, 0), 0.5);
  EXPECT_EQ(ratios.Ratio(2, 0), 0.0);
  EXPECT_EQ(ratios.Ratio(0, 1), 2.0);
  EXPECT_EQ(ratios.Ratio(2, 1), 0.0);
  EXPECT_EQ(ratios.Ratio(0, 2), CColourRatios::kUnknown);
  EXPECT_EQ(ratios.Ratio(1, 2), CColourRatios::kUnknown);
  EXPECT_EQ(CColourRatios::kUnknown, -1.0);
}

TEST(ColourRatios, BeforeAnyColourNoneIsKnown) {
  for (const std::size_t moved : {0U, 1U, 2U}) EXPECT_EQ(CColourRatios().Follow(moved, 0.5), std::nullopt);
}

TEST(ColourRatios, OneSliderTakesTheOthersAlong) {
  const CColourRatios ratios({0.8, 0.4, 0.2});
  EXPECT_EQ(ratios.Follow(0, 0.4), (Rgb{0.4, 0.2, 0.1}));
  EXPECT_EQ(ratios.Follow(1, 0.2), (Rgb{0.4, 0.2, 0.1}));
  EXPECT_EQ(ratios.Follow(2, 0.1), (Rgb{0.4, 0.2, 0.1}));
}

TEST(ColourRatios, RedTakesAZeroAlongAndBlueSwitchesOff) {
  const CColourRatios ratios({0.5, 0.25, 0});
  EXPECT_EQ(ratios.Follow(0, 1), (Rgb{1, 0.5, 0}));
  EXPECT_EQ(ratios.Follow(2, 0.5), std::nullopt);
}

TEST(ColourRatios, TheLimitBendsThemOnlyUntilTheSliderComesBack) {
  const CColourRatios ratios({0.25, 0.5, 1});
  EXPECT_EQ(ratios.Follow(0, 0.5), (Rgb{0.5, 1, 1}));
  EXPECT_EQ(ratios.Follow(0, 0.125), (Rgb{0.125, 0.25, 0.5}));
}

}  // namespace
