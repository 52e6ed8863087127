#include "drawing/CurvePainter.h"

#include <span>

#include <GL/gl.h>

#include "drawing/ConstraintDrawing.h"
#include "drawing/CurveColours.h"
#include "model/CGrid.h"

namespace {

// In pixels. A state shows as a wide line under that of the type.
constexpr float kLineWidth = 2.0F;
constexpr float kMarkedWidth = 6.0F;
constexpr float kNodeSize = 5.0F;
constexpr float kMarkedNodeSize = 9.0F;
constexpr float kGeneratedSize = 4.0F;
constexpr float kPendingWidth = 2.0F;
constexpr float kClosingWidth = 5.0F;

void DrawLine(const CCntrCtrl& curve, const CColour& colour, float width) {
  SetColour(colour);
  glLineWidth(width);
  glBegin(curve.IsClosed() ? GL_LINE_LOOP : GL_LINE_STRIP);
  for (const CCntrNode& node : curve.Nodes()) glVertex2d(node.m_fX, node.m_fY);
  glEnd();
}

void DrawNodes(const CCntrCtrl& curve, const CColour& colour, bool marked) {
  glPointSize(marked ? kMarkedNodeSize : kNodeSize);
  glBegin(GL_POINTS);
  for (const CCntrNode& node : curve.Nodes()) {
    if (node.HasState(PtCstrState::kSelected | PtCstrState::kHighlighted) != marked) continue;
    SetColour(CurveStateColour(node, colour));
    glVertex2d(node.m_fX, node.m_fY);
  }
  glEnd();
}

void DrawCurve(const CCntrCtrl& curve) {
  const CColour& colour = CurveColour(curve.Type());
  if (curve.HasState(PtCstrState::kSelected | PtCstrState::kHighlighted))
    DrawLine(curve, CurveStateColour(curve, colour), kMarkedWidth);
  DrawLine(curve, colour, kLineWidth);
  DrawNodes(curve, colour, false);
  DrawNodes(curve, colour, true);
}

void DrawGeneratedConstraints(const CPtCstrList& constraints) {
  SetColour(g_DrawingSettings.m_NormalColours.m_Unselected);
  glPointSize(kGeneratedSize);
  glBegin(GL_POINTS);
  for (const CPtCstr& c : constraints) glVertex2d(c.m_fX, c.m_fY);
  glEnd();
}

}  // namespace

void DrawCurves(const CGrid& grid) {
  DrawGeneratedConstraints(grid.Constraints().Generated());
  for (const CCntrCtrl& curve : grid.Constraints().Curves()) DrawCurve(curve);
}

void DrawPendingCurve(const CGrid& grid, const std::optional<CPlanePoint>& looseEnd) {
  const CPendingCurve& pending = grid.Constraints().PendingCurve();
  if (pending.IsIdle()) return;
  const std::span<const CPtCstr> points = pending.Points();
  const bool closing = pending.ClosesOnValidate();
  glColor3d(1, 1, 1);
  glPointSize(kNodeSize);
  glBegin(GL_POINTS);
  for (const CPtCstr& point : points) glVertex2d(point.m_fX, point.m_fY);
  glEnd();
  glLineWidth(closing ? kClosingWidth : kPendingWidth);
  glBegin(GL_LINE_STRIP);
  if (closing) {
    glVertex2d(points.front().m_fX, points.front().m_fY);
  } else if (looseEnd) {
    glVertex2d(looseEnd->x, looseEnd->y);
  }
  // The strip starts at the mouse, so the point clicked last comes next.
  for (auto point = points.rbegin(); point != points.rend(); ++point) glVertex2d(point->m_fX, point->m_fY);
  glEnd();
}
