#include "drawing/ConstraintDrawing.h"

#include <cmath>
#include <numbers>

#include <GL/gl.h>

namespace {

const CColour& ColourOf(const CPtCstr& constraint, const CConstraintColours& colours) {
  if (constraint.HasState(PtCstrState::kSelected)) return colours.m_Selected;
  return constraint.HasState(PtCstrState::kHighlighted) ? colours.m_Highlighted : colours.m_Unselected;
}

void Vertex(const Vector3& place, const Vector3& unit, const Vector3& offset) {
  glVertex3d(place.x + unit.x * offset.x, place.y + unit.y * offset.y, place.z + unit.z * offset.z);
}

}  // namespace

void SetColour(const CColour& colour) { glColor3dv(colour.data()); }

void DrawPosition(const CPtCstr& constraint, const CViewDrawing& drawing, const Vector3& place, const Vector3& unit) {
  const bool marked = constraint.HasState(PtCstrState::kSelected | PtCstrState::kHighlighted);
  SetColour(ColourOf(constraint, g_DrawingSettings.m_PositionColours));
  glLineWidth(marked ? drawing.m_fHighlightedPositionThickness : drawing.m_fUnselectedPositionThickness);
  const double arm = drawing.m_fPositionSize / 2;
  glBegin(GL_LINES);
  for (const Vector3& axis : {Vector3{arm, 0, 0}, Vector3{0, arm, 0}, Vector3{0, 0, arm}}) {
    if (Dot(axis, unit) == 0) continue;
    Vertex(place, unit, -1.0 * axis);
    Vertex(place, unit, axis);
  }
  glEnd();
}

void DrawNormal(const CPtCstr& constraint, const CViewDrawing& drawing, const Vector3& place, const Vector3& unit) {
  constexpr int kCorners = 32;
  const double radius = drawing.m_fNormalRadius;
  const Vector3 normal = Normalised({-constraint.m_fP, -constraint.m_fQ, 1});
  const Vector3 u = Normalised({1, 0, constraint.m_fP});
  const Vector3 v = Cross(normal, u);
  SetColour(ColourOf(constraint, g_DrawingSettings.m_NormalColours));
  glLineWidth(constraint.HasState(PtCstrState::kSelected) ? drawing.m_fSelectedNormalThickness
                                                          : drawing.m_fUnselectedNormalThickness);
  glBegin(GL_LINE_LOOP);
  for (int k = 0; k < kCorners; ++k) {
    const double angle = 2 * std::numbers::pi * k / kCorners;
    Vertex(place, unit, radius * (std::cos(angle) * u + std::sin(angle) * v));
  }
  glEnd();
  glBegin(GL_LINES);
  Vertex(place, unit, {});
  Vertex(place, unit, 2 * radius * normal);
  glEnd();
}
