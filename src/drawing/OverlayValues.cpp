#include "drawing/OverlayValues.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>
#include <string>
#include <utility>
#include <vector>

#include "model/CGrid.h"
#include "report/CSavedSurface.h"
#include "report/FloatingRegions.h"
#include "report/SurfaceHeights.h"

namespace {

constexpr double kShareShown = 0.99;  // of points whose bending has a colour of its own
constexpr double kNoise = 1e-6;       // of the larger side: differences that mean nothing

COverlay OverPoints(const CGrid& grid, std::vector<double> values) {
  COverlay overlay;
  overlay.m_afAtPoints = std::move(values);
  overlay.m_uTree = grid.Surface().Tree().Revision();
  return overlay;
}

double LargerSide(const CGrid& grid) {
  const CExtent& extent = grid.Surface().Lattice().Extent();
  return std::max(extent.x1 - extent.x0, extent.y1 - extent.y0);
}

}  // namespace

void SetEvenRange(COverlay& overlay, double least) {
  double most = least;
  for (const double value : overlay.m_afAtPoints) {
    if (!std::isnan(value)) most = std::max(most, std::abs(value));
  }
  overlay.m_Map = ColourMap::BlueWhiteRed;
  overlay.m_fLow = -most;
  overlay.m_fHigh = most;
}

COverlay BendingOverlay(const CGrid& grid) {
  COverlay overlay = OverPoints(grid, BendingDensity(grid));
  overlay.m_Title = "Bending";
  overlay.m_Unit = "energy per unit of area";
  std::vector<double> sorted = overlay.m_afAtPoints;
  const auto last = static_cast<double>(sorted.size() - 1);
  const auto shown = sorted.begin() + static_cast<std::ptrdiff_t>(kShareShown * last);
  std::ranges::nth_element(sorted, shown);
  const double most = *std::max_element(shown, sorted.end());
  // Where hardly anything bends, what does counts.
  overlay.m_fHigh = *shown > kNoise * most ? *shown : most;
  overlay.m_bHighIsOpen = overlay.m_fHigh < most;
  if (overlay.m_fHigh <= 0.0) overlay.m_fHigh = 1.0;
  return overlay;
}

COverlay MisfitOverlay(const CGrid& grid, const CSavedSurface& saved) {
  const bool follows = grid.Reference().Value().IsActive();
  if (!follows && !saved.IsComparable(grid)) {
    COverlay nothing;
    nothing.m_Title = "Misfit: no surface has been saved yet";
    nothing.m_bHasBar = false;
    return nothing;
  }
  COverlay overlay = OverPoints(grid, follows ? DifferenceFromReference(grid) : saved.DifferenceOf(grid));
  overlay.m_Title = follows ? "Height over the reference depth" : "Height over the surface last saved";
  SetEvenRange(overlay, kNoise * LargerSide(grid));
  return overlay;
}

COverlay FloatingOverlay(const CGrid& grid) {
  // More would cover the photograph.
  constexpr std::size_t kMostNotes = 4;
  const CFreedom freedom = FreedomOf(grid);
  const std::vector<CFloatingRegion> floating = FloatingRegions(freedom);
  COverlay overlay =
      OverPoints(grid, std::vector<double>(grid.Surface().Order().Count(), std::numeric_limits<double>::quiet_NaN()));
  overlay.m_fLow = 0.0;
  // Up to 3 there are darker colours than those of constraints and most photographs.
  overlay.m_fHigh = 6.0;
  overlay.m_bHasBar = false;
  for (const CFloatingRegion& region : floating) {
    for (const std::uint32_t point : freedom.Pieces().PointsOf(region.m_uPiece))
      overlay.m_afAtPoints[point] = static_cast<double>(region.m_uFree);
    if (overlay.m_asNotes.size() < kMostNotes) overlay.m_asNotes.push_back(region.m_Missing);
  }
  overlay.m_Title = floating.empty()       ? "No region floats"
                    : floating.size() == 1 ? "1 region floats:"
                                           : std::to_string(floating.size()) + " regions float:";
  if (floating.size() > kMostNotes) overlay.m_asNotes.emplace_back("...");
  return overlay;
}
