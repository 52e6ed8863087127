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

// Where the texels of a row lie in the arrays.
struct CRow {
  const Vector3* m_pNormal;
  const std::uint8_t* m_puPhotograph;
  double* m_pfKd;
  std::uint8_t* m_puKd;
  std::uint8_t* m_puNew;
};

template <Tone kTone>
double NewIllumination(double value) {
  return kTone == Tone::Soft ? Shouldered(value) : value;
}

template <Tone kTone>
void LightRow(CRow row, std::size_t width, const std::array<double, 256>& intensities, const CShading& before,
              const CShading& after) {
  for (std::size_t column = 0; column < width; ++column) {
    const Vector3 s = before.Of(*row.m_pNormal);
    const Vector3 t = after.Of(*row.m_pNormal);
    ++row.m_pNormal;
    const std::array<double, 3> albedo{AlbedoOf(intensities[row.m_puPhotograph[0]], s.x),
                                       AlbedoOf(intensities[row.m_puPhotograph[1]], s.y),
                                       AlbedoOf(intensities[row.m_puPhotograph[2]], s.z)};
    std::copy_n(albedo.data(), 3, row.m_pfKd);
    row.m_puKd[0] = WrappedByte(albedo[0] * 255);
    row.m_puKd[1] = WrappedByte(albedo[1] * 255);
    row.m_puKd[2] = WrappedByte(albedo[2] * 255);
    row.m_puNew[0] = ClampedByte(NewIllumination<kTone>(albedo[0] * t.x) * 255);
    row.m_puNew[1] = ClampedByte(NewIllumination<kTone>(albedo[1] * t.y) * 255);
    row.m_puNew[2] = ClampedByte(NewIllumination<kTone>(albedo[2] * t.z) * 255);
    row.m_puPhotograph += 3;
    row.m_pfKd += 3;
    row.m_puKd += 3;
    row.m_puNew += 3;
  }
}

}  // namespace

void CAlbedoMap::Reserve(int width, int height) {
  m_afKd.reserve(3 * static_cast<std::size_t>(width) * static_cast<std::size_t>(height));
}

void CAlbedoMap::ReleaseReserve() {
  if (!IsComputed()) Release(m_afKd);
}

void CAlbedoMap::Compute(std::span<const Vector3> normals, const CRelightingLights& lights, CTextureImages& images) {
  ComputeRows(normals, lights, images, 0, images.PictureHeight());
  images.MarkChanged(CTextureImages::kKd);
  images.MarkChanged(CTextureImages::kIllumination);
}

void CAlbedoMap::ComputeRows(std::span<const Vector3> normals, const CRelightingLights& lights, CTextureImages& images,
                             int first, int count) {
  const std::array<double, 256> intensities = PhotographIntensities();
  const auto width = static_cast<std::size_t>(images.PictureWidth());
  const std::size_t end = static_cast<std::size_t>(first) + static_cast<std::size_t>(count);
  const std::size_t imageRow = 3 * static_cast<std::size_t>(images.TextureWidth());
  // Copies that no byte written to an image can alias, so that the lights stay in registers.
  const CShading before = lights.m_Removed;
  const CShading after = lights.m_Added;
  if (m_afKd.size() < 3 * width * end) m_afKd.resize(3 * width * end);
  const auto light = lights.m_Tone == Tone::Soft ? LightRow<Tone::Soft> : LightRow<Tone::Clipped>;
  for (auto row = static_cast<std::size_t>(first); row < end; ++row) {
    light({normals.data() + row * width, images.Image(CTextureImages::kPhotograph).data() + row * imageRow,
           m_afKd.data() + 3 * width * row, images.Image(CTextureImages::kKd).data() + row * imageRow,
           images.Image(CTextureImages::kIllumination).data() + row * imageRow},
          width, intensities, before, after);
  }
  m_bComputed = m_bComputed || first + count == images.PictureHeight();
}
