#include "lighting/CAlbedoMap.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>

#include "base/Memory.h"
#include "lighting/AlbedoBytes.h"
#include "lighting/CShading.h"
#include "lighting/CTextureImages.h"

namespace {

// The low byte of the truncated value, which must not be negative. No integer type holds every double, so large ones
// take the remainder first.
std::uint8_t WrappedByte(double value) {
  constexpr double kIntegerLimit = 2147483648.0;
  if (value < kIntegerLimit) return static_cast<std::uint8_t>(static_cast<std::int32_t>(value));
  if (!std::isfinite(value)) return 0;
  return static_cast<std::uint8_t>(static_cast<std::int32_t>(std::fmod(value, 256.0)));
}

}  // namespace

void CAlbedoMap::Reserve(int width, int height) {
  m_afKd.reserve(3 * static_cast<std::size_t>(width) * static_cast<std::size_t>(height));
}

void CAlbedoMap::ReleaseReserve() {
  if (!IsComputed()) Release(m_afKd);
}

void CAlbedoMap::Compute(std::span<const Vector3> normals, const CShading& removed, const CShading& added,
                         CTextureImages& images) {
  const std::array<double, 256> intensities = PhotographIntensities();
  const auto width = static_cast<std::size_t>(images.PictureWidth());
  const auto height = static_cast<std::size_t>(images.PictureHeight());
  const std::size_t imageRow = 3 * static_cast<std::size_t>(images.TextureWidth());
  // Copies that no byte written to an image can alias, so that the lights stay in registers.
  const CShading before = removed;
  const CShading after = added;
  m_afKd.resize(3 * width * height);
  const Vector3* normal = normals.data();
  double* kd = m_afKd.data();
  for (std::size_t row = 0; row < height; ++row) {
    const std::uint8_t* photograph = images.Image(CTextureImages::kPhotograph).data() + row * imageRow;
    std::uint8_t* kdByte = images.Image(CTextureImages::kKd).data() + row * imageRow;
    std::uint8_t* newByte = images.Image(CTextureImages::kIllumination).data() + row * imageRow;
    for (std::size_t column = 0; column < width; ++column) {
      const Vector3 s = before.Of(*normal);
      const Vector3 t = after.Of(*normal);
      ++normal;
      const std::array<double, 3> albedo{AlbedoOf(intensities[photograph[0]], s.x),
                                         AlbedoOf(intensities[photograph[1]], s.y),
                                         AlbedoOf(intensities[photograph[2]], s.z)};
      std::copy_n(albedo.data(), 3, kd);
      kdByte[0] = WrappedByte(albedo[0] * 255);
      kdByte[1] = WrappedByte(albedo[1] * 255);
      kdByte[2] = WrappedByte(albedo[2] * 255);
      newByte[0] = ClampedByte(albedo[0] * t.x * 255);
      newByte[1] = ClampedByte(albedo[1] * t.y * 255);
      newByte[2] = ClampedByte(albedo[2] * t.z * 255);
      photograph += 3;
      kd += 3;
      kdByte += 3;
      newByte += 3;
    }
  }
  images.MarkChanged(CTextureImages::kKd);
  images.MarkChanged(CTextureImages::kIllumination);
}
