#include "mesh/TearCuts.h"

#include <algorithm>
#include <cmath>

#include "constraints/TearLines.h"
#include "mesh/CEndLeader.h"
#include "mesh/CTearCutter.h"
#include "mesh/CTearPatch.h"

void CutAlongCurves(CTearPatch& patch, CTearCutter& cutter, const CCntrCtrlList& curves, const CLattice& lattice) {
  for (const CGridSegment& s : TearLines(curves, lattice))
    cutter.Cut(patch.Plane().At(s.x0, s.y0), patch.Plane().At(s.x1, s.y1));
  CEndLeader(patch, cutter).LeadAll();
}

int ReachOf(double width, const std::array<double, 2>& cell, int cells) {
  if (width <= 0.0) return CTearPatch::kReach;
  const double reach = std::ceil(width / std::min(cell[0], cell[1])) + 2.0;
  return std::max(CTearPatch::kReach, static_cast<int>(std::min(reach, static_cast<double>(cells))));
}
