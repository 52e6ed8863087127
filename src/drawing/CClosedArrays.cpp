#include "drawing/CClosedArrays.h"

#include "drawing/CSurfaceArrays.h"
#include "model/CGrid.h"

void CClosedArrays::Refresh(const CGrid& grid, const CSurfaceArrays& arrays, bool under, bool normals) {
  const CSurface& surface = grid.Surface();
  const bool same =
      m_pTears && m_uTree == surface.Tree().Revision() && m_bUnder == under && m_Extent == surface.Lattice().Extent();
  if (!same) {
    m_pTears = std::make_unique<CClosedTears>(surface.Tree(), arrays.Mesh(), grid.Constraints().Curves(), under);
    m_uTree = surface.Tree().Revision();
    m_bUnder = under;
    m_Extent = surface.Lattice().Extent();
    m_uSurface.reset();
    m_uNormals.reset();
  }
  if (m_uSurface != surface.Revision()) m_pTears->Raise(arrays.Positions());
  m_uSurface = surface.Revision();
  if (!normals || m_uNormals == surface.Revision()) return;
  m_pTears->RaiseNormals(arrays.Normals());
  m_uNormals = surface.Revision();
}
