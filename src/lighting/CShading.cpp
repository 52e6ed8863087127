#include "lighting/CShading.h"

#include "lighting/CLight.h"

CShading::CShading(const CLightSet& lights) {
  for (std::size_t k = 0; k < lights.m_aLights.size(); ++k) {
    const CLight& light = lights.m_aLights[k];
    if (!light.m_bActive) continue;
    m_bAnyActive = true;
    const Vector3 colour{light.m_afColour[0], light.m_afColour[1], light.m_afColour[2]};
    if (k == CLightSet::kAmbient) {
      m_Ambient = colour;
    } else {
      m_aDirectional[m_uDirectional++] = {light.Direction(), colour};
    }
  }
}

std::array<Vector3, 3> CShading::ColourTimesDirection(const Vector3& normal) const {
  std::array<Vector3, 3> sum;
  for (std::size_t k = 0; k < m_uDirectional; ++k) {
    const auto& [direction, colour] = m_aDirectional[k];
    if (Dot(direction, normal) <= 0) continue;
    sum[0] += colour.x * direction;
    sum[1] += colour.y * direction;
    sum[2] += colour.z * direction;
  }
  return sum;
}
