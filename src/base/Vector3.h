#pragma once

#include <cmath>

/// A point or direction in model space: x and y in model units across the picture, z the height.
struct Vector3 {
  double x = 0.0;
  double y = 0.0;
  double z = 0.0;

  /// Component by component.
  Vector3& operator+=(const Vector3& other) {
    x += other.x;
    y += other.y;
    z += other.z;
    return *this;
  }
  bool operator==(const Vector3&) const = default;
};

/// Sum, difference, multiple, scalar and vector product (right-handed) and Euclidean length.
inline Vector3 operator+(Vector3 a, const Vector3& b) { return a += b; }
inline Vector3 operator-(const Vector3& a, const Vector3& b) { return {a.x - b.x, a.y - b.y, a.z - b.z}; }
inline Vector3 operator*(double s, const Vector3& v) { return {s * v.x, s * v.y, s * v.z}; }
inline double Dot(const Vector3& a, const Vector3& b) { return a.x * b.x + a.y * b.y + a.z * b.z; }
inline Vector3 Cross(const Vector3& a, const Vector3& b) {
  return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}
inline double Length(const Vector3& v) { return std::sqrt(v.x * v.x + v.y * v.y + v.z * v.z); }
/// `v` divided by its length, without a guard: a vector of length 0 gives not-a-number components.
inline Vector3 Normalised(const Vector3& v) { return (1.0 / Length(v)) * v; }
/// Whether the vector may be drawn or converted: false if any component is infinite or not a number.
inline bool IsFinite(const Vector3& v) { return std::isfinite(v.x) && std::isfinite(v.y) && std::isfinite(v.z); }
