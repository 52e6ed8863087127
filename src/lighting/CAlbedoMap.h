#pragma once

#include <cstddef>
#include <span>
#include <vector>

#include "base/Vector3.h"

class CShading;
class CTextureImages;

/// The diffuse albedo (Kd) of the picture: what is left of the photograph when the shading of the surface is divided
/// out.
class CAlbedoMap {
 public:
  /// What one texel takes up here.
  static constexpr std::size_t kBytesPerTexel = 3 * sizeof(double);

  /// Asks for the memory for a picture of `width` x `height` texels, as `Compute` would. Throws std::bad_alloc.
  void Reserve(int width, int height);
  /// Gives back what was reserved and has not been computed.
  void ReleaseReserve();

  /// Computes the map, the Kd image and the new illumination from the photograph of `images` and the unit normals of
  /// its texels (row order, as many as the picture has texels). One pass; it allocates only where nothing was reserved.
  ///
  /// Per channel, I the photograph's byte: Kd = I / 255 / shading under the removed lights, 0 where that is not
  /// positive. Its byte is 255 Kd truncated, modulo 256: an albedo above 1 wraps around, so that it shows. The new
  /// illumination is 255 Kd times the shading under the added lights, truncated and held to 0..255; black with no
  /// added light active. What is not finite gives the byte 0. The margins of the images stay as they are.
  void Compute(std::span<const Vector3> normals, const CShading& removed, const CShading& added,
               CTextureImages& images);

  /// Whether `Compute` has been called.
  bool IsComputed() const { return !m_afKd.empty(); }
  /// Red, green, blue per texel, row order; empty until computed.
  std::span<const double> Kd() const { return m_afKd; }

 private:
  std::vector<double> m_afKd;
};
