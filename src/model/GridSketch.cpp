// The grid's document as a value, and a value as the grid's document.

#include <utility>

#include "model/CGrid.h"
#include "model/Globals.h"

CSketch CGrid::Sketch() const {
  return {Lattice().Extent(), m_iBaseLevel,
          g_iBaseLevel,       MaxLevel(),
          g_bHighRes == 1,    {CSubdivisionBits(*m_Subdivision), CSubdivisionBits(*m_OtherSubdivision)},
          m_ListHeaders,      m_PointConstraints,
          m_Curves,           m_PendingCurve};
}

void CGrid::TakeOver(CSketch sketch) {
  Reserve(sketch.m_iMaxLevel);
  FreeAll();
  m_ListHeaders = sketch.m_ListHeaders;
  m_PointConstraints = std::move(sketch.m_Points);
  m_Curves = std::move(sketch.m_Curves);
  m_PendingCurve = std::move(sketch.m_PendingCurve);
  g_iBaseLevel = sketch.m_iNewBaseLevel;
  g_iMaxLevel = sketch.m_iMaxLevel;
  g_bHighRes = sketch.m_bHighRes ? 1 : 0;
  const CExtent& e = sketch.m_Extent;
  Initialize(sketch.m_iBaseLevel, true, e.x0, e.y0, e.x1, e.y1);
  sketch.m_aSubdivisions.front().ApplyTo(*m_Subdivision);
  sketch.m_aSubdivisions.back().ApplyTo(*m_OtherSubdivision);
}
