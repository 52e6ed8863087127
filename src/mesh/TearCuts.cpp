#include "mesh/TearCuts.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <span>
#include <vector>

#include "constraints/TearLines.h"
#include "mesh/CEndLeader.h"
#include "mesh/CTearCutter.h"
#include "mesh/CTearPatch.h"

bool CutAlongCurves(CTearPatch& patch, CTearCutter& cutter, const CCntrCtrlList& curves, const CLattice& lattice,
                    const CExportSteps& steps) {
  constexpr std::size_t kAtOnce = 512;
  constexpr double kCut = 0.7;
  const std::vector<CGridSegment> lines = TearLines(curves, lattice);
  const auto cut = [&](std::size_t begin, std::size_t end) {
    for (const CGridSegment& s : std::span(lines).subspan(begin, end - begin))
      cutter.Cut(patch.Plane().At(s.x0, s.y0), patch.Plane().At(s.x1, s.y1));
  };
  return steps.Part(0, kCut).ForBlocks(lines.size(), cut, kAtOnce) &&
         CEndLeader(patch, cutter).LeadAll(steps.Part(kCut, 1));
}

int ReachOf(double width, const std::array<double, 2>& cell, int cells) {
  if (width <= 0.0) return CTearPatch::kReach;
  const double reach = std::ceil(width / std::min(cell[0], cell[1])) + 2.0;
  return std::max(CTearPatch::kReach, static_cast<int>(std::min(reach, static_cast<double>(cells))));
}
