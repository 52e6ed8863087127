#pragma once

#include "base/Vector3.h"

struct CLight;

/// A direction by its angle from the z axis and, in the x-y plane, from the x axis, in degrees.
struct CLightAngles {
  double m_fTheta = 0.0;  ///< 0 to 180
  double m_fPhi = 0.0;    ///< 0 to 360
};

/// Unit vector of the angles; (0, 0, 1) for theta 0 whatever phi.
Vector3 DirectionOf(const CLightAngles& angles);
/// The angles of a direction of any length; phi is 0 for one along the z axis, both are 0 for one of length 0.
CLightAngles AnglesOf(const Vector3& direction);
/// Whether phi makes any difference: not where theta is exactly 0 or 180.
inline bool IsPhiFree(double theta) { return theta != 0 && theta != 180; }
