#include "report/CSavedSurface.h"

#include <cstddef>

#include "constraints/TearLines.h"
#include "model/CGrid.h"
#include "reference/CValueSampler.h"
#include "report/SurfaceHeights.h"

void CSavedSurface::Take(const CGrid& grid) {
  m_Extent = grid.Surface().Lattice().Extent();
  m_afHeights.resize(grid.Surface().Lattice().PointCount());
  grid.Surface().Interpolation().SampleLattice(m_afHeights);
}

bool CSavedSurface::IsComparable(const CGrid& grid) const {
  const CLattice& lattice = grid.Surface().Lattice();
  return m_afHeights.size() == lattice.PointCount() && m_Extent == lattice.Extent();
}

std::vector<double> CSavedSurface::DifferenceOf(const CGrid& grid) const {
  std::vector<double> difference = HeightsByScan(grid);
  for (std::size_t k = 0; k < difference.size(); ++k)
    difference[k] -= m_afHeights[grid.Surface().Order().PointAtScan(k)];
  return difference;
}

std::vector<double> DifferenceFromReference(const CGrid& grid) {
  const CGridReference& reference = grid.Reference();
  if (!reference.Value().IsActive()) return {};
  const CSurface& surface = grid.Surface();
  const std::vector<CGridSegment> tears = TearLines(grid.Constraints().Curves(), surface.Lattice());
  std::vector<double> values;
  CValueSampler(reference.Reading(), surface.Tree(), surface.Order(), tears).Sample(values);
  const CReferenceFit& fit = reference.Fitted();
  const double strength = reference.Value().m_Settings.m_fStrength;
  std::vector<double> difference = HeightsByScan(grid);
  for (std::size_t k = 0; k < difference.size(); ++k)
    difference[k] -= strength * (fit.m_fOffset + values[k] * (fit.m_fLinear + values[k] * fit.m_fSquare));
  return difference;
}
