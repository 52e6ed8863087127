#include "model/CRelighting.h"

#include <algorithm>
#include <new>
#include <utility>

#include "base/Console.h"
#include "lighting/CShading.h"
#include "model/CSurface.h"

namespace {

// No padded side may be too large for an integer.
constexpr int kLargestSide = 1 << 30;

// Three textures, padded, and what is kept per texel. In floating point, where nothing overflows.
double BytesFor(double width, double height) {
  const auto padded = [](double side) {
    double power = 1;
    while (power < side) power *= 2;
    return power;
  };
  constexpr auto kPerTexel = static_cast<double>(CTexelMap::kBytesPerTexel + CAlbedoMap::kBytesPerTexel);
  return kPerTexel * width * height + 3 * 3 * padded(width) * padded(height);
}

bool IsWhole(const CPicture& picture) {
  if (picture.m_iWidth < 1 || picture.m_iHeight < 1) return false;
  return picture.m_aPixels.size() ==
         3 * static_cast<std::size_t>(picture.m_iWidth) * static_cast<std::size_t>(picture.m_iHeight);
}

}  // namespace

bool CRelighting::SetPicture(const CPicture& picture, double memory) {
  if (!IsWhole(picture)) return false;
  const auto refuse = [&picture] {
    Console() << "Error CGrid::SetPicture\t\tNot enough memory for a picture of " << picture.m_iWidth << " by "
              << picture.m_iHeight << " texels\n";
    return false;
  };
  if (std::max(picture.m_iWidth, picture.m_iHeight) > kLargestSide) return refuse();
  if (BytesFor(picture.m_iWidth, picture.m_iHeight) > memory) return refuse();
  try {
    CTexelMap texels(picture.m_iWidth, picture.m_iHeight, m_Surface.Interpolation());
    CAlbedoMap albedo(picture.m_iWidth, picture.m_iHeight);
    m_Textures.SetPicture(picture);
    m_Texels = std::move(texels);
    m_Albedo = std::move(albedo);
  } catch (const std::bad_alloc&) {
    return refuse();
  }
  return true;
}

bool CRelighting::HasTexels() const {
  return m_Textures.HasPicture() && m_Texels.Width() == m_Textures.PictureWidth() &&
         m_Texels.Height() == m_Textures.PictureHeight();
}

const CLight* CRelighting::GetLightSource(int index, int type) const {
  if (type != kRemovedLights && type != kAddedLights) {
    Console() << "Error CGrid::GetLightSource\t\t\t\tUnknown type\n";
    return nullptr;
  }
  const auto& lights = (type == kRemovedLights ? m_RemovedLights : m_AddedLights).m_aLights;
  return index >= 0 && static_cast<std::size_t>(index) < lights.size() ? &lights[static_cast<std::size_t>(index)]
                                                                       : nullptr;
}

void CRelighting::SetLight(int index, int type, const CLight& light) {
  if (GetLightSource(index, type) == nullptr) return;
  (type == kRemovedLights ? m_RemovedLights : m_AddedLights).m_aLights[static_cast<std::size_t>(index)] = light;
}

void CRelighting::InitializeCoordsTexels() {
  if (!HasTexels()) {
    Console() << "Error CGrid::InitializeCoordsTexels()\tNo texture loaded\n";
    return;
  }
  m_Texels.InitializeCoords(m_Surface.Interpolation());
}

void CRelighting::LocateTexels() {
  if (HasTexels()) m_Texels.UpdateRecords(m_Surface.Interpolation());
}

void CRelighting::TestTexelsInDiscontinuity() {
  if (!HasTexels()) return;
  m_Texels.TestDiscontinuities(m_Surface.Interpolation());
  Console() << "CGrid::TestTexelsInDiscontinuity()\t\t\t...done\n";
}

void CRelighting::RefreshMask() {
  if (HasTexels()) m_Texels.TestDiscontinuities(m_Surface.Interpolation());
}

void CRelighting::ComputeCoefsTexels() {
  if (!HasTexels()) {
    Console() << "Error CGrid::ComputeCoefsTexels()\tNo texture loaded\n";
    return;
  }
  Console() << "CGrid::ComputeCoefsTexels()\t\t\tComputeCoefsTexels...\n";
  m_Texels.ComputeCoefs(m_Surface.Interpolation());
  Console() << "CGrid::ComputeCoefsTexels()\t\t\t...ComputeCoefsTexels\t\tdone\n";
}

void CRelighting::ComputeNormalsOnly() {
  if (!HasTexels()) {
    Console() << "Error CGrid::ComputeNormalsOnly()\tNo texture loaded\n";
    return;
  }
  Console() << "CGrid::ComputeCoefsTexels()\t\t\tComputeNormalsOnly...\n";
  m_Texels.ComputeNormals(m_Surface.Interpolation());
  Console() << "CGrid::ComputeCoefsTexels()\t\t\t...ComputeNormalsOnly\t\tdone\n";
}

void CRelighting::GetKd() {
  Console() << "CGrid::GetKd\t\t\t\tGetKd...\n";
  if (!HasTexels()) {
    Console() << "Error CGrid::GetKd\t\tNo texture loaded\n";
    return;
  }
  const CShading removed(m_RemovedLights);
  const CShading added(m_AddedLights);
  if (!removed.IsAnyActive()) {
    Console() << "CGrid::GetKd\t\tNo lights to be removed\n";
    return;
  }
  if (!added.IsAnyActive()) {
    Console() << "CGrid::GetKd\t\tNo light to be added ; the system will only show the Kd map\n";
  }
  Console() << "CGrid::GetKd\t\twidth : " << m_Textures.PictureWidth() << "; height : " << m_Textures.PictureHeight()
            << "\nCGrid::GetKd\t\tnew_width : " << m_Textures.TextureWidth()
            << "; new_height : " << m_Textures.TextureHeight() << '\n';
  m_Texels.UpdateNormals(m_Surface.Interpolation());
  m_Albedo.Compute(m_Texels.Normals(), removed, added, m_Textures);
  Console() << "CGrid::GetKd\t\t\t\t...GetKd\tdone\n";
}
