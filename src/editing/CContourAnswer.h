#pragma once

#include "constraints/CContourAttributes.h"

/// What the user wants of a curve whose attributes were shown.
struct CContourAnswer {
  CContourAttributes m_Attributes;  ///< orientations in their range
  bool m_bAllNodes = false;         ///< the weights are meant for every node of the curve
  bool m_bExport = false;           ///< the generated constraints are to become the user's own
};
