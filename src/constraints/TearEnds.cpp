#include "constraints/TearEnds.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "lattice/CLattice.h"

namespace {

// Nobody can draw up to the border: the outermost pixel of a picture or a view lies half a pixel inside, this share of
// a side where there are 128 of them. The model alone decides which end is meant to reach the border, not what it was
// drawn on, or one file would tear in one window and hold together in another.
constexpr double kReach = 1.0 / 256;
// Added to it, as a share of a side too: a file keeps places no better.
constexpr double kReachRounding = 1e-5;
// As a share of the margin at which the border holds the cursor.
constexpr double kMarginRounding = 1e-5;

// Whether an open end so far from a border is meant to reach it: nearer than a pixel, nearer than the lattice can show,
// or just where the cursor is held, which in a small model is farther in than either.
bool IsMeantForBorder(double distance, double low, double high, double step) {
  const double side = high - low;
  const double margin = BorderMargin(low, high);
  return distance <= std::max(kReach * side, step / 2) + kReachRounding * side ||
         std::abs(distance - margin) <= kMarginRounding * margin;
}

}  // namespace

std::optional<CPlanePoint> BorderBeyond(const CLattice& lattice, const CPlanePoint& end) {
  struct CWay {
    double m_fLength = 0.0;
    CPlanePoint m_Border;
    bool m_bOpen = false;
  };
  const CExtent& e = lattice.Extent();
  const auto alongX = [&](double length, double x) {
    return CWay{length, {x, end.y}, IsMeantForBorder(length, e.x0, e.x1, lattice.StepX())};
  };
  const auto alongY = [&](double length, double y) {
    return CWay{length, {end.x, y}, IsMeantForBorder(length, e.y0, e.y1, lattice.StepY())};
  };
  const std::array<CWay, 4> ways{alongX(end.x - e.x0, e.x0), alongX(e.x1 - end.x, e.x1), alongY(end.y - e.y0, e.y0),
                                 alongY(e.y1 - end.y, e.y1)};
  if (!std::ranges::all_of(ways, [](const CWay& way) { return way.m_fLength > 0.0; })) return std::nullopt;
  const CWay& way =
      *std::ranges::min_element(ways, {}, [](const CWay& w) { return w.m_bOpen ? w.m_fLength : HUGE_VAL; });
  if (!way.m_bOpen) return std::nullopt;
  return way.m_Border;
}
