#include "model/CRelighting.h"

#include <algorithm>
#include <new>

#include "base/Console.h"
#include "lighting/CShading.h"
#include "model/CSurface.h"

namespace {

// No padded side may be too large for an integer.
constexpr int kLargestSide = 1 << 30;

// Three textures, padded. In floating point, where nothing overflows.
double BytesFor(double width, double height) {
  const auto padded = [](double side) {
    double power = 1;
    while (power < side) power *= 2;
    return power;
  };
  return 3 * 3 * padded(width) * padded(height);
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
    m_Textures.SetPicture(picture);
  } catch (const std::bad_alloc&) {
    return refuse();
  }
  m_Texels = CTexelMap(picture.m_iWidth, picture.m_iHeight, m_Surface.Interpolation());
  m_Albedo = CAlbedoMap();
  m_KdPass.Drop();
  m_KdPreview.Clear();
  return true;
}

// Both or none.
bool CRelighting::Reserve(bool albedo) {
  const int width = m_Texels.Width();
  const int height = m_Texels.Height();
  double missing = m_Texels.Missing();
  if (albedo) missing += m_Albedo.Missing(width, height);
  if (missing == 0) return true;
  try {
    if (missing > m_Memory()) return false;
    if (albedo) m_Albedo.Reserve(width, height);
    m_Texels.Reserve();
    return true;
  } catch (const std::bad_alloc&) {
    m_Albedo.ReleaseReserve();
    return false;
  }
}

template <typename Pass>
bool CRelighting::WithMemory(bool albedo, const char* name, Pass&& pass) {
  if (Reserve(albedo)) {
    try {
      pass();
      return true;
    } catch (const std::bad_alloc&) {
      // Of the mask; nothing has been changed.
      m_Albedo.ReleaseReserve();
    }
  }
  if (name != nullptr) {
    Console() << "Error CGrid::" << name << "()\t\tNot enough memory for " << m_Texels.Width() << " by "
              << m_Texels.Height() << " texels\n";
  }
  return false;
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

bool CRelighting::InitializeCoordsTexels() {
  if (!HasTexels()) {
    Console() << "Error CGrid::InitializeCoordsTexels()\tNo texture loaded\n";
    return true;
  }
  return WithMemory(false, "InitializeCoordsTexels", [&] { m_Texels.InitializeCoords(m_Surface.Interpolation()); });
}

bool CRelighting::LocateTexels() {
  if (!HasTexels()) return true;
  return WithMemory(false, nullptr, [&] { m_Texels.UpdateRecords(m_Surface.Interpolation()); });
}

void CRelighting::TestTexelsInDiscontinuity() {
  if (!HasTexels()) return;
  UpdateMask();
  Console() << "CGrid::TestTexelsInDiscontinuity()\t\t\t...done\n";
}

void CRelighting::RefreshMask() {
  if (HasTexels()) UpdateMask();
}

// Without memory for the mask none of it is shown; the passes that read it ask for it again.
void CRelighting::UpdateMask() {
  try {
    m_Texels.TestDiscontinuities(m_Surface.Interpolation());
  } catch (const std::bad_alloc&) {
    Console() << "Error CGrid::TestTexelsInDiscontinuity()\tNot enough memory for " << m_Texels.Width() << " by "
              << m_Texels.Height() << " texels\n";
  }
}

bool CRelighting::ComputeCoefsTexels() {
  if (!HasTexels()) {
    Console() << "Error CGrid::ComputeCoefsTexels()\tNo texture loaded\n";
    return true;
  }
  return WithMemory(false, "ComputeCoefsTexels", [&] {
    Console() << "CGrid::ComputeCoefsTexels()\t\t\tComputeCoefsTexels...\n";
    m_Texels.ComputeCoefs(m_Surface.Interpolation());
    Console() << "CGrid::ComputeCoefsTexels()\t\t\t...ComputeCoefsTexels\t\tdone\n";
  });
}

bool CRelighting::ComputeNormalsOnly() {
  if (!HasTexels()) {
    Console() << "Error CGrid::ComputeNormalsOnly()\tNo texture loaded\n";
    return true;
  }
  return WithMemory(false, "ComputeNormalsOnly", [&] {
    Console() << "CGrid::ComputeCoefsTexels()\t\t\tComputeNormalsOnly...\n";
    m_Texels.ComputeNormals(m_Surface.Interpolation());
    Console() << "CGrid::ComputeCoefsTexels()\t\t\t...ComputeNormalsOnly\t\tdone\n";
  });
}

bool CRelighting::GetKd() {
  Console() << "CGrid::GetKd\t\t\t\tGetKd...\n";
  if (!HasTexels()) {
    Console() << "Error CGrid::GetKd\t\tNo texture loaded\n";
    return true;
  }
  const CShading removed(m_RemovedLights);
  const CShading added(m_AddedLights);
  if (!removed.IsAnyActive()) {
    Console() << "CGrid::GetKd\t\tNo lights to be removed\n";
    return true;
  }
  LogKd(added);
  return WithMemory(true, "GetKd", [&] {
    m_KdPass.Drop();
    m_Texels.UpdateNormals(m_Surface.Interpolation());
    m_Albedo.Compute(m_Texels.Normals(), {removed, added, m_Tone}, m_Textures);
    Console() << "CGrid::GetKd\t\t\t\t...GetKd\tdone\n";
  });
}

void CRelighting::LogKd(const CShading& added) const {
  if (!added.IsAnyActive()) {
    Console() << "CGrid::GetKd\t\tNo light to be added ; the system will only show the Kd map\n";
  }
  Console() << "CGrid::GetKd\t\twidth : " << m_Textures.PictureWidth() << "; height : " << m_Textures.PictureHeight()
            << "\nCGrid::GetKd\t\tnew_width : " << m_Textures.TextureWidth()
            << "; new_height : " << m_Textures.TextureHeight() << '\n';
}

bool CRelighting::PreviewKd() {
  if (!HasTexels() || !CKdPreview::IsWorthWhile(m_Textures)) return false;
  const CShading removed(m_RemovedLights);
  if (!removed.IsAnyActive()) return false;
  try {
    m_KdPreview.Show(m_Texels, m_Surface.Interpolation(), {removed, CShading(m_AddedLights), m_Tone}, m_Textures);
    return true;
  } catch (const std::bad_alloc&) {
    m_KdPreview.Clear();
    return false;
  }
}

CRelighting::KdProgress CRelighting::ContinueKd(const std::function<bool()>& goes) {
  const bool lit = CShading(m_RemovedLights).IsAnyActive();
  if (!HasTexels() || (!lit && !m_KdPass.IsUnderWay())) return KdProgress::None;
  // Without a light to remove the images stay; what has been begun is finished first.
  const CKdPass::CLights lights = lit ? CKdPass::CLights{m_RemovedLights, m_AddedLights, m_Tone} : m_KdPass.Lights();
  const CInterpolation surface = m_Surface.Interpolation();
  bool done = false;
  const auto pieces = [&] { done = m_KdPass.Advance(lights, {surface, m_Texels, m_Albedo, m_Textures}, goes); };
  if (!WithMemory(true, "GetKd", pieces)) return KdProgress::NoMemory;
  if (!done) return KdProgress::Going;
  Console() << "CGrid::GetKd\t\t\t\tGetKd...\n";
  LogKd(CShading(lights.m_Added));
  Console() << "CGrid::GetKd\t\t\t\t...GetKd\tdone\n";
  return KdProgress::Done;
}
