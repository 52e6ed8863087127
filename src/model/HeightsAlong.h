#pragma once

#include <vector>

#include "base/CPlanePoint.h"
#include "constraints/CPtCstr.h"
#include "constraints/CurvePlaces.h"

class CCntrCtrl;
class CConstraints;
class CSurface;

/// Which heights are wanted along a curve.
struct CHeightsAlong {
  CCurveSteps m_Steps;
  double m_fFirst = 0.0;   ///< at the start of the curve, model units
  double m_fLast = 0.0;    ///< at its end; linear in the length in between
  bool m_bFollow = false;  ///< the heights that the surface has at the places in place of these
  bool m_bLeft = true;     ///< as one travels along the curve
  bool m_bRight = false;
  double m_fBeside = 0.0;  ///< the curve, model units; at 0 there is one row, whatever the sides

  bool operator==(const CHeightsAlong&) const = default;
};

/// What would become of them.
struct CPlannedHeights {
  std::vector<CPtCstr> m_aHeights;      ///< position constraints
  std::vector<CPlanePoint> m_aLeftOut;  ///< places that would have no effect, or one on another side of a tear
};

/// How far beside a curve heights lie unless one says otherwise: off the triangles that a tear opens, on other curves.
double DefaultBeside(const CCntrCtrl& curve, const CSurface& surface);

/// Plans heights along a curve. Left out is a place in a triangle of a tear, outside, within the margin of the border
/// (BorderMargin), or whose way from the curve crosses a tear again. The tree must be up to date with the curves.
/// Linear in places times segments of tears.
CPlannedHeights PlanHeightsAlong(const CCntrCtrl& curve, const CHeightsAlong& wanted, const CSurface& surface,
                                 const CConstraints& constraints);

/// The mean height of the surface over its rectangle. Linear in the number of lattice points.
double MeanHeight(const CSurface& surface);
