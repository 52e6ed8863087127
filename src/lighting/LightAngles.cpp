#include "lighting/LightAngles.h"

#include <algorithm>
#include <cmath>

#include "lighting/CLight.h"

namespace {

// The panel, the camera and the grid file all count with these seven decimals.
constexpr double kPi = 3.1415926;
// The constant above leaves a direction of theta 180 a little off the axis. Within this many degrees it reads back as
// 180, which the panel tests for exactly.
constexpr double kStraightDown = 1e-5;

double Radians(double degrees) { return kPi * degrees / 180; }

double AngleOfCosine(double cosine) { return std::acos(std::clamp(cosine, -1.0, 1.0)) * 180 / kPi; }

}  // namespace

Vector3 DirectionOf(const CLightAngles& angles) {
  const double theta = Radians(angles.m_fTheta);
  const double phi = Radians(angles.m_fPhi);
  return {std::cos(phi) * std::sin(theta), std::sin(phi) * std::sin(theta), std::cos(theta)};
}

CLightAngles AnglesOf(const Vector3& direction) {
  const double length = Length(direction);
  if (length == 0) return {};
  const double theta = AngleOfCosine(direction.z / length);
  CLightAngles angles{theta > 180 - kStraightDown ? 180 : theta, 0};
  const double flat = direction.x * direction.x + direction.y * direction.y;
  if (flat == 0) return angles;
  const double phi = AngleOfCosine(direction.x / std::sqrt(flat));
  angles.m_fPhi = direction.y < 0 ? 360 - phi : phi;
  return angles;
}
