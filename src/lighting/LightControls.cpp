#include "lighting/LightControls.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

#include "lighting/CLight.h"

CLightControls ControlsOf(const CLight& light) {
  CLightControls controls{light.m_bActive, light.m_bDrawn, AnglesOf(light.Direction()), light.m_afColour, {}};
  for (std::size_t c = 0; c < 3; ++c) {
    const double byte = std::clamp(light.m_afTubeColour[c] * 255, 0.0, 255.0);
    controls.m_aiTubeColour[c] = static_cast<int>(std::lround(byte));
  }
  return controls;
}

void Apply(const CLightControls& controls, CLight& light) {
  light.m_bActive = controls.m_bActive;
  light.m_bDrawn = controls.m_bDrawn;
  light.SetDirection(DirectionOf(controls.m_Angles));
  light.m_afColour = controls.m_afColour;
  for (std::size_t c = 0; c < 3; ++c) light.m_afTubeColour[c] = controls.m_aiTubeColour[c] / 255.0;
}

int ColourCubeEntry(const std::array<int, 3>& rgb) {
  const auto& [red, green, blue] = rgb;
  return 56 + ((blue * 5 / 256) * 5 + red * 5 / 256) * 8 + green / 32;
}

CColourRatios::CColourRatios(const std::array<double, 3>& rgb) {
  for (std::size_t to = 0; to < 3; ++to) {
    if (rgb[to] == 0) continue;
    for (std::size_t k = 0; k < 3; ++k) m_aafRatios[k][to] = rgb[k] / rgb[to];
  }
}

std::optional<std::array<double, 3>> CColourRatios::Follow(std::size_t moved, double value) const {
  std::array<double, 3> colour{};
  for (std::size_t k = 0; k < 3; ++k) {
    const double ratio = Ratio(k, moved);
    if (ratio == kUnknown) return std::nullopt;
    colour[k] = k == moved ? value : std::min(1.0, value * ratio);
  }
  return colour;
}
