#include "drawing/CCamera.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>

#include "base/Console.h"

namespace {

// Cut off on purpose: saved cameras and lights were made with it.
constexpr double kPi = 3.1415926;

// A ratio that decides between an angle and 360 minus it and is negative only by rounding, which here includes what the
// short constant leaves of a whole turn. Without this 0 degrees might come back as 360.
constexpr double kOnTheSeam = -1e-6;

// How far R goes when it is zoomed by factors, in units of its value after the last reset.
constexpr double kMinScale = 1e-3;
constexpr double kMaxScale = 1e3;

double Radians(double degrees) { return kPi * degrees / 180; }
double Degrees(double radians) { return radians * 180 / kPi; }

// Rounding may leave a cosine just outside -1..1.
double DegreesOfCosine(double cosine) { return Degrees(std::acos(std::clamp(cosine, -1.0, 1.0))); }

// The angle in 0..360 with this cosine whose sine has the sign of `sine`.
double FullAngle(double cosine, double sine) {
  const double angle = DegreesOfCosine(cosine);
  return sine >= kOnTheSeam ? angle : 360 - angle;
}

// The shortest interval that holds what was added.
class CInterval {
 public:
  void Add(double place) {
    m_fLow = std::min(m_fLow, place);
    m_fHigh = std::max(m_fHigh, place);
  }
  double Middle() const { return 0.5 * (m_fLow + m_fHigh); }
  double HalfLength() const { return 0.5 * (m_fHigh - m_fLow); }

 private:
  double m_fLow = std::numeric_limits<double>::infinity();
  double m_fHigh = -std::numeric_limits<double>::infinity();
};

}  // namespace

void CCamera::Reset(const Vector3& low, const Vector3& high) {
  *this = CCamera{};
  m_Centre = 0.5 * (low + high);
  m_fR = m_fR0 = 0.5 * Length(high - low);
  UpdateEye();
}

void CCamera::Fit(std::span<const float> positions, double width, double height) {
  if (positions.empty() || m_fR == 0) return;
  const Vector3 up = Normalised(m_Up);
  const Vector3 side = Side();
  CInterval across;
  CInterval upwards;
  for (std::size_t k = 0; k + 2 < positions.size(); k += 3) {
    const Vector3 point = Vector3{positions[k], positions[k + 1], positions[k + 2]} - m_Centre;
    across.Add(Dot(point, side));
    upwards.Add(Dot(point, up));
  }
  const double shorter = std::min(width, height);
  const double r = std::max(across.HalfLength() * shorter / width, upwards.HalfLength() * shorter / height);
  m_Centre += across.Middle() * side + upwards.Middle() * up;
  // A surface seen as a point shows nothing at any size.
  if (r > 0) m_fR = r;
  UpdateEye();
}

void CCamera::UpdateEye() {
  const double sa = std::sin(Radians(m_fTheta));
  const double ca = std::cos(Radians(m_fTheta));
  const double sb = std::sin(Radians(m_fPhi));
  const double cb = std::cos(Radians(m_fPhi));
  const double sc = std::sin(Radians(m_fZeta));
  const double cc = std::cos(Radians(m_fZeta));
  m_Eye = m_Centre + m_fR * Vector3{sb * sa, ca, cb * sa};
  m_Up = m_fR * Vector3{-sb * ca * cc + cb * sc, sa * cc, -cb * ca * cc - sb * sc};
}

void CCamera::SetThetaAndPhi(const Vector3& direction) {
  m_fTheta = DegreesOfCosine(direction.y);
  // Seen along the vertical axis, every Phi is the same.
  const double s = std::hypot(direction.x, direction.z);
  m_fPhi = m_fTheta != 0 && m_fTheta != 180 && s != 0 ? FullAngle(direction.z / s, direction.x / s) : 0;
}

