#include "ui/scissors/CScissorsCanvas.h"

#include <algorithm>
#include <utility>

#include <GL/gl.h>

#include "base/AreaFilter.h"
#include "drawing/CurveColours.h"
#include "model/CGrid.h"
#include "scissors/CScissorsTool.h"
#include "ui/drawing/PrepareContext.h"

namespace {

// Key points are at least this large, so that they can be seen at any zoom.
constexpr int kMarkSide = 5;

}  // namespace

CScissorsCanvas::CScissorsCanvas(int x, int y, int w, int h, std::function<bool(int)> onEvent)
    : Fl_Gl_Window(x, y, w, h), m_OnEvent(std::move(onEvent)) {
  mode(FL_RGB8 | FL_DOUBLE);
}

void CScissorsCanvas::Show(const CScissorsTool* tool, const CPixelViewport* view) {
  m_pTool = tool;
  m_pView = view;
  m_Cursor.reset();
  m_Reduced = {};
  m_iReduction = 1;
  redraw();
}

void CScissorsCanvas::ShowCurvesOf(const CGrid* grid) {
  m_pGrid = grid;
  redraw();
}

void CScissorsCanvas::SetCursor(std::optional<CPixelPosition> cursor) {
  if (m_Cursor == cursor) return;
  m_Cursor = cursor;
  redraw();
}

int CScissorsCanvas::handle(int event) { return m_OnEvent(event) ? 1 : Fl_Gl_Window::handle(event); }

void CScissorsCanvas::draw() {
  PrepareContext(*this);
  glDisable(GL_BLEND);
  glDisable(GL_DEPTH_TEST);
  // Without blending a smooth line would be three pixels wide.
  glDisable(GL_LINE_SMOOTH);
  glClearColor(kBackground.m_uRed / 255.0F, kBackground.m_uGreen / 255.0F, kBackground.m_uBlue / 255.0F, 0.0F);
  glClear(GL_COLOR_BUFFER_BIT);
  if (m_pTool == nullptr) return;
  glMatrixMode(GL_PROJECTION);
  glLoadIdentity();
  glOrtho(0, w(), h(), 0, -1, 1);
  glMatrixMode(GL_MODELVIEW);
  glLoadIdentity();
  DrawPicture();
  if (m_pGrid != nullptr) DrawCurves();
  glBegin(GL_QUADS);
  const CScissorsContours& contours = m_pTool->Contours();
  for (std::size_t index = 0; index < contours.Traced().size(); ++index) {
    DrawContour(contours.Traced()[index], static_cast<int>(index) == contours.Selected() ? kSelected : kTraced);
  }
  DrawContour(contours.InProgress(), kInProgress);
  DrawLiveWire();
  DrawKeyPoints();
  glEnd();
}

void CScissorsCanvas::SetColour(CColour colour) { glColor3ub(colour.m_uRed, colour.m_uGreen, colour.m_uBlue); }

// Only what is visible is sent, and the rows of the picture run down like those of the window.
void CScissorsCanvas::DrawPicture() {
  TakeReduced(m_pView->Reduction());
  const CTopDownImage& image = m_pTool->Image();
  const bool reduced = m_iReduction > 1;
  const CPixelPosition size =
      reduced ? CPixelPosition{m_Reduced.m_iWidth, m_Reduced.m_iHeight} : m_pView->VisibleSize();
  glPixelStorei(GL_UNPACK_ALIGNMENT, 1);
  glPixelStorei(GL_UNPACK_ROW_LENGTH, reduced ? m_Reduced.m_iWidth : image.m_iWidth);
  glPixelStorei(GL_UNPACK_SKIP_PIXELS, m_pView->First().m_iColumn);
  glPixelStorei(GL_UNPACK_SKIP_ROWS, m_pView->First().m_iRow);
  const float scale = pixels_per_unit() * static_cast<float>(m_pView->Zoom());
  glPixelZoom(scale, -scale);
  glRasterPos2i(0, 0);
  glDrawPixels(size.m_iColumn, size.m_iRow, GL_RGB, GL_UNSIGNED_BYTE,
               reduced ? m_Reduced.m_aPixels.data() : image.m_aPixels.data());
}

// One pass over the picture whenever another size is asked for.
void CScissorsCanvas::TakeReduced(int reduction) {
  if (reduction == m_iReduction) return;
  const CTopDownImage& image = m_pTool->Image();
  const CPixelRows rows{image.m_aPixels, image.m_iWidth, image.m_iHeight, 3 * static_cast<std::size_t>(image.m_iWidth)};
  m_Reduced = reduction > 1 ? AreaFiltered(rows, reduction, reduction) : CPicture{};
  m_iReduction = reduction;
}

void CScissorsCanvas::DrawCurves() const {
  const CExtent& extent = m_pGrid->Surface().Lattice().Extent();
  const CTopDownImage& image = m_pTool->Image();
  const double scale = static_cast<double>(m_pView->Zoom()) / m_pView->Reduction();
  const auto vertex = [&](const CCntrNode& node) {
    const double column = (node.m_fX - extent.x0) / (extent.x1 - extent.x0) * image.m_iWidth;
    const double row = (extent.y1 - node.m_fY) / (extent.y1 - extent.y0) * image.m_iHeight;
    glVertex2d((column - m_pView->First().m_iColumn) * scale, (row - m_pView->First().m_iRow) * scale);
  };
  glLineWidth(1);
  for (const CCntrCtrl& curve : m_pGrid->Constraints().Curves()) {
    glColor3dv(CurveColour(curve.Type()).data());
    glBegin(curve.IsClosed() ? GL_LINE_LOOP : GL_LINE_STRIP);
    for (const CCntrNode& node : curve.Nodes()) vertex(node);
    glEnd();
  }
}

void CScissorsCanvas::DrawContour(const CTracedContour& contour, CColour colour) const {
  SetColour(colour);
  for (const CPathPixel& pixel : contour.m_aPixels) Square(pixel.Position(), m_pView->Zoom());
}

void CScissorsCanvas::DrawLiveWire() const {
  if (!m_Cursor.has_value() || !m_pTool->HasPath(*m_Cursor)) return;
  SetColour(kLiveWire);
  for (std::optional<CPixelPosition> p = m_Cursor; p.has_value(); p = m_pTool->Tree().Previous(*p)) {
    Square(*p, m_pView->Zoom());
  }
}

void CScissorsCanvas::DrawKeyPoints() const {
  const CScissorsContours& contours = m_pTool->Contours();
  if (!contours.IsInProgress()) return;
  const int side = std::max(kMarkSide, m_pView->Zoom());
  SetColour(kKeyPoint);
  for (const CPathPixel& pixel : contours.InProgress().m_aPixels) {
    if (pixel.m_bKeyPoint) Square(pixel.Position(), side);
  }
  SetColour(kSeed);
  Square(contours.Seed(), side);
}

void CScissorsCanvas::Square(CPixelPosition pixel, int side) const {
  const int zoom = m_pView->Zoom();
  const int reduction = m_pView->Reduction();
  const int left = (pixel.m_iColumn - m_pView->First().m_iColumn) / reduction * zoom - (side - zoom) / 2;
  const int top = (pixel.m_iRow - m_pView->First().m_iRow) / reduction * zoom - (side - zoom) / 2;
  glVertex2i(left, top);
  glVertex2i(left + side, top);
  glVertex2i(left + side, top + side);
  glVertex2i(left, top + side);
}
