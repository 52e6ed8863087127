#include "drawing/Minification.h"

#include <algorithm>
#include <cmath>

namespace {

// A quarter of its length is left of a side turned by 75 degrees.
constexpr double kMostForeshortening = 4;

// So many pixels of what is drawn may fall on one of the screen. Contexts keep their matrices in single precision:
// without the margin a picture with just as many would be reduced or not by its rounding.
constexpr double kMostPixels = 2 * (1 + 1e-5);

// A picture has no side that can be halved more often.
constexpr int kMostHalvings = 30;

// What the matrix makes of a model axis, by screen axis (0 to the right, 1 up) and in the units of the projection, from
// -1 to 1.
double Share(const std::array<double, 16>& projection, const std::array<double, 16>& modelView, std::size_t axis,
             std::size_t screen) {
  double sum = 0;
  for (std::size_t k = 0; k < 4; ++k) sum += projection[4 * k + screen] * modelView[4 * axis + k];
  return sum;
}

int HalvingsFor(double pixels) {
  int halvings = 0;
  for (; pixels > kMostPixels && halvings < kMostHalvings; pixels /= 2) ++halvings;
  return halvings;
}

}  // namespace

CScreenAxes CScreenAxes::Of(const std::array<double, 16>& projection, const std::array<double, 16>& modelView,
                            int width, int height) {
  const auto of = [&](std::size_t axis) {
    return CPlanePoint{Share(projection, modelView, axis, 0) * width / 2,
                       Share(projection, modelView, axis, 1) * height / 2};
  };
  return {of(0), of(1), of(2)};
}

CPlanePoint PixelsPerScreenPixel(const CScreenAxes& axes, const CPlanePoint& pixel) {
  // Screen pixels per model unit, seen from the front; the smaller, should a view stretch one side.
  const double scale =
      std::min(std::hypot(axes.m_X.x, axes.m_Y.x, axes.m_Z.x), std::hypot(axes.m_X.y, axes.m_Y.y, axes.m_Z.y));
  if (!(scale > 0) || !(pixel.x > 0) || !(pixel.y > 0)) return {};
  const CPlanePoint limit{kMostForeshortening / (scale * pixel.x), kMostForeshortening / (scale * pixel.y)};
  // The inverse of the matrix of both sides' steps on the screen takes a screen pixel to picture pixels; its rows are
  // as long as the sides of the box around what it makes of a circle one screen pixel wide.
  const CPlanePoint a{axes.m_X.x * pixel.x, axes.m_X.y * pixel.x};
  const CPlanePoint b{axes.m_Y.x * pixel.y, axes.m_Y.y * pixel.y};
  const double area = std::abs(a.x * b.y - a.y * b.x);
  if (area == 0) return limit;
  return {std::min(std::hypot(b.x, b.y) / area, limit.x), std::min(std::hypot(a.x, a.y) / area, limit.y)};
}

CReduction ReductionFor(const CPlanePoint& pixelsPerScreenPixel) {
  return {HalvingsFor(pixelsPerScreenPixel.x), HalvingsFor(pixelsPerScreenPixel.y)};
}