void CCamera::UpdateAngles() {
  if (m_fR != 0) {
    SetThetaAndPhi((1 / m_fR) * (m_Eye - m_Centre));
    Console() << "CGridView::UpdateAngles() : Theta = " << m_fTheta << '\n';
    const double cb = std::cos(Radians(m_fPhi));
    const double sb = std::sin(Radians(m_fPhi));
    const double s = m_fR * std::sin(Radians(m_fTheta));
    // Of the two components that hold the sine of the roll neither can be used alone for all Phi.
    const double sine = (m_Up.x * cb - m_Up.z * sb) / m_fR;
    m_fZeta = s != 0 ? FullAngle(m_Up.y / s, sine) : 0;
  }
  Console() << "CGridView::UpdateAngles() : Theta = " << m_fTheta << '\n';
  Console() << "CGridView::UpdateAngles() : Phi = " << m_fPhi << '\n';
  Console() << "CGridView::UpdateAngles() : Zeta = " << m_fZeta << '\n';
}

Vector3 CCamera::DraggedOffset(double dx, double dy) const {
  const Vector3 offset = m_Eye - m_Centre;
  const Vector3 side = (1 / Length(m_Up)) * Cross(offset, m_Up);
  const Vector3 moved = offset - (1 / m_fRotationDivisor) * (dx * side + dy * m_Up);
  return std::abs(m_fR) * Normalised(moved);
}

void CCamera::Rotate(double dx, double dy) {
  if (m_fR == 0) return;
  SetThetaAndPhi((1 / m_fR) * DraggedOffset(dx, dy));
  UpdateEye();
}

void CCamera::Zoom(double dx, double dy) {
  m_fR += (dx + dy) * m_fR / m_fZoomDivisor;
  UpdateEye();
}

void CCamera::Roll(double dx, double dy) {
  m_fZeta += (dx + dy) / m_fRollDivisor;
  UpdateEye();
}

Vector3 CCamera::Side() const { return Cross(Normalised(m_Up), Normalised(m_Eye - m_Centre)); }

void CCamera::Pan(double across, double upwards) {
  if (m_fR == 0) return;
  m_Centre += across * Side() + upwards * Normalised(m_Up);
  UpdateEye();
}

void CCamera::ZoomAbout(double factor, const Vector3& point) {
  if (m_fR == 0) return;
  const double r = std::copysign(std::clamp(std::abs(m_fR) * factor, kMinScale * m_fR0, kMaxScale * m_fR0), m_fR);
  const Vector3 up = Normalised(m_Up);
  const Vector3 side = Side();
  const Vector3 offset = m_Centre - point;
  m_Centre = point + r / m_fR * (Dot(offset, side) * side + Dot(offset, up) * up);
  m_fR = r;
  UpdateEye();
}

CHalfSizes CCamera::HalfSizes(int width, int height, bool proportional) const {
  if (!proportional) return {m_fR, m_fR};
  const double shorter = std::min(width, height);
  return {m_fR * width / shorter, m_fR * height / shorter};
}

CSightLine CCamera::SightLine(double x, double y, int width, int height, const CHalfSizes& sizes) const {
  const Vector3 across = (2 * (x + 0.5) / width - 1) * sizes.m_fWidth * Side();
  const Vector3 upwards = (1 - 2 * (y + 0.5) / height) * sizes.m_fHeight * Normalised(m_Up);
  return {m_Centre + across + upwards, Normalised(m_Centre - m_Eye)};
}

Vector3 CCamera::RotateDirection(const Vector3& direction, double dx, double dy) const {
  if (m_fR == 0) return direction;
  const Vector3 from = Normalised(m_Eye - m_Centre);
  const Vector3 to = Normalised(DraggedOffset(dx, dy));
  // The rotation that takes `from` to `to`; its axis is their cross product, whose length is the sine of the angle.
  const Vector3 axis = Cross(from, to);
  const double cosine = Dot(from, to);
  return cosine * direction + Cross(axis, direction) + (Dot(axis, direction) / (1 + cosine)) * axis;
}

double CCamera::HeightOfDrag(double dy, int viewHeight, double side) const {
  if (viewHeight == 0 || m_fR0 == 0) return 0;
  return dy / viewHeight * side * (side * m_fR / (m_fR0 * m_fR0));
}
