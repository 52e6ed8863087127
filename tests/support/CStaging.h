#pragma once

#include "model/CGrid.h"

/// The way to states of a grid that no operation leads to, or only a long one: what is changed here is neither posted
/// nor shown.
struct CStaging {
  static CConstraints& Constraints(CGrid& grid) { return grid.m_Constraints; }
  static CGridReference& Reference(CGrid& grid) { return grid.m_Reference; }
  static CSubdivisionRecord& Subdivision(CGrid& grid) { return grid.m_Wanted.Current(); }
  static CLightSet& RemovedLights(CGrid& grid) { return grid.m_Relighting.m_RemovedLights; }
  static CLightSet& AddedLights(CGrid& grid) { return grid.m_Relighting.m_AddedLights; }
  static CTextureImages& Textures(CGrid& grid) { return grid.m_Relighting.m_Textures; }
};
