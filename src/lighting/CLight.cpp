#include "lighting/CLight.h"

#include <istream>
#include <ostream>

namespace {

constexpr double kStartAmbient = 0.2;

CLightSet StartSet(const std::array<double, 4>& tubeColour) {
  CLightSet set;
  for (CLight& light : set.m_aLights) light.m_afTubeColour = tubeColour;
  set.m_aLights[CLightSet::kAmbient].m_afColour.fill(kStartAmbient);
  return set;
}

template <std::size_t kCount>
void WriteLine(std::ostream& out, const std::array<double, kCount>& values) {
  for (const double value : values) out << value << ' ';
  out << '\n';
}

template <std::size_t kCount>
void ReadAll(std::istream& in, std::array<double, kCount>& values) {
  for (double& value : values) in >> value;
}

}  // namespace

CLightSet CLightSet::Removed() { return StartSet({1, 0, 0, 1}); }

CLightSet CLightSet::Added() { return StartSet({1, 1, 0, 1}); }

std::ostream& operator<<(std::ostream& out, const CLight& light) {
  out << static_cast<int>(light.m_bActive) << ' ' << static_cast<int>(light.m_bDrawn) << '\n';
  WriteLine(out, light.m_afDirection);
  WriteLine(out, light.m_afColour);
  WriteLine(out, light.m_afTubeColour);
  return out;
}

std::ostream& operator<<(std::ostream& out, const CLightSet& lights) {
  for (const CLight& light : lights.m_aLights) out << light << '\n';
  return out;
}

std::istream& operator>>(std::istream& in, CLight& light) {
  int active = 0;
  int drawn = 0;
  CLight read;
  in >> active >> drawn;
  ReadAll(in, read.m_afDirection);
  ReadAll(in, read.m_afColour);
  ReadAll(in, read.m_afTubeColour);
  if (!in) return in;
  read.m_bActive = active != 0;
  read.m_bDrawn = drawn != 0;
  light = read;
  return in;
}

std::istream& operator>>(std::istream& in, CLightSet& lights) {
  CLightSet read;
  for (CLight& light : read.m_aLights) in >> light;
  if (in) lights = read;
  return in;
}
