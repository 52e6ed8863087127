#include <locale>
#include <sstream>
#include <string>

#include <gtest/gtest.h>

#include "lighting/CLight.h"
#include "support/LightingBuilders.h"

namespace {

CLight SomeLight() { return {true, true, {0.25, -0.5, 0.75, 0}, {1, 0.5, 0}, {0, 0.125, 1, 1}}; }

TEST(LightStart, AllAreOffAndShineFromAbove) {
  for (const CLightSet& set : {CLightSet::Removed(), CLightSet::Added()}) {
    for (const CLight& light : set.m_aLights) {
      EXPECT_FALSE(light.m_bActive);
      EXPECT_FALSE(light.m_bDrawn);
      EXPECT_EQ(light.m_afDirection, (std::array<double, 4>{0, 0, 1, 0}));
    }
  }
}

TEST(LightStart, DirectionalLightsAreWhiteAndTheAmbientOneIsDim) {
  for (const CLightSet& set : {CLightSet::Removed(), CLightSet::Added()}) {
    for (std::size_t k = 0; k < 4; ++k) EXPECT_EQ(set.m_aLights[k].m_afColour, (std::array<double, 3>{1, 1, 1}));
    EXPECT_EQ(set.m_aLights[CLightSet::kAmbient].m_afColour, (std::array<double, 3>{0.2, 0.2, 0.2}));
  }
}

TEST(LightStart, MarkersAreRedForTheRemovedAndYellowForTheAdded) {
  for (std::size_t k = 0; k < 5; ++k) {
    EXPECT_EQ(CLightSet::Removed().m_aLights[k].m_afTubeColour, (std::array<double, 4>{1, 0, 0, 1}));
    EXPECT_EQ(CLightSet::Added().m_aLights[k].m_afTubeColour, (std::array<double, 4>{1, 1, 0, 1}));
  }
}

TEST(LightText, ALightIsFourLines) {
  std::ostringstream out;
  out << SomeLight();
  EXPECT_EQ(out.str(), "1 1\n0.25 -0.5 0.75 0 \n1 0.5 0 \n0 0.125 1 1 \n");
}

TEST(LightText, NumbersHaveTheStreamsOwnFormat) {
  CLight light;
  light.m_afColour[0] = 1.0 / 3;
  std::ostringstream out;
  out << light;
  EXPECT_EQ(out.str(), "0 0\n0 0 1 0 \n0.333333 1 1 \n1 1 0 1 \n");
}

TEST(LightText, ASetIsFiveLightsEachWithAnEmptyLine) {
  CLightSet set;
  set.m_aLights[1] = SomeLight();
  std::ostringstream one;
  std::ostringstream all;
  for (const CLight& light : set.m_aLights) one << light << '\n';
  all << set;
  EXPECT_EQ(all.str(), one.str());
  EXPECT_EQ(all.str().substr(0, 34), "0 0\n0 0 1 0 \n1 1 1 \n1 1 0 1 \n\n1 1\n");
}

TEST(LightText, WhatIsWrittenIsReadBack) {
  CLightSet set = CLightSet::Removed();
  set.m_aLights[0] = SomeLight();
  set.m_aLights[4].m_bActive = true;
  std::stringstream file;
  file << set << CLightSet::Removed();
  CLightSet first;
  CLightSet second;
  ASSERT_TRUE(file >> first >> second);
  EXPECT_EQ(first, set);
  EXPECT_EQ(second, CLightSet::Removed());
}

TEST(LightText, AnyWhiteSpaceSeparatesAndAnyNumberButZeroSwitchesOn) {
  std::istringstream file("7\n0\t.5 0\n0 1   1 1 1 .5\n\n.25 0 1");
  CLight light;
  ASSERT_TRUE(file >> light);
  EXPECT_EQ(light, (CLight{true, false, {0.5, 0, 0, 1}, {1, 1, 1}, {0.5, 0.25, 0, 1}}));
}

TEST(LightText, AShortFileLeavesTheSetAsItWas) {
  std::stringstream file;
  file << CLightSet::Added();
  const std::string text = file.str();
  std::istringstream shortFile(text.substr(0, text.size() / 2));
  CLightSet set = CLightSet::Removed();
  EXPECT_FALSE(shortFile >> set);
  EXPECT_EQ(set, CLightSet::Removed());
}

TEST(LightDirection, StaysAPositionAtInfinity) {
  CLight light;
  light.SetDirection({1, 2, 3});
  EXPECT_EQ(light.m_afDirection, (std::array<double, 4>{1, 2, 3, 0}));
  EXPECT_EQ(light.Direction(), (Vector3{1, 2, 3}));
}

}  // namespace
