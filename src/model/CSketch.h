#pragma once

#include <array>

#include "constraints/CCntrCtrlList.h"
#include "constraints/CPendingCurve.h"
#include "constraints/CPtCstrList.h"
#include "lattice/CLattice.h"
#include "model/Globals.h"
#include "quadtree/CSubdivisionBits.h"
#include "reference/CReference.h"

/// A number before each list of a grid file, without meaning, that is kept from loading to saving.
struct CListHeaders {
  int m_iPoints = 0;
  int m_iCurves = 0;
  int m_iRegions = 0;
  bool operator==(const CListHeaders&) const = default;
};

/// The document of a model as a value: what the user has made of it but for surface, picture and lights.
///
/// Two are equal when the user would say so, however far the solver has come and whatever the mouse has touched:
/// records keep what is highlighted, selected, disabled or without a row, but are not compared by it. The subdivisions
/// are held as bits, because a record of level 10 takes 11 MB.
struct CSketch {
  CExtent m_Extent;
  int m_iBaseLevel = kDefaultBaseLevel;     ///< what the tree begins with before the wanted subdivision is played on it
  int m_iNewBaseLevel = kDefaultBaseLevel;  ///< the base level of new grids
  int m_iMaxLevel = kDefaultMaxLevel;       ///< of this model and of new grids
  bool m_bHighRes = false;                  ///< whether the high resolution is the current one
  /// The wanted subdivisions of the current resolution and of the other one; of those that hold nothing the model makes
  /// what a new grid has.
  std::array<CSubdivisionBits, 2> m_aSubdivisions;
  CListHeaders m_ListHeaders;
  CPtCstrList m_Points;
  CCntrCtrlList m_Curves;
  CPendingCurve m_PendingCurve;
  CReference m_Reference;  ///< not in grid files

  bool operator==(const CSketch&) const = default;
};
