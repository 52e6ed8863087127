#pragma once

#include <vector>

#include "base/CPlanePoint.h"

class CDepthReading;
struct CExtent;
struct CLinkCosts;
struct CPtCstr;

/// A path along which a depth map is steep.
struct CTearProposal {
  std::vector<CPlanePoint> m_aPoints;  ///< model units; a closed path does not come back to the first one
  bool m_bClosed = false;
};

/// Its points as the nodes of a curve.
std::vector<CPtCstr> NodesOf(const CTearProposal& proposal);

/// What is to be proposed.
struct CTearWishes {
  static constexpr double kShare = 0.07;
  int m_iCount = 0;          ///< at most so many
  double m_fShare = kShare;  ///< of the map's range, which it must span nearby for a gap
};

/// Tears for the gaps of a depth map, longest first, in the model's rectangle.
///
/// Along isolines of the map, where its range within a hundredth of the larger side is more than the share of the
/// whole. The longest is taken first; what lies near one that is taken is cut off from the others, and what is left of
/// these competes by its length. Then each point moves along the slope to where that is steepest, and, where there are
/// costs of a photograph's links, to its strongest edge. The photograph covers the same rectangle, whatever its size;
/// `photograph` may be null. Paths go from pixel to pixel: they are to be simplified like traced ones. Linear in the
/// pixels; takes some bytes for each.
std::vector<CTearProposal> SuggestTears(const CDepthReading& reading, const CTearWishes& wishes, const CExtent& extent,
                                        const CLinkCosts* photograph);
