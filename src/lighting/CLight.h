#pragma once

#include <array>
#include <cstddef>

/// One light of a set: where it shines from, its colour, and how it is shown in the model view.
struct CLight {
  bool m_bActive = false;
  bool m_bDrawn = false;
  std::array<double, 4> m_afDirection{0, 0, 1,
                                      0};     ///< x, y, z towards the light and 0: a homogeneous position at infinity
  std::array<double, 3> m_afColour{1, 1, 1};  ///< red, green, blue, 0 to 1
  std::array<double, 4> m_afTubeColour{1, 1, 0, 1};  ///< RGBA of the marker, 0 to 1
};

/// The lights of one set: four directional lights, then the ambient one.
struct CLightSet {
  static constexpr std::size_t kAmbient = 4;
  std::array<CLight, 5> m_aLights;
};
