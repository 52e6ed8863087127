#include "lighting/LitPicture.h"

#include <array>
#include <cmath>
#include <cstdint>
#include <utility>

#include "lattice/CLattice.h"
#include "lighting/AlbedoBytes.h"
#include "lighting/CShading.h"
#include "quadtree/CInterpCoefs.h"

namespace {

/// The texels of a picture in the making.
class CLitTexels {
 public:
  // Of so many rows, the first of which is that one of the photograph.
  CLitTexels(LitPicture which, const CLitScene& scene, int first, int count)
      : m_bRelit(which == LitPicture::Relit),
        m_bSoft(m_bRelit && scene.m_Tone == Tone::Soft),
        m_Photograph(scene.m_Photograph),
        m_Removed(scene.m_Removed),
        m_Added(scene.m_Added),
        m_Surface(scene.m_Surface),
        m_afIntensities(PhotographIntensities()) {
    const std::size_t row = 3 * static_cast<std::size_t>(m_Photograph.m_iWidth);
    m_uFirst = row * static_cast<std::size_t>(first);
    m_Picture = {m_Photograph.m_iWidth, count, {}};
    m_Picture.m_aPixels.resize(row * static_cast<std::size_t>(count));
  }

  void LightRow(int row) {
    std::size_t texel = static_cast<std::size_t>(row) * static_cast<std::size_t>(m_Photograph.m_iWidth);
    for (int column = 0; column < m_Photograph.m_iWidth; ++column, ++texel) {
      const Vector3 normal = NormalAt(column, row);
      if (std::isnan(normal.x)) m_auWithout.push_back(texel);
      Light(texel, normal);
    }
  }
  void Light(std::size_t texel, const Vector3& normal) {
    const std::uint8_t* from = &m_Photograph.m_aPixels[3 * texel];
    std::uint8_t* to = &m_Picture.m_aPixels[3 * texel - m_uFirst];
    const Vector3 before = m_Removed.Of(normal);
    const Vector3 after = m_bRelit ? m_Added.Of(normal) : Vector3{1, 1, 1};
    to[0] = ByteOf(AlbedoOf(m_afIntensities[from[0]], before.x) * after.x);
    to[1] = ByteOf(AlbedoOf(m_afIntensities[from[1]], before.y) * after.y);
    to[2] = ByteOf(AlbedoOf(m_afIntensities[from[2]], before.z) * after.z);
  }

  /// The texels without a normal.
  const std::vector<std::size_t>& Without() const { return m_auWithout; }
  CPicture Take() { return std::move(m_Picture); }

 private:
  std::uint8_t ByteOf(double value) const { return ClampedByte((m_bSoft ? Shouldered(value) : value) * 255); }

  // Beside the surface, which no texel should be, it looks up.
  Vector3 NormalAt(int column, int row) {
    CInterpCoefs texel(column, row);
    if (!texel.Locate(m_Surface, m_Photograph.m_iWidth, m_Photograph.m_iHeight, m_pLeaf)) return {0, 0, 1};
    return texel.NormalOn(m_Surface.Lattice().PointNormals(), m_Surface.Lattice().CellNormals());
  }

  bool m_bRelit;
  bool m_bSoft;
  const CPicture& m_Photograph;
  CShading m_Removed;
  CShading m_Added;
  CInterpolation m_Surface;
  std::array<double, 256> m_afIntensities;
  const CQuadT* m_pLeaf = nullptr;  ///< of the last texel, where the next one mostly lies, too
  std::vector<std::size_t> m_auWithout;
  CPicture m_Picture;
  std::size_t m_uFirst = 0;  ///< byte of the photograph where it begins
};

}  // namespace

CPicture LitRowsOf(LitPicture which, const CLitScene& scene, int first, int count) {
  CLitTexels texels(which, scene, first, count);
  for (int row = first; row < first + count; ++row) texels.LightRow(row);
  return texels.Take();
}

CPicture LitPictureOf(LitPicture which, const CLitScene& scene, const std::function<bool(double)>& goes) {
  const int height = scene.m_Photograph.m_iHeight;
  CLitTexels texels(which, scene, 0, height);
  for (int row = 0; row < height; ++row) {
    if (goes && !goes(static_cast<double>(row) / height)) return {};
    texels.LightRow(row);
  }
  if (!scene.m_NormalsOf || texels.Without().empty()) return texels.Take();
  const std::vector<Vector3> normals = scene.m_NormalsOf(texels.Without());
  for (std::size_t k = 0; k < normals.size(); ++k) texels.Light(texels.Without()[k], normals[k]);
  return texels.Take();
}
