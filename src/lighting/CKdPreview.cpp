#include "lighting/CKdPreview.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <utility>

#include "base/AreaFilter.h"
#include "lighting/CTexelMap.h"
#include "quadtree/CInterpCoefs.h"
#include "quadtree/CQuadTree.h"

namespace {

double TexelsOf(const CTextureImages& images, const CHalvings& halvings) {
  return std::ceil(std::ldexp(images.PictureWidth(), -halvings.m_iX)) *
         std::ceil(std::ldexp(images.PictureHeight(), -halvings.m_iY));
}

// Blocks are square until a side has no more to halve.
CHalvings HalvingsFor(const CTextureImages& images) {
  CHalvings halvings;
  while (TexelsOf(images, halvings) > CKdPreview::kMostTexels) {
    if (images.PictureWidth() >> halvings.m_iX > 1) ++halvings.m_iX;
    if (images.PictureHeight() >> halvings.m_iY > 1) ++halvings.m_iY;
  }
  return halvings;
}

// The texel in the middle of a block.
int MiddleOf(int block, int halvings, int side) { return std::min((2 * block + 1) << halvings >> 1, side - 1); }

}  // namespace

bool CKdPreview::IsWorthWhile(const CTextureImages& images) { return TexelsOf(images, {}) > kLargePicture; }

void CKdPreview::Show(const CTexelMap& texels, const CInterpolation& surface, const CRelightingLights& lights,
                      CTextureImages& images) {
  TakePhotograph(images);
  TakeNormals(texels, surface);
  m_Albedo.Compute(m_aNormals, lights, *m_pCopy);
  images.ShowPreview(m_pCopy, m_Halvings);
}

void CKdPreview::TakePhotograph(const CTextureImages& images) {
  if (m_pCopy != nullptr) return;
  m_Halvings = HalvingsFor(images);
  const auto copy = std::make_shared<CTextureImages>();
  copy->SetPicture(
      AreaFiltered(images.Pixels(CTextureImages::kPhotograph), 1 << m_Halvings.m_iX, 1 << m_Halvings.m_iY));
  m_pCopy = copy;
}

// As the picture itself has them where they are of the present subdivision, else as it will have them.
void CKdPreview::TakeNormals(const CTexelMap& texels, const CInterpolation& surface) {
  const std::uint64_t tree = surface.Tree().Revision();
  if (!m_aNormals.empty() && m_uTree == tree && m_uTexels == texels.Revision()) return;
  const bool known = texels.HasNormalsOf(surface);
  std::vector<Vector3> normals;
  normals.reserve(static_cast<std::size_t>(m_pCopy->PictureWidth()) *
                  static_cast<std::size_t>(m_pCopy->PictureHeight()));
  const CQuadT* leaf = nullptr;
  for (int y = 0; y < m_pCopy->PictureHeight(); ++y) {
    const int row = MiddleOf(y, m_Halvings.m_iY, texels.Height());
    for (int x = 0; x < m_pCopy->PictureWidth(); ++x) {
      const int column = MiddleOf(x, m_Halvings.m_iX, texels.Width());
      normals.push_back(known ? texels.NormalAt(column, row) : texels.NextNormalAt(column, row, surface, leaf));
    }
  }
  m_aNormals = std::move(normals);
  m_uTree = tree;
  m_uTexels = texels.Revision();
}
