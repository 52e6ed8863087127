#pragma once

#include "lattice/CLattice.h"

/// What a new grid starts from.
struct CGridParameters {
  int m_iStartLevel = 5;
  CExtent m_Extent;  ///< finite, x0 < x1, y0 < y1
  bool m_bKeepConstraints = false;
};
