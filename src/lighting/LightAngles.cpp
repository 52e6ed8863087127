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

void TurnLight(CLight& light, const CViewTurn& turn) {
  const Vector3 side = (1.0 / Length(turn.m_Up)) * Cross(turn.m_EyeOffset, turn.m_Up);
  const Vector3 step = (1.0 / turn.m_fStepDivisor) * (turn.m_fDx * side + turn.m_fDy * turn.m_Up);
  const Vector3 from = Normalised(turn.m_EyeOffset);
  const Vector3 to = Normalised(turn.m_EyeOffset - step);
  if (!IsFinite(from) || !IsFinite(to)) return;
  // Rodrigues' formula with the axis scaled by the sine. The two are less than a right angle apart, since the step is
  // perpendicular to the offset.
  const Vector3 axis = Cross(from, to);
  const double cosine = Dot(from, to);
  const Vector3 d = light.Direction();
  light.SetDirection(cosine * d + Cross(axis, d) + (Dot(axis, d) / (1 + cosine)) * axis);
}
