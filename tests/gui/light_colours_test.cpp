// The colour of a light in its panel: three channels, their proportions, the colour of the tube.

#include <array>

#include "support/gui/LightPanelTest.h"

TEST_F(LightSourcesTest, FixedRatiosTakeTheOtherChannelsAlong) {
  OpenFixed({0.5, 0.25, 0});
  Move("Red", 1);
  ExpectColour(1, 0.5, 0);
  EXPECT_EQ(Removed(0).m_afColour, (std::array{1.0, 0.5, 0.0}));
  Move("Green", 0.125);
  ExpectColour(0.25, 0.125, 0);
}

TEST_F(LightSourcesTest, EveryChannelLeadsTheOthers) {
  OpenFixed({0.4, 0.2, 0.1});
  Move("Red", 0.8);
  ExpectColour(0.8, 0.4, 0.2);
  Move("Green", 0.1);
  ExpectColour(0.2, 0.1, 0.05);
  Move("Blue", 0.2);
  ExpectColour(0.8, 0.4, 0.2);
}

TEST_F(LightSourcesTest, RatioThatCannotBeFormedSwitchesTheLockOff) {
  OpenFixed({0.5, 0.25, 0});
  Move("Blue", 0.75);
  EXPECT_FALSE(IsOn(kFixRatios));
  ExpectColour(0.5, 0.25, 0.75);
  EXPECT_EQ(Removed(0).m_afColour, (std::array{0.5, 0.25, 0.75}));
}

TEST_F(LightSourcesTest, LimitBendsTheRatiosOnlyForAsLongAsItIsMet) {
  OpenFixed({0.25, 0.5, 0.1});
  Move("Red", 1);
  ExpectColour(1, 1, 0.4);
  Move("Red", 0.25);
  ExpectColour(0.25, 0.5, 0.1);
}

TEST_F(LightSourcesTest, FreeRatiosMoveOneChannelOnly) {
  OpenFixed({0.5, 0.25, 0.125});
  Push(kFixRatios);
  Move("Red", 1);
  ExpectColour(1, 0.25, 0.125);
  Push(kFixRatios);
  Move("Red", 0.5);
  ExpectColour(0.5, 0.125, 0.0625);
}

TEST_F(LightSourcesTest, FixedRatiosAreThoseOfTheLightOnShow) {
  Removed(1).m_afColour = {0.5, 0.5, 0.25};
  OpenFixed({0.5, 0.25, 0.125});
  Push("Light 2");
  Move("Red", 1);
  ExpectColour(1, 1, 0.5);
}

TEST_F(LightSourcesTest, ChosenTubeColourIsKeptExactlyAndShownByTheCube) {
  m_Panel.Open();
  Removed(0).m_afTubeColour[3] = 0.5;
  ChooseTubeColour({100 / 255.0, 200 / 255.0, 50 / 255.0}, "OK");
  EXPECT_EQ(Removed(0).m_afTubeColour, (std::array{100 / 255.0, 200 / 255.0, 50 / 255.0, 0.5}));
  EXPECT_EQ(Widget(kTube).color(), 56U + ((50U * 5 / 256) * 5 + 100U * 5 / 256) * 8 + 200U / 32);
  Push("Light 2");
  EXPECT_EQ(Removed(0).m_afTubeColour[0], 100 / 255.0);
}

TEST_F(LightSourcesTest, RefusedTubeColourChangesNothing) {
  m_Panel.Open();
  const CLight before = Removed(0);
  ChooseTubeColour({0, 0, 1}, "Cancel");
  EXPECT_EQ(Removed(0), before);
  EXPECT_EQ(Widget(kTube).color(), 56U + 4 * 8);
}
