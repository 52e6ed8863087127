#include "lighting/LitPicture.h"

#include <array>
#include <cstddef>
#include <cstdint>

#include "lattice/CLattice.h"
#include "lighting/AlbedoBytes.h"
#include "lighting/CShading.h"
#include "quadtree/CInterpCoefs.h"

namespace {

/// One pass over the texels.
class CLitTexels {
 public:
  CLitTexels(const CPicture& photograph, const CLightSet& removed, const CLightSet& added,
             const CInterpolation& surface)
      : m_Photograph(photograph),
        m_Removed(removed),
        m_Added(added),
        m_Surface(surface),
        m_afIntensities(PhotographIntensities()) {}

  /// Puts the bytes of a row where `to` points; `relit` for those in the added lights.
  void WriteRow(int row, bool relit, std::uint8_t* to) {
    const std::size_t first = 3 * static_cast<std::size_t>(row) * static_cast<std::size_t>(m_Photograph.m_iWidth);
    const std::uint8_t* from = &m_Photograph.m_aPixels[first];
    for (int column = 0; column < m_Photograph.m_iWidth; ++column, from += 3, to += 3) {
      const Vector3 normal = NormalAt(column, row);
      const Vector3 before = m_Removed.Of(normal);
      const Vector3 after = relit ? m_Added.Of(normal) : Vector3{1, 1, 1};
      to[0] = ClampedByte(AlbedoOf(m_afIntensities[from[0]], before.x) * after.x * 255);
      to[1] = ClampedByte(AlbedoOf(m_afIntensities[from[1]], before.y) * after.y * 255);
      to[2] = ClampedByte(AlbedoOf(m_afIntensities[from[2]], before.z) * after.z * 255);
    }
  }

 private:
  // Beside the surface, which no texel should be, it looks up.
  Vector3 NormalAt(int column, int row) {
    CInterpCoefs texel(column, row);
    if (!texel.Locate(m_Surface, m_Photograph.m_iWidth, m_Photograph.m_iHeight, m_pLeaf)) return {0, 0, 1};
    return texel.NormalOn(m_Surface.Lattice().PointNormals(), m_Surface.Lattice().CellNormals());
  }

  const CPicture& m_Photograph;
  CShading m_Removed;
  CShading m_Added;
  CInterpolation m_Surface;
  std::array<double, 256> m_afIntensities;
  const CQuadT* m_pLeaf = nullptr;  ///< of the last texel, where the next one mostly lies, too
};

}  // namespace

CPicture LitPictureOf(LitPicture which, const CPicture& photograph, const CLightSet& removed, const CLightSet& added,
                      const CInterpolation& surface, const std::function<bool(double)>& goes) {
  CPicture picture{photograph.m_iWidth, photograph.m_iHeight, {}};
  picture.m_aPixels.resize(photograph.m_aPixels.size());
  CLitTexels texels(photograph, removed, added, surface);
  for (int row = 0; row < photograph.m_iHeight; ++row) {
    if (goes && !goes(static_cast<double>(row) / photograph.m_iHeight)) return {};
    const std::size_t first = 3 * static_cast<std::size_t>(row) * static_cast<std::size_t>(photograph.m_iWidth);
    texels.WriteRow(row, which == LitPicture::Relit, &picture.m_aPixels[first]);
  }
  return picture;
}
