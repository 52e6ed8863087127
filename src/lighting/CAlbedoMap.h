#pragma once

#include <cstddef>
#include <span>
#include <vector>

#include "base/Vector3.h"
#include "lighting/CLight.h"

class CShading;
class CTextureImages;

/// The lights with which a picture is relit. All that is named must outlive the computing.
struct CRelightingLights {
  const CShading& m_Removed;
  const CShading& m_Added;
  Tone m_Tone = Tone::Clipped;
};

/// The diffuse albedo (Kd) of the picture: what is left of the photograph when the shading of the surface is divided
/// out.
class CAlbedoMap {
 public:
  /// What one texel takes up here.
  static constexpr std::size_t kBytesPerTexel = 3 * sizeof(double);

  /// Asks for the memory for a picture of `width` x `height` texels, as `Compute` would. Throws std::bad_alloc.
  void Reserve(int width, int height);
  /// Bytes that `Reserve` would ask for.
  double Missing(int width, int height) const {
    return m_afKd.capacity() == 0 ? static_cast<double>(kBytesPerTexel) * width * height : 0;
  }
  /// Gives back what was reserved and has not been computed.
  void ReleaseReserve();

  /// Computes the map, the Kd image and the new illumination from the photograph of `images` and the unit normals of
  /// its texels (row order, as many as the picture has texels). One pass; it allocates only where nothing was reserved.
  ///
  /// Per channel, I the photograph's byte: Kd = I / 255 / shading under the removed lights, 0 where that is not
  /// positive. Its byte is 255 Kd truncated, modulo 256: an albedo above 1 wraps around, so that it shows. The new
  /// illumination is 255 Kd times the shading under the added lights, under the shoulder if the tone is soft,
  /// truncated and held to 0..255; black with no added light active. What is not finite gives the byte 0. The margins
  /// of the images stay as they are.
  void Compute(std::span<const Vector3> normals, const CRelightingLights& lights, CTextureImages& images);
  /// The same for `count` rows from `first` on, without marking the images as changed. The map is computed as soon as
  /// every row has been, row 0 first.
  void ComputeRows(std::span<const Vector3> normals, const CRelightingLights& lights, CTextureImages& images, int first,
                   int count);

  /// Whether all of it has been computed.
  bool IsComputed() const { return m_bComputed; }
  /// Red, green, blue per texel, row order; as long as it is not computed, of the first rows only.
  std::span<const double> Kd() const { return m_afKd; }

 private:
  std::vector<double> m_afKd;
  bool m_bComputed = false;
};
