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

/// A step of a mouse drag that turns the eye of the model view about its centre.
struct CViewTurn {
  Vector3 m_EyeOffset;            ///< from the centre to the eye
  Vector3 m_Up;                   ///< the view's up vector, as long as the offset and perpendicular to it
  double m_fDx = 0.0;             ///< motion of the mouse in pixels, to the right
  double m_fDy = 0.0;             ///< and upwards
  double m_fStepDivisor = 200.0;  ///< pixels per radian
};

/// Turns a light's direction by the rotation that takes the eye's offset onto offset - (dx side + dy up) / divisor with
/// side = offset x up / |up|. The length stays. A turn without an offset or an up vector does nothing.
void TurnLight(CLight& light, const CViewTurn& turn);
