#pragma once

#include <array>
#include <cstdint>
#include <random>
#include <vector>

#include "base/CPicture.h"
#include "lighting/CLight.h"
#include "support/GridBuilders.h"

/// A picture of one colour.
inline CPicture PlainPicture(int width, int height, std::uint8_t value = 128) {
  const auto bytes = 3 * static_cast<std::size_t>(width) * static_cast<std::size_t>(height);
  return {width, height, std::vector<std::uint8_t>(bytes, value)};
}

/// A picture of random bytes, the same for the same seed.
inline CPicture RandomPicture(int width, int height, std::uint32_t seed = 1) {
  CPicture picture = PlainPicture(width, height);
  std::mt19937 random(seed);
  for (std::uint8_t& byte : picture.m_aPixels) byte = static_cast<std::uint8_t>(random());
  return picture;
}

/// Switches a light on. The direction is scaled to unit length.
inline void SwitchOn(CLightSet& set, std::size_t index, const std::array<double, 3>& colour,
                     const Vector3& direction = {0, 0, 1}) {
  CLight& light = set.m_aLights[index];
  light.m_bActive = true;
  light.m_afColour = colour;
  light.SetDirection(Normalised(direction));
}

/// A set with the ambient light alone.
inline CLightSet AmbientLight(double red, double green, double blue) {
  CLightSet set;
  SwitchOn(set, CLightSet::kAmbient, {red, green, blue});
  return set;
}

/// A grid with a surface, a picture on it and no light.
struct CPictureGrid : CTestGrid {
  CPictureGrid(int width, int height, int maxLevel = 4, int baseLevel = 2) : CTestGrid(maxLevel, baseLevel) {
    SetRandomSurface(m_Grid, 5);
    m_Grid.Relighting().SetPicture(RandomPicture(width, height));
    m_Grid.TestTexelsInDiscontinuity();
    m_Console.Take();
  }
};
