// The grid's document as a value, and a value as the grid's document.

#include "model/CGrid.h"
#include "model/CSketch.h"
#include "model/Globals.h"

CSketch CGrid::Sketch() const {
  CSketch sketch;
  sketch.m_Extent = m_Surface.Lattice().Extent();
  sketch.m_iBaseLevel = m_Wanted.BaseLevel();
  sketch.m_iNewBaseLevel = g_iBaseLevel;
  sketch.m_iMaxLevel = m_Surface.Lattice().Level();
  sketch.m_bHighRes = g_bHighRes == 1;
  sketch.m_aSubdivisions = {CSubdivisionBits(m_Wanted.Current()), CSubdivisionBits(m_Wanted.Other())};
  m_Constraints.AddTo(sketch);
  return sketch;
}

void CGrid::TakeOver(CSketch sketch) {
  Reserve(sketch.m_iMaxLevel);
  FreeAll();
  m_Constraints.TakeFrom(sketch);
  g_iBaseLevel = sketch.m_iNewBaseLevel;
  g_iMaxLevel = sketch.m_iMaxLevel;
  g_bHighRes = sketch.m_bHighRes ? 1 : 0;
  const CExtent& e = sketch.m_Extent;
  Initialize(sketch.m_iBaseLevel, true, e.x0, e.y0, e.x1, e.y1);
  sketch.m_aSubdivisions.front().ApplyTo(m_Wanted.Current());
  sketch.m_aSubdivisions.back().ApplyTo(m_Wanted.Other());
}
