#include "quadtree/CInterpCoefs.h"

#include "base/Console.h"
#include "model/CLattice.h"
#include "quadtree/CQuadT.h"
#include "quadtree/Interpolation.h"

const Vector3* CInterpCoefs::GetNormalTexPoint(const CInterpolation* surface, int width, int height) {
  if (surface == nullptr) return nullptr;
  m_Normal = {};
  const CLattice& lattice = surface->Lattice();
  const double gx = (m_iColumn + 0.5) / width * (lattice.PointsPerSide() - 1);
  const double gy = (m_iRow + 0.5) / height * (lattice.PointsPerSide() - 1);
  const std::optional<CTriangleStencil> triangle = surface->ShortStencil(gx, gy);
  if (!triangle) {
    Console() << "CInterpCoefs::GetNormalTexPoint()\t\tcell == NULL\n"
              << "\t\t\txg = " << gx << ", yg = " << gy << '\n';
    return nullptr;
  }
  m_fCa = triangle->m_fCa;
  m_fCb = triangle->m_fCb;
  m_fCCenter = triangle->m_fCCenter;
  m_uA = triangle->m_uA;
  m_uB = triangle->m_uB;
  m_uCell = lattice.CellIndex(triangle->m_pCell->X0(), triangle->m_pCell->Y0());
  m_Normal = surface->NormalOf(*triangle);
  return &m_Normal;
}
