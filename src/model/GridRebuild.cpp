// The rebuild of the grid: from the wanted subdivision and the constraints to the tree, the maps and the system; and
// the way from one resolution to the other, which is a rebuild, too. The surface stays as it was.

#include <algorithm>
#include <array>
#include <string>
#include <utility>

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
    RefineToPoint(Tree(), Lattice().ColumnOf(c.m_fX), Lattice().RowOf(c.m_fY));
  }
  if (m_pHost != nullptr)
    m_pHost->ShowResolution(Tree().LeafCount(), static_cast<int>(Lattice().Count(PointFlag::kInUse)));
  Tree().RefreshEdgeMarks();
  for (CPtCstr& constraint : m_PointConstraints) UpdateDisabledBit(constraint);
  for (CPtCstr& constraint : m_GeneratedConstraints) UpdateDisabledBit(constraint);
  m_Solver.RequestRebuild();
  SetSparseH();
  // What else hangs on the tree per texel is made anew at its first use.
  TestTexelsInDiscontinuity();
}

void CGrid::ReplaySubdivision() {
  m_Surface.Replay(*m_Subdivision, m_iBaseLevel);
  BuildHNumerotation();
}

void CGrid::RasteriseCurves() {
  CCurveRasteriser rasteriser(Tree());
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

void CGrid::TellRefusedCurves() {
  if (m_iToldCurves == m_iRefusedCurves) return;
  m_iToldCurves = m_iRefusedCurves;
  Console() << "CGrid::UpdateConstraintsFormCurves\t\ttoo many constraints : " << m_iRefusedCurves << " curves\n";
  Notify("The curves would generate more than 200000 constraints. " + std::to_string(m_iRefusedCurves) +
         " of them generate none: make their distances larger.");
}

void CGrid::SetSparseH() {
  if (m_Solver.Counter() == -1) {
    Console() << "*** SetSparseH ***\n";
    BuildHNumerotation();
    m_Solver.Assemble(Tree(), Interpolation(), m_Curves);
  }
  const std::array<const CPtCstrList*, 2> lists{&m_PointConstraints, &m_GeneratedConstraints};
  m_Solver.SetConstraints(lists, Tree(), Interpolation());
  MarkIdleConstraints();
  ShowConstraintCount();
}

void CGrid::BuildHNumerotation() {
  m_Solver.RequestRebuild();
  m_Surface.BuildHNumerotation();
}

void CGrid::SubdivisionChanged() {
  SetDiscMap();
  m_Subdivision->ShowSelection(Tree());
  if (m_pHost != nullptr) m_pHost->RequestRedraw();
}

void CGrid::Transmit(bool high) {
  Console() << "Transmit : m_iNbAPoints : " << ActivePointCount() << '\n';
  SwapResolution(high, true);
}

void CGrid::SwapResolution(bool high, bool transfer) {
  g_bHighRes = high ? 1 : 0;
  std::swap(m_Subdivision, m_OtherSubdivision);
  m_Surface.SwapResolution(transfer);
  SetDiscMap();
  m_Subdivision->ShowSelection(Tree());
  ReconstructSurface();
  if (m_pHost != nullptr) m_pHost->RequestRedraw();
}
