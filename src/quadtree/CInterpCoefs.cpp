#include "quadtree/CInterpCoefs.h"

#include <optional>

#include "base/Console.h"
#include "lattice/CLattice.h"
#include "quadtree/CQuadT.h"

static_assert(sizeof(CInterpCoefs) <= 64);

bool CInterpCoefs::Locate(const CInterpolation& surface, int width, int height, const CQuadT*& leaf) {
  const CLattice& lattice = surface.Lattice();
  const double gx = Coordinate(m_iColumn, width, lattice.PointsPerSide());
  const double gy = Coordinate(m_iRow, height, lattice.PointsPerSide());
  const std::optional<CTriangleStencil> triangle = surface.ShortStencil(gx, gy, leaf);
  if (!triangle) {
    Console() << "CInterpCoefs::GetNormalTexPoint()\t\tcell == NULL\n"
              << "\t\t\txg = " << gx << ", yg = " << gy << '\n';
    return false;
  }
  m_fCa = triangle->m_fCa;
  m_fCb = triangle->m_fCb;
  m_fCCenter = triangle->m_fCCenter;
  m_uA = static_cast<std::uint32_t>(triangle->m_uA);
  m_uB = static_cast<std::uint32_t>(triangle->m_uB);
  leaf = triangle->m_pCell;
  m_uCell = static_cast<std::uint32_t>(lattice.CellIndex(leaf->X0(), leaf->Y0()));
  return true;
}

const Vector3* CInterpCoefs::GetNormalTexPoint(const CInterpolation* surface, int width, int height,
                                               const CQuadT*& leaf, Vector3& normal) {
  if (surface == nullptr) return nullptr;
  normal = {};
  if (!Locate(*surface, width, height, leaf)) return nullptr;
  normal = NormalOn(surface->Lattice().PointNormals(), surface->Lattice().CellNormals());
  return &normal;
}
