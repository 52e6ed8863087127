// The rebuild of the grid: from the wanted subdivision and the constraints to the tree, the maps and the system; and
// the way from one resolution to the other, which is a rebuild, too. The surface stays as it was.

#include <algorithm>
#include <array>
#include <string>
#include <utility>
#include <vector>

#include "base/Console.h"
#include "constraints/CurveRasteriser.h"
#include "constraints/FinestCells.h"
#include "model/CGrid.h"
#include "model/Globals.h"

void CGrid::SetDiscMap() {
  Console() << "\nCGrid::SetDiscMap()\n";
  ReplaySubdivision();
  m_Curves.RemoveDegenerate();
  // First of all, because it opens closed curves of two nodes.
  for (CCntrCtrl& curve : m_Curves) RefreshCurve(curve);
  RasteriseCurves();
  UpdateConstraintsFormCurves();
  for (const CPtCstr& c : m_GeneratedConstraints) {
    RefineToPoint(*m_pTree, m_Lattice.ColumnOf(c.m_fX), m_Lattice.RowOf(c.m_fY));
  }
  if (m_pHost != nullptr)
    m_pHost->ShowResolution(m_pTree->LeafCount(), static_cast<int>(m_Lattice.Count(PointFlag::kInUse)));
  m_pTree->RefreshEdgeMarks();
  for (CPtCstr& constraint : m_PointConstraints) UpdateDisabledBit(constraint);
  for (CPtCstr& constraint : m_GeneratedConstraints) UpdateDisabledBit(constraint);
  m_Solver.RequestRebuild();
  SetSparseH();
  // What else hangs on the tree per texel is made anew at its first use.
  TestTexelsInDiscontinuity();
}

void CGrid::ReplaySubdivision() {
  if (!m_bSurfaceCaptured) CapturePresentSurface();
  m_pTree->Replay(*m_Subdivision, m_iBaseLevel);
  m_pTree->RefreshEdgeMarks();
  BuildHNumerotation();
}

void CGrid::RasteriseCurves() {
  CCurveRasteriser rasteriser(*m_pTree);
  for (const CCntrCtrl& curve : m_Curves) rasteriser.Rasterise(curve);
  rasteriser.MarkCreaseDiagonals();
  if (m_pHost != nullptr && !m_Curves.empty()) m_pHost->RequestRedraw();
}

void CGrid::UpdateConstraintsFormCurves() {
  Console() << "CGrid::UpdateConstraintsFormCurves\n";
  m_GeneratedConstraints.clear();
  m_iRefusedCurves = 0;
  for (const CCntrCtrl& curve : m_Curves) {
    if (static_cast<double>(m_GeneratedConstraints.size()) + curve.GeneratedCount() > CCntrCtrl::kMostGenerated) {
      ++m_iRefusedCurves;
    } else {
      curve.AddAutoBumpConstraints(m_GeneratedConstraints);
    }
  }
  m_iToldCurves = std::min(m_iToldCurves, m_iRefusedCurves);
}

int CGrid::TakeRefusedCurves() {
  if (m_iToldCurves == m_iRefusedCurves) return 0;
  m_iToldCurves = m_iRefusedCurves;
  Console() << "CGrid::UpdateConstraintsFormCurves\t\ttoo many constraints : " << m_iRefusedCurves << " curves\n";
  return m_iRefusedCurves;
}

void CGrid::SetSparseH() {
  if (m_Solver.Counter() == -1) {
    Console() << "*** SetSparseH ***\n";
    BuildHNumerotation();
    m_pTree->ListLeaves();
    m_Solver.Assemble(*m_pTree, Surface(), m_Curves);
  }
  const std::array<const CPtCstrList*, 2> lists{&m_PointConstraints, &m_GeneratedConstraints};
  m_Solver.SetConstraints(lists, *m_pTree, Surface());
  MarkIdleConstraints();
  ShowConstraintCount();
}

void CGrid::BuildHNumerotation() {
  // Splits may have overwritten the height array at points that have a height of their own.
  ScatterNodalHeights();
  const std::vector<double>& surface = m_bSurfaceCaptured ? m_afPresentSurface : m_Lattice.Heights();
  m_Solver.RequestRebuild();
  m_Order.Build(*m_pTree);
  m_Basis.Compile(m_Order, *m_pTree, m_Mode);
  Console() << ActivePointCount() << " points\n";
  for (std::size_t i = 0; i < m_Order.Count(); ++i) m_afNodalHeights[i] = surface[m_Order.PointAtScan(i)];
  ScatterNodalHeights();
  m_Basis.W(m_afNodalHeights, m_pfWaveCoefGrid);
}

void CGrid::ScatterNodalHeights() {
  for (std::size_t i = 0; i < m_Order.Count(); ++i) m_Lattice.Heights()[m_Order.PointAtScan(i)] = m_afNodalHeights[i];
}

void CGrid::CapturePresentSurface() {
  ScatterNodalHeights();
  Surface().SampleLattice(m_afPresentSurface);
  m_bSurfaceCaptured = true;
}

void CGrid::SubdivisionChanged() {
  SetDiscMap();
  m_Subdivision->ShowSelection(*m_pTree);
  if (m_pHost != nullptr) m_pHost->RequestRedraw();
}

void CGrid::Transmit(bool high) {
  Console() << "Transmit : m_iNbAPoints : " << ActivePointCount() << '\n';
  SwapResolution(high, true);
}

void CGrid::SwapResolution(bool high, bool transfer) {
  g_bHighRes = high ? 1 : 0;
  if (!m_bSurfaceCaptured) CapturePresentSurface();
  std::swap(m_Subdivision, m_OtherSubdivision);
  std::swap(m_afPresentSurface, m_afOtherSurface);
  if (transfer) m_afPresentSurface = m_afOtherSurface;
  // The capture of what is now the present surface stands: the rebuild sets the coefficients from it.
  m_bSurfaceCaptured = true;
  SetDiscMap();
  m_Subdivision->ShowSelection(*m_pTree);
  ReconstructSurface();
  if (m_pHost != nullptr) m_pHost->RequestRedraw();
}
