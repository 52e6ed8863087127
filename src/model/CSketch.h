#pragma once

#include <array>
#include <vector>

#include "constraints/CCntrCtrlList.h"
#include "constraints/CPendingCurve.h"
#include "constraints/CPtCstrList.h"
#include "lattice/CLattice.h"

/// A number before each list of a grid file, without meaning, that is kept from loading to saving.
struct CListHeaders {
  int m_iPoints = 0;
  int m_iCurves = 0;
  int m_iRegions = 0;
  bool operator==(const CListHeaders&) const = default;
};

/// What the user has made of a model, as a value: with the heights and the lights it is all that the model comes of.
///
/// What follows from it is no part of it: whatever is highlighted or selected, which constraints lie in a tear or got
/// no row, the parallels of curves, and the height of the surface under a slope. So two sketches are equal as long as
/// the user has changed nothing, however far the solver has come.
struct CSketch {
  CExtent m_Extent;
  int m_iBaseLevel = 0;
  int m_iMaxLevel = 0;
  bool m_bHighRes = false;  ///< the high resolution is the current one
  /// The wanted subdivisions of the current resolution and of the other one (see SubdivisionBits).
  std::array<std::vector<bool>, 2> m_aSubdivisions;
  CListHeaders m_ListHeaders;
  CPtCstrList m_Points;
  CCntrCtrlList m_Curves;
  CPendingCurve m_PendingCurve;

  bool operator==(const CSketch&) const = default;
};
