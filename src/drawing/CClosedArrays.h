#pragma once

#include <cstdint>
#include <memory>
#include <optional>

#include "lattice/CLattice.h"
#include "mesh/CClosedTears.h"

class CGrid;
class CSurfaceArrays;

/// The surface around its tears as vertex arrays, each side continued to the curve: remade only where the model has
/// changed. Beside CSurfaceArrays, which holds the rest.
///
/// Linear in the number of leaves; memory is asked for only when the subdivision has changed, or what lies beneath
/// what.
class CClosedArrays {
 public:
  /// Brings all up to `arrays`, which must have been brought up to the grid with its normals if these are wanted.
  void Refresh(const CGrid& grid, const CSurfaceArrays& arrays, bool under, bool normals);
  /// What has been brought up to date last.
  const CClosedTears& Tears() const { return *m_pTears; }

 private:
  std::uint64_t m_uTree = 0;
  std::optional<std::uint64_t> m_uSurface;
  std::optional<std::uint64_t> m_uNormals;
  bool m_bUnder = false;
  CExtent m_Extent;
  std::unique_ptr<CClosedTears> m_pTears;
};
