#include "lighting/CKdPass.h"

#include <algorithm>
#include <new>

#include "lattice/CLattice.h"
#include "lighting/CShading.h"
#include "lighting/CTexelMap.h"
#include "lighting/CTextureImages.h"
#include "quadtree/CQuadTree.h"

namespace {

// Looking at the clock is nothing beside so many texels.
constexpr int kTexelsPerLook = 2048;

int RowsPerLook(const CTextureImages& images) { return std::max(1, kTexelsPerLook / images.PictureWidth()); }

}  // namespace

void CKdPass::Drop() {
  m_bUnderWay = false;
  m_Normals.reset();
  m_iNext = 0;
}

bool CKdPass::Advance(const CLights& lights, const CParts& parts, const std::function<bool()>& goes) {
  try {
    if (!m_bUnderWay || !(m_Lights == lights)) m_iNext = 0;
    m_bUnderWay = true;
    m_Lights = lights;
    if (!MakeNormals(parts, goes) || !MakeImages(parts, goes)) return false;
  } catch (const std::bad_alloc&) {
    Drop();
    throw;
  }
  Drop();
  return true;
}

bool CKdPass::MakeNormals(const CParts& parts, const std::function<bool()>& goes) {
  CTexelMap& texels = parts.m_Texels;
  if (texels.HasNormalsOf(parts.m_Surface)) {
    m_Normals.reset();
    return true;
  }
  const std::uint64_t tree = parts.m_Surface.Tree().Revision();
  if (!m_Normals.has_value() || m_Normals->m_uTree != tree || m_Normals->m_uTexels != texels.Revision()) {
    const auto points = parts.m_Surface.Lattice().PointNormals();
    const auto cells = parts.m_Surface.Lattice().CellNormals();
    m_Normals = CNormals{tree, texels.Revision(), {points.begin(), points.end()}, {cells.begin(), cells.end()}, 0};
    texels.BeginNormals(parts.m_Surface);
  }
  const int rows = RowsPerLook(parts.m_Images);
  while (m_Normals->m_iNext < texels.Height()) {
    if (!goes()) return false;
    const int end = std::min(m_Normals->m_iNext + rows, texels.Height());
    for (int& row = m_Normals->m_iNext; row < end; ++row)
      texels.UpdateNormalsOfRow(parts.m_Surface, row, m_Normals->m_aPoints, m_Normals->m_aCells);
  }
  m_Normals.reset();
  return true;
}

bool CKdPass::MakeImages(const CParts& parts, const std::function<bool()>& goes) {
  CTextureImages& images = parts.m_Images;
  if (m_uTexels != parts.m_Texels.Revision()) m_iNext = 0;
  m_uTexels = parts.m_Texels.Revision();
  const CShading removed(m_Lights.m_Removed);
  const CShading added(m_Lights.m_Added);
  const int rows = RowsPerLook(images);
  while (m_iNext < images.PictureHeight()) {
    if (!goes()) return false;
    const int count = std::min(rows, images.PictureHeight() - m_iNext);
    parts.m_Albedo.ComputeRows(parts.m_Texels.Normals(), {removed, added, m_Lights.m_Tone}, images, m_iNext, count);
    m_iNext += count;
  }
  images.MarkChanged(CTextureImages::kKd);
  images.MarkChanged(CTextureImages::kIllumination);
  return true;
}
