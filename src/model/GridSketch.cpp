// The grid's document as a value, and a value as the grid's document.

#include <utility>

#include "model/CGrid.h"
#include "model/Globals.h"
#include "quadtree/SubdivisionText.h"

namespace {

// Takes away what follows from tree, system and surface, and from what the mouse has touched.
void StripPoint(CPtCstr& constraint) {
  constraint.m_uState = 0;
  constraint.m_uIdle = 0;
  constraint.SetKind(PtCstrKind::kDisabled, false);
  if (constraint.HasKind(PtCstrKind::kNormal) && !constraint.HasKind(PtCstrKind::kPosition)) constraint.m_fZ = 0.0;
}

void StripCurve(CCntrCtrl& curve) {
  curve.SetState(PtCstrState::kHighlighted | PtCstrState::kSelected, false);
  for (CCntrNode& node : curve.Nodes()) {
    node.m_uState = 0;
    node.m_aOffsets = {};
  }
}

}  // namespace

CSketch CGrid::Sketch() const {
  CSketch sketch{Lattice().Extent(),
                 m_iBaseLevel,
                 MaxLevel(),
                 g_bHighRes == 1,
                 {SubdivisionBits(*m_Subdivision), SubdivisionBits(*m_OtherSubdivision)},
                 m_ListHeaders,
                 m_PointConstraints,
                 m_Curves,
                 m_PendingCurve};
  for (CPtCstr& constraint : sketch.m_Points) StripPoint(constraint);
  for (CCntrCtrl& curve : sketch.m_Curves) StripCurve(curve);
  return sketch;
}

void CGrid::TakeOver(CSketch sketch) {
  Reserve(sketch.m_iMaxLevel);
  FreeAll();
  g_iMaxLevel = sketch.m_iMaxLevel;
  g_bHighRes = sketch.m_bHighRes ? 1 : 0;
  const CExtent& e = sketch.m_Extent;
  Initialize(sketch.m_iBaseLevel, true, e.x0, e.y0, e.x1, e.y1);
  SetSubdivision(*m_Subdivision, sketch.m_aSubdivisions.front());
  SetSubdivision(*m_OtherSubdivision, sketch.m_aSubdivisions.back());
  m_ListHeaders = sketch.m_ListHeaders;
  m_PointConstraints = std::move(sketch.m_Points);
  m_Curves = std::move(sketch.m_Curves);
  m_PendingCurve = std::move(sketch.m_PendingCurve);
  SetDiscMap();
  ReconstructSurface();
  RefreshNormalCstrHeights();
  // Whatever had converged was another model.
  m_Solver.ModelChanged();
  if (m_pHost != nullptr) m_pHost->RequestRedraw();
}
