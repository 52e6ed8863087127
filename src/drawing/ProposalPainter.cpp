#include "drawing/ProposalPainter.h"

#include <GL/gl.h>

#include "drawing/ConstraintDrawing.h"
#include "drawing/CurveColours.h"
#include "reference/CTearProposals.h"

namespace {

constexpr CColour kDropped{0.7, 0.7, 0.7};
// Dashes as long as their gaps, and dots far apart, in pixels.
constexpr GLushort kDashes = 0x0F0F;
constexpr GLushort kDots = 0x0303;

}  // namespace

void DrawProposals(const CTearProposals& proposals) {
  glLineWidth(1);
  glEnable(GL_LINE_STIPPLE);
  for (const CTearProposals::CItem& item : proposals.Items()) {
    SetColour(item.m_bTaken ? CurveColour(CurveType::kPosition) : kDropped);
    glLineStipple(1, item.m_bTaken ? kDashes : kDots);
    glBegin(item.m_Tear.m_bClosed ? GL_LINE_LOOP : GL_LINE_STRIP);
    for (const CPlanePoint& point : item.m_Tear.m_aPoints) glVertex2d(point.x, point.y);
    glEnd();
  }
  glDisable(GL_LINE_STIPPLE);
}
