#include "model/CGridBuilder.h"

#include <array>

#include "base/Console.h"
#include "constraints/CurveRasteriser.h"
#include "constraints/FinestCells.h"
#include "model/CConstraints.h"
#include "model/CGridReference.h"
#include "model/CGridRun.h"
#include "model/CSurface.h"
#include "model/CWantedSubdivisions.h"

void CGridBuilder::SetDiscMap() {
  CQuadTree& tree = m_Surface.Tree();
  const CLattice& lattice = m_Surface.Lattice();
  Console() << "\nCGrid::SetDiscMap()\n";
  ReplaySubdivision();
  // First of all, because it opens closed curves of two nodes.
  m_Constraints.RefreshCurves();
  RasteriseCurves();
  m_Constraints.Generate();
  for (const CPtCstr& c : m_Constraints.Generated()) {
    RefineToPoint(tree, lattice.ColumnOf(c.m_fX), lattice.RowOf(c.m_fY));
  }
  m_Run.Host().ShowResolution(tree.LeafCount(), static_cast<int>(lattice.Count(PointFlag::kInUse)));
  tree.RefreshEdgeMarks();
  m_Constraints.UpdateDisabledBits();
  m_Solver.RequestRebuild();
  SetSparseH();
}

void CGridBuilder::ReplaySubdivision() {
  m_Surface.Replay(m_Wanted.Current(), m_Wanted.BaseLevel());
  BuildHNumerotation();
}

void CGridBuilder::RasteriseCurves() {
  CCurveRasteriser rasteriser(m_Surface.Tree());
  for (const CCntrCtrl& curve : m_Constraints.Curves()) rasteriser.Rasterise(curve);
  rasteriser.MarkCreaseDiagonals();
  if (!m_Constraints.Curves().empty()) m_Run.Host().RequestRedraw();
}

void CGridBuilder::BuildHNumerotation() {
  m_Solver.RequestRebuild();
  m_Surface.BuildHNumerotation();
}

void CGridBuilder::SetSparseH() {
  if (m_Solver.Counter() == -1) {
    Console() << "*** SetSparseH ***\n";
    BuildHNumerotation();
    m_Surface.Tree().ListLeaves();
    m_Solver.Assemble(m_Surface.Tree(), m_Surface.Interpolation(), m_Constraints.Curves(), m_Reference.Sample());
  }
  const std::array<const CPtCstrList*, 2> lists{&m_Constraints.Points(), &m_Constraints.Generated()};
  m_Solver.SetConstraints(lists, m_Surface.Tree(), m_Surface.Interpolation());
  if (m_Reference.HasMap()) m_Solver.SetRestShape(m_Reference.Fit());
  m_Constraints.MarkIdle(m_Solver.System().Constraints());
  m_Run.Host().ShowConstraints(m_Constraints.ActiveCount());
}

void CGridBuilder::SetWaveletMode(WaveletMode mode) {
  m_Surface.SetWaveletMode(mode);
  m_Solver.RequestRestart();
}

void CGridBuilder::SetHeights(std::span<const double> heights) {
  m_Surface.SetHeights(heights);
  m_Solver.RequestRestart();
}
