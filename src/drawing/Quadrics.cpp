#include "drawing/Quadrics.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <memory>

#include <GL/gl.h>
#include <GL/glu.h>

#include "base/Console.h"
#include "base/Vector3.h"

namespace {

struct CDeleteQuadric {
  void operator()(GLUquadricObj* quadric) const { gluDeleteQuadric(quadric); }
};
using Quadric = std::unique_ptr<GLUquadricObj, CDeleteQuadric>;

void OnQuadricError() {
  Console() << "Erreur de Quadrique **********************************\n" << std::flush;
  std::exit(EXIT_SUCCESS);
}

// Turns what lies along +z to the direction `d`.
void RotateTo(const Vector3& d) {
  constexpr double kPi = 3.1415926;
  const double across = std::hypot(d.x, d.y);
  if (across == 0) return;
  const double angle = std::acos(std::clamp(d.z / Length(d), -1.0, 1.0)) * 180 / kPi;
  glRotated(angle, -d.y / across, d.x / across, 0);
}

// Calls `draw(quadric)` where +z is the direction `d` from `place`.
template <typename Draw>
void DrawQuadric(const char* caller, GLenum style, const Vector3& place, const Vector3& d, const Draw& draw) {
  const Quadric quadric(gluNewQuadric());
  if (quadric == nullptr) {
    Console() << "Error " << caller << "\t\tUnable to create a GLUquadricObj\n";
    return;
  }
  glPushAttrib(GL_ENABLE_BIT);
  glDisable(GL_BLEND);
  glPushMatrix();
  gluQuadricCallback(quadric.get(), GLU_ERROR, OnQuadricError);
  gluQuadricDrawStyle(quadric.get(), style);
  gluQuadricNormals(quadric.get(), GLU_SMOOTH);
  glTranslated(place.x, place.y, place.z);
  RotateTo(d);
  gluQuadricCallback(quadric.get(), GLU_ERROR, nullptr);
  draw(quadric.get());
  glFlush();
  glPopMatrix();
  glPopAttrib();
}

}  // namespace

void draw_cylinder(double x, double y, double z, double dx, double dy, double dz, double length, int slices,
                   double radius) {
  DrawQuadric("draw_cylinder", GLU_SILHOUETTE, {x, y, z}, {dx, dy, dz},
              [&](GLUquadricObj* quadric) { gluCylinder(quadric, radius, radius, length, slices, slices); });
}

void draw_disc(double x, double y, double z, double dx, double dy, double dz, double radius, double thickness) {
  constexpr int kSlices = 32;
  DrawQuadric("draw_disc", GLU_FILL, {x, y, z}, {dx, dy, dz},
              [&](GLUquadricObj* quadric) { gluDisk(quadric, std::max(0.0, radius - thickness), radius, kSlices, 1); });
}
