#pragma once

#include <span>

#include "base/Vector3.h"
#include "quadtree/SightLine.h"

/// Half of what a view shows to either side of its middle, model units.
struct CHalfSizes {
  double m_fWidth = 0.0;
  double m_fHeight = 0.0;
};

/// The camera of the model view: it looks at the centre of the model from a sphere about it, without perspective.
///
/// Angles in degrees: Theta from the vertical (y) axis, Phi around that axis from +z on, Zeta the roll about the line
/// of sight. Drags are in pixels, to the right and up. The view shows 2 R model units in each direction, or, in true
/// proportions, along its shorter side.
struct CCamera {
  Vector3 m_Centre;
  Vector3 m_Eye;
  Vector3 m_Up;  ///< as long as R
  double m_fR = 0.0;
  double m_fR0 = 0.0;  ///< R after the last reset
  double m_fTheta = 90.0;
  double m_fPhi = 0.0;
  double m_fZeta = 0.0;
  double m_fRotationDivisor = 200.0;  ///< pixels per radian of rotation
  double m_fRollDivisor = 3.0;        ///< pixels per degree of roll
  double m_fZoomDivisor = 1000.0;     ///< pixels by which R doubles

  /// Looks at the box between two corners from +z with y up, just far enough to see all of it from anywhere.
  void Reset(const Vector3& low, const Vector3& high);
  /// Moves centre and eye sideways and sets R so that the points, x, y and z each, just fill a view of that proportion
  /// whose shorter side shows 2 R. The angles stay; without points nothing happens.
  void Fit(std::span<const float> positions, double width, double height);
  /// Eye and up vector from the centre, R and the angles.
  void UpdateEye();
  /// The angles from the eye and the up vector, after those were moved directly; the inverse of `UpdateEye`. Logs the
  /// angles. A camera with R 0 keeps them.
  void UpdateAngles();

  /// A drag turns the eye on its sphere. With R 0 nothing happens.
  void Rotate(double dx, double dy);
  /// A drag to the right or up moves away. No lower bound: R may become 0 or negative.
  void Zoom(double dx, double dy);
  void Roll(double dx, double dy);
  /// Moves centre and eye along the view's sides, model units to the right and up.
  void Pan(double across, double upwards);
  /// Multiplies R, held to 1e-3 .. 1e3 of its value after the last reset, while a point stays where it is on the
  /// screen. The centre comes to the depth of the point, so that turning keeps it in view.
  void ZoomAbout(double factor, const Vector3& point);

  /// What a view of that many pixels shows.
  CHalfSizes HalfSizes(int width, int height, bool proportional) const;
  /// What lies under the centre of pixel (x, y), counted from the top left, of a view that shows `sizes`.
  CSightLine SightLine(double x, double y, int width, int height, const CHalfSizes& sizes) const;

  /// `direction` turned by the rotation that the drag would give the eye, its length kept.
  Vector3 RotateDirection(const Vector3& direction, double dx, double dy) const;
  /// Height, in model units, that a vertical drag stands for in a view `viewHeight` pixels high of a model `side` units
  /// wide: what the drag covers on the screen, for a flat square model seen from the side.
  double HeightOfDrag(double dy, int viewHeight, double side) const;

 private:
  /// To the right on the screen; a unit vector. Upwards is that of `m_Up`.
  Vector3 Side() const;
  /// From the centre to the eye after a drag.
  Vector3 DraggedOffset(double dx, double dy) const;
  /// The offset from the centre to the eye, in units of R, gives Theta and Phi.
  void SetThetaAndPhi(const Vector3& direction);
};
