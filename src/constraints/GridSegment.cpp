#include "constraints/GridSegment.h"

#include <algorithm>
#include <cmath>

namespace {

// Narrows the range of the parameter to where the coordinate lies in 0..side; false where nothing is left of it.
bool Narrow(double start, double delta, double side, double& from, double& to) {
  if (delta == 0.0) return 0.0 <= start && start <= side;
  const double atLow = -start / delta;
  const double atHigh = (side - start) / delta;
  from = std::max(from, std::min(atLow, atHigh));
  to = std::min(to, std::max(atLow, atHigh));
  return from < to;
}

}  // namespace

bool CGridSegment::IsFinite() const {
  return std::isfinite(x0) && std::isfinite(y0) && std::isfinite(x1) && std::isfinite(y1);
}

bool CGridSegment::Clip(double side) {
  double from = 0.0;
  double to = 1.0;
  const double dx = x1 - x0;
  const double dy = y1 - y0;
  if (!Narrow(x0, dx, side, from, to) || !Narrow(y0, dy, side, from, to)) return false;
  const CGridSegment whole = *this;
  const auto held = [side](double value) { return std::clamp(value, 0.0, side); };
  // An end that stays is kept to the last digit, so that segments go on meeting at their node.
  if (from > 0.0) {
    x0 = held(whole.x0 + from * dx);
    y0 = held(whole.y0 + from * dy);
  }
  if (to < 1.0) {
    x1 = held(whole.x0 + to * dx);
    y1 = held(whole.y0 + to * dy);
  }
  return true;
}
