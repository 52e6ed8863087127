#include "ui/imageview/PlacePreview.h"

#include <array>

#include <GL/gl.h>

namespace {

constexpr std::array<double, 3> kRim{0, 0, 0};
constexpr std::array<double, 3> kPlace{1, 1, 1};
constexpr std::array<double, 3> kLeftOut{1, 0, 0};
constexpr float kRimSize = 8.0F;
constexpr float kDotSize = 5.0F;

void DrawDots(const std::vector<CPlanePoint>& places, float size, const std::array<double, 3>& colour) {
  glPointSize(size);
  glColor3dv(colour.data());
  glBegin(GL_POINTS);
  for (const CPlanePoint& place : places) glVertex2d(place.x, place.y);
  glEnd();
}

}  // namespace

void DrawPlaces(const CPlacePreview& preview) {
  for (const std::vector<CPlanePoint>* places : {&preview.m_aPlaces, &preview.m_aLeftOut})
    DrawDots(*places, kRimSize, kRim);
  DrawDots(preview.m_aPlaces, kDotSize, kPlace);
  DrawDots(preview.m_aLeftOut, kDotSize, kLeftOut);
}
